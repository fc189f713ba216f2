// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/doctorPage.h"

/// This machine and this build as they are now, with everything that disturbs a measurement. Where
/// the load average is high it takes half a second to see what others do, see readStartingMoment.
doctorSubject examination();
/// The same at once: whether others keep the machine busy is left open.
doctorSubject quickExamination();
