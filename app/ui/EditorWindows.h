// The object editors' windows: LineDef, Sector and Thing editors, and the small dialogs they
// open (Hexen arguments, the BOOM generalized types, Sector flags, the Thing filter mask).
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Each window is thin: a button or field calls one function of app/ObjectEditors (or of the
//   game::ObjectEditor it was opened on) and then shows the head object's values again, so a
//   window never holds a value of its own that could drift from the level.
// - Changes are made as they are entered. OK keeps them; Cancel (and Esc) takes the one undo
//   step of the dialog back, so the level is as it was when the window opened.
// - Number fields apply only when the user changed them: moving through a field with Tab
//   leaves every object's value as it is.
#pragma once

#include "app/BrowserPictures.h"
#include "game/Generalized.h"
#include "game/ObjectEdit.h"

#include <QDialog>
#include <QLabel>
#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QGridLayout;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace kelvar::app
{

struct SessionHooks;

/// Fills the hooks of the object editors with these windows, parented to `parent`.
void InstallEditorHooks(SessionHooks& hooks, QWidget* parent);

/// A picture from the catalogue, scaled into its box; a click asks for another.
class PicturePreview final : public QLabel
{
    Q_OBJECT

public:
    PicturePreview(int width, int height, QWidget* parent);
    void SetPicture(const BrowserPicture& picture, const QString& name);

signals:
    void Clicked();

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    int BoxWidth;
    int BoxHeight;
};

/// A number field that tells only of changes the user made.
class EditorNumber final : public QObject
{
    Q_OBJECT

public:
    EditorNumber(QSpinBox* box, std::function<void(int)> apply);
    /// Shows a value without counting it as the user's.
    void Show(int value);

private:
    QSpinBox* Box;
    std::function<void(int)> Apply;
    bool Touched = false;
    bool Showing = false;
};

/// The base of the three editors: the editor, the OK and Cancel buttons, and Refresh.
class ObjectEditorDialog : public QDialog
{
    Q_OBJECT

public:
    ObjectEditorDialog(game::ObjectEditor& editor, QWidget* parent);
    game::ObjectEditor& Editor() { return Edit; }

    /// Shows the head's values again after a change.
    virtual void Refresh() = 0;

protected:
    void reject() override;
    /// Adds the OK and Cancel row under `content`.
    void FinishLayout(QWidget* content);
    /// Runs a change, then shows the values again.
    void Change(const std::function<void()>& change);
    /// A row of flag boxes: each toggles its bit on every object of the set.
    std::vector<std::pair<QCheckBox*, std::uint16_t>>
    FlagBoxes(QGridLayout* grid, const std::vector<game::FlagRow>& rows, int columns,
              const std::function<void(std::uint16_t, bool)>& set);

    game::ObjectEditor& Edit;
    int ShownChanges = 0;
};

/// "EditLineDef2".
class LineDefEditorDialog final : public ObjectEditorDialog
{
    Q_OBJECT

public:
    LineDefEditorDialog(game::ObjectEditor& editor, QWidget* parent);
    void Refresh() override;

private:
    struct SideWidgets
    {
        QGroupBox* Group = nullptr;
        std::array<QPushButton*, 3> Textures{}; // upper, normal, lower
        std::array<PicturePreview*, 3> Previews{};
        std::array<char, 3> Mnemonics{};
        QSpinBox* XOffset = nullptr;
        QSpinBox* YOffset = nullptr;
        QSpinBox* Sector = nullptr;
        std::vector<EditorNumber*> Numbers;
        QPushButton* Delete = nullptr;
        QPushButton* Extra = nullptr; // "Clone SideDef" on side 1, "Add Side2" on side 2
    };
    QGroupBox* SideGroup(int side, std::array<char, 3> mnemonics);
    void RefreshSide(int side);

    QPushButton* TypeButton = nullptr;
    QPushButton* TypeNumber = nullptr;
    QLabel* TypeName = nullptr;
    QPushButton* TagButton = nullptr;
    QLabel* TagValue = nullptr;
    QLabel* FreeText = nullptr;
    QComboBox* Activation = nullptr;
    std::vector<std::pair<QCheckBox*, std::uint16_t>> Flags;
    std::array<SideWidgets, 2> Sides;
};

/// "EditSector".
class SectorEditorDialog final : public ObjectEditorDialog
{
    Q_OBJECT

public:
    SectorEditorDialog(game::ObjectEditor& editor, QWidget* parent);
    void Refresh() override;

private:
    /// A number of the Sectors with its "++" button, which adds an amount to each.
    QWidget* NumberRow(QWidget* parent, QGridLayout* grid, int row, const QString& text,
                       game::SectorField field);

    QPushButton* TypeButton = nullptr;
    QPushButton* FlagsButton = nullptr;
    QLabel* FreeText = nullptr;
    std::vector<std::pair<game::SectorField, EditorNumber*>> Numbers;
    PicturePreview* Ceiling = nullptr;
    PicturePreview* Floor = nullptr;
};

/// "ThingEdit".
class ThingEditorDialog final : public ObjectEditorDialog
{
    Q_OBJECT

public:
    ThingEditorDialog(game::ObjectEditor& editor, QWidget* parent);
    void Refresh() override;

private:
    QPushButton* TypeButton = nullptr;
    QLabel* TypeName = nullptr;
    PicturePreview* Picture = nullptr;
    QButtonGroup* Angles = nullptr;
    QCheckBox* AllAngles = nullptr;
    QLabel* FreeText = nullptr;
    QPushButton* SpecialButton = nullptr;
    std::vector<std::pair<game::ThingField, EditorNumber*>> Numbers;
    std::vector<std::pair<QCheckBox*, std::uint16_t>> Flags;
};

/// "EditHexenArgs": five numbers labelled from the special's name.
class HexenArgsDialog final : public QDialog
{
    Q_OBJECT

public:
    HexenArgsDialog(game::ObjectEditor& editor, QWidget* parent);
    std::array<QLineEdit*, 5> Fields() const { return Edits; }

protected:
    void accept() override;

private:
    game::ObjectEditor& Edit;
    std::array<QLineEdit*, 5> Edits{};
};

/// The BOOM generalized LineDef dialogs: a radio group per field of the category.
class GeneralizedDialog final : public QDialog
{
    Q_OBJECT

public:
    GeneralizedDialog(std::uint16_t type, QWidget* parent);
    /// The type the groups compose.
    std::uint16_t Type() const;

private:
    void Build(game::GeneralizedCategory category, const std::vector<int>& values);
    /// The number and name the groups make, under them.
    void ShowResult();

    game::GeneralizedCategory Category;
    QWidget* Fields = nullptr;
    QLabel* Result = nullptr;
    std::vector<QButtonGroup*> Groups;
};

/// "EditSectorBOOM" and "EditSectorZDOOM": the flag bits of a Sector type.
class SectorFlagsDialog final : public QDialog
{
    Q_OBJECT

public:
    SectorFlagsDialog(game::ObjectEditor& editor, QWidget* parent);

protected:
    void accept() override;

private:
    game::ObjectEditor& Edit;
    game::SectorFlagBits Bits{};
    bool Zdoom = false;
    QButtonGroup* Lights = nullptr;
    QButtonGroup* Damage = nullptr;
    QCheckBox* Ice = nullptr;
    QCheckBox* Wind = nullptr;
    QCheckBox* Secret = nullptr;
};

/// "ThingMask": the Thing filter mask.
class ThingMaskDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit ThingMaskDialog(QWidget* parent);
    /// True when OK changed the mask or the number labels.
    bool Changed() const { return ChangedMask; }

protected:
    void accept() override;

private:
    std::vector<std::pair<QCheckBox*, bool*>> Boxes;
    std::array<QCheckBox*, 9> Categories{};
    QCheckBox* Numbers = nullptr;
    bool ChangedMask = false;
};

} // namespace kelvar::app
