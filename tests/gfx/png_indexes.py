#!/usr/bin/python3
# Turns palette PNGs into raw index files for the picture tests: OUT/<name>.idx per PNG.
# SPDX-License-Identifier: GPL-3.0-or-later
#
# usage: png_indexes.py IN_DIR OUT_DIR
# Each .idx holds width, height, left and top offset (little-endian i32), then width * height
# palette indexes, top row first. The offsets come from the PNG's grAb chunk; deutex leaves it
# out for most graphics and lists their offsets in IN_DIR/wadinfo.txt instead ("NAME x y").
import os
import struct
import sys

from PIL import Image


def grab_offsets(path):
    with open(path, 'rb') as f:
        data = f.read()
    at = 8
    while at + 8 <= len(data):
        length, kind = struct.unpack_from('>I4s', data, at)
        if kind == b'grAb':
            return struct.unpack_from('>ii', data, at + 8)
        if kind == b'IDAT':
            break
        at += 12 + length
    return None


def listed_offsets(source):
    offsets = {}
    path = os.path.join(source, 'wadinfo.txt')
    if os.path.exists(path):
        for line in open(path):
            words = line.split()
            if len(words) == 3 and not line.startswith('#'):
                offsets[words[0].lower()] = (int(words[1]), int(words[2]))
    return offsets


def main():
    source, target = sys.argv[1], sys.argv[2]
    os.makedirs(target, exist_ok=True)
    listed = listed_offsets(source)
    for folder, _, files in os.walk(source):
        for name in files:
            if not name.endswith('.png'):
                continue
            path = os.path.join(folder, name)
            image = Image.open(path)
            if image.mode != 'P':
                sys.exit('%s: not a palette picture' % path)
            left, top = grab_offsets(path) or listed.get(name[:-4], (0, 0))
            head = struct.pack('<iiii', image.width, image.height, left, top)
            with open(os.path.join(target, name[:-4] + '.idx'), 'wb') as out:
                out.write(head + image.tobytes())


if __name__ == '__main__':
    main()
