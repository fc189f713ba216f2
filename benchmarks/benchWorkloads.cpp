// SPDX-License-Identifier: GPL-3.0-or-later

// Throughput of each workload at the standard resolution; where a compiler could take work out of
// its loop, beside a plain loop that does the same.
// Compare within one run, with --benchmark_enable_random_interleaving=true and some repetitions.

#include "engine/memoryPolicy.h"
#include "plainLoops.h"
#include "tests/suite.h"

#include <benchmark/benchmark.h>

namespace
{

struct plainLoopEntry {
    /// The name of the test, as it is.
    const char *name;
    /// How the work is kept that a compiler could take out of the loop.
    const char *how;
    plainLoop (*setup)();
};

const char *const nothingKept = "plain loop, nothing kept";
const char *const keptByZero = "plain loop, kept by an unknown zero";

const plainLoopEntry loops[] = {
    {"mandel", keptByZero, [] { return plainLoops::mandel(keeping::byUnknownZero); }},
    {"mandel", nothingKept, [] { return plainLoops::mandel(keeping::nothing); }},
    {"shellsort", keptByZero, [] { return plainLoops::shellSort(keeping::byUnknownZero); }},
    {"shellsort", nothingKept, [] { return plainLoops::shellSort(keeping::nothing); }},
    {"zlib uncompress", keptByZero, [] { return plainLoops::zlib(keeping::byUnknownZero); }},
    {"zlib uncompress", nothingKept, [] { return plainLoops::zlib(keeping::nothing); }},
    {"colors ", keptByZero, [] { return plainLoops::colors(keeping::byUnknownZero); }},
    {"colors ", nothingKept, [] { return plainLoops::colors(keeping::nothing); }},
};

void addThroughput(benchmark::State &state, double work)
{
    state.counters["M/s"] = benchmark::Counter(work * static_cast<double>(state.iterations()),
                                               benchmark::Counter::kIsRate);
}

void benchTest(benchmark::State &state, testBase *test)
{
    if (!test->setup(plainLoops::width, plainLoops::height)) {
        state.SkipWithError("the test cannot be set up");
        return;
    }
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        test->preRun();
        state.ResumeTiming();
        test->run();
        state.PauseTiming();
        test->postRun();
        state.ResumeTiming();
    }
    addThroughput(state, static_cast<double>(test->getWork()));
    test->release();
}

void benchPlainLoop(benchmark::State &state, plainLoop (*setup)())
{
    const plainLoop loop = setup();
    if (!loop.run) {
        state.SkipWithError("the plain loop cannot be set up");
        return;
    }
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        if (loop.prepare)
            loop.prepare();
        state.ResumeTiming();
        loop.run();
    }
    addThroughput(state, loop.work);
}

template <typename Function, typename Argument>
void add(const QString &name, Function function, Argument argument)
{
    benchmark::RegisterBenchmark(name.toUtf8().constData(), function, argument)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

} // namespace

int main(int argc, char **argv)
{
    memoryPolicy::apply();
    const suite tests = makeSuite(nullptr);
    for (const auto &test : tests)
        add(test->getName(), benchTest, test.get());
    for (const plainLoopEntry &loop : loops)
        add(QStringLiteral("%1, %2").arg(QLatin1String(loop.name), QLatin1String(loop.how)),
            benchPlainLoop, loop.setup);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
