// The lump search family: finding a directory entry by name, and peeking into files on disk.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/WadState.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace kelvar::wad
{

// Every search compares 8 characters without regard to case, reopens a closed file (fatal
// when that fails), and with `fatal` set ends the program with
// " Internal Damaged %s file %s not found" instead of returning -1.

/// The newest entry of that name: searched from the last entry to the first.
int FindLump(FileRec& file, std::string_view name, bool fatal);

/// The oldest entry of that name: searched from the first entry to the last.
int FindLumpForward(FileRec& file, std::string_view name, bool fatal);

/// The entry at `index` if it has that name; with `outLayout` also runs LevelAt there.
int FindLumpAt(FileRec& file, std::string_view name, std::size_t index, bool fatal,
               int* outLayout = nullptr, int* outCount = nullptr);

/// As FindLump, then LevelAt on the entry found.
int FindLumpWithLevel(FileRec& file, std::string_view name, bool fatal, int* outLayout,
                      int* outCount);

/// As FindLump, passing over texture pictures (LumpGroup 1).
int FindLumpSkipTextures(FileRec& file, std::string_view name, bool fatal);

/// The newest entry with that ClassCode and LumpGroup; else the newest one from a PWAD;
/// else -1. Tells a patch from a flat of the same name.
int FindLumpByGroup(FileRec& file, std::string_view name, std::uint16_t group,
                    std::uint16_t classCode);

/// The TX and HI texture runs first, then as FindLump.
int FindLumpTextureFirst(FileRec& file, std::string_view name, bool fatal);

/// The entry past the last lump of the level being edited in the master directory: its
/// marker and the entries that belong to it, as LevelAt counts them. A level that lacks a lump
/// ends before the next level's entries, so nothing of that level is taken for its own.
std::size_t CurrentLevelEnd();

/// A lump of the level being edited: the first entry of that name among the level's entries
/// in the master directory (from its marker to CurrentLevelEnd). Not found: -1, or fatal with
/// " Internal Damaged %s file %s not found" when `fatal`.
int FindLevelLump(std::string_view name, bool fatal);

/// Looks a lump up in the IWAD's directory as it stands on disk, for a lump whose master
/// entry has been replaced. Not found: fatal with " Reading Damaged %s file %s not found"
/// when `fatal`, else nothing.
std::optional<LumpEntry> ReadIwadEntry(std::string_view name, bool fatal);

/// The bytes of one master directory entry, read in one block from the file that holds them;
/// empty for -1, an empty lump, or a read that failed (reported as such).
std::vector<std::uint8_t> ReadLumpBytes(int entry);

/// Looks into any file for a lump: -2 it doesn't open, -1 it's not a PWAD, 0 no such lump,
/// 1 found (the newest entry, into `outEntry`).
int PeekPwadEntry(const std::filesystem::path& path, std::string_view name, LumpEntry* outEntry);

} // namespace kelvar::wad
