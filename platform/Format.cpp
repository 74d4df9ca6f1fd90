// printf-style formatting into std::string.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Format.h"

#include <cstdio>

namespace kelvar::platform
{

std::string Format(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = FormatV(format, arguments);
    va_end(arguments);
    return text;
}

std::string FormatV(const char* format, va_list arguments)
{
    va_list measure;
    va_copy(measure, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    if (length <= 0)
    {
        return {};
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

} // namespace kelvar::platform
