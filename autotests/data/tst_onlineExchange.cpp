// SPDX-License-Identifier: GPL-3.0-or-later

// The list of machines and the stored results on their way over a real connection.
#include "data/benchDataAccess.h"

#include "data/benchXml.h"
#include "data/httpDatabase.h"
#include "formDecoder.h"
#include "support/dataDirectory.h"
#include "support/fakeServer.h"
#include "support/textLog.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QtTest>
#include <QXmlStreamWriter>

namespace
{

constexpr int shortTime = 200;
constexpr int longTime = 60'000;

const QString dbFile = QStringLiteral("db.xml");
const QString versionFile = QStringLiteral("db_version");
const QString userFile = QStringLiteral("user_data.xml");

const QByteArray local = "<Fennick><bench machineName=\"Local\"/></Fennick>";
const QByteArray online = "<Fennick>\r\n<bench machineName=\"Online\"/>\n</Fennick>";

/// A data access whose database is a server with one reply for each type of request.
struct exchange {
    explicit exchange(const httpDatabase::timeOuts &limits = {longTime, longTime})
    {
        server.reply = [this](QTcpSocket &socket) {
            const fakeServer::answer reply = replies.value(type(), sending({}));
            reply(socket);
        };
        data = std::make_unique<benchDataAccess>(
            &log, QVector<testBase *>(), std::make_unique<httpDatabase>(server.host(), limits));
    }

    QByteArray type() const { return formItems(server.lastBody()).value(1).second; }

    QString firstMachine() const
    {
        return data->getResults().isEmpty() ? QString() : data->getResults().first().getName();
    }

    fakeServer server;
    QMap<QByteArray, fakeServer::answer> replies;
    textLog log;
    std::unique_ptr<benchDataAccess> data;
};

QByteArray xmlOf(const QString &name)
{
    QByteArray content;
    QXmlStreamWriter xml(&content);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("Fennick"));
    writeMachine(xml, {name, QStringLiteral("linux"), QStringLiteral("A&B \"+\" %2B"), 3.5e9F, 8});
    xml.writeEndDocument();
    return content;
}

} // namespace

Q_DECLARE_METATYPE(fakeServer::answer)

class tst_onlineExchange : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        directory = std::make_unique<dataDirectory>();
        QVERIFY(directory->write(dbFile, local));
        QVERIFY(directory->write(versionFile, "1200"));
    }
    void cleanup() { directory.reset(); }

    void downloaded();
    void downloadedBeta();
    void noVersion_data();
    void noVersion();
    void strangeVersion_data();
    void strangeVersion();
    void badDownload_data();
    void badDownload();
    void uploaded_data();
    void uploaded();
    void uploadHasPlainLineEnds();
    void uploadWithoutFile();
    void uploadWithoutDirectory();
    void uploadFails_data();
    void uploadFails();
    void uploadAfterTheTimeOut();

private:
    void verifyUntouched() const
    {
        QCOMPARE(directory->read(dbFile), local);
        QCOMPARE(directory->read(versionFile), QByteArray("1200"));
    }

    std::unique_ptr<dataDirectory> directory;
};

void tst_onlineExchange::downloaded()
{
    exchange e;
    e.replies = {{"getReferenceVersion", sending(httpReply("1201"))},
                 {"getReference", sending(httpReply(qCompress(online)))}};
    e.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(e.log.text, QStringLiteral("Online database has version 1201 (local 1200)\n"
                                        "Update DB successfully\nUse local benchmark DB\n"
                                        "Found 1 devices (1 unique)\n"));
    QCOMPARE(e.firstMachine(), QStringLiteral("Online"));
    QCOMPARE(directory->read(dbFile), online);
    QCOMPARE(directory->read(versionFile), QByteArray("1201"));
}

void tst_onlineExchange::downloadedBeta()
{
    exchange e;
    e.replies = {{"getReferenceBeta", sending(httpReply(qCompress(online)))}};
    e.data->loadReferenceData(benchDataAccess::betaReference);
    QCOMPARE(e.log.text, QStringLiteral("Update DB successfully (BETA)\nUse local benchmark DB\n"
                                        "Found 1 devices (1 unique)\n"));
    QCOMPARE(directory->read(dbFile), online);
    QCOMPARE(directory->read(versionFile), QByteArray("0"));
}

void tst_onlineExchange::noVersion_data()
{
    QTest::addColumn<fakeServer::answer>("reply");
    QTest::addColumn<int>("timeOut");
    const auto row = [](const char *name, const fakeServer::answer &reply, int timeOut = longTime) {
        QTest::newRow(name) << reply << timeOut;
    };
    row("silent", sending({}), shortTime);
    row("closed", closingAfter({}));
    row("closed in the middle", closingAfter("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n1500"));
    row("empty", sending(httpReply("")));
    row("404", sending(httpReply("1500", "404 Not Found")));
    row("500", sending(httpReply("1500", "500 Internal Server Error")));
    row("endless", endless("HTTP/1.1 200 OK\r\n\r\n", QByteArray(64 * 1024, '9')));
    row("endless header", endless("HTTP/1.1 200 OK\r\n", "X: " + QByteArray(1000, '9') + "\r\n"),
        shortTime);
}

void tst_onlineExchange::noVersion()
{
    QFETCH(fakeServer::answer, reply);
    QFETCH(int, timeOut);
    exchange e({timeOut, longTime});
    e.replies = {{"getReferenceVersion", reply}};
    QElapsedTimer timer;
    timer.start();
    e.data->loadReferenceData(benchDataAccess::normalReference);
    QVERIFY(timer.elapsed() < longTime / 2);
    QCOMPARE(e.log.text, QStringLiteral("No online database found\nUse local benchmark DB\n"
                                        "Found 1 devices (1 unique)\n"));
    QCOMPARE(e.firstMachine(), QStringLiteral("Local"));
    QCOMPARE(e.server.requests.size(), 1);
    verifyUntouched();
}

void tst_onlineExchange::strangeVersion_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<QString>("shown");
    QTest::newRow("not a number") << QByteArray("<html>%1</html>") << QStringLiteral("0");
    QTest::newRow("2^32") << QByteArray("4294967296") << QStringLiteral("0");
    QTest::newRow("negative") << QByteArray("-1") << QStringLiteral("0");
    QTest::newRow("same") << QByteArray("1200\n") << QStringLiteral("1200");
}

void tst_onlineExchange::strangeVersion()
{
    QFETCH(QByteArray, version);
    QFETCH(QString, shown);
    exchange e;
    e.replies = {{"getReferenceVersion", sending(httpReply(version))}};
    e.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(e.log.text, QStringLiteral("Online database has version %1 (local 1200)\n"
                                        "Use local benchmark DB\nFound 1 devices (1 unique)\n")
                             .arg(shown));
    QCOMPARE(e.server.requests.size(), 1);
    verifyUntouched();
}

void tst_onlineExchange::badDownload_data()
{
    QTest::addColumn<fakeServer::answer>("reply");
    QTest::addColumn<int>("timeOut");
    const auto row = [](const char *name, const fakeServer::answer &reply, int timeOut = longTime) {
        QTest::newRow(name) << reply << timeOut;
    };
    const QByteArray packed = qCompress(online);
    const QByteArray whole = httpReply(packed);
    row("silent", sending({}), shortTime);
    row("half of it, silent", sending(whole.left(whole.size() - packed.size() / 2)), shortTime);
    row("half of it, closed", closingAfter(whole.left(whole.size() - packed.size() / 2)));
    row("closed", closingAfter({}));
    row("empty", sending(httpReply("")));
    row("404", sending(httpReply(packed, "404 Not Found")));
    row("redirect", sending(httpReply("", "302 Found", "Location: http://127.0.0.1:1/\r\n")));
    row("not packed", sending(httpReply(online)));
    row("no machine", sending(httpReply(qCompress("<Fennick/>"))));
    row("4 GB in front", sending(httpReply("\xff\xff\xff\xff" + packed.mid(4))));
    row("too long",
        sending(httpReply(qCompress(QByteArray(static_cast<int>(maximumXmlSize) + 1, ' ')))));
    row("endless", endless("HTTP/1.1 200 OK\r\n\r\n", QByteArray(64 * 1024, 'x')));
}

void tst_onlineExchange::badDownload()
{
    QFETCH(fakeServer::answer, reply);
    QFETCH(int, timeOut);
    exchange e({longTime, timeOut});
    e.replies = {{"getReferenceVersion", sending(httpReply("1201"))},
                 {"getReference", reply},
                 {"getReferenceBeta", reply}};
    e.data->loadReferenceData(benchDataAccess::normalReference);
    // The built-in list, even though there is an older download.
    const QString builtIn = QStringLiteral("Use internal benchmark DB\nFound ");
    QVERIFY2(e.log.text.startsWith(QStringLiteral("Online database has version 1201 (local 1200)\n")
                                   + builtIn),
             qPrintable(e.log.text));
    verifyUntouched();

    e.log.text.clear();
    e.data->loadReferenceData(benchDataAccess::betaReference);
    QVERIFY2(e.log.text.startsWith(builtIn), qPrintable(e.log.text));
    QVERIFY(e.firstMachine() != QStringLiteral("Local"));
    verifyUntouched();
}

void tst_onlineExchange::uploaded_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name :
         {"LAB7", "C++ & D", "100%41 sure", "a=b&type=getReference", "\"double\" and 'single'",
          "two\nlines", "\t tab ", "<b>&amp;</b>", "#?/;:", "M\xc3\xa4usebunker",
          "\xf0\x9f\xa6\x8a \xe7\x8b\x90", "%", "+", "a+b%2Bc%"})
        QTest::newRow(QByteArray(name).toPercentEncoding()) << QString::fromUtf8(name);
}

void tst_onlineExchange::uploaded()
{
    QFETCH(QString, name);
    const QByteArray stored = xmlOf(name);
    QVERIFY(directory->write(userFile, stored));
    exchange e;
    e.replies = {{"storeUserData", sending(httpReply("thanks"))}};
    QVERIFY(e.data->uploadResults());
    QCOMPARE(e.log.text, QStringLiteral("Upload results\n"));

    const QByteArray body = e.server.lastBody();
    QVERIFY(body.startsWith("?app=Fennick&type=storeUserData&results="));
    const auto items = formItems(body);
    QCOMPARE(items.size(), 3);
    QCOMPARE(items.at(2).first, QByteArray("results"));
    QByteArray received = items.at(2).second;
    QCOMPARE(received, stored);
    QBuffer buffer(&received);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QVector<benchResults> machines;
    readMachines(buffer, machines);
    QCOMPARE(machines.size(), 1);
    QCOMPARE(machines.first().getName(), name);
    QCOMPARE(machines.first().getCpu(), QStringLiteral("A&B \"+\" %2B"));
}

/// The stored results are text, with the line ends of the system that wrote them.
void tst_onlineExchange::uploadHasPlainLineEnds()
{
    QVERIFY(directory->write(userFile, "<F>\r\n<bench os='o'/>\r\n</F>\r\n"));
    exchange e;
    e.replies = {{"storeUserData", sending(httpReply("thanks"))}};
    QVERIFY(e.data->uploadResults());
    QCOMPARE(formItems(e.server.lastBody()).value(2).second,
             QByteArray("<F>\n<bench os='o'/>\n</F>\n"));
}

void tst_onlineExchange::uploadWithoutFile()
{
    exchange e;
    e.replies = {{"storeUserData", sending(httpReply(""))}};
    QVERIFY(e.data->uploadResults());
    QCOMPARE(e.log.text, QStringLiteral("Can't upload: no user results found\nUpload results\n"));
    QCOMPARE(e.server.lastBody(), QByteArray("?app=Fennick&type=storeUserData&results="));
}

void tst_onlineExchange::uploadWithoutDirectory()
{
    // A file where the directory should be.
    const QString file = directory->rootPath() + QStringLiteral("/file");
    QVERIFY(QFile(directory->path(dbFile)).copy(file));
    qputenv("XDG_DATA_HOME", QFile::encodeName(file));
    exchange e;
    QVERIFY(!e.data->uploadResults());
    QVERIFY(e.log.text.endsWith(
        QStringLiteral("/file/fennick'\nCan't upload results (directory) found\n")));
    QCOMPARE(e.server.connections, 0);
}

void tst_onlineExchange::uploadFails_data()
{
    QTest::addColumn<fakeServer::answer>("reply");
    QTest::newRow("closed") << closingAfter({});
    QTest::newRow("404") << sending(httpReply("", "404 Not Found"));
    QTest::newRow("500") << sending(httpReply("", "500 Internal Server Error"));
}

void tst_onlineExchange::uploadFails()
{
    QFETCH(fakeServer::answer, reply);
    const QByteArray stored = xmlOf(QStringLiteral("LAB7"));
    QVERIFY(directory->write(userFile, stored));
    exchange e;
    e.replies = {{"storeUserData", reply}};
    QVERIFY(!e.data->uploadResults());
    QCOMPARE(e.log.text, QStringLiteral("Can't upload results\n"));
    QCOMPARE(e.server.requests.size(), 1);
    QCOMPARE(directory->read(userFile), stored);
    e.server.stop();
    QVERIFY(!e.data->uploadResults());
}

void tst_onlineExchange::uploadAfterTheTimeOut()
{
    QVERIFY(directory->write(userFile, xmlOf(QStringLiteral("LAB7"))));
    exchange e({longTime, shortTime});
    QVERIFY(e.data->uploadResults());
    QCOMPARE(e.log.text, QStringLiteral("Upload results\n"));
}

QTEST_GUILESS_MAIN(tst_onlineExchange)
#include "tst_onlineExchange.moc"
