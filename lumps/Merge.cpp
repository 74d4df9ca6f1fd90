// The merge run: the import rows placed into the target, duplicates settled, PNAMES and
// textures merged, the target rewritten and the log written.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/Merge.h"

#include "gfx/GamePalette.h"
#include "lumps/MergeParts.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <system_error>

namespace kelvar::lumps
{
namespace
{

// What one run keeps besides the session.
struct MergeRun
{
    MergeSession& Session;
    MergeBuffers Buffers;
    std::vector<bool> Skip;            // import rows left out
    std::vector<std::string> Doomed;   // target rows to be replaced, by name
    bool StopAsking = false;           // "N": every later duplicate is replaced without a question
    bool TexturesBlocked = false;      // a texture lump of the target is damaged: none is merged
    std::optional<TargetEntry> Anchor; // the row the new ones follow; none: the end
    std::size_t Position = 0;
};

wad::LumpName RowName(const ImportRow& row)
{
    return wad::LumpName::From(row.LumpName);
}

void SkipRow(MergeRun& run, std::size_t row)
{
    if (!run.Skip[row])
    {
        run.Skip[row] = true;
        ++run.Session.Counts.Skipped;
    }
}

// Step 1: a target, and inputs or the wish to rewrite the target alone.
bool CheckStart(MergeSession& session)
{
    if (session.Target.File.empty())
    {
        platform::ShowMessageLines(platform::LinesError, "No Target File",
                                   {"Please Select a Target PWAD"});
        return false;
    }
    if (!session.Imports.empty())
    {
        return true;
    }
    return platform::ShowMessageLines(
               platform::LinesInfo | platform::LinesCancel, "No Source Files",
               {"There are no Source Files selected", "Do you just want to rewrite the current",
                "Target File?", "Press Cancel to quit"},
               platform::MessageButtons::OkCancel) == 1;
}

// Step 2: where the new rows go, after the selected row or at the end.
bool ChoosePosition(MergeRun& run)
{
    const TargetList& target = run.Session.Target;
    const int selected = run.Session.Selected;
    const bool hasSelection =
        selected >= 0 && static_cast<std::size_t>(selected) < target.Entries.size();
    std::vector<std::string> lines = {"All files will be added to the end"};
    if (hasSelection)
    {
        run.Anchor = target.Entries[static_cast<std::size_t>(selected)];
        lines = {"Insert All files after", run.Anchor->Name.Text()};
    }
    return platform::ShowMessageLines(platform::LinesInfo | platform::LinesCancel,
                                      "Target Location", lines,
                                      platform::MessageButtons::OkCancel) == 1;
}

// The audit of a texture lump before it goes into the merge.
bool TextureLumpPasses(const ByteVector& bytes, const gfx::TextureLayout& layout, bool pnames)
{
    return pnames ? PnamesLumpFits(bytes) : gfx::CheckTextureLump(bytes, layout);
}

// Step 4: the target's own PNAMES, then its TEXTURE1 and TEXTURE2, into the buffers.
void LoadTargetTextures(MergeRun& run)
{
    const TargetList& target = run.Session.Target;
    struct Kind
    {
        const char* Name;
        const char* Title;
        const char* Tag;
        bool Seen = false;
    };
    Kind kinds[] = {{"PNAMES", "Pnames", ""},
                    {"TEXTURE1", "Texture1", "TEXT1target"},
                    {"TEXTURE2", "Texture2", "TEXT2target"}};
    for (int pass = 0; pass < 2; ++pass)
    {
        for (const TargetEntry& entry : target.Entries)
        {
            for (std::size_t k = pass == 0 ? 0 : 1; k < (pass == 0 ? 1u : 3u); ++k)
            {
                Kind& kind = kinds[k];
                if (!entry.Name.Is(kind.Name) || entry.ImportIndex >= 0)
                {
                    continue;
                }
                if (kind.Seen)
                {
                    platform::ShowMessageLines(
                        platform::LinesInfo, kind.Title,
                        {platform::Format("Target has more than one %s lump", kind.Name),
                         "Only the first one is used"});
                    continue;
                }
                kind.Seen = true;
                const std::optional<ByteVector> bytes =
                    ReadSpan(target.File, entry.FileOffset, entry.Size);
                if (!bytes || !TextureLumpPasses(*bytes, run.Buffers.Layout, k == 0))
                {
                    // Merging around a damaged lump would lose what it holds: every texture
                    // lump of the target is kept as it is and no source's is taken in.
                    platform::ShowError("Target %s is damaged\n\nTextures and PNAMES are not "
                                        "merged; the Target's are kept as they are",
                                        kind.Name);
                    run.TexturesBlocked = true;
                    continue;
                }
                if (k == 0)
                {
                    MergePnames(run.Buffers, *bytes);
                }
                else
                {
                    MergeTextures(run.Buffers, kind.Tag, *bytes);
                }
            }
        }
    }
}

// The duplicate question; 1 replace, 0 replace and stop asking, 2 stop the merge.
int AskDuplicate(const std::string& name)
{
    platform::Message question;
    question.Title = "Duplicate";
    question.Lines = {"Lump Name",
                      name,
                      "is already in use in Target File",
                      "and will be replaced",
                      "Reply Y to Continue",
                      "Reply N to no longer check for Duplicates",
                      "Reply Cancel to STOP"};
    question.Icon = platform::MessageIcon::Question;
    question.Buttons = platform::MessageButtons::YesNoCancel;
    question.Centered = true;
    return platform::TheUi().Show(question);
}

// A marker of a range (FF_START, P_END...): another range of the same kind goes beside the
// target's, since taking the target's markers away would leave its lumps outside any range.
bool IsRangeMarker(const ImportRow& row)
{
    const std::string name = wad::UpperText(row.LumpName);
    return row.LevelLayout == 0 && row.Entries.size() == 1 && row.Entries.front().Size == 0 &&
           (name.ends_with("_START") || name.ends_with("_END"));
}

// One row of step 5. Returns false when the merge is to stop.
bool CheckRowForDuplicates(MergeRun& run, std::size_t r,
                           std::map<std::uint64_t, std::size_t>& earlier)
{
    MergeSession& session = run.Session;
    const ImportRow& row = session.Imports[r];
    const wad::LumpName name = RowName(row);
    if (IsRefusedRowName(row))
    {
        platform::ShowMessageLines(platform::LinesInfo, "Reserved Name",
                                   {"** WARNING **", row.LumpName,
                                    "This name is reserved for level contents and can't be used"});
        SkipRow(run, r);
        return true;
    }
    if (IsTextureLumpName(name) || IsRangeMarker(row))
    {
        return true;
    }
    const std::optional<FoundTarget> inTarget = FindTargetEntry(session.Target, row.LumpName);
    const auto before = earlier.find(name.Key());
    const bool earlierLevel =
        before != earlier.end() && session.Imports[before->second].LevelLayout != 0;
    if ((inTarget && (inTarget->Level.Layout != 0 || row.LevelLayout != 0)) ||
        (before != earlier.end() && (earlierLevel || row.LevelLayout != 0)))
    {
        platform::ShowError(
            "Level %s is a duplicate\nLevels can not be duplicates\n\nPlease RENAME!",
            row.LumpName.c_str());
        SkipRow(run, r);
        return true;
    }
    if (!inTarget && before == earlier.end())
    {
        earlier[name.Key()] = r;
        return true;
    }
    if (session.Options.AllowDuplicates)
    {
        run.Buffers.Log.push_back(row.LumpName + " ** Duplicate Name added ** ");
        earlier[name.Key()] = r;
        return true;
    }
    const int answer = run.StopAsking ? 1 : AskDuplicate(row.LumpName);
    if (answer == 2)
    {
        run.Buffers.Log.push_back("Import cancelled");
        platform::ShowInfo("Import cancelled");
        return false;
    }
    run.StopAsking = run.StopAsking || answer == 0;
    if (before != earlier.end())
    {
        // Two inputs of one name: the later one is what the user gets.
        run.Buffers.Log.push_back(platform::Format(
            "%s ** Duplicate Name (row %d replaced by row %d)", row.LumpName.c_str(),
            static_cast<int>(before->second), static_cast<int>(r)));
        SkipRow(run, before->second);
        --session.Counts.Skipped;
    }
    if (inTarget)
    {
        run.Doomed.push_back(row.LumpName);
    }
    ++session.Counts.Replaced;
    earlier[name.Key()] = r;
    return true;
}

// Steps 5 and 6: every import row checked, the target rows it replaces removed.
bool SettleDuplicates(MergeRun& run)
{
    MergeSession& session = run.Session;
    platform::TheUi().SetStatusText("Import checking duplicates");
    std::map<std::uint64_t, std::size_t> earlier;
    for (std::size_t r = 0; r < session.Imports.size(); ++r)
    {
        platform::TheUi().ShowProgress(
            platform::Format("Import Checking %d for Duplicates", static_cast<int>(r)),
            session.Imports[r].LumpName);
        const bool source =
            SameSourceFile(session.Imports[r].File, session.Target.File) ||
            SameSourceFile(session.Imports[r].File, wad::BakPathOf(session.Target.File));
        if (source)
        {
            platform::TheUi().EndProgress();
            platform::ShowError("The Source File\n\n%s\n\nduplicates the Target File\n\nPlease "
                                "select different names!",
                                session.Imports[r].File.c_str());
            return false;
        }
        if (!CheckRowForDuplicates(run, r, earlier))
        {
            platform::TheUi().EndProgress();
            return false;
        }
    }
    platform::TheUi().EndProgress();
    platform::TheUi().SetStatusText("Import deleting Duplicates");
    for (const std::string& name : run.Doomed)
    {
        if (RemoveTargetEntry(session.Target, name, -1) == 0)
        {
            platform::ShowError("Target %s not found?", name.c_str());
        }
        run.Buffers.Log.push_back(name + " ** Duplicate Name (deleted)\n");
    }
    return true;
}

// Where the new rows begin: after the anchor row while it is there, else at the end.
void PlaceInsertPosition(MergeRun& run)
{
    TargetList& target = run.Session.Target;
    run.Position = target.Entries.size();
    if (!run.Anchor)
    {
        return;
    }
    const std::string name = run.Anchor->Name.Text();
    const std::optional<FoundTarget> found =
        FindTargetEntry(target, name, run.Anchor->ImportIndex < 0 ? run.Anchor->Ordinal : -1);
    if (!found)
    {
        platform::ShowError("** ERROR ** Resume name %s not found\n\nAfter Deleting duplicate %s",
                            name.c_str(), name.c_str());
        return;
    }
    run.Position = found->Index + static_cast<std::size_t>(found->Level.Count);
}

// Inserts an import row's entries at the run's position, which then stands past them.
bool InsertRow(MergeRun& run, std::size_t r)
{
    ImportRow& row = run.Session.Imports[r];
    std::error_code error;
    if (!std::filesystem::is_regular_file(row.File, error) || !ReadSpan(row.File, 0, 0).has_value())
    {
        ShowSourceNotReadable(row.File);
        SkipRow(run, r);
        return false;
    }
    std::vector<TargetEntry> entries = row.Entries;
    for (TargetEntry& entry : entries)
    {
        entry.ImportIndex = static_cast<std::int32_t>(r);
    }
    // A row may have been renamed in the list: its head takes the row's name.
    entries.front().Name = RowName(row);
    InsertTargetEntry(run.Session.Target, run.Position, entries);
    ++run.Session.Counts.Added;
    return true;
}

// The bytes of a row's one lump, or nothing after the notice.
std::optional<ByteVector> RowBytes(MergeRun& run, std::size_t r)
{
    const ImportRow& row = run.Session.Imports[r];
    const TargetEntry& entry = row.Entries.front();
    std::optional<ByteVector> bytes = ReadSpan(row.File, entry.FileOffset, entry.Size);
    if (!bytes)
    {
        ShowSourceNotReadable(row.File);
        SkipRow(run, r);
    }
    return bytes;
}

// The first PNAMES of a source WAD; nothing when it has none or can't be read.
std::optional<ByteVector> SourcePnames(const ImportRow& row)
{
    std::string magic;
    std::vector<TargetEntry> entries;
    if (!row.FromWad || ReadWadEntries(row.File, magic, entries) != WadRead::Read)
    {
        return std::nullopt;
    }
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [](const TargetEntry& e) { return e.Name.Is("PNAMES"); });
    return found == entries.end() ? std::nullopt
                                  : ReadSpan(row.File, found->FileOffset, found->Size);
}

bool SkipTextureRow(MergeRun& run, std::size_t r)
{
    if (!run.TexturesBlocked)
    {
        return false;
    }
    run.Buffers.Log.push_back(run.Session.Imports[r].LumpName +
                              " ignored: the Target's PNAMES or TEXTUREx is damaged");
    SkipRow(run, r);
    return true;
}

// Step 8: PNAMES rows, their names merged.
void InsertPnamesRows(MergeRun& run)
{
    for (std::size_t r = 0; r < run.Session.Imports.size(); ++r)
    {
        if (run.Skip[r] || !RowName(run.Session.Imports[r]).Is("PNAMES") || SkipTextureRow(run, r))
        {
            continue;
        }
        const std::optional<ByteVector> bytes = RowBytes(run, r);
        if (!bytes)
        {
            continue;
        }
        if (!PnamesLumpFits(*bytes))
        {
            run.Buffers.Log.push_back(platform::Format(
                "PNAMES size error\n\ndata size=%d, should be %d", static_cast<int>(bytes->size()),
                static_cast<int>(LumpCount(*bytes)) * 8 + 4));
            SkipRow(run, r);
            continue;
        }
        if (InsertRow(run, r))
        {
            MergePnames(run.Buffers, *bytes);
        }
    }
}

// Step 9: TEXTURE1 and TEXTURE2 rows, translated to the merged PNAMES and merged.
void InsertTextureRows(MergeRun& run)
{
    for (std::size_t r = 0; r < run.Session.Imports.size(); ++r)
    {
        const ImportRow& row = run.Session.Imports[r];
        const wad::LumpName name = RowName(row);
        const bool second = name.Is("TEXTURE2");
        if (run.Skip[r] || !(name.Is("TEXTURE1") || second) || SkipTextureRow(run, r))
        {
            continue;
        }
        const std::optional<ByteVector> pnames = SourcePnames(row);
        if (!pnames)
        {
            platform::ShowError("A TEXTURE file was found with no matching PNAMES\n\nA single "
                                "PNAMES must exist for any TEXTURE1/TEXTURE2 lump %d,%d",
                                static_cast<int>(r), 0);
            SkipRow(run, r);
            continue;
        }
        std::optional<ByteVector> textures = RowBytes(run, r);
        if (!textures)
        {
            continue;
        }
        if (!gfx::CheckTextureLump(*textures, run.Buffers.Layout))
        {
            run.Buffers.Log.push_back(row.LumpName + " of " + row.File.string() +
                                      " failed its size check and is ignored");
            SkipRow(run, r);
            continue;
        }
        const char* tag = second ? "TEXT2source" : "TEXT1source";
        if (InsertRow(run, r))
        {
            RemapTexturePatches(run.Buffers, tag, *textures, *pnames);
            MergeTextures(run.Buffers, tag, *textures);
        }
    }
}

// Step 10: every other row in list order.
void InsertOtherRows(MergeRun& run)
{
    for (std::size_t r = 0; r < run.Session.Imports.size(); ++r)
    {
        if (!run.Skip[r] && !IsTextureLumpName(RowName(run.Session.Imports[r])))
        {
            InsertRow(run, r);
        }
    }
}

void LogSettings(MergeRun& run)
{
    const MergeSession& session = run.Session;
    const gfx::PaletteOptions& palette = gfx::Palettes().Options;
    std::vector<std::string>& log = run.Buffers.Log;
    log.push_back(
        platform::Format("Processing %d Imported Lumps", static_cast<int>(session.Imports.size())));
    log.push_back(platform::Format(
        "Transparent Color index=%hd RGB=%hd,%hd,%hd GammaAdj=%hd",
        static_cast<short>(palette.TransparentIndex), static_cast<short>(palette.TransparentRed),
        static_cast<short>(palette.TransparentGreen), static_cast<short>(palette.TransparentBlue),
        static_cast<short>(palette.ImportGamma)));
    log.push_back(session.Options.WavToSnd ? "WAV converted to DOOM format"
                                           : "WAV format left as is");
    log.push_back(session.Options.MidiToMus ? "MIDI converted to DOOM format"
                                            : "MIDI format left as is");
}

// Step 13: the closing lines, the log file, the viewer.
void FinishLog(MergeRun& run)
{
    MergeSession& session = run.Session;
    std::vector<std::string>& log = run.Buffers.Log;
    log.push_back("Import Completed");
    log.push_back(platform::Format("Target File Entries=%d", session.Counts.Written));
    log.push_back("Target File Name=" + session.Target.File.string());
    log.push_back(platform::Format("Total Added= %d Duplicates= %d", session.Counts.Added,
                                   session.Counts.Replaced));
    const MergeBuffers& buffers = run.Buffers;
    if (!buffers.Textures.empty())
    {
        CheckMergedPatches(run.Buffers);
        log.push_back(platform::Format(
            "Total TEXURE1= %d size= %d\n\n      Add = %d\n      Dup = %d\n      Rep = %d\n\nTotal "
            "PNAMES = %d size= %d\n\n",
            static_cast<int>(LumpCount(buffers.Textures)),
            static_cast<int>(buffers.Textures.size()), buffers.Add, buffers.Dup, buffers.Rep,
            static_cast<int>(LumpCount(buffers.Pnames)), static_cast<int>(buffers.Pnames.size())));
    }
    const std::filesystem::path path = MergeLogPath();
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    std::ofstream out(path, std::ios::trunc);
    for (const std::string& line : log)
    {
        out << line << '\n';
    }
    out.close();
    if (out)
    {
        platform::TheUi().ShowTextFile("Merge/Import Log", path);
    }
}

// Steps 3 to 14, the log in the buffers. A run that stops before the target is written leaves
// the list as it was.
int RunMerge(MergeRun& run)
{
    MergeSession& session = run.Session;
    const TargetList before = session.Target;
    session.Counts = {};
    run.Skip.assign(session.Imports.size(), false);
    LoadTargetTextures(run);
    if (!SettleDuplicates(run))
    {
        session.Target = before;
        return 0;
    }
    PlaceInsertPosition(run);
    LogSettings(run);
    InsertPnamesRows(run);
    InsertTextureRows(run);
    InsertOtherRows(run);
    if (session.Options.SortTextures && !run.Buffers.Textures.empty())
    {
        platform::TheUi().SetStatusText("Sorting Textures");
        SortTextureBuffer(run.Buffers, run.Buffers.Textures);
    }
    platform::TheUi().SetStatusText("Import writing file");
    const int written = RewriteTargetFile(session, run.Buffers, !run.TexturesBlocked);
    if (written != 1)
    {
        session.Target = before;
        return written;
    }
    FinishLog(run);
    session.Imports.clear();
    session.Selected = -1;
    const std::filesystem::path file = session.Target.File;
    return ReadTargetFile(file, false, session.Target) == 1 ? 1 : -1;
}

} // namespace

std::filesystem::path MergeLogPath()
{
    return wad::Wad().ProgramDir / "KelvarMerge.LOG";
}

int SaveMerge(MergeSession& session)
{
    if (!CheckStart(session))
    {
        return 0;
    }
    MergeRun run{session, {}, {}, {}, false, false, std::nullopt, 0};
    if (!ChoosePosition(run))
    {
        return 0;
    }
    // The run writes its log into the buffers' and gives it back to the session at the end.
    run.Buffers.Layout = gfx::CurrentTextureLayout();
    run.Buffers.Log = std::move(session.Log);
    const int result = RunMerge(run);
    session.Log = std::move(run.Buffers.Log);
    return result;
}

} // namespace kelvar::lumps
