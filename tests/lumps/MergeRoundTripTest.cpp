// Round trips of the merge on Freedoom's data: a level's PWAD and loose lump files imported
// into an empty target come out byte for byte, and two PWADs whose PNAMES and TEXTURE1 overlap
// merge into textures that compose exactly as their own files compose them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/Merge.h"

#include "gfx/TextureCatalogue.h"
#include "gfx/TextureCompose.h"
#include "tests/lumps/MergeTestLumps.h"
#include "tests/testkit/WadFixture.h"
#include "wad/FindLump.h"
#include "wad/MarkerRanges.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace kelvar::lumps
{
namespace
{

using testing::ReadWadLumps;
using testing::TextureDef;
using testing::WadLump;
using testkit::WadBuilder;

// A texture with its patches named rather than numbered.
struct NamedTexture
{
    TextureDef Def;
    std::vector<std::string> Patches;
};

class MergeRoundTripTest : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        Iwad = testkit::FreedoomWad("freedoom2.wad");
        ASSERT_EQ(OpenIwad(Iwad), 1);
    }
    void TearDown() override
    {
        gfx::Catalogue() = {};
        gfx::TextureLumps() = {};
        WadFixture::TearDown();
    }

    static std::string IwadLump(const std::string& name)
    {
        const std::vector<std::uint8_t> bytes =
            wad::ReadLumpBytes(wad::FindLump(wad::Wad().Files[0], name, true));
        return std::string(bytes.begin(), bytes.end());
    }

    // Imports `files` into a new target and returns its lumps.
    std::vector<WadLump> ImportIntoNewTarget(const std::vector<std::filesystem::path>& files)
    {
        const std::filesystem::path target = Dir.Path() / "target.wad";
        MergeSession session;
        EXPECT_EQ(OpenMergeTarget(session, target), 1);
        for (const std::filesystem::path& file : files)
        {
            EXPECT_GT(AddInputFile(session, file), 0) << file;
        }
        Ui.Answer(1);
        EXPECT_EQ(SaveMerge(session), 1);
        EXPECT_EQ(session.Counts.Skipped, 0);
        return ReadWadLumps(target);
    }

    // Every texture of TEXTURE1 with the names of its patches.
    static std::vector<NamedTexture> IwadTextures()
    {
        const std::vector<std::string> pnames =
            testing::ReadPnames(testing::AsBytes(IwadLump("PNAMES")));
        std::vector<NamedTexture> textures;
        for (const TextureDef& def : testing::ReadTextures(testing::AsBytes(IwadLump("TEXTURE1"))))
        {
            NamedTexture named{def, {}};
            for (const testing::PatchDef& patch : def.Patches)
            {
                named.Patches.push_back(pnames.at(static_cast<std::size_t>(patch.Index)));
            }
            textures.push_back(named);
        }
        return textures;
    }

    // A PWAD of PNAMES and TEXTURE1 for these textures: PNAMES holds the patches they use, in
    // the order of first use or the reverse.
    std::filesystem::path TexturePwad(const std::string& name,
                                      const std::vector<NamedTexture>& textures, bool reversed)
    {
        std::vector<std::string> pnames;
        for (const NamedTexture& texture : textures)
        {
            for (const std::string& patch : texture.Patches)
            {
                if (std::find(pnames.begin(), pnames.end(), patch) == pnames.end())
                {
                    pnames.push_back(patch);
                }
            }
        }
        if (reversed)
        {
            std::reverse(pnames.begin(), pnames.end());
        }
        std::vector<TextureDef> defs;
        for (const NamedTexture& texture : textures)
        {
            TextureDef def = texture.Def;
            for (std::size_t p = 0; p < def.Patches.size(); ++p)
            {
                def.Patches[p].Index = static_cast<int>(
                    std::find(pnames.begin(), pnames.end(), texture.Patches[p]) - pnames.begin());
            }
            defs.push_back(def);
        }
        WadBuilder builder;
        builder.Lump("PNAMES", testing::PnamesBytes(pnames))
            .Lump("TEXTURE1", testing::TextureBytes(defs));
        return builder.Write(Dir.Path() / name);
    }

    // The textures `names` composed with the IWAD and `pwad` open.
    std::map<std::string, gfx::ImageRaster> Compose(const std::filesystem::path& pwad,
                                                    const std::set<std::string>& names)
    {
        wad::ResetWad();
        wad::Wad().ProgramDir = Dir.Path();
        gfx::Catalogue() = {};
        gfx::TextureLumps() = {};
        EXPECT_EQ(OpenIwad(Iwad), 1);
        EXPECT_GT(OpenPwad(pwad.string()), 0);
        wad::BuildMarkerLists();
        gfx::BuildTextureCatalogue({});
        std::map<std::string, gfx::ImageRaster> composed;
        for (const std::string& name : names)
        {
            std::optional<gfx::ImageRaster> picture = gfx::ComposeTexture(name);
            EXPECT_TRUE(picture) << name << " does not compose from " << pwad;
            if (picture)
            {
                composed.emplace(name, std::move(*picture));
            }
        }
        return composed;
    }

    std::string Iwad;
};

TEST_F(MergeRoundTripTest, ALevelsPwadAndLooseLumpFilesComeOutByteForByte)
{
    WadBuilder level;
    const std::optional<wad::LevelSpan> span =
        wad::FindLevelEntries(wad::Master().Entries(), wad::LumpName::From("MAP01"));
    ASSERT_TRUE(span);
    for (std::size_t i = span->Marker; i < span->End; ++i)
    {
        const std::string name = wad::Master()[i].Name.Text();
        const std::vector<std::uint8_t> bytes = wad::ReadLumpBytes(static_cast<int>(i));
        level.Lump(name, std::string(bytes.begin(), bytes.end()));
    }
    const std::filesystem::path levelPath = level.Write(Dir.Path() / "map01.wad");
    const std::vector<std::string> loose = {"ENDOOM", "DSPISTOL", "D_RUNNIN", "FLOOR4_8",
                                            "PLAYPAL"};
    WadBuilder whole;
    whole.Lump("ENDOOM", IwadLump("ENDOOM"));
    for (const WadLump& lump : ReadWadLumps(levelPath))
    {
        whole.Lump(lump.Name, lump.Data);
    }
    std::vector<std::filesystem::path> files = {Dir.Path() / "ENDOOM.lmp", levelPath};
    testkit::WriteFile(files[0], IwadLump("ENDOOM"));
    for (std::size_t i = 1; i < loose.size(); ++i)
    {
        whole.Lump(loose[i], IwadLump(loose[i]));
        files.push_back(Dir.Path() / (loose[i] + ".lmp"));
        testkit::WriteFile(files.back(), IwadLump(loose[i]));
    }
    const std::filesystem::path wholePath = whole.Write(Dir.Path() / "whole.wad");
    const std::vector<WadLump> expected = ReadWadLumps(wholePath);
    ASSERT_EQ(expected.size(), 16u);

    const std::vector<WadLump> fromPwad = ImportIntoNewTarget({wholePath});
    EXPECT_EQ(fromPwad, expected);
    const std::vector<std::string> reading = testing::OmgReading(Dir.Path() / "target.wad");
    EXPECT_EQ(testing::LinesOf(reading, "E"), testing::EntryLines(expected));
    EXPECT_EQ(testing::LinesOf(reading, "M"),
              (std::vector<std::string>{"M MAP01 THINGS LINEDEFS SIDEDEFS VERTEXES SEGS SSECTORS "
                                        "NODES SECTORS REJECT BLOCKMAP"}));

    std::filesystem::remove(Dir.Path() / "target.wad");
    EXPECT_EQ(ImportIntoNewTarget(files), expected);
}

TEST_F(MergeRoundTripTest, OverlappingTexturePwadsMergeIntoTexturesThatComposeAsBefore)
{
    const std::vector<NamedTexture> all = IwadTextures();
    ASSERT_GT(all.size(), 120u);
    const std::vector<NamedTexture> first(all.begin(), all.begin() + 60);
    std::vector<NamedTexture> second(all.begin() + 40, all.begin() + 100);
    // Two textures both files have are changed in the second: one patch more (another record
    // size), and one patch moved (the same size).
    NamedTexture& grown = second[5];
    grown.Def.Patches.push_back({grown.Def.Patches[0].X + 8, grown.Def.Patches[0].Y, 0});
    grown.Patches.push_back(grown.Patches[0]);
    second[10].Def.Patches[0].X = static_cast<std::int16_t>(second[10].Def.Patches[0].X + 8);
    const std::filesystem::path firstPath = TexturePwad("first.wad", first, false);
    const std::filesystem::path secondPath = TexturePwad("second.wad", second, true);
    const std::filesystem::path target = Dir.Path() / "target.wad";
    std::filesystem::copy_file(firstPath, target);

    std::set<std::string> firstNames, secondNames, everyName;
    for (const NamedTexture& texture : first)
    {
        firstNames.insert(texture.Def.Name);
        everyName.insert(texture.Def.Name);
    }
    for (const NamedTexture& texture : second)
    {
        secondNames.insert(texture.Def.Name);
        everyName.insert(texture.Def.Name);
    }
    MergeSession session;
    ASSERT_EQ(OpenMergeTarget(session, target), 1);
    ASSERT_EQ(AddInputFile(session, secondPath), 2);
    Ui.Clear();
    Ui.Answer(1);
    ASSERT_EQ(SaveMerge(session), 1);

    const std::vector<WadLump> written = ReadWadLumps(target);
    ASSERT_EQ(written.size(), 2u);
    EXPECT_EQ(written[0].Name, "PNAMES");
    EXPECT_EQ(written[1].Name, "TEXTURE1");
    const std::vector<TextureDef> merged = testing::ReadTextures(testing::AsBytes(written[1].Data));
    EXPECT_EQ(merged.size(), everyName.size());

    const std::map<std::string, gfx::ImageRaster> mine = Compose(firstPath, firstNames);
    const std::map<std::string, gfx::ImageRaster> theirs = Compose(secondPath, secondNames);
    const std::map<std::string, gfx::ImageRaster> result = Compose(target, everyName);
    for (const std::string& name : everyName)
    {
        const auto& source = secondNames.contains(name) ? theirs : mine;
        ASSERT_TRUE(result.contains(name) && source.contains(name)) << name;
        EXPECT_TRUE(result.at(name) == source.at(name)) << name << " composes differently";
    }
    EXPECT_FALSE(mine.at(grown.Def.Name) == result.at(grown.Def.Name));

    // omgifol reads the merged textures with the same patch names as the files they came from.
    std::set<std::string> expectedLines;
    const std::vector<NamedTexture>* sources[] = {&first, &second};
    for (const std::vector<NamedTexture>* textures : sources)
    {
        for (const NamedTexture& texture : *textures)
        {
            if (textures == &first && secondNames.contains(texture.Def.Name))
            {
                continue;
            }
            std::string line = "T " + texture.Def.Name + " " + std::to_string(texture.Def.Width) +
                               " " + std::to_string(texture.Def.Height);
            for (std::size_t p = 0; p < texture.Patches.size(); ++p)
            {
                line += " " + texture.Patches[p] + "@" + std::to_string(texture.Def.Patches[p].X) +
                        "," + std::to_string(texture.Def.Patches[p].Y);
            }
            expectedLines.insert(line);
        }
    }
    const std::vector<std::string> lines = testing::LinesOf(testing::OmgReading(target), "T");
    EXPECT_EQ(std::set<std::string>(lines.begin(), lines.end()), expectedLines);
}

} // namespace
} // namespace kelvar::lumps
