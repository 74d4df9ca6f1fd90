// Helpers of the status file tests: a fixture with a clean shell, and reading file bytes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/ShellState.h"
#include "tests/testkit/WadFixture.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace kelvar::app
{

/// The WAD layer's fixture (temporary program directory, recording Ui) with the shell's records
/// at their defaults and no editor variables, so the defaults are the same everywhere.
class StatusFixture : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        unsetenv("VISUAL");
        unsetenv("EDITOR");
        WadFixture::SetUp();
        ResetShell();
    }

    /// A file of the program directory, whole.
    std::string Bytes(const std::string& name) const
    {
        return testkit::ReadFile(Dir.Path() / name);
    }
};

/// A little-endian integer of a file image: one byte unsigned, two or four bytes signed.
inline long IntAt(const std::string& bytes, std::size_t offset, std::size_t width)
{
    if (width == 1)
    {
        return static_cast<unsigned char>(bytes.at(offset));
    }
    if (width == 2)
    {
        std::int16_t value = 0;
        std::memcpy(&value, bytes.data() + offset, 2);
        return value;
    }
    std::int32_t value = 0;
    std::memcpy(&value, bytes.data() + offset, 4);
    return value;
}

/// The text of a fixed field of a file image, up to its first zero byte.
inline std::string TextAt(const std::string& bytes, std::size_t offset, std::size_t width)
{
    const std::string field = bytes.substr(offset, width);
    return field.substr(0, field.find('\0'));
}

} // namespace kelvar::app
