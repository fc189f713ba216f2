// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/preparation.h"

#include "engine/hooks.h"
#include "support/fakeClock.h"
#include "support/fakeTest.h"

#include <QTemporaryDir>
#include <QtTest>

using std::chrono::milliseconds;

namespace
{

class stopSwitch : public stopHook
{
public:
    bool isStopRequested() override { return isStopped; }
    bool isStopped = false;
};

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

} // namespace

class tst_preparation : public QObject
{
    Q_OBJECT

private slots:
    void warmUpWorks();
    void warmUpEndsEarly_data();
    void warmUpEndsEarly();
    void quiet_data();
    void quiet();
    void quietWhereNobodyTells();
    void pinnedTests();
};

/// With the first multi-core test, for so long and no longer; it is released.
void tst_preparation::warmUpWorks()
{
    const fakeClock clock;
    stopSwitch stop;
    QStringList events;
    fakeTest one(QStringLiteral("one"), &events);
    fakeTest all(QStringLiteral("all"), &events);
    all.multicore = true;
    all.onRun = [] { fakeClock::pass(milliseconds(400)); };
    warmUp({&one, &all}, {320, 240}, milliseconds(1000), stop);
    QCOMPARE(events.count(QStringLiteral("all.run")), 3);
    QCOMPARE(events.last(), QStringLiteral("all.release"));
    QVERIFY(!events.contains(QStringLiteral("one.run")));
    QCOMPARE(all.getWidth(), 320);

    one.onRun = all.onRun;
    warmUp({&one}, {320, 240}, milliseconds(400), stop);
    QCOMPARE(events.count(QStringLiteral("one.run")), 1);
    warmUp({}, {320, 240}, milliseconds(400), stop);
}

void tst_preparation::warmUpEndsEarly_data()
{
    QTest::addColumn<QString>("why");
    for (const char *why : {"stopped", "no set-up", "no work", "no memory"})
        QTest::newRow(why) << QString::fromLatin1(why);
}

void tst_preparation::warmUpEndsEarly()
{
    QFETCH(QString, why);
    const fakeClock clock;
    stopSwitch stop;
    QStringList events;
    fakeTest test(QStringLiteral("t"), &events);
    test.canSetup = why != QLatin1String("no set-up");
    test.canWork = why != QLatin1String("no work");
    test.onRun = [&] {
        fakeClock::pass(milliseconds(1));
        stop.isStopped = why == QLatin1String("stopped");
        if (why == QLatin1String("no memory"))
            throw std::bad_alloc();
    };
    warmUp({&test}, {320, 240}, milliseconds(1000), stop);
    QCOMPARE(events.count(QStringLiteral("t.run")), test.canSetup ? 1 : 0);
    QCOMPARE(events.last(), QStringLiteral("t.release"));
}

void tst_preparation::quiet_data()
{
    QTest::addColumn<QVector<int>>("ticks"); // of others, second by second
    QTest::addColumn<int>("most");
    QTest::addColumn<bool>("isQuiet");
    QTest::addColumn<int>("seconds");
    QTest::newRow("at once") << QVector<int>{0} << 5 << true << 1;
    QTest::newRow("a little") << QVector<int>{9} << 5 << true << 1;
    QTest::newRow("then") << QVector<int>{100, 11, 9} << 5 << true << 3;
    QTest::newRow("never") << QVector<int>{100, 100, 100} << 3 << false << 3;
}

void tst_preparation::quiet()
{
    QFETCH(QVector<int>, ticks);
    QFETCH(int, most);
    QFETCH(bool, isQuiet);
    QFETCH(int, seconds);
#ifndef Q_OS_LINUX
    QSKIP("reads the files of another system");
#endif
    const fakeClock clock;
    stopSwitch stop;
    QTemporaryDir root;
    QVERIFY(QDir(root.path()).mkpath(QStringLiteral("proc")));
    int all = 1000;
    const auto tell = [&] {
        write(root.filePath(QStringLiteral("proc/stat")),
              "cpu  " + QByteArray::number(all) + " 0 0 5000 0 0 0 0 0 0\n");
    };
    tell();
    int passed = 0;
    const auto second = [&] {
        fakeClock::pass(milliseconds(1000));
        all += ticks.at(passed++);
        tell();
    };
    processorTimeSources sources;
    sources.root = root.path().toStdString();
    sources.ownSeconds = []() -> std::optional<double> { return 0; };
    QCOMPARE(waitForQuiet(most, stop, second, sources), isQuiet);
    QCOMPARE(passed, seconds);
    stop.isStopped = true;
    QVERIFY(!waitForQuiet(most, stop, second, sources));
    QCOMPARE(passed, seconds);
}

void tst_preparation::quietWhereNobodyTells()
{
    stopSwitch stop;
    const QTemporaryDir empty;
    processorTimeSources sources;
    sources.root = empty.path().toStdString();
    QVERIFY(waitForQuiet(
        1, stop, [] {}, sources));
}

/// Single-core tests and no others, from their set-up to their end.
void tst_preparation::pinnedTests()
{
    const std::vector<int> before = allowedProcessors();
    if (before.size() < 2)
        QSKIP("one processor is no choice");
    pinHook hook;
    QVERIFY(hook.chosen());
    fakeTest test(QStringLiteral("t"), nullptr);
    hook.testStarts(test, {});
    QCOMPARE(allowedProcessors(), std::vector<int>{*hook.chosen()});
    hook.testEnded(test, testEnd::complete, 0);
    QCOMPARE(allowedProcessors(), before);
    test.multicore = true;
    hook.testStarts(test, {});
    QCOMPARE(allowedProcessors(), before);
    hook.testEnded(test, testEnd::complete, 0);
    QVERIFY(hook.isPinned().has_value());
}

QTEST_APPLESS_MAIN(tst_preparation)
#include "tst_preparation.moc"
