// The saved copies of the tables, the squeezing of names, and the Thing list for the 3D viewer.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/GameState.h"
#include "game/OptFile.h"
#include "wad/CheckedFile.h"
#include "wad/WadState.h"

#include <cstdio>
#include <string>

namespace kelvar::game
{
namespace
{

template <std::size_t N> void Squeeze(FixedText<N>& field)
{
    std::string text;
    for (const char c : Text(field))
    {
        if (c != ' ' || text.empty() || text.back() != ' ')
        {
            text += c;
        }
    }
    SetText(field, text);
}

} // namespace

void SaveBuiltInTables()
{
    GameState& game = Game();
    game.Saved = static_cast<const GameTables&>(game);
}

void RestoreBuiltInTables()
{
    GameState& game = Game();
    if (game.Saved)
    {
        static_cast<GameTables&>(game) = *game.Saved;
    }
}

void FreeSavedTables()
{
    Game().Saved.reset();
}

void SqueezeTypeNames()
{
    GameState& game = Game();
    for (ThingTypeRow& row : game.Things)
    {
        Squeeze(row.Name);
    }
    for (LineTypeRow& row : game.LineDefs)
    {
        Squeeze(row.Name);
    }
    for (SectorTypeRow& row : game.Sectors)
    {
        Squeeze(row.Name);
    }
}

int WriteThingList()
{
    const std::filesystem::path path = wad::Wad().ProgramDir / CurrentOptFileName;
    wad::StreamPtr stream = wad::CheckedOpen(path, "wt", 0);
    if (!stream)
    {
        return 0;
    }
    std::fputs("[THINGS]\n", stream.get());
    const std::vector<ThingTypeRow>& rows = Game().Things;
    bool headingWritten = false;
    for (std::size_t i = 0; i < rows.size() && rows[i].Type != EndOfTable; ++i)
    {
        const ThingTypeRow& row = rows[i];
        const bool start =
            row.Property >= PropertyDeathMatch && row.Property <= PropertyPlayerStart;
        if (row.Type == 0 || start)
        {
            continue;
        }
        if (row.Type < SeparatorType)
        {
            const std::string sprite(Text(row.Sprite));
            const std::string name(Text(row.Name));
            std::fprintf(stream.get(), "%u \"%s\" \"%s\"\n", row.Type, sprite.c_str(),
                         name.c_str());
            headingWritten = false;
        }
        else if (i + 1 < rows.size() && rows[i + 1].Type != 0 && !headingWritten)
        {
            // Headings and separators become an unnamed category line, never two in a row.
            std::fputs("\" \"\n", stream.get());
            headingWritten = true;
        }
    }
    return 1;
}

} // namespace kelvar::game
