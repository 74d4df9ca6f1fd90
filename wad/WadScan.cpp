// Opening a WAD: header and directory checks, the IWAD scan with its spare slots.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/WadScan.h"

#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
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

struct WadHeader
{
    std::int32_t LumpCount = 0;
    std::int32_t DirectoryOffset = 0;
};

// Checks the header against the file's size. Returns false after the reason was shown.
bool ReadHeader(std::FILE* stream, const std::string& path, std::int64_t fileSize,
                WadHeader& header)
{
    if (fileSize < WadHeaderSize)
    {
        platform::ShowError("File %s\n\nsize %d is too small", path.c_str(),
                            static_cast<int>(fileSize));
        return false;
    }
    std::uint8_t bytes[WadHeaderSize];
    if (CheckedSeek(stream, 0) != 1 || CheckedRead(stream, bytes, WadHeaderSize) != 1)
    {
        return false;
    }
    header.LumpCount = ReadLe32(bytes + 4);
    header.DirectoryOffset = ReadLe32(bytes + 8);
    if (header.DirectoryOffset < 0 || header.DirectoryOffset > fileSize - 4)
    {
        platform::ShowError("File %s\n\nDir offset=%d is invalid", path.c_str(),
                            header.DirectoryOffset);
        return false;
    }
    if (header.LumpCount < 0)
    {
        platform::ShowError("File %s\n\nLump count=%d is invalid", path.c_str(), header.LumpCount);
        return false;
    }
    return true;
}

// Shows the first bad entry of a scan and logs the later ones.
void ReportBadEntry(const std::string& path, std::int64_t fileSize, const LumpEntry& entry,
                    bool& shown)
{
    const std::string name = entry.Name.Text();
    if (!shown)
    {
        platform::ShowError(
            "File %s size=%d\n\nLump %s\nInvalid: offset=%d size=%d\nIgnored - launch again",
            path.c_str(), static_cast<int>(fileSize), name.c_str(), entry.Offset, entry.Size);
        shown = true;
    }
    else
    {
        LogLine({platform::Format("Lump %s Invalid: offset=%d size=%d Ignored", name.c_str(),
                                  entry.Offset, entry.Size)});
    }
}

// Reads the directory entries that lie inside the file and checks each against the file's
// size. A bad entry stops a PWAD's reading; the IWAD's goes on without it. The first bad
// entry is shown, later ones go to the log, so a wrecked directory is one dialog, not
// thousands.
std::vector<LumpEntry> ReadDirectory(std::FILE* stream, const std::string& path,
                                     std::int64_t fileSize, const WadHeader& header, bool isIwad)
{
    std::int64_t count = header.LumpCount;
    const std::int64_t fits = (fileSize - header.DirectoryOffset) / DirectoryEntrySize;
    if (count > fits)
    {
        platform::ShowError(
            "File %s size=%d\n\nDirectory of %d entries at offset=%d runs past the end\n"
            "Only the first %d entries are read",
            path.c_str(), static_cast<int>(fileSize), header.LumpCount, header.DirectoryOffset,
            static_cast<int>(fits));
        count = fits;
    }
    std::vector<LumpEntry> entries;
    if (CheckedSeek(stream, header.DirectoryOffset) != 1)
    {
        return entries;
    }
    entries.reserve(static_cast<std::size_t>(count));
    // The directory is read a slice at a time into a small buffer, so a big one costs no
    // second copy of itself.
    constexpr std::size_t Slice = 1024;
    std::uint8_t bytes[Slice * DirectoryEntrySize];
    bool shown = false;
    for (std::size_t first = 0; first < static_cast<std::size_t>(count); first += Slice)
    {
        const std::size_t slice = std::min(Slice, static_cast<std::size_t>(count) - first);
        if (CheckedRead(stream, bytes, static_cast<std::int64_t>(slice * DirectoryEntrySize)) != 1)
        {
            return entries;
        }
        for (std::size_t i = 0; i < slice; ++i)
        {
            const std::uint8_t* raw = bytes + i * DirectoryEntrySize;
            LumpEntry entry;
            entry.Offset = ReadLe32(raw);
            entry.Size = ReadLe32(raw + 4);
            entry.Name = LumpName::FromBytes(raw + 8);
            const bool valid = entry.Offset >= 0 && entry.Offset <= fileSize && entry.Size >= 0 &&
                               static_cast<std::int64_t>(entry.Offset) + entry.Size <= fileSize;
            if (valid)
            {
                entries.push_back(entry);
                continue;
            }
            ReportBadEntry(path, fileSize, entry, shown);
            if (!isIwad)
            {
                return entries;
            }
        }
    }
    return entries;
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
    std::FILE* in = file.Stream.get();
    const std::int64_t fileSize = FileSize(in, 0);
    WadHeader header;
    if (!ReadHeader(in, path, fileSize, header))
    {
        file = FileRec{};
        return -1;
    }
    file.DirectoryOffset = header.DirectoryOffset;
    std::vector<LumpEntry> entries = ReadDirectory(in, path, fileSize, header, isIwad);
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
    const std::int64_t fileSize = FileSize(stream, 0);
    WadHeader header;
    if (!ReadHeader(stream, path, fileSize, header))
    {
        return std::nullopt;
    }
    return ReadDirectory(stream, path, fileSize, header, false);
}

std::vector<LumpEntry> ReadDirectoryQuietly(std::FILE* stream, std::string* magic)
{
    std::vector<LumpEntry> entries;
    std::uint8_t header[WadHeaderSize];
    const std::int64_t size = FileSize(stream, 0);
    if (size < WadHeaderSize || std::fread(header, WadHeaderSize, 1, stream) != 1)
    {
        if (magic != nullptr)
        {
            magic->clear();
        }
        return entries;
    }
    if (magic != nullptr)
    {
        magic->assign(reinterpret_cast<const char*>(header), 4);
    }
    const std::int32_t offset = ReadLe32(header + 8);
    if (offset < 0 || offset > size)
    {
        return entries;
    }
    // As in the scan, the header's count is believed only as far as the file holds entries.
    const std::int64_t count =
        std::min<std::int64_t>(ReadLe32(header + 4), (size - offset) / DirectoryEntrySize);
    if (count <= 0)
    {
        return entries;
    }
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(count) * DirectoryEntrySize);
    if (fseeko(stream, offset, SEEK_SET) != 0 ||
        std::fread(bytes.data(), bytes.size(), 1, stream) != 1)
    {
        return entries;
    }
    entries.resize(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        const std::uint8_t* raw = bytes.data() + i * DirectoryEntrySize;
        entries[i].Offset = ReadLe32(raw);
        entries[i].Size = ReadLe32(raw + 4);
        entries[i].Name = LumpName::FromBytes(raw + 8);
    }
    return entries;
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
    const std::int64_t fileSize = FileSize(stream, 0);
    WadHeader header;
    if (!ReadHeader(stream, path, fileSize, header))
    {
        return std::nullopt;
    }
    const std::vector<LumpEntry> entries =
        ReadDirectory(stream, path, fileSize, header, *magic == "IWAD");
    const LumpEntry* first = FirstLevel(entries);
    return first != nullptr ? std::optional<LumpName>(first->Name) : std::nullopt;
}

} // namespace kelvar::wad
