// Tests of the texture and flat catalogues: Freedoom's names against omgifol's, a PWAD's patches
// and flats in the PWAD lists, the ports' wider lists, sorting, colormap names, missing patches.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureLumps.h"

#include "tests/testkit/Commands.h"
#include "tests/testkit/WadFixture.h"
#include "wad/MarkerRanges.h"
#include "wad/WadFormat.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace kelvar::gfx
{
namespace
{

const std::string Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

std::set<std::string> Names(const NameCatalogue& catalogue, const std::vector<int>& rows)
{
    std::set<std::string> names;
    for (const int row : rows)
    {
        names.insert(catalogue.Rows()[static_cast<std::size_t>(row)].Name.Text());
    }
    return names;
}

std::vector<std::string> InOrder(const NameCatalogue& catalogue)
{
    std::vector<std::string> names;
    for (const int row : catalogue.List())
    {
        names.push_back(catalogue.Rows()[static_cast<std::size_t>(row)].Name.Text());
    }
    return names;
}

std::set<std::string> OmgifolNames(const std::string& expression)
{
    const testkit::CommandOutput output =
        testkit::RunCommand("/usr/bin/python3 -c \"import omg, omg.txdef; w = omg.WAD('" +
                            Freedoom2 + "'); print('\\n'.join(" + expression + "))\"");
    EXPECT_EQ(output.Status, 0) << output.Text;
    const std::vector<std::string> lines = output.Lines();
    return {lines.begin(), lines.end()};
}

// PNAMES with the given names; TEXTURE1 with one texture a name for each patch given.
std::string Pnames(const std::vector<std::string>& names)
{
    std::string bytes(4 + 8 * names.size(), '\0');
    wad::WriteLe32(reinterpret_cast<std::uint8_t*>(bytes.data()),
                   static_cast<std::int32_t>(names.size()));
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        bytes.replace(4 + 8 * i, names[i].size(), names[i]);
    }
    return bytes;
}

std::string Texture1(const std::vector<std::pair<std::string, int>>& textures)
{
    std::string bytes(4 + 4 * textures.size(), '\0');
    auto* raw = reinterpret_cast<std::uint8_t*>(bytes.data());
    wad::WriteLe32(raw, static_cast<std::int32_t>(textures.size()));
    for (std::size_t i = 0; i < textures.size(); ++i)
    {
        wad::WriteLe32(reinterpret_cast<std::uint8_t*>(bytes.data()) + 4 + 4 * i,
                       static_cast<std::int32_t>(bytes.size()));
        std::string record(32, '\0');
        record.replace(0, textures[i].first.size(), textures[i].first);
        auto* head = reinterpret_cast<std::uint8_t*>(record.data());
        wad::WriteLe16(head + 12, 64);
        wad::WriteLe16(head + 14, 64);
        wad::WriteLe16(head + 20, 1);
        wad::WriteLe16(head + 26, static_cast<std::uint16_t>(textures[i].second));
        bytes += record;
    }
    return bytes;
}

class TextureCatalogueTest : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        Catalogue() = {};
        TextureLumps() = {};
    }
    void TearDown() override
    {
        Catalogue() = {};
        TextureLumps() = {};
        WadFixture::TearDown();
    }

    void Build(CatalogueOptions options = {})
    {
        wad::BuildMarkerLists();
        BuildTextureCatalogue(options);
        BuildFlatCatalogue(options);
    }
};

TEST_F(TextureCatalogueTest, FreedoomsTexturesAndFlatsAreOmgifolsNamesAndNoneIsFromAPwad)
{
    ASSERT_EQ(OpenIwad(Freedoom2), 1);
    Build();
    const CatalogueState& catalogue = Catalogue();
    std::set<std::string> textures = Names(catalogue.Textures, catalogue.Textures.List());
    EXPECT_EQ(textures.erase("-"), 1u);
    EXPECT_EQ(textures, OmgifolNames("omg.txdef.Textures(w.txdefs).keys()"));
    EXPECT_EQ(Names(catalogue.Flats, catalogue.Flats.List()), OmgifolNames("w.flats.keys()"));
    EXPECT_TRUE(catalogue.Textures.PwadList().empty());
    for (const std::string& name : Names(catalogue.Flats, catalogue.Flats.PwadList()))
    {
        EXPECT_EQ(name.rfind("F_SKY", 0), 0u) << name << ": only the sky flats of the IWAD";
    }

    // Sorted, case ignored; every PNAMES entry of Freedoom has its patch.
    const std::vector<std::string> order = InOrder(catalogue.Textures);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_EQ(order.front(), "-");
    ASSERT_FALSE(catalogue.Patches.empty());
    for (const PatchRecord& patch : catalogue.Patches)
    {
        EXPECT_GE(patch.DirectoryIndex, 0) << patch.Name.Text();
    }
    EXPECT_GT(catalogue.Textures.Position(wad::LumpName::From("startan3")), 1);
    EXPECT_EQ(catalogue.Textures.Position(wad::LumpName::From("NOSUCH")), 0);
}

TEST_F(TextureCatalogueTest, APwadPatchPutsItsTexturesAndAPwadFlatInThePwadLists)
{
    ASSERT_EQ(OpenIwad(Freedoom2), 1);
    const std::string pwad =
        testkit::WadBuilder()
            .Lump("PNAMES", Pnames({"NEWPATCH", "WALL00_1", "GHOST"}))
            .Lump("TEXTURE1", Texture1({{"ZNEW", 0}, {"AOLD", 1}, {"MISSING", 2}}))
            .Marker("PP_START")
            .Lump("NEWPATCH", std::string(40, '\1'))
            .Marker("PP_END")
            .Marker("FF_START")
            .Lump("NEWFLAT", std::string(4096, '\2'))
            .Marker("FF_END")
            .Write(Dir.Path() / "new.wad");
    ASSERT_EQ(OpenPwad(pwad), 1);
    Build();
    const CatalogueState& catalogue = Catalogue();
    EXPECT_EQ(InOrder(catalogue.Textures),
              (std::vector<std::string>{"-", "AOLD", "MISSING", "NEWFLAT", "ZNEW"}))
        << "the PWAD's TEXTURE1 replaces the IWAD's; an FF flat joins the texture list";
    EXPECT_EQ(Names(catalogue.Textures, catalogue.Textures.PwadList()),
              (std::set<std::string>{"ZNEW"}));
    ASSERT_EQ(catalogue.Patches.size(), 3u);
    EXPECT_EQ(catalogue.Patches[0].File, 1);
    EXPECT_EQ(catalogue.Patches[1].File, 0);
    EXPECT_EQ(catalogue.Patches[2].DirectoryIndex, -1) << "a patch with no lump stays empty";
    EXPECT_TRUE(Names(catalogue.Flats, catalogue.Flats.PwadList()).contains("NEWFLAT"));
}

TEST_F(TextureCatalogueTest, ThePortsAlsoOfferFlatsPatchesSpritesAndTxPicturesOnWalls)
{
    ASSERT_EQ(OpenIwad(Freedoom2), 1);
    const std::string pwad = testkit::WadBuilder()
                                 .Marker("TX_START")
                                 .Lump("TXWALL", std::string(64, '\3'))
                                 .Marker("TX_END")
                                 .Write(Dir.Path() / "tx.wad");
    ASSERT_EQ(OpenPwad(pwad), 1);
    Build();
    const std::size_t plain = Catalogue().Textures.Size();
    EXPECT_FALSE(Catalogue().Textures.Contains(wad::LumpName::From("TXWALL")));
    EXPECT_EQ(Catalogue().TxNames.size(), 1u);

    Build({.AnyGraphicAsTexture = true});
    const NameCatalogue& textures = Catalogue().Textures;
    for (const char* name : {"TXWALL", "FLOOR4_8", "WALL00_1", "PLAYA1"})
    {
        EXPECT_TRUE(textures.Contains(wad::LumpName::From(name))) << name;
    }
    EXPECT_GT(textures.Size(), plain + 1000);
    EXPECT_TRUE(Names(textures, textures.PwadList()).contains("TXWALL"));
    EXPECT_TRUE(Catalogue().Flats.Contains(wad::LumpName::From("TXWALL")))
        << "the flat pickers offer wall pictures too";
}

TEST_F(TextureCatalogueTest, ColormapNamesStopAtFiftyAndNeedBothMarkersInOneFile)
{
    ASSERT_EQ(OpenIwad(Freedoom2), 1);
    testkit::WadBuilder many;
    many.Marker("C_START");
    for (int i = 0; i < 51; ++i)
    {
        many.Lump("CMAP" + std::to_string(i), std::string(256 * 34, '\0'));
    }
    many.Marker("C_END");
    ASSERT_EQ(OpenPwad(many.Write(Dir.Path() / "maps.wad")), 1);
    Build();
    EXPECT_EQ(Catalogue().Colormaps.size(), 50u);
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Messages[0].Lines, (std::vector<std::string>{"Too Many New COLORMAP entries",
                                                              "in PWAD starting with", "CMAP50"}));
    EXPECT_TRUE(Catalogue().Textures.Contains(wad::LumpName::From("CMAP7")));
    FreeColormapNames(1);
    EXPECT_TRUE(Catalogue().Colormaps.empty());

    Ui.Messages.clear();
    const std::string start =
        testkit::WadBuilder().Marker("C_START").Lump("CMAPA", "x").Write(Dir.Path() / "start.wad");
    const std::string end =
        testkit::WadBuilder().Lump("CMAPB", "x").Marker("C_END").Write(Dir.Path() / "end.wad");
    wad::ResetWad();
    wad::Wad().ProgramDir = Dir.Path();
    ASSERT_EQ(OpenIwad(Freedoom2), 1);
    ASSERT_GE(OpenPwad(start), 1);
    ASSERT_GE(OpenPwad(end), 1);
    wad::BuildMarkerLists();
    LoadColormapNames();
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Messages[0].Lines[0], "C_START and C_END not in same file?");
    EXPECT_TRUE(Catalogue().Colormaps.empty());
}

} // namespace
} // namespace kelvar::gfx
