// The texture name tools as the editor runs them on a PWAD the user chooses: the .CVT
// conversion into a new file, the used and unused reports, and the PWAD written again without
// what an unused run deleted.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lumps/UsageReport.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::lumps
{

/// What the tools' window holds.
struct TextureToolForm
{
    std::filesystem::path Pwad;
    std::filesystem::path Cvt;     // the conversion table
    std::filesystem::path Output;  // the converted PWAD
    bool ListReplacements = false; // List Replacements
    std::string Level;             // the used report of one level; empty: every level
    bool DeleteUnused = false;     // the unused check deletes what it lists
    bool PromptForDeletes = false; // Prompt for Deletes?
};

/// The conversion table chosen in the file dialog "Texture Conversion File" (*.CVT).
std::optional<std::filesystem::path> AskCvtFile(const std::filesystem::path& current);

/// The name proposed for the converted PWAD: the input's stem with "_CVT" beside it.
std::filesystem::path ProposedConvertOutput(const std::filesystem::path& pwad);

/// The names of the levels of a PWAD in order; none when it has none or can't be read (nothing
/// is shown).
std::vector<std::string> PwadLevelNames(const std::filesystem::path& pwad);

/// Convert: ConvertTextures of the form's files, with the editor's hold on the output released
/// meanwhile. Returns its result.
[[nodiscard]] int RunConvertTool(const TextureToolForm& form);

/// Opens the conversion table in the text editor `editor` (a command line), without waiting.
/// A table that doesn't exist yet is made first with its two section headers. Refusals: "**
/// Please select a Texture Conversion File **\n\n" when none is named, "** Failed to Create
/// File **\n\n%s" when it can't be made. Returns 1 when the editor was started, else 0.
[[nodiscard]] int EditCvtFile(const std::filesystem::path& cvt, const std::string& editor);

/// Unused: ListUnused of the form's PWAD, deleting with DeleteUnused (asking with
/// PromptForDeletes). A deletion that took anything out is kept in `pending` for
/// SaveUnusedDeletion; otherwise `pending` is emptied. Returns ListUnused's result.
[[nodiscard]] int RunUnusedTool(const TextureToolForm& form,
                                std::optional<UnusedDeletion>& pending);

/// The number of flats, textures and patches a deletion took out.
int DeletedCount(const UnusedDeletion& deletion);

/// Writes `pwad` again without what a deletion run took out, through the WAD rewrite (its
/// .BAK kept) with the editor's hold released, then "Save Status". Returns 1 written, 0 after
/// the rewrite's message.
[[nodiscard]] int SaveUnusedDeletion(const std::filesystem::path& pwad,
                                     const UnusedDeletion& deletion);

} // namespace kelvar::lumps
