// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QHostAddress>
#include <QProcess>
#include <QTcpSocket>

/// The real fennick-server in a process of its own, on a free port of loopback.
class serverProcess
{
public:
    explicit serverProcess(const QString &database, const QStringList &options = {})
    {
        process.start(QStringLiteral(FENNICK_SERVER),
                      QStringList{QStringLiteral("serve"), QStringLiteral("--listen"),
                                  QStringLiteral("127.0.0.1:0"), QStringLiteral("--database"),
                                  database}
                          + options);
        while (!output.contains('\n') && process.waitForReadyRead(30'000))
            output += process.readAllStandardOutput();
        port = static_cast<quint16>(output.trimmed().mid(output.lastIndexOf(':') + 1).toInt());
    }
    serverProcess(const serverProcess &) = delete;
    serverProcess &operator=(const serverProcess &) = delete;
    ~serverProcess()
    {
        process.kill();
        process.waitForFinished();
    }

    bool isListening() const { return port != 0; }
    QString host() const { return QStringLiteral("127.0.0.1:%1").arg(port); }
    /// Asks the process to end; its exit code, or -1.
    int terminate()
    {
        process.terminate();
        return process.waitForFinished(30'000) && process.exitStatus() == QProcess::NormalExit
                   ? process.exitCode()
                   : -1;
    }

    /// The result of another command of the program on @p database: exit code and outputs.
    struct result {
        int code = -1;
        QString out;
        QString err;
    };
    static result run(const QStringList &arguments)
    {
        QProcess other;
        other.start(QStringLiteral(FENNICK_SERVER), arguments);
        if (!other.waitForFinished(60'000) || other.exitStatus() != QProcess::NormalExit)
            return {};
        return {other.exitCode(), QString::fromUtf8(other.readAllStandardOutput()),
                QString::fromUtf8(other.readAllStandardError())};
    }

    QProcess process;
    QByteArray output;
    quint16 port = 0;
};

/// A connection to a server, of which single bytes can be sent.
class rawClient
{
public:
    /// From @p address of loopback, where each is as good as another machine.
    explicit rawClient(quint16 port, const QHostAddress &address = {})
    {
        if (!address.isNull())
            socket.bind(address);
        socket.connectToHost(QStringLiteral("127.0.0.1"), port);
        socket.waitForConnected(10'000);
    }

    void send(const QByteArray &bytes)
    {
        socket.write(bytes);
        socket.flush();
    }
    /// Sends @p body as a request; the whole response, or what came of it.
    QByteArray post(const QByteArray &body, const QByteArray &headers = {})
    {
        send("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\nContent-Type: "
             "application/x-www-form-urlencoded\r\nContent-Length: "
             + QByteArray::number(body.size()) + "\r\n" + headers + "\r\n" + body);
        return response();
    }
    /// Waits for a response with a length.
    QByteArray response()
    {
        QByteArray received;
        while (!isComplete(received)) {
            if (!socket.waitForReadyRead(20'000))
                break;
            received += socket.readAll();
        }
        return received;
    }
    /// The milliseconds until the other side closes the connection, or -1 after @p atMost.
    qint64 timeToClose(int atMost)
    {
        QElapsedTimer timer;
        timer.start();
        while (socket.state() == QAbstractSocket::ConnectedState && timer.elapsed() < atMost) {
            socket.waitForReadyRead(100);
            socket.readAll();
        }
        return socket.state() == QAbstractSocket::ConnectedState ? -1 : timer.elapsed();
    }

    QTcpSocket socket;

private:
    static bool isComplete(const QByteArray &received)
    {
        const int end = received.indexOf("\r\n\r\n");
        // Proxies write the names of fields in small letters.
        const int start = received.toLower().indexOf("content-length: ");
        return end >= 0 && start >= 0
               && received.size() >= end + 4 + received.mid(start + 16, 12).split('\r')[0].toInt();
    }
};

/// The status of a response, and its body.
inline int statusOf(const QByteArray &response)
{
    return response.mid(9, 3).toInt();
}

inline QByteArray bodyOf(const QByteArray &response)
{
    return response.mid(response.indexOf("\r\n\r\n") + 4);
}

inline const QByteArray askVersion = "?app=Fennick&type=getReferenceVersion";

/// The number of uploads in a database, or -1.
inline int listed(const QString &database)
{
    const auto result =
        serverProcess::run({QStringLiteral("list"), QStringLiteral("--database"), database});
    return result.code == 0 ? result.out.count(QLatin1Char('\n')) - 1 : -1;
}
