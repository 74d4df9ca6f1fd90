// The lump export window: the list of the loaded files' lumps with its filters, the preview
// that draws, shows and plays the lump in hand, the format buttons, and the Auto Options page.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/ImageRaster.h"
#include "lumps/ExportBatch.h"
#include "lumps/ExportList.h"

#include <QDialog>
#include <QFrame>
#include <QImage>
#include <QStringList>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

class QButtonGroup;
class QCheckBox;
class QLabel;
class QPushButton;
class QSpinBox;
class QTreeWidget;

namespace kelvar::app
{

/// The preview pane: a picture fitted into it, a sound's waveform, or lines of text.
class ExportPreviewPane final : public QFrame
{
    Q_OBJECT

public:
    explicit ExportPreviewPane(QWidget* parent = nullptr);

    /// Shows nothing.
    void Clear();
    /// Shows a picture: enlarged by a whole factor when small, reduced when too big. `caption`
    /// goes in a corner.
    void ShowPicture(const QImage& picture, const QString& caption);
    /// Shows a raster through the game palette, pixels of `holeIndex` (when not negative) as
    /// see-through, its size as the caption.
    void ShowRaster(const gfx::ImageRaster& raster, int holeIndex);
    /// Draws the waveform of a RIFF WAVE across the pane, or the note that there is none.
    void ShowWave(std::vector<std::uint8_t> wave);
    /// Shows lines of text from the top left, in a fixed-width font.
    void ShowLines(const QStringList& lines);
    /// Shows a small map of the level `name`, drawn to the pane's size.
    void ShowLevel(const std::string& name);

    /// What is shown, for tests.
    enum class Content
    {
        Nothing,
        Picture,
        Wave,
        Lines,
        Level,
    };
    Content Showing() const { return Shown; }
    const QImage& Picture() const { return Image; }
    const QStringList& Lines() const { return Text; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void DrawLevel();
    void PaintPicture(QPainter& painter, const QRect& area) const;
    void PaintWave(QPainter& painter, const QRect& area) const;

    Content Shown = Content::Nothing;
    QImage Image;
    QString Caption;
    std::vector<std::uint8_t> Wave;
    QStringList Text;
    std::string LevelName;
};

/// The Auto Options page: the formats the Auto conversion writes and the MUS to MIDI tempo.
/// OK stores them for the session.
class ExportOptionsDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit ExportOptionsDialog(QWidget* parent = nullptr);

protected:
    void accept() override;

private:
    QButtonGroup* Graphic = nullptr;
    QButtonGroup* Sound = nullptr;
    QButtonGroup* Music = nullptr;
    QSpinBox* Tempo = nullptr;
};

/// The export window. The filter boxes stand for lumps::Exports().Filters and keep their
/// state from one opening to the next.
class ExportDialog final : public QDialog
{
    Q_OBJECT

public:
    /// The list of the loaded files, with the row of `lumpName` in hand when it is listed.
    explicit ExportDialog(const std::string& lumpName, QWidget* parent = nullptr);
    ~ExportDialog() override;

    /// Presses a format button as a click does: the selected rows are exported.
    void Press(lumps::ExportButton button);
    /// Plays the row in hand when it is a sound or music.
    void Play();
    /// Stops what plays.
    void Stop();

    QPushButton* ButtonOf(lumps::ExportButton button) const;
    QCheckBox* FilterBox(bool lumps::ExportFilters::*flag) const;
    QTreeWidget* List() const { return Lumps; }
    ExportPreviewPane* Preview() const { return Pane; }
    QString StatusText() const;
    const std::vector<lumps::ExportRow>& Rows() const { return Listed; }
    /// The selected rows, in list order.
    std::vector<int> SelectedRows() const;
    /// True while a sound or music the dialog started may still play.
    bool Playing() const { return Sounding; }

    /// Runs the dialog modally.
    static void Open(QWidget* parent, const std::string& lumpName);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void done(int result) override;

private:
    QWidget* MakeList();
    QWidget* MakeFilters();
    QWidget* MakeButtons();
    void FilterChanged(bool lumps::ExportFilters::*flag, bool on);
    void Rescan();
    void FillList(const std::vector<int>& selected, int current);
    void MoveTo(int row);
    void SelectionMoved();
    void ShowRow(int row, bool play);
    void ShowLogo();
    void ShowPictureOf(int entry, gfx::LumpKind kind);
    void ShowData(int entry);
    int RowInHand() const;
    void AnalyzeGraphics();
    void OpenOptions();

    std::vector<lumps::ExportRow> Listed;
    QTreeWidget* Lumps = nullptr;
    ExportPreviewPane* Pane = nullptr;
    QLabel* Status = nullptr;
    QPushButton* PlayButton = nullptr;
    std::array<QPushButton*, 9> FormatButtons{};
    std::vector<std::pair<QCheckBox*, bool lumps::ExportFilters::*>> Filters;
    int Previewed = -2; // the row the pane shows; -1 the logo
    bool Busy = false;  // an export runs: moving the list neither draws nor plays
    bool Sounding = false;
};

} // namespace kelvar::app
