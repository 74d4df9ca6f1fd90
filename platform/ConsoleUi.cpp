// The console Ui: messages to a stream, fixed answers to questions.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/ConsoleUi.h"

#include <algorithm>
#include <fstream>

namespace kelvar::platform
{

int ConsoleUi::Show(const Message& message)
{
    std::fprintf(Out, "%s:\n", message.Title.c_str());
    // Every line of the text is indented under the title, so a multi-line message reads as
    // one block in a terminal or a log.
    for (const std::string& line : message.Lines)
    {
        std::size_t start = 0;
        do
        {
            const std::size_t end = std::min(line.find('\n', start), line.size());
            std::fprintf(Out, "  %s\n", line.substr(start, end - start).c_str());
            start = end + 1;
        } while (start <= line.size());
    }
    if (message.IsQuestion())
    {
        std::fprintf(Out, "  -> %s\n", QuestionAnswer == 1 ? "yes" : "no");
        return QuestionAnswer;
    }
    return 1;
}

void ConsoleUi::ShowTextFile(const std::string& caption, const std::filesystem::path& file)
{
    std::fprintf(Out, "%s:\n", caption.c_str());
    std::ifstream in(file);
    std::string line;
    while (std::getline(in, line))
    {
        std::fprintf(Out, "  %s\n", line.c_str());
    }
}

std::optional<std::filesystem::path> ConsoleUi::ChooseFile(const FileChoice& /*choice*/)
{
    return std::nullopt;
}

std::optional<int> ConsoleUi::ChooseFromList(const std::string& /*caption*/,
                                             const std::vector<std::string>& /*items*/)
{
    return std::nullopt;
}

std::optional<int> ConsoleUi::AskNumber(const std::string& /*caption*/,
                                        const std::string& /*prompt*/, int /*initial*/, int /*low*/,
                                        int /*high*/)
{
    return std::nullopt;
}

std::optional<std::string> ConsoleUi::AskText(const std::string& /*caption*/,
                                              const std::string& /*prompt*/,
                                              const std::string& /*initial*/)
{
    return std::nullopt;
}

void ConsoleUi::SetStatusText(const std::string& /*text*/) {}

void ConsoleUi::ShowProgress(const std::string& /*caption*/, const std::string& /*detail*/) {}

void ConsoleUi::EndProgress() {}

bool ConsoleUi::PollEscape()
{
    return false;
}

void ConsoleUi::Beep() {}

} // namespace kelvar::platform
