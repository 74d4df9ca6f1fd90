// The ExportDialog window of the lump tools.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/LumpTools.h"

namespace kelvar::app
{

void OpenExportDialog(QWidget* /*parent*/, const std::string& /*lumpName*/) {}

} // namespace kelvar::app
