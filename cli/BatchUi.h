// The console Uis of kelvar-cli's batch commands: one passing every call on to the console, and
// the Ui of save and edit, where every question takes its first button, every number prompt its
// offered value, every file dialog the output file.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/ConsoleUi.h"

#include <filesystem>

namespace kelvar::cli
{

// A console passing every call on, Escape never pressed and no beep; the batch commands' Uis
// change only what they answer otherwise. `questionAnswer` is the console's answer to a question.
class ConsoleBackedUi : public platform::Ui
{
public:
    explicit ConsoleBackedUi(int questionAnswer) : Console(stderr, questionAnswer) {}

    int Show(const platform::Message& message) override { return Console.Show(message); }
    void ShowTextFile(const std::string& caption, const std::filesystem::path& file) override
    {
        Console.ShowTextFile(caption, file);
    }
    std::optional<std::filesystem::path> ChooseFile(const platform::FileChoice& choice) override
    {
        return Console.ChooseFile(choice);
    }
    std::optional<int> ChooseFromList(const std::string& caption,
                                      const std::vector<std::string>& items) override
    {
        return Console.ChooseFromList(caption, items);
    }
    std::optional<int> AskNumber(const std::string& caption, const std::string& prompt, int initial,
                                 int low, int high) override
    {
        return Console.AskNumber(caption, prompt, initial, low, high);
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

protected:
    platform::ConsoleUi Console;
};

// The console, with every question answered by its first button, every menu of choices by its
// last enabled entry, every number prompt by the
// value it offers and every file dialog by the output file. The one exception: an I/O error's "Quit
// now ?" is answered No, so the save stops and the old file is put back instead of the program
// ending half way.
class BatchUi final : public ConsoleBackedUi
{
public:
    explicit BatchUi(std::filesystem::path output) : ConsoleBackedUi(1), Output(std::move(output))
    {
    }

    int Show(const platform::Message& message) override
    {
        if (message.IsQuestion() && message.Text().find("Quit now") != std::string::npos)
        {
            return Refusing.Show(message);
        }
        return Console.Show(message);
    }
    std::optional<std::filesystem::path> ChooseFile(const platform::FileChoice&) override
    {
        return Output;
    }
    /// A menu of choices takes its last enabled entry (for the split question: a real split
    /// when one can be made).
    std::optional<int> ChooseEntryAt(const std::string& /*caption*/,
                                     const std::vector<std::string>& items,
                                     const std::vector<bool>& enabled, int /*current*/) override
    {
        for (std::size_t i = items.size(); i-- > 0;)
        {
            if (i >= enabled.size() || enabled[i])
            {
                return static_cast<int>(i);
            }
        }
        return std::nullopt;
    }
    std::optional<int> AskNumber(const std::string& /*caption*/, const std::string& /*prompt*/,
                                 int initial, int /*low*/, int /*high*/) override
    {
        return initial; // a number prompt takes the value it offers
    }

private:
    platform::ConsoleUi Refusing{stderr, 0};
    std::filesystem::path Output;
};

} // namespace kelvar::cli
