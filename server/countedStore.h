// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/database.h"
#include "server/rules/groupRules.h"
#include "server/rules/listBounds.h"

#include <QStringList>

/// What the uploads of the group @p key make.
struct keyedVerdict {
    QString key;
    int uploads = 0;
    groupVerdict verdict;
};

/// What publishing keeps in the database from one time to the next: the uploads that count, which
/// are whole runs, packed and by groups, and what each group makes.
///
/// Everything is written in short transactions, so that uploads can be stored in between, and each
/// leaves the tables right: whoever is interrupted goes on there the next time. Only the one who
/// has begun last may write.
class countedStore
{
public:
    explicit countedStore(database &connection) : db(connection) {}

    /// Called after each transaction, for tests.
    std::function<void()> afterEachWrite = [] {};

    /// Takes the turn to write. Forgets what was kept in another form, and all if @p isAfresh; lets
    /// every group be judged again if it was under other rules than those with this name.
    outcome<void> begin(const QString &rules, bool isAfresh);
    /// Takes over the changes of uploads up to now; those that come later wait for the next time.
    outcome<void> catchUp();
    /// The groups in which something has changed.
    outcome<QStringList> touchedGroups();
    outcome<QVector<countedRun>> runsOf(const QString &key);
    /// Stores what groups make. One without uploads is forgotten.
    outcome<void> store(const QVector<keyedVerdict> &verdicts);
    /// The candidates for a list of at most @p most machines, those with most sources first.
    outcome<QVector<listCandidate>> candidates(bool isBeta, int most);
    /// How many candidates there are.
    outcome<qint64> candidateCount(bool isBeta);
    /// How many uploads count.
    outcome<qint64> uploadCount();
    /// Marks the uploads that have been taken over as published.
    outcome<void> markPublished();

    /// Does @p work in a transaction that writes, if it is still this one's turn.
    outcome<void> write(const std::function<outcome<void>()> &work);

private:
    struct changes;

    outcome<void> forget();
    outcome<changes> changesUpTo(qint64 last);
    outcome<void> take(const changes &batch);
    void giveWay(qint64 milliseconds) const;

    database &db;
    qint64 turn = 0;
    qint64 mark = 0; ///< the number of the last change that has been taken over
};
