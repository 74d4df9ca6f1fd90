#!/usr/bin/python3
# Times omgifol reading a WAD's directory (WadIO) and the whole WAD (WAD), as the peer of
# kelvar's own open. Prints "name median_seconds" lines.
import statistics
import sys
import time

import omg

path = sys.argv[1]
runs = int(sys.argv[2]) if len(sys.argv) > 2 else 15


def median(action):
    times = []
    for _ in range(runs):
        start = time.perf_counter()
        action()
        times.append(time.perf_counter() - start)
    return statistics.median(times)


print("omg.WadIO", median(lambda: omg.WadIO(path)))
print("omg.WAD", median(lambda: omg.WAD(path)))
if len(sys.argv) > 3:
    level = sys.argv[3]
    wad = omg.WAD(path)
    print("omg.MapEditor", median(lambda: omg.MapEditor(wad.maps[level])))
