// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/consoleRunner.h"

#include "engine/fakeClock.h"
#include "support/dataDirectory.h"
#include "support/fakeServer.h"
#include "support/fakeTest.h"
#include "support/textLog.h"

#include <QProcess>
#include <QTemporaryFile>
#include <QtTest>

#include <csignal>
#include <cstdio>
#include <functional>

#include <unistd.h>

namespace
{

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

/// A server that does not exist: these tests stay on this machine.
const QString nobody = QStringLiteral("--server=127.0.0.1:1");

const QString userFile = QStringLiteral("user_data.xml");

/// Counts the uploads, and takes them if it is told to.
class fakeOnline : public onlineDatabase
{
public:
    fakeOnline(int *uploadCount, const bool *isTakingUploads)
        : uploads(uploadCount),
          isTaking(isTakingUploads)
    {
    }
    bool request(int requested, QByteArray &) override
    {
        *uploads += requested == storeResults ? 1 : 0;
        return requested == storeResults && *isTaking;
    }

private:
    int *uploads;
    const bool *isTaking;
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
        runner = std::make_unique<benchBase>(this, this, nullptr, std::move(tests),
                                             std::make_unique<fakeOnline>(&uploads, &isTaking));
    }
    bool isStopRequested() override { return isStopped; }

    int run(const QStringList &tests)
    {
        commandLine command;
        command.wanted = tests.isEmpty() ? commandLine::runFull : commandLine::runTests;
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
        commandLine command;
        command.isUpload = isUpload;
        return runTests(command, *runner, *this);
    }

    const fakeClock clock;
    bool isStopped = false;
    int uploads = 0;
    bool isTaking = true;
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

/// The real program, in a process of its own.
class program
{
public:
    explicit program(const QStringList &arguments)
    {
        process.start(QStringLiteral(FENNICK_CLI), arguments);
    }
    /// The exit code, after which both outputs are complete; -1 for a crash or no end.
    int exitCode()
    {
        if (!process.waitForFinished(120'000) || process.exitStatus() != QProcess::NormalExit)
            return -1;
        out += QString::fromLocal8Bit(process.readAllStandardOutput());
        err += QString::fromLocal8Bit(process.readAllStandardError());
        return process.exitCode();
    }
    /// Waits until the standard output holds @p text.
    bool waitFor(const QString &text)
    {
        while (!out.contains(text)) {
            if (!process.waitForReadyRead(60'000))
                return false;
            out += QString::fromLocal8Bit(process.readAllStandardOutput());
        }
        return true;
    }

    QProcess process;
    QString out;
    QString err;
};

} // namespace

class tst_consoleRunner : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void fullRun();
    void fullRunIsStored();
    void fullRunIsUploaded();
    void failedUpload();
    void stoppedIsNotStored();
    void namedTests();
    void failedTest();
    void failedTestOfAFullRun_data();
    void failedTestOfAFullRun();
    void programWithoutMemory();
    void stopped();
    void stoppedBetweenTests();
    void stoppedBeforeTheFirstTest();
    void failedStore();
    void programListsAndExits_data();
    void programListsAndExits();
    void programRunsATest();
    void programAsksTheServer();
    void programIsInterrupted();
    void secondInterruptEndsTheProgram();
    void ignoredInterruptsStayIgnored();
    void programHasNoWidgets();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_consoleRunner::fullRun()
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

void tst_consoleRunner::fullRunIsStored()
{
    console c;
    QCOMPARE(c.runStandard(false), int(exitSuccess));
    QVERIFY(c.text.endsWith(QStringLiteral("Benchmark finished\nStore userdata\n")));
    QVERIFY(directory->read(userFile).contains("<bench machineName="));
    QCOMPARE(c.uploads, 0);
}

void tst_consoleRunner::fullRunIsUploaded()
{
    console c;
    QCOMPARE(c.runStandard(true), int(exitSuccess));
    QVERIFY(
        c.text.endsWith(QStringLiteral("Benchmark finished\nStore userdata\nUpload results\n")));
    QCOMPARE(c.uploads, 1);
}

void tst_consoleRunner::failedUpload()
{
    console c;
    c.isTaking = false;
    QCOMPARE(c.runStandard(true), int(exitFailure));
    QVERIFY(c.text.endsWith(QStringLiteral("Store userdata\nCan't upload results\n")));
    QVERIFY(!directory->read(userFile).isNull());
}

void tst_consoleRunner::stoppedIsNotStored()
{
    console c;
    c.isStopped = true;
    c.fakes.first()->canSetup = false;
    QCOMPARE(c.runFull(true), int(exitInterrupted));
    QVERIFY(directory->read(userFile).isNull());
    QCOMPARE(c.uploads, 0);
}

void tst_consoleRunner::namedTests()
{
    console c;
    QCOMPARE(c.run({b, a}), int(exitSuccess));
    QVERIFY(c.events.indexOf(QStringLiteral("b.run")) < c.events.indexOf(QStringLiteral("a.run")));
    QCOMPARE(c.text.count(QStringLiteral("Start single test (")), 2);
    QVERIFY(!c.text.contains(QStringLiteral("Start Benchmark")));
}

void tst_consoleRunner::failedTest()
{
    console c;
    c.fakes.at(0)->canSetup = false;
    QCOMPARE(c.run({a, b}), int(exitFailure));
    QVERIFY(c.text.contains(QStringLiteral("Error: cant setup test a\nStart single test (")));
    QVERIFY(c.events.contains(QStringLiteral("b.run")));
}

void tst_consoleRunner::failedTestOfAFullRun_data()
{
    QTest::addColumn<bool>("canSetup");
    QTest::addColumn<bool>("isUpload");
    QTest::newRow("no set-up") << false << false;
    QTest::newRow("no set-up, upload wanted") << false << true;
    QTest::newRow("no memory for a round") << true << false;
}

/// What the other tests gave is stored; a run that lacks a result is not uploaded.
void tst_consoleRunner::failedTestOfAFullRun()
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

/// The real program with an address space that holds the frame of this test, but not its rounds.
void tst_consoleRunner::programWithoutMemory()
{
#if defined(Q_OS_LINUX) && !defined(FENNICK_TEST_SANITIZED)
    const QString test = QStringLiteral("zlib uncompress");
    const auto run = [&test](int kilobytes) {
        QProcess shell;
        shell.start(QStringLiteral("sh"),
                    {QStringLiteral("-c"),
                     QStringLiteral("ulimit -v %1 && exec \"$@\"").arg(kilobytes),
                     QStringLiteral("sh"), QStringLiteral(FENNICK_CLI), QStringLiteral("--test"),
                     test, QStringLiteral("--time"), QStringLiteral("1"), nobody});
        shell.waitForFinished(120'000);
        const int code = shell.exitStatus() == QProcess::NormalExit ? shell.exitCode() : -1;
        return qMakePair(code, QString::fromLocal8Bit(shell.readAllStandardOutput()));
    };
    // What the program takes by itself differs from system to system, so the limit is searched for.
    bool hasFailed = false;
    for (int megabytes = 700; megabytes >= 300 && !hasFailed; megabytes -= 25) {
        const auto [code, out] = run(megabytes * 1024);
        const bool isWorked = out.contains(QLatin1String(" Result: "));
        QCOMPARE(code, isWorked ? int(exitSuccess) : int(exitFailure));
        QCOMPARE(out.contains(QLatin1String("Error: ")), !isWorked);
        hasFailed = out.contains(QLatin1String("Error: no memory for a round of this test"));
    }
    QVERIFY(hasFailed);
#else
    QSKIP("needs a limit of the address space");
#endif
}

void tst_consoleRunner::stopped()
{
    console c;
    c.fakes.at(0)->onRun = [&] { c.isStopped = true; };
    QCOMPARE(c.run({}), int(exitInterrupted));
    QVERIFY(c.text.endsWith(QStringLiteral("stopped by user ...\n")));
}

void tst_consoleRunner::stoppedBetweenTests()
{
    console c;
    c.fakes.at(0)->onRun = [&] { c.isStopped = true; };
    QCOMPARE(c.run({a, b}), int(exitInterrupted));
    QVERIFY(!c.events.contains(QStringLiteral("b.setup")));
    QVERIFY(c.text.contains(QStringLiteral("\nstopped by user ...\n Result: ")));
}

/// Ctrl-C while the online database is asked.
void tst_consoleRunner::stoppedBeforeTheFirstTest()
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
void tst_consoleRunner::failedStore()
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

void tst_consoleRunner::programListsAndExits_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    const auto option = [](const char *text) { return QStringList(QString::fromLatin1(text)); };
    QTest::newRow("list") << option("--list") << 0 << QStringLiteral("  mandel (multicore)\n");
    QTest::newRow("version") << option("--version") << 0 << QStringLiteral("fennick-cli 26.0\n");
    QTest::newRow("help") << option("--help") << 0 << QStringLiteral("--resolution <WxH>");
    QTest::newRow("unknown test") << option("--test=no") << 2 << QStringLiteral("  mandel\n");
    QTest::newRow("bad time") << option("--time=0") << 2 << QStringLiteral("--time");
    QTest::newRow("upload of a test")
        << QStringList({QStringLiteral("--upload"), QStringLiteral("--test=mandel")}) << 2
        << QStringLiteral("--test");
    QTest::newRow("upload of another time")
        << QStringList({QStringLiteral("--upload"), QStringLiteral("--time=1")}) << 2
        << QStringLiteral("8 seconds");
    QTest::newRow("unknown option") << option("--nope") << 2 << QStringLiteral("nope");
}

void tst_consoleRunner::programListsAndExits()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    QFETCH(QString, text);
    program p(arguments);
    QCOMPARE(p.exitCode(), code);
    const QString &used = code == 0 ? p.out : p.err;
    QVERIFY2(used.contains(text), qPrintable(used));
    if (code == 0)
        QVERIFY2(!p.out.contains(QStringLiteral("CPU/HW")), "the log does not belong here");
    else
        QVERIFY(p.out.isEmpty());
}

void tst_consoleRunner::programRunsATest()
{
    program p({QStringLiteral("--test=mandel"), QStringLiteral("--time=1"),
               QStringLiteral("--resolution=320x240"), nobody});
    QCOMPARE(p.exitCode(), 0);
    QVERIFY(p.out.startsWith(QStringLiteral("Found ")));
    QVERIFY(p.out.contains(
        QStringLiteral("Start single test (1s testtime use virtual resolution 320x240):\n")));
    QVERIFY(p.out.contains(QStringLiteral("/s MPixel (avg ")));
}

void tst_consoleRunner::programAsksTheServer()
{
    const fakeServer server(sending(httpReply("1")));
    QProcess process;
    process.start(QStringLiteral(FENNICK_CLI),
                  {QStringLiteral("--test=mandel"), QStringLiteral("--time=1"),
                   QStringLiteral("--resolution=320x240"),
                   QStringLiteral("--server=%1").arg(server.host())});
    QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 120'000);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(server.requests.size(), 1);
    QVERIFY(
        process.readAllStandardOutput().contains("Online database has version 1 (local 1010)\n"));
}

void tst_consoleRunner::programIsInterrupted()
{
#ifdef Q_OS_UNIX
    program p({QStringLiteral("--time=600"), nobody});
    QVERIFY(p.waitFor(QStringLiteral("Test ")));
    ::kill(static_cast<pid_t>(p.process.processId()), SIGINT);
    QCOMPARE(p.exitCode(), 130);
    QVERIFY(p.out.contains(QStringLiteral("\nstopped by user ...\n Result: ")));
    QVERIFY(p.out.endsWith(QStringLiteral("ms)\nstopped by user ...\n")));
#else
    QSKIP("needs signals between processes");
#endif
}

#ifdef Q_OS_LINUX
namespace
{

/// Whether process @p id has been sent a SIGINT that it has not taken notice of.
bool isInterruptPending(qint64 id)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(id));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = status.readAll();
    const QByteArray field = "\nShdPnd:\t";
    const quint64 pending =
        text.mid(text.indexOf(field) + field.size(), 16).toULongLong(nullptr, 16);
    return (pending >> (SIGINT - 1)) & 1U;
}

} // namespace
#endif

void tst_consoleRunner::secondInterruptEndsTheProgram()
{
#ifdef Q_OS_LINUX
    // A round of this test takes seconds. Should one end just between the two signals, the first
    // one ends the program, and another try is due.
    for (int attempt = 0; attempt < 5; ++attempt) {
        program p({QStringLiteral("--time=600"), QStringLiteral("--test=shellsort"), nobody});
        QVERIFY(p.waitFor(QStringLiteral("Test ")));
        const auto id = static_cast<pid_t>(p.process.processId());
        ::kill(id, SIGINT);
        QVERIFY(QTest::qWaitFor([id] { return !isInterruptPending(id); }));
        ::kill(id, SIGINT);
        QVERIFY(p.process.waitForFinished(120'000));
        if (p.process.exitStatus() == QProcess::CrashExit) {
            QCOMPARE(p.process.exitCode(), SIGINT);
            return;
        }
        QCOMPARE(p.process.exitCode(), int(exitInterrupted));
    }
    QFAIL("the second signal has never ended the program");
#else
    QSKIP("needs to know of pending signals");
#endif
}

/// As those of a script are that runs in the background.
void tst_consoleRunner::ignoredInterruptsStayIgnored()
{
#ifdef Q_OS_UNIX
    QProcess process;
    process.start(QStringLiteral("sh"),
                  {QStringLiteral("-c"), QStringLiteral("trap '' INT; exec \"$0\" \"$@\""),
                   QStringLiteral(FENNICK_CLI), QStringLiteral("--time=2"),
                   QStringLiteral("--test=mandel"), QStringLiteral("--resolution=320x240"),
                   nobody});
    QByteArray out;
    while (!out.contains("Test ") && process.waitForReadyRead(60'000))
        out += process.readAllStandardOutput();
    QVERIFY(out.contains("Test "));
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    QVERIFY(process.waitForFinished(120'000));
    out += process.readAllStandardOutput();
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QVERIFY(!out.contains("stopped by user"));
#else
    QSKIP("needs signals between processes");
#endif
}

void tst_consoleRunner::programHasNoWidgets()
{
    QProcess readelf;
    readelf.start(QStringLiteral("readelf"), {QStringLiteral("-d"), QStringLiteral(FENNICK_CLI)});
    if (!readelf.waitForFinished())
        QSKIP("needs readelf");
    const QByteArray libraries = readelf.readAllStandardOutput();
    QVERIFY(libraries.contains("Qt5Core"));
    QVERIFY(!libraries.contains("Qt5Widgets"));
}

QTEST_GUILESS_MAIN(tst_consoleRunner)
#include "tst_consoleRunner.moc"
