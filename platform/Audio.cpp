// The installed audio port.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Audio.h"

namespace kelvar::platform
{

namespace
{

Audio*& Installed()
{
    static Audio* installed = nullptr;
    return installed;
}

} // namespace

Audio& TheAudio()
{
    static SilentAudio silent;
    Audio* installed = Installed();
    return installed != nullptr ? *installed : silent;
}

Audio* InstallAudio(Audio* audio)
{
    Audio* previous = Installed();
    Installed() = audio;
    return previous;
}

} // namespace kelvar::platform
