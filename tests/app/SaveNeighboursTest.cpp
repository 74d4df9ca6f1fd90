// Saving, backing up and copying one level of a PWAD that holds levels of every length: a
// level ends where its own entries end, and every other level and lump reads back unchanged,
// with omgifol as the second reader.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/LevelSave.h"
#include "app/SaveTarget.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "map/MapState.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"
#include "wad/Backup.h"
#include "wad/FindLump.h"
#include "wad/LevelCopy.h"
#include "wad/LevelReader.h"
#include "wad/SavePath.h"
#include "wad/WadState.h"

#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

namespace kelvar::wad
{
namespace
{

using app::ChooseSavePath;
using app::WriteLevelFile;

using testkit::LevelBuilder;
using testkit::LevelLayout;
using testkit::WadBuilder;

struct Lump
{
    std::string Name;
    std::string Data;
    bool operator==(const Lump&) const = default;
};
using Lumps = std::vector<Lump>;

void PrintTo(const Lump& lump, std::ostream* os)
{
    *os << lump.Name << '[' << lump.Data.size() << ']';
}

/// A WAD as omgifol reads it: its entries with their data, and the levels its map reader finds.
struct OmgifolView
{
    Lumps Entries;
    std::vector<std::string> Levels;
};

std::string FromHex(const std::string& hex)
{
    std::string bytes;
    for (std::size_t i = 0; hex != "-" && i + 1 < hex.size(); i += 2)
    {
        bytes.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

OmgifolView ReadWithOmgifol(const std::string& path)
{
    OmgifolView view;
    const std::string output = testkit::RunOmgifol("omg_entries.py", path).Text;
    std::istringstream lines(output);
    std::string kind;
    std::string name;
    while (lines >> kind >> name)
    {
        std::string rest;
        std::getline(lines, rest);
        if (kind == "E")
        {
            view.Entries.push_back({name, FromHex(rest.substr(rest.find_first_not_of(' ')))});
        }
        else
        {
            view.Levels.push_back(name);
        }
    }
    return view;
}

constexpr std::string_view ObjectNames[] = {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES",
                                            "SECTORS"};
constexpr std::string_view CanonicalNames[] = {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES",
                                               "SEGS",   "SSECTORS", "NODES",    "SECTORS",
                                               "REJECT", "BLOCKMAP"};

/// A level of the test file: its rooms, and the names of its entries after the marker.
struct LevelSpec
{
    std::string Name;
    LevelBuilder Rooms;
    std::vector<std::string> Entries;
    LevelLayout Layout = LevelLayout::Doom;
};

std::string DataOf(const LevelSpec& level, const std::string& name)
{
    if (name == "THINGS")
    {
        return level.Rooms.ThingsLump(level.Layout);
    }
    if (name == "LINEDEFS")
    {
        return level.Rooms.LineDefsLump(level.Layout);
    }
    if (name == "SIDEDEFS")
    {
        return level.Rooms.SideDefsLump();
    }
    if (name == "VERTEXES")
    {
        return level.Rooms.VertexesLump();
    }
    if (name == "SECTORS")
    {
        return level.Rooms.SectorsLump();
    }
    if (name == "GL_" + level.Name.substr(0, 5) || name == "BEHAVIOR0")
    {
        return {}; // the GL marker, an empty script
    }
    return testkit::LumpFiller(name, 8 + static_cast<int>(name.size()) * 3);
}

Lumps EntriesOf(const LevelSpec& level)
{
    Lumps lumps = {{level.Name, {}}};
    for (const std::string& name : level.Entries)
    {
        // "BEHAVIOR0" stands for an empty BEHAVIOR.
        lumps.push_back({name == "BEHAVIOR0" ? "BEHAVIOR" : name, DataOf(level, name)});
    }
    return lumps;
}

std::vector<std::string> With(std::vector<std::string> names, std::vector<std::string> more)
{
    names.insert(names.end(), more.begin(), more.end());
    return names;
}

std::vector<std::string> Objects()
{
    return {ObjectNames[0].data(), ObjectNames[1].data(), ObjectNames[2].data(),
            ObjectNames[3].data(), ObjectNames[4].data()};
}

std::vector<std::string> Canonical()
{
    std::vector<std::string> names;
    for (const std::string_view name : CanonicalNames)
    {
        names.emplace_back(name);
    }
    return names;
}

LevelSpec Level(const std::string& name, int width, std::vector<std::string> entries,
                LevelLayout layout = LevelLayout::Doom)
{
    LevelSpec level{name, LevelBuilder(), std::move(entries), layout};
    level.Rooms.Room(0, 0, width, 128).Thing(32, 32, 1);
    return level;
}

/// Where a level stands in a list of entries: its marker and the entry past its last one.
std::pair<std::size_t, std::size_t> WindowOf(const Lumps& file, const std::string& name)
{
    std::size_t at = 0;
    while (at < file.size() && file[at].Name != name)
    {
        ++at;
    }
    const auto belongs = [](const std::string& lump)
    {
        return lump == "BEHAVIOR" || lump.rfind("GL_", 0) == 0 ||
               std::find(std::begin(CanonicalNames), std::end(CanonicalNames), lump) !=
                   std::end(CanonicalNames);
    };
    std::size_t end = at + 1;
    while (end < file.size() && belongs(file[end].Name))
    {
        ++end;
    }
    return {at, end};
}

const Lump* Find(const Lumps& lumps, std::size_t first, std::size_t last, const std::string& name)
{
    for (std::size_t i = first; i < last; ++i)
    {
        if (lumps[i].Name == name)
        {
            return &lumps[i];
        }
    }
    return nullptr;
}

/// The level's entries as a save writes an unchanged level: the canonical order, old bytes,
/// the reject table kept and sized for the level's Sectors, and in a Hexen project a BEHAVIOR
/// of at least 16 bytes.
Lumps SavedWindow(const Lumps& file, std::size_t at, std::size_t end, int sectors, bool hexen)
{
    Lumps saved = {file[at]};
    for (const std::string_view name : CanonicalNames)
    {
        const Lump* old = Find(file, at + 1, end, std::string(name));
        std::string data = old != nullptr ? old->Data : std::string();
        if (name == "REJECT")
        {
            data.resize(static_cast<std::size_t>((sectors * sectors + 7) / 8), '\0');
        }
        saved.push_back({std::string(name), data});
    }
    if (hexen)
    {
        const Lump* old = Find(file, at + 1, end, "BEHAVIOR");
        saved.push_back(
            {"BEHAVIOR", old != nullptr && !old->Data.empty() ? old->Data : std::string(16, '\0')});
    }
    return saved;
}

class SaveNeighbours : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        app::ResetShell();
        app::ResetSession();
        map::ResetMap();
    }

    void TearDown() override
    {
        app::ResetShell();
        app::ResetSession();
        map::ResetMap();
        WadFixture::TearDown();
    }

    /// A fresh session on Freedoom 2 with `pwad` over it, in a Doom or a Hexen project, and
    /// `level` read.
    void Load(const std::string& pwad, const std::string& level, bool hexen)
    {
        ResetWad();
        map::ResetMap();
        app::ResetSession();
        Ui.Clear();
        WadState& wad = Wad();
        wad.ProgramDir = Dir.Path();
        wad.Options.DefaultPwadDir = Dir.Path();
        wad.Options.GroupSave = true;
        wad.Options.ExpertMode = true;
        wad.Options.ZdoomHexenFormat = hexen;
        wad.Options.NoIwadWarningMsg = true;
        ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
        ASSERT_GT(OpenPwad(pwad), 0);
        ASSERT_EQ(ReadLevel(map::Map().Level, level, false), 1) << level;
    }

    /// Save Level onto the level's own file.
    void Save(const std::string& pwad, const std::string& level)
    {
        const std::string oldPath = Wad().Files[Wad().CurrentFile.FileNumber].FileName;
        const std::optional<std::string> path = ChooseSavePath(level, level, false, true);
        ASSERT_TRUE(path);
        ASSERT_EQ(*path, pwad);
        ASSERT_EQ(WriteLevelFile(map::Map().Level, *path, oldPath, SaveLevelCode), 0);
    }

    static std::string Write(const Lumps& lumps, const std::filesystem::path& path)
    {
        WadBuilder builder;
        for (const Lump& lump : lumps)
        {
            builder.Lump(lump.Name, lump.Data);
        }
        return builder.Write(path);
    }

    /// Saves each level of `file` in turn onto the same PWAD, each in a fresh session, and
    /// checks after each save that omgifol reads exactly the expected file: the saved level in
    /// the canonical order, everything else as it was.
    void SaveEachInTurn(Lumps file, const std::vector<LevelSpec>& levels, bool hexen)
    {
        const std::string pwad = Write(file, Dir.Path() / "mixed.wad");
        std::vector<std::string> names;
        for (const LevelSpec& level : levels)
        {
            names.push_back(level.Name);
        }
        bool edit = false;
        for (const LevelSpec& level : levels)
        {
            SCOPED_TRACE("saving " + level.Name);
            Load(pwad, level.Name, hexen);
            map::LevelData& loaded = map::Map().Level;
            EXPECT_EQ(loaded.Things.Count(), 1);
            // Every other level is edited, so its object lumps come from memory.
            edit = !edit;
            LevelBuilder rooms = level.Rooms;
            if (edit)
            {
                loaded.Things[0].Type = 2001;
                loaded.ChangeCount = 1;
                rooms.Level().Things[0].Type = 2001;
            }
            Save(pwad, level.Name);

            const auto [at, end] = WindowOf(file, level.Name);
            Lumps expected(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(at));
            Lumps saved = SavedWindow(file, at, end, 1, hexen);
            if (edit)
            {
                saved[1].Data = rooms.ThingsLump(level.Layout);
            }
            expected.insert(expected.end(), saved.begin(), saved.end());
            expected.insert(expected.end(), file.begin() + static_cast<std::ptrdiff_t>(end),
                            file.end());
            for (Lump& lump : expected)
            {
                // Hexen engines need a script: an empty one goes out as 16 zero bytes.
                if (hexen && lump.Name == "BEHAVIOR" && lump.Data.empty())
                {
                    lump.Data = std::string(16, '\0');
                }
            }
            const OmgifolView read = ReadWithOmgifol(pwad);
            ASSERT_EQ(read.Entries, expected);
            std::vector<std::string> levelsRead = read.Levels;
            std::sort(levelsRead.begin(), levelsRead.end());
            std::vector<std::string> sorted = names;
            std::sort(sorted.begin(), sorted.end());
            EXPECT_EQ(levelsRead, sorted);
            file = expected;
        }
        // A last session reads every level back as it was built.
        for (const LevelSpec& level : levels)
        {
            Load(pwad, level.Name, hexen);
            EXPECT_EQ(map::Map().Level.LineDefs, level.Rooms.Build().LineDefs) << level.Name;
        }
    }
};

TEST_F(SaveNeighbours, DoomLevelsOfEveryLengthSavedInTurnLeaveTheRestAsItWas)
{
    // Levels short of lumps, full ones, one under a name of its own, one with GL nodes (which
    // this project doesn't keep for the saved level), one the IWAD has too, the last at the
    // end of the file, and other lumps between them.
    const std::vector<LevelSpec> levels = {
        Level("MAP40", 128, Objects()),
        Level("MAP01", 160, With(Objects(), {"BLOCKMAP"})),
        Level("MAP41", 192, Canonical()),
        Level("MYLEVEL", 224, Canonical()),
        Level("MAP42", 256,
              With(Canonical(), {"GL_MAP42", "GL_VERT", "GL_SEGS", "GL_SSECT", "GL_NODES"})),
        Level("MAP43", 288, With(Objects(), {"REJECT"})),
    };
    Lumps file = {{"README", "levels of every length"}};
    for (const LevelSpec& level : levels)
    {
        const Lumps entries = EntriesOf(level);
        file.insert(file.end(), entries.begin(), entries.end());
        if (level.Name == "MAP40")
        {
            file.push_back({"DEHACKED", "Patch File for DeHackEd"});
        }
        if (level.Name == "MAP42")
        {
            file.push_back({"LOGO", "logo"});
        }
    }
    SaveEachInTurn(file, levels, false);
}

TEST_F(SaveNeighbours, HexenLevelsOfEveryLengthSavedInTurnLeaveTheRestAsItWas)
{
    const std::vector<LevelSpec> levels = {
        Level("MAP40", 128, With(Objects(), {"BEHAVIOR"}), LevelLayout::Hexen),
        Level("MAP41", 160, With(Canonical(), {"BEHAVIOR"}), LevelLayout::Hexen),
        Level("MAP42", 192, With(Canonical(), {"BEHAVIOR0"}), LevelLayout::Hexen),
        Level("MAP43", 224, With(Canonical(), {"BEHAVIOR"}), LevelLayout::Hexen),
    };
    Lumps file = {{"MAPINFO", "map 40 \"short\""}};
    for (const LevelSpec& level : levels)
    {
        const Lumps entries = EntriesOf(level);
        file.insert(file.end(), entries.begin(), entries.end());
        if (level.Name == "MAP40")
        {
            file.push_back({"SCRIPTS", "script 1 open { }"});
        }
        if (level.Name == "MAP41")
        {
            file.push_back({"SCRIPT41", "script 2 open { }"});
        }
    }
    SaveEachInTurn(file, levels, true);
}

TEST_F(SaveNeighbours, AShortLevelTakesNoLumpOfTheLevelBehindIt)
{
    LevelSpec shortLevel = Level("MAP40", 128, Objects());
    const LevelSpec fullLevel = Level("MAP41", 256, Canonical());
    Lumps file = EntriesOf(shortLevel);
    const Lumps full = EntriesOf(fullLevel);
    file.insert(file.end(), full.begin(), full.end());
    const std::string pwad = Write(file, Dir.Path() / "short.wad");

    Load(pwad, "MAP40", false);
    const map::LevelData& level = map::Map().Level;
    EXPECT_EQ(FindLevelLump("SEGS", false), -1);
    EXPECT_EQ(level.SegCount, 0);
    EXPECT_EQ(level.NodeCount, 0);
    EXPECT_EQ(level.BlockmapSize, 0);
    EXPECT_EQ(CurrentLevelEnd() - Wad().CurrentFile.LevelStart, 6U);

    // The 3D viewer's copy holds this level alone, with empty node lumps.
    const std::string copy = (Dir.Path() / "copy.wad").string();
    ASSERT_EQ(WriteLevelCopy(level, copy, "MAP40"), 0);
    Lumps expected = {{"MAP40", {}}};
    for (const std::string_view name : CanonicalNames)
    {
        const Lump* own = Find(file, 1, 6, std::string(name));
        expected.push_back({std::string(name), own != nullptr ? own->Data : std::string()});
    }
    EXPECT_EQ(ReadWithOmgifol(copy).Entries, expected);
}

TEST_F(SaveNeighbours, BackupsOfEachLevelKeepEveryOtherLumpOnce)
{
    const std::vector<LevelSpec> levels = {
        Level("MAP40", 128, Objects()),
        Level("MAP41", 160, With(Objects(), {"REJECT"})),
        Level("MAP42", 192, Canonical()),
        Level("MAP43", 224, Objects()),
    };
    Lumps file = {{"README", "backups"}};
    for (const LevelSpec& level : levels)
    {
        const Lumps entries = EntriesOf(level);
        file.insert(file.end(), entries.begin(), entries.end());
    }
    file.push_back({"ENDOOM", "end"});
    const std::string pwad = Write(file, Dir.Path() / "group.wad");
    const std::string original = testkit::ReadFile(pwad);

    for (const LevelSpec& level : levels)
    {
        SCOPED_TRACE("backing up " + level.Name);
        Load(pwad, level.Name, false);
        map::Map().Level.Things[0].Type = 2001;
        map::Map().Level.ChangeCount = 1;
        const std::string bkp = BackupPathOf(pwad);
        ASSERT_EQ(WriteBackup(false, map::Map().Level, bkp), 0);

        // The .BKP lists the level's lumps without node bytes; its offsets past the level are
        // raw material for a recovery, so the lumps ahead are compared whole and the ones
        // behind by name and size.
        const auto [at, end] = WindowOf(file, level.Name);
        const Lumps read = ReadWithOmgifol(bkp).Entries;
        std::vector<std::string> names;
        for (const Lump& lump : read)
        {
            names.push_back(lump.Name);
        }
        std::vector<std::string> expected;
        for (std::size_t i = 0; i < file.size(); ++i)
        {
            if (i < at || i >= end)
            {
                expected.push_back(file[i].Name);
            }
            else if (i == at)
            {
                expected.push_back(level.Name);
                for (const std::string_view name : CanonicalNames)
                {
                    expected.emplace_back(name);
                }
            }
        }
        ASSERT_EQ(names, expected);
        for (std::size_t i = 0; i < at; ++i)
        {
            EXPECT_EQ(read[i], file[i]);
        }
        const std::size_t behind = at + 11;
        for (std::size_t i = end; i < file.size(); ++i)
        {
            EXPECT_EQ(read[behind + i - end].Data.size(), file[i].Data.size()) << file[i].Name;
        }
        EXPECT_EQ(testkit::ReadFile(pwad), original) << "a backup leaves the PWAD alone";
    }
}

TEST_F(SaveNeighbours, TheSaveDialogsGroupBoxStartsFromTheFileAndDecides)
{
    const LevelSpec first = Level("MAP40", 128, Canonical());
    const LevelSpec second = Level("MAP41", 160, Canonical());
    Lumps file = EntriesOf(first);
    const Lumps more = EntriesOf(second);
    file.insert(file.end(), more.begin(), more.end());
    const std::string pwad = Write(file, Dir.Path() / "pair.wad");

    // Group Save off, and a file holding more than the level: the dialog comes with the box
    // on. Left on, the other level goes along.
    std::vector<SaveOptions> shown;
    const auto dialog = [&](bool group)
    {
        app::Session().Hooks.SaveDialog = [&shown, group](SaveOptions& choices)
        {
            shown.push_back(choices);
            choices.GroupSave = group;
            choices.ZeroNodes = true; // no node build in this test
            return true;
        };
    };
    Load(pwad, "MAP41", false);
    Wad().Options.GroupSave = false;
    dialog(true);
    const std::string oldPath = Wad().Files[Wad().CurrentFile.FileNumber].FileName;
    std::optional<std::string> path = ChooseSavePath("MAP41", "MAP41", false, true);
    ASSERT_TRUE(path);
    ASSERT_EQ(WriteLevelFile(map::Map().Level, *path, oldPath, SaveLevelCode), 0);
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_TRUE(shown[0].GroupSave);
    EXPECT_FALSE(Wad().Options.GroupSave) << "the box was left as it started";
    EXPECT_EQ(ReadWithOmgifol(pwad).Levels, (std::vector<std::string>{"MAP40", "MAP41"}));

    // Unticked, the level goes out alone, and the option keeps the user's choice.
    Load(pwad, "MAP41", false);
    Wad().Options.GroupSave = true;
    map::Map().Level.GeometryChangeCount = 1; // nodes to rebuild: the dialog comes
    dialog(false);
    path = ChooseSavePath("MAP41", "MAP41", false, true);
    ASSERT_TRUE(path);
    ASSERT_EQ(WriteLevelFile(map::Map().Level, *path, pwad, SaveLevelCode), 0);
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_TRUE(shown[1].GroupSave);
    EXPECT_FALSE(Wad().Options.GroupSave);
    EXPECT_EQ(ReadWithOmgifol(pwad).Levels, std::vector<std::string>{"MAP41"});

    // Group Save off and a file of the level alone: the dialog still comes when the nodes are
    // to be rebuilt, with the box off.
    Load(pwad, "MAP41", false);
    Wad().Options.GroupSave = false;
    map::Map().Level.GeometryChangeCount = 1;
    dialog(false);
    path = ChooseSavePath("MAP41", "MAP41", false, false);
    ASSERT_TRUE(path);
    ASSERT_EQ(WriteLevelFile(map::Map().Level, *path, pwad, SaveLevelCode), 0);
    ASSERT_EQ(shown.size(), 3U);
    EXPECT_FALSE(shown[2].GroupSave);
}

TEST_F(SaveNeighbours, ScriptLumpsBehindALevelFollowTheScriptRules)
{
    const LevelSpec level =
        Level("MAP40", 128, With(Canonical(), {"BEHAVIOR"}), LevelLayout::Hexen);
    const LevelSpec other =
        Level("MAP41", 160, With(Canonical(), {"BEHAVIOR"}), LevelLayout::Hexen);
    Lumps file = EntriesOf(level);
    file.push_back({"SCRIPTS", "old script"});
    const Lumps more = EntriesOf(other);
    file.insert(file.end(), more.begin(), more.end());
    file.push_back({"SCRIPT41", "script of MAP41"});
    const std::string pwad = Write(file, Dir.Path() / "scripts.wad");
    const std::string source = (Dir.Path() / "new.acs").string();
    testkit::WriteFile(source, "new script");

    // A script replace takes the SCRIPTS lump right behind the level, in its place.
    Load(pwad, "MAP40", true);
    ASSERT_EQ(WriteLevelFile(map::Map().Level, *ChooseSavePath("MAP40", "MAP40", false, true), pwad,
                             ReplaceLumpCode, LumpReplace{"SCRIPT40", source}),
              0);
    Lumps read = ReadWithOmgifol(pwad).Entries;
    ASSERT_EQ(read.size(), file.size());
    EXPECT_EQ(read[12], (Lump{"SCRIPT40", "new script"}));
    EXPECT_EQ(read.back(), file.back());

    // With the plain-name option every script goes out as SCRIPTS.
    Load(pwad, "MAP40", true);
    Wad().Options.PlainScriptNames = true;
    ASSERT_EQ(WriteLevelFile(map::Map().Level, *ChooseSavePath("MAP40", "MAP40", false, true), pwad,
                             SaveLevelCode),
              0);
    read = ReadWithOmgifol(pwad).Entries;
    ASSERT_EQ(read.size(), file.size());
    EXPECT_EQ(read[12], (Lump{"SCRIPTS", "new script"}));
    EXPECT_EQ(read.back(), (Lump{"SCRIPTS", "script of MAP41"}));
}

} // namespace
} // namespace kelvar::wad
