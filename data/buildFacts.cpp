// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/buildFacts.h"

namespace generated
{

/// Made from the objects of the workloads by cmake/workloadDigest.cmake; empty where there are no
/// tools for it.
extern const char *const workloadDigest;

} // namespace generated

buildFacts thisBuild()
{
    buildFacts facts;
    facts.version = QStringLiteral(FENNICK_VERSION);
    facts.compiler = QStringLiteral(FENNICK_COMPILER);
    facts.compilerVersion = QStringLiteral(FENNICK_COMPILER_VERSION);
    facts.buildType = QStringLiteral(FENNICK_BUILD_TYPE);
    // Options that belong together carry a mark that is CMake's alone.
    facts.measuredFlags =
        QStringLiteral(FENNICK_MEASURED_FLAGS).remove(QStringLiteral("SHELL:")).simplified();
    facts.workloadDigest = QString::fromLatin1(generated::workloadDigest);
    facts.isSanitized = facts.measuredFlags.contains(QStringLiteral("-fsanitize="));
    return facts;
}
