// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/httpDatabase.h"

// Alone in its file, so that another program can be built around another host.
QString httpDatabase::defaultHost()
{
    return QStringLiteral(FENNICK_RESULT_HOST);
}
