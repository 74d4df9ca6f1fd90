// The merge pass that lays a scanned PWAD over the master directory.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace kelvar::wad
{

/// Lays the directory of file `fileNumber` over the master directory: markers are doubled,
/// levels replace their IWAD slots or are appended, other lumps are appended so the newest
/// wins. Ends with the scan's closing messages and renumbered ordinals.
void MergePwad(int fileNumber, bool warnings);

} // namespace kelvar::wad
