// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/machineProbe.h"

#include <QtTest>

#include <omp.h>

namespace
{

processorInfo given;

} // namespace

class tst_machineProbe : public QObject
{
    Q_OBJECT

private slots:
    void names_data();
    void names();
    void unknownName();
    void frequencies();
    void threads();
    void coreClocks();
    void oneObject();
};

void tst_machineProbe::names_data()
{
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QStringLiteral("AMD EPYC") << QStringLiteral("AMD EPYC");
    QTest::newRow("clock behind an at sign")
        << QStringLiteral("Brand @ 3.40GHz") << QStringLiteral("Brand ");
    QTest::newRow("blanks around")
        << QStringLiteral("   Brand X  @ 1GHz  ") << QStringLiteral("Brand X  ");
    QTest::newRow("at sign first") << QStringLiteral("@home CPU") << QStringLiteral("@home CPU");
    QTest::newRow("blanks, then at sign first")
        << QStringLiteral("  @home CPU ") << QStringLiteral("@home CPU");
    QTest::newRow("at sign first and again")
        << QStringLiteral("@home @ 2GHz") << QStringLiteral("@home @ 2GHz");
    QTest::newRow("two at signs") << QStringLiteral("a@b@c") << QStringLiteral("a");
    QTest::newRow("empty answer") << QString(QLatin1String("")) << QString(QLatin1String(""));
    QTest::newRow("not ASCII") << QStringLiteral("Процессор @ 1") << QStringLiteral("Процессор ");
}

void tst_machineProbe::names()
{
    QFETCH(QString, raw);
    given = {raw.toStdString(), std::nullopt};
    const machineProbe probe([] { return given; });
    QTEST(probe.getProcessorName(), "name");
}

void tst_machineProbe::unknownName()
{
    const machineProbe probe([] { return processorInfo{}; });
    QCOMPARE(probe.getProcessorName(), QStringLiteral("unknown"));
    QVERIFY(probe.getFrequencies().isEmpty());
}

void tst_machineProbe::frequencies()
{
    given = {std::nullopt, 3400U};
    const machineProbe probe([] { return given; });
    QCOMPARE(probe.getFrequencies(), QVector<float>({3.4e9F}));
    // A platform that has a clock but could not read it still has an entry.
    given.megahertz = 0;
    QCOMPARE(probe.getFrequencies(), QVector<float>({0.0F}));
}

void tst_machineProbe::threads()
{
    const machineProbe &probe = machineProbe::instance();
    const int before = omp_get_max_threads();
    omp_set_num_threads(5);
    QCOMPARE(probe.getThreadCount(), 5);
    QCOMPARE(probe.getThreadMap(), QByteArray("\1\1\1\1\1"));
    omp_set_num_threads(before);
}

void tst_machineProbe::coreClocks()
{
    QVERIFY(machineProbe::instance().getCoreClocks().isEmpty());
}

void tst_machineProbe::oneObject()
{
    QCOMPARE(&machineProbe::instance(), &machineProbe::instance());
    QVERIFY(!machineProbe::instance().getProcessorName().isEmpty());
}

QTEST_APPLESS_MAIN(tst_machineProbe)
#include "tst_machineProbe.moc"
