#!/usr/bin/python3
# A save with nodes killed at a random moment: `kelvar-cli save --nodes` rewrites a one-level
# PWAD in place and is killed with SIGKILL (with kelvarbsp and zdbsp, if they run) after a
# random delay within the time a whole save takes. Afterwards the PWAD or its .BAK must be
# whole: omgifol reads the level from it with the same objects as before.
# usage: killed_saves.py KELVAR_CLI WORKDIR [TRIES [SEED]]
# SPDX-License-Identifier: GPL-3.0-or-later
import os
import random
import shutil
import signal
import subprocess
import sys
import time

import omg

IWAD = "/usr/share/games/doom/freedoom2.wad"
LEVEL = "MAP01"


def objects(path):
    """The level's objects as omgifol reads them, or None when the file isn't whole."""
    try:
        editor = omg.MapEditor(omg.WAD(path).maps[LEVEL])
        ends = [((editor.vertexes[l.vx_a].x, editor.vertexes[l.vx_a].y),
                 (editor.vertexes[l.vx_b].x, editor.vertexes[l.vx_b].y),
                 l.front, l.back, l.action, l.tag, l.flags) for l in editor.linedefs]
        return (ends, [t.pack() for t in editor.things], [s.pack() for s in editor.sidedefs],
                [s.pack() for s in editor.sectors])
    except Exception:  # a damaged file may fail anywhere in the reader
        return None


def save(cli, env, target):
    return subprocess.Popen([cli, "save", IWAD, target, LEVEL, "-o", target, "--nodes"], env=env,
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                            start_new_session=True)


def main():
    cli, work = sys.argv[1], sys.argv[2]
    tries = int(sys.argv[3]) if len(sys.argv) > 3 else 20
    seed = int(sys.argv[4]) if len(sys.argv) > 4 else 1
    shutil.rmtree(work, ignore_errors=True)
    os.makedirs(work)
    env = dict(os.environ, XDG_CONFIG_HOME=os.path.join(work, "config"))
    original = os.path.join(work, "original.wad")
    made = subprocess.run([cli, "save", IWAD, LEVEL, "-o", original], env=env,
                          capture_output=True, text=True)
    if made.returncode != 0:
        print(f"the PWAD to save over could not be made:\n{made.stderr}")
        return 1
    expected = objects(original)
    target = os.path.join(work, "level.wad")
    backup = os.path.join(work, "level.BAK")

    # How long a whole save takes here (the longer of two), so the kills land inside one.
    span = 0
    for _ in range(2):
        shutil.copy(original, target)
        start = time.monotonic()
        finished = save(cli, env, target).wait()
        span = max(span, time.monotonic() - start)
        if finished != 0 or objects(target) != expected:
            print(f"a save that was not killed failed (exit {finished})")
            return 1

    rng = random.Random(seed)
    failures = 0
    for attempt in range(tries):
        for path in (target, backup):
            if os.path.exists(path):
                os.remove(path)
        shutil.copy(original, target)
        delay = rng.uniform(0, span * 1.2)
        process = save(cli, env, target)
        time.sleep(delay)
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()
        whole = [path for path in (target, backup) if objects(path) == expected]
        if not whole:
            print(f"FAIL try {attempt}: killed after {delay * 1000:.0f} ms, neither the PWAD nor "
                  f"its .BAK is whole ({sorted(os.listdir(work))})")
            failures += 1
    print(f"{tries} saves killed within {span * 1000:.0f} ms (seed {seed}): {failures} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
