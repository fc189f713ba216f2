// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/storedUpload.h"

#include "data/benchXml.h"
#include "server/rules/groupRules.h"
#include "server/rules/plausibility.h"
#include "server/rules/processorName.h"
#include "server/uploadCheck.h"

#include <QCryptographicHash>

bool isUploadState(const QString &state)
{
    return state == QLatin1String("received") || state == QLatin1String("published")
           || state == QLatin1String("withdrawn") || state == QLatin1String("held");
}

QByteArray uploadHash(const QByteArray &content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
}

outcome<void> checkCredible(const benchResults &machine)
{
    return publishedProcessorName(machine.getCpu()).and_then([&machine](const QString &) {
        return plausibility::ofBuiltInList().check(machine);
    });
}

storedUpload makeUpload(const benchResults &machine, qint64 now, const QByteArray &source)
{
    storedUpload upload;
    upload.content = canonicalXml(machine);
    upload.hash = uploadHash(upload.content);
    upload.received = now;
    const outcome<void> isCredible = checkCredible(machine);
    upload.state = isCredible ? QStringLiteral("received") : QStringLiteral("held");
    if (!isCredible)
        upload.reason = isCredible.error();
    upload.isEmpty = isAllZero(machine);
    upload.source = source;
    upload.group = groupKey(machine);
    return upload;
}

benchResults uploadedMachine(const storedUpload &upload)
{
    return readMachines(upload.content).value(0);
}
