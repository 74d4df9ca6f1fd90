// The merge buffers of an import: PNAMES and TEXTURE1 merged, translated, pruned and sorted.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/TextureMerge.h"

#include "platform/Format.h"
#include "wad/LumpName.h"
#include "wad/WadFormat.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <unordered_map>

namespace kelvar::lumps
{
namespace
{

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t NameSize = 8;

// Where a texture's record lies in a texture lump, and how much of it its head and patch
// entries fill.
struct RecordSpan
{
    std::size_t Offset = 0;
    std::size_t Size = 0;
};

std::int16_t Short(const std::uint8_t* bytes)
{
    return static_cast<std::int16_t>(wad::ReadLe16(bytes));
}

std::size_t TableEnd(std::int32_t count)
{
    return 4 + 4 * static_cast<std::size_t>(std::max(count, 0));
}

// The offset table entry of texture `index`.
std::int64_t OffsetOf(std::span<const std::uint8_t> lump, std::int32_t index)
{
    return wad::ReadLe32(lump.data() + 4 + 4 * static_cast<std::size_t>(index));
}

// The textures whose offsets the lump holds: its count when the offset table fits, else none,
// as no record of a lump whose table runs past its end can be read.
std::int32_t HeldRecords(std::span<const std::uint8_t> lump)
{
    const std::int32_t count = LumpCount(lump);
    return count > 0 && TableEnd(count) <= lump.size() ? count : 0;
}

// The record of texture `index`: its head and patch entries, which must lie inside the lump
// behind the offset table. Nothing for a record that doesn't.
std::optional<RecordSpan> RecordAt(std::span<const std::uint8_t> lump, std::int32_t index,
                                   const gfx::TextureLayout& layout)
{
    const std::int32_t count = LumpCount(lump);
    if (index < 0 || index >= count || TableEnd(count) > lump.size())
    {
        return std::nullopt;
    }
    const std::int64_t offset = OffsetOf(lump, index);
    const auto head = static_cast<std::int64_t>(layout.HeadSize);
    if (offset < static_cast<std::int64_t>(TableEnd(count)) ||
        offset + head > static_cast<std::int64_t>(lump.size()))
    {
        return std::nullopt;
    }
    const std::uint8_t* record = lump.data() + offset;
    const std::int64_t patches = std::max<std::int16_t>(
        Short(record + 2 * static_cast<std::size_t>(layout.PatchCountIndex)), 0);
    const std::int64_t size = head + patches * layout.PatchSize;
    if (offset + size > static_cast<std::int64_t>(lump.size()))
    {
        return std::nullopt;
    }
    return RecordSpan{static_cast<std::size_t>(offset), static_cast<std::size_t>(size)};
}

wad::LumpName NameAt(std::span<const std::uint8_t> lump, std::size_t offset)
{
    return wad::LumpName::FromBytes(lump.data() + offset);
}

// The index of the first texture named `name`, or -1.
std::int32_t FindTexture(std::span<const std::uint8_t> lump, const wad::LumpName& name,
                         const gfx::TextureLayout& layout)
{
    for (std::int32_t i = 0; i < HeldRecords(lump); ++i)
    {
        const std::optional<RecordSpan> record = RecordAt(lump, i, layout);
        if (record && wad::SameName(NameAt(lump, record->Offset), name))
        {
            return i;
        }
    }
    return -1;
}

// Appends one record: the offset table grows by one entry, so everything behind it moves up
// 4 bytes, and the record goes behind the last byte of the lump.
void AppendRecord(Bytes& lump, std::span<const std::uint8_t> record)
{
    if (lump.size() < 4 || HeldRecords(lump) != LumpCount(lump))
    {
        // A table that runs past the lump holds no record that can be read: start afresh.
        lump.assign(4, 0);
    }
    const std::int32_t count = LumpCount(lump);
    const std::size_t tableEnd = TableEnd(count);
    Bytes grown;
    grown.reserve(lump.size() + 4 + record.size());
    grown.resize(tableEnd + 4);
    wad::WriteLe32(grown.data(), count + 1);
    for (std::int32_t i = 0; i < count; ++i)
    {
        wad::WriteLe32(grown.data() + 4 + 4 * static_cast<std::size_t>(i),
                       static_cast<std::int32_t>(OffsetOf(lump, i) + 4));
    }
    wad::WriteLe32(grown.data() + tableEnd, static_cast<std::int32_t>(lump.size() + 4));
    grown.insert(grown.end(), lump.begin() + static_cast<std::ptrdiff_t>(tableEnd), lump.end());
    grown.insert(grown.end(), record.begin(), record.end());
    lump = std::move(grown);
}

// The first position of each name of a PNAMES buffer, by its search key.
std::unordered_map<std::uint64_t, std::int32_t> PnamesIndex(std::span<const std::uint8_t> pnames)
{
    std::unordered_map<std::uint64_t, std::int32_t> index;
    const std::int32_t count = LumpCount(pnames);
    for (std::int32_t i = 0;
         i < count && TableEnd(0) + NameSize * (static_cast<std::size_t>(i) + 1) <= pnames.size();
         ++i)
    {
        index.emplace(NameAt(pnames, 4 + NameSize * static_cast<std::size_t>(i)).Key(), i);
    }
    return index;
}

// Walks the patch entries of every texture: `visit(texture name, patch count, index bytes)`
// returns true for an entry in error. Logs each texture with errors; returns their number.
template <typename Visit>
int ForEachPatch(MergeBuffers& buffers, std::span<std::uint8_t> lump, Visit visit)
{
    const gfx::TextureLayout& layout = buffers.Layout;
    int bad = 0;
    for (std::int32_t i = 0; i < HeldRecords(lump); ++i)
    {
        const std::optional<RecordSpan> record = RecordAt(lump, i, layout);
        if (!record)
        {
            continue;
        }
        const std::int16_t patches = Short(lump.data() + record->Offset +
                                           2 * static_cast<std::size_t>(layout.PatchCountIndex));
        int errors = 0;
        for (std::int16_t p = 0; p < patches; ++p)
        {
            std::uint8_t* entry =
                lump.data() + record->Offset + static_cast<std::size_t>(layout.HeadSize) +
                static_cast<std::size_t>(p) * static_cast<std::size_t>(layout.PatchSize);
            errors += visit(entry + 4) ? 1 : 0;
        }
        if (errors > 0)
        {
            buffers.Log.push_back(
                platform::Format("Texture %8.8s patchcount=%d invalid patch count=%d",
                                 NameAt(lump, record->Offset).Text().c_str(), patches, errors));
            ++bad;
        }
    }
    buffers.BadTextures += bad;
    return bad;
}

} // namespace

bool PnamesLumpFits(std::span<const std::uint8_t> lump)
{
    const std::int32_t count = LumpCount(lump);
    return count > 0 &&
           4 + static_cast<std::int64_t>(count) * 8 <= static_cast<std::int64_t>(lump.size());
}

std::int32_t LumpCount(std::span<const std::uint8_t> lump)
{
    return lump.size() < 4 ? 0 : wad::ReadLe32(lump.data());
}

void MergePnames(MergeBuffers& buffers, std::span<const std::uint8_t> source)
{
    const std::int32_t sourceCount = std::max(LumpCount(source), 0);
    if (buffers.Pnames.empty())
    {
        buffers.Pnames.assign(source.begin(), source.end());
        const std::int64_t expected = static_cast<std::int64_t>(sourceCount) * 8 + 4;
        if (static_cast<std::int64_t>(source.size()) != expected)
        {
            buffers.Log.push_back(
                platform::Format("PNAMES size error\n\ndata size=%d, should be %d",
                                 static_cast<int>(source.size()), static_cast<int>(expected)));
        }
        return;
    }
    std::unordered_map<std::uint64_t, std::int32_t> present = PnamesIndex(buffers.Pnames);
    Bytes& pnames = buffers.Pnames;
    // A damaged count is believed only as far as the buffer holds names: it never grows the
    // buffer to a size its header made up.
    const std::size_t held = pnames.size() >= 4 ? (pnames.size() - 4) / NameSize : 0;
    std::int32_t count = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(LumpCount(pnames), 0, static_cast<std::int64_t>(held)));
    pnames.resize(4 + NameSize * static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < sourceCount; ++i)
    {
        const std::size_t at = 4 + NameSize * static_cast<std::size_t>(i);
        if (at + NameSize > source.size())
        {
            break;
        }
        const wad::LumpName name = NameAt(source, at);
        if (present.emplace(name.Key(), count).second)
        {
            pnames.insert(pnames.end(), source.begin() + static_cast<std::ptrdiff_t>(at),
                          source.begin() + static_cast<std::ptrdiff_t>(at + NameSize));
            ++count;
        }
    }
    wad::WriteLe32(pnames.data(), count);
}

int RemapTexturePatches(MergeBuffers& buffers, std::string_view tag, Bytes& textures,
                        std::span<const std::uint8_t> sourcePnames)
{
    buffers.Log.push_back(platform::Format("%.*s: patch indexes to the merged PNAMES",
                                           static_cast<int>(tag.size()), tag.data()));
    const std::int32_t sourceCount = PnamesLumpFits(sourcePnames) ? LumpCount(sourcePnames) : 0;
    const std::unordered_map<std::uint64_t, std::int32_t> merged = PnamesIndex(buffers.Pnames);
    return ForEachPatch(buffers, textures,
                        [&](std::uint8_t* indexBytes)
                        {
                            const std::int16_t index = Short(indexBytes);
                            if (index < 0 || index >= sourceCount)
                            {
                                return true;
                            }
                            const wad::LumpName name = NameAt(
                                sourcePnames, 4 + NameSize * static_cast<std::size_t>(index));
                            const auto found = merged.find(name.Key());
                            if (found == merged.end() || found->second > INT16_MAX)
                            {
                                return true;
                            }
                            wad::WriteLe16(indexBytes, static_cast<std::uint16_t>(found->second));
                            return false;
                        });
}

void MergeTextures(MergeBuffers& buffers, std::string_view tag,
                   std::span<const std::uint8_t> source)
{
    const gfx::TextureLayout& layout = buffers.Layout;
    buffers.Log.push_back(platform::Format("%.*s: %d textures", static_cast<int>(tag.size()),
                                           tag.data(), static_cast<int>(LumpCount(source))));
    if (buffers.Textures.empty())
    {
        buffers.Textures.assign(source.begin(), source.end());
        return;
    }
    const wad::LumpName dummy = wad::LumpName::From(DummyTextureName);
    for (std::int32_t i = 0; i < HeldRecords(source); ++i)
    {
        const std::optional<RecordSpan> record = RecordAt(source, i, layout);
        if (!record)
        {
            continue;
        }
        const std::span<const std::uint8_t> bytes = source.subspan(record->Offset, record->Size);
        const wad::LumpName name = NameAt(source, record->Offset);
        if (wad::SameName(name, dummy))
        {
            continue;
        }
        const std::int32_t found = FindTexture(buffers.Textures, name, layout);
        const std::optional<RecordSpan> old =
            found < 0 ? std::nullopt : RecordAt(buffers.Textures, found, layout);
        if (!old)
        {
            ++buffers.Add;
            buffers.Log.push_back("added " + name.Text());
            AppendRecord(buffers.Textures, bytes);
            continue;
        }
        std::uint8_t* oldBytes = buffers.Textures.data() + old->Offset;
        if (old->Size == bytes.size() && std::equal(bytes.begin(), bytes.end(), oldBytes))
        {
            ++buffers.Dup;
            continue;
        }
        ++buffers.Rep;
        if (old->Size == bytes.size())
        {
            std::copy(bytes.begin(), bytes.end(), oldBytes);
            continue;
        }
        DeleteTextureEntry(buffers, tag, name.Text(), buffers.Textures);
        AppendRecord(buffers.Textures, bytes);
    }
}

int DeleteTextureEntry(MergeBuffers& buffers, std::string_view /*tag*/, std::string_view name,
                       Bytes& buffer)
{
    const std::int32_t index = FindTexture(buffer, wad::LumpName::From(name), buffers.Layout);
    if (index < 0)
    {
        return 0;
    }
    const std::int32_t count = LumpCount(buffer);
    const std::int64_t offset = OffsetOf(buffer, index);
    const std::int64_t byIndex =
        index + 1 < count ? OffsetOf(buffer, index + 1) : static_cast<std::int64_t>(buffer.size());
    if (byIndex - offset < 0)
    {
        buffers.Log.push_back("TEXTURE control invalid?\n");
    }
    // The record, with any spare bytes behind it, runs to the next record in the lump, which
    // is the next by index only when the records stand in order.
    std::int64_t next = static_cast<std::int64_t>(buffer.size());
    for (std::int32_t i = 0; i < count; ++i)
    {
        const std::int64_t other = OffsetOf(buffer, i);
        if (other > offset && other < next)
        {
            next = other;
        }
    }
    const std::int64_t size = next - offset;
    Bytes shrunk;
    shrunk.reserve(buffer.size() - 4 - static_cast<std::size_t>(size));
    shrunk.resize(TableEnd(count - 1));
    wad::WriteLe32(shrunk.data(), count - 1);
    std::size_t slot = 0;
    for (std::int32_t i = 0; i < count; ++i)
    {
        if (i == index)
        {
            continue;
        }
        const std::int64_t other = OffsetOf(buffer, i);
        const std::int64_t moved = other - 4 - (other > offset ? size : 0);
        wad::WriteLe32(shrunk.data() + 4 + 4 * slot++, static_cast<std::int32_t>(moved));
    }
    const auto begin = buffer.begin();
    shrunk.insert(shrunk.end(), begin + static_cast<std::ptrdiff_t>(TableEnd(count)),
                  begin + static_cast<std::ptrdiff_t>(offset));
    shrunk.insert(shrunk.end(), begin + static_cast<std::ptrdiff_t>(offset + size), buffer.end());
    buffer = std::move(shrunk);
    return 1;
}

void SortTextureBuffer(MergeBuffers& buffers, Bytes& buffer)
{
    std::vector<RecordSpan> records;
    for (std::int32_t i = 0; i < HeldRecords(buffer); ++i)
    {
        if (const std::optional<RecordSpan> record = RecordAt(buffer, i, buffers.Layout))
        {
            records.push_back(*record);
        }
    }
    std::stable_sort(records.begin(), records.end(),
                     [&](const RecordSpan& a, const RecordSpan& b)
                     {
                         return wad::UpperText(NameAt(buffer, a.Offset).Text()) <
                                wad::UpperText(NameAt(buffer, b.Offset).Text());
                     });
    const auto count = static_cast<std::int32_t>(records.size());
    Bytes sorted(TableEnd(count));
    wad::WriteLe32(sorted.data(), count);
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        wad::WriteLe32(sorted.data() + 4 + 4 * i, static_cast<std::int32_t>(sorted.size()));
        const auto from = buffer.begin() + static_cast<std::ptrdiff_t>(records[i].Offset);
        sorted.insert(sorted.end(), from, from + static_cast<std::ptrdiff_t>(records[i].Size));
    }
    if (sorted.size() != buffer.size())
    {
        buffers.Log.push_back(platform::Format(
            "    *** After TEXTUREx sort **TEXTURE Lump size Change\nTEXTURE Lump size was=%d and "
            "size now=%d\nMost likely TEXTUREx lumps imported had empty space",
            static_cast<int>(buffer.size()), static_cast<int>(sorted.size())));
    }
    buffer = std::move(sorted);
}

Bytes MakeDummyTexture2(const gfx::TextureLayout& layout)
{
    const auto head = static_cast<std::size_t>(layout.HeadSize);
    Bytes lump(8 + head + static_cast<std::size_t>(layout.PatchSize), 0);
    wad::WriteLe32(lump.data(), 1);
    wad::WriteLe32(lump.data() + 4, 8);
    std::memcpy(lump.data() + 8, DummyTextureName.data(), NameSize);
    wad::WriteLe16(lump.data() + 8 + 2 * static_cast<std::size_t>(layout.PatchCountIndex), 1);
    wad::WriteLe16(lump.data() + 8 + head + 4, 1);
    return lump;
}

std::vector<std::string> TextureNames(std::span<const std::uint8_t> buffer,
                                      const gfx::TextureLayout& layout)
{
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < HeldRecords(buffer); ++i)
    {
        if (const std::optional<RecordSpan> record = RecordAt(buffer, i, layout))
        {
            names.push_back(NameAt(buffer, record->Offset).Text());
        }
    }
    return names;
}

int CheckMergedPatches(MergeBuffers& buffers)
{
    const std::int32_t count = PnamesLumpFits(buffers.Pnames) ? LumpCount(buffers.Pnames) : 0;
    return ForEachPatch(buffers, buffers.Textures,
                        [count](std::uint8_t* indexBytes)
                        {
                            const std::int16_t index = Short(indexBytes);
                            return index < 0 || index >= count;
                        });
}

} // namespace kelvar::lumps
