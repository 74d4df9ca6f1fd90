// The node builders: command lines, runs, and what the user is told.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/NodeBuilder.h"

#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Paths.h"
#include "platform/Processes.h"
#include "platform/Ui.h"
#include "run/RunState.h"
#include "wad/LumpName.h"

#include <array>
#include <system_error>
#include <unistd.h>

namespace kelvar::run
{
namespace
{

using platform::ChildRequest;

/// A build waits for the builder with the window alive; a shown build first lets the main
/// window step aside.
constexpr int QuietBuildFlags = platform::ChildWait | platform::ChildPump;
constexpr int BuildFlags = platform::ChildMinimise | QuietBuildFlags;

/// The caption of the panel that names the target while a build runs.
constexpr const char* BuildPanelCaption = "Rebuild Nodes";

std::string Quoted(const std::string& text)
{
    return '"' + text + '"';
}

/// A program at the head of a command line: quoted when a blank would split it.
std::string ProgramWord(const std::string& program)
{
    const bool quoted = !program.empty() && program.front() == '"';
    return program.find(' ') != std::string::npos && !quoted ? Quoted(program) : program;
}

/// A directory as the variables give it: with its separator at the end, so that a name
/// written straight behind it forms a path.
std::string DirectoryText(const std::filesystem::path& directory)
{
    std::string text = directory.string();
    if (!text.empty() && text.back() != '/')
    {
        text += '/';
    }
    return text;
}

std::filesystem::path BuiltInProgram(const BuilderOptions& options)
{
    return options.KelvarBsp.empty() ? LocateKelvarBsp() : options.KelvarBsp;
}

void ShowBuilderLog(const std::filesystem::path& log)
{
    std::error_code error;
    if (std::filesystem::exists(log, error))
    {
        platform::TheUi().ShowTextFile("KelvarBSP Log", log);
    }
}

/// Runs a builder, with the panel that names the target when `panel` is set.
int RunBuilder(const ChildRequest& request, bool panel, const std::string& targetPath)
{
    if (panel)
    {
        platform::TheUi().ShowProgress(BuildPanelCaption, targetPath);
    }
    const int code = platform::TheProcesses().RunChild(request);
    if (panel)
    {
        platform::TheUi().EndProgress();
    }
    return code;
}

} // namespace

std::filesystem::path LocateKelvarBsp()
{
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (!error)
    {
        const std::filesystem::path beside = self.parent_path() / KelvarBspName;
        if (access(beside.c_str(), X_OK) == 0)
        {
            return beside;
        }
    }
    return KelvarBspName;
}

std::filesystem::path BuilderProgramDir(const BuilderOptions& options)
{
    return options.ProgramDir.empty() ? platform::DefaultProgramDir() : options.ProgramDir;
}

std::string BuiltInOptionWords(const BuilderOptions& options)
{
    std::string words = std::to_string(options.NodeType) + 'N';
    words += options.IgnoreTwoSided ? 'I' : 'N';
    words += options.SpecialSectorTags ? 'S' : 'N';
    words += options.SpecialLineDefTags ? 'L' : 'N';
    words += std::to_string(options.SplitFactor);
    static constexpr std::array<char, 4> SplitLetters{'N', 'A', 'V', 'H'};
    words += ' ';
    words += options.SplitMode >= 0 && options.SplitMode <= 3
                 ? SplitLetters[static_cast<std::size_t>(options.SplitMode)]
                 : 'N';
    words += ' ';
    words += options.ShowBuild ? 'L' : 'S';
    words += options.ZdoomHexenFormat ? 'Z' : 'X';
    words += options.ZeroBlockmap ? '0' : '2';
    words += !options.GlNodes ? 'x' : options.GlNodesV3 ? '3' : '6';
    words += options.ForceExtended ? 'E' : 'x';
    words += options.SuppressExtendedMessages ? 'Y' : 'x';
    return words;
}

std::string BuiltInCommandLine(const BuilderOptions& options, const std::string& targetPath,
                               const std::string& levelName, std::string_view inputName)
{
    return ProgramWord(BuiltInProgram(options).string()) + ' ' + std::string(inputName) + ' ' +
           Quoted(targetPath) + ' ' + levelName + ' ' + BuiltInOptionWords(options);
}

std::string ExpandBuilderParameters(std::string_view parameters, const CustomBuilderPaths& paths)
{
    const std::string targetDirectory =
        DirectoryText(std::filesystem::path(paths.TargetPwad).parent_path());
    // Short path names have no counterpart here: the "short" forms are the paths themselves.
    const std::array<std::pair<std::string_view, std::string>, 12> variables{{
        {"%LEVEL", paths.LevelName},
        {"%TEMPWAD", Quoted(paths.TemporaryWad)},
        {"%PWAD", paths.TargetPwad},
        {"%PWADDIR", targetDirectory},
        {"%KELVARDIR", paths.ProgramDir},
        {"$PWAD", Quoted(paths.TargetPwad)},
        {"$PWADDIR", Quoted(targetDirectory)},
        {"$KELVARDIR", Quoted(paths.ProgramDir)},
        {"~KELVAR.WAD", Quoted(paths.TemporaryWad)},
        {"#PWAD", paths.TargetPwad},
        {"#PWADDIR", targetDirectory},
        {"#KELVARDIR", paths.ProgramDir},
    }};
    std::string line;
    std::size_t at = 0;
    while (at < parameters.size())
    {
        bool matched = false;
        for (const auto& [name, value] : variables)
        {
            if (wad::EqualNoCase(parameters.substr(at, name.size()), name))
            {
                line += value;
                at += name.size();
                matched = true;
                break;
            }
        }
        if (!matched)
        {
            line += parameters[at++];
        }
    }
    return line;
}

std::string CustomCommandLine(const BuilderOptions& options, const std::string& inputPath,
                              const std::string& targetPath, const std::string& levelName)
{
    const std::filesystem::path programDir = BuilderProgramDir(options);
    const std::filesystem::path input = inputPath.empty() ? NodeBuildInputName : inputPath;
    CustomBuilderPaths paths;
    paths.LevelName = levelName;
    paths.TemporaryWad = (programDir / input).string();
    paths.TargetPwad = targetPath;
    paths.ProgramDir = DirectoryText(programDir);
    return ProgramWord(options.CustomExe) + ' ' +
           ExpandBuilderParameters(options.CustomParameters, paths);
}

std::string R3dCommandLine(const std::filesystem::path& viewerDirectory,
                           const std::string& inputPath, const std::string& targetPath)
{
    return Quoted((viewerDirectory / R3dBuilderName).string()) + " -r3d 16 -normal " +
           Quoted(inputPath) + " -o " + Quoted(targetPath);
}

int RunBuiltInBuilder(const std::string& targetPath, const std::string& levelName, bool showResult,
                      std::string_view inputName)
{
    const BuilderOptions& options = Run().Builder;
    const std::filesystem::path programDir = BuilderProgramDir(options);
    ChildRequest request;
    request.Directory = programDir;
    request.CommandLine = BuiltInCommandLine(options, targetPath, levelName, inputName);
    request.ShowMode = options.ShowBuild ? platform::ShowMinimised : platform::ShowDefault;
    request.Flags = BuildFlags;
    const int code = RunBuilder(request, options.ShowBuild, targetPath);
    if (code == platform::ChildDidNotStart)
    {
        platform::ShowMessageLines(0, "Load error",
                                   {"Failed to start", BuiltInProgram(options).string(),
                                    "Most likely the program could not find the program in the"});
        return code;
    }
    const std::filesystem::path log = programDir / KelvarBspLogName;
    if (code != 0)
    {
        ShowBuilderLog(log);
        // A builder that ends with -1 (255 once the system has cut it to a byte) has built.
        return code == -1 || code == 255 ? 0 : code;
    }
    if (showResult)
    {
        platform::TheUi().SetStatusText("Successful Nodes Built !");
    }
    if (!options.ShowBuild)
    {
        if (!options.SeeResults ||
            platform::ShowMessageLines(0, "View Log", {"View KelvarBSP Log?"},
                                       platform::MessageButtons::YesNo) == 1)
        {
            ShowBuilderLog(log);
        }
    }
    return 0;
}

int RunCustomBuilder(const std::string& inputPath, const std::string& targetPath,
                     const std::string& levelName, bool quiet)
{
    const BuilderOptions& options = Run().Builder;
    ChildRequest request;
    request.Directory = options.CustomDirectory;
    request.CommandLine = CustomCommandLine(options, inputPath, targetPath, levelName);
    request.ShowMode = quiet ? platform::ShowDefault : platform::ShowMinimised;
    request.Flags = quiet ? QuietBuildFlags : BuildFlags;
    const int code = RunBuilder(request, !quiet, targetPath);
    if (code == platform::ChildDidNotStart)
    {
        platform::ShowMessageLines(
            0, "Test Error",
            {platform::Format("Error code %d starting NodeBuilder", code),
             platform::Format("Make sure NodeBuilder %s", options.CustomExe.c_str()),
             "has all files installed", "and that all parameters are correct"});
    }
    return code;
}

int RunR3dBuilder(const std::filesystem::path& viewerDirectory, const std::string& inputPath,
                  const std::string& targetPath)
{
    const BuilderOptions& options = Run().Builder;
    ChildRequest request;
    request.Directory = viewerDirectory;
    request.CommandLine = R3dCommandLine(viewerDirectory, inputPath, targetPath);
    request.ShowMode = options.ShowBuild ? platform::ShowMinimised : platform::ShowDefault;
    request.Flags = BuildFlags;
    const int code = platform::TheProcesses().RunChild(request);
    if (code == platform::ChildDidNotStart)
    {
        platform::ShowMessageLines(
            0, "Load error",
            {"Failed to start", "make sure that Kelvar.EXE is installed in the SAME directory as"});
    }
    return code;
}

} // namespace kelvar::run
