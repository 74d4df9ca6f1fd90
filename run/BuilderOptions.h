// The node builder's settings, as the option pages and the Save dialog leave them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

namespace kelvar::run
{

/// What steers a node builder run. The defaults give the built-in builder's option words
/// "1NNNN16 N".
struct BuilderOptions
{
    int NodeType = 1;     // "Type 1 Nodes (default)", "Type 2 Nodes", "Type 3 (min split/size)"
    int SplitMode = 0;    // "No Split", "Auto Split", "Vertical Split", "Horizontal Split"
    int SplitFactor = 16; // "Split Factor (5-100)"
    bool IgnoreTwoSided = false;           // "Ignore 2-Sided LineDefs"
    bool SpecialSectorTags = false;        // "Special Sector Tags"
    bool SpecialLineDefTags = false;       // "Special LineDef Tags"
    bool MergeVertices = false;            // " Merge Duplicate Vertices"
    bool FixGlNodes = true;                // "Fix GL nodes"
    bool ForceExtended = false;            // "Force Extended Nodes"
    bool SuppressExtendedMessages = false; // "Suppress Extended Node Messages"
    bool GlNodes = false;                  // the project's " GLnodes (as applicable)"
    bool GlNodesV3 = false;                // "Create V3 GL nodes (default is V6)"
    bool ZdoomHexenFormat = false;         // the project's " ZDOOM - HEXEN format"
    bool ZeroBlockmap = false;             // the Save dialog's "-0- BLOCKMAP"
    bool ShowBuild = false;                // " Show Node Build"
    bool SeeResults = false;               // "See Results ? [Nodes are not shown - KelvarBSP]"
    bool CustomBuilder = false;            // "Use Custom NodeBuilder"
    std::string CustomName;                // the custom builder's slot: its name,
    std::string CustomExe;                 // its program,
    std::string CustomParameters;          // its parameter text with the variables,
    std::string CustomDirectory;           // its working directory (empty: the current one)
    /// The program's directory, where ~Kelvar.WAD and KelvarBSP.LOG lie; empty: the
    /// system's default.
    std::filesystem::path ProgramDir;
    /// The built-in builder; empty: kelvarbsp beside the running program, else on PATH.
    std::filesystem::path KelvarBsp;

    bool operator==(const BuilderOptions&) const = default;
};

} // namespace kelvar::run
