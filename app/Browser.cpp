// The browsers' window logic: cell geometry, keys, clicks, the cells on screen and the labels.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Browser.h"

#include "platform/Format.h"

#include <algorithm>
#include <cctype>

namespace kelvar::app
{
namespace
{

// Past this a cell is far larger than any screen; the search for the largest step stops here.
constexpr int MagnificationCeiling = 64;

// The picture's room in a cell at a magnification.
struct CellSize
{
    int Width = 0;
    int Height = 0;
};

CellSize CellSizeAt(int variant, int magnification)
{
    if (variant == BrowseLevels)
    {
        return {magnification * 78, magnification * 68};
    }
    const int side = magnification < 1 ? 48 : (magnification + 1) * 32;
    return {side, side};
}

// Pixels of label under a cell's picture: levels always show their name.
int LabelHeight(const BrowserState& state)
{
    return state.Variant == BrowseLevels || state.ShowNames ? BrowserLabelHeight : 0;
}

int ListSize(const BrowserState& state)
{
    return static_cast<int>(state.List.size());
}

// The first row that may stand at the top: the last row then stands at the bottom.
int LastFirstRow(const BrowserState& state)
{
    const int columns = BrowserColumns(state);
    const int rows = (ListSize(state) + columns - 1) / columns;
    return std::max(0, rows - BrowserRows(state));
}

void HoldFirstShown(BrowserState& state)
{
    const int columns = BrowserColumns(state);
    const int row = std::clamp(state.FirstShown / columns, 0, LastFirstRow(state));
    state.FirstShown = row * columns;
}

// Scrolls by whole rows until the framed cell is on screen.
void ShowCurrent(BrowserState& state)
{
    const int columns = BrowserColumns(state);
    const int rows = BrowserRows(state);
    const int currentRow = state.Current / columns;
    int firstRow = state.FirstShown / columns;
    if (currentRow < firstRow)
    {
        firstRow = currentRow;
    }
    else if (currentRow >= firstRow + rows)
    {
        firstRow = currentRow - rows + 1;
    }
    state.FirstShown = firstRow * columns;
    HoldFirstShown(state);
}

char Upper(char c)
{
    return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

std::string UpperText(std::string_view text)
{
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), Upper);
    return upper;
}

bool SameName(std::string_view a, std::string_view b)
{
    return UpperText(a) == UpperText(b);
}

BrowserAction ChangeMagnification(BrowserState& state, int step)
{
    const int wanted = state.Magnification + step;
    if (wanted < MinMagnification(state.Variant) || wanted > MaxMagnification(state))
    {
        return BrowserAction::None;
    }
    state.Magnification = wanted;
    UpdateCellGeometry(state);
    state.FirstShown = 0;
    state.Current = 0;
    return BrowserAction::Redraw;
}

// Moves the frame by `step` cells, held to the list.
BrowserAction MoveFrame(BrowserState& state, int step)
{
    if (state.List.empty())
    {
        return BrowserAction::None;
    }
    BrowserSelect(state, state.Current + step);
    return BrowserAction::Redraw;
}

// Page Up and Page Down move the frame and the grid together by a window.
BrowserAction Page(BrowserState& state, int direction)
{
    if (state.List.empty())
    {
        return BrowserAction::None;
    }
    const int window = BrowserColumns(state) * BrowserRows(state);
    state.FirstShown += direction * window;
    HoldFirstShown(state);
    BrowserSelect(state, state.Current + direction * window);
    return BrowserAction::Redraw;
}

std::string ThingLabel(const BrowserState& state, const BrowserItem& item)
{
    // About six pixels a character: the widest form the cell holds.
    const int characters = state.CellWidth / 6;
    if (characters >= 46)
    {
        return platform::Format("%-40.40s %d", item.Name.c_str(), item.Number);
    }
    if (characters >= 26)
    {
        return platform::Format("%-20.20s %d", item.Name.c_str(), item.Number);
    }
    return platform::Format(" %s [%d]", item.Name.c_str(), item.Number);
}

std::string PictureLabel(const BrowserState& state, const BrowserItem& item,
                         const PictureFacts& facts)
{
    const char* name = item.Name.c_str();
    const auto width = static_cast<short>(facts.Width);
    const auto height = static_cast<short>(facts.Height);
    if (state.Variant == BrowseSprites)
    {
        return platform::Format(" %s %hdx%-hd (x=%hd y=%hd)", name, width, height,
                                static_cast<short>(facts.Left), static_cast<short>(facts.Top));
    }
    if (state.Variant == BrowseTextures && facts.PatchCount >= 0)
    {
        return platform::Format(" %s %hdx%-hd %hd patches", name, width, height,
                                static_cast<short>(facts.PatchCount));
    }
    if (state.Variant == BrowseTextures && !facts.KindName.empty())
    {
        return platform::Format(" %s %hdx%-hd %s", name, width, height, facts.KindName.c_str());
    }
    return platform::Format(" %s %hdx%-hd", name, width, height);
}

} // namespace

BrowserState& Browser()
{
    static BrowserState state;
    return state;
}

void ResetBrowser()
{
    Browser() = {};
}

int MinMagnification(int variant)
{
    return variant == BrowseLevels ? 1 : 0;
}

int MaxMagnification(const BrowserState& state)
{
    const int low = MinMagnification(state.Variant);
    const int label = LabelHeight(state);
    int best = low;
    for (int magnification = low + 1; magnification <= MagnificationCeiling; ++magnification)
    {
        const CellSize size = CellSizeAt(state.Variant, magnification);
        if (size.Width > state.GridWidth || size.Height + label > state.GridHeight)
        {
            break;
        }
        best = magnification;
    }
    return best;
}

void UpdateCellGeometry(BrowserState& state)
{
    const CellSize size = CellSizeAt(state.Variant, state.Magnification);
    state.CellWidth = size.Width;
    state.CellHeight = size.Height;
    state.StepX = size.Width + BrowserCellGap;
    state.StepY = size.Height + LabelHeight(state) + BrowserCellGap;
}

int BrowserColumns(const BrowserState& state)
{
    if (state.StepX <= 0)
    {
        return 1;
    }
    return std::max(1, (state.GridWidth + BrowserCellGap) / state.StepX);
}

int BrowserRows(const BrowserState& state)
{
    if (state.StepY <= 0)
    {
        return 1;
    }
    return std::max(1, (state.GridHeight + BrowserCellGap) / state.StepY);
}

void StartBrowser(BrowserState& state, int variant, std::vector<BrowserItem> list,
                  std::string_view startName)
{
    state.Variant = variant;
    state.List = std::move(list);
    state.Magnification =
        std::clamp(state.Magnification, MinMagnification(variant), MaxMagnification(state));
    UpdateCellGeometry(state);
    state.FirstShown = 0;
    state.Current = 0;
    for (std::size_t i = 0; i < state.List.size(); ++i)
    {
        if (SameName(state.List[i].Name, startName))
        {
            BrowserSelect(state, static_cast<int>(i));
            break;
        }
    }
}

void ReplaceBrowserList(BrowserState& state, std::vector<BrowserItem> list)
{
    const std::optional<std::string> framed = BrowserChosenName(state);
    StartBrowser(state, state.Variant, std::move(list), framed.value_or(std::string()));
}

void SetBrowserGridSize(BrowserState& state, int width, int height)
{
    state.GridWidth = std::max(1, width);
    state.GridHeight = std::max(1, height);
    state.Magnification =
        std::clamp(state.Magnification, MinMagnification(state.Variant), MaxMagnification(state));
    UpdateCellGeometry(state);
    ShowCurrent(state);
}

BrowserAction BrowserKey(BrowserState& state, BrowserKeyCode code, char typed)
{
    switch (code)
    {
    case BrowserKeyCode::Character:
        if (typed == '+' || typed == '=')
        {
            return ChangeMagnification(state, 1);
        }
        if (typed == '-' || typed == '_')
        {
            return ChangeMagnification(state, -1);
        }
        if (typed < ' ' || typed > '~')
        {
            return BrowserAction::None;
        }
        BrowserFind(state, std::string_view(&typed, 1));
        return BrowserAction::Redraw;
    case BrowserKeyCode::Left:
        return MoveFrame(state, -1);
    case BrowserKeyCode::Right:
        return MoveFrame(state, 1);
    case BrowserKeyCode::Up:
        return MoveFrame(state, -BrowserColumns(state));
    case BrowserKeyCode::Down:
        return MoveFrame(state, BrowserColumns(state));
    case BrowserKeyCode::PageUp:
        return Page(state, -1);
    case BrowserKeyCode::PageDown:
        return Page(state, 1);
    case BrowserKeyCode::Home:
        return MoveFrame(state, -ListSize(state));
    case BrowserKeyCode::End:
        return MoveFrame(state, ListSize(state));
    case BrowserKeyCode::Enter:
        return state.List.empty() ? BrowserAction::Close : BrowserAction::Choose;
    case BrowserKeyCode::Escape:
        return BrowserAction::Close;
    }
    return BrowserAction::None;
}

void BrowserFind(BrowserState& state, std::string_view prefix)
{
    if (prefix.empty())
    {
        return;
    }
    const std::string wanted = UpperText(prefix);
    const auto matches = [&](const BrowserItem& item)
    {
        const std::string name = UpperText(item.Name);
        // The sprite list keeps the directory's order: the walk stops at the first name at or
        // above the one typed, as in a sorted list.
        if (state.Variant == BrowseSprites)
        {
            return name >= wanted;
        }
        return name.starts_with(wanted);
    };
    const auto found = std::find_if(state.List.begin(), state.List.end(), matches);
    if (found == state.List.end())
    {
        state.FirstShown = 0;
        state.Current = 0;
        return;
    }
    // The name found heads the grid, as far as the end of the list allows.
    const int index = static_cast<int>(found - state.List.begin());
    state.Current = index;
    state.FirstShown = index - index % BrowserColumns(state);
    HoldFirstShown(state);
}

void BrowserSelect(BrowserState& state, int index)
{
    if (state.List.empty())
    {
        state.Current = 0;
        state.FirstShown = 0;
        return;
    }
    state.Current = std::clamp(index, 0, ListSize(state) - 1);
    ShowCurrent(state);
}

int BrowserCellAt(const BrowserState& state, int x, int y)
{
    if (x < 0 || y < 0 || state.StepX <= 0 || state.StepY <= 0)
    {
        return -1;
    }
    const int column = x / state.StepX;
    const int row = y / state.StepY;
    if (column >= BrowserColumns(state) || row >= BrowserRows(state))
    {
        return -1;
    }
    const int index = state.FirstShown + row * BrowserColumns(state) + column;
    return index < ListSize(state) ? index : -1;
}

BrowserAction BrowserClick(BrowserState& state, int x, int y, bool doubleClick)
{
    const int index = BrowserCellAt(state, x, y);
    if (index < 0)
    {
        return BrowserAction::None;
    }
    state.Current = index;
    return doubleClick ? BrowserAction::Choose : BrowserAction::Redraw;
}

BrowserAction BrowserWheel(BrowserState& state, int rows)
{
    const int before = state.FirstShown;
    state.FirstShown += rows * BrowserColumns(state);
    HoldFirstShown(state);
    return state.FirstShown == before ? BrowserAction::None : BrowserAction::Redraw;
}

std::vector<BrowserCell> VisibleCells(const BrowserState& state)
{
    std::vector<BrowserCell> cells;
    const int columns = BrowserColumns(state);
    const int rows = BrowserRows(state);
    const int end = std::min(ListSize(state), state.FirstShown + columns * rows);
    for (int index = std::max(0, state.FirstShown); index < end; ++index)
    {
        const int place = index - state.FirstShown;
        cells.push_back({index, place % columns * state.StepX, place / columns * state.StepY});
    }
    return cells;
}

std::optional<std::string> BrowserChosenName(const BrowserState& state)
{
    if (state.Current < 0 || state.Current >= ListSize(state))
    {
        return std::nullopt;
    }
    return state.List[static_cast<std::size_t>(state.Current)].Name;
}

std::string BrowserLabel(const BrowserState& state, int index, const PictureFacts& facts)
{
    if (index < 0 || index >= ListSize(state))
    {
        return {};
    }
    const BrowserItem& item = state.List[static_cast<std::size_t>(index)];
    if (state.Variant == BrowseThings)
    {
        return ThingLabel(state, item);
    }
    if (state.Variant == BrowseLevels || !facts.Drawn)
    {
        return platform::Format("%-12.12s", item.Name.c_str());
    }
    return PictureLabel(state, item, facts);
}

std::string BrowserCaption(int variant)
{
    static constexpr const char* Captions[BrowserVariantCount] = {
        "Textures", "Flats", "Levels", "Pnames", "Patches", "Sprites", "Things"};
    return variant >= 0 && variant < BrowserVariantCount ? Captions[variant] : "Browser";
}

std::vector<std::string> BrowsingCommandsHelp()
{
    return {
        "Browsing Commands",
        "",
        "+ or =          larger pictures",
        "- or _          smaller pictures",
        "a letter        jump to the first name beginning with it",
        "arrow keys      move the frame by one picture or one row",
        "Page Up/Down    move by one window",
        "Home, End       first and last name (Top, Botm)",
        "<< and >>       page up and down",
        "Enter           choose the framed name (or double click)",
        "Esc             close without a name",
        "mouse wheel     scroll by rows",
        "Name            write the names under the pictures",
        "Extrn           only names from PWADs",
        "Mag             enlarge small pictures to fill their cells",
    };
}

} // namespace kelvar::app
