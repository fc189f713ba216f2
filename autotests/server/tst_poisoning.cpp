// SPDX-License-Identifier: GPL-3.0-or-later

// What an attacker uploads, and what is published of it. Each attack is made on both products.

#include "server/moderation.h"
#include "server/publication.h"
#include "server/rules/sourceToken.h"
#include "server/uploadCheck.h"

#include "data/benchXml.h"
#include "data/estimate.h"
#include "storeFixture.h"
#include "support/wholeRuns.h"

#include <QtTest>

#include <algorithm>
#include <random>

namespace
{

constexpr qint64 day = 86'400'000;
const QString linux = QStringLiteral("linux");
const QString honest = QStringLiteral("AMD Ryzen 9 1234X");
const QString invented = QStringLiteral("Invented 9000");

/// An upload from an address, received at a time; each is another one.
storedUpload upload(const benchResults &machine, int address, qint64 time)
{
    static int count = 0;
    benchResults own(QStringLiteral("PC %1").arg(++count), machine.getOs(), machine.getCpu(),
                     machine.getFrequency(), machine.getThreads());
    own.getTests() = machine.getTests();
    storedUpload made = makeUpload(own, time);
    made.network =
        networkOf(QStringLiteral("10.%1.%2.1")
                      .arg(QString::number(address / 256), QString::number(address % 256)));
    return made;
}

/// What makes a machine of the normal list.
QVector<storedUpload> threeSources(const benchResults &machine)
{
    return {upload(machine, 1, day), upload(machine, 2, day), upload(machine, 3, 2 * day)};
}

QStringList namesOf(const QVector<benchResults> &machines)
{
    QStringList names;
    for (const benchResults &machine : machines)
        names.append(machine.getName());
    return names;
}

/// All machines of the built-in list, and then these.
QStringList builtInAnd(const QStringList &names)
{
    return namesOf(builtInMachines()) + names;
}

} // namespace

class tst_poisoning : public QObject
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

    void threeUploadsInASecond_data() { storeFixture::addProducts(); }
    void threeUploadsInASecond();
    void impossibleResults_data() { storeFixture::addProducts(); }
    void impossibleResults();
    void worthlessUploadsOfAllModels_data() { storeFixture::addProducts(); }
    void worthlessUploadsOfAllModels();
    void otherSystemsOfAModel_data() { storeFixture::addProducts(); }
    void otherSystemsOfAModel();
    void floodOfNames_data() { storeFixture::addProducts(); }
    void floodOfNames();
    void spellings_data() { storeFixture::addProducts(); }
    void spellings();
    void disguises_data() { storeFixture::addProducts(); }
    void disguises();
    void manyUploadsOfOneSource_data() { storeFixture::addProducts(); }
    void manyUploadsOfOneSource();
    void oneWrongSource_data() { storeFixture::addProducts(); }
    void oneWrongSource();
    void circle_data() { storeFixture::addProducts(); }
    void circle();

private:
    outcome<publishReport> publish(ruleSet rules = ruleSet::open)
    {
        publishOptions options;
        options.rules = rules;
        options.now = 3 * day;
        return publication(*store, builtIn, options).run();
    }
    QByteArray xml(bool isBeta)
    {
        const outcome<storedList> list = store->newestList(isBeta);
        return list && list->version > 0 ? qUncompress(list->content) : QByteArray();
    }
    /// The names on a list. Before anything has been published there is none.
    QStringList names(bool isBeta)
    {
        const QByteArray list = xml(isBeta);
        return list.isEmpty() ? builtInAnd({}) : namesOf(readMachines(list));
    }
    benchResults machine(const QString &name, bool isBeta)
    {
        for (const benchResults &one : readMachines(xml(isBeta))) {
            if (one.getName() == name)
                return one;
        }
        return {};
    }
    QStringList states()
    {
        QStringList all;
        for (const storedUpload &one : uploadsIn(*store))
            all.append(one.state);
        all.removeDuplicates();
        return all;
    }

    const QVector<benchResults> builtIn = builtInMachines();
    storeFixture fixture;
    std::unique_ptr<resultStore> store;
};

/// It cannot be told from an honest one by its results, and so is seen on the BETA list first.
void tst_poisoning::threeUploadsInASecond()
{
    const benchResults fast = wholeRun(invented, 10);
    QVERIFY(
        store->add({upload(fast, 7, day), upload(fast, 7, day + 300), upload(fast, 7, day + 900)}));
    QVERIFY2(publish(), "publishing");
    QCOMPARE(names(false), builtInAnd({}));
    QCOMPARE(names(true), builtInAnd({invented}));
    // Nor does it help to come again on the next day, as often as it may be.
    QVERIFY(store->add({upload(fast, 7, 2 * day), upload(fast, 7, 2 * day + 1)}));
    QVERIFY2(publish(), "publishing");
    QCOMPARE(names(false), builtInAnd({}));
}

void tst_poisoning::impossibleResults()
{
    benchResults machine = wholeRun(invented);
    machine.setTest(QStringLiteral("mandel"), benchResults::test(860)); // the best has 28.8
    QVERIFY(store->add(threeSources(machine)));
    QCOMPARE(states(), QStringList(QStringLiteral("held")));
    QVERIFY2(publish(), "publishing");
    for (const bool isBeta : {false, true})
        QCOMPARE(names(isBeta), builtInAnd({}));
    // Only an operator can let it through.
    uploadFilter all;
    QVERIFY(
        moderation::apply(*store, moderation::action::accept, all, QStringLiteral("seen"), false));
    QVERIFY2(publish(), "publishing");
    for (const bool isBeta : {false, true})
        QCOMPARE(names(isBeta), builtInAnd({invented}));
}

void tst_poisoning::worthlessUploadsOfAllModels()
{
    QMap<QString, benchResults> processors;
    for (const benchResults &model : builtIn)
        processors.insert(model.getCpu(), model);
    QCOMPARE(processors.size(), 151);
    QVector<storedUpload> uploads;
    for (const benchResults &model : qAsConst(processors)) {
        benchResults worthless(QString(), model.getOs(), model.getCpu(), model.getFrequency(),
                               model.getThreads());
        worthless.setTest(QStringLiteral("mandel"), benchResults::test(0.001F));
        uploads += threeSources(worthless);
    }
    QCOMPARE(uploads.size(), 453);
    QVERIFY(store->add(uploads));
    QVERIFY2(publish(), "publishing");
    for (const bool isBeta : {false, true})
        QCOMPARE(names(isBeta), builtInAnd({}));
}

void tst_poisoning::otherSystemsOfAModel()
{
    const benchResults &model = builtIn.first();
    const QString other = model.getOs() == linux ? QStringLiteral("android") : linux;
    QVERIFY(store->add(threeSources(wholeRun(model.getCpu(), 1, other, model.getThreads()))
                       + threeSources(wholeRun(model.getCpu(), 1, model.getOs(), 1))));
    QVERIFY2(publish(), "publishing");
    QCOMPARE(names(false), builtInAnd({model.getCpu(), model.getCpu()}));
    QVERIFY(
        store->add(threeSources(wholeRun(model.getCpu(), 1, model.getOs(), model.getThreads()))));
    QVERIFY2(publish(), "publishing");
    QVERIFY(!names(false).contains(model.getName()));
    QCOMPARE(names(false).size(), builtIn.size() + 2);
}

void tst_poisoning::floodOfNames()
{
    // As many as were tried, on one product; the bound does not depend on it, nor on the
    // sanitizers, which take their time.
#ifdef FENNICK_TEST_SANITIZED
    const int inventions = 3'000;
#else
    const int inventions = QByteArray(QTest::currentDataTag()) == "SQLite" ? 34'500 : 5'000;
#endif
    QVERIFY(store->add(threeSources(wholeRun(honest))));
    QVERIFY(store->add({upload(wholeRun(honest + QStringLiteral(" PRO")), 9, 2 * day)}));
    const benchResults machine = wholeRun(invented, 10);
    QVector<storedUpload> uploads;
    for (int i = 0; i < inventions; ++i) {
        benchResults own(QString(), linux, QStringLiteral("A%1").arg(i), 2.4e9F, 4);
        own.getTests() = machine.getTests();
        uploads.append(upload(own, i, 2 * day + 1 + i));
    }
    QVERIFY(store->add(uploads));
    const outcome<publishReport> report = publish();
    QVERIFY2(report, qPrintable(why(report)));
    QCOMPARE(names(false), builtInAnd({honest}));
    QCOMPARE(report->leftOut, 0);
    const QStringList beta = names(true);
    QCOMPARE(beta.size(), 2'000);
    QVERIFY(xml(true).size() <= 4 * 1024 * 1024);
    // What was there stays, be it of one source only.
    for (const QString &name : builtInAnd({honest, honest + QStringLiteral(" PRO")}))
        QVERIFY2(beta.contains(name), qPrintable(name));
    QCOMPARE(report->leftOutBeta, qint64(inventions + 2 + builtIn.size() - beta.size()));
}

/// All are one machine; what looks like it and is not, is refused.
void tst_poisoning::spellings()
{
    QVector<storedUpload> uploads;
    int address = 0;
    for (const char *name :
         {"Intel(R) Core(TM) i9-1234K CPU @ 3.00GHz", "Intel(R) Core(TM) i9-1234K CPU ",
          "intel(r) core(tm) i9-1234k cpu", "INTEL CORE I9-1234K", "Intel Core  i9-1234K",
          "Intel\u00AE Core\u2122 i9-1234K", "\uFF29ntel Core i9-\uFF11234K"}) {
        ++address;
        uploads.append(upload(wholeRun(QString::fromUtf8(name)), address, address % 2 * day));
    }
    QVERIFY(store->add(uploads));
    QVERIFY2(publish(), "publishing");
    for (const bool isBeta : {false, true})
        QCOMPARE(names(isBeta).size(), builtIn.size() + 1);
    // They are to mislead. NOLINTBEGIN(misc-misleading-bidirectional)
    for (const char *name :
         {"\u0406ntel Core i9-1234K", "Intel C\u043Ere i9-1234K", "Intel Core i9\u20101234K",
          "Intel Core\u200B i9-1234K", "Intel Core \u202Ei9-1234K", "\uA4EE\uA4DF\uA4D3 1234"}) {
        // NOLINTEND(misc-misleading-bidirectional)
        const benchResults machine = wholeRun(QString::fromUtf8(name));
        QVERIFY2(!checkUpload("<F>" + canonicalXml(machine) + "</F>"), name);
    }
}

void tst_poisoning::disguises()
{
    for (const char *name :
         {"Core i9 (est.)", "Core i9 (EST.)", "Core i9 ( e s t )", "Core i9 \uFF08est.\uFF09",
          "\u042D\u043B (\u0435\u0455\u0442.)", "unknown", "UNKN0WN", "Un known CPU"}) {
        const benchResults machine = wholeRun(QString::fromUtf8(name));
        QVERIFY2(!checkUpload("<F>" + canonicalXml(machine) + "</F>"), name);
        // Nor does it count where it comes from an older database, whatever an operator says.
        QVERIFY(store->add(threeSources(machine)));
    }
    QCOMPARE(states(), QStringList(QStringLiteral("held")));
    QVERIFY(moderation::apply(*store, moderation::action::accept, {}, QStringLiteral("x"), false)
                ->changed.isEmpty());
    QVERIFY2(publish(), "publishing");
    for (const bool isBeta : {false, true})
        QCOMPARE(names(isBeta), builtInAnd({}));
}

void tst_poisoning::manyUploadsOfOneSource()
{
    QVector<storedUpload> uploads = threeSources(wholeRun(honest))
                                    + threeSources(wholeRun(honest, 1.02F))
                                    + threeSources(wholeRun(honest, 1.01F));
    for (int i = 0; i < 200; ++i)
        uploads.append(upload(wholeRun(honest, 1.3F), 66, 2 * day + i));
    QVERIFY(store->add(uploads));
    QVERIFY2(publish(), "publishing");
    const QString test = QStringLiteral("shellsort");
    const float wanted = wholeRun(honest, 1.01F).getTests().value(test).value;
    const float found = machine(honest, false).getTests().value(test).value;
    QVERIFY2(std::abs(found - wanted) < 1e-4F * wanted,
             qPrintable(QString::number(static_cast<double>(found / wanted))));
}

void tst_poisoning::oneWrongSource()
{
    QVERIFY(store->add({upload(wholeRun(honest), 1, day), upload(wholeRun(honest, 1.01F), 2, day),
                        upload(wholeRun(honest, 3), 3, 2 * day)}));
    QVERIFY2(publish(), "publishing");
    QCOMPARE(names(false), builtInAnd({}));
    QCOMPARE(names(true), builtInAnd({honest}));
    QVERIFY(store->add({upload(wholeRun(honest, 1.02F), 4, 2 * day)}));
    QVERIFY2(publish(), "publishing");
    QCOMPARE(names(false), builtInAnd({honest}));
    const QString test = QStringLiteral("shellsort");
    QVERIFY(machine(honest, false).getTests().value(test).value
            < wholeRun(honest, 1.02F).getTests().value(test).value);
}

/// Two people who trust each other.
void tst_poisoning::circle()
{
    QVERIFY(store->add({upload(wholeRun(honest), 1, day)}));
    benchResults partial = wholeRun(invented);
    partial.getTests().remove(QStringLiteral("mandel"));
    QVERIFY(store->add({upload(partial, 2, day)}));
    QVERIFY2(publish(), "publishing");
    QCOMPARE(names(false), builtInAnd({}));
    QVERIFY2(publish(ruleSet::circle), "publishing");
    QCOMPARE(names(false), builtInAnd({honest}));
    QVERIFY2(publish(), "publishing");
    QCOMPARE(names(false), builtInAnd({}));
}

QTEST_APPLESS_MAIN(tst_poisoning)
#include "tst_poisoning.moc"
