// The merge pass: marker checks, the lump rule and the level rule for each PWAD entry.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/WadMerge.h"

#include "map/GameCodes.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/ErrorLog.h"
#include "wad/LevelList.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

#include <algorithm>
#include <array>
#include <optional>

namespace kelvar::wad
{
namespace
{

using platform::Format;

// What one PWAD scan has seen so far.
struct MergeScan
{
    int FileNumber = 0;
    FileRec* File = nullptr;
    bool Warnings = false;
    bool TxStart = false, TxEnd = false;
    bool FStart = false, FEnd = false;
    bool SStart = false;
    int Rejected = 0;
    int OtherGame = 0;
    std::int64_t PriorLevelEnd = 0;
};

const char* const ExpertNote = "(This msg is NOT displayed in Expert Mode)";

LumpEntry EmptyEntry(std::string_view name, int fileNumber)
{
    LumpEntry entry;
    entry.Name = LumpName::From(name);
    entry.FileNumber = static_cast<std::int16_t>(fileNumber);
    return entry;
}

// Marker order checks: they only warn, and not at all in Expert Mode.
void CheckMarkers(MergeScan& scan, const LumpName& name)
{
    const bool quiet = Wad().Options.ExpertMode;
    if (name.Is("TX_START"))
    {
        scan.TxStart = true;
    }
    else if (name.Is("TX_END"))
    {
        if (!scan.TxStart && !quiet)
        {
            platform::ShowMessageLines(0, "TX loading",
                                       {"Caution - TX_END before TX_START", ExpertNote});
        }
        scan.TxEnd = true;
    }
    else if (name.Is("F_START") || name.Is("FF_START"))
    {
        scan.FStart = true;
    }
    else if (name.Is("F_END") || name.Is("FF_END"))
    {
        if (!scan.FStart && !quiet)
        {
            platform::ShowMessageLines(0, "Flat loading",
                                       {"Caution - F_END,FF_END before F_START,FF_END",
                                        "All FLAT replacements may not show up!", ExpertNote});
        }
        scan.FEnd = true;
    }
    else if (name.Is("S_START") || name.Is("SS_START"))
    {
        scan.SStart = true;
    }
    else if ((name.Is("S_END") || name.Is("SS_END")) && !scan.SStart && !quiet)
    {
        platform::ShowMessageLines(0, "Spriteloading",
                                   {"Caution - S_END,SS_END before S_START,SS_END",
                                    "All SPRITE replacements may not show up!", ExpertNote});
    }
}

// A PWAD's flat, sprite and patch markers take their doubled names in memory, so that they
// never collide with the IWAD's markers of the same name.
void DoubleMarker(LumpDirectory& own, std::size_t at)
{
    static constexpr std::array<std::array<std::string_view, 3>, 6> Pairs = {{
        {"F_START", "FF_START", "FF_START"},
        {"F_END", "FF_END", "FF_END"},
        {"S_START", "SS_START", "SS_START"},
        {"S_END", "SS_END", "SS_END"},
        {"P_START", "PP_START", "PP_START"},
        {"P_END", "PP_END", "PP_END"},
    }};
    for (const auto& pair : Pairs)
    {
        if (own[at].Name.Is(pair[0]) || own[at].Name.Is(pair[1]))
        {
            own.Rename(at, LumpName::From(pair[2]));
            return;
        }
    }
}

bool IsTextureControl(const LumpName& name)
{
    return name.Is("TEXTURE1") || name.Is("TEXTURE2") || name.Is("PNAMES");
}

// What the master directory holds of a lump's name, found by one walk over its entries.
struct NameWalk
{
    int FirstPwad = -1;   // the oldest entry of that name from a PWAD
    int LastPwad = -1;    // the newest
    bool Settled = false; // a script slot took the lump, or an earlier scan merged it already
};

// The walk over the entries of the lump's name, oldest first: a script slot takes the lump at
// once; this file's own entry at the same data means an earlier scan merged it already.
NameWalk WalkName(MergeScan& scan, const LumpEntry& entry)
{
    LumpDirectory& master = Master();
    const bool allowDuplicates = Wad().Options.AllowDuplicates;
    NameWalk walk;
    master.ForEachPosition(entry.Name,
                           [&](std::int32_t position)
                           {
                               const auto m = static_cast<std::size_t>(position);
                               const LumpEntry& old = master[m];
                               if (old.LumpGroup == GroupScript)
                               {
                                   LumpEntry& slot = master.Edit(m);
                                   slot.Offset = entry.Offset;
                                   slot.Size = entry.Size;
                                   slot.FileNumber = static_cast<std::int16_t>(scan.FileNumber);
                                   walk.Settled = true;
                                   return false;
                               }
                               if (old.FileNumber != 0)
                               {
                                   walk.FirstPwad = walk.FirstPwad < 0 ? position : walk.FirstPwad;
                                   walk.LastPwad = position;
                               }
                               if (old.FileNumber == scan.FileNumber)
                               {
                                   walk.Settled =
                                       old.Offset == entry.Offset && old.Size == entry.Size;
                                   return !walk.Settled && allowDuplicates;
                               }
                               return true;
                           });
    return walk;
}

// A texture control that another PWAD has too: the log says the display may be wrong.
void NoteTextureDuplicate(const MergeScan& scan, const NameWalk& walk, const LumpName& name,
                          int index)
{
    const WadState& wad = Wad();
    if (!scan.Warnings || !wad.Options.DuplicateLumpMsg || walk.FirstPwad < 0 ||
        !IsTextureControl(name))
    {
        return;
    }
    const int other = Master()[static_cast<std::size_t>(walk.FirstPwad)].FileNumber;
    if (other == scan.FileNumber)
    {
        return;
    }
    const std::string text = name.Text();
    LogLine({Format("** WARNING ** entry%d lump %s duplicate exists in the following files", index,
                    text.c_str()),
             "Textures display may be incorrect", "Reloading and Saving may rearrange order",
             "(Close All Files and Open again to fix)",
             "(or get rid of duplicate resources using F7-Lump tool)",
             "(Disable this message in F5 - Duplicate msg)",
             wad.Files[static_cast<std::size_t>(other)].FileName, scan.File->FileName});
}

// A second lump of the name in this same PWAD: dropped unless duplicates are allowed. True
// when it was dropped.
bool DropsDuplicate(const MergeScan& scan, const NameWalk& walk, const LumpName& name, int index)
{
    if (walk.LastPwad < 0 ||
        Master()[static_cast<std::size_t>(walk.LastPwad)].FileNumber != scan.FileNumber ||
        Wad().Options.AllowDuplicates)
    {
        return false;
    }
    if (scan.Warnings)
    {
        const std::string text = name.Text();
        LogLine({Format("** Duplicate ** entry%d %8.8s in PWAD", index, text.c_str()),
                 "- ignored (use F7 Lump tool to fix) **",
                 "or enable duplicates in F5 project options", scan.File->FileName});
        if (name.Is("SCRIPTS"))
        {
            LogLine({"==== save this level to remove the imbedded script name"});
        }
    }
    return true;
}

// Appends the lump to the master directory, unless it is full.
void AppendLump(MergeScan& scan, const LumpEntry& entry, int index)
{
    LumpDirectory& master = Master();
    if (master.Size() >= Wad().MasterCapacity)
    {
        ++scan.Rejected;
        const std::string text = entry.Name.Text();
        LogLine({Format("entry%d %8.8s ** Max new Lumps Exceeded - ignored **\n", index,
                        text.c_str())});
        return;
    }
    LumpEntry added = entry;
    added.FileNumber = static_cast<std::int16_t>(scan.FileNumber);
    master.Append(added);
}

// The lump rule: a lump outside any level, laid over the master directory.
void MergeLump(MergeScan& scan, std::size_t at)
{
    WadState& wad = Wad();
    const LumpEntry entry = scan.File->Directory[at];
    const LumpName name = entry.Name;
    const int index = static_cast<int>(at);

    if (scan.File->IwadAsPwad)
    {
        return; // only the levels of an IWAD opened as a PWAD are used
    }
    if ((IsTextureControl(name) || name.Is("S_START") || name.Is("SS_START")) &&
        wad.Hooks.ResetCatalogue)
    {
        wad.Hooks.ResetCatalogue(name);
    }
    if (ReservedName(name) > 0 && !name.StartsWith("GL_"))
    {
        const std::string text = name.Text();
        LogLine({Format(" WARNING entry %d ignored: reserved name %s found outside of level "
                        "name area **\n",
                        index, text.c_str())});
        return;
    }
    const NameWalk walk = WalkName(scan, entry);
    if (walk.Settled)
    {
        return;
    }
    if (wad.Hooks.ForgetPicture)
    {
        wad.Hooks.ForgetPicture(name);
    }
    NoteTextureDuplicate(scan, walk, name, index);
    if (DropsDuplicate(scan, walk, name, index) || (!wad.Options.GlNodes && name.StartsWith("GL_")))
    {
        return;
    }
    AppendLump(scan, entry, index);
}

// Offsets should rise through a file; a level whose data starts inside the previous level's
// is logged, as a sign of a damaged or hand-patched file.
void NoteOverlap(MergeScan& scan, std::size_t at, int count, const std::string& text)
{
    const LumpDirectory& own = scan.File->Directory;
    std::int64_t end = scan.PriorLevelEnd;
    bool logged = Wad().Options.ExpertMode;
    for (std::size_t k = at; k < at + static_cast<std::size_t>(count); ++k)
    {
        const LumpEntry& entry = own[k];
        if (entry.Offset == 0 || entry.Size == 0)
        {
            continue;
        }
        if (!logged && entry.Offset < scan.PriorLevelEnd)
        {
            LogLine({Format(" Level Name=%s ** offset=%d overlaps prioroffset=%d", text.c_str(),
                            entry.Offset, static_cast<int>(scan.PriorLevelEnd))});
            logged = true;
        }
        end = std::max<std::int64_t>(end, static_cast<std::int64_t>(entry.Offset) + entry.Size);
    }
    scan.PriorLevelEnd = end;
}

bool AppendLevel(MergeScan& scan, std::size_t at, int count, int layout)
{
    WadState& wad = Wad();
    LumpDirectory& master = Master();
    const LumpDirectory& own = scan.File->Directory;
    if (master.Size() + 7 + static_cast<std::size_t>(count) >= wad.MasterCapacity)
    {
        scan.Rejected += count;
        const std::string text = own[at].Name.Text();
        LogLine({Format("entry%d %8.8s ** Max new Lumps Exceeded - ignored **\n",
                        static_cast<int>(at), text.c_str())});
        return false;
    }
    const bool hexenProject = wad.Game.Format == map::GameHexen;
    bool hasGl = false;
    bool behaviorAdded = false;
    for (int k = 0; k < count; ++k)
    {
        LumpEntry entry = own[at + static_cast<std::size_t>(k)];
        entry.FileNumber = static_cast<std::int16_t>(scan.FileNumber);
        const bool gl = entry.Name.StartsWith("GL_");
        hasGl = hasGl || gl;
        if ((gl && !wad.Options.GlNodes) ||
            (layout == map::LayoutHexen && !hexenProject && k == 11))
        {
            continue;
        }
        master.Append(entry);
        if (layout == map::LayoutDoom && hexenProject && k == 10)
        {
            master.Append(EmptyEntry("BEHAVIOR", scan.FileNumber));
            behaviorAdded = true;
        }
    }
    if (layout == map::LayoutDoom && hexenProject && !behaviorAdded)
    {
        master.Append(EmptyEntry("BEHAVIOR", scan.FileNumber));
    }
    if (wad.Options.GlNodes && !hasGl)
    {
        const std::string marker = "GL_" + own[at].Name.Text().substr(0, 5);
        for (const std::string_view name :
             {std::string_view(marker), std::string_view("GL_VERT"), std::string_view("GL_SEGS"),
              std::string_view("GL_SSECT"), std::string_view("GL_NODES"),
              std::string_view("GL_PVS")})
        {
            master.Append(EmptyEntry(name, scan.FileNumber));
        }
    }
    return true;
}

// Replaces a level that the master directory has already: its lumps are sorted into the
// canonical slots, written back over the file's own entries in that order, and laid over
// the master's entries slot by slot. The master level, spare slots included, is emptied
// first so that no lump of an older version survives under the new one.
std::size_t OverlayLevel(MergeScan& scan, std::size_t at, int count, std::size_t masterAt)
{
    LumpDirectory& master = Master();
    LumpDirectory& own = scan.File->Directory;
    int masterCount = 1;
    LevelAt(master.Entries(), masterAt, master.Size(), masterCount);
    const std::size_t masterEnd = masterAt + static_cast<std::size_t>(masterCount);
    for (std::size_t m = masterAt; m < masterEnd; ++m)
    {
        LumpEntry& entry = master.Edit(m);
        entry.Offset = 0;
        entry.Size = 0;
        entry.CachedData = 0;
        entry.FileNumber = static_cast<std::int16_t>(scan.FileNumber);
    }

    std::array<std::optional<LumpEntry>, 19> slots;
    for (int k = 0; k < count; ++k)
    {
        const LumpEntry& entry = own[at + static_cast<std::size_t>(k)];
        const int slot = LevelSlot(entry.Name, k == 0);
        if (slot >= 0 && !slots[static_cast<std::size_t>(slot)])
        {
            slots[static_cast<std::size_t>(slot)] = entry;
        }
    }
    std::vector<LumpEntry> sorted;
    std::vector<int> sortedSlots;
    for (std::size_t slot = 0; slot < slots.size(); ++slot)
    {
        if (slots[slot])
        {
            sorted.push_back(*slots[slot]);
            sortedSlots.push_back(static_cast<int>(slot));
        }
    }
    own.ReplaceRange(at, at + static_cast<std::size_t>(count), sorted);
    scan.File->LumpCount = static_cast<std::int32_t>(own.Size());

    std::size_t next = masterAt;
    for (std::size_t s = 0; s < sorted.size(); ++s)
    {
        for (std::size_t m = next; m < masterEnd; ++m)
        {
            if (LevelSlot(master[m].Name, m == masterAt) != sortedSlots[s])
            {
                continue;
            }
            LumpEntry& target = master.Edit(m);
            target.Offset = sorted[s].Offset;
            target.Size = sorted[s].Size;
            if (sortedSlots[s] == 12)
            {
                master.Rename(m, sorted[s].Name);
            }
            next = m + 1;
            break;
        }
    }
    return sorted.size();
}

bool SameLevelData(std::size_t masterAt, const MergeScan& scan, std::size_t at)
{
    const LumpDirectory& master = Master();
    const LumpDirectory& own = scan.File->Directory;
    if (masterAt + 1 >= master.Size() || at + 1 >= own.Size())
    {
        return false;
    }
    const LumpEntry& a = master[masterAt + 1];
    const LumpEntry& b = own[at + 1];
    return a.Offset == b.Offset && a.Size == b.Size;
}

// The level rule. Returns how many of the file's entries the level took.
std::size_t MergeLevel(MergeScan& scan, std::size_t at, int count, int layout)
{
    WadState& wad = Wad();
    LumpDirectory& master = Master();
    const LumpDirectory& own = scan.File->Directory;
    const LumpName name = own[at].Name;
    const std::string text = name.Text();
    const int index = static_cast<int>(at);
    const char* format = layout == map::LayoutHexen ? "HEXENformat" : "DOOMformat";

    NoteOverlap(scan, at, count, text);
    if (count < 11)
    {
        if (count < 5)
        {
            platform::ShowError(
                "entry%d Level %s [%s] is damaged - has only %d entries\n\n! Missing data "
                "will crash Kelvar and is ignored !",
                index, text.c_str(), format, count);
            return static_cast<std::size_t>(count);
        }
        platform::ShowError(
            "entry%d Level %s [%s] is damaged - has only %d entries\n\n!  Warning Level "
            "may crash Kelvar  !\n\nThis is usually caused by missing Level Lumps\n\nIf the "
            "level displays, saving will fix this error",
            index, text.c_str(), format, count);
    }
    const int expected = layout == map::LayoutHexen ? 12 : 11;
    if (expected != wad.Game.ExpectedLevelEntries)
    {
        ++scan.OtherGame;
    }
    if (!wad.Options.GlNodes && count > expected)
    {
        count = expected;
    }
    const bool wantsE = map::IsEpisodicGame(wad.Game.Game);
    if (UpperAscii(name.Chars[0]) != (wantsE ? 'E' : 'M'))
    {
        LogLine({Format(" Level Name ** %s ** is not for this Game", text.c_str()),
                 "Use \"Save Level As NewMap\" (F3) To change the level name\n"});
    }

    const int masterAt = master.FindLast(name, 0, master.Size());
    bool hasBehavior = false;
    for (int k = 0; k < count; ++k)
    {
        hasBehavior = hasBehavior || own[at + static_cast<std::size_t>(k)].Name.Is("BEHAVIOR");
    }
    if (masterAt < 0 && wad.Game.Format == map::GameHexen && !hasBehavior)
    {
        LogLine(
            {Format("WARNING - Level ** %s ** is not HEXEN (missing BEHAVIOR)\n", text.c_str())});
    }
    if (masterAt >= 0)
    {
        const int owner = master[static_cast<std::size_t>(masterAt)].FileNumber;
        if (owner == scan.FileNumber)
        {
            if (SameLevelData(static_cast<std::size_t>(masterAt), scan, at))
            {
                return static_cast<std::size_t>(count); // merged by an earlier scan
            }
            if (!wad.Options.AllowDuplicates)
            {
                if (scan.Warnings)
                {
                    LogLine({Format("** Duplicate ** entry%d %8.8s in PWAD", index, text.c_str()),
                             "- ignored (use F7 Lump tool to fix) **",
                             "or enable duplicates in F5 project options", scan.File->FileName});
                }
                return static_cast<std::size_t>(count);
            }
        }
        else if (owner != 0 && scan.Warnings)
        {
            LogLine({Format("** WARNING ** entry%d level %s also exists in the following files",
                            index, text.c_str()),
                     wad.Files[static_cast<std::size_t>(owner)].FileName, scan.File->FileName});
        }
    }

    scan.File->LevelLayout = static_cast<std::int16_t>(layout);
    if (scan.File->FirstLevelName.Empty())
    {
        scan.File->FirstLevelName = name;
    }
    if (masterAt < 0)
    {
        // A level that found no room is left out of the level list too, so the list never
        // names a level the directory doesn't hold.
        if (AppendLevel(scan, at, count, layout))
        {
            NoteLevel(name, scan.FileNumber);
        }
        return static_cast<std::size_t>(count);
    }
    NoteLevel(name, scan.FileNumber);
    return OverlayLevel(scan, at, count, static_cast<std::size_t>(masterAt));
}

void FinishScan(MergeScan& scan)
{
    WadState& wad = Wad();
    if (scan.Rejected > 0)
    {
        platform::ShowError(
            "Increase the Additional Lump Entries by %d\n\nLocated in F5 options (under Set "
            "Main IWAD)",
            scan.Rejected);
    }
    EnsureSpareEntry();
    if (scan.FStart != scan.FEnd)
    {
        platform::ShowMessageLines(0, "Flat loading",
                                   {"Caution - F_START / FF_START is not matched",
                                    "with F_END / FF_END or wrong sequence?",
                                    "FLAT replacements only will show up!"});
    }
    if (scan.TxStart != scan.TxEnd)
    {
        platform::ShowMessageLines(0, "TX loading",
                                   {"Caution - TX_START is not matched with TX_END"});
    }
    if (scan.OtherGame > 0)
    {
        LogLine({Format(" **WARNING** %d Levels from another game found ", scan.OtherGame),
                 " !!! DO NOT Group Save this file !!!\n",
                 "After saving this file - EXIT and restart to get rid of this message\n"});
    }
    wad.OtherGameLevels += scan.OtherGame;
    RenumberOrdinals();
}

} // namespace

void MergePwad(int fileNumber, bool warnings)
{
    MergeScan scan;
    scan.FileNumber = fileNumber;
    scan.File = &Wad().Files[static_cast<std::size_t>(fileNumber)];
    scan.Warnings = warnings;
    LumpDirectory& own = scan.File->Directory;
    std::size_t at = 0;
    while (at < own.Size())
    {
        if (!own[at].Name.Printable())
        {
            ++at;
            continue;
        }
        CheckMarkers(scan, own[at].Name);
        DoubleMarker(own, at);
        int count = 0;
        const int layout = LevelAt(own.Entries(), at, own.Size(), count);
        if (layout != map::LayoutNone)
        {
            at += std::max<std::size_t>(MergeLevel(scan, at, count, layout), 1);
            continue;
        }
        MergeLump(scan, at);
        ++at;
    }
    FinishScan(scan);
}

} // namespace kelvar::wad
