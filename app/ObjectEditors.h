// The object editors' commands and choices: which objects an editor opens on, the type menus,
// the texture pickers, the tag and argument texts, raw flags, Sector flags and the pane keys.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The editing rules are game::ObjectEditor's; this is what sits between them and the
//   windows. Every choice asks through the Ui port (menus as ChooseEntry, numbers as AskNumber,
//   pictures through the browsers), so the tests drive an editor with the recording Ui and
//   the dialogs stay thin: a button calls one function here and shows the head's values again.
// - The windows themselves are reached through SessionHooks.ObjectEditor and its siblings.
//   Without a window (tests, the console), an editor opens and closes with nothing changed.
#pragma once

#include "app/Router.h"
#include "game/ObjectEdit.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::app
{

// The commands are in CommandHandlers.h: 494, 522 and the right click open the editor of the
// mode on the selection or the highlighted object (Vertexes have none); 209 (K) the Thing
// filter mask; 472 and 473 (Alt+1, Alt+2) a wall texture of side 1 or 2 from the browser.

/// Opens the editor of `mode` (map::ModeThings, ModeLineDefs or ModeSectors) on `objects`, the
/// head first. One undo step covers everything the dialog changes; the map and panes are
/// drawn again afterwards. Returns false when there was nothing to edit.
bool EditObjects(int mode, std::vector<std::int32_t> objects);

/// Cancel of an editor window: takes back the undo step of its changes, when it took one (undo
/// may be off). True when the level went back to how it was when the editor opened.
bool RevertEdits(const game::ObjectEditor& editor);

/// Puts the Thing mask's filter where the box selection asks it (after the mask changed).
void ApplyThingMask();

/// True when the project's levels are in the Hexen format.
bool HexenFormat();
/// The Sector type bits that are Boom or ZDoom flags in this project; 0 for none.
std::uint16_t FlagBitsOfSectors();
/// True when type numbers are shown in hexadecimal.
bool HexTypeNumbers();

// --- Types -------------------------------------------------------------------------------

/// The type button: the LineDef type menu (categories, then the types of one) through
/// ChooseEntry. Its direct entries: "Normal" sets 0, the type number asks "LineDef Type",
/// the BOOM builder opens the generalized dialog, the arguments open EditHexenArgs. A type
/// from a sub-menu brings its row's arguments in the Hexen format, and type 12 the last door
/// arguments used. With the Boom switch, a type in the generalized range opens its dialog
/// instead of the menu. Returns true when something changed.
bool ChooseLineType(game::ObjectEditor& editor);
/// "LineDef Type": asks the number (0 to 65535).
bool AskLineType(game::ObjectEditor& editor);
/// The generalized dialog of the head's type (or a new Floor type); true when it changed it.
bool EditGeneralizedType(game::ObjectEditor& editor);
/// The Sector type menu; direct entries as for LineDefs, the flags dialogs for the builder.
bool ChooseSectorType(game::ObjectEditor& editor);
/// The Thing type menu; "Enter a Thing #" asks the number.
bool ChooseThingType(game::ObjectEditor& editor);
/// "Click on Picture to Browse": the Things browser, framed on the head's type.
bool BrowseThingType(game::ObjectEditor& editor);
/// "&Special" of a Hexen-format Thing: the LineDef menu's specials, with their arguments.
bool ChooseThingSpecial(game::ObjectEditor& editor);

/// The text of the LineDef type button: "  &2.   %04X" with hexadecimal numbers, else
/// "  &2.   %d".
std::string LineTypeButtonText(std::uint32_t type);
/// The LineDef tag button: "&9. Sector\n    Tag", or "&9. HEXEN\n    Args" in the Hexen format.
std::string LineTagButtonText();

// --- Tags and arguments --------------------------------------------------------------------

/// "&9. Sector Tag": asks the tag of the LineDefs (0 to 65535).
bool AskLineTag(game::ObjectEditor& editor);

/// The labels of the five arguments of a LineDef special (from its row's name after '+');
/// missing ones are "Arg 2", "Arg 3" and so on.
std::vector<std::string> LineArgumentLabels(std::uint32_t type);
/// The head's five arguments: the tag's low byte, then the four others.
std::array<std::uint8_t, 5> HeadLineArguments(const game::ObjectEditor& editor);
/// Writes the five argument texts typed in EditHexenArgs. A text that isn't a number from 0 to
/// 255 shows "Argument values are from 0 to 255" and nothing is written; an argument whose
/// text equals the head's value as shown is left as each LineDef has it. Type 12's second and
/// third become the last door arguments. False when a value was refused.
bool CommitLineArguments(game::ObjectEditor& editor, const std::array<std::string, 5>& texts);
/// The same for a Thing's arguments.
bool CommitThingArguments(game::ObjectEditor& editor, const std::array<std::string, 5>& texts);

/// The free number line of an editor: for a LineDef, from the label of its special's first
/// argument ("Tid free=%hd last=%hd", "PolyId free=%hd last=%hd", "Tag free=%hd last=%hd",
/// "Lineid free=%d last=%d"), or "Free=%hd, Last=%hd" in the Doom format; for a Thing in the
/// Hexen format "PolyId free=%hd" (polyobject Things) or "TID free=%hd"; for a Sector the Doom
/// form. Empty when there is nothing to tell.
std::string FreeNumberText(const game::ObjectEditor& editor);

// --- Textures ------------------------------------------------------------------------------

/// A texture button: " &N.  %-8s" with the mnemonic and the name.
std::string TextureButtonText(char mnemonic, const std::string& name);
/// The texture pickers "New UPPER Texture", "New NORMAL Texture", "New LOWER Texture": the
/// Textures browser framed on the head's name; the name picked goes to every SideDef on that
/// side. True when something changed.
bool ChooseSideTexture(game::ObjectEditor& editor, int side, game::SidePart part);
/// "Choose New Floor", "Choose New Ceiling": the Flats browser, to every Sector of the set.
bool ChooseSectorFlat(game::ObjectEditor& editor, bool floor);

// --- Flags -----------------------------------------------------------------------------------

/// "Edit Raw Flags": asks the whole flag word of the head (LineDef or Thing) in hexadecimal,
/// with "Old Flags (%04X)"; the word goes to the objects whose word differs.
bool EditRawFlags(game::ObjectEditor& editor);
/// Sector flags to every Sector of the set; when none changed, the warning "Warning",
/// "! No flags changed !", "", "This is not a BOOM Sector type".
int ApplySectorFlags(game::ObjectEditor& editor, std::uint16_t flags);

// --- Info pane keys --------------------------------------------------------------------------

/// A texture place the pointer is on in the info pane.
struct PanePlace
{
    int Side = 1;                                 // LineDefs: 1 or 2
    game::SidePart Part = game::SidePart::Normal; // LineDefs
    bool Floor = false;                           // Sectors: right of the middle
};

/// A key with the pointer on a texture place of the pane, in Sector or LineDef mode: in Sector
/// mode C takes the head Sector's ceiling name and F its floor name, in LineDef mode U, N and L
/// the head LineDef's upper, normal and lower name on that side; any other key takes "-". The
/// name goes to the place of every selected object where it differs. Returns the objects
/// changed, and takes one undo step when any did.
int PaneTextureKey(int mode, const PanePlace& place, char key);

/// The hot areas of the pane, as the lines of view::SectorInfo and the texture boxes of
/// view::LineDefInfo. In Sector mode a click on line `line` of the pane: the heights ask
/// "Ceiling Height" or "Floor Height", the textures open the Flats browser ("Choose New
/// Ceiling", "Choose New Floor"), the light asks "New Light Level"; in LineDef mode a click on
/// texture box `box` opens the Textures browser for that side and place. The change reaches
/// every selected object. Returns true when something changed.
bool PaneClick(int mode, int line, int box);

/// The place of texture box `box` of the LineDef pane (view::LineDefInfo's order); nothing
/// when there is no such box.
std::optional<PanePlace> PanePlaceOfBox(int box);

} // namespace kelvar::app
