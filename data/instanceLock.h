// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <memory>
#include <optional>

class QLockFile;

/// Tells the instances on this machine of each other's measurements, by a lock file. Each machine
/// has its own, since a home may be shared by several. Whose process has died counts for nothing. A
/// home that cannot be written to has no locks, so nobody learns of anybody there.
class instanceLock
{
public:
    /// Keeps the lock in @p directory, or in the user's data directory.
    explicit instanceLock(const QString &directory = {});
    instanceLock(const instanceLock &) = delete;
    instanceLock &operator=(const instanceLock &) = delete;
    /// Releases the lock.
    ~instanceLock();

    /// Says that this instance measures from now on, until release. False if another one says so
    /// already or there can be no lock; nothing keeps a run from going on without it.
    bool hold();
    void release();

    /// Whether another instance measures.
    bool isOtherRunning();

private:
    /// Takes the lock, also if there is a file that says nothing.
    bool tryLock();
    /// Which process the file says has the lock.
    std::optional<qint64> holder() const;

    QString path;
    std::unique_ptr<QLockFile> file;
};
