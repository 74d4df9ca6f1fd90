#!/usr/bin/python3
# Prints every level of a WAD as omgifol reads it, one record a line:
#   LEVEL name
#   T x y angle type flags
#   L start end flags action tag front back      (65535 for a missing side)
#   S xoffset yoffset upper lower normal sector
#   V x y
#   E floor ceiling floorflat ceilingflat light type tag
import sys
import omg

wad = omg.WAD(sys.argv[1])
for name in wad.maps:
    level = omg.MapEditor(wad.maps[name])
    print("LEVEL", name)
    for t in level.things:
        print("T", t.x, t.y, t.angle, t.type, t.flags)
    for l in level.linedefs:
        print("L", l.vx_a, l.vx_b, l.flags, l.action, l.tag, l.front, l.back)
    for s in level.sidedefs:
        print("S", s.off_x, s.off_y, s.tx_up or "<>", s.tx_low or "<>", s.tx_mid or "<>", s.sector)
    for v in level.vertexes:
        print("V", v.x, v.y)
    for e in level.sectors:
        print("E", e.z_floor, e.z_ceil, e.tx_floor or "<>", e.tx_ceil or "<>", e.light, e.type, e.tag)
