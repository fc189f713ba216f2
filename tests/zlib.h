// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/codecTest.h"
#include "tests/workloadFacts.h"

#include <QByteArray>

/// Decompresses a large tiled picture, which is compressed afresh before each timed run.
class zlib : public codecTest
{
public:
    zlib();

    QString getName() const override { return QStringLiteral("zlib uncompress"); }
    void preRun() override;
    void run() override;
    float getWork() const override { return megawords(); }

    /// Decompresses @p packedBytes, a big-endian length of four bytes and a zlib stream (RFC 1950),
    /// and copies the result to @p out. Returns the number of bytes copied, 0 if it cannot be
    /// decompressed.
    static int unpack(char *out, const QByteArray &packedBytes);
};

namespace zlibFacts
{

inline constexpr auto loops = std::to_array<machineLoop>({
    // One comparison to end the loop, and none for an assertion.
    {"zlib::unpack", {{{"movzb.*|movb", 1, 1}, {"mov", 1, -1}, {"cmp", 1, 1}, {"call.*"}}}},
});
inline constexpr machineCode code = {"zlib", loops};

inline constexpr workloadFacts facts = {
    "MWords",
    "Decompresses a large picture with zlib and copies it byte by byte. Branches, table "
    "lookups and fresh memory: the work of most file formats.",
    {.instructions = 68.1, .loads = 21.4, .branchMisses = 0.353, .newPages = 2.44e-3, .bytes = 46},
    loopSchedule::none,
    code,
};

} // namespace zlibFacts
