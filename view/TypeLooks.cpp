// What the renderer needs of the type tables.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/TypeLooks.h"

namespace kelvar::view
{

ThingLook LookOfThing(const map::Thing& /*thing*/, int /*levelFormat*/)
{
    return ThingLook{};
}

int LineTypeColor(std::uint32_t /*type*/, std::uint16_t /*tag*/)
{
    return 0;
}

} // namespace kelvar::view
