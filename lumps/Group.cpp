// The Group, Ungroup and IWAD writers: plans of the new file built from the open files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/Group.h"

#include "lumps/ToolFiles.h"
#include "platform/Assert.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/LumpDirectory.h"
#include "wad/WadRewrite.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kelvar::lumps
{
namespace
{

using wad::LumpEntry;
using wad::LumpName;
using wad::NameKey;
using wad::RewriteEntry;
using wad::RewritePlan;

// The PWADs a walk goes through and the bytes the progress panel counts to.
struct SourceFiles
{
    std::vector<int> Files;
    std::int64_t Total = 0;
};

// The PWADs the master directory still uses, each once, in overlay order (the order of the
// name table), so that of two levels of one name the one the editor shows is written last,
// where the games find it. The progress total is the size of every master entry from a PWAD.
SourceFiles FindSourceFiles()
{
    const wad::WadState& state = wad::Wad();
    SourceFiles sources;
    std::vector<bool> named(wad::FileTableSize, false);
    for (const LumpEntry& entry : wad::Master().Entries())
    {
        if (entry.FileNumber > 0 && entry.FileNumber < wad::FileTableSize)
        {
            named[static_cast<std::size_t>(entry.FileNumber)] = true;
            sources.Total += std::max(entry.Size, 0);
        }
    }
    for (int file = 1; file < wad::FileTableSize; ++file)
    {
        if (named[static_cast<std::size_t>(file)] &&
            state.Files[static_cast<std::size_t>(file)].State != 0)
        {
            sources.Files.push_back(file);
        }
    }
    const auto overlayPlace = [&state](int file)
    {
        const std::int16_t index = state.Files[static_cast<std::size_t>(file)].ListIndex;
        return index >= 0 ? index : wad::NameTableSize + file;
    };
    std::stable_sort(sources.Files.begin(), sources.Files.end(),
                     [&](int a, int b) { return overlayPlace(a) < overlayPlace(b); });
    return sources;
}

// An empty entry whose name says where a run of flats, sprites, patches... begins or ends.
bool IsMarker(const LumpEntry& entry)
{
    if (entry.Size != 0)
    {
        return false;
    }
    const std::string name = entry.Name.Text();
    return name.ends_with("_START") || name.ends_with("_END");
}

// What a walk takes from each file.
struct WalkRules
{
    bool Levels = true;     // the runs of levels
    bool Others = false;    // every other entry
    bool AliveOnly = false; // Ungroup: only what wins in the master directory for this file
    std::string Caption;    // the progress panel's caption, the target's name in it
};

// The new file as the walks build it. CopiedLumps marks the master entries already written,
// so none is written twice; EndWritten says the flats' one closing F_END is in.
struct GroupWalk
{
    WalkRules Rules;
    RewritePlan Plan;
    std::vector<bool> CopiedLumps;
    bool EndWritten = false;
};

// Ungroup takes a level only when the master's level of that name comes from this file.
bool LevelIsAlive(const GroupWalk& walk, const LumpName& name, int fileNumber)
{
    if (!walk.Rules.AliveOnly)
    {
        return true;
    }
    const wad::LumpDirectory& master = wad::Master();
    const int found = master.FindLast(name, 0, master.Size());
    return found < 0 || master[static_cast<std::size_t>(found)].FileNumber == fileNumber;
}

// A level's lumps come from the file being walked, as they stand there.
void AddLevel(GroupWalk& walk, const std::string& path, std::span<const LumpEntry> lumps)
{
    for (const LumpEntry& lump : lumps)
    {
        walk.Plan.Entries.push_back(
            RewriteEntry::FromFile(lump.Name.Text(), path, lump.Offset, lump.Size));
    }
}

// The first F_END goes in; any later one is dropped.
void AddClosingEnd(GroupWalk& walk)
{
    if (!walk.EndWritten)
    {
        walk.Plan.Entries.push_back(RewriteEntry::FromBytes("F_END"));
        walk.EndWritten = true;
    }
}

// The master directory's newest entry of the name, once. A name the master doesn't know, or
// knows only from the IWAD (the merge refused this file's entry), is dropped: a grouped PWAD
// never takes the IWAD's data.
bool AddWinningDefinition(GroupWalk& walk, int fileNumber, const LumpEntry& entry)
{
    const wad::LumpDirectory& master = wad::Master();
    const int found = master.FindLast(entry.Name, 0, master.Size());
    if (found < 0)
    {
        return false;
    }
    const auto at = static_cast<std::size_t>(found);
    const LumpEntry& winner = master[at];
    if (winner.FileNumber <= 0 || winner.FileNumber >= wad::FileTableSize ||
        (walk.Rules.AliveOnly && winner.FileNumber != fileNumber) || walk.CopiedLumps[at])
    {
        return false;
    }
    walk.CopiedLumps[at] = true;
    const std::string& file =
        wad::Wad().Files[static_cast<std::size_t>(winner.FileNumber)].FileName;
    KELVAR_ASSERT(!file.empty());
    walk.Plan.Entries.push_back(
        RewriteEntry::FromFile(entry.Name.Text(), file, winner.Offset, winner.Size));
    return true;
}

// An entry outside the levels: F_START always, the first F_END only, other markers as the
// file has them, any other lump in its winning definition; an FF_END closes the flats.
void AddLump(GroupWalk& walk, int fileNumber, const LumpEntry& entry)
{
    const std::uint64_t key = entry.Name.Key();
    if (key == NameKey("F_START"))
    {
        walk.Plan.Entries.push_back(RewriteEntry::FromBytes(entry.Name.Text()));
        return;
    }
    if (key == NameKey("F_END"))
    {
        AddClosingEnd(walk);
        return;
    }
    if (IsMarker(entry))
    {
        walk.Plan.Entries.push_back(RewriteEntry::FromBytes(entry.Name.Text()));
    }
    else if (!AddWinningDefinition(walk, fileNumber, entry))
    {
        return;
    }
    if (key == NameKey("FF_END"))
    {
        AddClosingEnd(walk);
    }
}

// Walks one file's directory as it stands on disk: names that begin with a control character
// are passed over, a level is a run of its lumps, any other entry a run of one.
void WalkFile(GroupWalk& walk, int fileNumber, const std::vector<LumpEntry>& entries)
{
    const std::string& path = wad::Wad().Files[static_cast<std::size_t>(fileNumber)].FileName;
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        const LumpEntry& entry = entries[i];
        if (static_cast<unsigned char>(entry.Name.Chars[0]) < 32)
        {
            continue;
        }
        int count = 1;
        if (wad::LevelAt(entries, i, entries.size(), count) != 0)
        {
            const std::size_t end = std::min(entries.size(), i + static_cast<std::size_t>(count));
            if (walk.Rules.Levels && LevelIsAlive(walk, entry.Name, fileNumber))
            {
                AddLevel(walk, path, std::span(entries).subspan(i, end - i));
            }
            i = end - 1;
        }
        else if (walk.Rules.Others)
        {
            AddLump(walk, fileNumber, entry);
        }
    }
}

// A source's directory as it stands on disk, read without the write access the editor holds;
// damage is reported as the scan reports it.
std::optional<std::vector<LumpEntry>> WorkEntries(int fileNumber)
{
    const std::string& path = wad::Wad().Files[static_cast<std::size_t>(fileNumber)].FileName;
    const wad::StreamPtr stream = wad::CheckedOpen(path, "rb", 0);
    if (!stream)
    {
        return std::nullopt;
    }
    return wad::ReadWadDirectory(stream.get(), path);
}

// Walks every source file with `rules` into a plan; nothing when a source can't be read.
std::optional<RewritePlan> PlanOfWalks(const WalkRules& rules)
{
    const SourceFiles sources = FindSourceFiles();
    GroupWalk walk;
    walk.Rules = rules;
    walk.CopiedLumps.assign(wad::Master().Size(), false);
    for (const int file : sources.Files)
    {
        const std::optional<std::vector<LumpEntry>> entries = WorkEntries(file);
        if (!entries)
        {
            return std::nullopt;
        }
        WalkFile(walk, file, *entries);
    }
    RewritePlan plan = std::move(walk.Plan);
    plan.Magic = "PWAD";
    plan.ProgressCaption = rules.Caption;
    plan.ProgressTotal = std::max<std::int64_t>(sources.Total, 1);
    plan.CreateFailure = "Unable to create : %s";
    return plan;
}

// A spare slot of the editor's own: the entry the lump saver takes over, and GL slots the
// IWAD scan made room with and no level filled. Neither holds anything a game reads.
bool IsSpareSlot(const LumpEntry& entry)
{
    if (entry.FileNumber != 0 || entry.Offset != 0 || entry.Size != 0)
    {
        return false;
    }
    return entry.Name.Is("k_e  v_r") || entry.Name.StartsWith("GL_");
}

} // namespace

int GroupWads(const std::filesystem::path& targetPath, bool includeAll)
{
    if (!TargetIsFree(targetPath))
    {
        return 0;
    }
    WalkRules rules;
    rules.Others = includeAll;
    rules.Caption = platform::Format("Grouping PWAD %44s", targetPath.c_str());
    const std::optional<RewritePlan> plan = PlanOfWalks(rules);
    return plan && wad::RewriteWad(targetPath, *plan) ? 1 : 0;
}

int UngroupWads(const std::filesystem::path& targetPath, bool nonLevelsOnly)
{
    if (!TargetIsFree(targetPath))
    {
        return 0;
    }
    WalkRules rules;
    rules.Levels = !nonLevelsOnly;
    rules.Others = nonLevelsOnly;
    rules.AliveOnly = true;
    rules.Caption = platform::Format("Ungrouping PWAD %44s", targetPath.c_str());
    const std::optional<RewritePlan> plan = PlanOfWalks(rules);
    if (!plan || !wad::RewriteWad(targetPath, *plan))
    {
        return 0;
    }
    if (plan->Entries.empty())
    {
        platform::ShowError(
            "Ungroup file created is invalid\n\nThere was no data found for the option");
    }
    return 1;
}

int WriteIwad(const std::filesystem::path& targetPath)
{
    if (!TargetIsFree(targetPath))
    {
        return 0;
    }
    const wad::WadState& state = wad::Wad();
    const std::int64_t iwadSize = wad::FileSizeByName(state.Files[0].FileName);
    if (iwadSize < 0)
    {
        platform::ShowError("File Seekend Error?");
        return 0;
    }
    RewritePlan plan;
    plan.Magic = "IWAD";
    std::int64_t total = 0;
    for (const LumpEntry& entry : wad::Master().Entries())
    {
        if (IsSpareSlot(entry) || entry.FileNumber < 0 || entry.FileNumber >= wad::FileTableSize)
        {
            continue;
        }
        const std::string& file = state.Files[static_cast<std::size_t>(entry.FileNumber)].FileName;
        if (file.empty() && entry.Size > 0)
        {
            platform::ShowError("Failure reading old File?"); // its file is no longer open
            return 0;
        }
        plan.Entries.push_back(
            RewriteEntry::FromFile(entry.Name.Text(), file, entry.Offset, entry.Size));
        total += std::max(entry.Size, 0);
    }
    plan.ProgressCaption = platform::Format("Making IWAD %s (%dK)", targetPath.c_str(),
                                            static_cast<int>((iwadSize + 1023) / 1024));
    plan.ProgressTotal = std::max<std::int64_t>(total, 1);
    plan.CreateFailure = "Unable to create : %s";
    return wad::RewriteWad(targetPath, plan) ? 1 : 0;
}

} // namespace kelvar::lumps
