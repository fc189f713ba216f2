// SPDX-License-Identifier: GPL-3.0-or-later

// The real server behind real proxies with the configurations that are shipped, in which nothing
// but the ports is changed.

#include "hostileRequests.h"

#include "support/serverProcess.h"
#include "support/uploads.h"

#include <QFile>
#include <QStandardPaths>
#include <QTcpServer>
#include <QtTest>

#include <memory>

#include <unistd.h>

namespace
{

/// A port that nobody listens on.
quint16 freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return probe.serverPort();
}

QString program(const char *name)
{
    const QStringList places = {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/local/sbin")};
    const QString found = QStandardPaths::findExecutable(QString::fromLatin1(name), places);
    return found.isEmpty() ? QStandardPaths::findExecutable(QString::fromLatin1(name)) : found;
}

/// A proxy, in a process of its own, in front of a server.
class proxy
{
public:
    proxy(const QByteArray &name, quint16 serverPort, const QTemporaryDir &directory)
        : port(freePort()),
          place(directory.path())
    {
        name == "nginx" ? startNginx(serverPort) : startHaproxy(serverPort);
    }
    proxy(const proxy &) = delete;
    proxy &operator=(const proxy &) = delete;
    ~proxy()
    {
        process.terminate();
        if (!process.waitForFinished(10'000))
            process.kill();
        process.waitForFinished();
    }
    /// Whether it answers, and reaches the server.
    bool isReady() const
    {
        return QTest::qWaitFor(
            [this] { return bodyOf(rawClient(port).post(askVersion)) == "1010"; }, 20'000);
    }

    quint16 port;
    QProcess process;

private:
    /// A copy of a file that is shipped, with other ports.
    QString copyOf(const char *file, quint16 serverPort) const
    {
        QFile shipped(QStringLiteral(FENNICK_DEPLOY "/%1").arg(QLatin1String(file)));
        if (!shipped.open(QIODevice::ReadOnly))
            qFatal("%s cannot be read", file);
        QByteArray text = shipped.readAll();
        text.replace("listen 80;", "listen 127.0.0.1:" + QByteArray::number(port) + ";");
        text.replace("bind :80\n", "bind 127.0.0.1:" + QByteArray::number(port) + "\n");
        text.replace("127.0.0.1:8426", "127.0.0.1:" + QByteArray::number(serverPort));
        return write(file, text);
    }
    QString write(const char *file, const QByteArray &text) const
    {
        const QString path = place + QLatin1Char('/') + QLatin1String(file);
        QFile copy(path);
        if (!copy.open(QIODevice::WriteOnly) || copy.write(text) != text.size())
            qFatal("%s cannot be written", file);
        return path;
    }
    void startHaproxy(quint16 serverPort)
    {
        process.start(program("haproxy"), {QStringLiteral("-db"), QStringLiteral("-f"),
                                           copyOf("haproxy.cfg", serverPort)});
    }
    void startNginx(quint16 serverPort)
    {
        // What a distribution's own nginx.conf has around the files that it includes.
        QByteArray around = "daemon off;\npid " + place.toUtf8()
                            + "/pid;\nworker_processes 1;\n"
                              "error_log stderr;\nevents {}\nhttp {\naccess_log off;\n";
        for (const char *kind : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
            around += QByteArray(kind) + "_temp_path " + place.toUtf8() + "/" + kind + ";\n";
        around += "include " + copyOf("nginx.conf", serverPort).toUtf8() + ";\n}\n";
        if (geteuid() == 0)
            around.prepend("user root;\n");
        process.start(program("nginx"), {QStringLiteral("-c"), write("around.conf", around),
                                         QStringLiteral("-p"), place});
    }

    QString place;
};

/// An upload that somebody hides in another request.
QByteArray hiddenUpload()
{
    const QByteArray body = uploadForm(uploadXml("hidden", "Hidden CPU", "1"));
    return "POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\nContent-Type: "
           "application/x-www-form-urlencoded\r\nContent-Length: "
           + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

/// Requests whose body holds the upload, for whoever disagrees about where they end.
QVector<hostileRequest> hidingPlaces()
{
    const QByteArray hidden = hiddenUpload();
    const QByteArray length = "Content-Length: " + QByteArray::number(hidden.size()) + "\r\n";
    const QByteArray longer = "Content-Length: " + QByteArray::number(hidden.size() + 5) + "\r\n";
    const QByteArray page = "GET /health HTTP/1.1\r\nHost: x\r\n";
    const QByteArray form = endpointLine() + "Host: x\r\n";
    const QByteArray chunk =
        QByteArray::number(hidden.size(), 16) + "\r\n" + hidden + "\r\n0\r\n\r\n";
    return {
        {"page with a length", page + length + "\r\n" + hidden, 0},
        {"HEAD with a length", "HEAD /health HTTP/1.1\r\nHost: x\r\n" + length + "\r\n" + hidden,
         0},
        {"page in chunks", page + "Transfer-Encoding: chunked\r\n\r\n" + chunk, 0},
        {"other path", "GET / HTTP/1.1\r\nHost: x\r\n" + length + "\r\n" + hidden, 0},
        {"chunks and a length",
         form + longer + "Transfer-Encoding: chunked\r\n\r\n0\r\n\r\n" + hidden, 0},
        {"chunks in disguise",
         form + longer + "Transfer-Encoding: xchunked\r\n\r\n0\r\n\r\n" + hidden, 0},
        {"chunks after a blank",
         form + longer + "Transfer-Encoding : chunked\r\n\r\n0\r\n\r\n" + hidden, 0},
        {"chunks after a tab",
         form + longer + "Transfer-Encoding:\tchunked\r\n\r\n0\r\n\r\n" + hidden, 0},
        {"two lengths, the first is 0", form + "Content-Length: 0\r\n" + length + "\r\n" + hidden,
         0},
        {"two lengths, the second is 0", form + length + "Content-Length: 0\r\n\r\n" + hidden, 0},
        {"form in a form", form + length + "\r\n" + hidden, 0},
    };
}

} // namespace

class tst_proxies : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void hiddenUploads_data();
    void hiddenUploads();
    void forgedAddresses_data() { addProxies(); }
    void forgedAddresses();
    void hostile_data() { addProxies(); }
    void hostile();

private:
    static void addProxies();

    std::unique_ptr<QTemporaryDir> directory;
    QString database;
    std::unique_ptr<serverProcess> server;
    std::unique_ptr<proxy> front;
};

void tst_proxies::addProxies()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("haproxy") << QByteArray("haproxy");
    QTest::newRow("nginx") << QByteArray("nginx");
}

void tst_proxies::init()
{
    QFETCH(QByteArray, name);
    if (program(name).isEmpty())
        QSKIP("the proxy is not installed");
    directory = std::make_unique<QTemporaryDir>();
    database = QStringLiteral("sqlite:") + directory->filePath(QStringLiteral("x.db"));
    server = std::make_unique<serverProcess>(
        database, QStringList{QStringLiteral("--trusted-proxy"), QStringLiteral("127.0.0.1"),
                              QStringLiteral("--upload-limit"), QStringLiteral("2/6000"),
                              QStringLiteral("--read-limit"), QStringLiteral("0/1")});
    front = std::make_unique<proxy>(name, server->port, *directory);
    QVERIFY2(front->isReady(), front->process.readAllStandardError().constData());
}

void tst_proxies::cleanup()
{
    front.reset();
    server.reset();
}

void tst_proxies::hiddenUploads_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("bytes");
    for (const char *name : {"haproxy", "nginx"}) {
        for (const hostileRequest &place : hidingPlaces())
            QTest::addRow("%s: %s", name, place.name) << QByteArray(name) << place.bytes;
    }
}

/// No request that is hidden in another is answered, and whoever shares the proxy's connection to
/// the server gets their own answers.
void tst_proxies::hiddenUploads()
{
    QFETCH(QByteArray, bytes);
    rawClient client(front->port);
    client.send(bytes);
    client.socket.waitForReadyRead(2'000);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(bodyOf(rawClient(front->port).post(askVersion)), QByteArray("1010"));
    QCOMPARE(listed(database), 0);
    QCOMPARE(statusOf(rawClient(front->port).post(uploadForm(uploadXml("a", "Any CPU", "1")))),
             200);
    QCOMPARE(listed(database), 1);
}

/// What a client says of where it comes from gets it no more uploads.
void tst_proxies::forgedAddresses()
{
    const QByteArray body = uploadForm(uploadXml("a", "Any CPU", "1"));
    int stored = 0;
    for (int i = 0; i < 20; ++i) {
        const QByteArray address = "192.0.2." + QByteArray::number(i);
        const QByteArray line = "X-Forwarded-For: " + address + "\r\n";
        const QByteArray lines[] = {line, line + line, "x-forwarded-for:" + address + "\r\n",
                                    "Forwarded: for=" + address + "\r\n" + line,
                                    "X_Forwarded_For: " + address + "\r\n"};
        stored += statusOf(rawClient(front->port).post(body, lines[i % 5])) == 200 ? 1 : 0;
    }
    QCOMPARE(stored, 2);
}

/// The server stays, and nothing is stored, whatever comes through.
void tst_proxies::hostile()
{
    for (const hostileRequest &request : hostileRequests()) {
        rawClient client(front->port);
        client.send(request.bytes);
        client.socket.disconnectFromHost();
    }
    QTRY_COMPARE(bodyOf(rawClient(front->port).post(askVersion)), QByteArray("1010"));
    QCOMPARE(server->process.state(), QProcess::Running);
    QCOMPARE(listed(database), 0);
}

QTEST_GUILESS_MAIN(tst_proxies)
#include "tst_proxies.moc"
