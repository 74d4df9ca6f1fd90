// The checker's options kept in KELVAR.CHK: what is stored reads back, and the word fields
// hold 257 when on.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CheckerCommands.h"

#include "app/ShellState.h"
#include "tests/app/StatusTestKit.h"

namespace kelvar::app
{
namespace
{

class CheckerSettingsTest : public StatusFixture
{
};

TEST_F(CheckerSettingsTest, EveryOptionStoredReadsBack)
{
    check::CheckSettings settings;
    // Every switch the other way round from its default, and a shortest line past the limit.
    for (bool check::CheckSettings::*flag :
         {&check::CheckSettings::UpperTexture, &check::CheckSettings::XOffsets,
          &check::CheckSettings::SectorClosed3, &check::CheckSettings::ThingShooter,
          &check::CheckSettings::DuplicateVertices, &check::CheckSettings::ThingTypes,
          &check::CheckSettings::ShortLines, &check::CheckSettings::CheckKeys})
    {
        settings.*flag = !(settings.*flag);
    }
    settings.ShortestLine = 12;
    StoreCheckerSettings(settings);
    // The record is packed: its words are read as values, not bound to references.
    EXPECT_EQ(std::int16_t{Shell().Chk.ThingShooter}, 0);
    EXPECT_EQ(Shell().Chk.ShortestLine, check::ShortestLineLimit);
    check::CheckSettings read = CheckerSettings();
    EXPECT_EQ(read.ShortestLine, check::ShortestLineLimit);
    read.ShortestLine = settings.ShortestLine;
    EXPECT_EQ(read, settings);

    settings.SectorClosed3 = true;
    StoreCheckerSettings(settings);
    EXPECT_EQ(std::int16_t{Shell().Chk.SectorClosed3}, 257);
}

} // namespace
} // namespace kelvar::app
