// ImageRaster: the one picture type of Kelvar, 8-bit palette indexes with rows padded to 4 bytes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelvar::gfx
{

// One palette entry as the game stores it: red, green, blue.
struct Rgb
{
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    friend bool operator==(const Rgb&, const Rgb&) = default;
};

// A 256-colour palette in the game's order.
using Palette = std::array<Rgb, 256>;

// The index used for holes in a patch unless the settings name another.
inline constexpr uint8_t DefaultTransparentIndex = 251;

// Every reader makes one of these and every writer takes one. The top row comes first; each
// row holds `width` palette indexes followed by padding up to `pitch`. The offsets are a
// patch's left and top offsets (0 for formats without them).
class ImageRaster
{
public:
    ImageRaster() = default;
    // A raster of the given size, every pixel (padding included) set to `fill`.
    ImageRaster(int width, int height, uint8_t fill = 0);

    static int PitchFor(int width) { return (width + 3) & ~3; }

    int Width() const { return width_; }
    int Height() const { return height_; }
    int Pitch() const { return pitch_; }
    bool Empty() const { return width_ == 0 || height_ == 0; }

    uint8_t At(int x, int y) const { return pixels_[Offset(x, y)]; }
    void Set(int x, int y, uint8_t index) { pixels_[Offset(x, y)] = index; }
    uint8_t* Row(int y)
    {
        return pixels_.data() + static_cast<size_t>(y) * static_cast<size_t>(pitch_);
    }
    const uint8_t* Row(int y) const
    {
        return pixels_.data() + static_cast<size_t>(y) * static_cast<size_t>(pitch_);
    }
    // All rows with their padding: pitch * height bytes.
    const std::vector<uint8_t>& Bytes() const { return pixels_; }

    int16_t leftOffset = 0;
    int16_t topOffset = 0;

    // Same size, offsets and visible pixels; the padding is not compared.
    friend bool operator==(const ImageRaster& a, const ImageRaster& b);

private:
    size_t Offset(int x, int y) const
    {
        return static_cast<size_t>(y) * static_cast<size_t>(pitch_) + static_cast<size_t>(x);
    }

    int width_ = 0;
    int height_ = 0;
    int pitch_ = 0;
    std::vector<uint8_t> pixels_;
};

} // namespace kelvar::gfx
