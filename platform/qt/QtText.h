// The core's texts (UTF-8) as Qt strings, for the windows.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <string_view>

namespace kelvar::platform
{

/// A UTF-8 text of the core as a Qt string.
inline QString Text(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace kelvar::platform
