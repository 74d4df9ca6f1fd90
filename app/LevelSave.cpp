// The conversation of a level save, around the WAD layer's plan and write.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/LevelSave.h"

#include "app/RunSettings.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "check/SaveChecks.h"
#include "map/MapState.h"
#include "platform/Messages.h"
#include "run/NodeBuilder.h"
#include "run/RunState.h"
#include "wad/CheckedFile.h"
#include "wad/LevelFile.h"
#include "wad/SavePath.h"
#include "wad/WadState.h"

namespace kelvar::app
{
namespace
{

using wad::SaveOptions;
using wad::SavePlan;

bool AskFormatLimits(const map::LevelData& level)
{
    const int sides = level.SideDefs.Count();
    const int vertexes = level.Vertexes.Count();
    const int sectors = level.Sectors.Count();
    if (sides <= 65534 && vertexes <= 65534 && sectors < 32768)
    {
        return true;
    }
    return platform::AskYesNo(
        "The number of Sidedefs, Vertices or Sectors is too large\nto save using the DOOM format "
        "- data will be LOST!\n%d sidedefs %d vertices %d sectors\n\n(max sidedefs=65534 ver "
        "=65534 sectors=32767)\n\nContinue with Save Using Kelvar Extended Format?",
        sides, vertexes, sectors);
}

bool AskOtherGameLevels()
{
    if (wad::Wad().OtherGameLevels <= 0)
    {
        return true;
    }
    return platform::ShowMessageLines(platform::LinesCancel, "**WARNING**",
                                      {"Levels from another game found"}) == 1;
}

// The Save dialog, when the code or the file asks for it. Its Group Save box starts on with the
// option or when the file holds more than the level, and its answer decides whether the other
// lumps go along; a box the user changed becomes the option. False: cancelled.
bool AskSaveChoices(SavePlan& plan, const map::LevelData& level)
{
    wad::WadState& wad = wad::Wad();
    SaveOptions& choices = plan.Choices;
    choices.RebuildNodes = level.GeometryChangeCount != 0 || plan.Code == wad::BuildNodesCode ||
                           plan.Code == wad::BuildNodesAsCode;
    const bool groupAtStart = wad.Options.GroupSave || plan.FileHasMore;
    choices.GroupSave = groupAtStart;
    choices.FileName = plan.TargetPath;
    const bool show = plan.Code == wad::NewRejectCode || choices.RebuildNodes ||
                      (!wad.Options.GroupSave && plan.FileHasMore);
    const auto& dialog = Session().Hooks.SaveDialog;
    if (show && dialog && !dialog(choices))
    {
        return false;
    }
    if (choices.GroupSave != groupAtStart)
    {
        wad.Options.GroupSave = choices.GroupSave;
    }
    plan.Group = plan.FromPwad && choices.GroupSave;
    if (choices.ZeroNodes)
    {
        choices.RebuildNodes = false;
    }
    // The choices come back as the defaults of the next save.
    wad.SaveChoices = choices;
    return true;
}

// The clean-up of unused objects before the write, with SaveBusy clear so its own checks run.
void CleanUpUnused(map::LevelData& level, SavePlan& plan)
{
    map::MapState& map = map::Map();
    const bool busy = map.SaveBusy;
    const std::uint16_t geometry = level.GeometryChangeCount;
    map.SaveBusy = false;
    if (check::CheckUnused(level))
    {
        ++level.ChangeCount;
        ++level.GeometryChangeCount;
    }
    map.SaveBusy = busy;
    // Removed Vertexes renumber the rest: the old node lumps would point at the wrong ones, so
    // without a build they go out empty and the nodes stay to be built.
    if (level.GeometryChangeCount != geometry && !plan.BuildNodes)
    {
        plan.Choices.ZeroNodes = true;
    }
}

// The node builder of the project's choice on the written file; 0 is success. The Save
// dialog's choices of this save stand over the stored ones.
int BuildNodes(const SavePlan& plan)
{
    run::BuilderOptions& builder = PrepareBuilder();
    const SaveOptions& choices = plan.Choices;
    builder.ShowBuild = choices.ShowBuild;
    builder.SeeResults = choices.SeeResults;
    builder.CustomBuilder = choices.CustomBuilder;
    builder.ZeroBlockmap = choices.ZeroBlockmap;
    return builder.CustomBuilder
               ? run::RunCustomBuilder(plan.WritePath, plan.TargetPath, plan.LevelName, false)
               : run::RunBuiltInBuilder(plan.TargetPath, plan.LevelName, true);
}

// The node builder on the temporary file. Its failure offers to copy the temporary file to
// the target, so the user keeps the level without new nodes.
void RunNodeBuilder(const SavePlan& plan, map::LevelData& level)
{
    const int result = BuildNodes(plan);
    if (result == 0)
    {
        level.GeometryChangeCount = 0;
        return;
    }
    const int recover = platform::ShowMessageLines(
        platform::LinesCancel, "Node Error",
        {"Node Building Error Occurred", "Do you want Kelvar to copy", plan.WritePath,
         "- back to -", plan.TargetPath, "Otherwise you will get a", "file not found message?"});
    if (recover != 1)
    {
        if (platform::AskYesNo("Are you sure you don't want to recover?"))
        {
            return;
        }
    }
    wad::StreamPtr source = wad::CheckedOpen(plan.WritePath, "rb", 0);
    if (!source)
    {
        platform::ShowError("Unable to open %s\n\nUse File Open/Edit to reset",
                            plan.WritePath.c_str());
        platform::ShowError("Next msg will say %s notfound\n\nUse .BAK or ~kelvar.wad version to "
                            "recover",
                            plan.TargetPath.c_str());
        return;
    }
    const std::int64_t size = wad::FileSize(source.get(), 0);
    if (wad::CopyToNewFile(source.get(), 0, size, plan.TargetPath) != 1)
    {
        platform::ShowError("Unable to create %s\n\nUse File Open/Edit to reset",
                            plan.TargetPath.c_str());
        platform::ShowError("Next msg will say %s notfound\n\nUse .BAK or ~kelvar.wad version to "
                            "recover",
                            plan.TargetPath.c_str());
        return;
    }
    platform::ShowInfo("File %s recovered", plan.TargetPath.c_str());
}

// The plan's node build: it needs Things to build for and a builder that can run.
void ChooseNodeBuild(map::LevelData& level, SavePlan& plan)
{
    if (level.Things.Count() == 0 || !plan.Choices.RebuildNodes)
    {
        return;
    }
    ++level.ChangeCount;
    ++level.GeometryChangeCount;
    wad::WadState& wad = wad::Wad();
    if (wad.Hooks.DropCatalogues)
    {
        wad.Hooks.DropCatalogues();
    }
    plan.BuildNodes = true;
    plan.WritePath = (wad.ProgramDir / wad::NodeBuildFileName).string();
}

} // namespace

int WriteLevelFile(map::LevelData& level, const std::string& path, const std::string& oldPath,
                   int code, const std::optional<wad::LumpReplace>& replace,
                   const std::string& oldLevelName)
{
    Shell().Requests.RedrawMap = true;
    if (path.empty())
    {
        return -1;
    }
    std::optional<SavePlan> plan = wad::PlanLevelSave(level, path, code, replace, oldLevelName);
    if (!plan)
    {
        return wad::RestoreBak(path);
    }
    if (level.LineDefs.Count() == 0 || level.SideDefs.Count() == 0 || level.Sectors.Count() == 0)
    {
        platform::ShowMessageLines(0, "Nothing Made",
                                   {"!! Please MAKE something first !!", "Nothing saved"});
        return wad::RestoreBak(path);
    }
    if (!AskFormatLimits(level) || !AskOtherGameLevels() || !AskSaveChoices(*plan, level))
    {
        return wad::RestoreBak(path);
    }
    plan->Rows = wad::ProjectRowLayout(level, true);
    ChooseNodeBuild(level, *plan);

    wad::WadOutput out;
    if (!wad::CreateSaveOutput(*plan, out))
    {
        return wad::AbandonLevelSave(out, *plan, path);
    }
    if (plan->Choices.UnusedCleanup)
    {
        CleanUpUnused(level, *plan);
        plan->Rows = wad::ProjectRowLayout(level, true);
    }
    if (!wad::WriteLevelSave(out, level, *plan))
    {
        return wad::AbandonLevelSave(out, *plan, path);
    }
    wad::FinishLevelSave(level, oldPath, plan->TargetPath);
    if (plan->BuildNodes)
    {
        RunNodeBuilder(*plan, level);
    }
    Shell().Requests.RedrawMap = true;
    return 0;
}

} // namespace kelvar::app
