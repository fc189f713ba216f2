// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/resultStore.h"

class benchResults;

/// A new upload of @p machine, received at @p now, milliseconds since 1970. Equal results have
/// equal hashes.
storedUpload uploadOf(const benchResults &machine, qint64 now);

/// The machine of an upload.
benchResults machineOf(const storedUpload &upload);
