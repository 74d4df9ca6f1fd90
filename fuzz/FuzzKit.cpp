// The silent Ui, the fatal guard, the scratch folder and the table of fuzz targets.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/FuzzKit.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <system_error>
#include <unistd.h>

namespace kelvar::fuzz
{

int SilentUi::Show(const platform::Message& message)
{
    // FatalError shows this box and then ends the process; leaving by an exception here keeps
    // the process for the next input.
    if (message.Title == "FATAL ERROR")
    {
        throw FatalEnd{};
    }
    return 0;
}

void SilentUi::ShowTextFile(const std::string&, const std::filesystem::path&) {}

std::optional<std::filesystem::path> SilentUi::ChooseFile(const platform::FileChoice&)
{
    return std::nullopt;
}

std::optional<int> SilentUi::ChooseFromList(const std::string&, const std::vector<std::string>&)
{
    return std::nullopt;
}

std::optional<int> SilentUi::AskNumber(const std::string&, const std::string&, int, int, int)
{
    return std::nullopt;
}

std::optional<std::string> SilentUi::AskText(const std::string&, const std::string&,
                                             const std::string&)
{
    return std::nullopt;
}

void SilentUi::SetStatusText(const std::string&) {}

void SilentUi::ShowProgress(const std::string&, const std::string&) {}

void SilentUi::EndProgress() {}

bool SilentUi::PollEscape()
{
    return false;
}

void SilentUi::Beep() {}

bool RunGuarded(FatalRule rule, const std::function<void()>& body)
{
    SilentUi ui;
    platform::ScopedUi scoped(ui);
    try
    {
        body();
        return true;
    }
    catch (const FatalEnd&)
    {
        if (rule == FatalRule::IsAFault)
        {
            std::fprintf(stderr, "fuzz: a reader that must never end the program did\n");
            std::abort();
        }
        return false;
    }
}

namespace
{

struct Scratch
{
    std::filesystem::path Dir;

    Scratch()
    {
        std::error_code error;
        std::filesystem::path base = "/dev/shm";
        if (!std::filesystem::is_directory(base, error))
        {
            base = std::filesystem::temp_directory_path(error);
        }
        std::string pattern = (base / "kelvar-fuzz-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
        {
            std::perror("fuzz: mkdtemp");
            std::abort();
        }
        Dir = pattern;
    }

    ~Scratch()
    {
        std::error_code error;
        std::filesystem::remove_all(Dir, error);
    }

    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
};

constexpr std::array<Target, 9> TargetTable = {{
    {"pictures", FuzzPictures},
    {"picture_files", FuzzPictureFiles},
    {"palette_files", FuzzPaletteFiles},
    {"textures", FuzzTextures},
    {"sounds", FuzzSounds},
    {"music", FuzzMusic},
    {"wad", FuzzWad},
    {"level", FuzzLevel},
    {"lumps", FuzzLumpTools},
}};

} // namespace

const std::filesystem::path& ScratchDir()
{
    static const Scratch scratch;
    return scratch.Dir;
}

std::filesystem::path WriteScratchFile(std::string_view name, std::span<const std::uint8_t> bytes)
{
    const std::filesystem::path path = ScratchDir() / name;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out)
    {
        std::fprintf(stderr, "fuzz: can't write %s\n", path.c_str());
        std::abort();
    }
    return path;
}

std::span<const Target> Targets()
{
    return TargetTable;
}

const Target* FindTarget(std::string_view name)
{
    for (const Target& target : TargetTable)
    {
        if (target.Name == name)
        {
            return &target;
        }
    }
    return nullptr;
}

} // namespace kelvar::fuzz
