#!/usr/bin/python3
# Prints a WAD as omgifol reads it: "E name hexdata" for each directory entry in order, then
# "M name lump lump ..." for each level its map reader finds.
import sys
import omg
from omg.wadio import WadIO

path = sys.argv[1]
wadio = WadIO(path)
for index, entry in enumerate(wadio.entries):
    print("E", entry.name, wadio.read(index).hex() or "-")
wadio.close()
for name, group in omg.WAD(path).maps.items():
    print("M", name, " ".join(lump for lump in group.keys() if lump != "_HEADER_"))
