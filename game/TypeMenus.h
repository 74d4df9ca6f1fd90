// The pop-up menus from which a type is picked: categories, then the types of one category.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace kelvar::game
{

/// Most entries of a Thing sub-menu, and of a LineDef or Sector sub-menu.
inline constexpr std::size_t ThingSubMenuLimit = 64;
inline constexpr std::size_t TypeSubMenuLimit = 60;

/// One entry of a type menu, ready for the window system.
struct TypeMenuEntry
{
    bool Separator = false;
    std::string Text;           // "&" mnemonic, blanks, label; a sub-menu entry adds the number
    std::uint32_t Command = 0;  // posted when chosen; 0 for an entry that opens a sub-menu
    std::uint32_t Category = 0; // first level: the heading code an entry opens
    std::uint32_t Type = 0;     // sub-menu: the type the entry sets
    std::array<std::uint8_t, 5> Args{}; // sub-menu: the arguments the entry pre-loads

    bool operator==(const TypeMenuEntry&) const = default;
};

/// The first level of the menu of `kind` (map::KindThing, KindLineDef or KindSector): hidden
/// rows dropped, trailing blanks taken off the labels in the rows. The row of the Boom builder
/// shows in Doom and Heretic projects with the Boom switch on ("BOOM LineDef Menu", "BOOM
/// Sector Types"), and the Sector flags of ZDoom in Hexen-format projects with the ZDoom switch.
std::vector<TypeMenuEntry> CategoryMenu(int kind);

/// The types of one category: the rows after its heading up to the next, free rows dropped and,
/// for Things of a Doom 1 project, the Doom 2 types (names ending in '2'). Entries are numbered
/// 1 to 9 and A onward, post TypeMenuFirst upward, and show the number in decimal or
/// hexadecimal.
std::vector<TypeMenuEntry> TypeSubMenu(int kind, std::uint32_t category, bool hexadecimal);

/// The heading code under which `type` stands in the table of `kind` (map::KindThing,
/// KindLineDef or KindSector); 0 when no row has it.
std::uint32_t HeadingOfType(int kind, std::uint32_t type);

/// Numbers the mnemonics of the Thing menu again after categories were opened: '1' to '9', then
/// 'A' onward, up to the first row whose mnemonic is x, y or z.
void RenumberThingMenu();

} // namespace kelvar::game
