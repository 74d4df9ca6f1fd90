// A scripted Ui for tests: records every message, answers questions from a queue.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Ui.h"

#include <deque>
#include <string_view>
#include <utility>

namespace kelvar::platform
{

/// Records every title and line shown, and answers questions and prompts from queues filled
/// by the test. A question with no queued answer fails the test (and is answered 0); answers
/// still queued when the recorder is destroyed fail it too, since the question never came.
class RecordingUi final : public Ui
{
public:
    RecordingUi() = default;
    ~RecordingUi() override;
    RecordingUi(const RecordingUi&) = delete;
    RecordingUi& operator=(const RecordingUi&) = delete;

    /// Queues the answer to the next question (1 yes/OK/continue, 0 no/cancel, 2 third).
    RecordingUi& Answer(int answer);
    /// Queues the result of the next file dialog.
    RecordingUi& AnswerFile(std::optional<std::filesystem::path> file);
    /// Queues the result of the next list choice.
    RecordingUi& AnswerList(std::optional<int> index);
    /// Queues the name the next browser returns.
    RecordingUi& AnswerBrowse(std::optional<std::string> name);
    /// Queues the result of the next number prompt.
    RecordingUi& AnswerNumber(std::optional<int> number);
    /// Queues the result of the next text prompt.
    RecordingUi& AnswerText(std::optional<std::string> text);
    /// Makes PollEscape report Escape from its nth call on (1 = the first call).
    RecordingUi& EscapeFromPoll(int poll);

    int Show(const Message& message) override;
    void ShowTextFile(const std::string& caption, const std::filesystem::path& file) override;
    std::optional<std::filesystem::path> ChooseFile(const FileChoice& choice) override;
    std::optional<int> ChooseFromList(const std::string& caption,
                                      const std::vector<std::string>& items) override;
    std::optional<int> ChooseEntryAt(const std::string& caption,
                                     const std::vector<std::string>& items,
                                     const std::vector<bool>& enabled, int current) override;
    std::optional<std::string> Browse(const BrowseRequest& request) override;
    std::optional<int> AskNumber(const std::string& caption, const std::string& prompt, int initial,
                                 int low, int high) override;
    std::optional<std::string> AskText(const std::string& caption, const std::string& prompt,
                                       const std::string& initial) override;
    void SetStatusText(const std::string& text) override;
    void ShowProgress(const std::string& caption, const std::string& detail) override;
    void EndProgress() override;
    bool PollEscape() override;
    void Beep() override;

    /// The last message shown; fails the test when there is none.
    const Message& Last() const;
    /// The titles of all messages, in order.
    std::vector<std::string> Titles() const;
    /// True when some message has a line equal to `line`.
    bool Saw(std::string_view line) const;
    /// Forgets what was recorded (queued answers stay).
    void Clear();

    /// A text file the program showed: its caption and its lines as they were then.
    struct ShownText
    {
        std::string Caption;
        std::vector<std::string> Lines;
    };

    /// A number prompt as it was asked.
    struct NumberPrompt
    {
        std::string Caption;
        std::string Prompt;
        int Initial = 0;
        int Low = 0;
        int High = 0;
    };

    std::vector<Message> Messages;
    std::vector<ShownText> TextFiles;
    std::vector<FileChoice> FileRequests;
    std::vector<std::string> ListCaptions;
    std::vector<std::vector<std::string>> ListItems; // the items of each list choice
    std::vector<std::vector<bool>> EntriesEnabled;   // of each menu of choices, which were enabled
    std::vector<int> EntriesCurrent;                 // of each menu of choices, where it started
    std::vector<BrowseRequest> BrowseRequests;
    std::vector<NumberPrompt> NumberPrompts;
    /// A text prompt as it was asked: caption, prompt and the text offered.
    struct TextPrompt
    {
        std::string Caption;
        std::string Prompt;
        std::string Initial;
    };
    std::vector<TextPrompt> TextPrompts;
    std::vector<std::string> StatusTexts;
    std::vector<std::pair<std::string, std::string>> Progress;
    int EscapePolls = 0;
    int Beeps = 0;

private:
    std::deque<int> Answers;
    std::deque<std::optional<std::filesystem::path>> Files;
    std::deque<std::optional<int>> ListAnswers;
    std::deque<std::optional<std::string>> Browsed;
    std::deque<std::optional<int>> Numbers;
    std::deque<std::optional<std::string>> Texts;
    int EscapeFrom = 0;
};

} // namespace kelvar::platform
