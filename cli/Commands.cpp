// The commands of kelvar-cli: argument handling and dispatch.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"

#include "cli/CheckCommands.h"
#include "cli/EditCommands.h"
#include "cli/GameCommands.h"
#include "cli/KeyCommands.h"
#include "cli/LevelCommands.h"
#include "cli/PaletteCommands.h"
#include "cli/PictureCommands.h"
#include "cli/RenderCommands.h"
#include "cli/SaveCommands.h"
#include "cli/SoundCommands.h"
#include "cli/StatusCommands.h"
#include "cli/TextureCommands.h"
#include "cli/Verbs.h"
#include "cli/WadCommands.h"
#include "map/Selection.h"
#include "platform/ConsoleUi.h"
#include "platform/Fatal.h"
#include "platform/Paths.h"
#include "wad/WadState.h"

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::cli
{
namespace
{

void PrintUsage(std::FILE* out)
{
    std::fputs("usage: kelvar-cli COMMAND ARGUMENTS\n"
               "\n"
               "  lumps IWAD [PWAD...]    the master lump directory after the PWADs are laid\n"
               "                          over the IWAD: index, name, file, offset, size\n"
               "  levels IWAD [PWAD...]   the game the IWAD belongs to and its level list,\n"
               "                          with the file that supplies each level\n"
               "  level IWAD [PWAD...] MAPNAME\n"
               "                          one level: its layout, object counts, node lumps\n"
               "                          and bounding box\n"
               "  render IWAD [PWAD...] MAPNAME -o FILE.png [--mode MODE] [--size WxH]\n"
               "         [--sprites]      the level drawn as the map window shows it at its\n"
               "                          best fit; MODE is things, linedefs (the default),\n"
               "                          vertexes or sectors; the size defaults to 1280x960;\n"
               "                          --sprites shows Things as their sprites\n"
               "  keys [--menus]          the shortcut list: key, command, name; (-) marks a\n"
               "                          command that is unavailable: greyed in the menus,\n"
               "                          its key only beeps. --menus: the menu bar of each\n"
               "                          edit mode\n"
               "  save IWAD [PWAD...] MAPNAME -o OUT.wad [--nodes]\n"
               "                          the level saved into OUT.wad as Save Level does (Build\n"
               "                          Node with --nodes); questions take their first answer\n"
               "  edit IWAD [PWAD...] MAPNAME -o OUT.wad [--nodes] [--new] -- SCRIPT\n"
               "                          the level changed by a script of editor commands,\n"
               "                          then saved as save does; --new starts from the level\n"
               "                          made empty. Commands, separated by ';':\n"
               "                          mode things|linedefs|vertexes|sectors; select N...;\n"
               "                          box X1 Y1 X2 Y2; highlight N; clear; misc INDEX (the\n"
               "                          mode's Misc popup entry); delete; insert; undo; redo;\n"
               "                          draw X,Y X,Y... [close|open|esc] (a LineDraw run);\n"
               "                          drag DX DY; rotate DEGREES; scale FACTOR; pointer X Y\n"
               "                          (where insert puts a Thing); set FIELD VALUE (type,\n"
               "                          angle, x, y, flags of Things; type, tag, flags of\n"
               "                          LineDefs; floor, ceiling, light, type, tag of Sectors;\n"
               "                          written only where the value differs);\n"
               "                          run NUMBER (any command). Questions take their first\n"
               "                          answer, number prompts their offered value\n"
               "  sound export IWAD [PWAD...] LUMP -o FILE.wav|FILE.snd\n"
               "                          a sound lump as a WAV file (or as an SND lump)\n"
               "  sound export IWAD [PWAD...] --all -d DIR\n"
               "                          every sound lump as DIR/name.wav\n"
               "  sound import FILE.wav -o OUT.wad [--name LUMP]\n"
               "                          a PWAD holding the wave as a sound lump\n"
               "  music export IWAD [PWAD...] LUMP -o FILE.mid|FILE.mus [--tempo N]\n"
               "                          a music lump as a MIDI file (MUS converted with the\n"
               "                          division N, 89 by default) or as a MUS lump (MIDI\n"
               "                          converted by kelvarmus at N ticks a second, 140)\n"
               "  music import FILE.mid -o OUT.wad [--name LUMP] [--tempo N]\n"
               "                          a PWAD holding the MIDI file converted to MUS\n"
               "  music render IWAD [PWAD...] LUMP -o FILE.wav [--soundfont FILE.sf2]\n"
               "                          a music lump played into a wave by fluidsynth\n"
               "  check IWAD [PWAD...] MAPNAME [--only GROUP,...] [--json] [--fix -o OUT.wad]\n"
               "                          the level checker's findings (all checks, or those of\n"
               "                          the groups closed, xref, walls, names, things, lines,\n"
               "                          sectors, extra), as text or JSON; --fix takes every\n"
               "                          repair offered and saves. Exit status 1 when something\n"
               "                          was found\n"
               "  stats IWAD [PWAD...] MAPNAME\n"
               "                          the level's statistics report\n"
               "  textures IWAD [PWAD...] [--flats|--patches|--sprites]\n"
               "                          the wall textures (or flats, PNAMES patches, sprites)\n"
               "                          with their sizes, where each lies and its file\n"
               "  picture export IWAD [PWAD...] NAME -o FILE.png|FILE.bmp|FILE.pcx [--texture]\n"
               "                          a picture lump, or the texture of that name composed\n"
               "                          from its patches, in the game palette (a PNG keeps\n"
               "                          the offsets)\n"
               "  picture export IWAD [PWAD...] --all sprites|patches|flats -d DIR\n"
               "                          every picture between those markers as DIR/NAME.png\n"
               "  picture import IWAD [PWAD...] FILE -o OUT.wad [--name LUMP]\n"
               "         [--as patch|sprite|flat]\n"
               "                          a PNG, BMP or PCX file brought to the game palette as\n"
               "                          one lump of a new PWAD (a patch by default)\n"
               "  palette export IWAD [PWAD...] -o FILE.pal|FILE.pac|FILE.png [--palette N]\n"
               "                          PLAYPAL's palette N (0 by default) as a JASC text\n"
               "                          palette, 768 bytes, or a 16 by 16 swatch picture\n"
               "  palette build IWAD [PWAD...] -o FILE [--palette N]\n"
               "                          a COLORMAP lump: 32 light maps faded to black from\n"
               "                          palette N, the files' maps past 31 kept\n"
               "  status FILE             a status file's frame and every named field\n"
               "  status --build DIR      writes all control files into DIR\n"
               "  types GAME things|lines|sectors [--opt FILE]\n"
               "                          a type table after the OPT file's overlay, one row a\n"
               "                          line, with its categories; GAME is doom, doom2,\n"
               "                          heretic, hexen, strife, boom or zdoom\n",
               out);
    for (const Verb& verb : RegisteredVerbs())
    {
        std::fputs(verb.Usage, out);
    }
    std::fputs("\n"
               "Messages go to stderr. Exit status: 0 done, 1 bad usage, 2 a file was refused,\n"
               "4 a fatal error.\n",
               out);
}

} // namespace

int EditModeOfWord(const std::string& word)
{
    if (word == "things")
    {
        return map::ModeThings;
    }
    if (word == "linedefs")
    {
        return map::ModeLineDefs;
    }
    if (word == "vertexes")
    {
        return map::ModeVertexes;
    }
    return word == "sectors" ? map::ModeSectors : 0;
}

int Run(int argc, char** argv)
{
    const std::vector<std::string> args(argv + 1, argv + argc);
    if (args.empty() || args[0] == "-h" || args[0] == "--help" || args[0] == "help")
    {
        PrintUsage(args.empty() ? stderr : stdout);
        return args.empty() ? ExitUsage : ExitOk;
    }

    static platform::ConsoleUi console(stderr, 0);
    platform::InstallUi(&console);
    platform::InstallOutOfMemoryHandler();
    wad::Wad().ProgramDir = platform::DefaultProgramDir();

    const std::string_view command = args[0];
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    if (command == "lumps" && !rest.empty())
    {
        return ListLumps(rest);
    }
    if (command == "levels" && !rest.empty())
    {
        return ListLevels(rest);
    }
    if (command == "level" && rest.size() >= 2)
    {
        return DescribeLevel(rest);
    }
    if (command == "render")
    {
        return RenderLevel(rest);
    }
    if (command == "keys")
    {
        return ListKeys(rest);
    }
    if (command == "save")
    {
        return SaveLevel(rest);
    }
    if (command == "edit")
    {
        return EditLevel(rest);
    }
    if (command == "sound")
    {
        return SoundCommand(rest);
    }
    if (command == "music")
    {
        return MusicCommand(rest);
    }
    if (command == "check")
    {
        return CheckLevel(rest);
    }
    if (command == "stats" && rest.size() >= 2)
    {
        return LevelStatistics(rest);
    }
    if (command == "textures")
    {
        return ListTextures(rest);
    }
    if (command == "picture")
    {
        return PictureCommand(rest);
    }
    if (command == "palette")
    {
        return PaletteCommand(rest);
    }
    if (command == "status" && !rest.empty())
    {
        return StatusCommand(rest);
    }
    if (command == "types" && rest.size() >= 2)
    {
        return ListTypes(rest);
    }
    if (const Verb* verb = FindVerb(std::string(command)))
    {
        return verb->Run(rest);
    }
    std::fprintf(stderr, "kelvar-cli: unknown command or missing arguments: %s\n\n",
                 std::string(command).c_str());
    PrintUsage(stderr);
    return ExitUsage;
}

} // namespace kelvar::cli
