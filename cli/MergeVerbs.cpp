// kelvar-cli import, merge, rename and delete: lumps, files and PWADs brought into a target
// WAD, and the target's lumps renamed or deleted, by the routines of the Merge/Import dialog.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchUi.h"
#include "cli/Commands.h"
#include "cli/PictureCommands.h"
#include "cli/Verbs.h"
#include "lumps/Merge.h"
#include "lumps/TargetList.h"

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::cli
{
namespace
{

// The words of an import or merge: the target, the inputs and the options.
struct MergeRequest
{
    std::filesystem::path Target;
    std::vector<std::filesystem::path> Inputs;
    std::string After;
    lumps::MergeOptions Options;
};

// The kind of the pictures an import brings in: a picture's kind, or raw for no conversion.
std::optional<gfx::LumpKind> ImportKindOfWord(const std::string& word)
{
    if (word == "raw")
    {
        return gfx::LumpKind::Lump;
    }
    return PictureKindOfWord(word);
}

// Reads one option at `i` (moving past its value); false for a word that is none.
bool ReadOption(const std::vector<std::string>& words, std::size_t& i, MergeRequest& request)
{
    const std::string& word = words[i];
    const bool hasValue = i + 1 < words.size();
    lumps::MergeOptions& options = request.Options;
    if (word == "--after" && hasValue)
    {
        request.After = words[++i];
        return true;
    }
    if (word == "--as" && hasValue)
    {
        const std::optional<gfx::LumpKind> kind = ImportKindOfWord(words[++i]);
        options.PictureKind = kind.value_or(options.PictureKind);
        return kind.has_value();
    }
    bool* flag = word == "--snd"                ? &options.WavToSnd
                 : word == "--mus"              ? &options.MidiToMus
                 : word == "--allow-duplicates" ? &options.AllowDuplicates
                 : word == "--sort-textures"    ? &options.SortTextures
                                                : nullptr;
    if (flag != nullptr)
    {
        *flag = true;
    }
    return flag != nullptr;
}

std::optional<MergeRequest> ParseMergeRequest(const std::vector<std::string>& words,
                                              const char* usage)
{
    MergeRequest request;
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        if (!words[i].starts_with("--"))
        {
            (request.Target.empty() ? request.Target : request.Inputs.emplace_back()) = words[i];
        }
        else if (!ReadOption(words, i, request))
        {
            std::fprintf(stderr, "kelvar-cli: %s\n", usage);
            return std::nullopt;
        }
    }
    if (request.Target.empty() || request.Inputs.empty())
    {
        std::fprintf(stderr, "kelvar-cli: %s\n", usage);
        return std::nullopt;
    }
    return request;
}

// The one run behind import and merge: the target read, every input listed (one refused
// stops it before anything is written), the merge saved.
int RunMergeRequest(MergeRequest& request)
{
    BatchUi ui(request.Target);
    platform::ScopedUi scoped(ui);
    lumps::MergeSession session;
    if (lumps::OpenMergeTarget(session, request.Target) != 1)
    {
        return ExitBadFile;
    }
    // The header stays the target's own unless it is made new.
    session.Options = request.Options;
    session.Options.Magic = session.Target.Magic.empty() ? "PWAD" : session.Target.Magic;
    for (const std::filesystem::path& input : request.Inputs)
    {
        if (lumps::AddInputFile(session, input) == 0)
        {
            std::fprintf(stderr, "kelvar-cli: %s refused, %s left as it was\n", input.c_str(),
                         request.Target.c_str());
            return ExitBadFile;
        }
    }
    if (!request.After.empty())
    {
        const std::optional<lumps::FoundTarget> after =
            lumps::FindTargetEntry(session.Target, request.After);
        if (!after)
        {
            std::fprintf(stderr, "kelvar-cli: %s is not a lump of %s\n", request.After.c_str(),
                         request.Target.c_str());
            return ExitBadFile;
        }
        session.Selected = static_cast<int>(after->Index);
    }
    if (lumps::SaveMerge(session) != 1)
    {
        return ExitBadFile;
    }
    const lumps::MergeCounts& counts = session.Counts;
    std::printf("%s: %d added, %d replaced, %d left out, %d entries\n", request.Target.c_str(),
                counts.Added, counts.Replaced, counts.Skipped,
                static_cast<int>(session.Target.Entries.size()));
    return counts.Skipped == 0 ? ExitOk : ExitBadFile;
}

int Import(const std::vector<std::string>& arguments)
{
    std::optional<MergeRequest> request = ParseMergeRequest(
        arguments, "import TARGET.wad FILE... [--after NAME] [--as patch|sprite|flat|raw] [--snd] "
                   "[--mus] [--allow-duplicates] [--sort-textures]");
    return request ? RunMergeRequest(*request) : ExitUsage;
}

int Merge(const std::vector<std::string>& arguments)
{
    std::optional<MergeRequest> request =
        ParseMergeRequest(arguments, "merge TARGET.wad PWAD... [--after NAME] [--allow-duplicates] "
                                     "[--sort-textures]");
    if (!request)
    {
        return ExitUsage;
    }
    for (const std::filesystem::path& input : request->Inputs)
    {
        std::string magic;
        std::vector<lumps::TargetEntry> entries;
        if (lumps::ReadWadEntries(input, magic, entries) != lumps::WadRead::Read || magic.empty())
        {
            std::fprintf(stderr, "kelvar-cli: %s is no WAD that can be read\n", input.c_str());
            return ExitBadFile;
        }
    }
    return RunMergeRequest(*request);
}

// Reads the target of rename or delete; false after the reason was shown.
bool OpenTarget(const std::filesystem::path& file, lumps::TargetList& list)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
    {
        std::fprintf(stderr, "kelvar-cli: %s not found\n", file.c_str());
        return false;
    }
    return lumps::ReadTargetFile(file, false, list) == 1;
}

int HeadOf(const lumps::TargetList& list, const std::string& name)
{
    const std::optional<lumps::FoundTarget> found = lumps::FindTargetEntry(list, name);
    if (!found)
    {
        std::fprintf(stderr, "kelvar-cli: %s is not a lump of %s\n", name.c_str(),
                     list.File.c_str());
        return -1;
    }
    return static_cast<int>(found->Index);
}

int Rename(const std::vector<std::string>& arguments)
{
    if (arguments.size() != 3)
    {
        std::fprintf(stderr, "kelvar-cli: rename TARGET.wad OLD NEW\n");
        return ExitUsage;
    }
    BatchUi ui(arguments[0]);
    platform::ScopedUi scoped(ui);
    lumps::TargetList list;
    if (!OpenTarget(arguments[0], list))
    {
        return ExitBadFile;
    }
    const int index = HeadOf(list, arguments[1]);
    if (index < 0 || lumps::RenameTargetEntry(list, index, arguments[2]) != 1 ||
        !lumps::SaveTargetList(list))
    {
        return ExitBadFile;
    }
    std::printf("%s: %s renamed %s\n", arguments[0].c_str(), arguments[1].c_str(),
                list.Entries[static_cast<std::size_t>(index)].Name.Text().c_str());
    return ExitOk;
}

int Delete(const std::vector<std::string>& arguments)
{
    if (arguments.size() < 2)
    {
        std::fprintf(stderr, "kelvar-cli: delete TARGET.wad NAME...\n");
        return ExitUsage;
    }
    BatchUi ui(arguments[0]);
    platform::ScopedUi scoped(ui);
    lumps::TargetList list;
    if (!OpenTarget(arguments[0], list))
    {
        return ExitBadFile;
    }
    int removed = 0;
    for (std::size_t i = 1; i < arguments.size(); ++i)
    {
        const int index = HeadOf(list, arguments[i]);
        if (index < 0)
        {
            return ExitBadFile;
        }
        removed += lumps::DeleteTargetEntry(list, index);
    }
    if (!lumps::SaveTargetList(list))
    {
        return ExitBadFile;
    }
    std::printf("%s: %d entries deleted, %d left\n", arguments[0].c_str(), removed,
                static_cast<int>(list.Entries.size()));
    return ExitOk;
}

} // namespace

KELVAR_CLI_VERB(Import, "import", Import,
                "  import TARGET.wad FILE... [--after NAME] [--as patch|sprite|flat|raw]\n"
                "         [--snd] [--mus] [--allow-duplicates] [--sort-textures]\n"
                "                          files and PWADs (a PWAD lump by lump, a level whole)\n"
                "                          written into TARGET.wad, new or not, after NAME or at\n"
                "                          the end; a lump of a name already there is replaced.\n"
                "                          BMP, PCX and PNG files become patches, sprites or\n"
                "                          flats with --as (raw: kept as they are), waves SND\n"
                "                          lumps with --snd, MIDI files MUS with --mus; PNAMES\n"
                "                          and TEXTURE1/2 are merged. The old file is kept as\n"
                "                          TARGET.BAK, the log as KelvarMerge.LOG\n");
KELVAR_CLI_VERB(Merge, "merge", Merge,
                "  merge TARGET.wad PWAD... [--after NAME] [--allow-duplicates]\n"
                "         [--sort-textures]\n"
                "                          import's run with PWADs only: their lumps into\n"
                "                          TARGET.wad, PNAMES and TEXTURE1/2 merged with the\n"
                "                          target's into one PNAMES and TEXTURE1\n");
KELVAR_CLI_VERB(Rename, "rename", Rename,
                "  rename TARGET.wad OLD NEW\n"
                "                          a lump (or a level) of TARGET.wad renamed in place;\n"
                "                          the old file is kept as TARGET.BAK\n");
KELVAR_CLI_VERB(Delete, "delete", Delete,
                "  delete TARGET.wad NAME...\n"
                "                          lumps (a level whole) deleted from TARGET.wad; the\n"
                "                          old file is kept as TARGET.BAK\n");

} // namespace kelvar::cli
