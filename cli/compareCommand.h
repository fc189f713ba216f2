// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/requests.h"
#include "console/exitCode.h"

/// The command compare.
exitCode compareCommand(const compareRequest &wanted);
