// Every stored input of every fuzz target, seeds and past crashes, replayed without fuzzing.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/FuzzKit.h"
#include "platform/Assert.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace kelvar::fuzz
{
namespace
{

namespace fs = std::filesystem;

const fs::path FuzzDir = fs::path(KELVAR_SOURCE_DIR) / "fuzz";

std::vector<fs::path> FilesIn(const fs::path& folder)
{
    std::vector<fs::path> files;
    if (fs::is_directory(folder))
    {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        {
            if (entry.is_regular_file() && entry.path().filename().string().front() != '.')
            {
                files.push_back(entry.path());
            }
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::uint8_t> ReadBytes(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class FuzzCorpus : public ::testing::TestWithParam<std::string_view>
{
protected:
    void SetUp() override
    {
        platform::InstallAssertHandler(
            [](const char* condition, const char* file, int line)
            { ADD_FAILURE_AT(file, line) << "internal check: " << condition; });
    }
    void TearDown() override { platform::InstallAssertHandler({}); }
};

// A seed or a crash that once broke a reader runs through its target again; a crash, an
// internal check or a sanitizer report here is the fault come back.
TEST_P(FuzzCorpus, EveryStoredInputRunsCleanly)
{
    const Target* target = FindTarget(GetParam());
    ASSERT_NE(target, nullptr);
    const std::vector<fs::path> seeds = FilesIn(FuzzDir / "corpus" / target->Name);
    EXPECT_FALSE(seeds.empty()) << "a target without seeds fuzzes blind";
    std::vector<fs::path> inputs = seeds;
    const std::vector<fs::path> crashes = FilesIn(FuzzDir / "crashes" / target->Name);
    inputs.insert(inputs.end(), crashes.begin(), crashes.end());
    for (const fs::path& input : inputs)
    {
        SCOPED_TRACE(input.string());
        const std::vector<std::uint8_t> bytes = ReadBytes(input);
        target->Run(bytes);
        // Every prefix of a short input too: truncation is the commonest damage.
        if (bytes.size() <= 64)
        {
            for (std::size_t size = 0; size < bytes.size(); ++size)
            {
                target->Run(std::span(bytes).first(size));
            }
        }
    }
}

std::vector<std::string_view> TargetNames()
{
    std::vector<std::string_view> names;
    for (const Target& target : Targets())
    {
        names.push_back(target.Name);
    }
    return names;
}

INSTANTIATE_TEST_SUITE_P(Targets, FuzzCorpus, ::testing::ValuesIn(TargetNames()),
                         [](const ::testing::TestParamInfo<std::string_view>& param)
                         { return std::string(param.param); });

// A folder of stored inputs whose name is no target would never be replayed.
TEST(FuzzCorpusFolders, NameTargets)
{
    for (const char* kind : {"corpus", "crashes"})
    {
        if (!fs::is_directory(FuzzDir / kind))
        {
            continue;
        }
        for (const fs::directory_entry& entry : fs::directory_iterator(FuzzDir / kind))
        {
            EXPECT_NE(FindTarget(entry.path().filename().string()), nullptr)
                << entry.path() << " names no fuzz target";
        }
    }
}

} // namespace
} // namespace kelvar::fuzz
