// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/exitCode.h"

struct serverCommand;

/// Serves as @p command says until the process is asked to end. The program's exit code.
exitCode runServer(const serverCommand &command);
