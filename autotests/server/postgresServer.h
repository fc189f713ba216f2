// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>

#include <sys/stat.h>
#include <unistd.h>

/// A PostgreSQL server of the test's own, in a temporary directory and without a network port. It
/// ends with this object. It does not wait for the disk: the tests end processes, not the machine.
class postgresServer
{
public:
    postgresServer()
    {
        chmod(QFile::encodeName(root.path()).constData(), 0777);
        run({programs() + QStringLiteral("/initdb"), QStringLiteral("-D"), data(),
             QStringLiteral("-U"), QStringLiteral("fennick"), QStringLiteral("-A"),
             QStringLiteral("trust"), QStringLiteral("-N")});
        start();
    }
    postgresServer(const postgresServer &) = delete;
    postgresServer &operator=(const postgresServer &) = delete;
    ~postgresServer() { stop(); }

    bool start()
    {
        return control(
            QStringLiteral("start"),
            {QStringLiteral("-o"),
             QStringLiteral("-c listen_addresses='' -c fsync=off -k %1").arg(root.path())});
    }
    bool stop()
    {
        return control(QStringLiteral("stop"), {QStringLiteral("-m"), QStringLiteral("fast")});
    }

    /// Stops all of its processes where they are: connections stay, and nothing answers.
    void freeze() { signalAll(SIGSTOP); }
    void thaw() { signalAll(SIGCONT); }

    /// A new, empty database.
    QString newDatabase()
    {
        const QString name = QStringLiteral("test%1").arg(++databases);
        run({programs() + QStringLiteral("/createdb"), QStringLiteral("-h"), root.path(),
             QStringLiteral("-U"), QStringLiteral("fennick"), name});
        return QStringLiteral("postgresql://fennick@/%1?host=%2").arg(name, root.path());
    }

    /// A new database with what @p dump, a file of SQL, makes.
    QString newDatabase(const QString &dump)
    {
        QString place = newDatabase();
        QFile sql(dump);
        sql.open(QIODevice::ReadOnly);
        run({programs() + QStringLiteral("/psql"), QStringLiteral("-q"), QStringLiteral("-h"),
             root.path(), QStringLiteral("-U"), QStringLiteral("fennick"), QStringLiteral("-v"),
             QStringLiteral("ON_ERROR_STOP=1"), QStringLiteral("-d"),
             QStringLiteral("test%1").arg(databases)},
            sql.readAll());
        return place;
    }

    QString lastOutput;

private:
    QString data() const { return root.filePath(QStringLiteral("data")); }

    /// Where the system keeps the server's programs.
    static QString programs()
    {
        const QDir all(QStringLiteral("/usr/lib/postgresql"));
        const QStringList versions = all.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        return versions.isEmpty() ? QStringLiteral("(PostgreSQL is not installed)")
                                  : all.filePath(versions.last() + QStringLiteral("/bin"));
    }

    /// Sends @p signal to the server and the processes that it has started.
    void signalAll(int signal)
    {
        QFile file(data() + QStringLiteral("/postmaster.pid"));
        if (!file.open(QIODevice::ReadOnly))
            return;
        const int server = file.readLine().trimmed().toInt();
        QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(server));
        if (!children.open(QIODevice::ReadOnly))
            return;
        kill(server, signal);
        for (const QByteArray &child : children.readAll().simplified().split(' '))
            kill(child.toInt(), signal);
    }

    bool control(const QString &action, const QStringList &options)
    {
        return run(QStringList{programs() + QStringLiteral("/pg_ctl"), QStringLiteral("-w"),
                               QStringLiteral("-D"), data(), QStringLiteral("-l"),
                               root.filePath(QStringLiteral("log"))}
                   + options + QStringList(action));
    }

    /// Runs a program as somebody who is not the administrator, whom the server refuses.
    bool run(QStringList command, const QByteArray &input = {})
    {
        if (geteuid() == 0) {
            command = QStringList{QStringLiteral("runuser"), QStringLiteral("-u"),
                                  QStringLiteral("nobody"), QStringLiteral("--")}
                      + command;
        }
        QProcess process;
        process.setWorkingDirectory(root.path());
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.setStandardOutputFile(root.filePath(QStringLiteral("output")));
        process.start(command.first(), command.mid(1));
        process.write(input);
        process.closeWriteChannel();
        const bool isDone = process.waitForFinished(60'000) && process.exitCode() == 0;
        QFile output(root.filePath(QStringLiteral("output")));
        if (!isDone && output.open(QIODevice::ReadOnly))
            lastOutput = command.join(QLatin1Char(' ')) + QLatin1Char('\n')
                         + QString::fromLocal8Bit(output.readAll());
        return isDone;
    }

    QTemporaryDir root;
    int databases = 0;
};
