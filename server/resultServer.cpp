// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/resultServer.h"

#include "server/formItems.h"
#include "server/log.h"
#include "server/rules/sourceToken.h"
#include "server/uploadCheck.h"

#include <boost/asio/post.hpp>

#include <QFile>
#include <QHash>

namespace
{

const std::string endpoint = "/php/Fennick/mcp.php";
const std::string healthPage = "/health";
const std::string readingHealthPage = "/health/reading";

/// Those that read uploads, of which one takes some hundred microseconds.
constexpr int workerThreads = 2;
constexpr int maximumBacklog = 2'000;
/// A million takes the database some hundred milliseconds, in which nobody else reads.
constexpr auto countsAge = std::chrono::minutes(1);
/// A larger form is an upload, or nonsense.
constexpr std::size_t smallForm = 1024;

/// The types of forms, and what they are counted as.
const QHash<QByteArray, const char *> topics = {
    {"storeUserData", "upload"},
    {"getReferenceVersion", "version"},
    {"getReference", "list"},
    {"getReferenceBeta", "beta_list"},
};

answer unavailable()
{
    return textAnswer(503, QStringLiteral("the database does not answer; please try again later"));
}

answer busy()
{
    return textAnswer(503, QStringLiteral("too much is waiting; please try again later"));
}

answer tooMany(const rateLimit &limit, const QString &sentence)
{
    answer refused = textAnswer(429, sentence);
    refused.retryAfter = limit.secondsPerToken();
    return refused;
}

QByteArray builtIn()
{
    QFile file(QStringLiteral(":/data/benches.xml"));
    return file.open(QIODevice::ReadOnly) ? qCompress(file.readAll()) : QByteArray();
}

} // namespace

resultServer::resultServer(asio::io_context &loop, const serverOptions &wanted)
    : options(wanted),
      uploadLimit(wanted.uploads, wanted.uploadPeriod),
      readLimit(wanted.reads, wanted.readPeriod),
      builtInList(builtIn()),
      store(wanted.database, [this](storeThreads::work kind) { metrics.databaseFailed(kind); }),
      workers(workerThreads),
      http(loop, wanted.limits, makeHost())
{
}

resultServer::~resultServer()
{
    workers.join();
}

bool resultServer::finish(std::chrono::milliseconds longest)
{
    workers.join();
    return store.end(longest);
}

connectionHost resultServer::makeHost()
{
    connectionHost host;
    host.resources = {{endpoint, resource::form},
                      {healthPage, resource::page},
                      {readingHealthPage, resource::page}};
    host.trustedProxies = options.trustedProxies;
    host.handle = [this](const httpRequest &request, const replier &reply) {
        take(request, reply);
    };
    host.answered = [this](const answeredRequest &request) { metrics.answered(request); };
    return host;
}

std::string resultServer::metricsText()
{
    countUploads();
    return metrics.text({store.waiting(), backlog, http.connections()});
}

void resultServer::countUploads()
{
    const auto now = steadyClock::now();
    if (uploadsCounted && now - *uploadsCounted < countsAge)
        return;
    uploadsCounted = now;
    store.countUploads(
        [this](const std::optional<uploadCounts> &counts) { metrics.setUploads(counts); });
}

void resultServer::take(const httpRequest &request, const replier &reply)
{
    if (request.path == endpoint && request.body.size() > smallForm) {
        if (!doElsewhere([this, request, reply] { form(request, reply); }))
            reply(busy());
        return;
    }
    if (request.path == endpoint) {
        form(request, reply);
        return;
    }
    *request.topic = "health";
    if (!readLimit.take(accountOf(request.client)))
        reply(tooMany(readLimit, QStringLiteral("too many requests; please try again later")));
    else
        health(request.path == healthPage, reply);
}

bool resultServer::doElsewhere(std::function<void()> work)
{
    if (backlog >= maximumBacklog)
        return false;
    ++backlog;
    asio::post(workers, [this, work = std::move(work)] {
        work();
        --backlog;
    });
    return true;
}

void resultServer::form(const httpRequest &request, const replier &reply)
{
    const auto items = formItems(
        QByteArray::fromRawData(request.body.data(), static_cast<int>(request.body.size())));
    if (!items) {
        reply(textAnswer(400, QStringLiteral("the form cannot be read")));
        return;
    }
    if (items->value("app") != "Fennick") {
        reply(textAnswer(400, QStringLiteral("requests must come from the app Fennick")));
        return;
    }
    const QByteArray type = items->value("type");
    *request.topic = topics.value(type);
    if (type == "storeUserData")
        upload(items->value("results"), request.client, reply);
    else if (!readLimit.take(accountOf(request.client)))
        reply(tooMany(readLimit, QStringLiteral("too many requests; please try again later")));
    else if (type == "getReferenceVersion")
        version(reply);
    else if (type == "getReference")
        list(false, reply);
    else if (type == "getReferenceBeta")
        list(true, reply);
    else
        reply(textAnswer(400, QStringLiteral("there is no such type of request")));
}

void resultServer::version(const replier &reply)
{
    store.newestVersion([reply](std::optional<int> found) {
        answer given = unavailable();
        if (found) {
            given.status = 200;
            given.body = QByteArray::number(*found);
        }
        reply(given);
    });
}

void resultServer::list(bool isBeta, const replier &reply)
{
    store.newestList(isBeta, [this, reply](const std::optional<storedList> &found) {
        if (!found) {
            reply(unavailable());
            return;
        }
        answer given;
        given.body = found->version == 0 ? builtInList : found->content;
        given.contentType = "application/octet-stream";
        reply(given);
    });
}

/// What is no upload counts as a read, so that mistakes do not use up what is for uploads, and
/// nobody can send them without end.
void resultServer::upload(const QByteArray &xml, const ipAddress &client, const replier &reply)
{
    const ipAddress account = accountOf(client);
    if (!uploadLimit.hasToken(account) || !readLimit.hasToken(account)) {
        reply(tooMany(uploadLimit, QStringLiteral("too many uploads; please try again later")));
        return;
    }
    const auto machine = checkUpload(xml);
    if (!machine) {
        readLimit.take(account);
        metrics.refused(machine.error().kind);
        writeLog(QStringLiteral("upload refused: %1").arg(QLatin1String(machine.error().kind)));
        reply(textAnswer(machine.error().isReadable ? 422 : 400, machine.error().reason));
        return;
    }
    if (!uploadLimit.take(account)) {
        reply(tooMany(uploadLimit, QStringLiteral("too many uploads; please try again later")));
        return;
    }
    storedUpload stored = makeUpload(*machine, QDateTime::currentMSecsSinceEpoch());
    stored.network = networkOf(QString::fromStdString(client.to_string()));
    store.add(std::move(stored), [reply](bool isStored) {
        reply(isStored ? textAnswer(200, QStringLiteral("thank you")) : unavailable());
    });
}

void resultServer::health(bool isForWriting, const replier &reply)
{
    store.newestVersion([this, isForWriting, reply](std::optional<int> found) {
        if (!found) {
            reply(unavailable());
            return;
        }
        if (!isForWriting) {
            reply(textAnswer(200, QStringLiteral("ok")));
            return;
        }
        store.checkWritable([reply](bool isWritable) {
            reply(isWritable ? textAnswer(200, QStringLiteral("ok"))
                             : textAnswer(503, QStringLiteral("lists can be read, but no upload "
                                                              "can be stored")));
        });
    });
}
