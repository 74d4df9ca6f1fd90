// The save's clean-up: wrong references set to 0, unused Vertexes, SideDefs and Sectors removed.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/SaveChecks.h"

#include "map/ObjectStore.h"
#include "platform/Messages.h"
#include "platform/Ui.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace kelvar::check
{
namespace
{

using map::LevelData;
using map::NoSideDef;

// Escape is polled every hundred objects, as in the other checks.
bool PollDue(std::size_t index)
{
    return index % 100 == 0;
}

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

// The objects whose mark is 0.
int Unmarked(const std::vector<std::uint8_t>& marks)
{
    return static_cast<int>(std::count(marks.begin(), marks.end(), 0));
}

} // namespace

bool CheckUnused(LevelData& level)
{
    platform::Ui& ui = platform::TheUi();
    ui.ShowProgress("Checking for Unused objects (esc)", "");
    map::KeepMarks used = map::MarksForAll(level, 0);
    bool repaired = false;
    bool escaped = false;
    for (std::size_t i = 0; i < level.LineDefs.size() && !escaped; ++i)
    {
        escaped = PollDue(i) && ui.PollEscape();
        if (!escaped)
        {
            repaired = RepairLine(level, i) || repaired;
            const map::LineDef& line = level.LineDefs[i];
            Mark(used.Vertexes, line.StartVertex);
            Mark(used.Vertexes, line.EndVertex);
            Mark(used.SideDefs, line.SideDef1);
            Mark(used.SideDefs, line.SideDef2);
        }
    }
    // A Sector is used when a SideDef that stays faces it.
    for (std::size_t s = 0; s < level.SideDefs.size() && !escaped; ++s)
    {
        escaped = PollDue(s) && ui.PollEscape();
        if (!escaped && used.SideDefs[s] != 0)
        {
            Mark(used.Sectors, level.SideDefs[s].Sector);
        }
    }
    ui.EndProgress();
    int removed = 0;
    if (!escaped)
    {
        const int sides = Unmarked(used.SideDefs);
        removed = Unmarked(used.Vertexes) + sides + Unmarked(used.Sectors);
        if (sides > 0)
        {
            platform::ShowInfo(
                "Please Wait while %d unused sidedefs are removed\n\nPress OK to continue", sides);
        }
        map::RemoveUnmarked(level, used);
    }
    if (repaired || removed > 0)
    {
        map::NoteChange(level, map::KindLineDef);
    }
    return !escaped;
}

} // namespace kelvar::check
