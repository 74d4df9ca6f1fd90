// Writing the level's file: the questions before the write, the other lumps of the file in
// their order, the level's lumps in the canonical order, the reject table, the directory,
// and the node build that follows.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/Save.h"

#include "map/MapState.h"
#include "platform/Fatal.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/FileChecks.h"
#include "wad/FileTable.h"
#include "wad/FindLump.h"
#include "wad/LevelReader.h"
#include "wad/LevelWriter.h"
#include "wad/WadFormat.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

#include <algorithm>
#include <array>

namespace kelvar::wad
{
namespace
{

constexpr std::array<std::string_view, 10> LevelLumps = {
    "THINGS",   "LINEDEFS", "SIDEDEFS", "VERTEXES", "SEGS",
    "SSECTORS", "NODES",    "SECTORS",  "REJECT",   "BLOCKMAP"};

// Everything one save needs to know, worked out before the file is created.
struct SavePlan
{
    std::string LevelName;    // the marker's name in the new file
    std::string OldLevelName; // the marker's name in the old file
    std::string TargetPath;   // the file the user gets
    std::string WritePath;    // the file written: the target, or ~Kelvar.WAD
    int Code = SaveLevelCode;
    int LevelFile = -1; // the record of the file the level came from
    bool FromPwad = false;
    bool Group = false; // the other lumps of the file go along
    bool BuildNodes = false;
    SaveOptions Choices;
    RowLayout Rows;
    std::vector<LumpEntry> Level; // the level's entries after the marker, in master order
    std::optional<LumpReplace> Replace;
};

void Redraw()
{
    if (Wad().Save.RedrawMap)
    {
        Wad().Save.RedrawMap();
    }
}

// The level's entries after its marker, as the master directory has them now.
std::vector<LumpEntry> LevelEntries(std::size_t marker, int count)
{
    std::vector<LumpEntry> lumps;
    const LumpDirectory& master = Master();
    for (std::size_t i = marker + 1;
         i < marker + static_cast<std::size_t>(count) && i < master.Size(); ++i)
    {
        lumps.push_back(master[i]);
    }
    return lumps;
}

const LumpEntry* FindOld(const SavePlan& plan, std::string_view name)
{
    for (const LumpEntry& lump : plan.Level)
    {
        if (lump.Name.Is(name))
        {
            return &lump;
        }
    }
    return nullptr;
}

// The whole bytes of a file, for a lump replace. Nothing when it can't be read.
std::optional<std::vector<std::uint8_t>> FileBytes(const std::string& path)
{
    StreamPtr stream = CheckedOpen(path, "rb", 0);
    if (!stream)
    {
        return std::nullopt;
    }
    const std::int64_t size = FileSize(stream.get(), 0);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::max<std::int64_t>(size, 0)));
    if (size > 0 && CheckedRead(stream.get(), bytes.data(), size) != 1)
    {
        return std::nullopt;
    }
    return bytes;
}

// A lump replace's entry under `name`: the new bytes in place of the old.
bool WriteReplace(WadOutput& out, const SavePlan& plan, const LumpName& name)
{
    const std::int64_t start = out.Offset;
    if (!plan.Replace->SourceFile.empty())
    {
        const std::optional<std::vector<std::uint8_t>> bytes = FileBytes(plan.Replace->SourceFile);
        if (!bytes || !WriteData(out, bytes->data(), static_cast<std::int64_t>(bytes->size())))
        {
            return false;
        }
    }
    EnterRow(out, name.Text(), start);
    return true;
}

bool AskFormatLimits(const map::LevelData& level)
{
    const int sides = level.SideDefs.Count();
    const int vertexes = level.Vertexes.Count();
    const int sectors = level.Sectors.Count();
    if (sides <= 65534 && vertexes <= 65534 && sectors < 32768)
    {
        return true;
    }
    return platform::AskYesNo(
        "The number of Sidedefs, Vertices or Sectors is too large\nto save using the DOOM format "
        "- data will be LOST!\n%d sidedefs %d vertices %d sectors\n\n(max sidedefs=65534 ver "
        "=65534 sectors=32767)\n\nContinue with Save Using Kelvar Extended Format?",
        sides, vertexes, sectors);
}

bool AskOtherGameLevels()
{
    if (Wad().OtherGameLevels <= 0)
    {
        return true;
    }
    return platform::ShowMessageLines(platform::LinesCancel, "**WARNING**",
                                      {"Levels from another game found"}) == 1;
}

// The Save dialog, when the code or the file asks for it. Its Group Save box starts on with the
// option or when the file holds more than the level, and its answer decides whether the other
// lumps go along; a box the user changed becomes the option. False: cancelled.
bool AskSaveChoices(SavePlan& plan, const map::LevelData& level, bool fileHasMore)
{
    WadState& wad = Wad();
    SaveOptions& choices = wad.SaveChoices;
    choices.RebuildNodes = level.GeometryChangeCount != 0 || plan.Code == BuildNodesCode ||
                           plan.Code == BuildNodesAsCode;
    const bool groupAtStart = wad.Options.GroupSave || fileHasMore;
    choices.GroupSave = groupAtStart;
    choices.FileName = plan.TargetPath;
    const bool show = plan.Code == NewRejectCode || choices.RebuildNodes ||
                      (!wad.Options.GroupSave && fileHasMore);
    if (show && wad.Save.SaveDialog && !wad.Save.SaveDialog(choices))
    {
        return false;
    }
    if (choices.GroupSave != groupAtStart)
    {
        wad.Options.GroupSave = choices.GroupSave;
    }
    plan.Group = plan.FromPwad && choices.GroupSave;
    if (choices.ZeroNodes)
    {
        choices.RebuildNodes = false;
    }
    // A save with no builder to run can't build nodes; it keeps the old ones.
    if (!wad.Save.BuildNodes)
    {
        choices.RebuildNodes = false;
    }
    plan.Choices = choices;
    return true;
}

// The REJECT the choices ask for, sized for the level's Sectors.
bool WriteReject(WadOutput& out, const SavePlan& plan, const map::LevelData& level)
{
    const SaveOptions& choices = plan.Choices;
    const std::int64_t start = out.Offset;
    if (choices.ZeroReject)
    {
        EnterRow(out, "REJECT", start);
        return true;
    }
    const auto size = static_cast<std::int32_t>(RejectSize(level.Sectors.Count()));
    std::vector<std::uint8_t> table(static_cast<std::size_t>(size), 0);
    if (choices.CopyReject)
    {
        const LumpEntry* old = FindOld(plan, "REJECT");
        if (old != nullptr && old->Size > 0 && old->FileNumber >= 0)
        {
            FileRec& file = Wad().Files[static_cast<std::size_t>(old->FileNumber)];
            EnsureOpen(file);
            if (!file.Stream || CheckedSeek(file.Stream.get(), old->Offset) != 1 ||
                CheckedRead(file.Stream.get(), table.data(), std::min(old->Size, size)) != 1)
            {
                return false;
            }
        }
    }
    else if (!choices.AllAttacks)
    {
        // AttackStep zero bytes, then the attack byte, over and over.
        const std::size_t period = static_cast<std::size_t>(choices.AttackStep) + 1;
        for (std::size_t i = choices.AttackStep; i < table.size(); i += period)
        {
            table[i] = choices.AttackByte;
        }
    }
    if (!WriteData(out, table.data(), static_cast<std::int64_t>(table.size())))
    {
        return false;
    }
    EnterRow(out, "REJECT", start);
    return true;
}

// The level's lumps in the canonical order, then BEHAVIOR and the GL_ entries. The object
// lumps come from memory when the level has unsaved changes.
bool WriteLevelLumps(WadOutput& out, const map::LevelData& level, const SavePlan& plan)
{
    const SaveOptions& choices = plan.Choices;
    const bool fromMemory = level.ChangeCount != 0;
    for (const std::string_view name : LevelLumps)
    {
        const bool object = name == "THINGS" || name == "LINEDEFS" || name == "SIDEDEFS" ||
                            name == "VERTEXES" || name == "SECTORS";
        if (name == "REJECT")
        {
            if (!WriteReject(out, plan, level))
            {
                return false;
            }
            continue;
        }
        if (object && fromMemory)
        {
            if (!WriteObjectLump(out, level, plan.Rows, name))
            {
                return false;
            }
            continue;
        }
        const std::int64_t start = out.Offset;
        const LumpEntry* old = FindOld(plan, name);
        const bool zeroed =
            (choices.ZeroNodes && (name == "SEGS" || name == "SSECTORS" || name == "NODES")) ||
            (choices.ZeroBlockmap && name == "BLOCKMAP");
        if (!zeroed && old != nullptr &&
            !CopyFileData(out, old->FileNumber, old->Offset, old->Size))
        {
            return false;
        }
        EnterRow(out, std::string(name), start);
    }

    if (Wad().Game.Format == 4)
    {
        const bool replaced = plan.Replace && LumpName::From(plan.Replace->Name).Is("BEHAVIOR");
        if (replaced ? !WriteReplace(out, plan, LumpName::From("BEHAVIOR"))
                     : !WriteBehavior(out, FindOld(plan, "BEHAVIOR")))
        {
            return false;
        }
    }

    // The GL_ entries and any script behind the level keep their bytes; the GL_ marker takes
    // the level's name.
    const LumpName glMarker = LumpName::From("GL_" + plan.LevelName.substr(0, 5));
    for (const LumpEntry& lump : plan.Level)
    {
        const bool canonical =
            std::any_of(LevelLumps.begin(), LevelLumps.end(),
                        [&](std::string_view name) { return lump.Name.Is(name); }) ||
            lump.Name.Is("BEHAVIOR");
        if (canonical)
        {
            continue;
        }
        const bool gl = lump.Name.StartsWith("GL_");
        const std::int64_t start = out.Offset;
        if (!(gl && choices.ZeroNodes) &&
            !CopyFileData(out, lump.FileNumber, lump.Offset, lump.Size))
        {
            return false;
        }
        // GL_VERT, GL_SEGS... keep their names; the GL_ marker is renamed with the level.
        const bool glLevelMarker = gl && ReservedName(lump.Name) == 12;
        EnterRow(out, (glLevelMarker ? glMarker : lump.Name).Text(), start);
    }
    return true;
}

// True when `entry`, standing at `at` in the old file's directory, is the entry a lump replace
// takes: one of the replace's name, or for a script replace the SCRIPTS lump right behind the
// level.
bool IsReplaced(const SavePlan& plan, const LumpEntry& entry, std::size_t at, std::size_t levelEnd)
{
    const LumpName name = LumpName::From(plan.Replace->Name);
    return SameName(entry.Name, name) ||
           (name.StartsWith("SCRIPT") && at == levelEnd && entry.Name.Is("SCRIPTS"));
}

// The name an entry of the old file goes out under: a level's script is "SCRIPTS" when the
// project keeps scripts under the plain name.
LumpName OutName(const LumpName& name)
{
    return Wad().Options.PlainScriptNames && name.StartsWith("SCRIPT") ? LumpName::From("SCRIPTS")
                                                                       : name;
}

// Copies the entries of the old file's own directory from `first` to `last` (exclusive), in
// their order, passing over names that can't be lump names and a BEHAVIOR a non-Hexen project
// doesn't keep; a replaced entry takes the new bytes, and an empty BEHAVIOR the 16 bytes a
// Hexen engine needs. `levelEnd` is the entry behind the saved level.
bool CopyOtherLumps(WadOutput& out, const SavePlan& plan, const std::vector<LumpEntry>& entries,
                    std::size_t first, std::size_t last, std::size_t levelEnd, bool& replaced)
{
    for (std::size_t i = first; i < last && i < entries.size(); ++i)
    {
        const LumpEntry& entry = entries[i];
        const bool behavior = entry.Name.Is("BEHAVIOR");
        if (!entry.Name.Printable() || (behavior && Wad().Game.Format != 4))
        {
            continue;
        }
        if (plan.Replace && !replaced && IsReplaced(plan, entry, i, levelEnd))
        {
            if (!WriteReplace(out, plan, OutName(LumpName::From(plan.Replace->Name))))
            {
                return false;
            }
            replaced = true;
            continue;
        }
        if (behavior && entry.Size == 0)
        {
            if (!WriteBehavior(out, nullptr))
            {
                return false;
            }
            continue;
        }
        const std::int64_t start = out.Offset;
        if (!CopyFileData(out, plan.LevelFile, entry.Offset, entry.Size))
        {
            return false;
        }
        EnterRow(out, OutName(entry.Name).Text(), start);
    }
    return true;
}

// Closes the renamed old file for good, and every record marked DEL.
void FreeOldRecords()
{
    WadState& wad = Wad();
    for (int i = 1; i < FileTableSize; ++i)
    {
        FileRec& file = wad.Files[static_cast<std::size_t>(i)];
        if (file.State != 0 && (SameName(file.FirstLevelName, LumpName::From(".BAK")) ||
                                SameName(file.FirstLevelName, LumpName::From("DEL"))))
        {
            file = FileRec{};
        }
    }
    CloseFiles('A', false, false);
}

// The node builder on the temporary file. Its failure offers to copy the temporary file to
// the target, so the user keeps the level without new nodes.
void RunNodeBuilder(const SavePlan& plan, map::LevelData& level)
{
    WadState& wad = Wad();
    const int result = wad.Save.BuildNodes(plan.WritePath, plan.TargetPath, plan.LevelName);
    if (result == 0)
    {
        level.GeometryChangeCount = 0;
        return;
    }
    const int recover = platform::ShowMessageLines(
        platform::LinesCancel, "Node Error",
        {"Node Building Error Occurred", "Do you want Kelvar to copy", plan.WritePath,
         "- back to -", plan.TargetPath, "Otherwise you will get a", "file not found message?"});
    if (recover != 1)
    {
        if (platform::AskYesNo("Are you sure you don't want to recover?"))
        {
            return;
        }
    }
    StreamPtr source = CheckedOpen(plan.WritePath, "rb", 0);
    if (!source)
    {
        platform::ShowError("Unable to open %s\n\nUse File Open/Edit to reset",
                            plan.WritePath.c_str());
        platform::ShowError("Next msg will say %s notfound\n\nUse .BAK or ~kelvar.wad version to "
                            "recover",
                            plan.TargetPath.c_str());
        return;
    }
    const std::int64_t size = FileSize(source.get(), 0);
    if (CopyToNewFile(source.get(), 0, size, plan.TargetPath) != 1)
    {
        platform::ShowError("Unable to create %s\n\nUse File Open/Edit to reset",
                            plan.TargetPath.c_str());
        platform::ShowError("Next msg will say %s notfound\n\nUse .BAK or ~kelvar.wad version to "
                            "recover",
                            plan.TargetPath.c_str());
        return;
    }
    platform::ShowInfo("File %s recovered", plan.TargetPath.c_str());
}

// The name table after a save: the target is an open file of the session; an old file that
// the level moved away from isn't any more.
void UpdateNameTable(const std::string& oldPath, const std::string& target)
{
    auto& names = Wad().OpenFiles;
    const int slot = NameTableSlot(target);
    if (slot >= 0)
    {
        names[static_cast<std::size_t>(slot)] = target;
    }
    if (!oldPath.empty() && !SamePath(oldPath, target))
    {
        for (std::string& name : names)
        {
            if (!name.empty() && SamePath(name, oldPath))
            {
                name.clear();
            }
        }
    }
}

// Everything after the checks: the file is created and written. False when the write failed.
bool WriteFile(map::LevelData& level, SavePlan& plan, std::size_t marker)
{
    WadState& wad = Wad();
    WadOutput out;
    out.Stream = CheckedOpen(plan.WritePath, "wb", 0);
    if (!out.Stream)
    {
        return false;
    }
    if (plan.Choices.UnusedCleanup && wad.Save.UnusedCleanup)
    {
        const bool busy = map::Map().SaveBusy;
        const std::uint16_t geometry = level.GeometryChangeCount;
        map::Map().SaveBusy = false;
        wad.Save.UnusedCleanup();
        map::Map().SaveBusy = busy;
        // Removed Vertexes renumber the rest: the old node lumps would point at the wrong
        // ones, so without a build they go out empty and the nodes stay to be built.
        if (level.GeometryChangeCount != geometry && !plan.BuildNodes)
        {
            plan.Choices.ZeroNodes = true;
        }
    }
    platform::TheUi().ShowProgress(platform::Format("Saving %s", plan.TargetPath.c_str()),
                                   plan.LevelName);

    // The old file's magic stays when the level comes from a PWAD.
    std::string magic = "PWAD";
    FileRec& levelFile = wad.Files[static_cast<std::size_t>(plan.LevelFile)];
    std::optional<std::vector<LumpEntry>> own;
    if (plan.FromPwad)
    {
        EnsureOpen(levelFile);
        if (levelFile.Stream)
        {
            magic = WadMagicOf(levelFile.Stream.get()).value_or(magic);
        }
    }
    const std::uint8_t placeholder[WadHeaderSize] = {};
    if (CheckedWrite(out.Stream.get(), placeholder, WadHeaderSize) != 1)
    {
        return false;
    }

    // The other lumps of the file come from its own directory on disk.
    std::size_t levelAt = 0;
    std::size_t levelEnd = 0;
    if (plan.Group)
    {
        own = ReadWadDirectory(levelFile.Stream.get(), levelFile.FileName);
        if (!own)
        {
            return false;
        }
        const std::optional<LevelSpan> span =
            FindLevelEntries(*own, LumpName::From(plan.OldLevelName));
        if (!span)
        {
            platform::FatalError("Level name %s not found in existing file?",
                                 plan.OldLevelName.c_str());
        }
        levelAt = span->Marker;
        levelEnd = span->End;
    }
    bool replaced = false;
    if (plan.Group && !CopyOtherLumps(out, plan, *own, 0, levelAt, levelEnd, replaced))
    {
        return false;
    }

    // The marker, with any data of its own.
    const std::int64_t markerStart = out.Offset;
    const LumpEntry& markerEntry = Master()[marker];
    if (plan.Replace && SameName(LumpName::From(plan.Replace->Name), markerEntry.Name))
    {
        const std::optional<std::vector<std::uint8_t>> bytes = FileBytes(plan.Replace->SourceFile);
        if (!bytes || !WriteData(out, bytes->data(), static_cast<std::int64_t>(bytes->size())))
        {
            return false;
        }
        replaced = true;
    }
    else if (!CopyFileData(out, markerEntry.FileNumber, markerEntry.Offset, markerEntry.Size))
    {
        return false;
    }
    EnterRow(out, LumpName::From(plan.LevelName).Text(), markerStart);

    if (!WriteLevelLumps(out, level, plan))
    {
        return false;
    }
    if (plan.Group && !CopyOtherLumps(out, plan, *own, levelEnd, own->size(), levelEnd, replaced))
    {
        return false;
    }
    if (plan.Replace && !replaced && !LumpName::From(plan.Replace->Name).Is("BEHAVIOR") &&
        !WriteReplace(out, plan, OutName(LumpName::From(plan.Replace->Name))))
    {
        return false;
    }
    if (!WriteDirectoryAndHeader(out, magic))
    {
        return false;
    }
    if (std::fclose(out.Stream.release()) != 0)
    {
        IoFailure("write", nullptr, 0, 0);
        return false;
    }
    platform::TheUi().EndProgress();
    return true;
}

} // namespace

int WriteLevelFile(map::LevelData& level, const std::string& path, const std::string& oldPath,
                   int code, const std::optional<LumpReplace>& replace,
                   const std::string& oldLevelName)
{
    WadState& wad = Wad();
    Redraw();
    if (path.empty())
    {
        return -1;
    }
    const std::size_t marker = wad.CurrentFile.LevelStart;
    if (marker >= Master().Size())
    {
        return RestoreBak(path);
    }
    // The level's window ends where its entries end: a level short of lumps never takes in
    // the level behind it.
    const int count = static_cast<int>(CurrentLevelEnd() - marker);

    if (level.LineDefs.Count() == 0 || level.SideDefs.Count() == 0 || level.Sectors.Count() == 0)
    {
        platform::ShowMessageLines(0, "Nothing Made",
                                   {"!! Please MAKE something first !!", "Nothing saved"});
        return RestoreBak(path);
    }

    SavePlan plan;
    plan.Code = code;
    plan.TargetPath = path;
    plan.WritePath = path;
    plan.Replace = replace;
    plan.LevelName = Master()[marker].Name.Text();
    plan.OldLevelName = oldLevelName.empty() ? plan.LevelName : oldLevelName;
    plan.LevelFile = wad.CurrentFile.FileNumber;
    plan.FromPwad = plan.LevelFile > 0;
    plan.Level = LevelEntries(marker, count);
    const FileRec& levelFile = wad.Files[static_cast<std::size_t>(std::max(plan.LevelFile, 0))];
    const bool fileHasMore = plan.FromPwad && levelFile.LumpCount > count;

    if (!AskFormatLimits(level) || !AskOtherGameLevels() ||
        !AskSaveChoices(plan, level, fileHasMore))
    {
        return RestoreBak(path);
    }
    plan.Rows = ProjectRowLayout(level, true);

    if (level.Things.Count() > 0 && plan.Choices.RebuildNodes)
    {
        ++level.ChangeCount;
        ++level.GeometryChangeCount;
        if (wad.Hooks.DropCatalogues)
        {
            wad.Hooks.DropCatalogues();
        }
        plan.BuildNodes = true;
        plan.WritePath = (wad.ProgramDir / NodeBuildFileName).string();
    }

    if (!WriteFile(level, plan, marker))
    {
        platform::TheUi().EndProgress();
        std::error_code error;
        std::filesystem::remove(plan.WritePath, error);
        return RestoreBak(path);
    }
    FreeOldRecords();
    level.ChangeCount = 0;
    if (plan.BuildNodes)
    {
        RunNodeBuilder(plan, level);
    }
    UpdateNameTable(oldPath, plan.TargetPath);
    Redraw();
    return 0;
}

} // namespace kelvar::wad
