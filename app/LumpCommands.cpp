// The lump tools in the editor: the F7 menu, Group, UnGroup and Save and make an IWAD.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/LumpCommands.h"

#include "app/Commands.h"
#include "app/Modes.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "lumps/Group.h"
#include "platform/Ui.h"
#include "wad/FileTable.h"
#include "wad/WadState.h"

#include <optional>

namespace kelvar::app
{

const std::array<const char*, 6>& LumpToolEntries()
{
    static const std::array<const char*, 6> entries = {
        "&Export Lumps...",
        "&Import / Merge into a WAD...",
        "&Rename, Delete, Move Lumps...",
        "&Convert Texture Names (.CVT)...",
        "List Textures and Flats &Used...",
        "List U&nused Textures and Flats...",
    };
    return entries;
}

void GraphicsMenuCommand(int /*number*/, CommandSource /*source*/)
{
    const SessionHooks& hooks = Session().Hooks;
    if (!hooks.LumpTool)
    {
        platform::TheUi().Beep();
        return;
    }
    const std::array<const char*, 6>& entries = LumpToolEntries();
    const std::vector<std::string> items(entries.begin(), entries.end());
    const std::optional<int> chosen = platform::TheUi().ChooseEntry(
        "Graphics/Import/Export", items, std::vector<bool>(items.size(), true));
    if (chosen && *chosen >= 0 && static_cast<std::size_t>(*chosen) < items.size())
    {
        hooks.LumpTool(*chosen);
    }
}

void ReloadWith(const std::filesystem::path& pwad)
{
    if (!ContinueWithUnsavedChanges())
    {
        return;
    }
    wad::CloseFiles('A', true, true);
    wad::Wad().OpenFiles.fill({});
    wad::Wad().OpenFiles[0] = pwad.string();
    (void)ReloadAllFiles(false);
    GatherSettings();
    (void)SaveChkAndProject();
}

void GroupMenuCommand(int number, CommandSource /*source*/)
{
    const lumps::GroupCommandResult result = number == CmdGroup     ? lumps::GroupCommand()
                                             : number == CmdUngroup ? lumps::UngroupCommand()
                                                                    : lumps::MakeIwadCommand();
    if (result.Written && result.Reload)
    {
        ReloadWith(result.Target);
    }
}

} // namespace kelvar::app
