// The checks and repairs of a level being read.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LevelRepairs.h"

#include "map/ObjectStore.h"
#include "map/SideDefPacking.h"
#include "platform/Fatal.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/LevelReader.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <map>

namespace kelvar::wad
{
namespace
{

using map::LevelData;
using map::NoSideDef;

int Signed(std::uint32_t value)
{
    return static_cast<int>(value);
}

// Asks whether to quit: yes ends the program with `fatalText`.
void AskQuit(const std::string& question, const std::string& fatalText)
{
    if (platform::AskYesNo("%s", question.c_str()))
    {
        platform::FatalError("%s", fatalText.c_str());
    }
}

void CheckVertexNumbers(LevelData& level, std::uint32_t vertexCount)
{
    bool asked = false;
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        map::LineDef& line = level.LineDefs[i];
        if (line.StartVertex < vertexCount && line.EndVertex < vertexCount)
        {
            continue;
        }
        if (!asked)
        {
            const int number = static_cast<int>(i);
            const std::string fatal =
                platform::Format("vertex in linedef %d not valid %d,%d\n", number,
                                 Signed(line.StartVertex), Signed(line.EndVertex));
            AskQuit(platform::Format("Vertex in Linedef %d not valid %d,%d\n\nIf you continue, "
                                     "ALL invalid vertexes are set to 0\n\nShould we Quit Now ?",
                                     number, Signed(line.StartVertex), Signed(line.EndVertex)),
                    fatal);
            asked = true;
        }
        line.StartVertex = line.StartVertex < vertexCount ? line.StartVertex : 0;
        line.EndVertex = line.EndVertex < vertexCount ? line.EndVertex : 0;
    }
}

} // namespace

void ReadUsedVertexes(LevelData& level, const std::vector<std::uint8_t>& vertexes)
{
    const auto fileCount = static_cast<std::uint32_t>(vertexes.size() / VertexSize);
    CheckVertexNumbers(level, fileCount);

    // Only the Vertexes a LineDef uses are kept: reading and saving a level drops the others.
    std::vector<std::uint32_t> table(fileCount, 0);
    std::uint32_t marked = 0;
    for (const map::LineDef& line : level.LineDefs)
    {
        for (const std::uint32_t vertex : {line.StartVertex, line.EndVertex})
        {
            if (vertex < fileCount && table[vertex] == 0)
            {
                table[vertex] = 1;
                ++marked;
            }
        }
    }
    level.Vertexes.Reserve(std::max<std::int32_t>(2 * static_cast<std::int32_t>(fileCount), 2000));
    for (std::uint32_t i = 0; i < fileCount; ++i)
    {
        if (table[i] != 0)
        {
            const std::uint8_t* raw = vertexes.data() + static_cast<std::size_t>(i) * VertexSize;
            table[i] = static_cast<std::uint32_t>(level.Vertexes.size());
            level.Vertexes.push_back({static_cast<std::int16_t>(ReadLe16(raw)),
                                      static_cast<std::int16_t>(ReadLe16(raw + 2))});
        }
    }
    const auto stored = static_cast<std::uint32_t>(level.Vertexes.size());
    if (stored != marked &&
        platform::AskYesNo("Vertex Count Error Active Vertex Count=%d\n\ndiffers from Read Vertex "
                           "Count=%d\n\nExit?",
                           static_cast<int>(marked), static_cast<int>(stored)))
    {
        platform::FatalError("Vertex Count Error");
    }
    for (map::LineDef& line : level.LineDefs)
    {
        line.StartVertex =
            line.StartVertex < fileCount ? table[line.StartVertex] : line.StartVertex;
        line.EndVertex = line.EndVertex < fileCount ? table[line.EndVertex] : line.EndVertex;
    }
}

void RepairSideDefSectors(LevelData& level)
{
    const auto sectorCount = static_cast<std::uint32_t>(level.Sectors.Count());
    std::vector<std::int32_t> user(level.SideDefs.size(), -1);
    for (std::size_t l = level.LineDefs.size(); l-- > 0;)
    {
        for (const std::uint32_t side : {level.LineDefs[l].SideDef1, level.LineDefs[l].SideDef2})
        {
            if (side < user.size())
            {
                user[side] = static_cast<std::int32_t>(l);
            }
        }
    }
    std::map<std::uint32_t, std::uint32_t> recreated; // bad number -> its new Sector
    for (std::size_t s = 0; s < level.SideDefs.size(); ++s)
    {
        const std::uint32_t bad = level.SideDefs[s].Sector;
        if (bad < sectorCount || user[s] < 0)
        {
            continue; // a bad Sector that no LineDef uses is left alone
        }
        auto found = recreated.find(bad);
        if (found == recreated.end())
        {
            if (recreated.empty())
            {
                const int line = user[s];
                const int side = static_cast<int>(s);
                AskQuit(platform::Format("LineDef %d, Sidedef %d has invalid Sector %d\n\nIf you "
                                         "continue ALL invalid sectors are recreated starting "
                                         "with %d\n\nShould we Quit Now ?",
                                         line, side, Signed(bad), level.Sectors.Count()),
                        platform::Format("LineDef %d, Sidedef %d has invalid Sector %d", line, side,
                                         Signed(bad)));
            }
            const int sector = map::InsertObject(level, map::KindSector, -1, 0, 0);
            found = recreated.emplace(bad, static_cast<std::uint32_t>(sector)).first;
        }
        level.SideDefs[s].Sector = found->second;
    }
    // Unused SideDefs with the same bad number follow their number to the new Sector.
    for (map::SideDef& side : level.SideDefs)
    {
        const auto found = recreated.find(side.Sector);
        if (side.Sector >= sectorCount && found != recreated.end())
        {
            side.Sector = found->second;
        }
    }
}

void RepairLineSides(LevelData& level)
{
    const auto sideCount = static_cast<std::uint32_t>(level.SideDefs.Count());
    const auto outOfRange = [&](std::uint32_t side)
    { return side != NoSideDef && side >= sideCount; };
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const map::LineDef& line = level.LineDefs[i];
        const bool missing = line.SideDef1 == NoSideDef;
        if (!missing && !outOfRange(line.SideDef1) && !outOfRange(line.SideDef2))
        {
            continue;
        }
        const int number = static_cast<int>(i);
        const std::string text =
            missing ? platform::Format("LineDef %d missing side 1\n\nIf you continue all bad "
                                       "SideDefs are reset to 0\n\nShould we Quit Now ?",
                                       number)
                    : platform::Format("LineDef %d SideDef out of range %d,%d\n\nIf you continue "
                                       "all bad SideDefs are reset to 0\n\nShould we Quit Now ?",
                                       number, Signed(line.SideDef1), Signed(line.SideDef2));
        AskQuit(text, text);
        // The reset touches only sides beyond the SideDefs: a missing front side stays
        // missing, whatever the question said.
        for (map::LineDef& each : level.LineDefs)
        {
            each.SideDef1 = outOfRange(each.SideDef1) ? 0 : each.SideDef1;
            each.SideDef2 = outOfRange(each.SideDef2) ? 0 : each.SideDef2;
        }
        platform::ShowMessageLines(
            0, "SideDefs bad",
            {"Select Unpack SideDefs from File menu", "to make each sidedef unique again"});
        return;
    }
}

void ApplyFormatMismatch(LevelData& level, int mismatch)
{
    if (mismatch == 0)
    {
        return;
    }
    ++level.ChangeCount;
    ++level.GeometryChangeCount;
    const char* const ending = "Use F5 Options and set IWAD message to bypass this message and "
                               "not reset anything\n\n\tReset Specials and Tags to 0?";
    const std::string question =
        mismatch == 1
            ? std::string("\tThis level came from another game.\n\nThis is a DOOM/etc map type and "
                          "you are editing HEXEN type levels\n\nUse ZWADCONV to convert a DOOM, "
                          "HERETIC or STRIFE level to ZDOOMHEXEN format\n\n") +
                  ending
            : std::string("\tThis level came from another game.\n\nThis is a HEXEN format map "
                          "type and you are editing DOOM or HERETIC type levels\nThis is either a "
                          "HEXEN level or more likely a ZDOOM level.\n\n\tZDOOM supports both "
                          "formats.\n\n\tZDOOM.PRJ is for DOOM format levels\n\tZDOOMHEXEN.PRJ is "
                          "for HEXEN format levels\n\tZDOOMHERETIC.PRJ is for HEXEN format "
                          "levels\n\n\tZDOOMSTRIFE.PRJ is for HEXEN format levels\n\n") +
                  ending;
    if (!Wad().Options.NoIwadWarningMsg && platform::AskYesNo("%s", question.c_str()))
    {
        for (map::LineDef& line : level.LineDefs)
        {
            line.Type = 0;
            line.Tag = 0;
        }
        for (map::Sector& sector : level.Sectors)
        {
            sector.Type = 0;
            sector.Tag = 0;
        }
    }
    // Hexen enables a Thing per class and game mode: a Doom Thing gets all of them, a Hexen
    // Thing keeps only the flags Doom knows.
    for (map::Thing& thing : level.Things)
    {
        thing.Flags =
            static_cast<std::uint16_t>(mismatch == 1 ? (thing.Flags | 0x07E0) : (thing.Flags & 15));
    }
}

void CheckSideDefPacking(LevelData& level)
{
    const WadOptions& options = Wad().Options;
    if (options.AutomaticSideUnpack)
    {
        map::UnpackSideDefsOf(level);
        return;
    }
    if (!options.ExpertMode && map::SideDefsShared(level))
    {
        platform::ShowMessageLines(0, "SideDefs Packed",
                                   {"** Caution ** SideDefs are packed",
                                    "Select Unpack Sidedefs from File menu",
                                    "to make each sidedef unique again"});
    }
}

} // namespace kelvar::wad
