// One growable array of a level's records, kept in blocks shared between copies of the level
// until one of them writes: a copy of a level (an undo step, the clipboard) costs a few
// pointers per thousand records, and an edit copies only the blocks it touches.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Reading through a const array never copies. Writing through a non-const one (operator[],
//   back(), a non-const iterator's element) first makes the block its own when another copy
//   shares it. Code that only reads should read through a const reference.
// - `Capacity` is the number of records the level counts as allocated: it grows by the steps
//   of the kind, as the store's rules say, while the blocks follow the count.
// - The program has one thread; the sharing needs no locking beyond what shared_ptr does.
// - `Stamp` names the content: every write takes a new number from a counter shared by all
//   arrays of the record type, and a copy keeps its source's. Caches built from an array (the
//   spatial index) keep the stamp they saw and are stale when it differs. A write is counted when
//   the reference is taken, so a reference must not be kept across a cache's use.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <vector>

namespace kelvar::map
{

template <typename Record> class ObjectArray
{
public:
    /// Records of a block: large enough that a copy of a big level is a short list of
    /// pointers, small enough that an edit copies little.
    static constexpr std::size_t BlockRecords = 1024;

    /// The records counted as allocated.
    std::int32_t Capacity = 0;

    std::int32_t Count() const { return static_cast<std::int32_t>(Size); }
    /// The number of the content: changes with every write, travels with copies.
    std::uint64_t Stamp() const { return ContentStamp; }
    std::size_t size() const { return Size; }
    bool empty() const { return Size == 0; }

    /// Sets the capacity the level counts; the blocks follow the count.
    void Reserve(std::int32_t capacity) { Capacity = capacity; }

    const Record& operator[](std::size_t index) const
    {
        return (*Blocks[index / BlockRecords])[index % BlockRecords];
    }
    Record& operator[](std::size_t index)
    {
        return (*Own(index / BlockRecords))[index % BlockRecords];
    }
    const Record& back() const { return (*this)[Size - 1]; }
    Record& back() { return (*this)[Size - 1]; }

    /// Appends a record.
    void push_back(const Record& record)
    {
        if (Size % BlockRecords == 0)
        {
            Blocks.push_back(std::make_shared<Block>());
        }
        ++Size;
        back() = record;
    }
    /// Appends a default record.
    void emplace_back() { push_back(Record{}); }
    /// Drops the last record.
    void pop_back()
    {
        Touch();
        --Size;
        if (Size % BlockRecords == 0)
        {
            Blocks.pop_back();
        }
    }
    /// Makes the count `count`, new records default. Growth goes a block at a time.
    void resize(std::size_t count)
    {
        while (Size > count)
        {
            pop_back();
        }
        while (Size < count)
        {
            const std::size_t offset = Size % BlockRecords;
            const std::size_t added = std::min(count - Size, BlockRecords - offset);
            Touch();
            if (offset == 0)
            {
                Blocks.push_back(std::make_shared<Block>()); // records made default
            }
            else
            {
                // Records a pop left behind in the last block are made default again.
                Block* block = Own(Blocks.size() - 1);
                std::fill(block->begin() + static_cast<std::ptrdiff_t>(offset),
                          block->begin() + static_cast<std::ptrdiff_t>(offset + added), Record{});
            }
            Size += added;
        }
    }
    void clear()
    {
        Touch();
        Blocks.clear();
        Size = 0;
    }
    /// Removes the record at `index`; the later ones move down one place, a block at a time.
    void erase(std::size_t index)
    {
        const std::size_t last = (Size - 1) / BlockRecords;
        std::size_t at = index / BlockRecords;
        std::size_t from = index % BlockRecords;
        Block* block = Own(at);
        for (;;)
        {
            const std::size_t end = at == last ? (Size - 1) % BlockRecords + 1 : BlockRecords;
            std::move(block->begin() + static_cast<std::ptrdiff_t>(from + 1),
                      block->begin() + static_cast<std::ptrdiff_t>(end),
                      block->begin() + static_cast<std::ptrdiff_t>(from));
            if (at == last)
            {
                break;
            }
            Block* next = Own(at + 1);
            (*block)[BlockRecords - 1] = (*next)[0];
            block = next;
            ++at;
            from = 0;
        }
        pop_back();
    }
    /// Keeps the first `count` records, for a compaction that moved the kept ones down.
    void truncate(std::size_t count) { resize(std::min(count, Size)); }

    /// The records as one plain vector, for code that wants them contiguous.
    std::vector<Record> ToVector() const { return std::vector<Record>(begin(), end()); }
    /// Replaces the records with `records`.
    void Assign(const std::vector<Record>& records)
    {
        clear();
        for (std::size_t from = 0; from < records.size(); from += BlockRecords)
        {
            auto block = std::make_shared<Block>();
            const std::size_t count = std::min(BlockRecords, records.size() - from);
            std::copy_n(records.begin() + static_cast<std::ptrdiff_t>(from), count, block->begin());
            Blocks.push_back(std::move(block));
        }
        Size = records.size();
    }

    /// Iterators by position: a const one reads, a non-const one makes the element's block
    /// its own when it is dereferenced.
    template <bool Writing> class Iterator
    {
    public:
        using Array = std::conditional_t<Writing, ObjectArray, const ObjectArray>;
        using iterator_category = std::random_access_iterator_tag;
        using value_type = Record;
        using difference_type = std::ptrdiff_t;
        using pointer = std::conditional_t<Writing, Record*, const Record*>;
        using reference = std::conditional_t<Writing, Record&, const Record&>;

        Iterator() = default;
        Iterator(Array* array, std::size_t index) : Owner(array), Index(index) {}

        reference operator*() const { return (*Owner)[Index]; }
        pointer operator->() const { return &(*Owner)[Index]; }
        reference operator[](difference_type n) const
        {
            return (*Owner)[static_cast<std::size_t>(static_cast<difference_type>(Index) + n)];
        }
        Iterator& operator++()
        {
            ++Index;
            return *this;
        }
        Iterator operator++(int)
        {
            Iterator old = *this;
            ++Index;
            return old;
        }
        Iterator& operator--()
        {
            --Index;
            return *this;
        }
        Iterator operator--(int)
        {
            Iterator old = *this;
            --Index;
            return old;
        }
        Iterator& operator+=(difference_type n)
        {
            Index = static_cast<std::size_t>(static_cast<difference_type>(Index) + n);
            return *this;
        }
        Iterator& operator-=(difference_type n) { return *this += -n; }
        friend Iterator operator+(Iterator it, difference_type n) { return it += n; }
        friend Iterator operator+(difference_type n, Iterator it) { return it += n; }
        friend Iterator operator-(Iterator it, difference_type n) { return it -= n; }
        friend difference_type operator-(const Iterator& a, const Iterator& b)
        {
            return static_cast<difference_type>(a.Index) - static_cast<difference_type>(b.Index);
        }
        friend bool operator==(const Iterator& a, const Iterator& b) { return a.Index == b.Index; }
        friend auto operator<=>(const Iterator& a, const Iterator& b)
        {
            return a.Index <=> b.Index;
        }

    private:
        Array* Owner = nullptr;
        std::size_t Index = 0;
    };

    using iterator = Iterator<true>;
    using const_iterator = Iterator<false>;

    iterator begin() { return iterator(this, 0); }
    iterator end() { return iterator(this, Size); }
    const_iterator begin() const { return const_iterator(this, 0); }
    const_iterator end() const { return const_iterator(this, Size); }

    /// Records equal in count and content; the capacity and the sharing don't count.
    bool operator==(const ObjectArray& other) const
    {
        return Size == other.Size && std::equal(begin(), end(), other.begin());
    }

    /// The blocks this array shares with another copy, for tests and measurements.
    std::size_t SharedBlocks() const
    {
        return static_cast<std::size_t>(std::count_if(
            Blocks.begin(), Blocks.end(), [](const auto& block) { return block.use_count() > 1; }));
    }
    /// The number of blocks.
    std::size_t BlockCount() const { return Blocks.size(); }

private:
    using Block = std::array<Record, BlockRecords>;

    // The block, made this array's own first when another copy shares it.
    Block* Own(std::size_t block)
    {
        Touch();
        std::shared_ptr<Block>& pointer = Blocks[block];
        if (pointer.use_count() > 1)
        {
            pointer = std::make_shared<Block>(*pointer);
        }
        return pointer.get();
    }

    // A new content number, from the counter shared by every array of this record type.
    void Touch()
    {
        static std::uint64_t counter = 0;
        ContentStamp = ++counter;
    }

    std::vector<std::shared_ptr<Block>> Blocks;
    std::size_t Size = 0;
    std::uint64_t ContentStamp = 0;
};

} // namespace kelvar::map
