// The checks every file name passes.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/FileChecks.h"

#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/LumpName.h"
#include "wad/WadState.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kelvar::wad
{
namespace
{

// The bit that marks an application's own error numbers in the Windows error set; errno
// values with no classic counterpart are shown with it, so they never pass for one.
constexpr int ForeignErrorBit = 0x20000000;

} // namespace

int WindowsErrorOf(int errnoValue)
{
    switch (errnoValue)
    {
    case 0:
        return 0;
    case ENOENT:
        return 2;
    case ENOTDIR:
        return 3;
    case EMFILE:
    case ENFILE:
        return 4;
    case EACCES:
    case EPERM:
    case ETXTBSY:
    case EBUSY:
    case EISDIR:
        return 5;
    case ENOMEM:
        return 8;
    case EROFS:
        return 19;
    case ENXIO:
    case ENODEV:
        return 21;
    case EINVAL:
        return 87;
    case ENOSPC:
        return 112;
    case ENAMETOOLONG:
    case ELOOP:
    case EILSEQ:
        return 161;
    case EEXIST:
        return 183;
    case EFBIG:
    case EOVERFLOW:
        return 223;
    case EIO:
        return 1117;
    default:
        return ForeignErrorBit | errnoValue;
    }
}

int DiagnoseOpenFailure(const std::filesystem::path& path, std::string_view mode)
{
    const char* reason = (!mode.empty() && mode[0] == 'w') ? "Unable to create" : "File not found";
    const std::string modeText(mode);

    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const int code = fd < 0 ? WindowsErrorOf(errno) : 0;
    bool regular = false;
    if (fd >= 0)
    {
        struct stat info
        {
        };
        regular = fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
        ::close(fd);
    }

    switch (code)
    {
    case 0:
        // It opens for reading, so what failed was the writing: a read-only file, or not a
        // plain file at all.
        if (!regular)
        {
            platform::ShowError(
                "  ERROR\n\n%s\n\nfile=%s\n\nFile access denied\n\nHidden or System file?", reason,
                path.c_str());
            return 1;
        }
        platform::ShowError(
            "  WARNING\n\nfile=%s (%s)\n\nFile is READ only\n\nuse ATTRIB command to reset",
            path.c_str(), modeText.c_str());
        return -1;
    case 2:
    case 3:
    case 183:
        return 0;
    case 4:
        platform::ShowError("   ERROR\n\n%s\n\n%s\n\nIncrease FILES= in CONFIG.SYS (128 min)",
                            reason, path.c_str());
        return code;
    case 5:
        platform::ShowError(
            "  ERROR\n\n%s\n\nfile=%s\n\nFile is in use, code=%d\nTry another filename\n", reason,
            path.c_str(), code);
        return code;
    case 161:
        platform::ShowError("  ERROR\n\n%s\n\nfile=%s\n\nBad Path Name", reason, path.c_str());
        return code;
    default:
        platform::ShowError(
            "  ERROR\n\n%s\n\nfile=%s\n\nFile Access Error Code=%d\nSee help file for "
            "common codes\n",
            reason, path.c_str(), code);
        return code;
    }
}

int CheckFileType(std::string& path, std::string_view expectedMagic, bool clearIfMissing, int mode,
                  const std::filesystem::path& directory)
{
    std::filesystem::path full(path);
    if (!directory.empty() && full.is_relative())
    {
        full = directory / full;
    }
    const std::string stem = UpperText(full.stem().string());
    const std::string extension = UpperText(full.extension().string());

    if (mode == 0 && (stem == "~KELVAR" || extension == ".BAK" || extension == ".BKP"))
    {
        platform::ShowError("Access to .BAK, .BKP and Temporary ~KELVAR files not allowed\n\n%s\n\n"
                            "Please copy this file to a name ending in .WAD",
                            path.c_str());
        return -1;
    }

    const StreamPtr stream = OpenStream(full, "rb");
    if (!stream)
    {
        if (DiagnoseOpenFailure(full, "rb") != 0)
        {
            return -1;
        }
        if (clearIfMissing)
        {
            platform::ShowError(" %s  not found!", path.c_str());
            path.clear();
        }
        return 0;
    }
    if (expectedMagic.empty())
    {
        return 1;
    }

    char found[5] = {};
    const std::size_t got = std::fread(found, 1, 4, stream.get());
    const std::string tag = UpperText(expectedMagic.substr(0, 4));
    const std::string magic = UpperText(std::string_view(found, got));
    const bool tailMatches =
        magic.size() == 4 && tag.size() == 4 && magic.compare(1, 3, tag, 1, 3) == 0;
    if (tailMatches && (tag[0] == '_' || magic[0] == tag[0]))
    {
        if (tag == "IWAD" && stem == "HEXDD")
        {
            // The Hexen add-on carries the IWAD magic but is no main file.
            platform::ShowMessageLines(0, "Hexen IWAD",
                                       {"for HEXEN Deathkings", "is not really an IWAD!",
                                        "Just open this as a PWAD", "Please reselect the IWAD name",
                                        "by selecting CANCEL for the next msg"});
            return -1;
        }
        return std::string_view(found, got) == "IWAD" ? 2 : 1;
    }
    if (tailMatches && stem == "CHEX")
    {
        return 1;
    }
    if (mode != 3)
    {
        const std::string expected(expectedMagic);
        platform::ShowError("%s is not %s, found %s ", path.c_str(), expected.c_str(), found);
    }
    return -1;
}

bool SamePath(const std::filesystem::path& a, const std::filesystem::path& b)
{
    std::error_code error;
    const auto normal = [&](const std::filesystem::path& p)
    { return std::filesystem::absolute(p, error).lexically_normal().string(); };
    return EqualNoCase(normal(a), normal(b));
}

int FileInUse(std::string& path, bool warn, bool clear)
{
    WadState& wad = Wad();
    int result = 0;
    int record = 0;
    if (!path.empty() && SamePath(path, wad.Options.IwadPath))
    {
        result = -1;
    }
    for (int i = 0; result == 0 && i < FileTableSize; ++i)
    {
        const FileRec& file = wad.Files[static_cast<std::size_t>(i)];
        if (file.State != 0 && !file.FileName.empty() && SamePath(path, file.FileName))
        {
            record = i;
            result = i == 0 ? -1 : i + 1;
        }
    }
    if (result != 0 && warn)
    {
        const std::string& openName = wad.Files[static_cast<std::size_t>(record)].FileName;
        platform::ShowError("File %hd\n\n%s\n\nis in use by Kelvar\nCan't write over file",
                            static_cast<short>(record),
                            (openName.empty() ? path : openName).c_str());
    }
    if (result > 0 && clear)
    {
        path.clear();
    }
    return result;
}

std::filesystem::path CompleteWadPath(const std::string& path)
{
    std::filesystem::path full(path);
    if (full.is_relative())
    {
        const WadState& wad = Wad();
        const std::filesystem::path& base =
            wad.Options.DefaultPwadDir.empty() ? wad.ProgramDir : wad.Options.DefaultPwadDir;
        full = base / full;
    }
    if (!full.has_extension())
    {
        full += ".WAD";
    }
    return full;
}

int ValidateWadPath(std::string& path)
{
    if (path.empty())
    {
        return 0;
    }
    const std::filesystem::path full = CompleteWadPath(path);
    if (full.string().size() >= MaxPathLength)
    {
        platform::ShowError("%s\nFilename is too long (max is 259)", full.c_str());
        path.clear();
        return 0;
    }
    if (full.stem().empty() || full.filename() == ".WAD")
    {
        return 0;
    }
    std::error_code error;
    return std::filesystem::is_directory(full.parent_path(), error) ? 1 : 0;
}

bool PathFitsRecord(std::string& name)
{
    if (name.size() <= MaxRecordPathLength)
    {
        return true;
    }
    platform::ShowError(" !!   %s    !!\n\nfound, but total path exceeds 127!", name.c_str());
    name.clear();
    return false;
}

} // namespace kelvar::wad
