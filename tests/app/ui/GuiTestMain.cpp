// The entry of the window tests: a QApplication on the offscreen platform around GoogleTest.
// SPDX-License-Identifier: GPL-3.0-or-later
#include <QApplication>
#include <cstdlib>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
