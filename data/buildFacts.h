// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What the programs of a run were built with. What is not known is empty.
struct buildFacts {
    QString version;         ///< Fennick's
    QString compiler;        ///< its name, such as "GNU"
    QString compilerVersion; ///< as the compiler gives it
    QString buildType;       ///< "Release", "Debug", ...
    QString measuredFlags;   ///< what the workloads were compiled with, in one line
    QString workloadDigest;  ///< SHA-256 of the machine code of the workloads, in hexadecimal
    bool isSanitized = false;
};

/// This build. Its digest is that of the code and the constants of the workloads, so two builds of
/// the same sources with the same compiler and flags have the same one, wherever they were built.
buildFacts thisBuild();
