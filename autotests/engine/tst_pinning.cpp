// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/pinning.h"
#include "support/systemTree.h"

#include <QtTest>

#include <omp.h>
#include <sched.h>
#include <thread>

using processorList = std::vector<int>;
Q_DECLARE_METATYPE(processorList)

namespace
{

QString highestClock(int processor)
{
    return QStringLiteral("sys/devices/system/cpu/cpu%1/cpufreq/cpuinfo_max_freq").arg(processor);
}

} // namespace

class tst_pinning : public QObject
{
    Q_OBJECT

private slots:
    void fastest_data();
    void fastest();
    void pinsAndUnpins();
    void otherThreadsStay();
    void threadsOfOpenMpStay();
    void noSuchProcessor_data();
    void noSuchProcessor();
};

void tst_pinning::fastest_data()
{
    QTest::addColumn<systemFiles>("files");
    QTest::addColumn<processorList>("allowed");
    QTest::addColumn<int>("expected"); // -1: none
    const systemFiles hybrid = {{highestClock(0), "5200000\n"},
                                {highestClock(1), "5500000\n"},
                                {highestClock(2), "5500000\n"},
                                {highestClock(10), "4100000\n"}};
    QTest::newRow("the first of the fastest") << hybrid << processorList{0, 1, 2, 10} << 1;
    QTest::newRow("in whatever order") << hybrid << processorList{10, 2, 1, 0} << 1;
    QTest::newRow("what is allowed") << hybrid << processorList{0, 10} << 0;
    QTest::newRow("by clock, not by number") << hybrid << processorList{0, 2} << 2;
    QTest::newRow("no clocks") << systemFiles{} << processorList{3, 5} << 3;
    QTest::newRow("a clock that is no number")
        << systemFiles{{highestClock(0), "fast\n"}, {highestClock(1), "800000\n"}}
        << processorList{0, 1} << 1;
    QTest::newRow("a negative clock")
        << systemFiles{{highestClock(0), "-1\n"}} << processorList{0, 1} << 0;
    QTest::newRow("nothing") << hybrid << processorList{} << -1;
}

void tst_pinning::fastest()
{
    QFETCH(systemFiles, files);
    QFETCH(processorList, allowed);
    QFETCH(int, expected);
    const systemTree tree(files);
    QCOMPARE(fastestProcessor(allowed, tree.root()).value_or(-1), expected);
}

void tst_pinning::pinsAndUnpins()
{
    const processorList before = allowedProcessors();
    QVERIFY(!before.empty());
    for (const int processor : before) {
        const pinnedThread pinned(processor);
        QVERIFY2(pinned.isPinned(),
                 qPrintable(pinned.isPinned() ? QString() : pinned.isPinned().error()));
        QCOMPARE(allowedProcessors(), processorList{processor});
        QCOMPARE(sched_getcpu(), processor);
    }
    QCOMPARE(allowedProcessors(), before);
}

void tst_pinning::otherThreadsStay()
{
    const processorList before = allowedProcessors();
    processorList ofOther;
    std::thread other([&] {
        const pinnedThread pinned(before.back());
        ofOther = allowedProcessors();
    });
    other.join();
    QCOMPARE(ofOther, processorList{before.back()});
    QCOMPARE(allowedProcessors(), before);
}

/// In the order that the class asks for.
void tst_pinning::threadsOfOpenMpStay()
{
    const processorList before = allowedProcessors();
    constexpr int threads = 4;
    int started = 0;
#pragma omp parallel num_threads(threads) reduction(+ : started)
    ++started;
    QCOMPARE(started, threads);
    {
        const pinnedThread pinned(before.front());
        processorList single;
#pragma omp parallel if (false)
        single = allowedProcessors();
        QCOMPARE(single, processorList{before.front()});
    }
    int wide = 0;
#pragma omp parallel num_threads(threads) reduction(+ : wide)
    wide += allowedProcessors() == before ? 1 : 0;
    QCOMPARE(wide, threads);
}

void tst_pinning::noSuchProcessor_data()
{
    QTest::addColumn<int>("processor");
    QTest::newRow("negative") << -1;
    QTest::newRow("more than the machine has") << 8191;
    QTest::newRow("more than any machine has") << 100'000;
}

void tst_pinning::noSuchProcessor()
{
    QFETCH(int, processor);
    const processorList before = allowedProcessors();
    {
        const pinnedThread pinned(processor);
        QVERIFY(!pinned.isPinned());
        QVERIFY(pinned.isPinned().error().startsWith(
            QStringLiteral("the thread cannot be kept on processor %1: ").arg(processor)));
        QCOMPARE(allowedProcessors(), before);
    }
    QCOMPARE(allowedProcessors(), before);
}

QTEST_APPLESS_MAIN(tst_pinning)
#include "tst_pinning.moc"
