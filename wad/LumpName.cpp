// LumpName: construction, text form and the case-blind search key.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LumpName.h"

#include <algorithm>
#include <cstring>

namespace kelvar::wad
{

LumpName LumpName::From(std::string_view text)
{
    LumpName name;
    const std::size_t length = std::min<std::size_t>(text.size(), 8);
    std::copy_n(text.begin(), length, name.Chars.begin());
    return name;
}

LumpName LumpName::FromBytes(const std::uint8_t* bytes)
{
    LumpName name;
    std::memcpy(name.Chars.data(), bytes, 8);
    return name;
}

std::string LumpName::Text() const
{
    const auto end = std::find(Chars.begin(), Chars.end(), '\0');
    return std::string(Chars.begin(), end);
}

bool LumpName::StartsWith(std::string_view prefix) const
{
    if (prefix.size() > 8)
    {
        return false;
    }
    for (std::size_t i = 0; i < prefix.size(); ++i)
    {
        if (Chars[i] == '\0' || UpperAscii(Chars[i]) != UpperAscii(prefix[i]))
        {
            return false;
        }
    }
    return true;
}

std::string UpperText(std::string_view text)
{
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), UpperAscii);
    return upper;
}

bool EqualNoCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](char x, char y) { return UpperAscii(x) == UpperAscii(y); });
}

} // namespace kelvar::wad
