// The level checker's windows: the dialog of check buttons, its options page, the error list.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/CheckDialog.h"

#include "app/CheckerCommands.h"
#include "map/MapState.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "platform/qt/QtText.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <fstream>

namespace kelvar::app
{
namespace
{

using platform::Text;

} // namespace

// --- The error list ------------------------------------------------------------------------

ErrorListWindow::ErrorListWindow(QWidget* parent) : QWidget(parent, Qt::Window)
{
    setWindowTitle("Error List");
    setObjectName("ErrorList");
    auto* layout = new QVBoxLayout(this);
    List = new QListWidget(this);
    List->setFont(QFont("Monospace"));
    layout->addWidget(List);
    auto* buttons = new QHBoxLayout();
    auto* remove = new QPushButton("&Remove Error", this);
    auto* save = new QPushButton("&Save as Text", this);
    buttons->addWidget(remove);
    buttons->addWidget(save);
    buttons->addStretch();
    layout->addLayout(buttons);
    connect(List, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { ShowEntry(List->row(item)); });
    connect(List, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { ShowEntry(List->row(item)); });
    connect(remove, &QPushButton::clicked, this, [this] { RemoveSelected(); });
    connect(save, &QPushButton::clicked, this, [this] { AskAndSave(); });
    resize(560, 360);
}

void ErrorListWindow::SetEntries(const std::vector<check::Finding>& entries)
{
    Shown = entries;
    List->clear();
    for (const check::Finding& entry : Shown)
    {
        List->addItem(Text(check::FindingLine(entry)));
    }
}

void ErrorListWindow::ShowEntry(int row)
{
    if (row < 0 || static_cast<std::size_t>(row) >= Shown.size())
    {
        return;
    }
    const check::Finding& entry = Shown[static_cast<std::size_t>(row)];
    if (entry.Kind != 0)
    {
        ShowCheckedObject(entry.Kind, entry.Index);
        if (parentWidget() != nullptr)
        {
            parentWidget()->update();
        }
    }
}

void ErrorListWindow::RemoveSelected()
{
    const int row = List->currentRow();
    if (row < 0 || static_cast<std::size_t>(row) >= Shown.size())
    {
        return;
    }
    Shown.erase(Shown.begin() + row);
    delete List->takeItem(row);
}

bool ErrorListWindow::SaveAsText(const std::filesystem::path& file) const
{
    std::ofstream out(file, std::ios::trunc);
    for (const check::Finding& entry : Shown)
    {
        out << check::FindingLine(entry) << '\n';
    }
    out.flush();
    return static_cast<bool>(out);
}

void ErrorListWindow::AskAndSave()
{
    platform::FileChoice choice;
    choice.Caption = "Save as Text";
    choice.Filter = "Text files (*.TXT)|*.txt|";
    choice.ForSaving = true;
    const std::optional<std::filesystem::path> file = platform::TheUi().ChooseFile(choice);
    if (file && !SaveAsText(*file))
    {
        platform::ShowError("Failed to create %s", file->c_str());
    }
}

// --- The options page ----------------------------------------------------------------------

CheckOptionsDialog::CheckOptionsDialog(check::CheckSettings& settings, QWidget* parent)
    : QDialog(parent), Settings(settings)
{
    setWindowTitle("Error Check Options");
    setObjectName("CheckOpt");
    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout();
    using S = check::CheckSettings;
    const std::vector<std::pair<const char*, bool S::*>> options = {
        {"Upper Texture", &S::UpperTexture},
        {"Normal Texture", &S::NormalTexture},
        {"Lower Texture", &S::LowerTexture},
        {"X Offsets", &S::XOffsets},
        {"Y Offsets", &S::YOffsets},
        {"Multi-Patch Txtr.'s", &S::MultiPatchTextures},
        {"Sector Closed 1", &S::SectorClosed1},
        {"Sector Closed 2", &S::SectorClosed2},
        {"Sector Closed 3", &S::SectorClosed3},
        {"Check Overlapping Linedefs", &S::OverlappingLineDefs},
        {"Check Duplicate Sidedefs", &S::DuplicateSideDefs},
        {"Check Duplicate Linedefs", &S::DuplicateLineDefs},
        {"Check Duplicate Vertex", &S::DuplicateVertices},
        {"Things in Sector", &S::ThingsInSector},
        {"Thing Shooter", &S::ThingShooter},
        {"Things on Top", &S::ThingsOnTop},
        {"Check Keys ( HEXEN )", &S::CheckKeys},
        {"Check Tags", &S::CheckTags},
        {"Check Short Lines", &S::ShortLines},
        {"Check Player Starts", &S::PlayerStarts},
        {"Check Thing Type", &S::ThingTypes},
    };
    const int rows = static_cast<int>((options.size() + 1) / 2);
    for (std::size_t i = 0; i < options.size(); ++i)
    {
        auto* box = new QCheckBox(options[i].first, this);
        box->setChecked(settings.*(options[i].second));
        grid->addWidget(box, static_cast<int>(i) % rows, static_cast<int>(i) / rows);
        Boxes.emplace_back(box, options[i].second);
    }
    layout->addLayout(grid);
    auto* shortest = new QHBoxLayout();
    shortest->addWidget(new QLabel("Shortest Line to check\n( 0 - 8 units )", this));
    ShortestLine = new QSpinBox(this);
    ShortestLine->setRange(0, check::ShortestLineLimit);
    ShortestLine->setValue(settings.ShortestLine);
    shortest->addWidget(ShortestLine);
    shortest->addStretch();
    layout->addLayout(shortest);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

void CheckOptionsDialog::accept()
{
    for (const auto& [box, field] : Boxes)
    {
        Settings.*field = box->isChecked();
    }
    Settings.ShortestLine = ShortestLine->value();
    StoreCheckerSettings(Settings);
    QDialog::accept();
}

// --- The dialog ----------------------------------------------------------------------------

CheckDialog::CheckDialog(ErrorListWindow& errorList, QWidget* parent)
    : QDialog(parent), Settings(CheckerSettings()), Checks(map::Map().Level, Settings),
      ErrorList(errorList)
{
    setWindowTitle("Check Level");
    setObjectName("CheckControl");
    Checks.ShowObject = [](int kind, std::uint32_t index) { ShowCheckedObject(kind, index); };
    auto* layout = new QHBoxLayout(this);
    auto* column = new QVBoxLayout();
    const auto& rows = check::CheckButtons();
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        auto* button = new QPushButton(rows[i].Text, this);
        button->setStyleSheet("text-align: left; padding: 2px 8px;");
        button->setCheckable(rows[i].Button != check::CheckButton::Statistics);
        const check::CheckButton which = rows[i].Button;
        connect(button, &QPushButton::clicked, this, [this, which] { Press(which); });
        column->addWidget(button);
        Buttons[i] = button;
    }
    layout->addLayout(column);

    auto* side = new QVBoxLayout();
    LogOption = new QCheckBox(check::ErrorLogOptionText, this);
    connect(LogOption, &QCheckBox::toggled, this, [this](bool on) { Checks.ErrorLogEnabled = on; });
    side->addWidget(LogOption);
    auto* options = new QPushButton(check::CheckOptionsButtonText, this);
    connect(options, &QPushButton::clicked, this, [this] { OpenOptions(); });
    side->addWidget(options);
    Message = new QLabel(this);
    Message->setObjectName("Message");
    Message->setMinimumWidth(260);
    Message->setFrameShape(QFrame::Panel);
    Message->setFrameShadow(QFrame::Sunken);
    side->addWidget(Message);
    side->addStretch();
    auto* note = new QLabel(check::ErrorListNote, this);
    note->setWordWrap(true);
    side->addWidget(note);
    auto* exit = new QPushButton("E&xit", this);
    connect(exit, &QPushButton::clicked, this, &QDialog::accept);
    side->addWidget(exit);
    layout->addLayout(side);
}

QPushButton* CheckDialog::ButtonOf(check::CheckButton button) const
{
    return Buttons[static_cast<std::size_t>(button)];
}

QString CheckDialog::MessageText() const
{
    return Message->text();
}

void CheckDialog::Press(check::CheckButton button)
{
    const check::PressResult result = Checks.Press(button);
    if (result == check::PressResult::OpenStatistics)
    {
        Statistics = true;
        accept();
        return;
    }
    if (!Checks.Reports.empty())
    {
        Message->setText(Text(Checks.Reports.back()));
    }
    // A button shows checked while its check counts as run in this session.
    for (std::size_t i = 0; i < Buttons.size(); ++i)
    {
        const auto which = static_cast<check::CheckButton>(i);
        if (Buttons[i]->isCheckable())
        {
            Buttons[i]->setChecked(Checks.HasRun(which) ||
                                   (which == button && result != check::PressResult::Skipped));
        }
    }
    if (Checks.ErrorLogEnabled && result != check::PressResult::Skipped)
    {
        ErrorList.SetEntries(Checks.ErrorList);
        ErrorList.showNormal();
        ErrorList.raise();
    }
    platform::TheUi().EndProgress();
    if (parentWidget() != nullptr)
    {
        parentWidget()->update();
    }
}

void CheckDialog::OpenOptions()
{
    CheckOptionsDialog options(Settings, this);
    options.exec();
}

bool CheckDialog::Open(ErrorListWindow& errorList, QWidget* parent)
{
    CheckDialog dialog(errorList, parent);
    dialog.exec();
    return dialog.StatisticsAsked();
}

} // namespace kelvar::app
