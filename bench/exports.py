#!/usr/bin/env python3
# Times extracting every sound (as WAV) or every sprite (as PNG) of freedoom2.wad as whole
# processes: deutex -sounds or -sprites beside kelvar-cli sound export --all or picture export
# --all sprites, each into a fresh folder, alternating, `runs` times.
# Usage: exports.py KELVAR_CLI RUNS [sounds|sprites]. Prints "deutex <median s>", "kelvar
# <median s>" and the counts of files each wrote, then the medians of the processor time (user
# + system) each used, which a busy machine disturbs less. deutex also writes the PC speaker
# sounds as text.
# SPDX-License-Identifier: GPL-3.0-or-later
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

cli, runs = os.path.abspath(sys.argv[1]), int(sys.argv[2])
kind = sys.argv[3] if len(sys.argv) > 3 else "sounds"
if kind not in ("sounds", "sprites"):
    sys.exit("the kind is sounds or sprites")
iwad = "/usr/share/games/doom/freedoom2.wad"


def timed(command, cwd):
    """The wall time and the processor time of one run."""
    start = time.perf_counter()
    child = subprocess.Popen(command, cwd=cwd, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    wall = time.perf_counter() - start
    child.returncode = os.waitstatus_to_exitcode(status)
    if child.returncode != 0:
        sys.exit("%s failed with %d" % (command[0], child.returncode))
    return wall, usage.ru_utime + usage.ru_stime


with tempfile.TemporaryDirectory() as work:
    os.mkdir(os.path.join(work, "iwad"))
    os.symlink(iwad, os.path.join(work, "iwad", "doom2.wad"))
    env_config = os.path.join(work, "config")
    os.environ["XDG_CONFIG_HOME"] = env_config
    times = {"deutex": [], "kelvar": []}
    cpu = {"deutex": [], "kelvar": []}
    counts = {}
    for _ in range(runs):
        for tool in ("deutex", "kelvar"):
            out = os.path.join(work, tool)
            shutil.rmtree(out, ignore_errors=True)
            os.mkdir(out)
            if tool == "deutex":
                # deutex finds its IWAD only by a path relative to where it runs.
                command = ["/usr/games/deutex", "-doom2", "iwad", "-dir", tool, "-" + kind, "-extract"]
                written = os.path.join(out, kind)
            elif kind == "sounds":
                command = [cli, "sound", "export", iwad, "--all", "-d", out]
                written = out
            else:
                command = [cli, "picture", "export", iwad, "--all", "sprites", "-d", out]
                written = out
            wall, used = timed(command, work)
            times[tool].append(wall)
            cpu[tool].append(used)
            counts[tool] = len(os.listdir(written))
    for tool in ("deutex", "kelvar"):
        print(tool, statistics.median(times[tool]), counts[tool], statistics.median(cpu[tool]))
