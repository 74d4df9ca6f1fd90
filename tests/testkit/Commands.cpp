// Running programs from tests.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/Commands.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>

namespace kelvar::testkit
{

std::vector<std::string> CommandOutput::Lines() const
{
    std::vector<std::string> lines;
    std::istringstream stream(Text);
    std::string line;
    while (std::getline(stream, line))
    {
        lines.push_back(line);
    }
    return lines;
}

CommandOutput RunCommand(const std::string& command)
{
    CommandOutput output;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
    {
        return output;
    }
    char buffer[4096];
    std::size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
    {
        output.Text.append(buffer, got);
    }
    const int status = pclose(pipe);
    output.Status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return output;
}

CommandOutput RunCli(const std::string& arguments, const std::filesystem::path& config)
{
    return RunCommand("XDG_CONFIG_HOME='" + config.string() + "' " + KELVAR_CLI + " " + arguments +
                      " 2>&1");
}

CommandOutput RunOmgifol(const std::string& script, const std::string& wad)
{
    const CommandOutput output = RunCommand(std::string("/usr/bin/python3 ") + KELVAR_SOURCE_DIR +
                                            "/tests/wad/" + script + " '" + wad + "' 2>&1");
    EXPECT_EQ(output.Status, 0) << script << " failed on " << wad
                                << " (is python3-omg installed? scripts/setup):\n"
                                << output.Text;
    return output;
}

} // namespace kelvar::testkit
