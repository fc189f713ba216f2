// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/doctorCommand.h"

#include "console/standardStreams.h"
#include "data/doctorPage.h"
#include "data/instanceLock.h"
#include "data/runRecorder.h"
#include "data/startingMoment.h"

exitCode doctorCommand()
{
    doctorSubject subject;
    subject.machine = thisMachine();
    subject.context = readMachineContext();
    subject.moment = readStartingMoment(subject.machine.threads);
    subject.build = thisBuild();
    subject.disturbances = disturbancesOf(subject.context, subject.moment, subject.build,
                                          subject.machine.threads, instanceLock().isOtherRunning());
    writeText(doctorPage(subject), stdout);
    return exitSuccess;
}
