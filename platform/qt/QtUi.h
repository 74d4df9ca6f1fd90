// The Ui port over Qt dialogs: message boxes, file and list choices, prompts, progress.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Ui.h"

#include <QObject>
#include <QPointer>
#include <functional>

class QProgressDialog;
class QWidget;

namespace kelvar::platform
{

/// Shows the system's messages in Qt dialogs owned by the main window. Status texts go to
/// whatever the window installs.
///
/// Escape is noticed by an event filter on the application, and counts for PollEscape only when
/// it reaches the application while a long operation pumps events through this Ui (in
/// PollEscape or ShowProgress), outside any menu and any dialog opened meanwhile. An Escape that
/// closes a menu or cancels a dialog is handled by that menu's or dialog's own loop, so it never
/// counts. One that counted and was not polled is forgotten when the progress panel closes or
/// the application next waits for input: then no operation is running.
class QtUi final : public QObject, public Ui
{
    Q_OBJECT

public:
    explicit QtUi(QWidget* owner = nullptr);
    ~QtUi() override;

    /// The window dialogs belong to.
    void SetOwner(QWidget* owner);
    /// Where SetStatusText sends its text.
    void SetStatusSink(std::function<void(const std::string&)> sink);
    /// What opens a browser window; without one, Browse offers the names as a list.
    void SetBrowser(std::function<std::optional<std::string>(const BrowseRequest&)> opener);

    int Show(const Message& message) override;
    void ShowTextFile(const std::string& caption, const std::filesystem::path& file) override;
    std::optional<std::filesystem::path> ChooseFile(const FileChoice& choice) override;
    std::vector<std::filesystem::path> ChooseFiles(const FileChoice& choice) override;
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

    /// "Projects (*.PRJ)|*.prj|" as a Qt file dialog filter: "Projects (*.PRJ *.prj)".
    static QString DialogFilter(const std::string& filter);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Handles the pending events for a long operation; an Escape among them counts.
    void Pump();

    QPointer<QWidget> Owner;
    std::function<void(const std::string&)> StatusSink;
    std::function<std::optional<std::string>(const BrowseRequest&)> Browser;
    QProgressDialog* Progress = nullptr;
    bool EscapePressed = false;
    int Pumping = 0;       // nesting of Pump
    int PumpLoopLevel = 0; // the event loop level the outermost Pump runs at
};

} // namespace kelvar::platform
