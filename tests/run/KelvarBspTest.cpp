// kelvarbsp: its option words, real Freedoom levels built through zdbsp with everything else
// of the WAD kept, the REJECT and BLOCKMAP choices, and the refusals and failures it reports.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "kelvarbsp/KelvarBsp.h"
#include "kelvarbsp/BspOptions.h"
#include "kelvarbsp/LevelCheck.h"
#include "kelvarbsp/WadFile.h"
#include "platform/Format.h"
#include "platform/PosixProcesses.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/TempDir.h"
#include "tests/testkit/WadBuilder.h"
#include "wad/WadFormat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sys/stat.h>

namespace kelvar::kelvarbsp
{
namespace
{

using Lumps = std::vector<std::pair<std::string, std::string>>;

constexpr const char* ObjectLumps[] = {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SECTORS"};

/// Every lump of a WAD, names and bytes, in directory order.
Lumps LumpsOf(const std::filesystem::path& path)
{
    std::string reason;
    std::optional<WadFile> wad = OpenWad(path, reason);
    EXPECT_TRUE(wad) << reason;
    Lumps lumps;
    for (std::size_t i = 0; wad && i < wad->Lumps.size(); ++i)
    {
        std::string bytes;
        EXPECT_TRUE(ReadLump(*wad, wad->Lumps[i], bytes));
        lumps.emplace_back(wad->Lumps[i].Name.Text(), bytes);
    }
    return lumps;
}

/// A level's lumps out of `lumps`, by name, from its marker to the next marker.
std::map<std::string, std::string> LevelOf(const Lumps& lumps, const std::string& level)
{
    std::map<std::string, std::string> found;
    bool inside = false;
    for (const auto& [name, bytes] : lumps)
    {
        if (inside && bytes.empty() && name.rfind("MAP", 0) == 0)
        {
            break;
        }
        if (inside)
        {
            found[name] = bytes;
        }
        inside = inside || name == level;
    }
    return found;
}

/// Freedoom 2's levels without their nodes, as the editor saves them into ~Kelvar.WAD.
class FreedoomLevels
{
public:
    FreedoomLevels() : Iwad(LumpsOf(testkit::FreedoomWad("freedoom2.wad"))) {}

    testkit::WadBuilder& Add(testkit::WadBuilder& wad, const std::string& level) const
    {
        const std::map<std::string, std::string> lumps = LevelOf(Iwad, level);
        wad.Marker(level);
        for (const char* name : ObjectLumps)
        {
            wad.Lump(name, lumps.at(name));
        }
        return wad;
    }

private:
    Lumps Iwad;
};

struct BspRun
{
    int Code = 0;
    std::string Log;
};

BspRun Bsp(const std::vector<std::string>& arguments, const std::string& zdbsp = "zdbsp")
{
    BspRun run;
    run.Code = RunKelvarBsp(arguments, zdbsp, run.Log);
    return run;
}

bool Contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

/// Nothing but the listed files in `directory`: no target, no temporary leftovers.
std::vector<std::string> FilesIn(const std::filesystem::path& directory)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
    {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string ReadCommandOutput(const std::string& command)
{
    return testkit::RunCommand(command).Text;
}

TEST(BspCommandLine, ReadsTheEditorsWordsIntoZdbspOptions)
{
    std::string reason;
    const auto plain = ParseCommandLine({"~Kelvar.WAD", "/m/x.wad", "MAP01"}, reason);
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain, ParseCommandLine(
                         {"~Kelvar.WAD", "/m/x.wad", "MAP01", "1NNNN16", "N", "SX2xxx"}, reason));
    EXPECT_EQ(ZdbspArguments(plain->Options, "MAP01", RejectPlan::ZeroFilled, "in", "out"),
              (std::vector<std::string>{"-q", "-w", "-m", "MAP01", "-o", "out", "-R", "in"}));

    const auto all = ParseCommandLine({"in", "out", "E1M1", "3NISL64", "H", "LZ03EY"}, reason);
    ASSERT_TRUE(all);
    EXPECT_EQ(all->Options.NodeType, 3);
    EXPECT_TRUE(all->Options.IgnoreTwoSided && all->Options.SpecialSectorTags &&
                all->Options.SpecialLineDefTags && all->Options.ShowBuild &&
                all->Options.ZdoomHexen && all->Options.SuppressExtendedMessages);
    EXPECT_EQ(all->Options.SplitFactor, 64);
    EXPECT_EQ(all->Options.SplitMode, 'H');
    EXPECT_EQ(ZdbspArguments(all->Options, "E1M1", RejectPlan::Copied, "in", "out"),
              (std::vector<std::string>{"-q", "-w", "-m", "E1M1", "-o", "out", "-r", "-b", "-g",
                                        "-X", "in"}));
    const auto v6 = ParseCommandLine({"in", "out", "MAP01", "2NNNN5", "A", "SX26xx"}, reason);
    ASSERT_TRUE(v6);
    EXPECT_EQ(
        ZdbspArguments(v6->Options, "MAP01", RejectPlan::Empty, "in", "out"),
        (std::vector<std::string>{"-q", "-w", "-m", "MAP01", "-o", "out", "-r", "-g", "-5", "in"}));

    for (const std::vector<std::string>& bad : std::vector<std::vector<std::string>>{
             {"in", "out"},
             {"in", "out", "MAP01", "1XNNN16"},
             {"in", "out", "MAP01", "4NNNN16"},
             {"in", "out", "MAP01", "1NNNN"},
             {"in", "out", "MAP01", "1NNNN16", "Q"},
             {"in", "out", "MAP01", "1NNNN16", "N", "SX2xx"},
             {"in", "out", "MAP01", "1NNNN16", "N", "SX7xxx"},
         })
    {
        const BspRun run = Bsp(bad);
        EXPECT_EQ(run.Code, BspBadCommandLine) << bad.size();
        EXPECT_TRUE(Contains(run.Log, "Error: ")) << run.Log;
    }
}

TEST(KelvarBsp, BuildsOneLevelOfATenLevelPwadAndKeepsEverythingElse)
{
    testkit::TempDir temp;
    const FreedoomLevels freedoom;
    testkit::WadBuilder wad;
    wad.Lump("DEHACKED", "Patch File for DeHackEd v3.0\n");
    for (int map = 1; map <= 10; ++map)
    {
        freedoom.Add(wad, platform::Format("MAP%02d", map));
    }
    wad.Lump("ENDOOM", std::string(4000, 'e'));
    wad.Write(temp.Path() / "~Kelvar.WAD");
    const std::string target = temp.File("ten.wad");

    // The program itself, as the editor runs it: in the program's directory, where it
    // leaves its log.
    platform::RecordingUi ui;
    platform::ScopedUi scope(ui);
    platform::ChildRequest request;
    request.Directory = temp.Path();
    request.CommandLine =
        std::string(KELVAR_BSP) + " ~Kelvar.WAD \"" + target + "\" MAP04 1NNNN16 N SX2xxx";
    request.Flags = platform::ChildWait;
    ASSERT_EQ(platform::SystemProcesses().RunChild(request), 0)
        << testkit::ReadFile(temp.Path() / BspLogName);
    EXPECT_TRUE(Contains(testkit::ReadFile(temp.Path() / BspLogName),
                         "Result: nodes built (exit code 0).\n"));
    EXPECT_EQ(FilesIn(temp.Path()),
              (std::vector<std::string>{"KelvarBSP.LOG", "ten.wad", "~Kelvar.WAD"}));

    const Lumps before = LumpsOf(temp.Path() / "~Kelvar.WAD");
    const Lumps after = LumpsOf(target);
    ASSERT_EQ(after.size(), before.size() + 5);
    // Before MAP04 and after its lumps, everything is a byte copy in the same order.
    const std::size_t map04 = 1 + 3 * 6;
    for (std::size_t i = 0; i < before.size(); ++i)
    {
        const std::size_t j = i <= map04 + 5 ? i : i + 5;
        if (i > map04 && i <= map04 + 5)
        {
            continue;
        }
        EXPECT_EQ(after[j], before[i]) << before[i].first << " at " << i;
    }
    const std::map<std::string, std::string> built = LevelOf(after, "MAP04");
    const std::map<std::string, std::string> input = LevelOf(before, "MAP04");
    for (const char* name : {"THINGS", "LINEDEFS", "SIDEDEFS", "SECTORS"})
    {
        EXPECT_EQ(built.at(name), input.at(name)) << name;
    }
    // The editor's Vertexes keep their numbers; the splits come behind them.
    EXPECT_EQ(built.at("VERTEXES").substr(0, input.at("VERTEXES").size()), input.at("VERTEXES"));
    EXPECT_GT(built.at("VERTEXES").size(), input.at("VERTEXES").size());
    for (const char* name : {"SEGS", "SSECTORS", "NODES", "BLOCKMAP"})
    {
        EXPECT_FALSE(built.at(name).empty()) << name;
    }
    // Every seg runs between the same points as in zdbsp's own numbering.
    ASSERT_EQ(std::system(("zdbsp -q -R -m MAP04 -o " + temp.File("z.wad") + " " +
                           temp.File("~Kelvar.WAD") + " >/dev/null 2>&1")
                              .c_str()),
              0);
    const std::map<std::string, std::string> zdbsp = LevelOf(LumpsOf(temp.File("z.wad")), "MAP04");
    ASSERT_EQ(zdbsp.at("SEGS").size(), built.at("SEGS").size());
    EXPECT_EQ(zdbsp.at("NODES"), built.at("NODES"));
    auto point = [](const std::map<std::string, std::string>& level, std::size_t seg, int end)
    {
        const auto* segs = reinterpret_cast<const std::uint8_t*>(level.at("SEGS").data());
        const std::size_t vertex = wad::ReadLe16(segs + seg * 12 + 2 * end);
        return level.at("VERTEXES").substr(vertex * 4, 4);
    };
    std::vector<bool> used(built.at("VERTEXES").size() / 4);
    for (std::size_t seg = 0; seg < built.at("SEGS").size() / 12; ++seg)
    {
        const auto* segs = reinterpret_cast<const std::uint8_t*>(built.at("SEGS").data());
        used.at(wad::ReadLe16(segs + seg * 12)) = true;
        used.at(wad::ReadLe16(segs + seg * 12 + 2)) = true;
        ASSERT_EQ(point(built, seg, 0), point(zdbsp, seg, 0)) << seg;
        ASSERT_EQ(point(built, seg, 1), point(zdbsp, seg, 1)) << seg;
        ASSERT_EQ(built.at("SEGS").substr(seg * 12 + 4, 8),
                  zdbsp.at("SEGS").substr(seg * 12 + 4, 8));
    }
    // Nothing but split Vertexes, each used by a seg, comes behind the editor's.
    for (std::size_t vertex = input.at("VERTEXES").size() / 4; vertex < used.size(); ++vertex)
    {
        EXPECT_TRUE(used[vertex]) << vertex;
    }
    const std::size_t sectors = built.at("SECTORS").size() / 26;
    EXPECT_EQ(built.at("REJECT"), std::string((sectors * sectors + 7) / 8, '\0'));

    // omgifol reads the built level back, nodes and all.
    const std::string counts = ReadCommandOutput(
        "/usr/bin/python3 -c \"import omg; e = omg.MapEditor(omg.WAD('" + target +
        "').maps['MAP04']); print(len(e.segs), len(e.ssectors), len(e.nodes))\" 2>&1");
    EXPECT_EQ(counts,
              platform::Format("%zu %zu %zu\n", built.at("SEGS").size() / 12,
                               built.at("SSECTORS").size() / 4, built.at("NODES").size() / 28));
}

TEST(KelvarBsp, BuildsTheLargestFreedoomLevel)
{
    testkit::TempDir temp;
    testkit::WadBuilder wad;
    FreedoomLevels().Add(wad, "MAP12").Write(temp.Path() / "in.wad");
    const BspRun run = Bsp({temp.File("in.wad"), temp.File("out.wad"), "map12"});
    ASSERT_EQ(run.Code, BspBuilt) << run.Log;
    EXPECT_TRUE(Contains(run.Log, "Level MAP12 (Doom layout): 693 Things, 10884 LineDefs, 16985 "
                                  "SideDefs, 10169 Vertexes, 1692 Sectors.\n"));
    EXPECT_TRUE(Contains(run.Log, "----MAP12----")) << "zdbsp's own output goes to the log";
    EXPECT_FALSE(Contains(run.Log, "BSP:")) << "its progress animation doesn't";
    const std::map<std::string, std::string> built =
        LevelOf(LumpsOf(temp.File("out.wad")), "MAP12");
    const std::map<std::string, std::string> input = LevelOf(LumpsOf(temp.File("in.wad")), "MAP12");
    EXPECT_EQ(built.at("LINEDEFS"), input.at("LINEDEFS"));
    EXPECT_EQ(built.at("VERTEXES").substr(0, input.at("VERTEXES").size()), input.at("VERTEXES"));
    EXPECT_EQ(built.at("REJECT").size(), 357858u);
    // Building the result again changes nothing: the split Vertexes are found again.
    ASSERT_EQ(Bsp({temp.File("out.wad"), temp.File("again.wad"), "MAP12"}).Code, BspBuilt);
    EXPECT_EQ(testkit::ReadFile(temp.Path() / "again.wad"),
              testkit::ReadFile(temp.Path() / "out.wad"));
    EXPECT_GT(built.at("NODES").size(), 100000u);
    EXPECT_EQ(FilesIn(temp.Path()), (std::vector<std::string>{"again.wad", "in.wad", "out.wad"}));
}

TEST(KelvarBsp, BuildsAHexenLevelKeepingItsLumps)
{
    testkit::TempDir temp;
    testkit::WadBuilder wad;
    testkit::LevelBuilder level;
    level.Room(0, 0, 256, 256).Room(512, 0, 128, 384).Thing(64, 64, 1);
    level.WriteTo(wad, "MAP01", testkit::LevelLayout::Hexen).Write(temp.Path() / "in.wad");
    const BspRun run = Bsp({temp.File("in.wad"), temp.File("out.wad"), "MAP01"});
    ASSERT_EQ(run.Code, BspBuilt) << run.Log;
    EXPECT_TRUE(Contains(run.Log, "Level MAP01 (Hexen layout): 1 Things, 8 LineDefs"));
    const std::map<std::string, std::string> input = LevelOf(LumpsOf(temp.File("in.wad")), "MAP01");
    const std::map<std::string, std::string> built =
        LevelOf(LumpsOf(temp.File("out.wad")), "MAP01");
    for (const char* name : {"THINGS", "LINEDEFS", "SIDEDEFS", "SECTORS", "BEHAVIOR"})
    {
        EXPECT_EQ(built.at(name), input.at(name)) << name;
    }
    EXPECT_FALSE(built.at("SEGS").empty());
}

TEST(KelvarBsp, RefusesBrokenReferencesWithTheReason)
{
    testkit::TempDir temp;
    struct Case
    {
        std::function<void(map::LevelData&)> Break;
        testkit::LevelLayout Layout;
        std::string Reason;
    };
    const std::vector<Case> cases{
        {[](map::LevelData& l) { l.LineDefs[1].StartVertex = 60000; }, testkit::LevelLayout::Doom,
         "LineDef 1 names Vertex 60000, but the level has 8 Vertexes."},
        {[](map::LevelData& l) { l.LineDefs[5].SideDef2 = 9; }, testkit::LevelLayout::Doom,
         "LineDef 5 names SideDef 9 as its left side, but the level has 8 SideDefs."},
        {[](map::LevelData& l) { l.LineDefs[7].SideDef1 = 8; }, testkit::LevelLayout::Hexen,
         "LineDef 7 names SideDef 8 as its right side, but the level has 8 SideDefs."},
        {[](map::LevelData& l) { l.SideDefs[3].Sector = 2; }, testkit::LevelLayout::Doom,
         "SideDef 3 names Sector 2, but the level has 2 Sectors."},
    };
    for (const Case& c : cases)
    {
        testkit::LevelBuilder level;
        level.Room(0, 0, 128, 128).Room(512, 0, 128, 128).Thing(64, 64, 1);
        c.Break(level.Level());
        testkit::WadBuilder wad;
        level.WriteTo(wad, "MAP01", c.Layout).Write(temp.Path() / "in.wad");
        const BspRun run = Bsp({temp.File("in.wad"), temp.File("out.wad"), "MAP01"});
        EXPECT_EQ(run.Code, BspLevelRefused) << run.Log;
        EXPECT_TRUE(Contains(run.Log, "Error: " + c.Reason + "\n")) << run.Log;
        EXPECT_EQ(FilesIn(temp.Path()), std::vector<std::string>{"in.wad"});
    }
}

TEST(KelvarBsp, ReportsBadInputsAndFailedBuildsWithoutLeavingATarget)
{
    testkit::TempDir temp;
    const std::string in = temp.File("in.wad");
    const std::string out = temp.File("out.wad");
    testkit::WadBuilder wad;
    testkit::LevelBuilder().Room(0, 0, 128, 128).Thing(64, 64, 1).WriteTo(wad, "MAP01");
    wad.Write(in);
    const std::string crash = temp.File("crash.sh");
    testkit::WriteFile(crash, "#!/bin/sh\nkill -SEGV $$\n");
    const std::string fails = temp.File("fails.sh");
    testkit::WriteFile(fails, "#!/bin/sh\necho 'Could not open input file' >&2\nexit 20\n");
    chmod(crash.c_str(), 0755);
    chmod(fails.c_str(), 0755);

    BspRun run = Bsp({temp.File("none.wad"), out, "MAP01"});
    EXPECT_EQ(run.Code, BspBadInput);
    EXPECT_TRUE(Contains(run.Log, "Error: cannot open " + temp.File("none.wad"))) << run.Log;
    EXPECT_EQ(Bsp({crash, out, "MAP01"}).Code, BspBadInput); // not a WAD
    run = Bsp({in, out, "MAP02"});
    EXPECT_EQ(run.Code, BspBadInput);
    EXPECT_TRUE(Contains(run.Log, "Error: level MAP02 is not in " + in + ".\n"));

    run = Bsp({in, out, "MAP01"}, crash);
    EXPECT_EQ(run.Code, BspBuilderFailed);
    EXPECT_TRUE(Contains(run.Log, "Error: " + crash + " was killed by signal 11 (")) << run.Log;
    run = Bsp({in, out, "MAP01"}, fails);
    EXPECT_EQ(run.Code, BspBuilderFailed);
    EXPECT_TRUE(Contains(run.Log, "Could not open input file\nError: " + fails +
                                      " failed with exit code 20.\n"))
        << run.Log;
    run = Bsp({in, out, "MAP01"}, temp.File("no-zdbsp"));
    EXPECT_EQ(run.Code, BspBuilderFailed);
    EXPECT_TRUE(Contains(run.Log, "could not be started: No such file or directory.")) << run.Log;
    // zdbsp says nothing and builds nothing for a level that lacks a lump.
    testkit::WadBuilder incomplete;
    incomplete.Marker("MAP01").Lump("THINGS", "").Lump("LINEDEFS", "").Lump("SIDEDEFS", "");
    incomplete.Write(in);
    run = Bsp({in, out, "MAP01"});
    EXPECT_EQ(run.Code, BspLevelRefused);
    EXPECT_TRUE(Contains(run.Log, "Error: Level MAP01 has no VERTEXES lump.\n")) << run.Log;
    EXPECT_EQ(FilesIn(temp.Path()), (std::vector<std::string>{"crash.sh", "fails.sh", "in.wad"}));
}

TEST(KelvarBsp, AStoppedBuildLeavesNoTemporaryFiles)
{
    testkit::TempDir temp;
    testkit::WadBuilder wad;
    testkit::LevelBuilder().Room(0, 0, 128, 128).Thing(64, 64, 1).WriteTo(wad, "MAP01");
    wad.Write(temp.Path() / "in.wad");
    // A zdbsp that starts its output and then takes for ever.
    const std::string slow = temp.File("slow.sh");
    testkit::WriteFile(slow, "#!/bin/sh\n: > \"$6\"\nexec sleep 1000\n");
    chmod(slow.c_str(), 0755);
    setenv("KELVARBSP_ZDBSP", slow.c_str(), 1);

    platform::RecordingUi ui;
    platform::ScopedUi scope(ui);
    ui.EscapeFromPoll(6).Answer(1);
    platform::ChildRequest request;
    request.Directory = temp.Path();
    request.CommandLine = std::string(KELVAR_BSP) + " in.wad out.wad MAP01";
    request.Flags = platform::ChildWait | platform::ChildPump;
    EXPECT_EQ(platform::SystemProcesses().RunChild(request), 128 + SIGTERM);
    unsetenv("KELVARBSP_ZDBSP");
    EXPECT_EQ(FilesIn(temp.Path()),
              (std::vector<std::string>{"KelvarBSP.LOG", "in.wad", "slow.sh"}));
    EXPECT_EQ(testkit::ReadFile(temp.Path() / BspLogName), "kelvarbsp did not finish.\n");
}

TEST(KelvarBsp, HonoursTheRejectBlockmapAndNodeChoices)
{
    testkit::TempDir temp;
    const std::string in = temp.File("in.wad");
    const std::string out = temp.File("out.wad");
    const FreedoomLevels freedoom;
    testkit::WadBuilder base;
    freedoom.Add(base, "MAP01");
    const std::size_t sectors =
        LevelOf(LumpsOf(testkit::FreedoomWad("freedoom2.wad")), "MAP01").at("SECTORS").size() / 26;
    const std::size_t rejectSize = (sectors * sectors + 7) / 8;
    auto buildWith = [&](const std::string& reject, const std::string& flags)
    {
        testkit::WadBuilder wad = base;
        wad.Lump("REJECT", reject).Write(in);
        const BspRun run = Bsp({in, out, "MAP01", "1NNNN16", "N", flags});
        EXPECT_EQ(run.Code, BspBuilt) << run.Log;
        return LevelOf(LumpsOf(out), "MAP01");
    };
    // The editor's table of the right size goes through; an empty one stays empty; one of
    // the wrong size becomes zeros of the right size.
    std::string table(rejectSize, '\0');
    table[0] = '\x5a';
    table.back() = '\x01';
    EXPECT_EQ(buildWith(table, "SX2xxx").at("REJECT"), table);
    EXPECT_EQ(buildWith("", "SX2xxx").at("REJECT"), "");
    EXPECT_EQ(buildWith("abc", "SX2xxx").at("REJECT"), std::string(rejectSize, '\0'));

    const std::map<std::string, std::string> empty = buildWith(table, "SX0xxx");
    EXPECT_EQ(empty.at("BLOCKMAP"), "");
    EXPECT_EQ(empty.at("REJECT"), table);
    buildWith("", "SX26xx");
    const Lumps gl = LumpsOf(out);
    EXPECT_EQ(gl[11].first, "GL_MAP01");
    EXPECT_EQ(gl[12].second.substr(0, 4), "gNd5");
    EXPECT_EQ(buildWith("", "SX2xEx").at("NODES").substr(0, 4), "XNOD");
}

} // namespace
} // namespace kelvar::kelvarbsp
