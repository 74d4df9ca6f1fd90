// The built-in defaults of KELVAR.CHK, projects, game configurations and tool files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/StatusDefaults.h"

#include "map/GameCodes.h"
#include "wad/GameIdentity.h"

#include <cstdlib>

namespace kelvar::app
{
namespace
{

std::string EnvironmentText(const char* name)
{
    const char* value = std::getenv(name);
    return value != nullptr ? std::string(value) : std::string();
}

void SetOptionDefaults(ChkRecord& chk)
{
    chk.SelectedObjectsSolid = 256;
    chk.DialogRestoreCursor = 1;
    chk.ShowObjectTip = 1;
    chk.CursorKeysMoveMap = 1;
    chk.LineMergePastePrefabs = 1;
    chk.FixGlNodes = 1;
    chk.NodeType = 1; // the builder's options: "1NNNN16 N"
    chk.SplitFactor = 16;
    chk.DisplaySolidThings = 1;
    chk.Prompt3DTestingOptions = 1;
    // The level checks are all on but the two offset checks.
    for (std::uint8_t* check :
         {&chk.CheckPlayerStarts, &chk.UpperTexture, &chk.NormalTexture, &chk.LowerTexture,
          &chk.MultiPatchTextures, &chk.SectorClosed1, &chk.SectorClosed2, &chk.ThingsInSector,
          &chk.ThingsOnTop, &chk.CheckTags, &chk.CheckKeys, &chk.CheckShortLines,
          &chk.CheckDuplicateSideDefs, &chk.CheckDuplicateVertices, &chk.CheckDuplicateLineDefs,
          &chk.CheckOverlappingLineDefs})
    {
        *check = 1;
    }
    chk.ThingShooter = 257;
    chk.CheckThingTypes = 1;
    chk.SectorClosed3 = 257;
    chk.SelectBoxDashed = 1;
    chk.GridDashed = 1;
    chk.DecimalTypes = 1;
    chk.DuplicateLumpMsg = 1;
    chk.AutomaticDrawIntersections = 1;
    chk.NewIntersectionSectors = 1;
    chk.EnableSoundSelect = 1;
    chk.LineMergeDragTools = 1;
    chk.VertexSplitDragTools = 1;
    chk.VertexMergeDragTools = 1;
    chk.ToolContinue = 1;
    chk.EnableUndo = 1;
    chk.MoveSectorThings = 1;
    chk.DragSectorThings = 1;
    chk.VertexDelJoinLineDefs = 1;
    chk.SmartDraw = 1;
    chk.Correct3D = 1;
    chk.GroupSave = 257;
    chk.LineMergeDragTools2 = 1;
    chk.VertexSplitDragTools2 = 1;
    chk.VertexMergeDragTools2 = 1;
    chk.AutoLoadLevels = 1;
    chk.AdditiveSelect = 1;
    chk.VertexArrows = 1;
}

// Windows programs without a Linux counterpart keep their stored paths: the user points them
// at an installation (under Wine, say). The others name what a Debian desktop has.
void SetProgramDefaults(ChkRecord& chk)
{
    SetText(chk.TextEditor, DefaultTextEditor());
    SetText(chk.ViewerPath, "c:\\R3Kelvar\\bin\\R3Kelvar.EXE");
    SetText(chk.ViewerDirectory, "c:\\R3Kelvar\\bin");
    SetText(chk.PaintProgram, "gimp");
    SetText(chk.QuakeMapsDir, "/usr/share/games/quake/id1/maps");
    SetText(chk.QuakeGfxDir, "/usr/share/games/quake/gfx/");
    SetText(chk.QuakeId1Dir, "/usr/share/games/quake/id1/");
    for (std::size_t i = 0; i < ToolFileCount; ++i)
    {
        SetText(chk.ToolFiles[i], DefaultToolFileNames[i]);
    }
}

void SetTextLumpDefaults(ProjectRecord& project)
{
    SetText(project.ScriptFile, "SCRIPT.ACS");
    SetText(project.ObjectFilter, "*.O");
    SetText(project.MapinfoFile, "MAPINFO.txt");
    SetText(project.SndinfoFile, "SNDINFO.txt");
    SetText(project.SndseqFile, "SNDSEQ.txt");
    SetText(project.AnimdefsFile, "ANIMDEFS.txt");
    SetText(project.DehackedFile, "DEHACKED.deh");
    SetText(project.FraggleFile, "FRAGGLE.fs");
    SetText(project.AnyTextFile, "any.txt");
}

void SetTool(ToolSlot& slot, const char* description, const std::string& program,
             const char* parameters)
{
    SetText(slot.Description, description);
    SetText(slot.ToolExe, program);
    SetText(slot.ToolParameters, parameters);
}

} // namespace

std::string DefaultTextEditor()
{
    for (const char* variable : {"VISUAL", "EDITOR"})
    {
        const std::string editor = EnvironmentText(variable);
        if (!editor.empty() && editor.size() < RecordPathSize)
        {
            return editor;
        }
    }
    return "xdg-open";
}

ChkRecord DefaultChk()
{
    ChkRecord chk{};
    StampFrame(chk);
    SetText(chk.ProjectFile, "DOOM2.PRJ");
    chk.AdditionalLumpEntries = 32000;
    chk.UndoLimit = 100;
    chk.TipOfTheDay = 1;
    chk.AutoSavePeriod = 10;
    chk.GridSize = 8;
    chk.BlankerDelay = 10;
    chk.EditMode = 8;
    SetOptionDefaults(chk);
    SetProgramDefaults(chk);
    chk.WindowRect = StatusRect{-100, -100, -100, -100};
    for (StatusRect& pane : chk.PaneRects)
    {
        pane = StatusRect{-100, -100, -100, -100};
    }
    chk.TailSettings[0] = 35;
    chk.TailSettings[1] = 10;
    chk.TailSettings[2] = 30;
    return chk;
}

ProjectRecord DefaultProject()
{
    ProjectRecord project{};
    StampFrame(project);
    project.Zoom = 1.0F;
    project.ViewX = -32666.0;
    project.ViewY = -32666.0;
    project.FileLimit = 100;
    project.LevelListLimit = 200;
    project.ReservedWord = 0x682D;
    // Named by the pattern of the node builder, kelvarbsp: the script compiler the editor runs.
    SetText(project.CompilerPath, "kelvaracc");
    SetText(project.TcfFile, "DOOM2.TCF");
    SetText(project.IwadPath, std::string(IwadFolder) + "freedoom2.wad");
    SetText(project.GameExe, "chocolate-doom");
    SetText(project.OptFile, "DOOM2.OPT");
    project.Skill = 4;
    project.CopyReject = 1; // a save keeps the reject table, grown with zeros for new Sectors
    SetText(project.ExtraParameters, ":");
    SetTextLumpDefaults(project);
    PutCustomBuilderDefaults(project, false);
    project.ProjectMarker = NeverUsedMark;
    project.ListMarker = NeverUsedMark;
    return project;
}

void PutDefaultUserTools(ProjectRecord& project)
{
    SetTool(project.UserTools[0], "NotePad", DefaultTextEditor(), "");
    SetTool(project.UserTools[1], "DOS shell", "x-terminal-emulator", "");
    SetTool(project.UserTools[2], "Midi2Mus", "midi2mus",
            "file.mid  (type MIDI file to convert here and delete this comment");
}

void PutCustomBuilderDefaults(ProjectRecord& project, bool zdoomFormat)
{
    SetText(project.CustomName, "Custom Nodebuilder (modify parms to suit)");
    if (zdoomFormat)
    {
        SetText(project.CustomExe, "zennode.exe (for example replace with your location)");
        SetText(project.CustomParameters, "-rz ~kelvar.wad %level -o $pwad");
    }
    else
    {
        SetText(project.CustomExe, "Glbsp.exe (for example replace with your location)");
        SetText(project.CustomParameters, "~kelvar.wad -o $pwad");
    }
}

std::string ConfigFileName(int game, bool boomTypes, bool zdoomHexenFormat)
{
    // A ZDoom-format project's levels are of Hexen format, whatever its IWAD.
    const int format = zdoomHexenFormat ? 4 : game;
    return wad::NamesOfFormat(format, game, boomTypes, zdoomHexenFormat).ConfigFile;
}

GameConfigRecord DefaultGameConfig(int game, bool boomTypes, bool zdoomHexenFormat)
{
    GameConfigRecord config{};
    StampFrame(config);
    const bool hexenLayout = zdoomHexenFormat || game == map::GameHexen;
    config.Format = static_cast<std::int16_t>(hexenLayout ? 4 : game);
    config.LevelEntries = hexenLayout ? 12 : 11;

    // The colours are those of every game's map; the ranges follow the level layout.
    config.ColorSelection = 4;
    config.ColorVertex = 9;
    config.ColorGrid64 = 7;
    config.ColorLine2Sided = 29;
    config.ColorLine1Sided = 15;
    config.ColorBackground = 59;
    config.ColorLineSecret = 21;
    config.ColorLineHidden = 22;
    config.ColorBackgroundThings = 62;
    config.ColorLineMonsterBlock = 19;
    config.ColorLineBlockSound = 18;
    config.ColorLineSpecial = 10;
    config.ColorLineTypedNoTag = 13;
    config.ColorLineTagged = 12;
    config.ColorSectorTyped = 9;
    config.ColorLineScript = 9;
    config.ColorLineTeleport = 26;
    config.VertexSize = 4;

    const bool extended = hexenLayout ? zdoomHexenFormat : (game <= map::GameDoom2 && boomTypes);
    config.ExtendedTypes = extended ? 1 : 0;
    config.ThingTypes = TypeRange{1, 32767};
    config.SectorTypes = TypeRange{0, 32767};
    config.Tags = TypeRange{0, 32767};
    // A Hexen-layout line has a one-byte special and five one-byte arguments.
    config.LineTypes = hexenLayout ? TypeRange{0, 255} : TypeRange{0, 32767};
    config.Args = hexenLayout ? TypeRange{0, 255} : TypeRange{0, 0};
    return config;
}

ToolRecord DefaultToolFile(int toolbarNumber)
{
    ToolRecord tools{};
    StampFrame(tools);
    tools.ToolbarNumber = static_cast<std::int16_t>(toolbarNumber);
    return tools;
}

} // namespace kelvar::app
