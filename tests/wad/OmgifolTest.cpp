// The IWADs' directories as we read them agree with a second reader, omgifol.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/Commands.h"
#include "tests/testkit/WadFixture.h"
#include "wad/WadState.h"

#include <cstdio>
#include <sstream>

namespace kelvar::wad
{
namespace
{

std::vector<std::string> OmgifolDirectory(const std::string& path)
{
    return testkit::RunOmgifol("omg_directory.py", path).Lines();
}

class Omgifol : public testkit::WadFixture, public ::testing::WithParamInterface<const char*>
{
};

TEST_P(Omgifol, ReadsTheSameIwadDirectory)
{
    const std::string path = testkit::FreedoomWad(GetParam());
    const std::vector<std::string> theirs = OmgifolDirectory(path);
    ASSERT_EQ(OpenIwad(path), 1);
    const LumpDirectory& master = Master();
    // Ours ends with the spare entry the lump saver takes over; the rest is the file's.
    ASSERT_EQ(master.Size(), theirs.size() + 1);
    EXPECT_EQ(master[theirs.size()].Name.Text(), "k_e  v_r");
    for (std::size_t i = 0; i < theirs.size(); ++i)
    {
        std::ostringstream ours;
        ours << master[i].Name.Text() << ' ' << master[i].Offset << ' ' << master[i].Size;
        ASSERT_EQ(ours.str(), theirs[i]) << "entry " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Freedoom, Omgifol, ::testing::Values("freedoom1.wad", "freedoom2.wad"));

} // namespace
} // namespace kelvar::wad
