// The keywords of OPT files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/Keywords.h"

#include "game/TypeRows.h"
#include "wad/LumpName.h"

#include <array>

namespace kelvar::game
{
namespace
{

// OPT files spell colour 9 LIGHBLUE, so that is the word read and written for it; LIGHTBLUE
// is no colour word, and FindColor finds nothing for it.
constexpr std::array<std::string_view, 30> Colors = {
    "",         "BLUE",         "GREEN",       "CYAN",         "RED",        "MAGENTA",
    "BROWN",    "LIGHTGRAY",    "DARKGRAY",    "LIGHBLUE",     "LIGHTGREEN", "LIGHTCYAN",
    "LIGHTRED", "LIGHTMAGENTA", "YELLOW",      "WHITE",        "GRAY",       "DARKERGRAY",
    "DARKRED",  "DARKGREEN",    "DARKBLUE",    "DARKMAGENTA",  "ORANGE",     "LIGHTBROWN",
    "SALMON",   "LIGHTYELLOW",  "LIGHTERBLUE", "LIGHTERGREEN", "LIGHTERRED", "LIGHTERGRAY",
};

constexpr Keyword Shapes[] = {
    {"DEFAULT", ShapeDefault},   {"ROUND", ShapeRound}, {"SQUARE", ShapeSquare},
    {"TRIANGLE", ShapeTriangle}, {"PLUS", ShapePlus},   {"CHAR", ShapeChar},
};

constexpr Keyword ThingCategories[] = {
    {"PlayerStart", 0xFFFF8002},    {"Keys", 0xFFFF8006},         {"Equipment", 0xFFFF8008},
    {"Weapons", 0xFFFF8004},        {"Ammunition", 0xFFFF8005},   {"Enemies", 0xFFFF8003},
    {"Decorations", 0xFFFF8009},    {"LightSources", 0xFFFF800A}, {"Corpses", 0xFFFF800B},
    {"HangingCorpses", 0xFFFF800C}, {"AmbientSound", 0xFFFF8016}, {"Decorate1", 0xFFFF0101},
    {"Decorate2", 0xFFFF0102},      {"Decorate3", 0xFFFF0103},    {"Decorate4", 0xFFFF0104},
    {"Decorate5", 0xFFFF0105},      {"Decorate6", 0xFFFF0106},    {"Decorate7", 0xFFFF0107},
    {"Decorate8", 0xFFFF0108},
};

constexpr Keyword LineCategories[] = {
    {"DoorKeys", 0xFFFF8001},
    {"DoorOpen", 0xFFFF8003},
    {"DoorClose", 0xFFFF8004},
    {"Ceilings", 0xFFFF8005},
    {"Crushers", 0xFFFF8006},
    {"FloorRaiseCeiling", 0xFFFF8008},
    {"FloorRaiseFloor", 0xFFFF8009},
    {"FloorLower", 0xFFFF800A},
    {"Stairs", 0xFFFF8007},
    {"LiftsMoving", 0xFFFF800B},
    {"Lights", 0xFFFF800C},
    {"Teleport", 0xFFFF800D},
    {"Door", 0xFFFF800E},
    {"Poly", 0xFFFF800F},
    {"LineThing", 0xFFFF8010},
    {"Scripts", 0xFFFF8011},
};

constexpr Keyword SectorCategories[] = {
    {"Lights", 0xFFFF8001}, {"HealthDamage", 0xFFFF8002}, {"SecretOther", 0xFFFF8003},
    {"Damage", 0xFFFF8001}, {"Scrolls", 0xFFFF8002},      {"Wind", 0xFFFF8003},
    {"Stairs", 0xFFFF8004},
};

constexpr Keyword Motions[] = {
    {"DELETE", CodeDelete}, {"None", 0},
    {"Skip", CodeSkip},     {"RaiseDoor", 0x4001},
    {"RaiseFloor", 0x8001}, {"LowerFloor", 0x8002},
    {"RaiseCeil", 0x2001},  {"LowerCeil", 0x2002},
    {"RaiseStair", 0x1001}, {"RaiseLower", 3},
};

constexpr Keyword LineProperties[] = {
    {"None", 0},
    {"Skip", CodeSkip},
    {"Teleport", PropertyTeleport},
    {"ANYKey", 0x200C},
    {"RedKey", 0x2001},
    {"BlueKey", 0x2002},
    {"YellowKey", 0x2003},
    {"RedSkull", 0x2005},
    {"BlueSkull", 0x2006},
    {"YellowSkull", 0x2007},
    {"RedAny", 0x2008},
    {"BlueAny", 0x2009},
    {"YellowAny", 0x200A},
    {"ALLKeys", 0x200B},
    {"Script", PropertyScript},
};

constexpr Keyword TagTypes[] = {
    {"None", 0},
    {"Skip", CodeSkip},
    {"SectorTag", TagSector},
    {"LineTag", TagLine},
    {"LineID", TagLineId},
    {"LineTID", TagTid},
    {"ScriptTag", TagScript},
    {"LinePolyID", TagPolyId},
    {"OptionTag", TagOption},
    {"NoTag", 0},
    {"Exit", TagExit},
    {"DummyTag", TagDummy},
};

constexpr Keyword SectorWords[] = {
    {"DELETE", CodeDelete},
};

constexpr Keyword ThingProperties[] = {
    {"DELETE", CodeDelete},
    {"None", 0},
    {"Skip", CodeSkip},
    {"Teleport", PropertyTeleport},
    {"PlayerStart1", 0x1001},
    {"PlayerStart2", 0x1002},
    {"PlayerStart3", 0x1003},
    {"PlayerStart4", 0x1004},
    {"PlayerStart5", 0x1005},
    {"PlayerStart6", 0x1006},
    {"PlayerStart7", 0x1007},
    {"PlayerStart8", 0x1008},
    {"PlayerStart", PropertyPlayerStart},
    {"DeathMatch", PropertyDeathMatch},
    {"Enemy", PropertyEnemy},
    {"ANYKey", 0x200C},
    {"RedKey", 0x2001},
    {"BlueKey", 0x2002},
    {"YellowKey", 0x2003},
    {"RedSkull", 0x2005},
    {"BlueSkull", 0x2006},
    {"YellowSkull", 0x2007},
    {"RedAny", 0x2008},
    {"BlueAny", 0x2009},
    {"YellowAny", 0x200A},
    {"ALLKeys", 0x200B},
    {"Custom", 46},
    {"Sound", 1},
    {"SoundSeq", 2},
    {"Ambient", 3},
    {"MapSpot", PropertyMapSpot},
    {"MapSpotGrav", PropertyMapSpotGrav},
    {"PolyObj", PropertyPolyObj},
    {"PolyObjCrush", PropertyPolyObjCrush},
    {"PolyAnchor", PropertyPolyAnchor},
    {"Hate", PropertyHate},
    {"Fountain", 10},
    {"Sparks", 11},
    {"Bridge", PropertyBridge},
    {"Slope", 13},
    {"Decal", 14},
    {"CameraAiming", 15},
    {"CameraSecurity", 16},
    {"CameraMoving", 17},
    {"PATROLPOINT", 18},
    {"PATROLSpecial", 19},
    {"PathFollow", 20},
    {"Water", 21},
    {"Push", 22},
    {"Pull", 23},
    {"Action", 24},
    {"Actor", 25},
    {"SkyBoxSilence", 26},
    {"SkyBoxPick", 27},
    {"SkyBoxView", 28},
    {"ActorMover", 29},
    {"InterPolPoint", 30},
    {"InterPolSpecial", 31},
    {"EyesAboveFloor", 32},
    {"EyesBelowFloor", 33},
    {"EyesAboveCeiling", 34},
    {"EyesBelowCeiling", 35},
    {"SlopeFloorHERE", 36},
    {"SlopeCeilHERE", 37},
    {"SetFloorSLOPE", 38},
    {"SetCeilSLOPE", 39},
    {"CopyFloorPLANE", 40},
    {"CopyCeilPLANE", 41},
    {"SecretTrigger", 42},
    {"3DBOX", 43},
    {"DECORATE", 44},
    {"3DFLOOR", 45},
};

} // namespace

std::span<const std::string_view> ColorNames()
{
    return Colors;
}

std::span<const Keyword> ShapeKeywords()
{
    return Shapes;
}

std::span<const Keyword> ThingCategoryKeywords()
{
    return ThingCategories;
}

std::span<const Keyword> LineCategoryKeywords()
{
    return LineCategories;
}

std::span<const Keyword> SectorCategoryKeywords()
{
    return SectorCategories;
}

std::span<const Keyword> MotionKeywords()
{
    return Motions;
}

std::span<const Keyword> LinePropertyKeywords()
{
    return LineProperties;
}

std::span<const Keyword> TagTypeKeywords()
{
    return TagTypes;
}

std::span<const Keyword> SectorKeywords()
{
    return SectorWords;
}

std::span<const Keyword> ThingPropertyKeywords()
{
    return ThingProperties;
}

std::optional<std::uint32_t> FindKeyword(std::span<const Keyword> table, std::string_view word)
{
    for (const Keyword& keyword : table)
    {
        if (wad::EqualNoCase(keyword.Word, word))
        {
            return keyword.Code;
        }
    }
    return std::nullopt;
}

std::optional<std::uint16_t> FindColor(std::string_view word)
{
    for (std::size_t i = 1; i < Colors.size(); ++i)
    {
        if (wad::EqualNoCase(Colors[i], word))
        {
            return static_cast<std::uint16_t>(i);
        }
    }
    return std::nullopt;
}

} // namespace kelvar::game
