// The rename tool's session: its rows, their selection and order, and its save.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/RenameSession.h"

#include "lumps/ToolFiles.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/WadState.h"

#include <algorithm>

namespace kelvar::lumps
{

int OpenRenameSession(RenameSession& session, const std::filesystem::path& file)
{
    session.Unselected.clear();
    const int read = ReadTargetFile(file, false, session.List);
    session.StartCount = static_cast<int>(session.List.Entries.size());
    return read;
}

int AskOpenRenameSession(RenameSession& session)
{
    const std::optional<std::filesystem::path> file =
        AskWadFile("Open Rename Lump PWAD", session.List.File);
    return file && OpenRenameSession(session, *file) == 1 ? 1 : 0;
}

std::string RowKey(const TargetList& list, std::size_t head)
{
    const TargetEntry& entry = list.Entries[head];
    return entry.Ordinal >= 0 ? "#" + std::to_string(entry.Ordinal)
                              : wad::UpperText(entry.Name.Text());
}

std::vector<TargetRow> ListedRows(const RenameSession& session)
{
    std::vector<TargetRow> rows = TargetRows(session.List);
    if (session.SortAlpha)
    {
        const std::vector<TargetEntry>& entries = session.List.Entries;
        std::stable_sort(rows.begin(), rows.end(),
                         [&entries](const TargetRow& a, const TargetRow& b)
                         {
                             return wad::UpperText(entries[a.First].Name.Text()) <
                                    wad::UpperText(entries[b.First].Name.Text());
                         });
    }
    return rows;
}

bool RowSelected(const RenameSession& session, const TargetRow& row)
{
    return !session.Unselected.contains(RowKey(session.List, row.First));
}

void SelectRow(RenameSession& session, const TargetRow& row, bool selected)
{
    const std::string key = RowKey(session.List, row.First);
    if (selected)
    {
        session.Unselected.erase(key);
    }
    else
    {
        session.Unselected.insert(key);
    }
}

void SelectAllRows(RenameSession& session, bool selected)
{
    session.Unselected.clear();
    if (!selected)
    {
        for (const TargetRow& row : TargetRows(session.List))
        {
            session.Unselected.insert(RowKey(session.List, row.First));
        }
    }
}

int SelectedEntries(const RenameSession& session)
{
    int count = 0;
    for (const TargetRow& row : TargetRows(session.List))
    {
        count += RowSelected(session, row) ? static_cast<int>(row.Count) : 0;
    }
    return count;
}

int SaveRenameSession(RenameSession& session)
{
    const int selected = SelectedEntries(session);
    if (selected < session.StartCount &&
        platform::ShowMessageLines(
            platform::LinesInfo | platform::LinesCancel, "WARNING - All Lumps Not Selected",
            {platform::Format("The number of entries selected %d", selected),
             platform::Format("Is less than the number you started with %d", session.StartCount),
             "press Cancel to stop"},
            platform::MessageButtons::OkCancel) != 1)
    {
        return 0;
    }
    TargetList written = session.List;
    written.Entries.clear();
    for (const TargetRow& row : TargetRows(session.List))
    {
        if (RowSelected(session, row))
        {
            const auto first =
                session.List.Entries.begin() + static_cast<std::ptrdiff_t>(row.First);
            written.Entries.insert(written.Entries.end(), first,
                                   first + static_cast<std::ptrdiff_t>(row.Count));
        }
    }
    // Against what the file held: rows deleted from the list go as surely as rows not selected.
    const int removed = session.StartCount - selected;
    const std::string caption = removed > 0 ? platform::Format("Removing %d Entries", removed)
                                            : platform::Format("Copying %d Entries", selected);
    bool saved = false;
    {
        const ReleasedFiles released({written.File});
        saved = SaveTargetList(written, !wad::Wad().Options.PlainScriptNames, caption);
    }
    if (!saved)
    {
        return -1;
    }
    ShowSaveStatus(written.File);
    session.List = std::move(written);
    session.StartCount = static_cast<int>(session.List.Entries.size());
    session.Unselected.clear();
    return 1;
}

bool ConfirmLeaveRename(const RenameSession& session)
{
    TargetList shown;
    shown.DirectoryChanged = session.List.DirectoryChanged || !session.Unselected.empty();
    return ConfirmLeave(shown, false);
}

} // namespace kelvar::lumps
