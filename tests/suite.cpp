// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/suite.h"

#include "tests/mandel.h"

suite makeSuite([[maybe_unused]] printHook *printTarget)
{
    suite tests;
    tests.push_back(std::make_unique<mandel>(0U));
    tests.push_back(std::make_unique<mandel>(1U));
    return tests;
}
