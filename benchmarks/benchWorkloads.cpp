// SPDX-License-Identifier: GPL-3.0-or-later

// Throughput of each workload at the standard resolution, beside a plain loop that does the same.
// Compare within one run, with --benchmark_enable_random_interleaving=true and some repetitions.

#include "standaloneLoops.h"
#include "tests/suite.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace
{

constexpr int width = 3820;
constexpr int height = 2160;

void addThroughput(benchmark::State &state, double work)
{
    state.counters["M/s"] = benchmark::Counter(work * static_cast<double>(state.iterations()),
                                               benchmark::Counter::kIsRate);
}

void benchTest(benchmark::State &state, testBase *test)
{
    if (!test->setup(width, height)) {
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

void benchStandaloneMandel(benchmark::State &state, bool multicore)
{
    std::vector<std::uint32_t> frame(static_cast<std::size_t>(width) * height);
    static const std::int32_t palette[256][4] = {};
    for ([[maybe_unused]] auto _ : state) {
        standaloneMandel(frame.data(), width, height, palette, multicore);
        benchmark::ClobberMemory();
    }
    addThroughput(state, width * height * 1e-6);
}

template <typename Function, typename... Arguments>
void add(const QString &name, Function function, Arguments... arguments)
{
    benchmark::RegisterBenchmark(name.toUtf8().constData(), function, arguments...)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

} // namespace

int main(int argc, char **argv)
{
    const suite tests = makeSuite(nullptr);
    for (const auto &test : tests)
        add(test->getName(), benchTest, test.get());
    add(QStringLiteral("mandel, plain loop"), benchStandaloneMandel, false);
    add(QStringLiteral("mandel (multicore), plain loop"), benchStandaloneMandel, true);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
