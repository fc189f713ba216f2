// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/colors.h"
#include "tests/crc32.h"
#include "tests/lines.h"
#include "tests/mandel.h"
#include "tests/motionBlur.h"
#include "tests/rle.h"
#include "tests/rotozoom.h"
#include "tests/shellsort.h"
#include "tests/suiteFacts.h"
#include "tests/vertex.h"
#include "tests/zlib.h"

/// Stands for a workload and the mode that its constructor takes, if it takes one.
template <typename workload> struct made {
    quint32 mode = 0;
};

/// The suite: calls @p visit for each test in the order in which they run, with how it is made and
/// what is known of it. The one list of tests; whoever only needs the facts can read them without
/// the workloads' code (tests/suiteFacts.h).
template <typename Visitor> void forEachTest(Visitor visit)
{
    visit(made<rotozoom>{2}, {"rotozoom 'dithered'", oneCore, rotozoomFacts::dithered});
    visit(made<rotozoom>{3}, {"rotozoom 'linear'", oneCore, rotozoomFacts::linear});
    visit(made<rotozoom>{4}, {"rotozoom 'linear (multicore)'", allCores, rotozoomFacts::linear});
    visit(made<rotozoom>{9}, {"rotozoom 'last pixel'", oneCore, rotozoomFacts::lastPixel});
    visit(made<rotozoom>{10},
          {"rotozoom 'last pixel (multicore)'", allCores, rotozoomFacts::lastPixel});
    visit(made<mandel>{0}, {"mandel", oneCore, mandelFacts::facts});
    visit(made<mandel>{1}, {"mandel (multicore)", allCores, mandelFacts::facts});
    visit(made<lines>{}, {"lines", oneCore, linesFacts::facts});
    visit(made<motionBlur>{0}, {"motion blur", oneCore, motionBlurFacts::facts});
    visit(made<shellsort>{}, {"shellsort", oneCore, shellsortFacts::facts});
    visit(made<rle>{}, {"rle compress/uncompress", oneCore, rleFacts::facts});
    visit(made<zlib>{}, {"zlib uncompress", oneCore, zlibFacts::facts});
    visit(made<colors>{0}, {"colors ", oneCore, colorsFacts::facts});
    visit(made<colors>{1}, {"colors  (multicore)", allCores, colorsFacts::facts});
    visit(made<crc32>{0}, {"crc32 bitwise", oneCore, crc32Facts::facts});
    visit(made<crc32>{1}, {"crc32 bitwise (multicore)", allCores, crc32Facts::facts});
    visit(made<vertex>{0}, {"vertex", oneCore, vertexFacts::facts});
    visit(made<vertex>{1}, {"vertex (multicore)", allCores, vertexFacts::facts});
    visit(made<rotozoom>{0}, {"rotozoom 'no'", oneCore, rotozoomFacts::nearest, isSingleOnly});
}
