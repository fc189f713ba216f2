// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

// Plain functions that do the work of the workloads' timed runs and nothing else: what the
// workloads are measured against, to see that the classes around the loops cost nothing. They are
// written independently of the workloads, and are to stay so.
//
// A frame is width x height pixels 0xAARRGGBB, row by row. With multicore, the rows (or chunks, or
// copies) are spread over all OpenMP threads.

/// A compiler takes work out of a loop that gives the same result every time. The workloads keep it
/// there by their own means; here it is kept by adding a number that is 0, which the compiler
/// cannot know, to a value in each step. Without that, a loop shows what the compiler would leave
/// of it.
enum class keeping { nothing, byUnknownZero };

/// The number: always 0.
extern int unknownZero;

/// How a pixel of the rotozoom test is made of texels.
enum class texelRule { nearest, dithered, linear, lastPixel };

/// The animation of the rotozoom test: zoom in 1/4096 texel per pixel, angle in radians.
struct rotozoomMotion {
    double zoom;
    double zoomStep;
    double angle;
    double angleStep;
};

/// Moves on by one frame and renders it. The texture is 512 x 512 texels.
void standaloneRotozoom(std::uint32_t *frame, int width, int height, const std::uint32_t *texture,
                        std::uint32_t textureWidth, rotozoomMotion &motion, texelRule rule,
                        bool multicore);

/// Renders one frame of the Mandelbrot test; @p palette has 256 entries of alpha, red, green, blue.
/// The division of each iteration may be kept.
void standaloneMandel(std::uint32_t *frame, int width, int height, const std::int32_t (*palette)[4],
                      keeping kept, bool multicore);

/// Draws the square root of @p lineCount fans of as many lines, at random.
void standaloneLines(std::uint32_t *frame, int width, int height, int lineCount);

/// The weight of the left neighbour in the motion blur test, and how it changes per run.
struct blurPhase {
    std::int32_t weight;
    std::int32_t step;
};

/// Turns the phase and smears the frame in place, in integers.
void standaloneMotionBlur(std::uint32_t *frame, int width, int height, blurPhase &phase);

/// Moves @p time on by one frame and renders the light of the four glows. The vertical part of each
/// pixel's distances may be kept.
void standaloneColors(std::uint32_t *frame, int width, int height, float &time, keeping kept,
                      bool multicore);

/// Sorts pixels by the sum of red, green and blue, with halving gaps. The moved word's sum in each
/// comparison may be kept.
void standaloneShellSort(std::uint32_t *words, std::uint32_t count, keeping kept);

/// Encodes @p count words and decodes them again, around @p marker.
void standaloneRle(std::uint32_t *unpacked, std::uint32_t *packed, const std::uint32_t *source,
                   std::size_t count, std::uint32_t marker);

/// Decompresses @p packedBytes bytes, a stream and its filler, and copies the result byte by byte,
/// or as the compiler likes.
void standaloneZlib(void *unpacked, const void *packed, int packedBytes, keeping kept);

/// The checksums of as many chunks as there are threads, each written over a word of the frame.
void standaloneCrc32(std::uint32_t *frame, int width, int height, bool multicore);

struct point4 {
    float x;
    float y;
    float z;
    float w;
};

/// What happens to every point of the vertex test; matrices as four rows.
struct pointTransform {
    point4 rotation[4];
    point4 translation;
    point4 projection[4];
};

/// Transforms @p copies copies of @p count points, each copy at its own scale.
void standaloneVertex(point4 *transformed, const point4 *points, int count, int copies,
                      const pointTransform &by, bool multicore);
