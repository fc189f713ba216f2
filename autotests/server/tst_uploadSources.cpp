// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/publication.h"
#include "server/resultStore.h"

#include "server/rules/sourceToken.h"
#include "storeFixture.h"

#include <QtTest>

namespace
{

constexpr qint64 day = 86'400'000;

/// An upload that nothing else is like.
storedUpload from(const char *address, qint64 time)
{
    static int count = 0;
    storedUpload upload =
        stored(machineWith(QString::number(++count), QStringLiteral("c"), 1), time);
    upload.network = networkOf(QString::fromLatin1(address));
    return upload;
}

} // namespace

/// What is kept of where uploads came from, on both products.
class tst_uploadSources : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY2(fixture.begin(), qPrintable(fixture.error()));
        store = std::make_unique<resultStore>(fixture.address(), databaseUse::operating);
        QVERIFY(store->open());
    }
    void cleanup() { store.reset(); }

    void oneDay_data() { storeFixture::addProducts(); }
    void oneDay();
    void severalProcesses_data() { storeFixture::addProducts(); }
    void severalProcesses();
    void nextDay_data() { storeFixture::addProducts(); }
    void nextDay();
    void clocksThatDiffer_data() { storeFixture::addProducts(); }
    void clocksThatDiffer();
    void clockThatWasWrong_data() { storeFixture::addProducts(); }
    void clockThatWasWrong();
    void publishing_data() { storeFixture::addProducts(); }
    void publishing();
    void ready_data() { storeFixture::addProducts(); }
    void ready();

private:
    /// The tokens of all uploads, as letters: equal ones have equal letters, none is a dot.
    QString pattern()
    {
        QStringList known;
        QString letters;
        for (const storedUpload &upload : uploadsIn(*store)) {
            const QString token = QString::fromLatin1(upload.source);
            if (!token.isEmpty() && !known.contains(token))
                known.append(token);
            letters += token.isEmpty() ? QLatin1Char('.')
                                       : QLatin1Char(static_cast<char>('a' + known.indexOf(token)));
        }
        return letters;
    }
    qint64 number(const char *sql)
    {
        return store->connection().number(QString::fromLatin1(sql)).value_or(-1);
    }

    storeFixture fixture;
    std::unique_ptr<resultStore> store;
};

void tst_uploadSources::oneDay()
{
    QVERIFY(store->add({from("192.0.2.1", 5), from("192.0.2.9", 6), from("192.0.3.1", 7)}));
    QVERIFY(store->add({from("2001:db8:1:2::3", 8), from("2001:db8:1:9::3", 9)}));
    QVERIFY(store->add({from("::ffff:192.0.2.200", 10), from("no address", 11)}));
    QCOMPARE(pattern(), QStringLiteral("aabcca."));
    for (const storedUpload &upload : uploadsIn(*store)) {
        QVERIFY(upload.network.isEmpty());
        QVERIFY(upload.source.isEmpty() || upload.source.size() == 64);
    }
    QCOMPARE(number("SELECT count(*) FROM source_keys"), 1);
}

void tst_uploadSources::severalProcesses()
{
    resultStore other(fixture.address());
    QVERIFY(other.open());
    QVERIFY(store->add({from("192.0.2.1", 5)}));
    QVERIFY(other.add({from("192.0.2.2", 6)}));
    other.close(); // and one that has been started again
    QVERIFY(other.open());
    QVERIFY(other.add({from("192.0.2.3", 7)}));
    QCOMPARE(pattern(), QStringLiteral("aaa"));
}

void tst_uploadSources::nextDay()
{
    QVERIFY(store->add({from("192.0.2.1", day - 1), from("192.0.2.1", day)}));
    QVERIFY(store->add({from("192.0.2.1", 5 * day)}));
    QCOMPARE(pattern(), QStringLiteral("abc"));
    QCOMPARE(number("SELECT count(*) FROM source_keys"), 1);
    QCOMPARE(number("SELECT max(day) FROM source_keys"), 5);
}

/// One process has begun the next day, the other has not.
void tst_uploadSources::clocksThatDiffer()
{
    QVERIFY(store->add({from("192.0.2.1", 3 * day - 9)}));
    QVERIFY(store->add({from("192.0.2.1", 3 * day)}));
    QVERIFY(store->add({from("192.0.2.1", 3 * day - 1)}));
    QVERIFY(store->add({from("192.0.2.1", 3 * day + 1)}));
    QCOMPARE(pattern(), QStringLiteral("abbb"));
    QCOMPARE(number("SELECT count(*) FROM source_keys"), 1);
}

/// No key stays for longer than a day because of that.
void tst_uploadSources::clockThatWasWrong()
{
    QVERIFY(store->add({from("192.0.2.1", 9'000 * day)}));
    QVERIFY(store->add({from("192.0.2.1", 3 * day)}));
    QCOMPARE(pattern(), QStringLiteral("ab"));
    QCOMPARE(number("SELECT count(*) FROM source_keys"), 1);
    QCOMPARE(number("SELECT max(day) FROM source_keys"), 3);
}

/// Also where no upload comes on the next day.
void tst_uploadSources::publishing()
{
    const auto publishOn = [this](qint64 number) {
        publishOptions options;
        options.now = number * day + 5;
        return publication(*store, {}, options).run().has_value();
    };
    QVERIFY(store->add({from("192.0.2.1", 3 * day)}));
    for (const qint64 other : {3, 2}) {
        QVERIFY(publishOn(other));
        QCOMPARE(number("SELECT count(*) FROM source_keys"), 1);
    }
    QVERIFY(publishOn(4));
    QCOMPARE(number("SELECT count(*) FROM source_keys"), 0);
}

/// What comes with a token, as from an export, keeps it.
void tst_uploadSources::ready()
{
    storedUpload upload = from("", 5);
    upload.source = "token";
    QVERIFY(store->add({upload}));
    QCOMPARE(uploadsIn(*store).first().source, QByteArray("token"));
    QCOMPARE(number("SELECT count(*) FROM source_keys"), 0);
}

QTEST_APPLESS_MAIN(tst_uploadSources)
#include "tst_uploadSources.moc"
