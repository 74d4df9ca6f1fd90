// Saving the palette editor's PLAYPAL and COLORMAP into a PWAD, rebuilt around them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PaletteSave.h"

#include "platform/Messages.h"
#include "wad/FileTable.h"
#include "wad/LumpName.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

namespace kelvar::gfx
{
namespace
{

// The bytes an entry is replaced by, or null when it is copied.
const std::vector<uint8_t>* Replacement(const std::string& name, const PaletteLumps& lumps)
{
    const wad::LumpName lump = wad::LumpName::From(name);
    if (lump.Is("PLAYPAL"))
    {
        return lumps.Playpal;
    }
    return lump.Is("COLORMAP") ? lumps.Colormap : nullptr;
}

// The target's entries with the chosen lumps replaced in place, then those it lacked
// appended, PLAYPAL first.
void PutLumpsInPlan(wad::RewritePlan& plan, const PaletteLumps& lumps)
{
    bool playpalDone = false;
    bool colormapDone = false;
    for (wad::RewriteEntry& entry : plan.Entries)
    {
        if (const std::vector<uint8_t>* bytes = Replacement(entry.Name, lumps))
        {
            (wad::LumpName::From(entry.Name).Is("PLAYPAL") ? playpalDone : colormapDone) = true;
            entry = wad::RewriteEntry::FromBytes(entry.Name, *bytes);
        }
    }
    if (lumps.Playpal != nullptr && !playpalDone)
    {
        plan.Entries.push_back(wad::RewriteEntry::FromBytes("PLAYPAL", *lumps.Playpal));
    }
    if (lumps.Colormap != nullptr && !colormapDone)
    {
        plan.Entries.push_back(wad::RewriteEntry::FromBytes("COLORMAP", *lumps.Colormap));
    }
}

std::filesystem::path ProposedTarget(const PaletteEditorState& state)
{
    for (int file : {state.PlaypalFile, state.ColormapFile})
    {
        if (file >= 1 && file < wad::FileTableSize)
        {
            return wad::Wad().Files[static_cast<size_t>(file)].FileName;
        }
    }
    return "*.WAD";
}

} // namespace

int WritePaletteLumps(const std::filesystem::path& target, const PaletteLumps& lumps)
{
    wad::RewritePlan plan;
    if (std::filesystem::exists(target))
    {
        std::optional<wad::RewritePlan> old = wad::PlanOfWad(target);
        if (!old)
        {
            return -1;
        }
        plan = std::move(*old);
        plan.Magic = "PWAD";
    }
    PutLumpsInPlan(plan, lumps);
    return wad::RewriteWad(target, plan) ? 1 : -1;
}

int SavePaletteLumps(const PaletteEditorState& state)
{
    if (!state.SavePlaypal && !state.SaveColormap)
    {
        platform::ShowError("Please select PLAYPAL and COLORMAP options");
        return 0;
    }
    platform::FileChoice choice;
    choice.Caption = "Target PWAD to receive PALETTE-COLORMAP Lumps";
    choice.Filter = "PWAD (*.WAD)|*.WAD|";
    choice.InitialPath = ProposedTarget(state);
    choice.ForSaving = true;
    const auto target = platform::TheUi().ChooseFile(choice);
    if (!target)
    {
        return 0;
    }
    // A target open in the program is closed for the rewrite and opened again after it.
    const int record = wad::FindFileRecord(target->string());
    wad::FileRec* open = record >= 0 ? &wad::Wad().Files[static_cast<size_t>(record)] : nullptr;
    if (open != nullptr && open->State == 'O')
    {
        open->Stream.reset();
        open->State = 'C';
    }
    PaletteLumps lumps;
    lumps.Playpal = state.SavePlaypal ? &state.Playpal : nullptr;
    lumps.Colormap = state.SaveColormap ? &state.Colormap : nullptr;
    const int result = WritePaletteLumps(*target, lumps);
    if (open != nullptr && open->State == 'C')
    {
        wad::EnsureOpen(*open);
    }
    return result;
}

} // namespace kelvar::gfx
