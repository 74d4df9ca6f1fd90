// The message forms, which live in the platform port; kept here for code not yet moved over.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Messages.h"

namespace kelvar::wad
{
using platform::AskYesNo;
using platform::LinesCancel;
using platform::LinesError;
using platform::LinesHelp;
using platform::LinesInfo;
using platform::MessageLinesCaption;
using platform::ShowError;
using platform::ShowInfo;
using platform::ShowLastError;
using platform::ShowMessageLines;
} // namespace kelvar::wad
