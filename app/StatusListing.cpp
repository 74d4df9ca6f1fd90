// The listing of a status record: each named field with its value, as kelvar-cli shows it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/StatusFields.h"

#include "app/StatusRecords.h"
#include "platform/Format.h"

#include <algorithm>
#include <cstring>

namespace kelvar::app
{
namespace
{

template <typename T> T ReadAt(std::span<const std::byte> record, std::size_t offset)
{
    T value{};
    std::memcpy(&value, record.data() + offset, sizeof value);
    return value;
}

std::string Quoted(std::span<const std::byte> bytes)
{
    std::string text = "\"";
    for (const std::byte b : bytes)
    {
        const auto c = static_cast<unsigned char>(b);
        if (c == 0)
        {
            break;
        }
        text += (c < 32 || c >= 127) ? platform::Format("\\x%02X", c)
                                     : std::string(1, static_cast<char>(c));
    }
    return text + "\"";
}

bool AllZero(std::span<const std::byte> bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](std::byte b) { return b == std::byte{0}; });
}

} // namespace

std::string FieldValue(const StatusField& field, std::span<const std::byte> record,
                       std::size_t entry)
{
    const std::size_t offset = field.Offset + entry * field.Stride;
    const std::span<const std::byte> bytes = record.subspan(offset, field.Width);
    switch (field.Kind)
    {
    case FieldKind::Integer:
        if (field.Width == 1)
        {
            return std::to_string(ReadAt<std::uint8_t>(record, offset));
        }
        if (field.Width == 2)
        {
            return std::to_string(ReadAt<std::int16_t>(record, offset));
        }
        return std::to_string(ReadAt<std::int32_t>(record, offset));
    case FieldKind::Hex:
        return platform::Format("0x%04X", ReadAt<std::uint16_t>(record, offset));
    case FieldKind::Text:
    case FieldKind::Name:
        return Quoted(bytes.first(field.Kind == FieldKind::Name ? 8 : field.Width));
    case FieldKind::Float:
        return platform::Format("%g", static_cast<double>(ReadAt<float>(record, offset)));
    case FieldKind::Double:
        return platform::Format("%g", ReadAt<double>(record, offset));
    case FieldKind::Rect:
    {
        const auto rect = ReadAt<StatusRect>(record, offset);
        return platform::Format("%d %d %d %d", rect.Left, rect.Top, rect.Right, rect.Bottom);
    }
    case FieldKind::Range:
    {
        const auto range = ReadAt<TypeRange>(record, offset);
        return platform::Format("%d..%d", range.Low, range.High);
    }
    }
    return {};
}

std::vector<std::string> DescribeRecord(std::span<const StatusField> fields,
                                        std::span<const std::byte> record)
{
    std::vector<std::string> lines;
    const auto frame = ReadAt<StatusFrame>(record, 0);
    lines.push_back("tag       " + Quoted(record.first(4)));
    lines.push_back("version   " + std::to_string(frame.Version));
    lines.push_back("size      " + std::to_string(frame.Size));
    lines.push_back(
        platform::Format("end word  0x%04X", ReadAt<std::uint16_t>(record, record.size() - 2)));
    lines.push_back(platform::Format("%6s  %5s  %-28s  %s", "offset", "width", "field", "value"));
    const auto line = [&](std::size_t offset, std::size_t width, const std::string& name,
                          const std::string& value)
    {
        lines.push_back(
            platform::Format("%6zu  %5zu  %-28s  %s", offset, width, name.c_str(), value.c_str()));
    };
    for (const StatusField& field : fields)
    {
        const std::string name(field.Name);
        if (field.Count == 1)
        {
            line(field.Offset, field.Width, name, FieldValue(field, record));
            continue;
        }
        bool any = false;
        for (std::size_t i = 0; i < field.Count; ++i)
        {
            const std::size_t offset = field.Offset + i * field.Stride;
            if (!AllZero(record.subspan(offset, field.Width)))
            {
                any = true;
                line(offset, field.Width, platform::Format("%s[%zu]", name.c_str(), i),
                     FieldValue(field, record, i));
            }
        }
        if (!any)
        {
            line(field.Offset, field.Width * field.Count, name, "(empty)");
        }
    }
    return lines;
}

} // namespace kelvar::app
