// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"

#include <memory>
#include <vector>

/// Workloads in the order in which they run.
using suite = std::vector<std::unique_ptr<testBase>>;

/// The suite of the benchmark: the one list of its workloads. @p printTarget, which may be null,
/// is handed to the workloads that print.
suite makeSuite(printHook *printTarget);
