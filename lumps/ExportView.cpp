// The export dialog's preview and playing of a row, and the labels of its controls.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/ExportView.h"

#include "gfx/Picture.h"
#include "lumps/ExportLump.h"
#include "platform/Format.h"
#include "sound/Playback.h"
#include "sound/SoundFormats.h"
#include "wad/FindLump.h"

#include <algorithm>

namespace kelvar::lumps
{
namespace
{

using gfx::LumpKind;

constexpr std::size_t LongestTextLine = 120;
constexpr std::size_t DumpBytesPerLine = 16;

bool IsTextByte(std::uint8_t byte)
{
    return byte == '\t' || byte == '\n' || byte == '\r' || (byte >= 32 && byte < 127);
}

// Text lumps are often padded with zero bytes at the end; zeros anywhere else mean binary data.
std::size_t TextLength(std::span<const std::uint8_t> bytes)
{
    std::size_t length = bytes.size();
    while (length > 0 && bytes[length - 1] == 0)
    {
        --length;
    }
    const bool text =
        std::all_of(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length), IsTextByte);
    return text && length > 0 ? length : 0;
}

std::vector<std::string> TextLines(std::span<const std::uint8_t> bytes, std::size_t maxLines)
{
    std::vector<std::string> lines(1);
    for (const std::uint8_t byte : bytes)
    {
        if (byte == '\n')
        {
            if (lines.size() == maxLines)
            {
                return lines;
            }
            lines.emplace_back();
            continue;
        }
        std::string& line = lines.back();
        if (byte == '\r' || line.size() >= LongestTextLine)
        {
            continue;
        }
        if (byte == '\t')
        {
            line.append(8 - line.size() % 8, ' ');
            line.resize(std::min(line.size(), LongestTextLine));
        }
        else
        {
            line += static_cast<char>(byte);
        }
    }
    if (lines.back().empty())
    {
        lines.pop_back();
    }
    return lines;
}

std::vector<std::string> HexLines(std::span<const std::uint8_t> bytes, std::size_t maxLines)
{
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < bytes.size() && lines.size() < maxLines; at += DumpBytesPerLine)
    {
        const std::size_t count = std::min(DumpBytesPerLine, bytes.size() - at);
        std::string line = platform::Format("%06X ", static_cast<unsigned>(at));
        std::string shown;
        for (std::size_t i = 0; i < DumpBytesPerLine; ++i)
        {
            if (i < count)
            {
                const std::uint8_t byte = bytes[at + i];
                line += platform::Format(" %02X", static_cast<unsigned>(byte));
                shown += byte >= 32 && byte < 127 ? static_cast<char>(byte) : '.';
            }
            else
            {
                line += "   ";
            }
        }
        lines.push_back(line + "  " + shown);
    }
    return lines;
}

} // namespace

ExportPreview PreviewOf(LumpKind kind)
{
    if (gfx::IsDecodedKind(kind))
    {
        return ExportPreview::Picture;
    }
    switch (kind)
    {
    case LumpKind::Png:
    case LumpKind::Bmp:
    case LumpKind::Jpg:
        return ExportPreview::Image;
    case LumpKind::DoomSound:
    case LumpKind::Wave:
        return ExportPreview::Sound;
    case LumpKind::DoomMus:
    case LumpKind::Midi:
        return ExportPreview::Music;
    case LumpKind::Level:
        return ExportPreview::Level;
    default:
        return ExportPreview::Data;
    }
}

std::string_view GameLogoName(int game)
{
    switch (game)
    {
    case 3:
    case 4:
        return "M_HTIC";
    case 5:
        return "M_STRIFE";
    default:
        return "M_DOOM";
    }
}

std::optional<std::vector<std::uint8_t>> PreviewWave(std::span<const std::uint8_t> lump)
{
    if (sound::IsRiffWave(lump))
    {
        return std::vector<std::uint8_t>(lump.begin(), lump.end());
    }
    if (!sound::IsSnd(lump, sound::ListRateLow))
    {
        return std::nullopt;
    }
    // The same wave playing makes of an SND: its samples behind a 44-byte header.
    const sound::SndHeader header = sound::ReadSndHeader(lump);
    const auto size = static_cast<std::int32_t>(lump.size());
    const std::int32_t count = std::min(header.Count, size - sound::SndHeaderSize);
    const auto wavHeader = sound::MakeWavHeader(size + 36, header.Rate, count);
    std::vector<std::uint8_t> wave(wavHeader.begin(), wavHeader.end());
    const auto samples = lump.subspan(sound::SndHeaderSize, static_cast<std::size_t>(count));
    wave.insert(wave.end(), samples.begin(), samples.end());
    return wave;
}

std::vector<std::string> DataPreviewLines(std::span<const std::uint8_t> bytes, std::size_t maxLines)
{
    if (maxLines == 0)
    {
        return {};
    }
    const std::size_t text = TextLength(bytes);
    return text > 0 ? TextLines(bytes.first(text), maxLines) : HexLines(bytes, maxLines);
}

int PlayExportRow(const ExportRow& row)
{
    const ExportPreview preview = PreviewOf(row.Kind);
    if (preview != ExportPreview::Sound && preview != ExportPreview::Music)
    {
        return sound::PlayRefused;
    }
    const int index = ExportEntryIndex(row.Name.Text(), row.DirectoryIndex);
    if (index < 0)
    {
        return sound::PlayNotFound;
    }
    const std::vector<std::uint8_t> bytes = wad::ReadLumpBytes(index);
    switch (row.Kind)
    {
    case LumpKind::DoomSound:
        return sound::PlaySnd(bytes, nullptr);
    case LumpKind::Wave:
        return sound::PlayWav(bytes, nullptr);
    case LumpKind::DoomMus:
        return sound::PlayMus(bytes);
    default:
        return sound::PlayMidi(bytes);
    }
}

void StopExportPlayback()
{
    sound::StopSound();
    sound::StopMusic();
}

const std::array<ExportButtonLabel, 9>& ExportButtonLabels()
{
    static const std::array<ExportButtonLabel, 9> labels = {{
        {ExportButton::Lmp, "&LMP"},
        {ExportButton::Wad, "&WAD"},
        {ExportButton::Bmp, "&BMP"},
        {ExportButton::Pcx, "&PCX"},
        {ExportButton::Wav, "WA&V"},
        {ExportButton::Mid, "&MID"},
        {ExportButton::Mus, "M&US"},
        {ExportButton::Txt, "&TXT"},
        {ExportButton::Auto, "&AUTO conversion"},
    }};
    return labels;
}

const std::array<ExportFilterLabel, 10>& ExportFilterLabels()
{
    using F = ExportFilters;
    static const std::array<ExportFilterLabel, 10> labels = {{
        {&F::LumpPreview, "Lump P&review"},
        {&F::SortedList, "&Sorted List"},
        {&F::ExternalFilesOnly, "E&xternal Files Only"},
        {&F::Graphics, "&Graphics"},
        {&F::Sounds, "Soun&ds"},
        {&F::MidiMus, "M&idi/Mus"},
        {&F::Flats, "&Flats"},
        {&F::Other, "Ot&her"},
        {&F::Control, "&Control (0)"},
        {&F::Levels, "L&evels"},
    }};
    return labels;
}

} // namespace kelvar::lumps
