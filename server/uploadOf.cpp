// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/uploadOf.h"

#include "data/benchXml.h"
#include "server/uploadCheck.h"

#include <QCryptographicHash>

storedUpload uploadOf(const benchResults &machine, qint64 now)
{
    storedUpload upload;
    upload.content = canonicalXml(machine);
    upload.hash = QCryptographicHash::hash(upload.content, QCryptographicHash::Sha256).toHex();
    upload.received = now;
    upload.state = QStringLiteral("received");
    upload.isEmpty = isAllZero(machine);
    return upload;
}

benchResults machineOf(const storedUpload &upload)
{
    return readMachines(upload.content).value(0);
}
