// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/importReader.h"

#include "data/benchXml.h"
#include "data/compressed.h"
#include "data/estimate.h"
#include "server/exportFormat.h"
#include "server/uploadCheck.h"
#include "server/versions.h"

#include <QBuffer>
#include <QRegularExpression>

namespace
{

/// Whether @p packed is a list that a program could load.
bool isLoadable(const QByteArray &packed)
{
    const std::optional<QByteArray> content = uncompressed(packed, maximumXmlSize);
    if (!content)
        return false;
    QBuffer buffer;
    buffer.setData(*content);
    buffer.open(QIODevice::ReadOnly);
    QVector<benchResults> machines;
    return readMachines(buffer, machines).how == listEnd::complete && !machines.isEmpty();
}

bool isSource(const QString &text)
{
    static const QRegularExpression token(QStringLiteral("\\A[0-9a-f]{0,64}\\z"));
    return token.match(text).hasMatch();
}

} // namespace

outcome<importReport> importReader::read()
{
    while (!xml.atEnd()) {
        xml.readNext();
        if (const outcome<void> done = readToken(); !done && !xml.hasError())
            return inThisLine(done.error());
    }
    if (xml.hasError())
        return inThisLine(xml.errorString());
    return report;
}

failure importReader::inThisLine(const QString &sentence) const
{
    return failure(QStringLiteral("line %1: %2").arg(QString::number(xml.lineNumber()), sentence));
}

QString importReader::attribute(const char *name) const
{
    return xml.attributes().value(QLatin1String(name)).toString();
}

outcome<qint64> importReader::timeIn(const char *name) const
{
    constexpr qint64 day = 86'400'000;
    const QString text = attribute(name);
    const QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (!time.isValid() || time.toMSecsSinceEpoch() < 0)
        return failure(QStringLiteral("'%1' is no time").arg(text));
    if (time.toMSecsSinceEpoch() > options.now + day)
        return failure(QStringLiteral("'%1' is in the future").arg(text));
    return time.toMSecsSinceEpoch();
}

outcome<void> importReader::readToken()
{
    if (!machineReader.isInMachine()) {
        const bool isRoot = where == outside && xml.isStartElement();
        if (const outcome<void> known = isRoot ? beginRoot() : outcome<void>(); !known)
            return known;
        // An export's own elements stand around the machines, not in them.
        if (!isRoot && xml.isStartElement() && (where == inExport || where == behindEnd))
            return beginPart();
        if (xml.isEndElement() && where == inUpload)
            return endUpload();
        if (xml.isEndElement() && where == inExport && !options.isEndOptional)
            return failure(QStringLiteral("this export says nothing about its end: it is not "
                                          "complete, or older than that"));
    }
    if (const std::optional<benchFault> fault = machineReader.take(xml))
        return failure(fault->sentence());
    return xml.isEndElement() && xml.name() == QLatin1String("bench") ? takeMachine()
                                                                      : outcome<void>();
}

outcome<void> importReader::beginRoot()
{
    if (xml.name() == exportFormat::listRoot) {
        where = inList;
        return {};
    }
    if (xml.name() != exportFormat::root)
        return failure(QStringLiteral("this is neither an export nor a list of machines"));
    where = inExport;
    const QString number = attribute("format");
    format = number.toInt();
    if (!number.isEmpty() && format != exportFormat::number)
        return failure(QStringLiteral("there is no export of the format '%1'").arg(number));
    return {};
}

outcome<void> importReader::beginPart()
{
    if (where == behindEnd)
        return failure(QStringLiteral("something stands behind the end of this export"));
    if (xml.name() == exportFormat::upload)
        return beginUpload();
    if (xml.name() == exportFormat::list)
        return readList();
    if (xml.name() == exportFormat::end)
        return readEnd();
    return failure(QStringLiteral("there is no <%1> in an export").arg(xml.name().toString()));
}

outcome<void> importReader::beginUpload()
{
    where = inUpload;
    hasMachine = false;
    upload = {};
    upload.state = attribute("state");
    upload.reason = attribute("reason");
    upload.source = attribute("source").toLatin1();
    hash = attribute("hash");
    if (!isUploadState(upload.state))
        return failure(QStringLiteral("there is no state '%1'").arg(upload.state));
    if (!isSource(attribute("source")))
        return failure(QStringLiteral("'%1' is no source").arg(attribute("source")));
    return timeIn("received").map([this](qint64 time) { upload.received = time; });
}

outcome<void> importReader::endUpload()
{
    where = inExport;
    return hasMachine ? outcome<void>()
                      : failure(QStringLiteral("there is no machine in this upload"));
}

outcome<void> importReader::readList()
{
    storedList list;
    const QString kind = attribute("kind");
    list.version = attribute("version").toInt();
    list.isBeta = kind == QLatin1String("BETA");
    if (list.version <= builtInListVersion || list.version > largestVersion) {
        return failure(
            QStringLiteral("the version of a list must be from %1 to %2")
                .arg(QString::number(builtInListVersion + 1), QString::number(largestVersion)));
    }
    if (!list.isBeta && kind != QLatin1String("normal"))
        return failure(QStringLiteral("a list is normal or BETA, not '%1'").arg(kind));
    const outcome<qint64> made = timeIn("made");
    if (!made)
        return failure(made.error());
    list.made = *made;
    list.content = QByteArray::fromBase64(xml.readElementText().toLatin1());
    if (!isLoadable(list.content))
        return failure(QStringLiteral("no program could load this list"));
    lists.append(list);
    ++report.lists;
    return {};
}

outcome<void> importReader::readEnd()
{
    where = behindEnd;
    const bool isRight = attribute("uploads") == QString::number(report.uploads)
                         && attribute("lists") == QString::number(report.lists);
    xml.readElementText();
    return isRight ? outcome<void>()
                   : failure(QStringLiteral("this export has lost some of its uploads or lists"));
}

outcome<void> importReader::takeMachine()
{
    const benchResults machine = machines.takeLast();
    if (where == inUpload)
        return takeMachineOfUpload(machine);
    if (isEstimate(machine.getName())) {
        ++report.estimates;
        return {};
    }
    uploads.append(makeUpload(machine, options.now));
    ++report.uploads;
    return checkMachine(machine);
}

outcome<void> importReader::takeMachineOfUpload(const benchResults &machine)
{
    if (hasMachine)
        return failure(QStringLiteral("there is more than one machine in this upload"));
    hasMachine = true;
    storedUpload taken = makeUpload(machine, upload.received, upload.source);
    if (format != 0 && hash.toLatin1() != taken.hash)
        return failure(QStringLiteral("this upload does not fit its hash"));
    // Before there was a format, nothing was held; what an operator has accepted stays accepted.
    const bool isHeldNow = format == 0 && taken.state == QLatin1String("held")
                           && upload.state != QLatin1String("withdrawn");
    if (!isHeldNow) {
        taken.state = upload.state;
        taken.reason = upload.reason;
    }
    uploads.append(taken);
    ++report.uploads;
    return checkMachine(machine);
}
