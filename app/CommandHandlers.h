// The handlers of the routing table, by the part of the shell they touch.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Router.h"

namespace kelvar::app
{

// Saving (FileCommands.cpp).
void SaveCommand(int number, CommandSource source);      // 120, 128, 1002, 1003, 1041
void QuickSaveCommand(int number, CommandSource source); // 1061
// Test play (RunCommands.cpp).
void TestLevelCommand(int number, CommandSource source); // 1021
void TestIn3DCommand(int number, CommandSource source);  // 499
// Modes, files and the session (Router.cpp).
void ModeCommand(int number, CommandSource source);        // 401 to 404, 409, 410
void AutoModeCommand(int number, CommandSource source);    // 420
void ExitCommand(int number, CommandSource source);        // 1044
void EditLevelCommand(int number, CommandSource source);   // 1022
void NewLevelCommand(int number, CommandSource source);    // 1023
void ResetRecentCommand(int number, CommandSource source); // 123
void StartupCommand(int number, CommandSource source);     // 1280, 1284

// The Misc popups, their keys and Delete (MiscCommands.cpp).
void MiscEntryCommand(int number, CommandSource source);      // 501 to 534, 462, 463, 475, 550, 553
void AlignLineDefCommand(int number, CommandSource source);   // 552
void AlignTexturesYCommand(int number, CommandSource source); // 479, 481, 535, 536, 601
void AlignTexturesXCommand(int number, CommandSource source); // 478, 480, 537 to 544, 600
void DeleteCommand(int number, CommandSource source);         // 260, 466
void MiscMenuCommand(int number, CommandSource source);       // 1008: the mode's Misc popup
// Insert in Things and Sectors modes (InsertCommands.cpp).
void InsertCommand(int number, CommandSource source); // 206, 465

/// Runs entry `index` of the Misc popup of `mode` on the selection, or on the highlighted
/// object when nothing is selected: an undo step for any index above 0, the count guard for
/// all but First Free Tag (2), the operation, and the redraw.
void MiscCommand(int mode, int index);

/// The command number of entry `index` (from 1) of the Misc popup of `mode`; 0 for none.
int MiscEntryNumber(int mode, int index);

// The window's interactive tools (ToolCommands.cpp): they ask the window to start them.
void LineDrawCommand(int number, CommandSource source);    // 424
void RotateScaleCommand(int number, CommandSource source); // 501, 510, 525, 530

// Opening and closing PWADs (PwadCommands.cpp).
void OpenPwadCommand(int number, CommandSource source);      // 1025, the recent PWADs
void CloseAllFilesCommand(int number, CommandSource source); // 1024
void CloseOneFileCommand(int number, CommandSource source);  // 1026

/// True when the name table lists a PWAD: Close 1 File has something to close.
bool AnyPwadListed();

// Projects and texture controls (ProjectCommands.cpp).
void ChooseProjectCommand(int number, CommandSource source);      // 1065
void ChooseTextureGroupCommand(int number, CommandSource source); // 1066

/// Choosing another project: KELVAR.CHK and the project are saved, the project chooser runs,
/// all files are closed and the new project's IWAD, PWADs and level are opened. When the new
/// project can't be opened the old one comes back; when that fails too the window is closed.
/// Returns false when the chooser was cancelled or no project could be opened.
bool SwitchProject();

// The object editors (ObjectEditors.cpp).
void EditObjectCommand(int number, CommandSource source);  // 494, 522, the right click
void ThingMaskCommand(int number, CommandSource source);   // 209
void SideTextureCommand(int number, CommandSource source); // 472, 473

// Tags (TagCommands.cpp).
void SetTagCommand(int number, CommandSource source); // 442

// Grid, centring, scrolling and the display toggles (ViewCommands.cpp).
void GridCommand(int number, CommandSource source);        // 443, 445 to 448, 454, 523
void NewGridSizeCommand(int number, CommandSource source); // 450
void CenterCommand(int number, CommandSource source);      // 449, 455, 464
void ScrollSpeedCommand(int number, CommandSource source); // 452, 453
void ZoomToggleCommand(int number, CommandSource source);  // 421
void DisplayCommand(int number, CommandSource source);     // 427, 441, 451, 496 to 498, 1012, 1030
void RedrawCommand(int number, CommandSource source);      // 477

// Selection, walking the objects and bookmarks (SelectCommands.cpp).
void ClearSelectionCommand(int number, CommandSource source); // 210
void UndoCommand(int number, CommandSource source);           // 199 Redo, 201 Undo
void WalkCommand(int number, CommandSource source);           // 303, 304
void JumpCommand(int number, CommandSource source);           // 305
void JumpToTagsCommand(int number, CommandSource source);     // 306
void MarkSameThingsCommand(int number, CommandSource source); // 307
void BookmarkCommand(int number, CommandSource source);       // 7000 to 7009, 7020 to 7029

/// Puts the map point under the pointer at the window's centre, and asks for the pointer to
/// follow it there.
void CenterOnPointer();

/// Stores the grid settings where the rest of the editor reads them: KELVAR.CHK's grid size
/// and the editing options' grid and snap.
void StoreGridSettings();

/// Changes to `mode` keeping the object given under the cursor (Jump to Tags, bookmarks).
void ChangeModeKeeping(int mode, int object);

} // namespace kelvar::app
