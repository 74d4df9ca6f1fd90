// The packing repairs: SideDefs shared and unshared, Sectors merged.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Repairs.h"

#include "check/Repairs_Common.h"
#include "game/GameState.h"
#include "game/TypeLookup.h"
#include "map/ObjectStore.h"
#include "map/SideDefPacking.h"
#include "map/Undo.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <utility>

namespace kelvar::check
{
namespace
{

// Notes of an unpacking shown above its count; the message box holds at most 128 lines.
constexpr std::size_t UnpackNotesShown = 120;

// The floor property of a LineDef type that raises stairs.
constexpr std::uint16_t MotionRaiseStair = 0x1001;
// Boom's generalized stair builders.
constexpr std::uint32_t FirstGeneralizedStair = 0x3000;
constexpr std::uint32_t LastGeneralizedStair = 0x33FF;

std::uint64_t Mixed(std::uint64_t hash, std::uint64_t value)
{
    // splitmix64's finalizer over the running value: every input bit reaches every output bit.
    std::uint64_t z = hash ^ (value + 0x9E3779B97F4A7C15ull + (hash << 6) + (hash >> 2));
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

std::uint64_t NameBits(const map::TextureName& name)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, name.Chars.data(), sizeof bits);
    return bits;
}

// The values mixed in turn, starting from 0.
template <typename... Values> std::size_t MixedAll(Values... values)
{
    std::uint64_t hash = 0;
    ((hash = Mixed(hash, values)), ...);
    return static_cast<std::size_t>(hash);
}

struct SideDefHash
{
    std::size_t operator()(const map::SideDef& side) const
    {
        return MixedAll(static_cast<std::uint16_t>(side.XOffset),
                        static_cast<std::uint16_t>(side.YOffset), NameBits(side.UpperTexture),
                        NameBits(side.LowerTexture), NameBits(side.NormalTexture), side.Sector);
    }
};

struct SectorHash
{
    std::size_t operator()(const map::Sector& sector) const
    {
        return MixedAll(static_cast<std::uint16_t>(sector.FloorHeight),
                        static_cast<std::uint16_t>(sector.CeilingHeight),
                        NameBits(sector.FloorTexture), NameBits(sector.CeilingTexture),
                        static_cast<std::uint16_t>(sector.Light), sector.Type, sector.Tag);
    }
};

// For each record, the record it becomes: the first one equal to it, perhaps itself. Records
// marked `alone` stay themselves. Polls Escape once every hundred records when `poll` is set;
// an empty answer means it was pressed.
template <typename Record, typename Hash>
std::vector<std::uint32_t> FirstOfEqual(const map::ObjectArray<Record>& records,
                                        const std::vector<bool>& alone, bool poll)
{
    std::vector<std::uint32_t> survivor(records.size());
    std::unordered_map<Record, std::uint32_t, Hash> first;
    first.reserve(records.size());
    for (std::uint32_t i = 0; i < survivor.size(); ++i)
    {
        if (poll && i % 100 == 0 && platform::TheUi().PollEscape())
        {
            return {};
        }
        survivor[i] =
            alone.empty() || !alone[i] ? first.try_emplace(records[i], i).first->second : i;
    }
    return survivor;
}

int MergedCount(const std::vector<std::uint32_t>& survivor)
{
    int merged = 0;
    for (std::uint32_t i = 0; i < survivor.size(); ++i)
    {
        merged += survivor[i] != i ? 1 : 0;
    }
    return merged;
}

std::uint32_t Redirected(std::uint32_t reference, const std::vector<std::uint32_t>& survivor)
{
    return reference < survivor.size() ? survivor[reference] : reference;
}

// The LineDef types whose SideDefs scroll with them: the scrolling is the LineDef's, so such a
// SideDef can't serve another LineDef.
bool ScrollsTexture(std::uint32_t type)
{
    switch (game::Game().LevelFormat)
    {
    case map::GameHexen:
        return type >= 100 && type <= 103;
    case map::GameHeretic:
        return type == 48 || type == 99;
    case map::GameStrife:
        return type == 48 || type == 142 || type == 143 || type == 148;
    default:
        return type == 48;
    }
}

std::vector<bool> ScrollingSideDefs(const map::LevelData& level)
{
    std::vector<bool> scrolling(level.SideDefs.size(), false);
    for (const map::LineDef& line : level.LineDefs)
    {
        if (!ScrollsTexture(line.Type))
        {
            continue;
        }
        for (const std::uint32_t side : {line.SideDef1, line.SideDef2})
        {
            if (side < scrolling.size())
            {
                scrolling[side] = true;
            }
        }
    }
    return scrolling;
}

// Marks that keep the records that survive a merge and drop the ones merged into them.
std::vector<std::uint8_t> SurvivorMarks(const std::vector<std::uint32_t>& survivor)
{
    std::vector<std::uint8_t> marks(survivor.size(), 0);
    for (std::uint32_t i = 0; i < survivor.size(); ++i)
    {
        marks[i] = survivor[i] == i ? 1 : 0;
    }
    return marks;
}

// Points every LineDef side at its SideDef's survivor, then removes the SideDefs that merged.
void MergeSideDefs(map::LevelData& level, const std::vector<std::uint32_t>& survivor)
{
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const map::LineDef& line = std::as_const(level).LineDefs[i];
        const std::uint32_t side1 = Redirected(line.SideDef1, survivor);
        const std::uint32_t side2 = Redirected(line.SideDef2, survivor);
        if (side1 != line.SideDef1 || side2 != line.SideDef2)
        {
            level.LineDefs[i].SideDef1 = side1;
            level.LineDefs[i].SideDef2 = side2;
        }
    }
    map::KeepMarks marks = map::MarksForAll(level, 1);
    marks.SideDefs = SurvivorMarks(survivor);
    map::RemoveUnmarked(level, marks);
}

// Points every SideDef at its Sector's survivor, then removes the Sectors that merged.
void MergeSectors(map::LevelData& level, const std::vector<std::uint32_t>& survivor)
{
    for (std::size_t i = 0; i < level.SideDefs.size(); ++i)
    {
        const std::uint32_t sector = std::as_const(level).SideDefs[i].Sector;
        if (Redirected(sector, survivor) != sector)
        {
            level.SideDefs[i].Sector = Redirected(sector, survivor);
        }
    }
    map::KeepMarks marks = map::MarksForAll(level, 1);
    marks.Sectors = SurvivorMarks(survivor);
    map::RemoveUnmarked(level, marks);
}

bool BuildsStairs(std::uint32_t type)
{
    const auto type16 = static_cast<std::uint16_t>(type);
    if (game::LineTypeIsGeneralized(type16))
    {
        return type >= FirstGeneralizedStair && type <= LastGeneralizedStair;
    }
    return game::LookupLineType(type16, 0).Motion == MotionRaiseStair;
}

// The LineDefs whose type raises stairs. A level has few distinct types, so each is looked up
// in the table once.
int StairLineCount(const map::LevelData& level)
{
    std::unordered_map<std::uint32_t, bool> stairs;
    int count = 0;
    for (const map::LineDef& line : level.LineDefs)
    {
        if (line.Type == 0)
        {
            continue;
        }
        auto [at, added] = stairs.try_emplace(line.Type, false);
        if (added)
        {
            at->second = BuildsStairs(line.Type);
        }
        count += at->second ? 1 : 0;
    }
    return count;
}

int MissingFrontSides(const map::LevelData& level)
{
    return static_cast<int>(std::count_if(level.LineDefs.begin(), level.LineDefs.end(),
                                          [](const map::LineDef& line)
                                          { return line.SideDef1 == map::NoSideDef; }));
}

} // namespace

SideDefPackResult PackSideDefs(map::LevelData& level, bool ask)
{
    SideDefPackResult result;
    result.OldCount = level.SideDefs.Count();
    result.NewCount = result.OldCount;
    if (level.LineDefs.empty() || level.SideDefs.empty())
    {
        return result;
    }
    if (ask && !platform::AskYesNo("Continue and pack all the SideDefs?"))
    {
        result.End = RepairEnd::Declined;
        return result;
    }
    const std::vector<std::uint32_t> survivor =
        FirstOfEqual<map::SideDef, SideDefHash>(level.SideDefs, ScrollingSideDefs(level), false);
    result.Packed = MergedCount(survivor);
    if (result.Packed > 0)
    {
        (void)TakeUndoStep(level);
        MergeSideDefs(level, survivor);
        map::NoteChange(level, map::KindSideDef);
    }
    result.NewCount = level.SideDefs.Count();
    (void)platform::ShowMessageLines(
        0, "Packed",
        {platform::Format("sidedefs packed  \t= %d", result.Packed),
         platform::Format("old sidedef count\t= %d", result.OldCount),
         platform::Format("new sidedef count\t= %d", result.NewCount)});
    return result;
}

SideDefUnpackResult UnpackSideDefs(map::LevelData& level, bool ask)
{
    SideDefUnpackResult result;
    if (ask && !platform::AskYesNo("Continue and unpack all duplicate SideDefs?"))
    {
        result.End = RepairEnd::Declined;
        return result;
    }
    const int missingBefore = MissingFrontSides(level);
    const bool stepTaken = (missingBefore > 0 || map::SideDefsShared(level)) && TakeUndoStep(level);

    platform::TheUi().ShowProgress("Checking for Duplicate SideDefs (esc)", "");
    map::UnpackResult unpacked = map::UnpackSideDefsOf(level);
    platform::TheUi().EndProgress();

    result.Unpacked = unpacked.Unpacked;
    result.Notes = std::move(unpacked.Notes);
    const bool changed = result.Unpacked > 0 || MissingFrontSides(level) < missingBefore;
    if (changed)
    {
        map::NoteChange(level, map::KindSideDef);
    }
    else if (stepTaken)
    {
        // Escape came before the first change: the step would undo nothing.
        (void)map::DropLastUndoStep();
    }
    if (unpacked.Cancelled)
    {
        result.End = RepairEnd::Cancelled;
        (void)platform::ShowMessageLines(0, "UnPack", {"UnPacking SideDefs Cancelled!"});
        return result;
    }
    std::vector<std::string> lines(
        result.Notes.begin(), result.Notes.begin() + static_cast<std::ptrdiff_t>(std::min(
                                                         result.Notes.size(), UnpackNotesShown)));
    lines.push_back(platform::Format("%d SideDefs UnPacked", result.Unpacked));
    (void)platform::ShowMessageLines(0, "UnPacked", lines);
    return result;
}

SectorPackResult PackSectors(map::LevelData& level)
{
    SectorPackResult result;
    if (!platform::AskYesNo("!! Caution !! This step cannot be undone\n\nContinue and pack all "
                            "the Sectors?"))
    {
        result.End = RepairEnd::Declined;
        return result;
    }
    result.Stairs = StairLineCount(level);
    if (result.Stairs > 0 &&
        !platform::AskYesNo("!! Caution !! %d Stairs Exist\n\nNo guarantee that all Stair sectors "
                            "will be found\n\nRelies on Stair Sectors all having same "
                            "textures!\n\nContinue and pack all the Sectors?",
                            result.Stairs))
    {
        result.End = RepairEnd::Declined;
        return result;
    }

    platform::Ui& ui = platform::TheUi();
    ui.ShowProgress("Checking for Eligible Sectors (esc)", "");
    const std::vector<std::uint32_t> survivor =
        FirstOfEqual<map::Sector, SectorHash>(level.Sectors, {}, true);
    if (survivor.size() != level.Sectors.size())
    {
        ui.EndProgress();
        result.End = RepairEnd::Cancelled;
        platform::ShowInfo("Packing Sectors Cancelled!");
        return result;
    }
    result.Packed = MergedCount(survivor);
    if (result.Packed > 0)
    {
        ui.ShowProgress("Packing Sectors (please wait)", "");
        MergeSectors(level, survivor);
        map::NoteChange(level, map::KindSector);
        // The Sector numbers of the steps before can't be traced to the merged ones.
        if (IsEditorLevel(level))
        {
            map::UndoReset();
        }
    }
    ui.EndProgress();

    std::vector<std::string> lines{platform::Format("%d Sectors packed", result.Packed)};
    if (result.Packed > 0)
    {
        lines.emplace_back("More SideDefs may now pack");
    }
    (void)platform::ShowMessageLines(0, "Packed", lines);
    return result;
}

} // namespace kelvar::check
