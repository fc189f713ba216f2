// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/referenceTables.h"

#include "tools/reference/csvTable.h"

#include <QDir>
#include <QFile>

namespace reference
{

namespace
{

QStringList columnsOf(const char *commaSeparated)
{
    return QString::fromLatin1(commaSeparated).split(QLatin1Char(','));
}

void requireCount(const QString &name, int count, int expected, QString &error)
{
    if (error.isEmpty() && count != expected) {
        error = QStringLiteral("%1: %2 rows instead of %3")
                    .arg(name, QString::number(count), QString::number(expected));
    }
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
    if (!columnsOf("windows,linux,android").contains(m.os))
        row.fail(QStringLiteral("os is '%1'").arg(m.os));
    return m;
}

void requireCore(csvRow &row, const QMap<QString, core> &cores)
{
    const QString name = row.text("microarchitecture");
    if (!cores.contains(name))
        row.fail(QStringLiteral("unknown microarchitecture '%1'").arg(name));
}

/// The number of cores that the machines with processor @p cpu have, 0 if there are none.
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

QMap<QString, core> readCores(const QByteArray &csv, QString &error)
{
    const QString name = QStringLiteral("microarchitectures.csv");
    QMap<QString, core> cores;
    for (csvRow row :
         readCsv(name, csv,
                 columnsOf("microarchitecture,year,isa,int_ipc,fp_mul_latency,fp_add_latency,"
                           "fp_div_latency,fp_sqrt_throughput,load_ipc,branch_penalty,smt_gain,"
                           "stream_efficiency"),
                 error)) {
        const core c = coreOf(row);
        if (cores.contains(c.name))
            row.fail(QStringLiteral("'%1' is there twice").arg(c.name));
        if (error.isEmpty())
            error = row.error();
        cores.insert(c.name, c);
    }
    return cores;
}

QVector<machine> readMachines(const QString &name, const QByteArray &csv,
                              const QMap<QString, core> &cores, QString &error)
{
    QVector<machine> machines;
    for (csvRow row : readCsv(name, csv,
                              columnsOf("name,os,cpu,microarchitecture,cores,threads,nominal_mhz,"
                                        "boost_mhz,mem_gbps"),
                              error)) {
        machines.append(machineOf(row));
        requireCore(row, cores);
        if (error.isEmpty())
            error = row.error();
    }
    return machines;
}

QMap<QString, QVector<otherCores>> readOtherCores(const QByteArray &csv, const tables &known,
                                                  QString &error)
{
    QMap<QString, QVector<otherCores>> others;
    QMap<QString, int> counts;
    for (csvRow row : readCsv(QStringLiteral("other-cores.csv"), csv,
                              columnsOf("cpu,microarchitecture,cores,mhz"), error)) {
        const QString cpu = row.text("cpu");
        const otherCores group = {row.text("microarchitecture"), row.count("cores", 1, 1024),
                                  row.number("mhz", 100, 10000)};
        requireCore(row, known.cores);
        counts[cpu] += group.count;
        if (counts.value(cpu) >= coresOf(cpu, known.machines))
            row.fail(QStringLiteral("no machine with cpu '%1' has a core left").arg(cpu));
        if (error.isEmpty())
            error = row.error();
        others[cpu].append(group);
    }
    return others;
}

QVector<measuredResult> readCalibration(const QByteArray &csv, QString &error)
{
    QVector<measuredResult> results;
    for (csvRow row :
         readCsv(QStringLiteral("calibration.csv"), csv, columnsOf("test,result"), error)) {
        results.append({row.text("test"), row.number("result", 1e-6, 1e6)});
        if (error.isEmpty())
            error = row.error();
    }
    return results;
}

bool readTables(const QString &directory, tables &read, QString &error)
{
    const QDir from(directory);
    const QString machinesName = QStringLiteral("machines.csv");
    const QString calibrationName = QStringLiteral("calibration-machine.csv");
    error.clear();
    read.cores = readCores(contentOf(from, QStringLiteral("microarchitectures.csv")), error);
    requireCount(QStringLiteral("microarchitectures.csv"), read.cores.size(), coreCount, error);
    if (!error.isEmpty())
        return false;
    read.machines = readMachines(machinesName, contentOf(from, machinesName), read.cores, error);
    requireCount(machinesName, read.machines.size(), machineCount, error);
    if (!error.isEmpty())
        return false;
    read.others = readOtherCores(contentOf(from, QStringLiteral("other-cores.csv")), read, error);
    if (!error.isEmpty())
        return false;
    const QVector<machine> calibrated =
        readMachines(calibrationName, contentOf(from, calibrationName), read.cores, error);
    requireCount(calibrationName, calibrated.size(), 1, error);
    if (!error.isEmpty())
        return false;
    read.calibrationMachine = calibrated.first();
    read.calibration = readCalibration(contentOf(from, QStringLiteral("calibration.csv")), error);
    return error.isEmpty();
}

} // namespace reference
