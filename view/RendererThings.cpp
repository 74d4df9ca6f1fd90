// The renderer's Things: symbol, size and colour from the type's row, arrow and labels.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/GameCodes.h"
#include "platform/Format.h"
#include "view/Renderer.h"
#include "view/RendererParts.h"
#include "view/SpriteFrames.h"
#include "view/TypeLooks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace kelvar::view
{
namespace
{

// The angle arrow: from the rim in the Thing's direction to a tip 16 map units further out,
// with a three-point head in the Thing's colour.
void DrawArrow(platform::Canvas& canvas, int x, int y, int radius, const map::Thing& thing,
               const ViewState& view, int color)
{
    const double angle = thing.Angle * std::numbers::pi / 180.0;
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    const double tip = radius + 16.0 * view.Viewport.Scale;
    const int startX = x + static_cast<int>(cosine * radius);
    const int startY = y - static_cast<int>(sine * radius);
    const int tipX = x + static_cast<int>(cosine * tip);
    const int tipY = y - static_cast<int>(sine * tip);
    canvas.SetPen(view.Colors.Line2Sided);
    canvas.MoveTo(startX, startY);
    canvas.LineTo(tipX, tipY);
    const double head = std::max(3.0, 6.0 * view.Viewport.Scale);
    const std::array<platform::Point, 3> points = {
        platform::Point{tipX, tipY},
        platform::Point{tipX - static_cast<int>(head * std::cos(angle - 0.5)),
                        tipY + static_cast<int>(head * std::sin(angle - 0.5))},
        platform::Point{tipX - static_cast<int>(head * std::cos(angle + 0.5)),
                        tipY + static_cast<int>(head * std::sin(angle + 0.5))}};
    canvas.SetPen(color);
    canvas.Polygon(points);
}

void DrawShape(platform::Canvas& canvas, int shape, int x, int y, int radius)
{
    switch (shape)
    {
    case game::ShapeSquare:
        canvas.Rectangle(x - radius, y - radius, x + radius + 1, y + radius + 1);
        break;
    case game::ShapePlus:
        canvas.MoveTo(x - radius, y);
        canvas.LineTo(x + radius + 1, y);
        canvas.MoveTo(x, y - radius);
        canvas.LineTo(x, y + radius + 1);
        break;
    case game::ShapeTriangle:
    {
        const std::array<platform::Point, 3> points = {platform::Point{x, y - radius},
                                                       platform::Point{x + radius, y + radius},
                                                       platform::Point{x - radius, y + radius}};
        canvas.Polygon(points);
        break;
    }
    default: // round, and the round part of a CHAR symbol
        canvas.Ellipse(x - radius, y - radius, x + radius + 1, y + radius + 1);
        break;
    }
}

// The label of a Thing whose number matters more than its symbol: a TID, or a polyobject's
// number (its angle). Empty when none applies.
std::string LabelOf(const map::Thing& thing, const ThingLook& look, const ViewState& view)
{
    if (!view.Options.NumberLabels)
    {
        return {};
    }
    const auto tid = static_cast<short>(thing.Tid);
    if (view.Options.LevelFormat == map::GameHexen)
    {
        if (look.MapSpot || (look.PlayerStart && thing.Tid != 0))
        {
            return platform::Format(" %hdt", tid);
        }
        if (look.PolyObject)
        {
            return platform::Format(" %hdp", static_cast<short>(thing.Angle));
        }
    }
    return thing.Tid != 0 ? platform::Format(" %hdt", tid) : std::string();
}

// The sprite in the box of the pixel radius, as large as fits with its proportions kept, or a
// framed question mark when the type has no readable sprite. A short Thing's box is halved.
void DrawSprite(platform::Canvas& canvas, const ThingLook& look, int x, int y, int radius)
{
    if (look.Height < 33 && radius > 3)
    {
        radius /= 2;
    }
    const gfx::ImageRaster* frame = look.Sprite.empty() ? nullptr : SpriteFrame(look.Sprite);
    if (frame == nullptr || frame->Empty())
    {
        canvas.SetPen(look.Color);
        canvas.SetBrush(platform::NullBrush);
        canvas.Rectangle(x - radius, y - radius, x + radius + 1, y + radius + 1);
        canvas.TextOut(x - 2, y - 3, "?");
        return;
    }
    const int box = 2 * radius + 1;
    const double fit = std::min(static_cast<double>(box) / frame->Width(),
                                static_cast<double>(box) / frame->Height());
    const int width = std::max(1, static_cast<int>(frame->Width() * fit));
    const int height = std::max(1, static_cast<int>(frame->Height() * fit));
    platform::IndexedPicture picture;
    picture.Width = frame->Width();
    picture.Height = frame->Height();
    picture.Pitch = frame->Pitch();
    picture.Pixels = frame->Bytes();
    picture.Colors = DisplayColors();
    picture.Transparent = SpriteHoleIndex();
    canvas.DrawPicture(
        picture, {x - width / 2, y - height / 2, x - width / 2 + width, y - height / 2 + height});
}

} // namespace

void DrawThing(platform::Canvas& canvas, const map::Thing& thing, const ViewState& view,
               bool highlighted, bool sprite)
{
    const MapViewport& viewport = view.Viewport;
    const ThingLook look = LookOfThing(thing, view.Options.LevelFormat);
    const int radius =
        std::max(static_cast<int>(look.Radius * static_cast<double>(viewport.Scale)), 1);
    const int x = MapToScreenX(viewport, thing.X);
    const int y = MapToScreenY(viewport, thing.Y);
    if (x + radius < 0 || y + radius < 0 || x - radius >= viewport.WidthPx ||
        y - radius >= viewport.HeightPx)
    {
        return;
    }
    canvas.SetTextColor(highlighted ? view.Colors.Selection : look.Color);
    canvas.SetBrush(view.Options.FilledThings ? view.Colors.Background : platform::NullBrush);
    int shape = look.Shape;
    if (shape == game::ShapeDefault)
    {
        shape = view.Options.RoundThings ? game::ShapeRound : game::ShapeSquare;
    }
    if (shape == game::ShapeChar && viewport.Scale < 0.35f)
    {
        shape = game::ShapePlus; // too small for its text
    }
    canvas.SetPen(look.Color);
    if (sprite)
    {
        DrawSprite(canvas, look, x, y, radius);
        return;
    }

    const std::string label = LabelOf(thing, look, view);
    if (!label.empty())
    {
        if (view.Options.ThingStyle == 1)
        {
            DrawShape(canvas, shape, x, y, radius);
        }
        canvas.TextOut(x + radius, y - 3, label);
        return;
    }
    if (view.Options.ThingStyle == 1 || view.Options.ThingStyle == 2)
    {
        DrawShape(canvas, shape, x, y, radius);
        if (shape == game::ShapeChar)
        {
            const int width = static_cast<int>(look.ShapeText.size()) * 6;
            canvas.TextOut(x - width / 2, y - 3, look.ShapeText);
        }
        if (view.Options.ThingStyle == 1 && look.Arrow)
        {
            DrawArrow(canvas, x, y, radius, thing, view, look.Color);
        }
        return;
    }
    canvas.TextOut(x, y - 3, std::to_string(thing.Type));
}

} // namespace kelvar::view
