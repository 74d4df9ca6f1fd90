// kelvar-cli commands over the status files: status.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/StatusCommands.h"

#include "app/ControlFiles.h"
#include "app/StatusFields.h"
#include "app/StatusFiles.h"
#include "cli/Commands.h"

#include <cstdio>
#include <filesystem>
#include <string_view>

namespace kelvar::cli
{
namespace
{

struct KindInfo
{
    std::string_view Kind;
    std::uint16_t Version;
    std::size_t Size;
};

template <typename Record> constexpr KindInfo InfoOf()
{
    return {Record::Kind, Record::LayoutVersion, Record::RecordSize};
}

constexpr KindInfo Kinds[] = {InfoOf<app::ChkRecord>(), InfoOf<app::ProjectRecord>(),
                              InfoOf<app::GameConfigRecord>(), InfoOf<app::TextureControlRecord>(),
                              InfoOf<app::ToolRecord>()};

// The kind a file's tag names; a file of no known kind is read as KELVAR.CHK, which refuses
// it with the message of an invalid file (or of a missing one).
const KindInfo& KindOfFile(const std::filesystem::path& path)
{
    char tag[4] = {};
    if (std::FILE* file = std::fopen(path.c_str(), "rb"))
    {
        const std::size_t got = std::fread(tag, 1, sizeof tag, file);
        std::fclose(file);
        for (const KindInfo& info : Kinds)
        {
            if (got == sizeof tag && std::string_view(tag + 1, 3) == info.Kind)
            {
                return info;
            }
        }
    }
    return Kinds[0];
}

int ShowStatusFile(const std::filesystem::path& path)
{
    const KindInfo& info = KindOfFile(path);
    std::vector<std::byte> record(info.Size);
    if (app::LoadStatus(true, info.Kind, path, record, info.Version,
                        std::filesystem::current_path()) != app::StatusLoaded)
    {
        return ExitBadFile;
    }
    for (const std::string& line : app::DescribeRecord(app::FieldsOfKind(info.Kind), record))
    {
        std::printf("%s\n", line.c_str());
    }
    return ExitOk;
}

int BuildInto(const std::filesystem::path& directory)
{
    if (app::BuildControlFiles(directory) != 1)
    {
        return ExitBadFile;
    }
    for (const std::string& name : app::ControlFileNames())
    {
        std::printf("%s\n", name.c_str());
    }
    return ExitOk;
}

} // namespace

int StatusCommand(const std::vector<std::string>& arguments)
{
    if (arguments.size() == 2 && arguments[0] == "--build")
    {
        return BuildInto(arguments[1]);
    }
    if (arguments.size() == 1 && arguments[0] != "--build")
    {
        return ShowStatusFile(arguments[0]);
    }
    std::fputs("kelvar-cli: status takes FILE, or --build DIR\n", stderr);
    return ExitUsage;
}

} // namespace kelvar::cli
