// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What a comparison of a test's frames with the table of known frames gave.
enum class digestVerdict {
    right,
    wrong,
    cannotTell ///< no memory, no known frame, or a C library that draws other random numbers
};
