// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/consoleRunner.h"

#include "support/consoleProgram.h"
#include "support/dataDirectory.h"
#include "support/tlsServer.h"

#include <QProcess>
#include <QtTest>

#include <csignal>

namespace
{

/// A server that does not exist: these tests stay on this machine.
const QString nobody = QStringLiteral("--server=127.0.0.1:1");

} // namespace

class tst_consoleProgram : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void programWithoutMemory();
    void programListsAndExits_data();
    void programListsAndExits();
    void programRunsATest();
    void programAsksTheServer();
    void programIsInterrupted_data();
    void programTellsOfDistrust();
    void programIsInterrupted();
    void secondInterruptEndsTheProgram();
    void ignoredInterruptsStayIgnored();
    void programHasNoWidgets();

private:
    std::unique_ptr<dataDirectory> directory;
};

/// The real program with an address space that holds the frame of this test, but not its rounds.
void tst_consoleProgram::programWithoutMemory()
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

void tst_consoleProgram::programListsAndExits_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    const auto option = [](const char *text) { return QStringList(QString::fromLatin1(text)); };
    QTest::newRow("list") << option("--list") << 0 << QStringLiteral("  mandel (multicore)\n");
    QTest::newRow("version") << option("--version") << 0 << QStringLiteral("fennick-cli 26.0\n");
    QTest::newRow("help") << option("--help") << 0 << QStringLiteral("--resolution <WxH>");
    QTest::newRow("unknown test") << option("--test=nothing") << 2 << QStringLiteral("  mandel\n");
    QTest::newRow("bad time") << option("--time=0") << 2 << QStringLiteral("--time");
    QTest::newRow("upload of a test")
        << QStringList({QStringLiteral("--upload"), QStringLiteral("--test=mandel")}) << 2
        << QStringLiteral("--test");
    QTest::newRow("upload of another time")
        << QStringList({QStringLiteral("--upload"), QStringLiteral("--time=1")}) << 2
        << QStringLiteral("8 seconds");
    QTest::newRow("unknown option") << option("--nope") << 2 << QStringLiteral("nope");
}

void tst_consoleProgram::programListsAndExits()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    QFETCH(QString, text);
    consoleProgram p(arguments);
    QCOMPARE(p.exitCode(), code);
    const QString &used = code == 0 ? p.out : p.err;
    QVERIFY2(used.contains(text), qPrintable(used));
    if (code == 0)
        QVERIFY2(!p.out.contains(QStringLiteral("CPU/HW")), "the log does not belong here");
    else
        QVERIFY(p.out.isEmpty());
}

void tst_consoleProgram::programRunsATest()
{
    consoleProgram p({QStringLiteral("--test=mandel"), QStringLiteral("--time=1"),
                      QStringLiteral("--resolution=320x240"), nobody});
    QCOMPARE(p.exitCode(), 0);
    QVERIFY(p.out.startsWith(QStringLiteral("Found ")));
    QVERIFY(p.out.contains(
        QStringLiteral("Start single test (1s testtime use virtual resolution 320x240):\n")));
    QVERIFY(p.out.contains(QStringLiteral("/s MPixel (avg ")));
}

void tst_consoleProgram::programAsksTheServer()
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

/// Of a server with a certificate that nobody has signed.
void tst_consoleProgram::programTellsOfDistrust()
{
    if (!certificateMaker::isPossible())
        QSKIP("there is no TLS here, or no openssl to make certificates");
    certificateMaker certificates;
    const fakeServer server(
        sending(httpReply("1")),
        std::make_unique<tlsListener>(certificates.untrusted(QStringLiteral("IP:127.0.0.1"))));
    QProcess process;
    process.start(QStringLiteral(FENNICK_CLI),
                  {QStringLiteral("--test=mandel"), QStringLiteral("--time=1"),
                   QStringLiteral("--resolution=320x240"),
                   QStringLiteral("--server=https://%1").arg(server.host())});
    QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, 120'000);
    QCOMPARE(process.exitCode(), 0);
    QVERIFY(server.connections > 0 && server.requests.isEmpty());
    QVERIFY(process.readAllStandardOutput().contains("No online database found\n"));
    const QByteArray error = process.readAllStandardError();
    QVERIFY2(error.contains("fennick-cli: the online database refuses: the certificate of "
                            "127.0.0.1 is not trusted: "),
             error.constData());
    QCOMPARE(error.count("refuses"), 1);
}

void tst_consoleProgram::programIsInterrupted_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("code");
#ifdef Q_OS_UNIX
    QTest::newRow("Ctrl-C") << SIGINT << 130;
    QTest::newRow("SIGTERM") << SIGTERM << 143;
    QTest::newRow("hang-up") << SIGHUP << 129;
#endif
}

void tst_consoleProgram::programIsInterrupted()
{
#ifdef Q_OS_UNIX
    QFETCH(int, signal);
    QFETCH(int, code);
    consoleProgram p({QStringLiteral("--time=600"), nobody});
    QVERIFY(p.waitFor(QStringLiteral("Test ")));
    ::kill(static_cast<pid_t>(p.process.processId()), signal);
    QCOMPARE(p.exitCode(), code);
    QVERIFY(p.out.contains(QStringLiteral("\nstopped by user ...\n Result: ")));
    QVERIFY(p.out.endsWith(QStringLiteral("ms)\nstopped by user ...\n")));
    const QDir runs(directory->path(QStringLiteral("runs")));
    QCOMPARE(runs.entryList(QDir::Files).size(), 1);
    const QByteArray kept =
        directory->read(QStringLiteral("runs/") + runs.entryList(QDir::Files).value(0));
    QVERIFY2(kept.contains("\"stopped\":true") && kept.contains("\"end\":\"stopped\""), kept);
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

void tst_consoleProgram::secondInterruptEndsTheProgram()
{
#ifdef Q_OS_LINUX
    // A round of this test takes seconds. Should one end just between the two signals, the first
    // one ends the program, and another try is due.
    for (int attempt = 0; attempt < 5; ++attempt) {
        consoleProgram p(
            {QStringLiteral("--time=600"), QStringLiteral("--test=shellsort"), nobody});
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
void tst_consoleProgram::ignoredInterruptsStayIgnored()
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

void tst_consoleProgram::programHasNoWidgets()
{
    QProcess readelf;
    readelf.start(QStringLiteral("readelf"), {QStringLiteral("-d"), QStringLiteral(FENNICK_CLI)});
    if (!readelf.waitForFinished())
        QSKIP("needs readelf");
    const QByteArray libraries = readelf.readAllStandardOutput();
    QVERIFY(libraries.contains("Qt5Core"));
    QVERIFY(!libraries.contains("Qt5Widgets"));
}

QTEST_GUILESS_MAIN(tst_consoleProgram)
#include "tst_consoleProgram.moc"
