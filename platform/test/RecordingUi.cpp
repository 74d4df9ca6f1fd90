// The scripted test Ui.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/test/RecordingUi.h"

#include <gtest/gtest.h>

#include <fstream>

namespace kelvar::platform
{
namespace
{

template <typename T> T TakeOrFail(std::deque<T>& queue, const char* what, const std::string& about)
{
    if (queue.empty())
    {
        ADD_FAILURE() << "unexpected " << what << ": " << about;
        return T{};
    }
    T value = std::move(queue.front());
    queue.pop_front();
    return value;
}

} // namespace

RecordingUi::~RecordingUi()
{
    EXPECT_TRUE(Answers.empty()) << Answers.size() << " queued answer(s) never asked for";
    EXPECT_TRUE(Files.empty()) << Files.size() << " queued file choice(s) never asked for";
    EXPECT_TRUE(ListAnswers.empty()) << ListAnswers.size() << " list choice(s) never asked for";
    EXPECT_TRUE(Browsed.empty()) << Browsed.size() << " browser(s) never opened";
    EXPECT_TRUE(Numbers.empty()) << Numbers.size() << " number(s) never asked for";
    EXPECT_TRUE(Texts.empty()) << Texts.size() << " text(s) never asked for";
}

RecordingUi& RecordingUi::Answer(int answer)
{
    Answers.push_back(answer);
    return *this;
}

RecordingUi& RecordingUi::AnswerFile(std::optional<std::filesystem::path> file)
{
    Files.push_back(std::move(file));
    return *this;
}

RecordingUi& RecordingUi::AnswerList(std::optional<int> index)
{
    ListAnswers.push_back(index);
    return *this;
}

RecordingUi& RecordingUi::AnswerBrowse(std::optional<std::string> name)
{
    Browsed.push_back(std::move(name));
    return *this;
}

RecordingUi& RecordingUi::AnswerNumber(std::optional<int> number)
{
    Numbers.push_back(number);
    return *this;
}

RecordingUi& RecordingUi::AnswerText(std::optional<std::string> text)
{
    Texts.push_back(std::move(text));
    return *this;
}

RecordingUi& RecordingUi::EscapeFromPoll(int poll)
{
    EscapeFrom = poll;
    return *this;
}

int RecordingUi::Show(const Message& message)
{
    Messages.push_back(message);
    if (!message.IsQuestion())
    {
        return 1;
    }
    if (Answers.empty())
    {
        ADD_FAILURE() << "unexpected question \"" << message.Title << "\": " << message.Text();
        return 0;
    }
    const int answer = Answers.front();
    Answers.pop_front();
    return answer;
}

void RecordingUi::ShowTextFile(const std::string& caption, const std::filesystem::path& file)
{
    ShownText shown{caption, {}};
    std::ifstream in(file);
    std::string line;
    while (std::getline(in, line))
    {
        shown.Lines.push_back(line);
    }
    TextFiles.push_back(std::move(shown));
}

std::optional<std::filesystem::path> RecordingUi::ChooseFile(const FileChoice& choice)
{
    FileRequests.push_back(choice);
    return TakeOrFail(Files, "file dialog", choice.Caption);
}

std::optional<int> RecordingUi::ChooseFromList(const std::string& caption,
                                               const std::vector<std::string>& items)
{
    ListCaptions.push_back(caption);
    ListItems.push_back(items);
    return TakeOrFail(ListAnswers, "list choice", caption);
}

std::optional<std::string> RecordingUi::Browse(const BrowseRequest& request)
{
    BrowseRequests.push_back(request);
    return TakeOrFail(Browsed, "browser", request.Caption);
}

std::optional<int> RecordingUi::ChooseEntryAt(const std::string& caption,
                                              const std::vector<std::string>& items,
                                              const std::vector<bool>& enabled, int current)
{
    // Answered from the list queue; the base form refuses a greyed entry.
    EntriesEnabled.push_back(enabled);
    EntriesCurrent.push_back(current);
    return Ui::ChooseEntryAt(caption, items, enabled, current);
}

std::optional<int> RecordingUi::AskNumber(const std::string& caption, const std::string& prompt,
                                          int initial, int low, int high)
{
    NumberPrompts.push_back({caption, prompt, initial, low, high});
    return TakeOrFail(Numbers, "number prompt", caption);
}

std::optional<std::string> RecordingUi::AskText(const std::string& caption,
                                                const std::string& prompt,
                                                const std::string& initial)
{
    TextPrompts.push_back({caption, prompt, initial});
    return TakeOrFail(Texts, "text prompt", caption);
}

void RecordingUi::SetStatusText(const std::string& text)
{
    StatusTexts.push_back(text);
}

void RecordingUi::ShowProgress(const std::string& caption, const std::string& detail)
{
    Progress.emplace_back(caption, detail);
}

void RecordingUi::EndProgress() {}

bool RecordingUi::PollEscape()
{
    ++EscapePolls;
    return EscapeFrom > 0 && EscapePolls >= EscapeFrom;
}

void RecordingUi::Beep()
{
    ++Beeps;
}

const Message& RecordingUi::Last() const
{
    static const Message none;
    if (Messages.empty())
    {
        ADD_FAILURE() << "no message was shown";
        return none;
    }
    return Messages.back();
}

std::vector<std::string> RecordingUi::Titles() const
{
    std::vector<std::string> titles;
    for (const Message& message : Messages)
    {
        titles.push_back(message.Title);
    }
    return titles;
}

bool RecordingUi::Saw(std::string_view line) const
{
    for (const Message& message : Messages)
    {
        for (const std::string& shown : message.Lines)
        {
            if (shown == line)
            {
                return true;
            }
        }
    }
    return false;
}

void RecordingUi::Clear()
{
    Messages.clear();
    TextFiles.clear();
    FileRequests.clear();
    ListCaptions.clear();
    ListItems.clear();
    BrowseRequests.clear();
    NumberPrompts.clear();
    EntriesCurrent.clear();
    TextPrompts.clear();
    StatusTexts.clear();
    Progress.clear();
}

} // namespace kelvar::platform
