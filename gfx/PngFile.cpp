// PNG picture files through libpng: palette, gray and colour pictures, offsets in a grAb chunk.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PngFile.h"

#include "gfx/BmpFile.h"
#include "gfx/GamePalette.h"
#include "gfx/PaletteFiles.h"
#include "platform/Messages.h"

#include <png.h>

#include <algorithm>
#include <cstring>

// libpng reports errors by a long jump back to the function that called setjmp. The work is
// therefore split: an outer function holds the setjmp and every object that owns memory (in
// a context record), and an inner one, which never holds such objects itself, makes the
// libpng calls. A jump then skips no destructor.

namespace kelvar::gfx
{
namespace
{

constexpr png_byte GrabName[5] = {'g', 'r', 'A', 'b', '\0'};
constexpr size_t GrabSize = 8;

struct ReadContext
{
    std::span<const uint8_t> Bytes;
    size_t At = 0;
    PngStatus Status = PngStatus::Damaged;
    FilePicture Picture;
    std::vector<uint8_t> Pixels;
    std::vector<png_bytep> Rows;
};

struct WriteContext
{
    const ImageRaster* Raster = nullptr;
    std::vector<uint8_t> Bytes;
    std::vector<png_color> Colors;
    std::vector<png_bytep> Rows;
    png_byte Grab[GrabSize] = {};
    bool Done = false;
};

void ReadFromMemory(png_structp png, png_bytep data, size_t length)
{
    auto* context = static_cast<ReadContext*>(png_get_io_ptr(png));
    if (length > context->Bytes.size() - context->At)
    {
        png_error(png, "truncated");
    }
    std::memcpy(data, context->Bytes.data() + context->At, length);
    context->At += length;
}

void WriteToMemory(png_structp png, png_bytep data, size_t length)
{
    auto* context = static_cast<WriteContext*>(png_get_io_ptr(png));
    context->Bytes.insert(context->Bytes.end(), data, data + length);
}

void FlushNothing(png_structp) {}

// Errors end the decode without a word on stderr; warnings are dropped.
[[noreturn]] void OnError(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

int32_t BigEndian32(const png_byte* bytes)
{
    return static_cast<int32_t>((uint32_t{bytes[0]} << 24) | (uint32_t{bytes[1]} << 16) |
                                (uint32_t{bytes[2]} << 8) | uint32_t{bytes[3]});
}

void PutBigEndian32(png_byte* bytes, int32_t value)
{
    const auto bits = static_cast<uint32_t>(value);
    for (int i = 0; i < 4; ++i)
    {
        bytes[i] = static_cast<png_byte>(bits >> (24 - 8 * i));
    }
}

// The offsets of a grAb chunk, held to 16 bits.
void TakeGrab(png_structp png, png_infop info, FilePicture& picture)
{
    png_unknown_chunkp chunks = nullptr;
    const int count = png_get_unknown_chunks(png, info, &chunks);
    for (int i = 0; i < count; ++i)
    {
        const png_unknown_chunk& chunk = chunks[i];
        if (std::memcmp(chunk.name, GrabName, 4) == 0 && chunk.size == GrabSize)
        {
            const auto hold = [](int32_t value)
            { return static_cast<int16_t>(std::clamp<int32_t>(value, INT16_MIN, INT16_MAX)); };
            picture.LeftOffset = hold(BigEndian32(chunk.data));
            picture.TopOffset = hold(BigEndian32(chunk.data + 4));
        }
    }
}

// Sets the transforms; returns the bytes a pixel takes after them (1 or 4).
int ChooseTransforms(png_structp png, png_infop info, FilePicture& picture)
{
    const int colorType = png_get_color_type(png, info);
    const int bitDepth = png_get_bit_depth(png, info);
    const bool transparency = png_get_valid(png, info, PNG_INFO_tRNS) != 0;
    picture.Bits = bitDepth * png_get_channels(png, info);
    png_set_strip_16(png);
    png_set_interlace_handling(png);
    if (colorType == PNG_COLOR_TYPE_PALETTE)
    {
        png_set_packing(png);
        picture.Indexed = true;
        return 1;
    }
    if (colorType == PNG_COLOR_TYPE_GRAY && !transparency)
    {
        png_set_expand_gray_1_2_4_to_8(png);
        picture.Indexed = true;
        picture.FilePalette = GrayRamp();
        return 1;
    }
    png_set_expand(png);
    png_set_gray_to_rgb(png);
    png_set_filler(png, 0xFF, PNG_FILLER_AFTER);
    picture.Indexed = false;
    if ((colorType & PNG_COLOR_MASK_ALPHA) != 0 || transparency)
    {
        picture.Alpha.assign(1, 0); // marks that the picture has alpha; filled below
    }
    return 4;
}

// Palette, tRNS and pixels into the picture, once the image is read.
void TakePixels(png_structp png, png_infop info, ReadContext& context, int bytesPerPixel)
{
    FilePicture& picture = context.Picture;
    const size_t count = static_cast<size_t>(picture.Width) * static_cast<size_t>(picture.Height);
    if (bytesPerPixel == 1)
    {
        png_colorp colors = nullptr;
        int colorCount = 0;
        if (png_get_PLTE(png, info, &colors, &colorCount) != 0)
        {
            for (int i = 0; i < std::min(colorCount, 256); ++i)
            {
                picture.FilePalette[static_cast<size_t>(i)] = {colors[i].red, colors[i].green,
                                                               colors[i].blue};
            }
        }
        picture.Indexes.assign(context.Pixels.begin(),
                               context.Pixels.begin() + static_cast<std::ptrdiff_t>(count));
        png_bytep alphas = nullptr;
        int alphaCount = 0;
        if (png_get_tRNS(png, info, &alphas, &alphaCount, nullptr) != 0 && alphas != nullptr)
        {
            picture.Alpha.resize(count);
            for (size_t i = 0; i < count; ++i)
            {
                const int index = picture.Indexes[i];
                picture.Alpha[i] = index < alphaCount ? alphas[index] : 255;
            }
        }
        return;
    }
    const bool alpha = !picture.Alpha.empty();
    picture.Alpha.clear();
    picture.Colors.reserve(count);
    for (size_t i = 0; i < count; ++i)
    {
        const uint8_t* p = context.Pixels.data() + i * 4;
        picture.Colors.push_back({p[0], p[1], p[2]});
        if (alpha)
        {
            picture.Alpha.push_back(p[3]);
        }
    }
}

[[gnu::noinline]] void DecodeInner(png_structp png, png_infop info, ReadContext& context)
{
    png_set_read_fn(png, &context, ReadFromMemory);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_ALWAYS, GrabName, 1);
    png_set_user_limits(png, MaxPictureSide, MaxPictureSide);
    png_read_info(png, info);
    FilePicture& picture = context.Picture;
    picture.Width = static_cast<int>(png_get_image_width(png, info));
    picture.Height = static_cast<int>(png_get_image_height(png, info));
    if (picture.Width < 1 || picture.Height < 1)
    {
        context.Status = PngStatus::ZeroSize;
        return;
    }
    if (int64_t{picture.Width} * picture.Height > MaxPicturePixels)
    {
        return;
    }
    const int bytesPerPixel = ChooseTransforms(png, info, picture);
    png_read_update_info(png, info);
    const size_t rowBytes = static_cast<size_t>(picture.Width) * static_cast<size_t>(bytesPerPixel);
    if (png_get_rowbytes(png, info) != rowBytes)
    {
        return;
    }
    context.Pixels.resize(rowBytes * static_cast<size_t>(picture.Height));
    context.Rows.resize(static_cast<size_t>(picture.Height));
    for (size_t y = 0; y < context.Rows.size(); ++y)
    {
        context.Rows[y] = context.Pixels.data() + y * rowBytes;
    }
    png_read_image(png, context.Rows.data());
    png_read_end(png, info);
    TakeGrab(png, info, picture);
    TakePixels(png, info, context, bytesPerPixel);
    context.Status = PngStatus::Ok;
}

[[gnu::noinline]] void EncodeInner(png_structp png, png_infop info, WriteContext& context)
{
    const ImageRaster& raster = *context.Raster;
    png_set_write_fn(png, &context, WriteToMemory, FlushNothing);
    png_set_IHDR(png, info, static_cast<png_uint_32>(raster.Width()),
                 static_cast<png_uint_32>(raster.Height()), 8, PNG_COLOR_TYPE_PALETTE,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_PLTE(png, info, context.Colors.data(), static_cast<int>(context.Colors.size()));
    // Palette pictures of a game are small and flat: the fastest deflate and no row filters
    // make files of nearly the same size in a fraction of the time.
    png_set_compression_level(png, 1);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
    if (raster.leftOffset != 0 || raster.topOffset != 0)
    {
        png_unknown_chunk grab{};
        std::memcpy(grab.name, GrabName, sizeof GrabName);
        grab.data = context.Grab;
        grab.size = GrabSize;
        grab.location = PNG_HAVE_IHDR;
        png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_ALWAYS, GrabName, 1);
        png_set_unknown_chunks(png, info, &grab, 1);
    }
    png_write_info(png, info);
    png_write_image(png, context.Rows.data());
    png_write_end(png, info);
    context.Done = true;
}

} // namespace

PngStatus DecodePng(std::span<const uint8_t> bytes, FilePicture& out)
{
    if (bytes.size() < 8 || png_sig_cmp(bytes.data(), 0, 8) != 0)
    {
        return PngStatus::NotPng;
    }
    ReadContext context;
    context.Bytes = bytes;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    if (info == nullptr)
    {
        png_destroy_read_struct(&png, nullptr, nullptr);
        return PngStatus::Damaged;
    }
    if (setjmp(png_jmpbuf(png)) == 0)
    {
        DecodeInner(png, info, context);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    if (context.Status == PngStatus::Ok)
    {
        out = std::move(context.Picture);
    }
    return context.Status;
}

std::optional<std::vector<uint8_t>> EncodePng(const ImageRaster& raster, const Palette& palette)
{
    if (raster.Empty())
    {
        return std::nullopt;
    }
    WriteContext context;
    context.Raster = &raster;
    for (const Rgb& entry : palette)
    {
        context.Colors.push_back({entry.red, entry.green, entry.blue});
    }
    for (int y = 0; y < raster.Height(); ++y)
    {
        // libpng only reads the rows it is given for writing.
        context.Rows.push_back(const_cast<png_bytep>(raster.Row(y)));
    }
    PutBigEndian32(context.Grab, raster.leftOffset);
    PutBigEndian32(context.Grab + 4, raster.topOffset);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    if (info == nullptr)
    {
        png_destroy_write_struct(&png, nullptr);
        return std::nullopt;
    }
    if (setjmp(png_jmpbuf(png)) == 0)
    {
        EncodeInner(png, info, context);
    }
    png_destroy_write_struct(&png, &info);
    if (!context.Done)
    {
        return std::nullopt;
    }
    return std::move(context.Bytes);
}

int LoadPng(const std::filesystem::path& fileName, int scale, bool matchPalette, PictureRead& out)
{
    SetLastImageKind(ImageKindNone);
    const auto bytes = ReadFileBytes(fileName);
    if (!bytes)
    {
        platform::ShowError("Image %s\nnot found", fileName.c_str());
        return 0;
    }
    FilePicture picture;
    const PngStatus status = DecodePng(*bytes, picture);
    if (status == PngStatus::ZeroSize)
    {
        platform::ShowError("PNG_WADLoad: Bad file? Size is zero");
        return 0;
    }
    if (status != PngStatus::Ok)
    {
        platform::ShowError("Could not process Graphic %s\n\nProbably invalid format!",
                            fileName.c_str());
        return 0;
    }
    PictureOptions options = PictureOptionsFromSettings(matchPalette || !picture.Indexed, scale);
    options.FastMatch = true;
    options.TransparentIndex = Palettes().Options.TransparentIndex;
    out = ToGamePalette(picture, Palettes().GamePalette, options);
    Palettes().TranslationTable = out.Translation;
    SetLastImageKind(ImageKindPng);
    return 1;
}

int SavePng(const std::string& name, const ImageRaster& raster, const Palette* palette,
            const std::filesystem::path& fileName, bool prompt)
{
    const Palette& colors = palette != nullptr ? *palette : Palettes().GamePalette;
    return SavePictureFile("PNG", ".PNG", name, raster, fileName, prompt,
                           [&]() -> std::optional<std::vector<uint8_t>>
                           { return EncodePng(raster, colors); });
}

} // namespace kelvar::gfx
