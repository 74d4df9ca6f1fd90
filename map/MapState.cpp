// The one instance of the map model's state; kind names and texture names.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/MapState.h"

#include "map/Selection.h"

#include <algorithm>

namespace kelvar::map
{

MapState& Map()
{
    static MapState state;
    return state;
}

void ResetMap()
{
    // The selection gives its count back first, so the counters start from zero.
    ObjectListClear(Map().Select.Selection);
    Map() = MapState{};
    BoxThingFilter() = nullptr;
}

const char* KindName(int kind)
{
    static constexpr const char* Names[] = {"Thing",   "LineDef", "SideDef", "Vertex", "Segment",
                                            "SSector", "Node",    "Sector",  "Reject", "Blockmap"};
    return kind >= KindThing && kind <= KindBlockmap ? Names[kind - KindThing] : "<?unknown?>";
}

TextureName TextureName::From(std::string_view text)
{
    TextureName name;
    std::copy_n(text.begin(), std::min<std::size_t>(text.size(), 8), name.Chars.begin());
    return name;
}

std::string TextureName::Text() const
{
    return std::string(Chars.begin(), std::find(Chars.begin(), Chars.end(), '\0'));
}

} // namespace kelvar::map
