// The menu rows and the views of them the window needs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Menus.h"

#include "app/Commands.h"
#include "app/RecentLists.h"
#include "app/ShellState.h"
#include "platform/Format.h"

namespace kelvar::app
{
namespace
{

constexpr MenuRow MenuTable[] = {
#include "res/Menus.inc"
};

// The rows of the popup that starts at `first`: its head and all deeper rows after it.
std::span<const MenuRow> PopupAt(std::size_t first)
{
    std::size_t end = first + 1;
    while (end < std::size(MenuTable) && MenuTable[end].Depth > 0)
    {
        ++end;
    }
    return std::span<const MenuRow>(MenuTable).subspan(first, end - first);
}

} // namespace

std::span<const MenuRow> MenuRows()
{
    return MenuTable;
}

bool IsMiscPopup(const MenuRow& row)
{
    return row.Depth == 0 && row.Command != 0;
}

std::span<const MenuRow> MiscPopupRows(int mode)
{
    for (std::size_t i = 0; i < std::size(MenuTable); ++i)
    {
        if (IsMiscPopup(MenuTable[i]) && MenuTable[i].Command == mode)
        {
            return PopupAt(i);
        }
    }
    return {};
}

std::vector<MenuRow> MenuBarRows(int mode)
{
    std::vector<MenuRow> rows;
    bool miscPlaced = false;
    for (std::size_t i = 0; i < std::size(MenuTable);)
    {
        const std::span<const MenuRow> popup = PopupAt(i);
        i += popup.size();
        if (!IsMiscPopup(popup.front()))
        {
            rows.insert(rows.end(), popup.begin(), popup.end());
        }
        else if (!miscPlaced)
        {
            // The first Misc popup's place is where the mode's popup goes.
            const std::span<const MenuRow> misc = MiscPopupRows(mode);
            rows.insert(rows.end(), misc.begin(), misc.end());
            miscPlaced = true;
        }
    }
    return rows;
}

std::string_view ShortcutText(const MenuRow& row)
{
    const std::size_t tab = row.Text.find('\t');
    return tab == std::string_view::npos ? std::string_view{} : row.Text.substr(tab + 1);
}

std::vector<RecentEntry> RecentPwadEntries()
{
    std::vector<RecentEntry> entries;
    const std::vector<std::string> names = RecentNames(Shell().Project.RecentPwads);
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        const int number = static_cast<int>(i) + 1;
        entries.push_back({number <= 9 ? platform::Format("&%d %s", number, names[i].c_str())
                                       : platform::Format("%d %s", number, names[i].c_str()),
                           static_cast<std::uint16_t>(CmdRecentPwadFirst + i)});
    }
    return entries;
}

} // namespace kelvar::app
