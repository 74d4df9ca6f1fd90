// kelvar-cli: batch access to the editor's core from the command line.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"

int main(int argc, char** argv)
{
    return kelvar::cli::Run(argc, argv);
}
