// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchXml.h"

#include <QBuffer>
#include <QIODevice>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
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

/// Reads the tokens that are complete. False at a fault.
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
    // The end of the piece is an error to the XML reader, but no fault of the file.
    return !xml.hasError() || xml.error() == QXmlStreamReader::PrematureEndOfDocumentError;
}

/// Reads @p content in pieces of at most @p pieceSize bytes, which end with a line if @p byLine.
/// False at a fault.
bool readPieces(const QByteArray &content, int pieceSize, bool byLine,
                QVector<benchResults> &machines)
{
    const int firstMachine = machines.size();
    int depth = 0;
    QXmlStreamReader xml;
    for (int start = 0; start < content.size();) {
        const int lineEnd = byLine ? content.indexOf('\n', start) : -1;
        const int rest = (lineEnd < 0 ? content.size() : lineEnd + 1) - start;
        const int size = std::min(rest, pieceSize);
        xml.addData(content.mid(start, size));
        if (!readTokens(xml, machines, firstMachine, depth))
            return false;
        start += size;
    }
    return true;
}

/// A clock as a whole number, from a float that may be anything.
quint64 wholeHertz(float clock)
{
    constexpr float limit = 1.8e19F; // just below what fits
    return clock > 0.0F ? static_cast<quint64>(std::min(clock, limit)) : 0;
}

/// A reader would stop at a character that XML does not allow, and lose all that follows.
QString xmlText(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const bool isPair =
            c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const bool isWhiteSpace =
            c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r');
        if (isPair)
            result.append(c).append(text.at(++i));
        else if ((c < QLatin1Char(' ') && !isWhiteSpace) || c.isSurrogate() || c >= QChar(0xFFFE))
            result.append(QChar(QChar::ReplacementCharacter));
        else
            result.append(c);
    }
    return result;
}

} // namespace

void readMachines(QIODevice &device, QVector<benchResults> &machines)
{
    constexpr int pieceSize = 64 * 1024;
    constexpr int shortPieceSize = 4096;
    const int firstMachine = machines.size();
    // Reading asks for the memory of all that may come, so ask for no more than there is.
    const qint64 size =
        device.isSequential() ? maximumXmlSize : std::min(maximumXmlSize, device.size());
    const QByteArray content = device.read(size);
    if (readPieces(content, pieceSize, false, machines))
        return;
    // Of a piece with bytes that are not of the file's encoding, the XML reader gives nothing at
    // all. In a faulty file, short pieces save what stands before such bytes.
    machines.resize(firstMachine);
    readPieces(content, shortPieceSize, true, machines);
}

QVector<benchResults> readMachines(const QByteArray &xml)
{
    QBuffer buffer;
    buffer.setData(xml);
    buffer.open(QIODevice::ReadOnly);
    QVector<benchResults> machines;
    readMachines(buffer, machines);
    return machines;
}

void writeMachine(QXmlStreamWriter &xml, const benchResults &machine)
{
    writeMachine(xml, machine, wholeHertz(machine.getFrequency()));
}

void writeMachine(QXmlStreamWriter &xml, const benchResults &machine, quint64 hertz)
{
    const auto attribute = [&xml](const char *name, const QString &value) {
        xml.writeAttribute(QString::fromLatin1(name), xmlText(value));
    };
    xml.writeStartElement(QStringLiteral("bench"));
    attribute("machineName", machine.getName());
    attribute("os", machine.getOs());
    attribute("cpu", machine.getCpu());
    attribute("clock", QString::number(hertz));
    attribute("threadCount", QString::number(machine.getThreads()));
    const QMap<QString, benchResults::test> &tests = machine.getTests();
    for (auto test = tests.begin(); test != tests.end(); ++test) {
        xml.writeEmptyElement(QStringLiteral("test"));
        attribute("name", test.key());
        attribute("result", QStringLiteral("%1").arg(static_cast<double>(test->value)));
    }
    xml.writeEndElement();
}
