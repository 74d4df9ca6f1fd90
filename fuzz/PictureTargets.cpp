// Fuzz targets of the picture readers: lump pictures, picture files, palette files, textures.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/FuzzKit.h"
#include "gfx/BmpFile.h"
#include "gfx/Colormap.h"
#include "gfx/GamePalette.h"
#include "gfx/LumpKind.h"
#include "gfx/PaletteFiles.h"
#include "gfx/Patch.h"
#include "gfx/PcxFile.h"
#include "gfx/Picture.h"
#include "gfx/PngFile.h"
#include "gfx/RawPictures.h"
#include "gfx/TextureLumps.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace kelvar::fuzz
{
namespace
{

using Bytes = std::span<const std::uint8_t>;

// A property every input must keep; a broken one is a fault for the fuzzer to report.
void Require(bool holds, const char* what)
{
    if (!holds)
    {
        std::fprintf(stderr, "fuzz: %s\n", what);
        std::abort();
    }
}

// The hole index of a picture read: the input's last byte, so the fuzzer varies it too.
std::uint8_t FillOf(Bytes input)
{
    return input.empty() ? gfx::DefaultTransparentIndex : input.back();
}

// A patch that decodes must come back the same through the encoder: holes are the fill
// index both ways, sizes and offsets are kept.
void CheckPatchRoundTrip(const gfx::ImageRaster& raster, std::uint8_t fill)
{
    const std::vector<std::uint8_t> encoded = gfx::EncodePatch(raster, fill);
    const std::optional<gfx::ImageRaster> again = gfx::DecodePatch(encoded, fill);
    Require(again.has_value(), "an encoded patch does not decode");
    Require(*again == raster, "a patch changed through encode and decode");
}

// The patch reader at every scale it offers, on a target of the size it asks for.
void DecodePatchAtScales(Bytes lump, std::uint8_t fill)
{
    const std::optional<gfx::PatchHeader> size = gfx::ReadPatchSize(lump);
    if (!size)
    {
        return;
    }
    for (const int scale : {2, 0, -2})
    {
        const int factor = scale >= 1 ? scale : 2 - scale;
        const int width = scale >= 1 ? size->Width * factor : (size->Width + factor - 1) / factor;
        const int height =
            scale >= 1 ? size->Height * factor : (size->Height + factor - 1) / factor;
        gfx::ImageRaster target(width, height, fill);
        (void)gfx::DecodePatchToRaster(lump, target, scale, fill);
    }
}

void DecodeLumpBytes(Bytes lump)
{
    const std::uint8_t fill = FillOf(lump);
    const auto size = static_cast<std::int64_t>(lump.size());
    (void)gfx::ClassifyLumpPrefix(lump.first(std::min(lump.size(), gfx::PrefixBytes)), size);
    (void)gfx::IsPatchHeader(lump.first(std::min(lump.size(), gfx::PatchHeaderBytes)), size);
    (void)gfx::ReadPatchTrimmedSize(lump);
    (void)gfx::CheckPatchColumns(lump);

    const gfx::DecodedPicture picture = gfx::DecodePicture(lump, fill);
    if (picture.Raster && picture.Kind == gfx::LumpKind::Pic)
    {
        CheckPatchRoundTrip(*picture.Raster, fill);
    }
    if (const std::optional<gfx::ImageRaster> patch = gfx::DecodePatch(lump, fill))
    {
        CheckPatchRoundTrip(*patch, fill);
    }
    DecodePatchAtScales(lump, fill);

    // Every kind the dispatch knows, as if the directory had said so; the raw kinds also with
    // a lump size that differs from the bytes at hand, as when a short flat is read on into
    // what follows it in the file.
    for (const gfx::LumpKind kind :
         {gfx::LumpKind::Flat, gfx::LumpKind::Pic, gfx::LumpKind::FlatBig,
          gfx::LumpKind::FlatBig158, gfx::LumpKind::FlatLeg, gfx::LumpKind::Imgz})
    {
        (void)gfx::DecodePictureAs(lump, size, kind, fill);
        (void)gfx::PictureReadSize(kind, size);
    }
    (void)gfx::DecodePictureAs(lump, size + 4096, gfx::LumpKind::Flat, fill);
    (void)gfx::DecodePictureAs(lump, size / 2, gfx::LumpKind::Flat, fill);
    (void)gfx::DecodeFlatleg(lump);
    (void)gfx::DecodeImgz(lump);
}

// The palette match costs a lookup or a search a pixel; a damaged header may ask for millions
// of pixels (up to the readers' limit), which the decoders must survive but which would slow
// the fuzzing to a crawl if matched as well.
constexpr int MatchedPixelLimit = 1 << 18;

void MatchToGame(const gfx::FilePicture& picture, const gfx::PictureOptions& options)
{
    if (static_cast<std::int64_t>(picture.Width) * picture.Height <= MatchedPixelLimit)
    {
        (void)gfx::ToGamePalette(picture, gfx::GrayRamp(), options);
    }
}

void DecodePictureFile(Bytes file)
{
    gfx::PictureOptions options;
    options.TransparentIndex = FillOf(file);
    options.Scale = file.size() % 3 == 0 ? 2 : 1;

    gfx::FilePicture bmp;
    if (gfx::DecodeBmp(file, bmp) == gfx::BmpStatus::Ok)
    {
        MatchToGame(bmp, options);
    }
    gfx::FilePicture pcx;
    gfx::PcxHeader header;
    if (gfx::DecodePcx(file, pcx, &header) == gfx::PcxStatus::Ok)
    {
        MatchToGame(pcx, options);
    }
    gfx::FilePicture png;
    if (gfx::DecodePng(file, png) == gfx::PngStatus::Ok)
    {
        options.FastMatch = true;
        MatchToGame(png, options);
    }
}

void ReadPaletteBytes(Bytes bytes)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (const std::optional<gfx::Palette> jasc = gfx::ParseJascPalette(text))
    {
        // What the writer makes of a palette read must read back as that palette.
        const std::optional<gfx::Palette> again =
            gfx::ParseJascPalette(gfx::JascPaletteText(*jasc));
        Require(again == jasc, "a JASC palette changed through write and read");
    }
    (void)gfx::ReadPacBytes(bytes);

    // PLAYPAL and COLORMAP lumps: any palette or map number, short lumps included.
    const int number = bytes.empty() ? 0 : bytes.front() % 16;
    (void)gfx::PaletteFromBytes(bytes, static_cast<std::size_t>(number));
    (void)gfx::ColormapMap(bytes, number);
    (void)gfx::ColormapMap(bytes, 40);
}

void ReadTextureBytes(Bytes lump)
{
    (void)gfx::ReadPatchNames(lump);
    const gfx::TextureLayout doom;
    const gfx::TextureLayout strife{18, 6, 8};
    for (const gfx::TextureLayout& layout : {doom, strife})
    {
        (void)gfx::CheckTextureLump(lump, layout);
        const gfx::TextureLump texture(std::vector<std::uint8_t>(lump.begin(), lump.end()), 1, 0,
                                       layout);
        // A damaged lump may claim many textures; every one is still only read from its bytes.
        const int count = std::min(texture.Count(), 4096);
        for (int index = 0; index < count; ++index)
        {
            if (const std::optional<gfx::TextureRecord> record = texture.Record(index))
            {
                (void)texture.Patches(*record);
                (void)record->ScaledWidth();
                (void)record->ScaledHeight();
                (void)texture.Find(record->Name);
            }
            (void)texture.Patches(index);
        }
        (void)texture.Record(-1);
        (void)texture.Record(texture.Count());
    }
}

} // namespace

void FuzzPictures(std::span<const std::uint8_t> input)
{
    RunGuarded(FatalRule::IsAFault, [&] { DecodeLumpBytes(input); });
}

void FuzzPictureFiles(std::span<const std::uint8_t> input)
{
    RunGuarded(FatalRule::IsAFault, [&] { DecodePictureFile(input); });
}

void FuzzPaletteFiles(std::span<const std::uint8_t> input)
{
    RunGuarded(FatalRule::IsAFault, [&] { ReadPaletteBytes(input); });
}

void FuzzTextures(std::span<const std::uint8_t> input)
{
    RunGuarded(FatalRule::IsAFault, [&] { ReadTextureBytes(input); });
}

} // namespace kelvar::fuzz
