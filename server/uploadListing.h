// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/storedUpload.h"

#include <QString>

/// How uploads are shown to an operator: never with the computer's name.
enum class listingForm {
    lines,  ///< one for each upload
    values, ///< the same with all results under it
    json    ///< an array with an object for each upload
};

/// What stands before the first upload, for one upload, and after the last. A listing that ends
/// early thus is no JSON.
QString listingStart(listingForm form);
QString listingOf(const storedUpload &upload, listingForm form, bool isFirst);
QString listingEnd(listingForm form);
