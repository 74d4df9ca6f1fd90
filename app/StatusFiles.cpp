// Loading and saving the status files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/StatusFiles.h"

#include "app/StatusDefaults.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/WadState.h"

#include <cstring>
#include <vector>

namespace kelvar::app
{
namespace
{

std::filesystem::path Resolve(const std::filesystem::path& path,
                              const std::filesystem::path& directory)
{
    return path.is_relative() ? StatusDirectory(directory) / path : path;
}

// Reads the file's frame and end word and tells which result they give.
int CheckFrame(std::FILE* stream, std::string_view kind, std::size_t size, std::uint16_t version)
{
    StatusFrame frame{};
    const std::size_t got = std::fread(&frame, 1, sizeof frame, stream);
    if (got < sizeof frame.Tag || std::string_view(frame.Tag + 1, 3) != kind)
    {
        return StatusInvalid;
    }
    // A file of the right kind cut short, by a full disk say, counts as old: the user is then
    // offered to build the control files anew.
    if (got < sizeof frame || frame.Version != version || frame.Size != size)
    {
        return StatusOldVersion;
    }
    std::uint16_t endWord = 0;
    const auto endOffset = static_cast<off_t>(size - sizeof endWord);
    if (fseeko(stream, endOffset, SEEK_SET) != 0 ||
        std::fread(&endWord, sizeof endWord, 1, stream) != 1 || endWord != EndMark)
    {
        return StatusOldVersion;
    }
    return StatusLoaded;
}

void ReportRefusal(int result, bool owner, std::string_view kind, const std::string& name)
{
    if (result == StatusInvalid)
    {
        if (owner)
        {
            platform::ShowError("?? Invalid File, not for Kelvar ??\n\n%s\n\nIgnored",
                                name.c_str());
        }
        else
        {
            platform::ShowError(
                "?? Invalid File, not for Kelvar ??\n\n%s\n\nVERIFY and Delete KELVAR.CHK file "
                "to fix",
                name.c_str());
        }
    }
    else if (owner)
    {
        platform::ShowError(
            "!! File is Old Version !!\n\n%s\n\nYou have to delete and recreate to use this name",
            name.c_str());
    }
    else if (kind == ChkRecord::Kind)
    {
        platform::ShowError("!! File is Old Version !!\n\n%s\n\nWill be reset to new version\n\n"
                            "You may need to reset the PROJECT\n\nIf anything goes wrong delete "
                            "Kelvar.CHK",
                            name.c_str());
    }
    else
    {
        platform::ShowError("!! File is Old Version !!\n\n%s\n\nDelete KELVAR.CHK file to fix",
                            name.c_str());
    }
}

} // namespace

std::filesystem::path StatusDirectory(const std::filesystem::path& directory)
{
    return directory.empty() ? wad::Wad().ProgramDir : directory;
}

int LoadStatus(bool owner, std::string_view kind, const std::filesystem::path& path,
               std::span<std::byte> record, std::uint16_t version,
               const std::filesystem::path& directory)
{
    const std::string name = path.string();
    // Only read here: a write-protected status file still loads, and its save reports.
    wad::StreamPtr stream(std::fopen(Resolve(path, directory).c_str(), "rb"));
    if (!stream)
    {
        platform::ShowError(
            "?? File Not Found ??\n\n%s\n\nDelete KELVAR.CHK to recreate control files",
            name.c_str());
        return StatusMissing;
    }
    int result = CheckFrame(stream.get(), kind, record.size(), version);
    if (result == StatusLoaded)
    {
        // Read aside first, so that a failure leaves the record as it was.
        std::vector<std::byte> image(record.size());
        if (fseeko(stream.get(), 0, SEEK_SET) == 0 &&
            std::fread(image.data(), image.size(), 1, stream.get()) == 1)
        {
            std::memcpy(record.data(), image.data(), image.size());
            return StatusLoaded;
        }
        result = StatusOldVersion;
    }
    ReportRefusal(result, owner, kind, name);
    return result;
}

int SaveStatus(std::string_view kind, const std::filesystem::path& path,
               std::span<const std::byte> record, const std::filesystem::path& directory)
{
    const std::filesystem::path folder = StatusDirectory(directory);
    wad::StreamPtr stream(std::fopen(Resolve(path, directory).c_str(), "w+b"));
    if (!stream)
    {
        const std::string tag(kind);
        platform::ShowError("Save %s Status file open error?\n\nfile=%s\n\nCurrent dir=%s",
                            tag.c_str(), path.c_str(), folder.c_str());
        return 0;
    }
    const auto size = static_cast<std::int64_t>(record.size());
    if (wad::CheckedWrite(stream.get(), record.data(), size) != 1)
    {
        return 0;
    }
    // The block sits in the stream's buffer until here, where a full disk shows.
    if (std::fflush(stream.get()) != 0)
    {
        wad::IoFailure("write", stream.get(), 0, size);
        return 0;
    }
    return 1;
}

int LoadChk(ChkRecord& chk, bool owner, const std::filesystem::path& directory)
{
    return LoadRecord(chk, owner, ChkFileName, directory);
}

int SaveChk(const ChkRecord& chk, const std::filesystem::path& directory)
{
    return SaveRecord(chk, ChkFileName, directory);
}

int LoadProject(ProjectRecord& project, bool owner, const std::filesystem::path& path,
                const std::filesystem::path& directory)
{
    return LoadRecord(project, owner, path, directory);
}

int SaveProject(const ProjectRecord& project, const std::filesystem::path& path,
                const std::filesystem::path& directory)
{
    return SaveRecord(project, ProjectFileName(path), directory);
}

int LoadGameConfig(GameConfigRecord& config, bool owner, const std::filesystem::path& path,
                   const std::filesystem::path& directory)
{
    return LoadRecord(config, owner, path, directory);
}

int SaveGameConfig(const GameConfigRecord& config, const std::filesystem::path& path,
                   const std::filesystem::path& directory)
{
    return SaveRecord(config, path, directory);
}

int LoadTextureControl(TextureControlRecord& tcf, bool owner, const std::filesystem::path& path,
                       const std::filesystem::path& directory)
{
    return LoadRecord(tcf, owner, path, directory);
}

int SaveTextureControl(const TextureControlRecord& tcf, const std::filesystem::path& path,
                       const std::filesystem::path& directory)
{
    return SaveRecord(tcf, path, directory);
}

int LoadToolFile(ToolRecord& tools, bool owner, const std::filesystem::path& path,
                 const std::filesystem::path& directory)
{
    return LoadRecord(tools, owner, path, directory);
}

int SaveToolFile(const ToolRecord& tools, const std::filesystem::path& path,
                 const std::filesystem::path& directory)
{
    return SaveRecord(tools, path, directory);
}

std::filesystem::path ProjectFileName(const std::filesystem::path& name)
{
    // Only the file's own name is cut: folders may have dots in their names (~/.config).
    const std::string file = name.filename().string();
    std::filesystem::path named = name;
    named.replace_filename(file.substr(0, file.find('.')) + ".PRJ");
    return named.string().size() <= wad::MaxRecordPathLength ? named : name;
}

} // namespace kelvar::app
