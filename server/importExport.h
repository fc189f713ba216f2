// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/resultStore.h"

class QIODevice;

/// What an import has read.
struct importReport {
    int uploads = 0;
    int lists = 0;
    int estimates = 0; ///< modelled machines, which are passed over
};

/// Writes all uploads, withdrawn ones and their reasons included, and all lists to @p device, as
/// XML with the machines in the format of the lists. Fails if the database does; the errors of
/// @p device are left to the caller.
outcome<void> exportTo(resultStore &store, QIODevice &device);

/// Adds the uploads and lists of an export, or the machines of a list, that are not in the store
/// yet. Adds nothing if anything in it is wrong. Machines of a list become uploads received at @p
/// now, in milliseconds since 1970.
outcome<importReport> importFrom(QIODevice &device, resultStore &store, qint64 now);
