// The files the lump tools' windows work on: file dialogs, the editor's hold released, notices.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/ToolFiles.h"

#include "platform/Messages.h"
#include "platform/Ui.h"
#include "wad/FileChecks.h"
#include "wad/FileTable.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <algorithm>
#include <system_error>

namespace kelvar::lumps
{

bool OpenInEditor(const std::filesystem::path& path)
{
    std::string text = path.string();
    return !text.empty() && wad::FileInUse(text, false, false) != 0;
}

bool TargetIsFree(const std::filesystem::path& path)
{
    std::string text = path.string();
    return wad::FileInUse(text, true, false) == 0;
}

bool AnyOpenInEditor(const std::vector<std::filesystem::path>& paths)
{
    return std::any_of(paths.begin(), paths.end(),
                       [](const std::filesystem::path& path) { return OpenInEditor(path); });
}

ReleasedFiles::ReleasedFiles(const std::vector<std::filesystem::path>& paths)
{
    wad::WadState& state = wad::Wad();
    for (int i = 0; i < wad::FileTableSize; ++i)
    {
        wad::FileRec& file = state.Files[static_cast<std::size_t>(i)];
        if (file.State != 'O' || file.FileName.empty())
        {
            continue;
        }
        const bool named =
            std::any_of(paths.begin(), paths.end(),
                        [&file](const std::filesystem::path& path)
                        { return !path.empty() && wad::SamePath(path, file.FileName); });
        if (named)
        {
            file.Stream.reset();
            file.State = 'C';
            Records.push_back(i);
        }
    }
}

ReleasedFiles::~ReleasedFiles()
{
    for (const int record : Records)
    {
        wad::EnsureOpen(wad::Wad().Files[static_cast<std::size_t>(record)]);
    }
}

std::filesystem::path DialogFolder(const std::filesystem::path& current)
{
    std::error_code error;
    if (!current.empty() && std::filesystem::is_directory(current.parent_path(), error))
    {
        return current.parent_path();
    }
    const wad::WadState& state = wad::Wad();
    return state.Options.DefaultPwadDir.empty() ? state.ProgramDir : state.Options.DefaultPwadDir;
}

namespace
{

// The tools' WAD dialog, starting in the folder of `current`.
std::optional<std::filesystem::path> ChooseWad(const std::string& caption,
                                               const std::filesystem::path& current, bool forSaving)
{
    platform::FileChoice choice;
    choice.Caption = caption;
    choice.Filter = WadFilter;
    choice.InitialPath = DialogFolder(current);
    choice.ForSaving = forSaving;
    return platform::TheUi().ChooseFile(choice);
}

} // namespace

std::optional<std::filesystem::path> AskWadFile(const std::string& caption,
                                                const std::filesystem::path& current)
{
    return ChooseWad(caption, current, false);
}

std::optional<std::filesystem::path> AskNewWadFile(const std::string& caption,
                                                   const std::filesystem::path& current)
{
    return ChooseWad(caption, current, true);
}

std::optional<std::filesystem::path> ChooseFileNotInUse(const platform::FileChoice& choice)
{
    const std::optional<std::filesystem::path> picked = platform::TheUi().ChooseFile(choice);
    if (!picked || picked->empty())
    {
        return std::nullopt;
    }
    std::string path = picked->string();
    if (wad::FileInUse(path, true, true) != 0)
    {
        return std::nullopt;
    }
    return *picked;
}

void ShowSaveStatus(const std::filesystem::path& file)
{
    platform::ShowMessageLines(platform::LinesInfo, "Save Status",
                               {"File has been rewritten",
                                "If you made a mistake, this is the original copy",
                                "Your old file is " + wad::BakPathOf(file).string()});
}

int SaveMergeReleased(MergeSession& session)
{
    const ReleasedFiles released({session.Target.File});
    return SaveMerge(session);
}

} // namespace kelvar::lumps
