// The LineDraw tool: clicks place Vertexes one after another, each drawing a LineDef from the
// one before; closing a run works out the Sectors of the new lines. A state machine fed input
// records, so the window and the batch commands drive the same code.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A click snaps to a Vertex within the drawing range, else to the grid; a click on a LineDef
//   splits it there and carries its textures into the new lines.
// - A drawn line that crosses others is split at every crossing, and so are they
//   (AutoDrawIntersections).
// - A run is one undo step, taken at its first Vertex.
// - On closing, the Sectors are sorted out first and the clean-up of Vertexes on one spot and
//   superimposed lines runs after, on the lines' final numbers.
#pragma once

#include "map/Geometry.h"
#include "map/LevelData.h"

#include <optional>
#include <string>
#include <vector>

namespace kelvar::tools
{

/// One input of the tool, in map coordinates.
enum class DrawAction
{
    Click,         // left button, or Enter at the pointer
    Close,         // right button: close the run into a loop
    CloseOneSided, // Insert: close and make one-sided lines
    Escape,        // Esc: end without the closing line
};

struct DrawInput
{
    DrawAction Action = DrawAction::Click;
    double X = 0;
    double Y = 0;
};

/// Where the tool stands after an input.
enum class DrawState
{
    Waiting, // no run under way
    Drawing, // a run has Vertexes
    Left,    // the user left the tool
};

/// Where two lines cross, solved in doubles; nothing when they share an end position or are
/// parallel. With `round` the point is rounded half away from zero.
std::optional<map::Point> LineIntersection(map::Point a1, map::Point a2, map::Point b1,
                                           map::Point b2, bool round);

/// Splits `line` and every LineDef it crosses at each crossing, on new Vertexes; the pieces of
/// `line` follow one another from its start. Returns the pieces of `line` in order (the first
/// is `line` itself) and adds the number of crossings to `crossings`.
std::vector<int> SplitAtCrossings(map::LevelData& level, int line, int& crossings);

/// The tool over one level. Construction saves the texture defaults the tool may change;
/// destruction gives them back.
class LineDrawTool
{
public:
    /// `startVertex`: a Vertex the first run starts from, or -1.
    LineDrawTool(map::LevelData& level, int startVertex);
    ~LineDrawTool();
    LineDrawTool(const LineDrawTool&) = delete;
    LineDrawTool& operator=(const LineDrawTool&) = delete;

    DrawState Feed(const DrawInput& input);

    /// The map position of the run's last Vertex, where the rubber line starts.
    std::optional<map::Point> RubberStart() const;
    /// The text of the coordinates pane for the pointer at (x, y).
    std::string PaneText(double x, double y) const;

private:
    void Click(double x, double y);
    void CloseRun(int action);
    int VertexNear(double x, double y) const;
    int LineUnder(double x, double y) const;
    int PlaceVertex(double x, double y);
    void DrawLine(int from, int to);
    void ResetRun();

    map::LevelData& Level;
    map::TextureName SavedUpper, SavedNormal, SavedLower;
    int VertexCountAtStart = 0;

    // The run.
    std::vector<int> DrawnVertexes;
    std::vector<int> DrawnLines;
    std::vector<int> NewLines;
    std::vector<int> ExistingLines;
    std::vector<int> LineSplits;
    int FirstVertex = -1;
    int LastVertex = -1;
    int ClickCount = 0;
    int SectorAtFirst = -1; // the Sector at the run's first Vertex
    int SectorLast = -1;    // the Sector at the last Vertex that was in one
    int IntersectionsMade = 0;
    int SplitsMade = 0;
    std::string LastLineText;
};

} // namespace kelvar::tools
