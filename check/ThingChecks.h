// The Thing checks of the checker (button 6): exits and player starts, then each Thing's
// type, shooter target, Sector, room and neighbours, and the keys the doors need.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"

#include <string>
#include <string_view>
#include <vector>

namespace kelvar::check
{

/// The skill bits of a Thing's flags: easy, medium, hard.
inline constexpr unsigned SkillBits = 7;

/// One line per skill in `skills` (bits 0 to 2), as the Thing filter names them: "Skill 1-2
/// (easy)", "Skill  3 (medium)", "Skill 4-5 (hard)".
std::vector<std::string> SkillLines(unsigned skills);

/// A type row's name as findings show it: up to the list of arguments a Hexen name carries
/// after '+', without blanks around it.
std::string TypeNameOf(std::string_view rowName);

/// The name findings give a Thing's type; "Unknown" when no row knows it.
std::string ThingNameOf(std::uint16_t type);

/// Exits, then player and deathmatch starts per skill:
/// - unless Expert Mode is on, a level without a LineDef whose type ends the level: "There are
///   no exits in this level!" under "No Exits";
/// - with "Check Player Starts" on and Things in the level: a missing player 1 ("Starting
///   positions missing." under "Player"; when `interactive` and prompting, "Skip Rest of player
///   checks ?" is asked, and Yes ends the player checks here); "This level is not for
///   multi-player games" when another player has no start at all; a start without skill bits;
///   a player with no start, or with more than one, for a skill; too few or too many
///   deathmatch starts.
/// Players 5 to 8 count with the Boom switch on or in the Hexen format, when the game's table
/// has starts for them. Returns false only when
/// the user stopped the check (Escape, or Cancel on a prompt); skipping the rest of the player
/// checks is not a stop, so the Thing checks still follow.
[[nodiscard]] bool CheckPlayerStarts(CheckRun& run, bool interactive);

/// Each Thing in turn, under "Checking Thing Names/Doors/Sectors (esc Cancel)":
/// - "Check Thing Type": a type no row knows;
/// - "Thing Shooter": the game's boss shooter without its target in the level;
/// - "Things in Sector": a Thing outside every Sector (sounds, and in the Hexen format the
///   polyobject anchors, are left out); then for an Enemy or a player start, a Sector too
///   low for the Thing's height, and a one-sided LineDef nearer than its radius less 8;
/// - "Things on Top": two Enemies at the very same point that meet in some skill and mode.
/// Then CheckKeyDoors, with "Check Keys ( HEXEN )" on in the Hexen format and always in the
/// other formats but Strife. Returns false when the user stopped it.
[[nodiscard]] bool CheckThings(CheckRun& run);

/// Under "Checking LineDef Doors (esc)": the keys in the level per colour and skill, against
/// the doors that need a key (a LineDef row's key property, or in the Hexen format type 13
/// with its key in the fourth argument). Keys that no door needs are told under "Keys"; doors
/// whose key is missing for some skill are findings on their first LineDef. Keys that appear
/// only in multiplayer games don't count. Returns false when the user stopped it.
[[nodiscard]] bool CheckKeyDoors(CheckRun& run);

} // namespace kelvar::check
