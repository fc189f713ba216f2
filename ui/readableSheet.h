// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The sheet of what the main window's own one leaves open: popups, menus, tool tips, disabled
/// controls. Text has a contrast of at least 4.5 : 1, and what is chosen can be told from the rest.
QString readableSheet();
