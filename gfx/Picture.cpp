// Pictures of any lump kind: the dispatch by LumpKind, and reading a picture lump of a file.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/Picture.h"

#include "gfx/Patch.h"
#include "gfx/RawPictures.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/WadState.h"

#include <string>

namespace kelvar::gfx
{
namespace
{

DecodedPicture Failed(LumpKind kind, PictureError error)
{
    DecodedPicture result;
    result.Kind = kind;
    result.Error = error;
    return result;
}

DecodedPicture Decoded(LumpKind kind, std::optional<ImageRaster> raster, PictureError error)
{
    if (!raster)
    {
        return Failed(kind, error);
    }
    DecodedPicture result;
    result.Kind = kind;
    result.Raster = std::move(raster);
    return result;
}

DecodedPicture DecodePatchLump(std::span<const std::uint8_t> lump, std::uint8_t fillIndex)
{
    if (!CheckPatchColumns(lump))
    {
        return Failed(LumpKind::Pic, PictureError::InvalidFormat);
    }
    const PatchHeader header = ReadPatchHeader(lump);
    ImageRaster raster(header.Width, header.Height, fillIndex);
    const PatchDecode decode = DecodePatchToRaster(lump, raster, 1, fillIndex);
    if (!decode.Complete)
    {
        return Failed(LumpKind::Pic, PictureError::InvalidFormat);
    }
    raster.leftOffset = header.LeftOffset;
    raster.topOffset = header.TopOffset;
    DecodedPicture result = Decoded(LumpKind::Pic, std::move(raster), PictureError::None);
    result.TransparentUsed = decode.TransparentUsed;
    return result;
}

// Reads `size` bytes of the file from `offset`; a read that falls short keeps what came.
std::vector<std::uint8_t> ReadSpan(wad::FileRec& file, std::int64_t offset, std::int64_t size)
{
    std::vector<std::uint8_t> bytes;
    if (file.Stream == nullptr || size <= 0 ||
        std::fseek(file.Stream.get(), static_cast<long>(offset), SEEK_SET) != 0)
    {
        return bytes;
    }
    bytes.resize(static_cast<std::size_t>(size));
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.Stream.get()));
    return bytes;
}

} // namespace

bool IsDecodedKind(LumpKind kind)
{
    switch (kind)
    {
    case LumpKind::Flat:
    case LumpKind::Pic:
    case LumpKind::FlatBig:
    case LumpKind::FlatBig158:
    case LumpKind::FlatLeg:
    case LumpKind::Imgz:
        return true;
    default:
        return false;
    }
}

DecodedPicture DecodePictureAs(std::span<const std::uint8_t> bytes, std::int64_t lumpSize,
                               LumpKind kind, std::uint8_t fillIndex)
{
    switch (kind)
    {
    case LumpKind::Pic:
        return DecodePatchLump(
            bytes.first(std::min(bytes.size(),
                                 static_cast<std::size_t>(std::max<std::int64_t>(lumpSize, 0)))),
            fillIndex);
    case LumpKind::Flat:
        return Decoded(kind, DecodeFlat(bytes, lumpSize), PictureError::None);
    case LumpKind::FlatBig:
        return Decoded(kind, DecodeRaw(bytes, 320, 200), PictureError::None);
    case LumpKind::FlatBig158:
        return Decoded(kind, DecodeRaw(bytes, 320, 158), PictureError::None);
    case LumpKind::FlatLeg:
        return Decoded(kind, DecodeFlatleg(bytes), PictureError::InvalidSize);
    case LumpKind::Imgz:
        return Decoded(kind, DecodeImgz(bytes), PictureError::InvalidSize);
    default:
        return Failed(kind, PictureError::NotAPicture);
    }
}

DecodedPicture DecodePicture(std::span<const std::uint8_t> lump, std::uint8_t fillIndex)
{
    const auto size = static_cast<std::int64_t>(lump.size());
    return DecodePictureAs(lump, size, ClassifyLumpPrefix(lump, size).Kind, fillIndex);
}

std::vector<std::uint8_t> WriteLumpFromRaster(const ImageRaster& raster, LumpKind kind,
                                              std::uint8_t transparentIndex)
{
    switch (kind)
    {
    case LumpKind::Flat:
        return EncodeRaw(raster);
    case LumpKind::FlatBig:
        return EncodeRawOfSize(raster, 64000);
    case LumpKind::FlatBig158:
        return EncodeRawOfSize(raster, 50560);
    case LumpKind::FlatLeg:
        return EncodeFlatleg(raster);
    case LumpKind::Imgz:
        return EncodeImgz(raster);
    default:
        return EncodePatch(raster, transparentIndex);
    }
}

std::int64_t PictureReadSize(LumpKind kind, std::int64_t size)
{
    switch (kind)
    {
    case LumpKind::Flat:
        return FlatReadSize(size);
    case LumpKind::FlatBig:
        return 64000;
    case LumpKind::FlatBig158:
        return 50560;
    default:
        return size;
    }
}

std::optional<ImageRaster> ReadPictureLump(std::size_t index, std::uint8_t fillIndex)
{
    const wad::LumpDirectory& master = wad::Master();
    if (index >= master.Size())
    {
        return std::nullopt;
    }
    const wad::LumpEntry& entry = master[index];
    const std::string name = entry.Name.Text();
    const EntryClass found = ClassifyDirectoryEntry(name, static_cast<int>(index));
    wad::FileRec& file = wad::Wad().Files[static_cast<std::size_t>(entry.FileNumber)];
    wad::EnsureOpen(file);
    const std::vector<std::uint8_t> bytes =
        ReadSpan(file, entry.Offset, PictureReadSize(found.Class.Kind, entry.Size));
    DecodedPicture picture = DecodePictureAs(bytes, entry.Size, found.Class.Kind, fillIndex);
    if (picture.Error == PictureError::InvalidSize)
    {
        platform::ShowError("Not enough Memory to read or invalid size %s!", name.c_str());
    }
    else if (picture.Error != PictureError::None)
    {
        platform::ShowError("Could not process Graphic %s\n\nProbably invalid format!",
                            name.c_str());
    }
    return std::move(picture.Raster);
}

} // namespace kelvar::gfx
