// The palette and COLORMAP editor's core: loading the lumps, editing, building maps.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PaletteEditor.h"

#include "gfx/BmpFile.h"
#include "gfx/Colormap.h"
#include "gfx/GamePalette.h"
#include "gfx/PaletteFiles.h"
#include "gfx/PcxFile.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/ErrorLog.h"
#include "wad/WadState.h"

#include <algorithm>

namespace kelvar::gfx
{
namespace
{

uint8_t Clamp(int value)
{
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

int Gray(const Rgb& entry)
{
    // Luma weights in integers: 0.299, 0.587, 0.114.
    return (entry.red * 299 + entry.green * 587 + entry.blue * 114 + 500) / 1000;
}

// The selection as [first, last], or all 256 entries with AllColors.
std::pair<int, int> Range(const PaletteEditorState& state)
{
    if (state.AllColors)
    {
        return {0, 255};
    }
    const int first = std::clamp(std::min(state.First, state.Last), 0, 255);
    const int last = std::clamp(std::max(state.First, state.Last), 0, 255);
    return {first, last};
}

int PaletteCount(const PaletteEditorState& state)
{
    return static_cast<int>(state.Playpal.size() / PaletteBytes);
}

void StorePalette(PaletteEditorState& state, int number, const Palette& palette)
{
    const std::vector<uint8_t> bytes = PaletteToBytes(palette);
    const size_t at = static_cast<size_t>(number) * PaletteBytes;
    if (number >= 0 && at + PaletteBytes <= state.Playpal.size())
    {
        std::copy(bytes.begin(), bytes.end(),
                  state.Playpal.begin() + static_cast<std::ptrdiff_t>(at));
    }
}

bool ShowSetRange()
{
    platform::ShowMessageLines(
        0, "Set Range",
        {"Select a Starting Color and Ending Color Index", "There must be at least 3 entries",
         "Press the Shift Key+left Mouse button to select a range.", "Or Shift+Cursor keys"});
    return false;
}

Rgb Adjusted(const Rgb& entry, const ColorAdjustment& change, bool percent)
{
    const auto shift = [percent](int component, int amount)
    { return Clamp(percent ? component * (100 + amount) / 100 : component + amount); };
    return {shift(shift(entry.red, change.Red), change.Gamma),
            shift(shift(entry.green, change.Green), change.Gamma),
            shift(shift(entry.blue, change.Blue), change.Gamma)};
}

// Reads the newest lump of `name` (the IWAD's in IWAD palette mode) into `bytes`.
bool ReadEditorLump(const PaletteEditorState& state, const char* name, std::vector<uint8_t>& bytes,
                    int& fileNumber)
{
    const auto entry = FindPaletteLump(name, state.IwadPalette);
    if (!entry)
    {
        return false;
    }
    bytes = ReadWholeLump(*entry);
    fileNumber = entry->FileNumber;
    return true;
}

bool Outside(int number, int highest)
{
    return number < 0 || number > highest;
}

// Yes in Get Palette from BMP: map 0 translates the picture's palette to the game's, and the
// game colours the picture lacks are listed.
void MatchToGamePalette(PaletteEditorState& state, const Palette& picture, const Palette& base)
{
    SetColormapMap(state.Colormap, 0, MatchPaletteTable(picture, base, state.Margins));
    (void)wad::OpenErrorLog();
    wad::Wad().Log.Lines = -1;
    wad::LogLine({"       \n============ List of Colors not matched============\n\n"});
    bool allFound = true;
    for (size_t i = 0; i < 256; ++i)
    {
        if (std::find(picture.begin(), picture.end(), base[i]) == picture.end())
        {
            allFound = false;
            wad::LogLine({platform::Format(
                "No match: Color index=%3d, RGB=%3hd,%3hd,%3hd in image palette",
                static_cast<int>(i), static_cast<short>(base[i].red),
                static_cast<short>(base[i].green), static_cast<short>(base[i].blue))});
        }
    }
    if (allFound)
    {
        wad::LogLine({"All Colors successfully translated"});
    }
    wad::ShowErrorLog("Palette Conversion Results");
}

void ResetColormapsIfAsked(PaletteEditorState& state)
{
    if (platform::ShowMessageLines(platform::LinesCancel, "Reset Colormaps",
                                   {"Reset Colormaps?"}) == 1)
    {
        for (int m = 0; m < BuiltColormaps; ++m)
        {
            SetColormapMap(state.Colormap, m, IdentityTable());
        }
    }
}

} // namespace

int LoadPalette(PaletteEditorState& state, int paletteNumber)
{
    if (!ReadEditorLump(state, "PLAYPAL", state.Playpal, state.PlaypalFile))
    {
        platform::ShowError("No PLAYPAL found ?");
        return 0;
    }
    if (state.Playpal.size() < PaletteBytes)
    {
        platform::ShowError("PLAYPAL size is too small=%d", static_cast<int>(state.Playpal.size()));
        return 0;
    }
    // A number past the lump's last palette is lowered to it, and the user is told.
    const int highest = PaletteCount(state) - 1;
    if (Outside(paletteNumber, highest))
    {
        platform::ShowError("Invalid PLAYPAL number=%hd", static_cast<short>(paletteNumber));
    }
    state.PaletteNumber = std::clamp(paletteNumber, 0, highest);
    RefreshEditedPalette(state);
    return 1;
}

int LoadColormap(PaletteEditorState& state, int mapNumber)
{
    if (!ReadEditorLump(state, "COLORMAP", state.Colormap, state.ColormapFile))
    {
        platform::ShowError("No COLORMAP found?");
        return 0;
    }
    const int highest = static_cast<int>(state.Colormap.size() / ColormapBytes) - 1;
    if (Outside(mapNumber, highest))
    {
        platform::ShowError("Invalid COLORMAP number=%hd", static_cast<short>(mapNumber));
    }
    state.MapNumber = std::clamp(mapNumber, 0, std::max(highest, 0));
    RefreshEditedPalette(state);
    return 1;
}

Palette LumpPalette(const PaletteEditorState& state, int number)
{
    return PaletteFromBytes(state.Playpal, static_cast<size_t>(std::max(number, 0)));
}

void RefreshEditedPalette(PaletteEditorState& state)
{
    const Palette palette = LumpPalette(state, state.PaletteNumber);
    state.EditedPalette = palette;
    if (state.ProcessColormap)
    {
        const IndexTable map = ColormapMap(state.Colormap, state.MapNumber);
        for (size_t i = 0; i < 256; ++i)
        {
            state.EditedPalette[i] = palette[map[i]];
        }
    }
}

void ApplyEditedPalette(PaletteEditorState& state)
{
    StorePalette(state, state.PaletteNumber, state.EditedPalette);
}

void SetSingleColor(PaletteEditorState& state, int index, Rgb color)
{
    state.EditedPalette[static_cast<size_t>(std::clamp(index, 0, 255))] = color;
}

void SetColormapValue(PaletteEditorState& state, int index, uint8_t value)
{
    IndexTable map = ColormapMap(state.Colormap, state.MapNumber);
    map[static_cast<size_t>(std::clamp(index, 0, 255))] = value;
    SetColormapMap(state.Colormap, state.MapNumber, map);
    RefreshEditedPalette(state);
}

int GradientColors(PaletteEditorState& state, Rgb begin, Rgb end)
{
    const auto [first, last] = Range(state);
    const int steps = last - first;
    if (steps < 2)
    {
        return ShowSetRange() ? 1 : 0;
    }
    const auto ramp = [steps](int from, int to, int k)
    { return Clamp(from + (to - from) * k / steps); };
    for (int k = 0; k <= steps; ++k)
    {
        state.EditedPalette[static_cast<size_t>(first + k)] = {ramp(begin.red, end.red, k),
                                                               ramp(begin.green, end.green, k),
                                                               ramp(begin.blue, end.blue, k)};
    }
    return 1;
}

int GradientColormap(PaletteEditorState& state, int begin, int end)
{
    const auto [first, last] = Range(state);
    const int steps = last - first;
    if (steps < 2)
    {
        return ShowSetRange() ? 1 : 0;
    }
    IndexTable map = ColormapMap(state.Colormap, state.MapNumber);
    for (int k = 0; k <= steps; ++k)
    {
        map[static_cast<size_t>(first + k)] = Clamp(begin + (end - begin) * k / steps);
    }
    SetColormapMap(state.Colormap, state.MapNumber, map);
    RefreshEditedPalette(state);
    return 1;
}

void AdjustColors(PaletteEditorState& state, const ColorAdjustment& adjustment)
{
    const auto [first, last] = Range(state);
    // Copied into the lambda by name: clang 14 can't capture structured bindings.
    const auto adjust = [&, first = first, last = last](Palette& palette)
    {
        for (int i = first; i <= last; ++i)
        {
            Rgb& entry = palette[static_cast<size_t>(i)];
            entry = Adjusted(entry, adjustment, state.PercentChange);
        }
    };
    if (!state.AllPalettes)
    {
        adjust(state.EditedPalette);
        return;
    }
    for (int number = 0; number < PaletteCount(state); ++number)
    {
        Palette palette = LumpPalette(state, number);
        adjust(palette);
        StorePalette(state, number, palette);
    }
    RefreshEditedPalette(state);
}

void MakeGrayscaleColormap(PaletteEditorState& state)
{
    SetColormapMap(state.Colormap, state.MapNumber,
                   GrayscaleColormap(LumpPalette(state, state.PaletteNumber), state.Margins));
    RefreshEditedPalette(state);
}

void MakeGrayscalePaletteDoom(PaletteEditorState& state)
{
    for (Rgb& entry : state.EditedPalette)
    {
        const uint8_t level = Clamp(Gray(entry));
        entry = {level, level, level};
    }
}

void MakeGrayscalePaletteStandard(PaletteEditorState& state)
{
    state.EditedPalette = GrayRamp();
}

void CreateColormapsFromDisplay(PaletteEditorState& state, const Palette& display)
{
    const Palette base = LumpPalette(state, 0);
    CreateColormaps(state.Colormap, base, display, base, state.Margins);
    RefreshEditedPalette(state);
}

std::vector<std::string> DuplicateColorLines(const Palette& palette)
{
    std::vector<std::string> lines;
    for (size_t j = 1; j < 256; ++j)
    {
        const auto earlier = std::find(
            palette.begin(), palette.begin() + static_cast<std::ptrdiff_t>(j), palette[j]);
        if (earlier != palette.begin() + static_cast<std::ptrdiff_t>(j))
        {
            const Rgb& c = palette[j];
            lines.push_back(platform::Format("Duplicate Color index=%3d =%3d RGB=%3hd,%3hd,%3hd",
                                             static_cast<int>(earlier - palette.begin()),
                                             static_cast<int>(j), static_cast<short>(c.red),
                                             static_cast<short>(c.green),
                                             static_cast<short>(c.blue)));
        }
    }
    if (lines.empty())
    {
        lines.emplace_back("No duplicate Colors");
    }
    return lines;
}

void ListDuplicateColors(const PaletteEditorState& state)
{
    (void)wad::OpenErrorLog();
    wad::Wad().Log.Lines = -1;
    wad::LogLine({"       \n============ List of Duplicate Colors ============\n\n"});
    for (const std::string& line : DuplicateColorLines(state.EditedPalette))
    {
        wad::LogLine({line});
    }
    wad::ShowErrorLog("List Duplicate Colors");
}

int GetPaletteFromPicture(PaletteEditorState& state, const std::filesystem::path& fileName)
{
    const auto bytes = ReadFileBytes(fileName);
    const bool bmp = bytes && bytes->size() >= 2 && (*bytes)[0] == 'B' && (*bytes)[1] == 'M';
    const bool pcx = bytes && !bytes->empty() && (*bytes)[0] == 10;
    if (!bmp && !pcx)
    {
        platform::ShowError("%s is not BMP or PCX", fileName.c_str());
        return 0;
    }
    PictureRead picture;
    if (ReadImageFile(bmp ? ImageKindBmp : ImageKindPcx, false, 1, fileName, false, picture) != 1)
    {
        return 0;
    }
    if (picture.Bits != 8)
    {
        platform::ShowError("%s is not 256 color image", fileName.c_str());
        return 0;
    }
    const Palette base = LumpPalette(state, 0);
    state.EditedPalette = picture.FilePalette;
    ApplyEditedPalette(state);
    if (platform::ShowMessageLines(platform::LinesCancel, "Match Palette",
                                   {"Match Palette to Original Game Palette?"}) == 1)
    {
        MatchToGamePalette(state, picture.FilePalette, base);
        return 1;
    }
    if (state.PaletteNumber == 0 &&
        platform::ShowMessageLines(platform::LinesCancel, "Create Colormaps",
                                   {"Create new Colormaps", "matching DOOM palette?"}) == 1)
    {
        const auto playpal = FindPaletteLump("PLAYPAL", true);
        const auto colormap = FindPaletteLump("COLORMAP", true);
        const std::vector<uint8_t> oldPalette =
            playpal ? ReadWholeLump(*playpal) : std::vector<uint8_t>{};
        const std::vector<uint8_t> oldColormap =
            colormap ? ReadWholeLump(*colormap) : std::vector<uint8_t>{};
        RematchColormaps(state.Colormap, oldColormap, PaletteFromBytes(oldPalette),
                         picture.FilePalette, state.Margins);
        return 1;
    }
    ResetColormapsIfAsked(state);
    return 1;
}

} // namespace kelvar::gfx
