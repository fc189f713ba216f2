// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchXml.h"

#include <QIODevice>
#include <QXmlStreamReader>

#include <limits>

namespace
{

/// A thread count from a number that may be anything, "nan" and "1e30" included.
int truncatedToInt(float number)
{
    constexpr auto limit = static_cast<float>(std::numeric_limits<int>::max());
    if (!(number > -limit && number < limit))
        return 0;
    return static_cast<int>(number);
}

benchResults machineOf(const QXmlStreamAttributes &attributes)
{
    const float threads = attributes.value(QLatin1String("threadCount")).toFloat();
    return {attributes.value(QLatin1String("machineName")).toString(),
            attributes.value(QLatin1String("os")).toString(),
            attributes.value(QLatin1String("cpu")).toString(),
            attributes.value(QLatin1String("clock")).toFloat(), truncatedToInt(threads)};
}

void readToken(const QXmlStreamReader &xml, QVector<benchResults> &machines, int firstMachine)
{
    const QXmlStreamAttributes attributes = xml.attributes();
    if (attributes.isEmpty())
        return;
    if (xml.name() == QLatin1String("bench")) {
        machines.append(machineOf(attributes));
    } else if (xml.name() == QLatin1String("test") && machines.size() > firstMachine) {
        const float result = attributes.value(QLatin1String("result")).toFloat();
        machines.last().setTest(attributes.value(QLatin1String("name")).toString(),
                                benchResults::test(result));
    }
}

} // namespace

void readMachines(QIODevice &device, QVector<benchResults> &machines)
{
    constexpr qint64 blockSize = 64 * 1024;
    const int firstMachine = machines.size();
    QXmlStreamReader xml;
    for (qint64 size = 0; size < maximumXmlSize;) {
        const QByteArray block = device.read(blockSize);
        if (block.isEmpty())
            return;
        size += block.size();
        xml.addData(block);
        while (!xml.atEnd()) {
            if (xml.readNext() == QXmlStreamReader::StartElement)
                readToken(xml, machines, firstMachine);
        }
        // Any other error than the end of the block is a fault of the file.
        if (xml.error() != QXmlStreamReader::PrematureEndOfDocumentError)
            return;
    }
}
