// Texture name conversion by a .CVT table, and the level walk the texture reports share.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/TextureConvert.h"

#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "wad/CheckedFile.h"
#include "wad/ErrorLog.h"
#include "wad/LevelReader.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <algorithm>
#include <system_error>

namespace kelvar::lumps
{
namespace
{

// What a conversion changed.
struct ConvertTotals
{
    int Levels = 0;
    int Flats = 0;
    int Textures = 0;
};

// What the table did to one name field.
struct Replacement
{
    std::string OldName;
    const CvtEntry* Entry = nullptr; // null: no pair names it
    bool Changed() const { return Entry != nullptr && !Entry->Keeps(); }
};

// Looks the name up and, when its pair has a new name, writes that into the field.
Replacement ApplyTable(const std::vector<CvtEntry>& table, std::span<std::uint8_t, 8> name8)
{
    const wad::LumpName name = wad::LumpName::FromBytes(name8.data());
    Replacement replacement{name.Text(), FindCvtEntry(table, name)};
    if (replacement.Changed())
    {
        const auto& chars = replacement.Entry->NewName.Chars;
        std::copy(chars.begin(), chars.end(), name8.begin());
    }
    return replacement;
}

// The same file: one that exists under both names, or two names of one place.
bool SameFile(const std::filesystem::path& a, const std::filesystem::path& b)
{
    std::error_code errorA;
    std::error_code errorB;
    if (std::filesystem::equivalent(a, b, errorA))
    {
        return true;
    }
    const std::filesystem::path canonicalA = std::filesystem::weakly_canonical(a, errorA);
    const std::filesystem::path canonicalB = std::filesystem::weakly_canonical(b, errorB);
    return !errorA && !errorB && canonicalA == canonicalB;
}

bool CanOpen(const std::filesystem::path& path)
{
    return static_cast<bool>(wad::OpenStream(path, "rb"));
}

// The output can be made: an existing file is moved to its .BAK by the rewrite, a new one is
// tried and removed again.
bool CanCreate(const std::filesystem::path& path)
{
    std::error_code error;
    if (std::filesystem::exists(path, error))
    {
        return !std::filesystem::is_directory(path, error);
    }
    if (!wad::OpenStream(path, "wb"))
    {
        return false;
    }
    std::filesystem::remove(path, error);
    return true;
}

// The checks before anything is read; each refusal is shown.
bool ConversionAllowed(const std::optional<CvtTable>& table, const std::filesystem::path& input,
                       const std::filesystem::path& output)
{
    if (!table)
    {
        platform::ShowError("** Please select a Texture Conversion File **\n\n");
        return false;
    }
    if (!CanOpen(input))
    {
        platform::ShowError("** Failed to Open File **\n\n%s", input.c_str());
        return false;
    }
    // The output's .BAK would replace the input as surely as the output itself would.
    if (SameFile(input, output) || SameFile(input, wad::BakPathOf(output)))
    {
        platform::ShowError("! New File Name can't be same as input!\n\n%s", output.c_str());
        return false;
    }
    if (!CanCreate(output))
    {
        platform::ShowError("** Failed to Create File **\n\n%s", output.c_str());
        return false;
    }
    return true;
}

void StartLog(const std::filesystem::path& cvtPath, const CvtTable& table,
              const std::filesystem::path& input, const std::filesystem::path& output)
{
    (void)wad::OpenErrorLog();
    wad::Wad().Log.Lines = -1;
    wad::LogLine({"CVT   " + cvtPath.string()});
    wad::LogLine({platform::Format("Textures=%d Flats=%d", static_cast<int>(table.Textures.size()),
                                   static_cast<int>(table.Flats.size()))});
    wad::LogLine({"Input " + input.string()});
    wad::LogLine({"Output" + output.string()});
}

// Runs `replace` over the name fields of every whole record of `bytes`; the count replaced.
template <std::size_t Fields, typename Replace>
int ReplaceInRecords(std::vector<std::uint8_t>& bytes, std::size_t recordSize,
                     const std::size_t (&offsets)[Fields], Replace replace)
{
    int replaced = 0;
    const std::size_t records = bytes.size() / recordSize;
    for (std::size_t record = 0; record < records; ++record)
    {
        for (const std::size_t offset : offsets)
        {
            const std::span<std::uint8_t, 8> field(bytes.data() + record * recordSize + offset, 8);
            replaced += replace(field, static_cast<int>(record));
        }
    }
    return replaced;
}

// Converts one lump of the level in memory and puts it in the plan when it changed; the count
// replaced.
template <std::size_t Fields, typename Replace>
int ConvertLump(wad::RewritePlan& plan, const std::filesystem::path& input,
                const wad::LumpEntry& entry, int position, std::size_t recordSize,
                const std::size_t (&offsets)[Fields], Replace replace)
{
    std::optional<std::vector<std::uint8_t>> bytes = ReadEntryBytes(input, entry);
    if (!bytes)
    {
        return 0;
    }
    const int replaced = ReplaceInRecords(*bytes, recordSize, offsets, replace);
    if (replaced > 0)
    {
        wad::RewriteEntry& target = plan.Entries[static_cast<std::size_t>(position)];
        target = wad::RewriteEntry::FromBytes(target.Name, std::move(*bytes));
    }
    return replaced;
}

ConvertTotals ConvertLevels(wad::RewritePlan& plan, std::span<const wad::LumpEntry> entries,
                            const CvtTable& table, bool listReplacements,
                            const std::filesystem::path& input)
{
    ConvertTotals totals;
    for (const LevelLumps& level : LevelsOf(entries))
    {
        ++totals.Levels;
        wad::LogLine({"     Level " + entries[level.Span.Marker].Name.Text()});
        wad::LogLine({"== Flats =="});
        if (level.Sectors >= 0)
        {
            totals.Flats +=
                ConvertLump(plan, input, entries[static_cast<std::size_t>(level.Sectors)],
                            level.Sectors, wad::SectorSize, SectorNameOffsets,
                            [&](std::span<std::uint8_t, 8> name, int sector)
                            { return ReplaceFlat(table.Flats, name, sector, listReplacements); });
        }
        wad::LogLine({"== Textures =="});
        if (level.SideDefs >= 0)
        {
            totals.Textures +=
                ConvertLump(plan, input, entries[static_cast<std::size_t>(level.SideDefs)],
                            level.SideDefs, wad::SideDefSize, SideDefNameOffsets,
                            [&](std::span<std::uint8_t, 8> name, int side) {
                                return ReplaceTexture(table.Textures, name, side, listReplacements);
                            });
        }
    }
    return totals;
}

void FinishLog(const ConvertTotals& totals)
{
    if (totals.Levels == 0)
    {
        wad::LogLine({"No levels Found"});
        platform::ShowMessageLines(0, "No Levels", {"No levels Found"});
    }
    else
    {
        wad::LogLine({platform::Format("%d Levels Found", totals.Levels)});
    }
    wad::LogLine({platform::Format("%d Flats Replaced", totals.Flats)});
    wad::LogLine({platform::Format("%d Textures Replaced", totals.Textures)});
    wad::ShowErrorLog("List of WAD Textures and Flats Replaced");
}

} // namespace

std::vector<LevelLumps> LevelsOf(std::span<const wad::LumpEntry> entries)
{
    std::vector<LevelLumps> levels;
    for (std::size_t i = 0; i < entries.size();)
    {
        int count = 1;
        if (wad::LevelAt(entries, i, entries.size(), count) == 0)
        {
            ++i;
            continue;
        }
        LevelLumps level;
        level.Span = {i, i + static_cast<std::size_t>(count)};
        for (std::size_t lump = i + 1; lump < level.Span.End; ++lump)
        {
            const wad::LumpName& name = entries[lump].Name;
            if (name.Is("SECTORS") && level.Sectors < 0)
            {
                level.Sectors = static_cast<int>(lump);
            }
            else if (name.Is("SIDEDEFS") && level.SideDefs < 0)
            {
                level.SideDefs = static_cast<int>(lump);
            }
        }
        levels.push_back(level);
        i = level.Span.End;
    }
    return levels;
}

std::vector<wad::LumpEntry> EntriesOfPlan(const wad::RewritePlan& plan)
{
    std::vector<wad::LumpEntry> entries;
    entries.reserve(plan.Entries.size());
    for (const wad::RewriteEntry& item : plan.Entries)
    {
        wad::LumpEntry entry;
        entry.Name = wad::LumpName::From(item.Name);
        entry.Offset = static_cast<std::int32_t>(item.Offset);
        entry.Size = item.Size;
        entry.Ordinal = static_cast<std::int32_t>(entries.size());
        entries.push_back(entry);
    }
    return entries;
}

std::optional<std::vector<std::uint8_t>> ReadEntryBytes(const std::filesystem::path& path,
                                                        const wad::LumpEntry& entry)
{
    const wad::StreamPtr in = wad::OpenStream(path, "rb");
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::max(entry.Size, 0)));
    if (!in || wad::CheckedSeek(in.get(), entry.Offset) != 1 ||
        wad::CheckedRead(in.get(), bytes.data(), entry.Size) != 1)
    {
        platform::ShowError("Failure reading old File?");
        return std::nullopt;
    }
    return bytes;
}

int ReplaceFlat(const std::vector<CvtEntry>& flats, std::span<std::uint8_t, 8> name8, int sector,
                bool report)
{
    if (name8[0] == 0)
    {
        return 0;
    }
    const Replacement replacement = ApplyTable(flats, name8);
    if (report && replacement.Entry == nullptr)
    {
        wad::LogLine({platform::Format("%8s sector=%d no replacement found",
                                       replacement.OldName.c_str(), sector)});
    }
    else if (report && replacement.Changed())
    {
        wad::LogLine({platform::Format("%8s = %8s sector=%d", replacement.OldName.c_str(),
                                       replacement.Entry->NewName.Text().c_str(), sector)});
    }
    return replacement.Changed() ? 1 : 0;
}

int ReplaceTexture(const std::vector<CvtEntry>& textures, std::span<std::uint8_t, 8> name8,
                   int sideDef, bool report)
{
    if (name8[0] == 0 || wad::LumpName::FromBytes(name8.data()).Is("-"))
    {
        return 0;
    }
    const Replacement replacement = ApplyTable(textures, name8);
    if (report && replacement.Entry == nullptr)
    {
        wad::LogLine({platform::Format("%8s linedef=%d no replacement found",
                                       replacement.OldName.c_str(), sideDef)});
    }
    else if (report && replacement.Changed())
    {
        wad::LogLine({platform::Format("%8s = %8s linedef=%d", replacement.OldName.c_str(),
                                       replacement.Entry->NewName.Text().c_str(), sideDef)});
    }
    return replacement.Changed() ? 1 : 0;
}

int ConvertTextures(const std::filesystem::path& cvtPath, const std::filesystem::path& inputPath,
                    const std::filesystem::path& outputPath, bool listReplacements)
{
    const std::optional<CvtTable> table = cvtPath.empty() ? std::nullopt : ReadCvtFile(cvtPath);
    if (!ConversionAllowed(table, inputPath, outputPath))
    {
        return 0;
    }
    std::optional<wad::RewritePlan> plan = wad::PlanOfWad(inputPath);
    if (!plan)
    {
        return 0;
    }
    const std::vector<wad::LumpEntry> entries = EntriesOfPlan(*plan);
    StartLog(cvtPath, *table, inputPath, outputPath);
    platform::TheUi().ShowProgress(
        platform::Format("Processing %d Entries", static_cast<int>(entries.size())),
        inputPath.string());
    const ConvertTotals totals = ConvertLevels(*plan, entries, *table, listReplacements, inputPath);
    platform::TheUi().EndProgress();
    if (!wad::RewriteWad(outputPath, *plan))
    {
        wad::CloseErrorLog();
        return 0;
    }
    FinishLog(totals);
    return 1;
}

} // namespace kelvar::lumps
