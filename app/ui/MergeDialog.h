// The Merge/Import window: a target WAD's list beside the list of files to bring into it, with
// the target and import options; and the import and export settings page.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lumps/Merge.h"
#include "lumps/ToolLists.h"

#include <QDialog>
#include <array>
#include <vector>

class QCheckBox;
class QGroupBox;
class QLabel;
class QRadioButton;
class QSpinBox;
class QTreeWidget;

namespace kelvar::app
{

class TargetListView;

/// "Merge/Import": the target file, its list and its commands, the import list, the options,
/// and Save, which runs the merge. Leaving with work not written asks first.
class MergeDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit MergeDialog(QWidget* parent = nullptr);

    lumps::MergeSession& Session() { return Merge; }
    TargetListView* TargetView() const { return Targets; }
    QTreeWidget* ImportView() const { return Imports; }

    // What the buttons do.
    void OpenTarget();
    void NewTarget();
    void RunCommand(lumps::TargetCommand command);
    void VerifyPnames();
    void AddFiles();
    void RemoveImports();
    void RenameImport();
    void Save();
    void OpenOptions();

    /// Shows the session again: the file line, both lists, the options.
    void Refresh();

public slots:
    void reject() override;

private:
    QWidget* BuildTargetSide();
    QWidget* BuildImportSide();
    QWidget* BuildOptions();
    void ReadOptions();
    void ShowOptions();

    lumps::MergeSession Merge;
    QLabel* TargetFile = nullptr;
    QGroupBox* TargetBox = nullptr;
    TargetListView* Targets = nullptr;
    QTreeWidget* Imports = nullptr;
    QLabel* ImportCount = nullptr;
    QRadioButton* IwadHeader = nullptr;
    QRadioButton* PwadHeader = nullptr;
    QCheckBox* SortTextures = nullptr;
    QCheckBox* AllowDuplicates = nullptr;
    std::array<QRadioButton*, 8> PictureKinds{};
    QLabel* Formats = nullptr;
};

/// "LumpImportExportOptions": the picture format of exports, the size limits of picture
/// imports, the music and sound formats, the two MIDI tempos, and Color && Gamma. OK stores
/// them for the session.
class LumpOptionsDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit LumpOptionsDialog(QWidget* parent = nullptr);

    /// Opens the page modally; true when it was closed with OK.
    static bool Ask(QWidget* parent);

protected:
    void accept() override;

private:
    QRadioButton* Bmp = nullptr;
    QRadioButton* Pcx = nullptr;
    QRadioButton* Mid = nullptr;
    QRadioButton* Mus = nullptr;
    QRadioButton* Wav = nullptr;
    QRadioButton* Snd = nullptr;
    QSpinBox* MaxWidth = nullptr;
    QSpinBox* MaxHeight = nullptr;
    QSpinBox* MinWidth = nullptr;
    QSpinBox* MinHeight = nullptr;
    QSpinBox* MusToMidi = nullptr;
    QSpinBox* MidiToMus = nullptr;
};

/// "Color && Gamma": the transparent index and the colour that shows it, and the gamma of
/// picture imports, with the two sets of defaults. OK stores them in the palette settings.
class ColorGammaDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit ColorGammaDialog(QWidget* parent = nullptr);

protected:
    void accept() override;

private:
    void SetColor(int index, int red, int green, int blue);

    QSpinBox* Index = nullptr;
    QSpinBox* Red = nullptr;
    QSpinBox* Green = nullptr;
    QSpinBox* Blue = nullptr;
    QSpinBox* Gamma = nullptr;
};

} // namespace kelvar::app
