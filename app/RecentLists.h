// The most-recently-used lists of a project: PWADs and prefabs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/StatusRecords.h"

#include <string>
#include <string_view>
#include <vector>

namespace kelvar::app
{

/// One recent list: 20 names of 260 bytes, newest first.
using RecentList = char[RecentCount][ListPathSize];

/// Puts `name` first in a recent list: an equal name already in it (case ignored) is taken
/// out and the names behind it close up, everything moves one place down, the last falls
/// off. An empty name, or one longer than 259 characters, leaves the list as it is; returns
/// false then.
bool AddRecentName(RecentList& list, std::string_view name);

/// The names of a recent list, newest first, without the empty places.
std::vector<std::string> RecentNames(const RecentList& list);

/// AddRecentName on the project's RecentPwads and on its recent prefab list.
bool AddRecentPwad(ProjectRecord& project, std::string_view name);
bool AddRecentPrefab(ProjectRecord& project, std::string_view name);

} // namespace kelvar::app
