// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

/// Listens on loopback and answers every request with the same bytes. It needs the event loop of
/// its thread, which the client under test keeps running while it waits.
class fakeWebServer
{
public:
    fakeWebServer()
    {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] { accept(); });
    }

    QString host() const { return QStringLiteral("127.0.0.1:%1").arg(server.serverPort()); }

    /// Answers with @p content in a response of @p status.
    void answer(const QByteArray &content, const QByteArray &status = "200 OK",
                const QByteArray &headers = {})
    {
        reply = "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(content.size())
                + "\r\n" + headers + "\r\n" + content;
    }

    QByteArray reply;          ///< sent as it is; nothing if empty
    int delay = 0;             ///< milliseconds before the answer
    bool closesAtOnce = false; ///< breaks the connection off instead of reading the request
    bool closesAfter = false;  ///< breaks it off after the answer
    QByteArray endlessly;      ///< sent again and again after the answer
    QByteArray head;           ///< of the last request
    QByteArray body;           ///< of the last request
    int requests = 0;

private:
    void accept()
    {
        QTcpSocket *socket = server.nextPendingConnection();
        if (closesAtOnce) {
            socket->abort();
            socket->deleteLater();
            return;
        }
        auto *received = new QByteArray;
        QObject::connect(socket, &QObject::destroyed, socket, [received] { delete received; });
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket, received] {
            received->append(socket->readAll());
            read(socket, received);
        });
    }

    void read(QTcpSocket *socket, QByteArray *received)
    {
        const int end = received->indexOf("\r\n\r\n");
        const int start = received->indexOf("Content-Length: ");
        if (end < 0 || start < 0)
            return;
        const int length =
            received->mid(start + 16, received->indexOf("\r\n", start) - start - 16).toInt();
        if (received->size() < end + 4 + length)
            return;
        head = received->left(end);
        body = received->mid(end + 4);
        received->clear();
        ++requests;
        const QPointer<QTcpSocket> target(socket);
        QTimer::singleShot(delay, socket, [this, target] {
            if (target)
                send(target);
        });
    }

    void send(QTcpSocket *socket)
    {
        socket->write(reply);
        if (!endlessly.isEmpty()) {
            QObject::connect(socket, &QTcpSocket::bytesWritten, socket, [this, socket] {
                if (socket->bytesToWrite() < endlessly.size())
                    socket->write(endlessly);
            });
        }
        if (closesAfter)
            socket->disconnectFromHost();
    }

    QTcpServer server;
};
