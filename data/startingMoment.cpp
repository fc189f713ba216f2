// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/startingMoment.h"

#include "data/disturbances.h"
#include "engine/contextProbe.h"

#include <QThread>

void startingMomentSources::someTicksPass()
{
    constexpr unsigned long halfASecond = 500; // 50 ticks of what the system counts in
    QThread::msleep(halfASecond);
}

machineMoment readStartingMoment(int threads, const startingMomentSources &sources)
{
    machineMoment moment = readMachineMoment(sources.root);
    if (moment.loadAverage.value_or(0) > busyLoad(threads))
        moment.othersLoad = othersLoad(sources.pass, sources.time);
    return moment;
}
