// The rename tool's session: a PWAD's entries as rows to rename, delete, insert and move, which
// rows are selected to stay, the order they are listed in, and the save that writes the rows
// selected.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The list is a TargetList (TargetList.h) and its commands are the target list's. What is
//   selected to stay is kept apart, as the rows not selected, by a key that survives the
//   commands: the directory index the row's head was read at, or the name of a row inserted
//   since, so a rename or a move keeps a row's selection.
// - Sorting orders the list on the screen only. The file keeps its order: a WAD sorted by name
//   would take its flats and sprites out of their marker ranges.
#pragma once

#include "lumps/TargetList.h"

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace kelvar::lumps
{

/// The rename tool's state.
struct RenameSession
{
    TargetList List;
    int StartCount = 0;               // entries the file held when it was read
    bool SortAlpha = false;           // rows listed by name rather than in the file's order
    std::set<std::string> Unselected; // rows not selected to stay, by RowKey
};

/// Reads `file` into the session with every row selected, the notices as ReadTargetFile's.
/// Returns its result.
[[nodiscard]] int OpenRenameSession(RenameSession& session, const std::filesystem::path& file);

/// Asks for the PWAD in the file dialog "Open Rename Lump PWAD" and opens it. Returns 1 when
/// it was read, 0 when cancelled or refused.
[[nodiscard]] int AskOpenRenameSession(RenameSession& session);

/// The key of the row headed by entry `head`, which the commands leave alone.
std::string RowKey(const TargetList& list, std::size_t head);

/// The rows in the order listed: the file's, or by name with case ignored (rows of one name in
/// the file's order).
std::vector<TargetRow> ListedRows(const RenameSession& session);

/// Whether the row is selected to stay, and setting it.
bool RowSelected(const RenameSession& session, const TargetRow& row);
void SelectRow(RenameSession& session, const TargetRow& row, bool selected);
/// Selects every row, or none.
void SelectAllRows(RenameSession& session, bool selected);

/// The entries of the rows selected to stay.
int SelectedEntries(const RenameSession& session);

/// Writes the file with the rows selected to stay, in the file's order, through the WAD
/// rewrite (the old file kept as its .BAK), the editor's hold on it released meanwhile. With
/// fewer entries selected than the file held, the question "WARNING - All Lumps Not Selected"
/// ("The number of entries selected %d", "Is less than the number you started with %d",
/// "press Cancel to stop") comes first. The progress reads "Copying %d Entries", or "Removing
/// %d Entries" when entries go; then "Save Status" tells where the old file is. The session
/// holds the file as written afterwards. Returns 1 written, 0 stopped at the question (nothing
/// changed), -1 when the rewrite failed (its message shown, the file as it was).
[[nodiscard]] int SaveRenameSession(RenameSession& session);

/// Asks before the tool is left with changes not written (ConfirmLeave's directory question):
/// a command changed the list, or rows are not selected. True when it may close.
bool ConfirmLeaveRename(const RenameSession& session);

} // namespace kelvar::lumps
