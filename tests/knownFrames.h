// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"

#include <QByteArray>

#include <vector>

/// A frame that a test of the suite must show, to the last bit, after a set-up and some rounds of
/// preRun, run and postRun.
struct knownFrame {
    const char *test; ///< the test's exact name
    int width;
    int height;
    int rounds;
    const char *digest; ///< as digestOf gives it
    /// The number of OpenMP threads, where the frame depends on it; 0 where it does not.
    int threads = 0;
};

/// The seed of the C library's generator before the set-up. The frames of tests that draw random
/// numbers are those of the GNU C library.
constexpr unsigned knownFrameSeed = 1;

/// Known frames of every test: two small ones, and the standard resolution. No frame depends on the
/// last bit of the system's mathematical functions, and none shows the output of its compressor.
const std::vector<knownFrame> &knownFrames();

/// The SHA-1 of a frame's pixels, low byte first whatever the machine's byte order, in hexadecimal.
QByteArray digestOf(const quint32 *pixels, std::size_t count);
QByteArray digestOf(const testBase &test);
