// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/exchange.h"

#include "data/benchXml.h"
#include "data/estimate.h"
#include "server/uploadCheck.h"
#include "server/uploadOf.h"

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
    writeMachine(xml, machineOf(upload));
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

    importReport read()
    {
        while (!xml.atEnd() && report.error.isEmpty()) {
            const QXmlStreamReader::TokenType token = xml.readNext();
            if (token == QXmlStreamReader::DTD)
                fail(QStringLiteral("a document type is not allowed"));
            else if (token == QXmlStreamReader::StartElement)
                readElement();
            else if (token == QXmlStreamReader::EndElement && xml.name() == QLatin1String("bench"))
                takeMachine();
        }
        if (report.error.isEmpty() && xml.hasError())
            fail(xml.errorString());
        return report;
    }

    QVector<storedUpload> uploads;
    QVector<storedList> lists;

private:
    void fail(const QString &reason)
    {
        report.error = QStringLiteral("line %1: %2").arg(QString::number(xml.lineNumber()), reason);
    }
    QString attribute(const char *name) const
    {
        return xml.attributes().value(QLatin1String(name)).toString();
    }

    void readElement()
    {
        if (xml.name() == QLatin1String("upload")) {
            upload = {};
            upload.received = timeOf(attribute("received"));
            upload.state = attribute("state");
            upload.reason = attribute("reason");
            isInUpload = true;
        } else if (xml.name() == QLatin1String("list")) {
            readList();
        } else if (xml.name() == QLatin1String("bench")) {
            machine = {attribute("machineName"), attribute("os"), attribute("cpu"),
                       attribute("clock").toFloat(), attribute("threadCount").toInt()};
        } else if (xml.name() == QLatin1String("test")) {
            machine.setTest(attribute("name"), benchResults::test(attribute("result").toFloat()));
        }
    }

    void readList()
    {
        storedList list;
        list.version = attribute("version").toInt();
        list.isBeta = attribute("kind") == QLatin1String("BETA");
        list.made = timeOf(attribute("made"));
        list.content = QByteArray::fromBase64(xml.readElementText().toLatin1());
        if (list.version <= resultStore::builtInVersion || list.content.isEmpty())
            fail(QStringLiteral("this list has no version or no content"));
        lists.append(list);
        ++report.lists;
    }

    void takeMachine()
    {
        if (!isInUpload && isEstimate(machine.getName())) {
            ++report.estimates;
            return;
        }
        const QString fault = faultOf(machine);
        if (!fault.isEmpty()) {
            fail(fault);
            return;
        }
        storedUpload taken = uploadOf(machine, isInUpload ? upload.received : now);
        if (isInUpload) {
            taken.state = upload.state;
            taken.reason = upload.reason;
            isInUpload = false;
        }
        if (taken.state != QLatin1String("received") && taken.state != QLatin1String("published")
            && taken.state != QLatin1String("withdrawn"))
            fail(QStringLiteral("there is no state '%1'").arg(taken.state));
        uploads.append(taken);
        ++report.uploads;
    }

    QXmlStreamReader xml;
    qint64 now;
    importReport report;
    storedUpload upload;
    bool isInUpload = false;
    benchResults machine;
};

} // namespace

bool exportTo(resultStore &store, QIODevice &device)
{
    QXmlStreamWriter xml(&device);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(exportName);
    const bool isComplete = store.forEachUpload([&xml](const storedUpload &upload) {
        writeUpload(xml, upload);
    }) && store.forEachList([&xml](const storedList &list) { writeList(xml, list); });
    xml.writeEndDocument();
    return isComplete && !xml.hasError();
}

importReport importFrom(QIODevice &device, resultStore &store, qint64 now)
{
    importer source(device, now);
    importReport report = source.read();
    if (report.error.isEmpty() && !store.restore(source.uploads, source.lists))
        report.error = store.error();
    return report;
}
