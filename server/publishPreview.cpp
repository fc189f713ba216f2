// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/publishPreview.h"

#include "data/benchXml.h"
#include "server/uploadCheck.h"

#include <algorithm>
#include <tuple>

namespace
{

const QString isCounted =
    QStringLiteral("state IN ('received', 'published') AND is_empty = 0 AND group_key <> ''");

/// A group with what it makes, as XML, which takes less memory.
struct judgedGroup {
    QString key;
    int sources = 0;
    qint64 first = 0;
    QByteArray normal;
    QByteArray beta;
};

QByteArray xmlOf(const std::optional<benchResults> &machine)
{
    return machine ? canonicalXml(*machine) : QByteArray();
}

outcome<QStringList> groupsIn(database &db)
{
    QStringList keys;
    return db
        .read(QStringLiteral("SELECT DISTINCT group_key FROM uploads WHERE %1").arg(isCounted), {},
              [&keys](const QSqlQuery &row) { keys.append(row.value(0).toString()); })
        .map([&keys] { return keys; });
}

outcome<judgedGroup> judged(database &db, const QString &key, ruleSet rules)
{
    QVector<countedUpload> uploads;
    return db
        .read(QStringLiteral("SELECT received, source, content FROM uploads"
                             " WHERE group_key = ? AND %1")
                  .arg(isCounted),
              {key},
              [&uploads](const QSqlQuery &row) {
                  uploads.append({row.value(0).toLongLong(), row.value(1).toString().toLatin1(),
                                  readMachines(row.value(2).toString().toUtf8()).value(0)});
              })
        .map([&] {
            const groupVerdict verdict = judge(uploads, rules);
            return judgedGroup{key, verdict.sources, verdict.first, xmlOf(verdict.normal),
                               xmlOf(verdict.beta)};
        });
}

outcome<QVector<judgedGroup>> judgedGroups(database &db, ruleSet rules)
{
    const outcome<QStringList> keys = groupsIn(db);
    if (!keys)
        return failure(keys.error());
    QVector<judgedGroup> groups;
    for (const QString &key : *keys) {
        const outcome<judgedGroup> group = judged(db, key, rules);
        if (!group)
            return failure(group.error());
        groups.append(*group);
    }
    return groups;
}

/// As the database sorts keys.
bool isBefore(const judgedGroup &a, const judgedGroup &b)
{
    return a.key.toUtf8() < b.key.toUtf8();
}

bool hasMoreSources(const judgedGroup &a, const judgedGroup &b)
{
    if (a.sources != b.sources)
        return a.sources > b.sources;
    return a.first == b.first ? isBefore(a, b) : a.first < b.first;
}

QByteArray listOf(QVector<judgedGroup> groups, QByteArray judgedGroup::*xml,
                  const QVector<benchResults> &builtIn)
{
    groups.erase(std::remove_if(groups.begin(), groups.end(),
                                [xml](const judgedGroup &group) { return (group.*xml).isEmpty(); }),
                 groups.end());
    std::sort(groups.begin(), groups.end(), hasMoreSources);
    groups.resize(std::min(groups.size(), boundedList::mostMachines));
    std::sort(groups.begin(), groups.end(), isBefore);
    QVector<listCandidate> candidates;
    for (const judgedGroup &group : groups)
        candidates.append({readMachines(group.*xml).value(0), group.sources, group.first});
    return listXml(boundedListOf(builtIn, candidates).machines);
}

/// What makes two entries of lists the same machine.
using identity = std::tuple<QString, QString, QString, int>;

QMap<identity, QByteArray> entriesOf(const QByteArray &list)
{
    QMap<identity, QByteArray> entries;
    for (const benchResults &machine : readMachines(list)) {
        entries[{machine.getName(), machine.getCpu(), machine.getOs(), machine.getThreads()}] +=
            canonicalXml(machine);
    }
    return entries;
}

QString lineOf(const char *change, const identity &machine)
{
    const auto &[name, cpu, os, threads] = machine;
    return QStringLiteral("%1 %2, %3, %4 threads")
        .arg(QString::fromLatin1(change).leftJustified(8), name, os, QString::number(threads));
}

} // namespace

QStringList differences(const QByteArray &before, const QByteArray &after)
{
    const QMap<identity, QByteArray> old = entriesOf(before);
    const QMap<identity, QByteArray> made = entriesOf(after);
    QStringList lines;
    for (auto entry = made.begin(); entry != made.end(); ++entry) {
        if (!old.contains(entry.key()))
            lines.append(lineOf("added", entry.key()));
        else if (old.value(entry.key()) != *entry)
            lines.append(lineOf("changed", entry.key()));
    }
    for (auto entry = old.begin(); entry != old.end(); ++entry) {
        if (!made.contains(entry.key()))
            lines.append(lineOf("removed", entry.key()));
    }
    return lines;
}

outcome<publishPreview> previewOf(resultStore &store, const QVector<benchResults> &builtIn,
                                  ruleSet rules)
{
    publishPreview preview;
    listPair last;
    QVector<judgedGroup> groups;
    const outcome<void> isRead = store.connection().snapshot([&] {
        return store.newestVersion()
            .and_then([&](int version) {
                preview.version = version;
                return newestLists(store, builtIn);
            })
            .and_then([&](const listPair &lists) {
                last = lists;
                return judgedGroups(store.connection(), rules);
            })
            .map([&](const QVector<judgedGroup> &all) { groups = all; });
    });
    return isRead.map([&] {
        const listPair made{listOf(groups, &judgedGroup::normal, builtIn),
                            listOf(groups, &judgedGroup::beta, builtIn)};
        preview.isNew = made.normal != last.normal || made.beta != last.beta;
        preview.normal = differences(last.normal, made.normal);
        preview.beta = differences(last.beta, made.beta);
        return preview;
    });
}
