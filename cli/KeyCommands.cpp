// kelvar-cli commands over the key table: keys.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/KeyCommands.h"

#include "app/Keys.h"
#include "app/Menus.h"
#include "app/Router.h"
#include "cli/Commands.h"
#include "view/InfoPane.h"

#include <cstdio>
#include <string>

namespace kelvar::cli
{
namespace
{

void PrintKeys()
{
    for (const app::KeyRow& row : app::KeyRows())
    {
        const std::string chord = app::ChordText({row.Key, row.Modifiers});
        const std::string name(row.Name);
        std::printf("%-15s %5u  %s  %s\n", chord.c_str(), row.Command,
                    app::IsCommandAvailable(row.Command) ? "   " : "(-)", name.c_str());
    }
}

// A menu text as it reads: the "\t" before the shortcut shown as blanks.
std::string Readable(std::string_view text)
{
    std::string out(text);
    const std::size_t tab = out.find('\t');
    if (tab != std::string::npos)
    {
        out.replace(tab, 1, out.size() < 40 ? std::string(40 - tab, ' ') : "  ");
    }
    return out;
}

void PrintMenus()
{
    for (const int mode : {1, 2, 4, 8})
    {
        std::printf("[%s]\n", view::ModeName(mode));
        for (const app::MenuRow& row : app::MenuBarRows(mode))
        {
            const std::string indent(static_cast<std::size_t>(row.Depth) * 4, ' ');
            if (row.Text.empty())
            {
                std::printf("%s----\n", indent.c_str());
            }
            else if (row.Depth == 0 || row.Command == 0)
            {
                std::printf("%s%s\n", indent.c_str(), Readable(row.Text).c_str());
            }
            else
            {
                std::printf("%s%-48s %5u%s\n", indent.c_str(), Readable(row.Text).c_str(),
                            row.Command, app::IsCommandAvailable(row.Command) ? "" : " (-)");
            }
        }
    }
}

} // namespace

int ListKeys(const std::vector<std::string>& arguments)
{
    if (arguments.empty())
    {
        PrintKeys();
        return ExitOk;
    }
    if (arguments.size() == 1 && arguments[0] == "--menus")
    {
        PrintMenus();
        return ExitOk;
    }
    std::fputs("usage: kelvar-cli keys [--menus]\n", stderr);
    return ExitUsage;
}

} // namespace kelvar::cli
