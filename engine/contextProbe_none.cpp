// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/contextProbe.h"

#include "engine/environmentSettings.h"

#include <QSysInfo>

std::optional<qint64> contextSources::systemPageSize()
{
    return std::nullopt;
}

machineContext readMachineContext(const contextSources &sources)
{
    machineContext context;
    context.kernel = QStringLiteral("%1 %2").arg(QSysInfo::kernelType(), QSysInfo::kernelVersion());
    context.environment = environmentSettings(sources.environment);
    return context;
}

machineMoment readMachineMoment(const std::filesystem::path &)
{
    return {};
}
