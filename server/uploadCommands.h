// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/standardStreams.h"
#include "server/operatorOptions.h"

/// Writes the uploads that @p request asks for to standard output.
exitCode listUploads(resultStore &store, const operatorRequest &request);

/// Does @p wanted, and says to which uploads; only says it if @p isDryRun.
exitCode moderateUploads(resultStore &store, moderation::action wanted,
                         const operatorRequest &request, bool isDryRun);
