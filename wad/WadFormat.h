// The WAD file format on disk: header and directory entry layout, little-endian access.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <cstring>

namespace kelvar::wad
{

/// Bytes of the WAD header: magic, lump count, directory offset.
inline constexpr int WadHeaderSize = 12;
/// Bytes of one directory entry: offset, size, name.
inline constexpr int DirectoryEntrySize = 16;

/// Reads a little-endian signed 32-bit value.
inline std::int32_t ReadLe32(const std::uint8_t* bytes)
{
    const std::uint32_t value =
        static_cast<std::uint32_t>(bytes[0]) | (static_cast<std::uint32_t>(bytes[1]) << 8) |
        (static_cast<std::uint32_t>(bytes[2]) << 16) | (static_cast<std::uint32_t>(bytes[3]) << 24);
    std::int32_t result;
    std::memcpy(&result, &value, sizeof result);
    return result;
}

/// Reads a little-endian unsigned 16-bit value.
inline std::uint16_t ReadLe16(const std::uint8_t* bytes)
{
    return static_cast<std::uint16_t>(bytes[0] | (bytes[1] << 8));
}

/// Writes a little-endian 32-bit value.
inline void WriteLe32(std::uint8_t* bytes, std::int32_t value)
{
    std::uint32_t raw;
    std::memcpy(&raw, &value, sizeof raw);
    bytes[0] = static_cast<std::uint8_t>(raw);
    bytes[1] = static_cast<std::uint8_t>(raw >> 8);
    bytes[2] = static_cast<std::uint8_t>(raw >> 16);
    bytes[3] = static_cast<std::uint8_t>(raw >> 24);
}

/// Writes a little-endian 16-bit value.
inline void WriteLe16(std::uint8_t* bytes, std::uint16_t value)
{
    bytes[0] = static_cast<std::uint8_t>(value);
    bytes[1] = static_cast<std::uint8_t>(value >> 8);
}

} // namespace kelvar::wad
