// kelvarmus: converts a MIDI file to a MUS lump file. See sound/MidiToMus.h.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/MidiToMus.h"

#include <cstdio>
#include <string>
#include <vector>

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    std::string message;
    const int code = kelvar::sound::RunKelvarMus(arguments, message);
    if (!message.empty())
    {
        std::fprintf(stderr, "%s\n", message.c_str());
    }
    return code;
}
