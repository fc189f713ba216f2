// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/exitCode.h"

struct serverCommand;

/// Does what @p command asks for: any command but serve. The program's exit code.
exitCode runOperatorCommand(const serverCommand &command);
