// SPDX-License-Identifier: GPL-3.0-or-later

// Throughput of each workload at the standard resolution, beside a plain loop that does the same.
// Compare within one run, with --benchmark_enable_random_interleaving=true and some repetitions.

#include "plainLoops.h"
#include "engine/memoryPolicy.h"
#include "tests/suite.h"

#include <benchmark/benchmark.h>

namespace
{

struct plainLoopEntry {
    /// The name of the test, as it is.
    const char *name;
    plainLoop (*setup)();
};

const plainLoopEntry loops[] = {
    {"rotozoom 'dithered'", [] { return plainLoops::rotozoom(texelRule::dithered, false); }},
    {"rotozoom 'linear'", [] { return plainLoops::rotozoom(texelRule::linear, false); }},
    {"rotozoom 'linear (multicore)'", [] { return plainLoops::rotozoom(texelRule::linear, true); }},
    {"rotozoom 'last pixel'", [] { return plainLoops::rotozoom(texelRule::lastPixel, false); }},
    {"rotozoom 'last pixel (multicore)'",
     [] { return plainLoops::rotozoom(texelRule::lastPixel, true); }},
    {"mandel", [] { return plainLoops::mandel(false); }},
    {"mandel (multicore)", [] { return plainLoops::mandel(true); }},
    {"lines", plainLoops::lines},
    {"motion blur", plainLoops::motionBlur},
    {"shellsort", plainLoops::shellSort},
    {"rle compress/uncompress", plainLoops::rle},
    {"zlib uncompress", plainLoops::zlib},
    {"colors ", [] { return plainLoops::colors(false); }},
    {"colors  (multicore)", [] { return plainLoops::colors(true); }},
    {"crc32 bitwise", [] { return plainLoops::crc32(false); }},
    {"crc32 bitwise (multicore)", [] { return plainLoops::crc32(true); }},
    {"vertex", [] { return plainLoops::vertex(false); }},
    {"vertex (multicore)", [] { return plainLoops::vertex(true); }},
    {"rotozoom 'no'", [] { return plainLoops::rotozoom(texelRule::nearest, false); }},
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
        add(QLatin1String(loop.name) + QLatin1String(", plain loop"), benchPlainLoop, loop.setup);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
