// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/standardStreams.h"

#include <QtGlobal>

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

void writeText(const QString &text, std::FILE *stream)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

exitCode complain(const QString &program, const QString &sentence)
{
    writeText(QStringLiteral("%1: %2\n").arg(program, sentence), stderr);
    return exitFailure;
}

exitCode exitCodeAfterOutput(exitCode code, const QString &program, exitCode lost)
{
    // The mark of an earlier failure stays; what has only reached a buffer fails here.
    const bool hadFailed = std::ferror(stdout) != 0;
    const bool isClosed = std::fclose(stdout) == 0;
    if (!hadFailed && isClosed)
        return code;
    complain(program,
             QStringLiteral("the output is not complete: standard output cannot be written"));
    return code == exitSuccess ? lost : code;
}
