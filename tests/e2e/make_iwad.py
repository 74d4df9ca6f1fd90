#!/usr/bin/python3
# Freedoom 2 with a PWAD whose MAP01 is a room with an exit line is written as one new IWAD by
# `kelvar-cli make-iwad`: omgifol reads it back with every lump of the IWAD in its place, MAP01's
# lumps those of the PWAD, the sources are byte for byte as they were, and dsda-doom, given the
# made IWAD alone, plays a demo that walks over the exit. The same PWAD grouped with a second one
# by `kelvar-cli group` holds both levels, and its MAP01 plays over Freedoom 2 too.
# usage: make_iwad.py KELVAR_CLI WORKDIR
# SPDX-License-Identifier: GPL-3.0-or-later
import hashlib
import os
import shutil
import subprocess
import sys
import tempfile

import omg
import omg.mapedit as me

from nodes_and_engine import ENGINE, demo, level_finished

IWAD = "/usr/share/games/doom/freedoom2.wad"
ZDBSP = "/usr/bin/zdbsp"
WALK_TICS, FORWARD = 70, 50


def exit_room(path):
    """Two rooms of 256 by 256, a walk-over exit (52) between them, the player facing it; the
    nodes built by zdbsp."""
    ed = omg.MapEditor()
    corners = [(0, 0), (256, 0), (512, 0), (512, 256), (256, 256), (0, 256)]
    ed.vertexes = [me.Vertex(x=x, y=y) for x, y in corners]
    ed.sectors = [me.Sector(z_floor=0, z_ceil=128, tx_floor="FLOOR4_8", tx_ceil="CEIL3_5",
                            light=192) for _ in range(2)]

    def side(sector, middle="STARTAN3"):
        s = me.Sidedef(sector=sector)
        s.tx_mid = middle
        return s
    ed.sidedefs = [side(0), side(0), side(0), side(1), side(1), side(1), side(0, "-"),
                   side(1, "-")]
    for a, b, front in [(1, 0, 0), (5, 4, 1), (0, 5, 2), (2, 1, 3), (3, 2, 4), (4, 3, 5)]:
        line = me.Linedef(vx_a=a, vx_b=b, front=front, back=0xFFFF, action=0, tag=0)
        line.impassable = 1
        ed.linedefs.append(line)
    line = me.Linedef(vx_a=4, vx_b=1, front=6, back=7, action=52, tag=0)
    line.two_sided = 1
    ed.linedefs.append(line)
    start = me.Thing(x=64, y=128, angle=0, type=1)
    start.easy = start.medium = start.hard = 1
    ed.things = [start]
    me.linedefs = ed.linedefs  # omgifol 0.5.0 reads the module's list in to_lumps()
    wad = omg.WAD()
    wad.maps["MAP01"] = ed.to_lumps()
    for lump in ("SEGS", "SSECTORS", "NODES", "BLOCKMAP", "REJECT"):
        del wad.maps["MAP01"][lump]
    source = path + ".src"
    wad.to_file(source)
    subprocess.run([ZDBSP, "-o", path, source], check=True, capture_output=True)


def digest(path):
    with open(path, "rb") as f:
        return hashlib.sha256(f.read()).hexdigest()


def entries(path):
    wad = omg.WadIO(path)
    return [(e.name, wad.read(i)) for i, e in enumerate(wad.entries)]


def played_alone(iwad, name, work):
    """The level dsda-doom's statistics list as finished after the walking demo, with `iwad`
    the only file given."""
    lump = os.path.join(work, "alone.lmp")
    demo(lump, name, WALK_TICS, FORWARD)
    home = tempfile.mkdtemp(dir=work)
    env = dict(os.environ, HOME=home, XDG_RUNTIME_DIR=home, SDL_VIDEODRIVER="dummy",
               SDL_AUDIODRIVER="dummy")
    try:
        subprocess.run([ENGINE, "-iwad", iwad, "-timedemo", lump, "-nodraw", "-nosound",
                        "-no_message_box", "-levelstat"], cwd=home, env=env,
                       capture_output=True, text=True, timeout=60)
        stats = os.path.join(home, "levelstat.txt")
        return open(stats).read().split(" ")[0] if os.path.exists(stats) else None
    finally:
        shutil.rmtree(home, ignore_errors=True)


def check_made_iwad(made, pwad):
    failures = []
    stock, built, room = entries(IWAD), entries(made), dict(entries(pwad))
    if [name for name, _ in built] != [name for name, _ in stock]:
        failures.append(f"directory differs: {len(built)} entries, {len(stock)} wanted")
        return failures
    level = [name for name, _ in stock].index("MAP01")
    for i, ((name, data), (_, old)) in enumerate(zip(built, stock)):
        inside = level < i <= level + 10
        wanted = room[name] if inside else old
        if data != wanted:
            failures.append(f"entry {i} {name} differs from the {'PWAD' if inside else 'IWAD'}")
    return failures


def main():
    cli, work = sys.argv[1], sys.argv[2]
    for program in (ENGINE, ZDBSP):
        if not os.path.exists(program):
            print(f"{program} is not installed: run scripts/setup")
            return 1
    shutil.rmtree(work, ignore_errors=True)
    os.makedirs(work)
    env = dict(os.environ, XDG_CONFIG_HOME=os.path.join(work, "config"))
    room = os.path.join(work, "room.wad")
    exit_room(room)
    second = os.path.join(work, "second.wad")
    other = omg.WAD()
    other.maps["MAP02"] = omg.WAD(IWAD).maps["MAP02"]
    other.to_file(second)
    sources = {path: digest(path) for path in (IWAD, room, second)}
    failures = []

    made = os.path.join(work, "made.wad")
    run = subprocess.run([cli, "make-iwad", IWAD, room, "-o", made], env=env,
                         capture_output=True, text=True)
    if run.returncode != 0:
        failures.append(f"make-iwad exit {run.returncode}\n{run.stderr[-1000:]}")
    else:
        failures += check_made_iwad(made, room)
        finished = played_alone(made, "MAP01", work)
        if finished != "MAP01":
            failures.append(f"the made IWAD's MAP01 was not finished: {finished}")

    grouped = os.path.join(work, "grouped.wad")
    run = subprocess.run([cli, "group", IWAD, room, second, "-o", grouped], env=env,
                         capture_output=True, text=True)
    if run.returncode != 0:
        failures.append(f"group exit {run.returncode}\n{run.stderr[-1000:]}")
    else:
        maps = omg.WAD(grouped).maps
        for name, source in (("MAP01", room), ("MAP02", second)):
            wanted = omg.WAD(source).maps[name]
            if name not in maps or any(maps[name][k].data != wanted[k].data for k in wanted):
                failures.append(f"the grouped {name} differs from its PWAD's")
        finished = level_finished(IWAD, grouped, "MAP01", work, WALK_TICS, FORWARD, ())
        if finished != "MAP01":
            failures.append(f"the grouped MAP01 was not finished: {finished}")

    for path, before in sources.items():
        if digest(path) != before:
            failures.append(f"{path} changed")
    for failure in failures:
        print("FAIL", failure)
    print(f"made IWAD and grouped PWAD checked, {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
