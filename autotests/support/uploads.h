// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/storedUpload.h"

#include "data/formBody.h"
#include "engine/benchResults.h"

/// A machine with one result.
inline benchResults machineWith(const QString &name, const QString &cpu, float mandel,
                                const QString &os = QStringLiteral("linux"), int threads = 4)
{
    benchResults machine(name, os, cpu, 2e9F, threads);
    machine.setTest(QStringLiteral("mandel"), benchResults::test(mandel));
    return machine;
}

/// The same as an upload, as XML and as it is stored.
inline QByteArray uploadXml(const QByteArray &name, const QByteArray &cpu, const QByteArray &mandel)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Fennick>\n    <bench machineName=\"" + name
           + "\" os=\"linux\" cpu=\"" + cpu
           + "\" clock=\"2000000000\" threadCount=\"4\">\n        <test name=\"mandel\" result=\""
           + mandel + "\"/>\n    </bench>\n</Fennick>\n";
}

inline storedUpload stored(const benchResults &machine, qint64 time = 1'000)
{
    return makeUpload(machine, time);
}

/// The body of a request that uploads @p xml.
inline QByteArray uploadForm(const QByteArray &xml)
{
    return formBody({{"app", "Fennick"}, {"type", "storeUserData"}, {"results", xml}});
}
