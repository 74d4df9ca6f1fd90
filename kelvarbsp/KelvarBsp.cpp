// kelvarbsp: one level's nodes built by zdbsp into the target PWAD.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "kelvarbsp/KelvarBsp.h"

#include "kelvarbsp/BspOptions.h"
#include "kelvarbsp/LevelCheck.h"
#include "kelvarbsp/VertexNumbering.h"
#include "kelvarbsp/WadFile.h"
#include "kelvarbsp/ZdbspRun.h"
#include "platform/Format.h"
#include "wad/LevelReader.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <map>
#include <new>
#include <sstream>
#include <system_error>
#include <unistd.h>

namespace kelvar::kelvarbsp
{
namespace
{

using platform::Format;

/// The lumps a built level must have in zdbsp's output.
constexpr const char* BuiltLumps[] = {"SEGS", "SSECTORS", "NODES", "REJECT", "BLOCKMAP"};

int Fail(std::string& log, int code, const std::string& reason)
{
    log += "Error: " + reason + "\n";
    log += Format("Result: no nodes built (exit code %d).\n", code);
    return code;
}

/// The temporary file beside the target, for the signal handler: plain bytes it can read.
constexpr std::size_t StopPathSize = 4096;
char StopPath[StopPathSize];
constexpr int StopSignals[] = {SIGTERM, SIGINT, SIGHUP};

/// A stop (the editor's Escape sends SIGTERM to kelvarbsp and zdbsp alike, a terminal's
/// Ctrl+C SIGINT) removes the temporary file, then ends the program as the signal would.
extern "C" void RemoveOnStop(int signal)
{
    if (StopPath[0] != '\0')
    {
        unlink(StopPath);
    }
    raise(signal); // the handler was reset on entry
}

/// zdbsp's output beside the target, where it is finished before it is renamed to the
/// target: removed when the build ends without getting there, however it ends.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::filesystem::path& path) : File(path)
    {
        const std::string text = path.string();
        const std::size_t length = text.size() < StopPathSize ? text.size() : 0;
        std::memcpy(StopPath, text.data(), length);
        StopPath[length] = '\0';
        struct sigaction stop = {};
        stop.sa_handler = RemoveOnStop;
        stop.sa_flags = SA_RESETHAND;
        for (std::size_t i = 0; i < std::size(StopSignals); ++i)
        {
            sigaction(StopSignals[i], &stop, &Previous[i]);
        }
    }

    ~TemporaryFile()
    {
        for (std::size_t i = 0; i < std::size(StopSignals); ++i)
        {
            sigaction(StopSignals[i], &Previous[i], nullptr);
        }
        StopPath[0] = '\0';
        std::error_code error;
        std::filesystem::remove(File, error);
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path& Path() const { return File; }

private:
    std::filesystem::path File;
    struct sigaction Previous[std::size(StopSignals)] = {};
};

/// What becomes of the REJECT, decided from the input's table; `bytes` gets a table to copy.
RejectPlan PlanReject(WadFile& input, const LevelLumps& level, std::int64_t sectors,
                      std::string& bytes, std::string& log)
{
    const std::int64_t wanted = wad::RejectSize(sectors);
    const WadLump* reject = level.Find(input, "REJECT");
    if (reject == nullptr)
    {
        log += Format("REJECT: none in the input; a table of %lld zero bytes.\n",
                      static_cast<long long>(wanted));
        return RejectPlan::ZeroFilled;
    }
    if (reject->Size == 0)
    {
        log += "REJECT: empty in the input, and so it stays.\n";
        return RejectPlan::Empty;
    }
    if (reject->Size != wanted || !ReadLump(input, *reject, bytes))
    {
        log +=
            Format("REJECT: %d bytes in the input don't fit %lld Sectors; a table of %lld "
                   "zero bytes.\n",
                   reject->Size, static_cast<long long>(sectors), static_cast<long long>(wanted));
        return RejectPlan::ZeroFilled;
    }
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return c == 0; }))
    {
        log += Format("REJECT: the input's table of %lld zero bytes.\n",
                      static_cast<long long>(wanted));
        return RejectPlan::ZeroFilled;
    }
    log += Format("REJECT: the input's table of %lld bytes is kept.\n",
                  static_cast<long long>(wanted));
    return RejectPlan::Copied;
}

std::string Joined(const std::vector<std::string>& words)
{
    std::string line;
    for (const std::string& word : words)
    {
        line += (line.empty() ? "" : " ") + word;
    }
    return line;
}

/// zdbsp's output for the log; with `suppressExtended`, its lines about extended nodes are
/// left out.
std::string OutputForLog(const std::string& output, bool suppressExtended)
{
    if (!suppressExtended)
    {
        return output;
    }
    std::istringstream lines(output);
    std::string kept;
    for (std::string line; std::getline(lines, line);)
    {
        std::string lower = line;
        std::transform(lower.begin(), lower.end(), lower.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        if (lower.find("extended") == std::string::npos)
        {
            kept += line + '\n';
        }
    }
    return kept;
}

/// What the build keeps of the input: its REJECT choice and, for plain nodes, the lumps that
/// carry the editor's Vertex numbering.
struct Kept
{
    RejectPlan Reject = RejectPlan::ZeroFilled;
    std::string RejectTable;
    bool Hexen = false;
    std::optional<VertexLumps> Numbering;
};

/// The lumps of the built level that are to change on the way to the target, by index.
std::map<std::size_t, std::string> Replacements(WadFile& output, const LevelLumps& level,
                                                const Kept& kept, std::string& log)
{
    std::map<std::size_t, std::string> replacements;
    if (kept.Reject == RejectPlan::Copied)
    {
        replacements[level.Lumps.at("REJECT")] = kept.RejectTable;
    }
    if (!kept.Numbering)
    {
        log += "Vertexes: as zdbsp numbered them (GL and extended nodes refer to its numbers).\n";
        return replacements;
    }
    VertexLumps built;
    const std::pair<const char*, std::string*> lumps[] = {
        {"VERTEXES", &built.Vertexes}, {"LINEDEFS", &built.LineDefs}, {"SEGS", &built.Segs}};
    for (const auto& [name, bytes] : lumps)
    {
        const WadLump* lump = level.Find(output, name);
        if (lump == nullptr || !ReadLump(output, *lump, *bytes))
        {
            log += Format("Vertexes: as zdbsp numbered them (its %s can't be read).\n", name);
            return replacements;
        }
    }
    std::string why;
    const std::optional<VertexLumps> numbered =
        KeepVertexNumbering(*kept.Numbering, built, kept.Hexen, why);
    if (!numbered)
    {
        log += "Vertexes: as zdbsp numbered them (" + why + ").\n";
        return replacements;
    }
    log += Format("Vertexes: the editor's %zu kept in their order, %zu from splits behind them.\n",
                  kept.Numbering->Vertexes.size() / 4,
                  (numbered->Vertexes.size() - kept.Numbering->Vertexes.size()) / 4);
    replacements[level.Lumps.at("VERTEXES")] = numbered->Vertexes;
    replacements[level.Lumps.at("LINEDEFS")] = numbered->LineDefs;
    replacements[level.Lumps.at("SEGS")] = numbered->Segs;
    return replacements;
}

/// Puts zdbsp's output, with the replaced lumps, in place as `target`.
bool WriteTarget(WadFile& output, const std::map<std::size_t, std::string>& replacements,
                 const std::string& target, const TemporaryFile& temporary, std::string& reason)
{
    if (!ReplaceLumps(output, temporary.Path(), replacements, reason))
    {
        return false;
    }
    std::error_code error;
    std::filesystem::rename(temporary.Path(), target, error);
    if (error)
    {
        reason = "cannot put the result in place as " + target + ": " + error.message();
        return false;
    }
    return true;
}

/// Checks zdbsp's output and puts it in place as the target.
int PlaceTarget(const BspCommand& command, const std::string& levelName, const Kept& kept,
                const TemporaryFile& temporary, std::string& log)
{
    std::string reason;
    std::optional<WadFile> output = OpenWad(temporary.Path(), reason);
    if (!output)
    {
        return Fail(log, BspOutputFailed, "zdbsp's output is unusable: " + reason);
    }
    const std::optional<LevelLumps> level = FindLevel(*output, levelName);
    for (const char* lump : BuiltLumps)
    {
        if (!level || level->Find(*output, lump) == nullptr)
        {
            return Fail(log, BspOutputFailed,
                        Format("zdbsp wrote no %s for %s.", lump, levelName.c_str()));
        }
    }
    const std::map<std::size_t, std::string> replacements =
        Replacements(*output, *level, kept, log);
    auto sizeOf = [&](const char* name)
    {
        const std::size_t index = level->Lumps.at(name);
        const auto replaced = replacements.find(index);
        return replaced == replacements.end() ? static_cast<std::size_t>(output->Lumps[index].Size)
                                              : replaced->second.size();
    };
    log += Format("Built %s: SEGS %zu bytes, SSECTORS %zu, NODES %zu, BLOCKMAP %zu, REJECT %zu.\n",
                  levelName.c_str(), sizeOf("SEGS"), sizeOf("SSECTORS"), sizeOf("NODES"),
                  sizeOf("BLOCKMAP"), sizeOf("REJECT"));
    if (!WriteTarget(*output, replacements, command.Target, temporary, reason))
    {
        return Fail(log, BspOutputFailed, reason);
    }
    log += "Written to " + command.Target + ".\n";
    return BspBuilt;
}

/// The input's lumps that carry the Vertex numbering, when the nodes are plain ones (GL and
/// extended nodes have Vertex numbers of their own in other lumps).
std::optional<VertexLumps> NumberingOf(WadFile& input, const LevelLumps& level,
                                       const BspOptions& options)
{
    VertexLumps lumps;
    if (options.GlNodes != 'x' || options.ForceExtended ||
        !ReadLump(input, *level.Find(input, "VERTEXES"), lumps.Vertexes) ||
        !ReadLump(input, *level.Find(input, "LINEDEFS"), lumps.LineDefs))
    {
        return std::nullopt;
    }
    return lumps;
}

/// Reads and checks the input's level: its name as the input spells it goes to `levelName`,
/// what the target keeps of it to `kept`. BspBuilt when the build can go on.
int ReadInput(const BspCommand& command, std::string& levelName, Kept& kept, std::string& log)
{
    std::string reason;
    std::optional<WadFile> input = OpenWad(command.Input, reason);
    if (!input)
    {
        return Fail(log, BspBadInput, reason);
    }
    const std::optional<LevelLumps> level = FindLevel(*input, command.Level);
    if (!level)
    {
        return Fail(log, BspBadInput,
                    Format("level %s is not in %s.", command.Level.c_str(), command.Input.c_str()));
    }
    levelName = input->Lumps[level->Marker].Name.Text();
    const LevelCheck check = CheckLevel(*input, *level);
    for (const std::string& note : check.Notes)
    {
        log += note + '\n';
    }
    if (!check.Ok)
    {
        return Fail(log, BspLevelRefused, check.Reason);
    }
    log += Format("Level %s (%s layout): %lld Things, %lld LineDefs, %lld SideDefs, %lld "
                  "Vertexes, %lld Sectors.\n",
                  levelName.c_str(), check.Hexen ? "Hexen" : "Doom",
                  static_cast<long long>(check.Things), static_cast<long long>(check.LineDefs),
                  static_cast<long long>(check.SideDefs), static_cast<long long>(check.Vertexes),
                  static_cast<long long>(check.Sectors));
    kept.Reject = PlanReject(*input, *level, check.Sectors, kept.RejectTable, log);
    kept.Hexen = check.Hexen;
    kept.Numbering = NumberingOf(*input, *level, command.Options);
    return BspBuilt;
}

/// Runs zdbsp on the level into the temporary file. BspBuilt when it built.
int RunBuilder(const BspCommand& command, const std::string& zdbsp, const std::string& levelName,
               RejectPlan reject, const TemporaryFile& temporary, std::string& log)
{
    const std::vector<std::string> arguments = ZdbspArguments(
        command.Options, levelName, reject, command.Input, temporary.Path().string());
    log += "Running: " + zdbsp + ' ' + Joined(arguments) + '\n';
    const ZdbspResult result = RunZdbsp(zdbsp, arguments);
    log += OutputForLog(result.Output, command.Options.SuppressExtendedMessages);
    if (!result.Started)
    {
        return Fail(
            log, BspBuilderFailed,
            Format("%s could not be started: %s.", zdbsp.c_str(), result.StartReason.c_str()));
    }
    if (result.Signal != 0)
    {
        return Fail(log, BspBuilderFailed,
                    Format("%s was killed by signal %d (%s).", zdbsp.c_str(), result.Signal,
                           strsignal(result.Signal)));
    }
    if (result.ExitCode != 0)
    {
        return Fail(log, BspBuilderFailed,
                    Format("%s failed with exit code %d.", zdbsp.c_str(), result.ExitCode));
    }
    return BspBuilt;
}

int Build(const BspCommand& command, const std::string& zdbsp, std::string& log)
{
    for (const std::string& note : OptionNotes(command.Options))
    {
        log += note + '\n';
    }
    std::string levelName;
    Kept kept;
    int code = ReadInput(command, levelName, kept, log);
    if (code != BspBuilt)
    {
        return code;
    }
    const TemporaryFile temporary(command.Target + ".kelvarbsp.tmp");
    code = RunBuilder(command, zdbsp, levelName, kept.Reject, temporary, log);
    if (code == BspBuilt)
    {
        code = PlaceTarget(command, levelName, kept, temporary, log);
    }
    if (code == BspBuilt)
    {
        log += "Result: nodes built (exit code 0).\n";
    }
    return code;
}

} // namespace

int RunKelvarBsp(const std::vector<std::string>& arguments, const std::string& zdbsp,
                 std::string& log)
{
    log += "kelvarbsp " + Joined(arguments) + '\n';
    std::string reason;
    const std::optional<BspCommand> command = ParseCommandLine(arguments, reason);
    if (!command)
    {
        return Fail(log, BspBadCommandLine, reason);
    }
    try
    {
        return Build(*command, zdbsp, log);
    }
    catch (const std::bad_alloc&)
    {
        // The input's lumps are held in memory; one too big for that is refused like an
        // unreadable one, and the temporary file has gone with the unwinding.
        return Fail(log, BspBadInput, "not enough memory to read the input");
    }
}

} // namespace kelvar::kelvarbsp
