// The menus of the main window as rows: the menu bar and the Misc popup of each edit mode.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The rows come from res/Menus.inc. The window builds its menus from them in one loop:
// depth 0 is a popup of the bar, a deeper row with command 0 a sub-popup of the deeper rows
// after it, an empty text a separator. The four "M&isc" popups carry the mode they serve
// and stand in the bar one at a time, at MiscPopupPosition.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::app
{

/// One row of a menu.
struct MenuRow
{
    int Depth;
    std::string_view Text;
    std::uint16_t Command; // 0 for a popup or a separator; a depth-0 Misc popup: its mode
};

/// Where the mode's Misc popup stands in the menu bar, counting from 0.
inline constexpr int MiscPopupPosition = 4;

/// All menu rows, Misc popups included, in file order.
std::span<const MenuRow> MenuRows();

/// The rows of the menu bar with the Misc popup of `mode` in its place and the others left
/// out: what the window shows in that mode.
std::vector<MenuRow> MenuBarRows(int mode);

/// The Misc popup of a mode: its depth-0 row "M&isc" and its entries.
std::span<const MenuRow> MiscPopupRows(int mode);

/// True for a row that is a Misc popup's head.
bool IsMiscPopup(const MenuRow& row);

/// The shortcut a row shows after its "\t", or empty.
std::string_view ShortcutText(const MenuRow& row);

/// An entry of the recent PWADs popup: "&1 NAME" ... for the newest nine, then "10 NAME" ...,
/// with the commands 6001 upward.
struct RecentEntry
{
    std::string Text;
    std::uint16_t Command;
};

/// The entries of the recent PWADs popup, from the project's list.
std::vector<RecentEntry> RecentPwadEntries();

} // namespace kelvar::app
