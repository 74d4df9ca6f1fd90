// The texture name check (unknown flats and wall textures, offsets beyond the limits) and what
// the texture checks share: settling a finding, picking a repair texture, the wall rules.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/TextureChecks.h"

#include "check/TextureChecks_Shared.h"
#include "gfx/TextureCatalogue.h"
#include "platform/Format.h"
#include "platform/Ui.h"
#include "wad/LumpName.h"

#include <algorithm>
#include <utility>

namespace kelvar::check
{
namespace
{

// The browsers the application opens for a BrowseRequest's variant.
constexpr int TextureBrowser = 0;
constexpr int FlatBrowser = 1;

wad::LumpName AsLumpName(const map::TextureName& name)
{
    return wad::LumpName{name.Chars};
}

// Opens a browser on the names of `list` (without "-", which is no repair), framing `fallback`.
std::optional<map::TextureName> Pick(const gfx::NameCatalogue& list, int variant,
                                     const std::string& caption, std::string_view fallback)
{
    platform::BrowseRequest request;
    request.Caption = caption;
    request.Variant = variant;
    const std::uint64_t framed = wad::NameKey(fallback);
    for (const int row : list.List())
    {
        const wad::LumpName& name = list.Rows()[static_cast<std::size_t>(row)].Name;
        if (name.Chars[0] == '-')
        {
            continue;
        }
        if (name.Key() == framed)
        {
            request.Current = static_cast<int>(request.Names.size());
        }
        request.Names.push_back(name.Text());
    }
    const std::optional<std::string> picked = platform::TheUi().Browse(request);
    if (!picked || picked->empty())
    {
        return std::nullopt;
    }
    return map::TextureName::From(*picked);
}

bool KnownTexture(const map::TextureName& name)
{
    return name.IsNone() || name.IsSpecial() ||
           gfx::Catalogue().Textures.Contains(AsLumpName(name));
}

bool KnownFlat(const map::TextureName& name)
{
    return name.IsSpecial() || gfx::Catalogue().Flats.Contains(AsLumpName(name));
}

// The ceiling (`ceiling`) or floor flat of Sector `index`, when the flat list doesn't know it.
bool CheckFlat(CheckRun& run, bool fix, std::uint32_t index, bool ceiling)
{
    const map::Sector& sector = std::as_const(run.Level).Sectors[index];
    const map::TextureName& flat = ceiling ? sector.CeilingTexture : sector.FloorTexture;
    if (KnownFlat(flat))
    {
        return true;
    }
    const int number = static_cast<int>(index);
    Prompt prompt;
    prompt.Kind = map::KindSector;
    prompt.Index = index;
    prompt.Lines = {platform::Format(ceiling ? "Sector %d, ceiling" : "Sector %d, floor", number),
                    platform::Format("texture %s not found", flat.Text().c_str())};
    prompt.FixButton = "Pick Flat";
    const Settled settled = Settle(run, fix, prompt);
    if (settled != Settled::Repair)
    {
        return settled != Settled::Stop;
    }
    const std::optional<map::TextureName> repair =
        ceiling ? RepairFlat(run, fix, "Ceiling Flat", "FLAT4")
                : RepairFlat(run, fix, "Floor Flat", "FLOOR4_8");
    if (repair)
    {
        Repair(
            run, map::KindSector, index,
            platform::Format(ceiling ? "Fixed Ceiling Sector %d" : "Fixed Floor Sector %d", number),
            [&]
            {
                map::Sector& fixed = run.Level.Sectors[index];
                (ceiling ? fixed.CeilingTexture : fixed.FloorTexture) = *repair;
            });
    }
    return true;
}

bool CheckFlatNames(CheckRun& run, bool fix)
{
    run.Progress("Checking Sector textures (esc)");
    const std::size_t count = run.Level.Sectors.size();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (run.Poll(i, count))
        {
            return false;
        }
        const auto index = static_cast<std::uint32_t>(i);
        if (!CheckFlat(run, fix, index, true) || !CheckFlat(run, fix, index, false))
        {
            return false;
        }
    }
    return true;
}

// The three textures of a SideDef.
enum class Face : std::uint8_t
{
    Upper,
    Lower,
    Normal,
};

const map::TextureName& FaceOf(const map::SideDef& side, Face face)
{
    return face == Face::Upper   ? side.UpperTexture
           : face == Face::Lower ? side.LowerTexture
                                 : side.NormalTexture;
}

map::TextureName& FaceOf(map::SideDef& side, Face face)
{
    return const_cast<map::TextureName&>(FaceOf(std::as_const(side), face));
}

bool FaceChecked(const CheckSettings& settings, Face face)
{
    return face == Face::Upper   ? settings.UpperTexture
           : face == Face::Lower ? settings.LowerTexture
                                 : settings.NormalTexture;
}

std::optional<map::TextureName> FaceRepair(CheckRun& run, bool fix, Face face)
{
    switch (face)
    {
    case Face::Upper:
        return RepairTexture(run, fix, "Upper Wall Texture", "MARBGRAY");
    case Face::Lower:
        return RepairTexture(run, fix, "Lower Wall Texture", "MARBGRAY");
    default:
        return RepairTexture(run, fix, "Normal Wall Texture", "MARBLE1");
    }
}

// One texture of SideDef `index`, when the texture list doesn't know it.
bool CheckFaceName(CheckRun& run, bool fix, std::uint32_t index, Face face)
{
    const map::TextureName& texture = FaceOf(std::as_const(run.Level).SideDefs[index], face);
    if (!FaceChecked(run.Settings, face) || KnownTexture(texture))
    {
        return true;
    }
    const int number = static_cast<int>(index);
    Prompt prompt;
    prompt.Kind = map::KindSideDef;
    prompt.Index = index;
    prompt.Lines = {platform::Format(face == Face::Upper   ? "SideDef %d, upper"
                                     : face == Face::Lower ? "SideDef %d, lower"
                                                           : "SideDef %d, normal",
                                     number),
                    platform::Format("texture %s not found", texture.Text().c_str())};
    prompt.FixButton = "Pick Texture";
    const Settled settled = Settle(run, fix, prompt);
    if (settled != Settled::Repair)
    {
        return settled != Settled::Stop;
    }
    if (const std::optional<map::TextureName> repair = FaceRepair(run, fix, face))
    {
        Repair(run, map::KindSideDef, index,
               platform::Format(face == Face::Upper   ? "Fixed Upper Sidedef %d"
                                : face == Face::Lower ? "Fixed Lower Sidedef %d"
                                                      : "Fixed Normal Sidedef %d",
                                number),
               [&] { FaceOf(run.Level.SideDefs[index], face) = *repair; });
    }
    return true;
}

// The offset a repair sets: the nearest within the limits when repairs are unasked, otherwise
// the number the user gives; nothing when the prompt is cancelled.
std::optional<int> RepairOffset(CheckRun& run, bool fix, const std::string& caption, int limited)
{
    if (RepairsUnasked(run, fix))
    {
        return limited;
    }
    return platform::TheUi().AskNumber(caption, caption, limited, run.Settings.OffsetMinimum,
                                       run.Settings.OffsetMaximum);
}

// The X (`horizontal`) or Y offset of SideDef `index`, when it lies beyond the limits.
bool CheckOffset(CheckRun& run, bool fix, std::uint32_t index, bool horizontal)
{
    const CheckSettings& settings = run.Settings;
    if (!(horizontal ? settings.XOffsets : settings.YOffsets))
    {
        return true;
    }
    const map::SideDef& side = std::as_const(run.Level).SideDefs[index];
    const int offset = horizontal ? side.XOffset : side.YOffset;
    const int limited = std::clamp(offset, settings.OffsetMinimum,
                                   std::max(settings.OffsetMinimum, settings.OffsetMaximum));
    if (offset == limited)
    {
        return true;
    }
    const int number = static_cast<int>(index);
    Prompt prompt;
    prompt.Kind = map::KindSideDef;
    prompt.Index = index;
    if (horizontal)
    {
        // The second line shows the limit the offset is beyond: what a repair brings it to.
        prompt.Lines = {platform::Format("SideDef %d, Xoffset %hd (maxoffset set in F5 options)",
                                         number, static_cast<short>(offset)),
                        platform::Format("X=%hd, Continue ignores", static_cast<short>(limited))};
    }
    else
    {
        prompt.Lines = {platform::Format("SideDef %d, Yoffset %hd (maxoffset set in F5 options)",
                                         number, static_cast<short>(offset)),
                        "Continue ignores"};
    }
    prompt.FixButton = "Set Offset";
    const Settled settled = Settle(run, fix, prompt);
    if (settled != Settled::Repair)
    {
        return settled != Settled::Stop;
    }
    const std::optional<int> repair =
        RepairOffset(run, fix, horizontal ? "Texture X offset" : "Texture Y offset", limited);
    if (repair)
    {
        Repair(run, map::KindSideDef, index,
               platform::Format(
                   horizontal ? "Fixed Xoffset Sidedef %d" : "Fixed Yoffset Sidedef %d", number),
               [&]
               {
                   map::SideDef& fixed = run.Level.SideDefs[index];
                   (horizontal ? fixed.XOffset : fixed.YOffset) =
                       static_cast<std::int16_t>(*repair);
               });
    }
    return true;
}

bool CheckSideDefNames(CheckRun& run, bool fix)
{
    run.Progress("Checking SideDef textures (esc)");
    const std::size_t count = run.Level.SideDefs.size();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (run.Poll(i, count))
        {
            return false;
        }
        const auto index = static_cast<std::uint32_t>(i);
        for (const Face face : {Face::Upper, Face::Lower, Face::Normal})
        {
            if (!CheckFaceName(run, fix, index, face))
            {
                return false;
            }
        }
        if (!CheckOffset(run, fix, index, true) || !CheckOffset(run, fix, index, false))
        {
            return false;
        }
    }
    return true;
}

} // namespace

Settled Settle(CheckRun& run, bool fix, const Prompt& prompt)
{
    if (fix)
    {
        return Settled::Repair;
    }
    switch (run.Verify(prompt))
    {
    case Answer::Fix:
        return Settled::Repair;
    case Answer::Stop:
        return Settled::Stop;
    default:
        return Settled::Left;
    }
}

std::optional<map::TextureName> RepairTexture(CheckRun& run, bool fix, const std::string& caption,
                                              std::string_view fallback)
{
    if (RepairsUnasked(run, fix))
    {
        return map::TextureName::From(fallback);
    }
    return Pick(gfx::Catalogue().Textures, TextureBrowser, caption, fallback);
}

std::optional<map::TextureName> RepairFlat(CheckRun& run, bool fix, const std::string& caption,
                                           std::string_view fallback)
{
    if (RepairsUnasked(run, fix))
    {
        return map::TextureName::From(fallback);
    }
    return Pick(gfx::Catalogue().Flats, FlatBrowser, caption, fallback);
}

std::vector<SectorHeights> CopyHeights(const map::LevelData& level)
{
    std::vector<SectorHeights> heights;
    heights.reserve(level.Sectors.size());
    for (const map::Sector& sector : level.Sectors)
    {
        // The game draws no upper wall between two sky ceilings, whichever sky flat each has.
        heights.push_back({sector.FloorHeight, sector.CeilingHeight,
                           AsLumpName(sector.CeilingTexture).StartsWith("F_SKY")});
    }
    return heights;
}

std::optional<TwoSides> TwoSidesOf(const map::LevelData& level, const map::LineDef& line)
{
    const std::size_t sides = level.SideDefs.size();
    if (line.SideDef1 == map::NoSideDef || line.SideDef2 == map::NoSideDef ||
        line.SideDef1 >= sides || line.SideDef2 >= sides)
    {
        return std::nullopt;
    }
    const std::uint32_t front = level.SideDefs[line.SideDef1].Sector;
    const std::uint32_t back = level.SideDefs[line.SideDef2].Sector;
    if (front >= level.Sectors.size() || back >= level.Sectors.size())
    {
        return std::nullopt;
    }
    return TwoSides{line.SideDef1, line.SideDef2, front, back};
}

WallNeeds NeedsOf(const SectorHeights& front, const SectorHeights& back)
{
    const bool sky = front.SkyCeiling && back.SkyCeiling;
    WallNeeds needs;
    needs.Lower1 = front.Floor < back.Floor;
    needs.Lower2 = back.Floor < front.Floor;
    needs.Upper1 = !sky && front.Ceiling > back.Ceiling;
    needs.Upper2 = !sky && back.Ceiling > front.Ceiling;
    return needs;
}

std::string WallFixLine(std::uint32_t line, int side, bool upper, std::uint32_t sideDef)
{
    const int number = static_cast<int>(line);
    const int sideNumber = static_cast<int>(sideDef);
    if (upper)
    {
        return side == 1
                   ? platform::Format("LineDef %d Fixed Upper sideDef1 %d", number, sideNumber)
                   : platform::Format("LineDef %d Fixed Upper sideDef2 %d", number, sideNumber);
    }
    return side == 1 ? platform::Format("LineDef %d Fixed Lower sideDef1 %d", number, sideNumber)
                     : platform::Format("LineDef %d Fixed Lower sideDef2 %d", number, sideNumber);
}

bool CheckTextureNames(CheckRun& run, bool fix)
{
    return CheckFlatNames(run, fix) && CheckSideDefNames(run, fix);
}

} // namespace kelvar::check
