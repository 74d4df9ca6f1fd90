// kelvar-cli edit: a level changed by a short script of editor commands, then saved.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::cli
{

/// edit IWAD [PWAD...] MAPNAME -o OUT.wad [--nodes] -- SCRIPT: reads the level, runs the
/// script's commands through the editor's command router, and saves as `save` does. The
/// script is the arguments after "--", joined by spaces, its commands separated by ';':
///   mode things|linedefs|vertexes|sectors   the edit mode, as its key sets it
///   select N...       the selection becomes these objects, marked in the order given
///   box X1 Y1 X2 Y2   the selection becomes the objects in the box of map corners
///   highlight N       the highlighted object (what a command takes with no selection)
///   clear             an empty selection
///   misc INDEX        entry INDEX of the mode's Misc popup (F8)
///   delete, insert, undo, redo
///   run NUMBER        any command by its number
///   draw X,Y X,Y ... [close|open|esc]
///                     one run of the LineDraw tool: a click at each point, then the right
///                     button (close, the default), Insert (open) or Esc
///   drag DX DY        the selection (or highlight) dragged by DX, DY map units
///   rotate DEGREES    the Rotate and Scale tool on the selection: turned anticlockwise
///   scale FACTOR      the same, scaled (1.5 is half as large again)
/// Questions take their first button, number prompts their offered value, and the question of
/// how to split a Sector its last enabled entry (a real split when one can be made). A script error
/// or a command that can't run stops before the save, with nothing written. Returns the exit
/// status.
int EditLevel(const std::vector<std::string>& arguments);

/// The commands of a script, each as its words; an empty result for an empty script.
std::vector<std::vector<std::string>> ParseEditScript(const std::string& script);

} // namespace kelvar::cli
