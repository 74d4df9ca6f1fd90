// The lump directory in memory: LumpEntry records with a name index, and the level tests.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A directory is an array of LumpEntry in file (or merge) order. Searches by name go
//   through an index beside the array: a hash table from name to the first and last entry of
//   that name, and for each entry the next one of the same name. "The newest entry of a
//   name" is then one lookup, and "the first entry of a name from position p on" a walk of
//   that name's entries only, never of the tens of thousands of others. The order rules of
//   the searches stay those of a walk: the newest definition is the one at the highest
//   position.
// - The index follows every change made through LumpDirectory's own operations. Fields other
//   than Name may be changed in place through Edit(); a name changes only through Rename().
// - A directory builds its index on the first search, so a PWAD's own directory that nobody
//   searches never pays for one.
#pragma once

#include "wad/LumpName.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace kelvar::wad
{

/// One entry of a lump directory in memory.
struct LumpEntry
{
    std::int32_t Offset = 0;      // as on disk
    std::int32_t Size = 0;        // as on disk
    LumpName Name;                // as on disk, markers and GL level markers rewritten
    std::uint32_t CachedData = 0; // handle of the lump's data held in memory; 0 none
    std::uint16_t Kind = 0;       // LumpKind tag, set by the picture readers
    std::int16_t FileNumber = 0;  // file table index of the file holding the data; 0 the IWAD
    std::int32_t Ordinal = 0;     // own index in the master directory, renumbered after merges
    std::uint16_t ClassCode = 0;  // 0 unclassified, 2 picture lump
    std::uint16_t LumpGroup = 0;  // 0 none, 1 TX texture, 3 patch, 5 sprite, 6 level script

    bool operator==(const LumpEntry&) const = default;
};

/// LumpGroup values.
inline constexpr std::uint16_t GroupTexture = 1;
inline constexpr std::uint16_t GroupPatch = 3;
inline constexpr std::uint16_t GroupSprite = 5;
inline constexpr std::uint16_t GroupScript = 6;
/// ClassCode of a picture lump.
inline constexpr std::uint16_t ClassPicture = 2;

/// An array of LumpEntry with a name index. See the design notes above.
class LumpDirectory
{
public:
    std::size_t Size() const { return Items.size(); }
    bool Empty() const { return Items.empty(); }
    const LumpEntry& operator[](std::size_t index) const { return Items[index]; }
    std::span<const LumpEntry> Entries() const { return Items; }

    /// Mutable access to an entry for every field but Name.
    LumpEntry& Edit(std::size_t index)
    {
        Touch();
        return Items[index];
    }

    /// Gives an entry its picture class and group: a note about the entry, not a change of
    /// the directory, so the stamp stays.
    void Tag(std::size_t index, std::uint16_t classCode, std::uint16_t group)
    {
        Items[index].ClassCode = classCode;
        Items[index].LumpGroup = group;
    }

    /// Keeps the LumpKind that classification found for an entry; a note, like Tag.
    void SetKind(std::size_t index, std::uint16_t kind) { Items[index].Kind = kind; }

    /// A number that changes with every change of the entries, so that what is built from
    /// them (the texture lumps, the name lists) knows when to build again. Never 0 once the
    /// directory has been changed.
    std::uint64_t Stamp() const { return Stamp_; }

    void Reserve(std::size_t count) { Items.reserve(count); }
    /// Takes `entries` as the whole directory.
    void Assign(std::vector<LumpEntry>&& entries);
    void Append(const LumpEntry& entry);
    void Rename(std::size_t index, const LumpName& name);
    /// Replaces entries [first, last) with `entries`; later entries move.
    void ReplaceRange(std::size_t first, std::size_t last, std::span<const LumpEntry> entries);
    /// Drops every entry.
    void Clear();

    /// Position of the newest entry named `name` in [begin, end), or -1.
    int FindLast(const LumpName& name, std::size_t begin, std::size_t end) const;
    /// Position of the oldest entry named `name` in [begin, end), or -1.
    int FindFirst(const LumpName& name, std::size_t begin, std::size_t end) const;
    /// Positions of all entries named `name`, oldest first.
    std::vector<std::int32_t> Positions(const LumpName& name) const;
    /// Calls `visit(position)` for each entry named `name`, oldest first, until it returns
    /// false.
    template <typename Visit> void ForEachPosition(const LumpName& name, Visit visit) const
    {
        for (std::int32_t at = Head(name.Key()); at >= 0; at = Next[static_cast<std::size_t>(at)])
        {
            if (!visit(at))
            {
                return;
            }
        }
    }

    /// True when the index agrees with the entries (for tests).
    bool IndexConsistent() const;

private:
    // One name of the hash table: its key, and its first and last entry (-1: none left).
    struct Chain
    {
        std::uint64_t Key = 0;
        std::int32_t First = -2; // -2: the slot is empty
        std::int32_t Last = -1;
    };

    void Touch();
    void EnsureIndex() const;
    std::int32_t Head(std::uint64_t key) const;
    Chain& ChainOf(std::uint64_t key) const;
    void Link(std::size_t index) const;
    void Unlink(std::size_t index);
    void Grow() const;

    std::vector<LumpEntry> Items;
    mutable std::vector<Chain> Table; // open addressing, a power of two long
    mutable std::vector<std::int32_t> Next;
    mutable std::size_t Names = 0;
    mutable bool Indexed = false;
    std::uint64_t Stamp_ = 0;
};

/// Where a name stands among the reserved names: -1 a level name (ExMy or MAPxy), 0 none,
/// 1 THINGS to 11 BEHAVIOR, 12 any GL_ name other than the five below, 13 GL_VERT to
/// 16 GL_NODES, 17 GL_PVS.
int ReservedName(const LumpName& name);

/// The two styles of level name.
enum LevelNameStyle : int
{
    NotALevelName = 0,
    EpisodeMapName = 1, // ExMy
    MapNumberName = 2,  // MAPxy, of episode 1
};

/// What a level name says.
struct LevelNameParts
{
    int Kind = NotALevelName; // a LevelNameStyle
    int Episode = 0;
    int Map = 0;
};

/// Reads a level name as ExMy or MAPxy.
LevelNameParts LevelNameKind(const LumpName& name);

/// Is there a level at entry `index` of a directory whose searched part has `total` entries?
/// Returns 0 no, 1 Doom layout, 2 Hexen layout; `outCount` gets the number of entries of the
/// level, its marker included (1 when there is none).
int LevelAt(std::span<const LumpEntry> entries, std::size_t index, std::size_t total,
            int& outCount);

/// Where a level stands in a directory: its marker's entry and the entry past its last lump.
struct LevelSpan
{
    std::size_t Marker = 0;
    std::size_t End = 0;
};

/// The first level named `name` (case ignored) in `entries`, as LevelAt finds levels; nothing
/// when there is none.
std::optional<LevelSpan> FindLevelEntries(std::span<const LumpEntry> entries, const LumpName& name);

/// The slot of a level lump in the canonical order: 0 the marker, 1 THINGS ... 10 BLOCKMAP,
/// 11 BEHAVIOR, 12 the GL_ marker, 13 GL_VERT ... 17 GL_PVS, 18 a SCRIPT lump; -1 for a name
/// that has no place in a level.
int LevelSlot(const LumpName& name, bool isMarker);

} // namespace kelvar::wad
