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
/// whatever the window installs; Escape is noticed by an event filter on the application.
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

    /// "Projects (*.PRJ)|*.prj|" as a Qt file dialog filter: "Projects (*.PRJ *.prj)".
    static QString DialogFilter(const std::string& filter);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPointer<QWidget> Owner;
    std::function<void(const std::string&)> StatusSink;
    QProgressDialog* Progress = nullptr;
    bool EscapePressed = false;
};

} // namespace kelvar::platform
