// The one instance of the view's state.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/ViewState.h"

namespace kelvar::view
{

ViewState& View()
{
    static ViewState state;
    return state;
}

void ResetView()
{
    View() = ViewState{};
}

} // namespace kelvar::view
