// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QHostAddress>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QVector>

#include <functional>
#include <memory>

/// A web server on a port of its own of this machine. It lives in the thread of its client, whose
/// waiting loop drives it.
class fakeServer
{
public:
    using answer = std::function<void(QTcpSocket &)>;

    explicit fakeServer(answer toAll = {},
                        std::unique_ptr<QTcpServer> listener = std::make_unique<QTcpServer>())
        : reply(std::move(toAll)),
          server(std::move(listener))
    {
        server->listen(QHostAddress::LocalHost);
        QObject::connect(server.get(), &QTcpServer::newConnection, server.get(), [this] {
            while (QTcpSocket *socket = server->nextPendingConnection()) {
                ++connections;
                QObject::connect(socket, &QTcpSocket::readyRead, socket,
                                 [this, socket] { receive(*socket); });
            }
        });
    }

    QString host() const { return QStringLiteral("127.0.0.1:%1").arg(server->serverPort()); }
    /// From now on nobody listens there.
    void stop() { server->close(); }

    /// What came before, and after, the empty line of the last request.
    QByteArray lastHeaders() const { return requests.last().left(bodyStart(requests.last()) - 4); }
    QByteArray lastBody() const { return requests.last().mid(bodyStart(requests.last())); }

    /// Is handed each request's connection. Without one, requests wait for ever.
    answer reply;
    QVector<QByteArray> requests;
    int connections = 0;

private:
    static int bodyStart(const QByteArray &request) { return request.indexOf("\r\n\r\n") + 4; }

    static int bodySize(const QByteArray &request)
    {
        const QByteArray header = "\r\ncontent-length: ";
        const int start = request.toLower().indexOf(header) + header.size();
        return request.mid(start, request.indexOf("\r\n", start) - start).toInt();
    }

    void receive(QTcpSocket &socket)
    {
        QByteArray &received = pending[&socket];
        received += socket.readAll();
        if (!received.contains("\r\n\r\n")
            || received.size() < bodyStart(received) + bodySize(received))
            return;
        requests.append(pending.take(&socket));
        if (reply)
            reply(socket);
    }

    std::unique_ptr<QTcpServer> server;
    QHash<QTcpSocket *, QByteArray> pending;
};

/// A whole reply with its length.
inline QByteArray httpReply(const QByteArray &body, const QByteArray &status = "200 OK",
                            const QByteArray &headers = {})
{
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n"
           + headers + "\r\n" + body;
}

/// Sends @p bytes, and no more, over an open connection.
inline fakeServer::answer sending(const QByteArray &bytes)
{
    return [bytes](QTcpSocket &socket) { socket.write(bytes); };
}

/// Sends @p bytes and closes the connection.
inline fakeServer::answer closingAfter(const QByteArray &bytes)
{
    return [bytes](QTcpSocket &socket) {
        socket.write(bytes);
        socket.disconnectFromHost();
    };
}

/// Sends @p bytes and then @p piece again and again.
inline fakeServer::answer endless(const QByteArray &bytes, const QByteArray &piece)
{
    return [bytes, piece](QTcpSocket &socket) {
        QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, [&socket, piece] {
            if (socket.bytesToWrite() == 0)
                socket.write(piece);
        });
        socket.write(bytes);
    };
}
