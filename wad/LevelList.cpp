// The level list.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LevelList.h"

#include "platform/Messages.h"
#include "wad/WadState.h"

namespace kelvar::wad
{

int FindLevel(const LumpName& name)
{
    const std::vector<LevelListEntry>& levels = Wad().Levels;
    for (std::size_t i = 0; i < levels.size(); ++i)
    {
        if (SameName(levels[i].Name, name))
        {
            return static_cast<int>(i);
        }
    }
    return -1;
}

bool NoteLevel(const LumpName& name, int fileNumber)
{
    WadState& wad = Wad();
    const int found = FindLevel(name);
    if (found >= 0)
    {
        wad.Levels[static_cast<std::size_t>(found)].FileNumber =
            static_cast<std::int16_t>(fileNumber);
        return true;
    }
    if (static_cast<int>(wad.Levels.size()) >= wad.Options.LevelListLimit - 1)
    {
        return false;
    }
    wad.Levels.push_back({name, 0, static_cast<std::int16_t>(fileNumber)});
    return true;
}

void ListMasterLevels()
{
    WadState& wad = Wad();
    wad.Levels.clear();
    const LumpDirectory& master = Master();
    bool excess = false;
    for (std::size_t i = 0; i < master.Size(); ++i)
    {
        int count = 0;
        if (LevelAt(master.Entries(), i, master.Size(), count) == 0)
        {
            continue;
        }
        if (!NoteLevel(master[i].Name, master[i].FileNumber))
        {
            excess = true;
        }
        i += static_cast<std::size_t>(count) - 1;
    }
    if (excess)
    {
        platform::ShowError("IWAD has too many levels.\nExcess ignored.");
    }
}

} // namespace kelvar::wad
