// The named fields of the status records: name, offset, width and kind, for listing them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::app
{

/// How a field's bytes read.
enum class FieldKind : std::uint8_t
{
    Integer, // 1 byte unsigned, 2 or 4 bytes signed
    Hex,     // a 16-bit marker word
    Text,    // zero-terminated text in a fixed field
    Float,
    Double,
    Rect,  // four signed 32-bit values
    Name,  // a texture name: 8 characters and two spare bytes
    Range, // two signed 16-bit values, low and high
};

/// One named field of a record. A list field has `Count` entries `Stride` bytes apart.
struct StatusField
{
    std::string_view Name;
    std::size_t Offset = 0;
    std::size_t Width = 0; // of one entry
    FieldKind Kind = FieldKind::Integer;
    std::size_t Count = 1;
    std::size_t Stride = 0;
};

/// The named fields of each record kind, in offset order. Every offset is checked against the
/// struct at compile time.
std::span<const StatusField> ChkFields();
std::span<const StatusField> ProjectFields();
std::span<const StatusField> GameConfigFields();
std::span<const StatusField> TextureControlFields();
std::span<const StatusField> ToolFields();

/// The fields of a kind by its three letters ("CHK", "PRJ", "CFG", "TCF", "TOL"); empty for an
/// unknown kind.
std::span<const StatusField> FieldsOfKind(std::string_view kind);

/// The value of entry `entry` of a field in a record image, as text: numbers in decimal,
/// markers in hex, texts and names in double quotes with unprintable bytes as \xNN.
std::string FieldValue(const StatusField& field, std::span<const std::byte> record,
                       std::size_t entry = 0);

/// The listing of a record image: the frame, then one line per field as "offset width name
/// value". List fields show their entries that aren't all zero, as name[index], or one line
/// "(empty)" when all are.
std::vector<std::string> DescribeRecord(std::span<const StatusField> fields,
                                        std::span<const std::byte> record);

} // namespace kelvar::app
