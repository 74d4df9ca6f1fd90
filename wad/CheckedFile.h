// Checked file access: open, read, write, seek and copy that talk to the user on failure.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/WadState.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace kelvar::wad
{

/// Bytes of the buffer CopyFileSpan moves at a time.
inline constexpr std::size_t CopyBufferSize = 128000;

/// Opens `path` with a stdio mode, saying nothing. A directory is refused (errno EISDIR).
/// Returns the stream, or null with errno set.
StreamPtr OpenStream(const std::filesystem::path& path, const std::string& mode);

/// Opens `path` with a stdio mode ("rb", "r+b", "wb", "w+b", "wt"). On failure the user is
/// told why (DiagnoseOpenFailure); a file that exists but can't be opened for writing comes
/// back opened "rb", so a write-protected PWAD can be viewed. With any of the low 15 bits of
/// `fatalFlags` set, a failure ends the program through FatalError("FATAL opening %s").
/// Returns the stream, or null.
StreamPtr CheckedOpen(const std::filesystem::path& path, std::string_view mode, int fatalFlags);

/// Reads exactly `size` bytes. A size below 1 returns 1 at once. Returns 1, or 0 after a
/// short read was reported through IoFailure.
[[nodiscard]] int CheckedRead(std::FILE* stream, void* buffer, std::int64_t size);

/// Writes up to `size` bytes and returns how many went out. Every write of the WAD layer goes
/// through here, so a test can make the disk full (WadState::WriteBudget).
std::size_t WriteBytes(const void* buffer, std::size_t size, std::FILE* stream);

/// Writes exactly `size` bytes; as CheckedRead.
[[nodiscard]] int CheckedWrite(std::FILE* stream, const void* buffer, std::int64_t size);

/// Reads up to `size` bytes, keeps the count in LastReadCount, always returns 1: for reads
/// where a short read is harmless.
int QuietRead(std::FILE* stream, void* buffer, std::int64_t size);

/// Seeks from the start of the file. Returns 1. On failure shows the system's error text,
/// then either reports it (during a backup) or asks whether to quit: yes ends the program,
/// no returns 0.
[[nodiscard]] int CheckedSeek(std::FILE* stream, std::int64_t offset);

/// Reports a transfer whose element count isn't 1: a report during a backup, otherwise the
/// question whether to quit ("I/O error"). `operationWord` is "read", "write", "readC"...
void IoFailure(std::string_view operationWord, std::FILE* stream, std::size_t count,
               std::int64_t size);

/// The size of an open file; the position goes back to where it was (`keepPosition` 1) or
/// to 0. -1 when the seek failed.
std::int64_t FileSize(std::FILE* stream, int keepPosition);

/// The size of a file by name; -1 when it can't be opened.
std::int64_t FileSizeByName(const std::filesystem::path& path);

/// Copies `byteCount` bytes from the current position of `source` to `destination`, a
/// buffer at a time. Returns 1, or 0 after a reported short read or write.
[[nodiscard]] int CopyFileSpan(std::FILE* destination, std::FILE* source, std::int64_t byteCount);

/// Creates `path` and copies `byteCount` bytes of `source` from `offset` into it. Returns 1,
/// or 0 when the file can't be created or the copy failed.
[[nodiscard]] int CopyToNewFile(std::FILE* source, std::int64_t offset, std::int64_t byteCount,
                                const std::filesystem::path& path);

} // namespace kelvar::wad
