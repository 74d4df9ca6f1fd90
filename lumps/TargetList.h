// The target list of the lump tools: a WAD's directory as rows to rename, delete, insert, move
// and merge into, with the commands that change it.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A TargetList holds one TargetEntry per directory entry of the target file, in order, and
//   lumps brought in from import rows once a merge has placed them. Nothing touches the file
//   until the list is written (SaveTargetList or the merge's rewrite).
// - The screen shows rows: a plain lump is a row, a level (its marker and every lump that
//   belongs to it, as the level test counts them) is one row. Every command takes the entry
//   at the head of a row and treats a level as a whole, so a level never comes apart.
// - Commands return what became of the selection and show their refusals through
//   platform::TheUi(), with the texts the dialog shows.
#pragma once

#include "wad/LumpName.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::lumps
{

/// One lump of the target's list.
struct TargetEntry
{
    std::int32_t FileOffset = 0; // in the target file, or in the import row's file
    std::int32_t Size = 0;       // -1 leaves the entry out of the output
    wad::LumpName Name;
    std::int32_t ImportIndex = -1; // -1 a lump of the target; otherwise the import row
    std::int32_t ListPosition = 0; // the row on the screen
    std::int32_t Ordinal = 0;      // the directory index in the file it was read from

    bool operator==(const TargetEntry&) const = default;
};

/// The target file and its list.
struct TargetList
{
    std::filesystem::path File;
    std::string Magic; // as the file has it; empty for a file that does not exist yet
    std::vector<TargetEntry> Entries;
    bool DirectoryChanged = false; // a command changed the list since it was read or written
};

/// What reading a WAD's directory found.
enum class WadRead
{
    Read,    // the entries are in place (none for an empty WAD)
    Missing, // no such file
    CantOpen,
    NotWad,  // neither "PWAD" nor "IWAD" at the start
    Damaged, // a header or directory the file can't hold, or an entry outside the file
};

/// The directory of the WAD at `path` with its magic, saying nothing. A file of 0 bytes reads
/// as an empty WAD with no magic.
WadRead ReadWadEntries(const std::filesystem::path& path, std::string& magic,
                       std::vector<TargetEntry>& entries);

/// Fills `list` from the target file. Names whose first byte is a control character become
/// "bad0", "bad1"... with the notice "Lump Names". A level's lumps are passed over as one row;
/// another reserved name (but a "GL_" one) gets the notice "Lump Name Reserverd". With
/// `warnTextures`, a file that holds TEXTURE1, TEXTURE2 or PNAMES gets the notice
/// "TEXTUREx/PNAMES". A file that doesn't exist yet, or has 0 bytes, is an empty list.
/// Returns 1, or 0 after "File Open Error" (a file that can't be opened) or a notice that the
/// file is no WAD or is damaged; the list is then empty.
[[nodiscard]] int ReadTargetFile(const std::filesystem::path& file, bool warnTextures,
                                 TargetList& list);

/// A level at an entry: its layout (0 none, 1 Doom, 2 Hexen) and its entries, marker included
/// (1 for a plain lump).
struct TargetLevel
{
    int Layout = 0;
    int Count = 1;
    bool HasGlNodes = false; // a "GL_" entry belongs to it
};

/// The level test at entry `index` of the list.
TargetLevel TargetLevelAt(const TargetList& list, std::size_t index);

/// One row on the screen.
struct TargetRow
{
    std::size_t First = 0; // the entry at its head
    std::size_t Count = 1; // its entries: 1, or a level's
    int Layout = 0;        // a level's layout; 0 for a plain lump
};

/// The rows of the list, in order.
std::vector<TargetRow> TargetRows(const TargetList& list);

/// Gives every entry the row it stands in (ListPosition).
void NumberTargetRows(TargetList& list);

/// An entry found by name.
struct FoundTarget
{
    std::size_t Index = 0;
    TargetLevel Level;
    std::int32_t Offset = 0;
    std::int32_t Size = 0;
};

/// The first entry named `name` (8 characters, case ignored) that heads a row; with an
/// `ordinal` of 0 or more, only the one read at that directory index. Nothing when there is none.
std::optional<FoundTarget> FindTargetEntry(const TargetList& list, std::string_view name,
                                           std::int32_t ordinal = -1);

/// Removes the row named `name` with all its entries (a level whole); with an `ordinal` of -1
/// every row of that name. Returns the entries removed.
int RemoveTargetEntry(TargetList& list, std::string_view name, std::int32_t ordinal);

/// Inserts `entries` (a lump, or a level's lumps) before entry `position`, which then stands
/// past them, so the next insert follows. A position past the end inserts at the end.
void InsertTargetEntry(TargetList& list, std::size_t& position,
                       std::span<const TargetEntry> entries);

/// Where Insert and Move place an entry, seen from the row chosen.
enum class Placement
{
    Before,
    After,
};

// The commands. `index` is the entry at the head of the selected row, -1 when none is
// selected. Each shows its refusal and changes nothing then.

/// Renames the row at `index` to `newName` (upper-cased, cut to 8); a level with GL nodes
/// renames its "GL_" marker too. Refusals: "Please select a lump to Rename"; "This name is
/// reserved for level components" / "and can't be renamed" (a lump of a level, a new name of
/// one, or a level's name for a plain lump); "Lump name is a duplicate" / "Please choose
/// another name."; under "GL Level", "! %s is a GL enabled level !" / "maximum level name
/// length is 5". Returns 1 renamed, 0 not.
[[nodiscard]] int RenameTargetEntry(TargetList& list, int index, std::string_view newName);

/// Asks "New Lump Name" for the row at `index`, then renames as RenameTargetEntry. Returns 1
/// renamed, 0 not (also when the prompt was cancelled).
[[nodiscard]] int AskRenameTargetEntry(TargetList& list, int index);

/// Deletes the row at `index`, a level whole: "Please select a lump to Delete" when there is
/// none. Returns the entries removed.
int DeleteTargetEntry(TargetList& list, int index);

/// Enters `name`, with no data, before or after the row at `index`. Refusals: "Please select
/// a Lump to Insert after"; "You can't insert after a reserved name" (a lump inside a level);
/// "You can't insert a reserved name"; "Name already exists". Returns the new entry's index,
/// or -1.
int InsertNamedEntry(TargetList& list, int index, std::string_view name, Placement placement);

/// Asks the name ("Insert Lump Name") and, in the choice "LumpInsertOption", "Insert Before"
/// or "Insert After", then inserts as InsertNamedEntry. Returns its result, -1 when cancelled.
int AskInsertNamedEntry(TargetList& list, int index);

/// Moves the row at `index` before or after the row named `targetName`. Refusals: "Please
/// select a lump to Move"; "This name is reserved and can't be moved" (a lump inside a level);
/// "Target Lump name not found"; "Source and Target locations are the same"; "Duplicate Name"
/// (the target name heads more than one row); "Reserved name you can't move in front of" (a
/// lump inside a level); "Something is wrong with the Target File?" (the row can't be found
/// again after it was taken out). Returns the moved row's new head index, or -1.
int MoveTargetEntry(TargetList& list, int index, std::string_view targetName, Placement placement);

/// Asks the target name ("Move in front of or behind Lump") and, in the choice
/// "LumpMoveOption", "Move Before" or "Move After", then moves as MoveTargetEntry. Returns its
/// result, -1 when cancelled.
int AskMoveTargetEntry(TargetList& list, int index);

/// Moves the row at `index` one row up or down, past a whole level. With no row there to
/// pass, nothing moves. Refusals as MoveTargetEntry's first two. Returns the new head index,
/// or -1.
int MoveTargetEntryUp(TargetList& list, int index);
int MoveTargetEntryDown(TargetList& list, int index);

/// Asks "This will erase ALL the entries\n\nAre you sure you want to continue?"; yes empties
/// the list. Returns 1 cleared, 0 not.
[[nodiscard]] int ClearTargetList(TargetList& list);

/// Writes the list as the target file through the WAD rewrite (the old file kept as .BAK):
/// every entry of the target from the old file, an entry of no size as a marker. Entries from
/// import rows are not written here (the merge does that); a list that holds one is refused.
/// With `keepScriptNames` off, "SCRIPTxx" names are written as "SCRIPTS". The list is read
/// again afterwards. `progressCaption` replaces the panel's "Copying %d Entries". Returns true
/// when written.
[[nodiscard]] bool SaveTargetList(TargetList& list, bool keepScriptNames = true,
                                  const std::string& progressCaption = {});

/// Asks before a dialog with unsaved work is left: "You have added files that were not
/// saved.\n\nDo you still want to Exit?" when `importsPending`, otherwise, after a list change,
/// "You have made directory changes that were not saved.\n\nDo you still want to Exit?", each
/// with the hint on saving. True when the dialog may close.
bool ConfirmLeave(const TargetList& list, bool importsPending);

} // namespace kelvar::lumps
