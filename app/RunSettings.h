// The external programs' settings (test launcher, node builder) between the status records and
// their state.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/StatusRecords.h"
#include "run/BuilderOptions.h"
#include "run/TestOptions.h"

namespace kelvar::app
{

/// Copies the project's Test Level fields and KELVAR.CHK's 3D viewer fields into `test`. The
/// hooks of `test` stay as they are.
void TestOptionsFromRecords(const ChkRecord& chk, const ProjectRecord& project,
                            run::TestOptions& test);

/// Copies `test`'s settings back into the records; a text longer than its field is cut.
void TestOptionsToRecords(const run::TestOptions& test, ChkRecord& chk, ProjectRecord& project);

/// Copies the node builder's settings of both records into `builder`; the program's directory
/// and the builder's own path stay as they are.
void BuilderOptionsFromRecords(const ChkRecord& chk, const ProjectRecord& project,
                               run::BuilderOptions& builder);

/// The node builder's settings of the shell's records put into run::Run().Builder, with the
/// program's directory where the builder's temporary file and log lie. Returns them.
run::BuilderOptions& PrepareBuilder();

} // namespace kelvar::app
