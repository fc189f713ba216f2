// SPDX-License-Identifier: GPL-3.0-or-later

// Two people exchange their results: the real window, the real console runner and the real server.

#include "cli/runTests.h"
#include "data/httpDatabase.h"
#include "ui/mainwindow.h"

#include "support/dataDirectory.h"
#include "support/fakeClock.h"
#include "support/fakeTest.h"
#include "support/messageBoxes.h"
#include "support/serverProcess.h"
#include "support/textLog.h"
#include "support/uploads.h"
#include "support/wholeRuns.h"

#include <QCheckBox>
#include <QPushButton>
#include <QTextEdit>
#include <QtTest>

namespace
{

const QString mandel = QStringLiteral("mandel");

/// One test with a name of the suite's. A round takes so much time by the fake clock.
suite shortSuite()
{
    suite tests;
    auto test = std::make_unique<fakeTest>(mandel, nullptr);
    test->onRun = [] { fakeClock::pass(std::chrono::milliseconds(100)); };
    tests.push_back(std::move(test));
    return tests;
}

suite shortSuiteFor(printHook *)
{
    return shortSuite();
}

/// The window of one person, in front of a server.
class person
{
public:
    explicit person(const QString &host)
        : window(nullptr, shortSuiteFor, std::make_unique<httpDatabase>(host))
    {
        window.show();
    }

    QString log() const
    {
        return window.findChild<QTextEdit *>(QStringLiteral("debugBox"))->toPlainText();
    }
    /// Clicks a button, and yes where it asks. What is printed meanwhile.
    QString click(const char *button)
    {
        const int before = log().size();
        const boxAnswer answer(QMessageBox::Yes);
        window.findChild<QPushButton *>(QString::fromLatin1(button))->click();
        return log().mid(before);
    }

    MainWindow window;
};

/// The XML of a whole run of Bob's processor.
QByteArray bobsRun()
{
    const benchResults run =
        wholeRun(QStringLiteral("Bob's CPU"), 1, QStringLiteral("linux"), 4, QStringLiteral("BOB"));
    return "<F>" + stored(run).content + "</F>";
}

} // namespace

class tst_exchange : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void window();
    void consoleRunner();
    void consoleProgram();

private:
    /// Another command of the server's program on its database.
    serverProcess::result serverCommand(const QString &command,
                                        const QStringList &options = {}) const
    {
        return serverProcess::run(QStringList{command, QStringLiteral("--database"), database}
                                  + options);
    }

    QTemporaryDir serverDirectory;
    QString database;
    std::unique_ptr<serverProcess> server;
};

void tst_exchange::initTestCase()
{
    database = QStringLiteral("sqlite:") + serverDirectory.filePath(QStringLiteral("results.db"));
    server = std::make_unique<serverProcess>(database);
    QVERIFY(server->isListening());
}

void tst_exchange::window()
{
    const fakeClock clock;
    const dataDirectory directory;
    qputenv("COMPUTERNAME", "ALICE");
    QString processor;
    {
        person alice(server->host());
        QVERIFY(alice.log().contains(
            QStringLiteral("Online database has version 1010 (local 1010)\nUse internal")));
        const QString run = alice.click("benchButton");
        QVERIFY2(run.endsWith(QStringLiteral("Benchmark finished\nStore userdata\nUpload "
                                             "results\n")),
                 qPrintable(run));
        QVERIFY(serverCommand(QStringLiteral("list")).out.contains(QStringLiteral("received ")));

        // Without upload, the same machine tells nobody.
        alice.window.findChild<QCheckBox *>(QStringLiteral("checkBoxDisableResultUpload"))
            ->setChecked(true);
        QVERIFY(alice.click("benchButton").endsWith(QStringLiteral("\nStore userdata\n")));
        QCOMPARE(serverCommand(QStringLiteral("list")).out.count(QLatin1Char('\n')), 2);
    }
    qunsetenv("COMPUTERNAME");

    // One upload is enough for the BETA list, but for the normal one only within a circle.
    QCOMPARE(statusOf(rawClient(server->port).post(uploadForm(bobsRun()))), 200);
    const QString version =
        serverCommand(QStringLiteral("publish")).out.section(QLatin1Char(' '), 2, 2);
    QVERIFY(version.toInt() > 1010);
    person again(server->host());
    QVERIFY2(again.log().contains(
                 QStringLiteral("Online database has version %1 (local 1010)\n"
                                "Update DB successfully\nUse local benchmark DB\nFound ")
                     .arg(version)),
             qPrintable(again.log()));
    QVERIFY(again.log().endsWith(QStringLiteral("Found local user benchmark data\n")));
    QVERIFY(!directory.read(QStringLiteral("db.xml")).contains("Bob's CPU"));
    QCOMPARE(directory.read(QStringLiteral("db_version")), version.toLatin1());

    const QString beta = again.click("pushButtonLoadBetaReference");
    QVERIFY(beta.startsWith(QStringLiteral("Update DB successfully (BETA)\nUse local")));
    QVERIFY(directory.read(QStringLiteral("db.xml")).contains("machineName=\"Bob's CPU\""));
    QCOMPARE(directory.read(QStringLiteral("db_version")), QByteArray("0"));

    // From a BETA list every normal one leads back.
    const QString normal = again.click("pushButtonLoadStandardReference");
    QVERIFY2(normal.startsWith(QStringLiteral("Online database has version %1 (local BETA)\n"
                                              "Update DB successfully\n")
                                   .arg(version)),
             qPrintable(normal));

    QCOMPARE(serverCommand(QStringLiteral("publish"), {QStringLiteral("--circle")}).code, 0);
    again.click("pushButtonLoadStandardReference");
    const QByteArray list = directory.read(QStringLiteral("db.xml"));
    QVERIFY(list.contains("machineName=\"Bob's CPU\""));
    QVERIFY(!list.contains("\"BOB\"") && !list.contains("ALICE"));
}

void tst_exchange::consoleRunner()
{
    const fakeClock clock;
    const dataDirectory directory;
    qputenv("COMPUTERNAME", "CAROL");
    textLog log;
    class neverStop : public stopHook
    {
    public:
        bool isStopRequested() override { return false; }
    } stop;
    benchBase runner(&log, &stop, nullptr, shortSuite(),
                     std::make_unique<httpDatabase>(server->host()));
    const int before = serverCommand(QStringLiteral("list")).out.count(QLatin1Char('\n'));
    runRequest command;
    QCOMPARE(runTests(command, runner, stop), int(exitSuccess));
    QVERIFY(log.text.endsWith(QStringLiteral("Benchmark finished\nStore userdata\n")));
    QCOMPARE(serverCommand(QStringLiteral("list")).out.count(QLatin1Char('\n')), before);
    command.isUpload = true;
    QCOMPARE(runTests(command, runner, stop), int(exitSuccess));
    QVERIFY(log.text.endsWith(QStringLiteral("Store userdata\nUpload results\n")));
    QCOMPARE(serverCommand(QStringLiteral("list")).out.count(QLatin1Char('\n')), before + 1);
    qunsetenv("COMPUTERNAME");
}

void tst_exchange::consoleProgram()
{
    const dataDirectory directory;
    QProcess process;
    process.start(QStringLiteral(FENNICK_CLI),
                  {QStringLiteral("--server"), server->host(), QStringLiteral("--time"),
                   QStringLiteral("1"), QStringLiteral("--test"), QStringLiteral("shellsort"),
                   QStringLiteral("--resolution"), QStringLiteral("320x240")});
    QVERIFY(process.waitForFinished(60'000));
    QCOMPARE(process.exitCode(), 0);
    const QByteArray out = process.readAllStandardOutput();
    QVERIFY2(out.contains(" (local 1010)\nUpdate DB successfully\nUse local benchmark DB\n"), out);
    process.start(QStringLiteral(FENNICK_CLI),
                  {QStringLiteral("--upload"), QStringLiteral("--time"), QStringLiteral("1")});
    QVERIFY(process.waitForFinished(60'000));
    QCOMPARE(process.exitCode(), int(exitUsage));
}

QTEST_MAIN(tst_exchange)
#include "tst_exchange.moc"
