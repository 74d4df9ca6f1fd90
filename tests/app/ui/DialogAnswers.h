// Answers to the real dialogs of the editor in offscreen tests.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QString>

namespace kelvar::app
{

/// Accepts a file dialog with `path`: the whole path typed into its name field, and the dialog
/// done at once. The dialog's own selection and accept wait on its file list, which fills in a
/// thread of its own and may not hold the file yet on a busy machine.
inline void AcceptFile(QFileDialog* dialog, const QString& path)
{
    auto* name = dialog->findChild<QLineEdit*>("fileNameEdit");
    if (name == nullptr)
    {
        return;
    }
    name->setText(path);
    static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
}

} // namespace kelvar::app
