// The node builders: the built-in kelvarbsp, a custom builder with the user's command line,
// and the 3D viewer's builder; their command lines, their runs and what the user is told.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The editor never computes SEGS, SSECTORS, NODES, BLOCKMAP or REJECT. The save pipeline
//   writes the level into ~Kelvar.WAD in the program's directory, and a builder, a separate
//   program, turns it into the target PWAD. Only the command line and the exit code (0
//   success, anything else failure) matter between them.
// - The runs read their settings from Run().Builder and start the programs through
//   TheProcesses(), so tests see every command line and script every exit code.
#pragma once

#include "run/BuilderOptions.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace kelvar::run
{

/// The built-in builder's program, the log it leaves in the program's directory, and the
/// temporary WAD it reads there.
inline constexpr const char* KelvarBspName = "kelvarbsp";
inline constexpr const char* KelvarBspLogName = "KelvarBSP.LOG";
inline constexpr const char* NodeBuildInputName = "~Kelvar.WAD";
/// The 3D viewer's node builder, in the viewer's directory.
inline constexpr const char* R3dBuilderName = "R3Dglbsp.exe";

/// kelvarbsp beside the running program when it is there, else the bare name (looked up on
/// PATH when it runs).
std::filesystem::path LocateKelvarBsp();

/// The program's directory of `options`, or the system's default when it is empty.
std::filesystem::path BuilderProgramDir(const BuilderOptions& options);

/// The built-in builder's option words: "<options1> <options2> <flags>", "1NNNN16 N SX2xxx"
/// by default.
std::string BuiltInOptionWords(const BuilderOptions& options);

/// The built-in builder's command line:
/// `kelvarbsp ~Kelvar.WAD "<target>" <level> <options1> <options2> <flags>`; the 3D viewer's
/// copy names another input file in the program's directory.
std::string BuiltInCommandLine(const BuilderOptions& options, const std::string& targetPath,
                               const std::string& levelName,
                               std::string_view inputName = NodeBuildInputName);

/// What the custom builder's variables stand for.
struct CustomBuilderPaths
{
    std::string LevelName;
    std::string TemporaryWad; // the full path of the temporary WAD
    std::string TargetPwad;   // the target as given
    std::string ProgramDir;   // the program's directory
};

/// The custom builder's parameter text with its variables replaced. Left to right, the
/// first of %LEVEL %TEMPWAD %PWAD %PWADDIR %KELVARDIR $PWAD $PWADDIR $KELVARDIR ~KELVAR.WAD
/// #PWAD #PWADDIR #KELVARDIR that matches (case ignored) is replaced; so %PWAD wins over
/// %PWADDIR and "DIR" stays behind: builders' parameter texts are written to that rule.
std::string ExpandBuilderParameters(std::string_view parameters, const CustomBuilderPaths& paths);

/// The custom builder's command line: its program, a blank, the expanded parameters. The
/// temporary WAD is `inputPath` (taken in the program's directory when relative), or
/// ~Kelvar.WAD there when it is empty.
std::string CustomCommandLine(const BuilderOptions& options, const std::string& inputPath,
                              const std::string& targetPath, const std::string& levelName);

/// The 3D viewer's builder's command line:
/// `"<viewerDirectory>/R3Dglbsp.exe" -r3d 16 -normal "<input>" -o "<target>"`.
std::string R3dCommandLine(const std::filesystem::path& viewerDirectory,
                           const std::string& inputPath, const std::string& targetPath);

/// Runs kelvarbsp on ~Kelvar.WAD in the program's directory, writing `targetPath`. Returns 0
/// on success (then "Successful Nodes Built !" goes to the status line with `showResult`,
/// and KelvarBSP.LOG is offered ("View KelvarBSP Log?") or shown as the options say), the
/// builder's exit code on failure (after the log was shown; -1 and 255 count as 0), or
/// ChildDidNotStart after the "Load error" box.
[[nodiscard]] int RunBuiltInBuilder(const std::string& targetPath, const std::string& levelName,
                                    bool showResult,
                                    std::string_view inputName = NodeBuildInputName);

/// Runs the custom builder of the options. Returns its exit code (0 success), or
/// ChildDidNotStart after the "Test Error" box ("Error code %d starting NodeBuilder" ...).
/// `quiet` runs it without the progress panel.
[[nodiscard]] int RunCustomBuilder(const std::string& inputPath, const std::string& targetPath,
                                   const std::string& levelName, bool quiet);

/// Runs the 3D viewer's builder in its directory. Returns its exit code, or
/// ChildDidNotStart after the "Load error" box ("Failed to start" ...).
[[nodiscard]] int RunR3dBuilder(const std::filesystem::path& viewerDirectory,
                                const std::string& inputPath, const std::string& targetPath);

} // namespace kelvar::run
