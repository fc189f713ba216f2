// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/// The time as the header "Date" gives it, "Sun, 06 Nov 1994 08:49:37 GMT" (RFC 9110, 5.6.7).
std::string httpDate();
