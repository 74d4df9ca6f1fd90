// The level's lumps from memory, as rows of the Doom, Hexen or Extended layout.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LevelWriter.h"

#include "wad/CheckedFile.h"
#include "wad/LevelReader.h"
#include "wad/WadFormat.h"

#include <algorithm>

namespace kelvar::wad
{
namespace
{

// Rows go out in blocks of this many bytes at most, so a huge level needs no second copy of
// a whole lump.
constexpr std::size_t BlockBytes = 128000;

std::size_t ThingSize(const RowLayout& layout)
{
    return layout.Layout == 2 ? HexenThingSize : DoomThingSize;
}

std::size_t LineSize(const RowLayout& layout)
{
    if (layout.Wide)
    {
        return layout.Layout == 2 ? ExtendedHexenLineSize : ExtendedDoomLineSize;
    }
    return layout.Layout == 2 ? HexenLineSize : DoomLineSize;
}

void PutThing(std::uint8_t* raw, const map::Thing& thing, const RowLayout& layout)
{
    if (layout.Layout == 2)
    {
        WriteLe16(raw, thing.Tid);
        WriteLe16(raw + 2, static_cast<std::uint16_t>(thing.X));
        WriteLe16(raw + 4, static_cast<std::uint16_t>(thing.Y));
        WriteLe16(raw + 6, static_cast<std::uint16_t>(thing.Z));
        WriteLe16(raw + 8, thing.Angle);
        WriteLe16(raw + 10, thing.Type);
        WriteLe16(raw + 12, static_cast<std::uint16_t>(thing.Flags & ~0x0010));
        raw[14] = thing.Special;
        std::copy_n(thing.Args.begin(), 5, raw + 15);
        return;
    }
    WriteLe16(raw, static_cast<std::uint16_t>(thing.X));
    WriteLe16(raw + 2, static_cast<std::uint16_t>(thing.Y));
    WriteLe16(raw + 4, thing.Angle);
    WriteLe16(raw + 6, thing.Type);
    WriteLe16(raw + 8, thing.Flags);
}

// A side index of the 16-bit layouts: "none" is 65535.
std::uint16_t Side16(std::uint32_t side)
{
    return side == map::NoSideDef ? 0xFFFF : static_cast<std::uint16_t>(side);
}

void PutLineDef(std::uint8_t* raw, const map::LineDef& line, const RowLayout& layout)
{
    const std::uint16_t flags =
        layout.ShowInvisibleLines ? static_cast<std::uint16_t>(line.Flags & ~0x0080) : line.Flags;
    std::size_t fields = 6;
    if (layout.Wide)
    {
        WriteLe32(raw, static_cast<std::int32_t>(line.StartVertex));
        WriteLe32(raw + 4, static_cast<std::int32_t>(line.EndVertex));
        WriteLe16(raw + 8, flags);
        fields = 10;
    }
    else
    {
        WriteLe16(raw, static_cast<std::uint16_t>(line.StartVertex));
        WriteLe16(raw + 2, static_cast<std::uint16_t>(line.EndVertex));
        WriteLe16(raw + 4, flags);
    }
    std::size_t sides = fields + 4;
    if (layout.Layout == 2)
    {
        // The special stands in the type field, its first argument in the tag field.
        raw[fields] = static_cast<std::uint8_t>(line.Type);
        raw[fields + 1] = static_cast<std::uint8_t>(line.Tag);
        std::copy_n(line.Args.begin(), 4, raw + fields + 2);
        sides = fields + 6;
    }
    else
    {
        WriteLe16(raw + fields, static_cast<std::uint16_t>(line.Type));
        WriteLe16(raw + fields + 2, line.Tag);
    }
    if (layout.Wide)
    {
        WriteLe32(raw + sides, static_cast<std::int32_t>(line.SideDef1));
        WriteLe32(raw + sides + 4, static_cast<std::int32_t>(line.SideDef2));
    }
    else
    {
        WriteLe16(raw + sides, Side16(line.SideDef1));
        WriteLe16(raw + sides + 2, Side16(line.SideDef2));
    }
}

void PutSideDef(std::uint8_t* raw, const map::SideDef& side)
{
    WriteLe16(raw, static_cast<std::uint16_t>(side.XOffset));
    WriteLe16(raw + 2, static_cast<std::uint16_t>(side.YOffset));
    std::copy_n(side.UpperTexture.Chars.begin(), 8, raw + 4);
    std::copy_n(side.LowerTexture.Chars.begin(), 8, raw + 12);
    std::copy_n(side.NormalTexture.Chars.begin(), 8, raw + 20);
    WriteLe16(raw + 28, static_cast<std::uint16_t>(side.Sector));
}

void PutVertex(std::uint8_t* raw, const map::Vertex& vertex)
{
    WriteLe16(raw, static_cast<std::uint16_t>(vertex.X));
    WriteLe16(raw + 2, static_cast<std::uint16_t>(vertex.Y));
}

void PutSector(std::uint8_t* raw, const map::Sector& sector, const RowLayout& layout)
{
    WriteLe16(raw, static_cast<std::uint16_t>(sector.FloorHeight));
    WriteLe16(raw + 2, static_cast<std::uint16_t>(sector.CeilingHeight));
    std::copy_n(sector.FloorTexture.Chars.begin(), 8, raw + 4);
    std::copy_n(sector.CeilingTexture.Chars.begin(), 8, raw + 12);
    WriteLe16(raw + 20, static_cast<std::uint16_t>(sector.Light));
    WriteLe16(raw + 22, layout.ClearSectorSpecials ? 0 : sector.Type);
    WriteLe16(raw + 24, sector.Tag);
}

// Rows of `records` made by `put`, `size` bytes each: all at once, or a block at a time into
// `stream`.
template <typename Records, typename Put>
std::vector<std::uint8_t> Rows(const Records& records, std::size_t size, Put put)
{
    std::vector<std::uint8_t> bytes(records.Array.size() * size);
    for (std::size_t i = 0; i < records.Array.size(); ++i)
    {
        put(bytes.data() + i * size, records.Array[i]);
    }
    return bytes;
}

template <typename Records, typename Put>
bool WriteRows(std::FILE* stream, const Records& records, std::size_t size, Put put,
               std::int64_t& counter)
{
    const std::size_t perBlock = std::max<std::size_t>(BlockBytes / size, 1);
    std::vector<std::uint8_t> block(std::min(perBlock, records.Array.size()) * size);
    for (std::size_t first = 0; first < records.Array.size(); first += perBlock)
    {
        const std::size_t count = std::min(perBlock, records.Array.size() - first);
        for (std::size_t i = 0; i < count; ++i)
        {
            put(block.data() + i * size, records.Array[first + i]);
        }
        const auto bytes = static_cast<std::int64_t>(count * size);
        if (CheckedWrite(stream, block.data(), bytes) != 1)
        {
            return false;
        }
        counter += bytes;
    }
    return true;
}

} // namespace

std::vector<std::uint8_t> ThingRows(const map::LevelData& level, const RowLayout& layout)
{
    return Rows(level.Things, ThingSize(layout),
                [&](std::uint8_t* raw, const map::Thing& thing) { PutThing(raw, thing, layout); });
}

std::vector<std::uint8_t> LineDefRows(const map::LevelData& level, const RowLayout& layout)
{
    return Rows(level.LineDefs, LineSize(layout),
                [&](std::uint8_t* raw, const map::LineDef& line)
                { PutLineDef(raw, line, layout); });
}

std::vector<std::uint8_t> SideDefRows(const map::LevelData& level)
{
    return Rows(level.SideDefs, SideDefSize, PutSideDef);
}

std::vector<std::uint8_t> VertexRows(const map::LevelData& level)
{
    return Rows(level.Vertexes, VertexSize, PutVertex);
}

std::vector<std::uint8_t> SectorRows(const map::LevelData& level, const RowLayout& layout)
{
    return Rows(level.Sectors, SectorSize,
                [&](std::uint8_t* raw, const map::Sector& sector)
                { PutSector(raw, sector, layout); });
}

std::int64_t ThingRowsSize(const map::LevelData& level, const RowLayout& layout)
{
    return static_cast<std::int64_t>(level.Things.Array.size() * ThingSize(layout));
}

std::int64_t LineDefRowsSize(const map::LevelData& level, const RowLayout& layout)
{
    return static_cast<std::int64_t>(level.LineDefs.Array.size() * LineSize(layout));
}

bool WriteThings(std::FILE* stream, const map::LevelData& level, const RowLayout& layout,
                 std::int64_t& counter)
{
    return WriteRows(
        stream, level.Things, ThingSize(layout),
        [&](std::uint8_t* raw, const map::Thing& thing) { PutThing(raw, thing, layout); }, counter);
}

bool WriteLineDefs(std::FILE* stream, const map::LevelData& level, const RowLayout& layout,
                   std::int64_t& counter)
{
    return WriteRows(
        stream, level.LineDefs, LineSize(layout),
        [&](std::uint8_t* raw, const map::LineDef& line) { PutLineDef(raw, line, layout); },
        counter);
}

bool WriteSideDefs(std::FILE* stream, const map::LevelData& level, std::int64_t& counter)
{
    return WriteRows(stream, level.SideDefs, SideDefSize, PutSideDef, counter);
}

bool WriteVertexes(std::FILE* stream, const map::LevelData& level, std::int64_t& counter)
{
    return WriteRows(stream, level.Vertexes, VertexSize, PutVertex, counter);
}

bool WriteSectors(std::FILE* stream, const map::LevelData& level, const RowLayout& layout,
                  std::int64_t& counter)
{
    return WriteRows(
        stream, level.Sectors, SectorSize,
        [&](std::uint8_t* raw, const map::Sector& sector) { PutSector(raw, sector, layout); },
        counter);
}

bool WriteDirectoryAndHeader(std::FILE* stream, const std::vector<DirectoryRow>& rows,
                             std::string_view magic)
{
    const std::int64_t directory = ftello(stream);
    std::vector<std::uint8_t> bytes(rows.size() * DirectoryEntrySize, 0);
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        std::uint8_t* raw = bytes.data() + i * DirectoryEntrySize;
        WriteLe32(raw, rows[i].Offset);
        WriteLe32(raw + 4, rows[i].Size);
        std::copy_n(rows[i].Name.begin(), std::min<std::size_t>(rows[i].Name.size(), 8), raw + 8);
    }
    std::uint8_t header[WadHeaderSize] = {};
    std::copy_n(magic.begin(), std::min<std::size_t>(magic.size(), 4), header);
    WriteLe32(header + 4, static_cast<std::int32_t>(rows.size()));
    WriteLe32(header + 8, static_cast<std::int32_t>(directory));
    return directory >= 0 &&
           CheckedWrite(stream, bytes.data(), static_cast<std::int64_t>(bytes.size())) == 1 &&
           CheckedSeek(stream, 0) == 1 && CheckedWrite(stream, header, WadHeaderSize) == 1;
}

} // namespace kelvar::wad
