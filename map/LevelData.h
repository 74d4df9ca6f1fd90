// The level record: the five object arrays of one level and their header.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Objects are known by their position in their array (their object number). There are no
//   handles: every deletion renumbers what follows, and every reference is a number that
//   renumbering takes down by comparison only, so a stale reference stays stale.
// - References of a LineDef to Vertexes and SideDefs, and of a SideDef to its Sector, are 32
//   bits wide in memory whatever the file layout, so a level can be held that exceeds the
//   limits of the layout it will be saved in; the save checks those limits.
// - NoSideDef and NoSector are all ones; every test is an equality with them.
// - Vertex coordinates are 16 bits in memory as in the file: anything written to a Vertex is
//   truncated to 16 bits. Things keep 32-bit positions and are truncated on save.
// - The same LevelData serves the current level, the internal clipboard and each undo step.
#pragma once

#include "map/GameCodes.h"
#include "map/ObjectArray.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::map
{

/// Object kind codes. The gaps are meaningful: 5, 6, 7, 9 and 10 are not held in the store.
inline constexpr int KindThing = 1;
inline constexpr int KindLineDef = 2;
inline constexpr int KindSideDef = 3;
inline constexpr int KindVertex = 4;
inline constexpr int KindSegment = 5;
inline constexpr int KindSSector = 6;
inline constexpr int KindNode = 7;
inline constexpr int KindSector = 8;
inline constexpr int KindReject = 9;
inline constexpr int KindBlockmap = 10;

/// True for the kinds the store holds: Thing, LineDef, SideDef, Vertex and Sector.
constexpr bool StoredKind(int kind)
{
    return kind == KindThing || kind == KindLineDef || kind == KindSideDef || kind == KindVertex ||
           kind == KindSector;
}

/// "Thing", "LineDef", "SideDef", "Vertex", "Segment", "SSector", "Node", "Sector", "Reject",
/// "Blockmap" for 1 to 10, "<?unknown?>" for anything else.
const char* KindName(int kind);

/// The reference that names no SideDef, and no Sector.
inline constexpr std::uint32_t NoSideDef = 0xFFFFFFFFu;
inline constexpr std::uint32_t NoSector = 0xFFFFFFFFu;

/// A wall or flat name: 8 bytes, zero padded, not terminated when all 8 are used; compared and
/// copied as 8 bytes, never as a terminated string, and with case.
struct TextureName
{
    std::array<char, 8> Chars{};

    /// The first 8 characters of `text`, zero padded.
    static TextureName From(std::string_view text);
    /// The characters up to the first zero byte.
    std::string Text() const;
    /// No texture on this face: the first byte is '-'.
    bool IsNone() const { return Chars[0] == '-'; }
    /// A colour or fog map of the ports ('$' or '#' first), never looked up in the catalogue.
    bool IsSpecial() const { return Chars[0] == '$' || Chars[0] == '#'; }

    bool operator==(const TextureName&) const = default;
};

/// "-" and seven zero bytes: no texture.
inline constexpr TextureName NoTexture{{'-', 0, 0, 0, 0, 0, 0, 0}};
/// What the save-time check writes for a name the catalogue doesn't know, when asked to.
inline constexpr TextureName UnknownTextureMark{{'#', 'N', 'O', 'T', 'E', 'X', 'T', '#'}};

struct Thing
{
    std::int32_t X = 0;
    std::int32_t Y = 0;
    std::uint16_t Angle = 0; // degrees; 0 east, counter-clockwise
    std::uint16_t Type = 0;
    std::uint16_t Flags = 0;  // the lump's flag word, kept whole
    std::int16_t Z = 0;       // Hexen layout only: height above the floor
    std::uint16_t Tid = 0;    // Hexen layout only
    std::uint8_t Special = 0; // Hexen layout only
    std::array<std::uint8_t, 5> Args{};

    bool operator==(const Thing&) const = default;
};

/// LineDef flag bits the editing code keeps consistent with the sides.
inline constexpr std::uint16_t FlagImpassable = 1;
inline constexpr std::uint16_t FlagTwoSided = 4;

struct LineDef
{
    std::uint32_t StartVertex = 0;
    std::uint32_t EndVertex = 0;
    std::uint16_t Flags = 0;
    std::uint32_t Type = 0; // Hexen layout: the special, in the low byte
    std::uint16_t Tag = 0;  // Hexen layout: the special's first argument, in the low byte
    std::uint32_t SideDef1 = NoSideDef; // front: right of StartVertex to EndVertex
    std::uint32_t SideDef2 = NoSideDef; // back
    std::array<std::uint8_t, 4> Args{}; // Hexen layout: second to fifth arguments

    /// The SideDef reference of side `which`: 1 the front, 2 the back.
    std::uint32_t Side(int which) const { return which == 1 ? SideDef1 : SideDef2; }
    std::uint32_t& Side(int which) { return which == 1 ? SideDef1 : SideDef2; }

    bool operator==(const LineDef&) const = default;
};

struct SideDef
{
    std::int16_t XOffset = 0;
    std::int16_t YOffset = 0;
    TextureName UpperTexture = NoTexture;
    TextureName LowerTexture = NoTexture;
    TextureName NormalTexture = NoTexture; // the middle texture
    std::uint32_t Sector = NoSector;

    bool operator==(const SideDef&) const = default;
};

struct Vertex
{
    std::int16_t X = 0;
    std::int16_t Y = 0;

    bool operator==(const Vertex&) const = default;
};

struct Sector
{
    std::int16_t FloorHeight = 0;
    std::int16_t CeilingHeight = 0;
    TextureName FloorTexture;
    TextureName CeilingTexture;
    std::int16_t Light = 0;
    std::uint16_t Type = 0;
    std::uint16_t Tag = 0;

    bool operator==(const Sector&) const = default;
};

/// The bounding box of a fresh level: empty, so that the first Vertex sets it.
inline constexpr std::int32_t EmptyBoxMax = -327670;
inline constexpr std::int32_t EmptyBoxMin = 327670;

/// One level in memory.
struct LevelData
{
    ObjectArray<Thing> Things;
    ObjectArray<LineDef> LineDefs;
    ObjectArray<SideDef> SideDefs;
    ObjectArray<Vertex> Vertexes;
    ObjectArray<Sector> Sectors;
    /// MapChanged: up with every edit; not 0 means unsaved changes.
    std::uint16_t ChangeCount = 0;
    /// NodesChanged: up with every edit that touches anything but a Thing; not 0 means the
    /// nodes must be rebuilt on save.
    std::uint16_t GeometryChangeCount = 0;
    std::uint16_t LevelLayout = LayoutDoom; // a LayoutCode, as read
    std::uint16_t NodesCurrent = 0;
    std::int32_t SourceCommand = 0; // the command that filled the internal clipboard
    std::int32_t MaxX = EmptyBoxMax;
    std::int32_t MinX = EmptyBoxMin;
    std::int32_t MaxY = EmptyBoxMax;
    std::int32_t MinY = EmptyBoxMin;
    // What the level's node lumps hold, noted at reading; their bytes stay in the file.
    std::int32_t SegCount = 0;
    std::int32_t SSectorCount = 0;
    std::int32_t NodeCount = 0;
    std::int32_t BlockmapSize = 0;
    std::int32_t RejectSize = 0;
    std::int32_t BehaviorSize = 0;

    bool operator==(const LevelData&) const = default;
};

} // namespace kelvar::map
