// The names of the codes for games, level formats and lump layouts, and the one conversion
// between a level's layout and the format it is edited in.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The codes are plain ints where they are stored (project files, level records, the WAD
// state), so the names are unscoped: a stored value compares with them as it is.
#pragma once

namespace kelvar::map
{

/// Which game an IWAD is (`IwadKind`) and whose rules a level follows (its level format). Every
/// level of the Hexen layout takes GameHexen as its format, whatever the IWAD.
enum GameCode : int
{
    GameNone = 0, // before an IWAD is chosen
    GameDoom = 1,
    GameDoom2 = 2,
    GameHeretic = 3,
    GameHexen = 4,
    GameStrife = 5,
};

/// How a level's lumps are laid out in the file.
enum LayoutCode : int
{
    LayoutNone = 0, // no level seen yet
    LayoutDoom = 1,
    LayoutHexen = 2,
};

/// True for the games whose level names are ExMy.
constexpr bool IsEpisodicGame(int game)
{
    return game == GameDoom || game == GameHeretic;
}

/// The layout a level of `format` is written in.
constexpr int LayoutOfFormat(int format)
{
    return format == GameHexen ? LayoutHexen : LayoutDoom;
}

/// The format a level laid out as `layout` is edited in, where other levels follow `format`.
constexpr int FormatOfLayout(int layout, int format)
{
    return layout == LayoutHexen ? GameHexen : format;
}

} // namespace kelvar::map
