// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/disturbances.h"
#include "data/runRecord.h"

#include <QString>

#include <vector>

/// What the page is about.
struct doctorSubject {
    machineFacts machine;
    machineContext context; ///< its moments are not shown
    machineMoment moment;   ///< of now
    buildFacts build;
    std::vector<disturbance> disturbances;
};

/// One page about a machine: what is known of it, of this build, and what disturbs a measurement
/// there. Lines of at most 80 columns, each with an end; a letter that might take two columns
/// counts as two. Nothing in it moves a terminal's cursor: what cannot be shown is a question mark.
QString doctorPage(const doctorSubject &subject);
