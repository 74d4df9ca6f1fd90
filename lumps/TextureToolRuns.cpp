// The texture name tools as the editor runs them: conversion, the unused run and its save.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/TextureToolRuns.h"

#include "lumps/TargetList.h"
#include "lumps/TextureConvert.h"
#include "lumps/ToolFiles.h"
#include "platform/Messages.h"
#include "platform/Processes.h"
#include "platform/Ui.h"
#include "wad/FileChecks.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <fstream>
#include <system_error>

namespace kelvar::lumps
{

std::optional<std::filesystem::path> AskCvtFile(const std::filesystem::path& current)
{
    platform::FileChoice choice;
    choice.Caption = "Texture Conversion File";
    choice.Filter = "Texture Conversion files (*.CVT)|*.cvt|";
    choice.InitialPath = DialogFolder(current);
    return platform::TheUi().ChooseFile(choice);
}

std::filesystem::path ProposedConvertOutput(const std::filesystem::path& pwad)
{
    if (pwad.empty())
    {
        return {};
    }
    std::filesystem::path output = pwad;
    output.replace_filename(pwad.stem().string() + "_CVT" + pwad.extension().string());
    return output;
}

std::vector<std::string> PwadLevelNames(const std::filesystem::path& pwad)
{
    std::string magic;
    std::vector<TargetEntry> read;
    if (pwad.empty() || ReadWadEntries(pwad, magic, read) != WadRead::Read)
    {
        return {};
    }
    std::vector<wad::LumpEntry> entries;
    entries.reserve(read.size());
    for (const TargetEntry& entry : read)
    {
        wad::LumpEntry lump;
        lump.Name = entry.Name;
        entries.push_back(lump);
    }
    std::vector<std::string> names;
    for (const LevelLumps& level : LevelsOf(entries))
    {
        names.push_back(entries[level.Span.Marker].Name.Text());
    }
    return names;
}

int RunConvertTool(const TextureToolForm& form)
{
    const ReleasedFiles released({form.Output});
    return ConvertTextures(form.Cvt, form.Pwad, form.Output, form.ListReplacements);
}

int EditCvtFile(const std::filesystem::path& cvt, const std::string& editor)
{
    if (cvt.empty())
    {
        platform::ShowError("** Please select a Texture Conversion File **\n\n");
        return 0;
    }
    std::error_code error;
    if (!std::filesystem::exists(cvt, error))
    {
        std::ofstream out(cvt);
        out << "[TEXTURES]\n\n[FLATS]\n";
        out.close();
        if (!out)
        {
            platform::ShowError("** Failed to Create File **\n\n%s", cvt.c_str());
            return 0;
        }
    }
    platform::ChildRequest request;
    request.Directory = cvt.parent_path();
    request.CommandLine = editor + " \"" + cvt.string() + "\"";
    return platform::TheProcesses().RunChild(request) == platform::ChildDidNotStart ? 0 : 1;
}

int DeletedCount(const UnusedDeletion& deletion)
{
    return deletion.Flats + deletion.Textures + deletion.Patches;
}

int RunUnusedTool(const TextureToolForm& form, std::optional<UnusedDeletion>& pending)
{
    pending.reset();
    UnusedOptions options;
    options.DeleteMode = form.DeleteUnused;
    options.PromptForDeletes = form.PromptForDeletes;
    // The levels of the other files open in the editor use the PWAD's textures as much as its
    // own levels do: what they use is not deleted.
    for (std::size_t i = 1; i < wad::Wad().Files.size(); ++i)
    {
        const wad::FileRec& file = wad::Wad().Files[i];
        if (file.State != 0 && !file.FileName.empty() && !wad::SamePath(file.FileName, form.Pwad))
        {
            options.LevelFiles.emplace_back(file.FileName);
        }
    }
    UnusedDeletion deletion;
    const int shown = ListUnused(form.Pwad, options, &deletion);
    if (shown == 1 && form.DeleteUnused && DeletedCount(deletion) > 0)
    {
        pending = std::move(deletion);
    }
    return shown;
}

int SaveUnusedDeletion(const std::filesystem::path& pwad, const UnusedDeletion& deletion)
{
    bool written = false;
    {
        const ReleasedFiles released({pwad});
        written = wad::RewriteWad(pwad, deletion.Plan);
    }
    if (!written)
    {
        return 0;
    }
    ShowSaveStatus(pwad);
    return 1;
}

} // namespace kelvar::lumps
