// SPDX-License-Identifier: GPL-3.0-or-later

// Which threads work in the timed run of a test, by the processor time that each has used. That
// depends on how the work is shared out, and neither on how fast the machine is nor on what else it
// does. Idle threads must not spin (OMP_WAIT_POLICY=passive), since that uses processor time too.

#include "loopWatch.h"
#include "tests/rotozoom.h"
#include "tests/suite.h"
#include "tests/suiteFacts.h"

#include <QtTest>

#include <omp.h>
#include <pthread.h>

#include <array>
#include <ctime>

namespace
{

constexpr int teamSize = 4;
constexpr QSize frameSize(1280, 960);

/// Nanoseconds, or 0 for a clock whose thread has ended.
qint64 timeOn(clockid_t clock)
{
    timespec time = {};
    return clock_gettime(clock, &time) == 0 ? time.tv_sec * 1'000'000'000LL + time.tv_nsec : 0;
}

/// The clocks of the OpenMP threads; the first one is the calling thread's. The runtime keeps its
/// threads from one region to the next.
std::array<clockid_t, teamSize> teamClocks()
{
    std::array<clockid_t, teamSize> clocks = {};
#pragma omp parallel num_threads(teamSize)
    pthread_getcpuclockid(pthread_self(), &clocks[std::size_t(omp_get_thread_num())]);
    return clocks;
}

/// The processor time that the runs of a test have used.
struct usage {
    qint64 process = 0;
    std::array<qint64, teamSize> threads = {};

    qint64 ofOthers() const { return process - threads[0]; }
    /// The smallest share of a thread in percent.
    qint64 smallestShare() const
    {
        return *std::min_element(threads.begin(), threads.end()) * 100 / std::max(process, 1LL);
    }
};

void addRun(usage &used, testBase &test, const std::array<clockid_t, teamSize> &clocks)
{
    std::array<qint64, teamSize> before = {};
    test.preRun();
    for (std::size_t i = 0; i < clocks.size(); ++i)
        before[i] = timeOn(clocks[i]);
    const qint64 processBefore = timeOn(CLOCK_PROCESS_CPUTIME_ID);
    test.run();
    used.process += timeOn(CLOCK_PROCESS_CPUTIME_ID) - processBefore;
    for (std::size_t i = 0; i < clocks.size(); ++i)
        used.threads[i] += timeOn(clocks[i]) - before[i];
    test.postRun();
}

/// Runs @p test until a tenth of a second of processor time has been used, and, with @p
/// untilShared, until all threads have had a fair share, or that is not to be expected any more:
/// where the threads fetch their work, the first to wake up may do all of a short run.
usage usageOf(testBase &test, bool untilShared)
{
    constexpr qint64 enough = 100'000'000;
    constexpr qint64 tooMuch = 15 * enough;
    const auto clocks = teamClocks();
    usage used;
    do {
        addRun(used, test, clocks);
    } while (used.process < enough
             || (untilShared && used.smallestShare() < 10 && used.process < tooMuch));
    return used;
}

QString textOf(const usage &used)
{
    QString text = QStringLiteral("all %1 ms, threads").arg(used.process / 1'000'000);
    for (const qint64 time : used.threads)
        text += QStringLiteral(" %1").arg(time / 1'000'000);
    return text;
}

} // namespace

class tst_threads : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void suite_data();
    void suite();
    void rotozoomers_data();
    void rotozoomers();

private:
    void check(testBase &test, bool isParallel, loopWatch::schedule schedule);

    int usualThreads = 0;
};

void tst_threads::initTestCase()
{
    QVERIFY2(qgetenv("OMP_WAIT_POLICY").toLower() == "passive",
             "run this with OMP_WAIT_POLICY=passive, as ctest does");
    usualThreads = omp_get_max_threads();
    omp_set_num_threads(teamSize);
}

void tst_threads::cleanupTestCase()
{
    omp_set_num_threads(usualThreads);
}

void tst_threads::check(testBase &test, bool isParallel, loopWatch::schedule schedule)
{
    QVERIFY(test.setup(frameSize.width(), frameSize.height()));
    loopWatch::forget();
    const usage used = usageOf(test, isParallel);
    const loopWatch::request loop = loopWatch::last();
    if (isParallel)
        QVERIFY2(used.smallestShare() >= 10, qPrintable(textOf(used)));
    else
        QVERIFY2(used.ofOthers() * 20 <= used.process, qPrintable(textOf(used)));
    if (schedule == loopWatch::fixed) {
        QVERIFY(loop.kind == loopWatch::fixed || loop.kind == loopWatch::none);
    } else {
        QCOMPARE(int(loop.kind), int(schedule));
        QCOMPARE(loop.chunk, schedule == loopWatch::dynamic ? 1L : 0L);
    }
}

void tst_threads::suite_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("isParallel");
    QTest::addColumn<int>("schedule");
    const auto kindOf = [](loopSchedule schedule) {
        switch (schedule) {
        case loopSchedule::fixed:
            return loopWatch::fixed;
        case loopSchedule::dynamic:
            return loopWatch::dynamic;
        case loopSchedule::none:
            break;
        }
        return loopWatch::none;
    };
    int index = 0;
    for (const testFacts &test : suiteFacts())
        QTest::newRow(test.name) << index++ << test.isMulticore()
                                 << int(kindOf(test.workload.schedule));
}

void tst_threads::suite()
{
    QFETCH(int, index);
    QFETCH(bool, isParallel);
    QFETCH(int, schedule);
    const auto test = std::move(makeSuite(nullptr)[std::size_t(index)]);
    check(*test, isParallel, static_cast<loopWatch::schedule>(schedule));
}

void tst_threads::rotozoomers_data()
{
    QTest::addColumn<quint32>("mode");
    QTest::addColumn<bool>("isParallel");
    const bool isParallel[] = {false, false, false, false, true,  false, true,
                               true,  true,  false, true,  false, true,  true};
    for (quint32 mode = 0; mode < std::size(isParallel); ++mode) {
        QTest::addRow("%u %s", mode, qPrintable(rotozoom(nullptr, mode).getName()))
            << mode << isParallel[mode];
    }
}

void tst_threads::rotozoomers()
{
    QFETCH(quint32, mode);
    QFETCH(bool, isParallel);
    auto selection = mode == 8 ? std::make_unique<QByteArray>(teamSize, '\1') : nullptr;
    rotozoom test(nullptr, mode, std::move(selection));
    check(test, isParallel, loopWatch::fixed);
}

QTEST_APPLESS_MAIN(tst_threads)
#include "tst_threads.moc"
