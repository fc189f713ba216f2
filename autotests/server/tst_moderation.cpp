// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/moderation.h"

#include "server/rules/sourceToken.h"
#include "storeFixture.h"
#include "support/wholeRuns.h"

#include <QtTest>

using moderation::action;

namespace
{

constexpr qint64 day = 86'400'000;
const QString because = QStringLiteral("because");
const QString linux = QStringLiteral("linux");
const QString amd = QStringLiteral("AMD X");

storedUpload uploaded(const QString &computer, float speed = 1, qint64 time = 1'000,
                      const QString &cpu = amd)
{
    return stored(wholeRun(cpu, speed, linux, 4, computer), time);
}

uploadFilter number(qint64 id)
{
    uploadFilter filter;
    filter.id = id;
    return filter;
}

uploadFilter processor(const QString &name)
{
    uploadFilter filter;
    filter.processor = name;
    return filter;
}

} // namespace

/// Each test runs on both products.
class tst_moderation : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        if (QByteArray(QTest::currentTestFunction()) == "numbers")
            return; // which needs no database
        QVERIFY2(fixture.begin(), qPrintable(fixture.error()));
        store = std::make_unique<resultStore>(fixture.address(), databaseUse::operating);
        QVERIFY(store->open());
    }
    void cleanup() { store.reset(); }

    void withdrawAndRestore_data() { storeFixture::addProducts(); }
    void withdrawAndRestore();
    void restoredIsHeldAgain_data() { storeFixture::addProducts(); }
    void restoredIsHeldAgain();
    void accept_data() { storeFixture::addProducts(); }
    void accept();
    void byFilter_data() { storeFixture::addProducts(); }
    void byFilter();
    void dryRun_data() { storeFixture::addProducts(); }
    void dryRun();
    void forget_data() { storeFixture::addProducts(); }
    void forget();
    void forgottenOnTheDisk_data();
    void forgottenOnTheDisk();
    void forgetWhatDiffersInTheNameAlone_data() { storeFixture::addProducts(); }
    void forgetWhatDiffersInTheNameAlone();
    void forgetSources_data() { storeFixture::addProducts(); }
    void forgetSources();
    void many_data() { storeFixture::addProducts(); }
    void many();
    void changesAreNumbered_data() { storeFixture::addProducts(); }
    void changesAreNumbered();
    void numbers_data();
    void numbers();

private:
    /// The numbers of the uploads that were changed.
    QString apply(action wanted, const uploadFilter &filter, bool isDryRun = false)
    {
        const auto done = moderation::apply(*store, wanted, filter, because, isDryRun);
        return done ? moderation::numbersText(done->changed) : done.error();
    }
    /// State and reason of each upload.
    QString states()
    {
        QStringList texts;
        for (const storedUpload &upload : uploadsIn(*store)) {
            texts.append(upload.reason.isEmpty()
                             ? upload.state
                             : QStringLiteral("%1 (%2)").arg(upload.state, upload.reason));
        }
        return texts.join(QLatin1Char('|'));
    }
    /// All of the audit but the times.
    QString audit()
    {
        QStringList lines;
        const auto isRead = store->connection().read(
            QStringLiteral("SELECT command, uploads, reason FROM audit ORDER BY id"), {},
            [&lines](const QSqlQuery &row) {
                lines.append(QStringLiteral("%1 %2: %3")
                                 .arg(row.value(0).toString(), row.value(1).toString(),
                                      row.value(2).toString()));
            });
        return isRead ? lines.join(QLatin1Char('\n')) : isRead.error();
    }

    storeFixture fixture;
    std::unique_ptr<resultStore> store;
};

void tst_moderation::withdrawAndRestore()
{
    QVERIFY(store->add({uploaded(QStringLiteral("A")), uploaded(QStringLiteral("B"))}));
    QCOMPARE(apply(action::withdraw, number(2)), QStringLiteral("2"));
    QCOMPARE(states(), QStringLiteral("received|withdrawn (because)"));
    QCOMPARE(apply(action::withdraw, number(2)), QString()); // already
    QCOMPARE(apply(action::withdraw, number(3)), QString()); // not there
    QCOMPARE(apply(action::restore, number(1)), QString());  // not withdrawn
    QCOMPARE(apply(action::restore, number(2)), QStringLiteral("2"));
    QCOMPARE(states(), QStringLiteral("received|received"));
    QCOMPARE(audit(), QStringLiteral("withdraw 2: because\nrestore 2: because"));
}

void tst_moderation::restoredIsHeldAgain()
{
    QVERIFY(store->add({uploaded(QStringLiteral("A"), 500)}));
    const QString held = states();
    QVERIFY2(held.startsWith(QStringLiteral("held ('rotozoom 'dithered'' is ")), qPrintable(held));
    apply(action::withdraw, number(1));
    QCOMPARE(states(), QStringLiteral("withdrawn (because)"));
    apply(action::restore, number(1));
    QCOMPARE(states(), held);
}

void tst_moderation::accept()
{
    QVERIFY(store->add({uploaded(QStringLiteral("A"), 500), uploaded(QStringLiteral("B"), 1),
                        uploaded(QStringLiteral("C"), 1, 1'000, QStringLiteral("unknown"))}));
    QCOMPARE(apply(action::accept, number(1)), QStringLiteral("1"));
    QCOMPARE(apply(action::accept, number(2)), QString());
    const auto refused = moderation::apply(*store, action::accept, number(3), because, false);
    QVERIFY(refused && refused->changed.isEmpty());
    QCOMPARE(refused->refused, QVector<qint64>{3});
    QVERIFY2(states().startsWith(QStringLiteral("received (because)|received|held (\"unknown\"")),
             qPrintable(states()));
    QCOMPARE(audit(), QStringLiteral("accept 1: because"));
}

void tst_moderation::byFilter()
{
    QVERIFY(store->add({uploaded(QStringLiteral("A")),
                        uploaded(QStringLiteral("B"), 1, 1'000, QStringLiteral("Other")),
                        uploaded(QStringLiteral("C")), uploaded(QStringLiteral("D"))}));
    QCOMPARE(apply(action::withdraw, processor(amd)), QStringLiteral("1, 3-4"));
    QCOMPARE(states(), QStringLiteral("withdrawn (because)|received|withdrawn (because)|"
                                      "withdrawn (because)"));
    QCOMPARE(audit(), QStringLiteral("withdraw 1, 3-4 (--processor 'AMD X'): because"));
}

void tst_moderation::dryRun()
{
    QVERIFY(store->add({uploaded(QStringLiteral("A")), uploaded(QStringLiteral("B"), 500)}));
    const QString before = states();
    for (const action one : {action::withdraw, action::forget})
        QCOMPARE(apply(one, {}, true), QStringLiteral("1-2"));
    QCOMPARE(apply(action::accept, {}, true), QStringLiteral("2"));
    QCOMPARE(states(), before);
    QCOMPARE(uploadedMachine(uploadsIn(*store).first()).getName(), QStringLiteral("A"));
    QCOMPARE(audit(), QString());
}

void tst_moderation::forget()
{
    uploadFilter old;
    old.before = 5 * day;
    QVERIFY(store->add({uploaded(QStringLiteral("ALICE"), 1, day),
                        uploaded(QStringLiteral("BOB"), 1.1F, 4 * day),
                        uploaded(QStringLiteral("CAROL"), 1.2F, 5 * day)}));
    const QVector<storedUpload> before = uploadsIn(*store);
    QCOMPARE(apply(action::forget, old), QStringLiteral("1-2"));
    QStringList names;
    for (const storedUpload &upload : uploadsIn(*store)) {
        const storedUpload &same = before.at(static_cast<int>(upload.id) - 1);
        benchResults machine = uploadedMachine(upload);
        names.append(machine.getName());
        // The rest stays as it is, and the hash tells nothing about the name.
        QCOMPARE(upload.hash, uploadHash(upload.content));
        QCOMPARE(upload.hash == same.hash, upload.id == 3);
        QCOMPARE(upload.received, same.received);
        QCOMPARE(upload.state, same.state);
        QCOMPARE(upload.group, same.group);
        const benchResults own = uploadedMachine(same);
        QCOMPARE(machine.getCpu(), own.getCpu());
        QCOMPARE(machine.getFrequency(), own.getFrequency());
        for (auto test = own.getTests().begin(); test != own.getTests().end(); ++test)
            QCOMPARE(machine.getTests().value(test.key()).value, test->value);
    }
    QCOMPARE(names.join(QLatin1Char('|')), QStringLiteral("#1|#2|CAROL"));
    QCOMPARE(apply(action::forget, old), QString()); // nothing is left to forget
    QCOMPARE(audit(), QStringLiteral("forget 1-2 (--before '1970-01-06T00:00:00Z'): because"));
}

void tst_moderation::forgottenOnTheDisk_data()
{
    QTest::addColumn<bool>("isSqlite");
    QTest::newRow("SQLite") << true; // PostgreSQL overwrites what was deleted at its next VACUUM
}

/// The file itself knows nothing of the name any more.
void tst_moderation::forgottenOnTheDisk()
{
    const databaseAddress place = fixture.address();
    const auto isOnTheDisk = [&place] {
        QFile file(place.name);
        return file.open(QIODevice::ReadOnly) && file.readAll().contains("ALICE");
    };
    QVERIFY(store->add({uploaded(QStringLiteral("ALICE"))}));
    store->close();
    QVERIFY(isOnTheDisk());
    QVERIFY(store->open());
    QCOMPARE(apply(action::forget, number(1)), QStringLiteral("1"));
    store->close();
    QVERIFY(!isOnTheDisk());
}

void tst_moderation::forgetWhatDiffersInTheNameAlone()
{
    QVERIFY(store->add({uploaded(QStringLiteral("ALICE")), uploaded(QStringLiteral("BOB"))}));
    QCOMPARE(apply(action::forget, {}), QStringLiteral("1-2"));
    QCOMPARE(uploadsIn(*store).size(), 2);
}

void tst_moderation::forgetSources()
{
    QVector<storedUpload> uploads;
    for (const qint64 time : {day, 3 * day, 3 * day + 1, 3 * day + 2}) {
        uploads.append(uploaded(QString::number(time), 1, time));
        uploads.last().network = networkOf(QStringLiteral("192.0.2.1"));
    }
    uploads[3].network = networkOf(QStringLiteral("192.0.3.1"));
    QVERIFY(store->add(uploads));
    const auto sources = [this] {
        QVector<QByteArray> all;
        for (const storedUpload &upload : uploadsIn(*store))
            all.append(upload.source);
        return all;
    };
    const QVector<QByteArray> before = sources();
    QCOMPARE(apply(action::forget, number(2)), QStringLiteral("2"));
    const QVector<QByteArray> after = sources();
    // The key of the first one's day is gone; the third one has the same source as the second.
    QCOMPARE(after.at(0), before.at(0));
    QVERIFY(after.at(1) != before.at(1));
    QVERIFY(!after.at(1).isEmpty());
    QCOMPARE(after.at(2), after.at(1));
    QCOMPARE(after.at(3), before.at(3));
    QCOMPARE(before.at(2), before.at(1));
}

/// More than one transaction takes; equal sources stay equal all the same.
void tst_moderation::many()
{
    QVector<storedUpload> uploads;
    for (int i = 0; i < 1'201; ++i) {
        uploads.append(uploaded(QString::number(i)));
        uploads.last().network = networkOf(QStringLiteral("192.0.%1.1").arg(i % 2));
    }
    QVERIFY(store->add(uploads));
    QCOMPARE(apply(action::forget, {}), QStringLiteral("1-1201"));
    QSet<QByteArray> sources;
    for (const storedUpload &upload : uploadsIn(*store)) {
        QCOMPARE(uploadedMachine(upload).getName(), QStringLiteral("#%1").arg(upload.id));
        sources.insert(upload.source);
    }
    QCOMPARE(sources.size(), 2);
    QCOMPARE(audit(), QStringLiteral("forget 1-500 (): because\nforget 501-1000 (): because\n"
                                     "forget 1001-1201 (): because"));
}

/// Publishing looks only at what has a new number.
void tst_moderation::changesAreNumbered()
{
    QVERIFY(store->add({uploaded(QStringLiteral("A")), uploaded(QStringLiteral("B")),
                        uploaded(QStringLiteral("C"), 500)}));
    const auto last = [this] {
        return store->connection()
            .number(QStringLiteral("SELECT max(changed) FROM uploads"))
            .value_or(-1);
    };
    qint64 before = last();
    for (const auto &[wanted, id] : {std::pair(action::withdraw, 1),
                                     {action::restore, 1},
                                     {action::accept, 3},
                                     {action::forget, 2}}) {
        QCOMPARE(apply(wanted, number(id)), QString::number(id));
        QVERIFY(last() > before);
        before = last();
        QCOMPARE(store->connection()
                     .number(QStringLiteral("SELECT changed FROM uploads WHERE id = ?"), {id})
                     .value_or(-1),
                 before);
    }
}

void tst_moderation::numbers_data()
{
    QTest::addColumn<QVector<qint64>>("numbers");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << QVector<qint64>() << QString();
    QTest::newRow("one") << QVector<qint64>{7} << "7";
    QTest::newRow("two in a row") << QVector<qint64>{7, 8} << "7-8";
    QTest::newRow("apart") << QVector<qint64>{7, 9} << "7, 9";
    QTest::newRow("mixed") << QVector<qint64>{1, 2, 3, 7, 9, 10} << "1-3, 7, 9-10";
}

void tst_moderation::numbers()
{
    QFETCH(QVector<qint64>, numbers);
    QTEST(moderation::numbersText(numbers), "text");
}

QTEST_APPLESS_MAIN(tst_moderation)
#include "tst_moderation.moc"
