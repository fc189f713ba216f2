// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/requests.h"
#include "cli/testChoice.h"
#include "engine/outcome.h"

class QCommandLineParser;

/// The options of a run, as @p parser has read them. An error says which one makes no sense.
outcome<runRequest> readRunOptions(const QCommandLineParser &parser,
                                   const std::vector<listedTest> &tests,
                                   const QStringList &resolutionNames);

/// Where the run is written to.
outcome<outputFiles> readOutputFiles(const QCommandLineParser &parser);
