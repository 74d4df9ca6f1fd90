// Opening a WAD: header and directory checks, the IWAD scan with its spare slots.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/WadScan.h"

#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/DirectoryReader.h"
#include "wad/ErrorLog.h"
#include "wad/FileChecks.h"
#include "wad/FileTable.h"
#include "wad/WadFormat.h"
#include "wad/WadMerge.h"

#include <algorithm>
#include <fcntl.h>
#include <vector>

namespace kelvar::wad
{
namespace
{

// Shows the first bad entry of a scan and logs the later ones, so a wrecked directory is one
// dialog, not thousands.
void ReportBadEntries(const std::string& path, std::int64_t fileSize,
                      const std::vector<LumpEntry>& bad)
{
    for (std::size_t i = 0; i < bad.size(); ++i)
    {
        const std::string name = bad[i].Name.Text();
        if (i == 0)
        {
            platform::ShowError(
                "File %s size=%d\n\nLump %s\nInvalid: offset=%d size=%d\nIgnored - launch again",
                path.c_str(), static_cast<int>(fileSize), name.c_str(), bad[i].Offset, bad[i].Size);
        }
        else
        {
            LogLine({platform::Format("Lump %s Invalid: offset=%d size=%d Ignored", name.c_str(),
                                      bad[i].Offset, bad[i].Size)});
        }
    }
}

// Reads the directory of the WAD on `stream` and says what is wrong with it, as a scan does:
// a PWAD's reading stops at its first bad entry, the IWAD's goes on without it. Nothing when
// the header is refused (after the reason was shown).
std::optional<DirectoryReport> ScanDirectory(std::FILE* stream, const std::string& path,
                                             bool isIwad)
{
    DirectoryReport report = ReadDirectoryOf(stream, isIwad ? BadEntryRule::PassOverBadEntries
                                                            : BadEntryRule::StopAtBadEntry);
    const int size = static_cast<int>(report.FileSize);
    switch (report.Problem)
    {
    case HeaderProblem::TooSmall:
        platform::ShowError("File %s\n\nsize %d is too small", path.c_str(), size);
        return std::nullopt;
    case HeaderProblem::BadDirectoryOffset:
        platform::ShowError("File %s\n\nDir offset=%d is invalid", path.c_str(),
                            report.DirectoryOffset);
        return std::nullopt;
    case HeaderProblem::BadLumpCount:
        platform::ShowError("File %s\n\nLump count=%d is invalid", path.c_str(), report.LumpCount);
        return std::nullopt;
    case HeaderProblem::ReadFailed:
        IoFailure("read", stream, 0, WadHeaderSize);
        return std::nullopt;
    default:
        break;
    }
    if (report.RunsPastEnd)
    {
        platform::ShowError(
            "File %s size=%d\n\nDirectory of %d entries at offset=%d runs past the end\n"
            "Only the first %d entries are read",
            path.c_str(), size, report.LumpCount, report.DirectoryOffset,
            static_cast<int>(report.Fits));
    }
    if (report.Problem == HeaderProblem::DirectoryCut)
    {
        IoFailure("read", stream, 0, DirectoryEntrySize);
    }
    ReportBadEntries(path, report.FileSize, report.BadEntries);
    return report;
}

LumpEntry EmptyEntry(std::string_view name)
{
    LumpEntry entry;
    entry.Name = LumpName::From(name);
    return entry;
}

// Builds the master directory from the IWAD's entries. After each BLOCKMAP, empty slots are
// put in for the optional lumps a PWAD level may bring (BEHAVIOR, the GL lumps, SCRIPTS), so
// that such a level can later be laid over the IWAD's with everything in canonical order.
// A real lump of the IWAD that arrives right after takes its slot.
void BuildMaster(std::vector<LumpEntry>&& entries)
{
    WadState& wad = Wad();
    LumpDirectory& master = Master();
    master.Clear();
    const bool behavior =
        std::any_of(entries.begin(), entries.end(),
                    [](const LumpEntry& entry) { return entry.Name.HasKey(NameKey("BEHAVIOR")); });
    wad.Game.IwadHasBehavior = behavior;
    if (!behavior && !wad.Options.ZdoomHexenFormat && !wad.Options.GlNodes)
    {
        master.Assign(std::move(entries)); // no spare slots to make room for
        return;
    }
    master.Reserve(entries.size() + entries.size() / 4);
    std::vector<std::size_t> pending;
    for (std::size_t k = 0; k < entries.size(); ++k)
    {
        const LumpEntry& entry = entries[k];
        const int slot = pending.empty() ? -1 : LevelSlot(entry.Name, false);
        const auto spare = std::find_if(
            pending.begin(), pending.end(),
            [&](std::size_t at) { return slot > 0 && LevelSlot(master[at].Name, false) == slot; });
        if (spare != pending.end())
        {
            master.Edit(*spare).Offset = entry.Offset;
            master.Edit(*spare).Size = entry.Size;
            master.Rename(*spare, entry.Name);
            pending.erase(spare);
            continue;
        }
        pending.clear();
        master.Append(entry);
        if (!entry.Name.Is("BLOCKMAP"))
        {
            continue;
        }
        const bool hexen = wad.Options.ZdoomHexenFormat ||
                           (k + 1 < entries.size() && entries[k + 1].Name.Is("BEHAVIOR"));
        std::vector<std::string_view> spares;
        if (hexen)
        {
            spares.push_back("BEHAVIOR");
        }
        if (wad.Options.GlNodes)
        {
            spares.insert(spares.end(),
                          {"GL_LEVEL", "GL_VERT", "GL_SEGS", "GL_SSECT", "GL_NODES", "GL_PVS"});
        }
        if (hexen)
        {
            spares.push_back("SCRIPTS");
        }
        for (const std::string_view name : spares)
        {
            pending.push_back(master.Size());
            master.Append(EmptyEntry(name));
        }
    }
}

// Names the GL marker after its level and marks script lumps that follow a level.
void NameLevelCompanions(LumpDirectory& directory)
{
    LumpName level;
    bool haveLevel = false;
    for (std::size_t i = 0; i < directory.Size(); ++i)
    {
        int count = 0;
        if (LevelAt(directory.Entries(), i, directory.Size(), count) > 0)
        {
            level = directory[i].Name;
            haveLevel = true;
            continue;
        }
        if (!haveLevel)
        {
            continue;
        }
        const std::uint64_t key = directory[i].Name.Key();
        if (key == NameKey("GL_LEVEL"))
        {
            directory.Rename(i, LumpName::From("GL_" + level.Text().substr(0, 5)));
        }
        else if (key == NameKey("SCRIPTS"))
        {
            directory.Edit(i).LumpGroup = GroupScript;
        }
    }
}

// The first entry of `entries` that starts a level, or null.
const LumpEntry* FirstLevel(std::span<const LumpEntry> entries)
{
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        int count = 0;
        if (LevelAt(entries, i, entries.size(), count) > 0)
        {
            return &entries[i];
        }
    }
    return nullptr;
}

void FinishIwadScan(FileRec& file)
{
    LumpDirectory& master = Master();
    NameLevelCompanions(master);
    if (const LumpEntry* first = FirstLevel(master.Entries()))
    {
        file.FirstLevelName = first->Name;
    }
    EnsureSpareEntry();
    RenumberOrdinals();
    file.LumpCount = static_cast<std::int32_t>(master.Size());
}

bool OpenedReadOnly(std::FILE* stream)
{
    const int flags = fcntl(fileno(stream), F_GETFL);
    return flags >= 0 && (flags & O_ACCMODE) == O_RDONLY;
}

void StartScanLog()
{
    CloseErrorLog();
    Wad().Log.Lines = 0;
}

void EndScanLog()
{
    if (ErrorLogLines() > 0)
    {
        ShowErrorLog("List of WAD problems");
    }
    else
    {
        CloseErrorLog();
    }
}

} // namespace

void EnsureSpareEntry()
{
    const LumpName spare = LumpName::From("k_e  v_r");
    LumpDirectory& master = Master();
    if (master.FindLast(spare, 0, master.Size()) < 0 && master.Size() < Wad().MasterCapacity)
    {
        master.Append(EmptyEntry("k_e  v_r"));
    }
}

void RenumberOrdinals()
{
    LumpDirectory& master = Master();
    for (std::size_t i = 0; i < master.Size(); ++i)
    {
        master.Edit(i).Ordinal = static_cast<std::int32_t>(i);
    }
}

int OpenWad(const std::string& path, std::string_view magic, bool warnings)
{
    WadState& wad = Wad();
    const bool isIwad = magic == "IWAD";
    const bool wadMagic = magic.size() == 4 && EqualNoCase(magic.substr(1), "WAD");
    const std::string expected = isIwad ? "IWAD" : "_" + std::string(magic.substr(1));
    std::string checked = path;
    const int type = CheckFileType(checked, wadMagic ? expected : std::string(), false, 0);
    if (type <= 0)
    {
        return -1;
    }

    const int existing = FindFileRecord(path);
    if (existing >= 0 && (existing == 0) == isIwad)
    {
        EnsureOpen(wad.Files[static_cast<std::size_t>(existing)]);
        return existing;
    }
    const int slot = isIwad ? 0 : FreeFileRecordIndex();
    if (slot < 0)
    {
        platform::ShowMessageLines(0, "File Limit",
                                   {platform::Format("File Limit of %hd Exceeded",
                                                     static_cast<short>(wad.Options.FileLimit))});
        return -1;
    }
    int listIndex = -1;
    for (int i = 0; !isIwad && i < NameTableSize && listIndex < 0; ++i)
    {
        if (wad.OpenFiles[static_cast<std::size_t>(i)] == path)
        {
            listIndex = i;
        }
    }
    if (!isIwad && listIndex < 0)
    {
        platform::ShowError("File %s mismatch?", path.c_str());
        return -1;
    }
    StreamPtr stream = CheckedOpen(path, (isIwad || wad.ReadOnlyOpen) ? "rb" : "r+b", 0);
    if (!stream)
    {
        return -1;
    }

    FileRec& file = wad.Files[static_cast<std::size_t>(slot)];
    file = FileRec{};
    file.FileName = path;
    file.ListIndex = static_cast<std::int16_t>(listIndex);
    file.IsMain = isIwad ? 1 : 0;
    file.ReadOnly = OpenedReadOnly(stream.get());
    file.IwadAsPwad = !isIwad && type == 2;
    file.Stream = std::move(stream);
    file.State = 'O';
    if (!wadMagic)
    {
        return slot;
    }

    StartScanLog();
    std::optional<DirectoryReport> read = ScanDirectory(file.Stream.get(), path, isIwad);
    if (!read)
    {
        file = FileRec{};
        return -1;
    }
    file.DirectoryOffset = read->DirectoryOffset;
    std::vector<LumpEntry> entries = std::move(read->Entries);
    for (LumpEntry& entry : entries)
    {
        entry.FileNumber = static_cast<std::int16_t>(slot);
    }

    if (isIwad)
    {
        wad.Game.IwadHasBehavior = false;
        wad.MasterCapacity =
            static_cast<std::size_t>(std::max<std::int16_t>(wad.Options.AdditionalLumpEntries, 0)) +
            4 * entries.size();
        BuildMaster(std::move(entries));
        FinishIwadScan(file);
        EndScanLog();
        return 0;
    }

    file.LumpCount = static_cast<std::int32_t>(entries.size());
    file.Directory.Assign(std::move(entries));
    file.Directory.Reserve(static_cast<std::size_t>(file.LumpCount) + 100);
    NameLevelCompanions(file.Directory);
    MergePwad(slot, warnings);
    EndScanLog();
    return slot;
}

int OpenPwad(const std::string& path, bool closeAfter, bool warnings)
{
    const int number = OpenWad(path, "PWAD", warnings);
    if (number > 0 && closeAfter)
    {
        FileRec& file = Wad().Files[static_cast<std::size_t>(number)];
        file.Stream.reset();
        file.State = 'C';
    }
    if (Wad().Hooks.ResetViewPosition)
    {
        Wad().Hooks.ResetViewPosition();
    }
    return number;
}

std::optional<std::vector<LumpEntry>> ReadWadDirectory(std::FILE* stream, const std::string& path)
{
    std::optional<DirectoryReport> read = ScanDirectory(stream, path, false);
    return read ? std::optional<std::vector<LumpEntry>>(std::move(read->Entries)) : std::nullopt;
}

std::vector<LumpEntry> ReadDirectoryQuietly(std::FILE* stream, std::string* magic)
{
    // As the scan reads it: an IWAD passes over bad entries, any other file stops at the first.
    const bool iwad = WadMagicOf(stream) == std::optional<std::string>("IWAD");
    DirectoryReport read = ReadDirectoryOf(stream, iwad ? BadEntryRule::PassOverBadEntries
                                                        : BadEntryRule::StopAtBadEntry);
    if (magic != nullptr)
    {
        *magic = read.Magic;
    }
    if (read.Problem != HeaderProblem::None && read.Problem != HeaderProblem::DirectoryCut)
    {
        return {};
    }
    return std::move(read.Entries);
}

std::optional<std::string> WadMagicOf(std::FILE* stream)
{
    char magic[4] = {};
    if (std::fseek(stream, 0, SEEK_SET) != 0 || std::fread(magic, 1, 4, stream) != 4)
    {
        return std::nullopt;
    }
    const std::string_view text(magic, 4);
    if (text != "PWAD" && text != "IWAD")
    {
        return std::nullopt;
    }
    return std::string(text);
}

std::optional<LumpName> FirstLevelOfFile(std::FILE* stream, const std::string& path)
{
    const std::optional<std::string> magic = WadMagicOf(stream);
    if (!magic)
    {
        return std::nullopt;
    }
    const std::optional<DirectoryReport> read = ScanDirectory(stream, path, *magic == "IWAD");
    if (!read)
    {
        return std::nullopt;
    }
    const LumpEntry* first = FirstLevel(read->Entries);
    return first != nullptr ? std::optional<LumpName>(first->Name) : std::nullopt;
}

} // namespace kelvar::wad
