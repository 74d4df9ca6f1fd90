#!/usr/bin/python3
# Prints a WAD's directory as omgifol reads it: one "name offset size" line per entry.
import sys
import omg

wad = omg.WadIO(sys.argv[1])
for entry in wad.entries:
    print(entry.name, entry.ptr, entry.size)
