// What a type number means: the lookups of Thing, LineDef and Sector types in the active tables.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Every lookup searches the current game's table from the top and stops at its end row. None
// returns null: a type no row holds gets the unknown row of its kind.
#pragma once

#include "game/TypeRows.h"
#include "map/LevelData.h"

#include <cstdint>
#include <string_view>

namespace kelvar::game
{

/// Boom's generalized LineDef types: this range, in the Doom formats with the Boom switch on.
inline constexpr std::uint16_t FirstGeneralizedLineType = 12160;
inline constexpr std::uint16_t LastGeneralizedLineType = 32767;

/// True when a LineDef type is one of Boom's generalized types in the current project, which
/// the generalized decoder describes instead of the table.
bool LineTypeIsGeneralized(std::uint16_t type);

/// The row of a LineDef type. In a Doom format a manual door's row ("D..." names) gets its
/// tag type here: OptionTag with the Boom switch on, none with it off. In the Hexen format a
/// key door (type 13) with a non-zero `key` is the row whose fourth argument is that key. A
/// generalized type answers the decoder's work row (DecodeGeneralizedLine).
const LineTypeRow& LookupLineType(std::uint16_t type, std::uint16_t key);

/// The row of a Sector type. With the ZDoom switch the flag bits 8 to 12 are ignored; with the
/// Boom switch on a Doom or Heretic IWAD a light type that no row names answers a work row
/// "<kind> Light", which the next call reuses.
const SectorTypeRow& LookupSectorType(std::int16_t type);
std::string_view SectorTypeName(std::int16_t type);
std::string_view SectorTypeShortName(std::int16_t type);

/// The row of a Thing. A bridge's non-zero first argument becomes the row's radius, and a
/// radius of 0 becomes 32; both stay in the table.
const ThingTypeRow& ThingRow(const map::Thing& thing);
/// The row of a Thing type, or the unknown row.
const ThingTypeRow& ThingRowOfType(std::uint16_t type);
/// The name of a Thing type, or "<?unknown?>".
std::string_view ThingTypeName(std::uint16_t type);
/// The code of the heading above a Thing type's row; 0 when no row has the type.
std::uint32_t ThingCategoryOf(std::uint16_t type);
/// The colour index of a Thing type; 15 when no row has it.
std::uint16_t ThingColor(std::uint16_t type);
/// The radius of a Thing: its row's, 16 when no row has the type, or the first argument of a
/// type 9990 bridge.
std::uint16_t ThingRadius(const map::Thing& thing);

/// What a Thing row's property code makes it. The ThingIs... lookups ask these of the type's
/// row; a caller that holds the row already asks them itself.
bool IsMapSpotProperty(std::uint32_t property);
bool IsPlayerStartProperty(std::uint32_t property);
/// Polyobject start spots, crushing or not, and the anchor.
bool IsPolyStartProperty(std::uint32_t property);

bool ThingIsMapSpot(std::uint16_t type);
bool ThingIsPlayerStart(std::uint16_t type);
bool ThingIsPolyAnchor(std::uint16_t type);
bool ThingIsPolyStart(std::uint16_t type);
bool ThingIsPolyOrHate(std::uint16_t type);
bool ThingIsTeleportLanding(std::uint16_t type);

/// In the Hexen format only: the door specials 11, 12, 13, and 0.
bool LineIsDoorSpecial(std::uint16_t type);
/// In the Hexen format only: the type's first argument is a polyobject number.
bool LineTagIsPolyId(std::uint16_t type);
/// In the Hexen format only: the type's first argument is a Thing id.
bool LineTagIsTid(std::uint16_t type);

} // namespace kelvar::game
