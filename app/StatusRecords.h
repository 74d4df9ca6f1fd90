// The five status records: KELVAR.CHK, projects, game configurations, texture controls, tools.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Each status file is the raw image of one record, read and written as one block, so a
//   field sits at the same offset in the file and in the struct. The structs are packed and
//   spell out every gap as a reserved byte array; StatusFields.cpp checks every named field's
//   offset at compile time.
// - The files are little-endian, and so is every machine Kelvar builds for (x86-64, ARM);
//   the records are used in place, without byte swapping.
// - Every record starts with the frame (tag "x" plus the kind, layout version, size) and ends
//   with the word 0x6666 ("ff"). A reader refuses a record whose frame doesn't match.
// - Fields of packed structs may be misaligned: copy them, never bind a reference to one.
// - Gaps are free for settings of later subsystems; claim them by splitting a reserved array.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kelvar::app
{

static_assert(std::endian::native == std::endian::little,
              "status records are little-endian block images");

/// The end word of every record, and the project marker of a project used by a session: "ff".
inline constexpr std::uint16_t EndMark = 0x6666;
/// The project marker of a project that no session has used yet: "ee".
inline constexpr std::uint16_t NeverUsedMark = 0x6565;

/// Bytes of a file name in a status record (127 characters and the terminator).
inline constexpr std::size_t RecordPathSize = 128;
/// Bytes of a file name in the project's name lists (259 characters and the terminator).
inline constexpr std::size_t ListPathSize = 260;
/// Entries of OpenFiles, and of the two recent lists.
inline constexpr std::size_t OpenFileCount = 101;
inline constexpr std::size_t RecentCount = 20;
/// User tool slots in a project.
inline constexpr std::size_t UserToolCount = 8;
/// Tool files named in KELVAR.CHK.
inline constexpr std::size_t ToolFileCount = 5;

#pragma pack(push, 1)

/// The first eight bytes of every record.
struct StatusFrame
{
    char Tag[4];           // 'x' and the three letters of the kind
    std::uint16_t Version; // layout version
    std::uint16_t Size;    // record size in bytes, frame and end word included

    bool operator==(const StatusFrame&) const = default;
};

/// A rectangle of screen pixels; -100 in a stored one means "not set".
struct StatusRect
{
    std::int32_t Left;
    std::int32_t Top;
    std::int32_t Right;
    std::int32_t Bottom;

    bool operator==(const StatusRect&) const = default;
};

/// A texture or flat name of a texture control: 8 characters, not terminated when 8 long,
/// and two spare bytes.
struct TcfName
{
    char Name[8];
    std::uint8_t Spare[2];

    bool operator==(const TcfName&) const = default;
};

/// One user tool: a program the editor starts with the level's files on its command line.
struct ToolSlot
{
    char Description[80];
    char ToolExe[RecordPathSize];
    char ToolParameters[RecordPathSize];
    char ToolDirectory[RecordPathSize];
    std::uint8_t DosProgram;
    std::uint8_t MinimizeEditor;
    std::uint8_t WaitForTool;
    std::uint8_t AlwaysPrompt;

    bool operator==(const ToolSlot&) const = default;
};

/// A range of values the object editors accept for one field.
struct TypeRange
{
    std::int16_t Low;
    std::int16_t High;

    bool operator==(const TypeRange&) const = default;
};

/// KELVAR.CHK: the program's settings, one per installation.
struct ChkRecord
{
    static constexpr std::string_view Kind = "CHK";
    static constexpr std::uint16_t LayoutVersion = 4496;
    static constexpr std::uint16_t RecordSize = 2750;

    StatusFrame Frame;
    std::uint8_t Reserved8[8];
    std::int32_t SessionWord; // 1 running, 0 clean exit, 166 start-up cancelled
    char ProjectFile[RecordPathSize];
    std::uint8_t Reserved148[4];
    std::int16_t AdditionalLumpEntries;
    std::int16_t UndoLimit;
    std::uint8_t Reserved156[101];
    std::int16_t SelectedObjectsSolid;
    std::uint8_t SkipEnvironmentChecks; // companion of Auto Start Program
    std::uint8_t Reserved260[3];
    std::uint8_t TipOfTheDay;
    std::int16_t AutoStartReminder; // 2: the AutoStart reminder stays away
    std::int16_t AutoSavePeriod;    // minutes: 0, 5, 10, 20, 30 or 60
    std::uint8_t DialogRestoreCursor;
    std::uint8_t ShowObjectTip;
    std::uint8_t MouseClickMovesMap;
    std::uint8_t CursorKeysMoveMap;
    std::uint8_t LineMergePastePrefabs;
    std::uint8_t MouseWheelModeChange;
    std::int16_t ShowNodeBuild;
    std::uint8_t MergeDuplicateVertices;
    std::uint8_t FixGlNodes;
    std::int16_t ForceExtendedNodes;
    std::int16_t NodeType;    // 1 to 3: "Type 1 Nodes (default)" ...
    std::int16_t SplitMode;   // 0 "No Split", 1 "Auto Split", 2 "Vertical", 3 "Horizontal Split"
    std::int16_t SplitFactor; // 5 to 100, default 16
    std::int16_t IgnoreTwoSidedLineDefs;
    std::int16_t SeeNodeResults; // "See Results ? [Nodes are not shown - KelvarBSP]"
    std::int16_t SpecialLineDefTags;
    std::int16_t SpecialSectorTags;
    std::int16_t GridSize;
    std::uint8_t Reserved296[10];
    std::int16_t DisplaySolidThings;
    std::int16_t Prompt3DTestingOptions;
    std::uint8_t CheckPlayerStarts;
    std::uint8_t UpperTexture;
    std::uint8_t NormalTexture;
    std::uint8_t LowerTexture;
    std::uint8_t XOffsets;
    std::uint8_t YOffsets;
    std::uint8_t MultiPatchTextures;
    std::uint8_t SectorClosed1;
    std::uint8_t SectorClosed2;
    std::uint8_t ThingsInSector;
    std::uint8_t ThingsOnTop;
    std::uint8_t CheckTags;
    std::uint8_t CheckKeys;
    std::uint8_t CheckShortLines;
    std::uint8_t CheckDuplicateSideDefs;
    std::uint8_t CheckDuplicateVertices;
    std::uint8_t CheckDuplicateLineDefs;
    std::uint8_t CheckOverlappingLineDefs;
    std::int16_t ThingShooter;
    std::uint8_t CheckThingTypes;
    std::int16_t SectorClosed3;
    std::uint8_t ShortestLine; // "Shortest Line to check", 0 to 8 map units
    std::uint8_t Reserved334[24];
    std::int16_t SelectBoxDashed;
    std::int16_t GridDashed;
    std::uint8_t Reserved362[5];
    std::uint8_t KeepExtraVertexDrawing;
    std::int16_t ShowDetailedScroll;
    std::int16_t ShowDetailedZoom;
    std::int16_t NoIwadWarningMsg;
    std::int16_t DecimalTypes;
    std::int16_t AutomaticSideUnpack;
    std::int16_t BlankerDelay; // minutes
    std::uint8_t Reserved380[16];
    std::uint8_t DuplicateLumpMsg;
    std::uint8_t AllowDuplicates;
    std::int16_t AutomaticDrawIntersections;
    std::int16_t NewIntersectionSectors;
    std::uint8_t Reserved402[26];
    std::int16_t LeftMouseClickOk;
    std::uint8_t Reserved430[2];
    std::int16_t EnableSoundSelect;
    std::int16_t LineMergeDragTools;
    std::int16_t VertexSplitDragTools;
    std::uint8_t Reserved438[2];
    std::int16_t VertexMergeDragTools;
    std::uint8_t Reserved442[48];
    std::int16_t ExpertMode;
    std::int16_t ToolContinue;
    std::uint8_t Reserved494[6];
    std::int16_t EnableUndo;
    std::uint8_t Reserved502[4];
    std::uint8_t MoveSectorThings;
    std::uint8_t DeleteSectorThings;
    std::uint8_t DragSectorThings;
    std::uint8_t DragOverlapCheck;
    std::int16_t VertexDelJoinLineDefs;
    std::int16_t SectorJoinDrawing;
    std::int16_t SmartDraw;
    std::int16_t Correct3D;
    std::uint8_t Reserved518[4];
    std::int16_t GroupSave;
    std::int16_t EditMode; // 1 Things, 2 LineDefs, 4 Vertexes, 8 Sectors
    std::uint8_t Reserved526[8];
    // The second page of drag options carries the same three texts as the first.
    std::int16_t LineMergeDragTools2;
    std::int16_t VertexSplitDragTools2;
    std::int16_t VertexMergeDragTools2;
    std::int16_t AutoLoadLevels;
    std::int16_t AutoStartProgram;
    std::uint8_t Reserved544[2];
    std::int16_t AdditiveSelect;
    std::int16_t VertexArrows;
    std::int16_t AlwaysShowVertex;
    char TextEditor[RecordPathSize];
    std::uint8_t Reserved680[34];
    char ViewerPath[RecordPathSize]; // the 3D viewer
    char ViewerDirectory[RecordPathSize];
    char ViewerParameters[RecordPathSize];
    // The options of the TestR3D dialog: the 3D viewer's run and the private copy's save.
    std::uint8_t ViewerLoadAllFiles;
    std::uint8_t ViewerWait; // " Wait* for 3D to End"
    std::uint8_t ViewerNoMonsters;
    std::uint8_t ViewerNoMd2;
    std::uint8_t ViewerNoObjects;
    std::uint8_t ViewerLightsActive;
    std::uint8_t ViewerNoConsole;
    std::uint8_t ViewerNoSprites;
    std::uint8_t ViewerNoEscape;
    std::uint8_t ViewerNoInfight;
    std::uint8_t ViewerAutoPosition;
    std::uint8_t ViewerInvisibleThings;
    std::uint8_t ViewerClipToFloor;
    std::uint8_t ViewerClipToCeiling;
    std::uint8_t ViewerAutoSpeed;
    std::uint8_t ViewerAnalyze;
    std::uint8_t ViewerCaching;
    std::uint8_t ViewerUseSpecials;
    std::uint8_t ViewerScope;  // 0 "complete", 1 "partial", 2 "play"
    std::uint8_t ViewerScreen; // 0 "FullScreen Hardware" ... 4 "Custom Window"
    std::int16_t ViewerWidth;
    std::int16_t ViewerHeight;
    std::int16_t ViewerXPos;
    std::int16_t ViewerYPos;
    std::int16_t ViewerSkill;  // 1 to 5; 0 "*All skills"
    std::int16_t ViewerSpeed;  // 0 to 1000
    std::int16_t ViewerMemory; // megabytes, 40 to 512; 0 the viewer's own
    std::int16_t ViewerMaxFps;
    std::uint8_t ViewerHiResFlats;
    std::uint8_t ViewerHiResTx;
    std::uint8_t ViewerHiResTexture;
    std::uint8_t ViewerDisableWKey;
    std::uint8_t ViewerShowInvisibleLines;
    std::uint8_t ViewerRemoveUnused;
    std::uint8_t ViewerApplyMissingTextures;
    std::uint8_t ViewerCheckInvalidTextures;
    std::uint8_t ViewerMergeVertices;
    std::uint8_t ViewerSeeNodeResults;
    std::uint8_t ViewerCopySpecialLumps;
    std::uint8_t ViewerAutoFixSides;
    std::uint8_t ViewerClearSectorSpecials;
    std::uint8_t ViewerR3dglbspNodes;
    std::uint8_t Reserved1148[150];
    char PaintProgram[RecordPathSize];
    char QuakeMapsDir[RecordPathSize];
    char QuakeGfxDir[RecordPathSize];
    char QuakeId1Dir[RecordPathSize];
    std::uint8_t Reserved1810[30];
    char ToolFiles[ToolFileCount][RecordPathSize];
    StatusRect WindowRect;
    StatusRect PaneRects[15];
    std::int32_t TailSettings[3]; // defaults 35, 10 and 30
    std::uint16_t EndWord;

    bool operator==(const ChkRecord&) const = default;
};

/// A project: the IWAD, the game's programs and files, the level and the PWADs of a session.
struct ProjectRecord
{
    static constexpr std::string_view Kind = "PRJ";
    static constexpr std::uint16_t LayoutVersion = 4483;
    static constexpr std::uint16_t RecordSize = 44526;

    StatusFrame Frame;
    std::uint8_t Reserved8[4];
    float Zoom;
    std::uint8_t ZeroNodes;
    std::uint8_t ZeroReject;
    std::uint8_t ZeroBlockmap;
    std::uint8_t Reserved19[1];
    std::uint8_t SuppressExtendedMessages;
    std::uint8_t DecorateProcess;
    std::uint8_t DecorateTypeReplace;
    std::uint8_t Reserved23[1];
    char LevelName[8]; // empty: the game's first level
    std::uint8_t Reserved32[2];
    double ViewX; // -32666.0: not set, the next load centres the map
    double ViewY;
    std::uint8_t BoomTypes; // " ZDOOM & BOOM types"
    std::uint8_t Reserved51[1];
    std::int16_t FileLimit;
    std::int16_t LevelListLimit;
    std::uint8_t Reserved56[7];
    std::uint8_t AnyTxTextureFlat;
    std::uint8_t ZdoomHexenFormat; // " ZDOOM - HEXEN format"
    std::uint8_t GlNodes;          // " GLnodes (as applicable)"
    // The reject choices and the clean-up of the Save dialog, kept for the next save.
    std::uint8_t CopyReject;       // "Copy Reject"
    std::uint8_t AllAttacks;       // "ALL Attacks"
    std::uint8_t AttackStep;       // 0 "NO  Attacks", 1 "50% Attacks", 2 "33% Attacks"
    std::uint8_t RebuildNodes;     // "Rebuild the Nodes ?"
    std::uint8_t UnusedCleanup;    // "Automatic Unused Object Cleanup"
    std::uint8_t PlainScriptNames; // a level's script lump is saved as SCRIPTS
    std::uint8_t Reserved72[18];
    std::uint8_t GlNodesV3;
    std::uint8_t CustomBuilder;
    std::uint8_t Reserved92[4];
    ToolSlot UserTools[UserToolCount];
    std::uint8_t Reserved3840[464];
    std::uint16_t ReservedWord; // 0x682D
    std::uint8_t Reserved4306[30];
    char CompilerPath[RecordPathSize];
    char DefaultPwadDir[RecordPathSize];
    char PrefabDir[RecordPathSize];
    char ThirdDir[RecordPathSize];
    char TcfFile[RecordPathSize];
    char IwadPath[RecordPathSize];
    char GameExe[RecordPathSize];
    char GameDirectory[RecordPathSize];
    char WarpText[RecordPathSize]; // a custom warp parameter; empty: " -warp "
    char OptFile[RecordPathSize];
    // The Test Level options.
    std::int16_t Skill; // 0: not passed
    std::int16_t Turbo; // 0: not passed
    std::uint8_t ResponseFile;
    std::uint8_t ShortFileNames;
    std::uint8_t QuoteResponse;
    std::uint8_t QuoteFileNames;
    std::uint8_t LoadAllFiles;
    std::uint8_t WaitForGame;
    std::uint8_t DevParm;
    std::uint8_t NoMonsters;
    std::uint8_t NoMusic;
    std::uint8_t NoSound;
    std::uint8_t NoSfx;
    std::uint8_t FastMonsters;
    std::uint8_t Deathmatch;
    std::uint8_t AltDeath;
    std::uint8_t Respawn;
    std::uint8_t Reserved5635[41];
    char ExtraParameters[RecordPathSize];
    std::uint8_t Reserved5804[72];
    char ScriptFile[RecordPathSize];
    char ObjectFilter[RecordPathSize];
    char MapinfoFile[RecordPathSize];
    char SndinfoFile[RecordPathSize];
    char SndseqFile[RecordPathSize];
    char AnimdefsFile[RecordPathSize];
    char DehackedFile[RecordPathSize];
    char FraggleFile[RecordPathSize];
    char AnyTextFile[RecordPathSize];
    char CustomName[RecordPathSize];
    char CustomExe[RecordPathSize];
    char CustomParameters[RecordPathSize];
    char CustomDirectory[RecordPathSize];
    std::uint8_t Reserved7540[320];
    std::uint16_t ProjectMarker; // "ee" never used, "ff" used by a session
    char OpenFiles[OpenFileCount][ListPathSize];
    std::uint16_t ListMarker;
    char RecentPwads[RecentCount][ListPathSize]; // newest first
    char RecentPrefabs[RecentCount][ListPathSize];
    std::uint16_t EndWord;

    bool operator==(const ProjectRecord&) const = default;
};

/// A game configuration (.DFG): the colours and sizes of the map, the editors' value ranges.
/// Its file is named by the level format and the project's switches, so projects of
/// different games can share one; it holds nothing that differs between them.
struct GameConfigRecord
{
    static constexpr std::string_view Kind = "CFG";
    static constexpr std::uint16_t LayoutVersion = 4483;
    static constexpr std::uint16_t RecordSize = 486;

    StatusFrame Frame;
    std::int16_t Format;        // 1 Doom, 2 Doom 2, 3 Heretic, 4 Hexen layout, 5 Strife
    std::int16_t LevelEntries;  // lumps of a level, marker included: 11 or 12
    std::int16_t ExtendedTypes; // Boom's or ZDoom's type tables are on
    // Palette indices of the roles the renderer selects.
    std::int16_t ColorSelection;
    std::int16_t ColorVertex;
    std::int16_t ColorGrid64;
    std::int16_t ColorLine2Sided;
    std::int16_t ColorLine1Sided;
    std::int16_t ColorBackground;
    std::int16_t ColorLineSecret;
    std::int16_t ColorLineHidden;
    std::int16_t ColorBackgroundThings;
    std::int16_t ColorLineMonsterBlock;
    std::int16_t ColorLineBlockSound;
    std::int16_t ColorLineSpecial;
    std::int16_t ColorLineTypedNoTag;
    std::int16_t ColorLineTagged;
    std::int16_t ColorSectorTyped;
    std::int16_t ColorLineScript;
    std::int16_t ColorLineTeleport;
    std::int16_t SpareColors[31];
    std::int16_t VertexSize; // pixels
    std::uint8_t Reserved112[2];
    TypeRange ThingTypes;
    TypeRange LineTypes;
    TypeRange SectorTypes;
    TypeRange Tags;
    TypeRange Args;
    std::uint8_t Reserved134[350];
    std::uint16_t EndWord;

    bool operator==(const GameConfigRecord&) const = default;
};

/// A texture control (.TCF): the default textures of new objects and of the tools.
struct TextureControlRecord
{
    static constexpr std::string_view Kind = "TCF";
    static constexpr std::uint16_t LayoutVersion = 4480;
    static constexpr std::uint16_t RecordSize = 368;

    StatusFrame Frame;
    std::uint8_t Reserved8[8];
    TcfName DefaultUpper;
    TcfName DefaultNormal;
    TcfName DefaultLower;
    TcfName DefaultFloor;
    TcfName DefaultCeiling;
    TcfName DefaultDoor;
    TcfName DefaultDoorTrack;
    TcfName DefaultDoorCeiling;
    TcfName DefaultLift;
    TcfName PoolFloor;
    TcfName PoolWall;
    TcfName BoxFloor;
    TcfName BoxWall;
    TcfName LightBoxFlat;
    TcfName WindowFlat;
    TcfName StairCeiling;
    TcfName StairFloor;
    TcfName StairStep;
    TcfName StairSides;
    TcfName SlopeCeiling;
    TcfName SlopeFloor;
    TcfName SlopeStep;
    TcfName SlopeSides;
    TcfName TeleportExitFloor;
    TcfName TeleportExitCeiling;
    TcfName TeleportWall;
    TcfName TeleportEntranceFloor;
    TcfName TeleportEntranceCeiling;
    // The defaults in use now, which the tools may change.
    TcfName CurrentUpper;
    TcfName CurrentNormal;
    TcfName CurrentLower;
    TcfName CurrentFloor;
    TcfName CurrentCeiling;
    std::int16_t ToolSizes[6]; // the tools' default sizes: 128, 8, 128, 8, 16, 100
    std::uint8_t Reserved358[8];
    std::uint16_t EndWord;

    bool operator==(const TextureControlRecord&) const = default;
};

/// A tool file (.TOL): the contents of one toolbar.
struct ToolRecord
{
    static constexpr std::string_view Kind = "TOL";
    static constexpr std::uint16_t LayoutVersion = 4384;
    static constexpr std::uint16_t RecordSize = 6734;

    StatusFrame Frame;
    std::int16_t ToolbarNumber; // 1 to 5, the place of the file in KELVAR.CHK's list
    std::uint8_t Body[6722];
    std::uint16_t EndWord;

    bool operator==(const ToolRecord&) const = default;
};

#pragma pack(pop)

static_assert(sizeof(StatusFrame) == 8 && sizeof(StatusRect) == 16 && sizeof(TcfName) == 10);
static_assert(sizeof(ToolSlot) == 468 && sizeof(TypeRange) == 4);
static_assert(sizeof(ChkRecord) == ChkRecord::RecordSize);
static_assert(sizeof(ProjectRecord) == ProjectRecord::RecordSize);
static_assert(sizeof(GameConfigRecord) == GameConfigRecord::RecordSize);
static_assert(sizeof(TextureControlRecord) == TextureControlRecord::RecordSize);
static_assert(sizeof(ToolRecord) == ToolRecord::RecordSize);

/// Puts the frame and the end word of its kind into a record.
template <typename Record> void StampFrame(Record& record)
{
    record.Frame.Tag[0] = 'x';
    std::copy(Record::Kind.begin(), Record::Kind.end(), record.Frame.Tag + 1);
    record.Frame.Version = Record::LayoutVersion;
    record.Frame.Size = Record::RecordSize;
    record.EndWord = EndMark;
}

/// Stores a text in a fixed field, zero padded. A text that doesn't fit with its terminator is
/// cut; returns false then.
template <std::size_t N> bool SetText(char (&field)[N], std::string_view text)
{
    const std::size_t length = std::min(text.size(), N - 1);
    std::fill(field, field + N, '\0');
    std::copy_n(text.data(), length, field);
    return length == text.size();
}

/// The text of a fixed field, up to its first zero byte.
template <std::size_t N> std::string GetText(const char (&field)[N])
{
    return std::string(field, std::find(field, field + N, '\0'));
}

/// Stores a texture name: up to 8 characters, zero padded, no terminator at 8.
inline void SetName(TcfName& field, std::string_view name)
{
    const std::size_t length = std::min<std::size_t>(name.size(), 8);
    std::fill(field.Name, field.Name + 8, '\0');
    std::copy_n(name.data(), length, field.Name);
}

/// The text of a texture name.
inline std::string NameText(const TcfName& field)
{
    return std::string(field.Name, std::find(field.Name, field.Name + 8, '\0'));
}

} // namespace kelvar::app
