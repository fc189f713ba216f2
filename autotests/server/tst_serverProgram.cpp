// SPDX-License-Identifier: GPL-3.0-or-later

// The real server in a process of its own.

#include "data/benchXml.h"
#include "data/httpDatabase.h"
#include "server/resultStore.h"

#include "support/serverProcess.h"
#include "support/uploads.h"
#include "support/wholeRuns.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

class tst_serverProgram : public QObject
{
    Q_OBJECT

private slots:
    void fourActions();
    void otherRequests_data();
    void otherRequests();
    void tooLarge();
    void rangesAreNotServed();
    void uploadAnswers();
    void uploadLimit();
    void onlyUploadsUseUpTheLimit();
    void readLimit();
    void publishedListIsServed();
    void nastyNamesArrive();
    void commands();
    void moderation();
    void portInUse();
    void wrongArguments();
    void keepsConnections();
    void logsHoldNoNames();

private:
    QString sqlite()
    {
        return QStringLiteral("sqlite:") + directory.filePath(QStringLiteral("%1.db").arg(++files));
    }

    QTemporaryDir directory;
    int files = 0;
};

void tst_serverProgram::fourActions()
{
    const serverProcess server(sqlite());
    QVERIFY(server.isListening());
    QCOMPARE(server.output, "Listening on " + server.host().toLatin1() + "\n");
    httpDatabase database(server.host());
    QByteArray data;
    QVERIFY(database.request(httpDatabase::referenceVersion, data));
    QCOMPARE(data, QByteArray("1010"));
    QByteArray builtIn;
    QVERIFY(database.request(httpDatabase::reference, builtIn));
    QVERIFY(!readMachines(builtIn).isEmpty());
    QVERIFY(database.request(httpDatabase::betaReference, data));
    QCOMPARE(data, builtIn);
    data = uploadXml("LAB7", "Some CPU", "12.5");
    QVERIFY(database.request(httpDatabase::storeResults, data));
    data.clear(); // what a program without results sends
    QVERIFY(!database.request(httpDatabase::storeResults, data));
}

void tst_serverProgram::otherRequests_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::newRow("question mark") << askVersion << 200;
    QTest::newRow("no question mark") << askVersion.mid(1) << 200;
    QTest::newRow("empty") << QByteArray() << 400;
    QTest::newRow("other app") << QByteArray("app=Other&type=getReferenceVersion") << 400;
    QTest::newRow("no app") << QByteArray("type=getReferenceVersion") << 400;
    QTest::newRow("no type") << QByteArray("app=Fennick") << 400;
    QTest::newRow("other type") << QByteArray("app=Fennick&type=dropTables") << 400;
    QTest::newRow("no form") << QByteArray("%%%") << 400;
    QTest::newRow("NUL") << QByteArray(100, '\0') << 400;
}

void tst_serverProgram::otherRequests()
{
    static const serverProcess server(sqlite());
    rawClient client(server.port);
    QFETCH(QByteArray, body);
    const QByteArray response = client.post(body);
    QTEST(statusOf(response), "status");
    QVERIFY(!bodyOf(response).isEmpty());
}

void tst_serverProgram::tooLarge()
{
    const serverProcess server(sqlite());
    const QByteArray form = "app=Fennick&type=getReferenceVersion&x=";
    const auto padded = [&form](int size) { return form + QByteArray(size - form.size(), 'x'); };
    QCOMPARE(statusOf(rawClient(server.port).post(padded(65536))), 200);
    QCOMPARE(statusOf(rawClient(server.port).post(padded(65537))), 413);
    // Refused for what it announces, before any of it is sent.
    rawClient announcing(server.port);
    announcing.send("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\nContent-Length: "
                    "999999999999\r\n\r\n");
    QCOMPARE(statusOf(announcing.response()), 413);
    QVERIFY(announcing.timeToClose(5'000) >= 0);
    for (const char *head : {"Transfer-Encoding: chunked", "Content-Length: -5",
                             "Content-Length: 99999999999999999999999"}) {
        rawClient client(server.port);
        client.send(QByteArray("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\n") + head
                    + "\r\n\r\n");
        QVERIFY2(statusOf(client.response()) >= 400, head);
    }
    rawClient elsewhere(server.port);
    elsewhere.send("POST /other HTTP/1.1\r\nHost: x\r\nContent-Length: 999999\r\n\r\n");
    QCOMPARE(statusOf(elsewhere.response()), 404);
    // A head without an end is broken off.
    rawClient endless(server.port);
    endless.send("GET / HTTP/1.1\r\n");
    for (int i = 0; i < 100; ++i)
        endless.send("X-" + QByteArray::number(i) + ": " + QByteArray(1'000, 'x') + "\r\n");
    QVERIFY(endless.timeToClose(5'000) >= 0);
    QCOMPARE(statusOf(rawClient(server.port).post(askVersion)), 200);
}

void tst_serverProgram::rangesAreNotServed()
{
    const serverProcess server(sqlite());
    rawClient client(server.port);
    const QByteArray form = "app=Fennick&type=getReference";
    const QByteArray whole = client.post(form);
    const QByteArray ranges = "Range: bytes=" + QByteArray("0-,").repeated(1'000) + "0-\r\n";
    const QByteArray response = client.post(form, ranges);
    QCOMPARE(statusOf(response), 200);
    QCOMPARE(bodyOf(response), bodyOf(whole));
}

void tst_serverProgram::uploadAnswers()
{
    const QString database = sqlite();
    const serverProcess server(database);
    const auto answerTo = [&server](const QByteArray &xml) {
        return rawClient(server.port).post(uploadForm(xml));
    };
    QCOMPARE(statusOf(answerTo(uploadXml("a", "b", "1"))), 200);
    QCOMPARE(statusOf(answerTo(uploadXml("a", "b", "1"))), 200);
    QCOMPARE(statusOf(answerTo(uploadXml("a", "b", "0"))), 200);
    QCOMPARE(statusOf(answerTo("no XML")), 400);
    const QByteArray refused = answerTo(uploadXml("a", "b", "-1"));
    QCOMPARE(statusOf(refused), 422);
    QCOMPARE(bodyOf(refused),
             QByteArray("the result of 'mandel' must be at least 0 and below 870\n"));
    QCOMPARE(listed(database), 2);
}

void tst_serverProgram::uploadLimit()
{
    const serverProcess server(sqlite(),
                               {QStringLiteral("--upload-limit"), QStringLiteral("2/60")});
    const QByteArray body = uploadForm(uploadXml("a", "b", "1"));
    rawClient client(server.port);
    QCOMPARE(statusOf(client.post(body)), 200);
    QCOMPARE(statusOf(client.post(body)), 200);
    QCOMPARE(statusOf(client.post(body)), 429);
    // What a client says of itself changes nothing, and only uploads are limited.
    QCOMPARE(statusOf(client.post(body, "X-Forwarded-For: 10.0.0.1\r\n")), 429);
    QCOMPARE(statusOf(client.post(askVersion)), 200);
}

void tst_serverProgram::onlyUploadsUseUpTheLimit()
{
    const serverProcess server(sqlite(),
                               {QStringLiteral("--upload-limit"), QStringLiteral("1/600")});
    const QByteArray good = uploadForm(uploadXml("a", "b", "1"));
    const QByteArray bad = uploadForm(uploadXml("a", "b", "-1"));
    rawClient client(server.port);
    for (int i = 0; i < 20; ++i)
        QCOMPARE(statusOf(client.post(bad)), 422);
    QCOMPARE(statusOf(client.post(good)), 200);
    QCOMPARE(statusOf(client.post(good)), 429);
}

void tst_serverProgram::readLimit()
{
    const serverProcess server(sqlite(), {QStringLiteral("--read-limit"), QStringLiteral("3/600")});
    rawClient client(server.port);
    QCOMPARE(statusOf(client.post(askVersion)), 200);
    // What is no upload counts too.
    QCOMPARE(statusOf(client.post(uploadForm("no XML"))), 400);
    QCOMPARE(statusOf(client.post(askVersion)), 200);
    const QByteArray refused = client.post(askVersion);
    QCOMPARE(statusOf(refused), 429);
    QVERIFY(refused.contains("\r\nRetry-After: 200\r\n"));
    QCOMPARE(statusOf(client.post(uploadForm(uploadXml("a", "b", "1")))), 429);
    // The connection is as good as before.
    client.send("GET /health HTTP/1.1\r\nHost: x\r\n\r\n");
    QCOMPARE(statusOf(client.response()), 429);
}

void tst_serverProgram::publishedListIsServed()
{
    const QString database = sqlite();
    const serverProcess server(database);
    const QStringList publish = {QStringLiteral("publish"), QStringLiteral("--circle"),
                                 QStringLiteral("--database"), database};
    QCOMPARE(serverProcess::run(publish).out,
             QStringLiteral("Nothing has changed, version 1010 stays\n"));
    for (const float speed : {1.0F, 1.4F, 1.2F}) {
        const QByteArray xml =
            "<F>" + stored(wholeRun(QStringLiteral("New CPU"), speed)).content + "</F>";
        QCOMPARE(statusOf(rawClient(server.port).post(uploadForm(xml))), 200);
    }
    const auto preview = serverProcess::run(publish + QStringList(QStringLiteral("--dry-run")));
    QCOMPARE(preview.out, QStringLiteral("normal  added    New CPU, linux, 4 threads\n"
                                         "BETA    added    New CPU, linux, 4 threads\n"
                                         "Nothing was changed; publish would make a version after "
                                         "1010\n"));
    const auto published = serverProcess::run(publish);
    QCOMPARE(published.code, 0);
    QVERIFY2(published.out.endsWith(QStringLiteral(" from 3 uploads\n")),
             qPrintable(published.out));
    httpDatabase client(server.host());
    QByteArray data;
    QVERIFY(client.request(httpDatabase::referenceVersion, data));
    QVERIFY(data.toInt() > 1010);
    QCOMPARE(published.out.section(QLatin1Char(' '), 2, 2).toLatin1(), data);
    QCOMPARE(
        serverProcess::run(publish).out,
        QStringLiteral("Nothing has changed, version %1 stays\n").arg(QString::fromLatin1(data)));
    QVERIFY(client.request(httpDatabase::reference, data));
    const benchResults newest = readMachines(data).last();
    QCOMPARE(newest.getName(), QStringLiteral("New CPU"));
    const QString mandel = QStringLiteral("mandel");
    QCOMPARE(newest.getTests().value(mandel).value,
             readMachines(stored(wholeRun(QStringLiteral("New CPU"), 1.2F)).content)
                 .first()
                 .getTests()
                 .value(mandel)
                 .value);
    QVERIFY(data.size() > 0 && !data.contains("LAB7"));
}

void tst_serverProgram::nastyNamesArrive()
{
    const QString database = sqlite();
    const serverProcess server(database);
    const QString name =
        QString::fromUtf8("a+b%41 &amp; \"c\" 'd' <\xC3\x9C\xE4\xB8\xAD> %zz;/?#=");
    QByteArray xml =
        "<F>" + stored(machineWith(name, QStringLiteral("A/B CPU"), 1)).content + "</F>";
    httpDatabase client(server.host());
    QVERIFY(client.request(httpDatabase::storeResults, xml));
    const auto exported =
        serverProcess::run({QStringLiteral("export"), QStringLiteral("--database"), database});
    const QVector<benchResults> machines = readMachines(exported.out.toUtf8());
    QCOMPARE(machines.size(), 1);
    QCOMPARE(machines.first().getName(), name);
    QCOMPARE(machines.first().getCpu(), QStringLiteral("A/B CPU"));
    // A name of two lines is refused with a reason, and not cut.
    QCOMPARE(statusOf(rawClient(server.port).post(uploadForm(uploadXml("a&#10;b", "c", "1")))),
             422);
}

void tst_serverProgram::commands()
{
    const QString database = sqlite();
    const auto run = [&database](QStringList arguments) {
        return serverProcess::run(arguments << QStringLiteral("--database") << database);
    };
    const QString list = directory.filePath(QStringLiteral("list.xml"));
    QFile file(list);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(uploadXml("PRIVATE", "My CPU", "5"));
    file.close();
    QCOMPARE(run({QStringLiteral("import"), list}).out,
             QStringLiteral("Read 1 uploads and 0 lists, passed over 0 modelled machines\n"));
    const QString table = run({QStringLiteral("list")}).out;
    QVERIFY2(
        table.contains(QStringLiteral("received             My CPU, linux, 4, 1, no whole run\n")),
        qPrintable(table));
    QVERIFY(!table.contains(QStringLiteral("PRIVATE")));
    const auto missing = run({QStringLiteral("withdraw"), QStringLiteral("99"),
                              QStringLiteral("--why"), QStringLiteral("x")});
    QCOMPARE(missing.code, 1);
    QCOMPARE(missing.err,
             QStringLiteral("fennick-server: there is no upload 99 that could be withdrawn\n"));
    QCOMPARE(run({QStringLiteral("withdraw"), QStringLiteral("1"), QStringLiteral("--why"),
                  QStringLiteral("a typo")})
                 .code,
             0);
    QVERIFY(run({QStringLiteral("list")})
                .out.contains(QStringLiteral("My CPU, linux, 4, 1, no whole run (a typo)\n")));
    QVERIFY(run({QStringLiteral("export")}).out.contains(QStringLiteral("reason=\"a typo\"")));
    const auto noFile = run({QStringLiteral("import"), list + QStringLiteral(".none")});
    QCOMPARE(noFile.code, 1);
    QVERIFY(noFile.err.contains(QStringLiteral("cannot be read: No such file")));
    QVERIFY(serverProcess::run({QStringLiteral("--help")})
                .out.contains(QStringLiteral("withdraw [ID]")));
    QCOMPARE(serverProcess::run({QStringLiteral("--version")}).code, 0);
}

/// What a person sees who looks after the database.
void tst_serverProgram::moderation()
{
    const QString database = sqlite();
    const auto run = [&database](const char *arguments) {
        QStringList all = QString::fromLatin1(arguments).split(QLatin1Char(' '));
        return serverProcess::run(all << QStringLiteral("--database") << database);
    };
    {
        resultStore store(*parseDatabaseAddress(database));
        QVERIFY(store.open());
        QVector<storedUpload> uploads;
        for (const float speed : {1.0F, 1.01F, 500.0F})
            uploads.append(stored(wholeRun(QStringLiteral("X"), speed)));
        uploads.append(stored(wholeRun(QStringLiteral("unknown"))));
        QVERIFY(store.add(uploads));
    }
    QCOMPARE(run("withdraw --processor x --why flood --dry-run").out,
             QStringLiteral("3 uploads would be withdrawn: 1-3\n"));
    QCOMPARE(run("withdraw 1 --why flood --dry-run").out,
             QStringLiteral("Upload 1 would be withdrawn\n"));
    QCOMPARE(run("withdraw 1 --why flood").out,
             QStringLiteral("Upload 1 is withdrawn; the next version will be without it\n"));
    QCOMPARE(run("restore 1").out,
             QStringLiteral("Upload 1 is restored; it counts from the next version on\n"));
    QCOMPARE(run("accept --state held --why seen").out,
             QStringLiteral("1 uploads are accepted: 3\n"
                            "Not accepted, because their processors' names are not published: "
                            "4\n"));
    const auto refused = run("accept 4 --why seen");
    QCOMPARE(refused.code, 1);
    QVERIFY(refused.err.contains(QStringLiteral("upload 4 cannot be accepted")));
    QCOMPARE(run("forget --older-than 1").out, QStringLiteral("4 uploads are forgotten: 1-4\n"));
    QCOMPARE(run("forget --older-than 1").out, QStringLiteral("0 uploads are forgotten\n"));
    QVERIFY(!run("export").out.contains(QStringLiteral("LAB7")));
    const QByteArray json = run("list --json --limit 1 --after 1").out.toUtf8();
    const QJsonArray array = QJsonDocument::fromJson(json).array();
    QCOMPARE(array.size(), 1);
    QCOMPARE(array.first().toObject().value(QStringLiteral("id")).toInt(), 2);
    QVERIFY(run("list 2 --values").out.contains(QStringLiteral("          shellsort ")));
}

void tst_serverProgram::portInUse()
{
    const serverProcess server(sqlite());
    const auto second = serverProcess::run({QStringLiteral("serve"), QStringLiteral("--listen"),
                                            server.host(), QStringLiteral("--database"), sqlite()});
    QCOMPARE(second.code, 1);
    QCOMPARE(second.err, QStringLiteral("fennick-server: cannot listen on %1; is something else "
                                        "listening there? (Address already in use)\n")
                             .arg(server.host()));
    // An address that is nobody's, written as it was given.
    const auto nowhere = serverProcess::run({QStringLiteral("serve"), QStringLiteral("--listen"),
                                             QStringLiteral("[2001:db8::1]:8426"),
                                             QStringLiteral("--database"), sqlite()});
    QCOMPARE(nowhere.code, 1);
    QVERIFY2(nowhere.err.startsWith(
                 QStringLiteral("fennick-server: cannot listen on [2001:db8::1]:8426; ")),
             qPrintable(nowhere.err));
}

void tst_serverProgram::wrongArguments()
{
    const auto result = serverProcess::run({QStringLiteral("sevre")});
    QCOMPARE(result.code, 2);
    QVERIFY(result.err.startsWith(QStringLiteral("fennick-server: there is no command 'sevre'")));
}

void tst_serverProgram::keepsConnections()
{
    const serverProcess server(sqlite());
    rawClient client(server.port);
    for (int i = 0; i < 20; ++i)
        QCOMPARE(bodyOf(client.post(askVersion)), QByteArray("1010"));
    client.send("GET /health HTTP/1.1\r\nHost: x\r\n\r\n");
    QCOMPARE(statusOf(client.response()), 200);
    client.send("GET /health/reading HTTP/1.1\r\nHost: x\r\n\r\n");
    QCOMPARE(statusOf(client.response()), 200);
}

void tst_serverProgram::logsHoldNoNames()
{
    serverProcess server(sqlite());
    rawClient client(server.port);
    client.post(uploadForm(uploadXml("SECRETNAME", "SECRETCPU", "1")));
    client.post(uploadForm(uploadXml("SECRETNAME", "SECRETCPU", "-1")));
    client.post(uploadForm(uploadXml("SECRETNAME", "SECRET (est.)", "1")));
    client.post(uploadForm(uploadXml("SECRETNAME", "SECRETCPU", "SECRET")));
    client.post(uploadForm(uploadXml("SECRETNAME", "SECRETCPU", "1").replace("mandel", "SECRET")));
    QCOMPARE(server.terminate(), 0);
    const QByteArray log = server.process.readAllStandardError();
    for (const char *reason : {"impossible result", "processor's name", "format", "unknown test"})
        QVERIFY2(log.contains(QByteArray("upload refused: ") + reason + '\n'), log);
    QVERIFY(!log.contains("SECRET"));
    QVERIFY(!log.contains("127.0.0.1"));
}

QTEST_GUILESS_MAIN(tst_serverProgram)
#include "tst_serverProgram.moc"
