// kelvar-cli edit: a script of editor commands run on a level before it is saved.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/EditCommands.h"

#include "app/CommandHandlers.h"
#include "app/Commands.h"
#include "app/Modes.h"
#include "app/Router.h"
#include "app/ShellState.h"
#include "cli/Commands.h"
#include "cli/SaveCommands.h"
#include "game/ObjectEdit.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/Selection.h"
#include "map/Undo.h"
#include "tools/DragTool.h"
#include "tools/LineDraw.h"
#include "tools/RotateTool.h"
#include "view/ViewState.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <optional>
#include <sstream>

namespace kelvar::cli
{
namespace
{

std::optional<int> Number(const std::string& word)
{
    int value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc{} || end != word.data() + word.size())
    {
        return std::nullopt;
    }
    return value;
}

// The command that sets the edit mode a word names.
std::optional<int> ModeCommandOf(const std::string& word)
{
    switch (EditModeOfWord(word))
    {
    case map::ModeThings:
        return app::CmdThingsMode;
    case map::ModeLineDefs:
        return app::CmdLineDefsMode;
    case map::ModeVertexes:
        return app::CmdVertexesMode;
    case map::ModeSectors:
        return app::CmdSectorsMode;
    default:
        return std::nullopt;
    }
}

int Refuse(const std::string& command, const char* why)
{
    std::fprintf(stderr, "kelvar-cli: edit: %s: %s\n", command.c_str(), why);
    return ExitUsage;
}

int RunNumbered(const std::string& command, int number)
{
    switch (app::RunCommand(number, app::CommandSource::Key))
    {
    case app::CommandResult::Done:
        return ExitOk;
    case app::CommandResult::NotAvailable:
        return Refuse(command, "this command is not available");
    case app::CommandResult::WrongMode:
        return Refuse(command, "this command works in another edit mode");
    default:
        return Refuse(command, "no such command");
    }
}

// The objects of the words from `first` on, each checked against the mode's count.
std::optional<std::vector<int>> Objects(const std::vector<std::string>& words, std::size_t first)
{
    std::vector<int> objects;
    for (std::size_t i = first; i < words.size(); ++i)
    {
        const std::optional<int> object = Number(words[i]);
        if (!object || !map::IsValidObject(map::Map().Level, app::EditMode(), *object))
        {
            return std::nullopt;
        }
        objects.push_back(*object);
    }
    return objects;
}

int RunSelection(const std::string& command, const std::vector<std::string>& words)
{
    map::SelectionState& select = map::Selected();
    if (words[0] == "clear")
    {
        map::ClearSelection();
        return ExitOk;
    }
    if (words[0] == "box")
    {
        std::optional<int> corners[4];
        for (std::size_t i = 0; i < 4; ++i)
        {
            corners[i] = i + 1 < words.size() ? Number(words[i + 1]) : std::nullopt;
            if (!corners[i] || words.size() != 5)
            {
                return Refuse(command, "box takes four map coordinates");
            }
        }
        map::FinishBoxSelection(map::Map().Level, app::EditMode(), *corners[0], *corners[1],
                                *corners[2], *corners[3], false);
        return ExitOk;
    }
    const std::optional<std::vector<int>> objects = Objects(words, 1);
    if (!objects || objects->empty() || (words[0] == "highlight" && objects->size() != 1))
    {
        return Refuse(command, "no such object in this edit mode");
    }
    if (words[0] == "highlight")
    {
        select.HighlightedObject = objects->front();
        return ExitOk;
    }
    map::ClearSelection();
    for (const int object : *objects)
    {
        map::ObjectListPush(select.Selection, object);
    }
    select.HighlightedObject = objects->back();
    return ExitOk;
}

// A point written X,Y.
std::optional<map::Point> PointOf(const std::string& word)
{
    const std::size_t comma = word.find(',');
    if (comma == std::string::npos)
    {
        return std::nullopt;
    }
    const std::optional<int> x = Number(word.substr(0, comma));
    const std::optional<int> y = Number(word.substr(comma + 1));
    return x && y ? std::optional<map::Point>({double(*x), double(*y)}) : std::nullopt;
}

// draw X,Y X,Y ... [close|open|esc]: one run of the LineDraw tool, a click at each point, ended
// by the right button (close, the default), Insert (open: one-sided lines) or Esc.
int RunDraw(const std::string& command, const std::vector<std::string>& words)
{
    std::vector<map::Point> points;
    tools::DrawAction end = tools::DrawAction::Close;
    for (std::size_t i = 1; i < words.size(); ++i)
    {
        if (i + 1 == words.size() &&
            (words[i] == "close" || words[i] == "open" || words[i] == "esc"))
        {
            end = words[i] == "close"  ? tools::DrawAction::Close
                  : words[i] == "open" ? tools::DrawAction::CloseOneSided
                                       : tools::DrawAction::Escape;
            continue;
        }
        const std::optional<map::Point> point = PointOf(words[i]);
        if (!point)
        {
            return Refuse(command, "a point is written X,Y");
        }
        points.push_back(*point);
    }
    if (points.empty())
    {
        return Refuse(command, "no points to draw");
    }
    {
        tools::LineDrawTool tool(map::Map().Level, -1);
        for (const map::Point& point : points)
        {
            tool.Feed({tools::DrawAction::Click, point.X, point.Y});
        }
        tool.Feed({end, 0, 0});
    }
    map::ClearSelection();
    app::Shell().Chk.EditMode = static_cast<std::int16_t>(map::ModeLineDefs);
    return ExitOk;
}

// drag DX DY: the selection (or the highlighted object) moved as a drag by the right button.
int RunDrag(const std::string& command, const std::vector<std::string>& words)
{
    const std::optional<int> dx = words.size() == 3 ? Number(words[1]) : std::nullopt;
    const std::optional<int> dy = words.size() == 3 ? Number(words[2]) : std::nullopt;
    if (!dx || !dy)
    {
        return Refuse(command, "drag takes DX DY");
    }
    const int mode = app::EditMode();
    const int highlight = map::Selected().HighlightedObject;
    tools::DragState drag;
    if (!tools::DragBegin(drag, mode, 0, 0, {mode, highlight}))
    {
        return Refuse(command, "nothing to drag");
    }
    tools::DragMoveTo(drag, *dx, *dy);
    const tools::DragEnd ended = tools::DragFinish(drag);
    app::Shell().Chk.EditMode = static_cast<std::int16_t>(ended.Mode);
    return ExitOk;
}

// rotate DEGREES, scale FACTOR: the Rotate and Scale tool on the selection, its keys pressed
// until the angle or the scale is reached, then Enter.
int RunRotate(const std::string& command, const std::vector<std::string>& words)
{
    if (words.size() != 2)
    {
        return Refuse(command, "one value wanted");
    }
    const bool rotate = words[0] == "rotate";
    int presses = 0;
    if (rotate)
    {
        const std::optional<int> degrees = Number(words[1]);
        if (!degrees || *degrees < -359 || *degrees > 359)
        {
            return Refuse(command, "degrees from -359 to 359");
        }
        presses = *degrees;
    }
    else
    {
        char* end = nullptr;
        const double factor = std::strtod(words[1].c_str(), &end);
        if (end == words[1].c_str() || *end != '\0' || factor < 0 || factor > 100)
        {
            return Refuse(command, "a scale from 0 to 100");
        }
        presses = static_cast<int>(std::lround((factor - 1.0) * 100.0));
    }
    tools::RotateScaleState state;
    if (!tools::RotateScaleBegin(state, app::EditMode(), map::Selected().Selection))
    {
        return Refuse(command, "select at least two objects");
    }
    for (int i = 0; i < std::abs(presses); ++i)
    {
        const int key = rotate ? (presses > 0 ? '>' : '<') : 'r';
        tools::RotateScaleKey(state, key, !rotate && presses < 0);
    }
    tools::RotateScaleFinish(state);
    return ExitOk;
}

// pointer X Y: the view centred on the map point, with the pointer on it, where Insert puts a
// Thing (held to the grid as a click would be).
int RunPointer(const std::string& command, const std::vector<std::string>& words)
{
    const std::optional<int> x = words.size() == 3 ? Number(words[1]) : std::nullopt;
    const std::optional<int> y = words.size() == 3 ? Number(words[2]) : std::nullopt;
    if (!x || !y)
    {
        return Refuse(command, "pointer takes X Y");
    }
    view::ViewState& view = view::View();
    view.Viewport.OriginX = *x;
    view.Viewport.OriginY = *y;
    view.Pointer.X = static_cast<int>(view.Viewport.CenterXPx);
    view.Pointer.Y = static_cast<int>(view.Viewport.CenterYPx);
    return ExitOk;
}

// One field that set can write: the object kind it belongs to, its range, and its writer.
struct Field
{
    int Mode;
    const char* Name;
    long Lowest;
    long Highest;
    std::function<int(game::ObjectEditor&, long value)> Write; // the objects written
};

template <typename Number> constexpr long Low()
{
    return static_cast<long>(std::numeric_limits<Number>::min());
}
template <typename Number> constexpr long High()
{
    return static_cast<long>(std::numeric_limits<Number>::max());
}

// The fields `set` writes, through the editors' rule: an object is written only where its
// value differs.
const std::vector<Field>& Fields()
{
    using game::ObjectEditor;
    using game::SectorField;
    using game::ThingField;
    const auto thing = [](ThingField f)
    { return [f](ObjectEditor& e, long v) { return e.SetThingField(f, int(v)); }; };
    const auto sector = [](SectorField f)
    { return [f](ObjectEditor& e, long v) { return e.SetSectorField(f, int(v)); }; };
    static const std::vector<Field> fields = {
        {map::ModeThings, "type", 0, High<std::uint16_t>(), thing(ThingField::Type)},
        {map::ModeThings, "angle", 0, 359, thing(ThingField::Angle)},
        {map::ModeThings, "x", Low<std::int16_t>(), High<std::int16_t>(), thing(ThingField::X)},
        {map::ModeThings, "y", Low<std::int16_t>(), High<std::int16_t>(), thing(ThingField::Y)},
        {map::ModeThings, "flags", 0, High<std::uint16_t>(),
         [](ObjectEditor& e, long v) { return e.SetThingFlags(std::uint16_t(v)); }},
        {map::ModeLineDefs, "type", 0, High<std::uint16_t>(),
         [](ObjectEditor& e, long v) { return e.SetLineType(std::uint32_t(v)); }},
        {map::ModeLineDefs, "tag", 0, High<std::uint16_t>(),
         [](ObjectEditor& e, long v) { return e.SetLineTag(std::uint16_t(v)); }},
        {map::ModeLineDefs, "flags", 0, High<std::uint16_t>(),
         [](ObjectEditor& e, long v) { return e.SetLineFlags(std::uint16_t(v)); }},
        {map::ModeSectors, "floor", Low<std::int16_t>(), High<std::int16_t>(),
         sector(SectorField::Floor)},
        {map::ModeSectors, "ceiling", Low<std::int16_t>(), High<std::int16_t>(),
         sector(SectorField::Ceiling)},
        {map::ModeSectors, "light", 0, 255, sector(SectorField::Light)},
        {map::ModeSectors, "type", 0, High<std::uint16_t>(), sector(SectorField::Type)},
        {map::ModeSectors, "tag", 0, High<std::uint16_t>(), sector(SectorField::Tag)},
    };
    return fields;
}

// set FIELD VALUE: one field written to every selected object of the mode (the highlighted one
// when nothing is selected) as the editors write it, as one undo step when anything changed.
int RunSet(const std::string& command, const std::vector<std::string>& words)
{
    const std::optional<int> value = words.size() == 3 ? Number(words[2]) : std::nullopt;
    if (!value)
    {
        return Refuse(command, "set takes FIELD VALUE");
    }
    const int mode = app::EditMode();
    const Field* field = nullptr;
    for (const Field& candidate : Fields())
    {
        field = candidate.Mode == mode && words[1] == candidate.Name ? &candidate : field;
    }
    if (!field)
    {
        return Refuse(command, "no such field in this edit mode");
    }
    if (*value < field->Lowest || *value > field->Highest)
    {
        return Refuse(command, "value out of range");
    }
    map::LevelData& level = map::Map().Level;
    game::ObjectEditor editor(level, map::KindOfMode(mode), map::SelectionOrHighlight(level, mode),
                              [] { (void)map::SaveUndoStep(); });
    if (editor.Empty())
    {
        return Refuse(command, "nothing selected");
    }
    (void)field->Write(editor, *value);
    return ExitOk;
}

// Runs one command of the script.
int RunScriptCommand(const std::vector<std::string>& words)
{
    std::string command;
    for (const std::string& word : words)
    {
        command += (command.empty() ? "" : " ") + word;
    }
    const std::string& verb = words[0];
    if (verb == "mode")
    {
        const std::optional<int> number =
            words.size() == 2 ? ModeCommandOf(words[1]) : std::nullopt;
        return number ? RunNumbered(command, *number) : Refuse(command, "unknown edit mode");
    }
    if (verb == "select" || verb == "box" || verb == "highlight" || verb == "clear")
    {
        return RunSelection(command, words);
    }
    if (verb == "draw")
    {
        return RunDraw(command, words);
    }
    if (verb == "drag")
    {
        return RunDrag(command, words);
    }
    if (verb == "rotate" || verb == "scale")
    {
        return RunRotate(command, words);
    }
    if (verb == "pointer")
    {
        return RunPointer(command, words);
    }
    if (verb == "set")
    {
        return RunSet(command, words);
    }
    if (verb == "misc" || verb == "run")
    {
        const std::optional<int> value = words.size() == 2 ? Number(words[1]) : std::nullopt;
        if (value && verb == "run")
        {
            return RunNumbered(command, *value);
        }
        const int number = value ? app::MiscEntryNumber(app::EditMode(), *value) : 0;
        return number != 0 ? RunNumbered(command, number) : Refuse(command, "no such entry");
    }
    const std::pair<const char*, int> simple[] = {{"delete", app::CmdDeleteObject},
                                                  {"insert", app::CmdInsertObject},
                                                  {"undo", app::CmdUndo},
                                                  {"redo", app::CmdRedo}};
    for (const auto& [name, number] : simple)
    {
        if (verb == name && words.size() == 1)
        {
            return RunNumbered(command, number);
        }
    }
    return Refuse(command, "unknown command");
}

} // namespace

std::vector<std::vector<std::string>> ParseEditScript(const std::string& script)
{
    std::vector<std::vector<std::string>> commands;
    std::istringstream parts(script);
    std::string part;
    while (std::getline(parts, part, ';'))
    {
        std::istringstream words(part);
        std::vector<std::string> command;
        for (std::string word; words >> word;)
        {
            command.push_back(word);
        }
        if (!command.empty())
        {
            commands.push_back(std::move(command));
        }
    }
    return commands;
}

int EditLevel(const std::vector<std::string>& arguments)
{
    std::vector<std::string> saveArguments;
    std::string script;
    bool inScript = false;
    for (const std::string& argument : arguments)
    {
        if (!inScript && argument == "--")
        {
            inScript = true;
        }
        else if (inScript)
        {
            script += argument + " ";
        }
        else
        {
            saveArguments.push_back(argument);
        }
    }
    const std::vector<std::vector<std::string>> commands = ParseEditScript(script);
    return SaveLevel(saveArguments,
                     [&commands]() -> int
                     {
                         app::Shell().Chk.EditMode = static_cast<std::int16_t>(map::ModeLineDefs);
                         for (const std::vector<std::string>& command : commands)
                         {
                             const int status = RunScriptCommand(command);
                             if (status != ExitOk)
                             {
                                 return status;
                             }
                         }
                         std::printf("%zu commands run\n", commands.size());
                         return ExitOk;
                     });
}

} // namespace kelvar::cli
