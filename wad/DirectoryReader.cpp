// Reading a WAD's header and directory, reporting problems as values.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/DirectoryReader.h"

#include "wad/WadFormat.h"

#include <algorithm>
#include <cerrno>

namespace kelvar::wad
{
namespace
{

bool ReadAt(std::FILE* stream, std::int64_t offset, void* bytes, std::size_t size)
{
    return fseeko(stream, static_cast<off_t>(offset), SEEK_SET) == 0 &&
           (size == 0 || std::fread(bytes, size, 1, stream) == 1);
}

std::int64_t SizeOf(std::FILE* stream)
{
    if (fseeko(stream, 0, SEEK_END) != 0)
    {
        return -1;
    }
    return static_cast<std::int64_t>(ftello(stream));
}

bool InsideFile(const LumpEntry& entry, std::int64_t fileSize)
{
    return entry.Offset >= 0 && entry.Offset <= fileSize && entry.Size >= 0 &&
           static_cast<std::int64_t>(entry.Offset) + entry.Size <= fileSize;
}

// The header's fields, checked against the file's size.
bool ReadHeaderInto(std::FILE* stream, DirectoryReport& report)
{
    report.FileSize = SizeOf(stream);
    if (report.FileSize < 0)
    {
        report.Problem = HeaderProblem::ReadFailed;
        return false;
    }
    if (report.FileSize < WadHeaderSize)
    {
        std::uint8_t start[4] = {};
        const auto got = static_cast<std::size_t>(report.FileSize);
        if (ReadAt(stream, 0, start, std::min<std::size_t>(got, 4)) && got >= 4)
        {
            report.Magic.assign(reinterpret_cast<const char*>(start), 4);
        }
        report.Problem = HeaderProblem::TooSmall;
        return false;
    }
    std::uint8_t header[WadHeaderSize];
    if (!ReadAt(stream, 0, header, WadHeaderSize))
    {
        report.Problem = HeaderProblem::ReadFailed;
        return false;
    }
    report.Magic.assign(reinterpret_cast<const char*>(header), 4);
    report.LumpCount = ReadLe32(header + 4);
    report.DirectoryOffset = ReadLe32(header + 8);
    if (report.DirectoryOffset < 0 || report.DirectoryOffset > report.FileSize - 4)
    {
        report.Problem = HeaderProblem::BadDirectoryOffset;
        return false;
    }
    if (report.LumpCount < 0)
    {
        report.Problem = HeaderProblem::BadLumpCount;
        return false;
    }
    return true;
}

} // namespace

DirectoryReport ReadDirectoryOf(std::FILE* stream, BadEntryRule rule)
{
    DirectoryReport report;
    if (!ReadHeaderInto(stream, report))
    {
        return report;
    }
    report.Fits = (report.FileSize - report.DirectoryOffset) / DirectoryEntrySize;
    const std::int64_t count = std::min<std::int64_t>(report.LumpCount, report.Fits);
    report.RunsPastEnd = report.LumpCount > report.Fits;
    if (fseeko(stream, report.DirectoryOffset, SEEK_SET) != 0)
    {
        report.Problem = HeaderProblem::DirectoryCut;
        return report;
    }
    report.Entries.reserve(static_cast<std::size_t>(count));
    // A slice at a time into a small buffer, so a big directory costs no second copy of itself.
    constexpr std::size_t Slice = 1024;
    std::uint8_t bytes[Slice * DirectoryEntrySize];
    for (std::size_t first = 0; first < static_cast<std::size_t>(count); first += Slice)
    {
        const std::size_t slice = std::min(Slice, static_cast<std::size_t>(count) - first);
        if (std::fread(bytes, slice * DirectoryEntrySize, 1, stream) != 1)
        {
            report.Problem = HeaderProblem::DirectoryCut;
            return report;
        }
        for (std::size_t i = 0; i < slice; ++i)
        {
            const std::uint8_t* raw = bytes + i * DirectoryEntrySize;
            LumpEntry entry;
            entry.Offset = ReadLe32(raw);
            entry.Size = ReadLe32(raw + 4);
            entry.Name = LumpName::FromBytes(raw + 8);
            if (InsideFile(entry, report.FileSize))
            {
                report.Entries.push_back(entry);
                continue;
            }
            report.BadEntries.push_back(entry);
            if (rule == BadEntryRule::StopAtBadEntry)
            {
                return report;
            }
        }
    }
    return report;
}

} // namespace kelvar::wad
