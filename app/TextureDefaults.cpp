// The default texture controls of Doom, Heretic, Hexen and Strife.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/StatusDefaults.h"

#include <array>

namespace kelvar::app
{
namespace
{

// The names of a texture control in record order: walls and flats of new objects, the door
// and lift, the prefab objects (pool, box, light box, window), the stair and slope tools'
// ceiling, floor, step and sides, the teleport exit and entrance.
using TextureNames = std::array<const char*, 28>;

constexpr TextureNames DoomNames = {
    "MARBGRAY", "MARBLE1", "MARBGRAY", "FLOOR4_8", "FLAT4",    "BIGDOOR2", "DOORTRAK",
    "FLAT20",   "SHAWN2",  "MFLR8_3",  "PIPES",    "FLAT17",   "SLADWALL", "GRNLITE1",
    "FLOOR7_2", "FLAT4",   "FLAT5_4",  "STONE4",   "STONE5",   "FLAT4",    "FLAT5_4",
    "STONE4",   "STONE5",  "GATE3",    "TLITE6_5", "SUPPORT3", "STEP1",    "GRNLITE1",
};

constexpr TextureNames HereticNames = {
    "CSTLRCK", "GRSTNPB", "CSTLRCK",  "FLOOR03", "FLOOR04", "DOORSTON", "METL2",
    "FLOOR28", "METL1",   "FLTWAWA1", "SQPEB1",  "FLAT521", "TRISTON1", "FLAT502",
    "FLOOR04", "FLOOR04", "FLOOR03",  "SQPEB1",  "CSTLRCK", "FLOOR04",  "FLOOR03",
    "SQPEB1",  "CSTLRCK", "FLTTELE1", "FLOOR28", "METL2",   "FLAT523",  "FLAT502",
};

constexpr TextureNames HexenNames = {
    "CASTLE02", "CASTLE01", "CASTLE02", "F_012",   "F_015",    "D_WD07",  "PILLAR02",
    "F_008",    "STEEL01",  "X_005",    "SEWER01", "F_049",    "CRATE01", "F_081",
    "F_082",    "F_015",    "F_057",    "T2_STEP", "CASTLE07", "F_015",   "F_057",
    "T2_STEP",  "CASTLE07", "X_012",    "F_081",   "STEEL01",  "F_082",   "F_081",
};

constexpr TextureNames StrifeNames = {
    "BRKGRY01", "BRKGRY17", "BRKGRY01", "F_CONCRP", "F_BRKTOP", "DORWL01",  "DORTRK01",
    "F_UNDOOR", "ELEVTR03", "F_WATR01", "CONCRT01", "F_WBOXTP", "BOXWOD02", "F_DISCO1",
    "F_NOLINE", "F_BRKTOP", "F_CONCRP", "STAIR06",  "BRKGRY01", "F_BRKTOP", "F_CONCRP",
    "STAIR06",  "BRKGRY01", "F_TELE1",  "F_DISCO1", "IRON02",   "F_GDCONC", "F_DISCO1",
};

const TextureNames& NamesOf(int game)
{
    switch (game)
    {
    case 3:
        return HereticNames;
    case 4:
        return HexenNames;
    case 5:
        return StrifeNames;
    default:
        return DoomNames;
    }
}

} // namespace

TextureControlRecord DefaultTextureControl(int game)
{
    TextureControlRecord tcf{};
    StampFrame(tcf);
    const TextureNames& names = NamesOf(game);
    TcfName* const slots[] = {
        &tcf.DefaultUpper,
        &tcf.DefaultNormal,
        &tcf.DefaultLower,
        &tcf.DefaultFloor,
        &tcf.DefaultCeiling,
        &tcf.DefaultDoor,
        &tcf.DefaultDoorTrack,
        &tcf.DefaultDoorCeiling,
        &tcf.DefaultLift,
        &tcf.PoolFloor,
        &tcf.PoolWall,
        &tcf.BoxFloor,
        &tcf.BoxWall,
        &tcf.LightBoxFlat,
        &tcf.WindowFlat,
        &tcf.StairCeiling,
        &tcf.StairFloor,
        &tcf.StairStep,
        &tcf.StairSides,
        &tcf.SlopeCeiling,
        &tcf.SlopeFloor,
        &tcf.SlopeStep,
        &tcf.SlopeSides,
        &tcf.TeleportExitFloor,
        &tcf.TeleportExitCeiling,
        &tcf.TeleportWall,
        &tcf.TeleportEntranceFloor,
        &tcf.TeleportEntranceCeiling,
    };
    static_assert(std::size(slots) == std::tuple_size_v<TextureNames>);
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        SetName(*slots[i], names[i]);
    }
    // The defaults in use start as the defaults of new walls and Sectors.
    tcf.CurrentUpper = tcf.DefaultUpper;
    tcf.CurrentNormal = tcf.DefaultNormal;
    tcf.CurrentLower = tcf.DefaultLower;
    tcf.CurrentFloor = tcf.DefaultFloor;
    tcf.CurrentCeiling = tcf.DefaultCeiling;
    const std::int16_t sizes[] = {128, 8, 128, 8, 16, 100};
    std::copy(std::begin(sizes), std::end(sizes), tcf.ToolSizes);
    return tcf;
}

} // namespace kelvar::app
