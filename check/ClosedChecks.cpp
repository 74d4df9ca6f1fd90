// The closed-Sector check: each Sector's edges meet end to end, each side faces its own Sector,
// and one-sided LineDefs with a Sector behind them get their missing second side.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/ClosedChecks.h"

#include "map/ObjectStore.h"
#include "map/SectorOps.h"
#include "map/SectorRays.h"
#include "platform/Format.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::check
{
namespace
{

using map::LevelData;
using map::LineDef;
using platform::Format;

// A LineDef whose Vertexes exist and lie apart: the only kind whose sides can be tested. The
// others are the cross-reference check's findings.
bool Testable(const LevelData& level, const LineDef& line)
{
    const std::size_t count = level.Vertexes.size();
    return line.StartVertex < count && line.EndVertex < count &&
           !(level.Vertexes[line.StartVertex] == level.Vertexes[line.EndVertex]);
}

// One end of a Sector's edge at a Vertex: +1 where the edge starts, -1 where it ends.
struct EdgeEnd
{
    std::uint32_t Sector = 0;
    std::uint32_t Vertex = 0;
    int Turn = 0;

    bool operator<(const EdgeEnd& other) const
    {
        return Sector != other.Sector ? Sector < other.Sector : Vertex < other.Vertex;
    }
};

// The ends of every side's edge: a front side runs from the LineDef's start to its end, a back
// side the other way, so a closed Sector's edges form loops. False when stopped.
bool CollectEdgeEnds(CheckRun& run, std::vector<EdgeEnd>& ends)
{
    const LevelData& level = run.Level;
    ends.reserve(level.LineDefs.size() * 4);
    const auto addEnds = [&](std::size_t i)
    {
        const LineDef& line = level.LineDefs[i];
        if (line.StartVertex >= level.Vertexes.size() || line.EndVertex >= level.Vertexes.size())
        {
            return true;
        }
        const int front = map::SectorNumberOfSide(level, line.SideDef1);
        if (front >= 0)
        {
            ends.push_back({static_cast<std::uint32_t>(front), line.StartVertex, 1});
            ends.push_back({static_cast<std::uint32_t>(front), line.EndVertex, -1});
        }
        const int back = map::SectorNumberOfSide(level, line.SideDef2);
        if (back >= 0)
        {
            ends.push_back({static_cast<std::uint32_t>(back), line.EndVertex, 1});
            ends.push_back({static_cast<std::uint32_t>(back), line.StartVertex, -1});
        }
        return true;
    };
    return run.Each(level.LineDefs.size(), addEnds);
}

// Step 1: at every Vertex a Sector's edges meet, as many must end as start.
bool CheckEdgesMeet(CheckRun& run)
{
    run.Progress("Checking All Sectors Closed Step 1 (esc)");
    std::vector<EdgeEnd> ends;
    if (!CollectEdgeEnds(run, ends))
    {
        return false;
    }
    std::sort(ends.begin(), ends.end());
    const std::size_t sectors = run.Level.Sectors.size();
    for (std::size_t at = 0; at < ends.size();)
    {
        const EdgeEnd& first = ends[at];
        int balance = 0;
        for (; at < ends.size() && !(first < ends[at]); ++at)
        {
            balance += ends[at].Turn;
        }
        if (run.Poll(first.Sector, sectors))
        {
            return false;
        }
        if (balance == 0)
        {
            continue;
        }
        const int vertex = static_cast<int>(first.Vertex);
        Prompt finding;
        finding.Kind = map::KindSector;
        finding.Index = first.Sector;
        finding.Lines = {Format("Sector %d is not closed!", static_cast<int>(first.Sector)),
                         balance > 0 ? Format("No SideDef ending at Vertex %d", vertex)
                                     : Format("No SideDef starting at Vertex %d", vertex)};
        if (run.Verify(finding) == Answer::Stop)
        {
            return false;
        }
    }
    return true;
}

// The finding of step 2 for side `side` of LineDef `line`, whose SideDef `sideDef` faces
// Sector `own` while the ray from that side found `found`.
Prompt FacingFinding(int line, int side, std::uint32_t sideDef, int own, const map::Beside& found)
{
    Prompt finding;
    finding.Kind = map::KindLineDef;
    finding.Index = static_cast<std::uint32_t>(line);
    const int sideNumber = static_cast<int>(sideDef);
    const std::string check = side == 1
                                  ? Format("Check LineDef %d (SideDef1 %d)", line, sideNumber)
                                  : Format("Check LineDef %d (sideDef2 %d)", line, sideNumber);
    if (found.Sector >= 0)
    {
        // The back side's first line names only its own Sector: its format has "hd" where the
        // second number would go, and the text keeps it that way.
        finding.Lines = {side == 1 ? Format("Sectors %d and %d not closed!", own, found.Sector)
                                   : Format("Sectors %d and hd not closed!", own),
                         "(Not the same Sector)", check,
                         Format("and LineDef %d (SideDef %d)", found.Line, found.Side)};
        return finding;
    }
    finding.Lines = {side == 1 ? Format("Sector %d not closed! (no opposite Sector found)", own)
                               : Format("Sector %d not closed! (no opposite Sector Found)", own),
                     check};
    if (found.Line >= 0)
    {
        finding.Lines.push_back(Format("and LineDef %d", found.Line));
    }
    return finding;
}

// A ray from the middle of each side of LineDef `number`, away from the LineDef, meets the
// nearest LineDef across its path; the side of that LineDef facing back must face the same
// Sector. False when the user stopped the check.
bool SidesFaceTheirSectors(CheckRun& run, int number)
{
    const LevelData& level = run.Level;
    const LineDef& line = level.LineDefs[static_cast<std::size_t>(number)];
    if (!Testable(level, line))
    {
        return true;
    }
    for (int side = 1; side <= 2; ++side)
    {
        const std::uint32_t sideDef = line.Side(side);
        const int own = map::SectorNumberOfSide(level, sideDef);
        if (own < 0)
        {
            continue; // no side, or no Sector: the cross-reference check's findings
        }
        const map::Beside found =
            map::SectorBesideAt(level, number, map::RayStart::Middle, 0, side);
        if (found.Sector != own &&
            run.Verify(FacingFinding(number, side, sideDef, own, found)) == Answer::Stop)
        {
            return false;
        }
    }
    return true;
}

// Step 2: each side faces its own Sector.
bool CheckSidesFaceTheirSectors(CheckRun& run)
{
    run.Progress("Checking All Sectors Closed Step 2 (esc)");
    return run.Each(run.Level.LineDefs.size(),
                    [&](std::size_t i) { return SidesFaceTheirSectors(run, static_cast<int>(i)); });
}

// A LineDef of step 3 and the Sector behind it.
struct MissingBack
{
    int Line = 0;
    int Sector = 0;
};

// A one-sided LineDef is a possible problem when there is a Sector on both sides of it: the
// ray from its front meets a Sector and so does the ray from its back. Such a LineDef stands
// inside the level rather than on its edge, and what it lacks is a second side facing the
// Sector behind it. An edge of the level has nothing but the void behind it: its back ray
// meets nothing, or only the backs of other edges, which have no side either. Nothing when
// LineDef `number` is not such a problem.
std::optional<MissingBack> MissingBackOf(const LevelData& level, int number)
{
    const LineDef& line = level.LineDefs[static_cast<std::size_t>(number)];
    if (line.SideDef2 != map::NoSideDef || map::SectorNumberOfSide(level, line.SideDef1) < 0 ||
        !Testable(level, line))
    {
        return std::nullopt;
    }
    const map::Beside front = map::SectorBesideAt(level, number, map::RayStart::Middle, 0, 1);
    if (front.Sector < 0)
    {
        return std::nullopt;
    }
    const map::Beside back = map::SectorBesideAt(level, number, map::RayStart::Middle, 0, 2);
    if (back.Sector < 0)
    {
        return std::nullopt;
    }
    return MissingBack{number, back.Sector};
}

// The LineDefs of step 3 in the order of their numbers; false when stopped.
bool FindMissingBacks(CheckRun& run, std::vector<MissingBack>& found)
{
    const auto add = [&](std::size_t i)
    {
        if (const std::optional<MissingBack> missing =
                MissingBackOf(run.Level, static_cast<int>(i)))
        {
            found.push_back(*missing);
        }
        return true;
    };
    return run.Each(run.Level.LineDefs.size(), add);
}

// The repair of step 3: a new SideDef without textures facing the Sector behind, and the
// two-sided flag. The impassable flag stays as it was, so the wall still blocks as before.
int AddSecondSide(CheckRun& run, const MissingBack& missing)
{
    run.BeforeRepair();
    LevelData& level = run.Level;
    const int side = map::InsertObject(level, map::KindSideDef, -1, 0, 0);
    map::SideDef& added = level.SideDefs[static_cast<std::size_t>(side)];
    added = map::SideDef{};
    added.Sector = static_cast<std::uint32_t>(missing.Sector);
    LineDef& line = level.LineDefs[static_cast<std::size_t>(missing.Line)];
    line.SideDef2 = static_cast<std::uint32_t>(side);
    line.Flags = static_cast<std::uint16_t>(line.Flags | map::FlagTwoSided);
    return side;
}

// Step 3: the one-sided LineDefs with a Sector behind them. All are found before any is
// repaired, so a repair's new side doesn't change what the rays of later LineDefs see.
bool AddMissingSides(CheckRun& run)
{
    run.Progress("Checking All Sectors Closed Step 3");
    const LevelData& level = run.Level;
    const auto oneSided =
        std::count_if(level.LineDefs.begin(), level.LineDefs.end(),
                      [](const LineDef& line) { return line.SideDef2 == map::NoSideDef; });
    run.Progress(Format("Checking All Sectors Closed %d", static_cast<int>(oneSided)));
    std::vector<MissingBack> found;
    if (!FindMissingBacks(run, found))
    {
        return false;
    }
    std::vector<std::string> corrected;
    for (const MissingBack& missing : found)
    {
        Prompt finding;
        finding.Kind = map::KindLineDef;
        finding.Index = static_cast<std::uint32_t>(missing.Line);
        finding.Lines = {Format("line %d possible problem", missing.Line),
                         Format("line %d Side2 missing", missing.Line)};
        finding.FixButton = "Add Side2";
        const Answer answer = run.Verify(finding);
        if (answer == Answer::Stop)
        {
            return false;
        }
        if (answer == Answer::Fix)
        {
            const int side = AddSecondSide(run, missing);
            corrected.push_back(
                Format("line %d Side2 missing added sd2=%d set to 2-sided", missing.Line, side));
        }
    }
    if (!corrected.empty())
    {
        corrected.insert(corrected.begin(), "List of linedef problems corrected");
        run.Tell("Sector Closed 3", corrected);
    }
    return true;
}

} // namespace

bool CheckSectorsClosed(CheckRun& run)
{
    const CheckSettings& settings = run.Settings;
    return (!settings.SectorClosed1 || CheckEdgesMeet(run)) &&
           (!settings.SectorClosed2 || CheckSidesFaceTheirSectors(run)) &&
           (!settings.SectorClosed3 || AddMissingSides(run));
}

} // namespace kelvar::check
