#!/usr/bin/env python3
# Times the editor from process start to the first painted map of Freedoom 2 MAP01 on Qt's
# offscreen platform: settings built beforehand (a later start, no questions), `kelvar` run
# with KELVAR_QUIT_AFTER_FIRST_PAINT, which closes the window once the map is on screen.
# Prints "startup <median seconds> <runs>".
# SPDX-License-Identifier: GPL-3.0-or-later
import os
import statistics
import struct
import subprocess
import sys
import tempfile
import time

kelvar, cli, runs = sys.argv[1], sys.argv[2], int(sys.argv[3])


def patch(path, offset, fmt, value):
    with open(path, "r+b") as f:
        f.seek(offset)
        f.write(struct.pack("<" + fmt, *value) if isinstance(value, tuple) else struct.pack("<" + fmt, value))


with tempfile.TemporaryDirectory() as config:
    folder = os.path.join(config, "kelvar")
    subprocess.run([cli, "status", "--build", folder], check=True, stdout=subprocess.DEVNULL)
    chk = os.path.join(folder, "KELVAR.CHK")
    patch(chk, 542, "h", 1)  # Auto Start Program: no reminder, no environment checks
    project = os.path.join(folder, "DOOM2.PRJ")
    patch(project, 24, "8s", b"MAP01")  # the level
    patch(project, 7860, "H", 0x6666)  # used before: the IWAD is taken without asking
    env = dict(os.environ, XDG_CONFIG_HOME=config, QT_QPA_PLATFORM="offscreen",
               KELVAR_QUIT_AFTER_FIRST_PAINT="1")
    times = []
    for _ in range(runs + 1):
        start = time.perf_counter()
        subprocess.run([kelvar], env=env, check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, timeout=60)
        times.append(time.perf_counter() - start)
    # The first run warms the file cache.
    print(f"startup {statistics.median(times[1:]):.6f} {runs}")
