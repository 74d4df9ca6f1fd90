// PNG files of raster pictures, through libpng.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/raster/RasterCanvas.h"

#include <png.h>

#include <cstdio>
#include <memory>

namespace kelvar::platform
{
namespace
{

struct FileCloser
{
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

} // namespace

bool WritePng(const std::filesystem::path& path, int width, int height,
              std::span<const std::uint32_t> pixels)
{
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "wb"));
    if (!file || width <= 0 || height <= 0 ||
        pixels.size() < static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
    {
        return false;
    }
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    if (info == nullptr)
    {
        png_destroy_write_struct(&png, nullptr);
        return false;
    }
    std::vector<png_byte> row(static_cast<std::size_t>(width) * 3);
    // libpng reports errors by a long jump back here; nothing that needs destructing is
    // created between this point and the writes.
    if (setjmp(png_jmpbuf(png)) != 0)
    {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, file.get());
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                 PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (int y = 0; y < height; ++y)
    {
        for (int x = 0; x < width; ++x)
        {
            const std::uint32_t pixel = pixels[static_cast<std::size_t>(y * width + x)];
            row[static_cast<std::size_t>(x) * 3] = static_cast<png_byte>(pixel >> 16);
            row[static_cast<std::size_t>(x) * 3 + 1] = static_cast<png_byte>(pixel >> 8);
            row[static_cast<std::size_t>(x) * 3 + 2] = static_cast<png_byte>(pixel);
        }
        png_write_row(png, row.data());
    }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return std::fflush(file.get()) == 0;
}

std::vector<std::uint32_t> ReadPng(const std::filesystem::path& path, int& width, int& height)
{
    std::vector<std::uint32_t> pixels;
    width = height = 0;
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0)
    {
        return pixels;
    }
    image.format = PNG_FORMAT_RGB;
    std::vector<png_byte> bytes(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr) == 0)
    {
        png_image_free(&image);
        return pixels;
    }
    width = static_cast<int>(image.width);
    height = static_cast<int>(image.height);
    pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (std::size_t i = 0; i < pixels.size(); ++i)
    {
        pixels[i] = (static_cast<std::uint32_t>(bytes[i * 3]) << 16) |
                    (static_cast<std::uint32_t>(bytes[i * 3 + 1]) << 8) | bytes[i * 3 + 2];
    }
    return pixels;
}

} // namespace kelvar::platform
