// How test failures print the level's records.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/MapPrinters.h"

namespace kelvar::map
{

void PrintTo(const TextureName& name, std::ostream* out)
{
    *out << '"' << name.Text() << '"';
}

void PrintTo(const Thing& thing, std::ostream* out)
{
    *out << "Thing{" << thing.X << ',' << thing.Y << " angle " << thing.Angle << " type "
         << thing.Type << " flags " << thing.Flags << " z " << thing.Z << " tid " << thing.Tid
         << " special " << int{thing.Special} << '}';
}

void PrintTo(const LineDef& line, std::ostream* out)
{
    *out << "LineDef{" << line.StartVertex << "->" << line.EndVertex << " flags " << line.Flags
         << " type " << line.Type << " tag " << line.Tag << " sides "
         << static_cast<std::int32_t>(line.SideDef1) << ','
         << static_cast<std::int32_t>(line.SideDef2) << '}';
}

void PrintTo(const SideDef& side, std::ostream* out)
{
    *out << "SideDef{" << side.XOffset << ',' << side.YOffset << ' ' << side.UpperTexture.Text()
         << '/' << side.NormalTexture.Text() << '/' << side.LowerTexture.Text() << " sector "
         << static_cast<std::int32_t>(side.Sector) << '}';
}

void PrintTo(const Vertex& vertex, std::ostream* out)
{
    *out << '(' << vertex.X << ',' << vertex.Y << ')';
}

void PrintTo(const Sector& sector, std::ostream* out)
{
    *out << "Sector{" << sector.FloorHeight << ',' << sector.CeilingHeight << ' '
         << sector.FloorTexture.Text() << '/' << sector.CeilingTexture.Text() << " light "
         << sector.Light << " type " << sector.Type << " tag " << sector.Tag << '}';
}

} // namespace kelvar::map
