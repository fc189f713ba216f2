// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/httpDatabase.h"

#include "data/benchXml.h"
#include "data/compressed.h"
#include "data/formBody.h"

#include <QEventLoop>
#include <QIODevice>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTimer>
#include <QUrl>

#include <algorithm>

namespace
{

/// The word for a request in its form, empty for a number that means none.
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

/// A body that can be read once. The toolkit would send others again, up to three times, to a
/// server that closes the connection without a reply, and results would be stored as often. Going
/// back to the start must not fail: the toolkit does it, and drops the reply if it cannot, also
/// where the end of the connection is the end of the reply. (A QBuffer's content is taken without
/// asking it.)
class onceOnly : public QIODevice
{
public:
    explicit onceOnly(const QByteArray &body) : content(body) { open(ReadOnly | Unbuffered); }
    qint64 size() const override { return content.size(); }

protected:
    qint64 readData(char *data, qint64 maximumSize) override
    {
        if (pos() < readSoFar)
            return -1;
        const qint64 count = std::min(maximumSize, content.size() - pos());
        std::copy_n(content.constData() + pos(), count, data);
        readSoFar = pos() + count;
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray content;
    qint64 readSoFar = 0;
};

QNetworkRequest formRequest(const QString &endpoint)
{
    QNetworkRequest request{QUrl(endpoint)};
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QStringLiteral("application/x-www-form-urlencoded"));
    // Otherwise the toolkit offers to unpack replies by itself, without a limit.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    return request;
}

} // namespace

httpDatabase::httpDatabase(const QString &host) : httpDatabase(host, timeOuts()) {}

httpDatabase::httpDatabase(const QString &host, const timeOuts &limits)
    : endpoint(QStringLiteral("http://%1/php/Fennick/mcp.php").arg(host)),
      limit(limits)
{
}

httpDatabase::~httpDatabase() = default;

bool httpDatabase::isHost(const QString &text)
{
    const QUrl url(QStringLiteral("http://%1").arg(text), QUrl::StrictMode);
    return url.isValid() && !url.host().isEmpty() && url.port(1) != 0
           && !text.endsWith(QLatin1Char(':'))
           && url
                  == QUrl(url.url(QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery
                                  | QUrl::RemoveFragment));
}

bool httpDatabase::request(int requested, QByteArray &data)
{
    const QByteArray type = typeOf(requested);
    if (type.isEmpty())
        return false;
    QVector<QPair<QByteArray, QByteArray>> items = {{"app", "Fennick"}, {"type", type}};
    if (requested == storeResults)
        items.append({"results", data});
    QByteArray reply;
    if (!post(formBody(items), requested == referenceVersion ? limit.version : limit.others, reply))
        return false;
    if (requested == storeResults)
        return true;
    data = requested == referenceVersion ? reply : uncompressed(reply, maximumXmlSize);
    return !data.isEmpty();
}

bool httpDatabase::post(const QByteArray &body, int timeOut, QByteArray &reply)
{
    if (!network) {
        network = std::make_unique<QNetworkAccessManager>();
        // Not even a proxy is read from the environment.
        network->setProxy(QNetworkProxy::NoProxy);
    }
    onceOnly upload(body);
    const std::unique_ptr<QNetworkReply> answer(network->post(formRequest(endpoint), &upload));
    if (!answer)
        return false;
    QEventLoop loop;
    QObject::connect(network.get(), &QNetworkAccessManager::finished, &loop,
                     [&loop, &answer](const QNetworkReply *finished) {
                         if (finished == answer.get())
                             loop.quit();
                     });
    QTimer::singleShot(timeOut, &loop, &QEventLoop::quit);
    // No list is that long, and without an end a reply would fill the memory.
    answer->setReadBufferSize(maximumXmlSize + 1);
    QObject::connect(answer.get(), &QNetworkReply::readyRead, &loop, [&answer] {
        if (answer->bytesAvailable() > maximumXmlSize)
            answer->abort();
    });
    loop.exec(QEventLoop::ExcludeUserInputEvents);

    if (answer->error() != QNetworkReply::NoError)
        return false;
    reply = answer->readAll();
    return true;
}
