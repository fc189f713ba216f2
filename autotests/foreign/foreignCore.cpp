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
    if (runner.getResults().size() < 2)
        return 2;
    runner.loadUserData();
    // Nobody has chosen a word here, so this machine has that of the system it was built for.
#if defined(Q_OS_ANDROID)
    const QString word = QStringLiteral("android");
#elif defined(Q_OS_LINUX)
    const QString word = QStringLiteral("linux");
#else
    const QString word = QStringLiteral("windows");
#endif
    return runner.getResults().back().getOs() == word ? 0 : 3;
}
