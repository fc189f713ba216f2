// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/publication.h"

#include "data/benchXml.h"
#include "data/builtInList.h"
#include "server/publishPreview.h"

#include "storeFixture.h"
#include "support/wholeRuns.h"

#include <QtTest>

#include <algorithm>
#include <random>

namespace
{

constexpr qint64 day = 86'400'000;
const QString cpuA = QStringLiteral("Processor A");
const QString cpuB = QStringLiteral("Processor B");

/// A whole run that counts as one source of its own.
storedUpload runOf(const QString &cpu, int number)
{
    return makeUpload(wholeRun(cpu, 1.0F + 0.001F * static_cast<float>(number)),
                      (100 + number) * day, QByteArray("source ") + QByteArray::number(number));
}

QVector<storedUpload> runsOf(const QString &cpu, int from, int to)
{
    QVector<storedUpload> runs;
    for (int number = from; number <= to; ++number)
        runs.append(runOf(cpu, number));
    return runs;
}

/// Uploads of several machines, some of which make it onto the normal list.
QVector<storedUpload> aLot()
{
    QVector<storedUpload> all;
    for (int i = 0; i < 12; ++i)
        all += runsOf(QStringLiteral("Processor %1").arg(QChar(u'A' + i)), 100 * i, 101 * i);
    return all;
}

outcome<publishReport> publishIn(resultStore &store, publishOptions options = {})
{
    static const QVector<benchResults> builtIn = builtInMachines();
    return publication(store, builtIn, options).run();
}

outcome<publishPreview> previewIn(resultStore &store)
{
    return previewOf(store, builtInMachines(), ruleSet::open);
}

QByteArray listIn(resultStore &store, bool isBeta)
{
    return qUncompress(store.newestList(isBeta).value_or(storedList()).content);
}

/// The measured machines of a list.
QStringList namesIn(resultStore &store, bool isBeta)
{
    QStringList names;
    const QVector<benchResults> machines = readMachines(listIn(store, isBeta));
    for (const benchResults &machine : machines.mid(builtInMachines().size()))
        names.append(machine.getName());
    return names;
}

QString statesIn(resultStore &store)
{
    QStringList states;
    for (const storedUpload &upload : uploadsIn(store))
        states.append(upload.state);
    return states.join(QLatin1Char(' '));
}

} // namespace

/// Each test runs on both products.
class tst_publication : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY2(fixture.begin(), qPrintable(fixture.error())); }

    void nothingToPublish_data() { storeFixture::addProducts(); }
    void nothingToPublish();
    void versionsAndStates_data() { storeFixture::addProducts(); }
    void versionsAndStates();
    void nothingNew_data() { storeFixture::addProducts(); }
    void nothingNew();
    void withdrawn_data() { storeFixture::addProducts(); }
    void withdrawn();
    void otherRules_data() { storeFixture::addProducts(); }
    void otherRules();
    void ordersAndProducts();
    void stepByStepIsLikeAfresh_data() { storeFixture::addProducts(); }
    void stepByStepIsLikeAfresh();
    void uploadsMeanwhile_data() { storeFixture::addProducts(); }
    void uploadsMeanwhile();
    void withdrawnMeanwhile_data() { storeFixture::addProducts(); }
    void withdrawnMeanwhile();
    void interrupted_data() { storeFixture::addProducts(); }
    void interrupted();
    void twoAtOnce_data() { storeFixture::addProducts(); }
    void twoAtOnce();
    void writeLockHeld_data() { storeFixture::addProducts(); }
    void writeLockHeld();
    void damagedUpload_data() { storeFixture::addProducts(); }
    void damagedUpload();
    void noVersionLeft_data() { storeFixture::addProducts(); }
    void noVersionLeft();
    void oldSourceKeys_data() { storeFixture::addProducts(); }
    void oldSourceKeys();
    void preview_data() { storeFixture::addProducts(); }
    void preview();
    void previewWritesNothing_data() { storeFixture::addProducts(); }
    void previewWritesNothing();
    void afterAMigration_data() { storeFixture::addProducts(); }
    void afterAMigration();

private:
    storeFixture fixture;
};

void tst_publication::nothingToPublish()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    const auto report = publishIn(store);
    QCOMPARE(why(report), QString());
    QVERIFY(!report->isNew);
    QCOMPARE(report->version, 1010);
    QCOMPARE(store.newestVersion().value_or(-1), 1010);
    // Nor is there if what there is never counts.
    QVERIFY(store.add({numbered(0), makeUpload(wholeRun(QStringLiteral("unknown")), 1)}));
    QVERIFY(!publishIn(store)->isNew);
    QCOMPARE(statesIn(store), QStringLiteral("received held"));
}

void tst_publication::versionsAndStates()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    QVERIFY(store.add(runsOf(cpuA, 1, 3) + QVector<storedUpload>{numbered(0), runOf(cpuB, 9)}));
    const auto first = publishIn(store);
    QCOMPARE(why(first), QString());
    QCOMPARE(first->version, 1011);
    QVERIFY(first->isNew);
    QCOMPARE(first->uploads, qint64(4));
    QCOMPARE(first->leftOut + first->leftOutBeta, qint64(0));
    QCOMPARE(namesIn(store, false), QStringList(cpuA));
    QCOMPARE(namesIn(store, true), QStringList({cpuA, cpuB}));
    QCOMPARE(statesIn(store), QStringLiteral("published published published received published"));

    QVERIFY(store.add(runsOf(cpuB, 10, 11)));
    const auto second = publishIn(store, {ruleSet::open, 5'000});
    QCOMPARE(second->version, 5'001);
    QCOMPARE(namesIn(store, false), QStringList({cpuA, cpuB}));
    const auto third = publishIn(store, {ruleSet::open, 0, true});
    QVERIFY(!third->isNew);
    QCOMPARE(third->version, 5'001);
}

void tst_publication::nothingNew()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    QVERIFY(store.add(runsOf(cpuA, 1, 3)));
    QVERIFY(publishIn(store)->isNew);
    QVERIFY(!publishIn(store)->isNew);
    // One that changes nothing has been looked at all the same.
    QVERIFY(store.add(
        {makeUpload(wholeRun(cpuA, 1.002F, QStringLiteral("linux"), 4, QStringLiteral("another")),
                    102 * day, "source 2")}));
    const auto report = publishIn(store);
    QVERIFY(!report->isNew);
    QCOMPARE(report->version, 1011);
    QCOMPARE(report->uploads, qint64(4));
    QCOMPARE(statesIn(store), QStringLiteral("published published published published"));
    QCOMPARE(store.newestVersion().value_or(-1), 1011);
}

void tst_publication::withdrawn()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    QVERIFY(store.add(runsOf(cpuA, 1, 3) + runsOf(cpuB, 1, 1)));
    QVERIFY(publishIn(store)->isNew);
    const QVector<storedUpload> all = uploadsIn(store);
    QVERIFY(store.withdraw(all.at(0).id, QStringLiteral("why")).value());
    QVERIFY(store.withdraw(all.at(3).id, QStringLiteral("why")).value());
    const auto report = publishIn(store);
    QVERIFY(report->isNew);
    QCOMPARE(report->uploads, qint64(2));
    QCOMPARE(namesIn(store, false), QStringList());
    QCOMPARE(namesIn(store, true), QStringList(cpuA));
    for (const int index : {1, 2})
        QVERIFY(store.withdraw(all.at(index).id, QStringLiteral("why")).value());
    QVERIFY(publishIn(store)->isNew);
    QCOMPARE(listIn(store, true), listXml(builtInMachines()));
    QCOMPARE(statesIn(store), QStringLiteral("withdrawn withdrawn withdrawn withdrawn"));
}

void tst_publication::otherRules()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    QVERIFY(store.add(runsOf(cpuA, 1, 1)));
    publishOptions circle;
    circle.rules = ruleSet::circle;
    QVERIFY(publishIn(store)->isNew);
    QCOMPARE(namesIn(store, false), QStringList());
    QVERIFY(publishIn(store, circle)->isNew);
    QCOMPARE(namesIn(store, false), QStringList(cpuA));
    QVERIFY(!publishIn(store, circle)->isNew);
    QVERIFY(publishIn(store)->isNew);
    QCOMPARE(namesIn(store, false), QStringList());
}

void tst_publication::ordersAndProducts()
{
    QByteArray lists[2];
    std::mt19937 random(1);
    const std::unique_ptr<QTemporaryDir> directory = std::make_unique<QTemporaryDir>();
    QVector<storedUpload> uploads = aLot();
    for (int i = 0; i < 10; ++i) {
        const QString sqlite =
            QStringLiteral("sqlite:") + directory->filePath(QStringLiteral("%1.db").arg(i));
        resultStore store(
            *parseDatabaseAddress(i % 5 == 4 ? fixture.postgres.newDatabase() : sqlite));
        QCOMPARE(why(store.open()), QString());
        // In several parts, with a publication in between.
        const int middle = uploads.size() * i / 10;
        QVERIFY(store.add(uploads.mid(0, middle)));
        QVERIFY(publishIn(store).has_value());
        QVERIFY(store.add(uploads.mid(middle)));
        QVERIFY(publishIn(store).has_value());
        for (const bool isBeta : {false, true}) {
            if (i == 0)
                lists[int(isBeta)] = listIn(store, isBeta);
            QCOMPARE(listIn(store, isBeta), lists[int(isBeta)]);
        }
        std::shuffle(uploads.begin(), uploads.end(), random);
    }
    QVERIFY(readMachines(lists[0]).size() > builtInMachines().size());
    QVERIFY(readMachines(lists[1]).size() > readMachines(lists[0]).size());
}

void tst_publication::stepByStepIsLikeAfresh()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    const QVector<storedUpload> uploads = aLot();
    for (int i = 0; i < uploads.size(); i += 40) {
        QVERIFY(store.add(uploads.mid(i, 40)));
        if (i % 3 == 0)
            QVERIFY(store.withdraw(i / 2 + 1, QStringLiteral("why")).has_value());
        QVERIFY(publishIn(store).has_value());
        // The preview looks at the uploads alone, not at what publishing has kept.
        const auto preview = previewIn(store);
        QCOMPARE(why(preview), QString());
        QVERIFY2(!preview->isNew, qPrintable((preview->normal + preview->beta).join(u'\n')));
    }
    publishOptions afresh;
    afresh.isAfresh = true;
    QVERIFY(!publishIn(store, afresh)->isNew);
}

void tst_publication::uploadsMeanwhile()
{
    databaseAddress impatient = fixture.address();
    impatient.lockTimeout = 1; // whoever publishes must not hold the lock between its steps
    resultStore store(fixture.address(), databaseUse::operating);
    resultStore other(impatient);
    QVERIFY(store.open() && other.open());
    QVERIFY(store.add(runsOf(cpuA, 1, 3)));
    const QVector<benchResults> builtIn = builtInMachines();
    publication publishing(store, builtIn, {});
    int added = 0;
    QString error;
    publishing.afterEachWrite([&] {
        ++added;
        error += why(other.add({runOf(cpuB, added)}));
    });
    const auto report = publishing.run();
    QCOMPARE(why(report), QString());
    QCOMPARE(error, QString());
    QVERIFY(added >= 4); // uploads, verdicts, lists, states
    QCOMPARE(report->uploads, qint64(3));
    QCOMPARE(namesIn(store, true), QStringList(cpuA));
    // Those that came meanwhile are the next version's.
    QCOMPARE(statesIn(store), QStringLiteral("published published published")
                                  + QStringLiteral(" received").repeated(added));
    QCOMPARE(publishIn(store)->uploads, qint64(3 + added));
    QCOMPARE(namesIn(store, false), QStringList({cpuA, cpuB}));
    QVERIFY(!statesIn(store).contains(QStringLiteral("received")));
}

void tst_publication::withdrawnMeanwhile()
{
    resultStore store(fixture.address(), databaseUse::operating);
    resultStore other(fixture.address());
    QVERIFY(store.open() && other.open());
    QVERIFY(store.add(runsOf(cpuA, 1, 4)));
    const qint64 id = uploadsIn(store).first().id;
    const QVector<benchResults> builtIn = builtInMachines();
    publication publishing(store, builtIn, {});
    bool isWithdrawn = false;
    publishing.afterEachWrite([&] {
        if (!isWithdrawn)
            isWithdrawn = other.withdraw(id, QStringLiteral("why")).value_or(false);
    });
    QVERIFY(publishing.run().has_value());
    QVERIFY(isWithdrawn);
    QCOMPARE(statesIn(store), QStringLiteral("withdrawn published published published"));
    QCOMPARE(publishIn(store)->uploads, qint64(3));
    QVERIFY(!previewIn(store)->isNew);
}

void tst_publication::interrupted()
{
    // After any of its steps, the next one goes on where it was.
    for (int steps = 1;; ++steps) {
        fixture.begin();
        resultStore store(fixture.address(), databaseUse::operating);
        QVERIFY(store.open());
        QVERIFY(store.add(runsOf(cpuA, 1, 3)));
        QVERIFY(publishIn(store)->isNew);
        QVERIFY(store.add(runsOf(cpuB, 1, 3)));
        bool isInterrupted = false;
        {
            resultStore dying(fixture.address());
            QVERIFY(dying.open());
            const QVector<benchResults> builtIn = builtInMachines();
            publication publishing(dying, builtIn, {});
            int count = 0;
            publishing.afterEachWrite([&] {
                if (++count == steps)
                    dying.close();
            });
            isInterrupted = !publishing.run();
        }
        QCOMPARE(why(publishIn(store)), QString());
        QCOMPARE(store.newestVersion().value_or(-1), 1012);
        QCOMPARE(namesIn(store, false), QStringList({cpuA, cpuB}));
        QVERIFY(!statesIn(store).contains(QStringLiteral("received")));
        QVERIFY(!previewIn(store)->isNew);
        if (!isInterrupted || steps > 20) {
            QVERIFY(steps > 3 && steps < 20);
            return;
        }
    }
}

void tst_publication::twoAtOnce()
{
    resultStore store(fixture.address(), databaseUse::operating);
    resultStore other(fixture.address());
    QVERIFY(store.open() && other.open());
    QVERIFY(store.add(runsOf(cpuA, 1, 3)));
    const QVector<benchResults> builtIn = builtInMachines();
    publication publishing(store, builtIn, {});
    int version = 0;
    publishing.afterEachWrite([&] {
        if (version == 0)
            version =
                publishIn(other).map([](const publishReport &r) { return r.version; }).value_or(-1);
    });
    const auto report = publishing.run();
    QCOMPARE(version, 1011);
    QCOMPARE(why(report), QStringLiteral("somebody else has begun to publish"));
    QCOMPARE(store.newestVersion().value_or(-1), 1011);
    QVERIFY(!publishIn(store)->isNew);
}

void tst_publication::writeLockHeld()
{
    databaseAddress impatient = fixture.address();
    impatient.lockTimeout = 100;
    resultStore store(impatient);
    resultStore holder(fixture.address());
    QVERIFY(store.open() && holder.open());
    QVERIFY(store.add(runsOf(cpuA, 1, 3)));
    const auto held = holder.connection().write([&]() -> outcome<void> {
        const auto report = publishIn(store);
        return report ? outcome<void>(failure(QStringLiteral("published"))) : outcome<void>();
    });
    QCOMPARE(why(held), QString());
    QVERIFY(publishIn(store)->isNew);
}

void tst_publication::damagedUpload()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    QVERIFY(store.add(runsOf(cpuA, 1, 3)));
    QVERIFY(store.connection().change(
        QStringLiteral("UPDATE uploads SET content = '<bench/>' WHERE id = 2")));
    QCOMPARE(why(publishIn(store)), QStringLiteral("upload 2 is damaged"));
    QCOMPARE(store.newestVersion().value_or(-1), 1010);
}

void tst_publication::noVersionLeft()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    QVERIFY(store.add(runsOf(cpuA, 1, 3)));
    QVERIFY(addLists(store, 2'147'483'647));
    QCOMPARE(why(publishIn(store)), QStringLiteral("there is no version above 2147483647"));
    QCOMPARE(statesIn(store), QStringLiteral("received received received"));
}

void tst_publication::oldSourceKeys()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    for (const int number : {100, 101}) {
        QVERIFY(store.connection().change(QStringLiteral("INSERT INTO source_keys VALUES (?, ?)"),
                                          {number, QStringLiteral("key")}));
    }
    publishOptions options;
    options.now = 101 * day;
    QVERIFY(publishIn(store, options).has_value());
    QCOMPARE(store.connection().number(QStringLiteral("SELECT sum(day) FROM source_keys")).value(),
             qint64(101));
}

void tst_publication::preview()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    QVERIFY(!previewIn(store)->isNew);
    QVERIFY(store.add(runsOf(cpuA, 1, 3) + runsOf(cpuB, 1, 1)));
    const auto first = previewIn(store);
    QCOMPARE(why(first), QString());
    QVERIFY(first->isNew);
    QCOMPARE(first->version, 1010);
    const QString addedA = QStringLiteral("added    Processor A, linux, 4 threads");
    const QString addedB = QStringLiteral("added    Processor B, linux, 4 threads");
    QCOMPARE(first->normal, QStringList(addedA));
    QCOMPARE(first->beta, QStringList({addedA, addedB}));
    QVERIFY(publishIn(store).has_value());
    QVERIFY(store.add({runOf(cpuA, 20)}));
    QVERIFY(store.withdraw(4, QStringLiteral("why")).value());
    const auto second = previewIn(store);
    const QString changedA = QStringLiteral("changed  Processor A, linux, 4 threads");
    QCOMPARE(second->normal, QStringList(changedA));
    QCOMPARE(second->beta,
             QStringList({changedA, QStringLiteral("removed  Processor B, linux, 4 threads")}));
}

void tst_publication::previewWritesNothing()
{
    {
        resultStore store(fixture.address(), databaseUse::operating);
        QVERIFY(store.open());
        QVERIFY(store.add(runsOf(cpuA, 1, 3)));
    }
    resultStore reader(fixture.address(), databaseUse::reading);
    QCOMPARE(why(reader.open()), QString());
    QVERIFY(previewIn(reader)->isNew);
    QVERIFY(!publishIn(reader));
    QVERIFY(!reader.add({numbered(1)}));
    QCOMPARE(statesIn(reader), QStringLiteral("received received received"));
}

void tst_publication::afterAMigration()
{
    QVERIFY2(fixture.beginWithSchema1(QStringLiteral(FENNICK_SCHEMA_1)),
             qPrintable(fixture.error()));
    resultStore store(fixture.address(), databaseUse::operating);
    QCOMPARE(why(store.open()), QString());
    publishOptions circle;
    circle.rules = ruleSet::circle;
    const auto report = publishIn(store, circle);
    QCOMPARE(why(report), QString());
    QVERIFY(report->isNew);
    QCOMPARE(report->version, 1012);
    QCOMPARE(report->uploads, qint64(5));
    QVERIFY(namesIn(store, false).contains(cpuA));
}

QTEST_GUILESS_MAIN(tst_publication)
#include "tst_publication.moc"
