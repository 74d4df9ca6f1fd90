#!/usr/bin/python3
# Every level of the Freedoom IWADs goes through `kelvar-cli save` into a PWAD of its own;
# omgifol, a second reader, must find the same level: with no change the ten level lumps are
# byte copies of the IWAD's, and MapEditor decodes the same objects from both.
# usage: save_roundtrip.py KELVAR_CLI WORKDIR [IWAD...]
# SPDX-License-Identifier: GPL-3.0-or-later
import sys

import omg
import omg.mapedit

from freedoom_saves import saved_levels

LUMPS = ["THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SEGS", "SSECTORS", "NODES", "SECTORS",
         "REJECT", "BLOCKMAP"]


def objects(group):
    editor = omg.MapEditor(group)
    return {name: [item.pack() for item in getattr(editor, name)]
            for name in ("things", "linedefs", "sidedefs", "vertexes", "sectors")}


def main():
    cli, work = sys.argv[1], sys.argv[2]
    failures = 0
    levels = 0
    for iwad, source, name, out, run in saved_levels(cli, work, sys.argv[3:]):
        levels += 1
        if run.returncode != 0:
            print(f"FAIL {iwad} {name}: exit {run.returncode}\n{run.stderr}")
            failures += 1
            continue
        saved = omg.WAD(out)
        if list(saved.maps.keys()) != [name]:
            print(f"FAIL {name}: levels in the PWAD {list(saved.maps.keys())}")
            failures += 1
            continue
        original, copy = source.maps[name], saved.maps[name]
        for lump in LUMPS:
            if original[lump].data != copy[lump].data:
                print(f"FAIL {iwad} {name}: {lump} differs")
                failures += 1
        if objects(original) != objects(copy):
            print(f"FAIL {iwad} {name}: objects differ")
            failures += 1
    print(f"{levels} levels saved, {failures} failures")
    return 1 if failures or levels == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
