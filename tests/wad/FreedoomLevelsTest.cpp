// Every level of both Freedoom IWADs reads, and agrees with what omgifol reads, record by record.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/MapState.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/WadFixture.h"
#include "wad/LevelList.h"
#include "wad/LevelReader.h"
#include "wad/WadState.h"

#include <cstdio>
#include <map>
#include <sstream>

namespace kelvar::wad
{
namespace
{

using Lines = std::vector<std::string>;

// omgifol's records of every level, by level name, as lines of text.
std::map<std::string, Lines> OmgifolLevels(const std::string& path)
{
    std::map<std::string, Lines> levels;
    std::string current;
    for (const std::string& line : testkit::RunOmgifol("omg_levels.py", path).Lines())
    {
        if (line.rfind("LEVEL ", 0) == 0)
        {
            current = line.substr(6);
        }
        else
        {
            levels[current].push_back(line);
        }
    }
    return levels;
}

std::string Flat(const map::TextureName& name)
{
    const std::string text = name.Text();
    return text.empty() ? "<>" : text;
}

// Our records in the same words. Vertexes are listed as omgifol has them once the ones no
// LineDef uses are dropped; LineDefs name their Vertexes in that numbering.
Lines Describe(const map::LevelData& level)
{
    Lines lines;
    std::ostringstream out;
    const auto emit = [&]
    {
        lines.push_back(out.str());
        out.str("");
    };
    for (const map::Thing& t : level.Things)
    {
        out << "T " << t.X << ' ' << t.Y << ' ' << t.Angle << ' ' << t.Type << ' ' << t.Flags;
        emit();
    }
    for (const map::LineDef& l : level.LineDefs)
    {
        const auto side = [](std::uint32_t s) { return s == map::NoSideDef ? 65535u : s; };
        out << "L " << l.StartVertex << ' ' << l.EndVertex << ' ' << l.Flags << ' ' << l.Type << ' '
            << l.Tag << ' ' << side(l.SideDef1) << ' ' << side(l.SideDef2);
        emit();
    }
    for (const map::SideDef& s : level.SideDefs)
    {
        out << "S " << s.XOffset << ' ' << s.YOffset << ' ' << Flat(s.UpperTexture) << ' '
            << Flat(s.LowerTexture) << ' ' << Flat(s.NormalTexture) << ' ' << s.Sector;
        emit();
    }
    for (const map::Vertex& v : level.Vertexes)
    {
        out << "V " << v.X << ' ' << v.Y;
        emit();
    }
    for (const map::Sector& e : level.Sectors)
    {
        out << "E " << e.FloorHeight << ' ' << e.CeilingHeight << ' ' << Flat(e.FloorTexture) << ' '
            << Flat(e.CeilingTexture) << ' ' << e.Light << ' ' << e.Type << ' ' << e.Tag;
        emit();
    }
    return lines;
}

// omgifol's lines with the unused Vertexes dropped and the LineDefs renumbered to match.
Lines DropUnusedVertexes(const Lines& theirs)
{
    std::vector<std::array<long, 7>> lines;
    std::vector<std::string> vertexes;
    Lines others;
    for (const std::string& line : theirs)
    {
        std::istringstream in(line.substr(2));
        if (line[0] == 'L')
        {
            std::array<long, 7> fields{};
            for (long& field : fields)
            {
                in >> field;
            }
            lines.push_back(fields);
        }
        else if (line[0] == 'V')
        {
            vertexes.push_back(line);
        }
        else
        {
            others.push_back(line);
        }
    }
    std::vector<long> renumber(vertexes.size(), -1);
    for (const auto& line : lines)
    {
        renumber[static_cast<std::size_t>(line[0])] = 0;
        renumber[static_cast<std::size_t>(line[1])] = 0;
    }
    Lines result;
    for (const std::string& line : others)
    {
        if (line[0] == 'T')
        {
            result.push_back(line);
        }
    }
    long next = 0;
    Lines kept;
    for (std::size_t i = 0; i < vertexes.size(); ++i)
    {
        if (renumber[i] == 0)
        {
            renumber[i] = next++;
            kept.push_back(vertexes[i]);
        }
    }
    for (const auto& line : lines)
    {
        std::ostringstream out;
        out << "L " << renumber[static_cast<std::size_t>(line[0])] << ' '
            << renumber[static_cast<std::size_t>(line[1])];
        for (std::size_t f = 2; f < line.size(); ++f)
        {
            out << ' ' << line[f];
        }
        result.push_back(out.str());
    }
    for (const std::string& line : others)
    {
        if (line[0] == 'S')
        {
            result.push_back(line);
        }
    }
    result.insert(result.end(), kept.begin(), kept.end());
    for (const std::string& line : others)
    {
        if (line[0] == 'E')
        {
            result.push_back(line);
        }
    }
    return result;
}

class FreedoomLevels : public testkit::WadFixture, public ::testing::WithParamInterface<const char*>
{
};

TEST_P(FreedoomLevels, EveryLevelAgreesWithOmgifol)
{
    const std::string path = testkit::FreedoomWad(GetParam());
    const std::map<std::string, Lines> theirs = OmgifolLevels(path);
    ASSERT_EQ(OpenIwad(path), 1);
    ASSERT_EQ(theirs.size(), Wad().Levels.size());
    for (const LevelListEntry& entry : Wad().Levels)
    {
        const std::string name = entry.Name.Text();
        map::ResetMap();
        map::LevelData level;
        ASSERT_EQ(ReadLevel(level, name, false), 1);
        EXPECT_EQ(level.ChangeCount, 0) << name;
        const Lines expected = DropUnusedVertexes(theirs.at(name));
        const Lines ours = Describe(level);
        ASSERT_EQ(ours.size(), expected.size()) << name;
        for (std::size_t i = 0; i < ours.size(); ++i)
        {
            ASSERT_EQ(ours[i], expected[i]) << name << " record " << i;
        }
    }
    EXPECT_TRUE(Ui.Messages.empty()) << "no Freedoom level needs a repair";
}

INSTANTIATE_TEST_SUITE_P(Freedoom, FreedoomLevels,
                         ::testing::Values("freedoom1.wad", "freedoom2.wad"));

} // namespace
} // namespace kelvar::wad
