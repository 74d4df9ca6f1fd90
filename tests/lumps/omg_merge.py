#!/usr/bin/python3
# Prints a WAD as omgifol reads it, for the merge tests: "E name size crc32" for each directory
# entry in order, "M name lump lump ..." for each level its map reader finds, and
# "T name width height patch@x,y ..." for each texture of TEXTURE1 and TEXTURE2 with the names
# PNAMES gives its patches.
import sys
import zlib
import omg
import omg.txdef
from omg.wadio import WadIO

path = sys.argv[1]
wadio = WadIO(path)
for index, entry in enumerate(wadio.entries):
    print("E", entry.name, entry.size, zlib.crc32(wadio.read(index)) & 0xFFFFFFFF)
wadio.close()
wad = omg.WAD(path)
for name, group in wad.maps.items():
    print("M", name, " ".join(lump for lump in group.keys() if lump != "_HEADER_"))
if "PNAMES" in wad.txdefs:
    for name, texture in omg.txdef.Textures(wad.txdefs).items():
        patches = " ".join("%s@%d,%d" % (p.name, p.x, p.y) for p in texture.patches)
        print("T", name, texture.width, texture.height, patches)
