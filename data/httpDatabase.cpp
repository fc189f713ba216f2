// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/httpDatabase.h"

#include "data/benchXml.h"
#include "data/compressed.h"
#include "data/formBody.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>
#include <QUrl>

namespace
{

/// The word for a request in the form, or null for a number that means none.
QByteArray typeOf(int requested)
{
    switch (requested) {
    case onlineDatabase::referenceVersion:
        return "getReferenceVersion";
    case onlineDatabase::reference:
        return "getReference";
    case onlineDatabase::betaReference:
        return "getReferenceBeta";
    case onlineDatabase::storeResults:
        return "storeUserData";
    default:
        return {};
    }
}

} // namespace

httpDatabase::httpDatabase(const QString &host) : httpDatabase(host, timeOuts()) {}

httpDatabase::httpDatabase(const QString &host, const timeOuts &limits)
    : endpoint(QStringLiteral("http://%1/php/Fennick/mcp.php").arg(host)),
      limit(limits)
{
}

httpDatabase::~httpDatabase() = default;

QString httpDatabase::defaultHost()
{
    return QStringLiteral(FENNICK_RESULT_HOST);
}

bool httpDatabase::request(int requested, QByteArray &data)
{
    const QByteArray type = typeOf(requested);
    if (type.isNull())
        return false;
    const bool isUpload = requested == storeResults;
    const bool isVersion = requested == referenceVersion;
    const QByteArray results = isUpload && data.isNull() ? QByteArray("") : data;
    bool ok = false;
    const QByteArray reply = post(formBody(type, isUpload ? results : QByteArray()),
                                  isVersion ? limit.version : limit.others, ok);
    if (!ok || isUpload)
        return ok;
    data = isVersion ? reply : uncompressed(reply, maximumXmlSize);
    return !data.isEmpty();
}

QByteArray httpDatabase::post(const QByteArray &body, int timeOut, bool &ok)
{
    ok = false;
    if (!network)
        network = std::make_unique<QNetworkAccessManager>();
    QNetworkRequest request{QUrl(endpoint)};
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QStringLiteral("application/x-www-form-urlencoded"));
    const std::unique_ptr<QNetworkReply> reply(network->post(request, body));
    if (!reply)
        return {};

    QEventLoop loop;
    QObject::connect(network.get(), &QNetworkAccessManager::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(timeOut, &loop, &QEventLoop::quit);
    // No list is that long; without an end, a reply could fill the memory within the time-out.
    reply->setReadBufferSize(maximumXmlSize + 1);
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, [&] {
        if (reply->bytesAvailable() > maximumXmlSize)
            reply->abort();
    });
    if (!reply->isFinished())
        loop.exec(QEventLoop::ExcludeUserInputEvents);

    ok = reply->error() == QNetworkReply::NoError;
    return ok ? reply->readAll() : QByteArray();
}
