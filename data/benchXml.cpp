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

/// Reads the tokens that are complete. False if nothing after them is of interest.
bool readTokens(QXmlStreamReader &xml, QVector<benchResults> &machines, int firstMachine,
                int &depth)
{
    // The format has three levels; the reader remembers every open one.
    constexpr int deepest = 100;
    while (!xml.atEnd()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement:
            readToken(xml, machines, firstMachine);
            if (++depth > deepest)
                return false;
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    // Any other error than the end of the line is a fault of the file.
    return xml.error() == QXmlStreamReader::PrematureEndOfDocumentError;
}

} // namespace

void readMachines(QIODevice &device, QVector<benchResults> &machines)
{
    // Line by line, since the XML reader gives nothing of a block in which it meets bytes that are
    // not of the file's encoding.
    constexpr qint64 longestLine = 4096;
    const int firstMachine = machines.size();
    int depth = 0;
    QXmlStreamReader xml;
    for (qint64 size = 0; size < maximumXmlSize;) {
        const QByteArray line = device.readLine(longestLine);
        if (line.isEmpty())
            return;
        size += line.size();
        xml.addData(line);
        if (!readTokens(xml, machines, firstMachine, depth))
            return;
    }
}
