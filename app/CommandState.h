// The words the commands keep, and the requests a command leaves for the window.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Commands don't call the window. They change the model and leave flags here: redraw the
// map, refresh the status bar and the info panes, put the mode's Misc popup in place, quit.
// The window reads them after each command and after each key it passes on, acts on them
// and clears them with TakeRequests.
#pragma once

#include <cstdint>
#include <string>

namespace kelvar::app
{

/// The sounds a command asks for; which sound each is, and whether any plays, is a setting.
enum class SoundCue : std::uint8_t
{
    None,
    Confirm,   // a toggle changed
    Mode,      // the edit mode changed
    Tick,      // a bookmark was set
    Selection, // objects were marked
};

/// What the commands keep between runs. The session words (AppState, CommandBusy, ...) are
/// the session's (app/Session.h).
struct CommandWords
{
    /// The file name Open PWAD starts from: a recent PWAD's name when one was chosen.
    std::string OpenPwadName;
    bool InfoPaneShown = true; // I
    int ThingDisplay = 0;      // Q steps it through 0, 1, 2
    bool CheckDisplay = false; // Shift+F10: the check display flag
};

/// What the last commands want the window to do.
struct CommandRequests
{
    bool RedrawMap = false;
    bool RefreshStatus = false;
    bool RefreshInfoPanes = false;
    bool MiscMenuChanged = false;  // the edit mode changed: put its Misc popup in place
    bool MenuStateChanged = false; // entries' enabled states may differ (bookmarks)
    bool CancelTool = false;       // end any interactive tool or band
    bool LayoutChanged = false;    // the info pane was shown or hidden
    bool QuitRequested = false;    // Exit: the window runs its exit prompt and closes
    bool ShowMiscMenu = false;     // F8: the mode's Misc popup at the pointer
    bool StartLineDraw = false;    // Ctrl+D, Insert in Vertex mode: the LineDraw tool
    bool StartRotate = false;      // Rotate and Scale: the tool on the selection
    bool MovePointer = false;      // put the pointer at PointerX, PointerY (window pixels)
    int PointerX = 0;
    int PointerY = 0;
    int PostedCommand = 0; // a command to run once this one is done: the checker's statistics
    SoundCue Sound = SoundCue::None;

    bool operator==(const CommandRequests&) const = default;
};

/// The requests left so far; they are cleared.
CommandRequests TakeRequests();

/// Asks for the map, the status bar and the info panes to be drawn again, as after an edit.
void AskForRefresh();

} // namespace kelvar::app
