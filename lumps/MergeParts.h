// Helpers the files of the merge share: names that get special treatment, reading a span of a
// source file, the notice of a source that can't be read.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lumps/Merge.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::lumps
{

using ByteVector = std::vector<std::uint8_t>;

/// True when both paths are spelled alike or name one file on disk.
bool SameSourceFile(const std::filesystem::path& a, const std::filesystem::path& b);

/// PNAMES, TEXTURE1 or TEXTURE2: merged rather than checked for duplicates.
bool IsTextureLumpName(const wad::LumpName& name);

/// A name an import row may not take: a reserved name (a level's lump or a lone level name)
/// that doesn't begin "GL_". A level row carries its level's name and is never refused here.
bool IsRefusedRowName(const ImportRow& row);

/// `size` bytes at `offset` of `file`; nothing when the file can't be read that far.
std::optional<ByteVector> ReadSpan(const std::filesystem::path& file, std::int64_t offset,
                                   std::int32_t size);

/// The notice for a source that can't be read: "Source File", "Could not access", the path,
/// "Ignored as a new lump".
void ShowSourceNotReadable(const std::filesystem::path& file);

/// The extension of a path in upper case, with its dot (".WAV"); empty when there is none.
std::string UpperExtension(const std::filesystem::path& file);

} // namespace kelvar::lumps
