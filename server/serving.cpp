// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/serving.h"

#include "console/standardStreams.h"
#include "server/log.h"
#include "server/metricsPage.h"
#include "server/serverCommand.h"

#include <boost/asio/signal_set.hpp>

#include <algorithm>
#include <csignal>

#include <sys/resource.h>
#include <unistd.h>

namespace
{

using namespace std::chrono_literals;

/// Together below the ten seconds that whoever ends a service may expect to be enough.
constexpr auto longestFinish = 8s;
constexpr auto longestDatabaseFinish = 1s;

exitCode failed(const QString &reason)
{
    return complain(serverProgramName(), reason);
}

/// Ends the loop's work in good order at the first signal, and the process at the second.
class endingSignals
{
public:
    endingSignals(asio::io_context &runner, resultServer &ended)
        : loop(runner),
          server(ended),
          caught(runner, SIGINT, SIGTERM),
          patience(runner)
    {
        wait();
    }

private:
    void wait()
    {
        caught.async_wait([this](const boost::system::error_code &error, int signal) {
            if (error)
                return;
            if (isEnding)
                _exit(128 + signal);
            end();
        });
    }
    void end()
    {
        isEnding = true;
        writeLog(QStringLiteral("ending"));
        server.end([this] { loop.stop(); });
        patience.expires_after(longestFinish);
        patience.async_wait([this](const boost::system::error_code &) { loop.stop(); });
        wait();
    }

    asio::io_context &loop;
    resultServer &server;
    asio::signal_set caught;
    asio::steady_timer patience;
    bool isEnding = false;
};

/// Each connection takes a file handle, and the usual limit is lower than the allowed number.
void raiseFileLimit(int connections)
{
    constexpr rlim_t others = 64;
    rlimit files{};
    getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = std::max(files.rlim_cur,
                              std::min(files.rlim_max, static_cast<rlim_t>(connections) + others));
    setrlimit(RLIMIT_NOFILE, &files);
}

outcome<void> checkDatabase(const databaseAddress &address)
{
    resultStore store(address);
    return store.open().and_then([&store] { return store.checkWritable(); });
}

/// As it is written in a URL.
QString placeOf(const listenAddress &wanted, int port)
{
    const bool isIpv6 = wanted.host.contains(QLatin1Char(':'));
    return (isIpv6 ? QStringLiteral("[%1]:%2") : QStringLiteral("%1:%2"))
        .arg(wanted.host, QString::number(port));
}

/// Has @p service listen. Where it does.
template <typename Service> outcome<QString> listenAt(const listenAddress &wanted, Service &service)
{
    return service.listen(wanted.host.toStdString(), wanted.port)
        .map([&](int port) { return placeOf(wanted, port); })
        .map_error([&](const QString &reason) {
            return QStringLiteral("cannot listen on %1; is something else listening there? (%2)")
                .arg(placeOf(wanted, wanted.port), reason);
        });
}

/// Has both listen, and says so. The page listens first: whoever reads that the server listens
/// finds all of it.
outcome<void> listenAndSay(const serverCommand &command, resultServer &server, metricsPage &page)
{
    QString said;
    if (command.metrics) {
        const outcome<QString> place = listenAt(*command.metrics, page);
        if (!place)
            return failure(place.error());
        said = QStringLiteral("Metrics on %1\n").arg(*place);
    }
    return listenAt(command.listen, server).map([&said](const QString &place) {
        writeText(said + QStringLiteral("Listening on %1\n").arg(place), stdout);
    });
}

} // namespace

exitCode runServer(const serverCommand &command)
{
    if (const outcome<void> isUsable = checkDatabase(command.options.database); !isUsable) {
        return failed(QStringLiteral("the database cannot be opened: %1").arg(isUsable.error()));
    }
    std::signal(SIGPIPE, SIG_IGN);
    raiseFileLimit(command.options.limits.connections);
    asio::io_context loop(1);
    resultServer server(loop, command.options);
    const endingSignals ending(loop, server);
    metricsPage page(loop, [&server] { return server.metricsText(); });
    if (const outcome<void> isListening = listenAndSay(command, server, page); !isListening)
        return failed(isListening.error());
    loop.run();
    if (!server.finish(longestDatabaseFinish)) {
        writeLog(QStringLiteral("ended while the database does not answer"));
        _exit(exitFailure);
    }
    writeLog(QStringLiteral("ended"));
    return exitSuccess;
}
