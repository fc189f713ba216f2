// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"

/// Makes an empty file at @p path that only its owner may read, and the folders above it that are
/// missing, for the owner alone too. Leaves what is there as it is.
outcome<void> makePrivateFile(const QString &path);
