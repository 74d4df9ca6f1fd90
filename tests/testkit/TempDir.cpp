// Temporary directories and small file helpers for tests.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/TempDir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace kelvar::testkit
{

TempDir::TempDir()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "kelvar-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
    {
        ADD_FAILURE() << "mkdtemp failed";
    }
    Root = pattern;
}

TempDir::~TempDir()
{
    std::error_code error;
    std::filesystem::permissions(Root, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, error);
    std::filesystem::remove_all(Root, error);
}

std::string FreedoomWad(const std::string& name)
{
    const std::filesystem::path path = std::filesystem::path("/usr/share/games/doom") / name;
    EXPECT_TRUE(std::filesystem::exists(path))
        << path << " is missing: run scripts/setup to install the freedoom package";
    return path.string();
}

void WriteFile(const std::filesystem::path& path, const std::string& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

} // namespace kelvar::testkit
