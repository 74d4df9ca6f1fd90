// Files and one-lump PWADs for the lump commands of kelvar-cli: reading and writing whole files,
// finding a lump by name in the loaded files, extensions and lump names.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::cli
{

using Bytes = std::vector<std::uint8_t>;

std::string Lower(std::string text);
std::string Upper(std::string text);

/// The extension of a path in lower case, with its dot (".png"); empty when there is none.
std::string ExtensionOf(const std::string& path);

/// Writes a file afresh; shows "Could not create %s" when it can't be made.
bool WriteFileBytes(const std::filesystem::path& path, const Bytes& bytes);

/// The whole of a file; nothing (after saying so on stderr) when it can't be read.
std::optional<Bytes> ReadFileBytes(const std::filesystem::path& path);

/// Writes a PWAD that holds the one lump `name`.
bool WriteLumpPwad(const std::filesystem::path& path, const std::string& name, const Bytes& data);

/// A lump found by name in the loaded files, with the open stream of its file.
struct FoundLump
{
    std::string Name;
    int Index = -1; // in the master directory
    std::FILE* Stream = nullptr;
    std::int32_t Offset = 0;
    std::int32_t Size = 0;

    Bytes Read() const;
};

/// The newest lump of that name (any case); nothing after " %s - Lump Name not found".
std::optional<FoundLump> FindNamedLump(const std::string& name);

/// Opens the files of `positional` but its last word, and finds the lump that word names.
/// Returns the exit status so far.
int OpenAndFind(const std::vector<std::string>& positional, std::optional<FoundLump>& lump);

} // namespace kelvar::cli
