// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/suite.h"
#include "tools/reference/coreFamilies.h"
#include "tools/reference/generations.h"
#include "tools/reference/referenceList.h"
#include "tools/reference/referenceModel.h"

#include <QFile>
#include <QtTest>

#include <algorithm>
#include <cmath>

using namespace reference;

namespace
{

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class tst_referenceModel : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void namesAreTheSuites();
    void boundsOfACore_data();
    void boundsOfACore();
    void worthOfCores_data();
    void worthOfCores();
    void memoryLimits();
    void factorsMeetTheMeasuredResults();
    void wrongCalibration_data();
    void wrongCalibration();

    void documented();

private:
    const machine &machineNamed(const char *name) const;

    tables facts;
};

void tst_referenceModel::initTestCase()
{
    const auto read = readTables(QStringLiteral(FENNICK_SOURCE_DIR "/tools/reference/tables"));
    QVERIFY2(read, qPrintable(read ? QString() : read.error()));
    facts = *read;
}

const machine &tst_referenceModel::machineNamed(const char *name) const
{
    return *std::find_if(facts.machines.begin(), facts.machines.end(),
                         [name](const machine &m) { return m.name == QLatin1String(name); });
}

void tst_referenceModel::namesAreTheSuites()
{
    QStringList names;
    for (const std::unique_ptr<testBase> &test : makeSuite(nullptr)) {
        if (!test->isSingleOnly())
            names.append(test->getName());
    }
    QStringList modelledNames;
    for (const modelledTest &test : modelledTests())
        modelledNames.append(test.name);
    QCOMPARE(modelledNames, names);
}

void tst_referenceModel::boundsOfACore_data()
{
    QTest::addColumn<QVector<double>>("work");
    QTest::addColumn<double>("cycles");
    // Instructions, loads, chain of products, sums and cycles, divisions, roots, misses, new pages.
    QTest::newRow("instructions") << QVector<double>{34, 0, 0, 0, 0, 0, 0, 0, 0} << 20.0;
    QTest::newRow("loads") << QVector<double>{34, 50, 0, 0, 0, 0, 0, 0, 0} << 25.0;
    QTest::newRow("chain") << QVector<double>{34, 0, 2, 3, 8, 0, 0, 0, 0} << 31.0;
    QTest::newRow("divisions follow like roots")
        << QVector<double>{34, 0, 0, 0, 0, 3, 0, 0, 0} << 27.0;
    QTest::newRow("roots") << QVector<double>{34, 0, 0, 0, 0, 0, 4, 0, 0} << 36.0;
    QTest::newRow("misses come on top") << QVector<double>{34, 50, 0, 0, 0, 0, 0, 2, 0} << 51.0;
    QTest::newRow("new pages come on top")
        << QVector<double>{34, 0, 0, 0, 0, 0, 0, 0, 0.001} << 22.0;
}

void tst_referenceModel::boundsOfACore()
{
    QFETCH(QVector<double>, work);
    const core c = {QString(), 2000, QStringLiteral("x86-64"), 0.5, 4, 5, 11, 9, 2, 13, 1, 1};
    const workloadDemand asked = {work.at(0), work.at(1), work.at(2), work.at(3), work.at(4),
                                  work.at(5), work.at(6), work.at(7), work.at(8), 0};
    QTEST(cyclesPerUnit(asked, c), "cycles");
}

void tst_referenceModel::worthOfCores_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("work");
    QTest::addColumn<double>("worth");
    const QString crc = QStringLiteral("crc32 bitwise");
    const QString dithered = QStringLiteral("rotozoom 'dithered'");
    QTest::newRow("no boost") << "Core 2 Quad Q6600" << crc << 4.0;
    QTest::newRow("boost") << "Core i5-2500K" << crc << 4 * 3620.0 / 3700;
    QTest::newRow("two threads a core") << "Core i7-2600K" << crc << 4 * 1.22 * 3720 / 3800;
    QTest::newRow("modules") << "FX-8150" << crc << 8 * 0.9 * 4080 / 4200;
    QTest::newRow("ARM: the nominal clock") << "Nexus 7 (2012)" << crc << 4 * 1200.0 / 1300;
    // As many cycles on both kinds: the chain of crc32 is the same everywhere.
    QTest::newRow("small cores of one thread")
        << "Core i9-12900K" << crc << 8 * 1.25 * 4800 / 5200 + 8 * 3900.0 / 5200;
    QTest::newRow("small cores in integer work")
        << "Core i9-12900K" << dithered << 8 * 1.25 * 4800 / 5200 + 8 * 3900.0 / 5200 * 0.97 / 1.37;
    QTest::newRow("three kinds") << "Galaxy Tab S8" << dithered
                                 << 1 + 3 * 2496.0 / 2995 * 1.25 / 1.45
                                        + 4 * 1785.0 / 2995 * 0.42 / 1.45;
    QTest::newRow("all with two threads")
        << "Ryzen AI 9 HX 370" << crc << 1.3 * (4 * 4480.0 / 5100 + 8 * 3300.0 / 5100);
}

void tst_referenceModel::worthOfCores()
{
    QFETCH(QString, name);
    QFETCH(QString, work);
    QFETCH(double, worth);
    const auto asked =
        std::find_if(modelledTests().begin(), modelledTests().end(),
                     [&work](const modelledTest &test) { return work == test.name; });
    const machine &m = machineNamed(name.toLatin1().constData());
    const double found = coreWorth(*asked->work, m, facts);
    QVERIFY2(std::abs(found - worth) < 1e-9, qPrintable(QString::number(found)));
}

/// One core has its share of the bandwidth; all have as much as their shares, up to what memory
/// reaches.
void tst_referenceModel::memoryLimits()
{
    const modelledTest &single = modelledTests().at(1);
    const modelledTest &multi = modelledTests().at(2);
    const machine &two = machineNamed("Galaxy S II"); // 2 cores of 0.25 x 6.4 GB/s
    QCOMPARE(memoryBound(single, two, facts), 1.6e9 / 8e6);
    QCOMPARE(memoryBound(multi, two, facts), 3.2e9 / 8e6);
    const machine &four = machineNamed("Core i7-4770"); // 4 cores of 0.72 x 25.6 GB/s
    QCOMPARE(memoryBound(multi, four, facts), 0.8 * 25.6e9 / 8e6);

    machine starved = four;
    starved.bandwidth = 0.1;
    QCOMPARE(modelled(single, starved, facts), memoryBound(single, starved, facts));
    QCOMPARE(estimate(single, starved, facts, 2), memoryBound(single, starved, facts));
    QVERIFY(modelled(single, four, facts) < memoryBound(single, four, facts));
    QCOMPARE(estimate(single, four, facts, 0.5), 0.5 * modelled(single, four, facts));
}

void tst_referenceModel::factorsMeetTheMeasuredResults()
{
    const QVector<double> factors = calibrationFactors(facts).value_or(QVector<double>());
    QCOMPARE(factors.size(), 18);
    for (int i = 0; i < factors.size(); ++i) {
        const modelledTest &test = modelledTests().at(i);
        const double value = estimate(test, facts.calibrationMachine, facts, factors.at(i));
        const double measured = facts.calibration.at(i).result;
        // Two cores of the vertex test were measured more than twice as fast as one.
        const double tolerance = test.name == QLatin1String("vertex (multicore)") ? 0.05 : 1e-9;
        QVERIFY2(std::abs(value / measured - 1) < tolerance, qPrintable(test.name));
        QVERIFY2(factors.at(i) > 0.65 && factors.at(i) < 1.35, qPrintable(test.name));
    }
}

void tst_referenceModel::wrongCalibration_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("error");
    QTest::newRow("one missing")
        << 17 << "calibration.csv, line 19: not the result of 'vertex (multicore)'";
    QTest::newRow("none") << 0
                          << "calibration.csv, line 2: not the result of 'rotozoom 'dithered''";
    QTest::newRow("one too many") << 19 << "calibration.csv: more results than tests";
}

void tst_referenceModel::wrongCalibration()
{
    QFETCH(int, count);
    tables wrong = facts;
    wrong.calibration.resize(count);
    QFETCH(QString, error);
    for (const auto &output : {machineList(wrong), factorTable(wrong), generationTable(wrong)}) {
        QVERIFY(!output);
        QCOMPARE(output.error(), error);
    }
}

/// The document shows the factors as they are, and says what the results are.
void tst_referenceModel::documented()
{
    const QByteArray document =
        contentOf(QStringLiteral(FENNICK_SOURCE_DIR "/docs/reference-model.md"));
    QVERIFY(document.contains(factorTable(facts).value()));
    QVERIFY(document.contains("modelled, not measured"));
    QVERIFY(contentOf(QStringLiteral(FENNICK_SOURCE_DIR "/README.md")).contains("modelled"));
}

QTEST_GUILESS_MAIN(tst_referenceModel)
#include "tst_referenceModel.moc"
