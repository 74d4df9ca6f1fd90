// The editing rules of the LineDef, Sector and Thing editors: one change applied to a set of
// objects, written only where it differs, with one undo step for the whole dialog.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - An editor holds the objects of one kind, the head (the first) and the level. Opening one
//   changes nothing. Each change is a function of one object: the editor applies it to a copy
//   of each object, and writes back (counting a change) only the objects whose copy differs.
//   A field the user didn't touch is therefore left as each object has it.
// - The undo step is taken at the first real change and covers everything the dialog does
//   after; a dialog that changes nothing leaves no step behind.
// - Side changes reach the SideDefs of the set's LineDefs on one side; a SideDef shared by two
//   LineDefs of the set is written once.
// - Nothing here draws or asks: the windows read the head's values and call these functions,
//   so every rule is tested without a window.
#pragma once

#include "map/LevelData.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::game
{

/// LineDef flag bits of the Doom format.
inline constexpr std::uint16_t LineImpassable = 0x001;
inline constexpr std::uint16_t LineMonsterBlock = 0x002;
inline constexpr std::uint16_t LineTwoSided = 0x004;
inline constexpr std::uint16_t LineUpperUnpegged = 0x008;
inline constexpr std::uint16_t LineLowerUnpegged = 0x010;
inline constexpr std::uint16_t LineSecret = 0x020;
inline constexpr std::uint16_t LineBlockSound = 0x040;
inline constexpr std::uint16_t LineInvisible = 0x080;
inline constexpr std::uint16_t LineAutomapped = 0x100;
inline constexpr std::uint16_t LineRepeat = 0x200; // Hexen repeatable; Boom's pass-through
/// Hexen format: the activation in bits 10 to 12, and ZDoom's further bits.
inline constexpr std::uint16_t LineActivationMask = 0x1C00;
inline constexpr int LineActivationShift = 10;
inline constexpr std::uint16_t LineMonsterActivate = 0x2000;
inline constexpr std::uint16_t LineBlockPlayers = 0x4000;
inline constexpr std::uint16_t LineBlockAll = 0x8000;

/// One row of a flag list: the bit, the editor's label and the info pane's short text.
struct FlagRow
{
    std::uint16_t Bit;
    const char* Label;
    const char* Short;
};

/// The LineDef flags the editor shows, in its order; ZDoom's in Hexen-format projects with the
/// ZDoom switch.
std::vector<FlagRow> LineDefFlagRows(bool hexenFormat, bool zdoom);

/// The activations of a Hexen-format line ("Actived When"), by value; ZDoom's seventh,
/// "Player PassThru (ZDOOM)", with the ZDoom switch.
std::vector<std::string> ActivationTexts(bool zdoom);

/// The Thing flags: the skill bits, then the modes (Doom: "Deaf", "MultiPlayer", and Boom's
/// "Not DM", "Not Coop"; Hexen: "Deaf", "Dormant", the classes and the three game modes), and
/// ZDoom's four in Hexen-format projects with the ZDoom switch.
std::vector<FlagRow> ThingFlagRows(bool hexenFormat, bool zdoom);

/// The info pane's flag text of a Thing: the short texts of its set bits, concatenated.
std::string ThingFlagText(std::uint16_t flags, bool hexenFormat);

/// The skill bits of a Thing: easy, medium, hard.
inline constexpr std::uint16_t ThingSkillBits = 0x0007;

/// The three texture places of a SideDef.
enum class SidePart : std::uint8_t
{
    Upper,
    Normal,
    Lower,
};

/// The number fields of a Sector.
enum class SectorField : std::uint8_t
{
    Floor,
    Ceiling,
    Light,
    Type,
    Tag,
};

/// The number fields of a Thing.
enum class ThingField : std::uint8_t
{
    Type,
    Angle,
    X,
    Y,
    Z,
    Tid,
    Special,
};

/// The texture of a SideDef at `part`.
const map::TextureName& SideTexture(const map::SideDef& side, SidePart part);
/// The value of a Sector's number field, and of a Thing's.
int SectorFieldValue(const map::Sector& sector, SectorField field);
int ThingFieldValue(const map::Thing& thing, ThingField field);

/// What an editor edits: the kind, the objects (head first) and the level.
class ObjectEditor
{
public:
    /// `objects` are indexes of `kind` in `level`, the head first; repeats and indexes outside
    /// the level are dropped. `beforeFirstChange` runs once, just before the first object is
    /// written (the undo step).
    ObjectEditor(map::LevelData& level, int kind, std::vector<std::int32_t> objects,
                 std::function<void()> beforeFirstChange = {});

    int Kind() const { return ObjectKind; }
    const std::vector<std::int32_t>& Objects() const { return List; }
    bool Empty() const { return List.empty(); }
    std::int32_t Head() const { return List.empty() ? -1 : List.front(); }
    /// Objects written so far (each write of an object counts once).
    int Changes() const { return Written; }
    map::LevelData& Level() { return Data; }
    const map::LevelData& Level() const { return Data; }

    /// With `on`, the changes that follow reach the head object alone ("Change ALL Angles" off);
    /// they still count toward the same undo step.
    void SetHeadOnly(bool on);

    /// "Editing 1 LineDef", "Editing %d LineDefs", "Editing Sector", "Editing %d Sectors",
    /// "Editing 1 Thing", "Editing %d Things".
    std::string Title() const;

    // --- LineDefs ------------------------------------------------------------------------
    const map::LineDef& HeadLine() const;
    /// The head's SideDef on `side` (1 front, 2 back), or nothing.
    const map::SideDef* HeadSide(int side) const;
    /// True when some LineDef of the set has a SideDef on `side`.
    bool AnySide(int side) const;

    int SetLineType(std::uint32_t type);
    /// A type chosen from the menu: the type, and in the Hexen format the row's arguments.
    int SetLineTypeWithArgs(std::uint32_t type, const std::array<std::uint8_t, 5>& args,
                            bool hexenFormat);
    int SetLineTag(std::uint16_t tag);
    /// Argument `index` (0 to 4) of a Hexen-format special; the first is the tag's low byte.
    int SetLineArg(int index, std::uint8_t value);
    int SetLineFlag(std::uint16_t bit, bool on);
    /// The Hexen activation (bits 10 to 12) to `value`.
    int SetLineActivation(int value);
    /// The whole flag word (the raw flags dialog).
    int SetLineFlags(std::uint16_t flags);

    int SetSideTexture(int side, SidePart part, map::TextureName name);
    int SetSideXOffset(int side, std::int16_t offset);
    int SetSideYOffset(int side, std::int16_t offset);
    /// The SideDefs on `side` face Sector `sector` (the editor checks it exists).
    int SetSideSector(int side, std::uint32_t sector);
    /// The head's SideDef values on `side` copied to that side of every other LineDef.
    int CloneSideDef(int side);
    /// Deletes the SideDef on `side` of every LineDef of the set that has one; the impassable
    /// and two-sided bits follow (SetSideFlags). The SideDef array is packed, the SideDefs no
    /// other LineDef uses going. Returns the LineDefs changed.
    int DeleteSide(int side);
    /// Gives a back SideDef to every LineDef without one, facing the Sector of its front, with
    /// the front's textures ("-" in the middle); the bits follow. Returns the LineDefs changed.
    int AddSide2();

    // --- Sectors -------------------------------------------------------------------------
    const map::Sector& HeadSector() const;
    int SetSectorField(SectorField field, int value);
    /// Adds `delta` to the field of each Sector ("++"), held to the field's range.
    int AddToSectorField(SectorField field, int delta);
    int SetSectorTexture(bool floor, map::TextureName name);
    /// The type of each Sector to `type`, keeping the bits of `keepMask` each Sector has (its
    /// Boom or ZDoom flags).
    int SetSectorType(std::uint16_t type, std::uint16_t keepMask);
    /// The Sector flag bits (Boom or ZDoom) of each Sector's type replaced by `flags`; a Sector
    /// whose type takes no flags stays as it is.
    int SetSectorFlags(std::uint16_t flags);
    /// The head's values copied to every other Sector of the set.
    int CloneSector();

    // --- Things --------------------------------------------------------------------------
    const map::Thing& HeadThing() const;
    int SetThingField(ThingField field, int value);
    int SetThingFlag(std::uint16_t bit, bool on);
    int SetThingFlags(std::uint16_t flags);
    int SetThingArg(int index, std::uint8_t value);
    /// A type chosen from the menu; in the Hexen format a special's arguments come with it.
    int SetThingSpecialWithArgs(std::uint8_t special, const std::array<std::uint8_t, 5>& args);

private:
    template <class Object, class Change>
    int Apply(map::ObjectArray<Object>& objects, const std::vector<std::int32_t>& indexes,
              int noteKind, Change change);
    /// The objects a change reaches: the set, or the head alone.
    const std::vector<std::int32_t>& Targets() const;
    /// The distinct SideDefs on `side` of the set's LineDefs.
    std::vector<std::int32_t> SidesOf(int side) const;
    void Written1(int kind);

    map::LevelData& Data;
    int ObjectKind;
    std::vector<std::int32_t> List;
    std::function<void()> BeforeFirst;
    std::vector<std::int32_t> HeadList;
    bool HeadOnly = false;
    bool StepTaken = false;
    int Written = 0;
};

/// Bulk flag commands of the keyboard: each object of `objects` gets `set` or-ed into its flag
/// word and `clear` taken out. The change counter goes up once for the run, when any object
/// changed. Returns the objects changed.
int ChangeFlagBits(map::LevelData& level, int kind, const std::vector<std::int32_t>& objects,
                   std::uint16_t set, std::uint16_t clear);

/// The argument labels of a Hexen special's name: the text after '+', split at '-' ("Door
/// Raise+Tag-Speed-Delay" gives "Tag", "Speed", "Delay"); at most five.
std::vector<std::string> ArgumentLabels(std::string_view name);

/// Hexen arguments typed by the user: the value, or nothing (and the message "Argument values
/// are from 0 to 255" is the caller's) when a text isn't a number from 0 to 255.
std::optional<std::uint8_t> ParseArgument(std::string_view text);

/// The arguments of type 12 the menu fills from the last ones used, kept for the session; the
/// speed and delay of a plain door until one is set.
std::array<std::uint8_t, 2>& LastDoorArguments();
inline constexpr std::array<std::uint8_t, 2> DefaultDoorArguments{16, 150};

} // namespace kelvar::game
