// The console Ui of kelvar-cli's batch commands (save, edit): every question takes its first
// button, every number prompt its offered value, every file dialog the output file.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/ConsoleUi.h"

#include <filesystem>

namespace kelvar::cli
{

// The console, with every question answered by its first button, every menu of choices by its
// last enabled entry (or the one a script set), every number prompt by the
// value it offers and every file dialog by the output file. The one exception: an I/O error's "Quit
// now ?" is answered No, so the save stops and the old file is put back instead of the program
// ending half way.
class BatchUi final : public platform::Ui
{
public:
    explicit BatchUi(std::filesystem::path output) : Output(std::move(output)) {}

    int Show(const platform::Message& message) override
    {
        if (message.IsQuestion() && message.Text().find("Quit now") != std::string::npos)
        {
            return Refusing.Show(message);
        }
        return Console.Show(message);
    }
    void ShowTextFile(const std::string& caption, const std::filesystem::path& file) override
    {
        Console.ShowTextFile(caption, file);
    }
    std::optional<std::filesystem::path> ChooseFile(const platform::FileChoice&) override
    {
        return Output;
    }
    std::optional<int> ChooseFromList(const std::string& caption,
                                      const std::vector<std::string>& items) override
    {
        return Console.ChooseFromList(caption, items);
    }
    /// A menu of choices takes the entry set by SetMenuAnswer when it is enabled, else its
    /// last enabled entry (for the split question: a real split when one can be made).
    std::optional<int> ChooseEntry(const std::string& /*caption*/,
                                   const std::vector<std::string>& items,
                                   const std::vector<bool>& enabled) override
    {
        const auto usable = [&](int i)
        {
            return i >= 0 && static_cast<std::size_t>(i) < items.size() &&
                   (static_cast<std::size_t>(i) >= enabled.size() ||
                    enabled[static_cast<std::size_t>(i)]);
        };
        if (MenuAnswer && usable(*MenuAnswer))
        {
            return MenuAnswer;
        }
        for (int i = static_cast<int>(items.size()) - 1; i >= 0; --i)
        {
            if (usable(i))
            {
                return i;
            }
        }
        return std::nullopt;
    }
    void SetMenuAnswer(std::optional<int> answer) { MenuAnswer = answer; }
    std::optional<int> AskNumber(const std::string& /*caption*/, const std::string& /*prompt*/,
                                 int initial, int /*low*/, int /*high*/) override
    {
        return initial; // a number prompt takes the value it offers
    }
    std::optional<std::string> AskText(const std::string& caption, const std::string& prompt,
                                       const std::string& initial) override
    {
        return Console.AskText(caption, prompt, initial);
    }
    void SetStatusText(const std::string& text) override { Console.SetStatusText(text); }
    void ShowProgress(const std::string& caption, const std::string& detail) override
    {
        Console.ShowProgress(caption, detail);
    }
    void EndProgress() override { Console.EndProgress(); }
    bool PollEscape() override { return false; }
    void Beep() override {}

private:
    platform::ConsoleUi Console{stderr, 1};
    platform::ConsoleUi Refusing{stderr, 0};
    std::filesystem::path Output;
    std::optional<int> MenuAnswer;
};

} // namespace kelvar::cli
