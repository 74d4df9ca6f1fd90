// Saving the palette editor's PLAYPAL and COLORMAP into a PWAD, rebuilt around them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PaletteSave.h"

#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/WadFormat.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

#include <cerrno>
#include <system_error>

namespace kelvar::gfx
{
namespace
{

bool Named(const wad::LumpEntry& entry, const char* name)
{
    return entry.Name.Is(name);
}

// The bytes an entry is replaced by, or null when it is copied.
const std::vector<uint8_t>* Replacement(const wad::LumpEntry& entry, const PaletteLumps& lumps)
{
    if (Named(entry, "PLAYPAL"))
    {
        return lumps.Playpal;
    }
    return Named(entry, "COLORMAP") ? lumps.Colormap : nullptr;
}

// Moves the old file aside as .BAK; false after the message.
bool MoveToBackup(const std::filesystem::path& target, const std::filesystem::path& backup)
{
    std::error_code error;
    std::filesystem::remove(backup, error);
    std::filesystem::rename(target, backup, error);
    if (error)
    {
        platform::ShowError("Err %d: Could not rename file\n\n%s\n-to-\n%s\n\nFile is most likely "
                            "in use.\nTry saving to another filename\n",
                            error.value(), target.c_str(), backup.c_str());
        return false;
    }
    return true;
}

// Writes one lump at the end of `out` and records it in `directory`.
bool WriteLump(std::FILE* out, const wad::LumpName& name, std::span<const uint8_t> bytes,
               std::vector<wad::LumpEntry>& directory)
{
    wad::LumpEntry entry;
    entry.Name = name;
    entry.Offset = static_cast<int32_t>(std::ftell(out));
    entry.Size = static_cast<int32_t>(bytes.size());
    directory.push_back(entry);
    return wad::CheckedWrite(out, bytes.data(), static_cast<int64_t>(bytes.size())) == 1;
}

bool WriteDirectoryAndHeader(std::FILE* out, const std::vector<wad::LumpEntry>& directory)
{
    const auto directoryOffset = static_cast<int32_t>(std::ftell(out));
    for (const wad::LumpEntry& entry : directory)
    {
        uint8_t bytes[wad::DirectoryEntrySize] = {};
        wad::WriteLe32(bytes, entry.Offset);
        wad::WriteLe32(bytes + 4, entry.Size);
        std::copy(entry.Name.Chars.begin(), entry.Name.Chars.end(), bytes + 8);
        if (wad::CheckedWrite(out, bytes, sizeof bytes) != 1)
        {
            return false;
        }
    }
    uint8_t header[wad::WadHeaderSize] = {'P', 'W', 'A', 'D'};
    wad::WriteLe32(header + 4, static_cast<int32_t>(directory.size()));
    wad::WriteLe32(header + 8, directoryOffset);
    return wad::CheckedSeek(out, 0) == 1 && wad::CheckedWrite(out, header, sizeof header) == 1;
}

// Copies the old file's entries, replacing the chosen lumps, then appends those it lacked.
bool CopyEntries(std::FILE* out, std::FILE* old, const std::vector<wad::LumpEntry>& entries,
                 const PaletteLumps& lumps, std::vector<wad::LumpEntry>& directory)
{
    bool playpalDone = false;
    bool colormapDone = false;
    for (const wad::LumpEntry& entry : entries)
    {
        if (const std::vector<uint8_t>* bytes = Replacement(entry, lumps))
        {
            (Named(entry, "PLAYPAL") ? playpalDone : colormapDone) = true;
            if (!WriteLump(out, entry.Name, *bytes, directory))
            {
                return false;
            }
            continue;
        }
        wad::LumpEntry copy = entry;
        copy.Offset = static_cast<int32_t>(std::ftell(out));
        copy.Size = std::max(entry.Size, 0); // a negative size counts as 0
        directory.push_back(copy);
        if (copy.Size > 0 && (wad::CheckedSeek(old, entry.Offset) != 1 ||
                              wad::CopyFileSpan(out, old, copy.Size) != 1))
        {
            return false;
        }
    }
    if (lumps.Playpal != nullptr && !playpalDone &&
        !WriteLump(out, wad::LumpName::From("PLAYPAL"), *lumps.Playpal, directory))
    {
        return false;
    }
    return lumps.Colormap == nullptr || colormapDone ||
           WriteLump(out, wad::LumpName::From("COLORMAP"), *lumps.Colormap, directory);
}

std::filesystem::path ProposedTarget(const PaletteEditorState& state)
{
    for (int file : {state.PlaypalFile, state.ColormapFile})
    {
        if (file >= 1 && file < wad::FileTableSize)
        {
            return wad::Wad().Files[static_cast<size_t>(file)].FileName;
        }
    }
    return "*.WAD";
}

} // namespace

int WritePaletteLumps(const std::filesystem::path& target, const PaletteLumps& lumps)
{
    std::vector<wad::LumpEntry> entries;
    wad::StreamPtr old;
    if (std::filesystem::exists(target))
    {
        std::filesystem::path backup = target;
        backup.replace_extension(".BAK");
        if (!MoveToBackup(target, backup))
        {
            return -1;
        }
        old = wad::OpenStream(backup, "rb");
        entries = old ? wad::ReadDirectoryQuietly(old.get(), nullptr) : entries;
    }
    wad::StreamPtr out = wad::CheckedOpen(target, "w+b", 0);
    if (!out)
    {
        return -1;
    }
    platform::TheUi().ShowProgress(
        platform::Format("Copying %d Entries", static_cast<int>(entries.size())), target.string());
    std::vector<wad::LumpEntry> directory;
    const uint8_t header[wad::WadHeaderSize] = {'P', 'W', 'A', 'D'};
    const bool written = wad::CheckedWrite(out.get(), header, sizeof header) == 1 &&
                         CopyEntries(out.get(), old.get(), entries, lumps, directory) &&
                         WriteDirectoryAndHeader(out.get(), directory);
    platform::TheUi().EndProgress();
    return written ? 1 : -1;
}

int SavePaletteLumps(const PaletteEditorState& state)
{
    if (!state.SavePlaypal && !state.SaveColormap)
    {
        platform::ShowError("Please select PLAYPAL and COLORMAP options");
        return 0;
    }
    platform::FileChoice choice;
    choice.Caption = "Target PWAD to receive PALETTE-COLORMAP Lumps";
    choice.Filter = "PWAD (*.WAD)|*.WAD|";
    choice.InitialPath = ProposedTarget(state);
    choice.ForSaving = true;
    const auto target = platform::TheUi().ChooseFile(choice);
    if (!target)
    {
        return 0;
    }
    // A target open in the program is closed for the rewrite and opened again after it.
    const int record = wad::FindFileRecord(target->string());
    wad::FileRec* open = record >= 0 ? &wad::Wad().Files[static_cast<size_t>(record)] : nullptr;
    if (open != nullptr && open->State == 'O')
    {
        open->Stream.reset();
        open->State = 'C';
    }
    PaletteLumps lumps;
    lumps.Playpal = state.SavePlaypal ? &state.Playpal : nullptr;
    lumps.Colormap = state.SaveColormap ? &state.Colormap : nullptr;
    const int result = WritePaletteLumps(*target, lumps);
    if (open != nullptr && open->State == 'C')
    {
        wad::EnsureOpen(*open);
    }
    return result;
}

} // namespace kelvar::gfx
