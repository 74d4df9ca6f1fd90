// The editing options and new-object defaults that steer the object store and the tools.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <span>
#include <string_view>

namespace kelvar::map
{

/// Settings of the options pages that change how editing behaves; defaults are those of a
/// fresh installation.
struct EditOptions
{
    bool LineMerge = true;
    bool LineMergePaste = true;
    bool VertexMerge = true;
    bool VertexSplit = true;
    bool VertexDelJoin = true;
    bool DragOverlapCheck = true;
    bool MoveSectorThings = true;
    bool DeleteSectorThings = false;
    bool DragSectorThings = true;
    bool SectorJoin = false;
    bool KeepExtraVertex = false;
    bool SmartDraw = true;
    bool AutoDrawIntersections = true;
    bool NewIntersectionSectors = true;
    bool ExpertMode = false;
    bool AdditiveSelect = true;
    double VertexMergeTolerance = 0.5; // map units, 0.0 to 4.0
    double DrawingSelectRange = 1.0;   // 0.0 to 10.0
    int ObjectSelectRange = 10;        // pixels, 0 to 50
    bool UndoEnabled = true;
    int UndoLimit = 500; // 10 to 1000
    int GridSize = 8;
    bool GridSnap = true;
    int XAlignMinimum = -1023; // the range of an X alignment's initial offset
    int XAlignMaximum = 1023;

    bool operator==(const EditOptions&) const = default;
};

/// One switch of the options page: its label, and where it lives in EditOptions.
struct EditOptionRow
{
    std::string_view Label;
    bool EditOptions::*Field;
};

/// The switches of the editing options page, in page order.
std::span<const EditOptionRow> EditOptionRows();

/// The textures new objects get; the texture control of the project fills them, and tools may
/// change them for the time they run.
struct DefaultTextures
{
    TextureName Upper = TextureName::From("MARBGRAY");
    TextureName Normal = TextureName::From("MARBLE1");
    TextureName Lower = TextureName::From("MARBGRAY");
    TextureName Floor = TextureName::From("FLOOR4_8");
    TextureName Ceiling = TextureName::From("FLAT4");
    TextureName Door = TextureName::From("BIGDOOR2");
    TextureName DoorTrack = TextureName::From("DOORTRAK");
    TextureName DoorCeiling = TextureName::From("FLAT20");
    TextureName Lift = TextureName::From("SHAWN2");
    TextureName SkyFlat = TextureName::From("F_SKY1"); // compared over its first five bytes

    bool operator==(const DefaultTextures&) const = default;
};

/// What new objects get besides textures.
struct NewObjectDefaults
{
    std::uint16_t ThingType = 3004;
    std::int16_t FloorHeight = 0;
    std::int16_t CeilingHeight = 128;
    std::int16_t Light = 128;

    bool operator==(const NewObjectDefaults&) const = default;
};

} // namespace kelvar::map
