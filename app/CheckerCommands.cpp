// The level checker in the editor: its options from KELVAR.CHK, F10 and the statistics, the
// repair commands of the File menu, and showing an object a finding names.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CheckerCommands.h"

#include "app/CommandHandlers.h"
#include "app/Commands.h"

#include "app/BrowserLists.h"
#include "app/Modes.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "check/CheckControl.h"
#include "check/Repairs.h"
#include "check/Statistics.h"
#include "map/MapState.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "view/Navigation.h"
#include "view/ViewState.h"
#include "wad/LumpDirectory.h"
#include "wad/WadState.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <utility>

namespace kelvar::app
{
namespace
{

// The LineDef that holds a SideDef, for showing a SideDef in LineDef mode; -1 for none.
int LineDefOfSide(const map::LevelData& level, std::uint32_t side)
{
    for (int i = 0; i < level.LineDefs.Count(); ++i)
    {
        const map::LineDef& line = level.LineDefs[i];
        if (line.SideDef1 == side || line.SideDef2 == side)
        {
            return i;
        }
    }
    return -1;
}

// The checker's switches and the KELVAR.CHK fields that keep them: one byte each, or a word
// that holds 257 when on.
using S = check::CheckSettings;
constexpr std::pair<bool S::*, std::uint8_t ChkRecord::*> ByteSwitches[] = {
    {&S::UpperTexture, &ChkRecord::UpperTexture},
    {&S::NormalTexture, &ChkRecord::NormalTexture},
    {&S::LowerTexture, &ChkRecord::LowerTexture},
    {&S::XOffsets, &ChkRecord::XOffsets},
    {&S::YOffsets, &ChkRecord::YOffsets},
    {&S::MultiPatchTextures, &ChkRecord::MultiPatchTextures},
    {&S::SectorClosed1, &ChkRecord::SectorClosed1},
    {&S::SectorClosed2, &ChkRecord::SectorClosed2},
    {&S::OverlappingLineDefs, &ChkRecord::CheckOverlappingLineDefs},
    {&S::DuplicateSideDefs, &ChkRecord::CheckDuplicateSideDefs},
    {&S::DuplicateLineDefs, &ChkRecord::CheckDuplicateLineDefs},
    {&S::DuplicateVertices, &ChkRecord::CheckDuplicateVertices},
    {&S::ThingsInSector, &ChkRecord::ThingsInSector},
    {&S::ThingsOnTop, &ChkRecord::ThingsOnTop},
    {&S::CheckKeys, &ChkRecord::CheckKeys},
    {&S::CheckTags, &ChkRecord::CheckTags},
    {&S::ShortLines, &ChkRecord::CheckShortLines},
    {&S::PlayerStarts, &ChkRecord::CheckPlayerStarts},
    {&S::ThingTypes, &ChkRecord::CheckThingTypes},
};
constexpr std::pair<bool S::*, std::int16_t ChkRecord::*> WordSwitches[] = {
    {&S::SectorClosed3, &ChkRecord::SectorClosed3},
    {&S::ThingShooter, &ChkRecord::ThingShooter},
};
constexpr std::int16_t WordOn = 257;

// The record is packed, so its 16-bit fields may stand at odd addresses: they are copied byte
// by byte rather than loaded or stored as words.
std::int16_t ReadWord(const ChkRecord& chk, std::int16_t ChkRecord::*field)
{
    std::int16_t value = 0;
    std::memcpy(&value, &(chk.*field), sizeof value);
    return value;
}

void WriteWord(ChkRecord& chk, std::int16_t ChkRecord::*field, std::int16_t value)
{
    std::memcpy(&(chk.*field), &value, sizeof value);
}

} // namespace

check::CheckSettings CheckerSettings()
{
    const ChkRecord& chk = Shell().Chk;
    check::CheckSettings settings;
    for (const auto& [setting, field] : ByteSwitches)
    {
        settings.*setting = chk.*field != 0;
    }
    for (const auto& [setting, field] : WordSwitches)
    {
        settings.*setting = ReadWord(chk, field) != 0;
    }
    settings.ShortestLine = std::min<int>(chk.ShortestLine, check::ShortestLineLimit);
    settings.ExpertMode = chk.ExpertMode != 0;
    settings.MergeDuplicateVertices = chk.MergeDuplicateVertices != 0;
    const map::EditOptions& options = map::Map().Options;
    settings.OffsetMinimum = options.XAlignMinimum;
    settings.OffsetMaximum = options.XAlignMaximum;
    return settings;
}

void StoreCheckerSettings(const check::CheckSettings& settings)
{
    ChkRecord& chk = Shell().Chk;
    for (const auto& [setting, field] : ByteSwitches)
    {
        chk.*field = static_cast<std::uint8_t>(settings.*setting ? 1 : 0);
    }
    for (const auto& [setting, field] : WordSwitches)
    {
        WriteWord(chk, field, settings.*setting ? WordOn : std::int16_t{0});
    }
    chk.ShortestLine =
        static_cast<std::uint8_t>(std::clamp(settings.ShortestLine, 0, check::ShortestLineLimit));
}

void ShowCheckedObject(int kind, std::uint32_t index)
{
    const map::LevelData& level = map::Map().Level;
    int mode = kind;
    auto object = static_cast<int>(index);
    if (kind == map::KindSideDef)
    {
        mode = ModeLineDefs;
        object = LineDefOfSide(level, index);
    }
    if ((mode != ModeThings && mode != ModeLineDefs && mode != ModeVertexes &&
         mode != ModeSectors) ||
        object < 0 || object > map::HighestObject(level, mode))
    {
        return;
    }
    ChangeModeKeeping(mode, object);
    map::Selected().HighlightedObject = object;
    view::GotoObject(level, view::View().Viewport, mode, object, true);
}

check::LevelLumpSizes CurrentLumpSizes()
{
    check::LevelLumpSizes sizes;
    const wad::LumpDirectory& master = wad::Master();
    for (std::size_t i = master.Size(); i-- > 0;)
    {
        if (master[i].Name.Is("MAPINFO"))
        {
            sizes.HasMapInfo = true;
            sizes.MapInfoBytes = static_cast<std::uint32_t>(std::max(master[i].Size, 0));
            break;
        }
    }
    return sizes;
}

void ShowStatistics()
{
    const std::vector<std::string> lines =
        check::StatisticsLines(map::Map().Level, CurrentLumpSizes());
    const std::filesystem::path file = wad::Wad().ProgramDir / StatisticsFileName;
    std::ofstream out(file, std::ios::trunc);
    for (const std::string& line : lines)
    {
        out << line << '\n';
    }
    out.close();
    if (!out)
    {
        platform::ShowError("Failed to create %s", file.c_str());
        return;
    }
    platform::TheUi().ShowTextFile("Statistics", file);
}

void RepairCommand(int number, CommandSource /*source*/)
{
    map::LevelData& level = map::Map().Level;
    switch (number)
    {
    case CmdPackSideDefs:
        (void)check::PackSideDefs(level, true);
        break;
    case CmdUnpackSideDefs:
        (void)check::UnpackSideDefs(level, true);
        break;
    case CmdPackSectors:
        (void)check::PackSectors(level);
        break;
    case CmdCenterMapCoordinates:
        (void)check::CenterMap(level);
        break;
    case CmdRenumberTags:
        (void)check::RenumberTags(level);
        break;
    case CmdAutoFixSector:
        (void)check::AutoFixSector(level);
        break;
    default:
        break;
    }
}

void CheckLevelCommand(int number, CommandSource /*source*/)
{
    const SessionHooks& hooks = Session().Hooks;
    if (!Session().LevelLoaded)
    {
        platform::TheUi().Beep();
        return;
    }
    if (number == CmdStatistics)
    {
        ShowStatistics();
        return;
    }
    EnsureBrowserCatalogues(); // the texture checks look names up in the catalogue
    // The Statistics button closes the dialog and posts the statistics command.
    if (hooks.CheckDialog && hooks.CheckDialog())
    {
        Shell().Requests.PostedCommand = CmdStatistics;
    }
}

} // namespace kelvar::app
