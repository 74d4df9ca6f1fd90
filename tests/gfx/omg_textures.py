#!/usr/bin/python3
# Prints every texture of a WAD's TEXTURE1 and TEXTURE2 as omgifol reads them, one a line:
#   name width height patchcount
import sys
import omg
import omg.txdef

wad = omg.WAD(sys.argv[1])
textures = omg.txdef.Textures(wad.txdefs)
for name, texture in textures.items():
    print(name, texture.width, texture.height, len(texture.patches))
