// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QMetaType>
#include <QString>
#include <QTemporaryDir>

#include <filesystem>

/// Files by their paths below the root of a system.
using systemFiles = QMap<QString, QByteArray>;
Q_DECLARE_METATYPE(systemFiles)

/// A root of a system with a few files, for the life of this object.
class systemTree
{
public:
    explicit systemTree(const systemFiles &files = {})
    {
        for (auto file = files.cbegin(); file != files.cend(); ++file)
            write(file.key(), file.value());
    }

    /// False if the file could not be written.
    bool write(const QString &path, const QByteArray &content) const
    {
        const QString whole = directory.filePath(path);
        QFile file(whole);
        return QDir().mkpath(QFileInfo(whole).path()) && file.open(QIODevice::WriteOnly)
               && file.write(content) == content.size();
    }

    std::filesystem::path root() const { return directory.path().toStdString(); }

private:
    QTemporaryDir directory;
};

/// The root of one of the machines in autotests/engine/machines.
inline std::filesystem::path machineRoot(const char *name)
{
    return std::filesystem::path(FENNICK_MACHINES) / name;
}
