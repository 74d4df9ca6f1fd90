// ObjectList: a list of object numbers with an index beside it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/ObjectList.h"

#include "map/MapState.h"

#include <utility>

namespace kelvar::map
{

ObjectList::~ObjectList()
{
    Count(-LiveCount);
}

ObjectList::ObjectList(ObjectList&& other) noexcept
    : Family(other.Family), Nodes(std::move(other.Nodes)), FreeNodes(std::move(other.FreeNodes)),
      Newest(std::move(other.Newest)), First(std::exchange(other.First, -1)),
      LiveCount(std::exchange(other.LiveCount, 0))
{
}

ObjectList& ObjectList::operator=(ObjectList&& other) noexcept
{
    if (this != &other)
    {
        Count(-LiveCount);
        Family = other.Family;
        Nodes = std::move(other.Nodes);
        FreeNodes = std::move(other.FreeNodes);
        Newest = std::move(other.Newest);
        First = std::exchange(other.First, -1);
        LiveCount = std::exchange(other.LiveCount, 0);
    }
    return *this;
}

std::vector<std::int32_t> ObjectList::Objects() const
{
    std::vector<std::int32_t> objects;
    objects.reserve(static_cast<std::size_t>(LiveCount));
    ForEach([&](std::int32_t object) { objects.push_back(object); });
    return objects;
}

void ObjectList::Count(int delta) const
{
    (Family == ListFamily::General ? Map().SelectedCount : Map().DrawingCount) += delta;
}

void ObjectListPush(ObjectList& list, std::int32_t object)
{
    std::int32_t at;
    if (!list.FreeNodes.empty())
    {
        at = list.FreeNodes.back();
        list.FreeNodes.pop_back();
    }
    else
    {
        at = static_cast<std::int32_t>(list.Nodes.size());
        list.Nodes.emplace_back();
    }
    ObjectList::Node& node = list.Nodes[static_cast<std::size_t>(at)];
    node.Object = object;
    node.Newer = -1;
    node.Older = list.First;
    if (list.First >= 0)
    {
        list.Nodes[static_cast<std::size_t>(list.First)].Newer = at;
    }
    list.First = at;
    const auto [found, fresh] = list.Newest.try_emplace(object, at);
    node.SameOlder = fresh ? -1 : std::exchange(found->second, at);
    ++list.LiveCount;
    list.Count(1);
}

bool ObjectListContains(const ObjectList& list, std::int32_t object)
{
    return list.Newest.contains(object);
}

void ObjectListRemove(ObjectList& list, std::int32_t object)
{
    const auto found = list.Newest.find(object);
    if (found == list.Newest.end())
    {
        return;
    }
    const std::int32_t at = found->second;
    ObjectList::Node& node = list.Nodes[static_cast<std::size_t>(at)];
    if (node.SameOlder >= 0)
    {
        found->second = node.SameOlder;
    }
    else
    {
        list.Newest.erase(found);
    }
    if (node.Newer >= 0)
    {
        list.Nodes[static_cast<std::size_t>(node.Newer)].Older = node.Older;
    }
    else
    {
        list.First = node.Older;
    }
    if (node.Older >= 0)
    {
        list.Nodes[static_cast<std::size_t>(node.Older)].Newer = node.Newer;
    }
    list.FreeNodes.push_back(at);
    --list.LiveCount;
    list.Count(-1);
}

void ObjectListClear(ObjectList& list)
{
    list.Count(-list.LiveCount);
    list.Nodes.clear();
    list.FreeNodes.clear();
    list.Newest.clear();
    list.First = -1;
    list.LiveCount = 0;
}

} // namespace kelvar::map
