// The external programs' settings (test launcher, node builder) between the status records and
// their state.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RunSettings.h"

#include "app/ShellState.h"
#include "run/RunState.h"
#include "wad/WadState.h"

#include <utility>

namespace kelvar::app
{
namespace
{

// The one-byte switches, record field against option. Pointers to members are used for the
// byte fields only: a wider field of a packed record may be misaligned.
using ProjectByte = std::uint8_t ProjectRecord::*;
using TestFlag = bool run::TestOptions::*;
constexpr std::pair<ProjectByte, TestFlag> ProjectFlags[] = {
    {&ProjectRecord::ResponseFile, &run::TestOptions::ResponseFile},
    {&ProjectRecord::ShortFileNames, &run::TestOptions::ShortFileNames},
    {&ProjectRecord::QuoteResponse, &run::TestOptions::QuoteResponse},
    {&ProjectRecord::QuoteFileNames, &run::TestOptions::QuoteFileNames},
    {&ProjectRecord::LoadAllFiles, &run::TestOptions::LoadAllFiles},
    {&ProjectRecord::WaitForGame, &run::TestOptions::WaitForGame},
    {&ProjectRecord::DevParm, &run::TestOptions::DevParm},
    {&ProjectRecord::NoMonsters, &run::TestOptions::NoMonsters},
    {&ProjectRecord::NoMusic, &run::TestOptions::NoMusic},
    {&ProjectRecord::NoSound, &run::TestOptions::NoSound},
    {&ProjectRecord::NoSfx, &run::TestOptions::NoSfx},
    {&ProjectRecord::FastMonsters, &run::TestOptions::FastMonsters},
    {&ProjectRecord::Deathmatch, &run::TestOptions::Deathmatch},
    {&ProjectRecord::AltDeath, &run::TestOptions::AltDeath},
    {&ProjectRecord::Respawn, &run::TestOptions::Respawn},
};

using ChkByte = std::uint8_t ChkRecord::*;
using ViewerFlag = bool run::Viewer3DOptions::*;
constexpr std::pair<ChkByte, ViewerFlag> ViewerFlags[] = {
    {&ChkRecord::ViewerLoadAllFiles, &run::Viewer3DOptions::LoadAllFiles},
    {&ChkRecord::ViewerWait, &run::Viewer3DOptions::WaitFor3D},
    {&ChkRecord::ViewerNoMonsters, &run::Viewer3DOptions::NoMonsters},
    {&ChkRecord::ViewerNoMd2, &run::Viewer3DOptions::NoMd2},
    {&ChkRecord::ViewerNoObjects, &run::Viewer3DOptions::NoObjects},
    {&ChkRecord::ViewerLightsActive, &run::Viewer3DOptions::LightsActive},
    {&ChkRecord::ViewerNoConsole, &run::Viewer3DOptions::NoConsole},
    {&ChkRecord::ViewerNoSprites, &run::Viewer3DOptions::NoSprites},
    {&ChkRecord::ViewerNoEscape, &run::Viewer3DOptions::NoEscape},
    {&ChkRecord::ViewerNoInfight, &run::Viewer3DOptions::NoInfight},
    {&ChkRecord::ViewerAutoPosition, &run::Viewer3DOptions::AutoPosition},
    {&ChkRecord::ViewerInvisibleThings, &run::Viewer3DOptions::InvisibleThings},
    {&ChkRecord::ViewerClipToFloor, &run::Viewer3DOptions::ClipToFloor},
    {&ChkRecord::ViewerClipToCeiling, &run::Viewer3DOptions::ClipToCeiling},
    {&ChkRecord::ViewerAutoSpeed, &run::Viewer3DOptions::AutoSpeed},
    {&ChkRecord::ViewerAnalyze, &run::Viewer3DOptions::Analyze},
    {&ChkRecord::ViewerCaching, &run::Viewer3DOptions::Caching},
    {&ChkRecord::ViewerUseSpecials, &run::Viewer3DOptions::UseSpecials},
    {&ChkRecord::ViewerHiResFlats, &run::Viewer3DOptions::HiResFlats},
    {&ChkRecord::ViewerHiResTx, &run::Viewer3DOptions::HiResTx},
    {&ChkRecord::ViewerHiResTexture, &run::Viewer3DOptions::HiResTexture},
    {&ChkRecord::ViewerDisableWKey, &run::Viewer3DOptions::DisableWKey},
    {&ChkRecord::ViewerShowInvisibleLines, &run::Viewer3DOptions::ShowInvisibleLines},
    {&ChkRecord::ViewerRemoveUnused, &run::Viewer3DOptions::RemoveUnused},
    {&ChkRecord::ViewerApplyMissingTextures, &run::Viewer3DOptions::ApplyMissingTextures},
    {&ChkRecord::ViewerCheckInvalidTextures, &run::Viewer3DOptions::CheckInvalidTextures},
    {&ChkRecord::ViewerMergeVertices, &run::Viewer3DOptions::MergeDuplicateVertices},
    {&ChkRecord::ViewerSeeNodeResults, &run::Viewer3DOptions::SeeNodeResults},
    {&ChkRecord::ViewerCopySpecialLumps, &run::Viewer3DOptions::CopyAllSpecialLumps},
    {&ChkRecord::ViewerAutoFixSides, &run::Viewer3DOptions::AutoFixSides},
    {&ChkRecord::ViewerClearSectorSpecials, &run::Viewer3DOptions::ClearSectorSpecials},
    {&ChkRecord::ViewerR3dglbspNodes, &run::Viewer3DOptions::R3dglbspNodes},
};

// A stored choice out of range (a file edited by hand) falls back to the first.
template <typename Choice> Choice ChoiceOf(std::uint8_t stored, Choice last)
{
    return stored <= static_cast<std::uint8_t>(last) ? static_cast<Choice>(stored) : Choice{};
}

void ViewerFromChk(const ChkRecord& chk, run::Viewer3DOptions& viewer)
{
    viewer.ViewerPath = GetText(chk.ViewerPath);
    viewer.ViewerDirectory = GetText(chk.ViewerDirectory);
    viewer.ViewerParameters = GetText(chk.ViewerParameters);
    viewer.Prompt = chk.Prompt3DTestingOptions != 0;
    for (const auto& [field, flag] : ViewerFlags)
    {
        viewer.*flag = chk.*field != 0;
    }
    viewer.Scope = ChoiceOf(chk.ViewerScope, run::ViewerScope::Play);
    viewer.Screen = ChoiceOf(chk.ViewerScreen, run::ViewerScreen::CustomWindow);
    viewer.Width = chk.ViewerWidth;
    viewer.Height = chk.ViewerHeight;
    viewer.XPos = chk.ViewerXPos;
    viewer.YPos = chk.ViewerYPos;
    viewer.Skill = chk.ViewerSkill;
    viewer.Speed = chk.ViewerSpeed;
    viewer.Memory = chk.ViewerMemory;
    viewer.MaxFps = chk.ViewerMaxFps;
}

void ViewerToChk(const run::Viewer3DOptions& viewer, ChkRecord& chk)
{
    SetText(chk.ViewerPath, viewer.ViewerPath);
    SetText(chk.ViewerDirectory, viewer.ViewerDirectory);
    SetText(chk.ViewerParameters, viewer.ViewerParameters);
    chk.Prompt3DTestingOptions = viewer.Prompt ? 1 : 0;
    for (const auto& [field, flag] : ViewerFlags)
    {
        chk.*field = viewer.*flag ? 1 : 0;
    }
    chk.ViewerScope = static_cast<std::uint8_t>(viewer.Scope);
    chk.ViewerScreen = static_cast<std::uint8_t>(viewer.Screen);
    chk.ViewerWidth = viewer.Width;
    chk.ViewerHeight = viewer.Height;
    chk.ViewerXPos = viewer.XPos;
    chk.ViewerYPos = viewer.YPos;
    chk.ViewerSkill = viewer.Skill;
    chk.ViewerSpeed = viewer.Speed;
    chk.ViewerMemory = viewer.Memory;
    chk.ViewerMaxFps = viewer.MaxFps;
}

} // namespace

void TestOptionsFromRecords(const ChkRecord& chk, const ProjectRecord& project,
                            run::TestOptions& test)
{
    test.GameExe = GetText(project.GameExe);
    test.GameDirectory = GetText(project.GameDirectory);
    test.WarpText = GetText(project.WarpText);
    test.ExtraParameters = GetText(project.ExtraParameters);
    test.Skill = project.Skill;
    test.Turbo = project.Turbo;
    for (const auto& [field, flag] : ProjectFlags)
    {
        test.*flag = project.*field != 0;
    }
    ViewerFromChk(chk, test.Viewer);
}

void TestOptionsToRecords(const run::TestOptions& test, ChkRecord& chk, ProjectRecord& project)
{
    SetText(project.GameExe, test.GameExe);
    SetText(project.GameDirectory, test.GameDirectory);
    SetText(project.WarpText, test.WarpText);
    SetText(project.ExtraParameters, test.ExtraParameters);
    project.Skill = test.Skill;
    project.Turbo = test.Turbo;
    for (const auto& [field, flag] : ProjectFlags)
    {
        project.*field = test.*flag ? 1 : 0;
    }
    ViewerToChk(test.Viewer, chk);
}

void BuilderOptionsFromRecords(const ChkRecord& chk, const ProjectRecord& project,
                               run::BuilderOptions& builder)
{
    builder.NodeType = chk.NodeType >= 1 && chk.NodeType <= 3 ? chk.NodeType : 1;
    builder.SplitMode = chk.SplitMode >= 0 && chk.SplitMode <= 3 ? chk.SplitMode : 0;
    builder.SplitFactor = chk.SplitFactor >= 5 && chk.SplitFactor <= 100 ? chk.SplitFactor : 16;
    builder.IgnoreTwoSided = chk.IgnoreTwoSidedLineDefs != 0;
    builder.SpecialSectorTags = chk.SpecialSectorTags != 0;
    builder.SpecialLineDefTags = chk.SpecialLineDefTags != 0;
    builder.MergeVertices = chk.MergeDuplicateVertices != 0;
    builder.FixGlNodes = chk.FixGlNodes != 0;
    builder.ForceExtended = chk.ForceExtendedNodes != 0;
    builder.SuppressExtendedMessages = project.SuppressExtendedMessages != 0;
    builder.GlNodes = project.GlNodes != 0;
    builder.GlNodesV3 = project.GlNodesV3 != 0;
    builder.ZdoomHexenFormat = project.ZdoomHexenFormat != 0;
    builder.ZeroBlockmap = project.ZeroBlockmap != 0;
    builder.ShowBuild = chk.ShowNodeBuild != 0;
    builder.SeeResults = chk.SeeNodeResults != 0;
    builder.CustomBuilder = project.CustomBuilder != 0;
    builder.CustomName = GetText(project.CustomName);
    builder.CustomExe = GetText(project.CustomExe);
    builder.CustomParameters = GetText(project.CustomParameters);
    builder.CustomDirectory = GetText(project.CustomDirectory);
}

run::BuilderOptions& PrepareBuilder()
{
    run::BuilderOptions& builder = run::Run().Builder;
    BuilderOptionsFromRecords(Shell().Chk, Shell().Project, builder);
    builder.ProgramDir = wad::Wad().ProgramDir;
    return builder;
}

} // namespace kelvar::app
