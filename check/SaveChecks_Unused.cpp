// The save's clean-up: wrong references set to 0, unused Vertexes, SideDefs and Sectors removed.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/SaveChecks.h"

#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "platform/Assert.h"
#include "platform/Messages.h"
#include "platform/Ui.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace kelvar::check
{
namespace
{

using map::LevelData;
using map::NoSideDef;

// The new number of an object that goes.
constexpr std::uint32_t Removed = 0xFFFFFFFFu;

// Escape is polled every hundred objects, as in the other checks.
bool PollDue(std::size_t index)
{
    return index % 100 == 0;
}

// Marks of use, one per object of each kind.
struct Usage
{
    std::vector<std::uint8_t> Vertexes;
    std::vector<std::uint8_t> SideDefs;
    std::vector<std::uint8_t> Sectors;
};

// Sets a LineDef's Vertex and SideDef numbers that point at nothing to 0, and says so. With no
// object of a kind at all there is no 0 to point at, and the references stay. Returns true
// when something was set.
bool RepairLine(LevelData& level, std::size_t index)
{
    map::LineDef& line = level.LineDefs[index];
    const int number = static_cast<int>(index);
    const auto vertexCount = static_cast<std::uint32_t>(level.Vertexes.Count());
    const auto sideCount = static_cast<std::uint32_t>(level.SideDefs.Count());
    bool repaired = false;
    if (vertexCount > 0 && (line.StartVertex >= vertexCount || line.EndVertex >= vertexCount))
    {
        line.StartVertex = line.StartVertex < vertexCount ? line.StartVertex : 0;
        line.EndVertex = line.EndVertex < vertexCount ? line.EndVertex : 0;
        platform::ShowInfo("LineDef %d Vertex out of range\nset to 0", number);
        repaired = true;
    }
    if (sideCount == 0)
    {
        return repaired;
    }
    if (line.SideDef1 == NoSideDef)
    {
        line.SideDef1 = 0;
        platform::ShowInfo("LineDef %d missing side 1 set to 0", number);
        repaired = true;
    }
    for (std::uint32_t* side : {&line.SideDef1, &line.SideDef2})
    {
        if (*side != NoSideDef && *side >= sideCount)
        {
            platform::ShowInfo("LineDef %d SideDef %d out of range set to 0", number,
                               static_cast<int>(*side));
            *side = 0;
            repaired = true;
        }
    }
    return repaired;
}

void Mark(std::vector<std::uint8_t>& used, std::uint32_t object)
{
    if (object < used.size())
    {
        used[object] = 1;
    }
}

// The new number of each object that stays, Removed for the others; counts those removed.
std::vector<std::uint32_t> NewNumbers(const std::vector<std::uint8_t>& used, int& removed)
{
    std::vector<std::uint32_t> numbers(used.size(), Removed);
    std::uint32_t next = 0;
    for (std::size_t i = 0; i < used.size(); ++i)
    {
        if (used[i] != 0)
        {
            numbers[i] = next++;
        }
    }
    removed = static_cast<int>(used.size() - next);
    return numbers;
}

// Moves the records that stay down over those that go, in one pass, keeping their order; the
// allocation stays as it is.
template <typename Record>
void Compact(map::ObjectArray<Record>& array, const std::vector<std::uint32_t>& numbers)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
        if (numbers[i] != Removed)
        {
            if (kept != i)
            {
                array.Array[kept] = std::move(array.Array[i]);
            }
            ++kept;
        }
    }
    array.Array.resize(kept);
}

// A reference after the compaction. Only used objects are referred to, so none meets a removed
// one; a number that named nothing before (out of range, or "none") stays as it was, and since
// the counts only shrink it still names nothing.
std::uint32_t Renumbered(std::uint32_t reference, const std::vector<std::uint32_t>& numbers)
{
    if (reference >= numbers.size())
    {
        return reference;
    }
    KELVAR_ASSERT(numbers[reference] != Removed);
    return numbers[reference];
}

struct Removals
{
    int Vertexes = 0;
    int SideDefs = 0;
    int Sectors = 0;
};

// Removes every object not marked used, renumbering all references: linear in the level's size,
// where deleting one object at a time would walk the level once per object.
void RemoveUnused(LevelData& level, const Usage& usage, Removals& removals)
{
    const std::vector<std::uint32_t> vertexNumbers = NewNumbers(usage.Vertexes, removals.Vertexes);
    const std::vector<std::uint32_t> sideNumbers = NewNumbers(usage.SideDefs, removals.SideDefs);
    const std::vector<std::uint32_t> sectorNumbers = NewNumbers(usage.Sectors, removals.Sectors);
    if (removals.Vertexes + removals.SideDefs + removals.Sectors == 0)
    {
        return;
    }
    if (removals.SideDefs > 0)
    {
        platform::ShowInfo(
            "Please Wait while %d unused sidedefs are removed\n\nPress OK to continue",
            removals.SideDefs);
    }
    map::WaitForSave();
    const bool wasBusy = std::exchange(map::Map().StoreBusy, true);
    Compact(level.Vertexes, vertexNumbers);
    Compact(level.SideDefs, sideNumbers);
    Compact(level.Sectors, sectorNumbers);
    for (map::LineDef& line : level.LineDefs)
    {
        line.StartVertex = Renumbered(line.StartVertex, vertexNumbers);
        line.EndVertex = Renumbered(line.EndVertex, vertexNumbers);
        line.SideDef1 = Renumbered(line.SideDef1, sideNumbers);
        line.SideDef2 = Renumbered(line.SideDef2, sideNumbers);
    }
    for (map::SideDef& side : level.SideDefs)
    {
        side.Sector = Renumbered(side.Sector, sectorNumbers);
    }
    map::Map().StoreBusy = wasBusy;
    if (removals.Vertexes > 0)
    {
        map::MeasureLevel(level);
    }
}

} // namespace

bool CheckUnused(LevelData& level)
{
    platform::Ui& ui = platform::TheUi();
    ui.ShowProgress("Checking for Unused objects (esc)", "");
    Usage usage;
    usage.Vertexes.assign(level.Vertexes.Array.size(), 0);
    usage.SideDefs.assign(level.SideDefs.Array.size(), 0);
    usage.Sectors.assign(level.Sectors.Array.size(), 0);
    bool repaired = false;
    bool escaped = false;
    for (std::size_t i = 0; i < level.LineDefs.Array.size() && !escaped; ++i)
    {
        escaped = PollDue(i) && ui.PollEscape();
        if (!escaped)
        {
            repaired = RepairLine(level, i) || repaired;
            const map::LineDef& line = level.LineDefs[i];
            Mark(usage.Vertexes, line.StartVertex);
            Mark(usage.Vertexes, line.EndVertex);
            Mark(usage.SideDefs, line.SideDef1);
            Mark(usage.SideDefs, line.SideDef2);
        }
    }
    // A Sector is used when a SideDef that stays faces it.
    for (std::size_t s = 0; s < level.SideDefs.Array.size() && !escaped; ++s)
    {
        escaped = PollDue(s) && ui.PollEscape();
        if (!escaped && usage.SideDefs[s] != 0)
        {
            Mark(usage.Sectors, level.SideDefs[s].Sector);
        }
    }
    ui.EndProgress();
    Removals removals;
    if (!escaped)
    {
        RemoveUnused(level, usage, removals);
    }
    if (repaired || removals.Vertexes + removals.SideDefs + removals.Sectors > 0)
    {
        map::NoteChange(level, map::KindLineDef);
    }
    return !escaped;
}

} // namespace kelvar::check
