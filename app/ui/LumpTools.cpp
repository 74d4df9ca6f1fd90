// The windows of the lump tools, opened from the F7 menu.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/LumpTools.h"

#include "app/LumpCommands.h"

namespace kelvar::app
{

void OpenLumpTool(int tool, QWidget* parent)
{
    switch (static_cast<LumpTool>(tool))
    {
    case LumpTool::Export:
        OpenExportDialog(parent, {});
        break;
    case LumpTool::Merge:
        OpenMergeDialog(parent);
        break;
    case LumpTool::Rename:
        OpenRenameDialog(parent);
        break;
    case LumpTool::Convert:
    case LumpTool::Used:
    case LumpTool::Unused:
        RunTextureTool(tool, parent);
        break;
    }
}

} // namespace kelvar::app
