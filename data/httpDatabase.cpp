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
#include <QSslError>
#include <QTimer>
#include <QUrl>

#include <algorithm>

namespace
{

const QString secureScheme = QStringLiteral("https://");

/// The type of a request in its form; nothing for a number that means none.
std::optional<QByteArray> typeOf(int requested)
{
    switch (requested) {
    case onlineDatabase::referenceVersion:
        return QByteArrayLiteral("getReferenceVersion");
    case onlineDatabase::reference:
        return QByteArrayLiteral("getReference");
    case onlineDatabase::betaReference:
        return QByteArrayLiteral("getReferenceBeta");
    case onlineDatabase::storeResults:
        return QByteArrayLiteral("storeUserData");
    default:
        return std::nullopt;
    }
}

/// A body that can be read only once. The toolkit would send any other body up to three more times
/// to a server that closes the connection without a reply, and the results would be stored as
/// often. Seeking back to the start must succeed all the same: the toolkit does it even where the
/// end of the connection marks the end of the reply, and drops the reply if it fails. (QBuffer does
/// not do: its content is taken without a call of readData.)
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

/// The words of a server that answers with an error, as one line that a terminal can show.
QString wordsOf(QNetworkReply &answer)
{
    constexpr qint64 longest = 1000;
    const QString kind = answer.header(QNetworkRequest::ContentTypeHeader).toString();
    if (!kind.startsWith(QLatin1String("text/plain"), Qt::CaseInsensitive))
        return {};
    QString words = QString::fromUtf8(answer.read(longest)).simplified();
    std::replace_if(
        words.begin(), words.end(), [](QChar c) { return !c.isPrint(); }, QLatin1Char('?'));
    return words;
}

/// Why there is no secure connection, as a sentence.
QString distrustOf(const QNetworkReply &answer, const QList<QSslError> &faults)
{
    if (faults.isEmpty())
        return QStringLiteral("no secure connection: %1").arg(answer.errorString().simplified());
    QStringList reasons;
    for (const QSslError &fault : faults)
        reasons.append(fault.errorString());
    return QStringLiteral("the certificate of %1 is not trusted: %2")
        .arg(answer.url().host(), reasons.join(QStringLiteral("; ")));
}

QNetworkRequest formRequest(const QString &endpoint)
{
    QNetworkRequest request{QUrl(endpoint)};
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QStringLiteral("application/x-www-form-urlencoded"));
    // Otherwise the toolkit offers to decompress replies by itself, without a limit.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    return request;
}

} // namespace

httpDatabase::httpDatabase(const QString &server) : httpDatabase(server, timeOuts()) {}

httpDatabase::httpDatabase(const QString &server, const timeOuts &limits)
    : endpoint((server.startsWith(secureScheme) ? server : QStringLiteral("http://") + server)
               + QStringLiteral("/php/Fennick/mcp.php")),
      limit(limits)
{
}

httpDatabase::~httpDatabase() = default;

bool httpDatabase::isServer(const QString &text)
{
    const QString scheme = text.startsWith(secureScheme) ? QString() : QStringLiteral("http://");
    const QUrl url(scheme + text, QUrl::StrictMode);
    return url.isValid() && !url.host().isEmpty() && url.port(1) != 0
           && !text.endsWith(QLatin1Char(':'))
           && url
                  == QUrl(url.url(QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery
                                  | QUrl::RemoveFragment));
}

bool httpDatabase::request(int requested, QByteArray &data)
{
    refused.clear();
    const std::optional<QByteArray> type = typeOf(requested);
    if (!type)
        return false;
    QVector<QPair<QByteArray, QByteArray>> items = {{"app", "Fennick"}, {"type", *type}};
    if (requested == storeResults)
        items.append({"results", data});
    const std::optional<QByteArray> reply =
        post(formBody(items), requested == referenceVersion ? limit.version : limit.others);
    if (!reply)
        return false;
    if (requested == storeResults)
        return true;
    data = requested == referenceVersion
               ? *reply
               : uncompressed(*reply, maximumXmlSize).value_or(QByteArray());
    return !data.isEmpty();
}

std::optional<QByteArray> httpDatabase::post(const QByteArray &body, int timeOut)
{
    if (!network) {
        network = std::make_unique<QNetworkAccessManager>();
        // Not even a proxy is read from the environment.
        network->setProxy(QNetworkProxy::NoProxy);
    }
    onceOnly upload(body);
    const std::unique_ptr<QNetworkReply> answer(network->post(formRequest(endpoint), &upload));
    if (!answer)
        return std::nullopt;
    QEventLoop loop;
    QObject::connect(network.get(), &QNetworkAccessManager::finished, &loop,
                     [&loop, &answer](const QNetworkReply *finished) {
                         if (finished == answer.get())
                             loop.quit();
                     });
    QTimer::singleShot(timeOut, &loop, &QEventLoop::quit);
    // No list is longer than that, and an endless reply would fill the memory.
    answer->setReadBufferSize(maximumXmlSize + 1);
    QObject::connect(answer.get(), &QNetworkReply::readyRead, &loop, [&answer] {
        if (answer->bytesAvailable() > maximumXmlSize)
            answer->abort();
    });
    QList<QSslError> faults;
    QObject::connect(answer.get(), &QNetworkReply::sslErrors, &loop,
                     [&faults](const QList<QSslError> &found) { faults = found; });
    loop.exec(QEventLoop::ExcludeUserInputEvents);

    if (answer->error() == QNetworkReply::SslHandshakeFailedError) {
        refused = distrustOf(*answer, faults);
        return std::nullopt;
    }
    if (answer->error() != QNetworkReply::NoError) {
        refused = wordsOf(*answer);
        return std::nullopt;
    }
    return answer->readAll();
}
