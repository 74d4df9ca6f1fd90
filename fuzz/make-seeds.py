#!/usr/bin/python3
# Writes the seed corpora of the fuzz targets into fuzz/corpus/: small real lumps of the
# Freedoom 2 IWAD, and files made here for the formats and cases Freedoom lacks.
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Run it again only to change the seeds; its output is kept in the repository, so that the
# corpus test and the fuzzers see the same inputs on every machine.
import io
import os
import struct
import sys

from PIL import Image

IWAD = '/usr/share/games/doom/freedoom2.wad'
ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'corpus')


def read_wad(path):
    data = open(path, 'rb').read()
    _, count, offset = struct.unpack('<4sii', data[:12])
    entries = []
    for i in range(count):
        pos, size, name = struct.unpack('<ii8s', data[offset + 16 * i:offset + 16 * i + 16])
        entries.append((name.rstrip(b'\0').decode('latin1'), data[pos:pos + size]))
    return entries


def build_wad(magic, lumps):
    body = b''
    directory = b''
    for name, data in lumps:
        directory += struct.pack('<ii8s', 12 + len(body), len(data), name.encode('latin1'))
        body += data
    return struct.pack('<4sii', magic, len(lumps), 12 + len(body)) + body + directory


def write(target, name, data):
    folder = os.path.join(ROOT, target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), 'wb') as out:
        out.write(data)


def lump(entries, name):
    return next(data for n, data in entries if n == name)


def patch_image(entries, name, palette):
    """A patch lump drawn as an RGB picture on black, for the picture file seeds."""
    data = lump(entries, name)
    width, height = struct.unpack('<hh', data[:4])
    image = Image.new('P', (width, height), 0)
    image.putpalette(palette)
    for x in range(width):
        at = struct.unpack('<I', data[8 + 4 * x:12 + 4 * x])[0]
        while data[at] != 255:
            row, count = data[at], data[at + 1]
            for i in range(count):
                if row + i < height:
                    image.putpixel((x, row + i), data[at + 3 + i])
            at += count + 4
    return image


def png_bytes(image, **options):
    out = io.BytesIO()
    image.save(out, 'PNG', **options)
    return out.getvalue()


def with_grab(png, x, y):
    """Puts a grAb chunk holding the offsets after the IHDR chunk."""
    import zlib
    chunk = b'grAb' + struct.pack('>ii', x, y)
    grab = struct.pack('>I', 8) + chunk + struct.pack('>I', zlib.crc32(chunk))
    return png[:33] + grab + png[33:]


def picture_seeds(entries, palette):
    for name in ('PUFFA0', 'PL_01', 'CLIPA0', 'MISLA1'):
        write('pictures', name.lower() + '.lmp', lump(entries, name))
    write('pictures', 'flat.lmp', lump(entries, 'FLOOR0_1'))
    raw = bytes((x * 7 + y * 3) & 255 for y in range(12) for x in range(10))
    write('pictures', 'flatleg.lmp', struct.pack('<hhhh', 10, 12, 0, 0) + raw)
    write('pictures', 'imgz.lmp', b'IMGZ' + struct.pack('<HHhh', 10, 12, 2, 3) + bytes(8) + raw)
    small = patch_image(entries, 'CLIPA0', palette)
    write('pictures', 'png.lmp', with_grab(png_bytes(small), -3, 7))
    # A tall patch: one column of 300 rows in two posts, the second counted on from the first.
    column = bytes([0, 254, 0]) + bytes(range(254)) + bytes([0, 254, 46, 0]) + bytes(46) + b'\0\xff'
    write('pictures', 'tall.lmp', struct.pack('<hhhhI', 1, 300, 0, 0, 12) + column)


def picture_file_seeds(entries, palette):
    indexed = patch_image(entries, 'CLIPA0', palette)
    rgb = indexed.convert('RGB')
    for name, image, kind in (('p8.bmp', indexed, 'BMP'), ('rgb24.bmp', rgb, 'BMP'),
                              ('p8.pcx', indexed, 'PCX')):
        out = io.BytesIO()
        image.save(out, kind)
        write('picture_files', name, out.getvalue())
    four = indexed.quantize(16)
    out = io.BytesIO()
    four.save(out, 'BMP', bits=4)
    write('picture_files', 'p4.bmp', out.getvalue())
    out = io.BytesIO()
    indexed.convert('1').save(out, 'BMP')
    write('picture_files', 'mono.bmp', out.getvalue())
    out = io.BytesIO()
    rgb.convert('RGBA').save(out, 'BMP')
    write('picture_files', 'rgba32.bmp', out.getvalue())
    write('picture_files', 'p8.png', with_grab(png_bytes(indexed, transparency=0), 4, -2))
    write('picture_files', 'gray.png', png_bytes(indexed.convert('L')))
    write('picture_files', 'rgba.png', png_bytes(rgb.convert('RGBA')))
    write('picture_files', 'p4.png', png_bytes(four, bits=4))


def palette_seeds(entries):
    playpal = lump(entries, 'PLAYPAL')
    write('palette_files', 'game.pac', playpal[:768])
    text = 'JASC-PAL\r\n0100\r\n256\r\n' + ''.join(
        '%d %d %d\r\n' % tuple(playpal[3 * i:3 * i + 3]) for i in range(256))
    write('palette_files', 'game.pal', text.encode())
    write('palette_files', 'short.pal', b'JASC-PAL\n0100\n16\n' +
          b''.join(b'%d %d %d\n' % (i, 255 - i, i * 15) for i in range(16)))
    write('palette_files', 'playpal2.lmp', playpal[:1536])
    write('palette_files', 'colormap2.lmp', lump(entries, 'COLORMAP')[:512])


def texture_seeds(entries):
    pnames = lump(entries, 'PNAMES')
    count = 24
    write('textures', 'pnames.lmp', struct.pack('<i', count) + pnames[4:4 + 8 * count])
    texture1 = lump(entries, 'TEXTURE1')
    offsets = struct.unpack('<%di' % 12, texture1[4:4 + 48])
    records = []
    for offset in offsets:
        patches = struct.unpack('<h', texture1[offset + 20:offset + 22])[0]
        record = bytearray(texture1[offset:offset + 22 + 10 * patches])
        for i in range(patches):
            # Keep the patch numbers within the short PNAMES above.
            at = 22 + 10 * i + 4
            record[at:at + 2] = struct.pack('<h', struct.unpack('<h', record[at:at + 2])[0] % count)
        records.append(bytes(record))
    write('textures', 'texture1.lmp', table_lump(records))
    # The older Strife layout: an 18-byte head without the column directory, 6-byte patches.
    strife = []
    for record in records[:6]:
        patches = struct.unpack('<h', record[20:22])[0]
        head = record[:16] + record[20:22]
        strife.append(head + b''.join(record[22 + 10 * i:22 + 10 * i + 6] for i in range(patches)))
    write('textures', 'strife.lmp', table_lump(strife))


def table_lump(records):
    offset = 4 + 4 * len(records)
    table = struct.pack('<i', len(records))
    for record in records:
        table += struct.pack('<i', offset)
        offset += len(record)
    return table + b''.join(records)


def wav(rate, channels, bits, frames):
    data = bytes(frames)
    block = channels * bits // 8
    return (b'RIFF' + struct.pack('<I', 36 + len(data)) + b'WAVEfmt ' +
            struct.pack('<IHHIIHH', 16, 1, channels, rate, rate * block, block, bits) +
            b'data' + struct.pack('<I', len(data)) + data)


def sound_seeds(entries):
    itemup = lump(entries, 'DSITEMUP')
    write('sounds', 'dsitemup.lmp', itemup)
    write('sounds', 'dspedth.lmp', lump(entries, 'DSPEDTH'))
    samples = itemup[8:8 + 600]
    write('sounds', 'mono8.wav', wav(11025, 1, 8, samples))
    stereo = b''.join(struct.pack('<hh', (s - 128) * 256, (128 - s) * 256) for s in samples[:200])
    write('sounds', 'stereo16.wav', wav(22050, 2, 16, stereo))


def mus_seed():
    events = bytes([
        0x40, 0x00, 0x30,       # controller 0: instrument 48, channel 0
        0x90, 0xBC, 0x64, 0x10,  # play note 60 at volume 100, then wait 16
        0x20, 0x50,             # pitch wheel
        0x84, 0x03, 0x70, 0x08,  # controller 3 (volume) 112, wait 8
        0x9F, 0x24, 0x20,       # percussion note 36, wait 32
        0x00, 0x3C,             # release note 60
        0x30, 0x0C,             # system event 12 (mono)
        0x60,                   # score end
    ])
    instruments = struct.pack('<HH', 48, 135)
    header = b'MUS\x1a' + struct.pack('<HHHHHH', len(events), 16 + len(instruments), 1, 0, 2, 0)
    return header + instruments + events


def midi_seed():
    track = bytes([0x00, 0xFF, 0x51, 0x03, 0x07, 0xA1, 0x20, 0x00, 0xC0, 0x10, 0x00, 0x90, 0x3C,
                   0x60, 0x60, 0x3C, 0x00, 0x00, 0xB0, 0x07, 0x50, 0x10, 0xE0, 0x00, 0x40,
                   0x00, 0xF0, 0x03, 0x7E, 0x7F, 0xF7, 0x00, 0xFF, 0x2F, 0x00])
    return (b'MThd' + struct.pack('>IHHH', 6, 0, 1, 96) + b'MTrk' + struct.pack('>I', len(track)) +
            track)


def music_seeds(entries):
    write('music', 'd_dead2.mid', lump(entries, 'D_DEAD2'))
    write('music', 'small.mus', mus_seed())
    midi = midi_seed()
    write('music', 'small.mid', midi)
    write('music', 'small.rmi', b'RIFF' + struct.pack('<I', len(midi) + 12) + b'RMIDdata' +
          struct.pack('<I', len(midi)) + midi)


def room_level(hexen):
    """One square room: four vertices, four one-sided lines, one sector, one thing."""
    vertexes = b''.join(struct.pack('<hh', x, y) for x, y in ((0, 0), (0, 128), (128, 128), (128, 0)))
    if hexen:
        things = struct.pack('<hhhhhhhBBBBBB', 1, 64, 64, 0, 90, 1, 0x07E7, 0, 0, 0, 0, 0, 0)
        lines = b''.join(struct.pack('<hhhBBBBBBhh', i, (i + 1) % 4, 1, 0, 0, 0, 0, 0, 0, i, -1)
                         for i in range(4))
    else:
        things = struct.pack('<hhhhh', 64, 64, 90, 1, 7)
        lines = b''.join(struct.pack('<hhhhhhh', i, (i + 1) % 4, 1, 0, 0, i, -1) for i in range(4))
    sides = b''.join(struct.pack('<hh8s8s8sh', 0, 0, b'-', b'-', b'STARTAN3', 0) for _ in range(4))
    sectors = struct.pack('<hh8s8shhh', 0, 128, b'FLOOR0_1', b'CEIL1_1', 160, 0, 0)
    lumps = [('THINGS', things), ('LINEDEFS', lines), ('SIDEDEFS', sides),
             ('VERTEXES', vertexes), ('SEGS', b''), ('SSECTORS', b''), ('NODES', b''),
             ('SECTORS', sectors), ('REJECT', b'\0'), ('BLOCKMAP', b'')]
    if hexen:
        lumps.append(('BEHAVIOR', b'ACS\0' + struct.pack('<I', 8)))
    return lumps


def level_seeds(entries):
    write('level', 'room.wad', build_wad(b'PWAD', [('MAP01', b'')] + room_level(False)))
    write('level', 'hexen.wad', build_wad(b'PWAD', [('MAP01', b'')] + room_level(True)))
    broken = room_level(False)
    # Line 2 names vertex 9 and side 7, neither of which exist; side 3 names sector 5.
    lines = bytearray(broken[1][1])
    lines[28:30] = struct.pack('<h', 9)
    lines[38:40] = struct.pack('<h', 7)
    sides = bytearray(broken[2][1])
    sides[3 * 30 + 28:3 * 30 + 30] = struct.pack('<h', 5)
    broken[1] = ('LINEDEFS', bytes(lines))
    broken[2] = ('SIDEDEFS', bytes(sides))
    write('level', 'broken.wad', build_wad(b'IWAD', [('E1M1', b'')] + broken))
    names = [name for name, _ in entries]
    start = names.index('MAP30')
    real = [(name, data) for name, data in entries[start + 1:start + 11]
            if name in ('THINGS', 'LINEDEFS', 'SIDEDEFS', 'VERTEXES', 'SECTORS')]
    write('level', 'map30.wad', build_wad(b'PWAD', [('MAP30', b'')] + real))


def wad_seeds(entries):
    playpal = lump(entries, 'PLAYPAL')[:768]
    iwad = [('PLAYPAL', playpal), ('MAP01', b'')] + room_level(False) + [
        ('S_START', b''), ('PUFFA0', lump(entries, 'PUFFA0')), ('S_END', b''),
        ('F_START', b''), ('F1_START', b''), ('FLOOR0_1', lump(entries, 'FLOOR0_1')[:256]),
        ('F1_END', b''), ('F_END', b'')]
    write('wad', 'small.iwad', build_wad(b'IWAD', iwad))
    pwad = [('PUFFA0', lump(entries, 'PUFFA0')), ('MAP02', b'')] + room_level(False) + [
        ('FF_START', b''), ('FLOOR0_1', bytes(64)), ('FF_END', b''),
        ('TX_START', b''), ('WALLPIC', lump(entries, 'CLIPA0')), ('TX_END', b'')]
    write('wad', 'small.pwad', build_wad(b'PWAD', pwad))
    damaged = bytearray(build_wad(b'PWAD', [('GOOD', b'data'), ('HUGE', b'x' * 8), ('LOST', b'x')]))
    directory = struct.unpack('<i', damaged[8:12])[0]
    damaged[directory + 16 + 4:directory + 16 + 8] = struct.pack('<i', 99999)
    write('wad', 'damaged.pwad', bytes(damaged))


def main():
    entries = read_wad(sys.argv[1] if len(sys.argv) > 1 else IWAD)
    playpal = lump(entries, 'PLAYPAL')[:768]
    picture_seeds(entries, playpal)
    picture_file_seeds(entries, playpal)
    palette_seeds(entries)
    texture_seeds(entries)
    sound_seeds(entries)
    music_seeds(entries)
    wad_seeds(entries)
    level_seeds(entries)


if __name__ == '__main__':
    main()
