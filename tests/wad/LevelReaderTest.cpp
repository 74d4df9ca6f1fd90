// Tests of the level reader on levels built byte by byte: layouts, repairs and their questions.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LevelReader.h"
#include "map/MapState.h"
#include "platform/Fatal.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"
#include "wad/CheckedFile.h"
#include "wad/FindLump.h"
#include "wad/WadState.h"

#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

namespace kelvar::wad
{
namespace
{

using testkit::LevelBuilder;
using testkit::LevelLayout;
using testkit::WadBuilder;

class LevelReader : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        map::ResetMap();
    }

    // Opens an IWAD that holds `builder`'s level as MAP01 (a Doom 2 IWAD, or a Hexen one for
    // the Hexen layouts), and reads the level.
    map::LevelData Read(const LevelBuilder& builder, LevelLayout layout = LevelLayout::Doom)
    {
        WadBuilder iwad("IWAD");
        builder.WriteTo(iwad, "MAP01", layout);
        const bool hexen = layout == LevelLayout::Hexen || layout == LevelLayout::ExtendedHexen;
        iwad.Lump(hexen ? "MAGEA1" : "SARGA1", "sprite");
        EXPECT_EQ(OpenIwad(iwad.Write(Dir.Path() / "iwad.wad")), 1);
        map::LevelData level;
        EXPECT_EQ(ReadLevel(level, "MAP01", false), 1);
        return level;
    }

    static LevelBuilder SmallRoom()
    {
        LevelBuilder builder;
        builder.Room(0, 0, 128, 128).Thing(64, 64, 1, 90);
        return builder;
    }
};

TEST_F(LevelReader, ADoomLevelReadsAsBuilt)
{
    LevelBuilder builder = SmallRoom();
    builder.Level().LineDefs[2].Type = 1;
    builder.Level().LineDefs[2].Tag = 7;
    builder.Level().SideDefs[1].SideDef::XOffset = -12;
    const map::LevelData level = Read(builder);
    EXPECT_EQ(level.LineDefs, builder.Build().LineDefs);
    EXPECT_EQ(level.SideDefs, builder.Build().SideDefs);
    EXPECT_EQ(level.Vertexes, builder.Build().Vertexes);
    EXPECT_EQ(level.Sectors, builder.Build().Sectors);
    EXPECT_EQ(level.Things, builder.Build().Things);
    EXPECT_EQ(level.LevelLayout, 1);
    EXPECT_EQ(level.ChangeCount, 0);
    EXPECT_EQ(level.MaxX, 128);
    EXPECT_EQ(level.Things.Capacity, 200);
    EXPECT_EQ(level.LineDefs.Capacity, 1000) << "a small level gets room for 1,000 lines";
    EXPECT_EQ(level.Vertexes.Capacity, 2000);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(LevelReader, AHexenLevelKeepsItsArgumentsAndThingFields)
{
    LevelBuilder builder = SmallRoom();
    map::Thing& thing = builder.Level().Things[0];
    thing.Tid = 17;
    thing.Z = -24;
    thing.Special = 80;
    thing.Args = {1, 2, 3, 4, 5};
    map::LineDef& line = builder.Level().LineDefs[0];
    line.Type = 243;
    line.Tag = 9; // the first argument
    line.Args = {10, 20, 30, 40};
    const map::LevelData level = Read(builder, LevelLayout::Hexen);
    EXPECT_EQ(level.LevelLayout, 2);
    EXPECT_EQ(level.Things[0], builder.Level().Things[0]);
    EXPECT_EQ(level.LineDefs[0], builder.Level().LineDefs[0]);
    EXPECT_EQ(level.BehaviorSize, 16);
    EXPECT_EQ(Wad().Game.Format, 4);
}

TEST_F(LevelReader, TheExtendedFormatHoldsMoreThan65535LineDefs)
{
    LevelBuilder builder;
    builder.Sector();
    constexpr int Lines = 65600;
    for (int i = 0; i <= Lines; ++i)
    {
        builder.Vertex(i % 30000, i / 30000);
    }
    for (std::uint32_t i = 0; i < Lines; ++i)
    {
        builder.Side(0);
        builder.Line(i, i + 1, i, i % 7 == 0 ? Lines - 1 - i : map::NoSideDef);
    }
    const map::LevelData level = Read(builder, LevelLayout::ExtendedDoom);
    ASSERT_EQ(level.LineDefs.Count(), Lines);
    EXPECT_EQ(level.LineDefs, builder.Build().LineDefs);
    EXPECT_EQ(level.LineDefs[7].SideDef2, 65592u) << "SideDef numbers above 16 bits";
    EXPECT_EQ(level.LineDefs[8].SideDef2, map::NoSideDef);
}

TEST_F(LevelReader, TheLineCountDecidesTheLayoutAt65535)
{
    LevelBuilder builder = SmallRoom();
    map::ObjectArray<map::LineDef>& lines = builder.Level().LineDefs;
    const map::LineDef first = lines[0];
    lines.resize(65534);
    std::fill(lines.begin(), lines.end(), first);
    EXPECT_EQ(Read(builder).LineDefs.Count(), 65534);
    lines.push_back(lines[0]);
    // 65,535 records of 14 bytes are taken as the wider rows of the Extended Format, which
    // makes nonsense of them: the reader asks about the bad references it then finds.
    Ui.Answer(0).Answer(0);
    EXPECT_EQ(Read(builder).LineDefs.Count(), 65535 * 14 / 22);
}

TEST_F(LevelReader, SixteenBitSideNumbersAbove65534MeanNone)
{
    LevelBuilder builder = SmallRoom();
    builder.Level().LineDefs[1].SideDef2 = 65535;
    const map::LevelData level = Read(builder);
    EXPECT_EQ(level.LineDefs[1].SideDef2, map::NoSideDef);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(LevelReader, VertexesNoLineUsesAreDroppedAndTheRestRenumbered)
{
    LevelBuilder builder;
    for (int i = 0; i < 3; ++i)
    {
        builder.Vertex(-1000 - i, 0); // unused, before the room's
    }
    builder.Room(0, 0, 64, 64);
    for (int i = 0; i < 10; ++i)
    {
        builder.Vertex(5000, i); // unused, after
    }
    const map::LevelData level = Read(builder);
    EXPECT_EQ(level.Vertexes.Count(), 4);
    EXPECT_EQ(level.Vertexes, LevelBuilder().Room(0, 0, 64, 64).Build().Vertexes);
    EXPECT_EQ(level.LineDefs, LevelBuilder().Room(0, 0, 64, 64).Build().LineDefs);
}

TEST_F(LevelReader, ABadVertexNumberIsSetToZeroAfterAsking)
{
    LevelBuilder builder = SmallRoom();
    builder.Level().LineDefs[2].EndVertex = 700;
    builder.Level().LineDefs[3].StartVertex = 800;
    Ui.Answer(0);
    const map::LevelData level = Read(builder);
    EXPECT_EQ(Ui.Messages.size(), 1u) << "one question for all bad lines";
    EXPECT_EQ(Ui.Last().Text(), "Vertex in Linedef 2 not valid 2,700\n\nIf you continue, ALL "
                                "invalid vertexes are set to 0\n\nShould we Quit Now ?");
    EXPECT_EQ(level.LineDefs[2].EndVertex, 0u);
    EXPECT_EQ(level.LineDefs[3].StartVertex, 0u);
}

TEST_F(LevelReader, QuittingAtAQuestionEndsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    LevelBuilder builder = SmallRoom();
    builder.Level().LineDefs[2].EndVertex = 700;
    const auto quit = [&]
    {
        Ui.Answer(1);
        Read(builder);
    };
    EXPECT_EXIT(quit(), ::testing::ExitedWithCode(platform::FatalExitCode),
                "FATAL ERROR: vertex in linedef 2 not valid 2,700\n");
}

TEST_F(LevelReader, SideDefsWithAMissingSectorGetNewSectors)
{
    LevelBuilder builder = SmallRoom();
    builder.Level().SideDefs[1].Sector = 40;
    builder.Level().SideDefs[3].Sector = 40;
    builder.Level().SideDefs[2].Sector = 41;
    builder.Side(99); // a SideDef no line uses keeps its bad number
    map::Map().Defaults.FloorHeight = 8;
    Ui.Answer(0);
    const map::LevelData level = Read(builder);
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Last().Text(), "LineDef 1, Sidedef 1 has invalid Sector 40\n\nIf you continue "
                                "ALL invalid sectors are recreated starting with 1\n\nShould we "
                                "Quit Now ?");
    ASSERT_EQ(level.Sectors.Count(), 3);
    EXPECT_EQ(level.Sectors[1].FloorHeight, 8);
    EXPECT_EQ(level.SideDefs[1].Sector, 1u);
    EXPECT_EQ(level.SideDefs[3].Sector, 1u);
    EXPECT_EQ(level.SideDefs[2].Sector, 2u);
    EXPECT_EQ(level.SideDefs[4].Sector, 99u);
    EXPECT_NE(level.ChangeCount, 0) << "the repair changed the level";
}

TEST_F(LevelReader, SidesBeyondTheSideDefsAreResetAfterAsking)
{
    LevelBuilder builder = SmallRoom();
    builder.Level().LineDefs[1].SideDef2 = 50;
    builder.Level().LineDefs[3].SideDef1 = map::NoSideDef;
    Ui.Answer(0);
    const map::LevelData level = Read(builder);
    ASSERT_EQ(Ui.Messages.size(), 3u) << "the question, the advice, and packing: 0 is shared now";
    EXPECT_EQ(Ui.Messages[2].Title, "SideDefs Packed");
    EXPECT_EQ(Ui.Messages[0].Text(), "LineDef 1 SideDef out of range 1,50\n\nIf you continue all "
                                     "bad SideDefs are reset to 0\n\nShould we Quit Now ?");
    EXPECT_EQ(Ui.Messages[1].Title, "SideDefs bad");
    EXPECT_EQ(Ui.Messages[1].Lines,
              (std::vector<std::string>{"Select Unpack SideDefs from File menu",
                                        "to make each sidedef unique again"}));
    EXPECT_EQ(level.LineDefs[1].SideDef2, 0u);
    EXPECT_EQ(level.LineDefs[3].SideDef1, map::NoSideDef) << "a missing front side stays missing";

    LevelBuilder missing = SmallRoom();
    missing.Level().LineDefs[0].SideDef1 = map::NoSideDef;
    Ui.Clear();
    Ui.Answer(0);
    Read(missing);
    EXPECT_EQ(Ui.Messages[0].Text(), "LineDef 0 missing side 1\n\nIf you continue all bad SideDefs "
                                     "are reset to 0\n\nShould we Quit Now ?");
}

TEST_F(LevelReader, ALevelOfTheOtherFormatIsMarkedAndMayLoseItsSpecials)
{
    LevelBuilder builder = SmallRoom();
    builder.Level().LineDefs[0].Type = 11;
    builder.Level().LineDefs[0].Tag = 5;
    builder.Level().Sectors[0].Type = 9;
    Wad().Options.ZdoomHexenFormat = true; // a Hexen-format project over a Doom IWAD
    Ui.Answer(1);
    const map::LevelData level = Read(builder);
    // The first message is the IWAD's own (no BEHAVIOR); then the level's question.
    EXPECT_EQ(Ui.Last().Text(),
              "\tThis level came from another game.\n\nThis is a DOOM/etc map type and you are "
              "editing HEXEN type levels\n\nUse ZWADCONV to convert a DOOM, HERETIC or STRIFE "
              "level to ZDOOMHEXEN format\n\nUse F5 Options and set IWAD message to bypass this "
              "message and not reset anything\n\n\tReset Specials and Tags to 0?");
    EXPECT_EQ(level.LineDefs[0].Type, 0u);
    EXPECT_EQ(level.LineDefs[0].Tag, 0);
    EXPECT_EQ(level.Sectors[0].Type, 0);
    EXPECT_EQ(level.Things[0].Flags, 7 | 0x07E0);
    EXPECT_EQ(level.ChangeCount, 1);
    EXPECT_EQ(level.GeometryChangeCount, 1);
}

TEST_F(LevelReader, AHexenLevelInADoomProjectKeepsOnlyDoomFlags)
{
    // A Doom 2 IWAD with a Hexen-layout level in it: the level is of another game.
    LevelBuilder builder = SmallRoom();
    builder.Level().Things[0].Flags = 0x7E7;
    WadBuilder iwad("IWAD");
    builder.WriteTo(iwad, "MAP01", LevelLayout::Hexen);
    iwad.Lump("SARGA1", "s");
    Wad().Options.NoIwadWarningMsg = true; // no questions: the flags change all the same
    ASSERT_EQ(OpenIwad(iwad.Write(Dir.Path() / "iwad.wad")), 1);
    ASSERT_EQ(Wad().Game.Format, 4) << "an IWAD with BEHAVIOR is of Hexen format";
    Wad().Game.Format = 2; // as a Doom project sees it
    map::LevelData level;
    ReadLevel(level, "MAP01", false);
    EXPECT_EQ(level.Things[0].Flags, 0x7);
    EXPECT_EQ(level.ChangeCount, 1);
}

TEST_F(LevelReader, SharedSideDefsAreReportedOrUnpacked)
{
    LevelBuilder builder = SmallRoom();
    builder.Level().LineDefs[2].SideDef1 = 1;
    Read(builder);
    EXPECT_EQ(Ui.Last().Title, "SideDefs Packed");
    EXPECT_EQ(Ui.Last().Lines, (std::vector<std::string>{"** Caution ** SideDefs are packed",
                                                         "Select Unpack Sidedefs from File menu",
                                                         "to make each sidedef unique again"}));
    Ui.Clear();
    Wad().Options.AutomaticSideUnpack = true;
    const map::LevelData level = Read(builder);
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_EQ(level.SideDefs.Count(), 5);
    EXPECT_EQ(level.LineDefs[2].SideDef1, 4u);
}

TEST_F(LevelReader, TheLayoutComesFromTheLumpAfterTheLevel)
{
    WadBuilder withBehavior;
    LevelBuilder()
        .Room(0, 0, 64, 64)
        .WriteTo(withBehavior.Lump("X", "x"), "MAP01", LevelLayout::Hexen);
    const std::string hexen = withBehavior.Write(Dir.Path() / "h.wad");
    WadBuilder unrelated;
    LevelBuilder()
        .Room(0, 0, 64, 64)
        .WriteTo(unrelated, "MAP01")
        .Lump("DEHACKED", "d")
        .Lump("BEHAVIOR", "b");
    const std::string doom = unrelated.Write(Dir.Path() / "d.wad");
    for (const auto& [path, layout] : {std::pair{hexen, 2}, std::pair{doom, 1}})
    {
        StreamPtr stream(std::fopen(path.c_str(), "rb"));
        EXPECT_EQ(LevelLayoutOf(stream.get(), "map01", -1), layout) << path;
        EXPECT_EQ(LevelLayoutOf(stream.get(), "MAP02", -1), 0);
    }
}

TEST_F(LevelReader, ANewLevelIsEmptyWithItsCapacities)
{
    WadBuilder builder("IWAD");
    SmallRoom().WriteTo(builder, "MAP01").Lump("SARGA1", "s");
    const std::string iwad = builder.Write(Dir.Path() / "i.wad");
    ASSERT_EQ(OpenIwad(iwad), 1);
    map::LevelData level;
    ReadLevel(level, "MAP01", true);
    EXPECT_EQ(level.Things.Count(), 0);
    EXPECT_EQ(level.Things.Capacity, 200);
    EXPECT_EQ(level.LineDefs.Capacity, 1000);
    EXPECT_EQ(level.SideDefs.Capacity, 2000);
    EXPECT_EQ(level.Sectors.Capacity, 500);
    EXPECT_EQ(level.Vertexes.Capacity, 2000);
    EXPECT_EQ(level.MaxX, 100) << "the default frame of an empty map";
}

TEST_F(LevelReader, AMissingLevelLumpIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const LevelBuilder builder = SmallRoom();
    WadBuilder iwad("IWAD");
    iwad.Marker("MAP01")
        .Lump("THINGS", builder.ThingsLump(LevelLayout::Doom))
        .Lump("LINEDEFS", builder.LineDefsLump(LevelLayout::Doom))
        .Lump("SIDEDEFS", builder.SideDefsLump())
        .Lump("VERTEXES", builder.VertexesLump())
        .Lump("SARGA1", "s");
    const std::string path = iwad.Write(Dir.Path() / "iwad.wad");
    ASSERT_EQ(OpenIwad(path), 1);
    map::LevelData level;
    EXPECT_EXIT(ReadLevel(level, "MAP01", false),
                ::testing::ExitedWithCode(platform::FatalExitCode),
                " Internal Damaged .*iwad.wad file SECTORS not found");
}

TEST_F(LevelReader, AHeaderClaimingBillionsOfEntriesIsBelievedOnlyForTheEntriesTheFileHolds)
{
    WadBuilder iwad("IWAD");
    SmallRoom().WriteTo(iwad, "MAP01").Lump("SARGA1", "s");
    ASSERT_EQ(OpenIwad(iwad.Write(Dir.Path() / "iwad.wad")), 1);
    // A Hexen-layout level: read with the wrong layout, its lines would come out as garbage.
    LevelBuilder builder;
    builder.Room(0, 0, 256, 64).Thing(32, 32, 3004, 0);
    WadBuilder pwad;
    builder.WriteTo(pwad, "MAP01", LevelLayout::Hexen);
    const std::string path = pwad.HeaderCount(2000000000).Write(Dir.Path() / "huge.wad");
    Wad().Options.NoIwadWarningMsg = true;

    ASSERT_EQ(OpenPwad(path), 1);
    EXPECT_NE(Ui.Messages[0].Text().find("Directory of 2000000000 entries at offset="),
              std::string::npos)
        << Ui.Messages[0].Text();
    map::LevelData level;
    ASSERT_EQ(ReadLevel(level, "MAP01", false), 1);
    EXPECT_EQ(level.LevelLayout, 2);
    EXPECT_EQ(level.LineDefs, builder.Build().LineDefs);
    EXPECT_EQ(level.Vertexes, builder.Build().Vertexes);
    const StreamPtr stream(std::fopen(path.c_str(), "rb"));
    EXPECT_EQ(LevelLayoutOf(stream.get(), "MAP01", -1), 2);
    EXPECT_EQ(PeekPwadEntry(path, "BEHAVIOR", nullptr), 1);
}

TEST_F(LevelReader, NothingIsAllocatedForALumpTheFileNoLongerHolds)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // THINGS claims 2 GB of a file that was that long when it was scanned and was cut short
    // after. Reading it is a short read; under a limit far below 2 GB of address space the
    // reader gets through, so it took no room for the bytes first.
    constexpr std::int32_t Huge = 0x7FFF0000;
    const LevelBuilder builder = SmallRoom();
    WadBuilder iwad("IWAD");
    iwad.Marker("MAP01")
        .Entry(12, Huge, "THINGS")
        .Lump("LINEDEFS", builder.LineDefsLump(LevelLayout::Doom))
        .Lump("SIDEDEFS", builder.SideDefsLump())
        .Lump("VERTEXES", builder.VertexesLump())
        .Marker("SEGS")
        .Marker("SSECTORS")
        .Marker("NODES")
        .Lump("SECTORS", builder.SectorsLump())
        .Marker("REJECT")
        .Marker("BLOCKMAP")
        .Lump("SARGA1", "s");
    const std::string path = iwad.Write(Dir.Path() / "iwad.wad");
    const std::uintmax_t size = std::filesystem::file_size(path);
    std::filesystem::resize_file(path, 12 + static_cast<std::uintmax_t>(Huge)); // sparse
    ASSERT_EQ(OpenIwad(path), 1);
    std::filesystem::resize_file(path, size);

    const auto read = [&]
    {
        long pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        const rlim_t room =
            static_cast<rlim_t>(pages) * static_cast<rlim_t>(getpagesize()) + (rlim_t{256} << 20);
        const rlimit limit{room, room};
        setrlimit(RLIMIT_AS, &limit);
        Ui.Answer(0); // go on after the short read
        map::LevelData level;
        (void)ReadLevel(level, "MAP01", false);
        const bool asked =
            Ui.Messages[0].Title == "I/O error" &&
            Ui.Messages[0].Lines[0] == " read error: 2147418112 bytes at location 12";
        std::exit(asked && level.Things.Count() == 0 && level.LineDefs.Count() == 4 ? 0 : 1);
    };
    EXPECT_EXIT(read(), ::testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace kelvar::wad
