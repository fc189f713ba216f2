// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/database.h"
#include "server/storedUpload.h"

#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QVector>

#include <functional>

/// A reference list as it is served.
struct storedList {
    int version = 0;
    bool isBeta = false;
    qint64 made = 0;    ///< milliseconds since 1970
    QByteArray content; ///< XML, packed by qCompress
};

/// Numbers of uploads by their state; none where there are none.
using uploadCounts = QMap<QString, qint64>;

/// The uploads and the lists in a database. A call that fails undoes what it has begun.
///
/// It holds nothing that is not in the database, so that others may work on the same one.
class resultStore
{
public:
    explicit resultStore(const databaseAddress &address, databaseUse use = databaseUse::serving)
        : db(address, use)
    {
    }

    /// Connects, and makes or migrates the tables. A store for reading does neither: it fails if
    /// they are not as this program needs them.
    outcome<void> open();
    /// Closes the connection, so that open() makes a new one.
    void close() { db.close(); }

    /// The connection, for what is not done here.
    database &connection() { return db; }

    /// Whether an upload could be stored now: writes one and takes it back.
    outcome<void> checkWritable();
    /// The number of the next change, within a transaction that writes. Whoever changes an upload's
    /// state, group or content other than by publishing must set its column changed to it.
    outcome<qint64> nextChange();
    /// Adds a line about what an operator did, within a transaction that writes. @p uploads names
    /// them: a number, or a filter.
    outcome<void> addAuditLine(const QString &command, const QString &uploads,
                               const QString &reason);

    /// Adds those of @p uploads whose content is not there yet, all or none. Durable on return. In
    /// place of a network they get a token of it.
    outcome<void> add(const QVector<storedUpload> &uploads);
    /// Deletes the keys of sources of other days than @p today, which nobody needs any more, also
    /// where no upload has come since. That of tomorrow may belong to a process whose clock is a
    /// little ahead.
    outcome<void> forgetSourceKeys(qint64 today);
    /// The number of the newest list, or that of the built-in one.
    outcome<int> newestVersion();
    /// The newest list, or one with version 0 if none has been published.
    outcome<storedList> newestList(bool isBeta);
    /// How many uploads there are in each state, without reading the uploads themselves.
    outcome<uploadCounts> countUploads();
    /// Hands every upload to @p take, oldest first.
    outcome<void> forEachUpload(const std::function<void(const storedUpload &)> &take)
    {
        return forEachUpload(QString(), {}, take);
    }
    /// The same for those that @p which selects, what follows a FROM, with @p values for its
    /// question marks.
    outcome<void> forEachUpload(const QString &which, const QVariantList &values,
                                const std::function<void(const storedUpload &)> &take);
    outcome<void> forEachList(const std::function<void(const storedList &)> &take);
    /// Marks an upload as withdrawn. False if there is none with this number.
    outcome<bool> withdraw(qint64 id, const QString &reason);

    /// Adds @p newLists as they are, within a transaction that writes.
    outcome<void> insertLists(const QVector<storedList> &newLists);

    /// Adds uploads and lists as they are, without those that are there already, all or none.
    outcome<void> restore(const QVector<storedUpload> &uploads,
                          const QVector<storedList> &newLists);

private:
    /// The key of the sources of @p day, the number of a UTC day, which all processes share. Makes
    /// one if there is none yet, and deletes those of other days. A process whose clock is a little
    /// ahead may have begun the next day already, whose key then stands for this one too.
    outcome<QByteArray> sourceKey(qint64 day);
    outcome<void> insert(const QVector<storedUpload> &uploads);

    database db;
};
