// kelvar-cli textures: the catalogue's lists printed with sizes and sources.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/TextureCommands.h"

#include "cli/Commands.h"
#include "cli/WadCommands.h"
#include "gfx/Patch.h"
#include "gfx/RawPictures.h"
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureLumps.h"
#include "wad/FindLump.h"
#include "wad/MarkerRanges.h"
#include "wad/WadState.h"

#include <cstdio>

namespace kelvar::cli
{
namespace
{

// The name of the file that holds file number `file`.
std::string FileName(int file)
{
    const auto& files = wad::Wad().Files;
    return file >= 0 && static_cast<std::size_t>(file) < files.size()
               ? files[static_cast<std::size_t>(file)].FileName
               : std::string();
}

void PrintRow(const std::string& name, int width, int height, const std::string& where, int file)
{
    std::printf("%-8s  %5d x %-5d  %-22s  %s\n", name.c_str(), width, height, where.c_str(),
                FileName(file).c_str());
}

// The size a patch header gives, 0 x 0 when the lump isn't one.
gfx::PictureSize PatchSize(int index)
{
    const std::vector<std::uint8_t> bytes = wad::ReadLumpBytes(index);
    const std::optional<gfx::PatchHeader> header = gfx::ReadPatchSize(bytes);
    return header ? gfx::PictureSize{header->Width, header->Height} : gfx::PictureSize{};
}

void ListWallTextures()
{
    const gfx::NameCatalogue& textures = gfx::Catalogue().Textures;
    for (const int row : textures.List())
    {
        const gfx::CatalogueEntry& entry = textures.Rows()[static_cast<std::size_t>(row)];
        const std::string name = entry.Name.Text();
        if (name == "-")
        {
            continue;
        }
        if (const std::optional<gfx::TextureRecord> record = gfx::LookupTexture(name))
        {
            PrintRow(name, record->ScaledWidth(), record->ScaledHeight(),
                     record->Lump == 1 ? "TEXTURE1" : "TEXTURE2",
                     entry.File != 0 ? entry.File : record->File);
        }
        else if (entry.DirectoryIndex >= 0)
        {
            const gfx::PictureSize size = PatchSize(entry.DirectoryIndex);
            PrintRow(name, size.Width, size.Height, "lump " + std::to_string(entry.DirectoryIndex),
                     entry.File);
        }
    }
}

void ListFlats()
{
    const gfx::NameCatalogue& flats = gfx::Catalogue().Flats;
    for (const int row : flats.List())
    {
        const gfx::CatalogueEntry& entry = flats.Rows()[static_cast<std::size_t>(row)];
        const std::int32_t bytes =
            entry.DirectoryIndex >= 0
                ? wad::Master()[static_cast<std::size_t>(entry.DirectoryIndex)].Size
                : 0;
        const gfx::PictureSize size = gfx::FlatSizeFromLumpSize(bytes);
        PrintRow(entry.Name.Text(), size.Width, size.Height,
                 "lump " + std::to_string(entry.DirectoryIndex), entry.File);
    }
}

void ListPatches()
{
    for (const gfx::PatchRecord& patch : gfx::Catalogue().Patches)
    {
        const gfx::PictureSize size =
            patch.DirectoryIndex >= 0 ? PatchSize(patch.DirectoryIndex) : gfx::PictureSize{};
        PrintRow(patch.Name.Text(), size.Width, size.Height,
                 patch.DirectoryIndex >= 0 ? "lump " + std::to_string(patch.DirectoryIndex)
                                           : "no lump",
                 patch.File);
    }
}

void ListSprites()
{
    const wad::MarkerRanges& markers = wad::Wad().Markers;
    for (const wad::MarkerRun& run : {markers.S, markers.SS})
    {
        for (int i = run.First; run.Start >= 0 && i < run.First + run.Count; ++i)
        {
            const wad::LumpEntry& entry = wad::Master()[static_cast<std::size_t>(i)];
            if (entry.Size > 12)
            {
                const gfx::PictureSize size = PatchSize(i);
                PrintRow(entry.Name.Text(), size.Width, size.Height, "lump " + std::to_string(i),
                         entry.FileNumber);
            }
        }
    }
}

} // namespace

int ListTextures(const std::vector<std::string>& arguments)
{
    std::vector<std::string> files;
    std::string which = "--textures";
    for (const std::string& word : arguments)
    {
        if (word == "--flats" || word == "--patches" || word == "--sprites")
        {
            which = word;
        }
        else
        {
            files.push_back(word);
        }
    }
    if (files.empty())
    {
        std::fprintf(stderr, "kelvar-cli: textures IWAD [PWAD...] [--flats|--patches|--sprites]\n");
        return ExitUsage;
    }
    const int status = OpenFiles(files);
    if (wad::Wad().Files[0].State == 0)
    {
        return status;
    }
    wad::BuildMarkerLists();
    gfx::BuildTextureCatalogue({});
    gfx::BuildFlatCatalogue({});
    if (which == "--flats")
    {
        ListFlats();
    }
    else if (which == "--patches")
    {
        ListPatches();
    }
    else if (which == "--sprites")
    {
        ListSprites();
    }
    else
    {
        ListWallTextures();
    }
    return status;
}

} // namespace kelvar::cli
