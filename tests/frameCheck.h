// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/digestVerdict.h"
#include "tests/knownFrames.h"

/// Sets @p test up as @p known says, runs its rounds, releases it, and compares the frame. The
/// number of OpenMP threads is put back afterwards, the C library's generator is not.
digestVerdict checkFrame(testBase &test, const knownFrame &known);

/// The same with all known frames of @p test that are at most @p mostPixels large: wrong if one is
/// wrong, right if at least one is right. Multi-core tests use what threads there are, where their
/// frames do not depend on it.
digestVerdict checkFrames(testBase &test, int mostPixels);
