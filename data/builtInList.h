// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"

#include <QVector>

/// The machines of the list inside the program.
QVector<benchResults> builtInMachines();
