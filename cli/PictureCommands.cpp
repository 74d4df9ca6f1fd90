// kelvar-cli picture: a picture lump or a composed texture written as PNG, BMP or PCX, and a
// picture file made a patch, sprite or flat lump in a PWAD.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/PictureCommands.h"

#include "cli/Commands.h"
#include "cli/LumpFiles.h"
#include "cli/WadCommands.h"
#include "gfx/BmpFile.h"
#include "gfx/GamePalette.h"
#include "gfx/LumpKind.h"
#include "gfx/PcxFile.h"
#include "gfx/Picture.h"
#include "gfx/PictureFit.h"
#include "gfx/PngFile.h"
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureCompose.h"
#include "wad/FindLump.h"
#include "wad/MarkerRanges.h"
#include "wad/WadState.h"

#include <algorithm>
#include <cstdio>

namespace kelvar::cli
{
namespace
{

struct Request
{
    std::vector<std::string> Positional; // the files, then the picture or texture name or file
    std::string Output;
    std::string Name;
    std::string As = "patch";
    bool Texture = false;  // export: the name is a texture even when a lump has it too
    std::string All;       // export: every picture of a marker run: sprites, patches or flats
    std::string Directory; // where --all writes
};

std::optional<Request> ParseRequest(const std::vector<std::string>& arguments)
{
    Request request;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string& word = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (word == "-o" && hasValue)
        {
            request.Output = arguments[++i];
        }
        else if (word == "--name" && hasValue)
        {
            request.Name = arguments[++i];
        }
        else if (word == "--as" && hasValue)
        {
            request.As = arguments[++i];
        }
        else if (word == "--texture")
        {
            request.Texture = true;
        }
        else if (word == "--all" && hasValue)
        {
            request.All = arguments[++i];
        }
        else if (word == "-d" && hasValue)
        {
            request.Directory = arguments[++i];
        }
        else
        {
            request.Positional.push_back(word);
        }
    }
    const bool batch = !request.All.empty() && !request.Directory.empty() && request.Output.empty();
    if (batch)
    {
        request.Positional.push_back(""); // no name: the files are all the words
    }
    if (request.Positional.size() < 2 || (request.Output.empty() && !batch))
    {
        return std::nullopt;
    }
    return request;
}

std::uint8_t HoleIndex()
{
    return static_cast<std::uint8_t>(gfx::Palettes().Options.TransparentIndex);
}

// Opens the files of the request and reads the game palette, which every picture is shown in.
int OpenWithPalette(const Request& request)
{
    const std::vector<std::string> files(request.Positional.begin(), request.Positional.end() - 1);
    const int status = OpenFiles(files);
    if (wad::Wad().Files[0].State == 0 || gfx::LoadGamePalette(0) != 1)
    {
        return ExitBadFile;
    }
    wad::BuildMarkerLists();
    return status;
}

// The picture of a lump of that name, or of the texture: a lump that is no picture, or
// --texture, leaves the name to the textures.
std::optional<gfx::ImageRaster> PictureNamed(const std::string& name, bool texture, Bytes& pngLump)
{
    const int index = texture ? -1 : wad::FindLump(wad::Wad().Files[0], Upper(name), false);
    if (index >= 0)
    {
        const Bytes bytes = wad::ReadLumpBytes(index);
        if (gfx::ClassifyLumpPrefix(bytes, static_cast<std::int64_t>(bytes.size())).Kind ==
            gfx::LumpKind::Png)
        {
            pngLump = bytes;
        }
        gfx::DecodedPicture decoded = gfx::DecodePicture(bytes, HoleIndex());
        if (decoded.Raster)
        {
            return std::move(decoded.Raster);
        }
    }
    gfx::BuildTextureCatalogue({});
    return gfx::ComposeTexture(name, {.Background = HoleIndex()});
}

// The bytes of a picture file of the output's kind, in the game palette.
std::optional<Bytes> PictureFileBytes(const gfx::ImageRaster& raster, const std::string& extension)
{
    const gfx::Palette& palette = gfx::Palettes().GamePalette;
    if (extension == ".png")
    {
        return gfx::EncodePng(raster, palette);
    }
    if (extension == ".bmp")
    {
        return gfx::EncodeBmp(raster, palette);
    }
    if (extension == ".pcx")
    {
        return gfx::EncodePcx(raster, palette);
    }
    return std::nullopt;
}

// Every picture of a marker run as DIR/NAME.png; a lump that is no picture is passed over.
int ExportAll(const Request& request)
{
    const wad::MarkerRanges& markers = wad::Wad().Markers;
    std::vector<wad::MarkerRun> runs;
    if (request.All == "sprites")
    {
        runs = {markers.S, markers.SS};
    }
    else if (request.All == "patches")
    {
        runs = {markers.P, markers.PP};
    }
    else if (request.All == "flats")
    {
        runs = {markers.F, markers.FF};
    }
    else
    {
        std::fprintf(stderr, "kelvar-cli: --all is sprites, patches or flats\n");
        return ExitUsage;
    }
    std::error_code error;
    std::filesystem::create_directories(request.Directory, error);
    int written = 0;
    for (const wad::MarkerRun& run : runs)
    {
        for (int i = run.First; run.Start >= 0 && i < run.First + run.Count; ++i)
        {
            const wad::LumpEntry& entry = wad::Master()[static_cast<std::size_t>(i)];
            const gfx::DecodedPicture decoded =
                entry.Size > 0 ? gfx::DecodePicture(wad::ReadLumpBytes(i), HoleIndex())
                               : gfx::DecodedPicture{};
            const std::optional<Bytes> png =
                decoded.Raster ? PictureFileBytes(*decoded.Raster, ".png") : std::nullopt;
            const std::filesystem::path path =
                std::filesystem::path(request.Directory) / (entry.Name.Text() + ".png");
            if (png && WriteFileBytes(path, *png))
            {
                ++written;
            }
        }
    }
    std::printf("%s: %d pictures\n", request.Directory.c_str(), written);
    return ExitOk;
}

int ExportPicture(const Request& request)
{
    if (!request.All.empty())
    {
        const int status = OpenWithPalette(request);
        return wad::Wad().Files[0].State == 0 ? status : std::max(status, ExportAll(request));
    }
    const std::string extension = ExtensionOf(request.Output);
    if (extension != ".png" && extension != ".bmp" && extension != ".pcx")
    {
        std::fprintf(stderr, "kelvar-cli: picture export writes .png, .bmp or .pcx files\n");
        return ExitUsage;
    }
    const int status = OpenWithPalette(request);
    if (status == ExitBadFile && wad::Wad().Files[0].State == 0)
    {
        return status;
    }
    const std::string& name = request.Positional.back();
    Bytes pngLump;
    const std::optional<gfx::ImageRaster> picture = PictureNamed(name, request.Texture, pngLump);
    // A PNG lump goes out as it is when a PNG is asked for.
    std::optional<Bytes> bytes =
        !pngLump.empty() && extension == ".png"
            ? std::optional<Bytes>(pngLump)
            : (picture ? PictureFileBytes(*picture, extension) : std::nullopt);
    if (!bytes)
    {
        std::fprintf(stderr, "kelvar-cli: %s is neither a picture lump nor a texture\n",
                     name.c_str());
        return ExitBadFile;
    }
    if (!WriteFileBytes(request.Output, *bytes))
    {
        return ExitBadFile;
    }
    std::printf("%s: %s\n", request.Output.c_str(), Upper(name).c_str());
    return status;
}

// A picture file on the game palette, with the offsets a PNG's grAb chunk gave; nothing after
// saying why.
std::optional<gfx::ImageRaster> ReadPictureFile(const Bytes& bytes, const std::string& file)
{
    gfx::FilePicture decoded;
    const gfx::LumpKind kind =
        gfx::ClassifyLumpPrefix(bytes, static_cast<std::int64_t>(bytes.size())).Kind;
    const bool fast = kind == gfx::LumpKind::Png;
    const bool read =
        (kind == gfx::LumpKind::Png && gfx::DecodePng(bytes, decoded) == gfx::PngStatus::Ok) ||
        (kind == gfx::LumpKind::Bmp && gfx::DecodeBmp(bytes, decoded) == gfx::BmpStatus::Ok) ||
        (kind == gfx::LumpKind::Pcx &&
         gfx::DecodePcx(bytes, decoded, nullptr) == gfx::PcxStatus::Ok);
    if (!read)
    {
        std::fprintf(stderr, "kelvar-cli: %s is no PNG, BMP or PCX picture it can read\n",
                     file.c_str());
        return std::nullopt;
    }
    gfx::PictureOptions options = gfx::PictureOptionsFromSettings(true, 1);
    options.FastMatch = fast;
    options.TransparentIndex = HoleIndex();
    gfx::ImageRaster raster =
        gfx::ToGamePalette(decoded, gfx::Palettes().GamePalette, options).Raster;
    raster.leftOffset = decoded.LeftOffset;
    raster.topOffset = decoded.TopOffset;
    return raster;
}

int ImportPicture(const Request& request)
{
    const std::optional<gfx::LumpKind> kind = PictureKindOfWord(request.As);
    if (!kind)
    {
        std::fprintf(stderr, "kelvar-cli: --as is patch, sprite or flat\n");
        return ExitUsage;
    }
    const int status = OpenWithPalette(request);
    if (status == ExitBadFile && wad::Wad().Files[0].State == 0)
    {
        return status;
    }
    const std::string& file = request.Positional.back();
    const std::optional<Bytes> bytes = ReadFileBytes(file);
    const std::optional<gfx::ImageRaster> read =
        bytes ? ReadPictureFile(*bytes, file) : std::nullopt;
    if (!read)
    {
        return ExitBadFile;
    }
    gfx::ImageRaster fitted = gfx::FitPictureToKind(*read, *kind, {});
    // Offsets the file carries stand; a file without them gets the kind's own.
    if (*kind != gfx::LumpKind::Flat && (read->leftOffset != 0 || read->topOffset != 0) &&
        fitted.Width() == read->Width() && fitted.Height() == read->Height())
    {
        fitted.leftOffset = read->leftOffset;
        fitted.topOffset = read->topOffset;
    }
    const std::string name =
        Upper((request.Name.empty() ? std::filesystem::path(file).stem().string() : request.Name)
                  .substr(0, 8));
    if (!WriteLumpPwad(request.Output, name, gfx::WriteLumpFromRaster(fitted, *kind, HoleIndex())))
    {
        return ExitBadFile;
    }
    std::printf("%s: %s, %s %dx%d\n", request.Output.c_str(), name.c_str(), request.As.c_str(),
                fitted.Width(), fitted.Height());
    return status;
}

} // namespace

std::optional<gfx::LumpKind> PictureKindOfWord(const std::string& word)
{
    if (word == "patch")
    {
        return gfx::LumpKind::Pic;
    }
    if (word == "sprite")
    {
        return gfx::LumpKind::Sprite;
    }
    if (word == "flat")
    {
        return gfx::LumpKind::Flat;
    }
    return std::nullopt;
}

int PictureCommand(const std::vector<std::string>& arguments)
{
    const std::string verb = arguments.empty() ? std::string() : arguments.front();
    const std::optional<Request> request = ParseRequest(
        std::vector<std::string>(arguments.begin() + (arguments.empty() ? 0 : 1), arguments.end()));
    if ((verb != "export" && verb != "import") || !request)
    {
        std::fprintf(stderr, "kelvar-cli: picture export IWAD [PWAD...] NAME -o FILE.png|.bmp|.pcx "
                             "[--texture]\n"
                             "kelvar-cli: picture export IWAD [PWAD...] --all "
                             "sprites|patches|flats -d DIR\n"
                             "kelvar-cli: picture import IWAD [PWAD...] FILE -o OUT.wad [--name "
                             "NAME] [--as patch|sprite|flat]\n");
        return ExitUsage;
    }
    return verb == "export" ? ExportPicture(*request) : ImportPicture(*request);
}

} // namespace kelvar::cli
