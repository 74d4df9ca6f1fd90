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
#include "map/MapState.h"
#include "map/Selection.h"

#include <charconv>
#include <cstdio>
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
