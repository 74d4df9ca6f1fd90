// Recolouring the pictures of the open PWADs: source palette, scan, translation, rewrite.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PaletteConvert.h"

#include "gfx/GamePalette.h"
#include "gfx/PaletteFiles.h"
#include "gfx/Patch.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/WadFormat.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <algorithm>
#include <map>
#include <system_error>

namespace kelvar::gfx
{
namespace
{

// ---------------------------------------------------------------------------------------------
// The source palette

// True when the open IWAD is of the game whose palette `source` names.
bool IwadIsOfGame(PaletteSource source)
{
    const int game = wad::Wad().Game.Game;
    switch (source)
    {
    case PaletteSource::Doom:
        return game == 1 || game == 2;
    case PaletteSource::Heretic:
        return game == 3;
    case PaletteSource::Hexen:
        return game == 4;
    case PaletteSource::Strife:
        return game == 5;
    case PaletteSource::UserFile:
        break;
    }
    return false;
}

// Writes the IWAD's first palette as `path`; false when there is none or it can't be written.
bool WritePacFromIwad(const std::filesystem::path& path)
{
    const auto playpal = FindPaletteLump("PLAYPAL", true);
    if (!playpal)
    {
        return false;
    }
    const std::vector<std::uint8_t> bytes = ReadWholeLump(*playpal);
    if (bytes.size() < PaletteBytes)
    {
        return false;
    }
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    return WriteFileBytes(path, std::span(bytes).first(PaletteBytes));
}

// A game's palette file, written from the IWAD first when it is missing and can be made.
std::optional<std::filesystem::path> GamePaletteFile(PaletteSource source)
{
    const std::filesystem::path path = PaletteFilePath(source);
    if (std::filesystem::exists(path))
    {
        return path;
    }
    if (IwadIsOfGame(source) && WritePacFromIwad(path))
    {
        return path;
    }
    platform::ShowError("%s not found\n\nIt holds the colours the graphics were made with.\n"
                        "Make it from that game's IWAD with\n"
                        "kelvar-cli palette export IWAD -o %s",
                        path.c_str(), path.c_str());
    return std::nullopt;
}

// The user's palette file: the one given, else the one chosen in the file dialog.
std::optional<std::filesystem::path> UserPaletteFile(const ConvertChoices& choices)
{
    if (!choices.UserPalette.empty())
    {
        return choices.UserPalette;
    }
    platform::FileChoice choice;
    choice.Caption = "User Palette file";
    choice.Filter = "Palette (*.PAC)|*.PAC|";
    choice.InitialPath = "*.PAC";
    return platform::TheUi().ChooseFile(choice);
}

// The source palette into `palette`: 1 read, 0 the file dialog cancelled, -1 after a message.
int ReadSourcePalette(const ConvertChoices& choices, Palette& palette)
{
    const bool user = choices.Source == PaletteSource::UserFile;
    const std::optional<std::filesystem::path> path =
        user ? UserPaletteFile(choices) : GamePaletteFile(choices.Source);
    if (!path)
    {
        return user ? 0 : -1;
    }
    const std::optional<Palette> read = ReadPaletteFile(*path);
    if (!read)
    {
        platform::ShowError("%s is not a palette file\n\nA .PAC file holds 768 bytes of red, "
                            "green and blue.",
                            path->c_str());
        return -1;
    }
    palette = *read;
    return 1;
}

// ---------------------------------------------------------------------------------------------
// The scan

// The PWADs whose pictures may be rewritten: open PWAD records that are neither an IWAD used
// for its levels nor open for reading only.
std::vector<int> ExternalPwads()
{
    std::vector<int> files;
    for (int number = 1; number < wad::FileTableSize; ++number)
    {
        const wad::FileRec& file = wad::Wad().Files[static_cast<std::size_t>(number)];
        if (file.State != 0 && file.IsMain == 0 && !file.IwadAsPwad && !file.ReadOnly &&
            !file.Directory.Empty())
        {
            files.push_back(number);
        }
    }
    return files;
}

bool IsTextureDefinition(const wad::LumpName& name)
{
    return name.Is("PNAMES") || name.StartsWith("TEXTURE");
}

// The pictures of one file, its levels and texture definitions passed over.
void ScanFile(int fileNumber, GraphicKinds kinds, std::vector<ConvertCandidate>& found)
{
    wad::FileRec& file = wad::Wad().Files[static_cast<std::size_t>(fileNumber)];
    wad::EnsureOpen(file);
    const std::span<const wad::LumpEntry> entries = file.Directory.Entries();
    for (std::size_t at = 0; at < entries.size(); ++at)
    {
        int levelCount = 1;
        if (wad::LevelAt(entries, at, entries.size(), levelCount) != 0)
        {
            at += static_cast<std::size_t>(levelCount) - 1;
            continue;
        }
        const wad::LumpEntry& entry = entries[at];
        if (entry.Size <= 0 || IsTextureDefinition(entry.Name))
        {
            continue;
        }
        const std::string name = entry.Name.Text();
        const LumpClass kind =
            ClassifyLumpData(file.Stream.get(), entry.Offset, entry.Size, name.c_str());
        if (IsConvertibleKind(kind.Kind, kinds))
        {
            found.push_back({name, fileNumber, entry, kind.Kind, kind.Width, kind.Height});
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Translation

// Marks the bytes of one column's posts, pads included. False when a post or the column's end
// lies outside the lump.
bool MarkColumn(std::span<const std::uint8_t> lump, std::size_t at, std::vector<bool>& marked)
{
    const std::size_t size = lump.size();
    while (at < size && lump[at] != 255)
    {
        if (at + 3 > size)
        {
            return false;
        }
        const std::size_t closingPad = at + 3 + lump[at + 1];
        if (closingPad >= size)
        {
            return false;
        }
        std::fill(marked.begin() + static_cast<std::ptrdiff_t>(at + 2),
                  marked.begin() + static_cast<std::ptrdiff_t>(closingPad + 1), true);
        at = closingPad + 1;
    }
    return at < size;
}

// The bytes of a patch that belong to its posts; nothing when the patch doesn't hold.
std::optional<std::vector<bool>> MarkPatchPosts(std::span<const std::uint8_t> lump)
{
    const auto size = static_cast<std::int64_t>(lump.size());
    if (IsPatchHeader(lump.first(std::min(lump.size(), PatchHeaderBytes)), size) != PatchYes ||
        !CheckPatchColumns(lump))
    {
        return std::nullopt;
    }
    std::vector<bool> marked(lump.size(), false);
    const int width = ReadPatchHeader(lump).Width;
    for (int column = 0; column < width; ++column)
    {
        const auto offset = static_cast<std::uint32_t>(wad::ReadLe32(lump.data() + 8 + column * 4));
        if (!MarkColumn(lump, offset, marked))
        {
            return std::nullopt;
        }
    }
    return marked;
}

// The picture's bytes translated as its kind says; nothing for a kind that is neither a patch
// nor a raw picture, or a patch that doesn't hold.
std::optional<std::vector<std::uint8_t>> TranslateGraphic(std::vector<std::uint8_t> bytes,
                                                          LumpKind kind, const IndexTable& table)
{
    if (kind == LumpKind::Pic)
    {
        return TranslatePatch(bytes, table) ? std::optional(std::move(bytes)) : std::nullopt;
    }
    if (IsConvertibleKind(kind, GraphicKinds::Flats))
    {
        TranslateRaw(bytes, table);
        return bytes;
    }
    return std::nullopt;
}

// ---------------------------------------------------------------------------------------------
// Rewriting one file

struct FileOutcome
{
    std::vector<const ConvertCandidate*> Converted;
    bool Refused = false;
};

// The spans of a plan's entries, to follow offsets that a rewrite changed.
using Spans = std::vector<std::pair<std::int64_t, std::int64_t>>;

Spans SpansOf(const wad::RewritePlan& plan)
{
    Spans spans;
    spans.reserve(plan.Entries.size());
    for (const wad::RewriteEntry& entry : plan.Entries)
    {
        spans.emplace_back(entry.Offset, entry.DataSize());
    }
    return spans;
}

// The entry of `plan` that `candidate` stands for: same place, size and name, not yet taken.
int PlanEntryOf(const wad::RewritePlan& plan, const ConvertCandidate& candidate,
                const std::vector<bool>& taken)
{
    for (std::size_t i = 0; i < plan.Entries.size(); ++i)
    {
        const wad::RewriteEntry& entry = plan.Entries[i];
        if (!taken[i] && !entry.File.empty() && entry.Offset == candidate.Entry.Offset &&
            entry.Size == candidate.Entry.Size && wad::EqualNoCase(entry.Name, candidate.Name))
        {
            return static_cast<int>(i);
        }
    }
    return -1;
}

std::optional<std::vector<std::uint8_t>> ReadSpan(std::FILE* in, std::int64_t offset,
                                                  std::int64_t size)
{
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    if (in == nullptr || wad::CheckedSeek(in, offset) != 1 ||
        wad::CheckedRead(in, bytes.data(), size) != 1)
    {
        return std::nullopt;
    }
    return bytes;
}

// Puts the translated bytes of the file's chosen pictures into `plan`.
FileOutcome TranslateIntoPlan(const std::filesystem::path& path,
                              const std::vector<const ConvertCandidate*>& chosen,
                              const IndexTable& table, const std::string& progress,
                              wad::RewritePlan& plan)
{
    FileOutcome outcome;
    const wad::StreamPtr in = wad::OpenStream(path, "rb");
    std::vector<bool> taken(plan.Entries.size(), false);
    for (const ConvertCandidate* candidate : chosen)
    {
        const char* name = candidate->Name.c_str();
        platform::TheUi().ShowProgress(progress, GraphicInfoLine(*candidate));
        const int index = PlanEntryOf(plan, *candidate, taken);
        const auto bytes = index >= 0
                               ? ReadSpan(in.get(), candidate->Entry.Offset, candidate->Entry.Size)
                               : std::nullopt;
        if (!bytes)
        {
            platform::ShowError("%-8s Not found?", name);
            outcome.Refused = true;
            continue;
        }
        auto translated = TranslateGraphic(*bytes, candidate->Kind, table);
        if (!translated)
        {
            platform::ShowError("%-8s Invalid Image", name);
            outcome.Refused = true;
            continue;
        }
        const auto at = static_cast<std::size_t>(index);
        taken[at] = true;
        plan.Entries[at] =
            wad::RewriteEntry::FromBytes(plan.Entries[at].Name, std::move(*translated));
        outcome.Converted.push_back(candidate);
    }
    return outcome;
}

// An older .BAK, set aside while a rewrite without a copy runs, so that it survives it.
class OlderBackup
{
public:
    OlderBackup(const std::filesystem::path& backup, bool keepNewCopy) : Backup(backup)
    {
        std::error_code error;
        if (!keepNewCopy && std::filesystem::exists(Backup, error))
        {
            Aside = Backup;
            Aside += ".old";
            std::filesystem::rename(Backup, Aside, error);
            Failed = static_cast<bool>(error);
            if (Failed)
            {
                Aside.clear();
            }
        }
    }
    // The .BAK the rewrite made goes, the older one comes back.
    void DropNewCopy()
    {
        std::error_code error;
        std::filesystem::remove(Backup, error);
        Restore();
    }
    void Restore()
    {
        if (!Aside.empty())
        {
            std::error_code error;
            std::filesystem::rename(Aside, Backup, error);
            Aside.clear();
        }
    }
    bool Failed = false;

private:
    std::filesystem::path Backup;
    std::filesystem::path Aside;
};

// After a rewrite that moved lumps: the file's directory and the master entries from it take
// the new offsets.
void FollowNewLayout(int fileNumber, const Spans& before, const Spans& after,
                     std::int32_t directoryOffset)
{
    if (before == after)
    {
        return;
    }
    std::map<std::pair<std::int64_t, std::int64_t>, std::int64_t> moved;
    for (std::size_t i = 0; i < before.size() && i < after.size(); ++i)
    {
        moved.emplace(before[i], after[i].first);
    }
    const auto follow = [&moved](wad::LumpDirectory& directory, std::size_t index)
    {
        const wad::LumpEntry& entry = directory[index];
        const auto found = moved.find({entry.Offset, entry.Size});
        if (found != moved.end() && found->second != entry.Offset)
        {
            directory.Edit(index).Offset = static_cast<std::int32_t>(found->second);
        }
    };
    wad::FileRec& file = wad::Wad().Files[static_cast<std::size_t>(fileNumber)];
    for (std::size_t i = 0; i < file.Directory.Size(); ++i)
    {
        follow(file.Directory, i);
    }
    wad::LumpDirectory& master = wad::Master();
    for (std::size_t i = 0; i < master.Size(); ++i)
    {
        if (master[i].FileNumber == fileNumber)
        {
            follow(master, i);
        }
    }
    file.DirectoryOffset = directoryOffset;
}

// The data end of a rewritten plan: where the new directory begins.
std::int32_t DirectoryOffsetOf(const Spans& spans)
{
    std::int64_t end = wad::WadHeaderSize;
    for (const auto& span : spans)
    {
        end = std::max(end, span.first + span.second);
    }
    return static_cast<std::int32_t>(end);
}

// Rewrites the file from `plan` under its own name, its stream in the program closed meanwhile;
// the .BAK stays or goes as the user chose. False, the file as it was, after the messages.
bool RewriteInPlace(wad::FileRec& file, const wad::RewritePlan& plan, bool keepCopy)
{
    const std::filesystem::path path = file.FileName;
    const bool wasOpen = file.State == 'O';
    if (wasOpen)
    {
        file.Stream.reset();
        file.State = 'C';
    }
    const std::filesystem::path backup = wad::BakPathOf(path);
    OlderBackup older(backup, keepCopy);
    const bool written = !older.Failed && wad::RewriteWad(path, plan);
    if (!written)
    {
        older.Restore();
        platform::ShowError("File was not backed up\n\nConversion not done!");
    }
    else if (keepCopy)
    {
        platform::TheUi().ShowProgress("Graphic Backup",
                                       platform::Format("Finished Saving - %s", backup.c_str()));
    }
    else
    {
        older.DropNewCopy();
    }
    if (wasOpen)
    {
        wad::EnsureOpen(file);
    }
    return written;
}

// Rewrites the file with its chosen pictures translated; a failure leaves it as it was.
FileOutcome ConvertFile(int fileNumber, const std::vector<const ConvertCandidate*>& chosen,
                        const IndexTable& table, const std::string& progress, bool keepCopy,
                        ConvertReport& report)
{
    wad::FileRec& file = wad::Wad().Files[static_cast<std::size_t>(fileNumber)];
    const std::filesystem::path path = file.FileName;
    std::optional<wad::RewritePlan> plan = wad::PlanOfWad(path);
    if (!plan)
    {
        return {{}, true};
    }
    const Spans before = SpansOf(*plan);
    const FileOutcome outcome = TranslateIntoPlan(path, chosen, table, progress, *plan);
    if (outcome.Converted.empty())
    {
        return outcome;
    }
    if (!RewriteInPlace(file, *plan, keepCopy))
    {
        return {{}, true};
    }
    if (const std::optional<wad::RewritePlan> rewritten = wad::PlanOfWad(path))
    {
        const Spans after = SpansOf(*rewritten);
        FollowNewLayout(fileNumber, before, after, DirectoryOffsetOf(after));
    }
    for (const ConvertCandidate* candidate : outcome.Converted)
    {
        report.Lumps.push_back({path, candidate->Name});
        if (wad::Wad().Hooks.ForgetPicture)
        {
            wad::Wad().Hooks.ForgetPicture(wad::LumpName::From(candidate->Name));
        }
    }
    return outcome;
}

// ---------------------------------------------------------------------------------------------
// The command's steps

// The pictures chosen by name, or all; a name not listed is reported.
std::vector<const ConvertCandidate*> ChooseGraphics(const std::vector<ConvertCandidate>& listed,
                                                    const std::vector<std::string>& only,
                                                    bool& refused)
{
    std::vector<const ConvertCandidate*> chosen;
    for (const ConvertCandidate& candidate : listed)
    {
        const bool named = std::any_of(only.begin(), only.end(),
                                       [&](const std::string& name)
                                       { return wad::EqualNoCase(name, candidate.Name); });
        if (only.empty() || named)
        {
            chosen.push_back(&candidate);
        }
    }
    for (const std::string& name : only)
    {
        const bool listedName = std::any_of(chosen.begin(), chosen.end(),
                                            [&](const ConvertCandidate* candidate)
                                            { return wad::EqualNoCase(name, candidate->Name); });
        if (!listedName)
        {
            platform::ShowError("%-8s Not found?", name.c_str());
            refused = true;
        }
    }
    return chosen;
}

bool AskForCopy()
{
    return platform::AskYesNo("Convert and Save all Graphics\n\nThis converts all the graphics "
                              "selected!\nThey are saved on top of the existing data\nDo you "
                              "want to make a copy of the data?");
}

// Converts the chosen pictures file by file; returns how many were converted.
int ConvertChosen(const std::vector<const ConvertCandidate*>& chosen, const IndexTable& table,
                  bool keepCopy, ConvertReport& report, bool& refused)
{
    std::map<int, std::vector<const ConvertCandidate*>> byFile;
    for (const ConvertCandidate* candidate : chosen)
    {
        byFile[candidate->FileNumber].push_back(candidate);
    }
    const std::string progress =
        platform::Format("Converting %4hd Graphics", static_cast<short>(chosen.size()));
    int converted = 0;
    for (const auto& [fileNumber, pictures] : byFile)
    {
        const FileOutcome outcome =
            ConvertFile(fileNumber, pictures, table, progress, keepCopy, report);
        converted += static_cast<int>(outcome.Converted.size());
        refused = refused || outcome.Refused;
    }
    platform::TheUi().EndProgress();
    return converted;
}

} // namespace

std::string_view PaletteFileName(PaletteSource source)
{
    switch (source)
    {
    case PaletteSource::Doom:
        return "DOOM.PAC";
    case PaletteSource::Heretic:
        return "HERETIC.PAC";
    case PaletteSource::Hexen:
        return "HEXEN.PAC";
    case PaletteSource::Strife:
        return "STRIFE.PAC";
    case PaletteSource::UserFile:
        break;
    }
    return "";
}

std::filesystem::path PaletteFilePath(PaletteSource source)
{
    const std::filesystem::path folder = wad::Wad().ProgramDir;
    const std::string_view name = PaletteFileName(source);
    std::error_code error;
    for (const auto& item : std::filesystem::directory_iterator(folder, error))
    {
        if (wad::EqualNoCase(item.path().filename().string(), name))
        {
            return item.path();
        }
    }
    return folder / name;
}

std::optional<Palette> LoadSourcePalette(const ConvertChoices& choices)
{
    Palette palette{};
    return ReadSourcePalette(choices, palette) == 1 ? std::optional(palette) : std::nullopt;
}

bool IsConvertibleKind(LumpKind kind, GraphicKinds kinds)
{
    const bool flat =
        kind == LumpKind::Flat || kind == LumpKind::FlatBig || kind == LumpKind::FlatBig158;
    const bool texture = kind == LumpKind::Pic;
    switch (kinds)
    {
    case GraphicKinds::Flats:
        return flat;
    case GraphicKinds::Textures:
        return texture;
    case GraphicKinds::Both:
        break;
    }
    return flat || texture;
}

std::vector<ConvertCandidate> ListConvertibleGraphics(GraphicKinds kinds)
{
    std::vector<ConvertCandidate> found;
    for (const int fileNumber : ExternalPwads())
    {
        ScanFile(fileNumber, kinds, found);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const ConvertCandidate& a, const ConvertCandidate& b)
                     { return a.Name < b.Name; });
    const auto flats = std::count_if(found.begin(), found.end(),
                                     [](const ConvertCandidate& c)
                                     { return IsConvertibleKind(c.Kind, GraphicKinds::Flats); });
    const auto textures = static_cast<std::ptrdiff_t>(found.size()) - flats;
    if (kinds != GraphicKinds::Textures)
    {
        platform::TheUi().ShowProgress(
            platform::Format("Loading %4d possible FLATS", static_cast<int>(flats)), "");
    }
    if (kinds != GraphicKinds::Flats)
    {
        platform::TheUi().ShowProgress(
            platform::Format("Loading %4d possible Textures", static_cast<int>(textures)), "");
    }
    return found;
}

bool TranslatePatch(std::span<std::uint8_t> lump, const IndexTable& table)
{
    const std::optional<std::vector<bool>> marked = MarkPatchPosts(lump);
    if (!marked)
    {
        return false;
    }
    for (std::size_t i = 0; i < lump.size(); ++i)
    {
        if ((*marked)[i])
        {
            lump[i] = table[lump[i]];
        }
    }
    return true;
}

void TranslateRaw(std::span<std::uint8_t> lump, const IndexTable& table)
{
    for (std::uint8_t& index : lump)
    {
        index = table[index];
    }
}

std::string GraphicInfoLine(const ConvertCandidate& candidate, int scale)
{
    const std::string kind(KindName(candidate.Kind));
    const std::string& file =
        wad::Wad().Files[static_cast<std::size_t>(candidate.FileNumber)].FileName;
    return platform::Format("%4hd x %-4hd  %-8s  %s Scale %2hd  %-46.46s",
                            static_cast<short>(candidate.Width),
                            static_cast<short>(candidate.Height), candidate.Name.c_str(),
                            kind.c_str(), static_cast<short>(scale), file.c_str());
}

int ConvertGraphicsToPalette(const ConvertChoices& choices, ConvertReport* report)
{
    Palette source{};
    if (const int read = ReadSourcePalette(choices, source); read != 1)
    {
        return read;
    }
    PaletteState& palettes = Palettes();
    if (!palettes.Loaded && LoadGamePalette(palettes.Options.PaletteNumber) != 1)
    {
        return -1;
    }
    MatchPaletteTable(source, nullptr, palettes.TranslationTable);

    const std::vector<ConvertCandidate> listed = ListConvertibleGraphics(choices.Kinds);
    if (listed.empty())
    {
        platform::TheUi().EndProgress();
        platform::ShowMessageLines(0, "No Graphics Found",
                                   {"No external PWAD files to convert found!"});
        return 0;
    }
    bool refused = false;
    const std::vector<const ConvertCandidate*> chosen =
        ChooseGraphics(listed, choices.Only, refused);
    if (chosen.empty())
    {
        platform::TheUi().EndProgress();
        return refused ? -1 : 0;
    }
    const bool keepCopy = AskForCopy();
    ConvertReport ownReport;
    const int converted = ConvertChosen(chosen, palettes.TranslationTable, keepCopy,
                                        report != nullptr ? *report : ownReport, refused);
    platform::ShowMessageLines(0, "Conversion Done",
                               {platform::Format("%d textures converted", converted),
                                "Be sure to exit now", "since all the textures", "are converted!"});
    return refused ? -1 : 1;
}

} // namespace kelvar::gfx
