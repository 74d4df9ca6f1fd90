// Palette files: the binary .PAC, the JASC text .PAL, and the palette export command.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PaletteFiles.h"

#include "gfx/GamePalette.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/FindLump.h"
#include "wad/WadState.h"

#include <charconv>
#include <cstdio>

namespace kelvar::gfx
{
namespace
{

// The next line of `text` from `at`, without its LF or CR LF; nothing at the end.
std::optional<std::string_view> NextLine(std::string_view text, size_t& at)
{
    if (at >= text.size())
    {
        return std::nullopt;
    }
    size_t end = text.find('\n', at);
    if (end == std::string_view::npos)
    {
        end = text.size();
    }
    std::string_view line = text.substr(at, end - at);
    at = end + 1;
    if (!line.empty() && line.back() == '\r')
    {
        line.remove_suffix(1);
    }
    return line;
}

// Three numbers of 0 to 255 separated by blanks.
std::optional<Rgb> ParseColorLine(std::string_view line)
{
    int values[3] = {};
    const char* at = line.data();
    const char* end = line.data() + line.size();
    for (int& value : values)
    {
        while (at < end && (*at == ' ' || *at == '\t'))
        {
            ++at;
        }
        const auto [next, error] = std::from_chars(at, end, value);
        if (error != std::errc() || value < 0 || value > 255)
        {
            return std::nullopt;
        }
        at = next;
    }
    return Rgb{static_cast<uint8_t>(values[0]), static_cast<uint8_t>(values[1]),
               static_cast<uint8_t>(values[2])};
}

} // namespace

std::optional<Palette> ReadPacBytes(std::span<const uint8_t> bytes)
{
    if (bytes.size() < PaletteBytes)
    {
        return std::nullopt;
    }
    return PaletteFromBytes(bytes);
}

std::string JascPaletteText(const Palette& palette)
{
    std::string text = "JASC-PAL\r\n0100\r\n256\r\n";
    char line[32];
    for (const Rgb& entry : palette)
    {
        std::snprintf(line, sizeof line, "%d %d %d\r\n", entry.red, entry.green, entry.blue);
        text += line;
    }
    return text;
}

std::optional<Palette> ParseJascPalette(std::string_view text)
{
    size_t at = 0;
    const auto magic = NextLine(text, at);
    const auto version = NextLine(text, at);
    const auto count = NextLine(text, at);
    if (magic != "JASC-PAL" || version != "0100" || !count)
    {
        return std::nullopt;
    }
    int entries = 0;
    const auto [end, error] =
        std::from_chars(count->data(), count->data() + count->size(), entries);
    if (error != std::errc() || entries < 1 || entries > 256)
    {
        return std::nullopt;
    }
    Palette palette{};
    for (size_t i = 0; i < static_cast<size_t>(entries); ++i)
    {
        const auto line = NextLine(text, at);
        const auto color = line ? ParseColorLine(*line) : std::nullopt;
        if (!color)
        {
            return std::nullopt;
        }
        palette[i] = *color;
    }
    return palette;
}

std::optional<std::vector<uint8_t>> ReadFileBytes(const std::filesystem::path& path)
{
    const wad::StreamPtr stream = wad::OpenStream(path, "rb");
    if (!stream)
    {
        return std::nullopt;
    }
    std::vector<uint8_t> bytes;
    uint8_t buffer[65536];
    size_t count = 0;
    while ((count = std::fread(buffer, 1, sizeof buffer, stream.get())) > 0)
    {
        bytes.insert(bytes.end(), buffer, buffer + count);
    }
    return bytes;
}

bool WriteFileBytes(const std::filesystem::path& path, std::span<const uint8_t> bytes)
{
    wad::StreamPtr stream = wad::OpenStream(path, "wb");
    if (!stream)
    {
        return false;
    }
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), stream.get()) == bytes.size();
    return std::fclose(stream.release()) == 0 && written;
}

std::optional<Palette> ReadPaletteFile(const std::filesystem::path& path)
{
    const auto bytes = ReadFileBytes(path);
    if (!bytes)
    {
        return std::nullopt;
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    if (text.starts_with("JASC-PAL"))
    {
        return ParseJascPalette(text);
    }
    return ReadPacBytes(*bytes);
}

int ExportPaletteFile()
{
    platform::FileChoice choice;
    choice.Caption = "Export Palette File";
    choice.Filter = "Palette (*.PAL)|*.PAL|";
    choice.InitialPath = "*.PAL";
    choice.ForSaving = true;
    const auto path = platform::TheUi().ChooseFile(choice);
    if (!path)
    {
        return 0;
    }
    // The answer is asked for but not used: the export is always the JASC text.
    (void)platform::ShowMessageLines(
        platform::LinesCancel, "Type of Palette",
        {"Create a PSP JASC file?", "(N creates the binary file used by Kelvar)"});
    const std::optional<wad::LumpEntry> playpal = wad::ReadIwadEntry("PLAYPAL", false);
    std::vector<uint8_t> bytes(PaletteBytes);
    wad::FileRec& iwad = wad::Wad().Files[0];
    if (!playpal || !iwad.Stream || wad::CheckedSeek(iwad.Stream.get(), playpal->Offset) != 1 ||
        std::fread(bytes.data(), 1, bytes.size(), iwad.Stream.get()) != bytes.size())
    {
        platform::ShowError("PLAYPAL not found in %s?", iwad.FileName.c_str());
        return -1;
    }
    const std::string text = JascPaletteText(PaletteFromBytes(bytes));
    if (!WriteFileBytes(*path,
                        std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size())))
    {
        platform::ShowInfo("File Creation Error");
        return -1;
    }
    return 1;
}

} // namespace kelvar::gfx
