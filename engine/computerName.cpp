// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/computerName.h"

#include <QtGlobal>

void provideComputerName(const QString &hostName)
{
    if (qEnvironmentVariableIsEmpty("COMPUTERNAME") && !hostName.isEmpty())
        qputenv("COMPUTERNAME", hostName.toLocal8Bit());
}
