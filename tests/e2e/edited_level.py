#!/usr/bin/python3
# A Freedoom 2 level edited through `kelvar-cli edit` and saved with nodes: a door made from a
# Sector, two LineDefs split, a Vertex deleted with its LineDefs joined, a wall deleted with
# its two Sectors joined, a Thing deleted. omgifol reads back what each command should have
# done, dsda-doom plays the level, and the same script with every step undone saves the
# level's objects unchanged.
# usage: edited_level.py KELVAR_CLI WORKDIR
# SPDX-License-Identifier: GPL-3.0-or-later
import os
import sys

import omg

from nodes_and_engine import edit_level, played_and_undone

IWAD = "/usr/share/games/doom/freedoom2.wad"
LEVEL = "MAP01"


def two_sided(editor, line):
    return line.front != 0xFFFF and line.back != 0xFFFF


def sector_of(editor, side):
    return editor.sidedefs[side].sector


def door_sector(editor):
    """A Sector with exactly two two-sided LineDefs, whose neighbours are two other Sectors."""
    for sector in range(len(editor.sectors)):
        lines = [l for l in editor.linedefs
                 if sector in (sector_of(editor, l.front),
                               sector_of(editor, l.back) if l.back != 0xFFFF else None)]
        shared = [l for l in lines if two_sided(editor, l)]
        if len(shared) == 2 and len(lines) >= 4 and all(
                sector_of(editor, l.front) != sector_of(editor, l.back) for l in shared):
            return sector
    raise RuntimeError("no Sector fit for a door")


def joinable_vertex(editor):
    """A Vertex where exactly one LineDef ends and one starts, both one-sided."""
    for vertex in range(len(editor.vertexes)):
        ending = [i for i, l in enumerate(editor.linedefs) if l.vx_b == vertex]
        starting = [i for i, l in enumerate(editor.linedefs) if l.vx_a == vertex]
        if len(ending) == 1 and len(starting) == 1 and ending != starting and all(
                not two_sided(editor, editor.linedefs[i]) for i in ending + starting):
            return vertex
    raise RuntimeError("no Vertex fit for a join")


def joinable_wall(editor, avoid):
    """A two-sided LineDef above 1 between two different Sectors, neither in `avoid`."""
    for i, l in enumerate(editor.linedefs):
        if i > 1 and two_sided(editor, l):
            front, back = sector_of(editor, l.front), sector_of(editor, l.back)
            if front != back and front not in avoid and back not in avoid:
                return i
    raise RuntimeError("no wall fit for a join")


def main():
    cli, work = sys.argv[1], sys.argv[2]
    os.makedirs(work, exist_ok=True)
    before = omg.MapEditor(omg.WAD(IWAD).maps[LEVEL])
    door = door_sector(before)
    vertex = joinable_vertex(before)
    wall = joinable_wall(before, {door})
    # In an order that keeps the numbers taken from the file true: the door changes no
    # numbering, the wall's join drops a LineDef and a Sector above those used later, the
    # splits append, and the last Thing goes last.
    script = (f"mode sectors; select {door}; misc 4; "
              f"mode linedefs; select {wall}; misc 5; "
              f"mode linedefs; select 0 1; misc 3; "
              f"mode vertexes; select {vertex}; delete; "
              f"mode things; select {len(before.things) - 1}; delete")
    steps = 5  # the commands that take an undo step: misc, misc, misc, delete, delete
    failures = []

    out = os.path.join(work, "edited.wad")
    run = edit_level(cli, work, IWAD, LEVEL, out, script)
    if run.returncode != 0 or "Result: nodes built" not in run.stderr:
        print(f"FAIL edit exit {run.returncode}\n{run.stdout}\n{run.stderr[-2000:]}")
        return 1
    after = omg.MapEditor(omg.WAD(out).maps[LEVEL])
    if len(after.linedefs) != len(before.linedefs) + 2 - 1 - 1:
        failures.append(f"{len(after.linedefs)} LineDefs, {len(before.linedefs)} before: two "
                        "splits, a join at a Vertex and a deleted wall leave the count")
    if len(after.things) != len(before.things) - 1:
        failures.append("the Thing was not deleted")
    if len(after.sectors) != len(before.sectors) - 1:
        failures.append("the joined Sectors did not become one")
    doors = [l for l in after.linedefs if l.action == 1]
    if len(doors) < 2 or any(l.flags & 4 == 0 for l in doors):
        failures.append(f"{len(doors)} door LineDefs")
    closed = [s for s in after.sectors if s.z_floor == s.z_ceil and s.tx_ceil == "FLAT20"]
    if not closed:
        failures.append("no closed door Sector")
    failures += played_and_undone(cli, work, IWAD, LEVEL, out, script, steps, before)

    for failure in failures:
        print("FAIL " + failure)
    print(f"edited {LEVEL}: door from Sector {door}, join at Vertex {vertex}, wall {wall} "
          f"deleted; {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
