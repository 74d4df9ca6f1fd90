// The base of the WAD layer's tests: a clean state, a temporary program directory and a
// recording Ui that every message goes to.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/test/RecordingUi.h"
#include "tests/testkit/TempDir.h"
#include "tests/testkit/WadBuilder.h"

#include <gtest/gtest.h>

namespace kelvar::testkit
{

/// Resets the WAD layer before and after each test; the program directory is a temporary
/// directory; a failed internal check fails the test.
class WadFixture : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Scans `path` as the IWAD (ScanMainIwad) and returns its result.
    int OpenIwad(const std::string& path);
    /// Adds `path` to the open files and scans it as a PWAD; returns the file number or -1.
    int OpenPwad(const std::string& path);
    /// The master directory's names from `first`, `count` of them.
    std::vector<std::string> MasterNames(std::size_t first, std::size_t count) const;

    TempDir Dir;
    platform::RecordingUi Ui;

private:
    platform::Ui* PreviousUi = nullptr;
};

} // namespace kelvar::testkit
