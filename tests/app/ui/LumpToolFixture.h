// The fixture of the lump tools' window tests: a tool opened from F7 with an action run on its
// window, Alt and a button's letter, and the rows of a list and of a WAD written.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/LumpCommands.h"
#include "lumps/TargetList.h"
#include "tests/app/ui/MainWindowFixture.h"
#include "tests/app/ui/WhenUp.h"

#include <QDialog>
#include <QStringList>
#include <QTreeWidget>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace kelvar::app
{

class LumpToolTest : public MainWindowTest
{
protected:
    // F7, then the entry of `tool` in the menu, with `act` run on the window once it is up and
    // has the keys; the window is closed after it when still open.
    template <typename Dialog>
    void OpenLumpTool(LumpTool tool, const std::function<void(Dialog&)>& act)
    {
        bool ran = false;
        testkit::WhenModal(
            [&](QWidget* widget)
            {
                auto* dialog = dynamic_cast<Dialog*>(widget);
                ASSERT_NE(dialog, nullptr);
                // The window takes the keys, as it does on the screen.
                dialog->activateWindow();
                ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
                act(*dialog);
                ran = true;
                if (dialog->isVisible())
                {
                    dialog->done(QDialog::Rejected);
                }
            });
        Ui.AnswerList(static_cast<int>(tool));
        QTest::keyClick(Map(), Qt::Key_F7);
        EXPECT_TRUE(ran);
    }

    // Alt and a button's letter: the button clicks itself a moment later, as on the screen.
    static void PressAlt(QWidget& window, Qt::Key key)
    {
        QTest::keyClick(&window, key, Qt::AltModifier);
        QTest::qWait(150);
    }

    // The texts of one column of a list's rows.
    static QStringList Column(const QTreeWidget* list, int column)
    {
        QStringList texts;
        for (int i = 0; i < list->topLevelItemCount(); ++i)
        {
            texts << list->topLevelItem(i)->text(column);
        }
        return texts;
    }

    // The names of a WAD's entries, in the order of its directory.
    static std::vector<std::string> Names(const std::filesystem::path& file)
    {
        std::string magic;
        std::vector<lumps::TargetEntry> entries;
        EXPECT_EQ(lumps::ReadWadEntries(file, magic, entries), lumps::WadRead::Read);
        std::vector<std::string> names;
        for (const lumps::TargetEntry& entry : entries)
        {
            names.push_back(entry.Name.Text());
        }
        return names;
    }
};

} // namespace kelvar::app
