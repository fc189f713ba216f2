// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/uploadListing.h"

#include "engine/benchResults.h"
#include "server/rules/plausibility.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

namespace
{

/// So much of a token tells the sources of one day apart.
constexpr int sourceLength = 8;

QString timeText(qint64 time)
{
    return QDateTime::fromMSecsSinceEpoch(time, Qt::UTC).toString(Qt::ISODate);
}

QString row(const QString &id, const QString &time, const QString &state, const QString &source,
            const QString &rest)
{
    return id.rightJustified(8) + QStringLiteral("  ") + time.leftJustified(20)
           + QStringLiteral("  ") + state.leftJustified(9) + QStringLiteral("  ")
           + source.leftJustified(sourceLength) + QStringLiteral("  ") + rest + QLatin1Char('\n');
}

QString numberText(float value)
{
    return QString::number(static_cast<double>(value));
}

QString line(const storedUpload &upload, const benchResults &machine)
{
    QString text =
        QStringLiteral("%1, %2, %3, %4")
            .arg(machine.getCpu(), machine.getOs(), QString::number(machine.getThreads()),
                 QString::number(machine.getTests().size()));
    if (upload.isEmpty)
        text += QStringLiteral(", all zero");
    else if (!isWholeRun(machine))
        text += QStringLiteral(", no whole run");
    if (!upload.reason.isEmpty())
        text += QStringLiteral(" (%1)").arg(upload.reason);
    return row(QString::number(upload.id), timeText(upload.received), upload.state,
               QString::fromLatin1(upload.source.left(sourceLength)), text);
}

QString valuesText(const benchResults &machine)
{
    QString text =
        QStringLiteral("          %1 GHz\n").arg(numberText(machine.getFrequency() * 1e-9F));
    for (auto test = machine.getTests().begin(); test != machine.getTests().end(); ++test)
        text += QStringLiteral("          %1 %2\n")
                    .arg(test.key().leftJustified(32), numberText(test->value));
    return text;
}

QByteArray jsonOf(const storedUpload &upload, const benchResults &machine)
{
    QJsonObject results;
    for (auto test = machine.getTests().begin(); test != machine.getTests().end(); ++test)
        results.insert(test.key(), numberText(test->value).toDouble());
    return QJsonDocument(
               QJsonObject{{QStringLiteral("id"), upload.id},
                           {QStringLiteral("received"), timeText(upload.received)},
                           {QStringLiteral("state"), upload.state},
                           {QStringLiteral("reason"), upload.reason},
                           {QStringLiteral("source"), QString::fromLatin1(upload.source)},
                           {QStringLiteral("group"), upload.group},
                           {QStringLiteral("processor"), machine.getCpu()},
                           {QStringLiteral("os"), machine.getOs()},
                           {QStringLiteral("threads"), machine.getThreads()},
                           {QStringLiteral("clock"), static_cast<double>(machine.getFrequency())},
                           {QStringLiteral("isWholeRun"), isWholeRun(machine)},
                           {QStringLiteral("results"), results}})
        .toJson(QJsonDocument::Compact);
}

} // namespace

QString listingStart(listingForm form)
{
    return form == listingForm::json ? QStringLiteral("[")
                                     : row(QStringLiteral("ID"), QStringLiteral("RECEIVED (UTC)"),
                                           QStringLiteral("STATE"), QStringLiteral("SOURCE"),
                                           QStringLiteral("PROCESSOR, SYSTEM, THREADS, RESULTS"));
}

QString listingOf(const storedUpload &upload, listingForm form, bool isFirst)
{
    const benchResults machine = uploadedMachine(upload);
    if (form == listingForm::json) {
        const QString before = isFirst ? QStringLiteral("\n") : QStringLiteral(",\n");
        return before + QString::fromUtf8(jsonOf(upload, machine));
    }
    const QString values = form == listingForm::values ? valuesText(machine) : QString();
    return line(upload, machine) + values;
}

QString listingEnd(listingForm form)
{
    return form == listingForm::json ? QStringLiteral("\n]\n") : QString();
}
