// The one instance of the WAD layer's state.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/WadState.h"

namespace kelvar::wad
{

WadState& Wad()
{
    static WadState state;
    return state;
}

void ResetWad()
{
    Wad() = WadState{};
}

} // namespace kelvar::wad
