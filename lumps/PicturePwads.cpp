// PWADs of flats, sprites and patches for the graphics tools.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/PicturePwads.h"

#include "lumps/ToolFiles.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"

#include <string>

namespace kelvar::lumps
{
namespace
{

using wad::RewriteEntry;
using wad::RewritePlan;

// A plan of the lumps between two markers, under its panel captions.
RewritePlan MarkedPlan(const PictureLumps& lumps, const char* start, const char* end,
                       std::string caption, const std::filesystem::path& target)
{
    RewritePlan plan;
    plan.Entries.push_back(RewriteEntry::FromBytes(start));
    plan.Entries.insert(plan.Entries.end(), lumps.begin(), lumps.end());
    plan.Entries.push_back(RewriteEntry::FromBytes(end));
    plan.ProgressCaption = std::move(caption);
    plan.DirectoryCaption = platform::Format("Updating Entries %s", target.c_str());
    return plan;
}

// Writes `plan`, its panel counting the bytes to 100; a file the editor has open is refused.
// Returns 1, or 0 when nothing was written.
int WriteCounted(const std::filesystem::path& target, RewritePlan& plan)
{
    if (!TargetIsFree(target))
    {
        return 0;
    }
    plan.ProgressTotal = 1;
    for (const RewriteEntry& entry : plan.Entries)
    {
        plan.ProgressTotal += entry.DataSize();
    }
    return wad::RewriteWad(target, plan) ? 1 : 0;
}

// The writer's question, titled as the writer; true for yes.
bool AskMarkers(const char* title, const char* question)
{
    platform::Message message;
    message.Title = title;
    message.Lines = {question};
    message.Icon = platform::MessageIcon::Question;
    message.Buttons = platform::MessageButtons::YesNo;
    return platform::TheUi().Show(message) == 1;
}

// The save dialog of a writer; nothing when cancelled or when the editor has the file open.
std::optional<std::filesystem::path> AskTarget(const char* caption)
{
    platform::FileChoice choice;
    choice.Caption = caption;
    choice.Filter = "PWAD (*.WAD)|*.WAD|";
    choice.InitialPath = "*.WAD";
    choice.ForSaving = true;
    return ChooseFileNotInUse(choice);
}

int Outcome(int written)
{
    return written == 1 ? 1 : -1;
}

} // namespace

int WriteFlatPwad(const std::filesystem::path& target, const PictureLumps& flats,
                  bool doubledMarkers)
{
    const std::string caption = platform::Format("Making FLATs %s", target.c_str());
    RewritePlan plan = doubledMarkers ? MarkedPlan(flats, "FF_START", "FF_END", caption, target)
                                      : MarkedPlan(flats, "F_START", "F_END", caption, target);
    if (doubledMarkers)
    {
        // The engines that know only the single pair find the flats' end by this one.
        plan.Entries.push_back(RewriteEntry::FromBytes("F_END"));
    }
    return WriteCounted(target, plan);
}

int WriteSpritePwad(const std::filesystem::path& target, const PictureLumps& sprites,
                    bool doubledMarkers)
{
    const std::string caption = platform::Format("Making Sprites %s", target.c_str());
    RewritePlan plan = doubledMarkers ? MarkedPlan(sprites, "SS_START", "SS_END", caption, target)
                                      : MarkedPlan(sprites, "S_START", "S_END", caption, target);
    return WriteCounted(target, plan);
}

int WriteTexturePwad(const std::filesystem::path& target, const PictureLumps& patches,
                     const TextureControlLumps* control)
{
    RewritePlan plan = MarkedPlan(patches, "P_START", "P_END",
                                  platform::Format("Making Texture %s", target.c_str()), target);
    if (control != nullptr)
    {
        std::vector<RewriteEntry> definitions;
        for (const std::optional<RewriteEntry>* lump :
             {&control->Texture1, &control->Texture2, &control->Pnames})
        {
            if (lump->has_value())
            {
                definitions.push_back(**lump);
            }
        }
        plan.Entries.insert(plan.Entries.begin(), definitions.begin(), definitions.end());
    }
    return WriteCounted(target, plan);
}

int SaveFlatPwad(const PictureLumps& flats)
{
    const char* question = "Select control modification:\n\n"
                           "If you Reply Y, F_START, F_END is\n"
                           "changed to FF_START, FF_END\n"
                           "Refer to help for details.\n\n"
                           "Modify F_START to FF_START?";
    const bool doubled = AskMarkers("Flat PWAD", question);
    const std::optional<std::filesystem::path> target = AskTarget("Flat PWAD");
    return target ? Outcome(WriteFlatPwad(*target, flats, doubled)) : 0;
}

int SaveSpritePwad(const PictureLumps& sprites)
{
    const char* question = "Determine control modification.\n\n"
                           "If you Reply Y, S_START, S_END is\n"
                           "changed to SS_START, SS_END\n"
                           "Refer to help for details.\n\n"
                           "Modify S_START to SS_START?";
    const bool doubled = AskMarkers("Sprite PWAD", question);
    const std::optional<std::filesystem::path> target = AskTarget("Sprite PWAD");
    return target ? Outcome(WriteSpritePwad(*target, sprites, doubled)) : 0;
}

int SaveTexturePwad(const PictureLumps& patches, const TextureControlLumps& control)
{
    const char* question = "Determine control inclusion\n\n"
                           "If you Reply Y, all the control\n"
                           "information is also saved,\n"
                           "Refer to help for details.\n\n"
                           "Include TEXTURE & PNAME control?";
    const bool withControl = AskMarkers("Texture PWAD", question);
    const std::optional<std::filesystem::path> target = AskTarget("Texture PWAD");
    return target ? Outcome(WriteTexturePwad(*target, patches, withControl ? &control : nullptr))
                  : 0;
}

} // namespace kelvar::lumps
