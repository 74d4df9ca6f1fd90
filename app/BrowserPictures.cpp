// The browsers' cell pictures: textures composed, lumps decoded by what their bytes are, Things
// by their sprites, and levels as small maps of their LineDefs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BrowserPictures.h"

#include "gfx/GamePalette.h"
#include "gfx/LumpKind.h"
#include "gfx/Patch.h"
#include "gfx/Picture.h"
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureCompose.h"
#include "gfx/TextureLumps.h"
#include "map/GameCodes.h"
#include "wad/FindLump.h"
#include "wad/WadState.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace kelvar::app
{
namespace
{

std::uint8_t HoleIndex()
{
    return static_cast<std::uint8_t>(gfx::Palettes().Options.TransparentIndex & 0xFF);
}

BrowserPicture BadPicture()
{
    BrowserPicture picture;
    picture.Bad = true;
    return picture;
}

// Takes a raster as the cell's picture, with its size and offsets for the label.
BrowserPicture Drawn(gfx::ImageRaster raster, bool holes, std::string_view kindName)
{
    BrowserPicture picture;
    picture.Facts.Drawn = true;
    picture.Facts.Width = raster.Width();
    picture.Facts.Height = raster.Height();
    picture.Facts.Left = raster.leftOffset;
    picture.Facts.Top = raster.topOffset;
    picture.Facts.KindName = std::string(kindName);
    picture.Holes = holes;
    picture.HoleIndex = HoleIndex();
    picture.Raster = std::move(raster);
    return picture;
}

// A lump's bytes as a picture: a PNG by the PNG path, a flat when the caller knows it is one
// (a flat has no header to tell it by), anything else by what its bytes are.
BrowserPicture DecodeLump(std::span<const std::uint8_t> bytes, std::int64_t lumpSize, bool flat)
{
    if (bytes.empty())
    {
        return BadPicture();
    }
    if (gfx::HasPngSignature(bytes))
    {
        std::optional<gfx::ImageRaster> png = BrowserPngRaster(bytes);
        return png ? Drawn(std::move(*png), true, gfx::KindName(gfx::LumpKind::Png)) : BadPicture();
    }
    const gfx::DecodedPicture decoded =
        flat ? gfx::DecodePictureAs(bytes, lumpSize, gfx::LumpKind::Flat, HoleIndex())
             : gfx::DecodePicture(bytes, HoleIndex());
    if (!decoded.Raster)
    {
        return BadPicture();
    }
    return Drawn(*decoded.Raster, decoded.Kind == gfx::LumpKind::Pic, gfx::KindName(decoded.Kind));
}

BrowserPicture DecodeEntry(int directoryIndex, bool flat)
{
    const wad::LumpDirectory& master = wad::Master();
    if (directoryIndex < 0 || static_cast<std::size_t>(directoryIndex) >= master.Size())
    {
        return BadPicture();
    }
    const std::vector<std::uint8_t> bytes = wad::ReadLumpBytes(directoryIndex);
    return DecodeLump(bytes, master[static_cast<std::size_t>(directoryIndex)].Size, flat);
}

// A TEXTUREx texture composed from its patches. A PNG patch stands for the whole texture.
BrowserPicture ComposedTexture(const std::string& name)
{
    const std::optional<gfx::TextureRecord> record = gfx::LookupTexture(name);
    if (!record)
    {
        return BadPicture();
    }
    const gfx::TextureLumpsState& lumps = gfx::TextureLumps();
    const std::optional<gfx::TextureLump>& lump =
        record->Lump == 1 ? lumps.Texture1 : lumps.Texture2;
    if (lump)
    {
        for (const gfx::TexturePatch& patch : lump->Patches(*record))
        {
            const std::vector<std::uint8_t>& bytes =
                gfx::PatchBytes(patch.Index, gfx::DefaultTextureCacheLimit);
            if (gfx::HasPngSignature(bytes))
            {
                return DecodeLump(bytes, static_cast<std::int64_t>(bytes.size()), false);
            }
        }
    }
    std::optional<gfx::ImageRaster> composed = gfx::ComposeTexture(name, {HoleIndex()});
    if (!composed)
    {
        return BadPicture();
    }
    BrowserPicture picture = Drawn(std::move(*composed), true, {});
    picture.Facts.PatchCount = record->PatchCount;
    return picture;
}

BrowserPicture CatalogueRowPicture(const BrowserItem& item)
{
    if (item.Name == "-")
    {
        return {};
    }
    if (item.Class == gfx::ClassTextureEntry)
    {
        return ComposedTexture(item.Name);
    }
    return DecodeEntry(item.DirectoryIndex, item.Class == gfx::ClassFlatLump);
}

// The lump of a Thing's sprite: the name itself, else the first sprite of that frame whatever
// its rotations ("TROOA1" is stored as "TROOA2A8" too).
int SpriteEntry(const std::string& sprite)
{
    if (sprite.empty())
    {
        return -1;
    }
    wad::LumpDirectory& master = wad::Master();
    const int exact = master.FindLast(wad::LumpName::From(sprite), 0, master.Size());
    if (exact >= 0)
    {
        return exact;
    }
    const std::string frame = sprite.substr(0, 5);
    const wad::MarkerRanges& markers = wad::Wad().Markers;
    for (const wad::MarkerRun& run : {markers.SS, markers.S})
    {
        for (int i = run.First; run.Start >= 0 && i < run.First + run.Count; ++i)
        {
            if (i >= 0 && static_cast<std::size_t>(i) < master.Size() &&
                master[static_cast<std::size_t>(i)].Name.StartsWith(frame))
            {
                return i;
            }
        }
    }
    return -1;
}

BrowserPicture ThingPicture(const BrowserItem& item)
{
    const int entry = SpriteEntry(item.Sprite);
    return entry < 0 ? BrowserPicture{} : DecodeEntry(entry, false);
}

BrowserPicture LevelPicture(const BrowserState& state, const BrowserItem& item)
{
    const gfx::Palette& palette = gfx::Palettes().DisplayPalette;
    std::optional<gfx::ImageRaster> map =
        LevelThumbnail(item.Name, state.CellWidth, state.CellHeight,
                       gfx::MatchColor(palette, 220, 220, 220), gfx::MatchColor(palette, 0, 0, 0));
    if (!map)
    {
        return BadPicture();
    }
    return Drawn(std::move(*map), false, {});
}

// Points of a level's VERTEXES lump.
struct Point
{
    int X = 0;
    int Y = 0;
};

std::int16_t ReadI16(const std::vector<std::uint8_t>& bytes, std::size_t at)
{
    return static_cast<std::int16_t>(bytes[at] | (bytes[at + 1] << 8));
}

std::vector<Point> ReadPoints(const std::vector<std::uint8_t>& bytes)
{
    std::vector<Point> points;
    for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4)
    {
        points.push_back({ReadI16(bytes, at), ReadI16(bytes, at + 2)});
    }
    return points;
}

void DrawLine(gfx::ImageRaster& raster, Point a, Point b, std::uint8_t index)
{
    const int dx = std::abs(b.X - a.X);
    const int dy = -std::abs(b.Y - a.Y);
    const int sx = a.X < b.X ? 1 : -1;
    const int sy = a.Y < b.Y ? 1 : -1;
    int error = dx + dy;
    for (;;)
    {
        if (a.X >= 0 && a.Y >= 0 && a.X < raster.Width() && a.Y < raster.Height())
        {
            raster.Set(a.X, a.Y, index);
        }
        if (a.X == b.X && a.Y == b.Y)
        {
            return;
        }
        const int twice = 2 * error;
        if (twice >= dy)
        {
            error += dy;
            a.X += sx;
        }
        if (twice <= dx)
        {
            error += dx;
            a.Y += sy;
        }
    }
}

// The entry of lump `name` among a level's entries, or -1.
int LevelLump(const wad::LevelSpan& span, std::string_view name)
{
    return wad::Master().FindFirst(wad::LumpName::From(name), span.Marker + 1, span.End);
}

} // namespace

BrowserPicture ReadBrowserPicture(const BrowserState& state, int index)
{
    if (index < 0 || static_cast<std::size_t>(index) >= state.List.size())
    {
        return {};
    }
    const BrowserItem& item = state.List[static_cast<std::size_t>(index)];
    switch (state.Variant)
    {
    case BrowseTextures:
    case BrowseFlats:
        return CatalogueRowPicture(item);
    case BrowseLevels:
        return LevelPicture(state, item);
    case BrowsePnames:
    {
        const std::vector<std::uint8_t>& bytes =
            gfx::PatchBytes(item.Number, gfx::DefaultTextureCacheLimit);
        return DecodeLump(bytes, static_cast<std::int64_t>(bytes.size()), false);
    }
    case BrowseThings:
        return ThingPicture(item);
    default:
        return DecodeEntry(item.DirectoryIndex, false);
    }
}

std::optional<gfx::ImageRaster> LevelThumbnail(std::string_view name, int width, int height,
                                               std::uint8_t lineIndex, std::uint8_t backgroundIndex)
{
    const wad::LumpDirectory& master = wad::Master();
    const std::optional<wad::LevelSpan> span =
        wad::FindLevelEntries(master.Entries(), wad::LumpName::From(name));
    if (!span || width < 4 || height < 4)
    {
        return std::nullopt;
    }
    int count = 0;
    const int layout = wad::LevelAt(master.Entries(), span->Marker, master.Size(), count);
    const int vertexes = LevelLump(*span, "VERTEXES");
    const int lines = LevelLump(*span, "LINEDEFS");
    if (vertexes < 0 || lines < 0)
    {
        return std::nullopt;
    }
    const std::vector<Point> points = ReadPoints(wad::ReadLumpBytes(vertexes));
    const std::vector<std::uint8_t> lineBytes = wad::ReadLumpBytes(lines);
    if (points.empty())
    {
        return std::nullopt;
    }
    // Fit the level's bounds into the picture with a margin, y growing northward on the map.
    const auto [left, right] = std::minmax_element(points.begin(), points.end(),
                                                   [](Point a, Point b) { return a.X < b.X; });
    const auto [bottom, top] = std::minmax_element(points.begin(), points.end(),
                                                   [](Point a, Point b) { return a.Y < b.Y; });
    const double spanX = std::max(1, right->X - left->X);
    const double spanY = std::max(1, top->Y - bottom->Y);
    const double scale = std::min((width - 4) / spanX, (height - 4) / spanY);
    const int offsetX = static_cast<int>((width - spanX * scale) / 2);
    const int offsetY = static_cast<int>((height - spanY * scale) / 2);
    const auto place = [&](Point p)
    {
        return Point{offsetX + static_cast<int>((p.X - left->X) * scale),
                     height - 1 - offsetY - static_cast<int>((p.Y - bottom->Y) * scale)};
    };

    gfx::ImageRaster picture(width, height, backgroundIndex);
    const std::size_t recordSize = layout == map::LayoutHexen ? 16 : 14;
    for (std::size_t at = 0; at + recordSize <= lineBytes.size(); at += recordSize)
    {
        const auto from = static_cast<std::uint16_t>(ReadI16(lineBytes, at));
        const auto to = static_cast<std::uint16_t>(ReadI16(lineBytes, at + 2));
        if (from < points.size() && to < points.size())
        {
            DrawLine(picture, place(points[from]), place(points[to]), lineIndex);
        }
    }
    return picture;
}

} // namespace kelvar::app
