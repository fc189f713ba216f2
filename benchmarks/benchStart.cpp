// SPDX-License-Identifier: GPL-3.0-or-later

// What happens between the start of the program and its readiness.

#include "data/benchXml.h"
#include "engine/benchBase.h"
#include "engine/clock.h"

#include <benchmark/benchmark.h>

#include <QBuffer>

namespace
{

class silence : public printHook
{
public:
    void print(const QString &) override {}
};

/// A list as long as that of all known machines.
QByteArray longList()
{
    QByteArray xml("<Fennick>\r\n");
    for (int machine = 0; machine < 167; ++machine) {
        xml += "        <bench machineName=\"Machine " + QByteArray::number(machine)
               + "\" os=\"linux\" cpu=\"Some processor\" clock=\"3500000000\" "
                 "threadCount=\"8\">\r\n";
        for (int test = 0; test < 18; ++test) {
            xml += "                <test name=\"workload number " + QByteArray::number(test)
                   + "\" result=\"123.456\"/>\r\n";
        }
        xml += "        </bench>\r\n";
    }
    return xml + "</Fennick>\r\n";
}

void parseLongList(benchmark::State &state)
{
    QByteArray xml = longList();
    for ([[maybe_unused]] auto _ : state) {
        QBuffer buffer(&xml);
        buffer.open(QIODevice::ReadOnly | QIODevice::Text);
        QVector<benchResults> machines;
        readMachines(buffer, machines);
        benchmark::DoNotOptimize(machines.data());
    }
    state.SetBytesProcessed(state.iterations() * xml.size());
}
BENCHMARK(parseLongList)->Unit(benchmark::kMicrosecond);

/// What the second clock adds to each round, outside of the time that counts.
void readFineClock(benchmark::State &state)
{
    for ([[maybe_unused]] auto _ : state) {
        const auto start = currentClocks.steady();
        auto span = currentClocks.steady() - start;
        benchmark::DoNotOptimize(span);
    }
}
BENCHMARK(readFineClock);

void loadBuiltInList(benchmark::State &state)
{
    silence log;
    benchBase runner(&log, nullptr, nullptr);
    for ([[maybe_unused]] auto _ : state) {
        runner.loadReferenceData(benchBase::builtInReference);
        runner.loadUserData();
    }
}
BENCHMARK(loadBuiltInList)->Unit(benchmark::kMicrosecond);

void makeRunner(benchmark::State &state)
{
    silence log;
    for ([[maybe_unused]] auto _ : state) {
        const benchBase runner(&log, nullptr, nullptr);
        benchmark::DoNotOptimize(&runner);
    }
}
BENCHMARK(makeRunner)->Unit(benchmark::kMicrosecond);

} // namespace
