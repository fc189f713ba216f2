// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/importExport.h"

#include "data/benchReader.h"
#include "data/benchXml.h"
#include "data/estimate.h"
#include "server/uploadCheck.h"
#include "server/versions.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace
{

const QString exportName = QStringLiteral("FennickExport");

QString timeText(qint64 time)
{
    return QDateTime::fromMSecsSinceEpoch(time, Qt::UTC).toString(Qt::ISODateWithMs);
}

qint64 timeOf(const QString &text)
{
    return QDateTime::fromString(text, Qt::ISODateWithMs).toMSecsSinceEpoch();
}

void writeUpload(QXmlStreamWriter &xml, const storedUpload &upload)
{
    xml.writeStartElement(QStringLiteral("upload"));
    xml.writeAttribute(QStringLiteral("id"), QString::number(upload.id));
    xml.writeAttribute(QStringLiteral("received"), timeText(upload.received));
    xml.writeAttribute(QStringLiteral("state"), upload.state);
    xml.writeAttribute(QStringLiteral("reason"), upload.reason);
    writeMachine(xml, uploadedMachine(upload));
    xml.writeEndElement();
}

void writeList(QXmlStreamWriter &xml, const storedList &list)
{
    xml.writeStartElement(QStringLiteral("list"));
    xml.writeAttribute(QStringLiteral("version"), QString::number(list.version));
    xml.writeAttribute(QStringLiteral("kind"),
                       list.isBeta ? QStringLiteral("BETA") : QStringLiteral("normal"));
    xml.writeAttribute(QStringLiteral("made"), timeText(list.made));
    xml.writeCharacters(QString::fromLatin1(list.content.toBase64()));
    xml.writeEndElement();
}

/// Reads an export or a list into uploads and lists.
class importer
{
public:
    importer(QIODevice &device, qint64 time) : xml(&device), now(time) {}

    outcome<importReport> read()
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

    QVector<storedUpload> uploads;
    QVector<storedList> lists;

private:
    failure inThisLine(const QString &sentence) const
    {
        return failure(
            QStringLiteral("line %1: %2").arg(QString::number(xml.lineNumber()), sentence));
    }
    QString attribute(const char *name) const
    {
        return xml.attributes().value(QLatin1String(name)).toString();
    }

    outcome<void> readToken()
    {
        // An export's own elements stand around the machines, not in them.
        const bool isTag = xml.isStartElement() || xml.isEndElement();
        if (isTag && !machineReader.isInMachine() && xml.name() == QLatin1String("upload")) {
            isInUpload = xml.isStartElement();
            if (isInUpload)
                readUpload();
            return {};
        }
        if (!machineReader.isInMachine() && xml.isStartElement()
            && xml.name() == QLatin1String("list"))
            return readList();
        if (const std::optional<benchFault> fault = machineReader.take(xml))
            return failure(fault->sentence());
        return xml.isEndElement() && xml.name() == QLatin1String("bench") ? takeMachine()
                                                                          : outcome<void>();
    }

    void readUpload()
    {
        upload = {};
        upload.received = timeOf(attribute("received"));
        upload.state = attribute("state");
        upload.reason = attribute("reason");
    }

    outcome<void> readList()
    {
        storedList list;
        list.version = attribute("version").toInt();
        list.isBeta = attribute("kind") == QLatin1String("BETA");
        list.made = timeOf(attribute("made"));
        list.content = QByteArray::fromBase64(xml.readElementText().toLatin1());
        if (list.version <= builtInListVersion || list.content.isEmpty())
            return failure(QStringLiteral("this list has no version or no content"));
        lists.append(list);
        ++report.lists;
        return {};
    }

    outcome<void> takeMachine()
    {
        const benchResults machine = machines.takeLast();
        if (!isInUpload && isEstimate(machine.getName())) {
            ++report.estimates;
            return {};
        }
        storedUpload taken = makeUpload(machine, isInUpload ? upload.received : now);
        if (isInUpload) {
            taken.state = upload.state;
            taken.reason = upload.reason;
        }
        if (!isUploadState(taken.state))
            return failure(QStringLiteral("there is no state '%1'").arg(taken.state));
        uploads.append(taken);
        ++report.uploads;
        return checkMachine(machine);
    }

    QXmlStreamReader xml;
    qint64 now;
    importReport report;
    storedUpload upload;
    bool isInUpload = false;
    QVector<benchResults> machines; ///< the one that is being read
    benchReader machineReader{machines};
};

} // namespace

outcome<void> exportTo(resultStore &store, QIODevice &device)
{
    QXmlStreamWriter xml(&device);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(exportName);
    outcome<void> done =
        store.forEachUpload([&xml](const storedUpload &upload) { writeUpload(xml, upload); })
            .and_then([&] {
                return store.forEachList([&xml](const storedList &list) { writeList(xml, list); });
            });
    xml.writeEndDocument();
    return done;
}

outcome<importReport> importFrom(QIODevice &device, resultStore &store, qint64 now)
{
    importer source(device, now);
    return source.read().and_then([&](const importReport &report) {
        return store.restore(source.uploads, source.lists).map([&] { return report; });
    });
}
