// The table of open files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/FileTable.h"

#include "platform/Fatal.h"
#include "wad/CheckedFile.h"
#include "wad/FileChecks.h"
#include "wad/WadScan.h"

#include <algorithm>

namespace kelvar::wad
{

int FindFileRecord(const std::string& path)
{
    WadState& wad = Wad();
    for (int i = 0; i < FileTableSize; ++i)
    {
        const FileRec& file = wad.Files[static_cast<std::size_t>(i)];
        if (file.State != 0 && SamePath(file.FileName, path))
        {
            return i;
        }
    }
    return -1;
}

int FreeFileRecordIndex()
{
    WadState& wad = Wad();
    const int limit = std::min<int>(wad.Options.FileLimit, FileTableSize - 1);
    for (int i = 1; i <= limit; ++i)
    {
        if (wad.Files[static_cast<std::size_t>(i)].State == 0)
        {
            return i;
        }
    }
    return -1;
}

void EnsureOpen(FileRec& file)
{
    if (file.State != 'C')
    {
        return;
    }
    const bool readOnly = file.IsMain != 0 || file.ReadOnly;
    file.Stream = CheckedOpen(file.FileName, readOnly ? "rb" : "r+b", 1);
    file.State = 'O';
}

void CloseFiles(char mode, bool freeDirectories, bool clearNames)
{
    WadState& wad = Wad();
    const bool all = mode == 'A' || mode == 'X';
    if (all && wad.Hooks.DropCatalogues)
    {
        wad.Hooks.DropCatalogues();
    }
    for (int i = all ? 0 : 1; i < FileTableSize; ++i)
    {
        FileRec& file = wad.Files[static_cast<std::size_t>(i)];
        if (file.State == 0 || (!all && mode != 'L' && i == wad.CurrentFile.FileNumber))
        {
            continue;
        }
        file.Stream.reset();
        file.State = 'C';
        if (clearNames && i >= 1 && file.ListIndex >= 0)
        {
            wad.OpenFiles[static_cast<std::size_t>(file.ListIndex)].clear();
        }
        if (freeDirectories)
        {
            file = FileRec{};
        }
    }
    if (all && freeDirectories)
    {
        wad.Levels.clear();
        wad.MasterCapacity = 0;
        wad.Markers = MarkerRanges{};
        wad.CurrentFile = CurrentFileRec{};
    }
}

int NameTableSlot(const std::string& path)
{
    const auto& names = Wad().OpenFiles;
    const auto own = std::find_if(names.begin(), names.end(),
                                  [&](const std::string& name)
                                  { return !name.empty() && SamePath(name, path); });
    const auto slot = own != names.end() ? own : std::find(names.begin(), names.end(), "");
    return slot != names.end() ? static_cast<int>(slot - names.begin()) : -1;
}

int AddOpenFile(const std::string& path, bool warnings)
{
    const int slot = NameTableSlot(path);
    if (slot < 0)
    {
        platform::FatalError("Maximum of %hd files exceeded", static_cast<short>(NameTableSize));
    }
    Wad().OpenFiles[static_cast<std::size_t>(slot)] = path;
    return OpenWad(path, "PWAD", warnings);
}

void DropUnusedFiles()
{
    WadState& wad = Wad();
    std::array<bool, FileTableSize> used{};
    for (const LumpEntry& entry : Master().Entries())
    {
        if (entry.FileNumber >= 0 && entry.FileNumber < FileTableSize)
        {
            used[static_cast<std::size_t>(entry.FileNumber)] = true;
        }
    }
    for (int i = 1; i < FileTableSize; ++i)
    {
        FileRec& file = wad.Files[static_cast<std::size_t>(i)];
        if (file.State != 0 && !used[static_cast<std::size_t>(i)] &&
            i != wad.CurrentFile.FileNumber)
        {
            if (file.ListIndex >= 0)
            {
                wad.OpenFiles[static_cast<std::size_t>(file.ListIndex)].clear();
            }
            file = FileRec{};
        }
    }

    // Close up the name table and point every record at its name's new place.
    std::array<int, NameTableSize> moved{};
    moved.fill(-1);
    int next = 0;
    for (int i = 0; i < NameTableSize; ++i)
    {
        std::string& name = wad.OpenFiles[static_cast<std::size_t>(i)];
        if (!name.empty())
        {
            moved[static_cast<std::size_t>(i)] = next;
            if (next != i)
            {
                wad.OpenFiles[static_cast<std::size_t>(next)] = std::move(name);
                name.clear();
            }
            ++next;
        }
    }
    for (FileRec& file : wad.Files)
    {
        if (file.State != 0 && file.ListIndex >= 0)
        {
            file.ListIndex =
                static_cast<std::int16_t>(moved[static_cast<std::size_t>(file.ListIndex)]);
        }
    }
}

} // namespace kelvar::wad
