// kelvar-cli picture: export a picture or texture to a file, import a picture file as a lump.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/LumpKind.h"

#include <optional>
#include <string>
#include <vector>

namespace kelvar::cli
{

/// picture export IWAD [PWAD...] NAME -o FILE.png|.bmp|.pcx [--texture];
/// picture import IWAD [PWAD...] FILE -o OUT.wad [--name NAME] [--as patch|sprite|flat].
int PictureCommand(const std::vector<std::string>& arguments);

/// The lump kind a picture is imported as, from the word of --as: patch, sprite or flat;
/// nothing for any other word.
std::optional<gfx::LumpKind> PictureKindOfWord(const std::string& word);

} // namespace kelvar::cli
