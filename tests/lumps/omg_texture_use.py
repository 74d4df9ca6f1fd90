#!/usr/bin/python3
# Prints the names the texture tools read and change, as omgifol reads a WAD, one a line:
#   F map sector floor ceiling          each Sector's flats (levels without SECTORS print none)
#   W map side upper lower middle       each SideDef's wall names
#   T name width height patch...        each TEXTURE1/TEXTURE2 texture, its patches by PNAMES name
#   P name                              each PNAMES entry
#   L name                              each flat between the flat markers
import struct
import sys

import omg
import omg.txdef


def name(raw):
    return raw.split(b"\0")[0].decode("ascii", "replace") or "<>"


wad = omg.WAD(sys.argv[1])
for level, group in wad.maps.items():
    if "SECTORS" in group:
        data = group["SECTORS"].data
        for i in range(len(data) // 26):
            _, _, floor, ceiling, _, _, _ = struct.unpack_from("<hh8s8shHH", data, i * 26)
            print("F", level, i, name(floor), name(ceiling))
    if "SIDEDEFS" in group:
        data = group["SIDEDEFS"].data
        for i in range(len(data) // 30):
            _, _, upper, lower, middle, _ = struct.unpack_from("<hh8s8s8sH", data, i * 30)
            print("W", level, i, name(upper), name(lower), name(middle))
if "PNAMES" in wad.txdefs:
    for texture_name, texture in omg.txdef.Textures(wad.txdefs).items():
        patches = " ".join(patch.name for patch in texture.patches)
        print("T", texture_name, texture.width, texture.height, patches)
    pnames = wad.txdefs["PNAMES"].data
    for i in range(struct.unpack_from("<i", pnames)[0]):
        print("P", name(pnames[4 + 8 * i : 12 + 8 * i]))
for flat in wad.flats.keys():
    print("L", flat)
