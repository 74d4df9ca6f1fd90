// The switches of the editing options page.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/EditOptions.h"

#include <array>

namespace kelvar::map
{

std::span<const EditOptionRow> EditOptionRows()
{
    static constexpr std::array<EditOptionRow, 16> Rows = {{
        {" Line Merge (drag&&tools)", &EditOptions::LineMerge},
        {" Line Merge (paste/prefabs)", &EditOptions::LineMergePaste},
        {" Vertex Merge (drag&&tools)", &EditOptions::VertexMerge},
        {" Vertex Split (drag&&tools)", &EditOptions::VertexSplit},
        {" Vertex DEL Join LineDefs", &EditOptions::VertexDelJoin},
        {" Drag Overlap Check", &EditOptions::DragOverlapCheck},
        {" Move Sector Things", &EditOptions::MoveSectorThings},
        {" Delete Sector Things", &EditOptions::DeleteSectorThings},
        {" Drag Sector Things", &EditOptions::DragSectorThings},
        {" Sector Join (drawing)", &EditOptions::SectorJoin},
        {" Keep Extra Vertex Drawing", &EditOptions::KeepExtraVertex},
        {" Smart Draw (reqd for next 2)", &EditOptions::SmartDraw},
        {" Automatic Draw Intersections", &EditOptions::AutoDrawIntersections},
        {" New Intersection Sectors", &EditOptions::NewIntersectionSectors},
        {" Expert Mode\n(Fewer Messages)", &EditOptions::ExpertMode},
        {" Additive Select", &EditOptions::AdditiveSelect},
    }};
    return Rows;
}

} // namespace kelvar::map
