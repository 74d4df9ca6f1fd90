#!/usr/bin/python3
# Rooms drawn into a Freedoom 2 level through `kelvar-cli edit`: three rooms in open space (one
# clockwise, one anticlockwise, one inside another), a line drawn from wall to wall that splits
# a room, then a room dragged, turned and scaled. Saved with nodes, omgifol reads back that
# every new room is a closed Sector whose sides face in, dsda-doom plays the level, and the same
# script with every step undone saves the level's objects unchanged.
# usage: drawn_rooms.py KELVAR_CLI WORKDIR
# SPDX-License-Identifier: GPL-3.0-or-later
import os
import sys

import omg

from nodes_and_engine import edit_level, played_and_undone

IWAD = "/usr/share/games/doom/freedoom2.wad"
LEVEL = "MAP01"


def sector_at(editor, x, y):
    """The Sector of the side facing (x, y) across the nearest LineDef east of it."""
    best, found = None, None
    for line in editor.linedefs:
        a, b = editor.vertexes[line.vx_a], editor.vertexes[line.vx_b]
        if (y < a.y) == (y < b.y):
            continue
        cross = a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y)
        if cross > x and (best is None or cross < best):
            best = cross
            side = line.front if a.y > b.y else line.back
            found = editor.sidedefs[side].sector if side != 65535 else None
    return found


def main():
    cli, work = sys.argv[1], sys.argv[2]
    os.makedirs(work, exist_ok=True)
    before = omg.MapEditor(omg.WAD(IWAD).maps[LEVEL])
    script = ("draw 4000,4000 4000,4256 4256,4256 4256,4000; "        # clockwise
              "draw 5000,4000 5256,4000 5256,4256 5000,4256; "        # anticlockwise
              "draw 6000,4000 6000,4512 6512,4512 6512,4000; "
              "draw 6128,4128 6128,4384 6384,4384 6384,4128; "        # a room in the room
              "draw 4000,4128 4256,4128; "                            # splits the first room
              "mode sectors; select 199; drag 0 -512; "              # the second room
              "mode vertexes; box 4990 3478 5270 3758; rotate 90; scale 1.5")
    steps = 8
    failures = []
    out = os.path.join(work, "drawn.wad")
    run = edit_level(cli, work, IWAD, LEVEL, out, script)
    if run.returncode != 0 or "Result: nodes built" not in run.stderr:
        print(f"FAIL edit exit {run.returncode}\n{run.stdout}\n{run.stderr[-2000:]}")
        return 1
    after = omg.MapEditor(omg.WAD(out).maps[LEVEL])
    new_sectors = len(after.sectors) - len(before.sectors)
    if new_sectors != 5:
        failures.append(f"{new_sectors} new Sectors, 5 wanted")
    # Points inside each room and outside all of them.
    probes = {"first room, south half": (4100, 4050), "first room, north half": (4100, 4200),
              "second room": (5128, 3616), "big room": (6050, 4050), "inner room": (6256, 4256)}
    seen = {}
    for name, (x, y) in probes.items():
        sector = sector_at(after, x, y)
        if sector is None or sector < len(before.sectors):
            failures.append(f"{name} at {x},{y}: Sector {sector}")
        seen[name] = sector
    if len(set(seen.values())) != len(seen):
        failures.append(f"rooms share Sectors: {seen}")
    for x, y in ((4500, 4100), (5128, 4128)):
        if sector_at(after, x, y) is not None:
            failures.append(f"open space at {x},{y} has a Sector")
    # The second room, turned a quarter and half as large again about its middle.
    corners = sorted((v.x, v.y) for v in after.vertexes
                     if 4800 <= v.x <= 5500 and 3300 <= v.y <= 3900)
    if corners != [(4936, 3424), (4936, 3808), (5320, 3424), (5320, 3808)]:
        failures.append(f"the turned and scaled room's corners: {corners}")
    failures += played_and_undone(cli, work, IWAD, LEVEL, out, script, steps, before)

    for failure in failures:
        print("FAIL " + failure)
    print(f"drawn rooms in {LEVEL}: {new_sectors} new Sectors; {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
