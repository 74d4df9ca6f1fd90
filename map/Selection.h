// The selection: marked objects of the edit mode, the highlight, mode translation, bookmarks.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "map/ObjectList.h"

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

namespace kelvar::map
{

/// Edit modes, which are object kinds: 1 Things, 2 LineDefs, 4 Vertexes, 8 Sectors.
inline constexpr int ModeThings = 1;
inline constexpr int ModeLineDefs = 2;
inline constexpr int ModeVertexes = 4;
inline constexpr int ModeSectors = 8;

/// A stored place: project, level, mode and object, and the view at the time.
struct Bookmark
{
    std::uint16_t Project = 0;
    std::uint16_t Level = 0;
    std::uint16_t Mode = 0; // 0: the slot is unused
    std::int32_t Object = -1;
    std::int32_t CursorX = 0;
    std::int32_t CursorY = 0;
    std::int32_t ViewX = 0;
    std::int32_t ViewY = 0;
    float Zoom = 1.0f;

    bool operator==(const Bookmark&) const = default;
};

/// Where "Jump to Tags" is in its walk between LineDefs and Sectors of one tag.
struct TagFollowState
{
    int StartMode = 0; // 0: idle
    int NextIndex = 0;
    std::uint16_t LineTag = 0;
    std::uint16_t SectorTag = 0;
};

/// What is marked and highlighted.
struct SelectionState
{
    ObjectList Selection; // marked objects of the edit mode, the last marked at the head
    int HighlightedObject = -1;
    int PreviousHighlight = -1;
    std::array<int, 4> LastHighlight = {-1, -1, -1, -1}; // per mode, when it was left
    std::uint16_t PreviousMode = 0;
    bool AutoMode = false;
    std::array<Bookmark, 10> Bookmarks;
    TagFollowState TagFollow;
};

/// The selection state of the map model.
SelectionState& Selected();

/// False when `object` is -1 or beyond the kind's count; kinds the store doesn't hold pass.
bool IsValidObject(const LevelData& level, int kind, int object);

/// The highest object number of a kind (count less one), -1 for a kind without objects.
int HighestObject(const LevelData& level, int kind);

/// The guard of the commands that need a selection: counts `list`, gives its head and tail,
/// and with too few (or, with `exactly`, another number than `wanted`) shows "Select exactly
/// %d %ss" or "Select at least %d %ss" titled "Select" and returns false.
bool CountOrComplain(int kind, bool exactly, int wanted, int& outCount, const ObjectList& list,
                     int& outFirst, int& outLast);

/// A click on the highlighted object: a marked one is unmarked; another is marked, replacing
/// the selection unless `additive` (the option, or Ctrl held). Without a highlighted object
/// the error signal sounds.
void ToggleHighlighted(bool additive);

/// The kind of object an edit mode edits (KindThing, KindLineDef, KindVertex, KindSector); 0
/// for a number that is no mode.
int KindOfMode(int mode);

/// The Things a box may select: a Thing the map's Thing filter hides can't be. Empty lets
/// every Thing through. It lasts for the session: the filter's owner sets it when it changes.
std::function<bool(const Thing&)>& BoxThingFilter();

/// The objects of `kind` in the box of map corners, edges included, in ascending order (the
/// highest ends at the head): Things and Vertexes by position, LineDefs with both ends in
/// it, and Sectors on either side of such a LineDef. Things the filter hides are left out.
ObjectList SelectInBox(const LevelData& level, int kind, double x1, double y1, double x2,
                       double y2);

/// The end of a box selection: the new marks, on top of the old ones when `additive`; the
/// highlight becomes the newest mark, or -1 when nothing is marked.
void FinishBoxSelection(const LevelData& level, int kind, double x1, double y1, double x2,
                        double y2, bool additive);

/// Rewrites the selection for a change of mode: Sector to LineDef, LineDef to Vertex,
/// LineDef to Sector (Sectors wholly bordered by selected lines), Vertex to LineDef; any
/// other change empties it. The new mode's highlight comes back from when it was left.
void TranslateSelection(const LevelData& level, int oldMode, int newMode);

/// The objects a command on the selection works on: the selection, newest first, or the
/// highlighted object of `kind` alone, or none.
std::vector<std::int32_t> SelectionOrHighlight(const LevelData& level, int kind);

/// Clears the selection and the tag walk.
void ClearSelection();

/// The next object after the highlight, wrapping to 0; -1 only for an empty array.
int NextObject(const LevelData& level, int mode);
/// The object before the highlight, wrapping from 0 or -1 to the highest.
int PreviousObject(const LevelData& level, int mode);

/// Shift+M in Thing mode: the selection becomes every Thing of the type of the newest mark
/// (or of the highlight), in ascending order.
void MarkAllSameThings(const LevelData& level);

/// One step of "Jump to Tags": the next object of the other mode that shares the tag. Returns
/// the mode to switch to and the object to highlight, or mode 0 when nothing was found.
struct TagJump
{
    int Mode = 0;
    int Object = -1;
};
TagJump JumpToTags(const LevelData& level, int mode);

} // namespace kelvar::map
