// Tests of the block arrays against plain vectors: growth, shrinking, erasing and assigning
// across block boundaries, and copies that share blocks until one of them writes.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/ObjectArray.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace kelvar::map
{
namespace
{

TEST(ObjectArray, AgreesWithAVectorThroughRandomChangesAndLeavesItsCopiesAlone)
{
    std::mt19937 random(20261125);
    ObjectArray<int> array;
    std::vector<int> plain;
    ObjectArray<int> copy;
    std::vector<int> copied;
    const auto pick = [&](std::size_t below) { return random() % std::max<std::size_t>(below, 1); };
    for (int step = 0; step < 6000; ++step)
    {
        switch (random() % 7)
        {
        case 0:
            array.push_back(step);
            plain.push_back(step);
            break;
        case 1:
        {
            const std::size_t count = pick(5000);
            array.resize(count);
            plain.resize(count);
            break;
        }
        case 2:
            if (!plain.empty())
            {
                const std::size_t at = pick(plain.size());
                array.erase(at);
                plain.erase(plain.begin() + static_cast<std::ptrdiff_t>(at));
            }
            break;
        case 3:
            if (!plain.empty())
            {
                const std::size_t at = pick(plain.size());
                array[at] = -step;
                plain[at] = -step;
            }
            break;
        case 4:
            copy = array; // shares every block
            copied = plain;
            break;
        case 5:
            if (!plain.empty())
            {
                array.pop_back();
                plain.pop_back();
            }
            break;
        default:
        {
            std::vector<int> fresh(pick(3000));
            for (int& value : fresh)
            {
                value = static_cast<int>(random() % 100);
            }
            array.Assign(fresh);
            plain = fresh;
            break;
        }
        }
        ASSERT_EQ(array.ToVector(), plain) << "step " << step;
        ASSERT_EQ(copy.ToVector(), copied) << "a copy changed with the array, step " << step;
    }
}

} // namespace
} // namespace kelvar::map
