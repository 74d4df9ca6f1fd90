// The RenameDialog window of the lump tools.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/LumpTools.h"

namespace kelvar::app
{

void OpenRenameDialog(QWidget* /*parent*/) {}

} // namespace kelvar::app
