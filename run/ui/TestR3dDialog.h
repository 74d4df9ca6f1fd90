// The TestR3D dialog: the 3D viewer's options, the private copy's save options, Play Only.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/TestOptions.h"
#include "run/ui/DialogFields.h"

#include <QDialog>
#include <span>

class QButtonGroup;
class QFormLayout;
class QTabWidget;
class QVBoxLayout;

namespace kelvar::run
{

/// Edits a copy of the viewer's options. The dialog ends with ViewerEdit for OK,
/// ViewerPlayOnly for "Play Only" and ViewerCancel for Cancel.
class TestR3dDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit TestR3dDialog(const Viewer3DOptions& options, QWidget* parent = nullptr);

    /// The options with the values the dialog's fields hold now.
    Viewer3DOptions Options() const;

private:
    /// A page of `pages` with the check boxes of `switches`; the caller adds the rest.
    QVBoxLayout* AddPage(QTabWidget* pages, const QString& title,
                         std::span<const SwitchRow<Viewer3DOptions>> switches);
    QSpinBox* AddNumber(QFormLayout* form, const QString& label, const char* name, int low,
                        int high, int value);
    void AddGeneralPage(QTabWidget* pages);
    void AddEditPage(QTabWidget* pages);
    void AddScreenPage(QTabWidget* pages);

    Viewer3DOptions Original;
    QLineEdit* ViewerPath = nullptr;
    QLineEdit* ViewerDirectory = nullptr;
    QLineEdit* ViewerParameters = nullptr;
    QButtonGroup* Scope = nullptr;
    QButtonGroup* Screen = nullptr;
    QButtonGroup* Skill = nullptr;
    QSpinBox* Width = nullptr;
    QSpinBox* Height = nullptr;
    QSpinBox* XPos = nullptr;
    QSpinBox* YPos = nullptr;
    QSpinBox* Speed = nullptr;
    QSpinBox* Memory = nullptr;
    QSpinBox* MaxFps = nullptr;
    SwitchBoxes<Viewer3DOptions> Switches;
};

/// Shows the dialog over `parent` and returns ViewerEdit, ViewerPlayOnly or ViewerCancel;
/// unless cancelled the values go into `options`.
int EditViewerOptions(QWidget* parent, Viewer3DOptions& options);

} // namespace kelvar::run
