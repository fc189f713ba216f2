// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchXml.h"

#include "data/benchReader.h"

#include <QBuffer>
#include <QIODevice>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>

namespace
{

/// Appends machines to a list while the pieces of its file come in.
class listReader
{
public:
    explicit listReader(QVector<benchResults> &list) : reader(list) {}

    /// Reads what is complete with @p piece. False when reading has ended before the file's end.
    bool take(const QByteArray &piece)
    {
        bool hasToken = false;
        xml.addData(piece);
        while (how == listEnd::complete && !xml.atEnd()) {
            hasToken = xml.readNext() != QXmlStreamReader::Invalid || hasToken;
            readToken();
        }
        bytesWithoutToken = hasToken ? 0 : bytesWithoutToken + piece.size();
        if (isBroken() || bytesWithoutToken >= longestToken)
            how = listEnd::fault;
        return how == listEnd::complete;
    }

    /// Whether the XML reader could not go on.
    bool isBroken() const
    {
        // The end of the piece is an error to the XML reader, but no fault of the file.
        return xml.hasError() && xml.error() != QXmlStreamReader::PrematureEndOfDocumentError;
    }

    /// How it has ended, after the last piece.
    listEnd end() const
    {
        const bool isOpen =
            how == listEnd::complete && xml.tokenType() != QXmlStreamReader::EndDocument;
        return {isOpen ? listEnd::fault : how, xml.lineNumber()};
    }

private:
    /// The XML reader goes over all of an unfinished token again with each piece.
    static constexpr int longestToken = 128 * 1024;

    void readToken()
    {
        const std::optional<benchFault> fault = reader.take(xml);
        if (!fault || fault->what < benchFault::declarations)
            return;
        const bool isCut =
            fault->what == benchFault::tooManyMachines || fault->what == benchFault::tooManyResults;
        how = isCut ? listEnd::cut : listEnd::fault;
    }

    QXmlStreamReader xml;
    benchReader reader;
    int bytesWithoutToken = 0;
    listEnd::kind how = listEnd::complete;
};

constexpr int pieceSize = 64 * 1024;

/// Hands @p content to @p reader in pieces, those from @p linesFrom on no longer than a line. The
/// start of the piece with which reading ended, or the size of @p content.
int readPieces(const QByteArray &content, int linesFrom, listReader &reader)
{
    constexpr int shortPieceSize = 4096;
    int start = 0;
    while (start < content.size()) {
        const bool isByLine = start >= linesFrom;
        const int lineEnd = isByLine ? content.indexOf('\n', start) : -1;
        const int rest = (lineEnd < 0 ? content.size() : lineEnd + 1) - start;
        const int size = std::min(rest, isByLine ? shortPieceSize : pieceSize);
        if (!reader.take(content.mid(start, size)))
            return start;
        start += size;
    }
    return start;
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

listEnd readMachines(QIODevice &device, QVector<benchResults> &machines)
{
    const int firstMachine = machines.size();
    // Reading asks for the memory of all that may come, so ask for no more than there is; and for
    // one byte more than is read, to know of what is left out.
    const qint64 size =
        device.isSequential() ? maximumXmlSize + 1 : std::min(maximumXmlSize + 1, device.size());
    QByteArray content = device.read(size);
    const bool isCut = content.size() > maximumXmlSize;
    content.truncate(static_cast<int>(maximumXmlSize));

    listReader reader(machines);
    const int last = readPieces(content, content.size(), reader);
    if (!reader.isBroken()) {
        const listEnd end = reader.end();
        return isCut && last == content.size() ? listEnd{listEnd::cut, end.line} : end;
    }
    // The XML reader drops the whole of a piece that has bytes outside the file's encoding. Short
    // pieces save what comes before such bytes.
    machines.resize(firstMachine);
    listReader carefulReader(machines);
    readPieces(content, last, carefulReader);
    return carefulReader.end();
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
