// Tests of the save pipeline: the file chosen, the level's lumps from memory or as old bytes,
// group saves, reject tables, the Extended Format, failures that leave the old file whole,
// the node build's recovery and the quick backup.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/LevelSave.h"
#include "app/SaveTarget.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "platform/test/RecordingProcesses.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"
#include "wad/Backup.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/LevelReader.h"
#include "wad/LevelWriter.h"
#include "wad/SavePath.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

namespace kelvar::wad
{
namespace
{

using app::ChooseSavePath;
using app::WriteLevelFile;

using testkit::LevelBuilder;
using testkit::WadBuilder;

/// One lump of a file on disk, by its position among the entries of that name.
struct DiskLump
{
    std::string Name;
    std::int32_t Offset = 0;
    std::int32_t Size = 0;
};

std::vector<DiskLump> DirectoryOf(const std::string& path)
{
    StreamPtr stream(std::fopen(path.c_str(), "rb"));
    EXPECT_TRUE(stream) << path;
    std::vector<DiskLump> lumps;
    if (!stream)
    {
        return lumps;
    }
    const std::optional<std::vector<LumpEntry>> entries = ReadWadDirectory(stream.get(), path);
    for (const LumpEntry& entry : entries.value_or(std::vector<LumpEntry>{}))
    {
        lumps.push_back({entry.Name.Text(), entry.Offset, entry.Size});
    }
    return lumps;
}

std::vector<std::string> NamesOf(const std::string& path)
{
    std::vector<std::string> names;
    for (const DiskLump& lump : DirectoryOf(path))
    {
        names.push_back(lump.Name);
    }
    return names;
}

/// The bytes of the `nth` lump named `name` (counting from 0).
std::string LumpBytes(const std::string& path, const std::string& name, int nth = 0)
{
    const std::string file = testkit::ReadFile(path);
    for (const DiskLump& lump : DirectoryOf(path))
    {
        if (lump.Name == name && nth-- == 0)
        {
            return file.substr(static_cast<std::size_t>(lump.Offset),
                               static_cast<std::size_t>(lump.Size));
        }
    }
    ADD_FAILURE() << "no lump " << name << " in " << path;
    return {};
}

std::vector<std::string> LevelOrder(std::string_view marker)
{
    return {std::string(marker), "THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SEGS",
            "SSECTORS",          "NODES",  "SECTORS",  "REJECT",   "BLOCKMAP"};
}

class SaveTest : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        app::ResetShell();
        app::ResetSession();
        map::ResetMap();
        Wad().Options.DefaultPwadDir = Dir.Path();
    }

    void TearDown() override
    {
        app::ResetShell();
        app::ResetSession();
        map::ResetMap();
        WadFixture::TearDown();
    }

    /// Freedoom 2 with `pwad` laid over it, and `level` read.
    void Load(const std::string& pwad, const std::string& level)
    {
        ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
        if (!pwad.empty())
        {
            ASSERT_GT(OpenPwad(pwad), 0);
        }
        (void)ReadLevel(map::Map().Level, level, false);
    }

    /// Save Level to the level's own file. Returns WriteLevelFile's result, or -2 when no path
    /// came back.
    int Save(const std::string& level, int code = SaveLevelCode, bool group = true)
    {
        const std::string oldPath = Wad().Files[Wad().CurrentFile.FileNumber].FileName;
        const std::optional<std::string> path = ChooseSavePath(level, level, false, group);
        if (!path)
        {
            return -2;
        }
        Saved = *path;
        return WriteLevelFile(map::Map().Level, *path, oldPath, code);
    }

    /// The level as a fresh session reads it from `pwad`.
    map::LevelData ReadBack(const std::string& pwad, const std::string& level)
    {
        ResetWad();
        Wad().ProgramDir = Dir.Path();
        map::LevelData read;
        EXPECT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
        EXPECT_GT(OpenPwad(pwad), 0);
        (void)ReadLevel(read, level, false);
        return read;
    }

    std::string Saved;
};

TEST_F(SaveTest, AChangedLevelIsWrittenFromMemoryAndReadsBackTheSame)
{
    WadBuilder builder;
    LevelBuilder()
        .Room(0, 0, 256, 256)
        .Room(512, 0, 128, 128)
        .Thing(64, 64, 1)
        .WriteTo(builder, "MAP01");
    const std::string pwad = builder.Write(Dir.Path() / "rooms.wad");
    const std::string before = testkit::ReadFile(pwad);
    Load(pwad, "MAP01");
    map::LevelData& level = map::Map().Level;
    level.Things[0].Angle = 90;
    level.Sectors[1].Light = 255;
    level.SideDefs[2].NormalTexture = map::TextureName::From("BRICK1");
    level.ChangeCount = 1;
    const map::LevelData edited = level;

    ASSERT_EQ(Save("MAP01"), 0);
    EXPECT_EQ(Saved, pwad);
    EXPECT_EQ(level.ChangeCount, 0);
    EXPECT_EQ(testkit::ReadFile(Dir.Path() / "rooms.BAK"), before) << "the old file is the .BAK";
    EXPECT_EQ(NamesOf(pwad), LevelOrder("MAP01"));

    const map::LevelData read = ReadBack(pwad, "MAP01");
    EXPECT_EQ(read.Things, edited.Things);
    EXPECT_EQ(read.LineDefs, edited.LineDefs);
    EXPECT_EQ(read.SideDefs, edited.SideDefs);
    EXPECT_EQ(read.Vertexes, edited.Vertexes);
    EXPECT_EQ(read.Sectors, edited.Sectors);
}

TEST_F(SaveTest, UnchangedLevelLumpsAreByteCopiesAndNodesStayAsTheyWere)
{
    // Node lumps with data of their own, which only a copy keeps.
    WadBuilder builder;
    builder.Marker("MAP02");
    const LevelBuilder rooms = LevelBuilder().Room(0, 0, 128, 128).Thing(32, 32, 1);
    builder.Lump("THINGS", rooms.ThingsLump(testkit::LevelLayout::Doom))
        .Lump("LINEDEFS", rooms.LineDefsLump(testkit::LevelLayout::Doom))
        .Lump("SIDEDEFS", rooms.SideDefsLump())
        .Lump("VERTEXES", rooms.VertexesLump())
        .Lump("SEGS", std::string(24, 's'))
        .Lump("SSECTORS", std::string(8, 'u'))
        .Lump("NODES", std::string(28, 'n'))
        .Lump("SECTORS", rooms.SectorsLump())
        .Lump("REJECT", std::string(1, 'r'))
        .Lump("BLOCKMAP", std::string(40, 'b'));
    const std::string pwad = builder.Write(Dir.Path() / "copy.wad");
    const std::string before = testkit::ReadFile(pwad);
    Load(pwad, "MAP02");
    ASSERT_EQ(map::Map().Level.ChangeCount, 0);
    ASSERT_EQ(Save("MAP02"), 0);

    for (const std::string& lump : LevelOrder("MAP02"))
    {
        EXPECT_EQ(LumpBytes(pwad, lump), LumpBytes(Dir.Path() / "copy.BAK", lump)) << lump;
    }
    EXPECT_EQ(testkit::ReadFile(pwad).size(), before.size());
}

TEST_F(SaveTest, AFileOfTenLevelsKeepsTheOthersInOrderAroundTheSavedOne)
{
    WadBuilder builder;
    builder.Lump("DEMO1", "demo");
    for (int map = 1; map <= 10; ++map)
    {
        const std::string name = "MAP" + std::string(map < 10 ? "0" : "") + std::to_string(map);
        if (map == 4)
        {
            // Its lumps out of order in the file: the save puts them in the usual order.
            const LevelBuilder room = LevelBuilder().Room(0, 0, 128, 128);
            builder.Marker(name)
                .Lump("THINGS", room.ThingsLump(testkit::LevelLayout::Doom))
                .Lump("LINEDEFS", room.LineDefsLump(testkit::LevelLayout::Doom))
                .Lump("SIDEDEFS", room.SideDefsLump())
                .Lump("VERTEXES", room.VertexesLump())
                .Lump("SECTORS", room.SectorsLump())
                .Marker("SEGS")
                .Marker("SSECTORS")
                .Marker("NODES")
                .Marker("REJECT")
                .Marker("BLOCKMAP");
            continue;
        }
        LevelBuilder().Room(map * 256, 0, 128, 128).WriteTo(builder, name);
    }
    builder.Lump("ENDOOM", std::string(4000, 'e'));
    const std::string pwad = builder.Write(Dir.Path() / "ten.wad");
    Load(pwad, "MAP04");
    map::Map().Level = LevelBuilder().Room(0, 0, 64, 64).Build();
    map::Map().Level.ChangeCount = 1;
    ASSERT_EQ(Save("MAP04", SaveLevelCode, true), 0);
    EXPECT_EQ(Saved, pwad) << "Group Save keeps the level in its file";

    std::vector<std::string> expected = {"DEMO1"};
    for (int map = 1; map <= 10; ++map)
    {
        const std::string name = "MAP" + std::string(map < 10 ? "0" : "") + std::to_string(map);
        for (const std::string& lump : LevelOrder(name))
        {
            expected.push_back(lump);
        }
    }
    expected.push_back("ENDOOM");
    EXPECT_EQ(NamesOf(pwad), expected);
    EXPECT_EQ(LumpBytes(pwad, "ENDOOM"), std::string(4000, 'e'));
    EXPECT_EQ(LumpBytes(pwad, "LINEDEFS", 8), LumpBytes(Dir.Path() / "ten.BAK", "LINEDEFS", 8))
        << "MAP09 untouched";
    EXPECT_EQ(ReadBack(pwad, "MAP04").LineDefs.Count(), 4);
}

TEST_F(SaveTest, RejectTablesFollowTheChoices)
{
    WadBuilder builder;
    LevelBuilder().Room(0, 0, 128, 128).Room(256, 0, 128, 128).WriteTo(builder, "MAP01");
    const std::string pwad = builder.Write(Dir.Path() / "reject.wad");
    Load(pwad, "MAP01");
    SaveOptions& choices = Wad().SaveChoices;

    // Two Sectors: a table of one byte. All attacks: zero.
    choices.CopyReject = false;
    choices.AllAttacks = true;
    ASSERT_EQ(Save("MAP01"), 0);
    EXPECT_EQ(LumpBytes(pwad, "REJECT"), std::string(1, '\0'));

    // A third Sector grows the table to 2 bytes; "NO Attacks" fills it with 255.
    Load(pwad, "MAP01");
    map::LevelData& level = map::Map().Level;
    level.Sectors.push_back(level.Sectors[0]);
    level.ChangeCount = 1;
    choices.AllAttacks = false;
    choices.AttackStep = 0;
    choices.AttackByte = 255;
    ASSERT_EQ(Save("MAP01"), 0);
    EXPECT_EQ(LumpBytes(pwad, "REJECT"), std::string(2, '\xff'));

    // 33%: two zero bytes, then the attack byte.
    ResetWad();
    Wad().ProgramDir = Dir.Path();
    Load(pwad, "MAP01");
    Wad().SaveChoices.CopyReject = false;
    Wad().SaveChoices.AttackStep = 2;
    map::Map().Level.Sectors.resize(5);
    map::Map().Level.ChangeCount = 1;
    ASSERT_EQ(Save("MAP01"), 0);
    EXPECT_EQ(LumpBytes(pwad, "REJECT"), std::string("\0\0\xff\0", 4));

    // Copy Reject: the old bytes at the start of a larger zeroed table.
    ResetWad();
    Wad().ProgramDir = Dir.Path();
    Load(pwad, "MAP01");
    Wad().SaveChoices.CopyReject = true;
    map::Map().Level.Sectors.resize(6);
    map::Map().Level.ChangeCount = 1;
    ASSERT_EQ(Save("MAP01"), 0);
    EXPECT_EQ(LumpBytes(pwad, "REJECT"), std::string("\0\0\xff\0\0", 5));
}

TEST_F(SaveTest, ZeroNodesLeavesEmptyNodeEntries)
{
    WadBuilder builder;
    LevelBuilder().Room(0, 0, 64, 64).WriteTo(builder, "MAP01");
    const std::string pwad = builder.Write(Dir.Path() / "zero.wad");
    Load(pwad, "MAP01");
    Wad().SaveChoices.ZeroNodes = true;
    Wad().SaveChoices.ZeroBlockmap = true;
    ASSERT_EQ(Save("MAP01"), 0);
    for (const DiskLump& lump : DirectoryOf(pwad))
    {
        if (lump.Name == "SEGS" || lump.Name == "SSECTORS" || lump.Name == "NODES" ||
            lump.Name == "BLOCKMAP")
        {
            EXPECT_EQ(lump.Size, 0) << lump.Name;
        }
    }
}

TEST_F(SaveTest, AHexenProjectGetsHexenRowsAndAnEmptyScript)
{
    WadBuilder builder;
    LevelBuilder().Room(0, 0, 128, 128).Thing(64, 64, 1, 0, 0x17).WriteTo(builder, "MAP01");
    const std::string pwad = builder.Write(Dir.Path() / "doomlayout.wad");
    Load(pwad, "MAP01");
    Wad().Game.Format = 4;
    map::Map().Level.ChangeCount = 1;
    ASSERT_EQ(Save("MAP01"), 0);
    std::vector<std::string> order = LevelOrder("MAP01");
    order.push_back("BEHAVIOR");
    EXPECT_EQ(NamesOf(pwad), order);
    EXPECT_EQ(LumpBytes(pwad, "BEHAVIOR"), std::string(16, '\0'));
    const std::string things = LumpBytes(pwad, "THINGS");
    ASSERT_EQ(things.size(), HexenThingSize);
    EXPECT_EQ(static_cast<unsigned char>(things[12]), 0x07) << "flag 0x0010 goes on the way out";
}

TEST_F(SaveTest, MoreThan65534LineDefsGoOutInTheExtendedFormat)
{
    WadBuilder builder;
    LevelBuilder().Room(0, 0, 64, 64).WriteTo(builder, "MAP01");
    const std::string pwad = builder.Write(Dir.Path() / "huge.wad");
    Load(pwad, "MAP01");
    // 16,400 rooms of four lines: 65,600 LineDefs and SideDefs.
    LevelBuilder huge;
    for (int i = 0; i < 16400; ++i)
    {
        huge.Room((i % 128) * 80, (i / 128) * 80, 64, 64);
    }
    map::Map().Level = huge.Build();
    map::Map().Level.ChangeCount = 1;
    Ui.Answer(1); // the question about the Doom format's limits: continue
    ASSERT_EQ(Save("MAP01"), 0);
    EXPECT_NE(Ui.Last().Text().find("Continue with Save Using Kelvar Extended Format?"),
              std::string::npos);
    EXPECT_EQ(LumpBytes(pwad, "LINEDEFS").size(), 65600 * ExtendedDoomLineSize);
    const map::LevelData read = ReadBack(pwad, "MAP01");
    EXPECT_EQ(read.LineDefs.Count(), 65600);
    EXPECT_EQ(read.LineDefs[65599], huge.Build().LineDefs[65599]);
}

TEST_F(SaveTest, ALevelOfTheIwadNeverWritesTheIwadAndProposesItsOwnFile)
{
    Load("", "MAP03");
    const std::string own = (Dir.Path() / "MAP03.wad").string();
    Ui.AnswerFile(testkit::FreedoomWad("freedoom2.wad"));
    EXPECT_EQ(Save("MAP03"), -2) << "the IWAD is refused";
    EXPECT_TRUE(Ui.Saw(std::string("File 0\n\n") + testkit::FreedoomWad("freedoom2.wad") +
                       "\n\nis in use by Kelvar\nCan't write over file"));

    Ui.AnswerFile(own);
    ASSERT_EQ(Save("MAP03"), 0);
    EXPECT_EQ(NamesOf(own), LevelOrder("MAP03"));
    EXPECT_EQ(Wad().OpenFiles[0], own) << "the new PWAD is a file of the session";
}

TEST_F(SaveTest, AFullDiskLeavesTheOldFileAsItWas)
{
    WadBuilder builder;
    LevelBuilder().Room(0, 0, 256, 256).Room(512, 0, 256, 256).WriteTo(builder, "MAP01");
    builder.Lump("ENDOOM", std::string(20000, 'e'));
    const std::string pwad = builder.Write(Dir.Path() / "full.wad");
    const std::string before = testkit::ReadFile(pwad);
    Load(pwad, "MAP01");
    map::Map().Level.ChangeCount = 1;
    Wad().WriteBudget = 1000;
    Ui.Answer(0); // the I/O error's "Quit now?": no
    EXPECT_EQ(Save("MAP01"), -1);
    Wad().WriteBudget = -1;
    EXPECT_EQ(Ui.Last().Title, "I/O error");
    EXPECT_EQ(testkit::ReadFile(pwad), before);
    EXPECT_FALSE(std::filesystem::exists(Dir.Path() / "full.BAK"));
    EXPECT_EQ(map::Map().Level.ChangeCount, 1) << "the level stays changed";
}

TEST_F(SaveTest, NothingMadeSavesNothing)
{
    WadBuilder builder;
    LevelBuilder().Room(0, 0, 64, 64).WriteTo(builder, "MAP01");
    const std::string pwad = builder.Write(Dir.Path() / "empty.wad");
    const std::string before = testkit::ReadFile(pwad);
    Load(pwad, "MAP01");
    map::Map().Level.Sectors.clear();
    EXPECT_EQ(Save("MAP01"), -1);
    EXPECT_EQ(Ui.Last().Lines,
              (std::vector<std::string>{"!! Please MAKE something first !!", "Nothing saved"}));
    EXPECT_EQ(testkit::ReadFile(pwad), before);
}

TEST_F(SaveTest, AFailedNodeBuildOffersTheLevelWithoutNewNodes)
{
    WadBuilder builder;
    LevelBuilder().Room(0, 0, 128, 128).Thing(64, 64, 1).WriteTo(builder, "MAP01");
    const std::string pwad = builder.Write(Dir.Path() / "nodes.wad");
    Load(pwad, "MAP01");
    platform::RecordingProcesses nodeBuilder;
    nodeBuilder.Exit(1);
    Ui.Answer(1); // copy the temporary file back
    ASSERT_EQ(Save("MAP01", BuildNodesCode), 0);
    const std::string temporary = (Dir.Path() / NodeBuildFileName).string();
    ASSERT_EQ(nodeBuilder.Runs.size(), 1U);
    EXPECT_NE(nodeBuilder.Runs[0].CommandLine.find(pwad), std::string::npos)
        << nodeBuilder.Runs[0].CommandLine;
    EXPECT_EQ(Ui.Titles().front(), "Node Error");
    EXPECT_TRUE(Ui.Saw("File " + pwad + " recovered"));
    EXPECT_EQ(testkit::ReadFile(pwad), testkit::ReadFile(temporary));
    EXPECT_NE(map::Map().Level.GeometryChangeCount, 0) << "the nodes are still to build";
}

TEST_F(SaveTest, QuickBackupHoldsTheEditedObjects)
{
    WadBuilder builder;
    LevelBuilder().Room(0, 0, 128, 128).Thing(64, 64, 1).WriteTo(builder, "MAP01");
    const std::string pwad = builder.Write(Dir.Path() / "work.wad");
    Load(pwad, "MAP01");
    map::LevelData& level = map::Map().Level;
    level.Things[0].X = 100;
    level.ChangeCount = 1;
    const std::string bkp = BackupPathOf(pwad);
    EXPECT_EQ(bkp, (Dir.Path() / "work.BKP").string());

    Ui.Answer(0);
    EXPECT_EQ(WriteBackup(true, level, bkp), -1);
    EXPECT_EQ(Ui.Last().Text(), "Save BKP file?\n\n" + bkp);
    Ui.Answer(1);
    ASSERT_EQ(WriteBackup(true, level, bkp), 0);
    EXPECT_EQ(LumpBytes(bkp, "THINGS"),
              std::string(reinterpret_cast<const char*>(ThingRows(level, {}).data()), 10));
    EXPECT_FALSE(Wad().BackupInProgress);
}

} // namespace
} // namespace kelvar::wad
