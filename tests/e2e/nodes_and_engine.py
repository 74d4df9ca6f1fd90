#!/usr/bin/python3
# Every level of the Freedoom IWADs is saved through `kelvar-cli save --nodes`: the level's
# lumps come from memory and kelvarbsp builds the nodes. omgifol must read back the same
# objects, the node lumps must be there with a REJECT of the right size, and dsda-doom must
# load and run each level on its own from a generated demo.
# usage: nodes_and_engine.py KELVAR_CLI WORKDIR [IWAD...]
# SPDX-License-Identifier: GPL-3.0-or-later
import os
import shutil
import struct
import subprocess
import sys
import tempfile

import omg

from freedoom_saves import saved_levels

ENGINE = "/usr/games/dsda-doom"


def line_ends(editor):
    return [((editor.vertexes[l.vx_a].x, editor.vertexes[l.vx_a].y),
             (editor.vertexes[l.vx_b].x, editor.vertexes[l.vx_b].y),
             l.front, l.back, l.action, l.tag, l.flags) for l in editor.linedefs]


def packed(items):
    return [item.pack() for item in items]


def undo_differences(before, back):
    """What differs between a level as read and the same level saved after every edit was
    undone: the names of the object lumps that don't match."""
    differ = [kind for kind in ("things", "sidedefs", "sectors")
              if packed(getattr(back, kind)) != packed(getattr(before, kind))]
    if line_ends(back) != line_ends(before):
        differ.append("linedefs")
    return differ


def played_and_undone(cli, work, iwad, name, out, script, steps, before):
    """The failures of the two checks every edit script ends with: dsda-doom plays the saved
    level, and the script with every step undone saves the level's objects as they were read."""
    failures = []
    ok, engine = engine_runs(iwad, out, name, work)
    if not ok:
        failures.append(f"dsda-doom exit {engine.returncode}\n{engine.stdout[-500:]}")
    undone = os.path.join(work, "undone.wad")
    run = edit_level(cli, work, iwad, name, undone, script + "; undo" * steps)
    if run.returncode != 0:
        failures.append(f"undo script exit {run.returncode}\n{run.stderr[-1000:]}")
    else:
        back = omg.MapEditor(omg.WAD(undone).maps[name])
        for kind in undo_differences(before, back):
            failures.append(f"after undo, {kind} differ")
    return failures


def edit_level(cli, work, iwad, name, out, script, new_level=False):
    """Runs `kelvar-cli edit` with a script on one level (made empty first with new_level),
    saving with nodes to `out`."""
    if os.path.exists(out):
        os.remove(out)
    env = dict(os.environ, XDG_CONFIG_HOME=os.path.join(work, "config"))
    fresh = ["--new"] if new_level else []
    return subprocess.run([cli, "edit", iwad, name, "-o", out, "--nodes", *fresh, "--", script],
                          env=env, cwd=work, capture_output=True, text=True)


def demo(path, name, tics, forward=0, use_at=()):
    """A vanilla demo: version 109, skill 3, episode and map, one player, standing still or
    walking forward, pressing use on the tics of `use_at`."""
    if name.startswith("MAP"):
        episode, level = 1, int(name[3:])
    else:
        episode, level = int(name[1]), int(name[3])
    header = bytes([109, 2, episode, level, 0, 0, 0, 0, 0, 1, 0, 0, 0])
    use = 2  # the use button's bit
    commands = b"".join(struct.pack("<bbbB", forward, 0, 0, use if tic in use_at else 0)
                        for tic in range(tics))
    with open(path, "wb") as f:
        f.write(header + commands + b"\x80")


def level_finished(iwad, pwad, name, work, tics, forward, use_at):
    """Plays a walking demo; the name of the level dsda-doom's level statistics list as
    finished, or None."""
    lump = os.path.join(work, "walk.lmp")
    demo(lump, name, tics, forward, use_at)
    home = tempfile.mkdtemp(dir=work)
    env = dict(os.environ, HOME=home, XDG_RUNTIME_DIR=home, SDL_VIDEODRIVER="dummy",
               SDL_AUDIODRIVER="dummy")
    try:
        subprocess.run([ENGINE, "-iwad", iwad, "-file", pwad, "-timedemo", lump, "-nodraw",
                        "-nosound", "-no_message_box", "-levelstat"], cwd=home, env=env,
                       capture_output=True, text=True, timeout=60)
        stats = os.path.join(home, "levelstat.txt")
        return open(stats).read().split(" ")[0] if os.path.exists(stats) else None
    finally:
        shutil.rmtree(home, ignore_errors=True)


def engine_runs(iwad, pwad, name, work):
    lump = os.path.join(work, "demo.lmp")
    demo(lump, name, 35)
    home = tempfile.mkdtemp(dir=work)
    env = dict(os.environ, HOME=home, XDG_RUNTIME_DIR=home, SDL_VIDEODRIVER="dummy",
               SDL_AUDIODRIVER="dummy")
    try:
        run = subprocess.run([ENGINE, "-iwad", iwad, "-file", pwad, "-timedemo", lump,
                              "-nodraw", "-nosound", "-no_message_box"], cwd=home, env=env,
                             capture_output=True, text=True, timeout=60)
    finally:
        shutil.rmtree(home, ignore_errors=True)
    return run.returncode == 0 and "Timed 35 gametics" in run.stdout, run


def main():
    cli, work = sys.argv[1], sys.argv[2]
    if not os.path.exists(ENGINE):
        print("dsda-doom is not installed: run scripts/setup")
        return 1
    failures = 0
    levels = 0
    for iwad, source, name, out, run in saved_levels(cli, work, sys.argv[3:], "--nodes"):
        levels += 1
        if run.returncode != 0 or "Result: nodes built" not in run.stderr:
            print(f"FAIL {name}: save exit {run.returncode}\n{run.stderr[-2000:]}")
            failures += 1
            continue
        saved = omg.WAD(out).maps[name]
        original = source.maps[name]
        a, b = omg.MapEditor(original), omg.MapEditor(saved)
        for kind in ("things", "sidedefs", "sectors"):
            if packed(getattr(a, kind)) != packed(getattr(b, kind)):
                print(f"FAIL {name}: {kind} differ")
                failures += 1
        if line_ends(a) != line_ends(b):
            print(f"FAIL {name}: linedefs differ")
            failures += 1
        sectors = len(b.sectors)
        if len(saved["REJECT"].data) != (sectors * sectors + 7) // 8:
            print(f"FAIL {name}: REJECT of {len(saved['REJECT'].data)} bytes")
            failures += 1
        if any(len(saved[lump].data) == 0 for lump in ("SEGS", "SSECTORS", "BLOCKMAP")):
            print(f"FAIL {name}: empty node lumps")
            failures += 1
        ok, engine = engine_runs(iwad, out, name, work)
        if not ok:
            print(f"FAIL {name}: dsda-doom exit {engine.returncode}\n{engine.stdout[-500:]}"
                  f"\n{engine.stderr[-500:]}")
            failures += 1
    print(f"{levels} levels saved with nodes and played, {failures} failures")
    return 1 if failures or levels == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
