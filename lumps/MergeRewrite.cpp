// The merge's rewrite of the target: each entry from the old file or its source, converted as
// the import options say, with the merged PNAMES and textures in place.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/BmpFile.h"
#include "gfx/GamePalette.h"
#include "gfx/PcxFile.h"
#include "gfx/Picture.h"
#include "gfx/PictureFile.h"
#include "gfx/PngFile.h"
#include "lumps/Merge.h"
#include "lumps/MergeParts.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "sound/MidiToMus.h"
#include "sound/OutsidePrograms.h"
#include "sound/WaveConversion.h"
#include "wad/CheckedFile.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>

namespace kelvar::lumps
{
namespace
{

using wad::RewriteEntry;

// What a converted entry became: its new bytes, its old bytes kept, or nothing at all.
enum class Outcome
{
    Converted,
    KeptAsIs,
    Dropped,
};

// The file names a failed conversion's message gives.
std::string EntryText(const ImportRow& row, const TargetEntry& entry)
{
    return platform::Format("File=%s\nEntry=%s\n", row.File.c_str(), entry.Name.Text().c_str());
}

void Refuse(MergeBuffers& buffers, const std::string& text)
{
    platform::ShowError("%s", text.c_str());
    buffers.Log.push_back(text);
}

// The game palette with the transparent colour and the import gamma; nothing after a message
// when no palette can be read.
std::optional<gfx::Palette> ImportPalette()
{
    gfx::PaletteState& state = gfx::Palettes();
    if (!state.Loaded)
    {
        std::error_code error;
        const std::string& iwad = wad::Wad().Options.IwadPath;
        if (wad::Wad().Files[0].State == 0 && !std::filesystem::is_regular_file(iwad, error))
        {
            platform::ShowError("Couldn't open %s", iwad.c_str());
            return std::nullopt;
        }
        if (gfx::LoadGamePalette(state.Options.PaletteNumber) != 1)
        {
            return std::nullopt;
        }
    }
    // ApplyPalette also sets the view's colour table, which must stay the view's.
    const gfx::ColorTable display = state.DisplayColorTable;
    const gfx::PaletteOptions& options = state.Options;
    gfx::Palette palette{};
    gfx::ApplyPalette(state.ImportPalette, state.RawGamePalette, palette, options.ImportGamma,
                      options.TransparentIndex, options.TransparentRed, options.TransparentGreen,
                      options.TransparentBlue);
    state.DisplayColorTable = display;
    return palette;
}

// A BMP, PCX or PNG file as a lump of the picture kind asked for.
std::optional<ByteVector> PictureLump(MergeBuffers& buffers, const ImportRow& row,
                                      const TargetEntry& entry, const MergeOptions& options)
{
    const std::optional<ByteVector> bytes = ReadSpan(row.File, 0, entry.Size);
    gfx::FilePicture decoded;
    const gfx::LumpKind fileKind =
        bytes ? gfx::ClassifyLumpPrefix(*bytes, static_cast<std::int64_t>(bytes->size())).Kind
              : gfx::LumpKind::Lump;
    const bool read = bytes && ((fileKind == gfx::LumpKind::Png &&
                                 gfx::DecodePng(*bytes, decoded) == gfx::PngStatus::Ok) ||
                                (fileKind == gfx::LumpKind::Bmp &&
                                 gfx::DecodeBmp(*bytes, decoded) == gfx::BmpStatus::Ok) ||
                                (fileKind == gfx::LumpKind::Pcx &&
                                 gfx::DecodePcx(*bytes, decoded, nullptr) == gfx::PcxStatus::Ok));
    if (!read)
    {
        Refuse(buffers, EntryText(row, entry) + "Not a BMP, PCX or PNG picture!\nData not copied");
        return std::nullopt;
    }
    const std::optional<gfx::Palette> palette = ImportPalette();
    if (!palette)
    {
        return std::nullopt;
    }
    const int transparent = gfx::Palettes().Options.TransparentIndex;
    gfx::PictureOptions match = gfx::PictureOptionsFromSettings(true, 1);
    match.FastMatch = fileKind == gfx::LumpKind::Png;
    match.TransparentIndex = transparent;
    const gfx::ImageRaster raster = gfx::ToGamePalette(decoded, *palette, match).Raster;
    gfx::ImageRaster fitted = gfx::FitPictureToKind(raster, options.PictureKind, options.Limits);
    // A PNG's own offsets stand over the kind's when the picture keeps its size.
    const bool ownOffsets = decoded.LeftOffset != 0 || decoded.TopOffset != 0;
    if (ownOffsets && options.PictureKind != gfx::LumpKind::Flat &&
        fitted.Width() == raster.Width() && fitted.Height() == raster.Height())
    {
        fitted.leftOffset = decoded.LeftOffset;
        fitted.topOffset = decoded.TopOffset;
    }
    return gfx::WriteLumpFromRaster(fitted, options.PictureKind,
                                    static_cast<std::uint8_t>(transparent));
}

// A MIDI span of `file` as MUS bytes, by way of kelvarmus in the program's directory.
Outcome MidiToMus(MergeBuffers& buffers, const ImportRow& row, const TargetEntry& entry,
                  ByteVector& mus, const char* failureTail)
{
    const std::filesystem::path programDir = wad::Wad().ProgramDir;
    std::error_code error;
    std::filesystem::create_directories(programDir, error);
    const std::filesystem::path input = programDir / (entry.Name.Text() + ".mid");
    std::filesystem::remove(sound::MusOutputName(input), error);
    const wad::StreamPtr in = wad::OpenStream(row.File, "rb");
    std::filesystem::path output;
    const std::optional<std::string> failed =
        in ? sound::ConvertMidiToMus(in.get(), entry.FileOffset, entry.Size, input, programDir,
                                     output)
           : std::optional<std::string>("Could not read " + row.File.string());
    if (failed)
    {
        Refuse(buffers, EntryText(row, entry) + *failed + "!\n" + failureTail);
        return Outcome::KeptAsIs;
    }
    std::ifstream read(output, std::ios::binary);
    if (!read)
    {
        Refuse(buffers, EntryText(row, entry) + "File " + output.string() +
                            " not found?\n\nData not copied");
        return Outcome::Dropped;
    }
    mus.assign(std::istreambuf_iterator<char>(read), std::istreambuf_iterator<char>());
    read.close();
    std::filesystem::remove(output, error);
    return Outcome::Converted;
}

// A wave span as SND bytes.
Outcome WaveToSnd(MergeBuffers& buffers, const ImportRow& row, const TargetEntry& entry,
                  ByteVector& snd, const char* failureTail)
{
    const std::optional<ByteVector> wave = ReadSpan(row.File, entry.FileOffset, entry.Size);
    const std::optional<std::string> failed =
        wave ? sound::WavToSnd(*wave, snd) : std::optional<std::string>("Could not read file");
    if (failed)
    {
        Refuse(buffers, EntryText(row, entry) + *failed + "!\n" + failureTail);
        return Outcome::KeptAsIs;
    }
    return Outcome::Converted;
}

RewriteEntry SpanOf(const ImportRow& row, const TargetEntry& entry)
{
    return RewriteEntry::FromFile(entry.Name.Text(), row.File, entry.FileOffset, entry.Size);
}

// What goes into the target for an import after its conversion: the converted bytes, the
// source's bytes as they are, or nothing.
std::optional<RewriteEntry> EntryFor(Outcome outcome, const ImportRow& row,
                                     const TargetEntry& entry, ByteVector converted)
{
    switch (outcome)
    {
    case Outcome::Converted:
        return RewriteEntry::FromBytes(entry.Name.Text(), std::move(converted));
    case Outcome::KeptAsIs:
        return SpanOf(row, entry);
    case Outcome::Dropped:
        break;
    }
    return std::nullopt;
}

// A lump of a source WAD: copied, or a wave or MIDI lump converted when asked.
std::optional<RewriteEntry> WadLump(MergeBuffers& buffers, const MergeOptions& options,
                                    const ImportRow& row, const TargetEntry& entry)
{
    const wad::StreamPtr in = wad::OpenStream(row.File, "rb");
    const gfx::LumpKind kind =
        in ? gfx::ClassifyLumpData(in.get(), entry.FileOffset, entry.Size, nullptr).Kind
           : gfx::LumpKind::Lump;
    ByteVector converted;
    Outcome outcome = Outcome::KeptAsIs;
    if (kind == gfx::LumpKind::Wave && options.WavToSnd)
    {
        outcome = WaveToSnd(buffers, row, entry, converted, "Data Copied ASIS");
    }
    else if (kind == gfx::LumpKind::Midi && options.MidiToMus)
    {
        outcome = MidiToMus(buffers, row, entry, converted, "Data Copied ASIS");
    }
    return EntryFor(outcome, row, entry, std::move(converted));
}

// A file of its own: a picture made a lump of the kind asked for, a wave or MIDI file
// converted when asked, anything else copied.
std::optional<RewriteEntry> FileLump(MergeBuffers& buffers, const MergeOptions& options,
                                     const ImportRow& row, const TargetEntry& entry)
{
    const std::string extension = UpperExtension(row.File);
    const bool picture = extension == ".PCX" || extension == ".BMP" || extension == ".PNG";
    ByteVector converted;
    Outcome outcome = Outcome::KeptAsIs;
    if (picture && options.PictureKind != gfx::LumpKind::Lump)
    {
        std::optional<ByteVector> lump = PictureLump(buffers, row, entry, options);
        outcome = lump ? Outcome::Converted : Outcome::Dropped;
        converted = lump ? std::move(*lump) : ByteVector();
    }
    else if (extension == ".WAV" && options.WavToSnd)
    {
        outcome = WaveToSnd(buffers, row, entry, converted, "Data not copied");
        outcome = outcome == Outcome::KeptAsIs ? Outcome::Dropped : outcome;
    }
    else if ((extension == ".MID" || extension == ".MIDI") && options.MidiToMus)
    {
        outcome = MidiToMus(buffers, row, entry, converted, "Data not copied");
        outcome = outcome == Outcome::KeptAsIs ? Outcome::Dropped : outcome;
    }
    return EntryFor(outcome, row, entry, std::move(converted));
}

// The merged PNAMES and textures in the place of the first such lump; later ones left out.
// Nothing when the entry is none of them or no merged buffer stands for it.
struct TextureSlots
{
    bool Pnames = false;
    bool Texture1 = false;
    bool Texture2 = false;
    bool ListHasTexture1 = false;
};

enum class Slot
{
    NotMerged,
    Written,
    LeftOut,
};

Slot MergedLump(const MergeBuffers& buffers, TextureSlots& seen, const TargetEntry& entry,
                wad::RewritePlan& plan)
{
    const std::string name = entry.Name.Text();
    const auto put = [&](bool& slot, const ByteVector& bytes)
    {
        if (slot)
        {
            return Slot::LeftOut;
        }
        slot = true;
        plan.Entries.push_back(RewriteEntry::FromBytes(wad::UpperText(name), bytes));
        return Slot::Written;
    };
    if (entry.Name.Is("PNAMES") && !buffers.Pnames.empty())
    {
        return put(seen.Pnames, buffers.Pnames);
    }
    if (buffers.Textures.empty())
    {
        return Slot::NotMerged;
    }
    if (entry.Name.Is("TEXTURE1"))
    {
        return put(seen.Texture1, buffers.Textures);
    }
    if (entry.Name.Is("TEXTURE2"))
    {
        // With no TEXTURE1 to hold them, the textures stay in TEXTURE2.
        return put(seen.Texture2, seen.ListHasTexture1 ? buffers.DummyTexture2 : buffers.Textures);
    }
    return Slot::NotMerged;
}

} // namespace

int RewriteTargetFile(MergeSession& session, MergeBuffers& buffers, bool texturesMerged)
{
    TargetList& target = session.Target;
    const MergeOptions& options = session.Options;
    if (!target.Magic.empty() && target.Magic != options.Magic &&
        !platform::AskYesNo("You request to create a %4.4s header\n\nThe existing file has a "
                            "%4.4s header\n\nDo you still want to Import?",
                            options.Magic.c_str(), target.Magic.c_str()))
    {
        return 0;
    }
    buffers.DummyTexture2 = MakeDummyTexture2(buffers.Layout);
    while (DeleteTextureEntry(buffers, "final", DummyTextureName, buffers.Textures) == 1)
    {
    }
    wad::RewritePlan plan;
    plan.Magic = options.Magic;
    plan.KeepScriptNames = options.KeepScriptNames;
    TextureSlots seen;
    seen.ListHasTexture1 =
        std::any_of(target.Entries.begin(), target.Entries.end(),
                    [](const TargetEntry& e) { return e.Size >= 0 && e.Name.Is("TEXTURE1"); });
    for (const TargetEntry& entry : target.Entries)
    {
        if (entry.Size < 0)
        {
            continue;
        }
        const Slot slot = texturesMerged ? MergedLump(buffers, seen, entry, plan) : Slot::NotMerged;
        if (slot != Slot::NotMerged)
        {
            continue;
        }
        if (entry.ImportIndex < 0)
        {
            plan.Entries.push_back(RewriteEntry::FromFile(entry.Name.Text(), target.File,
                                                          entry.FileOffset, entry.Size));
            continue;
        }
        const ImportRow& row = session.Imports[static_cast<std::size_t>(entry.ImportIndex)];
        std::optional<RewriteEntry> written =
            entry.Size == 0 ? RewriteEntry::FromBytes(entry.Name.Text())
            : row.FromWad   ? WadLump(buffers, options, row, entry)
                            : FileLump(buffers, options, row, entry);
        if (written)
        {
            plan.Entries.push_back(std::move(*written));
        }
        else
        {
            --session.Counts.Added;
            ++session.Counts.Skipped;
        }
    }
    session.Counts.Written = static_cast<int>(plan.Entries.size());
    return wad::RewriteWad(target.File, plan) ? 1 : -1;
}

} // namespace kelvar::lumps
