// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/database.h"

/// The version of the tables that this program works with.
constexpr int schemaVersion = 3;

/// Makes the tables in a new database, or brings those of an older program up to date. All or
/// nothing, and without a lock if there is nothing to do. Fails if a newer program has made them.
outcome<void> prepareSchema(database &db);

/// Whether @p db has the tables as this program needs them; changes nothing.
outcome<void> checkSchema(database &db);
