// SPDX-License-Identifier: GPL-3.0-or-later

// The page of the real server, and what moves its numbers.

#include "server/resultStore.h"

#include "metricsText.h"
#include "support/serverProcess.h"
#include "support/uploads.h"

#include <QtTest>

namespace
{

QByteArray get(rawClient &client, const QByteArray &path)
{
    client.send("GET " + path + " HTTP/1.1\r\nHost: x\r\n\r\n");
    return client.response();
}

/// A server with a page.
struct observedServer {
    explicit observedServer(const QString &database, QStringList options = {})
        : server(database, options << QStringLiteral("--metrics") << QStringLiteral("127.0.0.1:0"))
    {
        static const QByteArray said = "Metrics on 127.0.0.1:";
        if (server.output.startsWith(said))
            port = server.output.mid(said.size()).split('\n').first().toUShort();
    }
    metricsText read() const
    {
        rawClient client(port);
        return metricsText(bodyOf(get(client, "/metrics")));
    }
    /// The counters that have moved since the look before, each "name by how much".
    QStringList moved()
    {
        const metricsText now = read();
        if (!now.error.isEmpty())
            return {now.error};
        QStringList names;
        for (auto sample = now.samples.begin(); sample != now.samples.end(); ++sample) {
            const double by = sample.value() - before.value(sample.key());
            if (by != 0 && sample.key().contains(QStringLiteral("_total")))
                names.append(QStringLiteral("%1 %2").arg(sample.key()).arg(by));
        }
        before = now.samples;
        return names;
    }

    serverProcess server;
    quint16 port = 0;
    QMap<QString, double> before;
};

QString counted(const char *action, int status)
{
    return QStringLiteral("fennick_requests_total{action=\"%1\",status=\"%2\"} 1")
        .arg(QLatin1String(action), QString::number(status));
}

QString refused(const char *reason)
{
    return QStringLiteral("fennick_upload_refusals_total{reason=\"%1\"} 1")
        .arg(QLatin1String(reason));
}

QByteArray form(const QByteArray &type)
{
    return "app=Fennick&type=" + type;
}

} // namespace

class tst_metricsPage : public QObject
{
    Q_OBJECT

private slots:
    void requests_data();
    void requests();
    void severalOfOneConnection();
    void limits();
    void uploadsByState();
    void connections();
    void lostDatabase();
    void nothingElse();
    void notOfItself();
    void cannotListen();

private:
    QString sqlite()
    {
        return QStringLiteral("sqlite:") + directory.filePath(QStringLiteral("%1.db").arg(++files));
    }

    QTemporaryDir directory;
    int files = 0;
};

/// Each request moves its own counters and no other.
void tst_metricsPage::requests_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("moved");
    const auto row = [](const char *name, const QByteArray &bytes, const QStringList &moved) {
        QTest::newRow(name) << bytes << moved;
    };
    const auto posted = [](const QByteArray &body) {
        return "POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\nContent-Length: "
               + QByteArray::number(body.size()) + "\r\n\r\n" + body;
    };
    const auto upload = [&](const char *name, const QByteArray &xml, int status,
                            const char *reason) {
        row(name, posted(uploadForm(xml)), {counted("upload", status), refused(reason)});
    };
    row("version", posted(askVersion), {counted("version", 200)});
    row("list", posted(form("getReference")), {counted("list", 200)});
    row("BETA list", posted(form("getReferenceBeta")), {counted("beta_list", 200)});
    row("upload", posted(uploadForm(uploadXml("a", "b", "1"))), {counted("upload", 200)});
    row("health", "GET /health HTTP/1.1\r\nHost: x\r\n\r\n", {counted("health", 200)});
    row("health for reading", "GET /health/reading HTTP/1.1\r\nHost: x\r\n\r\n",
        {counted("health", 200)});
    row("large version", posted(form("getReferenceVersion&x=") + QByteArray(3'000, 'x')),
        {counted("version", 200)});
    row("other type", posted(form("dropTables")), {counted("none", 400)});
    row("other app", posted("app=Other&type=getReference"), {counted("none", 400)});
    row("no form", posted("%%%"), {counted("none", 400)});
    row("other page", "GET /index.html HTTP/1.1\r\nHost: x\r\n\r\n", {counted("none", 404)});
    row("other method", "PUT /health HTTP/1.1\r\nHost: x\r\n\r\n", {counted("none", 405)});
    row("no HTTP", "\x16\x03\x01\r\n\r\n", {counted("none", 400)});
    const QByteArray good = uploadXml("a", "b", "1");
    upload("empty", "", 400, "empty");
    upload("no XML", "no XML", 400, "no XML");
    upload("format", uploadXml("a", "b", "x"), 422, "format");
    upload("no machine", "<F/>", 422, "number of machines");
    upload("system", QByteArray(good).replace("linux", "beos"), 422, "operating system");
    upload("name", uploadXml("a&#10;b", "c", "1"), 422, "name");
    upload("processor's name", uploadXml("a", "b (est.)", "1"), 422, "processor's name");
    upload("threads", QByteArray(good).replace("threadCount=\"4\"", "threadCount=\"0\""), 422,
           "threads");
    upload("unknown test", QByteArray(good).replace("mandel", "mandrill"), 422, "unknown test");
    upload("result", uploadXml("a", "b", "-1"), 422, "impossible result");
}

void tst_metricsPage::requests()
{
    static observedServer observed(sqlite());
    QVERIFY2(observed.port != 0, observed.server.output.constData());
    observed.moved();
    QFETCH(QByteArray, bytes);
    rawClient client(observed.server.port);
    client.send(bytes);
    QVERIFY(statusOf(client.response()) > 0);
    QTEST(observed.moved(), "moved");
}

void tst_metricsPage::severalOfOneConnection()
{
    observedServer observed(sqlite());
    rawClient client(observed.server.port);
    client.post(askVersion);
    get(client, "/health");
    client.post(form("getReference"));
    client.send("nonsense\r\n\r\n");
    QCOMPARE(statusOf(client.response()), 400);
    QCOMPARE(observed.moved(), QStringList({counted("health", 200), counted("list", 200),
                                            counted("none", 400), counted("version", 200)}));
}

void tst_metricsPage::limits()
{
    observedServer observed(sqlite(), {QStringLiteral("--upload-limit"), QStringLiteral("1/600"),
                                       QStringLiteral("--read-limit"), QStringLiteral("1/600")});
    rawClient client(observed.server.port);
    client.post(uploadForm(uploadXml("a", "b", "1")));
    client.post(uploadForm(uploadXml("a", "b", "1")));
    client.post(askVersion);
    client.post(askVersion);
    get(client, "/health");
    // What was tried too often is no refusal for what it is.
    QCOMPARE(observed.read().nonZero("fennick_upload_refusals_total"), QStringList());
    QCOMPARE(observed.moved(),
             QStringList({counted("health", 429), counted("upload", 200), counted("upload", 429),
                          counted("version", 200), counted("version", 429)}));
    QCOMPARE(observed.read()["fennick_request_duration_seconds_count{action=\"upload\"}"], 2.0);
}

void tst_metricsPage::uploadsByState()
{
    const QString database = sqlite();
    {
        resultStore store(*parseDatabaseAddress(database));
        QVERIFY(store.open());
        QVector<storedUpload> uploads;
        for (int i = 1; i <= 5; ++i) {
            uploads.append(stored(
                machineWith(QStringLiteral("m"), QStringLiteral("c"), static_cast<float>(i))));
            uploads.last().state = i < 4 ? QStringLiteral("received") : QStringLiteral("held");
        }
        QVERIFY(store.add(uploads));
        QVERIFY(store.withdraw(1, QStringLiteral("x")).value_or(false));
    }
    const QStringList expected({QStringLiteral("fennick_uploads{state=\"held\"} 2"),
                                QStringLiteral("fennick_uploads{state=\"received\"} 2"),
                                QStringLiteral("fennick_uploads{state=\"withdrawn\"} 1")});
    const observedServer observed(database);
    QTRY_VERIFY(observed.read().has("fennick_uploads{state=\"held\"}"));
    QCOMPARE(observed.read().nonZero("fennick_uploads"), expected);
    // They are not counted for each look.
    rawClient client(observed.server.port);
    QCOMPARE(statusOf(client.post(uploadForm(uploadXml("a", "b", "1")))), 200);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(observed.read().nonZero("fennick_uploads"), expected);
        QCOMPARE(bodyOf(client.post(askVersion)),
                 QByteArray("1010")); // after what waits to be read
    }
}

void tst_metricsPage::connections()
{
    const observedServer observed(sqlite());
    const auto number = [&observed](const char *state) {
        return static_cast<int>(observed.read().samples.value(
            QStringLiteral("fennick_connections{state=\"%1\"}").arg(QLatin1String(state)), -1));
    };
    {
        rawClient idle(observed.server.port);
        rawClient other(observed.server.port);
        rawClient slow(observed.server.port);
        QTRY_COMPARE(number("idle"), 3);
        slow.send("POST ");
        QTRY_COMPARE(number("reading"), 1);
        QCOMPARE(number("idle"), 2);
        QCOMPARE(number("writing"), 0);
    }
    QTRY_COMPARE(number("idle"), 0);
    QTRY_COMPARE(number("reading"), 0);
}

/// The page is there, and says so, when the database is not.
void tst_metricsPage::lostDatabase()
{
    const QString database = sqlite();
    observedServer observed(database);
    QTRY_VERIFY(observed.read().has("fennick_uploads{state=\"held\"}"));
    QCOMPARE(observed.read()["fennick_database_errors_total{work=\"reading\"}"], 0.0);
    QFile file(database.section(QLatin1Char(':'), 1));
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.write(QByteArray(4'096, 'x')); // as a failing disk does
    file.close();
    const QByteArray response =
        rawClient(observed.server.port).post(uploadForm(uploadXml("a", "b", "1")));
    QCOMPARE(statusOf(response), 503);
    const metricsText text = observed.read();
    QCOMPARE(text.error, QString());
    QCOMPARE(text["fennick_requests_total{action=\"upload\",status=\"503\"}"], 1.0);
    QCOMPARE(text["fennick_database_errors_total{work=\"writing\"}"], 2.0);
}

/// Neither address answers what the other one does.
void tst_metricsPage::nothingElse()
{
    const observedServer observed(sqlite());
    const auto status = [](quint16 port, const QByteArray &path) {
        rawClient client(port);
        return statusOf(get(client, path));
    };
    QCOMPARE(status(observed.server.port, "/metrics"), 404);
    for (const char *path :
         {"/", "/health", "/health/reading", "/metrics/", "/php/Fennick/mcp.php"})
        QCOMPARE(status(observed.port, path), 404);
    QCOMPARE(statusOf(rawClient(observed.port).post(askVersion)), 404);
    rawClient posting(observed.port);
    posting.send("POST /metrics HTTP/1.1\r\nHost: x\r\nContent-Length: 0\r\n\r\n");
    QCOMPARE(statusOf(posting.response()), 405);
    rawClient reading(observed.port);
    const QByteArray response = get(reading, "/metrics");
    QCOMPARE(statusOf(response), 200);
    QVERIFY(response.contains("\r\nContent-Type: text/plain; version=0.0.4; charset=utf-8\r\n"));
    // Nowhere unless it is asked for.
    const serverProcess usual(sqlite());
    QCOMPARE(usual.output.count('\n'), 1);
}

/// Looking changes nothing, and the reader of the page is no connection of the server.
void tst_metricsPage::notOfItself()
{
    const observedServer observed(sqlite());
    for (int i = 0; i < 3; ++i)
        QCOMPARE(observed.read().nonZero("fennick_requests"), QStringList());
    QCOMPARE(observed.read().nonZero("fennick_connections"), QStringList());
}

void tst_metricsPage::cannotListen()
{
    const serverProcess other(sqlite());
    const QString database = sqlite();
    const auto refused = [&](const QString &address) {
        return serverProcess::run({QStringLiteral("serve"), QStringLiteral("--listen"),
                                   QStringLiteral("127.0.0.1:0"), QStringLiteral("--database"),
                                   database, QStringLiteral("--metrics"), address});
    };
    const auto inUse = refused(other.host());
    QCOMPARE(inUse.code, 1);
    QCOMPARE(inUse.out, QString());
    QCOMPARE(inUse.err, QStringLiteral("fennick-server: cannot listen on %1; is something else "
                                       "listening there? (Address already in use)\n")
                            .arg(other.host()));
    const auto elsewhere = refused(QStringLiteral("192.0.2.1:9426"));
    QCOMPARE(elsewhere.code, 1);
    QVERIFY2(elsewhere.err.contains(QStringLiteral("cannot listen on 192.0.2.1:9426")),
             qPrintable(elsewhere.err));
    const auto nonsense = refused(QStringLiteral("9426"));
    QCOMPARE(nonsense.code, 2);
    QVERIFY2(nonsense.err.contains(QStringLiteral("--metrics takes ADDRESS:PORT, not '9426'")),
             qPrintable(nonsense.err));
}

QTEST_GUILESS_MAIN(tst_metricsPage)
#include "tst_metricsPage.moc"
