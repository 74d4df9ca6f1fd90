// printf-style formatting into std::string, so message texts keep their %d-style formats.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdarg>
#include <string>

namespace kelvar::platform
{

/// Formats like snprintf and returns the text.
std::string Format(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The va_list form of Format.
std::string FormatV(const char* format, va_list arguments) __attribute__((format(printf, 1, 0)));

} // namespace kelvar::platform
