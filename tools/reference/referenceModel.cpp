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
double coreRate(const workloadFacts &work, const core &on, double mhz)
{
    return mhz * million / (cyclesPerUnit(work.demand, on) * unitsPerResult(work));
}

double coresBound(const modelledTest &test, const machine &m, const tables &facts)
{
    const double one = coreRate(*test.work, facts.cores.value(m.coreName), m.boostMhz);
    return test.multicore ? one * coreWorth(*test.work, m, facts) : one;
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

const QVector<modelledTest> &modelledTests()
{
    static const QVector<modelledTest> all = [] {
        QVector<modelledTest> tests;
        for (const testFacts &test : suiteFacts()) {
            if (test.isInFullRuns())
                tests.append({QString::fromUtf8(test.name), &test.workload, test.isMulticore()});
        }
        return tests;
    }();
    return all;
}

double unitsPerResult(const workloadFacts &work)
{
    return work.unit[0] == 'K' ? thousand : million;
}

double cyclesPerUnit(const workloadDemand &work, const core &on)
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

double coreWorth(const workloadFacts &work, const machine &m, const tables &facts)
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
    if (!(test.work->demand.bytes > 0))
        return 1e30;
    const double one = facts.cores.value(m.coreName).streamShare * m.bandwidth;
    const double all = std::max(one, std::min(one * m.cores, reachableBandwidth * m.bandwidth));
    const double bytesPerSecond = (test.multicore ? all : one) * 1e9;
    return bytesPerSecond / (test.work->demand.bytes * unitsPerResult(*test.work));
}

double modelled(const modelledTest &test, const machine &m, const tables &facts)
{
    return std::min(coresBound(test, m, facts), memoryBound(test, m, facts));
}

outcome<QVector<double>> calibrationFactors(const tables &facts)
{
    const QVector<modelledTest> &tests = modelledTests();
    QVector<double> factors;
    for (int i = 0; i < tests.size(); ++i) {
        if (i >= facts.calibration.size() || facts.calibration.at(i).test != tests.at(i).name) {
            return failure(QStringLiteral("calibration.csv, line %1: not the result of '%2'")
                               .arg(QString::number(i + 2), tests.at(i).name));
        }
        factors.append(facts.calibration.at(i).result
                       / modelled(tests.at(i), facts.calibrationMachine, facts));
    }
    if (facts.calibration.size() != tests.size())
        return failure(QStringLiteral("calibration.csv: more results than tests"));
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
