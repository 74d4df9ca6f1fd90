// kelvar-cli palette: PLAYPAL exported as a palette file or a swatch, COLORMAP built from PLAYPAL.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::cli
{

/// kelvar-cli palette export|build IWAD [PWAD...] -o FILE [--palette N]
int PaletteCommand(const std::vector<std::string>& arguments);

} // namespace kelvar::cli
