// The object store: growing, inserting, deleting with renumbering, bounds, copies of levels.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/ObjectStore.h"

#include "map/MapState.h"
#include "platform/Assert.h"
#include "platform/Fatal.h"
#include "platform/Messages.h"
#include "platform/Ui.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace kelvar::map
{
namespace
{

template <typename Record> void Resize(ObjectArray<Record>& array, int kind, int delta)
{
    if (delta < 1)
    {
        if (!array.empty())
        {
            array.pop_back();
        }
        return;
    }
    if (array.Count() + 1 > array.Capacity)
    {
        try
        {
            array.Reserve(array.Capacity + GrowthStep(kind));
        }
        catch (const std::bad_alloc&)
        {
            platform::OutOfMemory(3, static_cast<std::size_t>(array.Capacity) * sizeof(Record));
        }
    }
    array.emplace_back();
}

template <typename Record> void Erase(ObjectArray<Record>& array, std::uint32_t object)
{
    array.erase(object);
}

std::uint32_t Highest(std::int32_t count)
{
    return count > 0 ? static_cast<std::uint32_t>(count - 1) : 0;
}

void DeleteThing(LevelData& level, std::uint32_t object)
{
    Erase(level.Things, object);
}

// Only LineDefs with both sides count as users of a SideDef here: a SideDef packed between a
// two-sided and a one-sided LineDef goes with the two-sided one, leaving the other without
// it. That is the rule the rest of the editor expects.
int TwoSidedUsers(const LevelData& level, std::uint32_t line, std::uint32_t side)
{
    int users = 0;
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const LineDef& other = level.LineDefs[i];
        if (i != line && other.SideDef1 != NoSideDef && other.SideDef2 != NoSideDef &&
            (other.SideDef1 == side || other.SideDef2 == side))
        {
            ++users;
        }
    }
    return users;
}

void DeleteSideDefOnly(LevelData& level, std::uint32_t object)
{
    const auto renumbered = [object](std::uint32_t side)
    {
        if (side == object)
        {
            return NoSideDef;
        }
        return side != NoSideDef && side > object ? side - 1 : side;
    };
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        // Read first: writing only the LineDefs that change keeps the rest shared with undo.
        const LineDef& line = std::as_const(level).LineDefs[i];
        const std::uint32_t side1 = renumbered(line.SideDef1);
        const std::uint32_t side2 = renumbered(line.SideDef2);
        if (side1 != line.SideDef1 || side2 != line.SideDef2)
        {
            level.LineDefs[i].SideDef1 = side1;
            level.LineDefs[i].SideDef2 = side2;
        }
    }
    Erase(level.SideDefs, object);
}

void DeleteLineDef(LevelData& level, std::uint32_t object)
{
    const LineDef line = std::as_const(level).LineDefs[object];
    std::uint32_t side1 = line.SideDef1;
    std::uint32_t side2 = line.SideDef2;
    const bool keep1 = side1 == NoSideDef || TwoSidedUsers(level, object, side1) > 0;
    const bool keep2 =
        side2 == NoSideDef || side2 == side1 || TwoSidedUsers(level, object, side2) > 0;
    if (!keep1)
    {
        DeleteSideDefOnly(level, side1);
        if (side2 != NoSideDef && side2 > side1)
        {
            --side2;
        }
    }
    if (!keep2)
    {
        DeleteSideDefOnly(level, side2);
    }
    ObjectList vertices;
    ObjectListPush(vertices, static_cast<std::int32_t>(line.StartVertex));
    ObjectListPush(vertices, static_cast<std::int32_t>(line.EndVertex));
    Erase(level.LineDefs, object);
    if (Map().PurgeVertices)
    {
        PurgeOrphanVertices(level, vertices);
    }
}

void DeleteVertex(LevelData& level, std::uint32_t object)
{
    ObjectList lines;
    for (std::size_t i = level.LineDefs.size(); i-- > 0;)
    {
        const LineDef& line = std::as_const(level).LineDefs[i];
        if (line.StartVertex == object || line.EndVertex == object)
        {
            ObjectListPush(lines, static_cast<std::int32_t>(i));
        }
    }
    if (!lines.Empty())
    {
        DeleteObjectList(level, KindLineDef, lines);
        return;
    }
    ObjectList vertices;
    ObjectListPush(vertices, static_cast<std::int32_t>(object));
    PurgeOrphanVertices(level, vertices);
}

void DeleteSector(LevelData& level, std::uint32_t object)
{
    ObjectList sides;
    std::vector<std::uint32_t> affected;
    for (std::size_t i = 0; i < level.SideDefs.size(); ++i)
    {
        const SideDef& side = std::as_const(level).SideDefs[i];
        if (side.Sector == object)
        {
            ObjectListPush(sides, static_cast<std::int32_t>(i));
            for (std::size_t l = 0; l < level.LineDefs.size(); ++l)
            {
                const LineDef& line = std::as_const(level).LineDefs[l];
                if (line.SideDef1 == i || line.SideDef2 == i)
                {
                    affected.push_back(static_cast<std::uint32_t>(l));
                }
            }
        }
        else if (side.Sector != NoSector && side.Sector > object)
        {
            --level.SideDefs[i].Sector;
        }
    }
    DeleteObjectList(level, KindSideDef, sides);
    Erase(level.Sectors, object);

    std::sort(affected.begin(), affected.end());
    affected.erase(std::unique(affected.begin(), affected.end()), affected.end());
    ObjectList orphans;
    for (const std::uint32_t l : affected)
    {
        LineDef& line = level.LineDefs[l];
        if (line.SideDef1 == NoSideDef && line.SideDef2 == NoSideDef)
        {
            ObjectListPush(orphans, static_cast<std::int32_t>(l));
            continue;
        }
        if (line.SideDef1 == NoSideDef)
        {
            // Only the back survives: the line turns round so it becomes the front.
            std::swap(line.StartVertex, line.EndVertex);
            line.SideDef1 = std::exchange(line.SideDef2, NoSideDef);
        }
        line.Flags = static_cast<std::uint16_t>((line.Flags & ~FlagTwoSided) | FlagImpassable);
    }
    DeleteObjectList(level, KindLineDef, orphans);
}

} // namespace

std::int32_t GrowthStep(int kind)
{
    switch (kind)
    {
    case KindThing:
        return 500;
    case KindLineDef:
        return 4000;
    case KindSideDef:
    case KindVertex:
        return 8000;
    case KindSector:
        return 1000;
    default:
        return 0;
    }
}

void ResizeObject(LevelData& level, int kind, int delta)
{
    const StoreChange busy;
    switch (kind)
    {
    case KindThing:
        Resize(level.Things, kind, delta);
        break;
    case KindLineDef:
        Resize(level.LineDefs, kind, delta);
        break;
    case KindSideDef:
        Resize(level.SideDefs, kind, delta);
        break;
    case KindVertex:
        Resize(level.Vertexes, kind, delta);
        break;
    case KindSector:
        Resize(level.Sectors, kind, delta);
        break;
    default:
        platform::FatalError("ResizeObject wrong type %hd", static_cast<short>(kind));
    }
}

void NoteChange(LevelData& level, int kind)
{
    // The counters are 16 bits; 0 means "unchanged", so a count that wraps skips it.
    const bool first = level.ChangeCount == 0;
    if (++level.ChangeCount == 0)
    {
        level.ChangeCount = 1;
    }
    if (kind != KindThing && ++level.GeometryChangeCount == 0)
    {
        level.GeometryChangeCount = 1;
    }
    if (first && Map().TitleChanged)
    {
        Map().TitleChanged();
    }
}

int InsertObject(LevelData& level, int kind, int templateObject, int x, int y)
{
    if (!StoredKind(kind))
    {
        platform::TheUi().Beep();
        return -1;
    }
    NoteChange(level, kind);
    ResizeObject(level, kind, 1);
    const MapState& state = Map();
    const bool copy = templateObject >= 0;
    const auto from = static_cast<std::size_t>(templateObject);
    switch (kind)
    {
    case KindThing:
    {
        Thing& thing = level.Things.back();
        if (copy)
        {
            thing = level.Things[from];
        }
        else
        {
            thing = Thing{};
            thing.Type = state.Defaults.ThingType;
            thing.Flags = state.HexenThings ? 2023 : 7;
        }
        thing.X = x;
        thing.Y = y;
        return level.Things.Count() - 1;
    }
    case KindLineDef:
    {
        LineDef& line = level.LineDefs.back();
        if (copy)
        {
            line = level.LineDefs[from];
        }
        else
        {
            line = LineDef{};
            line.EndVertex = Highest(level.Vertexes.Count());
            line.Flags = FlagImpassable;
        }
        line.SideDef1 = NoSideDef;
        line.SideDef2 = NoSideDef;
        return level.LineDefs.Count() - 1;
    }
    case KindSideDef:
    {
        SideDef& side = level.SideDefs.back();
        if (copy)
        {
            side = level.SideDefs[from];
        }
        else
        {
            side = SideDef{};
            side.NormalTexture = state.Textures.Normal;
            side.Sector = Highest(level.Sectors.Count());
        }
        return level.SideDefs.Count() - 1;
    }
    case KindVertex:
    {
        // Vertex coordinates are 16 bits: the position is cut to its low 16 bits.
        Vertex& vertex = level.Vertexes.back();
        vertex.X = static_cast<std::int16_t>(x);
        vertex.Y = static_cast<std::int16_t>(y);
        ExtendBounds(level, vertex);
        return level.Vertexes.Count() - 1;
    }
    default:
    {
        Sector& sector = level.Sectors.back();
        if (copy)
        {
            sector = level.Sectors[from];
        }
        else
        {
            sector = Sector{};
            sector.FloorHeight = state.Defaults.FloorHeight;
            sector.CeilingHeight = state.Defaults.CeilingHeight;
            sector.FloorTexture = state.Textures.Floor;
            sector.CeilingTexture = state.Textures.Ceiling;
            sector.Light = state.Defaults.Light;
        }
        return level.Sectors.Count() - 1;
    }
    }
}

void DeleteObject(LevelData& level, int kind, int object)
{
    if (object == -1)
    {
        return;
    }
    if (kind <= 0 || kind > KindSector)
    {
        platform::TheUi().Beep();
        return;
    }
    NoteChange(level, KindThing);
    if (kind != KindThing && level.GeometryChangeCount == 0)
    {
        level.GeometryChangeCount = 1;
    }
    const StoreChange busy;
    const auto number = static_cast<std::uint32_t>(object);
    switch (kind)
    {
    case KindThing:
        DeleteThing(level, number);
        break;
    case KindLineDef:
        DeleteLineDef(level, number);
        break;
    case KindSideDef:
        DeleteSideDefOnly(level, number);
        break;
    case KindVertex:
        DeleteVertex(level, number);
        break;
    case KindSector:
        DeleteSector(level, number);
        break;
    default:
        break; // nodes, segments and the like are not held here
    }
}

void DeleteObjectList(LevelData& level, int kind, ObjectList& list)
{
    std::vector<std::int32_t> objects = list.Objects();
    ObjectListClear(list);
    for (std::size_t i = 0; i < objects.size(); ++i)
    {
        const std::int32_t deleted = objects[i];
        DeleteObject(level, kind, deleted);
        for (std::size_t j = i + 1; j < objects.size(); ++j)
        {
            if (objects[j] > deleted)
            {
                --objects[j];
            }
        }
    }
}

void PurgeOrphanVertices(LevelData& level, ObjectList& list)
{
    std::vector<std::int32_t> candidates = list.Objects();
    ObjectListClear(list);
    for (const LineDef& line : std::as_const(level).LineDefs)
    {
        for (std::int32_t& candidate : candidates)
        {
            if (candidate >= 0 && (static_cast<std::uint32_t>(candidate) == line.StartVertex ||
                                   static_cast<std::uint32_t>(candidate) == line.EndVertex))
            {
                candidate = -1;
            }
        }
    }
    std::vector<std::int32_t> work;
    for (const std::int32_t candidate : candidates)
    {
        if (candidate >= 0 && candidate < level.Vertexes.Count() &&
            std::find(work.begin(), work.end(), candidate) == work.end())
        {
            work.push_back(candidate);
        }
    }
    for (std::size_t i = 0; i < work.size(); ++i)
    {
        const auto vertex = static_cast<std::uint32_t>(work[i]);
        for (std::size_t l = 0; l < level.LineDefs.size(); ++l)
        {
            const LineDef& line = std::as_const(level).LineDefs[l];
            if (line.StartVertex >= vertex || line.EndVertex >= vertex)
            {
                LineDef& changed = level.LineDefs[l];
                changed.StartVertex -= changed.StartVertex >= vertex ? 1 : 0;
                changed.EndVertex -= changed.EndVertex >= vertex ? 1 : 0;
            }
        }
        Erase(level.Vertexes, vertex);
        for (std::size_t j = i + 1; j < work.size(); ++j)
        {
            work[j] -= work[j] > work[i] ? 1 : 0;
        }
        if ((i + 1) % 100 == 0)
        {
            platform::TheUi().PollEscape(); // keeps the window alive on long purges
        }
    }
}

namespace
{

// The new number of an object that goes.
constexpr std::uint32_t Removed = 0xFFFFFFFFu;

// The new number of each object that stays, Removed for the others; counts those removed.
std::vector<std::uint32_t> NewNumbers(const std::vector<std::uint8_t>& marks, std::size_t& removed)
{
    std::vector<std::uint32_t> numbers(marks.size(), Removed);
    std::uint32_t next = 0;
    for (std::size_t i = 0; i < marks.size(); ++i)
    {
        if (marks[i] != 0)
        {
            numbers[i] = next++;
        }
    }
    removed += marks.size() - next;
    return numbers;
}

// Moves the records that stay down over those that go, keeping their order; the allocation
// stays as it is.
template <typename Record>
void Compact(ObjectArray<Record>& array, const std::vector<std::uint32_t>& numbers)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
        if (numbers[i] != Removed)
        {
            if (kept != i)
            {
                array[kept] = std::as_const(array)[i];
            }
            ++kept;
        }
    }
    array.resize(kept);
}

// A reference after the compaction. A number that named nothing before (out of range, or
// "none") stays as it was, and since the counts only shrink it still names nothing.
std::uint32_t Renumbered(std::uint32_t reference, const std::vector<std::uint32_t>& numbers)
{
    if (reference >= numbers.size())
    {
        return reference;
    }
    KELVAR_ASSERT(numbers[reference] != Removed);
    return numbers[reference];
}

} // namespace

KeepMarks MarksForAll(const LevelData& level, std::uint8_t value)
{
    KeepMarks marks;
    marks.Vertexes.assign(level.Vertexes.size(), value);
    marks.SideDefs.assign(level.SideDefs.size(), value);
    marks.Sectors.assign(level.Sectors.size(), value);
    return marks;
}

void RemoveUnmarked(LevelData& level, const KeepMarks& marks)
{
    KELVAR_ASSERT(marks.Vertexes.size() == level.Vertexes.size() &&
                  marks.SideDefs.size() == level.SideDefs.size() &&
                  marks.Sectors.size() == level.Sectors.size());
    std::size_t vertexesGone = 0;
    std::size_t othersGone = 0;
    const std::vector<std::uint32_t> vertexNumbers = NewNumbers(marks.Vertexes, vertexesGone);
    const std::vector<std::uint32_t> sideNumbers = NewNumbers(marks.SideDefs, othersGone);
    const std::vector<std::uint32_t> sectorNumbers = NewNumbers(marks.Sectors, othersGone);
    if (vertexesGone + othersGone == 0)
    {
        return;
    }
    const StoreChange busy;
    Compact(level.Vertexes, vertexNumbers);
    Compact(level.SideDefs, sideNumbers);
    Compact(level.Sectors, sectorNumbers);
    // Only records whose references change are written: the others stay shared with undo.
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        LineDef line = std::as_const(level).LineDefs[i];
        line.StartVertex = Renumbered(line.StartVertex, vertexNumbers);
        line.EndVertex = Renumbered(line.EndVertex, vertexNumbers);
        line.SideDef1 = Renumbered(line.SideDef1, sideNumbers);
        line.SideDef2 = Renumbered(line.SideDef2, sideNumbers);
        if (!(line == std::as_const(level).LineDefs[i]))
        {
            level.LineDefs[i] = line;
        }
    }
    for (std::size_t i = 0; i < level.SideDefs.size(); ++i)
    {
        const std::uint32_t sector =
            Renumbered(std::as_const(level).SideDefs[i].Sector, sectorNumbers);
        if (sector != std::as_const(level).SideDefs[i].Sector)
        {
            level.SideDefs[i].Sector = sector;
        }
    }
    if (vertexesGone > 0)
    {
        MeasureLevel(level);
    }
}

void ExtendBounds(LevelData& level, const Vertex& vertex)
{
    level.MaxX = std::max<std::int32_t>(level.MaxX, vertex.X);
    level.MinX = std::min<std::int32_t>(level.MinX, vertex.X);
    level.MaxY = std::max<std::int32_t>(level.MaxY, vertex.Y);
    level.MinY = std::min<std::int32_t>(level.MinY, vertex.Y);
}

void MeasureLevel(LevelData& level)
{
    if (level.Vertexes.empty())
    {
        level.MaxX = 100;
        level.MinX = -100;
        level.MaxY = 116;
        level.MinY = -116;
        return;
    }
    level.MaxX = EmptyBoxMax;
    level.MinX = EmptyBoxMin;
    level.MaxY = EmptyBoxMax;
    level.MinY = EmptyBoxMin;
    for (const Vertex& vertex : std::as_const(level).Vertexes)
    {
        ExtendBounds(level, vertex);
    }
}

VertexBox VertexBounds(const LevelData& level)
{
    if (level.Vertexes.empty())
    {
        return {};
    }
    const Vertex& first = level.Vertexes[0];
    VertexBox box{first.X, first.X, first.Y, first.Y};
    for (const Vertex& vertex : level.Vertexes)
    {
        box.MinX = std::min<std::int32_t>(box.MinX, vertex.X);
        box.MaxX = std::max<std::int32_t>(box.MaxX, vertex.X);
        box.MinY = std::min<std::int32_t>(box.MinY, vertex.Y);
        box.MaxY = std::max<std::int32_t>(box.MaxY, vertex.Y);
    }
    return box;
}

namespace
{

template <typename Record> void InitArray(ObjectArray<Record>& array, std::int32_t capacity)
{
    array.clear();
    array.Reserve(array.Capacity == 0 ? capacity : array.Capacity);
}

template <typename Record> void FreeArray(ObjectArray<Record>& array)
{
    array.clear();
    array.Capacity = 0;
}

} // namespace

void LevelInit(LevelData& level)
{
    InitArray(level.Things, FirstThingCapacity);
    InitArray(level.LineDefs, FirstLineDefCapacity);
    InitArray(level.SideDefs, FirstSideDefCapacity);
    InitArray(level.Vertexes, FirstVertexCapacity);
    InitArray(level.Sectors, FirstSectorCapacity);
    level.ChangeCount = 0;
    level.GeometryChangeCount = 0;
    level.NodesCurrent = 0;
    level.SourceCommand = 0;
    level.MaxX = EmptyBoxMax;
    level.MinX = EmptyBoxMin;
    level.MaxY = EmptyBoxMax;
    level.MinY = EmptyBoxMin;
}

void LevelFree(LevelData& level)
{
    FreeArray(level.Things);
    FreeArray(level.LineDefs);
    FreeArray(level.SideDefs);
    FreeArray(level.Vertexes);
    FreeArray(level.Sectors);
    level.ChangeCount = 0;
    level.GeometryChangeCount = 0;
}

void LevelCopy(LevelData& destination, const LevelData& source)
{
    destination = source;
}

void SetSideFlags(LineDef& line)
{
    if (line.SideDef1 != NoSideDef && line.SideDef2 != NoSideDef)
    {
        line.Flags = static_cast<std::uint16_t>((line.Flags | FlagTwoSided) & ~FlagImpassable);
    }
    else
    {
        line.Flags = static_cast<std::uint16_t>((line.Flags & ~FlagTwoSided) | FlagImpassable);
    }
}

StoreChange::StoreChange()
{
    WaitForSave();
    WasBusy = std::exchange(Map().StoreBusy, true);
}

StoreChange::~StoreChange()
{
    Map().StoreBusy = WasBusy;
}

void WaitForSave()
{
    MapState& state = Map();
    if (!state.SaveBusy)
    {
        return;
    }
    for (int second = 0; second < 20 && state.SaveBusy; ++second)
    {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        platform::TheUi().PollEscape();
    }
    if (state.SaveBusy)
    {
        platform::ShowError("Stuck waiting for Save to finish?");
    }
}

} // namespace kelvar::map
