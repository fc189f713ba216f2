// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/countedStore.h"
#include "server/resultStore.h"

/// How to publish.
struct publishOptions {
    ruleSet rules = ruleSet::open;
    int above = 0;         ///< the next version is above this one
    bool isAfresh = false; ///< everything is worked out again, also what has not changed
    qint64 now = 0;        ///< milliseconds since 1970
};

/// What came of it.
struct publishReport {
    int version = 0;        ///< of the lists as they are now
    bool isNew = false;     ///< whether this version was made
    qint64 uploads = 0;     ///< that count
    qint64 leftOut = 0;     ///< machines for which there was no room on the normal list
    qint64 leftOutBeta = 0; ///< on the BETA list
};

/// A normal and a BETA list as XML.
struct listPair {
    QByteArray normal;
    QByteArray beta;
};

/// The newest lists in @p store; before any was published, those made of @p builtIn alone.
outcome<listPair> newestLists(resultStore &store, const QVector<benchResults> &builtIn);

/// Makes the next lists from the uploads, those that have arrived up to its start.
///
/// The groups in which nothing has changed are not looked at again. Uploads can be stored all the
/// time, and no version is made if neither list would change. Whoever is interrupted has lost
/// nothing; of two at a time, the one who has begun first gives up.
class publication
{
public:
    publication(resultStore &results, const QVector<benchResults> &builtInMachines,
                const publishOptions &wanted)
        : store(results),
          builtIn(builtInMachines),
          options(wanted),
          counted(results.connection())
    {
    }

    outcome<publishReport> run();

    /// Called after each transaction, for tests.
    void afterEachWrite(const std::function<void()> &hook) { counted.afterEachWrite = hook; }

private:
    /// On a day without uploads nobody else deletes the key of the day before.
    outcome<void> forgetSourceKeys();
    outcome<void> judgeTouched();
    outcome<QByteArray> list(bool isBeta, qint64 &leftOut);
    outcome<void> storeIfNew(const listPair &made);

    resultStore &store;
    const QVector<benchResults> &builtIn;
    publishOptions options;
    countedStore counted;
    publishReport report;
};
