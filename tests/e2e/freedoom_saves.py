# Shared by the end-to-end scripts: every level of the Freedoom IWADs saved through
# `kelvar-cli save` into a PWAD of its own.
# SPDX-License-Identifier: GPL-3.0-or-later
import os
import subprocess

import omg

FREEDOOM = ["/usr/share/games/doom/freedoom1.wad", "/usr/share/games/doom/freedoom2.wad"]


def saved_levels(cli, work, iwads, *options):
    """Yields (iwad, source WAD, level name, output path, finished kelvar-cli run) for every
    level of `iwads` (the Freedoom IWADs when empty), saved with `options`."""
    os.makedirs(work, exist_ok=True)
    env = dict(os.environ, XDG_CONFIG_HOME=os.path.join(work, "config"))
    for iwad in iwads or FREEDOOM:
        source = omg.WAD(iwad)
        for name in sorted(source.maps.keys()):
            out = os.path.join(work, f"{os.path.basename(iwad)}-{name}.wad")
            if os.path.exists(out):
                os.remove(out)
            run = subprocess.run([cli, "save", iwad, name, "-o", out, *options], env=env,
                                 capture_output=True, text=True)
            yield iwad, source, name, out, run
