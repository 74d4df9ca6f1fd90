// What the lump tools' windows show of their lists and do with them: the texts of target and
// import rows, the target list's commands as its buttons run them, the import list's own
// commands, and the choices of the import options.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/LumpKind.h"
#include "lumps/Merge.h"
#include "lumps/TargetList.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::lumps
{

/// The columns of a target row.
struct TargetRowText
{
    std::string Name;
    std::int64_t Size = 0; // a level's lumps together
    std::string Type;      // a level's kind with its lump count, "MARKER", or the data's kind
};

/// The texts of `rows` of `list`. A plain lump's kind is read from its first bytes in the
/// target file (PNAMES and TEXTUREx by their names); a lump with no data is a "MARKER".
std::vector<TargetRowText> TargetRowTexts(const TargetList& list, std::span<const TargetRow> rows);

/// The commands of the target list's buttons.
enum class TargetCommand
{
    Rename,
    Delete,
    Insert,
    Move,
    Up,
    Down,
    Clear,
};

/// Runs `command` on the row headed by entry `head` (-1 when no row is selected), asking what
/// it needs as the list's Ask functions do, refusals included. Returns the entry heading the
/// row to select afterwards: the row renamed, moved or inserted, the row now at the place of
/// one deleted; -1 for none.
int RunTargetCommand(TargetList& list, TargetCommand command, int head);

/// The four columns of an import row: its file, its lump name, its index in its file (a WAD's
/// entry; "-" for a file of its own) and its type.
std::array<std::string, 4> ImportRowColumns(const ImportRow& row);

/// Gives import row `row` the name `newName` (upper-cased, cut to 8); a level whose GL nodes
/// are named after it renames its "GL_" marker too. Refusals under "Rename": "This name is
/// reserved for level components" / "and can't be renamed" (a level's lump name, or a level's
/// name for a plain row); under "GL Level", "! %s is a GL enabled level !" / "maximum level
/// name length is 5". Returns 1 renamed, 0 not.
[[nodiscard]] int RenameImportRow(MergeSession& session, std::size_t row, std::string_view newName);

/// Asks "New Lump Name" for import row `row` (-1: "Please select a lump to Rename"), then
/// renames as RenameImportRow. Returns 1 renamed, 0 not.
[[nodiscard]] int AskRenameImportRow(MergeSession& session, int row);

/// Takes the import rows `rows` (any order, duplicates and rows past the end ignored) out of
/// the list, each with a log line. Returns the rows removed.
int RemoveImportRows(MergeSession& session, std::vector<int> rows);

/// The file dialog "Select Files to Import", several files at once, each added as
/// AddInputFile adds it. Returns the rows added.
int AskAddInputFiles(MergeSession& session);

/// One choice of the picture kind of the import options.
struct PictureKindChoice
{
    const char* Label;
    gfx::LumpKind Kind;
};

/// Textures, Sprites, Projectiles, Weapons, Flats, IMGZ, Legacy and RAW (the file kept as it
/// is), in the order the options show them.
const std::array<PictureKindChoice, 8>& PictureKindChoices();

/// Sets the options the import and export settings decide: sounds to SND and music to MUS
/// when those are the formats chosen, the picture size limits, and the script names as the
/// WAD layer's setting wants them.
void ApplyImportSettings(MergeOptions& options);

} // namespace kelvar::lumps
