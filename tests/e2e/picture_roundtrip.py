#!/usr/bin/python3
# Pictures out of freedoom2.wad and back in through `kelvar-cli picture`: sprites, patches, flats
# and a full-screen picture exported as PNG, BMP and PCX and imported again keep every pixel (as
# omgifol decodes them) and, through PNG, their offsets. A lump Kelvar wrote comes back byte for
# byte from a second export and import; flats, which have no padding, from the first.
# usage: picture_roundtrip.py KELVAR_CLI WORKDIR
# SPDX-License-Identifier: GPL-3.0-or-later
import os
import subprocess
import sys

import omg

IWAD = "/usr/share/games/doom/freedoom2.wad"
SPRITES = ["PLAYA1", "SARGA1", "BON1A0", "CLIPA0", "TROOA1", "BAR1A0", "MISLA1"]
PATCHES = ["WALL00_1", "DOOR2_4", "SW1S0", "AG128_1"]
FLATS = ["FLOOR4_8", "CEIL3_5", "NUKAGE1"]


def lump_of(path, name):
    """A lump of a PWAD by name, in whichever group omgifol sorts it into."""
    wad = omg.WAD(path)
    for group in (wad.data, wad.graphics, wad.sprites, wad.patches, wad.flats):
        if name in group:
            return group[name]
    raise KeyError(name)


def cli(program, *words):
    return subprocess.run([program, *words], capture_output=True, text=True)


def pixels(lump, flat):
    if flat:
        return bytes(lump.data)
    graphic = omg.Graphic(lump.data)
    return (graphic.width, graphic.height, graphic.x_offset, graphic.y_offset,
            graphic.to_raw(tran_index=251))


def roundtrip(program, work, name, lump, kind, extension, failures):
    flat = kind == "flat"
    picture = os.path.join(work, f"{name}{extension}")
    out = os.path.join(work, f"{name}{extension}.wad")
    for run in (cli(program, "picture", "export", IWAD, name, "-o", picture),
                cli(program, "picture", "import", IWAD, picture, "-o", out, "--as", kind)):
        if run.returncode != 0:
            failures.append(f"{name}{extension}: {run.stderr.strip()}")
            return None
    back = lump_of(out, name)
    want, got = pixels(lump, flat), pixels(back, flat)
    if extension != ".png" and not flat:
        want, got = want[:2] + want[4:], got[:2] + got[4:]  # BMP and PCX carry no offsets
    if want != got:
        failures.append(f"{name}{extension}: the pictures differ")
    return back


def main():
    program, work = sys.argv[1], sys.argv[2]
    os.makedirs(work, exist_ok=True)
    wad = omg.WAD(IWAD)
    failures = []
    checked = 0
    for names, group, kind in ((SPRITES, wad.sprites, "sprite"), (PATCHES, wad.patches, "patch"),
                               (FLATS, wad.flats, "flat"), (["TITLEPIC"], wad.graphics, "patch")):
        for name in names:
            for extension in (".png", ".bmp", ".pcx"):
                back = roundtrip(program, work, name, group[name], kind, extension, failures)
                checked += 1
                if back is None or extension != ".png":
                    continue
                if kind == "flat" and bytes(back.data) != bytes(group[name].data):
                    failures.append(f"{name}: the flat's bytes changed")
                # A second trip from the lump Kelvar wrote gives its bytes back exactly.
                pwad = os.path.join(work, f"{name}.png.wad")
                again = os.path.join(work, f"{name}.again.png")
                final = os.path.join(work, f"{name}.again.wad")
                cli(program, "picture", "export", IWAD, pwad, name, "-o", again)
                cli(program, "picture", "import", IWAD, again, "-o", final, "--as", kind,
                    "--name", name)
                if bytes(lump_of(final, name).data) != bytes(back.data):
                    failures.append(f"{name}: a second export and import changed the lump")
    refused = cli(program, "picture", "export", IWAD, "NOSUCHPC", "-o", os.path.join(work, "x.png"))
    if refused.returncode != 2 or "neither a picture lump nor a texture" not in refused.stderr:
        failures.append(f"an unknown name: exit {refused.returncode} {refused.stderr.strip()}")
    for failure in failures:
        print("FAIL " + failure)
    print(f"{checked} pictures out and back: {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
