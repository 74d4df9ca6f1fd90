// Tests of the directory in memory: names, the name index, reserved names, the level test.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LumpDirectory.h"

#include <gtest/gtest.h>

#include <random>

namespace kelvar::wad
{
namespace
{

LumpEntry Named(std::string_view name, std::int32_t offset = 0)
{
    LumpEntry entry;
    entry.Name = LumpName::From(name);
    entry.Offset = offset;
    return entry;
}

std::vector<LumpEntry> Entries(const std::vector<std::string>& names)
{
    std::vector<LumpEntry> entries;
    for (const std::string& name : names)
    {
        entries.push_back(Named(name));
    }
    return entries;
}

int Level(const std::vector<std::string>& names, std::size_t at, int& count)
{
    const std::vector<LumpEntry> entries = Entries(names);
    return LevelAt(entries, at, entries.size(), count);
}

TEST(LumpName, ComparesEightCharactersIgnoringCase)
{
    EXPECT_TRUE(LumpName::From("things").Is("THINGS"));
    EXPECT_TRUE(LumpName::From("TEXTURE1X").Is("texture1")); // only 8 characters count
    EXPECT_FALSE(LumpName::From("THINGS").Is("THING"));
    LumpName padded = LumpName::From("AB");
    padded.Chars[3] = 'Z'; // garbage behind the terminator is no part of the name
    EXPECT_TRUE(SameName(padded, LumpName::From("ab")));
    EXPECT_EQ(padded.Text(), "AB");
    EXPECT_TRUE(LumpName::From("GL_MAP01").StartsWith("gl_"));
}

TEST(ReservedName, ClassifiesLevelLumpsAndLevelNames)
{
    EXPECT_EQ(ReservedName(LumpName::From("THINGS")), 1);
    EXPECT_EQ(ReservedName(LumpName::From("blockmap")), 10);
    EXPECT_EQ(ReservedName(LumpName::From("BEHAVIOR")), 11);
    EXPECT_EQ(ReservedName(LumpName::From("GL_MAP01")), 12);
    EXPECT_EQ(ReservedName(LumpName::From("GL_VERT")), 13);
    EXPECT_EQ(ReservedName(LumpName::From("GL_PVS")), 17);
    EXPECT_EQ(ReservedName(LumpName::From("E1M1")), -1);
    EXPECT_EQ(ReservedName(LumpName::From("MAP07")), -1);
    EXPECT_EQ(ReservedName(LumpName::From("ENDOOM")), 0); // matched "E", but no level name
    EXPECT_EQ(ReservedName(LumpName::From("MAPINFO")), 0);
    EXPECT_EQ(ReservedName(LumpName::From("THINGSX")), 0);
    EXPECT_EQ(ReservedName(LumpName::From("PLAYPAL")), 0);
}

TEST(LevelNameKind, ReadsEpisodeAndMap)
{
    const LevelNameParts doom = LevelNameKind(LumpName::From("e3m7"));
    EXPECT_EQ(doom.Kind, 1);
    EXPECT_EQ(doom.Episode, 3);
    EXPECT_EQ(doom.Map, 7);
    const LevelNameParts doom2 = LevelNameKind(LumpName::From("MAP26"));
    EXPECT_EQ(doom2.Kind, 2);
    EXPECT_EQ(doom2.Episode, 1);
    EXPECT_EQ(doom2.Map, 26);
    EXPECT_EQ(LevelNameKind(LumpName::From("MAP1")).Kind, 0);
    EXPECT_EQ(LevelNameKind(LumpName::From("E1M10")).Kind, 0);
}

const std::vector<std::string> DoomLevel = {"MAP01",    "THINGS", "LINEDEFS", "SIDEDEFS",
                                            "VERTEXES", "SEGS",   "SSECTORS", "NODES",
                                            "SECTORS",  "REJECT", "BLOCKMAP"};

std::vector<std::string> Join(std::vector<std::string> a, const std::vector<std::string>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

TEST(LevelAt, FindsDoomAndHexenLevelsWithTheirLength)
{
    int count = 0;
    EXPECT_EQ(Level(Join(DoomLevel, {"PLAYPAL"}), 0, count), 1);
    EXPECT_EQ(count, 11);
    EXPECT_EQ(Level(Join(DoomLevel, {"BEHAVIOR", "ENDOOM"}), 0, count), 2);
    EXPECT_EQ(count, 12);
    // Two levels back to back: the walk stops at the second marker.
    auto second = DoomLevel;
    second[0] = "MAP02";
    EXPECT_EQ(Level(Join(DoomLevel, second), 0, count), 1);
    EXPECT_EQ(count, 11);
    EXPECT_EQ(Level(Join(DoomLevel, second), 11, count), 1);
    EXPECT_EQ(count, 11);
    // GL lumps belong to the level.
    EXPECT_EQ(Level(Join(DoomLevel, {"GL_MAP01", "GL_VERT", "GL_SEGS", "GL_SSECT", "GL_NODES",
                                     "GL_PVS", "DEHACKED"}),
                    0, count),
              1);
    EXPECT_EQ(count, 17);
}

TEST(LevelAt, ScriptLumpsBelongOnlyBetweenBehaviorAndGlLumps)
{
    int count = 0;
    const auto hexen = Join(DoomLevel, {"BEHAVIOR"});
    EXPECT_EQ(Level(Join(hexen, {"SCRIPTS", "GL_MAP01", "GL_VERT"}), 0, count), 2);
    EXPECT_EQ(count, 15);
    EXPECT_EQ(Level(Join(hexen, {"SCRIPTS", "MAP02", "THINGS", "LINEDEFS"}), 0, count), 2);
    EXPECT_EQ(count, 12);
    EXPECT_EQ(Level(Join(hexen, {"SCRIPTS"}), 0, count), 2);
    EXPECT_EQ(count, 12) << "a script at the very end is no level lump";
}

TEST(LevelAt, RefusesWhatIsNoLevel)
{
    int count = 7;
    EXPECT_EQ(Level({"MAP01", "THINGS"}, 0, count), 0) << "fewer than two entries follow";
    EXPECT_EQ(count, 1);
    EXPECT_EQ(Level({"MAP01", "LINEDEFS", "THINGS"}, 0, count), 0);
    EXPECT_EQ(Level({"MAP01", "THINGS", "LINEDEFS", "PLAYPAL", "SIDEDEFS"}, 0, count), 1);
    EXPECT_EQ(count, 3) << "an unknown lump ends the level";
    EXPECT_EQ(Level({"MAP01", "THINGS", "LINEDEFS", "THINGS", "SIDEDEFS"}, 0, count), 1);
    EXPECT_EQ(count, 3) << "a second THINGS ends the level";
}

TEST(LevelAt, WalksAtMostEighteenEntries)
{
    std::vector<std::string> names = {"MAP01", "THINGS"};
    for (int i = 0; i < 30; ++i)
    {
        names.push_back("GL_VERT");
    }
    int count = 0;
    EXPECT_EQ(Level(names, 0, count), 1);
    EXPECT_EQ(count, 19);
}

TEST(LevelSlot, PutsLevelLumpsInCanonicalOrder)
{
    EXPECT_EQ(LevelSlot(LumpName::From("MAP01"), true), 0);
    EXPECT_EQ(LevelSlot(LumpName::From("THINGS"), false), 1);
    EXPECT_EQ(LevelSlot(LumpName::From("BLOCKMAP"), false), 10);
    EXPECT_EQ(LevelSlot(LumpName::From("BEHAVIOR"), false), 11);
    EXPECT_EQ(LevelSlot(LumpName::From("GL_E1M1"), false), 12);
    EXPECT_EQ(LevelSlot(LumpName::From("GL_PVS"), false), 17);
    EXPECT_EQ(LevelSlot(LumpName::From("SCRIPT01"), false), 18);
    EXPECT_EQ(LevelSlot(LumpName::From("DEHACKED"), false), -1);
}

// The index must answer exactly as a walk of the array would, through every kind of change.
TEST(LumpDirectoryIndex, AgreesWithALinearWalkThroughRandomChanges)
{
    const std::vector<std::string> pool = {"THINGS", "things", "PLAYPAL", "MAP01",
                                           "A",      "B",      "GL_VERT", "TEXTURE1"};
    std::mt19937 random(1234);
    const auto pick = [&] { return pool[random() % pool.size()]; };
    LumpDirectory directory;
    std::vector<LumpEntry> mirror;
    for (int step = 0; step < 2000; ++step)
    {
        switch (random() % 5)
        {
        case 0:
        case 1:
        {
            const LumpEntry entry = Named(pick(), step);
            directory.Append(entry);
            mirror.push_back(entry);
            break;
        }
        case 2:
            if (!mirror.empty())
            {
                const std::size_t at = random() % mirror.size();
                const LumpName name = LumpName::From(pick());
                directory.Rename(at, name);
                mirror[at].Name = name;
            }
            break;
        case 3:
            if (mirror.size() > 4)
            {
                const std::size_t first = random() % (mirror.size() - 3);
                const std::vector<LumpEntry> fresh = {Named(pick(), -step)};
                directory.ReplaceRange(first, first + 3, fresh);
                mirror.erase(mirror.begin() + static_cast<std::ptrdiff_t>(first),
                             mirror.begin() + static_cast<std::ptrdiff_t>(first) + 3);
                mirror.insert(mirror.begin() + static_cast<std::ptrdiff_t>(first), fresh[0]);
            }
            break;
        default:
        {
            const LumpName name = LumpName::From(pick());
            const std::size_t begin = random() % (mirror.size() + 1);
            const std::size_t end = begin + random() % (mirror.size() + 2);
            int last = -1;
            int first = -1;
            for (std::size_t i = begin; i < std::min(end, mirror.size()); ++i)
            {
                if (SameName(mirror[i].Name, name))
                {
                    first = first < 0 ? static_cast<int>(i) : first;
                    last = static_cast<int>(i);
                }
            }
            ASSERT_EQ(directory.FindLast(name, begin, end), last) << "step " << step;
            ASSERT_EQ(directory.FindFirst(name, begin, end), first) << "step " << step;
        }
        }
    }
    ASSERT_EQ(directory.Size(), mirror.size());
    for (std::size_t i = 0; i < mirror.size(); ++i)
    {
        EXPECT_EQ(directory[i], mirror[i]);
    }
    EXPECT_TRUE(directory.IndexConsistent());
}

} // namespace
} // namespace kelvar::wad
