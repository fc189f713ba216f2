// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/countedRun.h"

#include "server/ceilings.h"
#include "server/rules/plausibility.h"

#include <QCryptographicHash>

#include <cstring>

namespace
{

/// Appends the bytes of a number as they are in this machine's memory.
template <typename Number> void append(QByteArray &bytes, Number number)
{
    bytes.append(reinterpret_cast<const char *>(&number), sizeof number);
}

void appendText(QByteArray &bytes, const QByteArray &text)
{
    append(bytes, static_cast<quint16>(text.size()));
    bytes.append(text);
}

/// Reads what append has written; zeros behind the end.
class byteReader
{
public:
    explicit byteReader(const QByteArray &content) : bytes(content) {}

    template <typename Number> Number number()
    {
        Number value{};
        if (has(static_cast<int>(sizeof value)))
            std::memcpy(&value, bytes.constData() + place, sizeof value);
        place += static_cast<int>(sizeof value);
        return value;
    }
    QByteArray text()
    {
        const int size = number<quint16>();
        const QByteArray found = has(size) ? bytes.mid(place, size) : QByteArray();
        place += size;
        return found;
    }

private:
    bool has(int size) const { return size <= bytes.size() - place; }

    const QByteArray &bytes;
    int place = 0;
};

} // namespace

const QStringList &wholeRunTests()
{
    static const QStringList names = resultCeilings().keys();
    return names;
}

std::optional<countedRun> countedRunOf(const benchResults &machine, qint64 received,
                                       const QByteArray &source)
{
    if (!isWholeRun(machine))
        return std::nullopt;
    countedRun run{received,
                   source,
                   machine.getCpu(),
                   machine.getOs(),
                   machine.getThreads(),
                   machine.getFrequency(),
                   {}};
    for (const QString &test : wholeRunTests())
        run.results.append(machine.getTests().value(test).value);
    return run;
}

QByteArray packedRun(const countedRun &run)
{
    QByteArray packed;
    append(packed, run.received);
    append(packed, static_cast<qint32>(run.threads));
    append(packed, run.clock);
    for (const float result : run.results)
        append(packed, result);
    appendText(packed, run.source);
    appendText(packed, run.os.toUtf8());
    appendText(packed, run.processor.toUtf8());
    return packed;
}

countedRun unpackedRun(const QByteArray &packed)
{
    byteReader bytes(packed);
    countedRun run;
    run.received = bytes.number<qint64>();
    run.threads = bytes.number<qint32>();
    run.clock = bytes.number<float>();
    run.results.resize(wholeRunTests().size());
    for (float &result : run.results)
        result = bytes.number<float>();
    run.source = bytes.text();
    run.os = QString::fromUtf8(bytes.text());
    run.processor = QString::fromUtf8(bytes.text());
    return run;
}

QString packingName()
{
    const QByteArray names = wholeRunTests().join(QLatin1Char('\n')).toUtf8();
    const QString hash = QString::fromLatin1(
        QCryptographicHash::hash(names, QCryptographicHash::Sha256).toHex().left(16));
    const bool isLittleEndian = QSysInfo::ByteOrder == QSysInfo::LittleEndian;
    return QStringLiteral("1 %1 %2").arg(
        isLittleEndian ? QStringLiteral("little") : QStringLiteral("big"), hash);
}
