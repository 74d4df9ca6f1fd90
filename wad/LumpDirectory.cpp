// The lump directory with its name index; reserved names and the level test.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LumpDirectory.h"

#include "map/GameCodes.h"
#include "platform/Assert.h"

#include <algorithm>
#include <array>

namespace kelvar::wad
{

void LumpDirectory::Touch()
{
    static std::uint64_t changes = 0; // one count for every directory: stamps never repeat
    Stamp_ = ++changes;
}

void LumpDirectory::Append(const LumpEntry& entry)
{
    Touch();
    Items.push_back(entry);
    if (Indexed)
    {
        Next.push_back(-1);
        Link(Items.size() - 1);
    }
}

void LumpDirectory::Rename(std::size_t index, const LumpName& name)
{
    Touch();
    if (!Indexed || Items[index].Name.Key() == name.Key())
    {
        Items[index].Name = name;
        return;
    }
    Unlink(index);
    Items[index].Name = name;
    Link(index);
}

void LumpDirectory::ReplaceRange(std::size_t first, std::size_t last,
                                 std::span<const LumpEntry> entries)
{
    KELVAR_ASSERT(first <= last && last <= Items.size());
    Touch();
    const auto at = Items.begin() + static_cast<std::ptrdiff_t>(first);
    Items.erase(at, Items.begin() + static_cast<std::ptrdiff_t>(last));
    Items.insert(Items.begin() + static_cast<std::ptrdiff_t>(first), entries.begin(),
                 entries.end());
    // Positions after the range move; rebuilding on the next search is simplest and this
    // happens once per level overlay, not per lump.
    Indexed = false;
}

void LumpDirectory::Assign(std::vector<LumpEntry>&& entries)
{
    Clear();
    Items = std::move(entries);
}

void LumpDirectory::Clear()
{
    Touch();
    Items.clear();
    Table.clear();
    Next.clear();
    Names = 0;
    Indexed = false;
}

int LumpDirectory::FindLast(const LumpName& name, std::size_t begin, std::size_t end) const
{
    EnsureIndex();
    const Chain& chain = ChainOf(name.Key());
    const auto limit = static_cast<std::int32_t>(std::min(end, Items.size()));
    std::int32_t found = -1;
    if (chain.First >= 0 && chain.Last < limit)
    {
        found = chain.Last; // the usual case: the newest of all
    }
    else
    {
        for (std::int32_t at = chain.First; at >= 0 && at < limit;
             at = Next[static_cast<std::size_t>(at)])
        {
            found = at;
        }
    }
    KELVAR_ASSERT(found < 0 || SameName(Items[static_cast<std::size_t>(found)].Name, name));
    return found >= static_cast<std::int32_t>(begin) ? found : -1;
}

int LumpDirectory::FindFirst(const LumpName& name, std::size_t begin, std::size_t end) const
{
    const auto from = static_cast<std::int32_t>(begin);
    const auto limit = static_cast<std::int32_t>(std::min(end, Items.size()));
    for (std::int32_t at = Head(name.Key()); at >= 0 && at < limit;
         at = Next[static_cast<std::size_t>(at)])
    {
        if (at >= from)
        {
            KELVAR_ASSERT(SameName(Items[static_cast<std::size_t>(at)].Name, name));
            return at;
        }
    }
    return -1;
}

std::vector<std::int32_t> LumpDirectory::Positions(const LumpName& name) const
{
    std::vector<std::int32_t> positions;
    ForEachPosition(name,
                    [&](std::int32_t at)
                    {
                        positions.push_back(at);
                        return true;
                    });
    return positions;
}

bool LumpDirectory::IndexConsistent() const
{
    EnsureIndex();
    std::size_t counted = 0;
    for (const Chain& chain : Table)
    {
        std::int32_t previous = -1;
        for (std::int32_t at = chain.First; at >= 0; at = Next[static_cast<std::size_t>(at)])
        {
            if (at <= previous || static_cast<std::size_t>(at) >= Items.size() ||
                Items[static_cast<std::size_t>(at)].Name.Key() != chain.Key)
            {
                return false;
            }
            previous = at;
            ++counted;
        }
        if (chain.First >= 0 && previous != chain.Last)
        {
            return false;
        }
    }
    return counted == Items.size();
}

void LumpDirectory::EnsureIndex() const
{
    if (Indexed)
    {
        return;
    }
    Indexed = true;
    Names = 0;
    std::size_t capacity = 64;
    while (capacity < Items.size() * 2)
    {
        capacity *= 2;
    }
    Table.assign(capacity, Chain{});
    Next.assign(Items.size(), -1);
    for (std::size_t i = 0; i < Items.size(); ++i)
    {
        Link(i);
    }
}

std::int32_t LumpDirectory::Head(std::uint64_t key) const
{
    EnsureIndex();
    return ChainOf(key).First;
}

// The slot of `key` in the table: its own, or the empty one where it would go.
LumpDirectory::Chain& LumpDirectory::ChainOf(std::uint64_t key) const
{
    const std::size_t mask = Table.size() - 1;
    std::size_t slot = static_cast<std::size_t>((key * 0x9E3779B97F4A7C15ULL) >> 40) & mask;
    while (Table[slot].First != -2 && Table[slot].Key != key)
    {
        slot = (slot + 1) & mask;
    }
    return Table[slot];
}

// Puts entry `index` into its name's chain, in position order. Entries are nearly always
// linked in increasing order, so the walk is for renames only.
void LumpDirectory::Link(std::size_t index) const
{
    if ((Names + 1) * 2 > Table.size())
    {
        Grow();
    }
    const auto at = static_cast<std::int32_t>(index);
    Chain& chain = ChainOf(Items[index].Name.Key());
    if (chain.First == -2)
    {
        chain.Key = Items[index].Name.Key();
        chain.First = -1;
        ++Names;
    }
    if (chain.First < 0)
    {
        chain.First = chain.Last = at;
        Next[index] = -1;
        return;
    }
    if (chain.Last < at)
    {
        Next[static_cast<std::size_t>(chain.Last)] = at;
        Next[index] = -1;
        chain.Last = at;
        return;
    }
    if (at < chain.First)
    {
        Next[index] = chain.First;
        chain.First = at;
        return;
    }
    std::int32_t before = chain.First;
    while (Next[static_cast<std::size_t>(before)] >= 0 &&
           Next[static_cast<std::size_t>(before)] < at)
    {
        before = Next[static_cast<std::size_t>(before)];
    }
    Next[index] = Next[static_cast<std::size_t>(before)];
    Next[static_cast<std::size_t>(before)] = at;
}

void LumpDirectory::Unlink(std::size_t index)
{
    Chain& chain = ChainOf(Items[index].Name.Key());
    const auto at = static_cast<std::int32_t>(index);
    std::int32_t before = -1;
    for (std::int32_t walk = chain.First; walk >= 0 && walk != at;
         walk = Next[static_cast<std::size_t>(walk)])
    {
        before = walk;
    }
    const std::int32_t after = Next[index];
    if (before < 0)
    {
        chain.First = after;
    }
    else
    {
        Next[static_cast<std::size_t>(before)] = after;
    }
    if (chain.Last == at)
    {
        chain.Last = before;
    }
    if (chain.First < 0)
    {
        chain.Last = -1; // the name stays in the table, with no entries
    }
    Next[index] = -1;
}

void LumpDirectory::Grow() const
{
    std::vector<Chain> old = std::move(Table);
    Table.assign(std::max<std::size_t>(old.size() * 2, 64), Chain{});
    for (const Chain& chain : old)
    {
        if (chain.First != -2)
        {
            ChainOf(chain.Key) = chain;
        }
    }
}

namespace
{

// The search keys of the reserved names by their number: 1 THINGS to 11 BEHAVIOR, 13 GL_VERT
// to 17 GL_PVS. Number 12 is any other GL_ name.
constexpr std::array<std::uint64_t, 18> ReservedKeys = {
    0,
    NameKey("THINGS"),
    NameKey("LINEDEFS"),
    NameKey("SIDEDEFS"),
    NameKey("VERTEXES"),
    NameKey("SEGS"),
    NameKey("SSECTORS"),
    NameKey("NODES"),
    NameKey("SECTORS"),
    NameKey("REJECT"),
    NameKey("BLOCKMAP"),
    NameKey("BEHAVIOR"),
    0,
    NameKey("GL_VERT"),
    NameKey("GL_SEGS"),
    NameKey("GL_SSECT"),
    NameKey("GL_NODES"),
    NameKey("GL_PVS"),
};

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

std::size_t NameLength(const LumpName& name)
{
    std::size_t length = 0;
    while (length < 8 && name.Chars[length] != '\0')
    {
        ++length;
    }
    return length;
}

} // namespace

int ReservedName(const LumpName& name)
{
    const std::size_t length = NameLength(name);
    const auto at = [&](std::size_t i) { return UpperAscii(name.Chars[i]); };
    if (name.StartsWith("E"))
    {
        return (length == 4 && at(2) == 'M' && IsDigit(at(1)) && IsDigit(at(3))) ? -1 : 0;
    }
    if (name.StartsWith("MAP"))
    {
        return (length == 5 && IsDigit(at(3)) && IsDigit(at(4))) ? -1 : 0;
    }
    // The whole names are tried before the bare GL_ prefix, so GL_PVS is 17 and only the
    // level's own GL marker (GL_MAP01, GL_LEVEL) comes out as 12.
    const std::uint64_t key = name.Key();
    for (std::size_t i = 1; i < ReservedKeys.size(); ++i)
    {
        if (ReservedKeys[i] != 0 && key == ReservedKeys[i])
        {
            return static_cast<int>(i);
        }
    }
    return name.StartsWith("GL_") ? 12 : 0;
}

LevelNameParts LevelNameKind(const LumpName& name)
{
    const std::size_t length = NameLength(name);
    const auto at = [&](std::size_t i) { return UpperAscii(name.Chars[i]); };
    if (length == 4 && at(0) == 'E' && IsDigit(at(1)) && at(2) == 'M' && IsDigit(at(3)))
    {
        return {EpisodeMapName, at(1) - '0', at(3) - '0'};
    }
    if (length == 5 && name.StartsWith("MAP") && IsDigit(at(3)) && IsDigit(at(4)))
    {
        return {MapNumberName, 1, (at(3) - '0') * 10 + (at(4) - '0')};
    }
    return {};
}

int LevelAt(std::span<const LumpEntry> entries, std::size_t index, std::size_t total, int& outCount)
{
    outCount = 1;
    total = std::min(total, entries.size());
    if (index + 3 > total || !entries[index + 1].Name.Is("THINGS"))
    {
        return 0;
    }
    const std::size_t remaining = std::min<std::size_t>(total - index - 1, 18);
    const auto nameAt = [&](std::size_t position) -> const LumpName&
    { return entries[index + 1 + position].Name; };

    int layout = map::LayoutDoom;
    bool thingsSeen = false;
    for (std::size_t position = 0; position < remaining; ++position)
    {
        const LumpName& name = nameAt(position);
        const bool last = position + 1 >= remaining;
        // An entry followed by THINGS, well into the walk, is the next level's marker.
        if (position > 9 && !last && nameAt(position + 1).Is("THINGS"))
        {
            break;
        }
        if (name.Is("BEHAVIOR"))
        {
            layout = map::LayoutHexen;
        }
        else if (name.Is("THINGS"))
        {
            if (thingsSeen)
            {
                break;
            }
            thingsSeen = true;
        }
        else if (layout == map::LayoutHexen && !name.StartsWith("GL_") && !last &&
                 name.StartsWith("SCRIPT"))
        {
            if (!nameAt(position + 1).StartsWith("GL_"))
            {
                break;
            }
        }
        else if (!name.StartsWith("GL_") && ReservedName(name) <= 0)
        {
            break;
        }
        ++outCount;
    }
    return layout;
}

std::optional<LevelSpan> FindLevelEntries(std::span<const LumpEntry> entries, const LumpName& name)
{
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        int count = 0;
        if (SameName(entries[i].Name, name) && LevelAt(entries, i, entries.size(), count) > 0)
        {
            return LevelSpan{i, i + static_cast<std::size_t>(count)};
        }
    }
    return std::nullopt;
}

int LevelSlot(const LumpName& name, bool isMarker)
{
    if (isMarker)
    {
        return 0;
    }
    // The slots of the level's lumps are their reserved numbers; SCRIPT lumps come last.
    const int reserved = ReservedName(name);
    if (reserved > 0)
    {
        return reserved;
    }
    return name.StartsWith("SCRIPT") ? 18 : -1;
}

} // namespace kelvar::wad
