// The command numbers of the menus and the keys, as the router knows them.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// A command is a 16-bit number. Menus, keys and other parts of the editor post numbers; the
// router (app/Router.h) finds each in its table. Numbers that only come as a range (the
// entries of the find menu, the lump tools, the toolbars) have their first and last here.
#pragma once

#include <cstdint>

namespace kelvar::app
{

// Saving, node builds and test play.
inline constexpr std::uint16_t CmdSaveNewReject = 120;
inline constexpr std::uint16_t CmdBuildNodesAs = 128;
inline constexpr std::uint16_t CmdSaveLevel = 1002;
inline constexpr std::uint16_t CmdSaveLevelAs = 1003;
inline constexpr std::uint16_t CmdBuildNodes = 1041;
inline constexpr std::uint16_t CmdQuickSaveBackup = 1061;
inline constexpr std::uint16_t CmdTestLevel = 1021;
inline constexpr std::uint16_t CmdTextureAlign3D = 499;

// Files, levels and projects.
inline constexpr std::uint16_t CmdResetRecentList = 123;
inline constexpr std::uint16_t CmdEditLevel = 1022;
inline constexpr std::uint16_t CmdNewLevel = 1023;
inline constexpr std::uint16_t CmdCloseAllFiles = 1024;
inline constexpr std::uint16_t CmdOpenPwad = 1025;
inline constexpr std::uint16_t CmdCloseOneFile = 1026;
inline constexpr std::uint16_t CmdExit = 1044;
inline constexpr std::uint16_t CmdChooseProject = 1065;
inline constexpr std::uint16_t CmdChooseTextureGroup = 1066;
inline constexpr std::uint16_t CmdGroup = 139;
inline constexpr std::uint16_t CmdUngroup = 140;
inline constexpr std::uint16_t CmdMakeIwad = 250;
inline constexpr std::uint16_t CmdViewLump = 251;
inline constexpr std::uint16_t CmdWadList = 252;
/// The recent PWADs of the File menu: 6001 for the newest, one up for each older one.
inline constexpr std::uint16_t CmdRecentPwadFirst = 6001;

// Whole-level repairs of the File menu.
inline constexpr std::uint16_t CmdPackSideDefs = 130;
inline constexpr std::uint16_t CmdUnpackSideDefs = 131;
inline constexpr std::uint16_t CmdPackSectors = 132;
inline constexpr std::uint16_t CmdCenterMapCoordinates = 133;
inline constexpr std::uint16_t CmdRenumberTags = 147;

// Undo, clipboard, prefabs.
inline constexpr std::uint16_t CmdRedo = 199;
inline constexpr std::uint16_t CmdUndo = 201;
inline constexpr std::uint16_t CmdCut = 202;
inline constexpr std::uint16_t CmdCopy = 203;
inline constexpr std::uint16_t CmdPaste = 204;
inline constexpr std::uint16_t CmdMirror = 205;
inline constexpr std::uint16_t CmdOpenPrefab = 207;
inline constexpr std::uint16_t CmdViewClipboard = 208;
inline constexpr std::uint16_t CmdSavePrefab = 1062;
inline constexpr std::uint16_t CmdSystemClipboardFirst = 9204;
inline constexpr std::uint16_t CmdCopyToSystemClipboard = 9206;
inline constexpr std::uint16_t CmdPasteFromSystemClipboard = 9207;
inline constexpr std::uint16_t CmdViewSystemClipboard = 9208;
inline constexpr std::uint16_t CmdPrefabSlotFirst = 4430;
inline constexpr std::uint16_t CmdPrefab1 = 4431;
inline constexpr std::uint16_t CmdPrefab2 = 4432;
inline constexpr std::uint16_t CmdPrefab3 = 4433;
inline constexpr std::uint16_t CmdPrefab4 = 4434;
inline constexpr std::uint16_t CmdPrefab5 = 4435;
inline constexpr std::uint16_t CmdPrefab6 = 4436;
inline constexpr std::uint16_t CmdPrefab7 = 4437;
inline constexpr std::uint16_t CmdPrefab8 = 4438;
inline constexpr std::uint16_t CmdPrefab9 = 4439;
inline constexpr std::uint16_t CmdPrefabSlotLast = 4450;
/// The user tools: 4460 changes a slot, 4461 to 4468 run slots 1 to 8.
inline constexpr std::uint16_t CmdUserToolFirst = 4451;
inline constexpr std::uint16_t CmdUserToolLast = 4468;

// Objects: adding, deleting, editing, selecting, finding.
inline constexpr std::uint16_t CmdAddObject = 206;
inline constexpr std::uint16_t CmdThingMask = 209;
inline constexpr std::uint16_t CmdClearSelection = 210;
inline constexpr std::uint16_t CmdDeleteObject = 260;
inline constexpr std::uint16_t CmdBookmarkBrowser = 261;
inline constexpr std::uint16_t CmdFind = 301;
inline constexpr std::uint16_t CmdRepeatLastFind = 302;
inline constexpr std::uint16_t CmdNextObject = 303;
inline constexpr std::uint16_t CmdPrevObject = 304;
inline constexpr std::uint16_t CmdJumpToObject = 305;
inline constexpr std::uint16_t CmdJumpToTags = 306;
inline constexpr std::uint16_t CmdMarkSameThings = 307;
inline constexpr std::uint16_t CmdFindMenuFirst = 310;
inline constexpr std::uint16_t CmdFindMenuLast = 340;
inline constexpr std::uint16_t CmdSetTagOrHeight = 442;
inline constexpr std::uint16_t CmdInsertObject = 465;
inline constexpr std::uint16_t CmdDeleteObjectShift = 466;
inline constexpr std::uint16_t CmdEditObject = 494;
inline constexpr std::uint16_t CmdEditObjectT = 522;
inline constexpr std::uint16_t CmdFindChange = 1004;
inline constexpr std::uint16_t CmdBrowserPick = 1286;

// Edit modes.
inline constexpr std::uint16_t CmdThingsMode = 401;
inline constexpr std::uint16_t CmdLineDefsMode = 402;
inline constexpr std::uint16_t CmdVertexesMode = 403;
inline constexpr std::uint16_t CmdSectorsMode = 404;
inline constexpr std::uint16_t CmdNextMode = 409;
inline constexpr std::uint16_t CmdLastMode = 410;
inline constexpr std::uint16_t CmdAutoMode = 420;

// Drawing tools.
inline constexpr std::uint16_t CmdRepeatToolFirst = 405;
inline constexpr std::uint16_t CmdRepeatToolLast = 408;
inline constexpr std::uint16_t CmdRepeatTool431 = 431;
inline constexpr std::uint16_t CmdAutoModePassThrough = 421;
inline constexpr std::uint16_t CmdRectangleTool = 422;
inline constexpr std::uint16_t CmdPolygonTool = 423;
inline constexpr std::uint16_t CmdLineDrawTool = 424;
inline constexpr std::uint16_t CmdStairTool = 425;
inline constexpr std::uint16_t CmdTool426 = 426; // LineDefs or Sectors only
inline constexpr std::uint16_t CmdTool430 = 430;
inline constexpr std::uint16_t CmdRectanglePrefab = 771;
inline constexpr std::uint16_t CmdPolygonPrefab = 773;
inline constexpr std::uint16_t CmdStairPrefab = 775;
inline constexpr std::uint16_t CmdDoorPrefab = 777;
inline constexpr std::uint16_t CmdPrefabToolFirst = 771;
inline constexpr std::uint16_t CmdPrefabToolLast = 779;
inline constexpr std::uint16_t CmdThingTextureTool = 471;
inline constexpr std::uint16_t CmdSplitIntoArc = 474;

// View: grid, centring, scrolling, display toggles, ruler.
inline constexpr std::uint16_t CmdToggleVertexes = 427;
inline constexpr std::uint16_t CmdToggleGridColor = 440;
inline constexpr std::uint16_t CmdToggleThingDisplay = 441;
inline constexpr std::uint16_t CmdToggleGrid64 = 443;
inline constexpr std::uint16_t CmdToggleGridDisplay = 445;
inline constexpr std::uint16_t CmdGridDecrease = 446;
inline constexpr std::uint16_t CmdGridIncrease = 447;
inline constexpr std::uint16_t CmdToggleGridLine = 448;
inline constexpr std::uint16_t CmdCenterMap = 449;
inline constexpr std::uint16_t CmdNewGridSize = 450;
inline constexpr std::uint16_t CmdToggleInfoPane = 451;
inline constexpr std::uint16_t CmdSlowerScroll = 452;
inline constexpr std::uint16_t CmdFasterScroll = 453;
inline constexpr std::uint16_t CmdToggleGridSnap = 454;
inline constexpr std::uint16_t CmdCenterAtCursor = 455;
inline constexpr std::uint16_t CmdToggleRulerKey = 456;
inline constexpr std::uint16_t CmdMeasure = 458;
inline constexpr std::uint16_t CmdToggleCursorTracking = 459;
inline constexpr std::uint16_t CmdCycleDetail = 460;
inline constexpr std::uint16_t CmdCenterView = 464;
inline constexpr std::uint16_t CmdPaletteView = 470;
inline constexpr std::uint16_t CmdRedrawMap = 477;
inline constexpr std::uint16_t CmdWireFrame = 495;
inline constexpr std::uint16_t CmdToggleRuler = 496;
inline constexpr std::uint16_t CmdToggleRulerSolid = 497;
inline constexpr std::uint16_t CmdToggleRulerShape = 498;
inline constexpr std::uint16_t CmdGridOff = 523;
inline constexpr std::uint16_t CmdToggleInvisibleLines = 1012;
inline constexpr std::uint16_t CmdToggleCheckDisplay = 1030;

// LineDef operations.
inline constexpr std::uint16_t CmdFlipVertexesOnly = 462;
inline constexpr std::uint16_t CmdSwapSideDefs = 463;
inline constexpr std::uint16_t CmdSide1Textures = 472;
inline constexpr std::uint16_t CmdSide2Textures = 473;
inline constexpr std::uint16_t CmdSplitAddVertexF = 475;
inline constexpr std::uint16_t CmdSplitSectorH = 476;
inline constexpr std::uint16_t CmdAlignXShift = 478; // the same as 537
inline constexpr std::uint16_t CmdAlignYShift = 479; // the same as 535
inline constexpr std::uint16_t CmdAlignX = 480;
inline constexpr std::uint16_t CmdAlignY = 481;
inline constexpr std::uint16_t CmdFlipLineDef = 515;
inline constexpr std::uint16_t CmdAlignYSide1 = 535;
inline constexpr std::uint16_t CmdAlignYSide2Menu = 536;
inline constexpr std::uint16_t CmdAlignXFirst = 537; // the eight X alignments, 537 to 544
inline constexpr std::uint16_t CmdAlignXLast = 544;
inline constexpr std::uint16_t CmdSplitAddVertex = 550;
inline constexpr std::uint16_t CmdSplitLineDefSector = 551;
inline constexpr std::uint16_t CmdAlignLineDef = 552;
inline constexpr std::uint16_t CmdAlignXSide2 = 600; // the same as 541
inline constexpr std::uint16_t CmdAlignYSide2 = 601; // the same as 536

// Sector and Thing heights, light, object step.
inline constexpr std::uint16_t CmdRaiseCeiling = 482;
inline constexpr std::uint16_t CmdLowerCeiling = 483;
inline constexpr std::uint16_t CmdRaiseFloor = 484;
inline constexpr std::uint16_t CmdLowerFloor = 485;
inline constexpr std::uint16_t CmdRaiseBoth = 486;
inline constexpr std::uint16_t CmdLowerBoth = 487;
inline constexpr std::uint16_t CmdLightUp = 488;
inline constexpr std::uint16_t CmdLightDown = 489;
inline constexpr std::uint16_t CmdLightUpForce = 490;
inline constexpr std::uint16_t CmdLightDownForce = 491;
inline constexpr std::uint16_t CmdLightLast = 492;
inline constexpr std::uint16_t CmdAutoFixSector = 546;
inline constexpr std::uint16_t CmdRaiseByStep = 547;
inline constexpr std::uint16_t CmdLowerByStep = 548;
inline constexpr std::uint16_t CmdResetStep = 549;
inline constexpr std::uint16_t CmdDeleteVertexJoin = 553;

// The Misc popups: the entry's index in its mode's popup is the number less 500 (Sectors),
// 509 (LineDefs), 524 (Things) or 529 (Vertexes).
inline constexpr std::uint16_t CmdMiscSectorsFirst = 501;
inline constexpr std::uint16_t CmdMiscSectorsLast = 509;
inline constexpr std::uint16_t CmdMiscLineDefsFirst = 510;
inline constexpr std::uint16_t CmdMiscLineDefsLast = 521;
inline constexpr std::uint16_t CmdMiscThingsFirst = 525;
inline constexpr std::uint16_t CmdMiscThingsLast = 528;
inline constexpr std::uint16_t CmdMiscVertexesFirst = 530;
inline constexpr std::uint16_t CmdMiscVertexesLast = 534;
inline constexpr std::uint16_t CmdEditMenuPopup = 500;

// Reports and checks.
inline constexpr std::uint16_t CmdTextureReport = 554;
inline constexpr std::uint16_t CmdObjectReport = 555;
inline constexpr std::uint16_t CmdStatistics = 801;
inline constexpr std::uint16_t CmdCheckOpt = 802;
inline constexpr std::uint16_t CmdCheckLevel = 1010;

// The F-key menus, help and the workbench.
inline constexpr std::uint16_t CmdCalculator = 200;
inline constexpr std::uint16_t CmdHelpContents = 903;
inline constexpr std::uint16_t CmdAbout = 906;
inline constexpr std::uint16_t CmdTipsFirst = 909; // tips and the tutorial, 909 to 914
inline constexpr std::uint16_t CmdTipsLast = 914;
inline constexpr std::uint16_t CmdHelpIndex = 1001;
inline constexpr std::uint16_t CmdOptionsMenu = 1005;
inline constexpr std::uint16_t CmdScriptMenu = 1006;
inline constexpr std::uint16_t CmdGraphicsMenu = 1007;
inline constexpr std::uint16_t CmdMiscMenu = 1008;
inline constexpr std::uint16_t CmdPrefabMenu = 1009;
inline constexpr std::uint16_t CmdKeyboardSummary = 1011;
inline constexpr std::uint16_t CmdScreenSaver = 1040;
inline constexpr std::uint16_t CmdViewPictureFiles = 1067;
inline constexpr std::uint16_t CmdViewWavFiles = 1068;
inline constexpr std::uint16_t CmdViewMidiFiles = 1069;
inline constexpr std::uint16_t CmdViewCdFiles = 1070;
inline constexpr std::uint16_t CmdExtraMenuFirst = 1142;
inline constexpr std::uint16_t CmdExtraMenuLast = 1143;
inline constexpr std::uint16_t CmdScriptToolFirst = 1800;
inline constexpr std::uint16_t CmdScriptToolLast = 1823;
inline constexpr std::uint16_t CmdLumpToolFirst = 1900;
inline constexpr std::uint16_t CmdLumpToolLast = 1911;
inline constexpr std::uint16_t CmdToolBarFirst = 2100;
inline constexpr std::uint16_t CmdToggleTopToolBar = 2102;
inline constexpr std::uint16_t CmdToolBarStyle = 2103;
inline constexpr std::uint16_t CmdToolBarDefinition = 2160;
inline constexpr std::uint16_t CmdToolBarLast = 2180;

// Bookmarks: set slot n is 7000 + n, go to slot n is 7020 + n.
inline constexpr std::uint16_t CmdSetBookmark0 = 7000;
inline constexpr std::uint16_t CmdSetBookmark1 = 7001;
inline constexpr std::uint16_t CmdSetBookmark2 = 7002;
inline constexpr std::uint16_t CmdSetBookmark3 = 7003;
inline constexpr std::uint16_t CmdSetBookmark4 = 7004;
inline constexpr std::uint16_t CmdSetBookmark5 = 7005;
inline constexpr std::uint16_t CmdSetBookmark6 = 7006;
inline constexpr std::uint16_t CmdSetBookmark7 = 7007;
inline constexpr std::uint16_t CmdSetBookmark8 = 7008;
inline constexpr std::uint16_t CmdSetBookmark9 = 7009;
inline constexpr std::uint16_t CmdGotoBookmark0 = 7020;
inline constexpr std::uint16_t CmdGotoBookmark1 = 7021;
inline constexpr std::uint16_t CmdGotoBookmark2 = 7022;
inline constexpr std::uint16_t CmdGotoBookmark3 = 7023;
inline constexpr std::uint16_t CmdGotoBookmark4 = 7024;
inline constexpr std::uint16_t CmdGotoBookmark5 = 7025;
inline constexpr std::uint16_t CmdGotoBookmark6 = 7026;
inline constexpr std::uint16_t CmdGotoBookmark7 = 7027;
inline constexpr std::uint16_t CmdGotoBookmark8 = 7028;
inline constexpr std::uint16_t CmdGotoBookmark9 = 7029;

} // namespace kelvar::app
