// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"
#include "engine/processorInfo.h"

#include <QByteArray>
#include <QString>
#include <QVector>

/// Answers what this machine is. It keeps no state and asks anew each time.
class machineProbe
{
public:
    /// The one object of the process, made on first use.
    static const machineProbe &instance();

    /// A probe that takes its answers about the processor from elsewhere, for tests.
    using source = processorInfo (*)();
    explicit machineProbe(source processorSource);

    /// The number of threads that the multi-core tests use.
    int getThreadCount() const;
    /// One byte per thread, 1 for an available one.
    QByteArray getThreadMap() const;
    /// The processor's name up to the first at sign, or "unknown". Makers write the clock behind
    /// the sign; the blank in front of it stays, since stored results carry it.
    QString getProcessorName() const;
    /// The nominal clock in Hz: one entry, or none if the platform does not know it.
    QVector<float> getFrequencies() const;
    /// The present clock of each core in kHz, 0 for a suspended one. No source for it is read so
    /// far, so the list is empty.
    QVector<float> getCoreClocks() const;
    /// The record of this machine, without results. Its name is the environment's COMPUTERNAME.
    benchResults record() const;

private:
    source readProcessor;
};
