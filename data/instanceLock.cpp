// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/instanceLock.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QStandardPaths>
#include <QSysInfo>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#include <sys/types.h>
#endif

namespace
{

/// The name of this machine as part of a file's name.
QString hostWord()
{
    QString word = QSysInfo::machineHostName().left(64);
    for (QChar &c : word) {
        if (!(c.unicode() < 128 && c.isLetterOrNumber()))
            c = QLatin1Char('-');
    }
    return word;
}

/// Whether there is a process of this number. True where nobody can tell.
bool isAlive(qint64 process)
{
#ifdef Q_OS_UNIX
    return ::kill(static_cast<pid_t>(process), 0) == 0 || errno != ESRCH;
#else
    return process > 0;
#endif
}

} // namespace

instanceLock::instanceLock(const QString &directory)
{
    const QString folder = directory.isEmpty()
                               ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
                               : directory;
    path = folder + QStringLiteral("/measuring-%1.lock").arg(hostWord());
    file = std::make_unique<QLockFile>(path);
    // A run may take any time: only the death of its process ends a lock.
    file->setStaleLockTime(0);
}

instanceLock::~instanceLock() = default;

std::optional<qint64> instanceLock::holder() const
{
    qint64 process = 0;
    QString host;
    QString program;
    return file->getLockInfo(&process, &host, &program) && process > 0 ? std::make_optional(process)
                                                                       : std::nullopt;
}

bool instanceLock::tryLock()
{
    if (file->tryLock(0))
        return true;
    // What a full disk or a crash has left of a lock says nothing about any process.
    return file->error() == QLockFile::LockFailedError && !holder() && file->removeStaleLockFile()
           && file->tryLock(0);
}

bool instanceLock::hold()
{
    return file->isLocked() || (QDir().mkpath(QFileInfo(path).path()) && tryLock());
}

void instanceLock::release()
{
    file->unlock();
}

bool instanceLock::isOtherRunning()
{
    if (file->isLocked())
        return false;
    if (tryLock()) {
        file->unlock();
        return false;
    }
    // A dead one's lock stays where nothing can be removed.
    const std::optional<qint64> process = holder();
    return file->error() == QLockFile::LockFailedError && process && isAlive(*process);
}
