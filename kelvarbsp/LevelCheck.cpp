// The check of a level before its nodes are built.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "kelvarbsp/LevelCheck.h"

#include "platform/Format.h"
#include "wad/LevelReader.h"
#include "wad/WadFormat.h"

#include <array>

namespace kelvar::kelvarbsp
{
namespace
{

constexpr std::uint16_t NoSide = 0xFFFF;
/// From this many LineDefs or SideDefs on, the editor writes its own wide rows, which no
/// node builder reads.
constexpr auto WideCount = static_cast<std::int64_t>(wad::ExtendedFormatCount);

// A record size, signed like the counts it divides.
constexpr std::int64_t Signed(std::size_t size)
{
    return static_cast<std::int64_t>(size);
}

const std::uint8_t* Bytes(const std::string& data, std::int64_t offset)
{
    return reinterpret_cast<const std::uint8_t*>(data.data()) + offset;
}

/// Notes a lump whose size isn't a whole number of records: the rest is left out.
void NoteLeftover(LevelCheck& check, const char* lump, std::int64_t size, std::int64_t record)
{
    if (size % record != 0)
    {
        check.Notes.push_back(
            platform::Format("%s has %lld bytes past its last whole record; they are left out.",
                             lump, static_cast<long long>(size % record)));
    }
}

bool Refuse(LevelCheck& check, std::string reason)
{
    check.Ok = false;
    check.Reason = std::move(reason);
    return false;
}

bool CheckLineDefs(LevelCheck& check, const std::string& lines)
{
    const std::int64_t size = Signed(check.Hexen ? wad::HexenLineSize : wad::DoomLineSize);
    const std::int64_t sidesAt = check.Hexen ? 12 : 10;
    for (std::int64_t i = 0; i < check.LineDefs; ++i)
    {
        const std::uint8_t* line = Bytes(lines, i * size);
        for (int end = 0; end < 2; ++end)
        {
            const std::uint16_t vertex = wad::ReadLe16(line + 2 * end);
            if (vertex >= check.Vertexes)
            {
                return Refuse(check,
                              platform::Format("LineDef %lld names Vertex %u, but the level has "
                                               "%lld Vertexes.",
                                               static_cast<long long>(i), vertex,
                                               static_cast<long long>(check.Vertexes)));
            }
        }
        for (int side = 0; side < 2; ++side)
        {
            const std::uint16_t number = wad::ReadLe16(line + sidesAt + 2 * side);
            if (number != NoSide && number >= check.SideDefs)
            {
                return Refuse(check,
                              platform::Format("LineDef %lld names SideDef %u as its %s side, but "
                                               "the level has %lld SideDefs.",
                                               static_cast<long long>(i), number,
                                               side == 0 ? "right" : "left",
                                               static_cast<long long>(check.SideDefs)));
            }
        }
    }
    return true;
}

bool CheckSideDefs(LevelCheck& check, const std::string& sides)
{
    for (std::int64_t i = 0; i < check.SideDefs; ++i)
    {
        const std::uint16_t sector = wad::ReadLe16(Bytes(sides, i * Signed(wad::SideDefSize) + 28));
        if (sector >= check.Sectors)
        {
            return Refuse(check,
                          platform::Format("SideDef %lld names Sector %u, but the level has %lld "
                                           "Sectors.",
                                           static_cast<long long>(i), sector,
                                           static_cast<long long>(check.Sectors)));
        }
    }
    return true;
}

} // namespace

LevelCheck CheckLevel(WadFile& wad, const LevelLumps& level)
{
    LevelCheck check;
    const std::string levelName = wad.Lumps[level.Marker].Name.Text();
    static constexpr std::array<const char*, 5> Required{"THINGS", "LINEDEFS", "SIDEDEFS",
                                                         "VERTEXES", "SECTORS"};
    for (const char* name : Required)
    {
        if (level.Find(wad, name) == nullptr)
        {
            Refuse(check, platform::Format("Level %s has no %s lump.", levelName.c_str(), name));
            return check;
        }
    }
    check.Hexen = level.Find(wad, "BEHAVIOR") != nullptr;
    const std::int64_t thingSize = Signed(check.Hexen ? wad::HexenThingSize : wad::DoomThingSize);
    const std::int64_t lineSize = Signed(check.Hexen ? wad::HexenLineSize : wad::DoomLineSize);
    check.Things = level.Find(wad, "THINGS")->Size / thingSize;
    check.LineDefs = level.Find(wad, "LINEDEFS")->Size / lineSize;
    check.SideDefs = level.Find(wad, "SIDEDEFS")->Size / Signed(wad::SideDefSize);
    check.Vertexes = level.Find(wad, "VERTEXES")->Size / Signed(wad::VertexSize);
    check.Sectors = level.Find(wad, "SECTORS")->Size / Signed(wad::SectorSize);
    if (check.LineDefs == 0 || check.SideDefs == 0 || check.Vertexes == 0 || check.Sectors == 0)
    {
        Refuse(check, platform::Format("Level %s is incomplete: it needs LineDefs, SideDefs, "
                                       "Vertexes and Sectors.",
                                       levelName.c_str()));
        return check;
    }
    if (check.LineDefs >= WideCount || check.SideDefs >= WideCount)
    {
        Refuse(check, platform::Format("Level %s is saved in the extended format (%lld LineDefs, "
                                       "%lld SideDefs), which zdbsp can't read.",
                                       levelName.c_str(), static_cast<long long>(check.LineDefs),
                                       static_cast<long long>(check.SideDefs)));
        return check;
    }
    NoteLeftover(check, "LINEDEFS", level.Find(wad, "LINEDEFS")->Size, lineSize);
    NoteLeftover(check, "SIDEDEFS", level.Find(wad, "SIDEDEFS")->Size, Signed(wad::SideDefSize));

    std::string lines;
    std::string sides;
    if (!ReadLump(wad, *level.Find(wad, "LINEDEFS"), lines) ||
        !ReadLump(wad, *level.Find(wad, "SIDEDEFS"), sides))
    {
        Refuse(check, "Cannot read the LineDefs and SideDefs of " + levelName + ".");
        return check;
    }
    check.Ok = CheckLineDefs(check, lines) && CheckSideDefs(check, sides);
    return check;
}

} // namespace kelvar::kelvarbsp
