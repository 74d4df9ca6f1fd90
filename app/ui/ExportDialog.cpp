// The lump export window: the list, its filters, the preview, the format buttons.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/ExportDialog.h"

#include "app/ui/LumpTools.h"
#include "gfx/GamePalette.h"
#include "gfx/Picture.h"
#include "lumps/ExportLump.h"
#include "lumps/ExportView.h"
#include "platform/Format.h"
#include "platform/qt/QtText.h"
#include "sound/Playback.h"
#include "wad/FindLump.h"
#include "wad/WadState.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <filesystem>

namespace kelvar::app
{
namespace
{

using lumps::ExportFilters;
using lumps::ExportPreview;

// Lines of a data lump the pane shows; more would not fit anyway.
constexpr std::size_t PreviewLines = 40;

using platform::Text;

// While an export or a scan runs, the window takes no input: the rows it works on stay as
// they are, and nothing starts a second one from the events the progress panel lets through.
class Working
{
public:
    Working(QWidget& window, bool& busy) : Window(window), Busy(busy)
    {
        Busy = true;
        Window.setEnabled(false);
    }
    ~Working()
    {
        Window.setEnabled(true);
        Busy = false;
    }
    Working(const Working&) = delete;
    Working& operator=(const Working&) = delete;

private:
    QWidget& Window;
    bool& Busy;
};

QTreeWidgetItem* ItemOf(const lumps::ExportRow& row)
{
    const std::string& file = wad::Wad().Files[static_cast<std::size_t>(row.FileNumber)].FileName;
    auto* item =
        new QTreeWidgetItem({Text(row.Name.Text()), Text(row.Tag), QString::number(row.Size),
                             Text(std::filesystem::path(file).filename().string())});
    item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
    return item;
}

} // namespace

ExportDialog::ExportDialog(const std::string& lumpName, QWidget* parent) : QDialog(parent)
{
    setWindowTitle("Export Lumps");
    setObjectName("LumpExport");
    // The pictures are drawn and written on palettes made from the current transparent colour
    // and gamma.
    (void)lumps::PrepareExportPalette();

    auto* layout = new QVBoxLayout(this);
    auto* top = new QHBoxLayout();
    top->addWidget(MakeList(), 1);

    auto* side = new QVBoxLayout();
    Pane = new ExportPreviewPane(this);
    side->addWidget(Pane, 1);
    auto* playRow = new QHBoxLayout();
    PlayButton = new QPushButton(lumps::ExportPlayText, this);
    auto* stop = new QPushButton(lumps::ExportStopText, this);
    playRow->addWidget(PlayButton);
    playRow->addWidget(stop);
    playRow->addStretch();
    side->addLayout(playRow);
    side->addWidget(MakeFilters());
    top->addLayout(side);
    layout->addLayout(top, 1);

    Status = new QLabel(this);
    Status->setObjectName("Status");
    Status->setFrameShape(QFrame::Panel);
    Status->setFrameShadow(QFrame::Sunken);
    Status->setTextFormat(Qt::PlainText);
    Status->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    Status->setMinimumHeight(Status->fontMetrics().height() + 6);
    layout->addWidget(Status);
    layout->addWidget(MakeButtons());

    connect(PlayButton, &QPushButton::clicked, this, [this] { Play(); });
    connect(stop, &QPushButton::clicked, this, [this] { Stop(); });
    // Enter plays the row in hand; the format buttons are pressed by their own keys.
    PlayButton->setDefault(true);

    Listed = lumps::ScanExportList(lumps::Exports().Filters);
    const int wanted = lumpName.empty() ? -1 : lumps::FindRowByName(Listed, lumpName);
    FillList(wanted < 0 ? std::vector<int>{} : std::vector<int>{wanted}, wanted);
    ShowRow(RowInHand(), false);
    Lumps->setFocus();
    resize(980, 660);
}

ExportDialog::~ExportDialog() = default;

QWidget* ExportDialog::MakeList()
{
    Lumps = new QTreeWidget(this);
    Lumps->setObjectName("Lumps");
    Lumps->setHeaderLabels({"Name", "Type", "Size", "File"});
    Lumps->setRootIsDecorated(false);
    Lumps->setUniformRowHeights(true);
    Lumps->setAllColumnsShowFocus(true);
    Lumps->setSelectionMode(QAbstractItemView::ExtendedSelection);
    Lumps->header()->setStretchLastSection(true);
    Lumps->setColumnWidth(0, 96);
    Lumps->setColumnWidth(1, 52);
    Lumps->setColumnWidth(2, 64);
    Lumps->setMinimumWidth(380);
    connect(Lumps, &QTreeWidget::currentItemChanged, this, [this] { SelectionMoved(); });
    connect(Lumps, &QTreeWidget::itemSelectionChanged, this, [this] { SelectionMoved(); });
    connect(Lumps, &QTreeWidget::itemDoubleClicked, this, [this] { Play(); });
    return Lumps;
}

QWidget* ExportDialog::MakeFilters()
{
    auto* box = new QGroupBox("List", this);
    auto* grid = new QGridLayout(box);
    const auto& labels = lumps::ExportFilterLabels();
    // The list's own options in the first column, the kinds of lump in the other two.
    for (std::size_t i = 0; i < labels.size(); ++i)
    {
        auto* check = new QCheckBox(labels[i].Text, box);
        const auto flag = labels[i].Flag;
        check->setChecked(lumps::Exports().Filters.*flag);
        const int place = static_cast<int>(i);
        if (place < 3)
        {
            grid->addWidget(check, place, 0);
        }
        else
        {
            grid->addWidget(check, (place - 3) % 4, 1 + (place - 3) / 4);
        }
        connect(check, &QCheckBox::toggled, this,
                [this, flag](bool on) { FilterChanged(flag, on); });
        Filters.emplace_back(check, flag);
    }
    return box;
}

QWidget* ExportDialog::MakeButtons()
{
    auto* panel = new QWidget(this);
    auto* column = new QVBoxLayout(panel);
    column->setContentsMargins(0, 0, 0, 0);
    auto* formats = new QGroupBox("Export as", panel);
    auto* row = new QHBoxLayout(formats);
    for (const lumps::ExportButtonLabel& label : lumps::ExportButtonLabels())
    {
        auto* button = new QPushButton(label.Text, formats);
        button->setAutoDefault(false);
        const lumps::ExportButton which = label.Button;
        connect(button, &QPushButton::clicked, this, [this, which] { Press(which); });
        row->addWidget(button);
        FormatButtons[static_cast<std::size_t>(which)] = button;
    }
    column->addWidget(formats);

    auto* bottom = new QHBoxLayout();
    auto* analyze = new QPushButton(lumps::ExportAnalyzeText, panel);
    auto* options = new QPushButton(lumps::ExportOptionsText, panel);
    auto* close = new QPushButton("Close", panel);
    for (QPushButton* button : {analyze, options, close})
    {
        button->setAutoDefault(false);
    }
    bottom->addWidget(analyze);
    bottom->addWidget(options);
    bottom->addStretch();
    bottom->addWidget(close);
    column->addLayout(bottom);
    connect(analyze, &QPushButton::clicked, this, [this] { AnalyzeGraphics(); });
    connect(options, &QPushButton::clicked, this, [this] { OpenOptions(); });
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    return panel;
}

QPushButton* ExportDialog::ButtonOf(lumps::ExportButton button) const
{
    return FormatButtons[static_cast<std::size_t>(button)];
}

QCheckBox* ExportDialog::FilterBox(bool ExportFilters::*flag) const
{
    const auto found = std::find_if(Filters.begin(), Filters.end(),
                                    [flag](const auto& box) { return box.second == flag; });
    return found == Filters.end() ? nullptr : found->first;
}

QString ExportDialog::StatusText() const
{
    return Status->text();
}

std::vector<int> ExportDialog::SelectedRows() const
{
    std::vector<int> rows;
    for (QTreeWidgetItem* item : Lumps->selectedItems())
    {
        rows.push_back(Lumps->indexOfTopLevelItem(item));
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

int ExportDialog::RowInHand() const
{
    QTreeWidgetItem* current = Lumps->currentItem();
    if (current != nullptr && current->isSelected())
    {
        return Lumps->indexOfTopLevelItem(current);
    }
    const std::vector<int> selected = SelectedRows();
    return selected.empty() ? -1 : selected.front();
}

void ExportDialog::FillList(const std::vector<int>& selected, int current)
{
    {
        const QSignalBlocker blocker(Lumps);
        Lumps->clear();
        QList<QTreeWidgetItem*> items;
        items.reserve(static_cast<qsizetype>(Listed.size()));
        for (const lumps::ExportRow& row : Listed)
        {
            items.append(ItemOf(row));
        }
        Lumps->addTopLevelItems(items);
        for (const int row : selected)
        {
            Lumps->topLevelItem(row)->setSelected(true);
        }
        if (current >= 0)
        {
            Lumps->setCurrentItem(Lumps->topLevelItem(current), 0, QItemSelectionModel::NoUpdate);
        }
    }
    if (current >= 0)
    {
        Lumps->scrollToItem(Lumps->topLevelItem(current), QAbstractItemView::PositionAtCenter);
    }
    Previewed = -2;
}

void ExportDialog::FilterChanged(bool ExportFilters::*flag, bool on)
{
    lumps::Exports().Filters.*flag = on;
    if (flag != &ExportFilters::LumpPreview)
    {
        Rescan();
    }
    Previewed = -2;
    ShowRow(RowInHand(), false);
}

void ExportDialog::Rescan()
{
    const std::vector<int> selected = SelectedRows();
    const int current = RowInHand();
    const std::vector<lumps::ExportRow> before = Listed;
    {
        const Working working(*this, Busy);
        Listed = lumps::ScanExportList(lumps::Exports().Filters);
    }
    // The selection is kept as far as its names are still listed, the row in hand with it.
    const std::vector<int> kept = lumps::PreserveSelection(before, selected, Listed);
    int inHand = kept.empty() ? -1 : kept.front();
    for (const int row : kept)
    {
        if (current >= 0 && wad::SameName(Listed[static_cast<std::size_t>(row)].Name,
                                          before[static_cast<std::size_t>(current)].Name))
        {
            inHand = row;
            break;
        }
    }
    FillList(kept, inHand);
    Lumps->setFocus();
}

void ExportDialog::SelectionMoved()
{
    if (Busy)
    {
        return;
    }
    const int row = RowInHand();
    if (row != Previewed)
    {
        ShowRow(row, true);
    }
}

void ExportDialog::MoveTo(int row)
{
    QTreeWidgetItem* item = Lumps->topLevelItem(row);
    if (item == nullptr)
    {
        return;
    }
    // The batch's selection stays as it is: only the row in hand moves.
    Lumps->setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
    Lumps->scrollToItem(item);
    Status->setText(Text(lumps::PreviewStatusText(Listed[static_cast<std::size_t>(row)])));
}

void ExportDialog::ShowRow(int row, bool play)
{
    Previewed = row;
    if (row < 0)
    {
        Status->clear();
        PlayButton->setEnabled(false);
        ShowLogo();
        return;
    }
    const lumps::ExportRow& shown = Listed[static_cast<std::size_t>(row)];
    Status->setText(Text(lumps::PreviewStatusText(shown)));
    const ExportPreview preview = lumps::PreviewOf(shown.Kind);
    const bool playable = preview == ExportPreview::Sound || preview == ExportPreview::Music;
    PlayButton->setEnabled(playable);
    const int entry = lumps::ExportEntryIndex(shown.Name.Text(), shown.DirectoryIndex);
    if (!lumps::Exports().Filters.LumpPreview || entry < 0)
    {
        Pane->Clear();
        return;
    }
    switch (preview)
    {
    case ExportPreview::Picture:
        ShowPictureOf(entry, shown.Kind);
        break;
    case ExportPreview::Image:
    {
        const std::vector<std::uint8_t> bytes = wad::ReadLumpBytes(entry);
        const QImage image = QImage::fromData(bytes.data(), static_cast<int>(bytes.size()));
        if (image.isNull())
        {
            ShowData(entry);
        }
        else
        {
            Pane->ShowPicture(image, QString("%1 x %2").arg(image.width()).arg(image.height()));
        }
        break;
    }
    case ExportPreview::Sound:
        Pane->ShowWave(
            lumps::PreviewWave(wad::ReadLumpBytes(entry)).value_or(std::vector<std::uint8_t>{}));
        break;
    case ExportPreview::Music:
        Pane->ShowLines(
            {Text(shown.Name.Text()), QString("%1, %2 bytes")
                                          .arg(Text(std::string(gfx::KindName(shown.Kind))))
                                          .arg(shown.Size)});
        break;
    case ExportPreview::Level:
        Pane->ShowLevel(shown.Name.Text());
        break;
    case ExportPreview::Data:
        ShowData(entry);
        break;
    }
    if (play && playable)
    {
        Play();
    }
}

void ExportDialog::ShowLogo()
{
    const std::string name(lumps::GameLogoName(wad::Wad().Game.Game));
    const int entry = lumps::ExportEntryIndex(name, -1);
    if (!lumps::Exports().Filters.LumpPreview || entry < 0)
    {
        Pane->Clear();
        return;
    }
    ShowPictureOf(entry, gfx::LumpKind::Pic);
}

void ExportDialog::ShowPictureOf(int entry, gfx::LumpKind kind)
{
    const int hole = gfx::Palettes().Options.TransparentIndex;
    const gfx::DecodedPicture picture =
        lumps::DecodeExportedGraphic(entry, kind, static_cast<std::uint8_t>(hole));
    if (!picture.Raster)
    {
        ShowData(entry);
        return;
    }
    Pane->ShowRaster(*picture.Raster, kind == gfx::LumpKind::Pic ? hole : -1);
}

void ExportDialog::ShowData(int entry)
{
    QStringList lines;
    for (const std::string& line : lumps::DataPreviewLines(wad::ReadLumpBytes(entry), PreviewLines))
    {
        lines.append(Text(line));
    }
    Pane->ShowLines(lines);
}

void ExportDialog::Play()
{
    const int row = RowInHand();
    if (row < 0)
    {
        return;
    }
    if (lumps::PlayExportRow(Listed[static_cast<std::size_t>(row)]) == sound::PlayStarted)
    {
        Sounding = true;
    }
}

void ExportDialog::Stop()
{
    lumps::StopExportPlayback();
    Sounding = false;
}

void ExportDialog::Press(lumps::ExportButton button)
{
    if (Busy)
    {
        return;
    }
    lumps::ExportReport report;
    {
        const Working working(*this, Busy);
        lumps::ExportRequest request;
        request.Button = button;
        request.ShowRow = [this](int row) { MoveTo(row); };
        report = lumps::ExportSelection(Listed, SelectedRows(), request);
    }
    Previewed = -2;
    ShowRow(RowInHand(), false);
    if (report.Files.size() > 1)
    {
        Status->setText(
            Text(platform::Format("%d exported to %s", report.Written,
                                  report.Files.front().parent_path().string().c_str())));
    }
    Lumps->setFocus();
}

void ExportDialog::AnalyzeGraphics()
{
    const Working working(*this, Busy);
    (void)lumps::AnalyzeGraphics(Listed);
}

void ExportDialog::OpenOptions()
{
    ExportOptionsDialog options(this);
    options.exec();
}

void ExportDialog::keyPressEvent(QKeyEvent* event)
{
    // Escape stops what plays first; with nothing playing it closes the window.
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier && Sounding)
    {
        Stop();
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void ExportDialog::done(int result)
{
    if (Sounding)
    {
        Stop();
    }
    QDialog::done(result);
}

void ExportDialog::Open(QWidget* parent, const std::string& lumpName)
{
    ExportDialog dialog(lumpName, parent);
    dialog.exec();
}

void OpenExportDialog(QWidget* parent, const std::string& lumpName)
{
    ExportDialog::Open(parent, lumpName);
}

} // namespace kelvar::app
