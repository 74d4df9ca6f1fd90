// A Ui for batch runs: messages go to a stream, questions get a fixed answer, prompts cancel.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Ui.h"

#include <cstdio>

namespace kelvar::platform
{

/// The Ui of kelvar-cli and the one in place before any other is installed. Each message is
/// written as its title and lines; a question is written with the answer it receives.
class ConsoleUi final : public Ui
{
public:
    explicit ConsoleUi(std::FILE* out = stderr, int questionAnswer = 0)
        : Out(out), QuestionAnswer(questionAnswer)
    {
    }

    int Show(const Message& message) override;
    void ShowTextFile(const std::string& caption, const std::filesystem::path& file) override;
    std::optional<std::filesystem::path> ChooseFile(const FileChoice& choice) override;
    std::optional<int> ChooseFromList(const std::string& caption,
                                      const std::vector<std::string>& items) override;
    std::optional<int> AskNumber(const std::string& caption, const std::string& prompt, int initial,
                                 int low, int high) override;
    std::optional<std::string> AskText(const std::string& caption, const std::string& prompt,
                                       const std::string& initial) override;
    void SetStatusText(const std::string& text) override;
    void ShowProgress(const std::string& caption, const std::string& detail) override;
    void EndProgress() override;
    bool PollEscape() override;
    void Beep() override;

private:
    std::FILE* Out;
    int QuestionAnswer;
};

} // namespace kelvar::platform
