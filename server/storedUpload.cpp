// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/storedUpload.h"

#include "data/benchXml.h"
#include "server/uploadCheck.h"

#include <QCryptographicHash>

storedUpload makeUpload(const benchResults &machine, qint64 now)
{
    storedUpload upload;
    upload.content = canonicalXml(machine);
    upload.hash = QCryptographicHash::hash(upload.content, QCryptographicHash::Sha256).toHex();
    upload.received = now;
    upload.state = QStringLiteral("received");
    upload.isEmpty = isAllZero(machine);
    return upload;
}

benchResults uploadedMachine(const storedUpload &upload)
{
    return readMachines(upload.content).value(0);
}
