// kelvar-cli commands over the game definitions: types.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::cli
{

/// kelvar-cli types GAME things|lines|sectors [--opt FILE]: the type table of a game after the
/// OPT file's overlay, one row a line, with the category headings.
int ListTypes(const std::vector<std::string>& arguments);

} // namespace kelvar::cli
