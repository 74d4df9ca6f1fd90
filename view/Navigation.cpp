// Moving the view to objects: the centre of an object, Goto, bookmarks.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/Navigation.h"

#include "platform/Ui.h"
#include "view/HitTest.h"

#include <algorithm>

namespace kelvar::view
{
namespace
{

MapPoint LineMiddle(const map::LevelData& level, const map::LineDef& line)
{
    const std::size_t count = level.Vertexes.size();
    if (line.StartVertex >= count || line.EndVertex >= count)
    {
        return {(level.MinX + level.MaxX) / 2.0, (level.MinY + level.MaxY) / 2.0};
    }
    const map::Vertex& a = level.Vertexes[line.StartVertex];
    const map::Vertex& b = level.Vertexes[line.EndVertex];
    // Midpoints use integer halves, as every midpoint of the map does.
    return {static_cast<double>((a.X + b.X) / 2), static_cast<double>((a.Y + b.Y) / 2)};
}

bool FacesSector(const map::LevelData& level, const map::LineDef& line, int sector)
{
    for (const std::uint32_t side : {line.SideDef1, line.SideDef2})
    {
        if (side != map::NoSideDef && side < level.SideDefs.size() &&
            level.SideDefs[side].Sector == static_cast<std::uint32_t>(sector))
        {
            return true;
        }
    }
    return false;
}

bool SectorAt(const map::LevelData& level, const MapViewport& viewport, double x, double y,
              int sector)
{
    return FindObject(level, viewport, false, map::ModeSectors, x, y, x, y) == sector;
}

} // namespace

MapPoint ObjectCenter(const map::LevelData& level, int kind, int object)
{
    const MapPoint box{(level.MinX + level.MaxX) / 2.0, (level.MinY + level.MaxY) / 2.0};
    if (object < 0)
    {
        return box;
    }
    const auto index = static_cast<std::size_t>(object);
    switch (kind)
    {
    case map::KindThing:
        return index < level.Things.size() ? MapPoint{static_cast<double>(level.Things[index].X),
                                                      static_cast<double>(level.Things[index].Y)}
                                           : box;
    case map::KindVertex:
        return index < level.Vertexes.size()
                   ? MapPoint{static_cast<double>(level.Vertexes[index].X),
                              static_cast<double>(level.Vertexes[index].Y)}
                   : box;
    case map::KindLineDef:
        return index < level.LineDefs.size() ? LineMiddle(level, level.LineDefs[index]) : box;
    case map::KindSideDef:
        for (const map::LineDef& line : level.LineDefs)
        {
            if (line.SideDef1 == index || line.SideDef2 == index)
            {
                return LineMiddle(level, line);
            }
        }
        return box;
    case map::KindSector:
    {
        double sumX = 0;
        double sumY = 0;
        int points = 0;
        for (const map::LineDef& line : level.LineDefs)
        {
            if (!FacesSector(level, line, object) || line.StartVertex >= level.Vertexes.size() ||
                line.EndVertex >= level.Vertexes.size())
            {
                continue;
            }
            for (const std::uint32_t vertex : {line.StartVertex, line.EndVertex})
            {
                sumX += level.Vertexes[vertex].X;
                sumY += level.Vertexes[vertex].Y;
                ++points;
            }
        }
        return points == 0 ? box : MapPoint{sumX / points, sumY / points};
    }
    default:
        return box;
    }
}

void GotoObject(const map::LevelData& level, MapViewport& viewport, int kind, int object,
                bool force)
{
    MapPoint point = ObjectCenter(level, kind, object);
    if (kind == map::KindSector && object >= 0 &&
        !SectorAt(level, viewport, point.X, point.Y, object))
    {
        // A ring or a Sector with a hole: try the middles of its lines, then points around
        // the centre, one to fifteen units out at the four diagonals.
        bool found = false;
        for (const map::LineDef& line : level.LineDefs)
        {
            if (!FacesSector(level, line, object))
            {
                continue;
            }
            const MapPoint middle = LineMiddle(level, line);
            if (SectorAt(level, viewport, middle.X, middle.Y, object))
            {
                point = middle;
                found = true;
                break;
            }
        }
        for (int step = 1; step <= 15 && !found; ++step)
        {
            for (const auto& [dx, dy] :
                 {std::pair{-1, -1}, std::pair{1, -1}, std::pair{1, 1}, std::pair{-1, 1}})
            {
                if (SectorAt(level, viewport, point.X + dx * step, point.Y + dy * step, object))
                {
                    point = {point.X + dx * step, point.Y + dy * step};
                    found = true;
                    break;
                }
            }
        }
    }
    CenterOn(viewport, point.X, point.Y);
    if (force && kind == map::KindSector && object >= 0)
    {
        while (viewport.Scale < 1.0f && !SectorAt(level, viewport, point.X, point.Y, object))
        {
            viewport.Scale = std::min(viewport.Scale * 1.1f, 1.0f);
        }
    }
}

void SetBookmark(int slot, std::uint16_t project, std::uint16_t levelNumber, int mode, int object,
                 int cursorX, int cursorY, const MapViewport& viewport)
{
    if (slot < 0 || slot > 9)
    {
        return;
    }
    map::Bookmark& bookmark = map::Selected().Bookmarks[static_cast<std::size_t>(slot)];
    bookmark = {project,
                levelNumber,
                static_cast<std::uint16_t>(mode),
                object,
                cursorX,
                cursorY,
                static_cast<std::int32_t>(viewport.OriginX),
                static_cast<std::int32_t>(viewport.OriginY),
                viewport.Scale};
}

bool BookmarkEnabled(int slot, std::uint16_t project, std::uint16_t levelNumber)
{
    if (slot < 0 || slot > 9)
    {
        return false;
    }
    const map::Bookmark& bookmark = map::Selected().Bookmarks[static_cast<std::size_t>(slot)];
    return bookmark.Mode != 0 && bookmark.Project == project && bookmark.Level == levelNumber;
}

int GotoBookmark(const map::LevelData& level, MapViewport& viewport, int slot)
{
    if (slot < 0 || slot > 9)
    {
        return 0;
    }
    const map::Bookmark bookmark = map::Selected().Bookmarks[static_cast<std::size_t>(slot)];
    if (bookmark.Mode == 0 || !map::IsValidObject(level, bookmark.Mode, bookmark.Object))
    {
        platform::TheUi().Beep();
        return 0;
    }
    viewport.Scale = bookmark.Zoom;
    CenterOn(viewport, bookmark.ViewX, bookmark.ViewY);
    map::ClearSelection();
    map::Selected().HighlightedObject = bookmark.Object;
    return bookmark.Mode;
}

} // namespace kelvar::view
