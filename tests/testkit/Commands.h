// Running programs from tests: a shell command with its output, kelvar-cli, and the omgifol
// scripts that read what Kelvar writes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kelvar::testkit
{

/// What a command printed and how it ended.
struct CommandOutput
{
    int Status = -1; // the exit status; -1 when it didn't start or ended by a signal
    std::string Text;

    /// The text cut into lines, without their line ends.
    std::vector<std::string> Lines() const;
};

/// Runs `command` through the shell and captures its standard output.
CommandOutput RunCommand(const std::string& command);

/// Runs kelvar-cli with `arguments`, its settings in `config`, standard error merged into the
/// output.
CommandOutput RunCli(const std::string& arguments, const std::filesystem::path& config);

/// Runs one of the omgifol scripts of tests/wad (Debian's python3-omg, which only Debian's own
/// python sees) on `wad`, standard error merged. Fails the test when the script fails.
CommandOutput RunOmgifol(const std::string& script, const std::string& wad);

} // namespace kelvar::testkit
