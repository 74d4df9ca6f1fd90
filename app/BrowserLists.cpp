// The browsers' name lists from the catalogues, the marker runs, the level list and the Thing
// table, and the opening of a browser through the Ui.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BrowserLists.h"

#include "app/BrowserPictures.h"
#include "game/GameState.h"
#include "game/TypeLookup.h"
#include "gfx/GamePalette.h"
#include "gfx/TextureCatalogue.h"
#include "platform/Ui.h"
#include "wad/LumpName.h"
#include "wad/MarkerRanges.h"
#include "wad/WadState.h"

#include <algorithm>
#include <unordered_map>

namespace kelvar::app
{
namespace
{

BrowserItem Item(std::string name, int directoryIndex, int file, int number = -1)
{
    BrowserItem item;
    item.Name = std::move(name);
    item.DirectoryIndex = directoryIndex;
    item.File = file;
    item.Number = number;
    return item;
}

// Lumps of the patch and sprite runs this short are markers, not pictures.
constexpr std::int32_t LeastPictureSize = 13;

BrowserItem CatalogueItem(const gfx::CatalogueEntry& entry, bool upperCase)
{
    BrowserItem item;
    item.Name = upperCase ? wad::UpperText(entry.Name.Text()) : entry.Name.Text();
    item.DirectoryIndex = entry.DirectoryIndex;
    item.File = entry.File;
    item.Class = entry.Class;
    return item;
}

std::vector<BrowserItem> CatalogueList(const gfx::NameCatalogue& catalogue, bool externalOnly,
                                       bool upperCase)
{
    std::vector<BrowserItem> list;
    for (const int row : externalOnly ? catalogue.PwadList() : catalogue.List())
    {
        list.push_back(CatalogueItem(catalogue.Rows()[static_cast<std::size_t>(row)], upperCase));
    }
    return list;
}

std::vector<BrowserItem> LevelList(bool externalOnly)
{
    std::vector<BrowserItem> list;
    for (const wad::LevelListEntry& level : wad::Wad().Levels)
    {
        if (!externalOnly || level.FileNumber != 0)
        {
            list.push_back(Item(level.Name.Text(), -1, level.FileNumber));
        }
    }
    return list;
}

std::vector<BrowserItem> PnamesList(bool externalOnly)
{
    std::vector<BrowserItem> list;
    const std::vector<gfx::PatchRecord>& patches = gfx::Catalogue().Patches;
    for (std::size_t i = 0; i < patches.size(); ++i)
    {
        const gfx::PatchRecord& patch = patches[i];
        if (!externalOnly || (patch.DirectoryIndex >= 0 && patch.File != 0))
        {
            list.push_back(
                Item(patch.Name.Text(), patch.DirectoryIndex, patch.File, static_cast<int>(i)));
        }
    }
    return list;
}

// The pictures of marker runs in order, each name once: a later lump of a name (a PWAD's
// doubled run comes after the IWAD's) takes the earlier one's place.
std::vector<BrowserItem> RunList(std::initializer_list<wad::MarkerRun> runs, bool externalOnly)
{
    std::vector<BrowserItem> list;
    std::unordered_map<std::uint64_t, std::size_t> seen;
    const wad::LumpDirectory& master = wad::Master();
    for (const wad::MarkerRun& run : runs)
    {
        for (int i = run.First; run.Start >= 0 && i < run.First + run.Count; ++i)
        {
            if (i < 0 || static_cast<std::size_t>(i) >= master.Size())
            {
                continue;
            }
            const wad::LumpEntry& lump = master[static_cast<std::size_t>(i)];
            if (lump.Size < LeastPictureSize || (externalOnly && lump.FileNumber == 0))
            {
                continue;
            }
            const BrowserItem item = Item(lump.Name.Text(), i, lump.FileNumber);
            const auto [place, added] = seen.try_emplace(lump.Name.Key(), list.size());
            if (added)
            {
                list.push_back(item);
            }
            else
            {
                list[place->second] = item;
            }
        }
    }
    return list;
}

std::vector<BrowserItem> PatchList(bool externalOnly)
{
    const wad::MarkerRanges& markers = wad::Wad().Markers;
    std::vector<BrowserItem> list = RunList({markers.P, markers.PP}, externalOnly);
    std::sort(list.begin(), list.end(),
              [](const BrowserItem& a, const BrowserItem& b)
              { return wad::UpperText(a.Name) < wad::UpperText(b.Name); });
    return list;
}

std::vector<BrowserItem> ThingList()
{
    std::vector<BrowserItem> list;
    for (const game::ThingTypeRow& row : game::Game().Things)
    {
        const std::string_view name = game::Text(row.Name);
        // Headings, the end row and free rows name no Thing.
        if (row.Type == 0 || row.Type >= game::FirstHeading || name.empty() || name.front() == 'x')
        {
            continue;
        }
        BrowserItem item = Item(std::string(name), -1, 0, static_cast<int>(row.Type));
        item.Sprite = game::Text(row.Sprite);
        list.push_back(std::move(item));
    }
    return list;
}

// The pictures are shown through the game palette; without one they still show, black.
void EnsurePalette()
{
    if (!gfx::Palettes().Loaded)
    {
        (void)gfx::LoadGamePalette(gfx::Palettes().Options.PaletteNumber);
    }
}

} // namespace

void EnsureBrowserCatalogues()
{
    BrowserState& state = Browser();
    const std::uint64_t stamp = wad::Master().Stamp();
    if (state.CatalogueStamp == stamp && gfx::Catalogue().Textures.Size() > 0)
    {
        return;
    }
    wad::BuildMarkerLists();
    gfx::CatalogueOptions options;
    options.AnyGraphicAsTexture = game::Game().ZdoomTypes;
    gfx::BuildTextureCatalogue(options);
    gfx::BuildFlatCatalogue(options);
    state.CatalogueStamp = stamp;
}

std::vector<BrowserItem> BuildBrowserList(int variant, bool externalOnly)
{
    const gfx::CatalogueState& catalogue = gfx::Catalogue();
    switch (variant)
    {
    case BrowseTextures:
        return CatalogueList(catalogue.Textures, externalOnly, false);
    case BrowseFlats:
        return CatalogueList(catalogue.Flats, externalOnly, true);
    case BrowseLevels:
        return LevelList(externalOnly);
    case BrowsePnames:
        return PnamesList(externalOnly);
    case BrowsePatches:
        return PatchList(externalOnly);
    case BrowseSprites:
        return RunList({wad::Wad().Markers.S, wad::Wad().Markers.SS}, externalOnly);
    case BrowseThings:
        return ThingList();
    default:
        return {};
    }
}

std::optional<BrowserItem> OpenBrowserItem(int variant, std::string_view startName)
{
    if (variant != BrowseLevels && variant != BrowseThings)
    {
        EnsureBrowserCatalogues();
    }
    EnsurePalette();
    BrowserState& state = Browser();
    StartBrowser(state, variant, BuildBrowserList(variant, state.ExternalOnly), startName);

    platform::BrowseRequest request;
    request.Caption = BrowserCaption(variant);
    request.Variant = variant;
    request.Current = state.Current;
    for (const BrowserItem& item : state.List)
    {
        request.Names.push_back(item.Name);
    }
    const std::optional<std::string> chosen = platform::TheUi().Browse(request);
    std::optional<BrowserItem> picked;
    if (chosen)
    {
        // Two rows may share a name (Things): the framed cell is the one picked when it has it.
        const auto current = static_cast<std::size_t>(state.Current);
        if (current < state.List.size() && state.List[current].Name == *chosen)
        {
            picked = state.List[current];
        }
        else
        {
            const auto found =
                std::find_if(state.List.begin(), state.List.end(),
                             [&](const BrowserItem& item) { return item.Name == *chosen; });
            BrowserItem named;
            named.Name = *chosen;
            picked = found != state.List.end() ? *found : named;
        }
    }
    state.List.clear();
    state.List.shrink_to_fit();
    return picked;
}

BrowserPicture PreviewPicture(int variant, std::string_view name)
{
    if (variant != BrowseTextures && variant != BrowseFlats)
    {
        return {};
    }
    EnsureBrowserCatalogues();
    EnsurePalette();
    const gfx::CatalogueState& catalogue = gfx::Catalogue();
    const gfx::NameCatalogue& names = variant == BrowseFlats ? catalogue.Flats : catalogue.Textures;
    const int position = names.Position(wad::LumpName::From(name));
    if (position == 0)
    {
        return {};
    }
    const int row = names.List()[static_cast<std::size_t>(position - 1)];
    BrowserState state;
    state.Variant = variant;
    state.List.push_back(
        CatalogueItem(names.Rows()[static_cast<std::size_t>(row)], variant == BrowseFlats));
    return ReadBrowserPicture(state, 0);
}

BrowserPicture ThingPreview(std::uint16_t type)
{
    EnsurePalette();
    BrowserState state;
    state.Variant = BrowseThings;
    BrowserItem item;
    item.Name = std::string(game::ThingTypeName(type));
    item.Number = type;
    item.Sprite = std::string(game::Text(game::ThingRowOfType(type).Sprite));
    state.List.push_back(std::move(item));
    return ReadBrowserPicture(state, 0);
}

std::optional<std::string> OpenBrowser(int variant, std::string_view startName)
{
    std::optional<BrowserItem> item = OpenBrowserItem(variant, startName);
    if (!item)
    {
        return std::nullopt;
    }
    return std::move(item->Name);
}

} // namespace kelvar::app
