// The files the lump tools' windows work on: the file dialogs that choose them, the editor's
// own hold on a file about to be rewritten, and the notice after a file was rewritten in place.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A WAD the editor has open (the IWAD or a PWAD of the file table) may be a tool's target.
//   Its stream is closed while the rewrite renames it to its .BAK and writes the new file,
//   and opened again afterwards, so it reads the new file and not the backup. The directory
//   in memory then no longer fits the file: the window that ran the tool reads the editor's
//   files again.
#pragma once

#include "lumps/Merge.h"
#include "platform/Ui.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::lumps
{

/// True when the editor has `path` open: the project's IWAD or a file of the file table.
bool OpenInEditor(const std::filesystem::path& path);

/// False when `path` is a file a tool may not write over: the IWAD or a file the editor has
/// open, after saying so.
bool TargetIsFree(const std::filesystem::path& path);

/// True when the editor has one of `paths` open.
bool AnyOpenInEditor(const std::vector<std::filesystem::path>& paths);

/// Closes the editor's streams of the files among `paths` for as long as it lives, and opens
/// them again when it goes.
class ReleasedFiles
{
public:
    explicit ReleasedFiles(const std::vector<std::filesystem::path>& paths);
    ~ReleasedFiles();
    ReleasedFiles(const ReleasedFiles&) = delete;
    ReleasedFiles& operator=(const ReleasedFiles&) = delete;

    /// True when one of the files was open in the editor.
    bool Any() const { return !Records.empty(); }

private:
    std::vector<int> Records;
};

/// The folder the tools' file dialogs start in: the folder of `current` when there is one,
/// else the default PWAD folder, else the program's.
std::filesystem::path DialogFolder(const std::filesystem::path& current);

/// The filter of the tools' WAD dialogs.
inline constexpr const char* WadFilter = "WAD files (*.WAD)|*.wad|";

/// An existing WAD chosen in the open dialog `caption`; nothing when cancelled.
std::optional<std::filesystem::path> AskWadFile(const std::string& caption,
                                                const std::filesystem::path& current);

/// A WAD name chosen in the save dialog `caption` (an existing file or a new one); nothing when
/// cancelled.
std::optional<std::filesystem::path> AskNewWadFile(const std::string& caption,
                                                   const std::filesystem::path& current);

/// The file chosen in the save dialog `choice`; nothing when cancelled or when the editor has the
/// file open (after saying so).
std::optional<std::filesystem::path> ChooseFileNotInUse(const platform::FileChoice& choice);

/// The notice after a file was rewritten in place: "Save Status" with "File has been
/// rewritten", "If you made a mistake, this is the original copy" and "Your old file is %s"
/// (its .BAK).
void ShowSaveStatus(const std::filesystem::path& file);

/// The merge's Save (SaveMerge) with the editor's hold on the target released meanwhile. The
/// sources are only read, which an open stream of the editor doesn't hinder. Returns SaveMerge's
/// result.
[[nodiscard]] int SaveMergeReleased(MergeSession& session);

} // namespace kelvar::lumps
