// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/serverProgram.h"

#include "console/standardStreams.h"
#include "server/log.h"
#include "server/operatorCommands.h"
#include "server/serverCommand.h"

#include <QStandardPaths>

#include <algorithm>
#include <csignal>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

namespace
{

exitCode failed(const QString &reason)
{
    return complain(serverProgramName(), reason);
}

/// The signals that end the server, and one that ends waiting for them.
sigset_t endingSignals()
{
    sigset_t set{};
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGUSR1})
        sigaddset(&set, signal);
    return set;
}

/// Stops a server when the process is asked to end; ends the process at once when asked again.
class signalWaiter
{
public:
    explicit signalWaiter(resultServer &server)
        : thread([&server] {
              const sigset_t set = endingSignals();
              int signal = 0;
              for (int count = 0; sigwait(&set, &signal) == 0 && signal != SIGUSR1; ++count) {
                  if (count > 0)
                      _exit(128 + signal);
                  writeLog(QStringLiteral("ending"));
                  server.stop();
              }
          })
    {
    }
    signalWaiter(const signalWaiter &) = delete;
    signalWaiter &operator=(const signalWaiter &) = delete;
    ~signalWaiter()
    {
        kill(getpid(), SIGUSR1);
        thread.join();
    }

private:
    std::thread thread;
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

exitCode cannotOpen(const QString &reason)
{
    return failed(QStringLiteral("the database cannot be opened: %1").arg(reason));
}

exitCode serve(const serverCommand &command)
{
    if (const outcome<void> isOpen = resultStore(command.options.database).open(); !isOpen)
        return cannotOpen(isOpen.error());
    // Blocked before other threads are started, which would otherwise receive them.
    const sigset_t set = endingSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    raiseFileLimit(command.options.connections);
    resultServer server(command.options);
    const int port = server.bind(command.address.toStdString(), command.port);
    if (port < 0) {
        return failed(QStringLiteral("cannot listen on %1:%2; is something else listening there?")
                          .arg(command.address, QString::number(command.port)));
    }
    const signalWaiter waiter(server);
    writeText(QStringLiteral("Listening on %1:%2\n").arg(command.address, QString::number(port)),
              stdout);
    const bool isDone = server.serve();
    writeLog(QStringLiteral("ended"));
    return isDone ? exitSuccess : failed(QStringLiteral("the server has failed"));
}

} // namespace

exitCode runServerProgram(const QStringList &arguments)
{
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    const parsed<serverCommand> command =
        parseServerCommand(arguments, directory + QStringLiteral("/results.sqlite"));
    if (!command)
        return sayInClosing(command.error());
    return command->wanted == serverCommand::serve ? serve(*command) : runOperatorCommand(*command);
}
