// The import list of the merge: files and WADs made into rows, with their log lines.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/LumpNames.h"
#include "lumps/Merge.h"
#include "lumps/MergeParts.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/LumpDirectory.h"

#include <algorithm>
#include <system_error>

namespace kelvar::lumps
{
namespace
{

// True when a target row or an earlier import row has this name.
bool NameTaken(const MergeSession& session, const wad::LumpName& name, std::size_t rowCount)
{
    if (FindTargetEntry(session.Target, name.Text()))
    {
        return true;
    }
    return std::any_of(session.Imports.begin(),
                       session.Imports.begin() + static_cast<std::ptrdiff_t>(rowCount),
                       [&](const ImportRow& row)
                       { return wad::SameName(wad::LumpName::From(row.LumpName), name); });
}

// The log line of a new row: its number, name, kind and file, and what is wrong with it.
void LogNewRow(MergeSession& session, std::size_t rowIndex)
{
    const ImportRow& row = session.Imports[rowIndex];
    std::string line = platform::Format(" %-5d", static_cast<int>(rowIndex)) +
                       platform::Format(" %-8s %-8s %s", row.LumpName.c_str(), row.TypeName.c_str(),
                                        row.File.c_str());
    const wad::LumpName name = wad::LumpName::From(row.LumpName);
    if (IsRefusedRowName(row))
    {
        line += " ** Reserved Name (please rename) ";
    }
    else if (!IsTextureLumpName(name) && NameTaken(session, name, rowIndex))
    {
        line += session.Options.AllowDuplicates
                    ? " ** Duplicate Name (* warning *) "
                    : " ** Duplicate Name (rename or allow duplicates) ";
    }
    session.Log.push_back(line);
}

// The rows of a WAD: each lump, a level with all its lumps.
std::vector<ImportRow> RowsOfWad(const std::filesystem::path& path,
                                 std::vector<TargetEntry> entries)
{
    BadNames bad;
    for (TargetEntry& entry : entries)
    {
        entry.Name = wad::LumpName::From(bad.Clean(entry.Name.Text()));
    }
    if (bad.Any())
    {
        platform::ShowMessageLines(platform::LinesInfo, "Lump Names",
                                   {"This file has invalid Lump names",
                                    "The names were made into names BADxx",
                                    "If you save, these new names are used"});
    }
    TargetList scratch;
    scratch.Entries = std::move(entries);
    std::vector<ImportRow> rows;
    for (const TargetRow& span : TargetRows(scratch))
    {
        ImportRow row;
        row.File = path;
        row.FromWad = true;
        row.LevelLayout = span.Layout;
        row.LumpName = scratch.Entries[span.First].Name.Text();
        row.TypeName =
            span.Layout != 0
                ? std::string(gfx::KindName(gfx::LumpKind::Level, static_cast<int>(span.Count)))
                : "PWAD";
        const auto first = scratch.Entries.begin() + static_cast<std::ptrdiff_t>(span.First);
        row.Entries.assign(first, first + static_cast<std::ptrdiff_t>(span.Count));
        rows.push_back(std::move(row));
    }
    return rows;
}

// The one row of a file that is not a WAD.
ImportRow RowOfFile(const std::filesystem::path& path, std::int64_t size, gfx::LumpKind kind)
{
    ImportRow row;
    row.File = path;
    row.LumpName = wad::UpperText(path.stem().string().substr(0, 8));
    row.TypeName = std::string(gfx::KindName(kind));
    TargetEntry entry;
    entry.Name = wad::LumpName::From(row.LumpName);
    entry.Size = static_cast<std::int32_t>(size);
    row.Entries.push_back(entry);
    return row;
}

// Reads what kind of file `path` is; nothing after the notice when it can't be read.
std::optional<gfx::LumpKind> KindOfFile(const std::filesystem::path& path, std::int64_t& size)
{
    const wad::StreamPtr in = wad::OpenStream(path, "rb");
    size = in ? wad::FileSize(in.get(), 0) : -1;
    if (!in || size < 0 || size > INT32_MAX)
    {
        ShowSourceNotReadable(path);
        return std::nullopt;
    }
    // A file that says it is a WAD is taken as one, even when its directory offset lies past
    // its end: such a file is refused as damaged, never imported as one lump.
    std::uint8_t magic[4] = {};
    const bool saysWad =
        size >= 4 && std::fread(magic, 4, 1, in.get()) == 1 &&
        (std::equal(magic, magic + 4, "PWAD") || std::equal(magic, magic + 4, "IWAD"));
    if (saysWad)
    {
        return gfx::LumpKind::Pwad;
    }
    return gfx::ClassifyLumpData(in.get(), 0, size, nullptr).Kind;
}

} // namespace

bool SameSourceFile(const std::filesystem::path& a, const std::filesystem::path& b)
{
    std::error_code error;
    return a == b || std::filesystem::equivalent(a, b, error);
}

bool IsTextureLumpName(const wad::LumpName& name)
{
    return name.Is("PNAMES") || name.Is("TEXTURE1") || name.Is("TEXTURE2");
}

bool IsRefusedRowName(const ImportRow& row)
{
    const wad::LumpName name = wad::LumpName::From(row.LumpName);
    return row.LevelLayout == 0 && wad::ReservedName(name) != 0 && !name.StartsWith("GL_");
}

std::optional<ByteVector> ReadSpan(const std::filesystem::path& file, std::int64_t offset,
                                   std::int32_t size)
{
    const wad::StreamPtr in = wad::OpenStream(file, "rb");
    ByteVector bytes(static_cast<std::size_t>(std::max(size, 0)));
    if (!in || fseeko(in.get(), static_cast<off_t>(offset), SEEK_SET) != 0 ||
        (!bytes.empty() && std::fread(bytes.data(), bytes.size(), 1, in.get()) != 1))
    {
        return std::nullopt;
    }
    return bytes;
}

void ShowSourceNotReadable(const std::filesystem::path& file)
{
    platform::ShowMessageLines(platform::LinesInfo, "Source File",
                               {"Could not access", file.string(), "Ignored as a new lump"});
}

std::string UpperExtension(const std::filesystem::path& file)
{
    return wad::UpperText(file.extension().string());
}

int OpenMergeTarget(MergeSession& session, const std::filesystem::path& file)
{
    session.Selected = -1;
    return ReadTargetFile(file, true, session.Target);
}

int AddInputFile(MergeSession& session, const std::filesystem::path& path)
{
    const bool listed =
        std::any_of(session.Imports.begin(), session.Imports.end(),
                    [&](const ImportRow& row) { return SameSourceFile(row.File, path); });
    if (listed)
    {
        platform::ShowInfo("This File is a Duplicate\n\n%s\n\nand is ignored", path.c_str());
        session.Log.push_back("** Duplicate File ignored ** " + path.string());
        return 0;
    }
    std::int64_t size = 0;
    const std::optional<gfx::LumpKind> kind = KindOfFile(path, size);
    if (!kind)
    {
        return 0;
    }
    std::vector<ImportRow> rows;
    if (*kind == gfx::LumpKind::Pwad)
    {
        std::string magic;
        std::vector<TargetEntry> entries;
        if (ReadWadEntries(path, magic, entries) != WadRead::Read)
        {
            platform::ShowMessageLines(platform::LinesInfo, "Source File",
                                       {"Damaged WAD directory", path.string(), "File ignored"});
            return 0;
        }
        platform::TheUi().ShowProgress(
            platform::Format("Processing %d entries", static_cast<int>(entries.size())),
            path.string());
        rows = RowsOfWad(path, std::move(entries));
        platform::TheUi().EndProgress();
    }
    else
    {
        rows.push_back(RowOfFile(path, size, *kind));
    }
    for (ImportRow& row : rows)
    {
        session.Imports.push_back(std::move(row));
        LogNewRow(session, session.Imports.size() - 1);
    }
    return static_cast<int>(rows.size());
}

} // namespace kelvar::lumps
