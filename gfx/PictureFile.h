// Outside picture files: what the BMP, PCX and PNG decoders give, and its way to the game palette.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A decoder turns a file's bytes into a FilePicture without showing anything: palette
//   indexes with the file's own palette, or plain colours for direct-colour files.
// - ToGamePalette then makes the ImageRaster every other part of the editor uses. Indexed
//   pictures go through a translation table from the file's palette to the game palette
//   (built whole, so a pixel costs one lookup); direct colours are matched one by one.
// - The Load and Save functions are the command level: they read the palette state, show
//   the messages, and remember the kind of the last image read.
#pragma once

#include "gfx/ColorMatch.h"
#include "gfx/ImageRaster.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kelvar::gfx
{

/// The kinds of outside image file, as the readers record the last one read.
inline constexpr int ImageKindNone = 0;
inline constexpr int ImageKindPcx = 5;
inline constexpr int ImageKindBmp = 6;
inline constexpr int ImageKindPng = 7;

/// The largest side a picture file may have, and the most pixels; past these a file is
/// refused as unsupported rather than read into gigabytes.
inline constexpr int MaxPictureSide = 16384;
inline constexpr int64_t MaxPicturePixels = int64_t{64} * 1024 * 1024;

/// A picture as its file holds it, top row first, rows without padding.
struct FilePicture
{
    int Width = 0;
    int Height = 0;
    int Bits = 8;          // bits a pixel, as the file stores them
    bool Indexed = true;   // Indexes and FilePalette hold the picture; else Colors
    Palette FilePalette{}; // an indexed picture's own colours
    std::vector<uint8_t> Indexes;
    std::vector<Rgb> Colors;
    std::vector<uint8_t> Alpha; // one a pixel when the file has transparency; else empty
    int16_t LeftOffset = 0;     // from a PNG's grAb chunk
    int16_t TopOffset = 0;
};

/// How ToGamePalette brings a picture to the game palette.
struct PictureOptions
{
    bool MatchPalette = true; // translate indexes to the game palette
    int Scale = 1;            // 2 or more repeats each pixel that often both ways
    bool FastMatch = false;   // direct colours by FastMatchColor (PNG) instead of MatchColor
    int PngMatch = 50;
    int TransparentIndex = -1; // 0..255: pixels with alpha under 128 take it
    MatchMargins Margins;
};

/// A picture read for the editor.
struct PictureRead
{
    ImageRaster Raster;
    Palette FilePalette{};    // the file's palette; the game palette for direct colours
    IndexTable Translation{}; // file palette to game palette
    int Bits = 8;             // as the file stored them
};

/// The raster of a decoded picture on `gamePalette`.
PictureRead ToGamePalette(const FilePicture& picture, const Palette& gamePalette,
                          const PictureOptions& options);

/// The picture options of the palette state's settings.
PictureOptions PictureOptionsFromSettings(bool matchPalette, int scale);

/// Records the kind of the last image read (ImageKind*; ImageKindNone after a failure).
void SetLastImageKind(int kind);
int LastImageKind();

/// Results of WritePictureBytes.
inline constexpr int WriteDone = 0;
inline constexpr int WriteCreateFailed = 1;
inline constexpr int WriteFailed = 2;

/// Writes a picture file's bytes: WriteDone, WriteCreateFailed, or WriteFailed.
int WritePictureBytes(const std::filesystem::path& path, std::span<const uint8_t> bytes);

/// Results of the picture saves (SaveBmp, SavePcx, SavePng).
inline constexpr int BmpSaved = 0;
inline constexpr int BmpSaveFailed = 5000;
inline constexpr int BmpCreateFailed = 5002;

/// The save every picture file kind shares: with `prompt` the dialog "<KIND> name" proposes
/// `name` with `extension` (-1 when cancelled); `bytes` are written (nothing from the encoder is
/// a failed write); "DIB Error opening file!" or "DIB Error saving file!" on failure, and with
/// `prompt` "<KIND> %s (%d x %-d) Saved Successfully" after.
int SavePictureFile(const std::string& kind, const std::string& extension, const std::string& name,
                    const ImageRaster& raster, const std::filesystem::path& fileName, bool prompt,
                    const std::function<std::optional<std::vector<uint8_t>>()>& bytes);

/// The file dialog of a picture save: `caption` ("BMP name"...), proposing `name` with
/// `extension` in the folder last used. Nothing when cancelled.
std::optional<std::filesystem::path> ChoosePictureFile(const std::string& caption,
                                                       const std::string& name,
                                                       const std::string& extension);

} // namespace kelvar::gfx
