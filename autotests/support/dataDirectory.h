// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

/// Gives the program a data directory of its own for the life of this object, so that no test sees
/// or touches the user's.
class dataDirectory
{
public:
    dataDirectory()
    {
        QCoreApplication::setApplicationName(QStringLiteral("fennick"));
        qputenv("XDG_DATA_HOME", QFile::encodeName(root.path()));
    }
    dataDirectory(const dataDirectory &) = delete;
    dataDirectory &operator=(const dataDirectory &) = delete;
    ~dataDirectory() { qunsetenv("XDG_DATA_HOME"); }

    QString path(const QString &file = {}) const
    {
        return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QLatin1Char('/')
               + file;
    }

    bool write(const QString &file, const QByteArray &content) const
    {
        QDir().mkpath(path());
        QFile out(path(file));
        return out.open(QIODevice::WriteOnly) && out.write(content) == content.size();
    }

    /// The content of a file, or a null array without one.
    QByteArray read(const QString &file) const
    {
        QFile in(path(file));
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

    QString rootPath() const { return root.path(); }

private:
    QTemporaryDir root;
};
