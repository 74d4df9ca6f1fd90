// The Misc popups of the four edit modes (F8), the keys of their entries, and Delete: each
// command takes an undo step and runs its operation on the selection (or the highlighted
// object); the router then has the map, the status bar and the panes drawn again.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandHandlers.h"
#include "app/Commands.h"
#include "app/Modes.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "app/TagCommands.h"
#include "check/SaveChecks.h"
#include "game/GameState.h"
#include "gfx/TextureLumps.h"
#include "map/GameCodes.h"
#include "map/LineOps.h"
#include "map/MapState.h"
#include "map/MoverOps.h"
#include "map/ObjectStore.h"
#include "map/SectorOps.h"
#include "map/SectorSplit.h"
#include "map/StairOps.h"
#include "map/TextureAlign.h"
#include "map/Undo.h"
#include "map/VertexOps.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "wad/FindLump.h"
#include "wad/WadState.h"

#include <span>
#include <utility>
#include <vector>

namespace kelvar::app
{

namespace
{

// A Misc entry: its mode and its index in the mode's popup.
struct MiscEntry
{
    int Mode = 0;
    int Index = 0;
};

// The command numbers of each mode's Misc entries, entry 1 first; some entries have numbers
// of their own, shared with their keys.
constexpr int ThingEntries[] = {525, 526, 527};
constexpr int LineDefEntries[] = {510,
                                  511,
                                  CmdSplitAddVertex,
                                  CmdSplitLineDefSector,
                                  514,
                                  CmdFlipLineDef,
                                  CmdSwapSideDefs,
                                  CmdFlipVertexesOnly,
                                  518,
                                  519,
                                  520};
constexpr int VertexEntries[] = {530, 531, CmdDeleteVertexJoin, 533, 534};
constexpr int SectorEntries[] = {501, 502, 503, 504, 505, 506, 507, 508, 509};

std::span<const int> EntriesOf(int mode)
{
    switch (mode)
    {
    case ModeThings:
        return ThingEntries;
    case ModeLineDefs:
        return LineDefEntries;
    case ModeVertexes:
        return VertexEntries;
    case ModeSectors:
        return SectorEntries;
    default:
        return {};
    }
}

// The entry a command number runs; Shift+F is a second key of Split Linedef and Add Vertex.
MiscEntry EntryOf(int number)
{
    if (number == CmdSplitAddVertexF)
    {
        number = CmdSplitAddVertex;
    }
    for (const int mode : {ModeThings, ModeLineDefs, ModeVertexes, ModeSectors})
    {
        const std::span<const int> entries = EntriesOf(mode);
        for (std::size_t i = 0; i < entries.size(); ++i)
        {
            if (entries[i] == number)
            {
                return {mode, static_cast<int>(i) + 1};
            }
        }
    }
    return {};
}

bool HexenFormat()
{
    return wad::Wad().Game.Format == map::GameHexen;
}

// The free numbers of a level: tags, and in the Hexen format polyobject numbers, TIDs and
// line ids, each from the objects that carry them.
struct LevelNumbers
{
    std::vector<int> Tags;
    std::vector<int> PolyIds;
    std::vector<int> Tids;
    std::vector<int> LineIds;
};

constexpr std::uint32_t PolyStartLineType = 1;
constexpr std::uint32_t LineIdentificationType = 121;

LevelNumbers NumbersOf(const map::LevelData& level, bool hexen)
{
    LevelNumbers numbers;
    numbers.Tags = TagsInUse(level, hexen);
    if (!hexen)
    {
        return numbers;
    }
    for (const map::Thing& thing : level.Things)
    {
        if (thing.Tid > 0)
        {
            numbers.Tids.push_back(thing.Tid);
        }
    }
    for (const map::LineDef& line : level.LineDefs)
    {
        const int first = line.Tag & 0xFF;
        if (first > 0 && (line.Type & 0xFF) == PolyStartLineType)
        {
            numbers.PolyIds.push_back(first);
        }
        if (first > 0 && (line.Type & 0xFF) == LineIdentificationType)
        {
            numbers.LineIds.push_back(first);
        }
    }
    return numbers;
}

// First Free Tag: the statistics of the level's numbers.
void ShowFreeNumbers(const map::LevelData& level)
{
    const bool hexen = HexenFormat();
    const LevelNumbers numbers = NumbersOf(level, hexen);
    const NumberStats tags = FirstFreeNumber(numbers.Tags);
    const auto h = [](int value) { return static_cast<short>(value); };
    if (!hexen)
    {
        platform::ShowMessageLines(0, "tag stats",
                                   {platform::Format("FreeTag\t%3hd", h(tags.Free)),
                                    platform::Format("Highest\t%3hd", h(tags.Last)),
                                    platform::Format("Tag#\t%3hd", h(tags.Count))});
        return;
    }
    const NumberStats polys = FirstFreeNumber(numbers.PolyIds);
    const NumberStats tids = FirstFreeNumber(numbers.Tids);
    const NumberStats lines = FirstFreeNumber(numbers.LineIds);
    platform::ShowMessageLines(0, "tag, poly, tid stats",
                               {platform::Format("Free Tag    %3hd \tHighest %3hd \tLag#  = %3hd",
                                                 h(tags.Free), h(tags.Last), h(tags.Count)),
                                platform::Format("Free PolyId %3hd \tHighest %3hd \tCount = %3hd",
                                                 h(polys.Free), h(polys.Last), h(polys.Count)),
                                platform::Format("Free Tid    %3hd \tHighest %3hd \tCount = %3hd",
                                                 h(tids.Free), h(tids.Last), h(tids.Count)),
                                platform::Format("Free LineId %3hd \tHighest %3hd \tLdcnt = %3hd",
                                                 h(lines.Free), h(lines.Last), h(lines.Count))});
}

// The fewest objects an entry needs, and whether it needs exactly that many; 1 for the rest.
struct Needs
{
    int Count = 1;
    bool Exactly = false;
};

Needs NeedsOf(MiscEntry entry)
{
    if (entry.Mode == ModeVertexes && entry.Index == 4)
    {
        return {2, false};
    }
    if ((entry.Mode == ModeVertexes && entry.Index == 5) ||
        (entry.Mode == ModeLineDefs && entry.Index == 4))
    {
        return {2, true};
    }
    if (entry.Mode == ModeSectors && (entry.Index == 3 || entry.Index == 4))
    {
        return {1, true};
    }
    if (entry.Mode == ModeSectors && entry.Index == 8)
    {
        return {2, false};
    }
    return {};
}

// Split Linedef and Sector: both LineDefs split at their middles, and the Sector between the
// two new Vertexes divided.
void SplitLineDefsAndSector(map::LevelData& level, const map::ObjectList& list)
{
    const std::vector<std::int32_t> lines = list.Objects();
    const auto sectorsOf = [&](std::int32_t i)
    {
        const map::LineDef& line = std::as_const(level).LineDefs[static_cast<std::size_t>(i)];
        return std::array<std::uint32_t, 2>{map::SectorOfSide(level, line.SideDef1),
                                            map::SectorOfSide(level, line.SideDef2)};
    };
    const auto first = sectorsOf(lines[0]);
    const auto second = sectorsOf(lines[1]);
    bool shared = false;
    for (const std::uint32_t a : first)
    {
        for (const std::uint32_t b : second)
        {
            shared = shared || (a != map::NoSector && a == b);
        }
    }
    if (!shared)
    {
        platform::Message message;
        message.Title = "Split LineDefs/Sector";
        message.Lines = {platform::Format("LineDefs %d and %d are not adjacent to the same Sector",
                                          lines[0], lines[1]),
                         "Reply continue to try anyway"};
        message.Buttons = platform::MessageButtons::OkCancel;
        message.ButtonTexts = {"Continue", "Cancel"};
        if (platform::TheUi().Show(message) != 1)
        {
            return;
        }
    }
    map::SplitLineDefsAtMidpoint(level, list);
    const int newest = level.Vertexes.Count() - 1;
    map::SplitSector(level, newest - 1, newest, false);
    map::ClearSelection();
}

void RunLineDefEntry(map::LevelData& level, int index, map::ObjectList& list)
{
    switch (index)
    {
    case 3:
        map::SplitLineDefsAtMidpoint(level, list);
        map::ClearSelection();
        break;
    case 4:
        SplitLineDefsAndSector(level, list);
        break;
    case 5:
        if (map::DeleteLineDefsJoinSectors(level, list))
        {
            (void)check::CheckUnused(level);
            map::ClearSelection();
        }
        break;
    case 6:
        map::FlipLineDefs(level, list, map::FlipWhat::VertexesAndSides);
        break;
    case 7:
        map::FlipLineDefs(level, list, map::FlipWhat::SidesOnly);
        break;
    case 8:
        map::FlipLineDefs(level, list, map::FlipWhat::VertexesOnly);
        break;
    case 9:
        map::MakeDoorFromLineDefs(level, list, HexenFormat());
        break;
    case 10:
        map::MakeStairs(level, list);
        map::ClearSelection();
        break;
    case 11:
        map::RenumberSelected(level, map::KindLineDef, list);
        break;
    default:
        break;
    }
}

void RunSectorEntry(map::LevelData& level, int index, map::ObjectList& list)
{
    switch (index)
    {
    case 3:
    {
        const int tag = FirstFreeNumber(TagsInUse(level, HexenFormat())).Free;
        map::MakeLiftFromSector(level, list.Head(), tag, HexenFormat());
        break;
    }
    case 4:
        map::MakeDoorFromSector(level, list.Head(), HexenFormat());
        break;
    case 5:
        map::Distribute(level, list, map::Distributed::FloorHeight);
        break;
    case 6:
        map::Distribute(level, list, map::Distributed::CeilingHeight);
        break;
    case 7:
        map::Distribute(level, list, map::Distributed::Light);
        break;
    case 8:
        map::MergeSectors(level, list);
        break;
    case 9:
        map::RenumberSelected(level, map::KindSector, list);
        break;
    default:
        break;
    }
}

void RunVertexEntry(map::LevelData& level, int index, const map::ObjectList& list)
{
    if (index == 3)
    {
        map::JoinAtVertexes(level, list);
    }
    else if (index == 4)
    {
        map::MergeVertexes(level, list);
    }
    else if (index == 5)
    {
        const std::vector<std::int32_t> vertexes = list.Objects();
        map::SplitSector(level, vertexes[1], vertexes[0], false);
    }
    map::ClearSelection();
}

// After an edit: the bounding box measured again, and a highlight the edit removed dropped.
void AfterEdit(map::LevelData& level)
{
    map::MeasureLevel(level);
    map::SelectionState& select = map::Selected();
    if (!map::IsValidObject(level, EditMode(), select.HighlightedObject))
    {
        select.HighlightedObject = -1;
    }
}

// The selection a command works on: an empty one takes the highlighted object first.
void TakeHighlightIfEmpty(const map::LevelData& level, int mode)
{
    map::SelectionState& select = map::Selected();
    if (select.Selection.Empty() && map::IsValidObject(level, mode, select.HighlightedObject))
    {
        map::ObjectListPush(select.Selection, select.HighlightedObject);
    }
}

// The size and scale of a wall texture from the texture lumps of the open files. Without a
// TEXTURE1 (a file set that has none) every texture is unknown.
map::TextureSizeOf WallTextureSizes()
{
    if (wad::FindLump(wad::Wad().Files[0], "TEXTURE1", false) < 0)
    {
        return {};
    }
    return [](const map::TextureName& name) -> std::optional<map::TextureSize>
    {
        const std::optional<gfx::TextureRecord> found = gfx::LookupTexture(name.Text());
        if (!found)
        {
            return std::nullopt;
        }
        return map::TextureSize{found->Width, found->Height, found->XScale,
                                static_cast<std::int8_t>(found->YScale)};
    };
}

} // namespace

int MiscEntryNumber(int mode, int index)
{
    const std::span<const int> entries = EntriesOf(mode);
    return index >= 1 && index <= static_cast<int>(entries.size())
               ? entries[static_cast<std::size_t>(index - 1)]
               : 0;
}

void MiscCommand(int mode, int index)
{
    map::LevelData& level = map::Map().Level;
    map::SelectionState& select = map::Selected();
    TakeHighlightIfEmpty(level, mode);
    if (index > 0)
    {
        (void)map::SaveUndoStep();
    }
    if (index == 2)
    {
        ShowFreeNumbers(level);
        return;
    }
    const Needs needs = NeedsOf({mode, index});
    int count = 0;
    int head = -1;
    int tail = -1;
    if (!map::CountOrComplain(mode, needs.Exactly, needs.Count, count, select.Selection, head,
                              tail))
    {
        return; // the step stays: the user may undo a refusal like any command
    }
    switch (mode)
    {
    case ModeThings:
        if (index == 3)
        {
            map::Distribute(level, select.Selection, map::Distributed::ThingHeight);
        }
        break;
    case ModeLineDefs:
        RunLineDefEntry(level, index, select.Selection);
        break;
    case ModeVertexes:
        RunVertexEntry(level, index, select.Selection);
        break;
    case ModeSectors:
        RunSectorEntry(level, index, select.Selection);
        break;
    default:
        break;
    }
    AfterEdit(level);
}

void MiscEntryCommand(int number, CommandSource /*source*/)
{
    const MiscEntry entry = EntryOf(number);
    if (entry.Mode != EditMode())
    {
        return;
    }
    MiscCommand(entry.Mode, entry.Index);
}

void AlignLineDefCommand(int /*number*/, CommandSource /*source*/)
{
    map::MapState& map = map::Map();
    const int line = map.Select.HighlightedObject;
    if (!map::IsValidObject(map.Level, map::KindLineDef, line) || map.Options.GridSize <= 0)
    {
        return;
    }
    (void)map::SaveUndoStep();
    if (!map::AlignLineDefToGrid(map.Level, line, map.Options.GridSize))
    {
        (void)map::DropLastUndoStep(); // a straight LineDef takes no step
        return;
    }
    AfterEdit(map.Level);
}

void AlignTexturesYCommand(int number, CommandSource /*source*/)
{
    map::MapState& map = map::Map();
    TakeHighlightIfEmpty(map.Level, ModeLineDefs);
    if (map.Select.Selection.Empty())
    {
        platform::TheUi().Beep();
        return;
    }
    (void)map::SaveUndoStep();
    map::AlignResult result = map::AlignResult::NothingDone;
    if (number == CmdAlignY)
    {
        // Both sides: the second when the first did nothing.
        result = map::AlignTexturesY(map.Level, map.Select.Selection, 1, WallTextureSizes());
        if (result != map::AlignResult::Done)
        {
            result = map::AlignTexturesY(map.Level, map.Select.Selection, 2, WallTextureSizes());
        }
    }
    else
    {
        const bool first = number == CmdAlignYShift || number == CmdAlignYSide1;
        result =
            map::AlignTexturesY(map.Level, map.Select.Selection, first ? 1 : 2, WallTextureSizes());
    }
    if (result == map::AlignResult::AllPegged)
    {
        platform::ShowMessageLines(0, "Align Textures", {"Pegged Textures are Ignored!"});
    }
    if (result != map::AlignResult::Done)
    {
        (void)map::DropLastUndoStep();
        return;
    }
    AfterEdit(map.Level);
}

void AlignTexturesXCommand(int number, CommandSource /*source*/)
{
    map::MapState& map = map::Map();
    TakeHighlightIfEmpty(map.Level, ModeLineDefs);
    if (map.Select.Selection.Empty())
    {
        platform::TheUi().Beep();
        return;
    }
    // 537 to 544 are the eight variants in menu order: side 1 then 2, the same texture then
    // any, without then with an initial offset. 478 and 600 stand for 537 and 541; 480 is the
    // first on side 1, and on side 2 when side 1 did nothing, as the Y key does.
    const int base = number == CmdAlignXShift   ? CmdAlignXFirst
                     : number == CmdAlignXSide2 ? CmdAlignXFirst + 4
                     : number == CmdAlignX      ? CmdAlignXFirst
                                                : number;
    const int variant = base - CmdAlignXFirst;
    map::XAlignOptions options;
    options.Side = variant < 4 ? 1 : 2;
    options.SameTexture = variant % 4 < 2;
    options.AnyTexture = game::Game().ZdoomTypes;
    if (variant % 2 == 1)
    {
        options.InitialOffset =
            platform::TheUi().AskNumber("Initial offset", "Initial offset", 0,
                                        map.Options.XAlignMinimum, map.Options.XAlignMaximum);
        if (!options.InitialOffset)
        {
            return;
        }
    }
    (void)map::SaveUndoStep();
    map::AlignResult result =
        map::AlignTexturesX(map.Level, map.Select.Selection, options, WallTextureSizes());
    if (number == CmdAlignX && result == map::AlignResult::NothingDone)
    {
        options.Side = 2;
        result = map::AlignTexturesX(map.Level, map.Select.Selection, options, WallTextureSizes());
    }
    if (result == map::AlignResult::NothingDone)
    {
        (void)map::DropLastUndoStep();
        return;
    }
    // A walk refused halfway keeps the sides it aligned; the step takes them back.
    AfterEdit(map.Level);
}

void DeleteCommand(int number, CommandSource /*source*/)
{
    map::MapState& map = map::Map();
    const int mode = EditMode();
    if (map.Select.Selection.Empty() && map.Select.HighlightedObject < 0)
    {
        return;
    }
    const bool selected = !map.Select.Selection.Empty();
    TakeHighlightIfEmpty(map.Level, mode);
    const int count = map.Select.Selection.Size();
    if (count == 0)
    {
        return;
    }
    if (mode != ModeThings && mode != ModeVertexes && !map.Options.ExpertMode)
    {
        const std::string question =
            selected ? platform::Format("Do you really want to delete %d %ss?", count,
                                        map::KindName(mode))
                     : platform::Format("Do you really want to delete 1 %s?", map::KindName(mode));
        if (platform::ShowMessageLines(platform::LinesCancel, "Delete",
                                       {question, "This also deletes the objects bound to them"},
                                       platform::MessageButtons::YesNo) != 1)
        {
            if (!selected)
            {
                map::ClearSelection();
            }
            return;
        }
    }
    (void)map::SaveUndoStep();
    // Shift+Delete turns the Delete Vertex and Join option round.
    const bool join = map.Options.VertexDelJoin != (number == CmdDeleteObjectShift);
    if (mode == ModeVertexes && join)
    {
        map::JoinAtVertexes(map.Level, map.Select.Selection);
    }
    else
    {
        map::DeleteObjectList(map.Level, mode, map.Select.Selection);
    }
    map::ClearSelection();
    map.Select.HighlightedObject = -1;
    AfterEdit(map.Level);
}

void MiscMenuCommand(int /*number*/, CommandSource /*source*/)
{
    Shell().Requests.ShowMiscMenu = true;
}

} // namespace kelvar::app
