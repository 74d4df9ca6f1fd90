// What a lump holds: the kind table and the ordered byte tests of classification.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/LumpKind.h"

#include "gfx/Patch.h"
#include "gfx/TextureCatalogue.h"
#include "wad/FileTable.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <stdio_ext.h>
#include <string>
#include <unistd.h>

namespace kelvar::gfx
{
namespace
{

// The shown names, by kind value. FLATBIG stands twice, once for each full-screen size.
constexpr std::array<std::string_view, LumpKindCount> KindNames = {
    "LUMP",    "PWAD",    "FLAT", "PIC",   "PROJ",   "SPRITE",   "WEAPON",   "DOOMSOUND", "WAVE",
    "DOOMMUS", "MIDI",    "PCX",  "BMP",   "PNAMES", "TEXTURE1", "TEXTURE2", "TX",        "FLATBIG",
    "FLATBIG", "FLATLEG", "IMGZ", "LEVEL", "PNG",    "fLaC",     "FON",      "OggS",      "JPG"};

// The prefix, zero padded to PrefixBytes, with little-endian readers.
class Prefix
{
public:
    explicit Prefix(std::span<const std::uint8_t> bytes)
    {
        std::copy_n(bytes.begin(), std::min(bytes.size(), Bytes.size()), Bytes.begin());
    }
    std::span<const std::uint8_t> All() const { return Bytes; }
    std::uint8_t At(std::size_t at) const { return Bytes[at]; }
    std::uint16_t U16(std::size_t at) const { return wad::ReadLe16(Bytes.data() + at); }
    std::int16_t I16(std::size_t at) const { return static_cast<std::int16_t>(U16(at)); }
    std::int32_t I32(std::size_t at) const { return wad::ReadLe32(Bytes.data() + at); }
    std::uint32_t U32(std::size_t at) const { return static_cast<std::uint32_t>(I32(at)); }
    std::uint32_t U32BigEndian(std::size_t at) const
    {
        return (static_cast<std::uint32_t>(Bytes[at]) << 24) |
               (static_cast<std::uint32_t>(Bytes[at + 1]) << 16) |
               (static_cast<std::uint32_t>(Bytes[at + 2]) << 8) | Bytes[at + 3];
    }
    bool Text(std::size_t at, std::string_view text) const
    {
        return std::memcmp(Bytes.data() + at, text.data(), text.size()) == 0;
    }
    bool TextNoCase(std::size_t at, std::string_view text) const
    {
        for (std::size_t i = 0; i < text.size(); ++i)
        {
            if (wad::UpperAscii(static_cast<char>(Bytes[at + i])) != wad::UpperAscii(text[i]))
            {
                return false;
            }
        }
        return true;
    }

private:
    std::array<std::uint8_t, PrefixBytes> Bytes{};
};

LumpClass Found(LumpKind kind, std::string_view tag, int width = 0, int height = 0)
{
    return {kind, tag, width, height};
}

// The tests of containers, sounds and music (the first eight, in their order).
std::optional<LumpClass> ContainerOrSound(const Prefix& p, std::int64_t size)
{
    if (size >= 12 && (p.Text(0, "PWAD") || p.Text(0, "IWAD")) && p.I32(8) <= size)
    {
        return Found(LumpKind::Pwad, "WAD");
    }
    if (size > 45 && p.TextNoCase(0, "RIFF") && p.TextNoCase(8, "WAVEfmt "))
    {
        return Found(LumpKind::Wave, "WAV");
    }
    // Only a lump of more than 45 bytes has the prefix these two look at.
    if (size > 45 && (p.Text(0, "MThd") || (p.Text(0, "RIFF") && p.Text(8, "RMIDdata"))))
    {
        return Found(LumpKind::Midi, "MID");
    }
    if (size > 19 && p.At(3) == 26 && p.Text(0, "MUS") && p.U16(8) != 0 && p.I16(8) < 16 &&
        p.I16(4) + p.I16(6) <= size)
    {
        return Found(LumpKind::DoomMus, "MUS");
    }
    if (size > 896 && p.At(0) == 10 && p.At(1) == 5 && p.At(2) == 1 && p.At(3) == 8 &&
        p.I16(4) >= 0 && p.I16(6) >= 0 && p.I16(8) >= 0 && p.I16(10) >= 0)
    {
        return Found(LumpKind::Pcx, "PCX");
    }
    if (size > 9 && p.U16(0) == 3 && p.U16(2) >= 2000 && p.U16(2) <= 45000 && p.I32(4) >= 1 &&
        p.I32(4) <= size)
    {
        return Found(LumpKind::DoomSound, "SND");
    }
    if (size > 54 && p.Text(0, "BM") && p.U32(2) <= size && p.U32(14) == 40 && p.U32(30) == 0)
    {
        return Found(LumpKind::Bmp, "BMP");
    }
    return std::nullopt;
}

// The tests of pictures with a header, and of the formats only recognised.
std::optional<LumpClass> HeaderPicture(const Prefix& p, std::int64_t size)
{
    if (size > 12 && IsPatchHeader(p.All().first(PatchHeaderBytes), size) == PatchYes)
    {
        return Found(LumpKind::Pic, "PIC", p.I16(0), p.I16(2));
    }
    if (size > 24 && p.Text(0, "IMGZ"))
    {
        return Found(LumpKind::Imgz, "IMG");
    }
    if (size >= 30 && HasPngSignature(p.All()) && p.Text(12, "IHDR"))
    {
        return Found(LumpKind::Png, "PNG", static_cast<int>(p.U32BigEndian(16)),
                     static_cast<int>(p.U32BigEndian(20)));
    }
    if (size >= 12)
    {
        if (p.Text(0, "fLaC"))
        {
            return Found(LumpKind::Flac, "fLaC");
        }
        if (p.Text(0, "FON"))
        {
            return Found(LumpKind::Font, "FONT");
        }
        if (p.Text(0, std::string_view("OggS\0\2", 6)))
        {
            return Found(LumpKind::Ogg, "OggS");
        }
    }
    const bool exif = p.Text(0, "\xFF\xD8\xFF\xE1") && p.Text(6, "Exif");
    const bool jfif = p.Text(0, "\xFF\xD8\xFF\xE0") && p.Text(6, "JFIF");
    if (size >= 10 && (exif || jfif))
    {
        return Found(LumpKind::Jpg, "JPG");
    }
    return std::nullopt;
}

// The raw pictures, told by their size alone, and FLATLEG's size header.
std::optional<LumpClass> RawPicture(const Prefix& p, std::int64_t size)
{
    switch (size)
    {
    case 4096:
    case 4160: // 64 x 64 flats with spare bytes
    case 8192:
        return Found(LumpKind::Flat, "FLT", 64, 64);
    case 64000:
        return Found(LumpKind::FlatBig, "FLT", 320, 200);
    case 50560:
        return Found(LumpKind::FlatBig158, "FLT", 320, 158);
    case 16384:
    case 65536:
    case 262144:
    case 1048576:
    case 4194304:
    {
        int side = 128;
        while (static_cast<std::int64_t>(side) * side < size)
        {
            side *= 2;
        }
        return Found(LumpKind::Flat, "FLT", side, side);
    }
    default:
        break;
    }
    const std::int32_t width = p.I32(0);
    const std::int32_t height = p.I32(4);
    if (size > 8 && width >= 1 && width <= 2048 && height >= 1 && height <= 2048 &&
        size == static_cast<std::int64_t>(width) * height + 8)
    {
        return Found(LumpKind::FlatLeg, "FLT", width, height);
    }
    return std::nullopt;
}

bool InRunByName(const wad::LumpDirectory& master, const wad::MarkerRun& run,
                 const wad::LumpName& name)
{
    if (run.Count <= 0)
    {
        return false;
    }
    const int at = master.FindLast(name, static_cast<std::size_t>(run.First),
                                   static_cast<std::size_t>(run.First + run.Count));
    return at >= 0;
}

// Reads up to PrefixBytes of the lump; what the file does not hold stays 0. A positioned read
// of the file descriptor costs one system call and leaves the stream's position and buffer
// alone; the stream itself is used when it holds written bytes not yet in the file.
std::array<std::uint8_t, PrefixBytes> ReadPrefix(std::FILE* file, std::int64_t offset,
                                                 std::int64_t size)
{
    std::array<std::uint8_t, PrefixBytes> bytes{};
    const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(size, PrefixBytes));
    if (file == nullptr || wanted == 0 || offset < 0)
    {
        return bytes;
    }
    if (__fpending(file) == 0)
    {
        (void)pread(fileno(file), bytes.data(), wanted, static_cast<off_t>(offset));
    }
    else if (std::fseek(file, static_cast<long>(offset), SEEK_SET) == 0)
    {
        (void)std::fread(bytes.data(), 1, wanted, file);
    }
    return bytes;
}

} // namespace

std::string_view KindName(LumpKind kind, int levelLumpCount)
{
    const auto value = static_cast<std::size_t>(kind);
    if (kind == LumpKind::Level && levelLumpCount > 12)
    {
        return "LEVGL";
    }
    return value < KindNames.size() ? KindNames[value] : KindNames[0];
}

LumpClass ClassifyLumpPrefix(std::span<const std::uint8_t> prefix, std::int64_t size)
{
    if (size <= 0)
    {
        return {};
    }
    // Only the bytes the size allows count; the rest of the prefix reads as 0.
    const auto allowed = static_cast<std::size_t>(std::min<std::int64_t>(size, PrefixBytes));
    const Prefix p(prefix.first(std::min(prefix.size(), allowed)));
    if (auto found = ContainerOrSound(p, size))
    {
        return *found;
    }
    if (auto found = HeaderPicture(p, size))
    {
        return *found;
    }
    if (auto found = RawPicture(p, size))
    {
        return *found;
    }
    return {};
}

LumpClass ClassifyLumpData(std::FILE* file, std::int64_t offset, std::int64_t size,
                           const char* lumpName)
{
    if (size <= 0)
    {
        return {};
    }
    const std::array<std::uint8_t, PrefixBytes> prefix = ReadPrefix(file, offset, size);
    LumpClass found = ClassifyLumpPrefix(prefix, size);
    if (found.Kind == LumpKind::Lump && lumpName != nullptr)
    {
        const wad::LumpName name = wad::LumpName::From(lumpName);
        if (name.StartsWith("F_SKY") || IsFlatName(lumpName))
        {
            found = Found(LumpKind::Flat, "FLT", 64, 64);
        }
    }
    return found;
}

bool IsFlatName(std::string_view name)
{
    const wad::LumpName key = wad::LumpName::From(name);
    const NameCatalogue& flats = Catalogue().Flats;
    if (flats.Size() > 0)
    {
        return flats.Contains(key);
    }
    // Before the catalogue is built (a batch listing), the flat runs stand for it.
    const wad::LumpDirectory& master = wad::Master();
    const wad::MarkerRanges& markers = wad::Wad().Markers;
    return InRunByName(master, markers.F, key) || InRunByName(master, markers.FF, key);
}

LumpKind KindFromName(std::string_view name, std::string_view extension)
{
    if (!wad::EqualNoCase(extension, "WAD"))
    {
        return LumpKind::Lump;
    }
    const wad::LumpName lump = wad::LumpName::From(name);
    if (lump.Is("TEXTURE1"))
    {
        return LumpKind::Texture1;
    }
    if (lump.Is("TEXTURE2"))
    {
        return LumpKind::Texture2;
    }
    return lump.Is("PNAMES") ? LumpKind::Pnames : LumpKind::Lump;
}

EntryClass ClassifyDirectoryEntry(std::string_view name, int entryIndex)
{
    EntryClass result;
    wad::LumpDirectory& master = wad::Master();
    const int index =
        entryIndex >= 0 ? entryIndex : master.FindLast(wad::LumpName::From(name), 0, master.Size());
    if (index < 0 || static_cast<std::size_t>(index) >= master.Size())
    {
        return result;
    }
    result.Index = index;
    const auto at = static_cast<std::size_t>(index);
    int count = 1;
    if (wad::LevelAt(master.Entries(), at, master.Size(), count) != 0)
    {
        result.Class = Found(LumpKind::Level, count >= 13 ? "LGL" : "LVL");
        result.LevelLumpCount = count;
    }
    else
    {
        const wad::LumpEntry& entry = master[at];
        wad::FileRec& file = wad::Wad().Files[static_cast<std::size_t>(entry.FileNumber)];
        wad::EnsureOpen(file);
        const std::string text = entry.Name.Text();
        result.Class = ClassifyLumpData(file.Stream.get(), entry.Offset, entry.Size, text.c_str());
    }
    master.SetKind(at, static_cast<std::uint16_t>(result.Class.Kind));
    result.KindName = KindName(result.Class.Kind, result.LevelLumpCount);
    return result;
}

} // namespace kelvar::gfx
