// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/privateFile.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

outcome<void> cannotBeMade(const QString &path)
{
    const QString reason = QString::fromLocal8Bit(std::strerror(errno));
    return failure(QStringLiteral("'%1' cannot be made: %2").arg(path, reason));
}

outcome<void> makePrivateFolder(const QString &path)
{
    if (QFileInfo::exists(path))
        return {};
    if (const outcome<void> isThere = makePrivateFolder(QFileInfo(path).absolutePath()); !isThere)
        return isThere;
    const bool isMade = mkdir(QFile::encodeName(path).constData(), S_IRWXU) == 0;
    return isMade || errno == EEXIST ? outcome<void>() : cannotBeMade(path);
}

} // namespace

outcome<void> makePrivateFile(const QString &path)
{
    if (QFileInfo::exists(path))
        return {};
    return makePrivateFolder(QFileInfo(path).absolutePath()).and_then([&path]() -> outcome<void> {
        const int file = ::open(QFile::encodeName(path).constData(),
                                O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
        if (file < 0)
            return errno == EEXIST ? outcome<void>() : cannotBeMade(path);
        ::close(file);
        return {};
    });
}
