// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/machineProbe.h"

#include <algorithm>
#include <cstdlib>
#include <omp.h>

const machineProbe &machineProbe::instance()
{
    static const machineProbe probe([] { return readProcessorInfo(); });
    return probe;
}

machineProbe::machineProbe(source processorSource) : readProcessor(processorSource) {}

int machineProbe::getThreadCount() const
{
    return omp_get_max_threads();
}

QByteArray machineProbe::getThreadMap() const
{
    return QByteArray(qMax(getThreadCount(), 0), '\1');
}

QString machineProbe::getProcessorName() const
{
    const std::optional<std::string> raw = readProcessor().name;
    if (!raw)
        return QStringLiteral("unknown");
    const QString name = QString::fromStdString(*raw).trimmed();
    const int at = static_cast<int>(name.indexOf(QLatin1Char('@')));
    return at > 0 ? name.left(at) : name;
}

QVector<float> machineProbe::getFrequencies() const
{
    const std::optional<std::uint32_t> megahertz = readProcessor().megahertz;
    if (!megahertz)
        return {};
    return {static_cast<float>(*megahertz) * 1'000'000.0F};
}

QVector<float> machineProbe::getCoreClocks() const
{
    return {};
}

benchResults machineProbe::record() const
{
    const char *computerName = std::getenv("COMPUTERNAME");
    const QVector<float> frequencies = getFrequencies();
    return {computerName ? QString::fromLocal8Bit(computerName) : QStringLiteral("your machine"),
            QStringLiteral(FENNICK_OS_WORD), getProcessorName(),
            frequencies.isEmpty() ? 0.0F
                                  : *std::max_element(frequencies.begin(), frequencies.end()),
            getThreadCount()};
}
