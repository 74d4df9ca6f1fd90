// LevelBuilder: levels built in a few calls for tests, in memory or as lumps of a WAD.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "map/ObjectList.h"
#include "tests/testkit/MapPrinters.h"
#include "tests/testkit/WadBuilder.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace kelvar::testkit
{

/// The layouts a built level can be written in.
enum class LevelLayout
{
    Doom,
    Hexen,
    ExtendedDoom,
    ExtendedHexen,
};

/// Builds a level: `LevelBuilder().Room(0, 0, 128, 128).Thing(64, 64, 1).Build()`. Numbers are
/// given in the order objects are added, so tests can name them.
class LevelBuilder
{
public:
    LevelBuilder();

    /// A Vertex.
    LevelBuilder& Vertex(int x, int y);
    /// A Sector with default flats (FLOOR4_8, CEIL3_5) and light 160.
    LevelBuilder& Sector(int floor = 0, int ceiling = 128);
    /// A SideDef facing Sector `sector`, with a normal texture.
    LevelBuilder& Side(std::uint32_t sector, std::string_view normal = "STARTAN3");
    /// A LineDef between two Vertexes with the given sides; flags follow the sides.
    LevelBuilder& Line(std::uint32_t start, std::uint32_t end, std::uint32_t side1,
                       std::uint32_t side2 = map::NoSideDef);
    /// A closed square room: its Sector, four Vertexes, four one-sided LineDefs running
    /// clockwise (their right sides face in) and their SideDefs.
    LevelBuilder& Room(int x, int y, int width, int height);
    /// A closed room of any shape: its Sector, a Vertex at each corner, and one-sided LineDefs
    /// from each corner to the next and from the last back to the first, with their SideDefs.
    /// Corners given clockwise make the sides face in.
    LevelBuilder& Polygon(std::initializer_list<std::pair<int, int>> corners);
    /// A Thing.
    LevelBuilder& Thing(int x, int y, std::uint16_t type, std::uint16_t angle = 0,
                        std::uint16_t flags = 7);

    /// The level as built so far, to change by hand (bad references and the like).
    map::LevelData& Level() { return Data; }
    /// The level, bounds measured.
    map::LevelData Build() const;

    /// Puts the level's marker and its five object lumps into a WAD, in canonical order; a
    /// Hexen layout adds an empty BEHAVIOR after an empty BLOCKMAP.
    WadBuilder& WriteTo(WadBuilder& wad, std::string_view name,
                        LevelLayout layout = LevelLayout::Doom) const;

    std::string ThingsLump(LevelLayout layout) const;
    std::string LineDefsLump(LevelLayout layout) const;
    std::string SideDefsLump() const;
    std::string VertexesLump() const;
    std::string SectorsLump() const;

private:
    map::LevelData Data;
};

/// A list marked in the order given: the last is the head, as a user's last click is.
map::ObjectList Marked(std::initializer_list<int> objects);

/// Two rooms sharing the wall x = 128 (LineDef 4, Vertexes 3 to 2). The west room, Sector 0
/// (floor 0, ceiling 128), is bordered by LineDefs 0, 1, 2 and 4; the east room, Sector 1
/// (floor 0, ceiling 96), by 3, 4, 5 and 6. LineDef 4 has SideDef 6 facing east (Sector 1) and
/// SideDef 7 facing west (Sector 0). Three Things: a player start in the west room and two
/// Things of type 3004, one in each room.
LevelBuilder TwoRoomsBuilder();

/// TwoRoomsBuilder's level, bounds measured.
map::LevelData TwoRooms();

/// A straight wall along y = 0 through Vertex 1 at (64, 0): LineDef 0 runs from Vertex 0 to 1
/// with a side textured FIRST, LineDef 1 from 1 to 2 with one textured SECOND, both facing
/// Sector 0.
map::LevelData WallOfTwoLines();

} // namespace kelvar::testkit
