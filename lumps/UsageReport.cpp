// The texture and flat reports of a PWAD, and the deletion of what its levels don't use.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/UsageReport.h"

#include "lumps/UsageReport_Pwad.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "wad/ErrorLog.h"
#include "wad/FindLump.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <algorithm>
#include <map>

namespace kelvar::lumps
{
namespace
{

using namespace usage;

// ---- The unused check ------------------------------------------------------------------------

// What happened to one name the PWAD defines that no level uses.
enum class Verdict
{
    Extra,     // listed only
    Deleted,   // deleted
    Cancelled, // the user kept it
};

// One run of ListUnused.
struct UnusedRun
{
    UnusedRun(const Pwad& file, const UnusedOptions& options)
        : File(file), Options(options), Dropped(file.Entries.size(), false)
    {
    }

    const Pwad& File;
    const UnusedOptions& Options;
    NameKeys UsedFlats;
    NameKeys UsedTextures;
    std::vector<bool> Dropped; // entries of the PWAD deleted
    std::optional<TextureBuffer> Texture1;
    std::optional<TextureBuffer> Texture2;
    int PnamesPosition = -1;
    std::optional<std::vector<std::uint8_t>> NewPnames;
    UnusedDeletion Result;
};

// The verdict on one unused name: extra when listing or when it can't be deleted safely, else
// deleted unless the user says no.
Verdict Decide(const UnusedRun& run, const char* question, const wad::LumpName& name,
               bool deletable = true)
{
    if (!run.Options.DeleteMode || !deletable)
    {
        return Verdict::Extra;
    }
    if (run.Options.PromptForDeletes &&
        platform::ShowMessageLines(0, question, {name.Text()},
                                   platform::MessageButtons::OkCancel) != 1)
    {
        return Verdict::Cancelled;
    }
    return Verdict::Deleted;
}

void LogVerdict(Verdict verdict, const wad::LumpName& name)
{
    switch (verdict)
    {
    case Verdict::Extra:
        Log(platform::Format("%-8s extra", name.Text().c_str()));
        break;
    case Verdict::Deleted:
        Log(platform::Format("%-8s deleted", name.Text().c_str()));
        break;
    case Verdict::Cancelled:
        Log(Padded(name) + " *** cancelled ***");
        break;
    }
}

bool CollectUsedNames(UnusedRun& run)
{
    const NameVisit flat = [&run](const wad::LumpName& name) { run.UsedFlats.insert(name.Key()); };
    const NameVisit texture = [&run](const wad::LumpName& name)
    { run.UsedTextures.insert(name.Key()); };
    for (const LevelLumps& level : run.File.Levels)
    {
        if (!VisitLevelNames(run.File, level, flat, texture))
        {
            return false;
        }
    }
    for (const std::filesystem::path& path : run.Options.LevelFiles)
    {
        const std::optional<Pwad> other = ReadPwad(path);
        if (!other)
        {
            return false;
        }
        for (const LevelLumps& level : other->Levels)
        {
            if (!VisitLevelNames(*other, level, flat, texture))
            {
                return false;
            }
        }
    }
    return true;
}

void CheckFlats(UnusedRun& run)
{
    const std::vector<std::size_t> flats = FlatEntries(run.File);
    if (flats.empty())
    {
        Log("** FLATS not found                 **");
        Log("** Unused Flat check not possible **");
        return;
    }
    Log(platform::Format("    == %d Flats defined in PWAD ==", static_cast<int>(flats.size())));
    int unused = 0;
    for (const std::size_t entry : flats)
    {
        const wad::LumpName& name = run.File.Entries[entry].Name;
        if (run.UsedFlats.contains(name.Key()))
        {
            continue;
        }
        ++unused;
        const Verdict verdict = Decide(run, "Delete FLAT?", name);
        LogVerdict(verdict, name);
        if (verdict == Verdict::Deleted)
        {
            run.Dropped[entry] = true;
            ++run.Result.Flats;
        }
    }
    Log(platform::Format("%d Flats not used", unused));
}

// Textures no wall names but the game needs: TEXTURE1's first (never drawn, so a wall can't
// show it) and the skies. When the IWAD has a TEXTURE2 that an emptied one of the PWAD would
// let back in, the PWAD's TEXTURE2 keeps its first texture.
bool NeededByGame(const UnusedRun& run, const TextureBuffer& buffer, int index,
                  const wad::LumpName& name)
{
    if (name.StartsWith("SKY") || (index == 0 && buffer.Number == 1))
    {
        return true;
    }
    if (index != 0 || buffer.Number != 2 || IwadLump("TEXTURE2") < 0)
    {
        return false;
    }
    for (int i = 0; i < buffer.Parsed.Count(); ++i)
    {
        const std::optional<gfx::TextureRecord> record = buffer.Parsed.Record(i);
        if (record && run.UsedTextures.contains(record->Name.Key()))
        {
            return false;
        }
    }
    return true;
}

int CheckTextureBuffer(UnusedRun& run, TextureBuffer& buffer)
{
    platform::TheUi().ShowProgress(
        platform::Format("Processing %d TEXTURE%d", buffer.Parsed.Count(), buffer.Number),
        run.File.Path.string());
    int unused = 0;
    for (int i = 0; i < buffer.Parsed.Count(); ++i)
    {
        const std::optional<gfx::TextureRecord> record = buffer.Parsed.Record(i);
        if (!record || run.UsedTextures.contains(record->Name.Key()) ||
            NeededByGame(run, buffer, i, record->Name))
        {
            continue;
        }
        ++unused;
        // A record that can't be read whole can't be rebuilt, so nothing of that lump goes.
        const Verdict verdict = Decide(run, "Delete Texture?", record->Name, buffer.Whole);
        LogVerdict(verdict, record->Name);
        if (verdict == Verdict::Deleted)
        {
            buffer.Removed[static_cast<std::size_t>(i)] = true;
            buffer.Changed = true;
            ++run.Result.Textures;
        }
    }
    return unused;
}

void CheckTextures(UnusedRun& run)
{
    run.Texture1 = ReadTextureBuffer(run.File, 1);
    run.Texture2 = ReadTextureBuffer(run.File, 2);
    if (!run.Texture1)
    {
        Log("** TEXTURE1 not found                 **");
        Log("** Unused Texture check not possible **");
        return;
    }
    const int defined =
        run.Texture1->Parsed.Count() + (run.Texture2 ? run.Texture2->Parsed.Count() : 0);
    Log(platform::Format("    == %d Textures defined ==", defined));
    int unused = CheckTextureBuffer(run, *run.Texture1);
    if (run.Texture2)
    {
        unused += CheckTextureBuffer(run, *run.Texture2);
    }
    Log(platform::Format("%d Textures not used", unused));
}

// The patch check needs every texture lump the game reads the PWAD's PNAMES through, whole.
bool PatchCheckPossible(const UnusedRun& run,
                        const std::optional<std::vector<std::uint8_t>>& pnames)
{
    const char* missing = !pnames                                      ? "PNAMES"
                          : !run.Texture1                              ? "TEXTURE1"
                          : !run.Texture2 && IwadLump("TEXTURE2") >= 0 ? "TEXTURE2"
                                                                       : nullptr;
    if (missing != nullptr)
    {
        Log(platform::Format("** %s not found                 **", missing));
        Log("** Unused Patch check not possible **");
        return false;
    }
    if (!run.Texture1->Whole || (run.Texture2 && !run.Texture2->Whole))
    {
        Log("** Unused Patch check not possible **");
        return false;
    }
    return true;
}

// The PNAMES indexes the remaining textures use; in delete mode each patch is checked first.
std::vector<bool> UsedPatchIndexes(UnusedRun& run, const gfx::PatchNames& names)
{
    std::vector<bool> used(names.Names.size(), false);
    for (std::optional<TextureBuffer>* buffer : {&run.Texture1, &run.Texture2})
    {
        if (!*buffer)
        {
            continue;
        }
        ForEachPatchIndex(
            **buffer,
            [&](const wad::LumpName& texture, std::uint8_t* indexBytes)
            {
                const std::int16_t index = ReadIndex(indexBytes);
                const bool valid =
                    index >= 0 && static_cast<std::size_t>(index) < names.Names.size();
                if (valid)
                {
                    used[static_cast<std::size_t>(index)] = true;
                }
                if (!run.Options.DeleteMode)
                {
                    return;
                }
                if (!valid)
                {
                    Log(platform::Format("%-8s Invalid patch index = %hd", texture.Text().c_str(),
                                         index));
                }
                else if (names.Names[static_cast<std::size_t>(index)].Empty())
                {
                    Log(platform::Format("%-8s patch not Found", texture.Text().c_str()));
                }
            });
    }
    return used;
}

// Where an unused patch's picture lies, and what its line says.
std::string PatchLine(const UnusedRun& run, Verdict verdict, const wad::LumpName& name,
                      bool lumpDeleted)
{
    if (verdict == Verdict::Cancelled)
    {
        return Padded(name) + " *** cancelled ***";
    }
    const char* action = verdict == Verdict::Deleted ? "deleted" : "extra";
    const char* where = lumpDeleted                           ? "lump deleted"
                        : !PatchLumps(run.File, name).empty() ? "lump in PWAD"
                        : IwadLump(name.Text()) >= 0          ? "lump in IWAD"
                                                              : "lump not found";
    return platform::Format("%-8s %s + %s", name.Text().c_str(), action, where);
}

// Removes the deleted PNAMES entries and lowers every patch index above each in both buffers.
void RemovePatchEntries(UnusedRun& run, const gfx::PatchNames& names,
                        const std::vector<bool>& removed)
{
    std::vector<int> removedBelow(names.Names.size() + 1, 0);
    for (std::size_t i = 0; i < names.Names.size(); ++i)
    {
        removedBelow[i + 1] = removedBelow[i] + (removed[i] ? 1 : 0);
    }
    const int total = removedBelow.back();
    for (std::optional<TextureBuffer>* buffer : {&run.Texture1, &run.Texture2})
    {
        if (!*buffer)
        {
            continue;
        }
        ForEachPatchIndex(**buffer,
                          [&](const wad::LumpName&, std::uint8_t* indexBytes)
                          {
                              const std::int16_t index = ReadIndex(indexBytes);
                              if (index < 0)
                              {
                                  return;
                              }
                              const auto at = static_cast<std::size_t>(index);
                              const int lower =
                                  at < names.Names.size() ? removedBelow[at + 1] : total;
                              WriteIndex(indexBytes, index - lower);
                          });
        (*buffer)->Changed = (*buffer)->Changed || total > 0;
    }
    std::vector<std::uint8_t> pnames(4);
    for (std::size_t i = 0; i < names.Names.size(); ++i)
    {
        if (!removed[i])
        {
            pnames.insert(pnames.end(), names.Names[i].Chars.begin(), names.Names[i].Chars.end());
        }
    }
    wad::WriteLe32(pnames.data(), static_cast<std::int32_t>((pnames.size() - 4) / 8));
    run.NewPnames = std::move(pnames);
}

void CheckPatches(UnusedRun& run)
{
    run.PnamesPosition = FindOutsideLevels(run.File, "PNAMES");
    const std::optional<std::vector<std::uint8_t>> bytes =
        run.PnamesPosition < 0
            ? std::nullopt
            : ReadEntryBytes(run.File.Path,
                             run.File.Entries[static_cast<std::size_t>(run.PnamesPosition)]);
    if (!PatchCheckPossible(run, bytes))
    {
        return;
    }
    const gfx::PatchNames names = gfx::ReadPatchNames(*bytes);
    if (names.Damaged || names.Names.empty())
    {
        Log("** Unused Patch check not possible **");
        return;
    }
    Log(platform::Format("    == %d Patches defined in PWAD ==",
                         static_cast<int>(names.Names.size())));
    const std::vector<bool> used = UsedPatchIndexes(run, names);
    std::vector<Verdict> verdicts(names.Names.size(), Verdict::Extra);
    std::vector<bool> removed(names.Names.size(), false);
    for (std::size_t i = 0; i < names.Names.size(); ++i)
    {
        if (!used[i])
        {
            verdicts[i] = Decide(run, "Delete PNAMES?", names.Names[i]);
            removed[i] = verdicts[i] == Verdict::Deleted;
        }
    }
    // A picture goes with its last PNAMES entry: none that stays may name it.
    NameKeys kept;
    for (std::size_t i = 0; i < names.Names.size(); ++i)
    {
        if (!removed[i])
        {
            kept.insert(names.Names[i].Key());
        }
    }
    int unused = 0;
    for (std::size_t i = 0; i < names.Names.size(); ++i)
    {
        if (used[i])
        {
            continue;
        }
        ++unused;
        const std::vector<std::size_t> lumps = PatchLumps(run.File, names.Names[i]);
        // The picture stays while a remaining entry names it, or a level puts it on a wall or a
        // floor by its own name.
        const std::uint64_t key = names.Names[i].Key();
        const bool lumpDeleted = removed[i] && !lumps.empty() && !kept.contains(key) &&
                                 !run.UsedTextures.contains(key) && !run.UsedFlats.contains(key);
        for (const std::size_t lump : lumps)
        {
            run.Dropped[lump] = run.Dropped[lump] || lumpDeleted;
        }
        Log(PatchLine(run, verdicts[i], names.Names[i], lumpDeleted));
    }
    if (std::find(removed.begin(), removed.end(), true) != removed.end())
    {
        RemovePatchEntries(run, names, removed);
        run.Result.Patches = static_cast<int>(std::count(removed.begin(), removed.end(), true));
    }
    Log(platform::Format("%d Patches not used", unused));
}

// The PWAD's entries as the deletions leave them.
wad::RewritePlan PlanAfterDeletions(UnusedRun& run)
{
    const wad::RewritePlan& plan = run.File.Plan;
    wad::RewritePlan result;
    result.Magic = plan.Magic;
    std::map<int, std::vector<std::uint8_t>> replaced;
    for (std::optional<TextureBuffer>* buffer : {&run.Texture1, &run.Texture2})
    {
        if (*buffer && (*buffer)->Changed)
        {
            replaced[(*buffer)->Position] = WithoutRemoved(**buffer);
        }
    }
    if (run.NewPnames)
    {
        replaced[run.PnamesPosition] = *run.NewPnames;
    }
    const bool texture2Emptied =
        run.Texture2 && run.Texture2->Changed &&
        std::find(run.Texture2->Removed.begin(), run.Texture2->Removed.end(), false) ==
            run.Texture2->Removed.end();
    for (std::size_t i = 0; i < plan.Entries.size(); ++i)
    {
        const auto position = static_cast<int>(i);
        if (run.Dropped[i] || (texture2Emptied && position == run.Texture2->Position))
        {
            continue;
        }
        const auto found = replaced.find(position);
        result.Entries.push_back(
            found == replaced.end()
                ? plan.Entries[i]
                : wad::RewriteEntry::FromBytes(plan.Entries[i].Name, std::move(found->second)));
    }
    return result;
}

// ---- The names reports ----------------------------------------------------------------------

// The names of a set, each once, in the order of their text (case ignored).
using SortedNames = std::map<std::string, wad::LumpName>;

void LogNames(const SortedNames& names)
{
    for (const auto& [key, name] : names)
    {
        Log(name.Text());
    }
}

NameKeys IwadTextureNames()
{
    NameKeys names;
    for (const int number : {1, 2})
    {
        const int lump = IwadLump(number == 1 ? "TEXTURE1" : "TEXTURE2");
        if (lump < 0)
        {
            continue;
        }
        const gfx::TextureLump parsed(wad::ReadLumpBytes(lump), number, 0,
                                      gfx::CurrentTextureLayout());
        for (int i = 0; i < parsed.Count(); ++i)
        {
            if (const std::optional<gfx::TextureRecord> record = parsed.Record(i))
            {
                names.insert(record->Name.Key());
            }
        }
    }
    return names;
}

void LogTextureNames(const Pwad& pwad)
{
    const std::optional<TextureBuffer> texture1 = ReadTextureBuffer(pwad, 1);
    const std::optional<TextureBuffer> texture2 = ReadTextureBuffer(pwad, 2);
    const NameKeys iwad = IwadTextureNames();
    std::vector<wad::LumpName> names;
    for (const std::optional<TextureBuffer>* buffer : {&texture1, &texture2})
    {
        for (int i = 0; *buffer && i < (*buffer)->Parsed.Count(); ++i)
        {
            if (const std::optional<gfx::TextureRecord> record = (*buffer)->Parsed.Record(i))
            {
                names.push_back(record->Name);
            }
        }
    }
    Log(platform::Format("\n    == TEXTUREx == %d (PWAD + IWAD)", static_cast<int>(names.size())));
    for (const wad::LumpName& name : names)
    {
        Log(iwad.contains(name.Key()) ? name.Text() : Padded(name) + " *");
    }
}

void LogPatchNames(const Pwad& pwad, int pnames)
{
    const std::optional<std::vector<std::uint8_t>> bytes =
        ReadEntryBytes(pwad.Path, pwad.Entries[static_cast<std::size_t>(pnames)]);
    const gfx::PatchNames names = bytes ? gfx::ReadPatchNames(*bytes) : gfx::PatchNames{};
    Log(platform::Format("\n    == PNAMES == %d (*=those in PWAD)",
                         static_cast<int>(names.Names.size())));
    for (const wad::LumpName& name : names.Names)
    {
        Log(PatchLumps(pwad, name).empty() ? name.Text() : Padded(name) + " *");
    }
}

} // namespace

int ListTexturesUsed(const std::filesystem::path& pwadPath, std::string_view levelName)
{
    const std::optional<Pwad> pwad = ReadPwad(pwadPath);
    if (!pwad)
    {
        return 0;
    }
    std::vector<LevelLumps> levels;
    for (const LevelLumps& level : pwad->Levels)
    {
        if (levelName.empty() || pwad->Entries[level.Span.Marker].Name.Is(levelName))
        {
            levels.push_back(level);
        }
    }
    if (!levelName.empty() && levels.empty())
    {
        platform::ShowMessageLines(0, "Not Level", {"Not a Level"});
        return 0;
    }
    OpenReportLog();
    for (const LevelLumps& level : levels)
    {
        SortedNames flats;
        SortedNames textures;
        const auto into = [](SortedNames& names)
        {
            return [&names](const wad::LumpName& name)
            { names.emplace(wad::UpperText(name.Text()), name); };
        };
        if (!VisitLevelNames(*pwad, level, into(flats), into(textures)))
        {
            wad::CloseErrorLog();
            return 0;
        }
        Log("     Level " + pwad->Entries[level.Span.Marker].Name.Text());
        Log("== Flats ==");
        LogNames(flats);
        Log(platform::Format("%d unique Flats used", static_cast<int>(flats.size())));
        Log("== Textures ==");
        LogNames(textures);
        Log(platform::Format("%d unique Textures used", static_cast<int>(textures.size())));
    }
    Log(platform::Format("%d Levels Found", static_cast<int>(levels.size())));
    wad::ShowErrorLog("List of WAD Textures and Flats Used");
    return 1;
}

int ListTextureNames(const std::filesystem::path& pwadPath)
{
    const std::optional<Pwad> pwad = ReadPwad(pwadPath);
    if (!pwad)
    {
        return 0;
    }
    const std::vector<std::size_t> flats = FlatEntries(*pwad);
    const bool hasTextures =
        FindOutsideLevels(*pwad, "TEXTURE1") >= 0 || FindOutsideLevels(*pwad, "TEXTURE2") >= 0;
    const int pnames = FindOutsideLevels(*pwad, "PNAMES");
    if (!hasTextures && pnames < 0)
    {
        platform::ShowInfo("No TEXTUREx & PNAMES found");
    }
    if (flats.empty())
    {
        platform::ShowInfo("No FLATS found");
    }
    OpenReportLog();
    Log("**   List of Texture, Patch and Flat names defined in PWAD **");
    Log(platform::Format("    == FLATS == %d (in PWAD)", static_cast<int>(flats.size())));
    for (const std::size_t flat : flats)
    {
        Log(pwad->Entries[flat].Name.Text());
    }
    if (hasTextures)
    {
        LogTextureNames(*pwad);
    }
    if (pnames >= 0)
    {
        LogPatchNames(*pwad, pnames);
    }
    wad::ShowErrorLog("List of WAD Texture and Flat names");
    return 1;
}

int ListUnused(const std::filesystem::path& pwadPath, const UnusedOptions& options,
               UnusedDeletion* deletion)
{
    const std::optional<Pwad> pwad = ReadPwad(pwadPath);
    if (!pwad)
    {
        return 0;
    }
    UnusedRun run(*pwad, options);
    if (!CollectUsedNames(run))
    {
        return 0;
    }
    platform::TheUi().ShowProgress(
        platform::Format("Processing %d level FLATS", static_cast<int>(run.UsedFlats.size())),
        pwadPath.string());
    platform::TheUi().ShowProgress(
        platform::Format("Processing %d Textures", static_cast<int>(run.UsedTextures.size())),
        pwadPath.string());
    OpenReportLog();
    Log("**   Use the External Viewer to save this to a text file   **");
    Log("**   ! Animation or Switch sequence check is up to YOU !   **");
    Log("");
    CheckFlats(run);
    Log("");
    CheckTextures(run);
    Log("");
    CheckPatches(run);
    Log("");
    Log("** Above may be used in Animation or Switch sequences **");
    Log("**               Be sure to VERIFY usage              **");
    platform::TheUi().EndProgress();
    wad::ShowErrorLog("List of WAD Flats and Patches not Used");
    if (options.DeleteMode)
    {
        run.Result.Plan = PlanAfterDeletions(run);
        if (deletion != nullptr)
        {
            *deletion = std::move(run.Result);
        }
        if (options.NextStepNotice)
        {
            platform::ShowInfo("** Next Step **:\n\nPress Save to save a modified PWAD\nwith the "
                               "Textures and Flats deleted");
        }
    }
    return 1;
}

} // namespace kelvar::lumps
