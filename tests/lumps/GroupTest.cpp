// Tests of the Group, Ungroup and IWAD writers: which lumps of which file land where, the
// flats' closing F_END, sources left untouched, and failures that leave nothing behind.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/Group.h"

#include "platform/Format.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/WadFixture.h"
#include "wad/FindLump.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <algorithm>
#include <filesystem>

namespace kelvar::lumps
{
namespace
{

using testkit::ReadFile;
using testkit::WadBuilder;
using Lump = std::pair<std::string, std::string>; // name, bytes
using Lumps = std::vector<Lump>;

// Every entry of a WAD file with its bytes, in directory order.
Lumps LumpsOf(const std::filesystem::path& path)
{
    const std::optional<wad::RewritePlan> plan = wad::PlanOfWad(path);
    EXPECT_TRUE(plan.has_value()) << path;
    const std::string bytes = ReadFile(path);
    Lumps lumps;
    for (const wad::RewriteEntry& entry : plan ? plan->Entries : std::vector<wad::RewriteEntry>{})
    {
        lumps.emplace_back(entry.Name, bytes.substr(static_cast<std::size_t>(entry.Offset),
                                                    static_cast<std::size_t>(entry.Size)));
    }
    return lumps;
}

// `count` lumps of `lumps` from `first`, appended to `to`.
void Take(Lumps& to, const Lumps& lumps, std::size_t first, std::size_t count)
{
    to.insert(to.end(), lumps.begin() + static_cast<std::ptrdiff_t>(first),
              lumps.begin() + static_cast<std::ptrdiff_t>(first + count));
}

Lump Marker(const std::string& name)
{
    return {name, ""};
}

class GroupTest : public testkit::WadFixture
{
protected:
    // The IWAD, and two PWADs with levels of every length, flats between both pairs of markers
    // and the lump SHARED that both define. A: MAP01 whole (0-10), MAP02 without nodes
    // (11-16), F_START FLATA F_END, SHARED, ONLYA. B: its own MAP01 (0-10), a Hexen MAP03 with
    // BEHAVIOR (11-22), FF_START FLATB FF_END, SHARED, ONLYB.
    void OpenTwoPwads()
    {
        WadBuilder iwad("IWAD");
        iwad.Lump("PLAYPAL", "palette").Level("MAP01");
        iwad.Marker("F_START").Lump("FLOOR1", std::string(4096, 'f')).Marker("F_END");
        iwad.Lump("SARGA1", "sprite").Lump("TEXTURE1", "tex");
        ASSERT_EQ(OpenIwad(iwad.Write(Dir.Path() / "iwad.wad")), 1);

        WadBuilder a;
        a.Level("MAP01").Marker("MAP02");
        for (const char* name : {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SECTORS"})
        {
            a.Lump(name, testkit::LumpFiller(std::string("MAP02") + name, 20));
        }
        a.Marker("F_START").Lump("FLATA", std::string(4096, 'a')).Marker("F_END");
        a.Lump("SHARED", "from A").Lump("ONLYA", "only in A");
        PathA = a.Write(Dir.Path() / "a.wad");

        WadBuilder b;
        b.Level("MAP01", 24).HexenLevel("MAP03");
        b.Marker("FF_START").Lump("FLATB", std::string(4096, 'b')).Marker("FF_END");
        b.Lump("SHARED", "from B").Lump("ONLYB", "only in B");
        PathB = b.Write(Dir.Path() / "b.wad");

        ASSERT_EQ(OpenPwad(PathA), 1);
        ASSERT_EQ(OpenPwad(PathB), 2);
        A = LumpsOf(PathA);
        B = LumpsOf(PathB);
        Sources = {ReadFile(Dir.Path() / "iwad.wad"), ReadFile(PathA), ReadFile(PathB)};
        Ui.Clear();
    }

    void ExpectSourcesUntouched() const
    {
        EXPECT_EQ(ReadFile(Dir.Path() / "iwad.wad"), Sources[0]);
        EXPECT_EQ(ReadFile(PathA), Sources[1]);
        EXPECT_EQ(ReadFile(PathB), Sources[2]);
    }

    std::filesystem::path Target() const { return Dir.Path() / "out.wad"; }

    std::string PathA, PathB;
    Lumps A, B;
    std::vector<std::string> Sources;
};

TEST_F(GroupTest, GroupWritesEveryLevelAndEachOtherLumpOnceInItsWinningDefinition)
{
    OpenTwoPwads();
    ASSERT_EQ(GroupWads(Target(), true), 1);

    Lumps expected;
    Take(expected, A, 0, 17); // both levels of A, nodes or none
    expected.insert(expected.end(), {Marker("F_START"), A[18], Marker("F_END")});
    expected.emplace_back("SHARED", "from B"); // B's data, where A's walk met the name
    expected.push_back(A[21]);
    Take(expected, B, 0, 23); // B's MAP01 too, and the Hexen level with its BEHAVIOR
    expected.insert(expected.end(), {Marker("FF_START"), B[24], Marker("FF_END"), B[27]});
    EXPECT_EQ(LumpsOf(Target()), expected);
    ExpectSourcesUntouched();

    // A second reader sees the same directory and finds the levels.
    const std::vector<std::string> omg =
        testkit::RunOmgifol("omg_directory.py", Target().string()).Lines();
    ASSERT_EQ(omg.size(), expected.size());
    EXPECT_EQ(omg[11].substr(0, 6), "MAP02 ");
    const std::string maps = testkit::RunOmgifol("omg_entries.py", Target().string()).Text;
    EXPECT_NE(maps.find("M MAP02 THINGS LINEDEFS SIDEDEFS VERTEXES SECTORS\n"), std::string::npos);
    EXPECT_NE(maps.find("M MAP03 THINGS"), std::string::npos);

    ASSERT_FALSE(Ui.Progress.empty());
    EXPECT_EQ(Ui.Progress.back(),
              std::make_pair(platform::Format("Grouping PWAD %44s", Target().c_str()),
                             std::string("100 of 100")));
}

TEST_F(GroupTest, GroupWithoutOtherDataWritesTheLevelsAlone)
{
    OpenTwoPwads();
    ASSERT_EQ(GroupWads(Target(), false), 1);
    Lumps expected;
    Take(expected, A, 0, 17);
    Take(expected, B, 0, 23);
    EXPECT_EQ(LumpsOf(Target()), expected);
}

TEST_F(GroupTest, FlatsGetOneClosingFEndWhateverTheSourcesHeld)
{
    WadBuilder iwad("IWAD");
    iwad.Lump("SARGA1", "sprite").Level("MAP01");
    ASSERT_EQ(OpenIwad(iwad.Write(Dir.Path() / "iwad.wad")), 1);
    const std::string c = WadBuilder()
                              .Marker("FF_START")
                              .Lump("FLATC", "cccc")
                              .Marker("FF_END")
                              .Write(Dir.Path() / "c.wad");
    const std::string d = WadBuilder()
                              .Marker("F_START")
                              .Lump("FLATD", "dddd")
                              .Marker("F_END")
                              .Write(Dir.Path() / "d.wad");
    ASSERT_EQ(OpenPwad(c), 1);
    ASSERT_EQ(OpenPwad(d), 2);
    ASSERT_EQ(GroupWads(Target(), true), 1);
    const Lumps expected = {Marker("FF_START"), {"FLATC", "cccc"}, Marker("FF_END"),
                            Marker("F_END"),    Marker("F_START"), {"FLATD", "dddd"}};
    EXPECT_EQ(LumpsOf(Target()), expected);
}

TEST_F(GroupTest, UngroupTakesWhatIsAliveInEachFileEitherWay)
{
    OpenTwoPwads();
    ASSERT_EQ(UngroupWads(Target(), true), 1);
    const Lumps data = {Marker("F_START"),
                        A[18],
                        Marker("F_END"),
                        A[21],
                        Marker("FF_START"),
                        B[24],
                        Marker("FF_END"),
                        B[26],
                        B[27]};
    EXPECT_EQ(LumpsOf(Target()), data) << "A's SHARED lost to B's";

    ASSERT_EQ(UngroupWads(Target(), false), 1);
    Lumps levels;
    Take(levels, A, 11, 6); // A's MAP01 lost to B's
    Take(levels, B, 0, 23);
    EXPECT_EQ(LumpsOf(Target()), levels);
    EXPECT_TRUE(std::filesystem::exists(wad::BakPathOf(Target()))) << "the first result kept";
    ExpectSourcesUntouched();
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(GroupTest, UngroupWithNothingToWriteLeavesAnEmptyFileAndSaysSo)
{
    WadBuilder iwad("IWAD");
    iwad.Lump("SARGA1", "sprite").Level("MAP01");
    ASSERT_EQ(OpenIwad(iwad.Write(Dir.Path() / "iwad.wad")), 1);
    ASSERT_EQ(OpenPwad(WadBuilder().Level("MAP04").Write(Dir.Path() / "levels.wad")), 1);
    EXPECT_EQ(UngroupWads(Target(), true), 1);
    EXPECT_EQ(ReadFile(Target()), std::string("PWAD\0\0\0\0\x0c\0\0\0", 12));
    EXPECT_EQ(Ui.Last().Text(),
              "Ungroup file created is invalid\n\nThere was no data found for the option");
}

TEST_F(GroupTest, FailuresLeaveNothingWrittenAndTheSourcesAsTheyWere)
{
    OpenTwoPwads();
    // A full disk: the old target comes back whole.
    testkit::WriteFile(Target(), "old target");
    wad::Wad().WriteBudget = 3000;
    Ui.Answer(0); // the I/O error's "Quit now?": no
    EXPECT_EQ(GroupWads(Target(), true), 0);
    wad::Wad().WriteBudget = -1;
    EXPECT_EQ(Ui.Titles().front(), "I/O error");
    EXPECT_EQ(ReadFile(Target()), "old target");

    // A target the editor has open is never written over.
    Ui.Clear();
    EXPECT_EQ(GroupWads(PathA, true), 0);
    EXPECT_EQ(Ui.Last().Text(),
              "File 1\n\n" + PathA + "\n\nis in use by Kelvar\nCan't write over file");
    EXPECT_EQ(WriteIwad(Dir.Path() / "iwad.wad"), 0);
    ExpectSourcesUntouched();

    // A target that can't be created.
    const std::filesystem::path nowhere = Dir.Path() / "no such folder" / "out.wad";
    EXPECT_EQ(UngroupWads(nowhere, true), 0);
    EXPECT_EQ(Ui.Last().Text(), "Unable to create : " + nowhere.string());

    // A source cut short after it was opened: its lumps can't be read, nothing is written.
    std::filesystem::resize_file(PathB, std::filesystem::file_size(PathB) / 2);
    Ui.Clear();
    EXPECT_EQ(GroupWads(Dir.Path() / "cut.wad", true), 0);
    EXPECT_FALSE(std::filesystem::exists(Dir.Path() / "cut.wad"));
    EXPECT_EQ(Ui.Last().Text().rfind("File " + PathB + "\n\nDir offset=", 0), 0U);

    // The IWAD gone from its place: its size can't be found.
    std::filesystem::rename(Dir.Path() / "iwad.wad", Dir.Path() / "moved.wad");
    EXPECT_EQ(WriteIwad(Dir.Path() / "made.wad"), 0);
    EXPECT_EQ(Ui.Last().Text(), "File Seekend Error?");
    EXPECT_FALSE(std::filesystem::exists(Dir.Path() / "made.wad"));
}

TEST_F(GroupTest, TheMadeIwadHoldsTheMasterDirectoryAsItStands)
{
    const std::string freedoom = testkit::FreedoomWad("freedoom2.wad");
    ASSERT_EQ(OpenIwad(freedoom), 1);
    // A level over the IWAD's MAP01, a new nodeless MAP40, a Hexen MAP41 (the master keeps
    // its Doom lumps), a new lump, and PLAYPAL twice.
    WadBuilder pwad;
    pwad.Level("MAP01").HexenLevel("MAP41").Marker("MAP40");
    for (const char* name : {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SECTORS"})
    {
        pwad.Lump(name, testkit::LumpFiller(name, 12));
    }
    pwad.Lump("PLAYPAL", std::string(768 * 14, 'p')).Lump("NEWLUMP", "new");
    const std::string path = pwad.Write(Dir.Path() / "p.wad");
    ASSERT_EQ(OpenPwad(path), 1);
    const std::string pwadBefore = ReadFile(path);
    const std::size_t iwadSize = std::filesystem::file_size(freedoom);

    ASSERT_EQ(WriteIwad(Target()), 1);
    const std::optional<wad::RewritePlan> made = wad::PlanOfWad(Target());
    ASSERT_TRUE(made.has_value());
    EXPECT_EQ(made->Magic, "IWAD");
    const wad::LumpDirectory& master = wad::Master();
    ASSERT_EQ(made->Entries.size() + 1, master.Size()) << "all but the editor's spare entry";
    const std::string bytes = ReadFile(Target());
    int playpals = 0;
    for (std::size_t i = 0, at = 0; i < made->Entries.size(); ++i, ++at)
    {
        at += master[at].Name.Is("k_e  v_r") ? 1 : 0;
        const wad::RewriteEntry& entry = made->Entries[i];
        ASSERT_EQ(entry.Name, master[at].Name.Text());
        ASSERT_EQ(entry.Size, master[at].Size) << entry.Name;
        const std::vector<std::uint8_t> lump = wad::ReadLumpBytes(static_cast<int>(at));
        ASSERT_EQ(bytes.substr(static_cast<std::size_t>(entry.Offset), lump.size()),
                  std::string(lump.begin(), lump.end()))
            << entry.Name;
        playpals += entry.Name == "PLAYPAL" ? 1 : 0;
    }
    EXPECT_EQ(playpals, 2) << "duplicates as often as the master holds them";
    const auto map01 = std::find_if(made->Entries.begin(), made->Entries.end(),
                                    [](const wad::RewriteEntry& e) { return e.Name == "MAP01"; });
    ASSERT_NE(map01, made->Entries.end());
    EXPECT_EQ(bytes.substr(static_cast<std::size_t>(map01[1].Offset), 16),
              testkit::LumpFiller("MAP01THINGS", 16))
        << "the PWAD's MAP01 in the IWAD's slots";
    EXPECT_EQ(testkit::RunOmgifol("omg_directory.py", Target().string()).Lines().size(),
              made->Entries.size());
    EXPECT_EQ(std::filesystem::file_size(freedoom), iwadSize);
    EXPECT_EQ(ReadFile(path), pwadBefore);
    EXPECT_EQ(Ui.Progress.front().first,
              platform::Format("Making IWAD %s (%dK)", Target().c_str(),
                               static_cast<int>((iwadSize + 1023) / 1024)));
}

} // namespace
} // namespace kelvar::lumps
