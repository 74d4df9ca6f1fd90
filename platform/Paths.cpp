// Where the program keeps its files on this system.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Paths.h"

#include <cstdlib>

namespace kelvar::platform
{

std::filesystem::path HomeDir()
{
    const char* home = std::getenv("HOME");
    return home != nullptr ? std::filesystem::path(home) : std::filesystem::path();
}

std::filesystem::path DefaultProgramDir()
{
    const char* config = std::getenv("XDG_CONFIG_HOME");
    std::filesystem::path base = (config != nullptr && config[0] == '/')
                                     ? std::filesystem::path(config)
                                     : HomeDir() / ".config";
    return base / "kelvar" / "";
}

} // namespace kelvar::platform
