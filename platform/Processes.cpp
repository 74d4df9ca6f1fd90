// The process port's installation, and the reading of a command line.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Processes.h"

#include "platform/PosixProcesses.h"

#include <utility>

namespace kelvar::platform
{
namespace
{

Processes*& Installed()
{
    static Processes* installed = nullptr;
    return installed;
}

ChildWaitObserver& Observer()
{
    static ChildWaitObserver observer;
    return observer;
}

} // namespace

Processes& TheProcesses()
{
    Processes* installed = Installed();
    return installed != nullptr ? *installed : SystemProcesses();
}

Processes* InstallProcesses(Processes* processes)
{
    Processes* previous = Installed();
    Installed() = processes;
    return previous;
}

ChildWaitObserver InstallChildWaitObserver(ChildWaitObserver observer)
{
    ChildWaitObserver previous = std::move(Observer());
    Observer() = std::move(observer);
    return previous;
}

const ChildWaitObserver& TheChildWaitObserver()
{
    return Observer();
}

std::vector<std::string> SplitCommandLine(std::string_view commandLine)
{
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    bool quoted = false;
    for (const char c : commandLine)
    {
        if (c == '"')
        {
            quoted = !quoted;
            inWord = true;
        }
        else if ((c == ' ' || c == '\t') && !quoted)
        {
            if (inWord)
            {
                words.push_back(std::move(word));
                word.clear();
                inWord = false;
            }
        }
        else
        {
            word += c;
            inWord = true;
        }
    }
    if (inWord)
    {
        words.push_back(std::move(word));
    }
    return words;
}

} // namespace kelvar::platform
