// Cohen-Sutherland clipping of a line against a rectangle.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/Clip.h"

namespace kelvar::view
{
namespace
{

constexpr int Inside = 0;
constexpr int Left = 1;
constexpr int Right = 2;
constexpr int Above = 4;
constexpr int Below = 8;

int Outcode(double x, double y, double left, double top, double right, double bottom)
{
    int code = Inside;
    code |= x < left ? Left : (x > right ? Right : Inside);
    code |= y < top ? Above : (y > bottom ? Below : Inside);
    return code;
}

} // namespace

bool ClipLine(double& x1, double& y1, double& x2, double& y2, double left, double top, double right,
              double bottom)
{
    int code1 = Outcode(x1, y1, left, top, right, bottom);
    int code2 = Outcode(x2, y2, left, top, right, bottom);
    for (;;)
    {
        if ((code1 | code2) == 0)
        {
            return true;
        }
        if ((code1 & code2) != 0)
        {
            return false;
        }
        const int outside = code1 != 0 ? code1 : code2;
        double x = 0;
        double y = 0;
        if ((outside & Below) != 0)
        {
            x = x1 + (x2 - x1) * (bottom - y1) / (y2 - y1);
            y = bottom;
        }
        else if ((outside & Above) != 0)
        {
            x = x1 + (x2 - x1) * (top - y1) / (y2 - y1);
            y = top;
        }
        else if ((outside & Right) != 0)
        {
            y = y1 + (y2 - y1) * (right - x1) / (x2 - x1);
            x = right;
        }
        else
        {
            y = y1 + (y2 - y1) * (left - x1) / (x2 - x1);
            x = left;
        }
        if (outside == code1)
        {
            x1 = x;
            y1 = y;
            code1 = Outcode(x1, y1, left, top, right, bottom);
        }
        else
        {
            x2 = x;
            y2 = y;
            code2 = Outcode(x2, y2, left, top, right, bottom);
        }
    }
}

} // namespace kelvar::view
