// Test Level: the game started on the level's PWAD with a warp to the level.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/TestLevel.h"

#include "map/GameCodes.h"
#include "map/MapState.h"
#include "platform/Fatal.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Processes.h"
#include "run/RunState.h"
#include "wad/FileTable.h"
#include "wad/LumpDirectory.h"
#include "wad/LumpName.h"
#include "wad/WadState.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace kelvar::run
{
namespace
{

bool IsExecutableFile(const std::filesystem::path& path)
{
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

std::filesystem::path Absolute(const std::filesystem::path& path)
{
    std::error_code error;
    std::filesystem::path full = std::filesystem::absolute(path, error);
    return error ? path : full.lexically_normal();
}

// A file name on the game's command line: in double quotes when asked for. Without them a
// name with a blank falls apart into two arguments: engines take their command line that way.
std::string FileName(const std::filesystem::path& path, bool quote)
{
    return quote ? "\"" + path.string() + "\"" : path.string();
}

// A path the user doesn't control the quoting of (the IWAD, the response file) is quoted only
// when it must be.
std::string QuotedIfBlank(const std::string& text)
{
    return text.find(' ') == std::string::npos ? text : "\"" + text + "\"";
}

std::string RightTrimmed(std::string text)
{
    while (!text.empty() && text.back() == ' ')
    {
        text.pop_back();
    }
    return text;
}

bool HasContent(const std::string& text)
{
    return text.find_first_not_of(' ') != std::string::npos;
}

// The option words of a run, in their fixed order, without the separators.
std::vector<std::string> OptionWords(const TestOptions& options)
{
    std::vector<std::string> words;
    if (options.Skill != 0)
    {
        words.push_back(platform::Format("-skill %hd", options.Skill));
    }
    if (options.Turbo != 0)
    {
        words.push_back(platform::Format("-turbo %hd", options.Turbo));
    }
    const std::pair<bool, const char*> flags[] = {
        {options.DevParm, "-devparm"},       {options.NoMonsters, "-nomonsters"},
        {options.NoMusic, "-nomusic"},       {options.NoSound, "-nosound"},
        {options.NoSfx, "-nosfx"},           {options.FastMonsters, "-fast"},
        {options.Deathmatch, "-deathmatch"}, {options.AltDeath, "-altdeath"},
        {options.Respawn, "-respawn"},
    };
    for (const auto& [on, word] : flags)
    {
        if (on)
        {
            words.emplace_back(word);
        }
    }
    return words;
}

// The PWADs a run loads: the level's, then with LoadAllFiles the rest of the name table.
std::vector<std::filesystem::path> RunFiles(const TestOptions& options, const TestSession& session)
{
    std::vector<std::filesystem::path> files;
    if (!session.LevelPwad.empty())
    {
        files.push_back(session.LevelPwad);
    }
    if (options.LoadAllFiles)
    {
        files.insert(files.end(), session.OtherPwads.begin(), session.OtherPwads.end());
    }
    return files;
}

std::string ShownExe(const std::string& exe)
{
    // A program path with a blank is one word; a command with words of its own is not a file.
    return IsExecutableFile(exe) ? QuotedIfBlank(exe) : exe;
}

// Writes Kelvar.RSP; a failure ends the program, as a half-made test run can't be trusted.
void WriteResponseFile(const std::filesystem::path& path, const std::string& text)
{
    std::FILE* file = std::fopen(path.c_str(), "wt");
    if (file == nullptr)
    {
        platform::FatalError("Unable to create %s", path.c_str());
    }
    std::fputs(text.c_str(), file);
    std::fclose(file);
}

// Puts the dialog's values back. GameExe and ExtraParameters were shown completed; unless
// the user changed them they keep their stored form, so that a bare program name and a ':'
// go on following the IWAD.
void StoreBack(TestOptions& stored, TestOptions shown, const std::string& completedExe,
               const std::string& completedExtra)
{
    if (shown.GameExe == completedExe)
    {
        shown.GameExe = stored.GameExe;
    }
    if (shown.ExtraParameters == completedExtra)
    {
        shown.ExtraParameters = stored.ExtraParameters;
    }
    shown.Hooks = stored.Hooks;
    stored = std::move(shown);
}

bool HasUnsavedChanges()
{
    const map::LevelData& level = map::Map().Level;
    return level.ChangeCount != 0 || level.GeometryChangeCount != 0;
}

// The command line of the run, after the dialog; writes the response file when asked.
std::string CommandLineOf(const TestOptions& run, const TestSession& session,
                          const std::filesystem::path& gameDirectory)
{
    const TestWarp warp = WarpFor(run.WarpText, session.LevelName);
    const int code = TestGameCode(session.Format, run.GameExe, session.IwadPath);
    if (code == GameCodeDoom95)
    {
        // DOOM95 takes its options from its own loader, not from the command line.
        platform::TheUi().SetStatusText("** DOOM95 Options set in Loader **");
        return ShownExe(run.GameExe);
    }
    if (!run.ResponseFile)
    {
        return PlainCommandLine(run, session, warp);
    }
    const std::filesystem::path path = ResponseFilePath(gameDirectory, session.ProgramDir);
    WriteResponseFile(path, ResponseFileText(run, session, warp));
    std::string line;
    AppendCommand(line, ShownExe(run.GameExe));
    AppendCommand(line, " @" + QuotedIfBlank(path.string()));
    return line;
}

void ReportNotStarted(const std::string& exe)
{
    platform::ShowMessageLines(0, "Test Error",
                               {platform::Format("Make sure game %s", exe.c_str()),
                                "has been installed", "and you have modified this dialog",
                                "to point to the game location"});
}

// The level comes back as the files are now: the game may have changed the PWAD, and with
// no wait it may still have it open, so the files are read only meanwhile.
void RestoreAfterRun(int format, const TestHooks& hooks)
{
    wad::WadState& wad = wad::Wad();
    wad.Game.Format = format;
    wad.ReadOnlyOpen = true;
    if (hooks.ReloadAfterTest)
    {
        hooks.ReloadAfterTest();
    }
    wad.ReadOnlyOpen = false;
}

} // namespace

TestSession CurrentTestSession(const std::string& levelName)
{
    const wad::WadState& wad = wad::Wad();
    TestSession session;
    session.LevelName = levelName;
    session.IwadPath =
        Absolute(wad.Files[0].FileName.empty() ? wad.Options.IwadPath : wad.Files[0].FileName);
    const int number = wad.CurrentFile.FileNumber;
    int levelListIndex = -1;
    if (number > 0 && number < wad::FileTableSize)
    {
        const wad::FileRec& file = wad.Files[static_cast<std::size_t>(number)];
        if (file.State != 0 && !file.FileName.empty())
        {
            session.LevelPwad = Absolute(file.FileName);
            levelListIndex = file.ListIndex;
        }
    }
    for (int i = 0; i < wad::NameTableSize; ++i)
    {
        const std::string& name = wad.OpenFiles[static_cast<std::size_t>(i)];
        if (!name.empty() && i != levelListIndex && Absolute(name) != session.LevelPwad)
        {
            session.OtherPwads.push_back(Absolute(name));
        }
    }
    session.Game = wad.Game.Game;
    session.Format = wad.Game.Format;
    session.BoomTypes = wad.Options.BoomTypes;
    session.ZdoomHexenFormat = wad.Options.ZdoomHexenFormat;
    session.GlNodes = wad.Options.GlNodes;
    session.ProgramDir = wad.ProgramDir;
    return session;
}

std::string WarpOf(std::string_view levelName)
{
    const wad::LevelNameParts parts = wad::LevelNameKind(wad::LumpName::From(levelName));
    if (levelName.size() > 8 || parts.Kind == wad::NotALevelName)
    {
        return {};
    }
    const auto episode = static_cast<short>(parts.Episode);
    const auto map = static_cast<short>(parts.Map);
    return parts.Kind == wad::EpisodeMapName ? platform::Format("%hd %hd", episode, map)
                                             : platform::Format("%hd", map);
}

TestWarp WarpFor(const std::string& warpText, const std::string& levelName)
{
    TestWarp warp;
    warp.Value = WarpOf(levelName);
    if (!warp.Value.empty())
    {
        warp.Text = warpText.empty() ? " -warp " : warpText;
    }
    else if (warpText.empty())
    {
        warp.Text = "+map " + levelName;
        warp.Nonstandard = true;
    }
    else
    {
        // A port's own warp word takes the level's name.
        warp.Text = warpText;
        warp.Value = levelName;
    }
    return warp;
}

bool AppendCommand(std::string& buffer, std::string_view text)
{
    if (buffer.size() + text.size() >= CommandBufferSize)
    {
        platform::ShowError("Command Buffer Size exceeded!");
        return false;
    }
    buffer += text;
    return true;
}

std::string CompleteGameExe(const std::string& gameExe, const std::filesystem::path& iwadPath)
{
    if (gameExe.empty() || gameExe.find(' ') != std::string::npos)
    {
        return gameExe;
    }
    const std::filesystem::path exe(gameExe);
    const std::filesystem::path iwadDirectory = iwadPath.parent_path();
    if (exe.is_absolute())
    {
        return gameExe;
    }
    if (gameExe.find('/') != std::string::npos)
    {
        return (iwadDirectory / exe).lexically_normal().string();
    }
    std::vector<std::filesystem::path> folders;
    if (const char* path = std::getenv("PATH"); path != nullptr)
    {
        std::string_view rest(path);
        while (!rest.empty())
        {
            const std::size_t colon = rest.find(':');
            const std::string_view folder = rest.substr(0, colon);
            if (!folder.empty())
            {
                folders.emplace_back(folder);
            }
            rest = colon == std::string_view::npos ? std::string_view() : rest.substr(colon + 1);
        }
    }
    folders.emplace_back("/usr/games");
    folders.push_back(iwadDirectory);
    for (const std::filesystem::path& folder : folders)
    {
        if (IsExecutableFile(folder / exe))
        {
            return (folder / exe).string();
        }
    }
    return gameExe;
}

std::string CompleteExtraParameters(const std::string& extra, const TestSession& session)
{
    if (extra.empty() || extra.front() != ':')
    {
        return extra;
    }
    // The ':' becomes the blank that parts the IWAD from the rest. The game programs of this
    // system look for an IWAD of their own when given none, which may be another game's, so
    // every project names its IWAD, not only the Boom, ZDoom and GL ones.
    return " -iwad " + QuotedIfBlank(session.IwadPath.string()) + " " + extra.substr(1);
}

std::filesystem::path GameDirectoryOf(const TestOptions& options, const TestSession& session)
{
    if (!options.GameDirectory.empty())
    {
        return options.GameDirectory;
    }
    return session.IwadPath.parent_path();
}

std::filesystem::path ResponseFilePath(const std::filesystem::path& gameDirectory,
                                       const std::filesystem::path& programDir)
{
    const bool writable = !gameDirectory.empty() && access(gameDirectory.c_str(), W_OK) == 0;
    return Absolute((writable ? gameDirectory : programDir) / ResponseFileName);
}

int TestGameCode(int format, const std::string& gameExe, const std::filesystem::path& iwadPath)
{
    const std::string exe = std::filesystem::path(gameExe).filename().string();
    if (format >= map::GameHeretic || !wad::EqualNoCase(exe, "DOOM95.EXE"))
    {
        return GameCodeNone;
    }
    return wad::EqualNoCase(iwadPath.filename().string(), "CHEX.WAD") ? GameCodeChex
                                                                      : GameCodeDoom95;
}

std::string ResponseFileText(const TestOptions& options, const TestSession& session,
                             const TestWarp& warp)
{
    std::string text = warp.Text + warp.Value + "\n";
    bool first = true;
    for (const std::filesystem::path& file : RunFiles(options, session))
    {
        // A level from the IWAD has no -file of its own: the first further PWAD brings it.
        text += (first ? " -file " : "") + FileName(file, options.QuoteResponse) + "\n";
        first = false;
    }
    for (const std::string& word : OptionWords(options))
    {
        text += word + "\n";
    }
    if (HasContent(options.ExtraParameters))
    {
        text += options.ExtraParameters + "\n";
    }
    return text;
}

std::string PlainCommandLine(const TestOptions& options, const TestSession& session,
                             const TestWarp& warp)
{
    std::string line;
    AppendCommand(line, ShownExe(options.GameExe));
    if (!warp.Text.empty() && warp.Text.front() != ' ')
    {
        AppendCommand(line, " ");
    }
    AppendCommand(line, warp.Text);
    AppendCommand(line, warp.Value);
    bool first = true;
    for (const std::filesystem::path& file : RunFiles(options, session))
    {
        AppendCommand(line, first ? " -file " : " ");
        AppendCommand(line, FileName(file, options.QuoteFileNames));
        first = false;
    }
    AppendCommand(line, " ");
    for (const std::string& word : OptionWords(options))
    {
        AppendCommand(line, word + " ");
    }
    AppendCommand(line, options.ExtraParameters);
    return RightTrimmed(line);
}

int TestLevel(const std::string& levelName)
{
    TestOptions& options = Run().Test;
    const TestHooks hooks = options.Hooks;
    const FileOperationGuard busy(hooks);
    const TestSession session = CurrentTestSession(levelName);

    if (options.WarpText.empty() && WarpOf(levelName).empty())
    {
        platform::ShowInfo(
            "%s is a nonstandard level name\n\nVerify Custom Warp setting for your Port",
            levelName.c_str());
    }
    if (HasUnsavedChanges() && !platform::AskYesNo("!! Warning !! Save this LEVEL first !!\n\n"
                                                   "      You will LOSE ALL CHANGES\n\n"
                                                   "             Continue?"))
    {
        return -1;
    }

    TestOptions shown = options;
    shown.GameExe = CompleteGameExe(options.GameExe, session.IwadPath);
    shown.ExtraParameters = CompleteExtraParameters(options.ExtraParameters, session);
    const std::string completedExe = shown.GameExe;
    const std::string completedExtra = shown.ExtraParameters;
    const std::string pwad =
        (session.LevelPwad.empty() ? session.IwadPath : session.LevelPwad).filename().string();
    if (hooks.EditTestOptions && !hooks.EditTestOptions(shown, pwad + " level - " + levelName))
    {
        return -1;
    }
    // The dialog may have changed the program and its parameters: complete them again.
    TestOptions ready = shown;
    ready.GameExe = CompleteGameExe(shown.GameExe, session.IwadPath);
    ready.ExtraParameters = CompleteExtraParameters(shown.ExtraParameters, session);
    StoreBack(options, std::move(shown), completedExe, completedExtra);
    const std::filesystem::path directory = GameDirectoryOf(ready, session);
    const std::string commandLine = CommandLineOf(ready, session, directory);

    wad::CloseFiles('L', false, false);
    platform::ChildRequest request;
    request.Directory = directory;
    request.CommandLine = commandLine;
    request.ShowMode = platform::ShowDefault;
    request.Flags = ready.WaitForGame ? platform::ChildWait | platform::ChildPump : 0;
    const int result = platform::TheProcesses().RunChild(request);
    if (result == platform::ChildDidNotStart)
    {
        ReportNotStarted(ready.GameExe);
    }
    RestoreAfterRun(session.Format, hooks);
    return result == platform::ChildDidNotStart ? 0 : 1;
}

} // namespace kelvar::run
