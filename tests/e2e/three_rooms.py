#!/usr/bin/python3
# A level made from nothing by `kelvar-cli edit --new`: three rooms in a row, a door drawn between
# the first two and made a door by its Sector command, the third room split by a drawn line that
# becomes a walk-over exit, and a player start put in by Insert. Saved with nodes, omgifol
# reads back each room and line as intended, and dsda-doom plays a demo that walks east, opens
# the door and crosses the exit; the same walk without opening the door never gets there.
# usage: three_rooms.py KELVAR_CLI WORKDIR
# SPDX-License-Identifier: GPL-3.0-or-later
import os
import sys

import omg

from nodes_and_engine import edit_level, level_finished

IWAD = "/usr/share/games/doom/freedoom2.wad"
LEVEL = "MAP01"
SCRIPT = ("draw 0,0 256,0 256,256 0,256; "            # room A
          "draw 288,0 544,0 544,256 288,256; "        # room B, a gap of 32 east of A
          "draw 256,96 288,96 288,160 256,160; "      # the door: its ends split both walls
          "draw 544,0 800,0 800,256 544,256; "        # room C, sharing B's east wall
          "draw 672,0 672,256; "                      # splits C
          "mode sectors; select 2; misc 4; "          # DOOR from Sector
          "mode linedefs; box 670 -10 674 266; set type 52; "
          "mode things; pointer 64 128; insert; set type 1; set angle 0; set flags 7")
WALK_TICS, FORWARD, USE_AT_DOOR = 200, 50, 24


def sides(editor, line):
    def sector(side):
        return None if side == 65535 else editor.sidedefs[side].sector
    return sector(line.front), sector(line.back)


def line_at(editor, a, b):
    for line in editor.linedefs:
        ends = {(editor.vertexes[line.vx_a].x, editor.vertexes[line.vx_a].y),
                (editor.vertexes[line.vx_b].x, editor.vertexes[line.vx_b].y)}
        if ends == {a, b}:
            return line
    return None


def check_level(level):
    failures = []
    if len(level.sectors) != 5:
        failures.append(f"{len(level.sectors)} Sectors, 5 wanted (A, B, door, two halves of C)")
    door = line_at(level, (256, 96), (256, 160)), line_at(level, (288, 96), (288, 160))
    exit_line = line_at(level, (672, 0), (672, 256))
    shared = line_at(level, (544, 0), (544, 256))
    for name, line in (("door's west face", door[0]), ("door's east face", door[1]),
                       ("exit line", exit_line), ("wall shared by B and C", shared)):
        if line is None:
            failures.append(f"no {name}")
        elif None in sides(level, line) or len(set(sides(level, line))) != 2:
            failures.append(f"the {name} is not two-sided between two Sectors: "
                            f"{sides(level, line)}")
    if None not in door and {line.action for line in door} != {1}:
        failures.append(f"door faces have types {[line.action for line in door]}, 1 wanted")
    if door[0] is not None and None not in sides(level, door[0]):
        inside = level.sectors[sides(level, door[0])[1]]
        if inside.z_ceil != inside.z_floor:
            failures.append(f"the door Sector is open: {inside.z_floor} to {inside.z_ceil}")
    if exit_line is not None and exit_line.action != 52:
        failures.append(f"exit line type {exit_line.action}, 52 wanted")
    starts = [(t.x, t.y, t.angle) for t in level.things if t.type == 1]
    if starts != [(64, 128, 0)]:
        failures.append(f"player starts {starts}, one at 64,128 facing east wanted")
    for line in level.linedefs:
        front, back = sides(level, line)
        if back is None and level.sidedefs[line.front].tx_mid == "-":
            failures.append(f"a one-sided line without a middle texture: {sides(level, line)}")
    return failures


def main():
    cli, work = sys.argv[1], sys.argv[2]
    os.makedirs(work, exist_ok=True)
    out = os.path.join(work, "rooms.wad")
    run = edit_level(cli, work, IWAD, LEVEL, out, SCRIPT, new_level=True)
    if run.returncode != 0 or "Result: nodes built" not in run.stderr:
        print(f"FAIL edit exit {run.returncode}\n{run.stdout}\n{run.stderr[-2000:]}")
        return 1
    failures = check_level(omg.MapEditor(omg.WAD(out).maps[LEVEL]))
    finished = level_finished(IWAD, out, LEVEL, work, WALK_TICS, FORWARD, (USE_AT_DOOR,))
    if finished != LEVEL:
        failures.append(f"the walk through the door did not reach the exit: {finished}")
    blocked = level_finished(IWAD, out, LEVEL, work, WALK_TICS, FORWARD, ())
    if blocked is not None:
        failures.append("the walk reached the exit without opening the door")
    for failure in failures:
        print("FAIL " + failure)
    print(f"three rooms and a door from nothing: {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
