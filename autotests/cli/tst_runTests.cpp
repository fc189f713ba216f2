// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/runTests.h"

#include "support/dataDirectory.h"
#include "support/fakeClock.h"
#include "support/fakeTest.h"
#include "support/textLog.h"

#include <QTemporaryFile>
#include <QtTest>

#include <cstdio>
#include <functional>

#include <unistd.h>

namespace
{

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

const QString userFile = QStringLiteral("user_data.xml");

/// Counts the uploads, and takes them if it is told to.
class fakeOnline : public onlineDatabase
{
public:
    fakeOnline(int *uploadCount, const bool *isTakingUploads, const QString *wordsOfRefusal)
        : uploads(uploadCount),
          isTaking(isTakingUploads),
          words(wordsOfRefusal)
    {
    }
    bool request(int requested, QByteArray &) override
    {
        *uploads += requested == storeResults ? 1 : 0;
        isUploadLatest = requested == storeResults;
        return requested == storeResults && *isTaking;
    }
    QString refusal() const override { return isUploadLatest ? *words : QString(); }

private:
    int *uploads;
    const bool *isTaking;
    const QString *words;
    bool isUploadLatest = false;
};

/// A runner over two fakes, stopped on request.
class console : public textLog, public stopHook
{
public:
    console()
    {
        suite tests;
        for (const QString &name : {a, b}) {
            tests.push_back(std::make_unique<fakeTest>(name, &events));
            fakes.append(static_cast<fakeTest *>(tests.back().get()));
            fakes.last()->onRun = [] { fakeClock::pass(std::chrono::milliseconds(70)); };
        }
        runner =
            std::make_unique<benchBase>(this, this, nullptr, std::move(tests),
                                        std::make_unique<fakeOnline>(&uploads, &isTaking, &words));
    }
    bool isStopRequested() override { return isStopped; }

    int run(const QStringList &tests)
    {
        runRequest command;
        command.wanted = tests.isEmpty() ? runRequest::fullRun : runRequest::namedTests;
        command.tests = tests;
        command.testTime = 60; // less than one work unit takes
        return runTests(command, *runner, *this);
    }

    /// A full run of standard length, in no time.
    int runStandard(bool isUpload)
    {
        for (fakeTest *fake : qAsConst(fakes))
            fake->setSingleOnly(true);
        return runFull(isUpload);
    }

    int runFull(bool isUpload)
    {
        runRequest command;
        command.isUpload = isUpload;
        return runTests(command, *runner, *this);
    }

    const fakeClock clock;
    bool isStopped = false;
    int uploads = 0;
    bool isTaking = true;
    QString words;
    QStringList events;
    QVector<fakeTest *> fakes;
    std::unique_ptr<benchBase> runner;
};

/// What @p action writes to standard error.
QByteArray errorsOf(const std::function<void()> &action)
{
    QTemporaryFile file;
    if (!file.open())
        return "no file for standard error";
    std::fflush(stderr);
    const int standardError = dup(STDERR_FILENO);
    dup2(file.handle(), STDERR_FILENO);
    action();
    std::fflush(stderr);
    dup2(standardError, STDERR_FILENO);
    close(standardError);
    file.seek(0);
    return file.readAll();
}

} // namespace

class tst_runTests : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void fullRun();
    void fullRunIsStored();
    void fullRunIsUploaded();
    void failedUpload();
    void refusedUpload();
    void stoppedIsNotStored();
    void namedTests();
    void failedTest();
    void failedTestOfAFullRun_data();
    void failedTestOfAFullRun();
    void stopped();
    void stoppedBetweenTests();
    void stoppedBeforeTheFirstTest();
    void failedStore();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_runTests::fullRun()
{
    console c;
    QCOMPARE(c.run({}), int(exitSuccess));
    QVERIFY(c.text.contains(QStringLiteral("Use internal benchmark DB\n")));
    QVERIFY(c.text.contains(QStringLiteral("Found no local user benchmark data\n")));
    QVERIFY(c.text.contains(QStringLiteral("Start Benchmark (0s per Test (2)")));
    QVERIFY(c.text.endsWith(
        QStringLiteral("Benchmark finished\n"
                       "Only results of 8s per test are stored or uploaded, these are not\n")));
    QVERIFY(c.events.contains(QStringLiteral("b.run")));
    QVERIFY(directory->read(userFile).isNull());
    QCOMPARE(c.uploads, 0);
}

void tst_runTests::fullRunIsStored()
{
    console c;
    QCOMPARE(c.runStandard(false), int(exitSuccess));
    QVERIFY(c.text.endsWith(QStringLiteral("Benchmark finished\nStore userdata\n")));
    QVERIFY(directory->read(userFile).contains("<bench machineName="));
    QCOMPARE(c.uploads, 0);
}

void tst_runTests::fullRunIsUploaded()
{
    console c;
    QCOMPARE(c.runStandard(true), int(exitSuccess));
    QVERIFY(
        c.text.endsWith(QStringLiteral("Benchmark finished\nStore userdata\nUpload results\n")));
    QCOMPARE(c.uploads, 1);
}

void tst_runTests::failedUpload()
{
    console c;
    c.isTaking = false;
    QCOMPARE(c.runStandard(true), int(exitNoUpload));
    QVERIFY(c.text.endsWith(QStringLiteral("Store userdata\nCan't upload results\n")));
    QVERIFY(!directory->read(userFile).isNull());
}

/// The server's words are for standard error; the log is the window's too, and stays as it is.
void tst_runTests::refusedUpload()
{
    console c;
    const auto errors = [&c](bool isTaking, const QString &words) {
        c.isTaking = isTaking;
        c.words = words;
        return errorsOf([&c] { c.runStandard(true); });
    };
    QCOMPARE(errors(false, QStringLiteral("there is no test 'x'")),
             QByteArray("fennick-cli: the upload was refused: there is no test 'x'\n"));
    QVERIFY(c.text.endsWith(QStringLiteral("Store userdata\nCan't upload results\n")));
    QVERIFY(!c.text.contains(QStringLiteral("no test")));
    QCOMPARE(errors(false, QString()), QByteArray());
    QCOMPARE(errors(true, QStringLiteral("words of another request")), QByteArray());
}

void tst_runTests::stoppedIsNotStored()
{
    console c;
    c.isStopped = true;
    c.fakes.first()->canSetup = false;
    QCOMPARE(c.runFull(true), int(exitInterrupted));
    QVERIFY(directory->read(userFile).isNull());
    QCOMPARE(c.uploads, 0);
}

void tst_runTests::namedTests()
{
    console c;
    QCOMPARE(c.run({b, a}), int(exitSuccess));
    QVERIFY(c.events.indexOf(QStringLiteral("b.run")) < c.events.indexOf(QStringLiteral("a.run")));
    QCOMPARE(c.text.count(QStringLiteral("Start single test (")), 2);
    QVERIFY(!c.text.contains(QStringLiteral("Start Benchmark")));
}

void tst_runTests::failedTest()
{
    console c;
    c.fakes.at(0)->canSetup = false;
    QCOMPARE(c.run({a, b}), int(exitFailure));
    QVERIFY(c.text.contains(QStringLiteral("Error: cant setup test a\nStart single test (")));
    QVERIFY(c.events.contains(QStringLiteral("b.run")));
}

void tst_runTests::failedTestOfAFullRun_data()
{
    QTest::addColumn<bool>("canSetup");
    QTest::addColumn<bool>("isUpload");
    QTest::newRow("no set-up") << false << false;
    QTest::newRow("no set-up, upload wanted") << false << true;
    QTest::newRow("no memory for a round") << true << false;
}

/// What the other tests gave is stored; a run that lacks a result is not uploaded.
void tst_runTests::failedTestOfAFullRun()
{
    QFETCH(bool, canSetup);
    QFETCH(bool, isUpload);
    console c;
    for (fakeTest *fake : qAsConst(c.fakes)) {
        fake->canSetup = canSetup;
        fake->canWork = false;
    }
    int code = -1;
    const QByteArray errors = errorsOf([&] { code = c.runFull(isUpload); });
    QCOMPARE(code, int(exitFailure));
    QVERIFY(c.text.contains(QStringLiteral("Benchmark finished\nStore userdata\n")));
    QCOMPARE(errors, isUpload ? QByteArray("fennick-cli: tests without a result: 2; the run is not "
                                           "uploaded\n")
                              : QByteArray());
    QVERIFY(directory->read(userFile).contains("<test name=\"b\" result=\"0\""));
    QCOMPARE(c.uploads, 0);

    c.fakes.first()->setSingleOnly(true);
    QCOMPARE(c.run({}), int(exitFailure));
    for (fakeTest *fake : qAsConst(c.fakes))
        fake->setSingleOnly(true);
    QCOMPARE(c.run({}), int(exitSuccess));
}

void tst_runTests::stopped()
{
    console c;
    c.fakes.at(0)->onRun = [&] { c.isStopped = true; };
    QCOMPARE(c.run({}), int(exitInterrupted));
    QVERIFY(c.text.endsWith(QStringLiteral("stopped by user ...\n")));
}

void tst_runTests::stoppedBetweenTests()
{
    console c;
    c.fakes.at(0)->onRun = [&] { c.isStopped = true; };
    QCOMPARE(c.run({a, b}), int(exitInterrupted));
    QVERIFY(!c.events.contains(QStringLiteral("b.setup")));
    QVERIFY(c.text.contains(QStringLiteral("\nstopped by user ...\n Result: ")));
}

/// Ctrl-C while the online database is asked.
void tst_runTests::stoppedBeforeTheFirstTest()
{
    for (const QStringList &tests : {QStringList(), QStringList(a)}) {
        console c;
        c.isStopped = true;
        QCOMPARE(c.run(tests), int(exitInterrupted));
        QVERIFY(!c.events.contains(QStringLiteral("a.setup")));
        QVERIFY(c.text.endsWith(QStringLiteral("stopped by user ...\n")));
    }
}

/// What was stored before must not be uploaded as if it was new.
void tst_runTests::failedStore()
{
    QVERIFY(QDir().mkpath(directory->path(userFile)));
    for (const bool isUpload : {false, true}) {
        console c;
        QCOMPARE(c.runStandard(isUpload), int(exitFailure));
        QVERIFY(c.text.endsWith(
            QStringLiteral("Benchmark finished\nCan't store userdata (not writable)\n")));
        QCOMPARE(c.uploads, 0);
    }
}

QTEST_GUILESS_MAIN(tst_runTests)
#include "tst_runTests.moc"
