// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/suite.h"

#include <cstdio>
#include <cstdlib>

// Takes the place of the benchmark's own suite, so that a full run ends at once. Asking for it
// tells what the machine is called by then.
suite makeSuite(printHook *)
{
    const char *name = std::getenv("COMPUTERNAME");
    std::fprintf(stderr, "this machine is '%s'\n", name ? name : "");
    return {};
}
