// A run of zdbsp with its output captured for the log.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::kelvarbsp
{

/// How a run ended.
struct ZdbspResult
{
    bool Started = true;
    std::string StartReason; // the system's reason when it didn't start
    int ExitCode = 0;        // its exit code when it ended normally
    int Signal = 0;          // the signal that killed it, or 0
    std::string Output;      // what it wrote, without the progress animation
};

/// Runs `program` (looked up on PATH) with `arguments` through the process port and waits for
/// it. Its standard input is empty; its output is captured through a temporary file.
ZdbspResult RunZdbsp(const std::string& program, const std::vector<std::string>& arguments);

/// stderr text without zdbsp's progress animation ("   BSP:  97.9%" lines ended by \r).
std::string WithoutProgress(const std::string& text);

} // namespace kelvar::kelvarbsp
