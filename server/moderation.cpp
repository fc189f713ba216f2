// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/moderation.h"

#include "data/benchXml.h"
#include "server/rules/sourceToken.h"
#include "server/uploadCheck.h"

#include <QHash>
#include <QSet>

#include <limits>
#include <utility>

namespace moderation
{

namespace
{

const QString received = QStringLiteral("received");
const QString withdrawn = QStringLiteral("withdrawn");
const QString held = QStringLiteral("held");

/// The name that stands for a computer's, one for each upload: else two that differ in it alone
/// would become one.
QString placeholder(qint64 id)
{
    return QStringLiteral("#%1").arg(id);
}

/// Whether an earlier call has made this name, in this database or in one that was imported.
bool isPlaceholder(const QString &name)
{
    bool isNumber = false;
    name.midRef(1).toLongLong(&isNumber);
    return name.startsWith(QLatin1Char('#')) && isNumber;
}

benchResults renamed(const benchResults &machine, const QString &name)
{
    benchResults copy(name, machine.getOs(), machine.getCpu(), machine.getFrequency(),
                      machine.getThreads());
    copy.getTests() = machine.getTests();
    return copy;
}

/// Replaces the tokens of sources by random ones, equal ones by equal ones.
class newSources
{
public:
    QByteArray of(const QByteArray &source)
    {
        if (source.isEmpty() || made.contains(source))
            return source;
        QByteArray &token = tokens[source];
        if (token.isEmpty()) {
            token = sourceToken(source, newDayKey());
            made.insert(token);
        }
        return token;
    }
    /// Those that have been replaced since the last call.
    QHash<QByteArray, QByteArray> takeTokens() { return std::exchange(tokens, {}); }

private:
    QHash<QByteArray, QByteArray> tokens;
    QSet<QByteArray> made;
};

/// Works out what an action makes of uploads.
class changer
{
public:
    /// Sources of @p dayOfOldestKey and later can still be found out.
    changer(action what, const QString &why, qint64 dayOfOldestKey)
        : wanted(what),
          reason(why),
          oldestKey(dayOfOldestKey)
    {
    }

    /// The upload as it shall be; nothing if it stays as it is.
    std::optional<storedUpload> changed(const storedUpload &upload)
    {
        switch (wanted) {
        case action::withdraw:
            return upload.state == withdrawn ? std::nullopt : in(upload, withdrawn, reason);
        case action::restore:
            return upload.state == withdrawn ? restored(upload) : std::nullopt;
        case action::accept:
            return upload.state == held ? in(upload, received, reason) : std::nullopt;
        case action::forget:
            break;
        }
        return forgotten(upload);
    }

    newSources sources;

private:
    static std::optional<storedUpload> in(storedUpload upload, const QString &state,
                                          const QString &why)
    {
        upload.state = state;
        upload.reason = why;
        return upload;
    }

    static std::optional<storedUpload> restored(const storedUpload &upload)
    {
        const outcome<void> isCredible = checkCredible(uploadedMachine(upload));
        return isCredible ? in(upload, received, QString()) : in(upload, held, isCredible.error());
    }

    std::optional<storedUpload> forgotten(storedUpload upload)
    {
        const benchResults machine = uploadedMachine(upload);
        if (isPlaceholder(machine.getName()))
            return std::nullopt;
        upload.content = canonicalXml(renamed(machine, placeholder(upload.id)));
        upload.hash = uploadHash(upload.content);
        if (dayOf(upload.received) >= oldestKey)
            upload.source = sources.of(upload.source);
        return upload;
    }

    action wanted;
    QString reason;
    qint64 oldestKey;
};

outcome<void> writeUploads(database &db, const QVector<storedUpload> &uploads, qint64 change)
{
    QVector<QVariantList> columns(6);
    for (const storedUpload &upload : uploads) {
        const QString reason = upload.reason.isNull() ? QStringLiteral("") : upload.reason;
        const QVariant values[] = {upload.state,
                                   reason,
                                   QString::fromUtf8(upload.content),
                                   QString::fromLatin1(upload.hash),
                                   change,
                                   upload.id};
        for (int i = 0; i < columns.size(); ++i)
            columns[i].append(values[i]);
    }
    return db.executeForEach(QStringLiteral("UPDATE uploads SET state = ?, reason = ?, content = ?,"
                                            " hash = ?, changed = ? WHERE id = ?"),
                             columns);
}

/// Also those of uploads that are not forgotten, so that equal sources stay equal.
outcome<void> writeSources(database &db, const QHash<QByteArray, QByteArray> &tokens, qint64 change)
{
    QVector<QVariantList> columns(3);
    for (auto token = tokens.begin(); token != tokens.end(); ++token) {
        columns[0].append(QString::fromLatin1(*token));
        columns[1].append(change);
        columns[2].append(QString::fromLatin1(token.key()));
    }
    return tokens.isEmpty() ? outcome<void>()
                            : db.executeForEach(QStringLiteral("UPDATE uploads SET source = ?,"
                                                               " changed = ? WHERE source = ?"),
                                                columns);
}

/// The day of the oldest key of sources, or of one that a delayed upload may have had.
outcome<qint64> dayOfOldestKey(database &db)
{
    return db.number(QStringLiteral("SELECT coalesce(min(day), %1) - 1 FROM source_keys")
                         .arg(std::numeric_limits<int>::max()));
}

/// An action on the way.
class operation
{
public:
    operation(resultStore &results, action what, const uploadFilter &filter, const QString &why,
              qint64 oldestKey)
        : store(results),
          wanted(what),
          which(filter),
          reason(why),
          change(what, why, oldestKey)
    {
    }

    /// Finds the uploads in question.
    outcome<report> find()
    {
        report found;
        return forEachUpload(store, which,
                             [&](const storedUpload &upload) {
                                 if (!change.changed(upload))
                                     return;
                                 const bool isRefused =
                                     wanted == action::accept && upload.group.isEmpty();
                                 (isRefused ? found.refused : found.changed).append(upload.id);
                             })
            .map([&] {
                change.sources = {};
                return found;
            });
    }

    /// Changes those with these numbers, in one transaction.
    outcome<void> write(const QVector<qint64> &ids)
    {
        return store.connection().write([&] {
            return read(ids).and_then([&](const QVector<storedUpload> &uploads) {
                return store.nextChange()
                    .and_then([&](qint64 number) {
                        return writeUploads(store.connection(), uploads, number).and_then([&] {
                            return writeSources(store.connection(), change.sources.takeTokens(),
                                                number);
                        });
                    })
                    .and_then([&] { return addAuditLine(uploads); });
            });
        });
    }

private:
    /// The uploads as they shall be. Somebody may have changed some meanwhile.
    outcome<QVector<storedUpload>> read(const QVector<qint64> &ids)
    {
        const QSet<qint64> wantedIds(ids.begin(), ids.end());
        QVector<storedUpload> uploads;
        return store
            .forEachUpload(QStringLiteral("WHERE id >= ? AND id <= ? ORDER BY id"),
                           {ids.first(), ids.last()},
                           [&](const storedUpload &upload) {
                               if (!wantedIds.contains(upload.id))
                                   return;
                               if (const auto next = change.changed(upload))
                                   uploads.append(*next);
                           })
            .map([&] { return uploads; });
    }

    outcome<void> addAuditLine(const QVector<storedUpload> &uploads)
    {
        QVector<qint64> ids;
        for (const storedUpload &upload : uploads)
            ids.append(upload.id);
        const QString text = numbersText(ids);
        const QString filter = which.text();
        return store.addAuditLine(
            nameOf(wanted), filter == text ? text : QStringLiteral("%1 (%2)").arg(text, filter),
            reason);
    }

    resultStore &store;
    action wanted;
    const uploadFilter &which;
    QString reason;
    changer change;
};

} // namespace

outcome<report> apply(resultStore &store, action wanted, const uploadFilter &filter,
                      const QString &reason, bool isDryRun)
{
    constexpr int mostAtOnce = 500;
    const outcome<qint64> oldestKey = dayOfOldestKey(store.connection());
    if (!oldestKey)
        return failure(oldestKey.error());
    operation doing(store, wanted, filter, reason, *oldestKey);
    outcome<report> found = store.connection().snapshot([&doing] { return doing.find(); });
    for (int first = 0; found && !isDryRun && first < found->changed.size(); first += mostAtOnce) {
        const outcome<void> done = doing.write(found->changed.mid(first, mostAtOnce));
        if (!done)
            return failure(done.error());
    }
    return found;
}

QString nameOf(action wanted)
{
    switch (wanted) {
    case action::withdraw:
        return QStringLiteral("withdraw");
    case action::restore:
        return QStringLiteral("restore");
    case action::accept:
        return QStringLiteral("accept");
    case action::forget:
        break;
    }
    return QStringLiteral("forget");
}

QString numbersText(const QVector<qint64> &numbers)
{
    QStringList parts;
    for (int first = 0; first < numbers.size();) {
        int last = first;
        while (last + 1 < numbers.size() && numbers.at(last + 1) == numbers.at(last) + 1)
            ++last;
        parts.append(first == last
                         ? QString::number(numbers.at(first))
                         : QStringLiteral("%1-%2").arg(numbers.at(first)).arg(numbers.at(last)));
        first = last + 1;
    }
    return parts.join(QStringLiteral(", "));
}

} // namespace moderation
