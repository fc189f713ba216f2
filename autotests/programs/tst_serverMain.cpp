// SPDX-License-Identifier: GPL-3.0-or-later

// The server's own main in a process of its own.

#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

class tst_serverMain : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void keepsItsFilesInItsDirectory();
    void exitCodes();
    void lostOutput_data();
    void lostOutput();
    void lostOutputOfALongExport();
    void lostOutputWhileServing();

private:
    void prepare(QProcess &process, const QString &script) const;
    /// Runs the server by @p script, in which "$0" stands for it. The exit code, or -1.
    int run(const QString &script);

    QTemporaryDir directory;
    int homes = 0;
    QString home;
    QByteArray out;
    QByteArray errors;
};

namespace
{

const QByteArray sentence =
    "fennick-server: the output is not complete: standard output cannot be written\n";

} // namespace

void tst_serverMain::init()
{
    home = directory.filePath(QStringLiteral("home%1").arg(++homes));
    QVERIFY(QDir().mkpath(home));
    // A database without uploads; commands that only read make none.
    QFile list(home + QStringLiteral("/nothing.xml"));
    QVERIFY(list.open(QIODevice::WriteOnly));
    list.write("<Fennick/>");
    list.close();
    QCOMPARE(run(QStringLiteral("exec \"$0\" import '%1'").arg(list.fileName())), 0);
}

void tst_serverMain::prepare(QProcess &process, const QString &script) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home);
    process.setProcessEnvironment(environment);
    process.setProgram(QStringLiteral("sh"));
    process.setArguments({QStringLiteral("-c"), script, QStringLiteral(FENNICK_SERVER)});
}

int tst_serverMain::run(const QString &script)
{
    QProcess process;
    prepare(process, script);
    process.start();
    if (!process.waitForFinished(60'000) || process.exitStatus() != QProcess::NormalExit)
        return -1;
    out = process.readAllStandardOutput();
    errors = process.readAllStandardError();
    return process.exitCode();
}

void tst_serverMain::keepsItsFilesInItsDirectory()
{
    QCOMPARE(run(QStringLiteral("exec \"$0\" list")), 0);
    QVERIFY(out.contains("PROCESSOR"));
    QCOMPARE(QDir(home).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
             QStringList(QStringLiteral("fennick-server")));
    QVERIFY(QFile::exists(home + QStringLiteral("/fennick-server/results.sqlite")));
}

void tst_serverMain::exitCodes()
{
    QCOMPARE(run(QStringLiteral("exec \"$0\" --version")), 0);
    QCOMPARE(out, QByteArray("fennick-server 26.0\n"));
    QCOMPARE(run(QStringLiteral("exec \"$0\" sevre")), 2);
    QCOMPARE(run(QStringLiteral("exec \"$0\" import none.xml")), 1);
    QVERIFY2(!errors.contains("output"), errors);
}

void tst_serverMain::lostOutput_data()
{
    QTest::addColumn<QString>("script");
    for (const char *command : {"list", "export", "publish", "--help", "--version"}) {
        for (const char *redirection : {"> /dev/full", ">&-", ">&- 0>&-"}) {
            QTest::addRow("%s %s", command, redirection)
                << QStringLiteral("exec \"$0\" %1 %2")
                       .arg(QLatin1String(command), QLatin1String(redirection));
        }
    }
}

/// It is noticed, and ends up in no other file: the database is as good as before.
void tst_serverMain::lostOutput()
{
    QFETCH(QString, script);
    QCOMPARE(run(script), 1);
    QCOMPARE(errors, sentence);
    QCOMPARE(run(QStringLiteral("exec \"$0\" list")), 0);
    QCOMPARE(out.count('\n'), 1);
}

/// More than a buffer full is lost in the midst of it.
void tst_serverMain::lostOutputOfALongExport()
{
    QFile list(home + QStringLiteral("/list.xml"));
    QVERIFY(list.open(QIODevice::WriteOnly));
    list.write("<Fennick>");
    for (int i = 1; i <= 500; ++i) {
        list.write("<bench machineName='m' os='linux' cpu='c' clock='1' threadCount='"
                   + QByteArray::number(i) + "'><test name='mandel' result='1'/></bench>");
    }
    list.write("</Fennick>");
    list.close();
    QCOMPARE(run(QStringLiteral("exec \"$0\" import '%1'").arg(list.fileName())), 0);
    for (const char *command : {"export", "list"}) {
        QCOMPARE(run(QStringLiteral("exec \"$0\" %1").arg(QLatin1String(command))), 0);
        QVERIFY(out.size() > 10'000);
        QCOMPARE(run(QStringLiteral("exec \"$0\" %1 > /dev/full").arg(QLatin1String(command))), 1);
        QCOMPARE(errors, sentence);
    }
}

void tst_serverMain::lostOutputWhileServing()
{
    // A port that has just been free, because the line with the port is lost.
    QTcpServer probe;
    QVERIFY(probe.listen(QHostAddress::LocalHost));
    const quint16 port = probe.serverPort();
    probe.close();
    QProcess process;
    prepare(process,
            QStringLiteral("exec \"$0\" serve --listen 127.0.0.1:%1 > /dev/full").arg(port));
    process.start();
    const auto isListening = [port] {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, port);
        return socket.waitForConnected(1'000);
    };
    QVERIFY(QTest::qWaitFor(isListening, 60'000));
    process.terminate();
    QVERIFY(process.waitForFinished(60'000));
    QCOMPARE(process.exitCode(), 1);
    QVERIFY(process.readAllStandardError().endsWith(sentence));
}

QTEST_GUILESS_MAIN(tst_serverMain)
#include "tst_serverMain.moc"
