// PNAMES and TEXTUREx: reading the lumps with their checks, texture lookup, the size audit.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/TextureLumps.h"

#include "platform/Messages.h"
#include "wad/FindLump.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <utility>

namespace kelvar::gfx
{
namespace
{

std::int16_t Short(const std::uint8_t* bytes)
{
    return static_cast<std::int16_t>(wad::ReadLe16(bytes));
}

// The newest lump of that name in the master directory, or -1.
int NewestLump(std::string_view name, bool fatal)
{
    return wad::FindLump(wad::Wad().Files[0], name, fatal);
}

int FileOf(int entry)
{
    return entry < 0 ? 0 : wad::Master()[static_cast<std::size_t>(entry)].FileNumber;
}

// True when the name stands in the TX or HI marker run: such a texture is a picture of its
// own, and beats a TEXTUREx entry of the same name.
bool InTextureRun(const wad::LumpName& name)
{
    const wad::MarkerRanges& markers = wad::Wad().Markers;
    const wad::LumpDirectory& master = wad::Master();
    for (const wad::MarkerRun& run : {markers.Tx, markers.Hi})
    {
        for (int i = run.First; run.Start >= 0 && i < run.First + run.Count; ++i)
        {
            if (i >= 0 && static_cast<std::size_t>(i) < master.Size() &&
                wad::SameName(master[static_cast<std::size_t>(i)].Name, name))
            {
                return true;
            }
        }
    }
    return false;
}

// Drops what was read from a master directory that has changed since.
TextureLumpsState& CurrentLumps()
{
    TextureLumpsState& state = TextureLumps();
    const std::uint64_t stamp = wad::Master().Stamp();
    if (state.DirectoryStamp != stamp)
    {
        state = {};
        state.DirectoryStamp = stamp;
    }
    return state;
}

} // namespace

TextureLayout CurrentTextureLayout()
{
    const wad::GameIdentity& game = wad::Wad().Game;
    return {game.TextureHeadSize, game.TexturePatchSize, game.TexturePatchCountIndex};
}

PatchNames ReadPatchNames(std::span<const std::uint8_t> lump)
{
    PatchNames names;
    const auto size = static_cast<int>(lump.size());
    if (size <= 8)
    {
        platform::ShowError("PNAMES entry size is=%d ?", size);
        return names;
    }
    const std::int32_t count = wad::ReadLe32(lump.data());
    if (count <= 0)
    {
        platform::ShowError("PNAMES count %d is <= 0 ?\nall files reset", count);
        names.Damaged = true;
        return names;
    }
    if (static_cast<std::int64_t>(count) * 8 > size)
    {
        platform::ShowError("PNAMES count is corrupt:?\nLumpsize=%d count=%d\nall files reset",
                            size, count);
        names.Damaged = true;
        return names;
    }
    names.Names.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i)
    {
        const std::size_t at = 4 + static_cast<std::size_t>(i) * 8;
        if (at + 8 > lump.size())
        {
            platform::ShowError("PnameCount=%d, filesize=%d Corrupted data\nAll files Closed",
                                count, size);
            names.Damaged = true;
            break;
        }
        names.Names.push_back(wad::LumpName::FromBytes(lump.data() + at));
    }
    return names;
}

TextureLump::TextureLump(std::vector<std::uint8_t> bytes, int number, int file,
                         TextureLayout layout)
    : Bytes(std::move(bytes)), Layout(layout), Number(number), File_(file)
{
    const auto size = static_cast<int>(Bytes.size());
    if (size <= 12)
    {
        platform::ShowError("TEXTURE%d size is=%d ?", Number, size);
        return;
    }
    const std::int32_t count = wad::ReadLe32(Bytes.data());
    if (count <= 0)
    {
        platform::ShowError("TEXTURE%d count %d is <= 0 ?", Number, count);
        return;
    }
    // A count the offset table can't hold is cut to what it holds; the records say the rest.
    Count_ = static_cast<int>(std::min<std::int64_t>(count, (size - 4) / 4));
}

std::optional<std::size_t> TextureLump::RecordOffset(int index) const
{
    if (index < 0 || index >= Count_)
    {
        return std::nullopt;
    }
    const std::int32_t offset =
        wad::ReadLe32(Bytes.data() + 4 + 4 * static_cast<std::size_t>(index));
    if (offset < 0 ||
        static_cast<std::size_t>(offset) + static_cast<std::size_t>(Layout.HeadSize) > Bytes.size())
    {
        return std::nullopt;
    }
    return static_cast<std::size_t>(offset);
}

std::optional<TextureRecord> TextureLump::Record(int index) const
{
    const std::optional<std::size_t> at = RecordOffset(index);
    if (!at)
    {
        return std::nullopt;
    }
    const std::uint8_t* head = Bytes.data() + *at;
    TextureRecord record;
    record.Name = wad::LumpName::FromBytes(head);
    record.Flags = wad::ReadLe16(head + 8);
    record.XScale = head[10] == 0 ? 8 : head[10];
    record.YScale = head[11] == 0 ? 8 : head[11];
    record.Width = Short(head + 12);
    record.Height = Short(head + 14);
    record.PatchCount = Short(head + 2 * static_cast<std::size_t>(Layout.PatchCountIndex));
    record.Lump = Number;
    record.File = File_;
    record.Offset = *at;
    return record;
}

std::vector<TexturePatch> TextureLump::Patches(int index) const
{
    const std::optional<TextureRecord> record = Record(index);
    return record ? Patches(*record) : std::vector<TexturePatch>();
}

std::vector<TexturePatch> TextureLump::Patches(const TextureRecord& record) const
{
    std::vector<TexturePatch> patches;
    for (int i = 0; i < record.PatchCount; ++i)
    {
        const std::size_t at =
            record.Offset + static_cast<std::size_t>(Layout.HeadSize) +
            static_cast<std::size_t>(i) * static_cast<std::size_t>(Layout.PatchSize);
        if (at + 6 > Bytes.size())
        {
            break;
        }
        patches.push_back({Short(&Bytes[at]), Short(&Bytes[at + 2]), Short(&Bytes[at + 4])});
    }
    return patches;
}

std::optional<TextureRecord> TextureLump::Find(const wad::LumpName& name) const
{
    for (int i = 0; i < Count_; ++i)
    {
        const std::optional<std::size_t> at = RecordOffset(i);
        if (at && wad::SameName(wad::LumpName::FromBytes(Bytes.data() + *at), name))
        {
            return Record(i);
        }
    }
    return std::nullopt;
}

TextureLumpsState& TextureLumps()
{
    static TextureLumpsState state;
    return state;
}

void LoadPnames()
{
    TextureLumpsState& state = CurrentLumps();
    if (!state.Pnames)
    {
        state.Pnames = ReadPatchNames(wad::ReadLumpBytes(NewestLump("PNAMES", true)));
    }
}

void LoadTextureLumps()
{
    TextureLumpsState& state = CurrentLumps();
    const TextureLayout layout = CurrentTextureLayout();
    if (!state.Texture1)
    {
        const int entry = NewestLump("TEXTURE1", true);
        state.Texture1.emplace(wad::ReadLumpBytes(entry), 1, FileOf(entry), layout);
    }
    if (!state.Texture2)
    {
        const int entry = NewestLump("TEXTURE2", false);
        state.Texture2 = entry < 0
                             ? TextureLump()
                             : TextureLump(wad::ReadLumpBytes(entry), 2, FileOf(entry), layout);
    }
}

void FreePnames()
{
    TextureLumps().Pnames.reset();
}

void FreeTexture1(int file)
{
    std::optional<TextureLump>& lump = TextureLumps().Texture1;
    if (lump && (file < 0 || lump->File() == file))
    {
        lump.reset();
    }
}

void FreeTexture2(int file)
{
    std::optional<TextureLump>& lump = TextureLumps().Texture2;
    if (lump && (file < 0 || lump->File() == file))
    {
        lump.reset();
    }
}

std::optional<TextureRecord> LookupTexture(std::string_view name)
{
    if (name.empty() || name.front() == '-')
    {
        return std::nullopt;
    }
    LoadTextureLumps();
    const wad::LumpName key = wad::LumpName::From(name);
    if (InTextureRun(key))
    {
        return std::nullopt;
    }
    const TextureLumpsState& state = TextureLumps();
    for (const std::optional<TextureLump>* lump : {&state.Texture1, &state.Texture2})
    {
        if (*lump)
        {
            if (std::optional<TextureRecord> found = (*lump)->Find(key))
            {
                return found;
            }
        }
    }
    return std::nullopt;
}

bool CheckTextureLump(std::span<const std::uint8_t> lump, TextureLayout layout)
{
    if (lump.size() < 28)
    {
        return false;
    }
    const auto size = static_cast<std::int64_t>(lump.size());
    const std::int32_t count = wad::ReadLe32(lump.data());
    if (count <= 0 || 4 + static_cast<std::int64_t>(count) * 4 > size)
    {
        return false;
    }
    std::int64_t expected = static_cast<std::int64_t>(count) * 4 + 4;
    for (std::int32_t i = 0; i < count; ++i)
    {
        const std::int64_t offset =
            wad::ReadLe32(lump.data() + 4 + 4 * static_cast<std::size_t>(i));
        if (offset < 0 || offset + layout.HeadSize > size)
        {
            return false;
        }
        const std::uint8_t* head = lump.data() + offset;
        const std::int64_t patches =
            Short(head + 2 * static_cast<std::size_t>(layout.PatchCountIndex));
        const std::int64_t needed = layout.HeadSize + patches * layout.PatchSize;
        expected += needed;
        const std::int64_t next =
            i + 1 < count ? wad::ReadLe32(lump.data() + 8 + 4 * static_cast<std::size_t>(i)) : size;
        const std::int64_t measured = next - offset;
        if (measured != needed)
        {
            const wad::LumpName name = wad::LumpName::FromBytes(head);
            if (!platform::AskYesNo(
                    "TEXTUREx size discrepancy\n\nEntry=%d Texture %8.8s actual size=%d, should "
                    "be=%d\n\nEither this lump is damaged OR just has a hole OR\n\nyou are "
                    "combining STRIFE and DOOM TEXTUREx lumps (the differ in format)\n\n\tReply Y "
                    "to continue, N to cancel)",
                    i, name.Text().c_str(), static_cast<int>(measured), static_cast<int>(needed)))
            {
                return false;
            }
        }
    }
    if (expected != size)
    {
        platform::ShowInfo("TEXTURE size is %d but should be %d\nMost likely TEXTUREx has empty "
                           "space not used",
                           static_cast<int>(size), static_cast<int>(expected));
    }
    return true;
}

} // namespace kelvar::gfx
