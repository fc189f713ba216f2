// SPDX-License-Identifier: GPL-3.0-or-later

// The compare window over the built-in list: how long it takes to open and to rebuild its chart,
// and what many rebuilds cost in memory. One iteration ends when the chart has been painted.

#include "data/ranking.h"
#include "engine/benchBase.h"
#include "ui/compareWindow.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>

#include <algorithm>
#include <chrono>

namespace
{

class silence : public printHook
{
public:
    void print(const QString &) override {}
};

/// A runner with the built-in list and this machine.
benchBase &loadedRunner()
{
    static silence log;
    static benchBase runner(&log, nullptr, nullptr);
    if (runner.getResults().isEmpty()) {
        runner.loadReferenceData(benchBase::builtInReference);
        runner.loadUserData();
    }
    return runner;
}

/// A list of @p count machines and this one, with the suite's tests.
class longList : public benchDataAccess
{
public:
    explicit longList(int count) : benchDataAccess(nullptr, loadedRunner().getTests())
    {
        const QVector<benchResults> &known = loadedRunner().getResults();
        for (int i = 0; i < count; ++i) {
            const benchResults &model = known.at(i % (known.size() - 1));
            benchResults machine(QStringLiteral("%1 no. %2").arg(model.getName()).arg(i),
                                 model.getOs(), model.getCpu(), model.getFrequency(),
                                 model.getThreads());
            const float factor = 1.0F + 0.01F * static_cast<float>(i % 97);
            for (auto test = model.getTests().begin(); test != model.getTests().end(); ++test)
                machine.setTest(test.key(), benchResults::test(test->value * factor));
            results.append(machine);
        }
        results.append(known.first());
        results.last().setMeasured(true);
    }
};

double residentMebibytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toDouble() * 4096 / (1024 * 1024);
}

void openWindow(benchmark::State &state)
{
    benchBase &runner = loadedRunner();
    for ([[maybe_unused]] auto _ : state) {
        compareWindow window(nullptr, &runner, true, 9);
        window.show();
        QCoreApplication::processEvents();
    }
}
BENCHMARK(openWindow)->Unit(benchmark::kMillisecond);

/// A window of unmerged machines in one of the modes of ranking::selectionMode.
class openedWindow
{
public:
    explicit openedWindow(int mode, benchDataAccess &machines = loadedRunner())
        : window(nullptr, &machines, true, 9)
    {
        window.findChild<QCheckBox *>(QStringLiteral("checkBoxMerged"))->setChecked(false);
        window.findChild<QComboBox *>(QStringLiteral("comboBoxSortBy"))->setCurrentIndex(mode);
        tests = window.findChild<QComboBox *>(QStringLiteral("comboBox"));
        window.show();
        window.sortByChanged(mode);
        QCoreApplication::processEvents();
    }
    void rebuild()
    {
        next = (next + 1) % tests->count();
        tests->setCurrentIndex(next);
        window.selectionChanged(next);
        QCoreApplication::processEvents();
    }

private:
    compareWindow window;
    QComboBox *tests = nullptr;
    int next = 0;
};

/// Rebuilds the chart again and again, and keeps the longest time.
void rebuildAll(benchmark::State &state, openedWindow &window)
{
    double worst = 0;
    for ([[maybe_unused]] auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        window.rebuild();
        const std::chrono::duration<double, std::milli> spent =
            std::chrono::steady_clock::now() - start;
        worst = std::max(worst, spent.count());
    }
    state.counters["worst_ms"] = worst;
}

void rebuild(benchmark::State &state)
{
    openedWindow window(static_cast<int>(state.range(0)));
    rebuildAll(state, window);
}
BENCHMARK(rebuild)
    ->ArgName("mode")
    ->Arg(ranking::mixedDevices)
    ->Arg(ranking::allDevices)
    ->Unit(benchmark::kMillisecond);

/// All devices of a long list, not merged.
void rebuildLongList(benchmark::State &state)
{
    longList machines(static_cast<int>(state.range(0)));
    openedWindow window(ranking::allDevices, machines);
    rebuildAll(state, window);
}
BENCHMARK(rebuildLongList)
    ->ArgName("machines")
    ->Arg(500)
    ->Arg(2000)
    ->Arg(10'000)
    ->Unit(benchmark::kMillisecond);

void tenThousandRebuilds(benchmark::State &state)
{
    openedWindow window(ranking::mixedDevices);
    for (int i = 0; i < 200; ++i)
        window.rebuild();
    const double before = residentMebibytes();
    for ([[maybe_unused]] auto _ : state)
        window.rebuild();
    state.counters["before_MiB"] = before;
    state.counters["after_MiB"] = residentMebibytes();
}
BENCHMARK(tenThousandRebuilds)->Iterations(10'000)->Unit(benchmark::kMillisecond);

void ignore(QtMsgType, const QMessageLogContext &, const QString &) {}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler(ignore);
    const QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
