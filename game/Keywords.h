// The keywords of OPT files: colours, shapes, categories and property codes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace kelvar::game
{

/// A word of an OPT file and the code it stands for.
struct Keyword
{
    std::string_view Word;
    std::uint32_t Code = 0;
};

/// The colour names, by colour index: entry 0 is empty, 1 "BLUE" to 29 "LIGHTERGRAY".
std::span<const std::string_view> ColorNames();

/// The keyword tables, each searched from the top with case ignored.
std::span<const Keyword> ShapeKeywords();
std::span<const Keyword> ThingCategoryKeywords();
std::span<const Keyword> LineCategoryKeywords();
/// Sector categories: two keywords name each code, so the order of the search matters.
std::span<const Keyword> SectorCategoryKeywords();
/// LineDef "Floor Property" (motion) words, with DELETE and Skip.
std::span<const Keyword> MotionKeywords();
std::span<const Keyword> LinePropertyKeywords();
std::span<const Keyword> TagTypeKeywords();
/// The one keyword of Sector lines: DELETE.
std::span<const Keyword> SectorKeywords();
/// The 72 Thing property words, with DELETE and Skip.
std::span<const Keyword> ThingPropertyKeywords();

/// The code of `word` in `table`, case ignored; nothing when it isn't there.
std::optional<std::uint32_t> FindKeyword(std::span<const Keyword> table, std::string_view word);

/// The colour index of a colour name, case ignored (1 to 29).
std::optional<std::uint16_t> FindColor(std::string_view word);

} // namespace kelvar::game
