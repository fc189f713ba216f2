// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// How the OpenMP runtime was last asked to share out a loop, since forget was called. The test
/// program stands between the workloads and the runtime: it has functions of the runtime's names
/// (of g++ and of clang++), which note what they are asked and hand it on.
namespace loopWatch
{

enum schedule {
    none,        ///< not asked; g++ works out static shares without the runtime
    fixed,       ///< static, one block of iterations for each thread
    fixedChunks, ///< static, in turns
    dynamic,
    other
};

struct request {
    schedule kind = none;
    long chunk = 0;
};

void forget();
request last();

} // namespace loopWatch
