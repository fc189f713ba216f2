// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/doctorPage.h"

/// This machine and this build as they are now, with everything that disturbs a measurement.
doctorSubject examination();
