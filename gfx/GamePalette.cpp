// The game palette: PLAYPAL loading, gamma, and the state-level matcher.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/GamePalette.h"

#include "platform/Fatal.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

#include <algorithm>

namespace kelvar::gfx
{
namespace
{

PaletteState& State()
{
    static PaletteState state;
    return state;
}

std::optional<wad::LumpEntry> FindMasterEntry(const char* name, bool iwadOnly)
{
    const wad::LumpDirectory& master = wad::Master();
    const std::vector<int32_t> positions = master.Positions(wad::LumpName::From(name));
    for (auto at = positions.rbegin(); at != positions.rend(); ++at)
    {
        const wad::LumpEntry& entry = master[static_cast<size_t>(*at)];
        if (!iwadOnly || entry.FileNumber == 0)
        {
            return entry;
        }
    }
    return std::nullopt;
}

std::FILE* StreamOf(const wad::LumpEntry& entry)
{
    if (entry.FileNumber < 0 || entry.FileNumber >= wad::FileTableSize)
    {
        return nullptr;
    }
    wad::FileRec& file = wad::Wad().Files[static_cast<size_t>(entry.FileNumber)];
    wad::EnsureOpen(file);
    return file.Stream.get();
}

// Up to `size` bytes of a lump from `offset` within it; fewer when the lump or file ends.
std::vector<uint8_t> ReadSpan(std::FILE* stream, const wad::LumpEntry& entry, int64_t offset,
                              int64_t size)
{
    std::vector<uint8_t> bytes;
    const int64_t available = std::min<int64_t>(size, entry.Size - offset);
    if (stream == nullptr || available <= 0 || wad::CheckedSeek(stream, entry.Offset + offset) != 1)
    {
        return bytes;
    }
    bytes.resize(static_cast<size_t>(available));
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), stream));
    return bytes;
}

// Reads PLAYPAL palette by palette up to `paletteNumber`, so the buffer ends with that one
// (or with the last the lump holds).
Palette ReadPlaypal(std::FILE* stream, const wad::LumpEntry& entry, int paletteNumber)
{
    Palette palette{};
    const int count = entry.Size / static_cast<int>(PaletteBytes);
    for (int number = 0; number <= std::max(paletteNumber, 0) && number < count; ++number)
    {
        const std::vector<uint8_t> bytes =
            ReadSpan(stream, entry, number * static_cast<int64_t>(PaletteBytes), PaletteBytes);
        palette = PaletteFromBytes(bytes);
    }
    return palette;
}

// With UsePwadPalette, a PWAD's COLORMAP recolours the working palette through its map 0.
void ApplyPwadColormap(PaletteState& state)
{
    const std::optional<wad::LumpEntry> colormap = FindMasterEntry("COLORMAP", false);
    if (!colormap)
    {
        platform::ShowInfo("Couldn't locate COLORMAP entry?");
        return;
    }
    if (colormap->FileNumber < 1)
    {
        return; // the IWAD's own map 0 is not applied
    }
    const std::vector<uint8_t> map = ReadSpan(StreamOf(*colormap), *colormap, 0, ColormapBytes);
    for (size_t i = 0; i < map.size(); ++i)
    {
        state.GamePalette[i] = state.RawGamePalette[map[i]];
    }
}

// Opens the configured game file for this call when no IWAD is open.
wad::StreamPtr OpenGameFileForCall(std::optional<wad::LumpEntry>& playpal)
{
    const std::string& path = wad::Wad().Options.IwadPath;
    wad::StreamPtr stream = wad::OpenStream(path, "rb");
    if (!stream)
    {
        platform::FatalError("Couldn't open %s", path.c_str());
    }
    for (const wad::LumpEntry& entry : wad::ReadDirectoryQuietly(stream.get(), nullptr))
    {
        if (entry.Name.Is("PLAYPAL"))
        {
            playpal = entry;
        }
    }
    return stream;
}

} // namespace

std::optional<wad::LumpEntry> FindPaletteLump(const char* name, bool iwadOnly)
{
    return FindMasterEntry(name, iwadOnly);
}

std::vector<uint8_t> ReadWholeLump(const wad::LumpEntry& entry)
{
    return ReadSpan(StreamOf(entry), entry, 0, entry.Size);
}

Rgb PaletteOptions::TransparentColor() const
{
    return {static_cast<uint8_t>(std::clamp(TransparentRed, 0, 255)),
            static_cast<uint8_t>(std::clamp(TransparentGreen, 0, 255)),
            static_cast<uint8_t>(std::clamp(TransparentBlue, 0, 255))};
}

PaletteState& Palettes()
{
    return State();
}

void ResetPalettes()
{
    State() = PaletteState{};
}

Palette PaletteFromBytes(std::span<const uint8_t> bytes, size_t number)
{
    Palette palette{};
    const size_t base = number * PaletteBytes;
    for (size_t i = 0; i < 256; ++i)
    {
        const size_t at = base + i * 3;
        if (at + 2 < bytes.size())
        {
            palette[i] = {bytes[at], bytes[at + 1], bytes[at + 2]};
        }
    }
    return palette;
}

std::vector<uint8_t> PaletteToBytes(const Palette& palette)
{
    std::vector<uint8_t> bytes;
    bytes.reserve(PaletteBytes);
    for (const Rgb& entry : palette)
    {
        bytes.insert(bytes.end(), {entry.red, entry.green, entry.blue});
    }
    return bytes;
}

Palette GrayRamp()
{
    Palette palette{};
    for (size_t i = 0; i < 256; ++i)
    {
        const auto level = static_cast<uint8_t>(i);
        palette[i] = {level, level, level};
    }
    return palette;
}

void ApplyPalette(PaletteHandle& handleOut, const Palette& source, Palette& destination, int gamma,
                  int transparentIndex, int red, int green, int blue)
{
    Palette colors = source;
    if (transparentIndex > 0 && transparentIndex < 256)
    {
        colors[static_cast<size_t>(transparentIndex)] = {
            static_cast<uint8_t>(std::clamp(red, 0, 255)),
            static_cast<uint8_t>(std::clamp(green, 0, 255)),
            static_cast<uint8_t>(std::clamp(blue, 0, 255))};
    }
    else if (transparentIndex < 0)
    {
        colors = GrayRamp();
        gamma = 0;
    }
    gamma = std::clamp(gamma, -100, 100);
    const int factor = gamma + 100;
    const auto scale = [factor](uint8_t component)
    { return static_cast<uint8_t>(std::min(component * factor / 100, 255)); };
    for (size_t i = 0; i < 256; ++i)
    {
        Rgb& entry = colors[i];
        // Entry 0 is the game's black when holes have an index of their own: it stays so.
        const bool keep = i == 0 && transparentIndex > 0;
        if (!keep && entry != Rgb{})
        {
            entry = {scale(entry.red), scale(entry.green), scale(entry.blue)};
        }
        State().DisplayColorTable[i] = {entry.blue, entry.green, entry.red, 0};
    }
    destination = colors;
    handleOut = {colors, gamma, true};
}

int LoadGamePalette(int paletteNumber)
{
    PaletteState& state = Palettes();
    const PaletteOptions& options = state.Options;
    const bool iwadOpen = wad::Wad().Files[0].State != 0;
    std::optional<wad::LumpEntry> playpal;
    wad::StreamPtr ownStream;
    std::FILE* stream = nullptr;
    if (iwadOpen)
    {
        playpal = FindMasterEntry("PLAYPAL", !options.UsePwadPalette);
        stream = playpal ? StreamOf(*playpal) : nullptr;
    }
    else
    {
        ownStream = OpenGameFileForCall(playpal);
        stream = ownStream.get();
    }
    if (!playpal)
    {
        const std::string& file =
            iwadOpen ? wad::Wad().Files[0].FileName : wad::Wad().Options.IwadPath;
        platform::ShowError("Couldn't locate palette \"PLAYPAL\" entry");
        platform::ShowError("PLAYPAL not found in %s?", file.c_str());
        return -1;
    }
    state.RawGamePalette = ReadPlaypal(stream, *playpal, paletteNumber);
    state.GamePalette = state.RawGamePalette;
    if (options.UsePwadPalette && iwadOpen)
    {
        ApplyPwadColormap(state);
    }

    const Rgb clear = options.TransparentColor();
    const int index = options.TransparentIndex;
    ApplyPalette(state.ImportPalette, state.GamePalette, state.DisplayPalette, options.ImportGamma,
                 index, clear.red, clear.green, clear.blue);
    ApplyPalette(state.ViewPalette, state.GamePalette, state.DisplayPalette, options.ViewGamma,
                 index, clear.red, clear.green, clear.blue);

    state.GamePalette = state.RawGamePalette;
    if (index > 0 && index < 256)
    {
        state.GamePalette[static_cast<size_t>(index)] = clear;
    }
    state.ActivePalette = state.GamePalette;
    state.Loaded = true;
    return 1;
}

uint8_t MatchColor(int red, int green, int blue)
{
    const PaletteState& state = Palettes();
    if (!state.ActivePalette)
    {
        platform::FatalError("ColorMatch-ActivePalette error");
    }
    return MatchColor(*state.ActivePalette, red, green, blue, state.Options.Margins);
}

void MatchPaletteTable(const Palette& source, const Palette* target, IndexTable& tableOut)
{
    PaletteState& state = Palettes();
    state.ActivePalette = target != nullptr ? *target : state.GamePalette;
    tableOut = MatchPaletteTable(source, *state.ActivePalette, state.Options.Margins);
}

uint8_t FastMatchColor(int red, int green, int blue)
{
    const PaletteState& state = Palettes();
    return FastMatchColor(state.GamePalette, red, green, blue, state.Options.PngMatch);
}

} // namespace kelvar::gfx
