// The verbs of kelvar-cli that register themselves.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Verbs.h"

#include <algorithm>
#include <cstring>

namespace kelvar::cli
{
namespace
{

// Made on first use, so registrations from any file's start-up find it in place.
std::vector<Verb>& Table()
{
    static std::vector<Verb> verbs;
    return verbs;
}

} // namespace

VerbRegistration::VerbRegistration(const Verb& verb)
{
    Table().push_back(verb);
}

std::vector<Verb> RegisteredVerbs()
{
    std::vector<Verb> verbs = Table();
    std::sort(verbs.begin(), verbs.end(),
              [](const Verb& a, const Verb& b) { return std::strcmp(a.Word, b.Word) < 0; });
    return verbs;
}

const Verb* FindVerb(const std::string& word)
{
    const std::vector<Verb>& verbs = Table();
    const auto found = std::find_if(verbs.begin(), verbs.end(),
                                    [&word](const Verb& verb) { return word == verb.Word; });
    return found != verbs.end() ? &*found : nullptr;
}

} // namespace kelvar::cli
