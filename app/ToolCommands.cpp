// The commands that start the map window's interactive tools: LineDraw, and Rotate and Scale
// from the Misc popups. The tools run in the window; the commands only ask for them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandHandlers.h"
#include "app/ShellState.h"

namespace kelvar::app
{

void LineDrawCommand(int, CommandSource)
{
    Shell().Requests.StartLineDraw = true;
}

void RotateScaleCommand(int, CommandSource)
{
    Shell().Requests.StartRotate = true;
}

} // namespace kelvar::app
