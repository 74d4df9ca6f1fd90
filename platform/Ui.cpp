// The installed Ui and the Message helpers.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Ui.h"

#include "platform/ConsoleUi.h"

#include <utility>

namespace kelvar::platform
{
namespace
{

Ui*& Installed()
{
    static Ui* installed = nullptr;
    return installed;
}

} // namespace

std::optional<int> Ui::ChooseEntryAt(const std::string& caption,
                                     const std::vector<std::string>& items,
                                     const std::vector<bool>& enabled, int /*current*/)
{
    const std::optional<int> choice = ChooseFromList(caption, items);
    if (!choice || *choice < 0 || static_cast<std::size_t>(*choice) >= items.size() ||
        (static_cast<std::size_t>(*choice) < enabled.size() &&
         !enabled[static_cast<std::size_t>(*choice)]))
    {
        return std::nullopt;
    }
    return choice;
}

std::vector<std::filesystem::path> Ui::ChooseFiles(const FileChoice& choice)
{
    std::optional<std::filesystem::path> file = ChooseFile(choice);
    if (!file)
    {
        return {};
    }
    return {std::move(*file)};
}

std::optional<std::string> Ui::Browse(const BrowseRequest& request)
{
    const std::optional<int> choice = ChooseFromList(request.Caption, request.Names);
    if (!choice || *choice < 0 || static_cast<std::size_t>(*choice) >= request.Names.size())
    {
        return std::nullopt;
    }
    return request.Names[static_cast<std::size_t>(*choice)];
}

std::string Message::Text() const
{
    std::string text;
    for (std::size_t i = 0; i < Lines.size(); ++i)
    {
        if (i > 0)
        {
            text += '\n';
        }
        text += Lines[i];
    }
    return text;
}

Ui& TheUi()
{
    static ConsoleUi fallback;
    Ui* installed = Installed();
    return installed != nullptr ? *installed : fallback;
}

Ui* InstallUi(Ui* ui)
{
    Ui* previous = Installed();
    Installed() = ui;
    return previous;
}

} // namespace kelvar::platform
