// Choosing another tool file or texture control by hand.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ControlChoice.h"

#include "app/ShellState.h"
#include "app/StatusFiles.h"
#include "platform/Assert.h"
#include "platform/Format.h"
#include "platform/Messages.h"

#include <optional>

namespace kelvar::app
{
namespace
{

std::optional<std::string> PickFile(const std::string& caption, const char* filter)
{
    platform::FileChoice choice;
    choice.Caption = caption;
    choice.Filter = filter;
    choice.InitialPath = StatusDirectory({});
    choice.NameLimit = RecordPathSize - 1;
    const std::optional<std::filesystem::path> picked = platform::TheUi().ChooseFile(choice);
    if (!picked || picked->string().size() >= RecordPathSize)
    {
        return std::nullopt;
    }
    return picked->string();
}

bool Exists(const std::string& name)
{
    std::error_code error;
    return std::filesystem::is_regular_file(StatusDirectory({}) / name, error);
}

} // namespace

int ChooseToolFile(int toolNumber)
{
    KELVAR_ASSERT(toolNumber >= 1 && toolNumber <= static_cast<int>(ToolFileCount));
    const auto index = static_cast<std::size_t>(toolNumber - 1);
    const std::optional<std::string> name =
        PickFile(platform::Format("Tool %d definition", toolNumber), "Tool files (*.TOL)|*.tol|");
    if (!name)
    {
        return 0;
    }
    ShellState& shell = Shell();
    if (Exists(*name))
    {
        ToolRecord tools = shell.Tools[index];
        if (LoadToolFile(tools, true, *name) != StatusLoaded)
        {
            return 0;
        }
        shell.Tools[index] = tools;
    }
    else if (!platform::AskYesNo("!!  TOOL Definition %s does not exist  !!\nDo you want to "
                                 "create a new TOOL control using current settings?",
                                 name->c_str()) ||
             SaveToolFile(shell.Tools[index], *name) != 1)
    {
        return 0;
    }
    SetText(shell.Chk.ToolFiles[index], *name);
    return 1;
}

int ChooseTextureControl()
{
    const std::optional<std::string> name =
        PickFile("Texture TCF Control", "Texture controls (*.TCF)|*.tcf|");
    if (!name)
    {
        return 0;
    }
    ShellState& shell = Shell();
    if (Exists(*name))
    {
        TextureControlRecord tcf = shell.TextureControl;
        if (LoadTextureControl(tcf, true, *name) != StatusLoaded)
        {
            return 0;
        }
        shell.TextureControl = tcf;
    }
    else if (!platform::AskYesNo("!!  Texture control %s does not exist  !!\nDo you want to "
                                 "create a new Texture control using current settings?",
                                 name->c_str()) ||
             SaveTextureControl(shell.TextureControl, *name) != 1)
    {
        return 0;
    }
    SetText(shell.Project.TcfFile, *name);
    return 1;
}

} // namespace kelvar::app
