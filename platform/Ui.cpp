// The installed Ui and the Message helpers.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Ui.h"

#include "platform/ConsoleUi.h"

namespace kelvar::platform
{
namespace
{

Ui*& Installed()
{
    static Ui* installed = nullptr;
    return installed;
}

} // namespace

std::string Message::Text() const
{
    std::string text;
    for (std::size_t i = 0; i < Lines.size(); ++i)
    {
        if (i > 0)
        {
            text += '\n';
        }
        text += Lines[i];
    }
    return text;
}

Ui& TheUi()
{
    static ConsoleUi fallback;
    Ui* installed = Installed();
    return installed != nullptr ? *installed : fallback;
}

Ui* InstallUi(Ui* ui)
{
    Ui* previous = Installed();
    Installed() = ui;
    return previous;
}

} // namespace kelvar::platform
