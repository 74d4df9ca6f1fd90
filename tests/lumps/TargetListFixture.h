// The fixture of the target list tests: a WAD read as a target with its notices cleared, the
// names its rows show, and a level with GL nodes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lumps/TargetList.h"
#include "tests/testkit/WadFixture.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kelvar::lumps
{

class TargetListFixture : public testkit::WadFixture
{
protected:
    TargetList Read(const std::filesystem::path& file)
    {
        TargetList list;
        EXPECT_EQ(ReadTargetFile(file, false, list), 1);
        Ui.Clear();
        return list;
    }

    static std::vector<std::string> RowNames(const TargetList& list)
    {
        std::vector<std::string> names;
        for (const TargetRow& row : TargetRows(list))
        {
            names.push_back(list.Entries[row.First].Name.Text());
        }
        return names;
    }

    // The lumps of a Doom level with GL nodes for the level `level`, in their order.
    static std::vector<std::string> GlLevel(const std::string& level)
    {
        return {"THINGS",      "LINEDEFS", "SIDEDEFS", "VERTEXES", "SEGS",
                "SSECTORS",    "NODES",    "SECTORS",  "REJECT",   "BLOCKMAP",
                "GL_" + level, "GL_VERT",  "GL_SEGS",  "GL_SSECT", "GL_NODES"};
    }
};

} // namespace kelvar::lumps
