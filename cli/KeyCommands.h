// kelvar-cli commands over the key table: keys.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::cli
{

/// kelvar-cli keys [--menus]: the shortcut list, one key a line: the key, the command number,
/// whether its work is built, and the name. With --menus, the menu bar of each edit mode
/// instead, one entry a line, indented by depth.
int ListKeys(const std::vector<std::string>& arguments);

} // namespace kelvar::cli
