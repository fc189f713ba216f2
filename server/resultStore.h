// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/database.h"

#include <QByteArray>
#include <QDateTime>

#include <functional>

/// One upload as it is kept.
struct storedUpload {
    qint64 id = 0;
    QByteArray hash;      ///< SHA-256 of the content, in hex
    qint64 received = 0;  ///< milliseconds since 1970, by the server's clock
    QString state;        ///< received, published or withdrawn
    QString reason;       ///< why it was withdrawn
    QByteArray content;   ///< the machine in its canonical XML
    bool isEmpty = false; ///< whether all results are 0
};

/// A reference list as it is served.
struct storedList {
    int version = 0;
    bool isBeta = false;
    qint64 made = 0;    ///< milliseconds since 1970
    QByteArray content; ///< XML, packed by qCompress
};

/// The uploads and the lists in a database. Every call returns false or nothing if the database
/// failed, with a text in error(); what was begun is then undone.
///
/// It holds nothing that is not in the database, so that others may work on the same one.
class resultStore
{
public:
    /// The version of the list inside the programs, which the first list published here follows.
    static constexpr int builtInVersion = 1010;

    explicit resultStore(const databaseAddress &address) : db(address) {}

    /// Connects, and makes the tables that are missing.
    bool open();
    /// Gives up the connection, so that open() makes a new one.
    void close() { db.close(); }
    QString error() const;

    /// Adds those of @p uploads whose content is not there yet, all or none. Durable on return.
    bool add(const QVector<storedUpload> &uploads);
    /// The number of the newest list, or that of the built-in one.
    std::optional<int> newestVersion();
    /// The newest list, or one with version 0 if none has been published.
    std::optional<storedList> newestList(bool isBeta);
    /// Hands every upload to @p take, oldest first.
    bool forEachUpload(const std::function<void(const storedUpload &)> &take);
    bool forEachList(const std::function<void(const storedList &)> &take);
    /// Marks an upload as withdrawn. @p isFound tells whether there is one with this number.
    bool withdraw(qint64 id, const QString &reason, bool &isFound);

    /// What publishing makes of all uploads: the packed XML of the normal and of the BETA list.
    struct lists {
        QByteArray normal;
        QByteArray beta;
    };
    using listMaker = std::function<lists()>;
    /// Stores the next version, and marks the uploads in it as published. @p take gets each upload
    /// before @p make is called; nobody else can publish meanwhile. The version, or nothing.
    std::optional<int> publish(const std::function<void(const storedUpload &)> &take,
                               const listMaker &make);

    /// Adds uploads and lists as they are, without those that are there already, all or none.
    bool restore(const QVector<storedUpload> &uploads, const QVector<storedList> &newLists);

private:
    bool createTables();
    bool insert(const QVector<storedUpload> &uploads);
    bool insertList(const storedList &list);
    /// Commits what @p isDone says has worked, or undoes it.
    bool finish(bool isDone);

    database db;
    QString ownError;
};
