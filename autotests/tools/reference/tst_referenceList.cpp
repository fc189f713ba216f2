// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchXml.h"
#include "data/estimate.h"
#include "tools/reference/coreFamilies.h"
#include "tools/reference/referenceList.h"
#include "tools/reference/referenceModel.h"

#include <QFile>
#include <QRegularExpression>
#include <QtTest>

#include <algorithm>
#include <cmath>

using namespace reference;

namespace
{

/// The bytes that one unit of a test moves at least between a core and a memory that is larger than
/// the caches, and the units that a result of 1 stands for. Pixels are written, and read before.
double bytesPerResult(const QString &test)
{
    const double million = 1e6;
    if (test.startsWith(QLatin1String("crc32")) || test.startsWith(QLatin1String("rle")))
        return 4 * million;
    if (test.startsWith(QLatin1String("vertex")))
        return 32 * million;
    // 732 rows of a line on the average, in each of them a line of the cache, read and written.
    if (test == QLatin1String("lines"))
        return 732 * 128 * 1000.0;
    if (test == QLatin1String("shellsort"))
        return 0;
    return 8 * million;
}

/// The cores of @p m. Of a processor that mixes kinds of cores, one of another kind counts as its
/// clock times its integer work per clock, and a big one of ARM as the clock with all of them busy,
/// both in those of a big core alone.
double countedCores(const machine &m, const tables &facts)
{
    if (!facts.others.contains(m.cpu))
        return m.cores;
    const core big = facts.cores.value(m.coreName);
    double bigCores = m.cores;
    double counted = 0;
    for (const otherCores &group : facts.others.value(m.cpu)) {
        const double work = facts.cores.value(group.coreName).integerRate / big.integerRate;
        counted += group.count * work * group.mhz / m.boostMhz;
        bigCores -= group.count;
    }
    const bool isArm = big.isa.startsWith(QLatin1String("arm"));
    return counted + (isArm ? bigCores * m.nominalMhz / m.boostMhz : bigCores);
}

/// A pair of cores of which the later one is slower in a test, for a reason the tables give.
struct exception {
    const char *test;
    const char *later;
};

constexpr exception slowerCores[] = {
    {"mandel", "Nehalem"},     // a root or division takes 18 cycles instead of 12
    {"colors ", "Nehalem"},    // the same
    {"mandel", "Haswell"},     // a branch miss takes 17 cycles instead of 16
    {"mandel", "Skylake"},     // sums and products take 4 cycles each instead of 3
    {"mandel", "Goldmont"},    // a root or division takes 19 cycles instead of 18
    {"colors ", "Goldmont"},   // the same
    {"colors ", "Jaguar"},     // a root takes 16 cycles instead of 14
    {"mandel", "Zen 5"},       // a branch miss takes 15 cycles instead of 13
    {"colors ", "Cortex-A15"}, // a root takes 17 cycles instead of 13
    {"colors ", "Exynos M3"},  // a root takes 19 cycles instead of 9
};

bool isException(const QString &test, const QString &later)
{
    return std::any_of(std::begin(slowerCores), std::end(slowerCores), [&](const exception &e) {
        return test == QLatin1String(e.test) && later == QLatin1String(e.later);
    });
}

} // namespace

class tst_referenceList : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void madeAgain();
    void form();
    void everyMachine();
    void allResultsPositive();
    void multicoreGain();
    void newerCoresNotSlower();
    void noResultAboveTheBandwidth();

    void familiesHoldAllCores();

private:
    double listed(int machineIndex, const QString &test) const;

    tables facts;
    QByteArray embedded;
    /// The embedded list as the programs read it.
    QVector<benchResults> list;
};

void tst_referenceList::initTestCase()
{
    const auto read = readTables(QStringLiteral(FENNICK_SOURCE_DIR "/tools/reference/tables"));
    QVERIFY2(read, qPrintable(read ? QString() : read.error()));
    facts = *read;
    QFile file(QStringLiteral(":/data/benches.xml"));
    QVERIFY(file.open(QFile::ReadOnly));
    embedded = file.readAll();
    file.seek(0);
    ::readMachines(file, list);
    QCOMPARE(list.size(), 167);
}

double tst_referenceList::listed(int machineIndex, const QString &test) const
{
    return static_cast<double>(list.at(machineIndex).getTests().value(test).value);
}

void tst_referenceList::madeAgain()
{
    const auto computed = machineList(facts);
    QVERIFY2(computed, qPrintable(computed ? QString() : computed.error()));
    const QByteArray &made = *computed;
    const QList<QByteArray> madeLines = made.split('\n');
    const QList<QByteArray> lines = embedded.split('\n');
    for (int i = 0; i < std::min(madeLines.size(), lines.size()); ++i)
        QCOMPARE(madeLines.at(i), lines.at(i));
    QCOMPARE(made.size(), embedded.size());
}

/// Every line of the file has one of these forms, and ends with CR LF.
void tst_referenceList::form()
{
    const QRegularExpression machineLine(QStringLiteral(
        "^        <bench machineName=\"[^\"]+ \\(est\\.\\)\" os=\"(windows|linux|android)\" "
        "cpu=\"[^\"]+\" clock=\"[1-9][0-9]{8,9}\" threadCount=\"[1-9][0-9]*\">$"));
    const QRegularExpression testLine(
        QStringLiteral("^                <test name=\"[^\"]+\" result=\"([0-9]+\\.?[0-9]*)\"/>$"));
    QVERIFY(embedded.startsWith("<!-- Modelled estimates, not measured results: "));
    QVERIFY(embedded.endsWith("</Fennick>\r\n"));
    QCOMPARE(embedded.count("\r\n"), embedded.count('\n'));
    const QStringList lines = QString::fromUtf8(embedded).split(QStringLiteral("\r\n"));
    QCOMPARE(lines.size(), 167 * 20 + 4);
    QCOMPARE(lines.at(1), QStringLiteral("<Fennick>"));
    for (int m = 0; m < 167; ++m) {
        const int first = 2 + 20 * m;
        QVERIFY2(machineLine.match(lines.at(first)).hasMatch(), qPrintable(lines.at(first)));
        for (int i = 1; i <= 18; ++i) {
            const QRegularExpressionMatch match = testLine.match(lines.at(first + i));
            QVERIFY2(match.hasMatch(), qPrintable(lines.at(first + i)));
            QString digits = match.captured(1).remove(QLatin1Char('.'));
            while (digits.startsWith(QLatin1Char('0')))
                digits.remove(0, 1);
            QVERIFY2(digits.size() <= 6, qPrintable(lines.at(first + i)));
        }
        QCOMPARE(lines.at(first + 19), QStringLiteral("        </bench>"));
    }
}

void tst_referenceList::everyMachine()
{
    QStringList names;
    for (const modelledTest &test : modelledTests())
        names.append(test.name);
    names.sort();
    for (int i = 0; i < list.size(); ++i) {
        const machine &m = facts.machines.at(i);
        QCOMPARE(list.at(i).getName(), m.name + QStringLiteral(" (est.)"));
        QVERIFY(isEstimate(list.at(i).getName()));
        QCOMPARE(list.at(i).getOs(), m.os);
        QCOMPARE(list.at(i).getCpu(), m.cpu);
        QCOMPARE(list.at(i).getFrequency(), static_cast<float>(m.nominalMhz * 1e6));
        QCOMPARE(list.at(i).getThreads(), m.threads);
        QCOMPARE(QStringList(list.at(i).getTests().keys()), names);
        const QByteArray clock = QByteArray::number(m.nominalMhz, 'f', 0) + "000000";
        QVERIFY2(embedded.contains("cpu=\"" + m.cpu.toUtf8() + "\" clock=\"" + clock + '"'),
                 qPrintable(m.name));
    }
}

void tst_referenceList::allResultsPositive()
{
    for (const benchResults &machine : list) {
        for (const benchResults::test &test : machine.getTests())
            QVERIFY2(std::isfinite(test.value) && test.value > 0, qPrintable(machine.getName()));
    }
}

/// All cores together against one, where the bandwidth that they need together is less than half of
/// the machine's: 0.8 to 1.4 times the number of cores. Where a processor mixes kinds of cores, the
/// lower bound counts a small one as what it is worth in integer work.
void tst_referenceList::multicoreGain()
{
    const QString suffix = QStringLiteral("(multicore)");
    int pairs = 0;
    for (int i = 0; i < list.size(); ++i) {
        const machine &m = facts.machines.at(i);
        const double lowest = 0.8 * countedCores(m, facts);
        for (int multi = 1; multi < modelledTests().size(); ++multi) {
            const QString name = modelledTests().at(multi).name;
            if (!name.contains(suffix))
                continue;
            const double all = listed(i, name);
            if (all * bytesPerResult(name) > 0.5e9 * m.bandwidth)
                continue;
            const double gain = all / listed(i, modelledTests().at(multi - 1).name);
            const QString what =
                QStringLiteral("%1, %2: %3").arg(m.name, name, QString::number(gain));
            QVERIFY2(gain >= lowest && gain <= 1.4 * m.cores, qPrintable(what));
            ++pairs;
        }
    }
    // mandel and crc32 need next to no bandwidth, so at least these were looked at.
    QVERIFY2(pairs >= 2 * 167, qPrintable(QString::number(pairs)));
}

/// The best result per clock of each core in each test that memory does not limit.
void tst_referenceList::newerCoresNotSlower()
{
    int steps = 0;
    QSet<QString> exceptions;
    for (const modelledTest &test : modelledTests()) {
        if (test.multicore || test.name == QLatin1String("lines"))
            continue;
        QMap<QString, double> perClock;
        for (int i = 0; i < list.size(); ++i) {
            double &best = perClock[facts.machines.at(i).coreName];
            best = std::max(best, listed(i, test.name) / facts.machines.at(i).boostMhz);
        }
        for (const coreFamily &family : coreFamilies()) {
            for (int k = 1; k < family.cores.size(); ++k) {
                const QString later = family.cores.at(k);
                const double before = perClock.value(family.cores.at(k - 1));
                const double after = perClock.value(later);
                QVERIFY2(before > 0 && after > 0, qPrintable(later));
                const bool isSlower = after < before * (1 - 1e-5);
                const QString what = QStringLiteral("%1, %2").arg(test.name, later);
                QVERIFY2(isSlower == isException(test.name, later), qPrintable(what));
                ++steps;
            }
        }
    }
    QVERIFY(steps > 400);
}

void tst_referenceList::noResultAboveTheBandwidth()
{
    for (int i = 0; i < list.size(); ++i) {
        const machine &m = facts.machines.at(i);
        for (const modelledTest &test : modelledTests()) {
            const double used = listed(i, test.name) * bytesPerResult(test.name) * 1e-9;
            const QString what =
                QStringLiteral("%1, %2: %3").arg(m.name, test.name, QString::number(used));
            QVERIFY2(used <= m.bandwidth, qPrintable(what));
        }
    }
}

/// Cores that are in no family differ by their memory alone from one that is.
void tst_referenceList::familiesHoldAllCores()
{
    QSet<QString> held;
    for (const coreFamily &family : coreFamilies()) {
        int year = 0;
        for (const QString &name : family.cores) {
            QVERIFY2(facts.cores.contains(name), qPrintable(name));
            QVERIFY2(facts.cores.value(name).year >= year, qPrintable(name));
            year = facts.cores.value(name).year;
            held.insert(name);
        }
    }
    const QRegularExpression memory(QStringLiteral("(-EP|-SP| EPYC| Threadripper)$"));
    for (const core &c : facts.cores) {
        const QString name = c.name;
        const QString plain = QString(name).remove(memory);
        QVERIFY2(held.contains(name) || (plain != name && held.contains(plain)), qPrintable(name));
        QCOMPARE(c.integerRate, facts.cores.value(plain).integerRate);
    }
}

QTEST_GUILESS_MAIN(tst_referenceList)
#include "tst_referenceList.moc"
