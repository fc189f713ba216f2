// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/processorTime.h"
#include "support/fakeClock.h"
#include "support/systemTree.h"

#include <QtTest>

#include <thread>
#include <unistd.h>

namespace
{

const QString statistics = QStringLiteral("proc/stat");

std::optional<double> ownTime;

processorTimeSources below(const systemTree &tree)
{
    return {tree.root(), [] { return ownTime; }};
}

/// Uses @p seconds of processor time.
void work(double seconds)
{
    const double end = *processorTimeSources::processSeconds() + seconds;
    while (*processorTimeSources::processSeconds() < end) {
    }
}

} // namespace

class tst_processorTime : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void differences_data();
    void differences();
    void oddFiles_data();
    void oddFiles();
    void noOwnTime();
    void ownTimeOfAllThreads();
    void load();
    void thisMachine();
};

void tst_processorTime::init()
{
    QCOMPARE(sysconf(_SC_CLK_TCK), 100L); // the rows below count in it
    ownTime = 0;
}

void tst_processorTime::differences_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<double>("own");
    QTest::addColumn<double>("expected");
    const QByteArray none = "cpu  100 20 30 4000 50 6 7 8 9 10\ncpu0 1 1 1 1 1 1 1 1 1 1\n";
    QTest::newRow("nothing happened") << none << none << 0.0 << 0.0;
    QTest::newRow("others and ourselves")
        << none << QByteArray("cpu  400 20 30 4000 50 6 7 8 9 10\n") << 2.0 << 1.0;
    QTest::newRow("nice") << none << QByteArray("cpu  100 120 30 4000 50 6 7 8 9 10\n") << 0.0
                          << 1.0;
    QTest::newRow("system") << none << QByteArray("cpu  100 20 130 4000 50 6 7 8 9 10\n") << 0.0
                            << 1.0;
    QTest::newRow("idle") << none << QByteArray("cpu  100 20 30 4100 50 6 7 8 9 10\n") << 0.0
                          << 0.0;
    QTest::newRow("waiting for a disk")
        << none << QByteArray("cpu  100 20 30 4000 150 6 7 8 9 10\n") << 0.0 << 0.0;
    QTest::newRow("interrupts") << none << QByteArray("cpu  100 20 30 4000 50 106 7 8 9 10\n")
                                << 0.0 << 1.0;
    QTest::newRow("soft interrupts")
        << none << QByteArray("cpu  100 20 30 4000 50 6 107 8 9 10\n") << 0.0 << 1.0;
    QTest::newRow("steal") << none << QByteArray("cpu  100 20 30 4000 50 6 7 108 9 10\n") << 0.0
                           << 1.0;
    QTest::newRow("guests, who stand in user too")
        << none << QByteArray("cpu  200 20 30 4000 50 6 7 8 109 10\n") << 0.0 << 1.0;
    QTest::newRow("our time between two ticks")
        << none << QByteArray("cpu  100 20 30 4000 50 6 7 8 9 10\n") << 0.009 << 0.0;
    QTest::newRow("a tick") << none << QByteArray("cpu  101 20 30 4000 50 6 7 8 9 10\n") << 0.0
                            << 0.01;
    QTest::newRow("counted back") << none << QByteArray("cpu  90 20 30 4000 50 6 7 8 9 10\n") << 0.0
                                  << 0.0;
}

void tst_processorTime::differences()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(double, own);
    QFETCH(double, expected);
    const systemTree tree({{statistics, before}});
    ownTime = 5;
    const processorTime time(below(tree));
    QVERIFY(tree.write(statistics, after));
    ownTime = 5 + own;
    const std::optional<double> others = time.othersSeconds();
    QVERIFY(others.has_value());
    QVERIFY2(qAbs(*others - expected) < 1e-9, qPrintable(QString::number(*others)));
}

void tst_processorTime::oddFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("another line first") << QByteArray("intr 1 2 3 4 5 6 7 8 9 10\n");
    QTest::newRow("one processor") << QByteArray("cpu0 1 2 3 4 5 6 7 8 9 10\n");
    QTest::newRow("cut off") << QByteArray("cpu  100 20 30 4000");
    QTest::newRow("numbers on the next line") << QByteArray("cpu  100 20 30\n1 2 3 4 5 6\n");
    QTest::newRow("negative") << QByteArray("cpu  100 -20 30 4000 50 6 7 8 9 10\n");
    QTest::newRow("out of range") << QByteArray("cpu  99999999999999999999 1 1 1 1 1 1 1\n");
    QTest::newRow("binary") << QByteArray("cpu\0\x01\x02\x7f", 7);
    QTest::newRow("huge") << QByteArray(2 << 20, '7');
}

void tst_processorTime::oddFiles()
{
    QFETCH(QByteArray, content);
    const systemTree tree({{statistics, content}});
    QVERIFY(!processorTime(below(tree)).othersSeconds().has_value());
    // Nor when it turns odd later.
    QVERIFY(tree.write(statistics, "cpu  100 20 30 4000 50 6 7 8 9 10\n"));
    const processorTime time(below(tree));
    QVERIFY(time.othersSeconds().has_value());
    QVERIFY(tree.write(statistics, content));
    QVERIFY(!time.othersSeconds().has_value());
}

void tst_processorTime::noOwnTime()
{
    const systemTree tree({{statistics, "cpu  100 20 30 4000 50 6 7 8 9 10\n"}});
    ownTime = std::nullopt;
    QVERIFY(!processorTime(below(tree)).othersSeconds().has_value());
}

void tst_processorTime::ownTimeOfAllThreads()
{
    const double before = *processorTimeSources::processSeconds();
    std::thread other([] { work(0.02); });
    other.join();
    QVERIFY(*processorTimeSources::processSeconds() - before >= 0.02);
}

/// Processors, not seconds; nothing of a wait without length.
void tst_processorTime::load()
{
    const fakeClock clock;
    const systemTree tree({{statistics, "cpu  100 0 0 4000 0 0 0 0 0 0\n"}});
    QCOMPARE(othersLoad([] { fakeClock::pass(std::chrono::milliseconds(10)); }, below(tree)),
             std::optional(0.0));
    QVERIFY(!othersLoad([] {}, below(tree)));
    const auto busy = [&] {
        fakeClock::pass(std::chrono::milliseconds(500));
        tree.write(statistics, "cpu  175 0 0 4000 0 0 0 0 0 0\n");
    };
    QCOMPARE(othersLoad(busy, below(tree)), std::optional(1.5));
}

void tst_processorTime::thisMachine()
{
    const processorTime time;
    const std::optional<double> others = time.othersSeconds();
    QVERIFY(others.has_value());
    QVERIFY(*others >= 0);
}

QTEST_APPLESS_MAIN(tst_processorTime)
#include "tst_processorTime.moc"
