// The whole-level repair commands of the File menu: pack and unpack SideDefs, pack Sectors,
// centre the map, renumber tags, and fix each side's Sector from what lies there.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Each command asks, works, and reports through platform::TheUi(); the result records say
//   what it did, for the callers that print instead of show (kelvar-cli) and for tests.
// - A command that changes the editor's level (map::Map().Level) takes one undo step before
//   its first change; PackSectors instead clears the undo history, since its Sector numbers
//   can't be traced back. A command that finds nothing to do changes nothing, takes no step
//   and leaves the change counters alone.
// - The work that decides (which SideDefs or Sectors are alike, which tags go where) is done
//   with hashing in time linear in the size of the level, never by comparing all pairs.
#pragma once

#include "map/LevelData.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kelvar::check
{

/// How a repair command ended.
enum class RepairEnd : std::uint8_t
{
    Done,      // it ran to the end (perhaps finding nothing to change)
    Declined,  // the user answered No to its question
    Cancelled, // Escape stopped it
    Refused,   // the level isn't fit for it
};

struct SideDefPackResult
{
    RepairEnd End = RepairEnd::Done;
    int Packed = 0;   // SideDefs that went into an identical one
    int OldCount = 0; // SideDefs before
    int NewCount = 0; // and after

    bool operator==(const SideDefPackResult&) const = default;
};

/// PackSideDefs: makes the SideDefs that are identical in every field one SideDef, the first
/// of them, and points the LineDefs at it; the others are removed and every later SideDef
/// renumbered. A SideDef of a LineDef whose type scrolls its texture (48 in Doom, 48 and 99
/// in Heretic, 100 to 103 in the Hexen format, 48, 142, 143 and 148 in Strife) is never
/// shared, since the scrolling belongs to its LineDef. With `ask` it asks "Continue and pack
/// all the SideDefs?" first. A level without LineDefs or SideDefs is left without a word.
/// Shows, under "Packed": "sidedefs packed  \t= %d", "old sidedef count\t= %d", "new sidedef
/// count\t= %d".
SideDefPackResult PackSideDefs(map::LevelData& level, bool ask);

struct SideDefUnpackResult
{
    RepairEnd End = RepairEnd::Done;
    int Unpacked = 0;               // copies made
    std::vector<std::string> Notes; // "LineDef %d missing side 1 set to 0" and the like
};

/// UnpackSideDefs: gives every LineDef side that shares its SideDef with an earlier side a
/// copy of its own, appended to the SideDefs; a missing front side is set to 0 and a side
/// beyond the SideDefs noted. With `ask` it asks "Continue and unpack all duplicate SideDefs?"
/// first. Progress "Checking for Duplicate SideDefs (esc)". Shows the notes and "%d SideDefs
/// UnPacked" under "UnPacked"; Escape shows "UnPacking SideDefs Cancelled!" under "UnPack",
/// and what was copied until then stays.
SideDefUnpackResult UnpackSideDefs(map::LevelData& level, bool ask);

struct SectorPackResult
{
    RepairEnd End = RepairEnd::Done;
    int Packed = 0; // Sectors that went into an identical one
    int Stairs = 0; // LineDefs of the level that build stairs

    bool operator==(const SectorPackResult&) const = default;
};

/// PackSectors: merges Sectors that are equal in every field (heights, flats, light, type and
/// tag) into the first of them: their SideDefs face that one and the others are removed. Asks
/// "!! Caution !! This step cannot be undone\n\nContinue and pack all the Sectors?", and when
/// LineDefs that build stairs exist, a second question naming their count. Progress "Checking
/// for Eligible Sectors (esc)", then "Packing Sectors (please wait)". Shows "%d Sectors
/// packed" (and "More SideDefs may now pack" when some were) under "Packed"; Escape, before
/// anything changed, shows "Packing Sectors Cancelled!". Clears the undo history of the
/// editor's level when it changed it.
SectorPackResult PackSectors(map::LevelData& level);

struct CenterResult
{
    RepairEnd End = RepairEnd::Done;
    int OffsetX = 0; // subtracted from every Vertex and Thing
    int OffsetY = 0;

    bool operator==(const CenterResult&) const = default;
};

/// CenterMap: asks "Continue and center map coordinates?", then moves the level so the middle
/// of its Vertexes' bounding box lies near (0, 0): the middle is cut down to a multiple of 64,
/// which keeps every texture's alignment, and subtracted from every Vertex and Thing. A level
/// without Vertexes, or one already centred, doesn't move.
CenterResult CenterMap(map::LevelData& level);

struct TagRenumberResult
{
    RepairEnd End = RepairEnd::Done;
    int LineDefs = 0;          // LineDefs whose tag changed
    int Sectors = 0;           // Sectors whose tag changed
    int UnmatchedLineDefs = 0; // tagged LineDefs no Sector shares the tag with
    int UnmatchedSectors = 0;  // tagged Sectors no LineDef shares the tag with
    int NegativeLineDefs = 0;  // LineDefs and Sectors whose tag is negative as a 16-bit number
    int NegativeSectors = 0;
    bool NegativeChanged = false; // the user let the negative tags be renumbered

    bool operator==(const TagRenumberResult&) const = default;
};

/// RenumberTags: gives the tags consecutive numbers from 1 in the order the LineDefs first
/// use them; every LineDef and Sector with an old tag gets its new one. Sector tags that no
/// LineDef uses are numbered after them, in Sector order, so none of them comes to share a
/// number with a LineDef's tag. Shows the warning "==  WARNING  ==\n\nBOOM tags can be
/// special\n\nHEXEN tags can be special\n\nNO check is made for any special tag..." with OK
/// and Cancel first; when negative tags exist it asks whether to renumber them too (No leaves
/// them as they are). Shows the counts under "Renumber".
TagRenumberResult RenumberTags(map::LevelData& level);

struct SectorFixResult
{
    RepairEnd End = RepairEnd::Done;
    /// "LD=%d SD1=%d was sector=%d Set to Sector=%d" (or SD2) for each side set.
    std::vector<std::string> Fixes;
};

/// AutoFixSector: for each LineDef and each side with a SideDef, finds the Sector beside the
/// middle of the side, and when it is another than the SideDef's, sets the SideDef to it. A
/// level with shared SideDefs is refused with "Automatic Sector checking can't\nbe done with
/// packed Sidedefs\n\nUnpack the sidedefs first". Progress "Fix Checking - Press Esc to
/// Cancel" with "Checking %d LineDefs (esc Cancel)"; Escape stops it, keeping the fixes made.
/// The fixes are shown in the error log's viewer under "List of Fixed LineDefs".
SectorFixResult AutoFixSector(map::LevelData& level);

} // namespace kelvar::check
