// The picture browsers: a full-window grid of thumbnails from which the user picks one name.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - One window logic serves seven variants. The state is one for the program, since only one
//   browser is open at a time; the window only draws what VisitVisibleCells hands it and feeds
//   keys and clicks to BrowserKey and BrowserClick.
// - Cells are laid out in rows of StepX by StepY pixels from the top left of the grid area.
//   FirstShown is always the first cell of a row, so the grid scrolls by whole rows.
// - A picture cell is (magnification + 1) * 32 pixels square, 48 below magnification 1; a
//   level cell magnification * 78 by magnification * 68. The largest magnification is the one
//   at which a single cell still fits the grid area.
// - The lists are built when a browser opens (BrowserLists.cpp) and the pictures are read for
//   the cells on screen only (BrowserPictures.cpp); nothing here reads a file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::app
{

/// The seven browsers.
enum BrowserVariant : int
{
    BrowseTextures = 0,
    BrowseFlats = 1,
    BrowseLevels = 2,
    BrowsePnames = 3,
    BrowsePatches = 4,
    BrowseSprites = 5,
    BrowseThings = 6,
};
inline constexpr int BrowserVariantCount = 7;

/// One name of a browser's list and what its picture is read from.
struct BrowserItem
{
    std::string Name;        // as shown: flats in upper case
    int DirectoryIndex = -1; // the picture's lump; -1 for TEXTUREx names, levels and Things
    int File = 0;            // the file that supplies it; 0 the IWAD
    int Number = -1;         // the PNAMES index of a patch name, the type of a Thing
    std::string Sprite;      // a Thing's sprite
    std::uint16_t Class = 0; // the catalogue class of a texture or flat row
    bool operator==(const BrowserItem&) const = default;
};

/// The browser of the program.
struct BrowserState
{
    int Variant = BrowseTextures;
    std::vector<BrowserItem> List;
    int FirstShown = 0;    // the cell drawn at the top left
    int Current = 0;       // the framed cell
    int Magnification = 1; // the size step
    int CellWidth = 0;     // the picture's room in a cell
    int CellHeight = 0;
    int StepX = 0; // from one cell to the next, label and gap included
    int StepY = 0;
    bool ExternalOnly = false; // only names from PWADs
    bool ShowNames = true;     // a label under each picture
    bool MagnifySmall = false; // pictures smaller than the cell are enlarged to fill it
    int WindowLeft = -1;       // where the window was when it last closed; -1 not yet
    int WindowTop = -1;
    int GridWidth = 640; // the pixels the grid has
    int GridHeight = 480;
    std::uint64_t CatalogueStamp = 0; // the directory the name catalogues were built from
};

/// The one browser state.
BrowserState& Browser();

/// Puts the browser state back to its defaults (tests call it).
void ResetBrowser();

/// Pixels under each picture for its label, and between cells.
inline constexpr int BrowserLabelHeight = 18;
inline constexpr int BrowserCellGap = 6;

/// The smallest magnification of a variant: 1 for levels (a level cell of magnification 0 has
/// no size), 0 for the rest.
int MinMagnification(int variant);

/// The largest magnification at which one cell still fits the grid; never below the smallest.
int MaxMagnification(const BrowserState& state);

/// Sets CellWidth, CellHeight, StepX and StepY from the variant and magnification.
void UpdateCellGeometry(BrowserState& state);

/// Cells in a row and whole rows on screen; at least 1 each.
int BrowserColumns(const BrowserState& state);
int BrowserRows(const BrowserState& state);

/// Starts a browser on `list`: magnification held to the variant's range, geometry set, the
/// cell of `startName` (8 characters, case ignored) framed and shown, else the first.
void StartBrowser(BrowserState& state, int variant, std::vector<BrowserItem> list,
                  std::string_view startName);

/// Puts a new list in place (the external-only switch changed), keeping the framed name when
/// the new list has it.
void ReplaceBrowserList(BrowserState& state, std::vector<BrowserItem> list);

/// The grid area changed size: the magnification is held to the new maximum, the geometry
/// is set again and the framed cell stays on screen.
void SetBrowserGridSize(BrowserState& state, int width, int height);

/// What a key or click asks of the window.
enum class BrowserAction
{
    None,   // nothing changed
    Redraw, // the grid changed
    Choose, // the framed name is picked
    Close,  // closed without a name
};

/// The keys of a browser; Character keys carry their typed character.
enum class BrowserKeyCode
{
    Character,
    Left,
    Right,
    Up,
    Down,
    PageUp,
    PageDown,
    Home,
    End,
    Enter,
    Escape,
};

/// + or = raises the magnification and - or _ lowers it, and the first cell is then framed
/// (at the limit nothing changes); another printable character jumps to the first name that
/// begins with it (BrowserFind); the arrows move the frame by a cell or a row, Page Up and
/// Page Down by a window, Home and End to the first and last name; Enter chooses, Esc closes.
BrowserAction BrowserKey(BrowserState& state, BrowserKeyCode code, char typed = 0);

/// Frames the first name that begins with `prefix` (case ignored) and shows it. In the sprite
/// browser, whose list is in directory order, the first name at or above `prefix` instead. No
/// such name frames the first cell. An empty prefix changes nothing.
void BrowserFind(BrowserState& state, std::string_view prefix);

/// Frames `index` (held to the list) and scrolls it into view.
void BrowserSelect(BrowserState& state, int index);

/// The cell under the point (x, y) of the grid area, or -1 for none.
int BrowserCellAt(const BrowserState& state, int x, int y);

/// A click at (x, y): frames the cell under it; a double click also chooses it.
BrowserAction BrowserClick(BrowserState& state, int x, int y, bool doubleClick);

/// The wheel turned by `rows` (positive: down the list): the grid scrolls by rows.
BrowserAction BrowserWheel(BrowserState& state, int rows);

/// One cell on screen: its list index and the top left of its picture in the grid area.
struct BrowserCell
{
    int Index = 0;
    int X = 0;
    int Y = 0;
    bool operator==(const BrowserCell&) const = default;
};

/// The cells on screen, from FirstShown left to right and top to bottom, ending at the list's
/// end or where the next cell would pass the bottom of the grid.
std::vector<BrowserCell> VisibleCells(const BrowserState& state);

/// The framed name, or nothing for an empty list.
std::optional<std::string> BrowserChosenName(const BrowserState& state);

/// What was learnt of a cell's picture, for its label.
struct PictureFacts
{
    bool Drawn = false; // a picture was drawn (else the label takes the other colour)
    int Width = 0;      // its stored size
    int Height = 0;
    int Left = 0; // a sprite's offsets
    int Top = 0;
    int PatchCount = -1;  // a TEXTUREx texture's patches; -1 for other pictures
    std::string KindName; // what a picture used as a texture is ("PIC", "FLAT", "PNG", ...)
};

/// The label under a cell: a level's name; a Thing's name and type, as wide as the cell
/// allows; a texture with its size and patch count or kind; a sprite with its size and
/// offsets; another picture with its size. A picture not drawn shows its name alone.
std::string BrowserLabel(const BrowserState& state, int index, const PictureFacts& facts);

/// The window title of a variant: "Textures", "Flats", ...
std::string BrowserCaption(int variant);

/// The lines of the help topic "Browsing Commands".
std::vector<std::string> BrowsingCommandsHelp();

} // namespace kelvar::app
