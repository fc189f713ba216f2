// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/serverProgram.h"

#include "console/standardStreams.h"
#include "data/builtInList.h"
#include "server/importExport.h"
#include "server/log.h"
#include "server/publisher.h"
#include "server/serverCommand.h"

#include <QFile>
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

exitCode succeeded(const QString &text)
{
    writeText(text, stdout);
    return exitSuccess;
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

exitCode publish(resultStore &store)
{
    publisher lists(builtInMachines());
    int uploads = 0;
    const auto made = [&] { return resultStore::lists{lists.list(false), lists.list(true)}; };
    const outcome<int> version = store.publish(
        [&](const storedUpload &upload) {
            lists.add(upload);
            ++uploads;
        },
        made);
    if (!version)
        return failed(QStringLiteral("nothing was published: %1").arg(version.error()));
    return succeeded(QStringLiteral("Published version %1 from %2 uploads\n")
                         .arg(QString::number(*version), QString::number(uploads)));
}

exitCode importFile(resultStore &store, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return failed(QStringLiteral("'%1' cannot be read: %2").arg(path, file.errorString()));
    }
    const outcome<importReport> report =
        importFrom(file, store, QDateTime::currentMSecsSinceEpoch());
    if (!report) {
        return failed(
            QStringLiteral("nothing was imported from '%1': %2").arg(path, report.error()));
    }
    return succeeded(
        QStringLiteral("Read %1 uploads and %2 lists, passed over %3 modelled machines\n")
            .arg(QString::number(report->uploads), QString::number(report->lists),
                 QString::number(report->estimates)));
}

/// Whether all of it could be written is checked at the end of the program.
exitCode exportToOutput(resultStore &store)
{
    QFile output;
    output.open(stdout, QIODevice::WriteOnly);
    const outcome<void> done = exportTo(store, output);
    if (!done)
        return failed(QStringLiteral("the export is not complete: %1").arg(done.error()));
    return exitSuccess;
}

exitCode withdraw(resultStore &store, qint64 id, const QString &reason)
{
    const outcome<bool> isFound = store.withdraw(id, reason);
    if (!isFound)
        return failed(QStringLiteral("nothing was withdrawn: %1").arg(isFound.error()));
    if (!*isFound)
        return failed(QStringLiteral("there is no upload %1").arg(id));
    return succeeded(
        QStringLiteral("Upload %1 is withdrawn; the next version will be without it\n").arg(id));
}

exitCode list(resultStore &store)
{
    const auto row = [](const QString &id, const QString &time, const QString &state,
                        const QString &rest) {
        writeText(id.rightJustified(8) + QStringLiteral("  ") + time.leftJustified(20)
                      + QStringLiteral("  ") + state.leftJustified(9) + QStringLiteral("  ") + rest
                      + QLatin1Char('\n'),
                  stdout);
    };
    row(QStringLiteral("ID"), QStringLiteral("RECEIVED (UTC)"), QStringLiteral("STATE"),
        QStringLiteral("PROCESSOR, SYSTEM, THREADS, RESULTS"));
    const outcome<void> done = store.forEachUpload([&row](const storedUpload &upload) {
        const benchResults machine = uploadedMachine(upload);
        const QString text =
            QStringLiteral("%1, %2, %3, %4")
                .arg(machine.getCpu(), machine.getOs(), QString::number(machine.getThreads()),
                     QString::number(machine.getTests().size()));
        const QString reason =
            upload.reason.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(upload.reason);
        row(QString::number(upload.id),
            QDateTime::fromMSecsSinceEpoch(upload.received, Qt::UTC).toString(Qt::ISODate),
            upload.state,
            text + (upload.isEmpty ? QStringLiteral(", all zero") : QString()) + reason);
    });
    return done ? exitSuccess : failed(done.error());
}

exitCode runOnStore(const serverCommand &command)
{
    resultStore store(command.options.database);
    if (const outcome<void> isOpen = store.open(); !isOpen)
        return cannotOpen(isOpen.error());
    switch (command.wanted) {
    case serverCommand::publish:
        return publish(store);
    case serverCommand::importFile:
        return importFile(store, command.file);
    case serverCommand::exportAll:
        return exportToOutput(store);
    case serverCommand::withdraw:
        return withdraw(store, command.id, command.reason);
    default:
        return list(store);
    }
}

} // namespace

exitCode runServerProgram(const QStringList &arguments)
{
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    const parsed<serverCommand> command =
        parseServerCommand(arguments, directory + QStringLiteral("/results.sqlite"));
    if (!command)
        return sayInClosing(command.error());
    return command->wanted == serverCommand::serve ? serve(*command) : runOnStore(*command);
}
