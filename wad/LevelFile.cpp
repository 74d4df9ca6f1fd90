// Writing the level's file: the plan of a save, the other lumps of the file in their order,
// the level's lumps in the canonical order, the reject table, the directory.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LevelFile.h"

#include "map/GameCodes.h"
#include "platform/Fatal.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/FileChecks.h"
#include "wad/FileTable.h"
#include "wad/FindLump.h"
#include "wad/LevelReader.h"
#include "wad/SavePath.h"
#include "wad/WadFormat.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace kelvar::wad
{
namespace
{

constexpr std::array<std::string_view, 10> LevelLumps = {
    "THINGS",   "LINEDEFS", "SIDEDEFS", "VERTEXES", "SEGS",
    "SSECTORS", "NODES",    "SECTORS",  "REJECT",   "BLOCKMAP"};

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
        for (std::size_t i = period - 1; i < table.size(); i += period)
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
        if (name == "REJECT")
        {
            if (!WriteReject(out, plan, level))
            {
                return false;
            }
            continue;
        }
        if (fromMemory && IsObjectLump(name))
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

    if (Wad().Game.Format == map::GameHexen)
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
        if (!entry.Name.Printable() || (behavior && Wad().Game.Format != map::GameHexen))
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

// The magic of the new file: the old file's when the level comes from a PWAD and it has one.
std::string MagicFor(const SavePlan& plan)
{
    if (!plan.FromPwad)
    {
        return "PWAD";
    }
    FileRec& file = Wad().Files[static_cast<std::size_t>(plan.LevelFile)];
    EnsureOpen(file);
    return file.Stream ? WadMagicOf(file.Stream.get()).value_or("PWAD") : "PWAD";
}

// The old file's own directory as it stands on disk, and where the level stands in it.
struct OldFile
{
    std::vector<LumpEntry> Entries;
    std::size_t LevelAt = 0;
    std::size_t LevelEnd = 0;
};

std::optional<OldFile> ReadOldFile(const SavePlan& plan)
{
    FileRec& file = Wad().Files[static_cast<std::size_t>(plan.LevelFile)];
    EnsureOpen(file);
    std::optional<std::vector<LumpEntry>> entries =
        ReadWadDirectory(file.Stream.get(), file.FileName);
    if (!entries)
    {
        return std::nullopt;
    }
    const std::optional<LevelSpan> span =
        FindLevelEntries(*entries, LumpName::From(plan.OldLevelName));
    if (!span)
    {
        platform::FatalError("Level name %s not found in existing file?",
                             plan.OldLevelName.c_str());
    }
    return OldFile{std::move(*entries), span->Marker, span->End};
}

// The level's marker under its new name, with any data of its own; a replace that names the
// marker gives it the new bytes.
bool WriteMarker(WadOutput& out, const SavePlan& plan, bool& replaced)
{
    const std::int64_t start = out.Offset;
    const LumpEntry& marker = Master()[plan.Marker];
    if (plan.Replace && SameName(LumpName::From(plan.Replace->Name), marker.Name))
    {
        const std::optional<std::vector<std::uint8_t>> bytes = FileBytes(plan.Replace->SourceFile);
        if (!bytes || !WriteData(out, bytes->data(), static_cast<std::int64_t>(bytes->size())))
        {
            return false;
        }
        replaced = true;
    }
    else if (!CopyFileData(out, marker.FileNumber, marker.Offset, marker.Size))
    {
        return false;
    }
    EnterRow(out, LumpName::From(plan.LevelName).Text(), start);
    return true;
}

// Everything between the header and the directory, in the order the data goes out.
bool WriteLumps(WadOutput& out, const map::LevelData& level, const SavePlan& plan)
{
    std::optional<OldFile> old;
    if (plan.Group)
    {
        old = ReadOldFile(plan);
        if (!old)
        {
            return false;
        }
    }
    bool replaced = false;
    if (old && !CopyOtherLumps(out, plan, old->Entries, 0, old->LevelAt, old->LevelEnd, replaced))
    {
        return false;
    }
    if (!WriteMarker(out, plan, replaced) || !WriteLevelLumps(out, level, plan))
    {
        return false;
    }
    if (old && !CopyOtherLumps(out, plan, old->Entries, old->LevelEnd, old->Entries.size(),
                               old->LevelEnd, replaced))
    {
        return false;
    }
    // A replace that found no entry of its name is added at the end.
    return !plan.Replace || replaced || LumpName::From(plan.Replace->Name).Is("BEHAVIOR") ||
           WriteReplace(out, plan, OutName(LumpName::From(plan.Replace->Name)));
}

} // namespace

std::optional<SavePlan> PlanLevelSave(const map::LevelData& level, const std::string& path,
                                      int code, const std::optional<LumpReplace>& replace,
                                      const std::string& oldLevelName)
{
    const WadState& wad = Wad();
    const std::size_t marker = wad.CurrentFile.LevelStart;
    if (marker >= Master().Size())
    {
        return std::nullopt;
    }
    SavePlan plan;
    plan.Code = code;
    plan.Marker = marker;
    plan.TargetPath = path;
    plan.WritePath = path;
    plan.Replace = replace;
    plan.LevelName = Master()[marker].Name.Text();
    plan.OldLevelName = oldLevelName.empty() ? plan.LevelName : oldLevelName;
    plan.LevelFile = wad.CurrentFile.FileNumber;
    plan.FromPwad = plan.LevelFile > 0 && plan.LevelFile < FileTableSize;
    // The level's window ends where its entries end: a level short of lumps never takes in the
    // level behind it.
    const int count = static_cast<int>(CurrentLevelEnd() - marker);
    plan.Level = LevelEntries(marker, count);
    plan.FileHasMore =
        plan.FromPwad && wad.Files[static_cast<std::size_t>(plan.LevelFile)].LumpCount > count;
    plan.Group = plan.FromPwad && (wad.Options.GroupSave || plan.FileHasMore);
    plan.Choices = wad.SaveChoices;
    plan.Rows = ProjectRowLayout(level, true);
    return plan;
}

bool CreateSaveOutput(const SavePlan& plan, WadOutput& out)
{
    out = WadOutput{};
    out.Stream = CheckedOpen(plan.WritePath, "wb", 0);
    return out.Stream != nullptr;
}

bool WriteLevelSave(WadOutput& out, const map::LevelData& level, const SavePlan& plan)
{
    platform::TheUi().ShowProgress(platform::Format("Saving %s", plan.TargetPath.c_str()),
                                   plan.LevelName);
    const std::uint8_t placeholder[WadHeaderSize] = {};
    if (CheckedWrite(out.Stream.get(), placeholder, WadHeaderSize) != 1 ||
        !WriteLumps(out, level, plan) || !WriteDirectoryAndHeader(out, MagicFor(plan)))
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

void FinishLevelSave(map::LevelData& level, const std::string& oldPath, const std::string& target)
{
    FreeOldRecords();
    level.ChangeCount = 0;
    UpdateNameTable(oldPath, target);
}

int AbandonLevelSave(WadOutput& out, const SavePlan& plan, const std::string& path)
{
    platform::TheUi().EndProgress();
    out.Stream.reset();
    std::error_code error;
    std::filesystem::remove(plan.WritePath, error);
    return RestoreBak(path);
}

} // namespace kelvar::wad
