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
#include <fstream>

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

} // namespace

check::CheckSettings CheckerSettings()
{
    const ChkRecord& chk = Shell().Chk;
    check::CheckSettings settings;
    settings.UpperTexture = chk.UpperTexture != 0;
    settings.NormalTexture = chk.NormalTexture != 0;
    settings.LowerTexture = chk.LowerTexture != 0;
    settings.XOffsets = chk.XOffsets != 0;
    settings.YOffsets = chk.YOffsets != 0;
    settings.MultiPatchTextures = chk.MultiPatchTextures != 0;
    settings.SectorClosed1 = chk.SectorClosed1 != 0;
    settings.SectorClosed2 = chk.SectorClosed2 != 0;
    settings.SectorClosed3 = chk.SectorClosed3 != 0;
    settings.OverlappingLineDefs = chk.CheckOverlappingLineDefs != 0;
    settings.DuplicateSideDefs = chk.CheckDuplicateSideDefs != 0;
    settings.DuplicateLineDefs = chk.CheckDuplicateLineDefs != 0;
    settings.DuplicateVertices = chk.CheckDuplicateVertices != 0;
    settings.ThingsInSector = chk.ThingsInSector != 0;
    settings.ThingShooter = chk.ThingShooter != 0;
    settings.ThingsOnTop = chk.ThingsOnTop != 0;
    settings.CheckKeys = chk.CheckKeys != 0;
    settings.CheckTags = chk.CheckTags != 0;
    settings.ShortLines = chk.CheckShortLines != 0;
    settings.ShortestLine = std::min<int>(chk.ShortestLine, check::ShortestLineLimit);
    settings.PlayerStarts = chk.CheckPlayerStarts != 0;
    settings.ThingTypes = chk.CheckThingTypes != 0;
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
    const auto flag = [](bool on) { return static_cast<std::uint8_t>(on ? 1 : 0); };
    chk.UpperTexture = flag(settings.UpperTexture);
    chk.NormalTexture = flag(settings.NormalTexture);
    chk.LowerTexture = flag(settings.LowerTexture);
    chk.XOffsets = flag(settings.XOffsets);
    chk.YOffsets = flag(settings.YOffsets);
    chk.MultiPatchTextures = flag(settings.MultiPatchTextures);
    chk.SectorClosed1 = flag(settings.SectorClosed1);
    chk.SectorClosed2 = flag(settings.SectorClosed2);
    chk.SectorClosed3 = settings.SectorClosed3 ? std::int16_t{257} : std::int16_t{0};
    chk.CheckOverlappingLineDefs = flag(settings.OverlappingLineDefs);
    chk.CheckDuplicateSideDefs = flag(settings.DuplicateSideDefs);
    chk.CheckDuplicateLineDefs = flag(settings.DuplicateLineDefs);
    chk.CheckDuplicateVertices = flag(settings.DuplicateVertices);
    chk.ThingsInSector = flag(settings.ThingsInSector);
    chk.ThingShooter = settings.ThingShooter ? std::int16_t{257} : std::int16_t{0};
    chk.ThingsOnTop = flag(settings.ThingsOnTop);
    chk.CheckKeys = flag(settings.CheckKeys);
    chk.CheckTags = flag(settings.CheckTags);
    chk.CheckShortLines = flag(settings.ShortLines);
    chk.ShortestLine =
        static_cast<std::uint8_t>(std::clamp(settings.ShortestLine, 0, check::ShortestLineLimit));
    chk.CheckPlayerStarts = flag(settings.PlayerStarts);
    chk.CheckThingTypes = flag(settings.ThingTypes);
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
    EnsureBrowserCatalogues(); // the texture checks look names up in the catalogue
    if (number == CmdStatistics)
    {
        ShowStatistics();
        return;
    }
    // The Statistics button closes the dialog and posts the statistics command.
    if (hooks.CheckDialog && hooks.CheckDialog())
    {
        Shell().Requests.PostedCommand = CmdStatistics;
    }
}

} // namespace kelvar::app
