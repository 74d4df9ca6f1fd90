// The level list: each level name once, with the file that supplies it now.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/LumpName.h"

namespace kelvar::wad
{

/// The position of a level in the list, or -1.
int FindLevel(const LumpName& name);

/// Gives a listed level the file `fileNumber`, or adds it while the list is below its limit
/// less one. Returns false when the level had to be left out.
bool NoteLevel(const LumpName& name, int fileNumber);

/// Lists every level of the master directory. More than the limit less one shows
/// "IWAD has too many levels.\nExcess ignored." once.
void ListMasterLevels();

} // namespace kelvar::wad
