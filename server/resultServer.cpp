// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/resultServer.h"

#include "server/formItems.h"
#include "server/log.h"
#include "server/uploadCheck.h"

#include <QFile>

namespace
{

constexpr int readers = 2;

answer textAnswer(int status, const QString &line)
{
    return {status, line.toUtf8() + '\n', true};
}

answer unavailable()
{
    return textAnswer(503, QStringLiteral("the database does not answer; please try again later"));
}

QByteArray builtIn()
{
    QFile file(QStringLiteral(":/data/benches.xml"));
    return file.open(QIODevice::ReadOnly) ? qCompress(file.readAll()) : QByteArray();
}

void send(const answer &from, httplib::Response &to)
{
    to.status = from.status;
    to.set_content(from.body.constData(), static_cast<std::size_t>(from.body.size()),
                   from.isText ? "text/plain; charset=utf-8" : "application/octet-stream");
}

} // namespace

resultServer::resultServer(const serverOptions &wanted)
    : options(wanted),
      store(wanted.database, readers),
      uploadLimit(wanted.uploads, wanted.period),
      builtInList(builtIn()),
      http(wanted.connections)
{
    addRoutes();
}

void resultServer::addRoutes()
{
    http.Get("/health", [this](const httplib::Request &, httplib::Response &response) {
        send(health(), response);
    });
    http.Post("/php/Fennick/mcp.php",
              [this](const httplib::Request &request, httplib::Response &response,
                     const httplib::ContentReader &content) {
                  QByteArray body;
                  content([&body](const char *data, std::size_t size) {
                      body.append(data, static_cast<int>(size));
                      return true; // its size has been checked before
                  });
                  send(respond(body, clientOf(request)), response);
              });
}

std::string resultServer::clientOf(const httplib::Request &request) const
{
    const std::string forwarded = request.get_header_value("X-Forwarded-For");
    if (!options.isBehindProxy || forwarded.empty())
        return request.remote_addr;
    const std::size_t comma = forwarded.rfind(',');
    const std::size_t start =
        forwarded.find_first_not_of(' ', comma == std::string::npos ? 0 : comma + 1);
    return start == std::string::npos ? request.remote_addr : forwarded.substr(start);
}

answer resultServer::respond(const QByteArray &body, const std::string &address)
{
    const std::optional<QMap<QByteArray, QByteArray>> items = formItems(body);
    if (!items)
        return textAnswer(400, QStringLiteral("the form cannot be read"));
    if (items->value("app") != "Fennick")
        return textAnswer(400, QStringLiteral("requests must come from the app Fennick"));
    const QByteArray type = items->value("type");
    if (type == "getReferenceVersion")
        return version();
    if (type == "getReference")
        return list(false);
    if (type == "getReferenceBeta")
        return list(true);
    if (type == "storeUserData")
        return upload(items->value("results"), address);
    return textAnswer(400, QStringLiteral("there is no such type of request"));
}

answer resultServer::version()
{
    const std::optional<int> found = store.newestVersion();
    return found ? answer{200, QByteArray::number(*found), true} : unavailable();
}

answer resultServer::list(bool isBeta)
{
    const std::optional<storedList> found = store.newestList(isBeta);
    if (!found)
        return unavailable();
    return {200, found->version == 0 ? builtInList : found->content, false};
}

answer resultServer::upload(const QByteArray &xml, const std::string &address)
{
    if (!uploadLimit.isAllowed(address))
        return textAnswer(429, QStringLiteral("too many uploads; please try again later"));
    const auto machine = checkUpload(xml);
    if (!machine) {
        writeLog(QStringLiteral("upload refused"));
        return textAnswer(machine.error().isReadable ? 422 : 400, machine.error().reason);
    }
    if (!store.add(makeUpload(*machine, QDateTime::currentMSecsSinceEpoch())))
        return unavailable();
    return textAnswer(200, QStringLiteral("thank you"));
}

answer resultServer::health()
{
    return store.newestVersion() ? textAnswer(200, QStringLiteral("ok")) : unavailable();
}
