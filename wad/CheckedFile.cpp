// Checked file access over stdio streams.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/CheckedFile.h"

#include "platform/Fatal.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/FileChecks.h"

#include <cerrno>
#include <new>
#include <sys/stat.h>
#include <vector>

namespace kelvar::wad
{
namespace
{

bool BeginsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

std::int32_t PositionLow32(std::FILE* stream)
{
    const auto position = static_cast<std::int64_t>(ftello(stream));
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(position & 0xFFFFFFFF));
}

} // namespace

StreamPtr OpenStream(const std::filesystem::path& path, const std::string& mode)
{
    StreamPtr stream(std::fopen(path.c_str(), mode.c_str()));
    if (!stream)
    {
        return nullptr;
    }
    // fopen accepts a directory for reading; such a "stream" fails on its first read, so it
    // is refused here as the failed open it really is.
    struct stat info
    {
    };
    if (fstat(fileno(stream.get()), &info) == 0 && S_ISDIR(info.st_mode))
    {
        errno = EISDIR;
        return nullptr;
    }
    return stream;
}

StreamPtr CheckedOpen(const std::filesystem::path& path, std::string_view mode, int fatalFlags)
{
    std::string openMode(mode);
    if (Wad().ReadOnlyOpen && BeginsWith(openMode, "r+"))
    {
        openMode = "rb";
    }
    if (StreamPtr stream = OpenStream(path, openMode))
    {
        return stream;
    }

    const char* reason = openMode[0] != 'w' ? "File not found" : "Unable to create - invalid name?";
    const int diagnosis = DiagnoseOpenFailure(path, openMode);
    if (diagnosis == 0)
    {
        if (openMode[0] == 'r')
        {
            platform::ShowError(
                "   WARNING\n\n%s\n\nfile=%s\n\nEither file does not exist or you should\n"
                "Increase FILES= in CONFIG.SYS (128 min)",
                reason, path.c_str());
        }
        else
        {
            platform::ShowError("   WARNING\n\n%s\n\nfile=%s\n\n", reason, path.c_str());
        }
    }
    else if (BeginsWith(openMode, "r+"))
    {
        if (StreamPtr stream = OpenStream(path, "rb"))
        {
            return stream;
        }
    }

    if ((fatalFlags & 0x7FFF) != 0)
    {
        platform::FatalError("FATAL opening %s", path.c_str());
    }
    return nullptr;
}

int CheckedRead(std::FILE* stream, void* buffer, std::int64_t size)
{
    if (size < 1)
    {
        return 1;
    }
    const std::size_t count = std::fread(buffer, static_cast<std::size_t>(size), 1, stream);
    Wad().LastReadCount = count;
    if (count != 1)
    {
        IoFailure("read", stream, count, size);
        return 0;
    }
    return 1;
}

std::size_t WriteBytes(const void* buffer, std::size_t size, std::FILE* stream)
{
    std::int64_t& budget = Wad().WriteBudget;
    if (budget >= 0 && static_cast<std::int64_t>(size) > budget)
    {
        // The disk is full: what fits goes out, the rest doesn't.
        const std::size_t fits = static_cast<std::size_t>(budget);
        const std::size_t put = std::fwrite(buffer, 1, fits, stream);
        budget = 0;
        errno = ENOSPC;
        return put;
    }
    const std::size_t put = std::fwrite(buffer, 1, size, stream);
    if (budget >= 0)
    {
        budget -= static_cast<std::int64_t>(put);
    }
    return put;
}

int CheckedWrite(std::FILE* stream, const void* buffer, std::int64_t size)
{
    if (size < 1)
    {
        return 1;
    }
    const std::size_t count =
        WriteBytes(buffer, static_cast<std::size_t>(size), stream) == static_cast<std::size_t>(size)
            ? 1
            : 0;
    Wad().LastWriteCount = count;
    if (count != 1)
    {
        IoFailure("write", stream, count, size);
        return 0;
    }
    return 1;
}

int QuietRead(std::FILE* stream, void* buffer, std::int64_t size)
{
    Wad().LastReadCount =
        size < 1 ? 0 : std::fread(buffer, 1, static_cast<std::size_t>(size), stream);
    return 1;
}

int CheckedSeek(std::FILE* stream, std::int64_t offset)
{
    errno = 0;
    Wad().LastSeekResult = fseeko(stream, static_cast<off_t>(offset), SEEK_SET);
    if (Wad().LastSeekResult == 0)
    {
        return 1;
    }
    const int osError = errno != 0 ? errno : EINVAL;
    platform::ShowLastError(osError);
    const int code = WindowsErrorOf(osError);
    const auto at = static_cast<int>(offset);
    if (Wad().BackupInProgress)
    {
        platform::ShowError("Seek errorcode=%d at %d (Backup)", code, at);
        return 0;
    }
    if (platform::AskYesNo(
            "Seek errorcode=%d at %d\n\n!!  Quit now ?  !!\n\nYou'll lose all work in "
            "progress\nOn the other hand, if you continue,\nwhat happens next is "
            "unpredictable!",
            code, at))
    {
        platform::FatalError("User cancelled");
    }
    return 0;
}

void IoFailure(std::string_view operationWord, std::FILE* stream, std::size_t count,
               std::int64_t size)
{
    if (count == 1)
    {
        return;
    }
    const std::string word(operationWord);
    std::string text = platform::Format(" %s error: %d bytes at location %d", word.c_str(),
                                        static_cast<int>(size), PositionLow32(stream));
    if (Wad().BackupInProgress)
    {
        text += " (Backup)";
        platform::ShowMessageLines(0, "I/O error", {text, "Press Enter"});
        return;
    }
    const int answer =
        platform::ShowMessageLines(platform::LinesCancel, "I/O error",
                                   {text, "!! ? Quit now ? !! You'll lose all work in progress",
                                    "If you continue what happens next is unpredictable!",
                                    "(If in OpenPreview - you can continue)"});
    if (answer != 1)
    {
        return;
    }
    if (BeginsWith(word, "w"))
    {
        platform::ShowMessageLines(0, "I/O error",
                                   {"Several options are available to recover your data",
                                    "Select the appropriate choice, also see HELP",
                                    "1. Copy the ~KELVAR.WAD for the last good save",
                                    "2. Copy the yourfile.BAK for the prior version",
                                    "3. Copy the yourfile.BKP for the last optl backup"});
    }
    platform::FatalError("User cancelled");
}

std::int64_t FileSize(std::FILE* stream, int keepPosition)
{
    const off_t position = ftello(stream);
    if (fseeko(stream, 0, SEEK_END) != 0)
    {
        return -1;
    }
    const off_t size = ftello(stream);
    if (fseeko(stream, keepPosition == 1 ? position : 0, SEEK_SET) != 0)
    {
        return -1;
    }
    return static_cast<std::int64_t>(size);
}

std::int64_t FileSizeByName(const std::filesystem::path& path)
{
    StreamPtr stream(std::fopen(path.c_str(), "rb"));
    if (!stream)
    {
        return -1;
    }
    return FileSize(stream.get(), 0);
}

int CopyFileSpan(std::FILE* destination, std::FILE* source, std::int64_t byteCount)
{
    if (byteCount < 1)
    {
        return 1;
    }
    std::size_t bufferSize = byteCount < static_cast<std::int64_t>(CopyBufferSize)
                                 ? static_cast<std::size_t>(byteCount)
                                 : CopyBufferSize;
    std::vector<char> buffer;
    for (;;)
    {
        try
        {
            buffer.resize(bufferSize);
            break;
        }
        catch (const std::bad_alloc&)
        {
            if (bufferSize <= 256)
            {
                platform::FatalError("Unable to allocate memory for file copy?");
            }
            bufferSize /= 2;
        }
    }

    std::int64_t remaining = byteCount;
    while (remaining > 0)
    {
        const std::size_t chunk = remaining < static_cast<std::int64_t>(bufferSize)
                                      ? static_cast<std::size_t>(remaining)
                                      : bufferSize;
        const std::size_t got = std::fread(buffer.data(), 1, chunk, source);
        Wad().LastReadCount = got;
        if (got != chunk)
        {
            IoFailure("readC", source, 0, static_cast<std::int64_t>(chunk));
            return 0;
        }
        const std::size_t put = WriteBytes(buffer.data(), chunk, destination);
        Wad().LastWriteCount = put;
        if (put != chunk)
        {
            IoFailure("writeC", destination, 0, static_cast<std::int64_t>(chunk));
            return 0;
        }
        remaining -= static_cast<std::int64_t>(chunk);
    }
    return 1;
}

int CopyToNewFile(std::FILE* source, std::int64_t offset, std::int64_t byteCount,
                  const std::filesystem::path& path)
{
    StreamPtr target = CheckedOpen(path, "wb", 0);
    if (!target)
    {
        return 0;
    }
    if (CheckedSeek(source, offset) != 1)
    {
        return 0;
    }
    const int copied = CopyFileSpan(target.get(), source, byteCount);
    if (std::fclose(target.release()) != 0)
    {
        IoFailure("write", source, 0, byteCount);
        return 0;
    }
    return copied;
}

} // namespace kelvar::wad
