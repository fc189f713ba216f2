// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/examination.h"

#include "data/instanceLock.h"
#include "data/runRecorder.h"
#include "data/startingMoment.h"

namespace
{

doctorSubject subjectAt(const machineFacts &machine, const machineMoment &moment)
{
    doctorSubject subject;
    subject.machine = machine;
    subject.context = readMachineContext();
    subject.moment = moment;
    subject.build = thisBuild();
    subject.disturbances = disturbancesOf(subject.context, subject.moment, subject.build,
                                          subject.machine.threads, instanceLock().isOtherRunning());
    return subject;
}

} // namespace

doctorSubject examination()
{
    const machineFacts machine = thisMachine();
    return subjectAt(machine, readStartingMoment(machine.threads));
}

doctorSubject quickExamination()
{
    machineMoment moment = readMachineMoment();
    moment.loadAverage.reset(); // it may be that of what has ended
    return subjectAt(thisMachine(), moment);
}
