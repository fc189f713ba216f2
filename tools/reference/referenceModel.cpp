// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/referenceModel.h"

#include <algorithm>

namespace reference
{

namespace
{

constexpr double million = 1e6;
constexpr double thousand = 1e3;

// The constants below are explained in docs/reference-model.md.

/// Instructions per clock of a core with an integer rate of 1 in a loop without waits.
constexpr double sustainedInstructions = 3.4;
/// What the system takes to hand out a page and to clear it, in cycles.
constexpr double cyclesPerNewPage = 2000;
/// How far all cores together stay below the boost clock, as a share of the way to nominal.
constexpr double allCoreDrop = 0.2;
/// What a core is worth while the other one of its module is busy too.
constexpr double moduleShare = 0.9;
/// The share of the peak bandwidth that all cores together reach.
constexpr double reachableBandwidth = 0.8;

bool isArm(const core &c)
{
    return c.isa.startsWith(QLatin1String("arm"));
}

/// Two cores of these share a front end and a floating-point unit.
bool isModule(const core &c)
{
    static const QVector<QString> modules = {
        QStringLiteral("Bulldozer"), QStringLiteral("Piledriver"), QStringLiteral("Steamroller"),
        QStringLiteral("Excavator")};
    return modules.contains(c.name);
}

/// The clock in MHz with all big cores busy. The table of machines has it for ARM.
double allCoreMhz(const machine &m, const core &big)
{
    return isArm(big) ? m.nominalMhz : m.boostMhz - allCoreDrop * (m.boostMhz - m.nominalMhz);
}

/// Results per second that @p on reaches at @p mhz if memory never makes it wait.
double coreRate(const workload &work, const core &on, double mhz)
{
    return mhz * million / (cyclesPerUnit(work, on) * work.unitsPerResult);
}

double coresBound(const modelledTest &test, const machine &m, const tables &facts)
{
    const double one = coreRate(*test.work, facts.cores.value(m.coreName), m.boostMhz);
    return test.multicore ? one * coreWorth(*test.work, m, facts) : one;
}

const workload &workloadNamed(const char *name)
{
    const QVector<workload> &all = workloads();
    return *std::find_if(all.begin(), all.end(), [name](const workload &work) {
        return QLatin1String(work.name) == QLatin1String(name);
    });
}

/// The test of the same workload on one core.
int singleCoreTwin(int multicoreTest)
{
    const QVector<modelledTest> &tests = modelledTests();
    for (int i = 0; i < tests.size(); ++i) {
        if (tests.at(i).work == tests.at(multicoreTest).work && !tests.at(i).multicore)
            return i;
    }
    return multicoreTest;
}

} // namespace

const QVector<workload> &workloads()
{
    // Instructions, loads and branch misses were counted, see docs/reference-model.md.
    static const QVector<workload> all = {
        {"dithered", million, 22, 3, 0, 0, 1, 0, 0, 0, 0, 8},
        {"linear", million, 103, 9, 0, 0, 1, 0, 0, 0, 0, 8},
        {"last pixel", million, 45, 2, 0, 0, 1, 0, 0, 0, 0, 8},
        {"mandel", million, 509, 42.8, 20.26, 40.52, 0, 20.26, 0, 0.45, 0, 8},
        {"lines", thousand, 23300, 1434, 0, 0, 0, 0, 0, 166, 0, 98200},
        {"motion blur", million, 86.9, 5, 0, 0, 21, 0, 0, 0, 0, 8},
        {"shellsort", million, 9036, 716, 0, 0, 0, 0, 0, 7.1, 0, 0},
        {"rle", million, 11.05, 1.29, 0, 0, 0, 0, 0, 0.064, 4.88e-4, 13.5},
        {"zlib", million, 68.1, 21.4, 0, 0, 0, 0, 0, 0.353, 2.44e-3, 46},
        {"colors", million, 87.1, 3, 0, 0, 0, 0, 4, 0.006, 0, 8},
        {"crc32", million, 184, 4, 0, 0, 88, 0, 0, 0, 0, 4},
        {"vertex", million, 100, 40, 0, 0, 0, 0, 0, 0, 0, 32},
    };
    return all;
}

const QVector<modelledTest> &modelledTests()
{
    const auto test = [](const char *name, const char *work, bool multicore) {
        return modelledTest{QString::fromLatin1(name), &workloadNamed(work), multicore};
    };
    static const QVector<modelledTest> all = {
        test("rotozoom 'dithered'", "dithered", false),
        test("rotozoom 'linear'", "linear", false),
        test("rotozoom 'linear (multicore)'", "linear", true),
        test("rotozoom 'last pixel'", "last pixel", false),
        test("rotozoom 'last pixel (multicore)'", "last pixel", true),
        test("mandel", "mandel", false),
        test("mandel (multicore)", "mandel", true),
        test("lines", "lines", false),
        test("motion blur", "motion blur", false),
        test("shellsort", "shellsort", false),
        test("rle compress/uncompress", "rle", false),
        test("zlib uncompress", "zlib", false),
        test("colors ", "colors", false),
        test("colors  (multicore)", "colors", true),
        test("crc32 bitwise", "crc32", false),
        test("crc32 bitwise (multicore)", "crc32", true),
        test("vertex", "vertex", false),
        test("vertex (multicore)", "vertex", true),
    };
    return all;
}

double cyclesPerUnit(const workload &work, const core &on)
{
    const double issue = work.instructions / (sustainedInstructions * on.integerRate);
    const double chain = work.chainMultiplications * on.multiplyLatency
                         + work.chainAdditions * on.addLatency + work.chainCycles;
    const double loads = work.loads / on.loadsPerCycle;
    // Divisions that do not wait for each other follow as closely as roots, which use the same
    // unit.
    const double divideInterval = std::min(on.divideLatency, on.rootInterval);
    const double divider = work.divisions * divideInterval + work.roots * on.rootInterval;
    return std::max({issue, chain, loads, divider}) + work.branchMisses * on.branchPenalty
           + work.newPages * cyclesPerNewPage;
}

double coreWorth(const workload &work, const machine &m, const tables &facts)
{
    const core big = facts.cores.value(m.coreName);
    const double alone = coreRate(work, big, m.boostMhz);
    const bool allHaveTwoThreads = m.threads == 2 * m.cores;
    int bigCores = m.cores;
    double worth = 0;
    for (const otherCores &group : facts.others.value(m.cpu)) {
        const core other = facts.cores.value(group.coreName);
        const double gain = allHaveTwoThreads ? other.threadGain : 1.0;
        worth += group.count * gain * coreRate(work, other, group.mhz) / alone;
        bigCores -= group.count;
    }
    const double gain = m.threads > m.cores ? big.threadGain : 1.0;
    const double share = isModule(big) ? moduleShare : 1.0;
    return worth + bigCores * gain * share * allCoreMhz(m, big) / m.boostMhz;
}

double memoryBound(const modelledTest &test, const machine &m, const tables &facts)
{
    if (!(test.work->bytes > 0))
        return 1e30;
    const double one = facts.cores.value(m.coreName).streamShare * m.bandwidth;
    const double all = std::max(one, std::min(one * m.cores, reachableBandwidth * m.bandwidth));
    const double bytesPerSecond = (test.multicore ? all : one) * 1e9;
    return bytesPerSecond / (test.work->bytes * test.work->unitsPerResult);
}

double modelled(const modelledTest &test, const machine &m, const tables &facts)
{
    return std::min(coresBound(test, m, facts), memoryBound(test, m, facts));
}

QVector<double> calibrationFactors(const tables &facts, QString &error)
{
    const QVector<modelledTest> &tests = modelledTests();
    QVector<double> factors;
    for (int i = 0; i < tests.size(); ++i) {
        if (i >= facts.calibration.size() || facts.calibration.at(i).test != tests.at(i).name) {
            error = QStringLiteral("calibration.csv, line %1: not the result of '%2'")
                        .arg(QString::number(i + 2), tests.at(i).name);
            return {};
        }
        factors.append(facts.calibration.at(i).result
                       / modelled(tests.at(i), facts.calibrationMachine, facts));
    }
    if (facts.calibration.size() != tests.size()) {
        error = QStringLiteral("calibration.csv: more results than tests");
        return {};
    }
    // Two cores are not more than twice as fast as one: what is above is the noise of the two
    // measurements, and must not reach machines with many cores.
    for (int i = 0; i < tests.size(); ++i) {
        if (tests.at(i).multicore)
            factors[i] = std::min(factors.at(i), factors.at(singleCoreTwin(i)));
    }
    return factors;
}

double estimate(const modelledTest &test, const machine &m, const tables &facts, double factor)
{
    return std::min(factor * modelled(test, m, facts), memoryBound(test, m, facts));
}

} // namespace reference
