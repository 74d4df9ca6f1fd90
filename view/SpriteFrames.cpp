// Sprite frames for the map view, looked up in the sprite runs and kept once decoded.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/SpriteFrames.h"

#include "gfx/GamePalette.h"
#include "gfx/Patch.h"
#include "wad/FindLump.h"
#include "wad/WadState.h"

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace kelvar::view
{
namespace
{

struct FrameCache
{
    std::uint64_t DirectoryStamp = 0;
    std::unordered_map<std::uint64_t, int> LumpOfFrame; // frame name -> its lump, -1 none
    std::unordered_map<int, std::unique_ptr<gfx::ImageRaster>> Frames; // by lump; null: unreadable
    gfx::ImageRaster Uncached; // the last frame decoded while the cache was full
};

FrameCache& Cache()
{
    static FrameCache cache;
    return cache;
}

// The newest entry of that name in the sprite runs (the PWAD's doubled markers first).
int FindInSpriteRuns(const wad::LumpName& name)
{
    const wad::LumpDirectory& master = wad::Master();
    const wad::MarkerRanges& markers = wad::Wad().Markers;
    for (const wad::MarkerRun& run : {markers.SS, markers.S})
    {
        if (run.Start < 0 || run.Count <= 0)
        {
            continue;
        }
        const auto first = static_cast<std::size_t>(run.First);
        const int found = master.FindLast(name, first, first + static_cast<std::size_t>(run.Count));
        if (found >= 0)
        {
            return found;
        }
    }
    return -1;
}

// The lump of a frame: its own name, else the same frame at rotation 0.
int FrameLump(std::string_view frame)
{
    wad::LumpName name = wad::LumpName::From(frame);
    int index = FindInSpriteRuns(name);
    if (index < 0 && frame.size() >= 6)
    {
        name.Chars[5] = '0';
        index = FindInSpriteRuns(name);
    }
    return index;
}

std::unique_ptr<gfx::ImageRaster> Decode(int lump)
{
    const std::vector<std::uint8_t> bytes = wad::ReadLumpBytes(lump);
    std::optional<gfx::ImageRaster> picture =
        bytes.empty()
            ? std::nullopt
            : gfx::DecodePatch(bytes,
                               static_cast<std::uint8_t>(gfx::Palettes().Options.TransparentIndex));
    return picture ? std::make_unique<gfx::ImageRaster>(std::move(*picture)) : nullptr;
}

} // namespace

const gfx::ImageRaster* SpriteFrame(std::string_view frame)
{
    FrameCache& cache = Cache();
    const std::uint64_t stamp = wad::Master().Stamp();
    if (cache.DirectoryStamp != stamp)
    {
        cache.Frames.clear();
        cache.LumpOfFrame.clear();
        cache.DirectoryStamp = stamp;
    }
    const std::uint64_t key = wad::LumpName::From(frame).Key();
    auto known = cache.LumpOfFrame.find(key);
    if (known == cache.LumpOfFrame.end())
    {
        known = cache.LumpOfFrame.emplace(key, FrameLump(frame)).first;
    }
    const int lump = known->second;
    if (lump < 0)
    {
        return nullptr;
    }
    if (const auto kept = cache.Frames.find(lump); kept != cache.Frames.end())
    {
        return kept->second.get();
    }
    std::unique_ptr<gfx::ImageRaster> picture = Decode(lump);
    if (cache.Frames.size() >= SpriteCacheLimit)
    {
        if (!picture)
        {
            return nullptr;
        }
        cache.Uncached = std::move(*picture);
        return &cache.Uncached;
    }
    return cache.Frames.emplace(lump, std::move(picture)).first->second.get();
}

void ClearSpriteFrames()
{
    Cache().Frames.clear();
    Cache().LumpOfFrame.clear();
}

const std::array<std::uint32_t, 256>& DisplayColors()
{
    // Asked for every sprite drawn: the table is made again only when the palette changed, and
    // the check compares in place rather than copying the palette.
    static std::array<std::uint32_t, 256> colors{};
    static gfx::Palette madeFrom{};
    static int made = -1; // -1 never, 0 from the gray ramp, 1 from the display palette
    const gfx::PaletteState& palettes = gfx::Palettes();
    const int source = palettes.Loaded ? 1 : 0;
    if (made == source && (source == 0 || madeFrom == palettes.DisplayPalette))
    {
        return colors;
    }
    madeFrom = source == 1 ? palettes.DisplayPalette : gfx::GrayRamp();
    for (std::size_t i = 0; i < colors.size(); ++i)
    {
        colors[i] = (std::uint32_t{madeFrom[i].red} << 16) |
                    (std::uint32_t{madeFrom[i].green} << 8) | madeFrom[i].blue;
    }
    made = source;
    return colors;
}

int SpriteHoleIndex()
{
    return gfx::Palettes().Options.TransparentIndex;
}

} // namespace kelvar::view
