// The texture name tools' window: the PWAD, the conversion, the used and unused reports.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/TextureTools.h"

#include "app/LumpCommands.h"
#include "app/ShellState.h"
#include "app/ui/LumpTools.h"
#include "app/ui/MergeDialogParts.h"
#include "lumps/TargetList.h"
#include "lumps/ToolFiles.h"
#include "wad/FileChecks.h"
#include "wad/WadState.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QVBoxLayout>

namespace kelvar::app
{
namespace
{

std::filesystem::path PathOf(const QLineEdit* field)
{
    return field->text().trimmed().toStdString();
}

void SetPath(QLineEdit* field, const std::filesystem::path& path)
{
    field->setText(QString::fromStdString(path.string()));
}

// A labelled file field with its Browse button in a row of `grid`.
QLineEdit* FileField(QGridLayout* grid, int row, const char* label, const char* browse,
                     QWidget* parent, QPushButton** button)
{
    auto* field = new QLineEdit(parent);
    field->setMinimumWidth(360);
    auto* text = new QLabel(label, parent);
    text->setBuddy(field);
    *button = ToolButton(browse, parent);
    grid->addWidget(text, row, 0);
    grid->addWidget(field, row, 1);
    grid->addWidget(*button, row, 2);
    return field;
}

} // namespace

TextureToolsDialog::TextureToolsDialog(int tool, QWidget* parent) : QDialog(parent)
{
    setWindowTitle("Texture Name Tools");
    setObjectName("TextureTools");
    auto* layout = new QVBoxLayout(this);
    auto* top = new QGridLayout();
    QPushButton* browse = nullptr;
    Pwad = FileField(top, 0, "&PWAD:", "&Browse...", this, &browse);
    Pwad->setObjectName("Pwad");
    connect(browse, &QPushButton::clicked, this, &TextureToolsDialog::ChoosePwad);
    connect(Pwad, &QLineEdit::editingFinished, this, &TextureToolsDialog::PwadChanged);
    layout->addLayout(top);

    Tabs = new QTabWidget(this);
    Tabs->addTab(BuildConvertPage(), "&Convert");
    Tabs->addTab(BuildUsedPage(), "&Used");
    Tabs->addTab(BuildUnusedPage(), "U&nused");
    const auto which = static_cast<LumpTool>(tool);
    Tabs->setCurrentIndex(which == LumpTool::Used ? 1 : which == LumpTool::Unused ? 2 : 0);
    layout->addWidget(Tabs, 1);

    auto* bottom = new QHBoxLayout();
    bottom->addStretch();
    auto* close = ToolButton("Close", this);
    connect(close, &QPushButton::clicked, this, &TextureToolsDialog::reject);
    bottom->addWidget(close);
    layout->addLayout(bottom);
    // The tools start on the PWAD of the level in the editor, when it comes from one.
    const int current = wad::Wad().CurrentFile.FileNumber;
    if (current > 0 && current < wad::FileTableSize)
    {
        SetPath(Pwad, wad::Wad().Files[static_cast<std::size_t>(current)].FileName);
    }
    PwadChanged();
    resize(660, 330);
}

QWidget* TextureToolsDialog::BuildConvertPage()
{
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    auto* grid = new QGridLayout();
    QPushButton* browseCvt = nullptr;
    QPushButton* browseOutput = nullptr;
    Cvt = FileField(grid, 0, "&Table (.CVT):", "Bro&wse...", page, &browseCvt);
    Cvt->setObjectName("Cvt");
    Output = FileField(grid, 1, "&Output PWAD:", "B&rowse...", page, &browseOutput);
    Output->setObjectName("Output");
    auto* edit = ToolButton("&Edit...", page);
    edit->setToolTip("Edit Texture Conversion File");
    grid->addWidget(edit, 0, 3);
    connect(browseCvt, &QPushButton::clicked, this, &TextureToolsDialog::ChooseCvt);
    connect(browseOutput, &QPushButton::clicked, this, &TextureToolsDialog::ChooseOutput);
    connect(edit, &QPushButton::clicked, this, &TextureToolsDialog::EditCvt);
    layout->addLayout(grid);
    ListReplacements = new QCheckBox("&List Replacements", page);
    ListReplacements->setObjectName("ListReplacements");
    layout->addWidget(ListReplacements);
    auto* note = new QLabel("Every level's wall and flat names are replaced by the pairs of the "
                            "table, into the output PWAD; the PWAD itself is not changed.",
                            page);
    note->setWordWrap(true);
    layout->addWidget(note);
    layout->addStretch();
    auto* row = new QHBoxLayout();
    row->addStretch();
    auto* convert = ToolButton("Con&vert", page);
    convert->setObjectName("Convert");
    connect(convert, &QPushButton::clicked, this, &TextureToolsDialog::Convert);
    row->addWidget(convert);
    layout->addLayout(row);
    return page;
}

QWidget* TextureToolsDialog::BuildUsedPage()
{
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    auto* row = new QHBoxLayout();
    Level = new QComboBox(page);
    Level->setObjectName("Level");
    Level->setMinimumWidth(160);
    auto* label = new QLabel("&Level:", page);
    label->setBuddy(Level);
    row->addWidget(label);
    row->addWidget(Level);
    row->addStretch();
    layout->addLayout(row);
    auto* note = new QLabel("The textures and flats the levels use, each once; or the texture, "
                            "patch and flat names the PWAD defines.",
                            page);
    note->setWordWrap(true);
    layout->addWidget(note);
    layout->addStretch();
    auto* buttons = new QHBoxLayout();
    buttons->addStretch();
    auto* used = ToolButton("List &Textures Used", page);
    used->setObjectName("ListUsed");
    auto* names = ToolButton("List Texture Na&mes", page);
    names->setObjectName("ListNames");
    connect(used, &QPushButton::clicked, this, &TextureToolsDialog::ListUsed);
    connect(names, &QPushButton::clicked, this, &TextureToolsDialog::ListNames);
    buttons->addWidget(used);
    buttons->addWidget(names);
    layout->addLayout(buttons);
    return page;
}

QWidget* TextureToolsDialog::BuildUnusedPage()
{
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    DeleteUnused = new QCheckBox("&Delete unused Textures and Flats", page);
    DeleteUnused->setObjectName("DeleteUnused");
    PromptForDeletes = new QCheckBox("Prompt &for Deletes?", page);
    PromptForDeletes->setObjectName("PromptForDeletes");
    PromptForDeletes->setEnabled(false);
    connect(DeleteUnused, &QCheckBox::toggled, PromptForDeletes, &QCheckBox::setEnabled);
    layout->addWidget(DeleteUnused);
    layout->addWidget(PromptForDeletes);
    PendingText = new QLabel(page);
    PendingText->setObjectName("PendingText");
    PendingText->setWordWrap(true);
    layout->addWidget(PendingText);
    layout->addStretch();
    auto* buttons = new QHBoxLayout();
    buttons->addStretch();
    auto* list = ToolButton("&List Unused", page);
    list->setObjectName("ListUnused");
    Save = ToolButton("&Save", page);
    Save->setObjectName("Save");
    connect(list, &QPushButton::clicked, this, &TextureToolsDialog::ListUnused);
    connect(Save, &QPushButton::clicked, this, &TextureToolsDialog::SaveDeletion);
    buttons->addWidget(list);
    buttons->addWidget(Save);
    layout->addLayout(buttons);
    return page;
}

lumps::TextureToolForm TextureToolsDialog::Form() const
{
    lumps::TextureToolForm form;
    form.Pwad = PathOf(Pwad);
    form.Cvt = PathOf(Cvt);
    form.Output = PathOf(Output);
    form.ListReplacements = ListReplacements->isChecked();
    form.Level = Level->currentIndex() > 0 ? Level->currentText().toStdString() : std::string();
    form.DeleteUnused = DeleteUnused->isChecked();
    form.PromptForDeletes = DeleteUnused->isChecked() && PromptForDeletes->isChecked();
    return form;
}

// A new PWAD: its levels for the Used page, the converted file's name proposed, and any
// deletion of the old one forgotten.
void TextureToolsDialog::PwadChanged()
{
    const std::filesystem::path pwad = PathOf(Pwad);
    Level->clear();
    Level->addItem("All levels");
    for (const std::string& name : lumps::PwadLevelNames(pwad))
    {
        Level->addItem(QString::fromStdString(name));
    }
    if (Output->text().trimmed().isEmpty())
    {
        SetPath(Output, lumps::ProposedConvertOutput(pwad));
    }
    if (Pending && !wad::SamePath(PendingPwad, pwad))
    {
        Pending.reset();
    }
    ShowPending();
}

void TextureToolsDialog::ShowPending()
{
    Save->setEnabled(Pending.has_value());
    if (!Pending)
    {
        PendingText->setText("List Unused with Delete on takes out what no level uses; Save "
                             "then writes the PWAD without it (the old file kept as .BAK).");
        return;
    }
    PendingText->setText(QString("Deleted from %1: flats %2, textures %3, patches %4. Press "
                                 "Save to write the PWAD.")
                             .arg(QString::fromStdString(PendingPwad.filename().string()))
                             .arg(Pending->Flats)
                             .arg(Pending->Textures)
                             .arg(Pending->Patches));
}

void TextureToolsDialog::ChoosePwad()
{
    if (const auto file = lumps::AskWadFile("Select PWAD", PathOf(Pwad)))
    {
        SetPath(Pwad, *file);
        PwadChanged();
    }
}

void TextureToolsDialog::ChooseCvt()
{
    if (const auto file = lumps::AskCvtFile(PathOf(Cvt)))
    {
        SetPath(Cvt, *file);
    }
}

void TextureToolsDialog::ChooseOutput()
{
    const std::filesystem::path current = PathOf(Output);
    if (const auto file =
            lumps::AskNewWadFile("Converted PWAD", current.empty() ? PathOf(Pwad) : current))
    {
        SetPath(Output, *file);
    }
}

void TextureToolsDialog::EditCvt()
{
    (void)lumps::EditCvtFile(PathOf(Cvt), GetText(Shell().Chk.TextEditor));
}

void TextureToolsDialog::Convert()
{
    const lumps::TextureToolForm form = Form();
    RewriteEditorFile(form.Output, [&form] { return lumps::RunConvertTool(form); });
}

void TextureToolsDialog::ListUsed()
{
    const lumps::TextureToolForm form = Form();
    (void)lumps::ListTexturesUsed(form.Pwad, form.Level);
}

void TextureToolsDialog::ListNames()
{
    (void)lumps::ListTextureNames(Form().Pwad);
}

void TextureToolsDialog::ListUnused()
{
    const lumps::TextureToolForm form = Form();
    (void)lumps::RunUnusedTool(form, Pending);
    PendingPwad = form.Pwad;
    ShowPending();
}

void TextureToolsDialog::SaveDeletion()
{
    if (!Pending)
    {
        return;
    }
    RewriteEditorFile(PendingPwad,
                      [this]
                      {
                          const int saved = lumps::SaveUnusedDeletion(PendingPwad, *Pending);
                          if (saved == 1)
                          {
                              Pending.reset();
                              ShowPending();
                          }
                          return saved;
                      });
}

void TextureToolsDialog::reject()
{
    lumps::TargetList unsaved;
    unsaved.DirectoryChanged = Pending.has_value();
    if (lumps::ConfirmLeave(unsaved, false))
    {
        QDialog::reject();
    }
}

void RunTextureTool(int tool, QWidget* parent)
{
    TextureToolsDialog dialog(tool, parent);
    dialog.exec();
}

} // namespace kelvar::app
