// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/fakeServer.h"

#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QStandardPaths>
#include <QTemporaryDir>

/// What a server shows of itself, and its key.
struct tlsIdentity {
    QSslCertificate certificate;
    QSslKey key;
};

/// An authority of its own, and what it makes, by the openssl command.
class certificateMaker
{
public:
    /// Whether this can work here at all.
    static bool isPossible()
    {
        return QSslSocket::supportsSsl()
               && !QStandardPaths::findExecutable(QStringLiteral("openssl")).isEmpty();
    }

    certificateMaker() { authority = selfSigned(QStringLiteral("authority"), QString()); }

    /// Signed by the authority for @p names, "IP:127.0.0.1" or "DNS:host".
    tlsIdentity trusted(const QString &names)
    {
        const QString name = QStringLiteral("trusted%1").arg(++made);
        make(name, {QStringLiteral("-CA"), file(QStringLiteral("authority.pem")),
                    QStringLiteral("-CAkey"), file(QStringLiteral("authority.key")),
                    QStringLiteral("-addext"), QStringLiteral("basicConstraints=critical,CA:FALSE"),
                    QStringLiteral("-addext"), QStringLiteral("subjectAltName=") + names});
        return read(name);
    }
    /// Signed by itself alone.
    tlsIdentity untrusted(const QString &names)
    {
        return selfSigned(QStringLiteral("untrusted"), names);
    }

    tlsIdentity authority;
    QByteArray error; ///< what openssl said last

private:
    QString file(const QString &name) const { return directory.filePath(name); }
    tlsIdentity selfSigned(const QString &name, const QString &names)
    {
        make(name, names.isEmpty() ? QStringList()
                                   : QStringList{QStringLiteral("-addext"),
                                                 QStringLiteral("subjectAltName=") + names});
        return read(name);
    }
    void make(const QString &name, const QStringList &more)
    {
        QProcess openssl;
        openssl.start(
            QStringLiteral("openssl"),
            QStringList{QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"),
                        QStringLiteral("ec"), QStringLiteral("-pkeyopt"),
                        QStringLiteral("ec_paramgen_curve:prime256v1"), QStringLiteral("-nodes"),
                        QStringLiteral("-days"), QStringLiteral("2"), QStringLiteral("-subj"),
                        QStringLiteral("/CN=%1").arg(name), QStringLiteral("-keyout"),
                        file(name + QStringLiteral(".key")), QStringLiteral("-out"),
                        file(name + QStringLiteral(".pem"))}
                + more);
        openssl.waitForFinished(60'000);
        error = openssl.readAllStandardError();
    }
    tlsIdentity read(const QString &name) const
    {
        QFile certificate(file(name + QStringLiteral(".pem")));
        QFile key(file(name + QStringLiteral(".key")));
        if (!certificate.open(QIODevice::ReadOnly) || !key.open(QIODevice::ReadOnly))
            return tlsIdentity{QSslCertificate(), QSslKey()};
        return {QSslCertificate(&certificate), QSslKey(&key, QSsl::Ec)};
    }

    QTemporaryDir directory;
    int made = 0;
};

/// Accepts connections with TLS.
class tlsListener : public QTcpServer
{
public:
    explicit tlsListener(tlsIdentity shown) : identity(std::move(shown)) {}

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto *const socket = new QSslSocket(this);
        socket->setSocketDescriptor(descriptor);
        socket->setLocalCertificate(identity.certificate);
        socket->setPrivateKey(identity.key);
        socket->startServerEncryption();
        addPendingConnection(socket);
    }

private:
    tlsIdentity identity;
};
