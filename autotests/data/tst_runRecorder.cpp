// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runRecorder.h"

#include "support/fakeClock.h"
#include "support/fakeTest.h"

#include <QTemporaryDir>
#include <QtTest>

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

namespace
{

const QString one = QStringLiteral("one");

runRecorder::sources from(const QTemporaryDir &root)
{
    runRecorder::sources sources;
    sources.context.root = root.path().toStdString();
    sources.context.environment = QProcessEnvironment();
    sources.context.environment.insert(QStringLiteral("OMP_NUM_THREADS"), QStringLiteral("3"));
    sources.time.root = root.path().toStdString();
    sources.time.ownSeconds = []() -> std::optional<double> { return 0; };
    return sources;
}

void tell(const QTemporaryDir &root, const QString &name, const QByteArray &content)
{
    QDir(root.path()).mkpath(QStringLiteral("proc"));
    QFile file(root.filePath(QStringLiteral("proc/") + name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray busy(int ticks)
{
    return "cpu  " + QByteArray::number(ticks) + " 0 0 5000 0 0 0 0 0 0\n";
}

} // namespace

class tst_runRecorder : public QObject
{
    Q_OBJECT

private slots:
    void tests();
    void failedTest();
    void surroundings();
    void endsByTheSteadyClock();
};

void tst_runRecorder::tests()
{
    const fakeClock clock;
    const QTemporaryDir root;
    runRecorder recorder({}, from(root));
    recorder.setVerdicts({{one, digestVerdict::right}});
    fakeTest test(one, nullptr);
    for (const int repetition : {0, 1}) {
        recorder.setRepetition(repetition);
        recorder.testStarts(test, {3820, 2160});
        recorder.roundMeasured({0.25F, milliseconds(250)});
        recorder.roundMeasured({0.5F, nanoseconds(500'000'001)});
        fakeClock::pass(milliseconds(800));
        recorder.testEnded(test, repetition == 0 ? testEnd::complete : testEnd::stopped, 0.375F);
    }
    fakeTest other(QStringLiteral("two"), nullptr);
    other.multicore = true;
    recorder.testStarts(other, {320, 240});
    recorder.testEnded(other, testEnd::complete, 1);

    const runRecord record = recorder.finish(true);
    QVERIFY(record.isStopped);
    QCOMPARE(record.tests.size(), std::size_t(3));
    const testRun &first = record.tests.at(0);
    QCOMPARE(first.name, one);
    QCOMPARE(first.unit, QStringLiteral("MFakes"));
    QVERIFY(!first.isMulticore);
    QCOMPARE(first.resolution, QSize(3820, 2160));
    QCOMPARE(first.repetition, 0);
    QCOMPARE(first.rounds.size(), std::size_t(2));
    QCOMPARE(first.rounds.at(1).official, 0.5F);
    QCOMPARE(first.rounds.at(1).fine.count(), 500'000'001);
    QCOMPARE(first.wallSeconds, 0.8);
    QCOMPARE(first.value().value(), 8.0);
    QCOMPARE(first.frames, std::optional(digestVerdict::right));
    QCOMPARE(record.tests.at(1).repetition, 1);
    QCOMPARE(record.tests.at(1).end, testEnd::stopped);
    QCOMPARE(record.tests.at(1).rounds.size(), std::size_t(2));
    QVERIFY(record.tests.at(2).isMulticore);
    QVERIFY(!record.tests.at(2).frames);
    QVERIFY(record.tests.at(2).rounds.empty());
}

void tst_runRecorder::failedTest()
{
    const QTemporaryDir root;
    runRecorder recorder({}, from(root));
    fakeTest test(one, nullptr);
    recorder.testStarts(test, {320, 240});
    recorder.testEnded(test, testEnd::failed, 0.5F);
    const runRecord record = recorder.finish(false);
    QVERIFY(!record.isStopped);
    QCOMPARE(record.tests.at(0).end, testEnd::failed);
    QVERIFY(!record.tests.at(0).value());
}

/// At the start, at the end, and others' time in between; what is not known is absent.
void tst_runRecorder::surroundings()
{
#ifndef Q_OS_LINUX
    QSKIP("reads the files of another system");
#endif
    const QTemporaryDir root;
    tell(root, QStringLiteral("loadavg"), "0.50 0.40 0.30 1/100 999\n");
    tell(root, QStringLiteral("stat"), busy(100));
    runSettings settings;
    settings.testTime = 8000;
    settings.threads = 3;
    runRecorder recorder(settings, from(root));
    fakeTest test(one, nullptr);
    recorder.testStarts(test, {});
    tell(root, QStringLiteral("stat"), busy(150));
    recorder.testEnded(test, testEnd::complete, 1);
    tell(root, QStringLiteral("loadavg"), "1.25 0.40 0.30 1/100 999\n");
    const runRecord record = recorder.finish(false);
    QCOMPARE(record.context.atStart.loadAverage, std::optional(0.5));
    QCOMPARE(record.context.atEnd.loadAverage, std::optional(1.25));
    QVERIFY(!record.context.atStart.temperature);
    QVERIFY(!record.context.governor);
    QCOMPARE(record.context.environment.value(QStringLiteral("OMP_NUM_THREADS")),
             QStringLiteral("3"));
    QCOMPARE(record.tests.at(0).otherProcesses, std::optional(0.5));
    QCOMPARE(record.settings.threads, std::optional(3));
    QCOMPARE(record.machine.processor, thisMachine().processor);
    QCOMPARE(record.build.version, QStringLiteral(FENNICK_VERSION));
}

/// Somebody may set the clock back while a run is going on.
void tst_runRecorder::endsByTheSteadyClock()
{
    const fakeClock clock;
    const QTemporaryDir root;
    const QDateTime before = QDateTime::currentDateTime();
    runRecorder recorder({}, from(root));
    fakeClock::pass(milliseconds(144'000));
    const runRecord record = recorder.finish(false);
    QCOMPARE(record.started.msecsTo(record.ended), 144'000);
    QVERIFY(record.started >= before && record.started <= QDateTime::currentDateTime());
    QVERIFY(record.started.timeSpec() != Qt::LocalTime); // which would change when it is read
}

QTEST_GUILESS_MAIN(tst_runRecorder)
#include "tst_runRecorder.moc"
