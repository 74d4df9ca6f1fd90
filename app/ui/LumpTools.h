// The windows of the lump tools, opened from the F7 menu: export, merge and import, rename,
// and the texture name tools.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>
#include <string>

namespace kelvar::app
{

/// Opens the tool `tool` (a LumpTool) over `parent`.
void OpenLumpTool(int tool, QWidget* parent);

/// The export dialog, with `lumpName` selected when it is not empty (ExportDialog.cpp).
void OpenExportDialog(QWidget* parent, const std::string& lumpName);

/// The Merge/Import dialog (MergeDialog.cpp).
void OpenMergeDialog(QWidget* parent);

/// The rename dialog of a PWAD's entries (RenameDialog.cpp).
void OpenRenameDialog(QWidget* parent);

/// The .CVT conversion and the used and unused reports (TextureTools.cpp): `tool` is
/// LumpTool::Convert, Used or Unused.
void RunTextureTool(int tool, QWidget* parent);

} // namespace kelvar::app
