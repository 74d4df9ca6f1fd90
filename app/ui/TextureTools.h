// The texture name tools' window: a PWAD, and on three pages the .CVT conversion, the used and
// names reports, and the unused check with its deletion.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lumps/TextureToolRuns.h"

#include <QDialog>
#include <optional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;

namespace kelvar::app
{

/// "Texture Name Tools": the PWAD and the pages Convert, Used and Unused; `tool` (a LumpTool)
/// chooses the page it opens on. Leaving with a deletion not saved asks first.
class TextureToolsDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit TextureToolsDialog(int tool, QWidget* parent = nullptr);

    /// The form as the fields hold it.
    lumps::TextureToolForm Form() const;
    QTabWidget* Pages() const { return Tabs; }
    const std::optional<lumps::UnusedDeletion>& PendingDeletion() const { return Pending; }

    // What the buttons do.
    void ChoosePwad();
    void ChooseCvt();
    void ChooseOutput();
    void EditCvt();
    void Convert();
    void ListUsed();
    void ListNames();
    void ListUnused();
    void SaveDeletion();

public slots:
    void reject() override;

private:
    QWidget* BuildConvertPage();
    QWidget* BuildUsedPage();
    QWidget* BuildUnusedPage();
    void PwadChanged();
    void ShowPending();

    QLineEdit* Pwad = nullptr;
    QTabWidget* Tabs = nullptr;
    QLineEdit* Cvt = nullptr;
    QLineEdit* Output = nullptr;
    QCheckBox* ListReplacements = nullptr;
    QComboBox* Level = nullptr;
    QCheckBox* DeleteUnused = nullptr;
    QCheckBox* PromptForDeletes = nullptr;
    QPushButton* Save = nullptr;
    QLabel* PendingText = nullptr;
    std::optional<lumps::UnusedDeletion> Pending;
    std::filesystem::path PendingPwad;
};

} // namespace kelvar::app
