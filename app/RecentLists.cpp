// The most-recently-used lists of a project.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RecentLists.h"

#include "wad/LumpName.h"

#include <algorithm>
#include <cstring>

namespace kelvar::app
{

bool AddRecentName(RecentList& list, std::string_view name)
{
    if (name.empty() || name.size() >= ListPathSize)
    {
        return false;
    }
    // The place the new name frees: its old one, or the last, which falls off.
    std::size_t freed = RecentCount - 1;
    for (std::size_t i = 0; i < RecentCount; ++i)
    {
        if (wad::EqualNoCase(GetText(list[i]), name))
        {
            freed = i;
            break;
        }
    }
    for (std::size_t i = freed; i > 0; --i)
    {
        std::memcpy(list[i], list[i - 1], ListPathSize);
    }
    SetText(list[0], name);
    return true;
}

std::vector<std::string> RecentNames(const RecentList& list)
{
    std::vector<std::string> names;
    for (const auto& entry : list)
    {
        if (entry[0] != '\0')
        {
            names.push_back(GetText(entry));
        }
    }
    return names;
}

bool AddRecentPwad(ProjectRecord& project, std::string_view name)
{
    return AddRecentName(project.RecentPwads, name);
}

bool AddRecentPrefab(ProjectRecord& project, std::string_view name)
{
    return AddRecentName(project.RecentPrefabs, name);
}

} // namespace kelvar::app
