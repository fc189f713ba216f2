// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

/// Acts as a user who is not the administrator, to whom permissions apply, while it lives.
class ordinaryUser
{
public:
    ordinaryUser() : wasRoot(geteuid() == 0)
    {
        if (wasRoot && seteuid(65534) != 0)
            qFatal("cannot become another user");
    }
    ordinaryUser(const ordinaryUser &) = delete;
    ordinaryUser &operator=(const ordinaryUser &) = delete;
    ~ordinaryUser()
    {
        if (wasRoot && seteuid(0) != 0)
            qFatal("cannot become root again");
    }

private:
    bool wasRoot;
};

/// Lets files grow to a few bytes only, as on a full disk, while it lives.
class fullDisk
{
public:
    explicit fullDisk(rlim_t bytes = 64)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit small = before;
        small.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &small);
    }
    fullDisk(const fullDisk &) = delete;
    fullDisk &operator=(const fullDisk &) = delete;
    ~fullDisk() { setrlimit(RLIMIT_FSIZE, &before); }

private:
    rlimit before{};
};
