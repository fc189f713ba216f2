// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/csvTable.h"
#include "tools/reference/referenceTables.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

using namespace reference;

namespace
{

const QByteArray coreHeader =
    "microarchitecture,year,isa,int_ipc,fp_mul_latency,fp_add_latency,fp_div_latency,"
    "fp_sqrt_throughput,load_ipc,branch_penalty,smt_gain,stream_efficiency\n";
const QByteArray zen = "Zen,2017,x86-64,0.88,3,4,10,5,2,16,1.30,0.58\n";
const QByteArray machineHeader =
    "name,os,cpu,microarchitecture,cores,threads,nominal_mhz,boost_mhz,mem_gbps\n";
const QByteArray ryzen = "Ryzen 5 1600,windows,AMD Ryzen 5 1600,Zen,6,12,3200,3600,42.7\n";

QString tablesDirectory()
{
    return QStringLiteral(FENNICK_SOURCE_DIR "/tools/reference/tables");
}

/// The error of what could not be read; empty if it could.
template <typename Read> QString errorOf(const Read &read)
{
    return read ? QString() : read.error();
}

QMap<QString, core> knownCores()
{
    return readCores(coreHeader + zen).value();
}

tables knownTables()
{
    tables known;
    known.cores = knownCores();
    known.machines =
        readMachines(QStringLiteral("machines.csv"), machineHeader + ryzen, known.cores).value();
    return known;
}

} // namespace

class tst_referenceTables : public QObject
{
    Q_OBJECT

private slots:
    void csv_data();
    void csv();
    void coreRow();
    void badCores_data();
    void badCores();
    void machineRow();
    void badMachines_data();
    void badMachines();
    void badOtherCores_data();
    void badOtherCores();
    void calibrationKeepsBlanks();
    void ownTables();
    void wrongCounts_data();
    void wrongCounts();
    void missingTable_data();
    void missingTable();
};

void tst_referenceTables::csv_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("cells");
    QTest::addColumn<QString>("error");
    QTest::newRow("rows") << QByteArray("a,b\nx,2\n y ,4\n") << "x=2, y =4,"
                          << "";
    QTest::newRow("no rows") << QByteArray("a,b\n") << ""
                             << "";
    QTest::newRow("no line end") << QByteArray("a,b\nx,2") << "x=2,"
                                 << "";
    QTest::newRow("nothing") << QByteArray() << ""
                             << "t is empty or missing";
    const QString columns = QStringLiteral("t, line 1: the columns are not a,b");
    QTest::newRow("columns in another order") << QByteArray("b,a\n1,2\n") << "" << columns;
    QTest::newRow("column missing") << QByteArray("a\n1\n") << "" << columns;
    QTest::newRow("CR LF") << QByteArray("a,b\r\n1,2\r\n") << "" << columns;
    QTest::newRow("cell missing") << QByteArray("a,b\nx,2\nx\n") << "x=2,"
                                  << "t, line 3: 1 cells instead of 2";
    QTest::newRow("cell too many") << QByteArray("a,b\nx,2,3\nx,2\n") << ""
                                   << "t, line 2: 3 cells instead of 2";
    QTest::newRow("comma between quotes") << QByteArray("a,b\n\"1,2\",3\n") << ""
                                          << "t, line 2: 3 cells instead of 2";
    QTest::newRow("empty line") << QByteArray("a,b\nx,2\n\nx,2\n") << "x=2,"
                                << "t, line 3: 1 cells instead of 2";
    QTest::newRow("empty text") << QByteArray("a,b\n,2\n") << ""
                                << "t, line 2: a is empty";
    QTest::newRow("empty number") << QByteArray("a,b\nx,\n") << ""
                                  << "t, line 2: b is '', not a number from 1 to 9";
}

void tst_referenceTables::csv()
{
    QFETCH(QByteArray, content);
    QString cells;
    const auto read =
        readRows(QStringLiteral("t"), content, QStringLiteral("a,b"), [&cells](csvRow &row) {
            const QString text = row.text("a");
            const double number = row.number("b", 1, 9);
            if (row.error().isEmpty())
                cells += QStringLiteral("%1=%2,").arg(text).arg(number);
        });
    QTEST(cells, "cells");
    QTEST(errorOf(read), "error");
}

void tst_referenceTables::coreRow()
{
    QCOMPARE(knownCores().size(), 1);
    const core c = knownCores().value(QStringLiteral("Zen"));
    QCOMPARE(c.name, QStringLiteral("Zen"));
    QCOMPARE(c.year, 2017);
    QCOMPARE(c.isa, QStringLiteral("x86-64"));
    QCOMPARE(c.integerRate, 0.88);
    QCOMPARE(c.multiplyLatency, 3.0);
    QCOMPARE(c.addLatency, 4.0);
    QCOMPARE(c.divideLatency, 10.0);
    QCOMPARE(c.rootInterval, 5.0);
    QCOMPARE(c.loadsPerCycle, 2.0);
    QCOMPARE(c.branchPenalty, 16.0);
    QCOMPARE(c.threadGain, 1.3);
    QCOMPARE(c.streamShare, 0.58);
}

void tst_referenceTables::badCores_data()
{
    QTest::addColumn<QByteArray>("rows");
    QTest::addColumn<QString>("error");
    QTest::newRow("word for a number")
        << QByteArray("Zen,2017,x86-64,fast,3,3,10,5,2,16,1.30,0.58\n")
        << "microarchitectures.csv, line 2: int_ipc is 'fast', not a number from 0.01 to 10";
    QTest::newRow("not a number")
        << QByteArray("Zen,2017,x86-64,nan,3,3,10,5,2,16,1.30,0.58\n")
        << "microarchitectures.csv, line 2: int_ipc is 'nan', not a number from 0.01 to 10";
    QTest::newRow("more than all of the bandwidth")
        << QByteArray("Zen,2017,x86-64,1,3,3,10,5,2,16,1.30,1.58\n")
        << "microarchitectures.csv, line 2: stream_efficiency is '1.58', not a number from "
           "0.01 to 1";
    QTest::newRow("half a year")
        << QByteArray("Zen,2017.5,x86-64,1,3,3,10,5,2,16,1.30,0.58\n")
        << "microarchitectures.csv, line 2: year is '2017.5', not a whole number";
    QTest::newRow("twice") << zen + zen << "microarchitectures.csv, line 3: duplicate 'Zen'";
}

void tst_referenceTables::badCores()
{
    QFETCH(QByteArray, rows);
    QTEST(errorOf(readCores(coreHeader + rows)), "error");
}

void tst_referenceTables::machineRow()
{
    const tables known = knownTables();
    QCOMPARE(known.machines.size(), 1);
    const machine m = known.machines.first();
    QCOMPARE(m.name, QStringLiteral("Ryzen 5 1600"));
    QCOMPARE(m.os, QStringLiteral("windows"));
    QCOMPARE(m.cpu, QStringLiteral("AMD Ryzen 5 1600"));
    QCOMPARE(m.coreName, QStringLiteral("Zen"));
    QCOMPARE(m.cores, 6);
    QCOMPARE(m.threads, 12);
    QCOMPARE(m.nominalMhz, 3200.0);
    QCOMPARE(m.boostMhz, 3600.0);
    QCOMPARE(m.bandwidth, 42.7);
}

void tst_referenceTables::badMachines_data()
{
    QTest::addColumn<QByteArray>("row");
    QTest::addColumn<QString>("error");
    QTest::newRow("unknown core") << QByteArray("R,linux,c,Zem,6,12,3200,3600,42.7\n")
                                  << "unknown microarchitecture 'Zem'";
    QTest::newRow("unknown system")
        << QByteArray("R,macos,c,Zen,6,12,3200,3600,42.7\n") << "os is 'macos'";
    QTest::newRow("fewer threads than cores") << QByteArray("R,linux,c,Zen,6,4,3200,3600,42.7\n")
                                              << "threads is '4', not a number from 6 to 12";
    QTest::newRow("boost below nominal") << QByteArray("R,linux,c,Zen,6,12,3200,3100,42.7\n")
                                         << "boost_mhz is '3100', not a number from 3200 to 10000";
    QTest::newRow("no bandwidth") << QByteArray("R,linux,c,Zen,6,12,3200,3600,0\n")
                                  << "mem_gbps is '0', not a number from 0.1 to 10000";
    QTest::newRow("half a core") << QByteArray("R,linux,c,Zen,1.5,2,3200,3600,42.7\n")
                                 << "cores is '1.5', not a whole number";
}

void tst_referenceTables::badMachines()
{
    QFETCH(QByteArray, row);
    QFETCH(QString, error);
    const auto read = readMachines(QStringLiteral("m"), machineHeader + ryzen + row, knownCores());
    QCOMPARE(errorOf(read), QStringLiteral("m, line 3: %1").arg(error));
}

void tst_referenceTables::badOtherCores_data()
{
    QTest::addColumn<QByteArray>("rows");
    QTest::addColumn<QString>("error");
    QTest::newRow("good") << QByteArray("AMD Ryzen 5 1600,Zen,5,2000\n") << "";
    QTest::newRow("no such processor")
        << QByteArray("AMD Ryzen,Zen,2,2000\n")
        << "other-cores.csv, line 2: no machine with cpu 'AMD Ryzen' has a big core left";
    QTest::newRow("no big core left")
        << QByteArray("AMD Ryzen 5 1600,Zen,4,2000\nAMD Ryzen 5 1600,Zen,2,1000\n")
        << "other-cores.csv, line 3: no machine with cpu 'AMD Ryzen 5 1600' has a big core left";
    QTest::newRow("unknown core") << QByteArray("AMD Ryzen 5 1600,Zem,4,2000\n")
                                  << "other-cores.csv, line 2: unknown microarchitecture 'Zem'";
}

void tst_referenceTables::badOtherCores()
{
    QFETCH(QByteArray, rows);
    QTEST(errorOf(readOtherCores("cpu,microarchitecture,cores,mhz\n" + rows, knownTables())),
          "error");
}

void tst_referenceTables::calibrationKeepsBlanks()
{
    const auto results =
        readCalibration("test,result\ncolors ,132.4\n").value_or(QVector<measuredResult>());
    QCOMPARE(results.size(), 1);
    QCOMPARE(results.first().test, QStringLiteral("colors "));
    QCOMPARE(results.first().result, 132.4);
    QCOMPARE(errorOf(readCalibration("test,result\ncolors ,0\n")),
             QStringLiteral("calibration.csv, line 2: result is '0', not a number from 1e-06 to "
                            "1e+06"));
}

void tst_referenceTables::ownTables()
{
    const auto read = readTables(tablesDirectory());
    QVERIFY2(read, qPrintable(errorOf(read)));
    const tables &facts = *read;
    QCOMPARE(facts.machines.size(), 167);
    QCOMPARE(facts.calibration.size(), 18);
    QCOMPARE(facts.calibrationMachine.cores, 2);
    QCOMPARE(facts.cores.size(), 73);
    QCOMPARE(facts.machines.first().name, QStringLiteral("Core 2 Duo E6600"));
    for (const machine &m : facts.machines) {
        int bigCores = m.cores;
        for (const otherCores &group : facts.others.value(m.cpu))
            bigCores -= group.count;
        const bool isKnownMix =
            m.threads == m.cores || m.threads == 2 * m.cores || m.threads == m.cores + bigCores;
        QVERIFY2(isKnownMix, qPrintable(m.name));
    }
}

void tst_referenceTables::wrongCounts_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<bool>("more");
    QTest::addColumn<QString>("error");
    const QString machines = QStringLiteral("machines.csv");
    const QString cores = QStringLiteral("microarchitectures.csv");
    const QString calibration = QStringLiteral("calibration-machine.csv");
    QTest::newRow("a machine less") << machines << false << "machines.csv: 166 rows instead of 167";
    QTest::newRow("a machine more") << machines << true << "machines.csv: 168 rows instead of 167";
    QTest::newRow("a core less") << cores << false
                                 << "microarchitectures.csv: 72 rows instead of 73";
    QTest::newRow("no calibration machine")
        << calibration << false << "calibration-machine.csv: 0 rows instead of 1";
    QTest::newRow("two calibration machines")
        << calibration << true << "calibration-machine.csv: 2 rows instead of 1";
}

void tst_referenceTables::wrongCounts()
{
    QFETCH(QString, table);
    QFETCH(bool, more);
    QTemporaryDir copy;
    for (const QFileInfo &file : QDir(tablesDirectory()).entryInfoList(QDir::Files))
        QVERIFY(QFile::copy(file.filePath(), copy.filePath(file.fileName())));
    QFile source(QDir(tablesDirectory()).filePath(table));
    QVERIFY(source.open(QFile::ReadOnly));
    QByteArray content = source.readAll();
    const int lastRow = content.lastIndexOf('\n', -2) + 1;
    content = more ? content + content.mid(lastRow) : content.left(lastRow);
    QVERIFY(QFile::remove(copy.filePath(table)));
    QFile changed(copy.filePath(table));
    QVERIFY(changed.open(QFile::WriteOnly));
    QCOMPARE(changed.write(content), qint64(content.size()));
    changed.close();

    QTEST(errorOf(readTables(copy.path())), "error");
}

void tst_referenceTables::missingTable_data()
{
    QTest::addColumn<QString>("table");
    for (const char *name : {"machines.csv", "microarchitectures.csv", "other-cores.csv",
                             "calibration-machine.csv", "calibration.csv"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_referenceTables::missingTable()
{
    QFETCH(QString, table);
    QTemporaryDir copy;
    for (const QFileInfo &file : QDir(tablesDirectory()).entryInfoList(QDir::Files)) {
        if (file.fileName() != table)
            QVERIFY(QFile::copy(file.filePath(), copy.filePath(file.fileName())));
    }
    QCOMPARE(errorOf(readTables(copy.path())), QStringLiteral("%1 is empty or missing").arg(table));
}

QTEST_GUILESS_MAIN(tst_referenceTables)
#include "tst_referenceTables.moc"
