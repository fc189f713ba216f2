// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

// Plain functions that do the work of the timed runs of those workloads of which a compiler could
// take a part out of the loop: what they are measured against. They are written independently of
// the workloads, and are to stay so.
//
// A frame is width x height pixels 0xAARRGGBB, row by row.

/// A compiler takes work out of a loop that gives the same result every time. The workloads keep it
/// there by their own means; here it is kept by adding a number that is 0, which the compiler
/// cannot know, to a value in each step. Without that, a loop shows what the compiler would leave
/// of it.
enum class keeping { nothing, byUnknownZero };

/// The number: always 0.
extern int unknownZero;

/// Renders one frame of the Mandelbrot test; @p palette has 256 entries of alpha, red, green, blue.
/// The division of each iteration may be kept.
void standaloneMandel(std::uint32_t *frame, int width, int height, const std::int32_t (*palette)[4],
                      keeping kept);

/// Moves @p time on by one frame and renders the light of the four glows. The vertical part of each
/// pixel's distances may be kept.
void standaloneColors(std::uint32_t *frame, int width, int height, float &time, keeping kept);

/// Sorts pixels by the sum of red, green and blue, with halving gaps. The moved word's sum in each
/// comparison may be kept.
void standaloneShellSort(std::uint32_t *words, std::uint32_t count, keeping kept);

/// Decompresses @p packedBytes bytes, a stream and its filler, and copies the result byte by byte,
/// or as the compiler likes.
void standaloneZlib(void *unpacked, const void *packed, int packedBytes, keeping kept);
