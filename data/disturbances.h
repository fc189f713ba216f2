// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/buildFacts.h"
#include "engine/machineContext.h"

#include <QString>

#include <vector>

/// Something that moves results, or keeps them from being compared.
struct disturbance {
    enum reason {
        debugBuild,
        sanitizerBuild,
        secondInstance,
        onBattery,
        powersaveGovernor,
        busyMachine,
        environmentSettings,
        boostOff,
        virtualMachine,
        hugePages,
    };
    enum weight {
        warning, ///< the numbers are not to be trusted while it lasts
        note     ///< the numbers are right, and it helps to know it when they are compared
    };

    reason why = debugBuild;
    weight how = warning;
    QString sentence; ///< in the form of an outcome's: a lower-case start, no full stop
    QString remedy;   ///< what to do about it, in the same form
};

/// The word of @p why in what programs read, such as "debug-build". It never changes.
QString reasonWord(disturbance::reason why);

/// @p one as a line for people: what is wrong, and what to do about it.
QString warningText(const disturbance &one);

/// The load from which on a machine of @p threads processors is too busy to be measured.
/// What others use is missing in the multi-core tests, which use all processors; a tenth of them is
/// more than a good result varies by. On a machine that does nothing the average still wanders
/// within some tenths, so a few processors tell nothing below a quarter.
double busyLoad(int threads);

/// What disturbs a measurement on this machine, the worst first: each reason once at most.
/// @p moment is that of the start, and @p isOtherRunning whether another instance measures.
std::vector<disturbance> disturbancesOf(const machineContext &context, const machineMoment &moment,
                                        const buildFacts &build, int threads, bool isOtherRunning);
