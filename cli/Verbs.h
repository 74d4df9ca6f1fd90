// The verbs of kelvar-cli that register themselves: each file of commands declares its verbs
// with a KELVAR_CLI_VERB line, and the command line finds them here.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::cli
{

/// A verb: its word, the function that runs it on the words after it (returning the exit
/// status), and its lines of the usage text.
struct Verb
{
    const char* Word;
    int (*Run)(const std::vector<std::string>& arguments);
    const char* Usage;
};

/// The registered verbs, in the order of their words.
std::vector<Verb> RegisteredVerbs();

/// The verb of `word`; null when none is registered.
const Verb* FindVerb(const std::string& word);

/// Registers a verb at start-up; KELVAR_CLI_VERB makes one.
struct VerbRegistration
{
    explicit VerbRegistration(const Verb& verb);
};

} // namespace kelvar::cli

/// Registers `word` (a string literal) to run `function` with the usage text `usage`.
#define KELVAR_CLI_VERB(name, word, function, usage)                                               \
    static const ::kelvar::cli::VerbRegistration KelvarVerb_##name({word, function, usage})
