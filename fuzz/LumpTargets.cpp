// The fuzz target of the lump tools and the DECORATE reader: a .CVT table, a DECORATE lump, a
// merge or rename target's directory, and PNAMES and texture lumps merged into full buffers.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/FuzzKit.h"
#include "game/Decorate.h"
#include "game/GameState.h"
#include "lumps/CvtFile.h"
#include "lumps/TargetList.h"
#include "lumps/TextureMerge.h"

#include <string>
#include <string_view>
#include <vector>

namespace kelvar::fuzz
{
namespace
{

void ReadAsTable(std::span<const std::uint8_t> input)
{
    const std::string_view text(reinterpret_cast<const char*>(input.data()), input.size());
    (void)lumps::ParseCvtText(text);
}

// The bytes as a DECORATE lump read into a fresh Thing table of a ZDoom project.
void ReadAsDecorate(std::span<const std::uint8_t> input)
{
    game::SelectTablesFor(map::GameDoom2, map::GameDoom2, true, true);
    game::DecorateState state;
    game::ParseDecorateText(
        state, std::string_view(reinterpret_cast<const char*>(input.data()), input.size()));
}

void ReadAsTarget(std::span<const std::uint8_t> input)
{
    lumps::TargetList list;
    (void)lumps::ReadTargetFile(WriteScratchFile("target.wad", input), true, list);
}

// The bytes as PNAMES and as a texture lump, merged twice so the second merge meets names that
// are already there, then remapped, checked, sorted and cut down texture by texture.
void MergeAsTextures(std::span<const std::uint8_t> input)
{
    lumps::MergeBuffers buffers;
    lumps::MergePnames(buffers, input);
    lumps::MergePnames(buffers, input);
    std::vector<std::uint8_t> textures(input.begin(), input.end());
    (void)lumps::RemapTexturePatches(buffers, "fuzz", textures, input);
    lumps::MergeTextures(buffers, "fuzz", textures);
    lumps::MergeTextures(buffers, "fuzz", input);
    (void)lumps::CheckMergedPatches(buffers);
    lumps::SortTextureBuffer(buffers, buffers.Textures);
    for (const std::string& name : lumps::TextureNames(buffers.Textures, buffers.Layout))
    {
        (void)lumps::DeleteTextureEntry(buffers, "fuzz", name, buffers.Textures);
    }
}

} // namespace

void FuzzLumpTools(std::span<const std::uint8_t> input)
{
    RunGuarded(FatalRule::IsAFault,
               [&]
               {
                   ReadAsTable(input);
                   ReadAsDecorate(input);
                   ReadAsTarget(input);
                   MergeAsTextures(input);
               });
}

} // namespace kelvar::fuzz
