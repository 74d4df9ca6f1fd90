// The selection's commands: clearing, walking and jumping through the objects, bookmarks.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandHandlers.h"
#include "app/Modes.h"
#include "app/ShellState.h"
#include "map/MapState.h"
#include "platform/Format.h"
#include "platform/Ui.h"
#include "view/Navigation.h"
#include "view/ViewState.h"

#include <algorithm>
#include <optional>

namespace kelvar::app
{
namespace
{

void MovePointerTo(int x, int y)
{
    CommandRequests& requests = Shell().Requests;
    requests.MovePointer = true;
    requests.PointerX = x;
    requests.PointerY = y;
}

void SetBookmarkSlot(int slot)
{
    const view::ViewState& view = view::View();
    view::SetBookmark(slot, 0, CurrentLevelNumber(), EditMode(), map::Selected().HighlightedObject,
                      view.Pointer.X, view.Pointer.Y, view.Viewport);
    Shell().Requests.Sound = SoundCue::Tick;
    Shell().Requests.MenuStateChanged = true;
}

void GotoBookmarkSlot(int number)
{
    if (!IsCommandEnabled(number))
    {
        platform::TheUi().Beep();
        return;
    }
    const int slot = number - CmdGotoBookmark0;
    view::ViewState& view = view::View();
    const map::LevelData& level = map::Map().Level;
    map::SelectionState& select = map::Selected();
    // Going sets the highlight to the bookmark's object, a number of the bookmark's mode; the
    // mode left behind must remember the object it had.
    const int before = select.HighlightedObject;
    const int mode = view::GotoBookmark(level, view.Viewport, slot);
    if (mode == 0)
    {
        return;
    }
    const int object = select.HighlightedObject;
    select.HighlightedObject = before;
    ChangeModeKeeping(mode, object);
    const map::Bookmark& bookmark = map::Selected().Bookmarks[static_cast<std::size_t>(slot)];
    if (bookmark.Object < 0)
    {
        MovePointerTo(bookmark.CursorX, bookmark.CursorY);
        return;
    }
    const view::MapPoint point = view::ObjectCenter(level, mode, bookmark.Object);
    MovePointerTo(view::MapToScreenX(view.Viewport, point.X),
                  view::MapToScreenY(view.Viewport, point.Y));
}

} // namespace

void ClearSelectionCommand(int /*number*/, CommandSource /*source*/)
{
    map::ClearSelection();
}

void WalkCommand(int number, CommandSource /*source*/)
{
    const map::LevelData& level = map::Map().Level;
    const int object = number == CmdNextObject ? map::NextObject(level, EditMode())
                                               : map::PreviousObject(level, EditMode());
    if (object >= 0)
    {
        view::GotoObject(level, view::View().Viewport, EditMode(), object, false);
    }
}

void JumpCommand(int /*number*/, CommandSource /*source*/)
{
    const map::LevelData& level = map::Map().Level;
    const int mode = EditMode();
    const int highest = map::HighestObject(level, mode);
    if (highest < 0)
    {
        return;
    }
    map::SelectionState& select = map::Selected();
    const std::optional<int> object = platform::TheUi().AskNumber(
        "Jump to Object", platform::Format("%s number", map::KindName(mode)),
        std::max(select.HighlightedObject, 0), 0, highest);
    if (!object || *object < 0 || *object > highest)
    {
        return;
    }
    select.HighlightedObject = *object;
    view::GotoObject(level, view::View().Viewport, mode, *object, true);
}

void JumpToTagsCommand(int /*number*/, CommandSource /*source*/)
{
    map::SelectionState& select = map::Selected();
    const map::LevelData& level = map::Map().Level;
    // The walk sets the highlight to the object it found, a number of the other mode; the
    // mode it leaves must remember the object it had.
    const int before = select.HighlightedObject;
    const map::TagJump jump = map::JumpToTags(level, EditMode());
    select.HighlightedObject = before;
    if (jump.Mode == 0)
    {
        return;
    }
    ChangeModeKeeping(jump.Mode, jump.Object);
    view::GotoObject(level, view::View().Viewport, jump.Mode, jump.Object, false);
}

void MarkSameThingsCommand(int /*number*/, CommandSource /*source*/)
{
    map::MarkAllSameThings(map::Map().Level);
    if (!map::Selected().Selection.Empty())
    {
        Shell().Requests.Sound = SoundCue::Selection;
    }
}

void BookmarkCommand(int number, CommandSource /*source*/)
{
    if (number >= CmdSetBookmark0 && number <= CmdSetBookmark9)
    {
        SetBookmarkSlot(number - CmdSetBookmark0);
        return;
    }
    GotoBookmarkSlot(number);
}

} // namespace kelvar::app
