// A scripted Processes for tests.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/test/RecordingProcesses.h"

namespace kelvar::platform
{

RecordingProcesses::RecordingProcesses() : Previous(InstallProcesses(this)) {}

RecordingProcesses::~RecordingProcesses()
{
    InstallProcesses(Previous);
}

RecordingProcesses& RecordingProcesses::Exit(int code)
{
    Codes.push_back(code);
    return *this;
}

int RecordingProcesses::RunChild(const ChildRequest& request)
{
    Runs.push_back(request);
    if (OnRun)
    {
        OnRun(request);
    }
    if (Codes.empty())
    {
        return 0;
    }
    const int code = Codes.front();
    Codes.pop_front();
    return code;
}

} // namespace kelvar::platform
