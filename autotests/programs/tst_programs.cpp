// SPDX-License-Identifier: GPL-3.0-or-later

// The programs' own main in processes of their own: window and console runner, built around a host
// that is named here and a suite without tests.

#include "support/fakeServer.h"

#include <QProcess>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <memory>

#ifdef Q_OS_UNIX
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace
{

const QByteArray list = "<Fennick><bench machineName=\"Online\" os=\"linux\"/></Fennick>";

/// A server that has version 2000 of the list and takes uploads.
fakeServer::answer answers(const fakeServer &server)
{
    return [&server](QTcpSocket &socket) {
        const QByteArray body = server.lastBody();
        if (body.contains("type=getReferenceVersion"))
            socket.write(httpReply("2000"));
        else if (body.contains("type=getReference"))
            socket.write(httpReply(qCompress(list)));
        else
            socket.write(httpReply("thanks"));
    };
}

/// What the console runner says of itself, but for what disturbs a measurement on this machine.
QByteArrayList complaintsIn(const QByteArray &errors)
{
    QByteArrayList complaints;
    for (const QByteArray &line : errors.split('\n')) {
        if (line.startsWith("fennick-cli: ") && !line.startsWith("fennick-cli: warning: "))
            complaints.append(line);
    }
    return complaints;
}

} // namespace

class tst_programs : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void windowAsksAtItsStart();
    void windowIsShownUntilItsEnd();
    void bothShareTheirFiles();
    void bothKnowTheHost_data();
    void bothKnowTheHost();
    void fullRunIsStoredAndUploaded();
    void storeThatFails_data();
    void storeThatFails();
    void lostOutput_data();
    void lostOutput();
    void lostOutputCostsNoResults();
    void fullRunIsKept();
    void outputThatCannotBeWritten();
    void outputToAPipe();
    void problemsAreSaid();
    void brokenPipeEndsIt();

private:
    QString file(const char *name) const
    {
        return home->filePath(QStringLiteral("fennick/") + QLatin1String(name));
    }
    QByteArray read(const char *name) const
    {
        QFile in(file(name));
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }
    bool write(const char *name, const QByteArray &content) const
    {
        QDir().mkpath(home->filePath(QStringLiteral("fennick")));
        QFile target(file(name));
        return target.open(QIODevice::WriteOnly) && target.write(content) == content.size();
    }
    void prepare(QProcess &process) const;
    /// Runs the console runner by @p script, in which "$0" stands for it. The exit code, or -1.
    int runConsole(const QString &script, QByteArray *errors = nullptr);

    std::unique_ptr<QTemporaryDir> home;
    std::unique_ptr<fakeServer> server;
    QByteArray out;
};

void tst_programs::init()
{
    home = std::make_unique<QTemporaryDir>();
    server = std::make_unique<fakeServer>();
    server->reply = answers(*server);
}

void tst_programs::cleanup()
{
    server.reset();
    home.reset();
}

void tst_programs::prepare(QProcess &process) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("HOME"), home->path());
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home->path());
    environment.insert(QStringLiteral("FENNICK_TEST_HOST"), server->host());
    environment.remove(QStringLiteral("COMPUTERNAME"));
    process.setProcessEnvironment(environment);
}

int tst_programs::runConsole(const QString &script, QByteArray *errors)
{
    QProcess process;
    prepare(process);
    process.start(QStringLiteral("sh"),
                  {QStringLiteral("-c"), script, QStringLiteral(FENNICK_CLI)});
    // The server lives in this thread.
    if (!QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, 60'000)
        || process.exitStatus() != QProcess::NormalExit)
        return -1;
    out = process.readAllStandardOutput();
    if (errors)
        *errors = process.readAllStandardError();
    return process.exitCode();
}

void tst_programs::windowAsksAtItsStart()
{
    QProcess window;
    prepare(window);
    window.start(QStringLiteral(FENNICK_WINDOW), QStringList());
    QTRY_COMPARE_WITH_TIMEOUT(read("db_version"), QByteArray("2000"), 60'000);
    QCOMPARE(read("db.xml"), list);
    QCOMPARE(server->requests.size(), 2);
    window.kill();
    window.waitForFinished();
}

/// The exit code is that of the event loop, which is left as soon as the window is shown.
void tst_programs::windowIsShownUntilItsEnd()
{
    QProcess window;
    prepare(window);
    QProcessEnvironment environment = window.processEnvironment();
    environment.insert(QStringLiteral("FENNICK_TEST_EXIT_CODE"), QStringLiteral("7"));
    window.setProcessEnvironment(environment);
    window.start(QStringLiteral(FENNICK_WINDOW), QStringList());
    QVERIFY(QTest::qWaitFor([&window] { return window.state() == QProcess::NotRunning; }, 60'000));
    const QByteArray said = window.readAllStandardError();
    QVERIFY2(said.contains("shown: Fennick CPU bench ("), "not shown");
    QVERIFY(said.contains("OpenGL: none\n"));
    QCOMPARE(window.exitStatus(), QProcess::NormalExit);
    QCOMPARE(window.exitCode(), 7);

    // Whoever has chosen something has a reason.
    environment.insert(QStringLiteral("QT_XCB_GL_INTEGRATION"), QStringLiteral("xcb_egl"));
    window.setProcessEnvironment(environment);
    window.start(QStringLiteral(FENNICK_WINDOW), QStringList());
    QVERIFY(QTest::qWaitFor([&window] { return window.state() == QProcess::NotRunning; }, 60'000));
    QVERIFY(window.readAllStandardError().contains("OpenGL: xcb_egl\n"));
}

void tst_programs::bothShareTheirFiles()
{
    QProcess window;
    prepare(window);
    window.start(QStringLiteral(FENNICK_WINDOW), QStringList());
    QTRY_COMPARE_WITH_TIMEOUT(read("db_version"), QByteArray("2000"), 60'000);
    window.kill();
    window.waitForFinished();
    const QStringList files = {QStringLiteral("db.xml"), QStringLiteral("db_version")};
    const QDir directory(home->filePath(QStringLiteral("fennick")));
    QCOMPARE(directory.entryList(QDir::Files, QDir::Name), files);

    QCOMPARE(runConsole(QStringLiteral("exec \"$0\"")), 0);
    QVERIFY2(out.contains("Online database has version 2000 (local 2000)\n"
                          "Use local benchmark DB\nFound 1 devices (1 unique)\n"),
             out);
    QVERIFY(!read("user_data.xml").isEmpty());
    QCOMPARE(QDir(home->path()).entryList({QStringLiteral("*ennick*")}, QDir::Dirs),
             QStringList(QStringLiteral("fennick")));
}

void tst_programs::bothKnowTheHost_data()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("window") << QStringLiteral(FENNICK_WINDOW);
    QTest::newRow("console runner") << QStringLiteral(FENNICK_CLI);
}

void tst_programs::bothKnowTheHost()
{
    QFETCH(QString, program);
    QProcess process;
    prepare(process);
    process.start(program, QStringList());
    const QByteArray said = "this machine is '" + QSysInfo::machineHostName().toLocal8Bit() + "'\n";
    QByteArray errors;
    const auto isSaid = [&] { return (errors += process.readAllStandardError()).contains(said); };
    QVERIFY2(QTest::qWaitFor(isSaid, 60'000), errors);
    process.kill();
    process.waitForFinished();
}

void tst_programs::fullRunIsStoredAndUploaded()
{
    QByteArray errors;
    QCOMPARE(runConsole(QStringLiteral("exec \"$0\" --upload"), &errors), 0);
    QVERIFY2(out.endsWith("Benchmark finished\nStore userdata\nUpload results\n"), out);
    QVERIFY2(complaintsIn(errors).isEmpty(), errors);
    const QByteArray name = QSysInfo::machineHostName().toHtmlEscaped().toUtf8();
    QVERIFY(read("user_data.xml").contains("machineName=\"" + name + '"'));
    QVERIFY(server->lastBody().contains("type=storeUserData"));
}

void tst_programs::storeThatFails_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QByteArray>("sentence");
    QTest::newRow("alone") << QString()
                           << QByteArray("fennick-cli: the results could not be stored\n");
    QTest::newRow("with an upload")
        << QStringLiteral("--upload")
        << QByteArray("fennick-cli: the results could not be stored, and are not uploaded\n");
}

void tst_programs::storeThatFails()
{
    QFETCH(QString, options);
    QFETCH(QByteArray, sentence);
    QVERIFY(QDir().mkpath(file("user_data.xml")));
    QByteArray errors;
    QCOMPARE(runConsole(QStringLiteral("exec \"$0\" ") + options, &errors), 1);
    QVERIFY2(errors.contains(sentence), errors);
    QVERIFY(out.endsWith("Can't store userdata (not writable)\n"));
    QVERIFY(!server->lastBody().contains("type=storeUserData"));
}

void tst_programs::lostOutput_data()
{
    QTest::addColumn<QString>("script");
    for (const char *options : {"--list", "--help", "--version", ""}) {
        for (const char *redirection : {"> /dev/full", ">&-", ">&- 0>&-"}) {
            QTest::addRow("%s %s", *options ? options : "full run", redirection)
                << QStringLiteral("exec \"$0\" %1 %2")
                       .arg(QLatin1String(options), QLatin1String(redirection));
        }
    }
}

void tst_programs::lostOutput()
{
    QFETCH(QString, script);
    QByteArray errors;
    QCOMPARE(runConsole(script, &errors), 5);
    QVERIFY2(errors.endsWith("fennick-cli: the output is not complete: standard output cannot be "
                             "written\n"),
             errors);
}

/// What is printed is lost, what is stored is not, and neither gets into the other.
void tst_programs::lostOutputCostsNoResults()
{
    QCOMPARE(runConsole(QStringLiteral("exec \"$0\"")), 0);
    const QByteArray stored = read("user_data.xml");
    QVERIFY(stored.contains("<bench "));
    for (const char *redirections : {"> /dev/full", ">&-", "0>&- >&- 2>&-"}) {
        QVERIFY(QDir(home->filePath(QStringLiteral("fennick"))).removeRecursively());
        QCOMPARE(runConsole(QStringLiteral("exec \"$0\" --upload ") + QLatin1String(redirections)),
                 5);
        QCOMPARE(read("user_data.xml"), stored);
        QCOMPARE(read("db.xml"), list);
        QCOMPARE(read("db_version"), QByteArray("2000"));
        QVERIFY(server->lastBody().contains("type=storeUserData"));
    }
}

/// Every full run leaves its record, and a home that cannot be written to costs nothing else.
void tst_programs::fullRunIsKept()
{
    QCOMPARE(runConsole(QStringLiteral("exec \"$0\" --json")), 0);
    const QDir runs(file("runs"));
    const QStringList names = runs.entryList(QDir::Files);
    QCOMPARE(names.size(), 1);
    QFile kept(runs.filePath(names.first()));
    QVERIFY(kept.open(QIODevice::ReadOnly));
    // Standard output has the same and nothing else.
    QCOMPARE(out, kept.readAll());
    QVERIFY(out.startsWith('{') && out.contains("\"kind\":\"fennick-run\""));

    QVERIFY(QDir(file("runs")).removeRecursively());
    QVERIFY(write("runs", "not a folder"));
    QByteArray errors;
    QCOMPARE(runConsole(QStringLiteral("exec \"$0\""), &errors), 5);
    QVERIFY2(errors.contains("fennick-cli: the run is not kept: "), errors);
    QVERIFY2(out.endsWith("Benchmark finished\nStore userdata\n"), out);
    QVERIFY(read("user_data.xml").contains("<bench "));
}

/// Before anything is measured, and without a trace.
void tst_programs::outputThatCannotBeWritten()
{
    QByteArray errors;
    QCOMPARE(runConsole(QStringLiteral("exec \"$0\" --csv /nowhere/a.csv"), &errors), 5);
    QVERIFY2(errors.contains("fennick-cli: '/nowhere/a.csv' cannot be written: "), errors);
    QVERIFY(out.isEmpty());
    QVERIFY(write("old.csv", "old"));
    QCOMPARE(runConsole(QStringLiteral("exec \"$0\" --quiet --csv '%1'").arg(file("old.csv"))), 0);
    QVERIFY(out.isEmpty());
    QVERIFY(read("old.csv").startsWith("started,"));
}

/// A pipe is written to, and still a pipe afterwards.
void tst_programs::outputToAPipe()
{
#ifdef Q_OS_UNIX
    const QString script = QStringLiteral("cd '%1' && mkfifo pipe || exit 9; cat pipe & "
                                          "\"$0\" --quiet --csv pipe; code=$?; wait; "
                                          "test -p pipe && exit $code")
                               .arg(home->path());
    QCOMPARE(runConsole(script), 0);
    QVERIFY2(out.startsWith("started,"), out);
#else
    QSKIP("needs pipes with names");
#endif
}

void tst_programs::problemsAreSaid()
{
    QVERIFY(write("db.xml", "<F>\n<bench os='o'/>\n</G>\n"));
    QVERIFY(write("db_version", "2000"));
    QVERIFY(write("user_data.xml", list.chopped(3)));
    QByteArray errors;
    QCOMPARE(runConsole(QStringLiteral("exec \"$0\""), &errors), 0);
    const QString sentence =
        QStringLiteral("fennick-cli: '%1' has a fault in line %2: what follows it is left out\n");
    const QString expected = sentence.arg(file("db.xml"), QStringLiteral("3"))
                             + sentence.arg(file("user_data.xml"), QStringLiteral("1"));
    QVERIFY2(errors.endsWith(expected.toLocal8Bit()), errors);
    QVERIFY2(!out.contains("fault"), out);
}

/// Whoever reads no further, as "head" does, ends the program without a word.
void tst_programs::brokenPipeEndsIt()
{
#ifdef Q_OS_UNIX
    int ends[2] = {-1, -1};
    QCOMPARE(::pipe(ends), 0);
    ::close(ends[0]);
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGPIPE, SIG_DFL);
        ::dup2(ends[1], STDOUT_FILENO);
        ::execl(FENNICK_CLI, FENNICK_CLI, "--list", nullptr);
        ::_exit(127);
    }
    ::close(ends[1]);
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status));
    QCOMPARE(WTERMSIG(status), SIGPIPE);
#else
    QSKIP("needs signals between processes");
#endif
}

QTEST_GUILESS_MAIN(tst_programs)
#include "tst_programs.moc"
