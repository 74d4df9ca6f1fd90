// The texts of the info pane of the current object and of the status bar fields.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Both are pure text from the model: the window paints the lines, the texture boxes and the
// sprite, and lays them out as it likes. Type names come from the current game's tables.
#pragma once

#include "map/GameCodes.h"
#include "map/LevelData.h"

#include <string>
#include <vector>

namespace kelvar::view
{

/// How the panes show numbers.
struct InfoPaneOptions
{
    int LevelFormat = map::GameDoom2; // a map::GameCode
    bool HexTypes = false;            // type numbers in hexadecimal, by the number base option
};

/// A texture box of the LineDef pane: which side, which wall, and what it shows: the name,
/// "-" when none is set, or "missing" when the wall needs one and has none.
struct TextureBox
{
    int Side = 1;      // 1 front, 2 back
    std::string Label; // "upper", "normal", "lower"
    std::string Text;

    bool operator==(const TextureBox&) const = default;
};

/// The pane of one object.
struct InfoPane
{
    std::vector<std::string> Lines;
    std::vector<TextureBox> Textures; // LineDef panes only
    std::string Sprite;               // Thing panes: the sprite frame of the type

    bool operator==(const InfoPane&) const = default;
};

/// The pane of the current object of an edit mode (1, 2, 4, 8), or "No Thing selected",
/// "No LineDef selected", "No Vertex selected", "No Sector selected" when `object` is not one.
InfoPane ObjectInfo(const map::LevelData& level, int mode, int object,
                    const InfoPaneOptions& options);

/// The panes by kind; `object` must be a valid number of its kind.
InfoPane ThingInfo(const map::LevelData& level, int thing, const InfoPaneOptions& options);
InfoPane LineDefInfo(const map::LevelData& level, int line, const InfoPaneOptions& options);
InfoPane VertexInfo(const map::LevelData& level, int vertex);
InfoPane SectorInfo(const map::LevelData& level, int sector, const InfoPaneOptions& options);

/// The short form of a LineDef for narrow lists: "L=%-5d %3.0f" (length and angle) and its tag
/// ("Tag%4hd %3d=%-.14s", "Tag%4hd (missing)", or "tagmiss" for a type that needs a tag and
/// has none).
std::vector<std::string> LineDefShortInfo(const map::LevelData& level, int line);

/// The length of a LineDef, truncated, and its direction in degrees from the start Vertex,
/// 0 east, counter-clockwise, 0 up to 360.
int LineDefLength(const map::LevelData& level, const map::LineDef& line);
double LineDefAngle(const map::LevelData& level, const map::LineDef& line);

/// The name of an edit mode in the status bar: "Things", "LineDefs", "Vertexes", "Sectors".
const char* ModeName(int mode);

/// What the status bar shows.
struct StatusBarValues
{
    int Mode = 8;
    bool SecondCopy = false; // "COPY"
    int Backup = -1;         // the backup number of a save in progress, -1 for none
    double Scale = 0.5;
    int Grid = 8;
    int Speed = 5;
    bool Snap = true;
    bool AutoEdit = false;
    bool AutoSel = false;
    int Center = 0; // 0 off, 1 at the cursor, 2 at the object
    bool Edit3D = false;
    bool Changed = false; // MapChanged is not 0
    bool NodesChanged = false;
};

/// The status bar fields in order: 0 the mode name, 1 "COPY", 2 "(bkp%d)" (empty when not
/// saving), 3 "Scale %.2f", 4 "Grid %d", 5 "Speed %d", then "Snap=ON"/"Snap=OFF",
/// "AutoEdit=...", "AutoSel=...", "Center=OFF"/"Center=Cursor"/"Center=Object",
/// "3DEdit=...", "Change=YES"/"Change=NO", "Node=YES"/"Node=NO".
std::vector<std::string> StatusBarFields(const StatusBarValues& values);

/// Field numbers of the status bar.
inline constexpr int StatusFieldMode = 0;
inline constexpr int StatusFieldScale = 3;
inline constexpr int StatusFieldGrid = 4;
inline constexpr int StatusFieldSpeed = 5;
inline constexpr int StatusFieldSnap = 6;
inline constexpr int StatusFieldCount = 13;

} // namespace kelvar::view
