// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>
#include <QString>

#include <sys/inotify.h>
#include <unistd.h>

#include <array>

/// Tells whether anybody has opened a file since this object was made. Only Linux can say.
class accessWatch
{
public:
    explicit accessWatch(const QString &path)
        : descriptor(inotify_init1(IN_NONBLOCK)),
          isWatching(inotify_add_watch(descriptor, QFile::encodeName(path).constData(), IN_OPEN)
                     >= 0)
    {
    }
    accessWatch(const accessWatch &) = delete;
    accessWatch &operator=(const accessWatch &) = delete;
    ~accessWatch() { close(descriptor); }

    bool isAvailable() const { return isWatching; }
    /// Whether it was opened since this was asked before.
    bool wasOpened() const
    {
        std::array<char, 4096> events{};
        return read(descriptor, events.data(), events.size()) > 0;
    }

private:
    int descriptor;
    bool isWatching;
};
