// The base of the WAD layer's tests.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/WadFixture.h"

#include "platform/Assert.h"
#include "wad/FileTable.h"
#include "wad/GameIdentity.h"
#include "wad/WadState.h"

namespace kelvar::testkit
{

void WadFixture::SetUp()
{
    wad::ResetWad();
    wad::Wad().ProgramDir = Dir.Path();
    PreviousUi = platform::InstallUi(&Ui);
    platform::InstallAssertHandler(
        [](const char* condition, const char* file, int line)
        { ADD_FAILURE_AT(file, line) << "internal check: " << condition; });
}

void WadFixture::TearDown()
{
    wad::ResetWad();
    platform::InstallUi(PreviousUi);
    platform::InstallAssertHandler({});
}

int WadFixture::OpenIwad(const std::string& path)
{
    wad::Wad().Options.IwadPath = path;
    return wad::ScanMainIwad(path);
}

int WadFixture::OpenPwad(const std::string& path)
{
    return wad::AddOpenFile(path, true);
}

std::vector<std::string> WadFixture::MasterNames(std::size_t first, std::size_t count) const
{
    std::vector<std::string> names;
    const wad::LumpDirectory& master = wad::Master();
    for (std::size_t i = first; i < first + count && i < master.Size(); ++i)
    {
        names.push_back(master[i].Name.Text());
    }
    return names;
}

} // namespace kelvar::testkit
