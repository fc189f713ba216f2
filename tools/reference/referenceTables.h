// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVector>

namespace reference
{

/// What the model knows about a processor core. Latencies and penalties are in cycles.
struct core {
    QString name;
    int year = 0;
    QString isa;
    /// Scalar integer work per clock, relative to Skylake.
    double integerRate = 0;
    double multiplyLatency = 0;
    double addLatency = 0;
    double divideLatency = 0;
    /// Reciprocal throughput of square roots: cycles from the start of one to the start of the
    /// next.
    double rootInterval = 0;
    double loadsPerCycle = 0;
    double branchPenalty = 0;
    /// Throughput with both hardware threads busy, relative to one.
    double threadGain = 0;
    /// Share of the machine's memory bandwidth that one core can use.
    double streamShare = 0;
};

struct machine {
    QString name;
    QString os;
    QString cpu;
    /// Key into tables::cores; names the big core of a hybrid processor.
    QString coreName;
    int cores = 0;
    int threads = 0;
    double nominalMhz = 0;
    double boostMhz = 0;
    /// Peak memory bandwidth in 10^9 bytes per second.
    double bandwidth = 0;
};

/// Cores of a hybrid processor other than its big ones.
struct otherCores {
    QString coreName;
    int count = 0;
    double mhz = 0;
};

/// A result measured on the calibration machine.
struct measuredResult {
    QString test;
    double result = 0;
};

/// The model's input: facts about processors, and the results measured on one machine.
struct tables {
    QMap<QString, core> cores;
    QVector<machine> machines;
    /// Keyed by machine::cpu.
    QMap<QString, QVector<otherCores>> others;
    machine calibrationMachine;
    QVector<measuredResult> calibration;
};

constexpr int machineCount = 167;
constexpr int coreCount = 73;

// Each function reads one table, or returns what is wrong and where.

outcome<QMap<QString, core>> readCores(const QByteArray &csv);
outcome<QVector<machine>> readMachines(const QString &name, const QByteArray &csv,
                                       const QMap<QString, core> &cores);
/// @p known holds the cores and machines.
outcome<QMap<QString, QVector<otherCores>>> readOtherCores(const QByteArray &csv,
                                                           const tables &known);
outcome<QVector<measuredResult>> readCalibration(const QByteArray &csv);

/// Reads all tables in @p directory.
outcome<tables> readTables(const QString &directory);

} // namespace reference
