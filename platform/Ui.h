// The user-facing port: every message, question, prompt and progress report of the system.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::platform
{

/// The icon a message box carries.
enum class MessageIcon : std::uint8_t
{
    None,
    Stop,        // errors
    Exclamation, // information
    Question,    // confirmations
};

/// The buttons of a message box. The answer is 1 for the first (OK, Yes, Continue),
/// 0 for No or Cancel, and 2 for the third button of a three-way box.
enum class MessageButtons : std::uint8_t
{
    Ok,
    YesNo,
    OkCancel,
    YesNoCancel,
};

/// One modal message as the system words it. Titles and lines are the exact texts the user
/// sees; a single-text message has one line that may hold line breaks.
struct Message
{
    std::string Title;
    std::vector<std::string> Lines;
    MessageIcon Icon = MessageIcon::None;
    MessageButtons Buttons = MessageButtons::Ok;
    bool SystemModal = false;
    bool Centered = false; // the multi-line form centres its lines
    /// Texts of the buttons in order, when they aren't the usual OK, Yes, No, Cancel.
    std::vector<std::string> ButtonTexts;

    /// True when the message needs an answer from the user.
    bool IsQuestion() const { return Buttons != MessageButtons::Ok; }
    /// All lines joined with line breaks.
    std::string Text() const;

    bool operator==(const Message&) const = default;
};

/// What a file dialog asks for.
struct FileChoice
{
    std::string Caption;
    std::string Filter;                // "Projects (*.PRJ)|*.prj|" style
    std::filesystem::path InitialPath; // directory or file to start from
    std::size_t NameLimit = 259;       // longest accepted full name
    bool ForSaving = false;
};

/// What a picture browser opens on: a grid of thumbnails from which the user picks one name.
struct BrowseRequest
{
    std::string Caption;
    int Variant = 0;                // which browser; the application numbers them
    std::vector<std::string> Names; // the names offered, in the order shown
    int Current = 0;                // the name framed when the browser opens
};

/// The operations the system needs of the user interface. The core reaches them only through
/// TheUi(); the editor installs a Qt implementation, the CLI a console one, tests a recorder.
class Ui
{
public:
    virtual ~Ui() = default;

    /// Shows a modal message; returns 1 for the affirmative button, 0 for No or Cancel,
    /// 2 for the third button.
    virtual int Show(const Message& message) = 0;

    /// Shows a text file in the program's text viewer under a caption.
    virtual void ShowTextFile(const std::string& caption, const std::filesystem::path& file) = 0;

    /// Lets the user pick a file; nothing when cancelled.
    virtual std::optional<std::filesystem::path> ChooseFile(const FileChoice& choice) = 0;

    /// Lets the user pick one or more existing files at once; empty when cancelled. This form
    /// asks for one file through ChooseFile; a window system overrides it to take several.
    virtual std::vector<std::filesystem::path> ChooseFiles(const FileChoice& choice);

    /// Lets the user pick one of a list; the index, or nothing when cancelled.
    virtual std::optional<int> ChooseFromList(const std::string& caption,
                                              const std::vector<std::string>& items) = 0;

    /// Lets the user pick one entry of a small menu of choices, where `enabled[i]` false shows
    /// entry i greyed; the index, or nothing when cancelled. Entries may carry '&' before
    /// their mnemonic.
    std::optional<int> ChooseEntry(const std::string& caption,
                                   const std::vector<std::string>& items,
                                   const std::vector<bool>& enabled)
    {
        return ChooseEntryAt(caption, items, enabled, -1);
    }

    /// ChooseEntry with entry `current` (when not negative) the one the keyboard starts on. This
    /// form shows the list and takes a pick of a greyed entry as a cancel; a window system
    /// overrides it to grey the entries.
    virtual std::optional<int> ChooseEntryAt(const std::string& caption,
                                             const std::vector<std::string>& items,
                                             const std::vector<bool>& enabled, int current);

    /// Opens a browser and returns the name picked, or nothing when it closed without one.
    /// This form offers the names as a list choice; a window system overrides it to show the
    /// thumbnails.
    virtual std::optional<std::string> Browse(const BrowseRequest& request);

    /// Asks for a whole number within [low, high]; nothing when cancelled.
    virtual std::optional<int> AskNumber(const std::string& caption, const std::string& prompt,
                                         int initial, int low, int high) = 0;

    /// Asks for a line of text; nothing when cancelled.
    virtual std::optional<std::string>
    AskText(const std::string& caption, const std::string& prompt, const std::string& initial) = 0;

    /// Puts a text in the status line.
    virtual void SetStatusText(const std::string& text) = 0;

    /// Shows or updates the modeless progress panel of a long operation.
    virtual void ShowProgress(const std::string& caption, const std::string& detail) = 0;

    /// Closes the progress panel.
    virtual void EndProgress() = 0;

    /// True when the user has pressed Escape since the last poll, while the long operation
    /// that polls was running. Long loops call it and keep the window alive meanwhile. An
    /// Escape pressed before the operation started (one that closed a menu or cancelled a
    /// dialog, say) never counts, nor one that answers a question the operation put.
    virtual bool PollEscape() = 0;

    /// Sounds the error signal: a refused key or a command that can't apply here.
    virtual void Beep() = 0;
};

/// The installed Ui. Before anything is installed, a console Ui that writes to stderr and
/// answers every question with its negative button is in place.
Ui& TheUi();

/// Installs a Ui (not owned) and returns the one it replaces; null restores the console Ui.
Ui* InstallUi(Ui* ui);

/// Installs a Ui for the lifetime of the guard.
class ScopedUi
{
public:
    explicit ScopedUi(Ui& ui) : Previous(InstallUi(&ui)) {}
    ~ScopedUi() { InstallUi(Previous); }
    ScopedUi(const ScopedUi&) = delete;
    ScopedUi& operator=(const ScopedUi&) = delete;

private:
    Ui* Previous;
};

} // namespace kelvar::platform
