// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/importExport.h"

#include "data/benchXml.h"
#include "server/exportFormat.h"

#include <QXmlStreamWriter>

namespace
{

QString timeText(qint64 time)
{
    return QDateTime::fromMSecsSinceEpoch(time, Qt::UTC).toString(Qt::ISODateWithMs);
}

void writeUpload(QXmlStreamWriter &xml, const storedUpload &upload)
{
    xml.writeStartElement(exportFormat::upload);
    xml.writeAttribute(QStringLiteral("id"), QString::number(upload.id));
    xml.writeAttribute(QStringLiteral("received"), timeText(upload.received));
    xml.writeAttribute(QStringLiteral("state"), upload.state);
    xml.writeAttribute(QStringLiteral("reason"), upload.reason);
    xml.writeAttribute(QStringLiteral("source"), QString::fromLatin1(upload.source));
    xml.writeAttribute(QStringLiteral("hash"), QString::fromLatin1(upload.hash));
    writeMachine(xml, uploadedMachine(upload));
    xml.writeEndElement();
}

void writeList(QXmlStreamWriter &xml, const storedList &list)
{
    xml.writeStartElement(exportFormat::list);
    xml.writeAttribute(QStringLiteral("version"), QString::number(list.version));
    xml.writeAttribute(QStringLiteral("kind"),
                       list.isBeta ? QStringLiteral("BETA") : QStringLiteral("normal"));
    xml.writeAttribute(QStringLiteral("made"), timeText(list.made));
    xml.writeCharacters(QString::fromLatin1(list.content.toBase64()));
    xml.writeEndElement();
}

void writeEnd(QXmlStreamWriter &xml, int uploads, int lists)
{
    xml.writeEmptyElement(exportFormat::end);
    xml.writeAttribute(QStringLiteral("uploads"), QString::number(uploads));
    xml.writeAttribute(QStringLiteral("lists"), QString::number(lists));
    xml.writeEndDocument();
}

} // namespace

outcome<void> exportTo(resultStore &store, QIODevice &device)
{
    QXmlStreamWriter xml(&device);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(exportFormat::root);
    xml.writeAttribute(QStringLiteral("format"), QString::number(exportFormat::number));
    int uploads = 0;
    int lists = 0;
    const auto write = [&] {
        return store
            .forEachUpload([&](const storedUpload &upload) {
                writeUpload(xml, upload);
                ++uploads;
            })
            .and_then([&] {
                return store.forEachList([&](const storedList &list) {
                    writeList(xml, list);
                    ++lists;
                });
            });
    };
    return store.connection().snapshot(write).map([&] { writeEnd(xml, uploads, lists); });
}

outcome<importReport> importFrom(QIODevice &device, resultStore &store,
                                 const importOptions &options)
{
    importReader source(device, options);
    return source.read().and_then([&](const importReport &report) {
        return store.restore(source.uploads, source.lists).map([&] { return report; });
    });
}
