// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/frameCheck.h"

#include <cstdlib>
#include <new>
#include <omp.h>

namespace
{

/// Whether the C library draws the random numbers that the frames were made with: those of the GNU
/// C library, which begin like this.
bool drawsKnownNumbers()
{
    std::srand(knownFrameSeed);
    return std::rand() == 1804289383 && std::rand() == 846930886;
}

/// Uses @p count OpenMP threads while it lives; 0 leaves their number as it is.
class chosenThreads
{
public:
    explicit chosenThreads(int count) : before(omp_get_max_threads())
    {
        if (count > 0)
            omp_set_num_threads(count);
    }
    chosenThreads(const chosenThreads &) = delete;
    chosenThreads &operator=(const chosenThreads &) = delete;
    ~chosenThreads() { omp_set_num_threads(before); }

private:
    int before;
};

/// The digest after the rounds, empty if they could not be worked.
QByteArray drawnDigest(testBase &test, const knownFrame &known)
{
    std::srand(knownFrameSeed);
    if (!test.setup(known.width, known.height))
        return {};
    for (int round = 0; round < known.rounds; ++round) {
        test.preRun();
        test.run();
        test.postRun();
    }
    return test.hasFailed() ? QByteArray() : digestOf(test);
}

} // namespace

digestVerdict checkFrame(testBase &test, const knownFrame &known)
{
    const chosenThreads threads(known.threads);
    QByteArray digest;
    try {
        digest = drawnDigest(test, known);
    } catch (const std::bad_alloc &) {
        digest.clear();
    }
    test.release();
    if (digest == known.digest)
        return digestVerdict::right;
    return digest.isEmpty() || !drawsKnownNumbers() ? digestVerdict::cannotTell
                                                    : digestVerdict::wrong;
}

digestVerdict checkFrames(testBase &test, int mostPixels)
{
    const QString name = test.getName();
    auto verdict = digestVerdict::cannotTell;
    for (const knownFrame &known : knownFrames()) {
        if (name != QLatin1String(known.test) || known.width * known.height > mostPixels)
            continue;
        const digestVerdict one = checkFrame(test, known);
        if (one == digestVerdict::wrong)
            return one;
        if (one == digestVerdict::right)
            verdict = one;
    }
    return verdict;
}
