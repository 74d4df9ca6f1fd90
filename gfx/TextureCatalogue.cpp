// The texture and flat catalogues, built from the marker runs, PNAMES and TEXTUREx.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/TextureCatalogue.h"

#include "gfx/TextureLumps.h"
#include "platform/Messages.h"
#include "wad/FindLump.h"
#include "wad/WadState.h"

#include <algorithm>

namespace kelvar::gfx
{
namespace
{

// The entries of a marker run that are at least `least` bytes (shorter ones are markers).
template <typename Visit>
void ForEachInRun(const wad::MarkerRun& run, std::int32_t least, Visit visit)
{
    const wad::LumpDirectory& master = wad::Master();
    for (int i = run.First; run.Start >= 0 && i < run.First + run.Count; ++i)
    {
        if (i >= 0 && static_cast<std::size_t>(i) < master.Size() &&
            master[static_cast<std::size_t>(i)].Size >= least)
        {
            visit(i, master[static_cast<std::size_t>(i)]);
        }
    }
}

CatalogueEntry EntryOf(int index, const wad::LumpEntry& lump, std::uint16_t classCode,
                       std::uint16_t group)
{
    return {lump.Name, index, lump.FileNumber, classCode, group};
}

bool LessByName(const CatalogueEntry& a, const CatalogueEntry& b)
{
    const std::uint64_t x = a.Name.Key();
    const std::uint64_t y = b.Name.Key();
    // The key is the upper-case name as a little-endian word: compare byte by byte from the first.
    return __builtin_bswap64(x) < __builtin_bswap64(y);
}

// Step 3: each PNAMES entry resolved to its lump, by group first, then by any lump of the name.
void ResolvePatches(CatalogueState& state)
{
    LoadPnames();
    const std::optional<PatchNames>& names = TextureLumps().Pnames;
    state.Patches.clear();
    if (!names)
    {
        return;
    }
    wad::FileRec& master = wad::Wad().Files[0];
    state.Patches.reserve(names->Names.size());
    for (const wad::LumpName& name : names->Names)
    {
        PatchRecord record;
        record.Name = name;
        const std::string text = name.Text();
        int index = wad::FindLumpByGroup(master, text, GroupPatchName, ClassPictureLump);
        index = index >= 0 ? index : wad::FindLump(master, text, false);
        if (index >= 0)
        {
            const wad::LumpEntry& lump = wad::Master()[static_cast<std::size_t>(index)];
            record.File = lump.FileNumber;
            record.Offset = lump.Offset;
            record.Size = lump.Size;
            record.DirectoryIndex = index;
            wad::Master().Tag(static_cast<std::size_t>(index), ClassPictureLump, GroupPatchName);
        }
        state.Patches.push_back(record);
    }
}

// Steps 6 and 7: the TEXTUREx names, each marked as from a PWAD when a patch of it is.
void AddTextureNames(CatalogueState& state)
{
    LoadTextureLumps();
    const TextureLumpsState& lumps = TextureLumps();
    for (const std::optional<TextureLump>* lump : {&lumps.Texture1, &lumps.Texture2})
    {
        if (!*lump)
        {
            continue;
        }
        for (int i = 0; i < (*lump)->Count(); ++i)
        {
            const std::optional<TextureRecord> record = (*lump)->Record(i);
            if (!record || record->Name.Chars[0] == '-')
            {
                continue;
            }
            const int row = state.Textures.Append(
                {record->Name, -1, 0, ClassTextureEntry, GroupTextureName}, true);
            if (row < 0)
            {
                continue;
            }
            for (const TexturePatch& patch : (*lump)->Patches(i))
            {
                const auto at = static_cast<std::size_t>(patch.Index);
                if (patch.Index >= 0 && at < state.Patches.size() && state.Patches[at].File != 0)
                {
                    state.Textures.Row(row).File = state.Patches[at].File;
                    state.Textures.MarkFromPwad(row);
                    break;
                }
            }
        }
    }
}

} // namespace

int NameCatalogue::Append(const CatalogueEntry& entry, bool unique)
{
    const std::uint64_t key = entry.Name.Key();
    if (unique && ByKey.contains(key))
    {
        return -1;
    }
    const auto row = static_cast<int>(Entries.size());
    Entries.push_back(entry);
    Order.push_back(row);
    ByKey.emplace(key, row);
    return row;
}

void NameCatalogue::MarkFromPwad(int row)
{
    FromPwads.push_back(row);
}

void NameCatalogue::Sort()
{
    const auto byName = [this](int a, int b) {
        return LessByName(Entries[static_cast<std::size_t>(a)],
                          Entries[static_cast<std::size_t>(b)]);
    };
    std::stable_sort(Order.begin(), Order.end(), byName);
    std::stable_sort(FromPwads.begin(), FromPwads.end(), byName);
}

int NameCatalogue::Position(const wad::LumpName& name) const
{
    const std::uint64_t key = name.Key();
    for (std::size_t i = 0; i < Order.size(); ++i)
    {
        if (Entries[static_cast<std::size_t>(Order[i])].Name.Key() == key)
        {
            return static_cast<int>(i) + 1;
        }
    }
    return 0;
}

CatalogueState& Catalogue()
{
    static CatalogueState state;
    return state;
}

void BuildTextureCatalogue(const CatalogueOptions& options)
{
    CatalogueState& state = Catalogue();
    state.Textures = {};
    state.TxNames.clear();
    const wad::MarkerRanges& markers = wad::Wad().Markers;

    // Step 1: the TX and HI runs, searched first when a texture is drawn.
    for (const wad::MarkerRun& run : {markers.Tx, markers.Hi})
    {
        ForEachInRun(
            run, 1,
            [&](int i, const wad::LumpEntry& lump)
            { state.TxNames.push_back(EntryOf(i, lump, ClassPictureLump, GroupTxPicture)); });
    }
    // Step 2, the sprite and patch runs, is the marker lists' own tagging. Step 3.
    ResolvePatches(state);
    LoadColormapNames();
    // Step 4.
    state.Textures.Append({wad::LumpName::From("-"), -1, 0, 0, 0}, false);
    // Step 5: TX pictures are wall textures of the ports.
    for (const wad::MarkerRun& run : {markers.Tx, markers.Hi})
    {
        ForEachInRun(run, 13,
                     [&](int i, const wad::LumpEntry& lump)
                     {
                         wad::Master().Tag(static_cast<std::size_t>(i), ClassPictureLump,
                                           GroupTxPicture);
                         if (options.AnyGraphicAsTexture)
                         {
                             const int row = state.Textures.Append(
                                 EntryOf(i, lump, ClassPictureLump, GroupTxPicture), false);
                             if (lump.FileNumber != 0)
                             {
                                 state.Textures.MarkFromPwad(row);
                             }
                         }
                     });
    }
    // Steps 6 and 7.
    AddTextureNames(state);
    // Step 8.
    for (const ColormapName& colormap : state.Colormaps)
    {
        state.Textures.Append({colormap.Name, -1, colormap.File, 0, 0}, true);
    }
    // Step 9: the flats of a PWAD's doubled markers.
    ForEachInRun(markers.FF, 4,
                 [&](int i, const wad::LumpEntry& lump)
                 {
                     wad::Master().Tag(static_cast<std::size_t>(i), ClassFlatLump, GroupFlat);
                     state.Textures.Append(EntryOf(i, lump, ClassFlatLump, GroupFlat), true);
                 });
    // Step 10: the flats; walls may show them only in the ports.
    ForEachInRun(markers.F, 4,
                 [&](int i, const wad::LumpEntry& lump)
                 {
                     wad::Master().Tag(static_cast<std::size_t>(i), ClassFlatLump, GroupFlat);
                     if (options.AnyGraphicAsTexture)
                     {
                         state.Textures.Append(EntryOf(i, lump, ClassFlatLump, GroupFlat), true);
                     }
                 });
    // Step 11: in the ports, patches and sprites too.
    if (options.AnyGraphicAsTexture)
    {
        for (const PatchRecord& patch : state.Patches)
        {
            if (patch.DirectoryIndex >= 0)
            {
                state.Textures.Append({patch.Name, patch.DirectoryIndex, patch.File,
                                       ClassPictureLump, GroupPatchName},
                                      true);
            }
        }
        for (const wad::MarkerRun& run : {markers.SS, markers.S})
        {
            ForEachInRun(
                run, 13,
                [&](int i, const wad::LumpEntry& lump)
                { state.Textures.Append(EntryOf(i, lump, ClassPictureLump, GroupSprite), true); });
        }
    }
    // Step 12.
    if (options.SortTextureNames)
    {
        state.Textures.Sort();
    }
}

void BuildFlatCatalogue(const CatalogueOptions& options)
{
    CatalogueState& state = Catalogue();
    state.Flats = {};
    const NameCatalogue& textures = state.Textures;
    const auto copyGroup = [&](std::uint16_t group)
    {
        for (const int row : textures.List())
        {
            const CatalogueEntry& entry = textures.Rows()[static_cast<std::size_t>(row)];
            if (entry.Group == group)
            {
                state.Flats.Append(entry, true);
            }
        }
    };
    if (options.AnyGraphicAsTexture)
    {
        copyGroup(GroupTxPicture);
    }
    const wad::MarkerRanges& markers = wad::Wad().Markers;
    for (const wad::MarkerRun& run : {markers.F, markers.FF})
    {
        ForEachInRun(run, 4,
                     [&](int i, const wad::LumpEntry& lump)
                     {
                         const int row =
                             state.Flats.Append(EntryOf(i, lump, ClassFlatLump, GroupFlat), true);
                         // A PWAD's flats, and the sky flats of the game, go to the PWAD list.
                         if (row >= 0 && (lump.FileNumber != 0 || lump.Name.StartsWith("F_SKY")))
                         {
                             state.Flats.MarkFromPwad(row);
                         }
                     });
    }
    if (options.AnyGraphicAsTexture)
    {
        for (const std::uint16_t group : {GroupTextureName, GroupPatchName, GroupSprite})
        {
            copyGroup(group);
        }
    }
    if (options.SortTextureNames)
    {
        state.Flats.Sort();
    }
}

void LoadColormapNames()
{
    const wad::MarkerRun& run = wad::Wad().Markers.C;
    const wad::LumpDirectory& master = wad::Master();
    const int end = master.FindLast(wad::LumpName::From("C_END"), 0, master.Size());
    if (run.Start < 0 || end < 0)
    {
        return;
    }
    if (master[static_cast<std::size_t>(run.Start)].FileNumber !=
        master[static_cast<std::size_t>(end)].FileNumber)
    {
        platform::ShowMessageLines(0, "COLORMAP errors", {"C_START and C_END not in same file?"});
        return;
    }
    std::vector<ColormapName>& names = Catalogue().Colormaps;
    for (int i = run.First; i < run.First + run.Count; ++i)
    {
        const wad::LumpEntry& lump = master[static_cast<std::size_t>(i)];
        const bool known = std::any_of(names.begin(), names.end(),
                                       [&](const ColormapName& name)
                                       { return wad::SameName(name.Name, lump.Name); });
        if (known)
        {
            continue;
        }
        if (names.size() >= ColormapNameLimit)
        {
            platform::ShowMessageLines(
                0, "COLORMAP errors",
                {"Too Many New COLORMAP entries", "in PWAD starting with", lump.Name.Text()});
            return;
        }
        names.push_back({lump.FileNumber, lump.Name});
    }
}

void FreeColormapNames(int file)
{
    std::erase_if(Catalogue().Colormaps,
                  [file](const ColormapName& name) { return name.File == file; });
}

} // namespace kelvar::gfx
