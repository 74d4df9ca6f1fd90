// The command router: every menu and key command of the main window, by its number.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The routing table is rows of a number range, the edit modes it works in and its handler.
//   A row without a handler is a command whose work isn't built yet: it is unavailable, its
//   menu entry is disabled and its key sounds the error signal.
// - Commands leave their effects on the window as requests (app/CommandState.h); after every
//   command that ran the map is redrawn and the status bar and the info panes refreshed.
// - CommandBusy guards against a command arriving from a modal loop of another. With AppState
//   1 a nested command is allowed, since modal tool loops dispatch the window's messages.
#pragma once

#include "app/Commands.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace kelvar::app
{

/// Where a command came from. The grid keys G and Shift+G behave differently from the menu
/// entries of the same numbers.
enum class CommandSource : std::uint8_t
{
    Menu,
    Key,
};

/// What became of a command.
enum class CommandResult : std::uint8_t
{
    Done,         // its handler ran
    Busy,         // another command is running outside the editing state: error signal
    Unknown,      // no row has the number: error signal
    NotAvailable, // its work isn't built: error signal
    WrongMode,    // it works in other modes only: nothing happens
};

/// The edit modes a row works in; 0 means any.
inline constexpr int AnyMode = 0;

using CommandHandler = void (*)(int number, CommandSource source);

/// One row of the routing table: numbers First to Last.
struct RouteRow
{
    std::uint16_t First;
    std::uint16_t Last;
    int Modes; // bits of the edit modes (1, 2, 4, 8), or AnyMode
    CommandHandler Handler;
    std::string_view What;
};

/// Runs a command:
/// 1. IdleMinutes becomes 0.
/// 2. With CommandBusy set outside AppState 1 the error signal sounds (Busy).
/// 3. CommandBusy is set for the run, and cleared again on every way out.
/// 4. A recent PWAD's number (6001 for the newest on) puts its name in OpenPwadName and
///    becomes Open PWAD (1025).
/// 5. The number is looked up; an unknown one sounds the error signal (Unknown), one not yet
///    built too (NotAvailable); one of another mode does nothing (WrongMode).
/// 6. The handler runs, then the map, the status bar and the info panes are asked for.
CommandResult RunCommand(int number, CommandSource source = CommandSource::Menu);

/// The routing table.
std::span<const RouteRow> RouteRows();

/// The row of a number, or null.
const RouteRow* FindRoute(int number);

/// True when the command's work is built. The menu shows the others disabled.
bool IsCommandAvailable(int number);

/// True when the command is available and can act now: Goto BookMark needs a bookmark of this
/// project and level, the recent PWADs a name in their place. For the menu's enabled state.
bool IsCommandEnabled(int number);

/// The level number bookmarks are kept under: the place of the project's level in the level
/// list, 0 when it isn't there.
std::uint16_t CurrentLevelNumber();

} // namespace kelvar::app
