// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVector>

namespace reference
{

/// What the model knows of a processor core. Latencies and penalties are in cycles.
struct core {
    QString name;
    int year = 0;
    QString isa;
    /// Scalar integer work per clock, in that of a Skylake core.
    double integerRate = 0;
    double multiplyLatency = 0;
    double addLatency = 0;
    double divideLatency = 0;
    /// From the start of a square root to that of the next.
    double rootInterval = 0;
    double loadsPerCycle = 0;
    double branchPenalty = 0;
    /// Throughput with both threads of a core busy, in that with one.
    double threadGain = 0;
    /// The share of the machine's bandwidth that one core can use.
    double streamShare = 0;
};

struct machine {
    QString name;
    QString os;
    QString cpu;
    /// A key of the cores; the big core where there are several kinds.
    QString coreName;
    int cores = 0;
    int threads = 0;
    double nominalMhz = 0;
    double boostMhz = 0;
    /// 10^9 bytes per second.
    double bandwidth = 0;
};

/// Cores of a processor that are not its big ones.
struct otherCores {
    QString coreName;
    int count = 0;
    double mhz = 0;
};

/// A result that was measured on the calibration machine.
struct measuredResult {
    QString test;
    double result = 0;
};

/// What the model computes from: facts, and the measured results of one machine.
struct tables {
    QMap<QString, core> cores;
    QVector<machine> machines;
    /// By the processor's name.
    QMap<QString, QVector<otherCores>> others;
    machine calibrationMachine;
    QVector<measuredResult> calibration;
};

constexpr int machineCount = 167;
constexpr int coreCount = 73;

// Each function reads one table. On a fault, error says what and where.

QMap<QString, core> readCores(const QByteArray &csv, QString &error);
QVector<machine> readMachines(const QString &name, const QByteArray &csv,
                              const QMap<QString, core> &cores, QString &error);
QMap<QString, QVector<otherCores>> readOtherCores(const QByteArray &csv, const tables &known,
                                                  QString &error);
QVector<measuredResult> readCalibration(const QByteArray &csv, QString &error);

/// Reads all tables in @p directory. False on a fault, which @p error tells.
bool readTables(const QString &directory, tables &read, QString &error);

} // namespace reference
