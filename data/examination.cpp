// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/examination.h"

#include "data/instanceLock.h"
#include "data/runRecorder.h"
#include "data/startingMoment.h"

doctorSubject examination()
{
    doctorSubject subject;
    subject.machine = thisMachine();
    subject.context = readMachineContext();
    subject.moment = readStartingMoment(subject.machine.threads);
    subject.build = thisBuild();
    subject.disturbances = disturbancesOf(subject.context, subject.moment, subject.build,
                                          subject.machine.threads, instanceLock().isOtherRunning());
    return subject;
}
