// WadBuilder: WAD files built byte by byte for tests.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/WadBuilder.h"

#include "tests/testkit/TempDir.h"

namespace kelvar::testkit
{
namespace
{

void PutLe32(std::string& out, std::int32_t value)
{
    const auto raw = static_cast<std::uint32_t>(value);
    for (int shift = 0; shift < 32; shift += 8)
    {
        out += static_cast<char>((raw >> shift) & 0xFF);
    }
}

const std::vector<std::string> DoomLevelLumps = {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES",
                                                 "SEGS",   "SSECTORS", "NODES",    "SECTORS",
                                                 "REJECT", "BLOCKMAP"};

} // namespace

std::string LumpFiller(std::string_view name, int size)
{
    std::string data;
    while (static_cast<int>(data.size()) < size)
    {
        data += name;
        data += '.';
    }
    data.resize(static_cast<std::size_t>(size));
    return data;
}

WadBuilder::WadBuilder(std::string magic) : Magic(std::move(magic)) {}

WadBuilder& WadBuilder::Lump(std::string_view name, std::string_view data)
{
    Items.push_back({std::string(name), std::string(data), std::nullopt, 0});
    return *this;
}

WadBuilder& WadBuilder::Marker(std::string_view name)
{
    return Lump(name, "");
}

WadBuilder& WadBuilder::Level(std::string_view name, int size)
{
    return LevelInOrder(name, DoomLevelLumps, size);
}

WadBuilder& WadBuilder::HexenLevel(std::string_view name, int size)
{
    std::vector<std::string> lumps = DoomLevelLumps;
    lumps.push_back("BEHAVIOR");
    return LevelInOrder(name, lumps, size);
}

WadBuilder& WadBuilder::LevelInOrder(std::string_view name, const std::vector<std::string>& lumps,
                                     int size)
{
    Marker(name);
    for (const std::string& lump : lumps)
    {
        Lump(lump, LumpFiller(std::string(name) + lump, size));
    }
    return *this;
}

WadBuilder& WadBuilder::Entry(std::int32_t offset, std::int32_t size, std::string_view name)
{
    Items.push_back({std::string(name), std::string(), offset, size});
    return *this;
}

WadBuilder& WadBuilder::HeaderCount(std::int32_t count)
{
    Count = count;
    return *this;
}

WadBuilder& WadBuilder::HeaderDirectory(std::int32_t offset)
{
    DirectoryOffset = offset;
    return *this;
}

std::int32_t WadBuilder::NextOffset() const
{
    std::int32_t offset = 12;
    for (const Item& item : Items)
    {
        offset += static_cast<std::int32_t>(item.Data.size());
    }
    return offset;
}

std::string WadBuilder::Bytes() const
{
    std::string data;
    std::string directory;
    std::int32_t offset = 12;
    for (const Item& item : Items)
    {
        PutLe32(directory, item.Offset.value_or(offset));
        PutLe32(directory, item.Offset ? item.Size : static_cast<std::int32_t>(item.Data.size()));
        std::string name = item.Name.substr(0, 8);
        name.resize(8, '\0');
        directory += name;
        data += item.Data;
        offset += static_cast<std::int32_t>(item.Data.size());
    }
    std::string out = Magic.substr(0, 4);
    PutLe32(out, Count.value_or(static_cast<std::int32_t>(Items.size())));
    PutLe32(out, DirectoryOffset.value_or(offset));
    return out + data + directory;
}

std::string WadBuilder::Write(const std::filesystem::path& path) const
{
    WriteFile(path, Bytes());
    return path.string();
}

} // namespace kelvar::testkit
