// Lump names as the lump tools take them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/LumpNames.h"

#include "platform/Format.h"
#include "platform/Messages.h"

namespace kelvar::lumps
{

bool IsExportableName(std::string_view name)
{
    if (name.find_first_of("*\\?") == std::string_view::npos)
    {
        return true;
    }
    platform::ShowMessageLines(platform::LinesInfo, "Not Valid Name",
                               {std::string(name), "Contains invalid characters for a file name",
                                "Export manually with a valid name"});
    return false;
}

std::string BadNames::Clean(std::string_view name)
{
    if (!name.empty() && static_cast<unsigned char>(name.front()) >= 32)
    {
        return std::string(name);
    }
    return platform::Format("bad%d", Count++);
}

} // namespace kelvar::lumps
