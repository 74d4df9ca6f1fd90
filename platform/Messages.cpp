// The message forms, turned into platform Messages.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Messages.h"

#include "platform/Format.h"

#include <cstdarg>
#include <cstring>

namespace kelvar::platform
{

namespace
{

int ShowSingle(const char* title, MessageIcon icon, MessageButtons buttons, bool systemModal,
               std::string text)
{
    Message message;
    message.Title = title;
    message.Lines.push_back(std::move(text));
    message.Icon = icon;
    message.Buttons = buttons;
    message.SystemModal = systemModal;
    return TheUi().Show(message);
}

} // namespace

void ShowError(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = FormatV(format, arguments);
    va_end(arguments);
    ShowSingle("Kelvar Error", MessageIcon::Stop, MessageButtons::Ok, true, std::move(text));
}

void ShowInfo(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = FormatV(format, arguments);
    va_end(arguments);
    ShowSingle("Kelvar Information", MessageIcon::Exclamation, MessageButtons::Ok, true,
               std::move(text));
}

bool AskYesNo(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = FormatV(format, arguments);
    va_end(arguments);
    return ShowSingle("Kelvar Confirm", MessageIcon::Question, MessageButtons::YesNo, false,
                      std::move(text)) == 1;
}

std::string MessageLinesCaption(int flags, const std::string& title)
{
    if ((flags & LinesHelp) == LinesHelp)
    {
        return " Help - ";
    }
    if ((flags & LinesError) != 0)
    {
        return " Error - " + title;
    }
    if ((flags & LinesInfo) != 0)
    {
        return " Info - " + title;
    }
    return title;
}

int ShowMessageLines(int flags, const std::string& title, const std::vector<std::string>& lines,
                     MessageButtons buttons)
{
    Message message;
    message.Title = MessageLinesCaption(flags, title);
    message.Lines = lines;
    message.Centered = true;
    message.Icon = (flags & LinesError) != 0  ? MessageIcon::Stop
                   : (flags & LinesInfo) != 0 ? MessageIcon::Exclamation
                                              : MessageIcon::None;
    message.Buttons = buttons;
    if ((flags & LinesCancel) != 0 && buttons == MessageButtons::Ok)
    {
        message.Buttons = MessageButtons::YesNo;
    }
    return TheUi().Show(message);
}

void ShowLastError(int osError)
{
    ShowSingle("GetLastError", MessageIcon::None, MessageButtons::Ok, false,
               std::strerror(osError));
}

} // namespace kelvar::platform
