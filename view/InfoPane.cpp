// The info pane texts of Things, LineDefs, Vertexes and Sectors, and the status bar fields.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/InfoPane.h"

#include "game/TypeLookup.h"
#include "game/TypeRows.h"
#include "map/GameCodes.h"
#include "map/Selection.h"
#include "platform/Format.h"
#include "view/HitTest.h"

#include <cmath>
#include <numbers>
#include <optional>

namespace kelvar::view
{
namespace
{

using platform::Format;

struct FlagText
{
    std::uint16_t Bit;
    const char* Text;
};

// The Thing flags as the pane writes them, one text per set bit, in bit order.
constexpr FlagText DoomThingFlags[] = {
    {1, "E-"}, {2, "M-"}, {4, "H-"}, {8, "Deaf "}, {0x10, "Net "}, {0x20, "nDM"}, {0x40, "nCO"},
};
constexpr FlagText HexenThingFlags[] = {
    {1, "E-"},   {2, "M-"},   {4, "H-"},    {8, "Df-"},   {0x10, "Do-"}, {0x20, "f"},
    {0x40, "c"}, {0x80, "m"}, {0x100, "S"}, {0x200, "C"}, {0x400, "D"},
};
// The LineDef flags by their letters, highest bit first.
constexpr FlagText LineFlags[] = {
    {0x200, "R-"}, {0x100, "A"}, {0x80, "V"}, {0x40, "B"}, {0x20, "S"},
    {0x10, "L"},   {8, "U"},     {4, "2"},    {2, "M"},    {1, "I"},
};

template <std::size_t N> std::string FlagLetters(const FlagText (&rows)[N], unsigned flags)
{
    std::string text;
    for (const FlagText& row : rows)
    {
        if ((flags & row.Bit) != 0)
        {
            text += row.Text;
        }
    }
    return text;
}

// The compass word of a Thing's angle; angles between the eight directions have none.
const char* AngleWord(unsigned angle)
{
    constexpr const char* Words[] = {"E", "NE", "N", "NW", "W", "SW", "S", "SE"};
    return angle % 45 == 0 ? Words[(angle / 45) % 8] : "";
}

const map::Sector* SectorOfSide(const map::LevelData& level, std::uint32_t side)
{
    if (side == map::NoSideDef || side >= level.SideDefs.size())
    {
        return nullptr;
    }
    const std::uint32_t sector = level.SideDefs[side].Sector;
    return sector < level.Sectors.size() ? &level.Sectors[sector] : nullptr;
}

int FirstSectorTagged(const map::LevelData& level, std::uint16_t tag)
{
    for (std::size_t i = 0; i < level.Sectors.size(); ++i)
    {
        if (level.Sectors[i].Tag == tag)
        {
            return static_cast<int>(i);
        }
    }
    return -1;
}

int FirstLineTagged(const map::LevelData& level, std::uint16_t tag, int except)
{
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        if (level.LineDefs[i].Tag == tag && static_cast<int>(i) != except)
        {
            return static_cast<int>(i);
        }
    }
    return -1;
}

const game::LineTypeRow& LineRow(const map::LineDef& line)
{
    // A Hexen key door's key is its fourth argument.
    return game::LookupLineType(static_cast<std::uint16_t>(line.Type), line.Args[2]);
}

std::string LineName(const map::LineDef& line)
{
    return std::string(game::Text(LineRow(line).Name));
}

std::string LineShortName(const map::LineDef& line)
{
    return std::string(game::Text(LineRow(line).ShortName));
}

// What a LineDef's tag points at: the first Sector (or other LineDef) that carries it.
std::string LineTagLine(const map::LevelData& level, int index)
{
    const map::LineDef& line = level.LineDefs[static_cast<std::size_t>(index)];
    const std::uint16_t tagType = LineRow(line).TagType;
    const std::uint16_t tag = line.Tag;
    if ((tagType & game::TagSector) != 0)
    {
        if (tag == 0)
        {
            return "No Sector Tag";
        }
        const int sector = FirstSectorTagged(level, tag);
        if (sector < 0)
        {
            return Format("Tag : %hd (missing)", tag);
        }
        const std::string name(
            game::SectorTypeShortName(level.Sectors[static_cast<std::size_t>(sector)].Type));
        return Format("Tag :%3hd (%3d %-.16s)", tag, sector, name.c_str());
    }
    if ((tagType & (game::TagLine | game::TagLineId)) != 0)
    {
        if (tag == 0)
        {
            return "No LineDef Tag";
        }
        const int other = FirstLineTagged(level, tag, index);
        if (other < 0)
        {
            return Format("Tag : %hd (missing)", tag);
        }
        const std::string name = LineShortName(level.LineDefs[static_cast<std::size_t>(other)]);
        return Format("Tag :%3hd (%3d %s)", tag, other, name.c_str());
    }
    return Format("Tag %hd n/a", tag);
}

bool IsSky(const map::TextureName& flat)
{
    // The sky is known by the first five bytes, as the editing code compares it.
    return std::equal(flat.Chars.begin(), flat.Chars.begin() + 5, "F_SKY");
}

std::string BoxText(const map::TextureName& name, bool needed)
{
    if (!name.IsNone() && name.Chars[0] != '\0')
    {
        return name.Text();
    }
    return needed ? "missing" : "-";
}

// The lines and texture boxes of one side of a LineDef.
void AddSide(InfoPane& pane, const map::LevelData& level, std::uint32_t side, std::uint32_t other,
             int number)
{
    if (side == map::NoSideDef || side >= level.SideDefs.size())
    {
        return;
    }
    const map::SideDef& sideDef = level.SideDefs[side];
    const map::Sector* own = SectorOfSide(level, side);
    const map::Sector* back = SectorOfSide(level, other);
    pane.Lines.push_back(Format("s%3d", static_cast<int>(side)));
    pane.Lines.push_back(Format("x%-3hdy%-3hd (%4hd)", sideDef.XOffset, sideDef.YOffset,
                                static_cast<int>(static_cast<std::int16_t>(sideDef.Sector))));
    if (own != nullptr)
    {
        pane.Lines.push_back(
            Format("high%4d (%4hd)", own->CeilingHeight - own->FloorHeight, own->FloorHeight));
    }
    // A wall needs a texture where the Sector behind it leaves a step: the upper one below a
    // higher ceiling (not between two skies), the lower one above a lower floor, the normal
    // one on a one-sided line.
    const bool upper = own != nullptr && back != nullptr &&
                       own->CeilingHeight > back->CeilingHeight &&
                       !(IsSky(own->CeilingTexture) && IsSky(back->CeilingTexture));
    const bool lower = own != nullptr && back != nullptr && own->FloorHeight < back->FloorHeight;
    const bool normal = other == map::NoSideDef;
    pane.Textures.push_back({number, "upper", BoxText(sideDef.UpperTexture, upper)});
    pane.Textures.push_back({number, "normal", BoxText(sideDef.NormalTexture, normal)});
    pane.Textures.push_back({number, "lower", BoxText(sideDef.LowerTexture, lower)});
}

// What a Sector's tag means when no LineDef carries it: the tags the games act on by
// themselves, or in the Hexen format a script.
std::string UnusedSectorTag(std::uint16_t tag, int levelFormat)
{
    if (levelFormat == map::GameHexen)
    {
        return Format("LineDef Tag %hd (script?)", tag);
    }
    if (tag == 99 || tag == 999)
    {
        return Format("LineDef Tag %hd (stairs?)", tag);
    }
    if (tag == 666)
    {
        return Format("LineDef Tag %hd (lower@end)", tag);
    }
    if (tag == 667 && levelFormat <= map::GameDoom2)
    {
        return Format("LineDef Tag %hd (MAP07)", tag);
    }
    return Format("LineDef Tag %hd (missing)", tag);
}

// From a LineDef's start Vertex to its end Vertex; nothing when one of them is missing.
struct LineVector
{
    double X;
    double Y;
};

std::optional<LineVector> LineVectorOf(const map::LevelData& level, const map::LineDef& line)
{
    const std::size_t count = level.Vertexes.size();
    if (line.StartVertex >= count || line.EndVertex >= count)
    {
        return std::nullopt;
    }
    const map::Vertex& a = level.Vertexes[line.StartVertex];
    const map::Vertex& b = level.Vertexes[line.EndVertex];
    return LineVector{static_cast<double>(b.X - a.X), static_cast<double>(b.Y - a.Y)};
}

} // namespace

int LineDefLength(const map::LevelData& level, const map::LineDef& line)
{
    const std::optional<LineVector> v = LineVectorOf(level, line);
    return v ? static_cast<int>(std::sqrt(v->X * v->X + v->Y * v->Y)) : 0;
}

double LineDefAngle(const map::LevelData& level, const map::LineDef& line)
{
    const std::optional<LineVector> v = LineVectorOf(level, line);
    if (!v)
    {
        return 0.0;
    }
    const double degrees = std::atan2(v->Y, v->X) * 180.0 / std::numbers::pi;
    return degrees < 0.0 ? degrees + 360.0 : degrees;
}

InfoPane ThingInfo(const map::LevelData& level, int thing, const InfoPaneOptions& options)
{
    const map::Thing& t = level.Things[static_cast<std::size_t>(thing)];
    const bool hexen = options.LevelFormat == map::GameHexen;
    InfoPane pane;
    const std::string name(game::ThingTypeName(t.Type));
    pane.Sprite = std::string(game::Text(game::ThingRowOfType(t.Type).Sprite));
    pane.Lines.push_back(Format("T%-4hu %-40.40s", thing, name.c_str()));
    pane.Lines.push_back(options.HexTypes ? Format("Type  %04X", t.Type)
                                          : Format("Type  %5hd", t.Type));
    const std::string angle = std::to_string(t.Angle);
    if (hexen && game::ThingIsPolyStart(t.Type))
    {
        // A polyobject Thing keeps its polyobject number in the angle.
        pane.Lines.push_back(Format("PolyId  %3s", angle.c_str()));
    }
    else
    {
        // The compass word is written "%+6.6s"; the plus sign means nothing to a text.
        pane.Lines.push_back(Format("Angle   %3s", angle.c_str()) +
                             Format("%6.6s", AngleWord(t.Angle)));
    }
    if (hexen)
    {
        pane.Lines.push_back(Format("Tid    %4hd", t.Tid));
        pane.Lines.push_back(Format("Height%5hd", t.Z));
    }
    const MapViewport anywhere;
    const int sector = FindObject(level, anywhere, false, map::ModeSectors, t.X, t.Y, t.X, t.Y);
    pane.Lines.push_back(Format("Sector%5hd", sector));
    if (hexen)
    {
        const std::string special(game::Text(game::LookupLineType(t.Special, 0).Name));
        pane.Lines.push_back(Format("Spec%4hd %-22.22s", t.Special, special.c_str()));
    }
    // Positions are 16 bits in the file; the pane shows them as the file will hold them.
    pane.Lines.push_back(Format("Coord %5hd,%-5hd Flags:%04x", static_cast<std::int16_t>(t.X),
                                static_cast<std::int16_t>(t.Y), t.Flags));
    pane.Lines.push_back(hexen ? FlagLetters(HexenThingFlags, t.Flags)
                               : FlagLetters(DoomThingFlags, t.Flags));
    return pane;
}

InfoPane LineDefInfo(const map::LevelData& level, int line, const InfoPaneOptions& options)
{
    const map::LineDef& l = level.LineDefs[static_cast<std::size_t>(line)];
    InfoPane pane;
    const std::string name = LineName(l);
    pane.Lines.push_back(Format("L%-4hu %-34.34s", line, name.c_str()));
    pane.Lines.push_back(options.HexTypes ? Format("Type :%04X", l.Type)
                                          : Format("Type :%3hu", l.Type));
    const std::string letters = FlagLetters(LineFlags, l.Flags);
    pane.Lines.push_back(Format("Flags:%04x %s", l.Flags, letters.c_str()));
    pane.Lines.push_back(Format("Flags:%04x   Length=%-5d   %3.0f", l.Flags,
                                LineDefLength(level, l), LineDefAngle(level, l)));
    pane.Lines.push_back(LineTagLine(level, line));
    AddSide(pane, level, l.SideDef1, l.SideDef2, 1);
    AddSide(pane, level, l.SideDef2, l.SideDef1, 2);
    return pane;
}

std::vector<std::string> LineDefShortInfo(const map::LevelData& level, int line)
{
    const map::LineDef& l = level.LineDefs[static_cast<std::size_t>(line)];
    std::vector<std::string> lines = {
        Format("L=%-5d %3.0f", LineDefLength(level, l), LineDefAngle(level, l))};
    const bool needsTag = (LineRow(l).TagType & game::TagSector) != 0;
    if (l.Tag == 0)
    {
        if (needsTag)
        {
            lines.emplace_back("tagmiss");
        }
        return lines;
    }
    const int sector = FirstSectorTagged(level, l.Tag);
    if (sector < 0)
    {
        lines.push_back(Format("Tag%4hd (missing)", l.Tag));
        return lines;
    }
    const std::string name(
        game::SectorTypeShortName(level.Sectors[static_cast<std::size_t>(sector)].Type));
    lines.push_back(Format("Tag%4hd %3d=%-.14s", l.Tag, sector, name.c_str()));
    return lines;
}

InfoPane VertexInfo(const map::LevelData& level, int vertex)
{
    const map::Vertex& v = level.Vertexes[static_cast<std::size_t>(vertex)];
    return {{Format("Vertex %hu", vertex), Format("Coordinates %hd,%hd", v.X, v.Y)}, {}, {}};
}

InfoPane SectorInfo(const map::LevelData& level, int sector, const InfoPaneOptions& options)
{
    const map::Sector& s = level.Sectors[static_cast<std::size_t>(sector)];
    const std::string name(game::SectorTypeName(static_cast<std::int16_t>(s.Type)));
    const int height = s.CeilingHeight - s.FloorHeight;
    InfoPane pane;
    pane.Lines = {
        Format("S%-4hu %-40.40s", sector, name.c_str()),
        options.HexTypes ? Format("Type %04X     Height %-5hd", s.Type, height)
                         : Format("Type %3hu     Height %-5hd", s.Type, height),
        "Ceiling Height",
        Format("%8hd", s.CeilingHeight),
        "Floor   Height",
        Format("%8hd", s.FloorHeight),
        "Ceiling Texture",
        Format("%8s", s.CeilingTexture.Text().c_str()),
        "Floor   Texture",
        Format("%8s", s.FloorTexture.Text().c_str()),
        "Light   Level",
        Format("%8hd", s.Light),
    };
    if (s.Tag != 0)
    {
        const int line = FirstLineTagged(level, s.Tag, -1);
        if (line >= 0)
        {
            const std::string lineName = LineName(level.LineDefs[static_cast<std::size_t>(line)]);
            pane.Lines.push_back(Format("LineDef Tag %hd (%d) %s", s.Tag, line, lineName.c_str()));
        }
        else
        {
            pane.Lines.push_back(UnusedSectorTag(s.Tag, options.LevelFormat));
        }
    }
    return pane;
}

InfoPane ObjectInfo(const map::LevelData& level, int mode, int object,
                    const InfoPaneOptions& options)
{
    const bool valid = object >= 0 && object <= map::HighestObject(level, mode);
    switch (mode)
    {
    case map::ModeThings:
        return valid ? ThingInfo(level, object, options) : InfoPane{{"No Thing selected"}, {}, {}};
    case map::ModeLineDefs:
        return valid ? LineDefInfo(level, object, options)
                     : InfoPane{{"No LineDef selected"}, {}, {}};
    case map::ModeVertexes:
        return valid ? VertexInfo(level, object) : InfoPane{{"No Vertex selected"}, {}, {}};
    case map::ModeSectors:
        return valid ? SectorInfo(level, object, options)
                     : InfoPane{{"No Sector selected"}, {}, {}};
    default:
        return {};
    }
}

const char* ModeName(int mode)
{
    switch (mode)
    {
    case map::ModeThings:
        return "Things";
    case map::ModeLineDefs:
        return "LineDefs";
    case map::ModeVertexes:
        return "Vertexes";
    case map::ModeSectors:
        return "Sectors";
    default:
        return "";
    }
}

std::vector<std::string> StatusBarFields(const StatusBarValues& values)
{
    constexpr const char* Centers[] = {"Center=OFF", "Center=Cursor", "Center=Object"};
    const int center = values.Center >= 0 && values.Center <= 2 ? values.Center : 0;
    return {
        ModeName(values.Mode),
        values.SecondCopy ? "COPY" : "",
        values.Backup >= 0 ? Format("(bkp%d)", values.Backup) : "",
        Format("Scale %.2f", values.Scale),
        Format("Grid %d", values.Grid),
        Format("Speed %d", values.Speed),
        values.Snap ? "Snap=ON" : "Snap=OFF",
        values.AutoEdit ? "AutoEdit=ON" : "AutoEdit=OFF",
        values.AutoSel ? "AutoSel=ON" : "AutoSel=OFF",
        Centers[center],
        values.Edit3D ? "3DEdit=ON" : "3DEdit=OFF",
        values.Changed ? "Change=YES" : "Change=NO",
        values.NodesChanged ? "Node=YES" : "Node=NO",
    };
}

} // namespace kelvar::view
