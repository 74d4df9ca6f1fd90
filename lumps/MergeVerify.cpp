// Verify Pnames: the patches of the target's textures checked against its PNAMES and the
// lumps that hold them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/Merge.h"
#include "lumps/MergeParts.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <fstream>
#include <system_error>
#include <unordered_set>

namespace kelvar::lumps
{
namespace
{

// The bytes of the first entry named `name`; nothing when there is none or it can't be read.
std::optional<ByteVector> FirstLump(const MergeSession& session, std::string_view name)
{
    for (const TargetEntry& entry : session.Target.Entries)
    {
        if (entry.Size > 0 && entry.Name.Is(name))
        {
            const std::filesystem::path& file =
                entry.ImportIndex < 0
                    ? session.Target.File
                    : session.Imports[static_cast<std::size_t>(entry.ImportIndex)].File;
            return ReadSpan(file, entry.FileOffset, entry.Size);
        }
    }
    return std::nullopt;
}

// The names of lumps with data: the target's, and those of the files open in the editor.
std::unordered_set<std::uint64_t> LumpsWithData(const TargetList& target)
{
    std::unordered_set<std::uint64_t> names;
    for (const TargetEntry& entry : target.Entries)
    {
        if (entry.Size > 0)
        {
            names.insert(entry.Name.Key());
        }
    }
    for (const wad::LumpEntry& entry : wad::Master().Entries())
    {
        if (entry.Size > 0)
        {
            names.insert(entry.Name.Key());
        }
    }
    return names;
}

void ShowReport(const std::vector<std::string>& lines)
{
    const std::filesystem::path path = MergeLogPath();
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    std::ofstream out(path, std::ios::trunc);
    for (const std::string& line : lines)
    {
        out << line << '\n';
    }
    out.close();
    if (out)
    {
        platform::TheUi().ShowTextFile("Verify Pnames", path);
    }
}

} // namespace

int VerifyPnames(const MergeSession& session, std::vector<std::string>* report)
{
    const std::optional<ByteVector> pnames = FirstLump(session, "PNAMES");
    if (!pnames)
    {
        platform::ShowMessageLines(platform::LinesInfo, "Verify Pnames",
                                   {"No PNAMES lump in Target File", "with a PNAMES entry"});
        return -1;
    }
    std::vector<ByteVector> textures;
    for (const char* name : {"TEXTURE1", "TEXTURE2"})
    {
        if (std::optional<ByteVector> lump = FirstLump(session, name))
        {
            textures.push_back(std::move(*lump));
        }
    }
    if (textures.empty())
    {
        platform::ShowMessageLines(
            platform::LinesInfo, "Verify Pnames",
            {"No TEXTURE lump in Target File", "with TEXTURE1 or TEXTURE2 entries"});
        return -1;
    }
    const std::int32_t count = PnamesLumpFits(*pnames) ? LumpCount(*pnames) : 0;
    const std::unordered_set<std::uint64_t> present = LumpsWithData(session.Target);
    std::vector<std::string> lines = {"== Checking Patch names used in Textures =="};
    if (wad::Master().Empty())
    {
        lines.push_back("No IWAD or PWAD with graphics is open: only the Target File is searched");
    }
    MergeBuffers buffers;
    buffers.Layout = gfx::CurrentTextureLayout();
    int wanting = 0;
    int textureCount = 0;
    std::size_t textureBytes = 0;
    for (const ByteVector& lump : textures)
    {
        const std::vector<std::string> names = TextureNames(lump, buffers.Layout);
        textureCount += static_cast<int>(names.size());
        textureBytes += lump.size();
        const gfx::TextureLump read(lump, 1, 0, buffers.Layout);
        for (int t = 0; t < read.Count(); ++t)
        {
            const std::optional<gfx::TextureRecord> record = read.Record(t);
            for (const gfx::TexturePatch& patch :
                 record ? read.Patches(*record) : std::vector<gfx::TexturePatch>())
            {
                const std::string texture = record->Name.Text();
                if (patch.Index < 0 || patch.Index >= count)
                {
                    lines.push_back(platform::Format("%-8s Invalid patch index = %hd",
                                                     texture.c_str(), patch.Index));
                    ++wanting;
                    continue;
                }
                const wad::LumpName name = wad::LumpName::FromBytes(
                    pnames->data() + 4 + 8 * static_cast<std::size_t>(patch.Index));
                if (!present.contains(name.Key()))
                {
                    lines.push_back(platform::Format("%-8s patch %-8s not found", texture.c_str(),
                                                     name.Text().c_str()));
                    ++wanting;
                }
            }
        }
    }
    lines.push_back(platform::Format("Total TEXURES= %d size= %d\nTotal PNAMES = %d size= %d\n",
                                     textureCount, static_cast<int>(textureBytes), count,
                                     static_cast<int>(pnames->size())));
    ShowReport(lines);
    if (report != nullptr)
    {
        *report = lines;
    }
    return wanting;
}

} // namespace kelvar::lumps
