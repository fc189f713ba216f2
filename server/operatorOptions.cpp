// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/operatorOptions.h"

#include "console/options.h"

#include <QCommandLineParser>

#include <algorithm>
#include <limits>

namespace
{

const QCommandLineOption
    processorOption(QStringLiteral("processor"),
                    QStringLiteral("uploads: of this processor, however it is spelt; * stands for "
                                   "any characters."),
                    QStringLiteral("NAME"));
const QCommandLineOption
    stateOption(QStringLiteral("state"),
                QStringLiteral("uploads: in this state: received, published, withdrawn or held."),
                QStringLiteral("STATE"));
const QCommandLineOption
    sinceOption(QStringLiteral("since"),
                QStringLiteral("uploads: received then or later, as 2026-11-21 or "
                               "2026-11-21T18:30:00, UTC."),
                QStringLiteral("TIME"));
const QCommandLineOption
    outliersOption(QStringLiteral("outliers"),
                   QStringLiteral("uploads: with a result far from those of the same machine."));
const QCommandLineOption afterOption(QStringLiteral("after"),
                                     QStringLiteral("uploads: with higher numbers than this."),
                                     QStringLiteral("ID"));
const QCommandLineOption limitOption(QStringLiteral("limit"),
                                     QStringLiteral("uploads: the first ones, so many."),
                                     QStringLiteral("NUMBER"));

const QCommandLineOption valuesOption(QStringLiteral("values"),
                                      QStringLiteral("list: with the clock and all results."));
const QCommandLineOption jsonOption(QStringLiteral("json"),
                                    QStringLiteral("list: as JSON, with all results."));

failure isNoUpload(const QString &text)
{
    return failure(QStringLiteral("'%1' is not the number of an upload").arg(text));
}

outcome<qint64> readNumber(const QString &text)
{
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    return isNumber && number > 0 ? outcome<qint64>(number) : isNoUpload(text);
}

outcome<void> readId(const QString &text, qint64 &number)
{
    if (text.isEmpty())
        return {};
    return readNumber(text).map([&number](qint64 read) { number = read; });
}

outcome<void> readState(const QString &text, QString &state)
{
    if (!text.isEmpty() && !isUploadState(text)) {
        return failure(QStringLiteral("--state takes received, published, withdrawn or held, not "
                                      "'%1'")
                           .arg(text));
    }
    state = text;
    return {};
}

outcome<void> readSince(const QString &text, std::optional<qint64> &since)
{
    if (text.isEmpty())
        return {};
    QDateTime time = QDateTime::fromString(text, Qt::ISODate);
    if (!time.isValid()) {
        return failure(
            QStringLiteral("--since takes a time like 2026-11-21T18:30:00, not '%1'").arg(text));
    }
    if (time.timeSpec() == Qt::LocalTime) // no zone was given
        time.setTimeSpec(Qt::UTC);
    since = time.toMSecsSinceEpoch();
    return {};
}

outcome<void> readLimit(const QString &text, int &limit)
{
    if (text.isEmpty())
        return {};
    const std::optional<int> number = wholeNumber(text, 1, std::numeric_limits<int>::max());
    if (!number)
        return failure(QStringLiteral("--limit takes a number from 1, not '%1'").arg(text));
    limit = *number;
    return {};
}

outcome<uploadFilter> readFilter(const QCommandLineParser &parser, const QString &number)
{
    uploadFilter filter;
    filter.processor = parser.value(processorOption);
    filter.isOutlier = parser.isSet(outliersOption);
    return readId(number, filter.id)
        .and_then([&] { return readState(parser.value(stateOption), filter.state); })
        .and_then([&] { return readSince(parser.value(sinceOption), filter.since); })
        .and_then([&] { return readId(parser.value(afterOption), filter.after); })
        .and_then([&] { return readLimit(parser.value(limitOption), filter.limit); })
        .map([&] { return filter; });
}

outcome<uploadFilter> readForgetting(const QCommandLineParser &parser, const QString &number,
                                     qint64 now)
{
    constexpr qint64 day = 86'400'000;
    uploadFilter filter;
    const bool isByAge = parser.isSet(olderThanOption());
    if (isByAge == !number.isEmpty())
        return failure(
            QStringLiteral("forget takes the number of an upload, or --older-than DAYS"));
    if (!isByAge)
        return readId(number, filter.id).map([&] { return filter; });
    const QString text = parser.value(olderThanOption());
    const std::optional<int> days = wholeNumber(text, 0, 100'000);
    if (!days) {
        return failure(
            QStringLiteral("--older-than takes a number of days from 0 to 100000, not '%1'")
                .arg(text));
    }
    filter.before = now - *days * day;
    return filter;
}

bool isAnySet(const QCommandLineParser &parser, const QList<QCommandLineOption> &options)
{
    return std::any_of(options.begin(), options.end(), [&parser](const QCommandLineOption &option) {
        return parser.isSet(option);
    });
}

} // namespace

QList<QCommandLineOption> filterOptions()
{
    return {processorOption, stateOption, sinceOption, outliersOption, afterOption, limitOption};
}

QList<QCommandLineOption> listingOptions()
{
    return {valuesOption, jsonOption};
}

const QCommandLineOption &whyOption()
{
    static const QCommandLineOption option(
        QStringLiteral("why"),
        QStringLiteral("withdraw, restore, accept, forget: the reason, which is kept."),
        QStringLiteral("TEXT"));
    return option;
}

const QCommandLineOption &olderThanOption()
{
    static const QCommandLineOption option(
        QStringLiteral("older-than"),
        QStringLiteral("forget: all uploads that are older than so many days."),
        QStringLiteral("DAYS"));
    return option;
}

outcome<operatorRequest> readListing(const QCommandLineParser &parser, const QString &number)
{
    operatorRequest request;
    if (parser.isSet(jsonOption))
        request.form = listingForm::json;
    else if (parser.isSet(valuesOption))
        request.form = listingForm::values;
    return readFilter(parser, number).map([&](const uploadFilter &filter) {
        request.filter = filter;
        return request;
    });
}

outcome<operatorRequest> readModeration(const QCommandLineParser &parser, moderation::action wanted,
                                        const QString &number, qint64 now)
{
    operatorRequest request;
    const QString name = moderation::nameOf(wanted);
    const bool isForgetting = wanted == moderation::action::forget;
    if (!isForgetting && number.isEmpty() == !isAnySet(parser, filterOptions())) {
        return failure(QStringLiteral("%1 takes the number of an upload, or options that choose "
                                      "some; --processor '*' chooses all")
                           .arg(name));
    }
    request.reason = parser.value(whyOption()).simplified();
    if (request.reason.isEmpty()
        && (wanted == moderation::action::withdraw || wanted == moderation::action::accept))
        return failure(QStringLiteral("%1 needs a reason: --why TEXT").arg(name));
    return (isForgetting ? readForgetting(parser, number, now) : readFilter(parser, number))
        .map([&](const uploadFilter &filter) {
            request.filter = filter;
            return request;
        });
}
