// The Save dialog: the reject table, the nodes, the group save and the clean-up of a save.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/SaveOptions.h"

#include <QDialog>
#include <functional>

class QCheckBox;
class QRadioButton;

namespace kelvar::app
{

/// "Kelvar - Verify REJECT, NODES & GROUP SAVE". OK keeps the choices in the options; a custom
/// builder whose program can't be found keeps the dialog open.
class SaveDialog final : public QDialog
{
    Q_OBJECT

public:
    /// `customBuilderOk` tells whether the custom builder's program can be run (it shows its
    /// own message when not); empty: no check.
    SaveDialog(wad::SaveOptions& options, std::function<bool()> customBuilderOk,
               QWidget* parent = nullptr);

    /// Shows the dialog modally; true for OK.
    static bool Ask(wad::SaveOptions& options, std::function<bool()> customBuilderOk,
                    QWidget* parent);

protected:
    void accept() override;

private:
    void Store();

    wad::SaveOptions& Options;
    std::function<bool()> CustomBuilderOk;
    QRadioButton* CopyReject = nullptr;
    QRadioButton* AllAttacks = nullptr;
    QRadioButton* NoAttacks = nullptr;
    QRadioButton* HalfAttacks = nullptr;
    QRadioButton* ThirdAttacks = nullptr;
    QCheckBox* GroupSave = nullptr;
    QCheckBox* UnusedCleanup = nullptr;
    QCheckBox* RebuildNodes = nullptr;
    QCheckBox* SeeResults = nullptr;
    QCheckBox* ShowBuild = nullptr;
    QCheckBox* CustomBuilder = nullptr;
    QCheckBox* ZeroNodes = nullptr;
    QCheckBox* ZeroReject = nullptr;
    QCheckBox* ZeroBlockmap = nullptr;
};

} // namespace kelvar::app
