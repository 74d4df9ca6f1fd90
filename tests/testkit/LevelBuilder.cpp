// LevelBuilder: levels built in a few calls for tests, in memory or as lumps of a WAD.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/LevelBuilder.h"

#include "map/ObjectStore.h"

namespace kelvar::testkit
{
namespace
{

void Put16(std::string& out, std::uint32_t value)
{
    out += static_cast<char>(value & 0xFF);
    out += static_cast<char>((value >> 8) & 0xFF);
}

void Put32(std::string& out, std::uint32_t value)
{
    Put16(out, value & 0xFFFF);
    Put16(out, value >> 16);
}

void PutName(std::string& out, const map::TextureName& name)
{
    out.append(name.Chars.begin(), name.Chars.end());
}

bool IsHexen(LevelLayout layout)
{
    return layout == LevelLayout::Hexen || layout == LevelLayout::ExtendedHexen;
}

} // namespace

LevelBuilder::LevelBuilder()
{
    map::LevelInit(Data);
}

LevelBuilder& LevelBuilder::Vertex(int x, int y)
{
    Data.Vertexes.push_back({static_cast<std::int16_t>(x), static_cast<std::int16_t>(y)});
    return *this;
}

LevelBuilder& LevelBuilder::Sector(int floor, int ceiling)
{
    map::Sector sector;
    sector.FloorHeight = static_cast<std::int16_t>(floor);
    sector.CeilingHeight = static_cast<std::int16_t>(ceiling);
    sector.FloorTexture = map::TextureName::From("FLOOR4_8");
    sector.CeilingTexture = map::TextureName::From("CEIL3_5");
    sector.Light = 160;
    Data.Sectors.push_back(sector);
    return *this;
}

LevelBuilder& LevelBuilder::Side(std::uint32_t sector, std::string_view normal)
{
    map::SideDef side;
    side.NormalTexture = map::TextureName::From(normal);
    side.Sector = sector;
    Data.SideDefs.push_back(side);
    return *this;
}

LevelBuilder& LevelBuilder::Line(std::uint32_t start, std::uint32_t end, std::uint32_t side1,
                                 std::uint32_t side2)
{
    map::LineDef line;
    line.StartVertex = start;
    line.EndVertex = end;
    line.SideDef1 = side1;
    line.SideDef2 = side2;
    map::SetSideFlags(line);
    Data.LineDefs.push_back(line);
    return *this;
}

LevelBuilder& LevelBuilder::Room(int x, int y, int width, int height)
{
    return Polygon({{x, y}, {x, y + height}, {x + width, y + height}, {x + width, y}});
}

LevelBuilder& LevelBuilder::Polygon(std::initializer_list<std::pair<int, int>> corners)
{
    const auto sector = static_cast<std::uint32_t>(Data.Sectors.Count());
    const auto first = static_cast<std::uint32_t>(Data.Vertexes.Count());
    const auto count = static_cast<std::uint32_t>(corners.size());
    Sector();
    for (const auto& [x, y] : corners)
    {
        Vertex(x, y);
    }
    for (std::uint32_t i = 0; i < count; ++i)
    {
        const auto side = static_cast<std::uint32_t>(Data.SideDefs.Count());
        Side(sector);
        Line(first + i, first + (i + 1) % count, side);
    }
    return *this;
}

LevelBuilder& LevelBuilder::Thing(int x, int y, std::uint16_t type, std::uint16_t angle,
                                  std::uint16_t flags)
{
    map::Thing thing;
    thing.X = x;
    thing.Y = y;
    thing.Type = type;
    thing.Angle = angle;
    thing.Flags = flags;
    Data.Things.push_back(thing);
    return *this;
}

map::LevelData LevelBuilder::Build() const
{
    map::LevelData level = Data;
    map::MeasureLevel(level);
    return level;
}

std::string LevelBuilder::ThingsLump(LevelLayout layout) const
{
    std::string out;
    for (const map::Thing& thing : Data.Things)
    {
        if (IsHexen(layout))
        {
            Put16(out, thing.Tid);
            Put16(out, static_cast<std::uint16_t>(thing.X));
            Put16(out, static_cast<std::uint16_t>(thing.Y));
            Put16(out, static_cast<std::uint16_t>(thing.Z));
            Put16(out, thing.Angle);
            Put16(out, thing.Type);
            Put16(out, thing.Flags);
            out += static_cast<char>(thing.Special);
            out.append(thing.Args.begin(), thing.Args.end());
        }
        else
        {
            Put16(out, static_cast<std::uint16_t>(thing.X));
            Put16(out, static_cast<std::uint16_t>(thing.Y));
            Put16(out, thing.Angle);
            Put16(out, thing.Type);
            Put16(out, thing.Flags);
        }
    }
    return out;
}

std::string LevelBuilder::LineDefsLump(LevelLayout layout) const
{
    const bool extended =
        layout == LevelLayout::ExtendedDoom || layout == LevelLayout::ExtendedHexen;
    std::string out;
    for (const map::LineDef& line : Data.LineDefs)
    {
        const auto put = [&](std::uint32_t value)
        { extended ? Put32(out, value) : Put16(out, value); };
        put(line.StartVertex);
        put(line.EndVertex);
        Put16(out, line.Flags);
        if (IsHexen(layout))
        {
            out += static_cast<char>(line.Type);
            out += static_cast<char>(line.Tag);
            out.append(line.Args.begin(), line.Args.end());
        }
        else
        {
            Put16(out, line.Type);
            Put16(out, line.Tag);
        }
        put(line.SideDef1);
        put(line.SideDef2);
    }
    return out;
}

std::string LevelBuilder::SideDefsLump() const
{
    std::string out;
    for (const map::SideDef& side : Data.SideDefs)
    {
        Put16(out, static_cast<std::uint16_t>(side.XOffset));
        Put16(out, static_cast<std::uint16_t>(side.YOffset));
        PutName(out, side.UpperTexture);
        PutName(out, side.LowerTexture);
        PutName(out, side.NormalTexture);
        Put16(out, side.Sector);
    }
    return out;
}

std::string LevelBuilder::VertexesLump() const
{
    std::string out;
    for (const map::Vertex& vertex : Data.Vertexes)
    {
        Put16(out, static_cast<std::uint16_t>(vertex.X));
        Put16(out, static_cast<std::uint16_t>(vertex.Y));
    }
    return out;
}

std::string LevelBuilder::SectorsLump() const
{
    std::string out;
    for (const map::Sector& sector : Data.Sectors)
    {
        Put16(out, static_cast<std::uint16_t>(sector.FloorHeight));
        Put16(out, static_cast<std::uint16_t>(sector.CeilingHeight));
        PutName(out, sector.FloorTexture);
        PutName(out, sector.CeilingTexture);
        Put16(out, static_cast<std::uint16_t>(sector.Light));
        Put16(out, sector.Type);
        Put16(out, sector.Tag);
    }
    return out;
}

WadBuilder& LevelBuilder::WriteTo(WadBuilder& wad, std::string_view name, LevelLayout layout) const
{
    wad.Marker(name)
        .Lump("THINGS", ThingsLump(layout))
        .Lump("LINEDEFS", LineDefsLump(layout))
        .Lump("SIDEDEFS", SideDefsLump())
        .Lump("VERTEXES", VertexesLump())
        .Marker("SEGS")
        .Marker("SSECTORS")
        .Marker("NODES")
        .Lump("SECTORS", SectorsLump())
        .Marker("REJECT")
        .Marker("BLOCKMAP");
    if (IsHexen(layout))
    {
        wad.Lump("BEHAVIOR", std::string("ACS\0\x08\0\0\0\0\0\0\0\0\0\0\0", 16));
    }
    return wad;
}

map::ObjectList Marked(std::initializer_list<int> objects)
{
    map::ObjectList list;
    for (const int object : objects)
    {
        map::ObjectListPush(list, object);
    }
    return list;
}

LevelBuilder TwoRoomsBuilder()
{
    LevelBuilder builder;
    builder.Sector().Sector(0, 96);
    builder.Vertex(0, 0).Vertex(0, 128).Vertex(128, 128).Vertex(128, 0); // 0 to 3
    builder.Vertex(256, 128).Vertex(256, 0);                             // 4, 5
    for (const std::uint32_t sector : {0u, 0u, 0u, 1u, 1u, 1u, 1u, 0u})
    {
        builder.Side(sector);
    }
    builder.Line(0, 1, 0).Line(1, 2, 1).Line(3, 0, 2); // the west room's outer walls
    builder.Line(2, 4, 3).Line(3, 2, 6, 7);            // 3: the east room's top, 4: shared
    builder.Line(4, 5, 4).Line(5, 3, 5);               // the east room's other walls
    builder.Thing(64, 64, 1).Thing(200, 64, 3004).Thing(100, 100, 3004);
    return builder;
}

map::LevelData TwoRooms()
{
    return TwoRoomsBuilder().Build();
}

map::LevelData WallOfTwoLines()
{
    LevelBuilder wall;
    wall.Sector().Vertex(0, 0).Vertex(64, 0).Vertex(128, 0);
    wall.Side(0, "FIRST").Side(0, "SECOND").Line(0, 1, 0).Line(1, 2, 1);
    return wall.Build();
}

} // namespace kelvar::testkit
