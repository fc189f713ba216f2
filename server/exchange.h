// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/resultStore.h"

class QIODevice;

/// What an import has found and done.
struct importReport {
    QString error; ///< why nothing was imported; else empty
    int uploads = 0;
    int lists = 0;
    int estimates = 0; ///< modelled machines, which are passed over
};

/// Writes all uploads, withdrawn ones and their reasons included, and all lists to @p device, as
/// XML with the machines in the format of the lists. False if the database or the device failed.
bool exportTo(resultStore &store, QIODevice &device);

/// Adds what an export or a list of machines holds and what is not there yet, all or nothing.
/// Machines of a list become uploads of @p now, milliseconds since 1970.
importReport importFrom(QIODevice &device, resultStore &store, qint64 now);
