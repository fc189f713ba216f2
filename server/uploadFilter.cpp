// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/uploadFilter.h"

#include "server/rules/groupRules.h"
#include "server/rules/processorName.h"

#include <QRegularExpression>
#include <QSet>

#include <limits>

namespace
{

const QChar anything = QLatin1Char('*');

/// Which processors a filter names: by their keys, so that spellings do not matter.
class processorPattern
{
public:
    explicit processorPattern(const QString &wanted) : key(processorKey(wanted))
    {
        QStringList parts = key.split(anything);
        for (QString &part : parts)
            part = QRegularExpression::escape(part);
        expression.setPattern(
            QRegularExpression::anchoredPattern(parts.join(QStringLiteral(".*"))));
    }

    bool matches(const benchResults &machine) const
    {
        return expression.match(processorKey(machine.getCpu())).hasMatch();
    }

    /// What the key of each group in question is like, for the database; it may let others through.
    QString likeGroup() const
    {
        QString pattern = key;
        for (const char special : {'\\', '%', '_'})
            pattern.replace(QLatin1Char(special),
                            QLatin1Char('\\') + QString(QLatin1Char(special)));
        return pattern.replace(anything, QLatin1Char('%')) + QStringLiteral("|%");
    }

private:
    QString key;
    QRegularExpression expression;
};

/// What follows a FROM, and its values.
struct selection {
    QStringList conditions;
    QVariantList values;

    void add(const char *condition, const QVariant &value)
    {
        conditions.append(QString::fromLatin1(condition));
        values.append(value);
    }
    QString sql(const char *order) const
    {
        return (conditions.isEmpty()
                    ? QString()
                    : QStringLiteral("WHERE ") + conditions.join(QStringLiteral(" AND ")))
               + QLatin1Char(' ') + QString::fromLatin1(order);
    }
};

/// As far as the database can do it.
selection selectionOf(const uploadFilter &filter)
{
    selection chosen;
    if (filter.id > 0)
        chosen.add("id = ?", filter.id);
    if (!filter.state.isEmpty())
        chosen.add("state = ?", filter.state);
    if (filter.since)
        chosen.add("received >= ?", *filter.since);
    if (filter.before)
        chosen.add("received < ?", *filter.before);
    if (filter.after > 0)
        chosen.add("id > ?", filter.after);
    if (!filter.processor.isEmpty()) // one whose name is not published has no group
        chosen.add("(group_key = '' OR group_key LIKE ? ESCAPE '\\')",
                   processorPattern(filter.processor).likeGroup());
    return chosen;
}

/// The numbers of the outliers in all groups that @p filter can be about.
outcome<QSet<qint64>> outliers(resultStore &store, const uploadFilter &filter)
{
    selection chosen;
    if (!filter.processor.isEmpty())
        chosen.add("group_key LIKE ? ESCAPE '\\'", processorPattern(filter.processor).likeGroup());
    chosen.conditions.append(QStringLiteral("state IN ('received', 'published')"));
    chosen.conditions.append(QStringLiteral("group_key <> ''"));
    QSet<qint64> found;
    QString group;
    QVector<qint64> ids;
    QVector<countedUpload> uploads;
    const auto finishGroup = [&] {
        for (const int index : outliersAmong(uploads))
            found.insert(ids.at(index));
        ids.clear();
        uploads.clear();
    };
    return store
        .forEachUpload(
            chosen.sql("ORDER BY group_key, id"), chosen.values,
            [&](const storedUpload &upload) {
                if (upload.group != group)
                    finishGroup();
                group = upload.group;
                ids.append(upload.id);
                uploads.append({upload.received, upload.source, uploadedMachine(upload)});
            })
        .map([&] {
            finishGroup();
            return found;
        });
}

QString timeText(qint64 time)
{
    return QDateTime::fromMSecsSinceEpoch(time, Qt::UTC).toString(Qt::ISODate);
}

} // namespace

QString uploadFilter::text() const
{
    QStringList words;
    const auto add = [&words](const char *option, const QString &value) {
        words.append(QStringLiteral("--%1 '%2'").arg(QLatin1String(option), value));
    };
    if (id > 0)
        words.append(QString::number(id));
    if (!processor.isEmpty())
        add("processor", processor);
    if (!state.isEmpty())
        add("state", state);
    if (since)
        add("since", timeText(*since));
    if (before)
        add("before", timeText(*before));
    if (isOutlier)
        words.append(QStringLiteral("--outliers"));
    if (after > 0)
        words.append(QStringLiteral("--after %1").arg(after));
    if (limit > 0)
        words.append(QStringLiteral("--limit %1").arg(limit));
    return words.join(QLatin1Char(' '));
}

outcome<void> forEachUpload(resultStore &store, const uploadFilter &filter,
                            const std::function<void(const storedUpload &)> &take)
{
    QSet<qint64> allowed;
    if (filter.isOutlier) {
        const outcome<QSet<qint64>> found = outliers(store, filter);
        if (!found)
            return failure(found.error());
        allowed = *found;
    }
    const processorPattern processor(filter.processor);
    selection chosen = selectionOf(filter);
    const bool isDatabaseEnough = filter.processor.isEmpty() && !filter.isOutlier;
    if (filter.limit > 0 && isDatabaseEnough)
        chosen.values.append(filter.limit);
    int left = filter.limit > 0 ? filter.limit : std::numeric_limits<int>::max();
    return store.forEachUpload(
        chosen.sql(filter.limit > 0 && isDatabaseEnough ? "ORDER BY id LIMIT ?" : "ORDER BY id"),
        chosen.values, [&](const storedUpload &upload) {
            if (left == 0 || (filter.isOutlier && !allowed.contains(upload.id))
                || (!filter.processor.isEmpty() && !processor.matches(uploadedMachine(upload))))
                return;
            --left;
            take(upload);
        });
}
