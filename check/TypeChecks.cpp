// The type and tag checks of the checker: LineDef types, tags and teleports (button 7) and
// Sector types and tags (button 8).
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/TypeChecks.h"

#include "check/CheckWalk.h"
#include "check/ThingChecks.h"
#include "game/GameState.h"
#include "map/ObjectStore.h"
#include "map/SectorRays.h"
#include "platform/Format.h"

#include <algorithm>
#include <utility>

namespace kelvar::check
{
namespace
{

using map::KindLineDef;
using map::KindSector;
using map::LevelData;
using platform::Format;

constexpr std::size_t TypeNumbers = 0x10000;

// The Hexen game keeps at most this many distinct Thing ids; the ports keep more, but a level
// for the game itself must stay within it.
constexpr int HexenTidLimit = 200;

// Tag types under which a tag may be there or not: nothing to look for.
constexpr std::uint16_t FreeTagTypes = game::TagOption | game::TagDummy | game::TagExit;

// What the tags of a level refer to, gathered before the walk over the LineDefs.
struct TagTargets
{
    // (tag, Sector) for every tagged Sector, in that order.
    std::vector<std::pair<std::uint16_t, std::int32_t>> SectorsByTag;
    // Per number: LineDefs carrying it as a tag (Doom formats) or as their line id (Hexen).
    std::vector<std::uint32_t> LineIds;
    // Per number: Things with that id, and whether one of them is of a type a row knows.
    std::vector<std::uint8_t> Tids;
    std::vector<std::uint8_t> KnownTids;
    // Per number: a polyobject start spot with that number.
    std::vector<std::uint8_t> PolyIds;
    // Per number: a LineDef whose type refers to other LineDefs by that tag.
    std::vector<std::uint8_t> LineTargets;
};

std::pair<std::size_t, std::size_t> SectorsTagged(const TagTargets& targets, std::uint16_t tag)
{
    const auto range =
        std::equal_range(targets.SectorsByTag.begin(), targets.SectorsByTag.end(),
                         std::pair<std::uint16_t, std::int32_t>{tag, 0},
                         [](const auto& a, const auto& b) { return a.first < b.first; });
    return {static_cast<std::size_t>(range.first - targets.SectorsByTag.begin()),
            static_cast<std::size_t>(range.second - targets.SectorsByTag.begin())};
}

// False when the user pressed Escape.
bool GatherTargets(CheckRun& run, RowCache& rows, TagTargets& targets)
{
    const LevelData& level = run.Level;
    const std::size_t total = level.Sectors.size() + level.LineDefs.size() + level.Things.size();
    std::size_t done = 0;
    for (std::size_t i = 0; i < level.Sectors.size(); ++i)
    {
        if (run.Poll(done++, total))
        {
            return false;
        }
        if (level.Sectors[i].Tag != 0)
        {
            targets.SectorsByTag.emplace_back(level.Sectors[i].Tag, static_cast<std::int32_t>(i));
        }
    }
    std::sort(targets.SectorsByTag.begin(), targets.SectorsByTag.end());

    const bool hexen = HexenFormat();
    targets.LineIds.assign(TypeNumbers, 0);
    targets.LineTargets.assign(TypeNumbers, 0);
    for (const map::LineDef& line : level.LineDefs)
    {
        if (run.Poll(done++, total))
        {
            return false;
        }
        const std::uint16_t refers = line.Type == 0 ? 0 : CachedLineRow(rows, line).TagType;
        const std::uint16_t tag = LineTagOf(line);
        if (!hexen || (refers & game::TagLineId) != 0)
        {
            ++targets.LineIds[tag];
        }
        if ((refers & game::TagLine) != 0)
        {
            targets.LineTargets[tag] = 1;
        }
    }

    targets.Tids.assign(TypeNumbers, 0);
    targets.KnownTids.assign(TypeNumbers, 0);
    targets.PolyIds.assign(TypeNumbers, 0);
    for (const map::Thing& thing : level.Things)
    {
        if (run.Poll(done++, total))
        {
            return false;
        }
        const game::ThingTypeRow& row = CachedThingRow(rows, thing.Type);
        targets.Tids[thing.Tid] = 1;
        if (!IsUnknownRow(row))
        {
            targets.KnownTids[thing.Tid] = 1;
        }
        if (row.Property == game::PropertyPolyObj || row.Property == game::PropertyPolyObjCrush)
        {
            // A polyobject's start spot carries the polyobject's number as its angle.
            targets.PolyIds[thing.Angle] = 1;
        }
    }
    return true;
}

// Hexen keeps a fixed table of Thing ids; false when the user pressed Escape.
bool CheckTidCount(CheckRun& run)
{
    const LevelData& level = run.Level;
    std::vector<bool> seen(TypeNumbers, false);
    int distinct = 0;
    const std::size_t count = level.Things.size();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (run.Poll(i, count))
        {
            return false;
        }
        const std::uint16_t tid = level.Things[i].Tid;
        if (tid != 0 && !seen[tid])
        {
            seen[tid] = true;
            ++distinct;
        }
    }
    if (distinct > HexenTidLimit)
    {
        run.Tell("HEXEN Tid max of 200 exceeded!", {Format("There are %hd Tids", AsShort(distinct)),
                                                    "Exceeded max HEXEN TID of 200"});
    }
    return true;
}

std::string LineHeader(std::size_t line, const game::LineTypeRow& row)
{
    return Format("LineDef %d %s", static_cast<int>(line),
                  TypeNameOf(game::Text(row.Name)).c_str());
}

// Strife's types that use their tag for something else, or need none.
bool StrifeTagExempt(std::uint16_t type, std::uint16_t tag)
{
    if (game::Game().LevelFormat != map::GameStrife)
    {
        return false;
    }
    return type == 205 || (tag != 0 && (type == 11 || type == 145 || type == 202));
}

// A tag where the type takes none: asks to reset it. A tag that another LineDef's type refers
// to marks this LineDef as that one's target, and stays.
bool CheckUnwantedTag(CheckRun& run, const TagTargets& targets, std::size_t i,
                      const game::LineTypeRow& row)
{
    const LevelData& level = run.Level;
    const std::uint16_t tag = LineTagOf(level.LineDefs[i]);
    // In the Hexen format the first argument is a tag only where the row says so.
    if (tag == 0 || HexenFormat() || targets.LineTargets[tag] != 0)
    {
        return true;
    }
    const Answer answer =
        AskAboutObject(run, "LineDef tag", KindLineDef, i,
                       {LineHeader(i, row), Format("Sector tag %hd not required.", AsShort(tag)),
                        "Press Cancel to see LineDef", "Reset tag to 0?"});
    if (answer == Answer::Fix)
    {
        ResetLineTag(run, i);
    }
    return answer != Answer::Stop;
}

// What a LineDef's tag refers to must be there; false when the user stopped the check.
bool CheckLineTag(CheckRun& run, const TagTargets& targets, std::size_t i,
                  const game::LineTypeRow& row)
{
    const LevelData& level = run.Level;
    const map::LineDef& line = level.LineDefs[i];
    const std::uint16_t type = LineTypeOf(line);
    const std::uint16_t tag = LineTagOf(line);
    const std::uint16_t refers = row.TagType;
    const int number = static_cast<int>(i);
    if (StrifeTagExempt(type, tag) || (refers & FreeTagTypes) != 0)
    {
        return true;
    }
    if ((refers & game::TagSector) != 0)
    {
        if (tag == 0)
        {
            return ReportObject(
                run, KindLineDef, i,
                {Format("LineDef %d, type %hd requires a Sector tag", number, AsShort(type))});
        }
        const auto [first, last] = SectorsTagged(targets, tag);
        return first < last ||
               ReportObject(run, KindLineDef, i,
                            {LineHeader(i, row), Format("Sector tag %hd not found", AsShort(tag))});
    }
    if ((refers & game::TagLine) != 0)
    {
        if (tag == 0)
        {
            return ReportObject(
                run, KindLineDef, i,
                {Format("LineDef %d, type %hd requires a LineDef tag", number, AsShort(type))});
        }
        // In the Doom formats the LineDef carries the tag itself: another one must too.
        const std::uint32_t others = targets.LineIds[tag] - (HexenFormat() ? 0 : 1);
        return others > 0 || ReportObject(run, KindLineDef, i,
                                          {LineHeader(i, row),
                                           Format("LineDef tag %hd not found", AsShort(tag))});
    }
    if ((refers & game::TagTid) != 0)
    {
        // Thing id 0 names the Thing that set the special off.
        if (tag == 0 || targets.KnownTids[tag] != 0)
        {
            return true;
        }
        return ReportObject(
            run, KindLineDef, i,
            {LineHeader(i, row),
             targets.Tids[tag] == 0
                 ? Format("Tid %hd not found.", AsShort(tag))
                 : Format("Tid %hd found, but it's not a normal type?", AsShort(tag))});
    }
    if ((refers & game::TagPolyId) != 0)
    {
        return targets.PolyIds[tag] != 0 ||
               ReportObject(run, KindLineDef, i,
                            {LineHeader(i, row), Format("PolyId %hd not found.", AsShort(tag))});
    }
    return refers != 0 || CheckUnwantedTag(run, targets, i, row);
}

// The skills for which a teleport landing stands in each Sector; false when the user pressed
// Escape.
bool LandingSkills(CheckRun& run, RowCache& rows, std::vector<unsigned>& skills)
{
    const LevelData& level = run.Level;
    skills.assign(level.Sectors.size(), 0);
    const std::size_t count = level.Things.size();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (run.Poll(i, count))
        {
            return false;
        }
        const map::Thing& thing = level.Things[i];
        if (CachedThingRow(rows, thing.Type).Property != game::PropertyTeleport)
        {
            continue;
        }
        const int sector = map::SectorAt(level, thing.X, thing.Y, map::SectorAtMode::Loose);
        if (sector >= 0)
        {
            skills[static_cast<std::size_t>(sector)] |= thing.Flags & SkillBits;
        }
    }
    return true;
}

// Each Sector a teleport's tag names needs a landing for every skill. A tag is looked at once,
// on the first teleport that carries it; teleports without a tag, or whose tag names no
// Sector, were reported with the tags. False when the user stopped the check.
bool CheckTeleports(CheckRun& run, RowCache& rows, const TagTargets& targets)
{
    const LevelData& level = run.Level;
    std::vector<unsigned> landings;
    if (!LandingSkills(run, rows, landings))
    {
        return false;
    }
    std::vector<bool> seen(TypeNumbers, false);
    const std::size_t count = level.LineDefs.size();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (run.Poll(i, count))
        {
            return false;
        }
        const map::LineDef& line = level.LineDefs[i];
        if (line.Type == 0)
        {
            continue;
        }
        const game::LineTypeRow& row = CachedLineRow(rows, line);
        const std::uint16_t tag = LineTagOf(line);
        if (row.Property != game::PropertyTeleport || (row.TagType & game::TagSector) == 0 ||
            tag == 0 || seen[tag])
        {
            continue;
        }
        seen[tag] = true;
        const auto [first, last] = SectorsTagged(targets, tag);
        for (std::size_t at = first; at < last; ++at)
        {
            const std::int32_t sector = targets.SectorsByTag[at].second;
            const unsigned missing = SkillBits & ~landings[static_cast<std::size_t>(sector)];
            if (missing == 0)
            {
                continue;
            }
            std::vector<std::string> lines = {
                Format("LineDef %d %s (sector tag %hd)", static_cast<int>(i),
                       TypeNameOf(game::Text(row.Name)).c_str(), AsShort(tag)),
                "Teleport Thing missing for skill"};
            const std::vector<std::string> skills = SkillLines(missing);
            lines.insert(lines.end(), skills.begin(), skills.end());
            lines.push_back(Format("in sector %d", sector));
            if (last - first > 1)
            {
                lines.push_back(
                    Format("%d Sectors have same Teleport Tag?", static_cast<int>(last - first)));
            }
            if (!ReportObject(run, KindLineDef, i, std::move(lines)))
            {
                return false;
            }
        }
    }
    return true;
}

// The tags the LineDefs give to Sectors: every tag in the Doom formats, the first argument of
// the specials that take a Sector tag in the Hexen format. False when the user pressed Escape.
bool SectorTagsInUse(CheckRun& run, std::vector<std::uint8_t>& used)
{
    const LevelData& level = run.Level;
    used.assign(TypeNumbers, 0);
    RowCache rows;
    const bool hexen = HexenFormat();
    const std::size_t count = level.LineDefs.size();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (run.Poll(i, count))
        {
            return false;
        }
        const map::LineDef& line = level.LineDefs[i];
        if (!hexen ||
            (line.Type != 0 && (CachedLineRow(rows, line).TagType & game::TagSector) != 0))
        {
            used[LineTagOf(line)] = 1;
        }
    }
    return true;
}

// A tagged Sector no LineDef names; false when the user stopped the check.
bool CheckSectorTag(CheckRun& run, std::size_t i)
{
    const LevelData& level = run.Level;
    const map::Sector& sector = level.Sectors[i];
    const std::uint16_t tag = sector.Tag;
    const std::string header =
        Format("Sector %d %s", static_cast<int>(i),
               TypeNameOf(game::SectorTypeName(static_cast<std::int16_t>(sector.Type))).c_str());
    const std::string finding = Format("LineDef tag %hd not found.", AsShort(tag));
    if (HexenFormat())
    {
        return ReportObject(run, KindSector, i, {header, finding});
    }
    const Answer answer =
        AskAboutObject(run, "Sector tag", KindSector, i,
                       {header, finding, "Press Cancel to see LineDef", "Reset tag to 0?"});
    if (answer == Answer::Fix)
    {
        run.BeforeRepair();
        run.Level.Sectors[i].Tag = 0;
        map::NoteChange(run.Level, KindSector);
    }
    return answer != Answer::Stop;
}

} // namespace

bool CheckLineTypes(CheckRun& run)
{
    run.Progress("Checking LineDef Types/Tags (esc)");
    if (HexenFormat() && !game::Game().ZdoomTypes && !CheckTidCount(run))
    {
        return false;
    }
    RowCache rows;
    TagTargets targets;
    if (!GatherTargets(run, rows, targets))
    {
        return false;
    }
    const LevelData& level = run.Level;
    const std::size_t count = level.LineDefs.size();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (run.Poll(i, count))
        {
            return false;
        }
        const map::LineDef& line = level.LineDefs[i];
        const std::uint16_t type = LineTypeOf(line);
        if (type == 0 || game::LineTypeIsGeneralized(type))
        {
            continue;
        }
        const game::LineTypeRow& row = CachedLineRow(rows, line);
        if (IsUnknownRow(row))
        {
            if (!ReportObject(
                    run, KindLineDef, i,
                    {Format("LineDef %d, Invalid Type %hd", static_cast<int>(i), AsShort(type))}))
            {
                return false;
            }
            continue;
        }
        if (run.Settings.CheckTags && !CheckLineTag(run, targets, i, row))
        {
            return false;
        }
    }
    return CheckTeleports(run, rows, targets);
}

bool CheckSectorTypes(CheckRun& run)
{
    run.Progress("Checking Sector Types/Tags (esc)");
    std::vector<std::uint8_t> used;
    if (run.Settings.CheckTags && !SectorTagsInUse(run, used))
    {
        return false;
    }
    const LevelData& level = run.Level;
    const std::size_t count = level.Sectors.size();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (run.Poll(i, count))
        {
            return false;
        }
        const map::Sector& sector = level.Sectors[i];
        const auto type = static_cast<std::int16_t>(sector.Type);
        if (type != 0 && IsUnknownRow(game::LookupSectorType(type)) &&
            !ReportObject(
                run, KindSector, i,
                {Format("Sector %d, Invalid Sector type %hd", static_cast<int>(i), AsShort(type))}))
        {
            return false;
        }
        if (run.Settings.CheckTags && sector.Tag != 0 && used[sector.Tag] == 0 &&
            !CheckSectorTag(run, i))
        {
            return false;
        }
    }
    return true;
}

} // namespace kelvar::check
