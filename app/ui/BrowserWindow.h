// The browser window: the BrowsingTool bar over a grid of thumbnails to pick one name from.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Browser.h"
#include "gfx/ImageRaster.h"
#include "platform/Ui.h"

#include <QDialog>
#include <QImage>
#include <QWidget>
#include <optional>
#include <string>
#include <unordered_map>

class QLabel;
class QLineEdit;
class QPainter;
class QVBoxLayout;

namespace kelvar::app
{

/// A raster through `palette`; pixels of `holeIndex` (when not negative) become transparent.
QImage ImageOfRaster(const gfx::ImageRaster& raster, const gfx::Palette& palette, int holeIndex);

/// The grid of the open browser: draws the cells on screen from the browser state and feeds
/// keys, clicks and the wheel to its logic. Pictures are read once and kept as images.
class BrowserGrid final : public QWidget
{
    Q_OBJECT

public:
    explicit BrowserGrid(QWidget* parent = nullptr);

    /// Forgets every picture read (the list or the cell size of levels changed).
    void ForgetPictures();
    /// The label of the framed cell.
    QString CurrentLabel();
    /// Pictures read so far (for tests: only cells on screen are read).
    std::size_t PicturesRead() const { return Cache.size(); }

signals:
    void Chosen();
    void Closed();
    void Changed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    // A cell's picture as drawn: the image on the display palette, or the bad lump sign.
    struct Thumbnail
    {
        QImage Image;
        bool Bad = false;
        PictureFacts Facts;
    };

    const Thumbnail& ThumbnailOf(int index);
    void PaintCell(QPainter& painter, const BrowserCell& cell);
    void Act(BrowserAction action);

    std::unordered_map<int, Thumbnail> Cache;
    int WheelRest = 0; // wheel angle not yet a whole row
};

/// The modal browser window. It shows the open browser's list (Browser()); a request whose
/// names are not that list is shown as names alone.
class BrowserWindow final : public QDialog
{
    Q_OBJECT

public:
    explicit BrowserWindow(const platform::BrowseRequest& request, QWidget* parent = nullptr);

    /// Opens the window modally and returns the name picked, or nothing.
    static std::optional<std::string> Open(const platform::BrowseRequest& request, QWidget* parent);

    /// The name picked once the window closed with one.
    const std::optional<std::string>& Picked() const { return PickedName; }
    BrowserGrid* Grid() const { return GridView; }

protected:
    void done(int result) override;

private:
    void BuildToolBar(QVBoxLayout* layout);
    void Refresh();
    void ExternalOnlyChanged(bool on);

    BrowserGrid* GridView = nullptr;
    QLineEdit* Search = nullptr;
    QLabel* CurrentText = nullptr;
    std::optional<std::string> PickedName;
};

} // namespace kelvar::app
