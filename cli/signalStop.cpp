// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/signalStop.h"

#include <QtGlobal>

#include <csignal>

namespace
{

volatile std::sig_atomic_t receivedSignal = 0;

extern "C" void noteSignal(int signal)
{
    receivedSignal = signal;
    std::signal(signal, SIG_DFL);
}

void listenTo(int signal)
{
    if (std::signal(signal, noteSignal) == SIG_IGN)
        std::signal(signal, SIG_IGN);
}

} // namespace

signalStop::signalStop()
{
    listenTo(SIGINT);
    listenTo(SIGTERM);
#ifdef Q_OS_UNIX
    listenTo(SIGHUP);
    std::signal(SIGPIPE, SIG_IGN);
#endif
}

bool signalStop::isStopRequested()
{
    return receivedSignal != 0;
}

exitCode signalStop::code() const
{
    switch (receivedSignal) {
    case SIGTERM:
        return exitTerminated;
#ifdef Q_OS_UNIX
    case SIGHUP:
        return exitHungUp;
#endif
    default:
        return exitInterrupted;
    }
}
