// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/suite.h"

#include "tests/colors.h"
#include "tests/crc32.h"
#include "tests/lines.h"
#include "tests/mandel.h"
#include "tests/motionBlur.h"
#include "tests/rle.h"
#include "tests/rotozoom.h"
#include "tests/shellsort.h"
#include "tests/vertex.h"
#include "tests/zlib.h"

suite makeSuite(printHook *printTarget)
{
    suite tests;
    for (const quint32 mode : {2U, 3U, 4U, 9U, 10U})
        tests.push_back(std::make_unique<rotozoom>(printTarget, mode));
    tests.push_back(std::make_unique<mandel>(0U));
    tests.push_back(std::make_unique<mandel>(1U));
    tests.push_back(std::make_unique<lines>());
    tests.push_back(std::make_unique<motionBlur>(0U));
    tests.push_back(std::make_unique<shellsort>());
    tests.push_back(std::make_unique<rle>());
    tests.push_back(std::make_unique<zlib>());
    tests.push_back(std::make_unique<colors>(0U));
    tests.push_back(std::make_unique<colors>(1U));
    tests.push_back(std::make_unique<crc32>(0U));
    tests.push_back(std::make_unique<crc32>(1U));
    tests.push_back(std::make_unique<vertex>(0U));
    tests.push_back(std::make_unique<vertex>(1U));
    tests.push_back(std::make_unique<rotozoom>(printTarget, 0U));
    tests.back()->setSingleOnly(true);
    return tests;
}
