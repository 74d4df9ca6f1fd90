// What the Thing and type checks share as they walk a level: type rows found once per type
// number, and findings about one object.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// A walk over a quarter of a million objects would otherwise search the type table from its
// top for every one of them. The rows found stay valid for the walk: the tables never change
// size, and nothing edits them while a check runs.
#pragma once

#include "check/CheckRun.h"
#include "game/TypeLookup.h"
#include "game/TypeRows.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kelvar::check
{

/// The rows found so far, by type number.
struct RowCache
{
    std::vector<const game::ThingTypeRow*> Things;
    std::vector<const game::LineTypeRow*> Lines;
    std::vector<std::int8_t> Enemies; // -1 not yet known, else 0 or 1
};

/// The row of a Thing type, or the unknown row.
const game::ThingTypeRow& CachedThingRow(RowCache& cache, std::uint16_t type);

/// True for a Thing type that is an Enemy: its row has that property, or it stands under the
/// table's "Enemies" heading.
bool IsEnemyType(RowCache& cache, std::uint16_t type);

/// The row of a LineDef's type as LookupLineType gives it (the key of a Hexen key door taken
/// from its fourth argument).
const game::LineTypeRow& CachedLineRow(RowCache& cache, const map::LineDef& line);

/// True when the row is the one the lookups answer for a type no row holds.
bool IsUnknownRow(const game::ThingTypeRow& row);
bool IsUnknownRow(const game::LineTypeRow& row);
bool IsUnknownRow(const game::SectorTypeRow& row);

/// True when the level follows the Hexen format, where a LineDef's tag is its special's first
/// argument.
bool HexenFormat();

/// A count or number as the findings' "%hd" shows it.
inline short AsShort(int value)
{
    return static_cast<short>(value);
}

/// The type number of a LineDef as the lookups take it.
std::uint16_t LineTypeOf(const map::LineDef& line);

/// The tag of a LineDef: its Tag, or in the Hexen format its special's first argument.
std::uint16_t LineTagOf(const map::LineDef& line);

/// Sets a LineDef's tag to 0 as a repair of its own: one undo step, the change counted. In the
/// Hexen format only the special's first argument is cleared.
void ResetLineTag(CheckRun& run, std::size_t line);

/// A finding about one object, through the verification prompt. False when the user stopped
/// the check.
[[nodiscard]] bool ReportObject(CheckRun& run, int kind, std::size_t index,
                                std::vector<std::string> lines);

/// A yes/no question about one object under its own title, with Yes, No and Cancel: Yes
/// answers Fix, No Continue, and Cancel shows the object and answers Stop. The line "Press
/// Cancel to see ..." among `lines` is for the box only; logging, the other lines go to the
/// list under the object, and LogAndFix answers Fix.
Answer AskAboutObject(CheckRun& run, const std::string& title, int kind, std::size_t index,
                      const std::vector<std::string>& lines);

} // namespace kelvar::check
