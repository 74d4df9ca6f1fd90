// A temporary directory that is removed with everything in it when the test ends.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

namespace kelvar::testkit
{

/// A fresh directory under the system's temporary folder, removed on destruction.
class TempDir
{
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& Path() const { return Root; }
    /// The path of a file in the directory, as text.
    std::string File(const std::string& name) const { return (Root / name).string(); }

private:
    std::filesystem::path Root;
};

/// The path of a Freedoom IWAD ("freedoom1.wad", "freedoom2.wad"). Fails the test when it is
/// missing: the setup script installs them and a test of real data must not quietly skip.
std::string FreedoomWad(const std::string& name);

/// Writes bytes to a file, replacing it.
void WriteFile(const std::filesystem::path& path, const std::string& bytes);

/// Reads a whole file.
std::string ReadFile(const std::filesystem::path& path);

} // namespace kelvar::testkit
