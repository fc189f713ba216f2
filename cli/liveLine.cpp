// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/liveLine.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <sys/ioctl.h>
#include <unistd.h>
#endif

int terminalWidth(std::FILE *stream)
{
#ifdef Q_OS_UNIX
    const int handle = ::fileno(stream);
    winsize size = {};
    if (handle < 0 || ::isatty(handle) == 0)
        return 0;
    constexpr int usual = 80;
    const bool isKnown = ::ioctl(handle, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : usual;
#else
    Q_UNUSED(stream)
    return 0;
#endif
}

liveLine::liveLine(std::FILE *target, std::function<int()> widthOf)
    : stream(target),
      width(std::move(widthOf))
{
}

void liveLine::logged(const QString &text)
{
    const auto end = text.lastIndexOf(QLatin1Char('\n'));
    lastLine = end < 0 ? lastLine + text : text.mid(end + 1);
}

QString liveLine::unfinished(int ofColumns) const
{
    // A long text has gone on in the next lines; the last of them may be just full.
    const auto length = static_cast<int>(lastLine.size());
    const int rest = length % ofColumns;
    return lastLine.right(rest == 0 && length > 0 ? ofColumns : rest);
}

void liveLine::show(const QString &text)
{
    const int all = columns();
    if (all <= 0)
        return;
    // The last column stays free: a terminal that has written there may go to the next line.
    const QString before = unfinished(all);
    const int room = all - 1 - static_cast<int>(before.size());
    const QString line =
        QStringLiteral("\r") + before + text.left(qMax(room, 0)) + QStringLiteral("\x1b[K");
    std::fputs(line.toLocal8Bit().constData(), stream);
    std::fflush(stream);
    isShown = true;
}

void liveLine::clear()
{
    if (!isShown)
        return;
    show({});
    isShown = false;
}
