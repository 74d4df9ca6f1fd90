// The door and lift makers.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/MoverOps.h"

#include "map/Geometry.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/SectorOps.h"
#include "platform/Format.h"
#include "platform/Messages.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

namespace kelvar::map
{

namespace
{

// Flag words of the door and lift LineDefs.
constexpr std::uint16_t HexenUseRepeatFlags = 1540; // two-sided, repeatable, used
constexpr std::uint16_t HexenWalkRepeatFlags = 516; // two-sided, repeatable, walked over
constexpr std::uint16_t TrackFlags = 17;            // impassable, lower unpegged

// Door and lift specials.
constexpr std::uint32_t DoomDoorType = 1;
constexpr std::uint32_t HexenDoorType = 12;
constexpr std::uint32_t LiftType = 62;
constexpr std::uint32_t DoomLiftTriggerType = 88;

// The LineDefs of a Sector, by how they meet it.
struct SectorLines
{
    std::vector<std::size_t> OnBack;  // two-sided, the Sector behind
    std::vector<std::size_t> OnFront; // two-sided, the Sector in front
    std::vector<std::size_t> OneSided;
};

SectorLines LinesOf(const LevelData& level, std::uint32_t sector)
{
    SectorLines lines;
    for (std::size_t at = 0; at < level.LineDefs.size(); ++at)
    {
        const LineDef& line = level.LineDefs[at];
        const bool front = SectorOfSide(level, line.SideDef1) == sector;
        const bool back = SectorOfSide(level, line.SideDef2) == sector;
        if (!front && !back)
        {
            continue;
        }
        if (line.SideDef1 == NoSideDef || line.SideDef2 == NoSideDef)
        {
            lines.OneSided.push_back(at);
        }
        else if (back)
        {
            lines.OnBack.push_back(at);
        }
        else
        {
            lines.OnFront.push_back(at);
        }
    }
    return lines;
}

void FlipLine(LevelData& level, std::size_t at)
{
    LineDef& line = level.LineDefs[at];
    std::swap(line.StartVertex, line.EndVertex);
    std::swap(line.SideDef1, line.SideDef2);
}

// The Sector's two-sided LineDefs, those with the Sector in front turned round, so that all
// face out of it: the neighbour in front, the Sector behind.
std::vector<std::size_t> FacingOut(LevelData& level, const SectorLines& lines)
{
    std::vector<std::size_t> out = lines.OnBack;
    for (const std::size_t at : lines.OnFront)
    {
        FlipLine(level, at);
        out.push_back(at);
    }
    return out;
}

// Asks the speed and delay of a Hexen mover under `caption`, starting from `timing`; false
// when cancelled.
bool AskTiming(const char* caption, const char* speedPrompt, const char* delayPrompt,
               MoverTiming& timing)
{
    const std::optional<int> speed =
        platform::TheUi().AskNumber(caption, speedPrompt, timing.Speed, 0, 255);
    const std::optional<int> delay =
        speed ? platform::TheUi().AskNumber(caption, delayPrompt, timing.Delay, 0, 255)
              : std::nullopt;
    if (!delay)
    {
        return false;
    }
    timing = {*speed, *delay};
    return true;
}

void SetTiming(LineDef& line, MoverTiming timing)
{
    line.Args[0] = static_cast<std::uint8_t>(timing.Speed);
    line.Args[1] = static_cast<std::uint8_t>(timing.Delay);
}

// True when the door may be made of a Sector with `twoSided` two-sided LineDefs.
bool DoorSidesAgree(std::size_t twoSided, int sector)
{
    if (twoSided < 2)
    {
        platform::ShowMessageLines(0, "Door",
                                   {platform::Format("Only %d LineDef with 2 sides for Sector %d",
                                                     static_cast<int>(twoSided), sector),
                                    "Add a second side to the LineDef(s)"});
        return false;
    }
    if (twoSided > 2)
    {
        return platform::ShowMessageLines(
                   platform::LinesCancel, "Door",
                   {platform::Format("%d LineDefs with 2 sides Found for Sector %d",
                                     static_cast<int>(twoSided), sector),
                    "The door will have too many sides", "Continue ?"},
                   platform::MessageButtons::YesNo) == 1;
    }
    return true;
}

// A two-sided LineDef becomes a door face: the door special, the door texture above its
// front, no middle textures.
void MakeDoorFace(LevelData& level, std::size_t at, bool hexen, MoverTiming timing)
{
    LineDef& line = level.LineDefs[at];
    line.Type = hexen ? HexenDoorType : DoomDoorType;
    line.Flags = hexen ? HexenUseRepeatFlags : FlagTwoSided;
    if (hexen)
    {
        SetTiming(line, timing);
    }
    const std::uint32_t front = line.SideDef1;
    const std::uint32_t back = line.SideDef2;
    level.SideDefs[front].UpperTexture = Map().Textures.Door;
    level.SideDefs[front].NormalTexture = NoTexture;
    level.SideDefs[back].NormalTexture = NoTexture;
}

// A one-sided LineDef becomes a door track: impassable, lower unpegged, the track texture.
void MakeTrack(LevelData& level, std::size_t at)
{
    LineDef& line = level.LineDefs[at];
    line.Flags = TrackFlags;
    const std::uint32_t side = line.SideDef1 != NoSideDef ? line.SideDef1 : line.SideDef2;
    SideDef& face = level.SideDefs[side];
    face.NormalTexture = Map().Textures.DoorTrack;
    face.UpperTexture = NoTexture;
    face.LowerTexture = NoTexture;
}

// Four LineDefs as two pairs that meet end to end, and which of each pair is the door face.
struct DoorQuad
{
    std::array<std::size_t, 4> Lines{}; // door, track, door, track
};

bool ShareAVertex(const LineDef& a, const LineDef& b)
{
    return a.StartVertex == b.StartVertex || a.StartVertex == b.EndVertex ||
           a.EndVertex == b.StartVertex || a.EndVertex == b.EndVertex;
}

// Of a pair, the door face first: the LineDef whose point a third along lies nearer to the
// middle of the other pair.
std::array<std::size_t, 2> DoorFirst(const LevelData& level, std::size_t a, std::size_t b,
                                     std::size_t c, std::size_t d)
{
    const Point c1 = PointAlong(level, level.LineDefs[c], 0.5);
    const Point d1 = PointAlong(level, level.LineDefs[d], 0.5);
    const Point middle{(c1.X + d1.X) / 2, (c1.Y + d1.Y) / 2};
    const double nearA = Distance(PointAlong(level, level.LineDefs[a], 1.0 / 3), middle);
    const double nearB = Distance(PointAlong(level, level.LineDefs[b], 1.0 / 3), middle);
    return nearA <= nearB ? std::array<std::size_t, 2>{a, b} : std::array<std::size_t, 2>{b, a};
}

std::optional<DoorQuad> FindDoorQuad(const LevelData& level, const std::vector<std::int32_t>& lines)
{
    std::array<std::size_t, 4> at{};
    for (std::size_t i = 0; i < 4; ++i)
    {
        at[i] = static_cast<std::size_t>(lines[i]);
    }
    // The first LineDef's partner, then the other two must meet as well.
    for (std::size_t partner = 1; partner < 4; ++partner)
    {
        std::array<std::size_t, 2> rest{};
        std::size_t n = 0;
        for (std::size_t i = 1; i < 4; ++i)
        {
            if (i != partner)
            {
                rest[n++] = at[i];
            }
        }
        if (ShareAVertex(level.LineDefs[at[0]], level.LineDefs[at[partner]]) &&
            ShareAVertex(level.LineDefs[rest[0]], level.LineDefs[rest[1]]))
        {
            const auto first = DoorFirst(level, at[0], at[partner], rest[0], rest[1]);
            const auto second = DoorFirst(level, rest[0], rest[1], at[0], at[partner]);
            return DoorQuad{{first[0], first[1], second[0], second[1]}};
        }
    }
    return std::nullopt;
}

// A door face's sides: a back facing the door's Sector when it has none, and a front when it
// lacks one, with the warning that its Sector must be checked by hand.
void AddDoorSides(LevelData& level, std::size_t at, std::uint32_t sector)
{
    if (std::as_const(level).LineDefs[at].SideDef2 == NoSideDef)
    {
        const auto back = static_cast<std::uint32_t>(InsertObject(level, KindSideDef, -1, 0, 0));
        level.SideDefs[back].Sector = sector;
        level.LineDefs[at].SideDef2 = back;
    }
    if (std::as_const(level).LineDefs[at].SideDef1 == NoSideDef)
    {
        const auto front = static_cast<std::uint32_t>(InsertObject(level, KindSideDef, -1, 0, 0));
        level.LineDefs[at].SideDef1 = front;
        platform::ShowMessageLines(0, "Door LineDefs",
                                   {"Missing sideDef1 was added", "You must manually edit the",
                                    "LineDef and Check the Sector Ref!"});
    }
}

} // namespace

bool MakeDoorFromSector(LevelData& level, int sector, bool hexen)
{
    const auto number = static_cast<std::uint32_t>(sector);
    const SectorLines lines = LinesOf(level, number);
    if (!DoorSidesAgree(lines.OnBack.size() + lines.OnFront.size(), sector))
    {
        return false;
    }
    MoverTiming timing{16, 100};
    if (hexen && !AskTiming("Door Options", "Door Speed", "Door Delay", timing))
    {
        return false;
    }
    for (const std::size_t at : FacingOut(level, lines))
    {
        MakeDoorFace(level, at, hexen, timing);
    }
    for (const std::size_t at : lines.OneSided)
    {
        MakeTrack(level, at);
    }
    Sector& door = level.Sectors[number];
    door.CeilingHeight = door.FloorHeight;
    door.CeilingTexture = Map().Textures.DoorCeiling;
    NoteChange(level, KindSector);
    return true;
}

bool MakeLiftFromSector(LevelData& level, int sector, int freeTag, bool hexen)
{
    const auto number = static_cast<std::uint32_t>(sector);
    const SectorLines lines = LinesOf(level, number);
    if (lines.OnBack.empty() && lines.OnFront.empty())
    {
        platform::ShowMessageLines(0, "Lift",
                                   {"The Lift has all 1-sided lines?",
                                    "Add at least one 2-sided line",
                                    "that adjoins a Sector Lower or"});
        return false;
    }
    MoverTiming timing{8, 50};
    if (hexen && !AskTiming("Lift Options", "Lift Speed", "Lift Delay", timing))
    {
        return false;
    }
    const std::vector<std::size_t> edges = FacingOut(level, lines);
    int lowest = 0x7FFF;
    int highest = -0x8000;
    for (const std::size_t at : edges)
    {
        const std::uint32_t neighbour =
            SectorOfSide(level, std::as_const(level).LineDefs[at].SideDef1);
        const int floor = std::as_const(level).Sectors[neighbour].FloorHeight;
        lowest = std::min(lowest, floor);
        highest = std::max(highest, floor);
    }
    Sector& lift = level.Sectors[number];
    lift.FloorHeight = static_cast<std::int16_t>(std::max<int>(lift.FloorHeight, highest));
    lift.CeilingHeight = static_cast<std::int16_t>(std::max<int>(lift.CeilingHeight, highest + 64));
    lift.Tag = static_cast<std::uint16_t>(freeTag);
    const int liftFloor = lift.FloorHeight;
    const DefaultTextures& textures = Map().Textures;
    for (const std::size_t at : edges)
    {
        LineDef& line = level.LineDefs[at];
        line.Type = LiftType;
        line.Tag = static_cast<std::uint16_t>(freeTag);
        line.Flags = hexen ? HexenUseRepeatFlags : FlagTwoSided;
        if (hexen)
        {
            SetTiming(line, timing);
        }
        SideDef& front = level.SideDefs[line.SideDef1];
        if (front.LowerTexture == NoTexture)
        {
            front.LowerTexture = front.NormalTexture.IsNone() ? textures.Lift : front.NormalTexture;
        }
        const int neighbourFloor = std::as_const(level).Sectors[front.Sector].FloorHeight;
        if (neighbourFloor > lowest)
        {
            level.SideDefs[line.SideDef2].LowerTexture = textures.Lift;
        }
        if (neighbourFloor >= liftFloor)
        {
            // Walked over from the top: the trigger side.
            if (hexen)
            {
                line.Flags = HexenWalkRepeatFlags;
            }
            else
            {
                line.Type = DoomLiftTriggerType;
            }
            FlipLine(level, at);
        }
    }
    for (const std::size_t at : lines.OneSided)
    {
        LineDef& line = level.LineDefs[at];
        line.Flags = FlagImpassable;
        const std::uint32_t side = line.SideDef1 != NoSideDef ? line.SideDef1 : line.SideDef2;
        SideDef& wall = level.SideDefs[side];
        if (wall.NormalTexture.IsNone())
        {
            wall.NormalTexture = textures.Normal;
        }
        wall.UpperTexture = NoTexture;
        wall.LowerTexture = NoTexture;
    }
    NoteChange(level, KindSector);
    return true;
}

bool MakeDoorFromLineDefs(LevelData& level, const ObjectList& list, bool hexen)
{
    const std::vector<std::int32_t> lines = list.Objects();
    if (lines.size() != 4)
    {
        platform::ShowMessageLines(
            0, "Door Error",
            {"Select EXACTLY 4 LineDefs",
             platform::Format("You have %d selected", static_cast<int>(lines.size()))});
        return false;
    }
    const std::optional<DoorQuad> quad = FindDoorQuad(level, lines);
    if (!quad)
    {
        platform::ShowMessageLines(
            0, "Door LineDefs",
            {"LineDefs Not Selected Correctly", "The LineDefs must all touch each other"});
        return false;
    }
    MoverTiming timing{16, 100};
    if (hexen && !AskTiming("Door Options", "Door Speed", "Door Delay", timing))
    {
        return false;
    }
    const auto [door1, track1, door2, track2] = quad->Lines;
    // The passage the door stands in: the Sector the tracks were in.
    const std::uint32_t passage =
        SectorOfSide(level, std::as_const(level).LineDefs[track1].SideDef1);
    const auto sector = static_cast<std::uint32_t>(InsertObject(level, KindSector, -1, 0, 0));
    for (const std::size_t door : {door1, door2})
    {
        AddDoorSides(level, door, sector);
        MakeDoorFace(level, door, hexen, timing);
    }
    for (const std::size_t track : {track1, track2})
    {
        const std::uint32_t side = std::as_const(level).LineDefs[track].SideDef1;
        if (side != NoSideDef)
        {
            level.SideDefs[side].Sector = sector;
        }
        MakeTrack(level, track);
    }
    Sector& made = level.Sectors[sector];
    const std::int16_t floor =
        passage < level.Sectors.size() ? std::as_const(level).Sectors[passage].FloorHeight : 0;
    made.FloorHeight = floor;
    made.CeilingHeight = floor;
    made.CeilingTexture = Map().Textures.DoorCeiling;
    NoteChange(level, KindSector);
    return true;
}

} // namespace kelvar::map
