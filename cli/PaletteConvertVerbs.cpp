// kelvar-cli recolor: the pictures of PWADs made for another palette recoloured in place.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchUi.h"
#include "cli/Commands.h"
#include "cli/Verbs.h"
#include "cli/WadCommands.h"
#include "gfx/PaletteConvert.h"
#include "platform/ConsoleUi.h"
#include "wad/WadState.h"

#include <cstdio>

namespace kelvar::cli
{
namespace
{

struct RecolorRequest
{
    std::vector<std::string> Files;
    gfx::ConvertChoices Choices;
    bool FromGiven = false;
    bool KeepCopy = true;
};

bool ParseSource(const std::string& word, gfx::ConvertChoices& choices)
{
    const std::pair<const char*, gfx::PaletteSource> games[] = {
        {"doom", gfx::PaletteSource::Doom},
        {"heretic", gfx::PaletteSource::Heretic},
        {"hexen", gfx::PaletteSource::Hexen},
        {"strife", gfx::PaletteSource::Strife},
    };
    for (const auto& [name, source] : games)
    {
        if (word == name)
        {
            choices.Source = source;
            return true;
        }
    }
    choices.Source = gfx::PaletteSource::UserFile;
    choices.UserPalette = word;
    return !word.empty() && word[0] != '-';
}

bool ParseRequest(const std::vector<std::string>& arguments, RecolorRequest& request)
{
    bool flats = false;
    bool textures = false;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string& word = arguments[i];
        if (word == "--from" && i + 1 < arguments.size())
        {
            request.FromGiven = ParseSource(arguments[++i], request.Choices);
        }
        else if (word == "--flats" || word == "--textures")
        {
            (word == "--flats" ? flats : textures) = true;
        }
        else if (word == "--no-backup")
        {
            request.KeepCopy = false;
        }
        else if (word == "--only")
        {
            while (i + 1 < arguments.size() && !arguments[i + 1].starts_with("--"))
            {
                request.Choices.Only.push_back(arguments[++i]);
            }
        }
        else if (word.starts_with("--"))
        {
            return false;
        }
        else
        {
            request.Files.push_back(word);
        }
    }
    request.Choices.Kinds = flats == textures ? gfx::GraphicKinds::Both
                            : flats           ? gfx::GraphicKinds::Flats
                                              : gfx::GraphicKinds::Textures;
    return !request.Files.empty() && request.FromGiven;
}

// The console, answering the question whether to keep a copy of each file as the command line
// says. An I/O error's "Quit now ?" is answered No, so the rewrite stops and puts the old file
// back instead of the program ending half way.
class RecolorUi final : public ConsoleBackedUi
{
public:
    explicit RecolorUi(bool keepCopy) : ConsoleBackedUi(0), Answering(keepCopy ? Yes : Console) {}

    int Show(const platform::Message& message) override
    {
        if (message.IsQuestion() && message.Text().find("Quit now") != std::string::npos)
        {
            return Console.Show(message);
        }
        return Answering.Show(message);
    }
    std::optional<std::filesystem::path> ChooseFile(const platform::FileChoice&) override
    {
        return std::nullopt; // the palette file comes with --from
    }

private:
    platform::ConsoleUi Yes{stderr, 1};
    platform::ConsoleUi& Answering;
};

int Recolor(const std::vector<std::string>& arguments)
{
    RecolorRequest request;
    if (!ParseRequest(arguments, request))
    {
        std::fprintf(stderr, "kelvar-cli: recolor needs IWAD [PWAD...] --from "
                             "doom|heretic|hexen|strife|FILE.PAC [--flats|--textures] "
                             "[--only NAME...] [--no-backup]\n");
        return ExitUsage;
    }
    const int status = OpenFiles(request.Files);
    if (wad::Wad().Files[0].State == 0)
    {
        return status;
    }
    RecolorUi ui(request.KeepCopy);
    const platform::ScopedUi scoped(ui);
    gfx::ConvertReport report;
    const int result = gfx::ConvertGraphicsToPalette(request.Choices, &report);
    for (const gfx::ConvertReport::Converted& lump : report.Lumps)
    {
        std::printf("%s: %s\n", lump.File.c_str(), lump.Name.c_str());
    }
    return result < 0 ? ExitBadFile : status;
}

} // namespace

KELVAR_CLI_VERB(Recolor, "recolor", Recolor,
                "  recolor IWAD [PWAD...] --from doom|heretic|hexen|strife|FILE.PAC\n"
                "         [--flats|--textures] [--only NAME...] [--no-backup]\n"
                "                          recolours the PWADs' patches and flats (both by\n"
                "                          default) from that palette to the game's, in place;\n"
                "                          each file's old bytes stay in its .BAK unless\n"
                "                          --no-backup. A game's palette is NAME.PAC in the\n"
                "                          settings folder, DOOM.PAC made from a Doom IWAD\n");

} // namespace kelvar::cli
