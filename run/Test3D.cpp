// 3D Mode Texture Align: the level in the external 3D viewer, and its changes read back.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/Test3D.h"

#include "game/OptFile.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Processes.h"
#include "run/RunState.h"
#include "wad/WadState.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <vector>

namespace kelvar::run
{
namespace
{

constexpr std::uint16_t FlagUpperUnpegged = 8;
constexpr std::uint16_t FlagLowerUnpegged = 16;

// The viewer is started with every file name in double quotes: its own reader and ours both
// take them off.
std::string Quoted(const std::filesystem::path& path)
{
    return "\"" + path.string() + "\"";
}

void AppendIf(std::string& line, bool on, std::string_view text)
{
    if (on)
    {
        AppendCommand(line, text);
    }
}

void AppendEditKeywords(std::string& line, const Viewer3DOptions& options)
{
    AppendIf(line, options.InvisibleThings, " -estock");
    AppendIf(line, options.ClipToFloor, " -eclipf");
    AppendIf(line, options.ClipToCeiling, " -eclipc");
    AppendIf(line, !options.AutoSpeed, platform::Format(" -espeed %hd", options.Speed));
    AppendIf(line, options.HiResFlats, " -eflat");
    AppendIf(line, options.HiResTx, " -etx");
    AppendIf(line, options.HiResTexture, " -etexture");
    // Analysis and caching are the viewer's defaults; the keywords turn them off.
    AppendIf(line, !options.Analyze, " -eaof");
    AppendIf(line, !options.Caching, " -ecof");
}

void AppendScreen(std::string& line, const Viewer3DOptions& options, const ScreenRect& automatic)
{
    switch (options.Screen)
    {
    case ViewerScreen::FullScreenHardware:
        break;
    case ViewerScreen::FullScreenWindow:
        AppendCommand(line, " -max");
        break;
    case ViewerScreen::Automatic:
        AppendCommand(line, platform::Format(" -window -width %d -height %d -xpos %d -ypos %d",
                                             automatic.Width, automatic.Height, automatic.Left,
                                             automatic.Top));
        break;
    case ViewerScreen::CustomHardware:
        AppendCommand(line, platform::Format(" -winsize %hd %hd", options.Width, options.Height));
        break;
    case ViewerScreen::CustomWindow:
        AppendCommand(line, platform::Format(" -window -width %hd -height %hd", options.Width,
                                             options.Height));
        AppendCommand(line, platform::Format(" -xpos %hd", options.XPos));
        AppendCommand(line, platform::Format(" -ypos %hd", options.YPos));
        break;
    }
}

const char* TypeKeyword(int game)
{
    switch (game)
    {
    case 3:
        return " -typeheretic";
    case 4:
        return " -typehexen";
    case 5:
        return " -typestrife";
    default:
        return " -typedoom";
    }
}

void AppendPlayOptions(std::string& line, const Viewer3DOptions& options)
{
    AppendIf(line, options.UseSpecials, " -especial");
    AppendIf(line, options.NoObjects, " -noobjects");
    AppendIf(line, options.NoMonsters, " -nomonsters");
    AppendIf(line, options.NoMd2, " -nomd2");
    AppendIf(line, options.DisableWKey, " -nowkey");
    // The viewer's console is asked for; "no console" leaves it out.
    AppendIf(line, !options.NoConsole, " -console");
    AppendIf(line, options.NoSprites, " -nosprites");
    AppendIf(line, options.NoEscape, " -noescape");
    AppendIf(line, options.NoInfight, " -noinfight");
    AppendIf(line, options.MaxFps > 0, platform::Format(" -maxfps %hd", options.MaxFps));
}

// The blank-separated fields of a row, its line end taken off.
std::vector<std::string_view> Fields(std::string_view line)
{
    std::vector<std::string_view> fields;
    std::size_t at = 0;
    while (at < line.size())
    {
        const std::size_t start = line.find_first_not_of(" \t\r\n", at);
        if (start == std::string_view::npos)
        {
            break;
        }
        const std::size_t end = std::min(line.find_first_of(" \t\r\n", start), line.size());
        fields.push_back(line.substr(start, end - start));
        at = end;
    }
    return fields;
}

std::optional<long> Number(std::string_view field)
{
    long value = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (error != std::errc() || end != field.data() + field.size())
    {
        return std::nullopt;
    }
    return value;
}

// Reads `count` numbers from `fields` at `first`; nothing when one is missing or bad.
std::optional<std::vector<long>> Numbers(const std::vector<std::string_view>& fields,
                                         std::size_t first, std::size_t count)
{
    if (fields.size() < first + count)
    {
        return std::nullopt;
    }
    std::vector<long> numbers;
    for (std::size_t i = first; i < first + count; ++i)
    {
        const std::optional<long> number = Number(fields[i]);
        if (!number)
        {
            return std::nullopt;
        }
        numbers.push_back(*number);
    }
    return numbers;
}

// Writes `value` into `field` when it differs, counting the change against `kind`.
template <typename Field, typename Value>
void Change(map::LevelData& level, int kind, Field& field, Value value)
{
    const auto converted = static_cast<Field>(value);
    if (field != converted)
    {
        field = converted;
        map::NoteChange(level, kind);
    }
}

bool ApplyThing(map::LevelData& level, const std::vector<std::string_view>& fields)
{
    const std::optional<std::vector<long>> values = Numbers(fields, 1, 6);
    if (!values || (*values)[0] < 0)
    {
        return false;
    }
    const std::vector<long>& v = *values;
    auto number = static_cast<std::int32_t>(v[0]);
    if (number >= level.Things.Count())
    {
        number = map::InsertObject(level, map::KindThing, -1, static_cast<int>(v[1]),
                                   static_cast<int>(v[2]));
    }
    map::Thing& thing = level.Things[static_cast<std::size_t>(number)];
    Change(level, map::KindThing, thing.X, v[1]);
    Change(level, map::KindThing, thing.Y, v[2]);
    Change(level, map::KindThing, thing.Angle, v[3]);
    Change(level, map::KindThing, thing.Type, v[4]);
    Change(level, map::KindThing, thing.Flags, v[5]);
    std::size_t next = 7;
    if (fields.size() > next && fields[next] == "args")
    {
        if (const std::optional<std::vector<long>> args = Numbers(fields, next + 1, 5))
        {
            for (std::size_t i = 0; i < 5; ++i)
            {
                Change(level, map::KindThing, thing.Args[i], (*args)[i]);
            }
            next += 6;
        }
    }
    if (fields.size() > next && fields[next] == "del")
    {
        map::DeleteObject(level, map::KindThing, number);
    }
    return true;
}

bool ApplyFlat(map::LevelData& level, const std::vector<std::string_view>& fields, bool ceiling)
{
    const std::optional<std::vector<long>> values = Numbers(fields, 1, 3);
    if (!values || fields.size() < 5 || (*values)[0] < 0 || (*values)[0] >= level.Sectors.Count())
    {
        return false;
    }
    map::Sector& sector = level.Sectors[static_cast<std::size_t>((*values)[0])];
    Change(level, map::KindSector, ceiling ? sector.CeilingHeight : sector.FloorHeight,
           (*values)[1]);
    Change(level, map::KindSector, sector.Light, (*values)[2]);
    Change(level, map::KindSector, ceiling ? sector.CeilingTexture : sector.FloorTexture,
           map::TextureName::From(fields[4]));
    return true;
}

bool ApplyLine(map::LevelData& level, const std::vector<std::string_view>& fields)
{
    const std::optional<std::vector<long>> values = Numbers(fields, 1, 4);
    if (!values || fields.size() < 8 || (*values)[0] < 0 ||
        (*values)[0] >= level.LineDefs.Count() || ((*values)[1] != 0 && (*values)[1] != 1))
    {
        return false;
    }
    map::LineDef& line = level.LineDefs[static_cast<std::size_t>((*values)[0])];
    const std::uint32_t side = (*values)[1] == 0 ? line.SideDef1 : line.SideDef2;
    if (side == map::NoSideDef || side >= static_cast<std::uint32_t>(level.SideDefs.Count()))
    {
        return false;
    }
    map::SideDef& sideDef = level.SideDefs[side];
    Change(level, map::KindSideDef, sideDef.XOffset, (*values)[2]);
    Change(level, map::KindSideDef, sideDef.YOffset, (*values)[3]);
    Change(level, map::KindSideDef, sideDef.UpperTexture, map::TextureName::From(fields[5]));
    Change(level, map::KindSideDef, sideDef.LowerTexture, map::TextureName::From(fields[6]));
    Change(level, map::KindSideDef, sideDef.NormalTexture, map::TextureName::From(fields[7]));
    bool upper = false;
    bool lower = false;
    for (std::size_t i = 8; i < fields.size(); ++i)
    {
        upper = upper || fields[i] == "Upeg";
        lower = lower || fields[i] == "Lpeg";
    }
    std::uint16_t flags = line.Flags;
    flags =
        static_cast<std::uint16_t>(upper ? flags | FlagUpperUnpegged : flags & ~FlagUpperUnpegged);
    flags =
        static_cast<std::uint16_t>(lower ? flags | FlagLowerUnpegged : flags & ~FlagLowerUnpegged);
    Change(level, map::KindLineDef, line.Flags, flags);
    return true;
}

// Shows the instruction panel and keeps the shell's busy words set for the command's length.
class CommandScope
{
public:
    explicit CommandScope(const TestHooks& hooks) : Busy(hooks)
    {
        platform::TheUi().ShowProgress(Instruction3DCaption, Instruction3DText);
    }
    ~CommandScope() { platform::TheUi().EndProgress(); }

private:
    FileOperationGuard Busy;
};

// The level must have a PWAD of its own for the viewer's copy to be made from.
bool LevelCanBeCopied()
{
    const int number = wad::Wad().CurrentFile.FileNumber;
    if (number < 0)
    {
        platform::ShowError("!! Please SAVE first  !!");
        return false;
    }
    if (number == 0)
    {
        platform::ShowMessageLines(0, "IWAD level", {"!! Level is from IWAD !!"});
        return false;
    }
    return true;
}

void ReadBack(const std::filesystem::path& editFile, const TestHooks& hooks)
{
    std::FILE* stream = std::fopen(editFile.c_str(), "rt");
    if (stream == nullptr)
    {
        return;
    }
    if (hooks.SaveUndoStep)
    {
        hooks.SaveUndoStep();
    }
    ApplyEditStream(map::Map().Level, stream);
    std::fclose(stream);
}

} // namespace

std::string ViewerCommandLine(const Viewer3DOptions& options, const TestSession& session,
                              const ViewerLaunch& launch)
{
    std::string line;
    AppendCommand(line, options.ViewerPath);
    AppendCommand(line, platform::Format(" -cmd \"warc %d %d\"", launch.CursorX, launch.CursorY));
    AppendCommand(line, " -opt " + Quoted(launch.OptFile));
    AppendCommand(line, " -help " + Quoted(std::filesystem::path(options.ViewerDirectory) /
                                           ViewerHelpFileName));
    if (!launch.PlayOnly)
    {
        AppendEditKeywords(line, options);
    }
    AppendIf(line, !options.ViewerParameters.empty(), " " + options.ViewerParameters);
    AppendCommand(line, " -iwad " + Quoted(session.IwadPath));
    // The viewer takes 40 to 512 megabytes; 0 leaves its own.
    const auto memory = static_cast<short>(std::clamp<int>(options.Memory, 40, 512));
    AppendIf(line, options.Memory > 0, platform::Format(" -maxzone %hdM", memory));
    AppendIf(line, options.Skill > 0, platform::Format(" -skill %hd", options.Skill));
    AppendIf(line, launch.Turbo > 0, platform::Format(" -turbo %hd", launch.Turbo));
    AppendScreen(line, options, launch.Automatic);
    AppendCommand(line, TypeKeyword(session.Game));
    AppendPlayOptions(line, options);
    // The copy goes last, so that its level wins over one of the same name in a PWAD.
    AppendCommand(line, " xxxxx ");
    if (options.LoadAllFiles)
    {
        if (!session.LevelPwad.empty())
        {
            AppendCommand(line, Quoted(session.LevelPwad) + " ");
        }
        for (const std::filesystem::path& pwad : session.OtherPwads)
        {
            AppendCommand(line, Quoted(pwad) + " ");
        }
    }
    AppendCommand(line, Quoted(launch.Copy));
    return line;
}

bool ApplyEditLine(map::LevelData& level, std::string_view line)
{
    const std::vector<std::string_view> fields = Fields(line);
    if (fields.empty())
    {
        return false;
    }
    if (fields[0] == "THING")
    {
        return ApplyThing(level, fields);
    }
    if (fields[0] == "FLAT_CEIL" || fields[0] == "FLAT_FLOOR")
    {
        return ApplyFlat(level, fields, fields[0] == "FLAT_CEIL");
    }
    if (fields[0] == "LINE")
    {
        return ApplyLine(level, fields);
    }
    return false;
}

int ApplyEditStream(map::LevelData& level, std::FILE* stream)
{
    int applied = 0;
    char line[129];
    while (std::fgets(line, sizeof line, stream) != nullptr)
    {
        applied += ApplyEditLine(level, line) ? 1 : 0;
    }
    return applied;
}

int TestIn3D(int cursorX, int cursorY)
{
    TestOptions& test = Run().Test;
    const TestHooks hooks = test.Hooks;
    const CommandScope scope(hooks);
    int answer = ViewerEdit;
    if (test.Viewer.Prompt && hooks.EditViewerOptions)
    {
        Viewer3DOptions edited = test.Viewer;
        answer = hooks.EditViewerOptions(edited);
        if (answer == ViewerCancel)
        {
            return -1;
        }
        test.Viewer = edited;
    }
    const Viewer3DOptions& options = test.Viewer;
    if (!LevelCanBeCopied() || game::WriteThingList() != 1)
    {
        return -1;
    }
    const std::filesystem::path directory(options.ViewerDirectory);
    ViewerLaunch launch;
    launch.CursorX = cursorX;
    launch.CursorY = cursorY;
    launch.OptFile = wad::Wad().ProgramDir / game::CurrentOptFileName;
    launch.Copy = directory / ViewerCopyName;
    launch.Automatic = hooks.MapWindowRect ? hooks.MapWindowRect() : ScreenRect{};
    launch.Turbo = test.Turbo;
    launch.PlayOnly = answer == ViewerPlayOnly || options.Scope == ViewerScope::Play;
    if (!hooks.Write3DCopy || !hooks.Write3DCopy(launch.Copy, options))
    {
        return -1;
    }

    const std::filesystem::path editFile = directory / ViewerEditFileName;
    std::error_code error;
    std::filesystem::remove(editFile, error);
    platform::ChildRequest request;
    request.Directory = directory;
    request.CommandLine = ViewerCommandLine(options, CurrentTestSession(""), launch);
    request.ShowMode = platform::ShowDefault;
    request.Flags = options.WaitFor3D ? platform::ChildWait | platform::ChildPump : 0;
    if (platform::TheProcesses().RunChild(request) == platform::ChildDidNotStart)
    {
        platform::ShowMessageLines(0, "Test Error",
                                   {platform::Format("Make sure %s", options.ViewerPath.c_str()),
                                    "has been installed", "and you have modified this dialog",
                                    "to point to the location of R3Dedit"});
        return 0;
    }
    if (!launch.PlayOnly)
    {
        ReadBack(editFile, hooks);
    }
    if (hooks.Redraw)
    {
        hooks.Redraw();
    }
    std::filesystem::remove(editFile, error);
    return 1;
}

} // namespace kelvar::run
