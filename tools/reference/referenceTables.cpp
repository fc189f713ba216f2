// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/referenceTables.h"

#include "tools/reference/csvTable.h"

#include <QDir>
#include <QFile>

namespace reference
{

namespace
{

const QString coresName = QStringLiteral("microarchitectures.csv");
const QString machinesName = QStringLiteral("machines.csv");
const QString othersName = QStringLiteral("other-cores.csv");
const QString calibratedName = QStringLiteral("calibration-machine.csv");
const QString calibrationName = QStringLiteral("calibration.csv");

/// @p rows if there are as many as expected.
template <typename Rows>
outcome<Rows> counted(const outcome<Rows> &rows, const QString &name, int expected)
{
    if (!rows || rows->size() == expected)
        return rows;
    return failure(QStringLiteral("%1: %2 rows instead of %3")
                       .arg(name, QString::number(rows->size()), QString::number(expected)));
}

core coreOf(csvRow &row)
{
    core c;
    c.name = row.text("microarchitecture");
    c.year = row.count("year", 1990, 2100);
    c.isa = row.text("isa");
    c.integerRate = row.number("int_ipc", 0.01, 10);
    c.multiplyLatency = row.number("fp_mul_latency", 1, 100);
    c.addLatency = row.number("fp_add_latency", 1, 100);
    c.divideLatency = row.number("fp_div_latency", 1, 100);
    c.rootInterval = row.number("fp_sqrt_throughput", 0.5, 100);
    c.loadsPerCycle = row.number("load_ipc", 0.5, 10);
    c.branchPenalty = row.number("branch_penalty", 1, 100);
    c.threadGain = row.number("smt_gain", 1, 2);
    c.streamShare = row.number("stream_efficiency", 0.01, 1);
    return c;
}

machine machineOf(csvRow &row)
{
    machine m;
    m.name = row.text("name");
    m.os = row.text("os");
    m.cpu = row.text("cpu");
    m.coreName = row.text("microarchitecture");
    m.cores = row.count("cores", 1, 1024);
    m.threads = row.count("threads", m.cores, 2 * m.cores);
    m.nominalMhz = row.number("nominal_mhz", 100, 10000);
    m.boostMhz = row.number("boost_mhz", m.nominalMhz, 10000);
    m.bandwidth = row.number("mem_gbps", 0.1, 10000);
    if (m.os != QLatin1String("windows") && m.os != QLatin1String("linux")
        && m.os != QLatin1String("android"))
        row.fail(QStringLiteral("os is '%1'").arg(m.os));
    return m;
}

void requireCore(csvRow &row, const QMap<QString, core> &cores)
{
    const QString name = row.text("microarchitecture");
    if (!cores.contains(name))
        row.fail(QStringLiteral("unknown microarchitecture '%1'").arg(name));
}

/// The number of cores of the machines with processor @p cpu; 0 if there is no such machine.
int coresOf(const QString &cpu, const QVector<machine> &machines)
{
    for (const machine &m : machines) {
        if (m.cpu == cpu)
            return m.cores;
    }
    return 0;
}

QByteArray contentOf(const QDir &directory, const QString &name)
{
    QFile file(directory.filePath(name));
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

outcome<QMap<QString, core>> readCores(const QByteArray &csv)
{
    QMap<QString, core> cores;
    return readRows(coresName, csv,
                    QStringLiteral("microarchitecture,year,isa,int_ipc,fp_mul_latency,"
                                   "fp_add_latency,fp_div_latency,fp_sqrt_throughput,load_ipc,"
                                   "branch_penalty,smt_gain,stream_efficiency"),
                    [&cores](csvRow &row) {
                        const core c = coreOf(row);
                        if (cores.contains(c.name))
                            row.fail(QStringLiteral("duplicate '%1'").arg(c.name));
                        cores.insert(c.name, c);
                    })
        .map([&cores] { return cores; });
}

outcome<QVector<machine>> readMachines(const QString &name, const QByteArray &csv,
                                       const QMap<QString, core> &cores)
{
    QVector<machine> machines;
    return readRows(name, csv,
                    QStringLiteral("name,os,cpu,microarchitecture,cores,threads,nominal_mhz,"
                                   "boost_mhz,mem_gbps"),
                    [&](csvRow &row) {
                        machines.append(machineOf(row));
                        requireCore(row, cores);
                    })
        .map([&machines] { return machines; });
}

outcome<QMap<QString, QVector<otherCores>>> readOtherCores(const QByteArray &csv,
                                                           const tables &known)
{
    QMap<QString, QVector<otherCores>> others;
    QMap<QString, int> counts;
    return readRows(
               othersName, csv, QStringLiteral("cpu,microarchitecture,cores,mhz"),
               [&](csvRow &row) {
                   const QString cpu = row.text("cpu");
                   const otherCores group = {row.text("microarchitecture"),
                                             row.count("cores", 1, 1024),
                                             row.number("mhz", 100, 10000)};
                   requireCore(row, known.cores);
                   counts[cpu] += group.count;
                   if (counts.value(cpu) >= coresOf(cpu, known.machines))
                       row.fail(
                           QStringLiteral("no machine with cpu '%1' has a big core left").arg(cpu));
                   others[cpu].append(group);
               })
        .map([&others] { return others; });
}

outcome<QVector<measuredResult>> readCalibration(const QByteArray &csv)
{
    QVector<measuredResult> results;
    return readRows(calibrationName, csv, QStringLiteral("test,result"),
                    [&results](csvRow &row) {
                        results.append({row.text("test"), row.number("result", 1e-6, 1e6)});
                    })
        .map([&results] { return results; });
}

outcome<tables> readTables(const QString &directory)
{
    const QDir from(directory);
    tables read;
    QVector<machine> calibrated;
    QString error;
    const auto take = [&error](const auto &result, auto &into) {
        if (result) {
            into = *result;
        } else {
            error = result.error();
        }
        return result.has_value();
    };
    const bool isComplete =
        take(counted(readCores(contentOf(from, coresName)), coresName, coreCount), read.cores)
        && take(counted(readMachines(machinesName, contentOf(from, machinesName), read.cores),
                        machinesName, machineCount),
                read.machines)
        && take(readOtherCores(contentOf(from, othersName), read), read.others)
        && take(counted(readMachines(calibratedName, contentOf(from, calibratedName), read.cores),
                        calibratedName, 1),
                calibrated)
        && take(readCalibration(contentOf(from, calibrationName)), read.calibration);
    if (!isComplete)
        return failure(error);
    read.calibrationMachine = calibrated.first();
    return read;
}

} // namespace reference
