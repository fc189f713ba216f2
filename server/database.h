// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"
#include "server/databaseAddress.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <functional>

/// What a connection is for. It decides how long it waits for locks and statements where the
/// address does not say so.
enum class databaseUse {
    serving,   ///< somebody waits for an answer: 5 s
    operating, ///< a command: statements take as long as they need, locks 30 s
    reading    ///< a command that must change nothing, not even make a file
};

/// One connection, which only the thread that made it may use.
class database
{
public:
    database(const databaseAddress &place, databaseUse purpose);
    database(const database &) = delete;
    database &operator=(const database &) = delete;
    ~database();

    /// Opens the connection unless it is open. A file that is missing is made, for its owner alone
    /// and so are the folders that it needs, unless the connection is for reading.
    outcome<void> open();
    bool isOpen() const { return QSqlDatabase::contains(connectionName); }
    void close();
    bool isSqlite() const { return address.product == databaseAddress::sqlite; }
    databaseUse use() const { return purpose; }

    /// Executes @p sql with @p values for its question marks, in their order.
    outcome<QSqlQuery> execute(const QString &sql, const QVariantList &values = {});
    /// The same for a statement whose rows, if it has any, are of no interest.
    outcome<void> change(const QString &sql, const QVariantList &values = {});
    /// Hands each row to @p take, which must not use this connection. Fails if not all could be
    /// read.
    outcome<void> read(const QString &sql, const QVariantList &values,
                       const std::function<void(const QSqlQuery &)> &take);
    /// The one number that @p sql selects, 0 if it is null. Fails if there is no row.
    outcome<qint64> number(const QString &sql, const QVariantList &values = {});
    /// Executes @p sql once for each row of @p columns, which have one length.
    outcome<void> executeForEach(const QString &sql, const QVector<QVariantList> &columns);

    /// Does @p work, which returns an outcome, in a transaction that writes, after others that
    /// write have ended: commits it if it has worked, else undoes it.
    template <typename Work> auto write(const Work &work) -> decltype(work())
    {
        return within(beginWriting(), work);
    }
    /// The same in a transaction that sees the database as it is at its start, and holds up nobody.
    template <typename Work> auto snapshot(const Work &work) -> decltype(work())
    {
        return within(beginSnapshot(), work);
    }

private:
    template <typename Work>
    auto within(const outcome<void> &begun, const Work &work) -> decltype(work())
    {
        if (!begun)
            return failure(begun.error());
        auto done = work();
        if (done) {
            const outcome<void> isCommitted = change(QStringLiteral("COMMIT"));
            if (isCommitted)
                return done;
            done = failure(isCommitted.error());
        }
        execute(QStringLiteral("ROLLBACK"));
        return done;
    }
    outcome<void> connect(QSqlDatabase connection);
    outcome<void> configure();
    outcome<void> beginWriting();
    outcome<void> beginSnapshot();

    databaseAddress address;
    databaseUse purpose;
    QString connectionName;
};
