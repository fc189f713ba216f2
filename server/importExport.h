// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/importReader.h"

/// Writes all uploads, withdrawn ones and their reasons included, and all lists to @p device, as
/// they are at one moment, as XML with the machines in the format of the lists. Fails if the
/// database does, also in the middle: what has been written then is not whole, and is not taken by
/// importFrom. The errors of @p device are left to the caller.
outcome<void> exportTo(resultStore &store, QIODevice &device);

/// Adds the uploads and lists of an export, or the machines of a list, that are not in the store
/// yet. Adds nothing if anything in it is wrong.
outcome<importReport> importFrom(QIODevice &device, resultStore &store,
                                 const importOptions &options);
