// The whole-level repair commands of the File menu: pack and unpack SideDefs, pack Sectors,
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Repairs.h"
