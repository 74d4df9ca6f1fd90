// The named fields of the status records, each checked against its offset at compile time.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/StatusFields.h"

#include "app/StatusRecords.h"

#include <cstddef>
#include <type_traits>

namespace kelvar::app
{
namespace
{

// Fails to compile when a member isn't at the offset the file format gives it.
template <std::size_t Actual, std::size_t Expected> consteval std::size_t At()
{
    static_assert(Actual == Expected, "a status field is not at its offset");
    return Actual;
}

template <typename T> consteval FieldKind KindOf()
{
    if constexpr (std::is_same_v<T, std::uint16_t>)
    {
        return FieldKind::Hex;
    }
    else if constexpr (std::is_integral_v<T>)
    {
        return FieldKind::Integer;
    }
    else if constexpr (std::is_same_v<T, float>)
    {
        return FieldKind::Float;
    }
    else if constexpr (std::is_same_v<T, double>)
    {
        return FieldKind::Double;
    }
    else if constexpr (std::is_same_v<T, StatusRect>)
    {
        return FieldKind::Rect;
    }
    else if constexpr (std::is_same_v<T, TypeRange>)
    {
        return FieldKind::Range;
    }
    else
    {
        static_assert(std::is_same_v<T, TcfName>, "no listing for this field type");
        return FieldKind::Name;
    }
}

// A field of type T: a char array is one text, an array of char arrays a list of texts, any
// other array a list of its elements.
template <typename T> consteval StatusField Describe(std::string_view name, std::size_t offset)
{
    if constexpr (std::is_array_v<T>)
    {
        using Element = std::remove_extent_t<T>;
        if constexpr (std::is_same_v<Element, char>)
        {
            return {name, offset, sizeof(T), FieldKind::Text, 1, 0};
        }
        else if constexpr (std::is_array_v<Element>)
        {
            return {name,           offset, sizeof(Element), FieldKind::Text, std::extent_v<T>,
                    sizeof(Element)};
        }
        else
        {
            return {name,           offset, sizeof(Element), KindOf<Element>(), std::extent_v<T>,
                    sizeof(Element)};
        }
    }
    else
    {
        return {name, offset, sizeof(T), KindOf<T>(), 1, 0};
    }
}

#define KELVAR_FIELD(Record, Member, Offset)                                                       \
    Describe<decltype(Record::Member)>(#Member, At<offsetof(Record, Member), Offset>())

// A member of the eight user tool slots of a project, listed as one field of eight entries.
#define KELVAR_TOOL_FIELD(Member, Offset)                                                          \
    InSlots(Describe<decltype(ToolSlot::Member)>(                                                  \
        "UserTools." #Member,                                                                      \
        At<offsetof(ProjectRecord, UserTools) + offsetof(ToolSlot, Member), Offset>()))

consteval StatusField InSlots(StatusField field)
{
    field.Count = UserToolCount;
    field.Stride = sizeof(ToolSlot);
    return field;
}

#define CHK(Member, Offset) KELVAR_FIELD(ChkRecord, Member, Offset)
constexpr StatusField ChkTable[] = {
    CHK(SessionWord, 16),
    CHK(ProjectFile, 20),
    CHK(AdditionalLumpEntries, 152),
    CHK(UndoLimit, 154),
    CHK(SelectedObjectsSolid, 257),
    CHK(SkipEnvironmentChecks, 259),
    CHK(TipOfTheDay, 263),
    CHK(AutoStartReminder, 264),
    CHK(AutoSavePeriod, 266),
    CHK(DialogRestoreCursor, 268),
    CHK(ShowObjectTip, 269),
    CHK(MouseClickMovesMap, 270),
    CHK(CursorKeysMoveMap, 271),
    CHK(LineMergePastePrefabs, 272),
    CHK(MouseWheelModeChange, 273),
    CHK(ShowNodeBuild, 274),
    CHK(MergeDuplicateVertices, 276),
    CHK(FixGlNodes, 277),
    CHK(ForceExtendedNodes, 278),
    CHK(NodeType, 280),
    CHK(SplitMode, 282),
    CHK(SplitFactor, 284),
    CHK(IgnoreTwoSidedLineDefs, 286),
    CHK(SeeNodeResults, 288),
    CHK(SpecialLineDefTags, 290),
    CHK(SpecialSectorTags, 292),
    CHK(GridSize, 294),
    CHK(DisplaySolidThings, 306),
    CHK(Prompt3DTestingOptions, 308),
    CHK(CheckPlayerStarts, 310),
    CHK(UpperTexture, 311),
    CHK(NormalTexture, 312),
    CHK(LowerTexture, 313),
    CHK(XOffsets, 314),
    CHK(YOffsets, 315),
    CHK(MultiPatchTextures, 316),
    CHK(SectorClosed1, 317),
    CHK(SectorClosed2, 318),
    CHK(ThingsInSector, 319),
    CHK(ThingsOnTop, 320),
    CHK(CheckTags, 321),
    CHK(CheckKeys, 322),
    CHK(CheckShortLines, 323),
    CHK(CheckDuplicateSideDefs, 324),
    CHK(CheckDuplicateVertices, 325),
    CHK(CheckDuplicateLineDefs, 326),
    CHK(CheckOverlappingLineDefs, 327),
    CHK(ThingShooter, 328),
    CHK(CheckThingTypes, 330),
    CHK(SectorClosed3, 331),
    CHK(ShortestLine, 333),
    CHK(SelectBoxDashed, 358),
    CHK(GridDashed, 360),
    CHK(KeepExtraVertexDrawing, 367),
    CHK(ShowDetailedScroll, 368),
    CHK(ShowDetailedZoom, 370),
    CHK(NoIwadWarningMsg, 372),
    CHK(DecimalTypes, 374),
    CHK(AutomaticSideUnpack, 376),
    CHK(BlankerDelay, 378),
    CHK(DuplicateLumpMsg, 396),
    CHK(AllowDuplicates, 397),
    CHK(AutomaticDrawIntersections, 398),
    CHK(NewIntersectionSectors, 400),
    CHK(LeftMouseClickOk, 428),
    CHK(EnableSoundSelect, 432),
    CHK(LineMergeDragTools, 434),
    CHK(VertexSplitDragTools, 436),
    CHK(VertexMergeDragTools, 440),
    CHK(ExpertMode, 490),
    CHK(ToolContinue, 492),
    CHK(EnableUndo, 500),
    CHK(MoveSectorThings, 506),
    CHK(DeleteSectorThings, 507),
    CHK(DragSectorThings, 508),
    CHK(DragOverlapCheck, 509),
    CHK(VertexDelJoinLineDefs, 510),
    CHK(SectorJoinDrawing, 512),
    CHK(SmartDraw, 514),
    CHK(Correct3D, 516),
    CHK(GroupSave, 522),
    CHK(EditMode, 524),
    CHK(LineMergeDragTools2, 534),
    CHK(VertexSplitDragTools2, 536),
    CHK(VertexMergeDragTools2, 538),
    CHK(AutoLoadLevels, 540),
    CHK(AutoStartProgram, 542),
    CHK(AdditiveSelect, 546),
    CHK(VertexArrows, 548),
    CHK(AlwaysShowVertex, 550),
    CHK(TextEditor, 552),
    CHK(ViewerPath, 714),
    CHK(ViewerDirectory, 842),
    CHK(ViewerParameters, 970),
    CHK(ViewerLoadAllFiles, 1098),
    CHK(ViewerWait, 1099),
    CHK(ViewerNoMonsters, 1100),
    CHK(ViewerNoMd2, 1101),
    CHK(ViewerNoObjects, 1102),
    CHK(ViewerLightsActive, 1103),
    CHK(ViewerNoConsole, 1104),
    CHK(ViewerNoSprites, 1105),
    CHK(ViewerNoEscape, 1106),
    CHK(ViewerNoInfight, 1107),
    CHK(ViewerAutoPosition, 1108),
    CHK(ViewerInvisibleThings, 1109),
    CHK(ViewerClipToFloor, 1110),
    CHK(ViewerClipToCeiling, 1111),
    CHK(ViewerAutoSpeed, 1112),
    CHK(ViewerAnalyze, 1113),
    CHK(ViewerCaching, 1114),
    CHK(ViewerUseSpecials, 1115),
    CHK(ViewerScope, 1116),
    CHK(ViewerScreen, 1117),
    CHK(ViewerWidth, 1118),
    CHK(ViewerHeight, 1120),
    CHK(ViewerXPos, 1122),
    CHK(ViewerYPos, 1124),
    CHK(ViewerSkill, 1126),
    CHK(ViewerSpeed, 1128),
    CHK(ViewerMemory, 1130),
    CHK(ViewerMaxFps, 1132),
    CHK(ViewerHiResFlats, 1134),
    CHK(ViewerHiResTx, 1135),
    CHK(ViewerHiResTexture, 1136),
    CHK(ViewerDisableWKey, 1137),
    CHK(ViewerShowInvisibleLines, 1138),
    CHK(ViewerRemoveUnused, 1139),
    CHK(ViewerApplyMissingTextures, 1140),
    CHK(ViewerCheckInvalidTextures, 1141),
    CHK(ViewerMergeVertices, 1142),
    CHK(ViewerSeeNodeResults, 1143),
    CHK(ViewerCopySpecialLumps, 1144),
    CHK(ViewerAutoFixSides, 1145),
    CHK(ViewerClearSectorSpecials, 1146),
    CHK(ViewerR3dglbspNodes, 1147),
    CHK(PaintProgram, 1298),
    CHK(QuakeMapsDir, 1426),
    CHK(QuakeGfxDir, 1554),
    CHK(QuakeId1Dir, 1682),
    CHK(ToolFiles, 1840),
    CHK(WindowRect, 2480),
    CHK(PaneRects, 2496),
    CHK(TailSettings, 2736),
};
#undef CHK

#define PRJ(Member, Offset) KELVAR_FIELD(ProjectRecord, Member, Offset)
constexpr StatusField ProjectTable[] = {
    PRJ(Zoom, 12),
    PRJ(ZeroNodes, 16),
    PRJ(ZeroReject, 17),
    PRJ(ZeroBlockmap, 18),
    PRJ(SuppressExtendedMessages, 20),
    PRJ(DecorateProcess, 21),
    PRJ(DecorateTypeReplace, 22),
    PRJ(LevelName, 24),
    PRJ(ViewX, 34),
    PRJ(ViewY, 42),
    PRJ(BoomTypes, 50),
    PRJ(FileLimit, 52),
    PRJ(LevelListLimit, 54),
    PRJ(AnyTxTextureFlat, 63),
    PRJ(ZdoomHexenFormat, 64),
    PRJ(GlNodes, 65),
    PRJ(CopyReject, 66),
    PRJ(AllAttacks, 67),
    PRJ(AttackStep, 68),
    PRJ(RebuildNodes, 69),
    PRJ(UnusedCleanup, 70),
    PRJ(PlainScriptNames, 71),
    PRJ(GlNodesV3, 90),
    PRJ(CustomBuilder, 91),
    KELVAR_TOOL_FIELD(Description, 96),
    KELVAR_TOOL_FIELD(ToolExe, 176),
    KELVAR_TOOL_FIELD(ToolParameters, 304),
    KELVAR_TOOL_FIELD(ToolDirectory, 432),
    KELVAR_TOOL_FIELD(DosProgram, 560),
    KELVAR_TOOL_FIELD(MinimizeEditor, 561),
    KELVAR_TOOL_FIELD(WaitForTool, 562),
    KELVAR_TOOL_FIELD(AlwaysPrompt, 563),
    PRJ(ReservedWord, 4304),
    PRJ(CompilerPath, 4336),
    PRJ(DefaultPwadDir, 4464),
    PRJ(PrefabDir, 4592),
    PRJ(ThirdDir, 4720),
    PRJ(TcfFile, 4848),
    PRJ(IwadPath, 4976),
    PRJ(GameExe, 5104),
    PRJ(GameDirectory, 5232),
    PRJ(WarpText, 5360),
    PRJ(OptFile, 5488),
    PRJ(Skill, 5616),
    PRJ(Turbo, 5618),
    PRJ(ResponseFile, 5620),
    PRJ(ShortFileNames, 5621),
    PRJ(QuoteResponse, 5622),
    PRJ(QuoteFileNames, 5623),
    PRJ(LoadAllFiles, 5624),
    PRJ(WaitForGame, 5625),
    PRJ(DevParm, 5626),
    PRJ(NoMonsters, 5627),
    PRJ(NoMusic, 5628),
    PRJ(NoSound, 5629),
    PRJ(NoSfx, 5630),
    PRJ(FastMonsters, 5631),
    PRJ(Deathmatch, 5632),
    PRJ(AltDeath, 5633),
    PRJ(Respawn, 5634),
    PRJ(ExtraParameters, 5676),
    PRJ(ScriptFile, 5876),
    PRJ(ObjectFilter, 6004),
    PRJ(MapinfoFile, 6132),
    PRJ(SndinfoFile, 6260),
    PRJ(SndseqFile, 6388),
    PRJ(AnimdefsFile, 6516),
    PRJ(DehackedFile, 6644),
    PRJ(FraggleFile, 6772),
    PRJ(AnyTextFile, 6900),
    PRJ(CustomName, 7028),
    PRJ(CustomExe, 7156),
    PRJ(CustomParameters, 7284),
    PRJ(CustomDirectory, 7412),
    PRJ(ProjectMarker, 7860),
    PRJ(OpenFiles, 7862),
    PRJ(ListMarker, 34122),
    PRJ(RecentPwads, 34124),
    PRJ(RecentPrefabs, 39324),
};
#undef PRJ

#define CFG(Member, Offset) KELVAR_FIELD(GameConfigRecord, Member, Offset)
constexpr StatusField GameConfigTable[] = {
    CFG(Format, 8),
    CFG(LevelEntries, 10),
    CFG(ExtendedTypes, 12),
    CFG(ColorSelection, 14),
    CFG(ColorVertex, 16),
    CFG(ColorGrid64, 18),
    CFG(ColorLine2Sided, 20),
    CFG(ColorLine1Sided, 22),
    CFG(ColorBackground, 24),
    CFG(ColorLineSecret, 26),
    CFG(ColorLineHidden, 28),
    CFG(ColorBackgroundThings, 30),
    CFG(ColorLineMonsterBlock, 32),
    CFG(ColorLineBlockSound, 34),
    CFG(ColorLineSpecial, 36),
    CFG(ColorLineTypedNoTag, 38),
    CFG(ColorLineTagged, 40),
    CFG(ColorSectorTyped, 42),
    CFG(ColorLineScript, 44),
    CFG(ColorLineTeleport, 46),
    CFG(VertexSize, 110),
    CFG(ThingTypes, 114),
    CFG(LineTypes, 118),
    CFG(SectorTypes, 122),
    CFG(Tags, 126),
    CFG(Args, 130),
};
#undef CFG

#define TCF(Member, Offset) KELVAR_FIELD(TextureControlRecord, Member, Offset)
constexpr StatusField TextureControlTable[] = {
    TCF(DefaultUpper, 16),
    TCF(DefaultNormal, 26),
    TCF(DefaultLower, 36),
    TCF(DefaultFloor, 46),
    TCF(DefaultCeiling, 56),
    TCF(DefaultDoor, 66),
    TCF(DefaultDoorTrack, 76),
    TCF(DefaultDoorCeiling, 86),
    TCF(DefaultLift, 96),
    TCF(PoolFloor, 106),
    TCF(PoolWall, 116),
    TCF(BoxFloor, 126),
    TCF(BoxWall, 136),
    TCF(LightBoxFlat, 146),
    TCF(WindowFlat, 156),
    TCF(StairCeiling, 166),
    TCF(StairFloor, 176),
    TCF(StairStep, 186),
    TCF(StairSides, 196),
    TCF(SlopeCeiling, 206),
    TCF(SlopeFloor, 216),
    TCF(SlopeStep, 226),
    TCF(SlopeSides, 236),
    TCF(TeleportExitFloor, 246),
    TCF(TeleportExitCeiling, 256),
    TCF(TeleportWall, 266),
    TCF(TeleportEntranceFloor, 276),
    TCF(TeleportEntranceCeiling, 286),
    TCF(CurrentUpper, 296),
    TCF(CurrentNormal, 306),
    TCF(CurrentLower, 316),
    TCF(CurrentFloor, 326),
    TCF(CurrentCeiling, 336),
    TCF(ToolSizes, 346),
};
#undef TCF

constexpr StatusField ToolTable[] = {
    KELVAR_FIELD(ToolRecord, ToolbarNumber, 8),
};

// The frame is the same in every record.
static_assert(offsetof(ChkRecord, EndWord) == ChkRecord::RecordSize - 2);
static_assert(offsetof(ProjectRecord, EndWord) == ProjectRecord::RecordSize - 2);
static_assert(offsetof(GameConfigRecord, EndWord) == GameConfigRecord::RecordSize - 2);
static_assert(offsetof(TextureControlRecord, EndWord) == TextureControlRecord::RecordSize - 2);
static_assert(offsetof(ToolRecord, EndWord) == ToolRecord::RecordSize - 2);

} // namespace

std::span<const StatusField> ChkFields()
{
    return ChkTable;
}

std::span<const StatusField> ProjectFields()
{
    return ProjectTable;
}

std::span<const StatusField> GameConfigFields()
{
    return GameConfigTable;
}

std::span<const StatusField> TextureControlFields()
{
    return TextureControlTable;
}

std::span<const StatusField> ToolFields()
{
    return ToolTable;
}

std::span<const StatusField> FieldsOfKind(std::string_view kind)
{
    if (kind == ChkRecord::Kind)
    {
        return ChkTable;
    }
    if (kind == ProjectRecord::Kind)
    {
        return ProjectTable;
    }
    if (kind == GameConfigRecord::Kind)
    {
        return GameConfigTable;
    }
    if (kind == TextureControlRecord::Kind)
    {
        return TextureControlTable;
    }
    if (kind == ToolRecord::Kind)
    {
        return ToolTable;
    }
    return {};
}

} // namespace kelvar::app
