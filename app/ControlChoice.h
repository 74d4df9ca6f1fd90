// Choosing another tool file or texture control by hand.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace kelvar::app
{

/// Lets the user pick the file of toolbar `toolNumber` (1 to 5) in a dialog captioned
/// "Tool %d definition". An existing file is loaded into the shell's record (a refused one
/// is reported and changes nothing); a missing one is offered to be made from the record in
/// use: "!!  TOOL Definition %s does not exist  !!...". Either way KELVAR.CHK's name for the
/// toolbar becomes the chosen one. Returns 1, or 0 when cancelled, declined or refused.
[[nodiscard]] int ChooseToolFile(int toolNumber);

/// As ChooseToolFile for the project's texture control, captioned "Texture TCF Control",
/// asking "!!  Texture control %s does not exist  !!..." for a missing file.
[[nodiscard]] int ChooseTextureControl();

} // namespace kelvar::app
