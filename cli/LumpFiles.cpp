// Files and one-lump PWADs for the lump commands of kelvar-cli.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/LumpFiles.h"

#include "cli/Commands.h"
#include "cli/WadCommands.h"
#include "platform/Messages.h"
#include "sound/WaveConversion.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/FindLump.h"
#include "wad/LevelWriter.h"
#include "wad/WadState.h"

#include <algorithm>
#include <cctype>

namespace kelvar::cli
{

namespace fs = std::filesystem;

std::string Lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string Upper(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

std::string ExtensionOf(const std::string& path)
{
    return Lower(fs::path(path).extension().string());
}

// Writes a file afresh. An old file of that name is removed first rather than truncated: ext4
// flushes a truncated and rewritten file to disk when it is closed, which would cost a batch
// of exports far more than its own work.
bool WriteFileBytes(const fs::path& path, const Bytes& bytes)
{
    std::error_code ignored;
    fs::remove(path, ignored);
    std::FILE* out = std::fopen(path.c_str(), "wb");
    if (out == nullptr)
    {
        platform::ShowError("Could not create %s", path.c_str());
        return false;
    }
    const bool written = sound::WriteRange(out, 0, bytes);
    return std::fclose(out) == 0 && written;
}

std::optional<Bytes> ReadFileBytes(const fs::path& path)
{
    std::FILE* in = std::fopen(path.c_str(), "rb");
    if (in == nullptr)
    {
        std::fprintf(stderr, "kelvar-cli: cannot read %s\n", path.c_str());
        return std::nullopt;
    }
    Bytes bytes = sound::ReadRange(in, 0, -1);
    std::fclose(in);
    return bytes;
}

Bytes FoundLump::Read() const
{
    return sound::ReadRange(Stream, Offset, Size);
}

std::optional<FoundLump> FindNamedLump(const std::string& name)
{
    const std::string upper = Upper(name);
    const int index = wad::FindLump(wad::Wad().Files[0], upper, false);
    if (index < 0)
    {
        platform::ShowError(" %s - Lump Name not found", upper.c_str());
        return std::nullopt;
    }
    const wad::LumpEntry& entry = wad::Master()[static_cast<std::size_t>(index)];
    wad::FileRec& file = wad::Wad().Files[static_cast<std::size_t>(entry.FileNumber)];
    wad::EnsureOpen(file);
    return FoundLump{upper, index, file.Stream.get(), entry.Offset, entry.Size};
}

int OpenAndFind(const std::vector<std::string>& positional, std::optional<FoundLump>& lump)
{
    const std::vector<std::string> files(positional.begin(), positional.end() - 1);
    const int status = OpenFiles(files);
    if (wad::Wad().Files[0].State == 0)
    {
        return ExitBadFile;
    }
    lump = FindNamedLump(positional.back());
    return lump ? status : ExitBadFile;
}

bool WriteLumpPwad(const fs::path& path, const std::string& name, const Bytes& data)
{
    wad::WadOutput out;
    out.Stream = wad::CheckedOpen(path, "wb", 0);
    const std::uint8_t header[wad::WadHeaderSize] = {};
    if (!out.Stream || wad::CheckedWrite(out.Stream.get(), header, wad::WadHeaderSize) != 1)
    {
        return false;
    }
    const std::int64_t start = out.Offset;
    if (!wad::WriteData(out, data.data(), static_cast<std::int64_t>(data.size())))
    {
        return false;
    }
    wad::EnterRow(out, name, start);
    if (!wad::WriteDirectoryAndHeader(out, "PWAD"))
    {
        return false;
    }
    return std::fclose(out.Stream.release()) == 0;
}

} // namespace kelvar::cli
