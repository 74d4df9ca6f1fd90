// Lump names as the lump tools take them: names fit for a file, and the names given to
// entries whose stored name is unreadable.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace kelvar::lumps
{

/// False when the name holds a character no file name may hold ("*", "\\" or "?"), after the
/// notice "Not Valid Name" with the name, "Contains invalid characters for a file name" and
/// "Export manually with a valid name".
bool IsExportableName(std::string_view name);

/// Hands out the names of entries whose first byte is a control character: "bad0", "bad1"...
/// in the order they are met, one counter per file read.
class BadNames
{
public:
    /// `name` itself, or the next "bad%d" when its first byte is below 32.
    std::string Clean(std::string_view name);
    /// True once some name was replaced.
    bool Any() const { return Count > 0; }

private:
    int Count = 0;
};

} // namespace kelvar::lumps
