// The level reader: finding the level, reading and widening its lumps, the layout test.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LevelReader.h"

#include "map/GameCodes.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/SideDefPacking.h"
#include "platform/Fatal.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/FindLump.h"
#include "wad/LevelRepairs.h"
#include "wad/WadFormat.h"
#include "wad/WadScan.h"

#include <algorithm>

namespace kelvar::wad
{
namespace
{

using map::LevelData;

std::int16_t Le16s(const std::uint8_t* bytes)
{
    return static_cast<std::int16_t>(ReadLe16(bytes));
}

std::uint32_t Le32u(const std::uint8_t* bytes)
{
    return static_cast<std::uint32_t>(ReadLe32(bytes));
}

// In the two 16-bit layouts a SideDef index above 65534 is "none".
std::uint32_t SideIndex16(const std::uint8_t* bytes)
{
    const std::uint16_t index = ReadLe16(bytes);
    return index > 65534 ? map::NoSideDef : index;
}

map::TextureName NameAt(const std::uint8_t* bytes)
{
    map::TextureName name;
    std::copy_n(bytes, 8, name.Chars.begin());
    return name;
}

std::int32_t LumpSize(int entry)
{
    return entry < 0 ? 0 : Master()[static_cast<std::size_t>(entry)].Size;
}

std::int32_t Capacity(std::size_t count, std::int32_t least)
{
    return std::max(static_cast<std::int32_t>(2 * count), least);
}

void ReadThings(LevelData& level, int layout)
{
    const std::vector<std::uint8_t> bytes = ReadLumpBytes(FindLevelLump("THINGS", true));
    const std::size_t size = layout == map::LayoutHexen ? HexenThingSize : DoomThingSize;
    const std::size_t count = bytes.size() / size;
    level.Things.Reserve(Capacity(count, 200));
    level.Things.resize(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::uint8_t* raw = bytes.data() + i * size;
        map::Thing& thing = level.Things[i];
        if (layout == map::LayoutHexen)
        {
            thing.Tid = ReadLe16(raw);
            thing.X = Le16s(raw + 2);
            thing.Y = Le16s(raw + 4);
            thing.Z = Le16s(raw + 6);
            thing.Angle = ReadLe16(raw + 8);
            thing.Type = ReadLe16(raw + 10);
            thing.Flags = ReadLe16(raw + 12);
            thing.Special = raw[14];
            std::copy_n(raw + 15, 5, thing.Args.begin());
        }
        else
        {
            thing.X = Le16s(raw);
            thing.Y = Le16s(raw + 2);
            thing.Angle = ReadLe16(raw + 4);
            thing.Type = ReadLe16(raw + 6);
            thing.Flags = ReadLe16(raw + 8);
        }
    }
}

void ReadLineDefs(LevelData& level, const std::vector<std::uint8_t>& bytes, int layout,
                  bool extended)
{
    const std::size_t size =
        extended ? (layout == map::LayoutHexen ? ExtendedHexenLineSize : ExtendedDoomLineSize)
                 : (layout == map::LayoutHexen ? HexenLineSize : DoomLineSize);
    const std::size_t count = bytes.size() / size;
    level.LineDefs.Reserve(2 * count < 100 ? 1000 : static_cast<std::int32_t>(2 * count));
    level.LineDefs.resize(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::uint8_t* raw = bytes.data() + i * size;
        map::LineDef& line = level.LineDefs[i];
        if (extended)
        {
            line.StartVertex = Le32u(raw);
            line.EndVertex = Le32u(raw + 4);
            line.Flags = ReadLe16(raw + 8);
            const std::size_t sides = layout == map::LayoutHexen ? 16 : 14;
            line.SideDef1 = Le32u(raw + sides);
            line.SideDef2 = Le32u(raw + sides + 4);
        }
        else
        {
            line.StartVertex = ReadLe16(raw);
            line.EndVertex = ReadLe16(raw + 2);
            line.Flags = ReadLe16(raw + 4);
            const std::size_t sides = layout == map::LayoutHexen ? 12 : 10;
            line.SideDef1 = SideIndex16(raw + sides);
            line.SideDef2 = SideIndex16(raw + sides + 2);
        }
        const std::size_t fields = extended ? 10 : 6;
        if (layout == map::LayoutHexen)
        {
            // The special stands in the type, its first argument in the tag, so the rest of
            // the editor treats both layouts alike.
            line.Type = raw[fields];
            line.Tag = raw[fields + 1];
            std::copy_n(raw + fields + 2, 4, line.Args.begin());
        }
        else
        {
            line.Type = ReadLe16(raw + fields);
            line.Tag = ReadLe16(raw + fields + 2);
        }
    }
}

void ReadSectors(LevelData& level)
{
    const std::vector<std::uint8_t> bytes = ReadLumpBytes(FindLevelLump("SECTORS", true));
    const std::size_t count = bytes.size() / SectorSize;
    level.Sectors.Reserve(Capacity(count, 500));
    level.Sectors.resize(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::uint8_t* raw = bytes.data() + i * SectorSize;
        map::Sector& sector = level.Sectors[i];
        sector.FloorHeight = Le16s(raw);
        sector.CeilingHeight = Le16s(raw + 2);
        sector.FloorTexture = NameAt(raw + 4);
        sector.CeilingTexture = NameAt(raw + 12);
        sector.Light = Le16s(raw + 20);
        sector.Type = ReadLe16(raw + 22);
        sector.Tag = ReadLe16(raw + 24);
    }
}

void NoteNodeLumps(LevelData& level, int layout, bool newLevel)
{
    const int segs = FindLevelLump("SEGS", false);
    const int subsectors = FindLevelLump("SSECTORS", false);
    const int nodes = FindLevelLump("NODES", false);
    const int reject = FindLevelLump("REJECT", false);
    const int blockmap = FindLevelLump("BLOCKMAP", false);
    const int behavior = FindLevelLump("BEHAVIOR", false);
    if (newLevel)
    {
        // A new level keeps no node data of the old one; a Hexen project keeps its script.
        for (const int entry : {segs, subsectors, nodes, reject, blockmap})
        {
            if (entry >= 0)
            {
                Master().Edit(static_cast<std::size_t>(entry)).Size = 0;
            }
        }
        if (behavior >= 0 && Wad().Game.Format != map::GameHexen)
        {
            Master().Edit(static_cast<std::size_t>(behavior)).Size = 0;
        }
    }
    level.SegCount = LumpSize(segs) / static_cast<std::int32_t>(SegSize);
    level.SSectorCount = LumpSize(subsectors) / static_cast<std::int32_t>(SSectorSize);
    level.NodeCount = LumpSize(nodes) / static_cast<std::int32_t>(NodeSize);
    level.RejectSize = LumpSize(reject);
    level.BlockmapSize = LumpSize(blockmap);
    level.BehaviorSize = layout == map::LayoutHexen ? LumpSize(behavior) : 0;
}

// Makes the level's file the current one, with only its stream open, and returns the
// marker's index in the master directory.
std::size_t OpenLevelFile(std::string_view levelName)
{
    WadState& wad = Wad();
    const int marker = FindLump(wad.Files[0], levelName, true);
    const LumpEntry& entry = Master()[static_cast<std::size_t>(marker)];
    wad.CurrentFile.FileNumber = entry.FileNumber;
    wad.CurrentFile.LevelStart = static_cast<std::size_t>(marker);
    FileRec& file = wad.Files[static_cast<std::size_t>(entry.FileNumber)];
    CloseFiles('R', false, false);
    EnsureOpen(file);
    return static_cast<std::size_t>(marker);
}

void MakeEmpty(LevelData& level)
{
    level.Things.Reserve(200);
    level.LineDefs.Reserve(1000);
    level.SideDefs.Reserve(2000);
    level.Sectors.Reserve(500);
    level.Vertexes.Reserve(2000);
}

} // namespace

void ConvertSideDefsIn(std::span<const std::uint8_t> source, std::size_t count,
                       map::ObjectArray<map::SideDef>& sides)
{
    count = std::min(count, source.size() / SideDefSize);
    sides.resize(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::uint8_t* raw = source.data() + i * SideDefSize;
        map::SideDef& side = sides[i];
        side.XOffset = Le16s(raw);
        side.YOffset = Le16s(raw + 2);
        side.UpperTexture = NameAt(raw + 4);
        side.LowerTexture = NameAt(raw + 12);
        side.NormalTexture = NameAt(raw + 20);
        side.Sector = ReadLe16(raw + 28);
    }
}

int LevelLayoutOf(std::FILE* stream, std::string_view levelName, int directoryIndex)
{
    const std::vector<LumpEntry> directory = ReadDirectoryQuietly(stream, nullptr);
    const auto count = static_cast<std::int32_t>(directory.size());
    const auto nameAt = [&](std::int32_t i) -> const LumpName&
    { return directory[static_cast<std::size_t>(i)].Name; };
    std::int32_t at = directoryIndex;
    if (at < 0)
    {
        const LumpName wanted = LumpName::From(levelName);
        for (std::int32_t i = 0; i < count && at < 0; ++i)
        {
            at = SameName(nameAt(i), wanted) ? i : -1;
        }
    }
    if (at < 0 || count - at - 1 < 5 || !nameAt(at + 1).Is("THINGS") ||
        !nameAt(at + 2).Is("LINEDEFS") || !nameAt(at + 4).Is("VERTEXES"))
    {
        return 0;
    }
    for (std::int32_t i = at + 5; i < count; ++i)
    {
        const LumpName& name = nameAt(i);
        if (name.Is("THINGS") || ReservedName(name) == 0)
        {
            return 1;
        }
        if (name.Is("BEHAVIOR"))
        {
            return 2;
        }
    }
    return 1;
}

int ReadLevel(LevelData& level, std::string_view levelName, bool newLevel)
{
    OpenLevelFile(levelName);
    FileRec& file = Wad().Files[static_cast<std::size_t>(Wad().CurrentFile.FileNumber)];
    int layout = LevelLayoutOf(file.Stream.get(), levelName, -1);
    layout = layout == map::LayoutNone ? map::LayoutDoom : layout;
    level = LevelData{};
    level.LevelLayout = static_cast<std::uint16_t>(layout);
    const int format = Wad().Game.Format;
    const int mismatch = layout == map::LayoutHexen && format != map::GameHexen
                             ? 2
                             : (layout == map::LayoutDoom && format == map::GameHexen ? 1 : 0);

    if (newLevel)
    {
        MakeEmpty(level);
    }
    else
    {
        ReadThings(level, layout);
        // Each lump's bytes go as soon as they are converted, so a big level never holds
        // more than one lump twice.
        std::size_t sideCount = 0;
        {
            const std::vector<std::uint8_t> sides = ReadLumpBytes(FindLevelLump("SIDEDEFS", true));
            sideCount = sides.size() / SideDefSize;
            level.SideDefs.Reserve(Capacity(sideCount, 2000));
            ConvertSideDefsIn(sides, sideCount, level.SideDefs);
        }
        {
            const std::vector<std::uint8_t> lines = ReadLumpBytes(FindLevelLump("LINEDEFS", true));
            const std::size_t lineCount =
                lines.size() / (layout == map::LayoutHexen ? HexenLineSize : DoomLineSize);
            ReadLineDefs(level, lines, layout,
                         lineCount >= ExtendedFormatCount || sideCount >= ExtendedFormatCount);
        }
        ReadUsedVertexes(level, ReadLumpBytes(FindLevelLump("VERTEXES", true)));
        ReadSectors(level);
        RepairSideDefSectors(level);
        RepairLineSides(level);
        ApplyFormatMismatch(level, mismatch);
    }
    NoteNodeLumps(level, layout, newLevel);
    map::MeasureLevel(level);
    CheckSideDefPacking(level);
    return 1;
}

} // namespace kelvar::wad
