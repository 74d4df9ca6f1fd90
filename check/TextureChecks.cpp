// The texture checks of the checker: Sector heights and missing wall textures (button 4 and
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/TextureChecks.h"
