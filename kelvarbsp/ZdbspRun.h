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
    int StartError = 0; // the system's error number when the program didn't start
    int ExitCode = 0;   // its exit code when it ended normally
    int Signal = 0;     // the signal that killed it, or 0
    std::string Output; // stdout, then the meaningful lines of stderr
};

/// Runs `program` (looked up on PATH) with `arguments` and waits for it. Its standard input
/// is empty; its progress animation on stderr is left out of the captured output.
ZdbspResult RunZdbsp(const std::string& program, const std::vector<std::string>& arguments);

/// stderr text without zdbsp's progress animation ("   BSP:  97.9%" lines ended by \r).
std::string WithoutProgress(const std::string& text);

} // namespace kelvar::kelvarbsp
