// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/machineContext.h"

#include <QProcessEnvironment>

#include <filesystem>

/// Where the answers about a machine's state come from. Tests bring their own.
struct contextSources {
    /// In front of every file that is read.
    std::filesystem::path root = "/";
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    /// Bytes; the system's, which stands in no file.
    std::optional<qint64> pageSize = systemPageSize();

    static std::optional<qint64> systemPageSize();
};

/// Everything but the two moments. Reads some hundred small files on a large machine, so not while
/// anything is measured. Never fails; what cannot be found, or makes no sense, stays absent.
machineContext readMachineContext(const contextSources &sources = {});

/// What the machine is doing at this moment, the same way.
machineMoment readMachineMoment(const std::filesystem::path &root = "/");
