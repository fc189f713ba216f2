// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/resultStore.h"

class QIODevice;

/// What an import has found.
struct importReport {
    int uploads = 0;
    int lists = 0;
    int estimates = 0; ///< modelled machines, which are passed over
};

/// Writes all uploads, withdrawn ones and their reasons included, and all lists to @p device, as
/// XML with the machines in the format of the lists. Fails with the database; whether @p device has
/// taken all of it is to be asked of the device.
outcome<void> exportTo(resultStore &store, QIODevice &device);

/// Adds what an export or a list of machines holds and what is not there yet, all or nothing: a
/// fault in it is a failure. Machines of a list become uploads of @p now, in milliseconds since
/// 1970.
outcome<importReport> importFrom(QIODevice &device, resultStore &store, qint64 now);
