// The settings of sound and music conversion.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/SoundState.h"

namespace kelvar::sound
{

SoundState& Sound()
{
    static SoundState state;
    return state;
}

void ResetSound()
{
    Sound() = SoundState{};
}

} // namespace kelvar::sound
