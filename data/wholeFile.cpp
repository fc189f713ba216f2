// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/wholeFile.h"

#include <QFile>
#include <QSaveFile>

outcome<void> writeWholeFile(const QString &path, const QByteArray &content,
                             QIODevice::OpenMode form)
{
    QSaveFile file(path);
    // A commit does not notice that its own flush has failed, as on a full disk.
    if (file.open(QIODevice::WriteOnly | form) && file.write(content) == content.size()
        && file.flush() && file.commit())
        return {};
    return failure(QStringLiteral("'%1' cannot be written: %2").arg(path, file.errorString()));
}

outcome<QByteArray> readWholeFile(const QString &path, qint64 longest)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failure(QStringLiteral("'%1' cannot be read: %2").arg(path, file.errorString()));
    // Asked for one more than allowed: what is no ordinary file does not know its size.
    QByteArray content = file.read(longest + 1);
    if (file.error() != QFileDevice::NoError)
        return failure(QStringLiteral("'%1' cannot be read: %2").arg(path, file.errorString()));
    if (content.size() > longest)
        return failure(QStringLiteral("'%1' is longer than %2 bytes").arg(path).arg(longest));
    return content;
}
