// A scripted Processes for tests: records every request, answers from a queue.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Processes.h"

#include <deque>
#include <functional>
#include <vector>

namespace kelvar::platform
{

/// Records each RunChild request and returns the next queued exit code (0 when none is
/// queued). `OnRun` lets a test act as the program would: write the files it writes.
class RecordingProcesses final : public Processes
{
public:
    RecordingProcesses();
    ~RecordingProcesses() override;
    RecordingProcesses(const RecordingProcesses&) = delete;
    RecordingProcesses& operator=(const RecordingProcesses&) = delete;

    /// Queues the exit code of the next run.
    RecordingProcesses& Exit(int code);

    int RunChild(const ChildRequest& request) override;

    std::vector<ChildRequest> Runs;
    std::function<void(const ChildRequest&)> OnRun;

private:
    std::deque<int> Codes;
    Processes* Previous = nullptr;
};

} // namespace kelvar::platform
