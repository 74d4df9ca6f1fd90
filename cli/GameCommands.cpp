// kelvar-cli commands over the game definitions: types.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/GameCommands.h"

#include "cli/Commands.h"
#include "game/Decorate.h"
#include "game/GameState.h"
#include "game/OptFile.h"
#include "game/TypeLookup.h"
#include "game/TypeMenus.h"
#include "game/TypeRows.h"
#include "wad/CheckedFile.h"
#include "wad/DirectoryReader.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace kelvar::cli
{
namespace
{

// A game word: the IWAD kind, the level format and the project's Boom and ZDoom switches.
struct GameWord
{
    std::string_view Word;
    int IwadKind;
    int LevelFormat;
    bool Boom;
    bool Zdoom;
};

constexpr GameWord Games[] = {
    {"doom", 1, 1, false, false},  {"doom2", 2, 2, false, false},  {"heretic", 3, 3, false, false},
    {"hexen", 4, 4, false, false}, {"strife", 5, 5, false, false}, {"boom", 2, 2, true, false},
    {"zdoom", 2, 4, false, true},
};

std::string MenuLabel(const std::vector<game::CategoryMenuRow>& menu, std::uint32_t code)
{
    for (const game::CategoryMenuRow& row : menu)
    {
        if (row.Category == code && row.Label[0] != 'x')
        {
            return std::string(game::Text(row.Label));
        }
    }
    return {};
}

void PrintRow(const game::ThingTypeRow& row)
{
    const std::string sprite(game::Text(row.Sprite));
    const std::string name(game::Text(row.Name));
    const std::string text(game::Text(row.ShapeText));
    std::printf(
        "%5u  %-8s  %-36s  color %2u  radius %3u  height %3u  property 0x%X  shape %u%s%s\n",
        row.Type, sprite.c_str(), name.c_str(), row.Color, row.Radius, row.Height, row.Property,
        row.Shape, text.empty() ? "" : " ", text.c_str());
}

void PrintRow(const game::SectorTypeRow& row)
{
    const std::string name(game::Text(row.Name));
    const std::string shortName(game::Text(row.ShortName));
    std::printf("%5u  %-48s  %s\n", row.Type, name.c_str(), shortName.c_str());
}

void PrintRow(const game::LineTypeRow& row)
{
    const std::string name(game::Text(row.Name));
    const std::string shortName(game::Text(row.ShortName));
    std::printf("%5u  %-48s  %-18s  motion 0x%04X  property 0x%04X  tag %u  args %u,%u,%u,%u,%u"
                "  color %u\n",
                row.Type, name.c_str(), shortName.c_str(), row.Motion, row.Property, row.TagType,
                row.Args[0], row.Args[1], row.Args[2], row.Args[3], row.Args[4], row.Color);
}

template <class Row>
void PrintTable(const std::vector<Row>& rows, const std::vector<game::CategoryMenuRow>& menu)
{
    std::size_t free = 0;
    const auto printFree = [&]
    {
        if (free != 0)
        {
            std::printf("       + %zu free rows\n", free);
        }
        free = 0;
    };
    for (const Row& row : rows)
    {
        if (row.Type == game::EndOfTable)
        {
            break;
        }
        if (row.Type >= game::FirstHeading)
        {
            printFree();
            const std::string name(game::Text(row.Name));
            const std::string label = MenuLabel(menu, row.Type);
            std::printf("[0x%08X] %s%s%s%s\n", row.Type, name.c_str(),
                        label.empty() ? "" : "  (menu \"", label.c_str(),
                        label.empty() ? "" : "\")");
        }
        else if (row.Name[0] == 'x')
        {
            ++free;
        }
        else if (row.Type == game::SeparatorType)
        {
            std::printf("  -----\n");
        }
        else
        {
            PrintRow(row);
        }
    }
    printFree();
}

// types GAME things --decorate PWAD: the DECORATE lumps of the PWAD read into the Thing table,
// with the sizes of the sprites the PWAD holds. False when the file can't be read as a WAD.
bool ReadDecorateOf(const std::string& path)
{
    const wad::StreamPtr in = wad::OpenStream(path, "rb");
    const wad::DirectoryReport report =
        in ? wad::ReadDirectoryOf(in.get(), wad::BadEntryRule::StopAtBadEntry)
           : wad::DirectoryReport{};
    if (!in || report.Problem != wad::HeaderProblem::None)
    {
        std::fprintf(stderr, "kelvar-cli: can't read %s as a WAD\n", path.c_str());
        return false;
    }
    const auto bytesOf = [&in](const wad::LumpEntry& entry)
    {
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::max(entry.Size, 0)));
        if (std::fseek(in.get(), entry.Offset, SEEK_SET) != 0 ||
            std::fread(bytes.data(), 1, bytes.size(), in.get()) != bytes.size())
        {
            bytes.clear();
        }
        return bytes;
    };
    game::DecorateState state;
    state.Sprites = [&](std::string_view name) -> std::optional<game::SpriteSize>
    {
        for (const wad::LumpEntry& entry : report.Entries)
        {
            if (entry.Name.Is(name))
            {
                const std::vector<std::uint8_t> bytes = bytesOf(entry);
                if (bytes.size() >= 4)
                {
                    return game::SpriteSize{bytes[0] | (bytes[1] << 8), bytes[2] | (bytes[3] << 8)};
                }
            }
        }
        return std::nullopt;
    };
    for (const wad::LumpEntry& entry : report.Entries)
    {
        if (entry.Name.Is("DECORATE"))
        {
            const std::vector<std::uint8_t> bytes = bytesOf(entry);
            game::ParseDecorateText(
                state, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
        }
    }
    game::SqueezeTypeNames();
    game::RenumberThingMenu();
    return true;
}

// types GAME lines --decode NUMBER: the name a LineDef type number has in the game, decoded
// when it is one of Boom's generalized types.
int DecodeLineType(const std::string& word)
{
    char* end = nullptr;
    const long number = std::strtol(word.c_str(), &end, 0);
    if (end == word.c_str() || *end != '\0' || number < 0 || number > 65535)
    {
        std::fprintf(stderr, "kelvar-cli: %s is not a LineDef type number\n", word.c_str());
        return ExitUsage;
    }
    const game::LineTypeRow& row = game::LookupLineType(static_cast<std::uint16_t>(number), 0);
    std::printf("%ld %s\n", number, std::string(game::Text(row.Name)).c_str());
    return ExitOk;
}

} // namespace

int ListTypes(const std::vector<std::string>& arguments)
{
    const GameWord* chosen = nullptr;
    for (const GameWord& word : Games)
    {
        if (word.Word == arguments[0])
        {
            chosen = &word;
        }
    }
    const std::string& kind = arguments[1];
    const bool optGiven = arguments.size() == 4 && arguments[2] == "--opt";
    const bool decode = arguments.size() == 4 && arguments[2] == "--decode" && kind == "lines";
    const bool decorate = arguments.size() == 4 && arguments[2] == "--decorate" && kind == "things";
    if (chosen == nullptr || (kind != "things" && kind != "lines" && kind != "sectors") ||
        (arguments.size() != 2 && !optGiven && !decode && !decorate))
    {
        std::fprintf(stderr, "kelvar-cli: types GAME things|lines|sectors [--opt FILE], types GAME "
                             "lines --decode NUMBER, types GAME things --decorate PWAD; GAME one "
                             "of doom, doom2, heretic, hexen, strife, boom, zdoom\n");
        return ExitUsage;
    }
    game::SelectTablesFor(chosen->IwadKind, chosen->LevelFormat, chosen->Boom, chosen->Zdoom);
    if (decode)
    {
        return DecodeLineType(arguments[3]);
    }
    if (decorate && !ReadDecorateOf(arguments[3]))
    {
        return ExitBadFile;
    }
    if (optGiven)
    {
        std::error_code error;
        const std::filesystem::path file = std::filesystem::absolute(arguments[3], error);
        if (!game::ReadOptFile(file.string()))
        {
            std::fprintf(stderr, "kelvar-cli: can't read the OPT file %s\n", arguments[3].c_str());
            return ExitBadFile;
        }
    }
    const game::GameState& state = game::Game();
    if (kind == "things")
    {
        PrintTable(state.Things, state.ThingMenu);
    }
    else if (kind == "lines")
    {
        PrintTable(state.LineDefs, state.LineDefMenu);
    }
    else
    {
        PrintTable(state.Sectors, state.SectorMenu);
    }
    return ExitOk;
}

} // namespace kelvar::cli
