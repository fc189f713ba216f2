// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/exitCode.h"

/// The command doctor: prints what disturbs a measurement on this machine.
exitCode doctorCommand();
