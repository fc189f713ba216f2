// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>

#include <optional>

/// What changes from one moment to the next. What is unknown is absent.
struct machineMoment {
    std::optional<double> loadAverage; ///< of the last minute
    std::optional<double> temperature; ///< of the processor, degrees Celsius
    /// How many processors others keep busy right now; only where that was looked at.
    std::optional<double> othersLoad = std::nullopt;
};

/// What beside its own hardware decides how fast a machine is at the moment. What is unknown is
/// absent, never guessed.
struct machineContext {
    enum powerSource { mains, battery };

    std::optional<QString> governor;        ///< of the processor's clock, such as "powersave"
    std::optional<QString> frequencyDriver; ///< such as "intel_pstate"
    std::optional<bool> boost;              ///< whether the clock may rise above the nominal one
    std::optional<powerSource> power;
    std::optional<QString> virtualMachine; ///< where the system says that it is one: its kind
    std::optional<QString> kernel;         ///< name and release
    std::optional<qint64> pageSize;        ///< bytes
    std::optional<QString> hugePages;      ///< the kernel's setting: "always", "madvise" or "never"
    /// The settings of the environment that move numbers, by their names.
    QMap<QString, QString> environment;
    machineMoment atStart;
    machineMoment atEnd;
};
