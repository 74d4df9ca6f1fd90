// The PWAD as the texture reports read it: its levels, flats and picture runs, the names its
// levels use, and its TEXTUREx lumps as a deletion changes them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/UsageReport_Pwad.h"

#include "lumps/TextureMerge.h"
#include "platform/Format.h"
#include "wad/ErrorLog.h"
#include "wad/LevelReader.h"
#include "wad/LumpName.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <algorithm>

namespace kelvar::lumps::usage
{
namespace
{

// Marks the runs between F_START (or FF_START) and F_END (or FF_END), and the sprites' runs.
void MarkPictureRuns(Pwad& pwad)
{
    Role run = Role::Plain;
    for (std::size_t i = 0; i < pwad.Entries.size(); ++i)
    {
        const wad::LumpName& name = pwad.Entries[i].Name;
        if (pwad.Roles[i] == Role::LevelLump)
        {
            continue;
        }
        if (name.Is("F_START") || name.Is("FF_START"))
        {
            run = Role::Flat;
            pwad.Roles[i] = Role::Marker;
        }
        else if (name.Is("S_START") || name.Is("SS_START"))
        {
            run = Role::Sprite;
            pwad.Roles[i] = Role::Marker;
        }
        else if (name.Is("F_END") || name.Is("FF_END") || name.Is("S_END") || name.Is("SS_END"))
        {
            run = Role::Plain;
            pwad.Roles[i] = Role::Marker;
        }
        else if (pwad.Entries[i].Size == 0 && run != Role::Plain)
        {
            pwad.Roles[i] = Role::Marker; // F1_START and the like
        }
        else
        {
            pwad.Roles[i] = run;
        }
    }
}

// The size of a record: its head and its patch entries, as far as the lump holds them.
std::size_t RecordSize(const gfx::TextureRecord& record, const gfx::TextureLayout& layout,
                       std::size_t lumpSize)
{
    const std::size_t size =
        static_cast<std::size_t>(layout.HeadSize) +
        static_cast<std::size_t>(std::max<int>(record.PatchCount, 0) * layout.PatchSize);
    return std::min(size, lumpSize - record.Offset);
}

} // namespace

std::optional<Pwad> ReadPwad(const std::filesystem::path& path)
{
    std::optional<wad::RewritePlan> plan = wad::PlanOfWad(path);
    if (!plan)
    {
        return std::nullopt;
    }
    Pwad pwad{path, std::move(*plan), {}, {}, {}};
    pwad.Entries = EntriesOfPlan(pwad.Plan);
    pwad.Levels = LevelsOf(pwad.Entries);
    pwad.Roles.assign(pwad.Entries.size(), Role::Plain);
    for (const LevelLumps& level : pwad.Levels)
    {
        std::fill(pwad.Roles.begin() + static_cast<std::ptrdiff_t>(level.Span.Marker),
                  pwad.Roles.begin() + static_cast<std::ptrdiff_t>(level.Span.End),
                  Role::LevelLump);
    }
    MarkPictureRuns(pwad);
    return pwad;
}

// The newest entry of that name outside the levels; -1 when there is none.
int FindOutsideLevels(const Pwad& pwad, std::string_view name)
{
    for (std::size_t i = pwad.Entries.size(); i-- > 0;)
    {
        if (pwad.Roles[i] != Role::LevelLump && pwad.Entries[i].Name.Is(name))
        {
            return static_cast<int>(i);
        }
    }
    return -1;
}

// The entries that can be a patch's picture: named so, with data, outside levels, flats and
// sprites.
std::vector<std::size_t> PatchLumps(const Pwad& pwad, const wad::LumpName& name)
{
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < pwad.Entries.size(); ++i)
    {
        if (pwad.Roles[i] == Role::Plain && pwad.Entries[i].Size > 0 &&
            wad::SameName(pwad.Entries[i].Name, name))
        {
            found.push_back(i);
        }
    }
    return found;
}

// The newest entry of the open IWAD of that name; -1 when there is none.
int IwadLump(std::string_view name)
{
    int found = -1;
    wad::Master().ForEachPosition(wad::LumpName::From(name),
                                  [&found](std::int32_t at)
                                  {
                                      if (wad::Master()[static_cast<std::size_t>(at)].FileNumber ==
                                          0)
                                      {
                                          found = at;
                                      }
                                      return true;
                                  });
    return found;
}

// Calls the visits for each flat and wall name of a level's Sectors and SideDefs; "-" and empty
// names are no names. False when a lump could not be read.
bool VisitLevelNames(const Pwad& pwad, const LevelLumps& level, const NameVisit& flat,
                     const NameVisit& texture)
{
    const auto visit = [&pwad](int position, std::size_t recordSize,
                               std::span<const std::size_t> offsets, const NameVisit& named)
    {
        if (position < 0)
        {
            return true;
        }
        const std::optional<std::vector<std::uint8_t>> bytes =
            ReadEntryBytes(pwad.Path, pwad.Entries[static_cast<std::size_t>(position)]);
        if (!bytes)
        {
            return false;
        }
        for (std::size_t record = 0; record + recordSize <= bytes->size(); record += recordSize)
        {
            for (const std::size_t offset : offsets)
            {
                const wad::LumpName name =
                    wad::LumpName::FromBytes(bytes->data() + record + offset);
                if (!name.Empty() && !name.Is("-"))
                {
                    named(name);
                }
            }
        }
        return true;
    };
    return visit(level.Sectors, wad::SectorSize, SectorNameOffsets, flat) &&
           visit(level.SideDefs, wad::SideDefSize, SideDefNameOffsets, texture);
}

// The names of the flats the PWAD defines, each flat entry in order.
std::vector<std::size_t> FlatEntries(const Pwad& pwad)
{
    std::vector<std::size_t> flats;
    for (std::size_t i = 0; i < pwad.Entries.size(); ++i)
    {
        if (pwad.Roles[i] == Role::Flat)
        {
            flats.push_back(i);
        }
    }
    return flats;
}

std::string Padded(const wad::LumpName& name)
{
    return platform::Format("%-8s", name.Text().c_str());
}

void OpenReportLog()
{
    (void)wad::OpenErrorLog();
    wad::Wad().Log.Lines = -1;
}

void Log(const std::string& text)
{
    wad::LogLine({text});
}

std::optional<TextureBuffer> ReadTextureBuffer(const Pwad& pwad, int number)
{
    const int position = FindOutsideLevels(pwad, number == 1 ? "TEXTURE1" : "TEXTURE2");
    if (position < 0)
    {
        return std::nullopt;
    }
    std::optional<std::vector<std::uint8_t>> bytes =
        ReadEntryBytes(pwad.Path, pwad.Entries[static_cast<std::size_t>(position)]);
    if (!bytes)
    {
        return std::nullopt;
    }
    TextureBuffer buffer;
    buffer.Number = number;
    buffer.Position = position;
    buffer.Bytes = *bytes;
    buffer.Parsed = gfx::TextureLump(std::move(*bytes), number, 1, gfx::CurrentTextureLayout());
    buffer.Removed.assign(static_cast<std::size_t>(buffer.Parsed.Count()), false);
    // Whole: every record's head and patch entries lie inside the lump.
    const gfx::TextureLayout layout = gfx::CurrentTextureLayout();
    buffer.Whole = buffer.Parsed.Count() > 0;
    for (int i = 0; i < buffer.Parsed.Count() && buffer.Whole; ++i)
    {
        const std::optional<gfx::TextureRecord> record = buffer.Parsed.Record(i);
        buffer.Whole = record && record->PatchCount >= 0 &&
                       record->Offset + static_cast<std::size_t>(layout.HeadSize) +
                               static_cast<std::size_t>(record->PatchCount * layout.PatchSize) <=
                           buffer.Bytes.size();
    }
    return buffer;
}

// The lump rebuilt from the records not removed, in their order.
std::vector<std::uint8_t> WithoutRemoved(const TextureBuffer& buffer)
{
    MergeBuffers scratch;
    scratch.Layout = gfx::CurrentTextureLayout();
    std::vector<std::uint8_t> lump = buffer.Bytes;
    for (int i = 0; i < buffer.Parsed.Count(); ++i)
    {
        const std::optional<gfx::TextureRecord> record = buffer.Parsed.Record(i);
        if (buffer.Removed[static_cast<std::size_t>(i)] && record)
        {
            // Of two textures of one name the first goes, and both are unused alike.
            (void)DeleteTextureEntry(scratch, "deletetexure1", record->Name.Text(), lump);
        }
    }
    return lump;
}

// Calls `visit(textureName, indexBytes)` for every patch entry of the records not removed.
void ForEachPatchIndex(TextureBuffer& buffer,
                       const std::function<void(const wad::LumpName&, std::uint8_t*)>& visit)
{
    const gfx::TextureLayout layout = gfx::CurrentTextureLayout();
    for (int i = 0; i < buffer.Parsed.Count(); ++i)
    {
        const std::optional<gfx::TextureRecord> record = buffer.Parsed.Record(i);
        if (buffer.Removed[static_cast<std::size_t>(i)] || !record)
        {
            continue;
        }
        const std::size_t end = record->Offset + RecordSize(*record, layout, buffer.Bytes.size());
        for (std::size_t at = record->Offset + static_cast<std::size_t>(layout.HeadSize);
             at + static_cast<std::size_t>(layout.PatchSize) <= end;
             at += static_cast<std::size_t>(layout.PatchSize))
        {
            visit(record->Name, buffer.Bytes.data() + at + 4);
        }
    }
}

std::int16_t ReadIndex(const std::uint8_t* bytes)
{
    return static_cast<std::int16_t>(bytes[0] | (bytes[1] << 8));
}

void WriteIndex(std::uint8_t* bytes, int index)
{
    bytes[0] = static_cast<std::uint8_t>(index & 0xFF);
    bytes[1] = static_cast<std::uint8_t>((index >> 8) & 0xFF);
}

} // namespace kelvar::lumps::usage
