// The Sector at a point and beside a LineDef: hand-worked rooms, and the indexed walks against
// a plain scan of every LineDef on random points and on every line of every Freedoom level.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/SectorRays.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"
#include "wad/LevelReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <random>

namespace kelvar::map
{
namespace
{

// ---------------------------------------------------------------------------------------
// The plain scans: every LineDef in array order, the rules as they read, no index.

struct Seg
{
    double X1, Y1, X2, Y2;
};

bool Usable(const LevelData& level, const LineDef& l)
{
    return l.StartVertex < level.Vertexes.size() && l.EndVertex < level.Vertexes.size();
}

Seg SegOf(const LevelData& level, const LineDef& l)
{
    const Vertex& a = level.Vertexes[l.StartVertex];
    const Vertex& b = level.Vertexes[l.EndVertex];
    return {double(a.X), double(a.Y), double(b.X), double(b.Y)};
}

int SideSector(const LevelData& level, std::uint32_t side)
{
    if (side >= level.SideDefs.size() || level.SideDefs[side].Sector >= level.Sectors.size())
    {
        return -1;
    }
    return static_cast<int>(level.SideDefs[side].Sector);
}

Beside PlainBesideAt(const LevelData& level, int line, double fraction, int side)
{
    const Seg t = SegOf(level, level.LineDefs[static_cast<std::size_t>(line)]);
    const long double dx = static_cast<long double>(t.X2) - t.X1;
    const long double dy = static_cast<long double>(t.Y2) - t.Y1;
    const double px = static_cast<double>(t.X1 + dx * fraction);
    const double py = static_cast<double>(t.Y1 + dy * fraction);
    const long double nx = side == 1 ? dy : -dy;
    const long double ny = side == 1 ? -dx : dx;
    const bool horizontal = !(std::fabs(ny) > std::fabs(nx));
    const bool positive = horizontal ? nx > 0 : ny > 0;
    double best = positive ? 327670.0 : -327670.0;
    double bestMiddle = 0;
    int hit = -1;
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        if (static_cast<int>(i) == line || !Usable(level, level.LineDefs[i]))
        {
            continue;
        }
        const Seg s = SegOf(level, level.LineDefs[i]);
        // Along and across the ray.
        const double a1 = horizontal ? s.X1 : s.Y1, c1 = horizontal ? s.Y1 : s.X1;
        const double a2 = horizontal ? s.X2 : s.Y2, c2 = horizontal ? s.Y2 : s.X2;
        const double at = horizontal ? py : px;
        const double from = horizontal ? px : py;
        if ((at < c1) == (at < c2))
        {
            continue;
        }
        const double x = (at - c1) * (a2 - a1) / (c2 - c1) + a1;
        if (positive ? !(x > from) : !(x < from))
        {
            continue;
        }
        const double middle = std::fabs((a1 + a2) / 2 - from);
        if ((positive ? x < best : x > best) || (x == best && hit >= 0 && middle < bestMiddle))
        {
            best = x;
            bestMiddle = middle;
            hit = static_cast<int>(i);
        }
    }
    if (hit < 0)
    {
        return {};
    }
    const LineDef& h = level.LineDefs[static_cast<std::size_t>(hit)];
    const Seg s = SegOf(level, h);
    std::uint32_t facing;
    if (horizontal)
    {
        facing = (s.Y1 < s.Y2) != positive ? h.SideDef1 : h.SideDef2;
    }
    else
    {
        facing = (s.X1 < s.X2) != positive ? h.SideDef2 : h.SideDef1;
    }
    if (facing >= level.SideDefs.size())
    {
        return {-1, hit, -1};
    }
    return {SideSector(level, facing), hit, static_cast<int>(facing)};
}

int PlainSectorAt(const LevelData& level, double px, double py, SectorAtMode mode)
{
    const auto has1 = [&](const LineDef& l) { return l.SideDef1 != NoSideDef && Usable(level, l); };
    const auto spans = [&](const Seg& s)
    { return std::min(s.Y1, s.Y2) <= py && py <= std::max(s.Y1, s.Y2); };
    const auto west = [&](const LineDef& l)
    {
        const Seg s = SegOf(level, l);
        return s.Y2 <= s.Y1 ? l.SideDef1 : l.SideDef2;
    };
    double bestX = 327670.0;
    int hit = -1;
    bool somethingWest = false;
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const LineDef& l = level.LineDefs[i];
        if (!has1(l))
        {
            continue;
        }
        const Seg s = SegOf(level, l);
        if (!spans(s))
        {
            continue;
        }
        double x;
        if (s.Y1 != s.Y2)
        {
            x = (py - s.Y1) * (s.X2 - s.X1) / (s.Y2 - s.Y1) + s.X1;
        }
        else
        {
            x = px < std::min(s.X1, s.X2) ? std::max(s.X1, s.X2) : std::min(s.X1, s.X2);
            if (s.X1 != s.X2)
            {
                x -= 1.0;
            }
        }
        if (x <= px)
        {
            somethingWest = true;
        }
        if (x >= px && x <= bestX)
        {
            bestX = x;
            hit = static_cast<int>(i);
        }
    }
    std::optional<int> answer;
    const auto rule6 = [&](std::uint32_t side) -> std::optional<int>
    {
        if (side == NoSideDef)
        {
            return std::nullopt;
        }
        return somethingWest ? SideSector(level, side) : -1;
    };
    if (hit >= 0)
    {
        const LineDef& h = level.LineDefs[static_cast<std::size_t>(hit)];
        const Seg s = SegOf(level, h);
        const bool throughEnd = py == s.Y1 || py == s.Y2;
        bool tie = false;
        if (!throughEnd || mode == SectorAtMode::Loose)
        {
            answer = rule6(west(h));
            tie = !answer;
        }
        else if (mode == SectorAtMode::Strict)
        {
            if ((px == s.X1 && py == s.Y1) || (px == s.X2 && py == s.Y2))
            {
                answer = -1;
            }
            else
            {
                answer = rule6(west(h));
                tie = !answer;
            }
        }
        else if (west(h) == NoSideDef)
        {
            answer = -1;
        }
        else if (!somethingWest)
        {
            answer = SideSector(level, west(h));
        }
        else
        {
            tie = true;
        }
        if (tie)
        {
            double best = bestX;
            int decided = hit;
            bool extent = false;
            for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
            {
                const LineDef& l = level.LineDefs[i];
                if (static_cast<int>(i) == hit || !has1(l))
                {
                    continue;
                }
                const bool touches = l.StartVertex == h.StartVertex ||
                                     l.StartVertex == h.EndVertex || l.EndVertex == h.StartVertex ||
                                     l.EndVertex == h.EndVertex;
                const Seg t = SegOf(level, l);
                if (!touches || !spans(t) || t.Y1 == t.Y2)
                {
                    continue;
                }
                if (extent && !(std::min(t.X1, t.X2) > px))
                {
                    continue;
                }
                double x;
                if (t.X1 == t.X2)
                {
                    x = t.X1 - 1.0;
                }
                else if (std::max(t.X1, t.X2) > best)
                {
                    x = std::max(t.X1, t.X2) - 2.0;
                }
                else
                {
                    x = (t.X1 + t.X2) / 2;
                }
                if (x >= px && x < best)
                {
                    best = x;
                    decided = static_cast<int>(i);
                    extent = extent || t.X1 != t.X2;
                }
            }
            std::uint32_t side = west(level.LineDefs[static_cast<std::size_t>(decided)]);
            if (side == NoSideDef)
            {
                side = west(h);
            }
            answer = rule6(side);
        }
    }
    if (answer.value_or(-1) == -1 && mode != SectorAtMode::Strict)
    {
        for (const LineDef& l : level.LineDefs)
        {
            const Seg s = has1(l) ? SegOf(level, l) : Seg{};
            if (has1(l) && s.X1 == px && s.X2 == px && spans(s))
            {
                return SideSector(level, l.SideDef1);
            }
        }
    }
    return answer.value_or(-1);
}

// ---------------------------------------------------------------------------------------
// Hand-worked rooms.

class SectorRaysTest : public ::testing::Test
{
protected:
    void SetUp() override { ResetMap(); }
};

TEST_F(SectorRaysTest, PointsInsideOutsideAndEastOfRooms)
{
    // The west room is Sector 0, the east room Sector 1, their shared wall x = 128.
    const LevelData level = testkit::TwoRooms();
    for (const SectorAtMode mode :
         {SectorAtMode::Strict, SectorAtMode::Loose, SectorAtMode::Drawing})
    {
        EXPECT_EQ(SectorAt(level, 64, 64, mode), 0);
        EXPECT_EQ(SectorAt(level, 200, 30, mode), 1);
        // Lines to the east only: outside every Sector.
        EXPECT_EQ(SectorAt(level, -50, 64, mode), -1);
        EXPECT_EQ(SectorAt(level, 500, 64, mode), -1);
        EXPECT_EQ(SectorAt(level, 64, 500, mode), -1);
    }
}

TEST_F(SectorRaysTest, RayThroughAVertexTakesTheTieBreakNotTheSectorBehind)
{
    // A diamond, Sector 1, around (0, 0) inside a square room, Sector 0; the diamond's lines
    // are two-sided, their backs in the room. A ray at the diamond's middle height passes
    // exactly through its west and east corners.
    testkit::LevelBuilder builder;
    builder.Room(-256, -256, 512, 512);
    builder.Polygon({{-64, 0}, {0, 64}, {64, 0}, {0, -64}});
    for (std::uint32_t line = 4; line < 8; ++line)
    {
        builder.Side(0);
        builder.Level().LineDefs[line].SideDef2 =
            static_cast<std::uint32_t>(builder.Level().SideDefs.size() - 1);
        SetSideFlags(builder.Level().LineDefs[line]);
    }
    const LevelData level = builder.Build();
    for (const SectorAtMode mode :
         {SectorAtMode::Strict, SectorAtMode::Loose, SectorAtMode::Drawing})
    {
        EXPECT_EQ(SectorAt(level, -100, 0, mode), 0) << int(mode);
        EXPECT_EQ(SectorAt(level, -10, 0, mode), 1) << int(mode);
        EXPECT_EQ(SectorAt(level, 100, 0, mode), 0) << int(mode);
    }
    // On the corner itself the strict form refuses; the others name a Sector there.
    EXPECT_EQ(SectorAt(level, -64, 0, SectorAtMode::Strict), -1);
    EXPECT_NE(SectorAt(level, -64, 0, SectorAtMode::Loose), -1);
    // With one-sided diamond lines the room's side of the corner has no SideDef to name it.
    const LevelData oneSided =
        testkit::LevelBuilder().Polygon({{-64, 0}, {0, 64}, {64, 0}, {0, -64}}).Build();
    EXPECT_EQ(SectorAt(oneSided, -100, 0, SectorAtMode::Loose), -1);
    EXPECT_EQ(SectorAt(oneSided, -10, 0, SectorAtMode::Loose), 0);
}

TEST_F(SectorRaysTest, BesideAClosedRoomFacesInsideAndNothingOutside)
{
    const LevelData level = testkit::TwoRooms();
    // LineDef 0 is the west room's west wall: its right side faces in.
    EXPECT_EQ(SectorBeside(level, 0, 1).Sector, 0);
    const Beside outside = SectorBeside(level, 0, 2);
    EXPECT_EQ(outside, (Beside{-1, -1, -1}));
    // The shared wall sees both rooms.
    EXPECT_EQ(SectorBeside(level, 4, 1).Sector, 1);
    EXPECT_EQ(SectorBeside(level, 4, 2).Sector, 0);
}

TEST_F(SectorRaysTest, BesideAtADistanceAndOnAZeroLengthLine)
{
    testkit::LevelBuilder builder;
    builder.Room(0, 0, 256, 256);
    builder.Vertex(100, 100).Line(4, 4, NoSideDef); // a LineDef of no length
    const LevelData level = builder.Build();
    EXPECT_EQ(SectorBesideAt(level, 4, RayStart::Middle, 5.0, 1), (Beside{}));
    EXPECT_EQ(SectorBesideAt(level, 0, RayStart::Middle, 10.0, 1).Sector, 0);
}

TEST_F(SectorRaysTest, TheIndexIsRebuiltAfterAnEditAndAfterUndoOfIt)
{
    Map().Level = testkit::TwoRooms();
    LevelData& level = Map().Level;
    EXPECT_EQ(SectorAt(level, 140, 64, SectorAtMode::Loose), 1);
    const LevelData before = level;
    // Move the shared wall east past the point: the point is now in the west room.
    for (const std::uint32_t v : {level.LineDefs[4].StartVertex, level.LineDefs[4].EndVertex})
    {
        level.Vertexes[v].X = 160;
    }
    EXPECT_EQ(SectorAt(level, 140, 64, SectorAtMode::Loose), 0);
    level = before;
    EXPECT_EQ(SectorAt(level, 140, 64, SectorAtMode::Loose), 1);
}

// ---------------------------------------------------------------------------------------
// Every Freedoom level: the indexed answers equal the plain ones.

class SectorRaysOnFreedoom : public testkit::WadFixture
{
protected:
    // Random points over the level's box, the Vertexes themselves, points on the lines and
    // the lines' middles: the places where ties are decided.
    static std::vector<std::pair<double, double>> Points(const LevelData& level,
                                                         std::mt19937& random)
    {
        std::vector<std::pair<double, double>> points;
        std::uniform_int_distribution<int> x(level.MinX - 64, level.MaxX + 64);
        std::uniform_int_distribution<int> y(level.MinY - 64, level.MaxY + 64);
        for (int i = 0; i < 150; ++i)
        {
            points.emplace_back(x(random), y(random));
            points.emplace_back(x(random) + 0.5, y(random) + 0.25);
        }
        std::uniform_int_distribution<std::size_t> vertex(0, level.Vertexes.size() - 1);
        std::uniform_int_distribution<std::size_t> line(0, level.LineDefs.size() - 1);
        for (int i = 0; i < 100; ++i)
        {
            const Vertex& v = level.Vertexes[vertex(random)];
            points.emplace_back(v.X, v.Y);
            points.emplace_back(v.X - 3, v.Y);
            const LineDef& l = level.LineDefs[line(random)];
            const Vertex& a = level.Vertexes[l.StartVertex];
            const Vertex& b = level.Vertexes[l.EndVertex];
            points.emplace_back((a.X + b.X) / 2, (a.Y + b.Y) / 2);
            points.emplace_back((a.X + b.X) / 2.0, (a.Y + b.Y) / 2.0);
        }
        return points;
    }

    void CompareLevels(const std::string& wadName, const std::vector<std::string>& names)
    {
        ASSERT_EQ(OpenIwad(testkit::FreedoomWad(wadName)), 1);
        std::mt19937 random(20261125);
        int levels = 0;
        for (const std::string& name : names)
        {
            ResetMap();
            if (wad::ReadLevel(Map().Level, name, false) != 1)
            {
                continue;
            }
            ++levels;
            const LevelData& level = Map().Level;
            for (const auto& [x, y] : Points(level, random))
            {
                for (const SectorAtMode mode :
                     {SectorAtMode::Strict, SectorAtMode::Loose, SectorAtMode::Drawing})
                {
                    ASSERT_EQ(SectorAt(level, x, y, mode), PlainSectorAt(level, x, y, mode))
                        << name << " at " << x << ", " << y << " mode " << int(mode);
                }
            }
            std::uniform_int_distribution<int> pick(0, 3);
            for (int line = 0; line < level.LineDefs.Count(); ++line)
            {
                // A quarter of the lines, every start and both sides.
                if (pick(random) != 0)
                {
                    continue;
                }
                for (const int side : {1, 2})
                {
                    ASSERT_EQ(SectorBesideAt(level, line, RayStart::Middle, 0, side),
                              PlainBesideAt(level, line, 0.5, side))
                        << name << " line " << line << " side " << side;
                    ASSERT_EQ(SectorBesideAt(level, line, RayStart::Quarter, 0, side),
                              PlainBesideAt(level, line, 0.25, side))
                        << name << " line " << line << " side " << side;
                    ASSERT_EQ(SectorBesideAt(level, line, RayStart::ThreeQuarters, 0, side),
                              PlainBesideAt(level, line, 0.75, side))
                        << name << " line " << line << " side " << side;
                }
            }
        }
        EXPECT_GE(levels, 30);
    }
};

TEST_F(SectorRaysOnFreedoom, IndexedAnswersEqualThePlainScanOnFreedoom2)
{
    std::vector<std::string> names;
    for (int i = 1; i <= 32; ++i)
    {
        names.push_back((i < 10 ? "MAP0" : "MAP") + std::to_string(i));
    }
    CompareLevels("freedoom2.wad", names);
}

TEST_F(SectorRaysOnFreedoom, IndexedAnswersEqualThePlainScanOnFreedoom1)
{
    std::vector<std::string> names;
    for (int e = 1; e <= 4; ++e)
    {
        for (int m = 1; m <= 9; ++m)
        {
            names.push_back("E" + std::to_string(e) + "M" + std::to_string(m));
        }
    }
    CompareLevels("freedoom1.wad", names);
}

} // namespace
} // namespace kelvar::map
