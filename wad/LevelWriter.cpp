// Writing a WAD front to back: the level's rows, copied lumps, the directory.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LevelWriter.h"

#include "map/GameCodes.h"
#include "platform/Assert.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/LevelReader.h"

#include <algorithm>
#include <array>

namespace kelvar::wad
{
namespace
{

// Rows go out in blocks of this many bytes at most, so a huge level needs no second copy of
// a whole lump.
constexpr std::size_t BlockBytes = 128000;

std::size_t ThingSize(const RowLayout& layout)
{
    return layout.Layout == map::LayoutHexen ? HexenThingSize : DoomThingSize;
}

std::size_t LineSize(const RowLayout& layout)
{
    if (layout.Wide)
    {
        return layout.Layout == map::LayoutHexen ? ExtendedHexenLineSize : ExtendedDoomLineSize;
    }
    return layout.Layout == map::LayoutHexen ? HexenLineSize : DoomLineSize;
}

void PutThing(std::uint8_t* raw, const map::Thing& thing, const RowLayout& layout)
{
    if (layout.Layout == map::LayoutHexen)
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
    if (layout.Layout == map::LayoutHexen)
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

// Writes the rows of `records` made by `put`, `size` bytes each, to `stream` a block at a time,
// adding the bytes written to `counter`.
template <typename Records, typename Put>
bool WriteRows(std::FILE* stream, const Records& records, std::size_t size, Put put,
               std::int64_t& counter)
{
    const std::size_t perBlock = std::max<std::size_t>(BlockBytes / size, 1);
    std::vector<std::uint8_t> block(std::min(perBlock, records.size()) * size);
    for (std::size_t first = 0; first < records.size(); first += perBlock)
    {
        const std::size_t count = std::min(perBlock, records.size() - first);
        for (std::size_t i = 0; i < count; ++i)
        {
            put(block.data() + i * size, records[first + i]);
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

// The object lumps a level writes from memory, each with the writer of its rows.
struct ObjectLumpRow
{
    std::string_view Name;
    bool (*Write)(WadOutput& out, const map::LevelData& level, const RowLayout& layout);
};

constexpr ObjectLumpRow ObjectLumps[] = {
    {"THINGS",
     [](WadOutput& out, const map::LevelData& level, const RowLayout& layout)
     {
         return WriteRows(
             out.Stream.get(), level.Things, ThingSize(layout),
             [&](std::uint8_t* raw, const map::Thing& thing) { PutThing(raw, thing, layout); },
             out.Offset);
     }},
    {"LINEDEFS",
     [](WadOutput& out, const map::LevelData& level, const RowLayout& layout)
     {
         return WriteRows(
             out.Stream.get(), level.LineDefs, LineSize(layout),
             [&](std::uint8_t* raw, const map::LineDef& line) { PutLineDef(raw, line, layout); },
             out.Offset);
     }},
    {"SIDEDEFS", [](WadOutput& out, const map::LevelData& level, const RowLayout&)
     { return WriteRows(out.Stream.get(), level.SideDefs, SideDefSize, PutSideDef, out.Offset); }},
    {"VERTEXES", [](WadOutput& out, const map::LevelData& level, const RowLayout&)
     { return WriteRows(out.Stream.get(), level.Vertexes, VertexSize, PutVertex, out.Offset); }},
    {"SECTORS",
     [](WadOutput& out, const map::LevelData& level, const RowLayout& layout)
     {
         return WriteRows(
             out.Stream.get(), level.Sectors, SectorSize,
             [&](std::uint8_t* raw, const map::Sector& sector) { PutSector(raw, sector, layout); },
             out.Offset);
     }},
};

const ObjectLumpRow* FindObjectLump(std::string_view name)
{
    for (const ObjectLumpRow& row : ObjectLumps)
    {
        if (row.Name == name)
        {
            return &row;
        }
    }
    return nullptr;
}

} // namespace

RowLayout ProjectRowLayout(const map::LevelData& level, bool writerSettings)
{
    const WadState& wad = Wad();
    RowLayout rows;
    rows.Layout = map::LayoutOfFormat(wad.Game.Format);
    rows.Wide = level.LineDefs.Count() > 65534 || level.SideDefs.Count() > 65534;
    rows.ShowInvisibleLines = writerSettings && wad.Writer.ShowInvisibleLines;
    rows.ClearSectorSpecials = writerSettings && wad.Writer.ClearSectorSpecials;
    return rows;
}

std::vector<std::uint8_t> ThingRows(const map::LevelData& level, const RowLayout& layout)
{
    const std::size_t size = ThingSize(layout);
    std::vector<std::uint8_t> bytes(level.Things.size() * size);
    for (std::size_t i = 0; i < level.Things.size(); ++i)
    {
        PutThing(bytes.data() + i * size, level.Things[i], layout);
    }
    return bytes;
}

void EnterRow(WadOutput& out, std::string name, std::int64_t start)
{
    out.Rows.push_back({static_cast<std::int32_t>(start),
                        static_cast<std::int32_t>(out.Offset - start), std::move(name)});
}

bool WriteData(WadOutput& out, const void* bytes, std::int64_t size)
{
    if (size > 0 && CheckedWrite(out.Stream.get(), bytes, size) != 1)
    {
        return false;
    }
    out.Offset += size;
    return true;
}

bool CopyFileData(WadOutput& out, int fileNumber, std::int32_t offset, std::int32_t size)
{
    if (size <= 0)
    {
        return true;
    }
    if (fileNumber < 0 || fileNumber >= FileTableSize)
    {
        return false;
    }
    FileRec& file = Wad().Files[static_cast<std::size_t>(fileNumber)];
    EnsureOpen(file);
    if (!file.Stream || CheckedSeek(file.Stream.get(), offset) != 1 ||
        CopyFileSpan(out.Stream.get(), file.Stream.get(), size) != 1)
    {
        return false;
    }
    out.Offset += size;
    return true;
}

bool WriteObjectLump(WadOutput& out, const map::LevelData& level, const RowLayout& layout,
                     std::string_view name)
{
    const ObjectLumpRow* row = FindObjectLump(name);
    KELVAR_ASSERT(row != nullptr);
    const std::int64_t start = out.Offset;
    if (row == nullptr || !row->Write(out, level, layout))
    {
        return false;
    }
    EnterRow(out, std::string(name), start);
    return true;
}

bool IsObjectLump(std::string_view name)
{
    return FindObjectLump(name) != nullptr;
}

bool WriteBehavior(WadOutput& out, const LumpEntry* old)
{
    const std::int64_t start = out.Offset;
    const std::array<std::uint8_t, 16> empty{};
    const bool written = old != nullptr && old->Size > 0
                             ? CopyFileData(out, old->FileNumber, old->Offset, old->Size)
                             : WriteData(out, empty.data(), 16);
    if (!written)
    {
        return false;
    }
    EnterRow(out, "BEHAVIOR", start);
    return true;
}

bool WriteDirectoryAndHeader(WadOutput& out, std::string_view magic)
{
    std::FILE* stream = out.Stream.get();
    const std::vector<DirectoryRow>& rows = out.Rows;
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
