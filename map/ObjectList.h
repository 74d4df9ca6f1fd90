// ObjectList: the list of object numbers that selections and every operation's scratch work use.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace kelvar::map
{

/// Which live-node counter a list bumps: the general lists count into SelectedCount (the
/// selection is the only general list that outlives a command, so the count is its size);
/// the drawing lists of the incremental redraw have a counter of their own.
enum class ListFamily : std::uint8_t
{
    General,
    Drawing,
};

/// A list of object numbers, newest first: the object added first is last. Duplicates are
/// allowed (callers test first). Beside the list an index answers "is this object in it?"
/// and finds its newest entry at once, so a selection of 100,000 objects is as quick to test
/// and to change as one of ten.
class ObjectList
{
public:
    ObjectList() = default;
    explicit ObjectList(ListFamily family) : Family(family) {}
    ~ObjectList();
    ObjectList(ObjectList&& other) noexcept;
    ObjectList& operator=(ObjectList&& other) noexcept;
    ObjectList(const ObjectList&) = delete;
    ObjectList& operator=(const ObjectList&) = delete;

    int Size() const { return LiveCount; }
    bool Empty() const { return LiveCount == 0; }
    /// The newest object, or -1.
    std::int32_t Head() const
    {
        return First < 0 ? -1 : Nodes[static_cast<std::size_t>(First)].Object;
    }
    /// The objects, newest first.
    std::vector<std::int32_t> Objects() const;

    /// Calls visit(object) for each entry, newest first.
    template <typename Visit> void ForEach(Visit visit) const
    {
        for (std::int32_t at = First; at >= 0; at = Nodes[static_cast<std::size_t>(at)].Older)
        {
            visit(Nodes[static_cast<std::size_t>(at)].Object);
        }
    }

private:
    friend void ObjectListPush(ObjectList& list, std::int32_t object);
    friend bool ObjectListContains(const ObjectList& list, std::int32_t object);
    friend void ObjectListRemove(ObjectList& list, std::int32_t object);
    friend void ObjectListClear(ObjectList& list);

    struct Node
    {
        std::int32_t Object = 0;
        std::int32_t Newer = -1;
        std::int32_t Older = -1;
        std::int32_t SameOlder = -1; // the next older entry of the same object
    };

    void Count(int delta) const;

    ListFamily Family = ListFamily::General;
    std::vector<Node> Nodes;
    std::vector<std::int32_t> FreeNodes;
    std::unordered_map<std::int32_t, std::int32_t> Newest; // object -> its newest node
    std::int32_t First = -1;                               // the head: the newest node
    int LiveCount = 0;
};

/// Adds an object at the head. No duplicate check.
void ObjectListPush(ObjectList& list, std::int32_t object);

/// True when the object is in the list.
bool ObjectListContains(const ObjectList& list, std::int32_t object);

/// Removes the first entry of the object from the head, if any.
void ObjectListRemove(ObjectList& list, std::int32_t object);

/// Removes every entry.
void ObjectListClear(ObjectList& list);

} // namespace kelvar::map
