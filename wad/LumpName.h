// LumpName: the 8-byte, zero-padded name of a WAD lump, compared without regard to case.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace kelvar::wad
{

/// The search key of a name given as text, as LumpName::Key computes it; usable in constant
/// expressions, so fixed names cost nothing to compare.
constexpr std::uint64_t NameKey(std::string_view text)
{
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < text.size() && i < 8 && text[i] != '\0'; ++i)
    {
        char c = text[i];
        c = (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
        key |= static_cast<std::uint64_t>(static_cast<unsigned char>(c)) << (8 * i);
    }
    return key;
}

/// A lump name as it stands in a WAD directory: 8 bytes, padded with zeros, not terminated
/// when 8 long. Equality with == is byte-exact; SameName and Is ignore case and whatever
/// follows a zero byte, as every search of the directory does.
struct LumpName
{
    std::array<char, 8> Chars{};

    /// The first 8 characters of `text`, zero padded.
    static LumpName From(std::string_view text);
    /// The name from 8 raw directory bytes.
    static LumpName FromBytes(const std::uint8_t* bytes);

    /// The characters up to the first zero byte.
    std::string Text() const;
    /// The search key: the name in upper case, zeroed after its first zero byte.
    std::uint64_t Key() const
    {
        // The eight bytes are handled as one little-endian word: everything after the first
        // zero byte is cleared, then the bytes 'a' to 'z' lose their 0x20 bit, no loop.
        constexpr std::uint64_t Ones = 0x0101010101010101ULL;
        constexpr std::uint64_t Highs = 0x8080808080808080ULL;
        std::uint64_t word = 0;
        std::memcpy(&word, Chars.data(), sizeof word);
        const std::uint64_t zeros = (word - Ones) & ~word & Highs;
        if (zeros != 0)
        {
            const int first = __builtin_ctzll(zeros) / 8; // the lowest flag is always exact
            word &= first == 0 ? 0 : (~0ULL >> (64 - 8 * first));
        }
        const std::uint64_t low7 = word & ~Highs;
        const std::uint64_t fromA = low7 + (0x80 - 'a') * Ones;     // high bit: byte >= 'a'
        const std::uint64_t pastZ = low7 + (0x80 - 'z' - 1) * Ones; // high bit: byte > 'z'
        const std::uint64_t lower = fromA & ~pastZ & ~word & Highs;
        return word - (lower >> 2);
    }
    /// True when the name equals `text` over 8 characters, case ignored.
    bool Is(std::string_view text) const { return Key() == NameKey(text); }
    /// True when the name's key is `key` (a NameKey of a constant name).
    bool HasKey(std::uint64_t key) const { return Key() == key; }
    /// True when the name begins with `prefix`, case ignored.
    bool StartsWith(std::string_view prefix) const;
    /// True when the name has no characters.
    bool Empty() const { return Chars[0] == '\0'; }
    /// True when the name begins with a printable ASCII character; directory entries whose
    /// names don't are passed over.
    bool Printable() const
    {
        const auto first = static_cast<unsigned char>(Chars[0]);
        return first >= 32 && first < 128;
    }

    bool operator==(const LumpName&) const = default;
};

/// True when two names are the same lump name (8 characters, case ignored).
inline bool SameName(const LumpName& a, const LumpName& b)
{
    return a.Key() == b.Key();
}

/// The upper-case form of an ASCII character; other bytes stay as they are.
inline char UpperAscii(char c)
{
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

/// True when two texts are equal, case ignored (ASCII).
bool EqualNoCase(std::string_view a, std::string_view b);

/// The text with its ASCII letters in upper case.
std::string UpperText(std::string_view text);

} // namespace kelvar::wad
