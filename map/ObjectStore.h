// The object store: growing, inserting, deleting with renumbering, bounds, copies of levels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "map/ObjectList.h"

#include <cstdint>
#include <vector>

namespace kelvar::map
{

/// First capacities of a level's arrays.
inline constexpr std::int32_t FirstThingCapacity = 400;
inline constexpr std::int32_t FirstLineDefCapacity = 800;
inline constexpr std::int32_t FirstSideDefCapacity = 1200;
inline constexpr std::int32_t FirstVertexCapacity = 1600;
inline constexpr std::int32_t FirstSectorCapacity = 200;

/// The step by which ResizeObject grows an array of the kind: 500, 4,000, 8,000, 8,000, 1,000.
std::int32_t GrowthStep(int kind);

/// Changes the count of a kind by one: a `delta` below 1 drops the last record (never below
/// 0), 1 or more adds a default record, growing the allocation by the kind's step when the
/// count exceeds the capacity. A kind other than 1, 2, 3, 4 and 8 is fatal
/// ("ResizeObject wrong type %hd"). Waits for a running save first.
void ResizeObject(LevelData& level, int kind, int delta);

/// Appends one object and fills it in: from object `templateObject` of the same kind, or with
/// the defaults for -1. Things and Vertexes take the position (x, y). Counts the change.
/// Returns the new object's number, or -1 (and the error signal) for a kind the store
/// doesn't hold.
int InsertObject(LevelData& level, int kind, int templateObject, int x, int y);

/// Removes one object with all that hangs on it, renumbering what follows. -1 does nothing.
void DeleteObject(LevelData& level, int kind, int object);

/// Deletes every object of the list, whatever its order, and empties the list.
void DeleteObjectList(LevelData& level, int kind, ObjectList& list);

/// Removes the Vertexes of the list that no LineDef uses, and empties the list.
void PurgeOrphanVertices(LevelData& level, ObjectList& list);

/// Which Vertexes, SideDefs and Sectors stay: one mark for each object, not 0 to keep it.
struct KeepMarks
{
    std::vector<std::uint8_t> Vertexes;
    std::vector<std::uint8_t> SideDefs;
    std::vector<std::uint8_t> Sectors;
};

/// Removes every Vertex, SideDef and Sector whose mark is 0 in one pass: the others keep their
/// order and every reference to them is renumbered. The marks must keep whatever a reference
/// names; a reference that names nothing (out of range, or none) stays as it is. Linear in the
/// size of the level, where DeleteObjectList walks the level once per object. The bounds are
/// measured again when Vertexes went. The edit is not counted.
void RemoveUnmarked(LevelData& level, const KeepMarks& marks);

/// Marks that keep every Vertex, SideDef and Sector of `level` (`value` 1), or none (0), for
/// a caller that then changes the marks of one kind.
KeepMarks MarksForAll(const LevelData& level, std::uint8_t value);

/// Widens the level's bounding box to take in a Vertex.
void ExtendBounds(LevelData& level, const Vertex& vertex);

/// Recomputes the bounding box from all Vertexes; a level without any gets the default frame
/// 100, -100, 116, -116.
void MeasureLevel(LevelData& level);

/// The smallest box around a level's Vertexes.
struct VertexBox
{
    std::int32_t MinX = 0;
    std::int32_t MaxX = 0;
    std::int32_t MinY = 0;
    std::int32_t MaxY = 0;

    bool operator==(const VertexBox&) const = default;
};

/// The box around the Vertexes as they are, measured afresh rather than read from the level's
/// bounds, which edits only ever widen; all 0 for a level without Vertexes.
VertexBox VertexBounds(const LevelData& level);

/// Empties a level and gives it its first capacities; arrays already there are kept.
void LevelInit(LevelData& level);

/// Frees the arrays and zeroes capacities, counts and both change counters.
void LevelFree(LevelData& level);

/// Makes `destination` a full copy of `source`, allocations included.
void LevelCopy(LevelData& destination, const LevelData& source);

/// Keeps the impassable and two-sided bits of a LineDef consistent with its sides.
void SetSideFlags(LineDef& line);

/// Counts an edit of an object of `kind`: the change counter always, the geometry counter for
/// every kind but Thing.
void NoteChange(LevelData& level, int kind);

/// Waits while a save writes; gives up after 20 seconds with "Stuck waiting for Save to
/// finish?".
void WaitForSave();

/// For the life of the guard an array is being changed: it first waits for a running save,
/// then holds StoreBusy set (the timed auto-save waits), and puts the flag back at the end.
class StoreChange
{
public:
    StoreChange();
    ~StoreChange();
    StoreChange(const StoreChange&) = delete;
    StoreChange& operator=(const StoreChange&) = delete;

private:
    bool WasBusy;
};

} // namespace kelvar::map
