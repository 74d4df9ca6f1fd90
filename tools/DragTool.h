// Dragging objects with the right button held: the state of one drag, fed pointer positions.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Everything a drag moves comes down to Vertexes or Things: LineDefs and Sectors are taken
//   down to the Vertexes they use, each Vertex once.
// - Every move is recomputed from the positions saved when the drag began, so a long drag
//   never drifts and a return to the press point puts everything back. A move costs time in
//   proportion to the dragged objects only; nothing scans the level while the pointer moves.
// - A drag takes a forced undo step when it begins, whether or not anything moves, and Esc
//   is an undo of that step.
// - The tool works on the map model's level, options, selection and undo table, as the
//   commands do.
#pragma once

#include "map/LevelData.h"
#include "tools/Snap.h"
#include "view/Viewport.h"

#include <cstdint>
#include <vector>

namespace kelvar::tools
{

/// An object a drag may start from: the edit mode it belongs to and its number (-1 none).
struct PressObject
{
    int Mode = 0;
    int Object = -1;

    bool operator==(const PressObject&) const = default;
};

/// The object to drag when nothing is selected, looked for at the pointer (window pixels),
/// with the select ranges in map units. In Vertex mode a Vertex within `vertexRange`, else a
/// Thing within `thingRange` (in Thing mode), else `oldHighlight` in Vertex mode; in Thing
/// mode the same with Things first; in LineDef and Sector mode a Vertex, else a Thing, else
/// `oldHighlight` in the mode as it is.
PressObject DragObjectAtPress(const map::LevelData& level, const view::MapViewport& viewport,
                              int mode, int pointerX, int pointerY, double vertexRange,
                              double thingRange, int oldHighlight);

/// The Vertexes that objects of `mode` use, each once, in the order first met: Vertexes
/// themselves, the ends of LineDefs, the ends of every LineDef with a side in one of the
/// Sectors. Numbers out of range are passed over; Thing mode gives none.
std::vector<std::int32_t> DragVertexList(const map::LevelData& level, int mode,
                                         const std::vector<std::int32_t>& objects);

/// What a moving tool keeps of the objects it moves: their numbers and their places at the
/// start, from which every move is worked out anew.
struct SavedPlaces
{
    std::vector<std::int32_t> Vertexes;
    std::vector<map::Vertex> SavedVertexes;
    std::vector<std::int32_t> Things;
    std::vector<map::Thing> SavedThings;
};

/// Adds the Vertexes that `objects` of `mode` use (DragVertexList) with their places.
void SaveVertexPlaces(SavedPlaces& saved, const map::LevelData& level, int mode,
                      const std::vector<std::int32_t>& objects);

/// Adds the Things of the list that exist, with their places.
void SaveThingPlaces(SavedPlaces& saved, const map::LevelData& level,
                     const std::vector<std::int32_t>& things);

/// The LineDefs with a side in one of the Sectors, in ascending order.
std::vector<std::int32_t> LineDefsOfSectors(const map::LevelData& level,
                                            const std::vector<std::int32_t>& sectors);

/// The Things that go with the Sectors: those inside the box of `vertexes` that lie in one of
/// the Sectors by the loose Sector test.
std::vector<std::int32_t> ThingsInSectors(const map::LevelData& level,
                                          const std::vector<std::int32_t>& sectors,
                                          const std::vector<std::int32_t>& vertexes);

/// One drag, from the press to the release or Esc.
struct DragState : SavedPlaces // Things moved with each step in Thing mode
{
    bool Active = false;
    int Mode = 0;                    // the mode of what is dragged; may differ from the edit mode
    int StartMode = 0;               // the edit mode when the drag began
    int StartHighlight = -1;         // the highlight when the drag began
    bool TemporarySelection = false; // the selection was empty and holds the press object
    SnappedPoint Anchor;             // the press point, held as the moves are
    SnappedPoint Last;               // the pointer at the last move that did work
    int VertexDeltaX = 0;            // the move the Vertexes took, the delta held to the grid
    int VertexDeltaY = 0;
    int Steps = 0;                          // moves that changed the level
    std::vector<std::int32_t> SectorThings; // moved on release, after a Sector drag
};

/// What the edit mode and highlight are to be once a drag has ended.
struct DragEnd
{
    int Mode = 0;
    int Highlight = -1;

    bool operator==(const DragEnd&) const = default;
};

/// Starts a drag in edit mode `mode` at the map point (x, y). It drags the selection, or when
/// the selection is empty `pressed` (see DragObjectAtPress), which is marked for the time of
/// the drag. Returns false, having done nothing, when nothing is selected and there is no
/// highlight, or nothing was found at the press. Otherwise takes a forced undo step, builds
/// the lists, showing "Selecting Objects to Drag - Wait" and, for Sectors with
/// DragSectorThings on, "Selecting Things to Drag - Wait", and ends with the status "When
/// done, Press C to Clear Selected Objects, F1=Help".
[[nodiscard]] bool DragBegin(DragState& state, int mode, double x, double y, PressObject pressed);

/// The pointer moved to the map point (x, y): the point is held to the grid when GridSnap is
/// on, and the delta from the anchor applied to the saved positions, Things as it is, Vertexes
/// with the delta held to the grid and each new position snapped. Counts one change (a
/// geometry change unless Things moved). Returns false when the point is where it was.
bool DragMoveTo(DragState& state, double x, double y);

/// Esc: the level goes back to the undo step taken at the start, and a temporary selection is
/// cleared. Returns the mode and highlight of the start. A drag that is not running is left
/// as it is, here and in DragFinish.
DragEnd DragCancel(DragState& state);

/// The release. When anything moved ("Moving Objects, Please Wait") the moved Vertexes are
/// merged and split where they landed on others, asking first (VertexMergeTolerance held at
/// 0.2 at most meanwhile), and the Things of a Sector drag follow by the Vertexes' move. A
/// temporary selection is cleared. Returns the mode and highlight of the start.
DragEnd DragFinish(DragState& state);

} // namespace kelvar::tools
