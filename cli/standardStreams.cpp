// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/standardStreams.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

void occupyStandardHandles()
{
#ifdef Q_OS_UNIX
    for (const int handle : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // Each is opened for the other direction. A new handle gets the lowest free number, and
        // those below are taken.
        if (::fcntl(handle, F_GETFD) < 0)
            ::open("/dev/null", handle == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
#endif
}

int exitCodeAfterOutput(int code, const QString &program)
{
    // The mark of an earlier failure stays; what has only reached a buffer fails here.
    const bool hadFailed = std::ferror(stdout) != 0;
    const bool isClosed = std::fclose(stdout) == 0;
    if (!hadFailed && isClosed)
        return code;
    const QString text =
        QStringLiteral("%1: the output is not complete: standard output cannot be written\n")
            .arg(program);
    std::fputs(text.toLocal8Bit().constData(), stderr);
    return code == EXIT_SUCCESS ? EXIT_FAILURE : code;
}
