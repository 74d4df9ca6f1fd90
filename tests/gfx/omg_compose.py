#!/usr/bin/python3
# Composes every Nth texture of a WAD from omgifol's texture definitions and patch pictures,
# one a line: name width height pixels-as-hex (palette index 251 where no patch reaches).
# usage: omg_compose.py WAD EVERY
import sys
import omg
import omg.txdef

HOLE = 251
wad = omg.WAD(sys.argv[1])
every = int(sys.argv[2])
textures = omg.txdef.Textures(wad.txdefs)
pictures = {}
for number, (name, texture) in enumerate(textures.items()):
    if number % every:
        continue
    width, height = texture.width, texture.height
    canvas = bytearray([HOLE]) * (width * height)
    for placed in texture.patches:
        patch = placed.name.upper()
        if patch not in wad.patches:
            continue
        if patch not in pictures:
            graphic = wad.patches[patch]
            pictures[patch] = (graphic.width, graphic.height, graphic.to_raw(tran_index=HOLE))
        pw, ph, raw = pictures[patch]
        for row in range(ph):
            y = row + placed.y
            if not 0 <= y < height:
                continue
            for column in range(pw):
                x = column + placed.x
                pixel = raw[row * pw + column]
                if 0 <= x < width and pixel != HOLE:
                    canvas[y * width + x] = pixel
    print(name, width, height, canvas.hex())
