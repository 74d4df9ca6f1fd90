#!/usr/bin/python3
# Times omgifol decoding every picture of a WAD to palette indexes (Graphic.to_raw for the
# graphics, patches and sprites, the raw bytes of the flats), as the peer of Kelvar's decode.
# Prints "name median_seconds median_cpu_seconds count".
import statistics
import sys
import time

import omg

path = sys.argv[1]
runs = int(sys.argv[2]) if len(sys.argv) > 2 else 3
wad = omg.WAD(path)


def decode_all():
    count = 0
    for group in (wad.graphics, wad.patches, wad.sprites):
        for graphic in group.values():
            graphic.to_raw()
            count += 1
    for flat in wad.flats.values():
        bytes(flat.data)
        count += 1
    return count


times = []
cpu = []
for _ in range(runs):
    start = time.perf_counter()
    start_cpu = time.process_time()
    pictures = decode_all()
    times.append(time.perf_counter() - start)
    cpu.append(time.process_time() - start_cpu)
print("omg.to_raw", statistics.median(times), statistics.median(cpu), pictures)
