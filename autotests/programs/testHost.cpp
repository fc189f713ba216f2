// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/httpDatabase.h"

// Takes the place of the build's own host, so that a test can listen on a port of its own.
QString httpDatabase::defaultHost()
{
    return qEnvironmentVariable("FENNICK_TEST_HOST");
}
