#!/usr/bin/env python3
# Times the built-in node builder against zdbsp alone on Freedoom 2 MAP12 without nodes (the
# largest level: 10,884 LineDefs): kelvarbsp as the editor runs it, and zdbsp with the options
# kelvarbsp gives it, on the same input, runs interleaved. Prints
# "kelvarbsp <median seconds> zdbsp <median seconds>".
# usage: nodes.py KELVARBSP [RUNS] [IWAD]
# SPDX-License-Identifier: GPL-3.0-or-later
import os
import statistics
import struct
import subprocess
import sys
import tempfile
import time

kelvarbsp = os.path.abspath(sys.argv[1])
runs = int(sys.argv[2]) if len(sys.argv) > 2 else 11
iwad = sys.argv[3] if len(sys.argv) > 3 else "/usr/share/games/doom/freedoom2.wad"
LEVEL = "MAP12"


def nodeless_level(path, level):
    """The level's marker and five object lumps, as the editor saves them before a build."""
    data = open(path, "rb").read()
    count, directory = struct.unpack_from("<ii", data, 4)
    entries = [struct.unpack_from("<ii8s", data, directory + 16 * i) for i in range(count)]
    names = [name.rstrip(b"\0").decode() for _, _, name in entries]
    marker = names.index(level)
    lumps = [(level, b"")]
    for (offset, size, _), name in zip(entries[marker + 1:marker + 11], names[marker + 1:]):
        if name in ("THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SECTORS"):
            lumps.append((name, data[offset:offset + size]))
    body, table, offset = b"", b"", 12
    for name, bytes_ in lumps:
        table += struct.pack("<ii8s", offset, len(bytes_), name.encode())
        body += bytes_
        offset += len(bytes_)
    return b"PWAD" + struct.pack("<ii", len(lumps), offset) + body + table


def timed(command, cwd, output):
    # Each tool writes a new file, as in the editor, where the old target was renamed to .BAK.
    if os.path.exists(output):
        os.remove(output)
    start = time.perf_counter()
    subprocess.run(command, cwd=cwd, check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    return time.perf_counter() - start


with tempfile.TemporaryDirectory() as work:
    with open(os.path.join(work, "~Kelvar.WAD"), "wb") as f:
        f.write(nodeless_level(iwad, LEVEL))
    ours_out, theirs_out = os.path.join(work, "k.wad"), os.path.join(work, "z.wad")
    ours = [kelvarbsp, "~Kelvar.WAD", ours_out, LEVEL, "1NNNN16", "N", "SX2xxx"]
    theirs = ["zdbsp", "-q", "-w", "-m", LEVEL, "-o", theirs_out, "-R", "~Kelvar.WAD"]
    times = {"kelvarbsp": [], "zdbsp": []}
    for run in range(runs + 1):
        k = timed(ours, work, ours_out)
        z = timed(theirs, work, theirs_out)
        if run > 0:  # the first round warms the file cache
            times["kelvarbsp"].append(k)
            times["zdbsp"].append(z)
    print(f"kelvarbsp {statistics.median(times['kelvarbsp']):.6f} "
          f"zdbsp {statistics.median(times['zdbsp']):.6f}")
