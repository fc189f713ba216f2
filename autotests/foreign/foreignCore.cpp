// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/benchBase.h"
#include "tests/mandel.h"

#include <omp.h>

#ifndef _OPENMP
#error "the OpenMP flags did not arrive"
#endif

int main()
{
    int threads = 0;
#pragma omp parallel
#pragma omp single
    threads = omp_get_num_threads();

    mandel test(1);
    if (threads != omp_get_max_threads() || !test.setup(32, 32))
        return 1;
    test.preRun();
    test.run();
    benchBase runner(nullptr, nullptr, nullptr);
    runner.loadReferenceData(benchBase::builtInReference);
    return runner.getResults().size() > 1 ? 0 : 2;
}
