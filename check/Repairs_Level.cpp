// The repairs that rewrite positions and references: centring the map, renumbering tags, and
// setting each side's Sector from what lies beside it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Repairs.h"

#include "check/Repairs_Common.h"
#include "map/ObjectStore.h"
#include "map/SectorRays.h"
#include "map/SideDefPacking.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "wad/ErrorLog.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace kelvar::check
{
namespace
{

// Centring moves by whole 64-unit blocks. Wall textures are laid from each LineDef's own start
// and move with it; flats are laid on the map's 64-unit grid, so only a move by whole blocks
// leaves them where they were.
constexpr int AlignmentMask = ~63;

bool IsNegative(std::uint16_t tag)
{
    return static_cast<std::int16_t>(tag) < 0;
}

// The new number of each old tag: consecutive from 1, in the order the LineDefs use them, then
// the Sector tags no LineDef uses, in Sector order.
std::unordered_map<std::uint16_t, std::uint16_t> NewTags(const map::LevelData& level,
                                                         bool renumberNegative)
{
    std::unordered_map<std::uint16_t, std::uint16_t> newTags;
    std::uint32_t next = 1;
    const auto number = [&](std::uint16_t tag)
    {
        if (tag != 0 && (renumberNegative || !IsNegative(tag)) &&
            newTags.try_emplace(tag, static_cast<std::uint16_t>(next)).second)
        {
            ++next;
        }
    };
    for (const map::LineDef& line : level.LineDefs)
    {
        number(line.Tag);
    }
    for (const map::Sector& sector : level.Sectors)
    {
        number(sector.Tag);
    }
    return newTags;
}

// Counts what the renumbering report tells besides the changes: tags of one kind that no
// object of the other kind shares, and negative tags.
void CountTagUse(const map::LevelData& level, TagRenumberResult& result)
{
    std::unordered_set<std::uint16_t> lineTags;
    std::unordered_set<std::uint16_t> sectorTags;
    for (const map::LineDef& line : level.LineDefs)
    {
        lineTags.insert(line.Tag);
        result.NegativeLineDefs += IsNegative(line.Tag) ? 1 : 0;
    }
    for (const map::Sector& sector : level.Sectors)
    {
        sectorTags.insert(sector.Tag);
        result.NegativeSectors += IsNegative(sector.Tag) ? 1 : 0;
        result.UnmatchedSectors += sector.Tag != 0 && !lineTags.contains(sector.Tag) ? 1 : 0;
    }
    for (const map::LineDef& line : level.LineDefs)
    {
        result.UnmatchedLineDefs += line.Tag != 0 && !sectorTags.contains(line.Tag) ? 1 : 0;
    }
}

std::uint16_t Renumbered(std::uint16_t tag,
                         const std::unordered_map<std::uint16_t, std::uint16_t>& newTags)
{
    const auto at = newTags.find(tag);
    return at == newTags.end() ? tag : at->second;
}

// Gives every LineDef and Sector its new tag; writes only the records that change, and returns
// how many of each kind did.
std::pair<int, int> ApplyTags(map::LevelData& level,
                              const std::unordered_map<std::uint16_t, std::uint16_t>& newTags)
{
    std::pair<int, int> changed{0, 0};
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const std::uint16_t tag = std::as_const(level).LineDefs[i].Tag;
        if (Renumbered(tag, newTags) != tag)
        {
            level.LineDefs[i].Tag = Renumbered(tag, newTags);
            ++changed.first;
        }
    }
    for (std::size_t i = 0; i < level.Sectors.size(); ++i)
    {
        const std::uint16_t tag = std::as_const(level).Sectors[i].Tag;
        if (Renumbered(tag, newTags) != tag)
        {
            level.Sectors[i].Tag = Renumbered(tag, newTags);
            ++changed.second;
        }
    }
    return changed;
}

bool AnyTagMoves(const std::unordered_map<std::uint16_t, std::uint16_t>& newTags)
{
    return std::any_of(newTags.begin(), newTags.end(),
                       [](const auto& entry) { return entry.first != entry.second; });
}

bool RenumberWarningAccepted()
{
    platform::Message warning;
    warning.Title = "Renumber";
    warning.Lines = {"==  WARNING  ==\n\nBOOM tags can be special\n\nHEXEN tags can be "
                     "special\n\nNO check is made for any special tag..."};
    warning.Icon = platform::MessageIcon::Exclamation;
    warning.Buttons = platform::MessageButtons::OkCancel;
    return platform::TheUi().Show(warning) == 1;
}

// Sets the Sector of one side of a LineDef from the ray off the middle of that side, and adds
// the log line when it changed; the first change takes the undo step.
void FixSide(map::LevelData& level, std::size_t line, int side, bool& stepTaken,
             std::vector<std::string>& fixes)
{
    const std::uint32_t sideDef = std::as_const(level).LineDefs[line].Side(side);
    if (sideDef >= level.SideDefs.size())
    {
        return;
    }
    const map::Beside beside =
        map::SectorBesideAt(level, static_cast<int>(line), map::RayStart::Middle, 0, side);
    const std::uint32_t was = std::as_const(level).SideDefs[sideDef].Sector;
    if (beside.Sector < 0 || static_cast<std::uint32_t>(beside.Sector) == was)
    {
        return;
    }
    if (!stepTaken)
    {
        stepTaken = true;
        (void)TakeUndoStep(level);
    }
    level.SideDefs[sideDef].Sector = static_cast<std::uint32_t>(beside.Sector);
    const int lineNumber = static_cast<int>(line);
    const int sideNumber = static_cast<int>(sideDef);
    // NoSector shows as -1.
    const int wasNumber = static_cast<int>(was);
    fixes.push_back(side == 1 ? platform::Format("LD=%d SD1=%d was sector=%d Set to Sector=%d",
                                                 lineNumber, sideNumber, wasNumber, beside.Sector)
                              : platform::Format("LD=%d SD2=%d was sector=%d Set to Sector=%d",
                                                 lineNumber, sideNumber, wasNumber, beside.Sector));
}

void ShowFixes(const std::vector<std::string>& fixes)
{
    if (!wad::OpenErrorLog())
    {
        return;
    }
    for (const std::string& fix : fixes)
    {
        wad::LogLine({fix});
    }
    wad::ShowErrorLog("List of Fixed LineDefs");
}

} // namespace

CenterResult CenterMap(map::LevelData& level)
{
    CenterResult result;
    if (!platform::AskYesNo("Continue and center map coordinates?"))
    {
        result.End = RepairEnd::Declined;
        return result;
    }
    if (level.Vertexes.empty())
    {
        return result;
    }
    const map::VertexBox box = map::VertexBounds(level);
    // Clearing the low bits rounds toward minus infinity, on either side of 0.
    result.OffsetX = ((box.MinX + box.MaxX) / 2) & AlignmentMask;
    result.OffsetY = ((box.MinY + box.MaxY) / 2) & AlignmentMask;
    if (result.OffsetX == 0 && result.OffsetY == 0)
    {
        return result;
    }
    (void)TakeUndoStep(level);
    for (std::size_t i = 0; i < level.Vertexes.size(); ++i)
    {
        map::Vertex& vertex = level.Vertexes[i];
        vertex.X = static_cast<std::int16_t>(vertex.X - result.OffsetX);
        vertex.Y = static_cast<std::int16_t>(vertex.Y - result.OffsetY);
    }
    for (std::size_t i = 0; i < level.Things.size(); ++i)
    {
        level.Things[i].X -= result.OffsetX;
        level.Things[i].Y -= result.OffsetY;
    }
    map::MeasureLevel(level);
    map::NoteChange(level, map::KindVertex);
    return result;
}

TagRenumberResult RenumberTags(map::LevelData& level)
{
    TagRenumberResult result;
    if (!RenumberWarningAccepted())
    {
        result.End = RepairEnd::Declined;
        return result;
    }
    CountTagUse(level, result);
    if (result.NegativeLineDefs + result.NegativeSectors > 0)
    {
        result.NegativeChanged =
            platform::AskYesNo("Negative Tags\nWarning Negative Tags exist\n\nMaking them positive "
                               "can affect some Ports\n\nDo you want to make...");
    }
    const auto newTags = NewTags(level, result.NegativeChanged);
    if (AnyTagMoves(newTags))
    {
        (void)TakeUndoStep(level);
        std::tie(result.LineDefs, result.Sectors) = ApplyTags(level, newTags);
        map::NoteChange(level, map::KindSector);
    }
    (void)platform::ShowMessageLines(
        0, "Renumber",
        {platform::Format("%d LineDef Tag and %d Sector Tags renumbered", result.LineDefs,
                          result.Sectors),
         platform::Format("%d LineDefs and %d Sectors did not reference any Sector",
                          result.UnmatchedLineDefs, result.UnmatchedSectors),
         platform::Format("%d LineDefs and %d Sectors had negative tags %s",
                          result.NegativeLineDefs, result.NegativeSectors,
                          result.NegativeChanged ? " (changed)" : " (not changed)")});
    return result;
}

SectorFixResult AutoFixSector(map::LevelData& level)
{
    SectorFixResult result;
    // With a SideDef on several sides, setting it for one side would move the others too.
    if (map::SideDefsShared(level))
    {
        result.End = RepairEnd::Refused;
        platform::ShowInfo("Automatic Sector checking can't\nbe done with packed "
                           "Sidedefs\n\nUnpack the sidedefs first");
        return result;
    }
    platform::Ui& ui = platform::TheUi();
    ui.ShowProgress("Fix Checking - Press Esc to Cancel",
                    platform::Format("Checking %d LineDefs (esc Cancel)", level.LineDefs.Count()));
    bool stepTaken = false;
    for (std::size_t line = 0; line < level.LineDefs.size(); ++line)
    {
        if (line % 100 == 0 && ui.PollEscape())
        {
            result.End = RepairEnd::Cancelled;
            break;
        }
        // Each fix is made at once, so a later ray that meets this side reads the Sector set.
        FixSide(level, line, 1, stepTaken, result.Fixes);
        FixSide(level, line, 2, stepTaken, result.Fixes);
    }
    ui.EndProgress();
    if (!result.Fixes.empty())
    {
        map::NoteChange(level, map::KindSideDef);
    }
    ShowFixes(result.Fixes);
    return result;
}

} // namespace kelvar::check
