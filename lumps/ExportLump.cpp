// Writing one lump to one outside file, raw, as a PWAD, converted, or as a picture.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/ExportLump.h"

#include "gfx/BmpFile.h"
#include "gfx/GamePalette.h"
#include "gfx/PcxFile.h"
#include "gfx/Picture.h"
#include "gfx/PictureFile.h"
#include "gfx/RawPictures.h"
#include "lumps/ExportList.h"
#include "lumps/LumpNames.h"
#include "lumps/ToolFiles.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "sound/MusToMidi.h"
#include "sound/OutsidePrograms.h"
#include "sound/SoundFormats.h"
#include "sound/SoundState.h"
#include "sound/WaveConversion.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/FindLump.h"
#include "wad/WadRewrite.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

#include <optional>
#include <system_error>

namespace kelvar::lumps
{
namespace
{

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using gfx::LumpKind;

// The name a file is written under before it is renamed over its target.
constexpr const char* TemporaryName = "~KELVAR.EXP";

enum class WriteResult
{
    Done,
    CreateFailed,
    WriteFailed,
};

// Flushes what was written; a failure is a short write like any other.
bool Flushed(std::FILE* out, std::int64_t size)
{
    if (std::fflush(out) == 0)
    {
        return true;
    }
    wad::IoFailure("write", out, 0, size);
    return false;
}

WriteResult AppendToFile(const fs::path& path, std::span<const std::uint8_t> bytes)
{
    std::error_code error;
    const bool existed = fs::exists(path, error);
    const std::uintmax_t oldSize = existed ? fs::file_size(path, error) : 0;
    wad::StreamPtr out = wad::OpenStream(path, "a+b");
    if (!out)
    {
        return WriteResult::CreateFailed;
    }
    const auto size = static_cast<std::int64_t>(bytes.size());
    const bool written =
        wad::CheckedWrite(out.get(), bytes.data(), size) == 1 && Flushed(out.get(), size);
    out.reset();
    if (written)
    {
        return WriteResult::Done;
    }
    if (existed)
    {
        fs::resize_file(path, oldSize, error);
    }
    else
    {
        fs::remove(path, error);
    }
    return WriteResult::WriteFailed;
}

WriteResult WriteSafely(const fs::path& path, std::span<const std::uint8_t> bytes, bool append)
{
    if (append)
    {
        return AppendToFile(path, bytes);
    }
    const fs::path temporary = path.parent_path() / TemporaryName;
    wad::StreamPtr out = wad::OpenStream(temporary, "wb");
    if (!out)
    {
        return WriteResult::CreateFailed;
    }
    const auto size = static_cast<std::int64_t>(bytes.size());
    bool written =
        wad::CheckedWrite(out.get(), bytes.data(), size) == 1 && Flushed(out.get(), size);
    written = std::fclose(out.release()) == 0 && written;
    std::error_code error;
    if (written)
    {
        fs::rename(temporary, path, error);
        if (error)
        {
            fs::remove(temporary, error);
            return WriteResult::CreateFailed;
        }
        return WriteResult::Done;
    }
    fs::remove(temporary, error);
    return WriteResult::WriteFailed;
}

std::string UpperExtension(std::string_view extension)
{
    std::string upper = wad::UpperText(extension);
    if (!upper.empty() && upper.front() != '.')
    {
        upper.insert(upper.begin(), '.');
    }
    return upper;
}

// The key of the folder last used for a kind of file: its extension without the dot.
std::string FolderKey(const std::string& fileExtension)
{
    return wad::UpperText(fileExtension.substr(1));
}

fs::path LastFolderFor(const std::string& fileExtension)
{
    const auto& folders = Exports().LastFolders;
    const auto found = folders.find(FolderKey(fileExtension));
    if (found != folders.end())
    {
        return found->second;
    }
    const wad::WadOptions& options = wad::Wad().Options;
    return options.DefaultPwadDir.empty() ? wad::Wad().ProgramDir : options.DefaultPwadDir;
}

// The file a lump goes to: asked in "Save Lump", or the folder given (or last used) plus the
// lump's name and the extension. Nothing when the dialog was cancelled or the name is none a
// file can take.
std::optional<fs::path> TargetPath(const std::string& name, const std::string& fileExtension,
                                   const fs::path& folderGiven, int flags)
{
    const fs::path folder = folderGiven.empty() ? LastFolderFor(fileExtension) : folderGiven;
    if ((flags & ExportAskName) == 0)
    {
        if (!IsExportableFileName(name))
        {
            return std::nullopt;
        }
        return folder / (name + fileExtension);
    }
    platform::FileChoice choice;
    choice.Caption = "Save Lump";
    const std::string pattern = "*" + fileExtension;
    choice.Filter = fileExtension.substr(1) + " (" + pattern + ")|" + pattern + "|";
    choice.InitialPath = folder / (name + fileExtension);
    choice.ForSaving = true;
    return platform::TheUi().ChooseFile(choice);
}

void ConversionRefused(const fs::path& target, const std::string& name, const std::string& text)
{
    platform::ShowError("File=%s\nEntry=%s\n%s!\nData not copied", target.c_str(), name.c_str(),
                        text.c_str());
}

std::optional<Bytes> SoundAsWav(const Bytes& data, const std::string& name, const fs::path& target)
{
    if (!sound::IsSnd(data, sound::ListRateLow) && !sound::IsRiffWave(data))
    {
        platform::ShowError("Entry %s\nError not WAVE or Sound format!", name.c_str());
        return std::nullopt;
    }
    Bytes wav;
    if (auto refusal = sound::SndToWav(data, wav))
    {
        ConversionRefused(target, name, *refusal);
        return std::nullopt;
    }
    return wav;
}

std::optional<Bytes> SoundAsSnd(const Bytes& data, const std::string& name, const fs::path& target)
{
    if (sound::IsRiffWave(data))
    {
        Bytes snd;
        if (auto refusal = sound::ConvertWavToSnd(data, snd))
        {
            ConversionRefused(target, name, *refusal);
            return std::nullopt;
        }
        return snd;
    }
    if (!sound::IsSnd(data, sound::ListRateLow))
    {
        platform::ShowInfo("Entry %s probably not sound?\n\nCopied anyway, but check it!",
                           name.c_str());
    }
    return data;
}

LumpKind MusicKindOf(const Bytes& data)
{
    const auto size = static_cast<std::int64_t>(data.size());
    const LumpKind kind = gfx::ClassifyLumpPrefix(data, size).Kind;
    return kind == LumpKind::DoomMus || kind == LumpKind::Midi ? kind : LumpKind::Lump;
}

std::optional<Bytes> MusicAsMidi(const Bytes& data, const std::string& name, const fs::path& target)
{
    const LumpKind kind = MusicKindOf(data);
    if (kind == LumpKind::Midi)
    {
        return data;
    }
    if (kind != LumpKind::DoomMus)
    {
        platform::ShowError("Entry %s\nError not MIDI or MUS format!", name.c_str());
        return std::nullopt;
    }
    sound::MusToMidiOptions options;
    options.Division = sound::Sound().MusToMidiTempo;
    sound::MusToMidiResult midi = sound::MusToMidiBytes(data, options);
    if (midi.Code != sound::MusToMidiOk)
    {
        ConversionRefused(target, name, sound::MusToMidiText(midi.Code));
        return std::nullopt;
    }
    return std::move(midi.Midi);
}

// A MIDI lump through the outside converter, which works in the program's folder.
std::optional<Bytes> MidiThroughConverter(int index, const std::string& name,
                                          const fs::path& target)
{
    const wad::LumpEntry& entry = wad::Master()[static_cast<std::size_t>(index)];
    wad::FileRec& file = wad::Wad().Files[static_cast<std::size_t>(entry.FileNumber)];
    wad::EnsureOpen(file);
    const fs::path programDir = wad::Wad().ProgramDir;
    std::error_code error;
    fs::create_directories(programDir, error);
    fs::path musFile;
    if (auto refusal = sound::ConvertMidiToMus(file.Stream.get(), entry.Offset, entry.Size,
                                               programDir / name, programDir, musFile))
    {
        ConversionRefused(target, name, *refusal);
        return std::nullopt;
    }
    if (!fs::exists(musFile, error))
    {
        platform::ShowError("File=%s\nEntry=%s\nFile %s not found?\n\nData not copied",
                            target.c_str(), name.c_str(), musFile.c_str());
        return std::nullopt;
    }
    wad::StreamPtr in = wad::OpenStream(musFile, "rb");
    Bytes mus = in ? sound::ReadRange(in.get(), 0, -1) : Bytes{};
    in.reset();
    fs::remove(musFile, error);
    return mus;
}

std::optional<Bytes> MusicAsMus(const Bytes& data, int index, const std::string& name,
                                const fs::path& target)
{
    switch (MusicKindOf(data))
    {
    case LumpKind::DoomMus:
        return data;
    case LumpKind::Midi:
        return MidiThroughConverter(index, name, target);
    default:
        platform::ShowError("Entry %s\nError not MIDI or MUS format!", name.c_str());
        return std::nullopt;
    }
}

// The lump's bytes; nothing when a read failed (the failure was reported).
std::optional<Bytes> LumpBytes(int index)
{
    Bytes bytes = wad::ReadLumpBytes(index);
    const wad::LumpEntry& entry = wad::Master()[static_cast<std::size_t>(index)];
    if (entry.Size > 0 && bytes.size() != static_cast<std::size_t>(entry.Size))
    {
        return std::nullopt;
    }
    return bytes;
}

// The file's bytes for every extension but ".WAD".
std::optional<Bytes> FileBytes(const std::string& extension, int index, const std::string& name,
                               const fs::path& target)
{
    std::optional<Bytes> data = LumpBytes(index);
    if (!data)
    {
        return std::nullopt;
    }
    if (extension == ".WAV")
    {
        return SoundAsWav(*data, name, target);
    }
    if (extension == ".SND")
    {
        return SoundAsSnd(*data, name, target);
    }
    if (extension == ".MID")
    {
        return MusicAsMidi(*data, name, target);
    }
    if (extension == ".MUS")
    {
        return MusicAsMus(*data, index, name, target);
    }
    return data;
}

// The directory of the file that supplies a master entry, as it stands on disk.
std::vector<wad::LumpEntry> DirectoryOnDisk(const wad::LumpEntry& entry)
{
    wad::FileRec& file = wad::Wad().Files[static_cast<std::size_t>(entry.FileNumber)];
    wad::EnsureOpen(file);
    return file.Stream ? wad::ReadDirectoryQuietly(file.Stream.get(), nullptr)
                       : std::vector<wad::LumpEntry>{};
}

// The entries of a level as the file that supplies it holds them on disk, in that file's
// order; nothing when the file no longer has the level there.
std::optional<std::vector<wad::RewriteEntry>> LevelOnDisk(const wad::LumpEntry& marker)
{
    const std::vector<wad::LumpEntry> entries = DirectoryOnDisk(marker);
    const std::optional<wad::LevelSpan> span = wad::FindLevelEntries(entries, marker.Name);
    if (!span)
    {
        return std::nullopt;
    }
    const std::string& file =
        wad::Wad().Files[static_cast<std::size_t>(marker.FileNumber)].FileName;
    std::vector<wad::RewriteEntry> level;
    for (std::size_t i = span->Marker; i < span->End; ++i)
    {
        level.push_back(wad::RewriteEntry::FromFile(entries[i].Name.Text(), file, entries[i].Offset,
                                                    entries[i].Size));
    }
    return level;
}

// The level's entries as the master directory holds them, each from its own file.
std::vector<wad::RewriteEntry> LevelInMaster(std::size_t marker, int count)
{
    std::vector<wad::RewriteEntry> level;
    const wad::LumpDirectory& master = wad::Master();
    for (std::size_t i = marker; i < marker + static_cast<std::size_t>(count); ++i)
    {
        const wad::LumpEntry& entry = master[i];
        const std::string& file =
            wad::Wad().Files[static_cast<std::size_t>(entry.FileNumber)].FileName;
        level.push_back(
            wad::RewriteEntry::FromFile(entry.Name.Text(), file, entry.Offset, entry.Size));
    }
    return level;
}

// The lump's new name from the prompt; the old one when the answer is empty. Nothing when
// the prompt was cancelled.
std::optional<std::string> AskNewLumpName(const std::string& name)
{
    std::optional<std::string> answer =
        platform::TheUi().AskText("8 Characters  MAX", "New Lump Name", name);
    if (!answer)
    {
        return std::nullopt;
    }
    const std::string upper = wad::UpperText(answer->substr(0, 8));
    return upper.empty() ? name : upper;
}

int WritePwadFile(int index, const fs::path& target, int flags)
{
    const wad::LumpDirectory& master = wad::Master();
    const auto at = static_cast<std::size_t>(index);
    const wad::LumpEntry& entry = master[at];
    wad::RewritePlan plan;
    int count = 1;
    if (wad::LevelAt(master.Entries(), at, master.Size(), count) != 0)
    {
        std::optional<std::vector<wad::RewriteEntry>> level = LevelOnDisk(entry);
        plan.Entries = level ? std::move(*level) : LevelInMaster(at, count);
    }
    else
    {
        std::string name = entry.Name.Text();
        if ((flags & ExportAskName) != 0)
        {
            std::optional<std::string> renamed = AskNewLumpName(name);
            if (!renamed)
            {
                return ExportCancelled;
            }
            name = *renamed;
        }
        const std::string& file =
            wad::Wad().Files[static_cast<std::size_t>(entry.FileNumber)].FileName;
        plan.Entries.push_back(wad::RewriteEntry::FromFile(name, file, entry.Offset, entry.Size));
    }
    return wad::RewriteWad(target, plan) ? ExportWritten : ExportFailed;
}

int SideOfExportedFlat(std::int64_t size)
{
    for (const int side : {2048, 1024, 512, 256, 128})
    {
        if (static_cast<std::int64_t>(side) * side <= size)
        {
            return side;
        }
    }
    return 64;
}

// The picture of a graphics lump; nothing after a message.
std::optional<gfx::ImageRaster> ReadGraphic(int index, LumpKind kind, std::uint8_t fillIndex,
                                            const std::string& name)
{
    gfx::DecodedPicture picture = DecodeExportedGraphic(index, kind, fillIndex);
    if (picture.Raster)
    {
        return std::move(picture.Raster);
    }
    if (picture.Error == gfx::PictureError::InvalidSize)
    {
        platform::ShowError("Not enough Memory to read or invalid size %s!", name.c_str());
    }
    else if (picture.Error != gfx::PictureError::None)
    {
        platform::ShowError("Could not process Graphic %s\n\nProbably invalid format!",
                            name.c_str());
    }
    return std::nullopt;
}

} // namespace

std::string ExportFileExtension(std::string_view extension)
{
    const std::string upper = UpperExtension(extension);
    for (const std::string_view same : {".WAD", ".TXT", ".LMP", ".WAV", ".SND", ".MID", ".MUS"})
    {
        if (upper == same)
        {
            return upper;
        }
    }
    if (upper == ".SCRIPT")
    {
        return ".ACS";
    }
    if (upper == ".MAPINFO" || upper == ".SNDINFO" || upper == ".SNDSEQ" || upper == ".ANIMDEFS")
    {
        return ".txt";
    }
    if (upper == ".DEHACKED")
    {
        return ".deh";
    }
    return upper == ".FRAGGLE" ? ".fs" : "";
}

bool IsExportableFileName(std::string_view name)
{
    // A '/' would make the name a path here, so it is refused like the characters no file
    // name may hold anywhere.
    if (name.find('/') != std::string_view::npos)
    {
        platform::ShowMessageLines(platform::LinesInfo, "Not Valid Name",
                                   {std::string(name),
                                    "Contains invalid characters for a file name",
                                    "Export manually with a valid name"});
        return false;
    }
    return IsExportableName(name);
}

gfx::DecodedPicture DecodeExportedGraphic(int index, LumpKind kind, std::uint8_t fillIndex)
{
    gfx::DecodedPicture picture;
    picture.Kind = kind;
    const std::optional<Bytes> bytes = LumpBytes(index);
    if (!bytes)
    {
        return picture; // the read failure was reported
    }
    const std::int32_t size = wad::Master()[static_cast<std::size_t>(index)].Size;
    if (kind != LumpKind::Flat)
    {
        return gfx::DecodePictureAs(*bytes, size, kind, fillIndex);
    }
    const int side = SideOfExportedFlat(size);
    gfx::ImageRaster raster(side, side);
    gfx::ExpandRawToRaster(side, side, *bytes, raster, 1);
    picture.Raster = std::move(raster);
    return picture;
}

int ExportedLevelLayout(int markerIndex)
{
    const wad::LumpDirectory& master = wad::Master();
    const auto at = static_cast<std::size_t>(markerIndex);
    const std::vector<wad::LumpEntry> entries = DirectoryOnDisk(master[at]);
    int count = 1;
    if (const auto span = wad::FindLevelEntries(entries, master[at].Name))
    {
        return wad::LevelAt(entries, span->Marker, entries.size(), count);
    }
    return wad::LevelAt(master.Entries(), at, master.Size(), count);
}

bool PrepareExportPalette()
{
    return gfx::LoadGamePalette(gfx::Palettes().Options.PaletteNumber) == 1;
}

bool WriteExportFile(const fs::path& path, std::span<const std::uint8_t> bytes, bool append)
{
    switch (WriteSafely(path, bytes, append))
    {
    case WriteResult::Done:
        return true;
    case WriteResult::CreateFailed:
        platform::ShowError("Could not create %s", path.c_str());
        return false;
    default:
        return false; // the I/O error was reported
    }
}

int ExportEntryIndex(std::string_view name, int directoryIndex)
{
    const wad::LumpDirectory& master = wad::Master();
    if (directoryIndex >= 0 && static_cast<std::size_t>(directoryIndex) < master.Size() &&
        master[static_cast<std::size_t>(directoryIndex)].Name.Is(name))
    {
        return directoryIndex;
    }
    return wad::FindLump(wad::Wad().Files[0], name, false);
}

int ExportLump(std::string_view lumpName, int directoryIndex, std::string_view extension,
               fs::path& pathInOut, int flags)
{
    const std::string upper = UpperExtension(extension);
    const std::string fileExtension = ExportFileExtension(upper);
    if (fileExtension.empty())
    {
        platform::ShowError("Invalid SaveLump option");
        return ExportFailed;
    }
    const int index = ExportEntryIndex(lumpName, directoryIndex);
    if (index < 0)
    {
        platform::ShowError(" %s - Lump Name not found", wad::UpperText(lumpName).c_str());
        return ExportFailed;
    }
    const std::string name = wad::Master()[static_cast<std::size_t>(index)].Name.Text();
    const std::optional<fs::path> target = TargetPath(name, fileExtension, pathInOut, flags);
    if (!target)
    {
        return (flags & ExportAskName) != 0 ? ExportCancelled : ExportFailed;
    }
    if (!TargetIsFree(*target))
    {
        return ExportFailed;
    }
    int result = ExportFailed;
    if (upper == ".WAD")
    {
        result = WritePwadFile(index, *target, flags);
    }
    else if (const std::optional<Bytes> bytes = FileBytes(upper, index, name, *target))
    {
        result = WriteExportFile(*target, *bytes, (flags & ExportAppend) != 0) ? ExportWritten
                                                                               : ExportFailed;
    }
    if (result != ExportWritten)
    {
        return result;
    }
    pathInOut = *target;
    Exports().LastFolders[FolderKey(fileExtension)] = target->parent_path();
    if ((flags & ExportAskName) != 0)
    {
        platform::ShowInfo("Entry %s Saved Successfully", name.c_str());
    }
    return ExportWritten;
}

int ExportGraphic(std::string_view extension, std::string_view lumpName, int directoryIndex,
                  LumpKind kind, int transparentIndex, fs::path& path, bool prompt)
{
    const bool pcx = UpperExtension(extension) == ".PCX";
    const std::string kindWord = pcx ? "PCX" : "BMP";
    const std::string fileExtension = pcx ? ".PCX" : ".BMP";
    const int index = ExportEntryIndex(lumpName, directoryIndex);
    if (index < 0)
    {
        platform::ShowError(" %s - Lump Name not found", wad::UpperText(lumpName).c_str());
        return ExportFailed;
    }
    if (!gfx::Palettes().Loaded && !PrepareExportPalette())
    {
        return ExportFailed;
    }
    const std::string name = wad::Master()[static_cast<std::size_t>(index)].Name.Text();
    const std::optional<gfx::ImageRaster> raster =
        ReadGraphic(index, kind, static_cast<std::uint8_t>(transparentIndex), name);
    if (!raster)
    {
        return ExportFailed;
    }
    fs::path target = path;
    if (prompt)
    {
        std::optional<fs::path> chosen =
            gfx::ChoosePictureFile(kindWord + " name", name, fileExtension);
        if (!chosen)
        {
            return ExportCancelled;
        }
        target = *chosen;
    }
    if (!TargetIsFree(target))
    {
        return ExportFailed;
    }
    const gfx::PaletteState& palettes = gfx::Palettes();
    const gfx::Palette& colors =
        palettes.ImportPalette.Valid ? palettes.ImportPalette.Colors : palettes.GamePalette;
    const Bytes bytes = pcx ? gfx::EncodePcx(*raster, colors) : gfx::EncodeBmp(*raster, colors);
    const WriteResult result = WriteSafely(target, bytes, false);
    if (result != WriteResult::Done)
    {
        platform::ShowError(result == WriteResult::CreateFailed ? "DIB Error opening file!"
                                                                : "DIB Error saving file!");
        return ExportFailed;
    }
    if (prompt)
    {
        platform::ShowInfo("%s %s (%d x %-d) Saved Successfully", kindWord.c_str(), target.c_str(),
                           raster->Width(), raster->Height());
    }
    path = target;
    Exports().LastFolders[FolderKey(fileExtension)] = target.parent_path();
    return ExportWritten;
}

} // namespace kelvar::lumps
