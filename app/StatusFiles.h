// Loading and saving the status files, with the messages that go with their refusal.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/StatusRecords.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <string_view>

namespace kelvar::app
{

/// Results of LoadStatus.
inline constexpr int StatusLoaded = 1;
inline constexpr int StatusMissing = 0;
inline constexpr int StatusInvalid = -1;
inline constexpr int StatusOldVersion = -2;

/// Loads the status file `path` of `kind` ("CHK", "PRJ", "CFG", "TCF", "TOL") into `record`,
/// whose size is the record size expected. A relative path is taken from `directory`, or from
/// the program's directory when none is given. The record changes only when the file loads.
/// Returns 1 loaded; 0 missing ("?? File Not Found ??..."); -1 invalid, for another tag;
/// -2 old version, for another version or size or a last word other than 0x6666.
/// `owner` is set for a file the user picked by hand, and chooses the messages of -1 and -2:
/// "...Ignored" and "...You have to delete and recreate to use this name"; without it they
/// speak of deleting KELVAR.CHK, which for KELVAR.CHK itself "Will be reset to new version".
[[nodiscard]] int LoadStatus(bool owner, std::string_view kind, const std::filesystem::path& path,
                             std::span<std::byte> record, std::uint16_t version,
                             const std::filesystem::path& directory = {});

/// Writes `record` whole to the status file `path` (relative to `directory` or the program's
/// directory), replacing it. Returns 1, or 0 after "Save %s Status file open error?..." when
/// the file can't be created, or after the report of a failed write.
[[nodiscard]] int SaveStatus(std::string_view kind, const std::filesystem::path& path,
                             std::span<const std::byte> record,
                             const std::filesystem::path& directory = {});

/// The directory a status file access uses: `directory`, or the program's directory.
std::filesystem::path StatusDirectory(const std::filesystem::path& directory);

/// The Load and Save pair of one kind of record, as LoadStatus and SaveStatus. A save writes
/// the record with its frame and end word put right.
template <typename Record>
[[nodiscard]] int LoadRecord(Record& record, bool owner, const std::filesystem::path& path,
                             const std::filesystem::path& directory = {})
{
    return LoadStatus(owner, Record::Kind, path, std::as_writable_bytes(std::span(&record, 1)),
                      Record::LayoutVersion, directory);
}

template <typename Record>
[[nodiscard]] int SaveRecord(const Record& record, const std::filesystem::path& path,
                             const std::filesystem::path& directory = {})
{
    Record copy = record;
    StampFrame(copy);
    return SaveStatus(Record::Kind, path, std::as_bytes(std::span(&copy, 1)), directory);
}

/// KELVAR.CHK, in the program's directory unless another is given.
[[nodiscard]] int LoadChk(ChkRecord& chk, bool owner, const std::filesystem::path& directory = {});
[[nodiscard]] int SaveChk(const ChkRecord& chk, const std::filesystem::path& directory = {});

/// A project (.PRJ). The saved name ends in .PRJ (see ProjectFileName).
[[nodiscard]] int LoadProject(ProjectRecord& project, bool owner, const std::filesystem::path& path,
                              const std::filesystem::path& directory = {});
[[nodiscard]] int SaveProject(const ProjectRecord& project, const std::filesystem::path& path,
                              const std::filesystem::path& directory = {});

/// A game configuration (.DFG).
[[nodiscard]] int LoadGameConfig(GameConfigRecord& config, bool owner,
                                 const std::filesystem::path& path,
                                 const std::filesystem::path& directory = {});
[[nodiscard]] int SaveGameConfig(const GameConfigRecord& config, const std::filesystem::path& path,
                                 const std::filesystem::path& directory = {});

/// A texture control (.TCF).
[[nodiscard]] int LoadTextureControl(TextureControlRecord& tcf, bool owner,
                                     const std::filesystem::path& path,
                                     const std::filesystem::path& directory = {});
[[nodiscard]] int SaveTextureControl(const TextureControlRecord& tcf,
                                     const std::filesystem::path& path,
                                     const std::filesystem::path& directory = {});

/// A tool file (.TOL).
[[nodiscard]] int LoadToolFile(ToolRecord& tools, bool owner, const std::filesystem::path& path,
                               const std::filesystem::path& directory = {});
[[nodiscard]] int SaveToolFile(const ToolRecord& tools, const std::filesystem::path& path,
                               const std::filesystem::path& directory = {});

/// A project's file name as it is stored: the file's name cut at its first '.' with ".PRJ"
/// put behind it, unless the result would be longer than a record holds (127 characters).
std::filesystem::path ProjectFileName(const std::filesystem::path& name);

} // namespace kelvar::app
