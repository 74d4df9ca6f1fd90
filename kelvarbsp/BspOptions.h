// kelvarbsp's command line and what its option letters ask of zdbsp.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The line is `kelvarbsp <input> <target> <level> <options1> <options2> <flags>`, as the editor
// composes it: options1 is the node type digit, N, then I/N, S/N, L/N and the split factor
// ("1NNNN16"); options2 the split mode N, A, V or H; flags six letters: S or L (show the
// build), Z or X (ZDoom - Hexen format), 0 or 2 (an empty BLOCKMAP), 3, 6 or x (GL nodes V3,
// V6, none), E or x (extended nodes), Y or x (no messages about extended nodes).
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kelvar::kelvarbsp
{

/// The option letters, read.
struct BspOptions
{
    int NodeType = 1;
    bool IgnoreTwoSided = false;
    bool SpecialSectorTags = false;
    bool SpecialLineDefTags = false;
    int SplitFactor = 16;
    char SplitMode = 'N';
    bool ShowBuild = false;
    bool ZdoomHexen = false;
    bool ZeroBlockmap = false;
    char GlNodes = 'x'; // '3', '6' or 'x'
    bool ForceExtended = false;
    bool SuppressExtendedMessages = false;

    bool operator==(const BspOptions&) const = default;
};

/// A whole command line, read.
struct BspCommand
{
    std::string Input;
    std::string Target;
    std::string Level;
    BspOptions Options;

    bool operator==(const BspCommand&) const = default;
};

/// Reads the arguments (without the program's name). The option words may be left off and
/// then take their defaults, "1NNNN16 N SX2xxx". Nothing when a word is malformed; `reason`
/// then says which.
std::optional<BspCommand> ParseCommandLine(const std::vector<std::string>& arguments,
                                           std::string& reason);

/// What becomes of the level's REJECT.
enum class RejectPlan
{
    ZeroFilled, // zdbsp writes a table of zeros of the right size (-R)
    Empty,      // zdbsp writes an empty lump (-r); it stays so
    Copied,     // zdbsp writes an empty lump (-r); kelvarbsp puts the input's table in
};

/// zdbsp's arguments (its name left out) for building `level` of `input` into `output`.
std::vector<std::string> ZdbspArguments(const BspOptions& options, const std::string& level,
                                        RejectPlan reject, const std::string& input,
                                        const std::string& output);

/// Lines for the log saying what each option letter did.
std::vector<std::string> OptionNotes(const BspOptions& options);

} // namespace kelvar::kelvarbsp
