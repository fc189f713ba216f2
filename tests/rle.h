// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/codecTest.h"
#include "tests/workloadFacts.h"

/// Run-length encodes a large tiled picture and decodes it again.
///
/// A run of three or more equal words is written as marker, length - 1, word. A marker in the input
/// is written as marker, 1, marker and so comes back as two: the format is that way, and the data
/// of the test hold no marker.
class rle : public codecTest
{
public:
    rle();

    QString getName() const override { return QStringLiteral("rle compress/uncompress"); }
    void run() override;
    float getWork() const override { return megawords() * 2.0F; }

    /// Encodes @p length words and returns the number of words written: at most three for each
    /// marker and one for every other word.
    static std::size_t encode(quint32 *out, const quint32 *in, std::size_t length, quint32 marker);
    /// Decodes @p length words. A marker among the last two is a literal; a stored length of
    /// 0xFFFFFFFF stands for an empty run.
    static void decode(quint32 *out, const quint32 *in, std::size_t length, quint32 marker);
};

namespace rleFacts
{

inline constexpr auto loops = std::to_array<machineLoop>({
    // Two innermost loops of the coder hold one pass over the words each; calls would be of
    // memset and the like.
    {"rle::encode", {{{"cmp", 1, -1}, {"call.*|rep.*"}}}},
    {"rle::decode", {{{"cmp", 1, -1}, {"call.*|rep.*"}}}},
});
inline constexpr machineCode code = {"rle", loops};

inline constexpr workloadFacts facts = {
    "MWords",
    "Run-length encodes a large picture and decodes it again. A few simple instructions per "
    "word: branches, streaming through memory, and first touches of new pages.",
    {.instructions = 11.05,
     .loads = 1.29,
     .branchMisses = 0.064,
     .newPages = 4.88e-4,
     .bytes = 13.5},
    loopSchedule::none,
    code,
};

} // namespace rleFacts
