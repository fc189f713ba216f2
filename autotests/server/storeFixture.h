// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/resultStore.h"

#include "postgresServer.h"
#include "support/uploads.h"

#include <QtTest>

#include <memory>
#include <optional>

/// New databases of both products, for tests with one row for each. A test class has one, and
/// begins a database for each of its functions:
///
///     void init() { QVERIFY2(fixture.begin(), qPrintable(fixture.error())); }
class storeFixture
{
public:
    static void addProducts()
    {
        QTest::addColumn<bool>("isSqlite");
        QTest::newRow("SQLite") << true;
        QTest::newRow("PostgreSQL") << false;
    }

    /// What is wrong with the PostgreSQL server, if anything is.
    const QString &error() const { return postgres.lastOutput; }

    /// A new, empty database of the product that the row of data names, of SQLite if of none. False
    /// if there is an error().
    bool begin() { return begin(QByteArray(QTest::currentDataTag()) != "PostgreSQL"); }
    /// A new, empty database of this product.
    bool begin(bool isSqlite)
    {
        if (isSqlite)
            beginSqlite();
        else
            beginPostgres();
        return error().isEmpty();
    }
    /// The same with the results that the first released server stored: published ones, one with
    /// nothing but zeros, one of an unknown processor, withdrawn ones, and one after publishing. @p
    /// files is the folder with them.
    bool beginWithSchema1(const QString &folder)
    {
        if (QByteArray(QTest::currentDataTag()) == "PostgreSQL") {
            place = postgres.newDatabase(folder + QStringLiteral("/results.sql"));
            return error().isEmpty();
        }
        begin();
        const QString file = address().name;
        QDir().mkpath(QFileInfo(file).path());
        QFile::copy(folder + QStringLiteral("/results.sqlite"), file);
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
        return error().isEmpty();
    }
    void beginSqlite()
    {
        place = QStringLiteral("sqlite:")
                + directory.filePath(QStringLiteral("new/%1.db").arg(++files));
    }
    void beginPostgres() { place = postgres.newDatabase(); }

    databaseAddress address() const { return *parseDatabaseAddress(place); }
    /// The same as the programs take it.
    const QString &text() const { return place; }
    bool isSqlite() const { return address().product == databaseAddress::sqlite; }

    postgresServer postgres;

private:
    QTemporaryDir directory;
    int files = 0;
    QString place;
};

/// Begins a transaction of @p db that keeps everybody else from storing uploads.
inline outcome<void> lockUploads(database &db)
{
    if (db.isSqlite())
        return db.change(QStringLiteral("BEGIN IMMEDIATE"));
    return db.change(QStringLiteral("BEGIN")).and_then([&db] {
        return db.change(QStringLiteral("LOCK TABLE uploads"));
    });
}

inline QVector<storedUpload> uploadsIn(resultStore &store)
{
    QVector<storedUpload> all;
    const auto isRead = store.forEachUpload([&all](const storedUpload &one) { all.append(one); });
    if (!isRead)
        qWarning("%s", qPrintable(isRead.error()));
    return all;
}

/// Why something failed, for the message of a test.
template <typename Value> QString why(const outcome<Value> &result)
{
    return result ? QString() : result.error();
}

inline storedUpload numbered(int i)
{
    return stored(machineWith(QStringLiteral("m"), QStringLiteral("c"), static_cast<float>(i)),
                  1'000 + i);
}

/// A list of one machine with this name.
inline QByteArray recognizable(const QByteArray &name)
{
    return "<Fennick><bench machineName=\"" + name
           + "\" os=\"linux\" cpu=\"A\" clock=\"1\" "
             "threadCount=\"1\"/></Fennick>";
}

/// Adds lists with this version and recognizable contents.
inline outcome<void> addLists(resultStore &store, int version)
{
    const qint64 made = qint64(2'000) + version;
    return store.restore({}, {{version, false, made, qCompress(recognizable("normal"))},
                              {version, true, made, qCompress(recognizable("beta"))}});
}
