// kelvarbsp's command line and what its option letters ask of zdbsp.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "kelvarbsp/BspOptions.h"

#include "platform/Format.h"

#include <cctype>
#include <cstring>

namespace kelvar::kelvarbsp
{
namespace
{

/// Reads a yes/no letter: `yes`, or `no`; false when it is neither.
bool Letter(char c, char yes, char no, bool& value)
{
    if (c != yes && c != no)
    {
        return false;
    }
    value = c == yes;
    return true;
}

bool ParseOptions1(const std::string& word, BspOptions& options)
{
    if (word.size() < 6 || word[0] < '1' || word[0] > '3' || word[1] != 'N')
    {
        return false;
    }
    options.NodeType = word[0] - '0';
    if (!Letter(word[2], 'I', 'N', options.IgnoreTwoSided) ||
        !Letter(word[3], 'S', 'N', options.SpecialSectorTags) ||
        !Letter(word[4], 'L', 'N', options.SpecialLineDefTags))
    {
        return false;
    }
    const std::string factor = word.substr(5);
    if (factor.size() > 4 || factor.find_first_not_of("0123456789") != std::string::npos)
    {
        return false;
    }
    options.SplitFactor = std::stoi(factor);
    return true;
}

bool ParseFlags(const std::string& word, BspOptions& options)
{
    if (word.size() != 6 || std::strchr("36x", word[3]) == nullptr)
    {
        return false;
    }
    options.GlNodes = word[3];
    return Letter(word[0], 'L', 'S', options.ShowBuild) &&
           Letter(word[1], 'Z', 'X', options.ZdoomHexen) &&
           Letter(word[2], '0', '2', options.ZeroBlockmap) &&
           Letter(word[4], 'E', 'x', options.ForceExtended) &&
           Letter(word[5], 'Y', 'x', options.SuppressExtendedMessages);
}

} // namespace

std::optional<BspCommand> ParseCommandLine(const std::vector<std::string>& arguments,
                                           std::string& reason)
{
    if (arguments.size() < 3 || arguments.size() > 6)
    {
        reason = "usage: kelvarbsp <input> <target> <level> [<options1> <options2> <flags>]";
        return std::nullopt;
    }
    BspCommand command{arguments[0], arguments[1], arguments[2], {}};
    if (arguments.size() > 3 && !ParseOptions1(arguments[3], command.Options))
    {
        reason = "the option word \"" + arguments[3] + "\" isn't of the form 1NNNN16";
        return std::nullopt;
    }
    if (arguments.size() > 4)
    {
        const std::string& split = arguments[4];
        if (split.size() != 1 || std::strchr("NAVH", split[0]) == nullptr)
        {
            reason = "the split mode \"" + split + "\" isn't one of N, A, V, H";
            return std::nullopt;
        }
        command.Options.SplitMode = split[0];
    }
    if (arguments.size() > 5 && !ParseFlags(arguments[5], command.Options))
    {
        reason = "the flags \"" + arguments[5] + "\" aren't of the form SX2xxx";
        return std::nullopt;
    }
    return command;
}

std::vector<std::string> ZdbspArguments(const BspOptions& options, const std::string& level,
                                        RejectPlan reject, const std::string& input,
                                        const std::string& output)
{
    // -q: unused SideDefs and Sectors stay, so the level keeps the editor's numbering and
    // the REJECT its size. -w: warnings go to the log.
    std::vector<std::string> arguments{"-q", "-w", "-m", level, "-o", output};
    arguments.push_back(reject == RejectPlan::ZeroFilled ? "-R" : "-r");
    if (options.ZeroBlockmap)
    {
        arguments.push_back("-b");
    }
    if (options.GlNodes != 'x')
    {
        arguments.push_back("-g");
        // zdbsp writes GL nodes in versions 2 and 5: the newest for the default, the older
        // and more widely read one for V3.
        if (options.GlNodes == '6')
        {
            arguments.push_back("-5");
        }
    }
    if (options.ForceExtended)
    {
        arguments.push_back("-X");
    }
    arguments.push_back(input);
    return arguments;
}

std::vector<std::string> OptionNotes(const BspOptions& options)
{
    std::vector<std::string> notes;
    notes.push_back(platform::Format(
        "Node type %d, split mode %c, split factor %d, ignore 2-sided %s, special sector tags "
        "%s, special LineDef tags %s: noted; zdbsp chooses its partition lines itself.",
        options.NodeType, options.SplitMode, options.SplitFactor,
        options.IgnoreTwoSided ? "on" : "off", options.SpecialSectorTags ? "on" : "off",
        options.SpecialLineDefTags ? "on" : "off"));
    notes.push_back(options.ZdoomHexen
                        ? "ZDoom - Hexen format: the layout follows the level's BEHAVIOR lump."
                        : "Doom format: the layout follows the level's BEHAVIOR lump, if any.");
    notes.push_back(options.ZeroBlockmap ? "BLOCKMAP: empty (-b)." : "BLOCKMAP: built.");
    notes.push_back(options.GlNodes == 'x'   ? "GL nodes: none."
                    : options.GlNodes == '3' ? "GL nodes: version 2 (-g), asked for as V3."
                                             : "GL nodes: version 5 (-g -5), asked for as V6.");
    if (options.ForceExtended && !options.SuppressExtendedMessages)
    {
        notes.push_back("Extended nodes forced (-X).");
    }
    return notes;
}

} // namespace kelvar::kelvarbsp
