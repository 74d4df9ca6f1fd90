// Boom's generalized LineDef types and the Sector flag bits: a type number decoded into its
// fields and a readable name, a name's fields composed back into a number, and the Sector
// flags that Boom and ZDoom pack into the Sector type.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A generalized type is a category base plus bit fields: the trigger in bits 0 to 2, the
//   speed in bits 3 and 4, then the fields of the category. One table of fields per category
//   serves the decoder, the name and the dialogs, so they can't disagree.
// - The decoded row is one work row, refilled by every call, as the lookups of the tables
//   return rows that stay valid only until the next lookup changes them.
#pragma once

#include "game/TypeRows.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::game
{

enum class GeneralizedCategory : std::uint8_t
{
    Floor,
    Ceiling,
    Door,
    Locked,
    Lift,
    Stair,
    Crusher,
};

/// A category: the first type of its range, its word in names, its dialog and the title.
struct GeneralizedCategoryRow
{
    std::uint16_t Base;
    GeneralizedCategory Category;
    const char* Word;
    const char* Dialog;
    const char* Title;
};

/// The seven categories, from the highest base down, as types are tested.
const std::array<GeneralizedCategoryRow, 7>& GeneralizedCategories();

/// The row of a category.
const GeneralizedCategoryRow& CategoryRow(GeneralizedCategory category);

/// The category of a type from 12160 to 32767; nothing below or above.
std::optional<GeneralizedCategory> CategoryOfType(std::uint16_t type);

/// One field of a type: the bits it takes and the text of each value.
struct GeneralizedField
{
    const char* Label; // the dialog's group: "Trigger", "Speed", "Target"...
    int FirstBit;
    int Bits;
    std::vector<const char*> Texts; // one per value; "" for a value that adds nothing
};

/// The fields of a category, trigger and speed first, in the order of the name.
const std::vector<GeneralizedField>& FieldsOf(GeneralizedCategory category);

/// The value of each field of `type` (in the order of FieldsOf); empty outside the range.
std::vector<int> DecodeFieldValues(std::uint16_t type);

/// The type a dialog makes of a category and its field values (each kept to its bits).
std::uint16_t ComposeLineType(GeneralizedCategory category, const std::vector<int>& values);

/// The name of a generalized type: the trigger, two blanks, the category's word, a blank, the
/// speed, a blank, and each further field's text followed by a blank ("WR  Door Norm o-c
/// Nomonst 4 "). Empty outside the range.
std::string GeneralizedLineName(std::uint16_t type);

/// The work row of a generalized type: its number, name, the first 16 characters of the name
/// as short name; tag type OptionTag for a manual trigger (a name beginning 'D'), SectorTag
/// otherwise; a locked door's key as its property; and the motion of what it moves.
const LineTypeRow& DecodeGeneralizedLine(std::uint16_t type);

/// The classic types (the low five bits) that take Boom's Sector flags: no light effect, and the
/// lights "Random", "FastBlink", "SlowBlink", "Pulsating", "SlowSync", "FastSync", "Flicker".
inline constexpr std::array<std::uint16_t, 8> BoomLightTypes{0, 1, 2, 3, 8, 12, 13, 17};

/// The flag bits of a Sector type: Boom's (Doom formats with the Boom switch) or ZDoom's.
struct SectorFlagBits
{
    std::uint16_t Mask;   // every flag bit: 0x3E0 Boom, 0x1F00 ZDoom
    std::uint16_t Damage; // the two damage bits
    std::uint16_t DamageShift;
    std::uint16_t Secret;
    std::uint16_t Ice;
    std::uint16_t Wind;
};

/// The flag bits of the current project; nothing when it has none (no Boom or ZDoom switch,
/// or the Hexen format without ZDoom).
std::optional<SectorFlagBits> CurrentSectorFlags();

/// SectorFlagTest: true when `bit` (one of the flag bits) is set in the Sector type.
bool SectorFlagTest(std::uint16_t sectorType, std::uint16_t bit);

/// A Sector type with its flag bits replaced by `flags` (only the flag mask is taken). Without
/// the ZDoom switch only types whose low five bits are 0, 1, 2, 3, 8, 12, 13 or 17 take flags:
/// nothing for the others.
std::optional<std::uint16_t> WithSectorFlags(std::uint16_t sectorType, std::uint16_t flags);

} // namespace kelvar::game
