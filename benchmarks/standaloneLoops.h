// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

// Plain functions that do the work of the workloads' timed runs and nothing else: what the
// workloads are measured against, to see that the classes around the loops cost nothing.

/// Renders one frame of the Mandelbrot test; @p palette has 256 entries of alpha, red, green, blue.
void standaloneMandel(std::uint32_t *frame, int width, int height, const std::int32_t (*palette)[4],
                      bool multicore);
