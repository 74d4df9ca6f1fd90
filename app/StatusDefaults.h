// The built-in defaults of the status records, per game where they differ.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/StatusRecords.h"

#include <array>
#include <string>

namespace kelvar::app
{

/// The folder of the default IWADs: Debian's Doom data folder, where the freedoom package
/// and the game data packages put them.
inline constexpr const char* IwadFolder = "/usr/share/games/doom/";

/// The name of the program settings file, in the program's directory.
inline constexpr const char* ChkFileName = "KELVAR.CHK";

/// The tool files KELVAR.CHK names by default, in their order.
inline constexpr std::array<const char*, ToolFileCount> DefaultToolFileNames = {
    "ToolGeneral.TOL", "ToolPrefabs.TOL", "ToolTutorial.TOL", "ToolBarControl.TOL", "ToolTop.TOL"};

/// The text editor: $VISUAL, else $EDITOR, else xdg-open (a value that doesn't fit a record's
/// 127 characters counts as unset).
std::string DefaultTextEditor();

/// KELVAR.CHK as a new installation has it.
ChkRecord DefaultChk();

/// The built-in project: Doom 2 on the Freedoom IWAD, never used yet (marker "ee").
ProjectRecord DefaultProject();

/// The game configuration file of a game (1 to 5) with the project's Boom and ZDoom switches:
/// "DOOM2.DFG", "BOOM.DFG", "ZDOOMHEXEN.DFG"...
std::string ConfigFileName(int game, bool boomTypes, bool zdoomHexenFormat);

/// The game configuration of a game with the project's Boom and ZDoom switches. Games that
/// share a configuration file get the same record.
GameConfigRecord DefaultGameConfig(int game, bool boomTypes, bool zdoomHexenFormat);

/// The texture control of a game (1 and 2 share Doom's names).
TextureControlRecord DefaultTextureControl(int game);

/// Tool file `toolbarNumber` (1 to 5), with an empty toolbar.
ToolRecord DefaultToolFile(int toolbarNumber);

/// Puts the default user tools in the first slots: a text editor, a shell, the MIDI converter.
void PutDefaultUserTools(ProjectRecord& project);

/// Fills the custom node builder's slot with its sample line: zennode's for projects in the
/// ZDoom Hexen format, glbsp's for the others.
void PutCustomBuilderDefaults(ProjectRecord& project, bool zdoomFormat);

} // namespace kelvar::app
