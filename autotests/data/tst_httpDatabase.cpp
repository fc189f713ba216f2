// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/httpDatabase.h"

#include "data/benchDataAccess.h"
#include "data/benchXml.h"
#include "data/compressed.h"
#include "data/formBody.h"

#include "support/dataDirectory.h"
#include "support/fakeWebServer.h"
#include "support/textLog.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QtEndian>
#include <QtTest>

#include <array>

#include <sys/resource.h>
#include <zlib.h>

namespace
{

const QByteArray list = "<Fennick><bench machineName=\"online\" os=\"linux\"/></Fennick>";
const QByteArray nastyName = "a+b%41%zz&c=d\"e'f\ng\r\nh \xC3\x9C\xE4\xB8\xAD\xF0\x9F\x90\xA7;/?#";
constexpr httpDatabase::timeOuts shortTimes{300, 400};

/// Percent-decoding as a server does it, by hand.
QByteArray decoded(const QByteArray &text)
{
    QByteArray result;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == '%') {
            result.append(static_cast<char>(text.mid(i + 1, 2).toInt(nullptr, 16)));
            i += 2;
        } else {
            result.append(text.at(i) == '+' ? ' ' : text.at(i));
        }
    }
    return result;
}

QMap<QByteArray, QByteArray> itemsOf(const QByteArray &body)
{
    QMap<QByteArray, QByteArray> items;
    for (const QByteArray &item : body.mid(1).split('&'))
        items.insert(item.left(item.indexOf('=')), decoded(item.mid(item.indexOf('=') + 1)));
    return items;
}

QByteArray withLength(quint32 length, const QByteArray &packed)
{
    QByteArray result = packed;
    qToBigEndian(length, result.data());
    return result;
}

/// 200 MB of blanks in the packed form, made without ever holding them.
QByteArray packedBlanks()
{
    QByteArray result(4, '\0');
    QByteArray piece(1'000'000, ' ');
    std::array<unsigned char, 64 * 1024> out{};
    z_stream stream{};
    deflateInit(&stream, 1);
    for (int i = 1; i <= 200; ++i) {
        stream.next_in = reinterpret_cast<Bytef *>(piece.data());
        stream.avail_in = static_cast<uInt>(piece.size());
        do {
            stream.next_out = out.data();
            stream.avail_out = static_cast<uInt>(out.size());
            deflate(&stream, i == 200 ? Z_FINISH : Z_NO_FLUSH);
            result.append(reinterpret_cast<const char *>(out.data()),
                          static_cast<int>(out.size() - stream.avail_out));
        } while (stream.avail_out == 0);
    }
    deflateEnd(&stream);
    return result;
}

long peakMebibytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

/// A data access with a list of its own stored, in front of a server.
struct fixture {
    fixture()
    {
        directory.write(QStringLiteral("db.xml"), storedList);
        directory.write(QStringLiteral("db_version"), "1020");
        data = std::make_unique<benchDataAccess>(
            &log, QVector<testBase *>(), std::make_unique<httpDatabase>(server.host(), shortTimes));
    }
    bool isStoredListIntact() const
    {
        return directory.read(QStringLiteral("db.xml")) == storedList
               && directory.read(QStringLiteral("db_version")) == "1020";
    }

    const QByteArray storedList = "<F><bench machineName=\"stored\" os=\"linux\"/></F>";
    dataDirectory directory;
    fakeWebServer server;
    textLog log;
    std::unique_ptr<benchDataAccess> data;
};

} // namespace

class tst_httpDatabase : public QObject
{
    Q_OBJECT

private slots:
    void requests_data();
    void requests();
    void otherNumbers();
    void uploadBody();
    void upload_data();
    void upload();
    void version_data();
    void version();
    void lists_data();
    void lists();
    void refused();
    void brokenOff_data();
    void brokenOff();
    void slowReply_data();
    void slowReply();
    void endlessReply();
    void memoryOfHostileLists_data();
    void memoryOfHostileLists();
    void unpackedSize();
    void faultsKeepTheStoredList_data();
    void faultsKeepTheStoredList();
    void download();
    void uploadWithoutAFile();
    void uploadOfTheFile();
    void uploadWithoutADirectory();
    void defaultHost();
};

void tst_httpDatabase::requests_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("version") << 0 << QByteArray("?app=Fennick&type=getReferenceVersion");
    QTest::newRow("list") << 1 << QByteArray("?app=Fennick&type=getReference");
    QTest::newRow("BETA list") << 2 << QByteArray("?app=Fennick&type=getReferenceBeta");
    QTest::newRow("upload") << 3 << QByteArray("?app=Fennick&type=storeUserData&results=x");
}

void tst_httpDatabase::requests()
{
    fakeWebServer server;
    server.answer("1");
    httpDatabase database(server.host());
    QFETCH(int, number);
    QByteArray data = "x";
    database.request(number, data);
    QCOMPARE(server.requests, 1);
    QTEST(server.body, "body");
    QVERIFY(server.head.startsWith("POST /php/Fennick/mcp.php HTTP/1.1\r\n"));
    QVERIFY(server.head.contains("\r\nContent-Type: application/x-www-form-urlencoded\r\n"));
}

void tst_httpDatabase::otherNumbers()
{
    fakeWebServer server;
    server.answer("1");
    httpDatabase database(server.host());
    QByteArray data;
    for (const int number : {-1, 4, 1000})
        QVERIFY(!database.request(number, data));
    QCOMPARE(server.requests, 0);
}

void tst_httpDatabase::uploadBody()
{
    // Known bytes, worked out by hand.
    QCOMPARE(formBody("storeUserData", "a+b %41\n\"&\xC3\x9C~-._"),
             QByteArray("?app=Fennick&type=storeUserData&results="
                        "a%2Bb%20%2541%0A%22%26%C3%9C~-._"));
    QCOMPARE(formBody("storeUserData", ""), QByteArray("?app=Fennick&type=storeUserData&results="));
    QCOMPARE(formBody("getReference", {}), QByteArray("?app=Fennick&type=getReference"));
    // Every byte that UTF-8 text can hold arrives.
    QString all;
    for (ushort c = 1; c < 0x300; ++c)
        all.append(QChar(c));
    QCOMPARE(itemsOf(formBody("t", all.toUtf8())).value("results"), all.toUtf8());
}

void tst_httpDatabase::upload_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<bool>("ok");
    QTest::newRow("200") << QByteArray("200 OK") << true;
    QTest::newRow("204") << QByteArray("204 No Content") << true;
    QTest::newRow("400") << QByteArray("400 Bad Request") << false;
    QTest::newRow("404") << QByteArray("404 Not Found") << false;
    QTest::newRow("413") << QByteArray("413 Too Large") << false;
    QTest::newRow("500") << QByteArray("500 Oh") << false;
}

void tst_httpDatabase::upload()
{
    fakeWebServer server;
    QFETCH(QByteArray, status);
    server.answer("", status);
    httpDatabase database(server.host());
    QByteArray data = nastyName;
    QTEST(database.request(3, data), "ok");
    QCOMPARE(data, nastyName);
    QCOMPARE(itemsOf(server.body).value("results"), nastyName);
}

void tst_httpDatabase::version_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("log");
    const auto row = [](const char *name, const QByteArray &reply, const QString &shown) {
        QTest::newRow(name)
            << reply << QStringLiteral("Online database has version %1 (local 1010)\n").arg(shown);
    };
    row("older", "7", QStringLiteral("7"));
    row("the same", "1010", QStringLiteral("1010"));
    row("no number", "<html>", QStringLiteral("0"));
    row("2^32", "4294967296", QStringLiteral("0"));
    row("negative", "-1", QStringLiteral("0"));
    QTest::newRow("empty") << QByteArray() << QStringLiteral("No online database found\n");
}

void tst_httpDatabase::version()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, log);
    const dataDirectory directory;
    fakeWebServer server;
    server.answer(reply);
    textLog text;
    benchDataAccess data(&text, {}, std::make_unique<httpDatabase>(server.host()));
    data.loadReferenceData(benchDataAccess::normalReference);
    QVERIFY2(text.text.startsWith(log + QStringLiteral("Use internal benchmark DB\n")),
             qPrintable(text.text));
    QCOMPARE(server.requests, 1);
}

void tst_httpDatabase::lists_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QByteArray>("unpacked");
    const QByteArray packed = qCompress(list);
    QTest::newRow("good") << packed << list;
    QTest::newRow("longer than it says") << withLength(1, packed) << list;
    QTest::newRow("shorter than it says") << withLength(1000, packed) << list;
    QTest::newRow("not packed") << list << QByteArray();
    QTest::newRow("no length in front") << packed.mid(4) << QByteArray();
    QTest::newRow("cut off") << packed.left(packed.size() - 6) << QByteArray();
    QTest::newRow("damaged") << QByteArray(packed).replace(20, 3, "...") << QByteArray();
    QTest::newRow("only a length") << packed.left(4) << QByteArray();
    QTest::newRow("packed nothing") << qCompress(QByteArray()) << QByteArray();
    QTest::newRow("a length of 4 GB") << withLength(0xFFFFFFFFU, packed) << QByteArray();
    QTest::newRow("empty") << QByteArray() << QByteArray();
}

void tst_httpDatabase::lists()
{
    QFETCH(QByteArray, reply);
    QFETCH(QByteArray, unpacked);
    fakeWebServer server;
    server.answer(reply);
    httpDatabase database(server.host());
    for (const int number : {1, 2}) {
        QByteArray data;
        QCOMPARE(database.request(number, data), !unpacked.isEmpty());
        QCOMPARE(data, unpacked);
    }
}

void tst_httpDatabase::refused()
{
    QString host;
    {
        const fakeWebServer gone;
        host = gone.host();
    }
    httpDatabase database(host);
    QElapsedTimer timer;
    timer.start();
    QByteArray data;
    for (int number = 0; number < 4; ++number)
        QVERIFY(!database.request(number, data));
    QVERIFY(timer.elapsed() < 6000); // at once, and not after the shortest time-out
}

void tst_httpDatabase::brokenOff_data()
{
    QTest::addColumn<bool>("atOnce");
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("before the request") << true << QByteArray();
    QTest::newRow("without a reply") << false << QByteArray();
    QTest::newRow("in the head") << false << QByteArray("HTTP/1.1 200 OK\r\nConten");
    QTest::newRow("in the body") << false
                                 << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 900\r\n\r\n1");
}

void tst_httpDatabase::brokenOff()
{
    fakeWebServer server;
    QFETCH(bool, atOnce);
    QFETCH(QByteArray, reply);
    server.closesAtOnce = atOnce;
    server.closesAfter = true;
    server.reply = reply;
    httpDatabase database(server.host());
    for (int number = 0; number < 4; ++number) {
        QByteArray data;
        QVERIFY(!database.request(number, data));
    }
}

void tst_httpDatabase::slowReply_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("ok");
    QTest::newRow("version") << 0 << false;
    QTest::newRow("list") << 1 << false;
    QTest::newRow("BETA list") << 2 << false;
    // Nothing says that an upload has failed whose reply is still on its way.
    QTest::newRow("upload") << 3 << true;
}

void tst_httpDatabase::slowReply()
{
    QFETCH(int, number);
    fakeWebServer server;
    server.answer(qCompress(list));
    server.delay = 60'000;
    httpDatabase database(server.host(), shortTimes);
    QElapsedTimer timer;
    timer.start();
    QByteArray data;
    QTEST(database.request(number, data), "ok");
    QVERIFY(timer.elapsed() >= (number == 0 ? shortTimes.version : shortTimes.others) - 20);
    QVERIFY(timer.elapsed() < 20'000);
    // The next request is not answered by what is left of the last one.
    server.delay = 0;
    server.answer("42");
    QVERIFY(database.request(0, data));
    QCOMPARE(data, QByteArray("42"));
}

void tst_httpDatabase::endlessReply()
{
    fakeWebServer server;
    server.reply = "HTTP/1.1 200 OK\r\n\r\n";
    server.endlessly = QByteArray(1024 * 1024, 'x');
    httpDatabase database(server.host());
    QByteArray data;
    const long before = peakMebibytes();
    QVERIFY(!database.request(1, data));
    QVERIFY(peakMebibytes() - before < 100);
}

void tst_httpDatabase::memoryOfHostileLists_data()
{
    QTest::addColumn<quint32>("length");
    QTest::newRow("honest") << quint32(200'000'000);
    QTest::newRow("too short") << quint32(100);
    QTest::newRow("too long") << quint32(0xFFFFFFF0);
}

void tst_httpDatabase::memoryOfHostileLists()
{
    QFETCH(quint32, length);
    const QByteArray reply = withLength(length, packedBlanks());
    const long before = peakMebibytes();
    QVERIFY(uncompressed(reply, maximumXmlSize).isNull());
    QVERIFY2(peakMebibytes() - before < 40, qPrintable(QString::number(peakMebibytes() - before)));
}

void tst_httpDatabase::unpackedSize()
{
    QCOMPARE(uncompressed(qCompress(list), list.size()), list);
    QVERIFY(uncompressed(qCompress(list), list.size() - 1).isNull());
}

void tst_httpDatabase::faultsKeepTheStoredList_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("status");
    const QByteArray ok("200 OK");
    QTest::newRow("not packed") << QByteArray("9999") << ok;
    QTest::newRow("404") << QByteArray("9999") << QByteArray("404 Not Found");
    QTest::newRow("500") << QByteArray("9999") << QByteArray("500 Oh");
    QTest::newRow("redirect") << QByteArray("9999") << QByteArray("302 Found");
}

void tst_httpDatabase::faultsKeepTheStoredList()
{
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, status);
    fixture f;
    f.server.answer(body, status, "Location: http://" + f.server.host().toLatin1() + "/other\r\n");
    f.data->loadReferenceData(benchDataAccess::normalReference);
    f.data->loadReferenceData(benchDataAccess::betaReference);
    QVERIFY(f.isStoredListIntact());
    QVERIFY(f.log.text.endsWith(QStringLiteral("unique)\n")));
    QVERIFY(!f.log.text.contains(QStringLiteral("Update DB")));
    QVERIFY(f.server.head.startsWith("POST /php/")); // no redirect was followed
}

void tst_httpDatabase::download()
{
    fixture f;
    f.server.answer(qCompress(list));
    f.data->loadReferenceData(benchDataAccess::betaReference);
    QCOMPARE(f.log.text, QStringLiteral("Update DB successfully (BETA)\nUse local benchmark DB\n"
                                        "Found 1 devices (1 unique)\n"));
    QCOMPARE(f.directory.read(QStringLiteral("db.xml")), list);
    QCOMPARE(f.directory.read(QStringLiteral("db_version")), QByteArray("0"));
    QCOMPARE(f.data->getResults().last().getName(), QStringLiteral("online"));
}

void tst_httpDatabase::uploadWithoutAFile()
{
    fixture f;
    f.server.answer("thanks");
    f.data->uploadResults();
    QCOMPARE(f.log.text, QStringLiteral("Can't upload: no user results found\nUpload results\n"));
    QCOMPARE(f.server.body, QByteArray("?app=Fennick&type=storeUserData&results="));
    f.log.text.clear();
    f.server.answer("", "400 Bad Request");
    f.data->uploadResults();
    QCOMPARE(f.log.text,
             QStringLiteral("Can't upload: no user results found\nCan't upload results\n"));
}

void tst_httpDatabase::uploadOfTheFile()
{
    // From the name in the environment to the one that the server reads.
    fixture f;
    f.server.answer("thanks");
    qputenv("COMPUTERNAME", nastyName);
    f.data->loadReferenceData(benchDataAccess::builtInReference);
    f.data->loadUserData();
    qunsetenv("COMPUTERNAME");
    f.data->storeUserData();
    f.log.text.clear();
    f.data->uploadResults();
    QCOMPARE(f.log.text, QStringLiteral("Upload results\n"));
    QByteArray xml = itemsOf(f.server.body).value("results");
    QCOMPARE(xml, f.directory.read(QStringLiteral("user_data.xml")));
    QBuffer buffer(&xml);
    buffer.open(QIODevice::ReadOnly);
    QVector<benchResults> machines;
    readMachines(buffer, machines);
    QCOMPARE(machines.size(), 1);
    QCOMPARE(machines.first().getName(), QString::fromUtf8(nastyName));
}

void tst_httpDatabase::uploadWithoutADirectory()
{
    fixture f;
    qputenv("XDG_DATA_HOME", "/proc/none");
    f.data->uploadResults();
    QVERIFY(f.log.text.endsWith(QStringLiteral("Can't upload results (directory) found\n")));
    QCOMPARE(f.server.requests, 0);
}

void tst_httpDatabase::defaultHost()
{
    QCOMPARE(httpDatabase::defaultHost(), QStringLiteral(FENNICK_EXPECTED_RESULT_HOST));
}

QTEST_GUILESS_MAIN(tst_httpDatabase)
#include "tst_httpDatabase.moc"
