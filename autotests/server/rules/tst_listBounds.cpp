// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/listBounds.h"

#include "data/benchXml.h"

#include "support/wholeRuns.h"

#include <QtTest>

Q_DECLARE_METATYPE(QVector<listCandidate>)

namespace
{

listCandidate candidate(const char *name, int sources = 3, qint64 first = 1, int threads = 4,
                        const QString &os = QStringLiteral("linux"))
{
    const QString cpu = QString::fromLatin1(name);
    const benchResults machine = wholeRun(cpu, 1, os, threads, cpu);
    return {machine, sources, first};
}

benchResults modelled(const char *name, int threads = 4)
{
    const QString cpu = QString::fromLatin1(name);
    return wholeRun(cpu, 1, QStringLiteral("linux"), threads, cpu + QStringLiteral(" (est.)"));
}

QString namesOf(const QVector<benchResults> &machines)
{
    QStringList names;
    for (const benchResults &machine : machines)
        names.append(machine.getName());
    return names.join(QLatin1Char('|'));
}

/// @p count candidates that all lists have room for by their bytes.
QVector<listCandidate> small(int count)
{
    QVector<listCandidate> all;
    for (int i = 0; i < count; ++i) {
        all.append(candidate("M" + QByteArray::number(i).rightJustified(5, '0')));
        all.last().machine.getTests().clear();
    }
    return all;
}

} // namespace

class tst_listBounds : public QObject
{
    Q_OBJECT

private slots:
    void modelsGiveWay_data();
    void modelsGiveWay();
    void number();
    void bytes();
    void merit();
    void builtInStays();
    void measuredTakesItsModelsPlaceInAFullList();
    void xml();
};

void tst_listBounds::modelsGiveWay_data()
{
    QTest::addColumn<QVector<listCandidate>>("candidates");
    QTest::addColumn<QString>("names");
    using list = QVector<listCandidate>;
    QTest::newRow("none") << list() << "A (est.)|A (est.)|B (est.)|A";
    QTest::newRow("another processor") << list{candidate("C")} << "A (est.)|A (est.)|B (est.)|A|C";
    QTest::newRow("the same") << list{candidate("A")} << "A (est.)|B (est.)|A|A";
    QTest::newRow("another spelling")
        << list{candidate("a(R) CPU")} << "A (est.)|B (est.)|A|a(R) CPU";
    QTest::newRow("other threads")
        << list{candidate("A", 3, 1, 2)} << "A (est.)|A (est.)|B (est.)|A|A";
    QTest::newRow("other system") << list{candidate("A", 3, 1, 4, QStringLiteral("windows"))}
                                  << "A (est.)|A (est.)|B (est.)|A|A";
}

void tst_listBounds::modelsGiveWay()
{
    QFETCH(QVector<listCandidate>, candidates);
    const QVector<benchResults> builtIn = {modelled("A"), modelled("A", 8), modelled("B"),
                                           candidate("A").machine};
    const boundedList list = boundedListOf(builtIn, candidates);
    QTEST(namesOf(list.machines), "names");
    QVERIFY(list.leftOut.isEmpty());
}

void tst_listBounds::number()
{
    const boundedList fits = boundedListOf({}, small(2'000));
    QCOMPARE(fits.machines.size(), 2'000);
    QVERIFY(fits.leftOut.isEmpty());
    const boundedList one = boundedListOf({}, small(2'001));
    QCOMPARE(one.machines.size(), 2'000);
    QCOMPARE(namesOf(one.leftOut), QStringLiteral("M02000"));
}

void tst_listBounds::bytes()
{
    // With the results of a full run and long names, fewer machines than that are 4 MiB.
    QVector<listCandidate> large;
    for (int i = 0; i < 2'000; ++i) {
        large.append(candidate(QByteArray(120, '&') + QByteArray::number(i)));
    }
    const boundedList list = boundedListOf({}, large);
    const qint64 size = listXml(list.machines).size();
    const qint64 one = listXml({large.first().machine}).size();
    QVERIFY(size <= 4 * 1024 * 1024);
    QVERIFY(size > 4 * 1024 * 1024 - one);
    QVERIFY(!list.leftOut.isEmpty());
    QCOMPARE(list.machines.size() + list.leftOut.size(), 2'000);
}

void tst_listBounds::merit()
{
    QVector<listCandidate> all = small(2'000);
    all.insert(1'000, candidate("Z many sources", 4, 9));
    all.insert(500, candidate("A late", 3, 2));
    all.insert(100, candidate("Z few", 2, 0));
    all.insert(0, candidate("Z early", 3, 0));
    const boundedList list = boundedListOf({}, all);
    QCOMPARE(list.machines.size(), 2'000);
    QCOMPARE(namesOf(list.leftOut), QStringLiteral("Z few|A late|M01998|M01999"));
    // Who stays, stays in the given order.
    QCOMPARE(list.machines.first().getName(), QStringLiteral("Z early"));
    QCOMPARE(list.machines.at(1001).getName(), QStringLiteral("Z many sources"));
}

void tst_listBounds::builtInStays()
{
    const QVector<benchResults> builtIn = {modelled("Y"), modelled("Z")};
    const boundedList list = boundedListOf(builtIn, small(3'000));
    QCOMPARE(list.machines.size(), 2'000);
    QCOMPARE(list.leftOut.size(), 1'002);
    QCOMPARE(list.machines.at(0).getName(), QStringLiteral("Y (est.)"));
    QCOMPARE(list.machines.at(1).getName(), QStringLiteral("Z (est.)"));
}

void tst_listBounds::measuredTakesItsModelsPlaceInAFullList()
{
    const QVector<benchResults> builtIn = {modelled("Z")};
    QVector<listCandidate> all = small(2'500);
    all.append(candidate("Z", 1));
    const boundedList list = boundedListOf(builtIn, all);
    QCOMPARE(list.machines.size(), 2'000);
    QCOMPARE(list.machines.first().getName(), QStringLiteral("M00000"));
    QCOMPARE(list.machines.last().getName(), QStringLiteral("Z"));
}

void tst_listBounds::xml()
{
    const QVector<benchResults> machines = {modelled("A"), modelled("B")};
    const QByteArray text = listXml(machines);
    QVERIFY(text.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Fennick>\n"));
    QCOMPARE(namesOf(readMachines(text)), namesOf(machines));
    QCOMPARE(listXml(readMachines(text)), text);
}

QTEST_APPLESS_MAIN(tst_listBounds)
#include "tst_listBounds.moc"
