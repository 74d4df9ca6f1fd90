// kelvar-cli commands over the status files: status.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::cli
{

/// kelvar-cli status FILE: the frame of a status file and every named field with its value.
/// kelvar-cli status --build DIR: writes all control files into DIR and lists them.
/// Returns ExitOk, ExitUsage for bad arguments, ExitBadFile when the file was refused or a
/// file couldn't be written.
int StatusCommand(const std::vector<std::string>& arguments);

} // namespace kelvar::cli
