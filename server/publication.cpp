// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/publication.h"

#include "server/rules/sourceToken.h"
#include "server/versions.h"

namespace
{

/// Under which rules groups were judged. To be raised whenever judge or what it calls changes what
/// it says about the same uploads.
constexpr int rulesVersion = 1;

QString rulesName(ruleSet rules)
{
    return QStringLiteral("%1 %2").arg(QString::number(rulesVersion), rules == ruleSet::circle
                                                                          ? QStringLiteral("circle")
                                                                          : QStringLiteral("open"));
}

} // namespace

outcome<listPair> newestLists(resultStore &store, const QVector<benchResults> &builtIn)
{
    const auto contentOf = [&](bool isBeta) {
        return store.newestList(isBeta).map([&](const storedList &list) {
            return list.version == 0 ? listXml(builtIn) : qUncompress(list.content);
        });
    };
    return contentOf(false).and_then([&](const QByteArray &normal) {
        return contentOf(true).map([&](const QByteArray &beta) { return listPair{normal, beta}; });
    });
}

outcome<publishReport> publication::run()
{
    listPair made;
    return forgetSourceKeys()
        .and_then([this] { return counted.begin(rulesName(options.rules), options.isAfresh); })
        .and_then([this] { return counted.catchUp(); })
        .and_then([this] { return judgeTouched(); })
        .and_then([this] { return list(false, report.leftOut); })
        .and_then([&](const QByteArray &normal) {
            made.normal = normal;
            return list(true, report.leftOutBeta);
        })
        .and_then([&](const QByteArray &beta) {
            made.beta = beta;
            return storeIfNew(made);
        })
        .and_then([this] { return counted.markPublished(); })
        .and_then([this] { return store.forgetSourceKeys(dayOf(options.now)); })
        .and_then([this] { return counted.uploadCount(); })
        .map([this](qint64 uploads) {
            report.uploads = uploads;
            return report;
        });
}

outcome<void> publication::forgetSourceKeys()
{
    return store.connection().write([this] {
        return store.connection().change(QStringLiteral("DELETE FROM source_keys WHERE day < ?"),
                                         {dayOf(options.now)});
    });
}

outcome<void> publication::judgeTouched()
{
    constexpr int batchSize = 200;
    const outcome<QStringList> touched = counted.touchedGroups();
    if (!touched)
        return failure(touched.error());
    QVector<keyedVerdict> batch;
    for (int i = 0; i < touched->size(); ++i) {
        const QString &key = touched->at(i);
        const outcome<QVector<countedRun>> runs = counted.runsOf(key);
        if (!runs)
            return failure(runs.error());
        batch.append({key, runs->size(), judge(*runs, options.rules)});
        if (batch.size() < batchSize && i + 1 < touched->size())
            continue;
        if (const outcome<void> done = counted.store(batch); !done)
            return done;
        batch.clear();
    }
    return {};
}

outcome<QByteArray> publication::list(bool isBeta, qint64 &leftOut)
{
    return counted.candidates(isBeta, boundedList::mostMachines)
        .and_then([&](const QVector<listCandidate> &candidates) {
            return counted.candidateCount(isBeta).map([&](qint64 all) {
                const boundedList bounded = boundedListOf(builtIn, candidates);
                leftOut = all - candidates.size() + bounded.leftOut.size();
                return listXml(bounded.machines);
            });
        });
}

outcome<void> publication::storeIfNew(const listPair &made)
{
    const auto work = [&]() -> outcome<void> {
        const outcome<int> newest = store.newestVersion();
        const outcome<listPair> last =
            newest.and_then([this](int) { return newestLists(store, builtIn); });
        if (!last)
            return failure(last.error());
        report.version = *newest;
        report.isNew = made.normal != last->normal || made.beta != last->beta;
        if (!report.isNew)
            return {};
        return nextVersion(*newest, options.above, options.now).and_then([&](int version) {
            report.version = version;
            return store.insertLists({{version, false, options.now, qCompress(made.normal)},
                                      {version, true, options.now, qCompress(made.beta)}});
        });
    };
    return counted.write(work);
}
