// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/compareCommand.h"

#include "cli/commandTable.h"
#include "cli/comparisonText.h"
#include "cli/historyCommand.h"
#include "cli/liveLine.h"
#include "cli/runText.h"
#include "console/standardStreams.h"
#include "data/placing.h"
#include "data/rankedTests.h"
#include "data/runStore.h"
#include "data/runValues.h"
#include "data/visibleText.h"
#include "tests/suite.h"

#include <algorithm>

namespace
{

/// What is said of loading lists is of no interest here.
class silence : public printHook
{
public:
    void print(const QString &) override {}
};

/// The list of machines with the stored results of this one, as far as they are on this machine.
class machineList
{
public:
    machineList()
    {
        QVector<testBase *> pointers;
        for (const auto &test : tests)
            pointers.append(test.get());
        ranked = rankedTestsOf(pointers);
        benchDataAccess access(&silent, pointers);
        access.loadReferenceData(benchDataAccess::normalReference);
        access.loadUserData();
        machines = access.getResults();
    }

    benchResults own() const { return machines.last(); }
    /// The machine whose name or processor is @p text, or the first that holds it, in any case.
    outcome<benchResults> find(const QString &text) const
    {
        const auto hasName = [&](const benchResults &machine) {
            return machine.getName().compare(text, Qt::CaseInsensitive) == 0
                   || machine.getCpu().compare(text, Qt::CaseInsensitive) == 0;
        };
        const auto holds = [&](const benchResults &machine) {
            return machine.getName().contains(text, Qt::CaseInsensitive)
                   || machine.getCpu().contains(text, Qt::CaseInsensitive);
        };
        const auto end = machines.end() - 1;
        auto found = std::find_if(machines.begin(), end, hasName);
        if (found == end)
            found = std::find_if(machines.begin(), end, holds);
        if (found == end)
            return failure(QStringLiteral("no machine of the list is called '%1'").arg(text));
        return *found;
    }
    /// Where @p machine would stand in the list, as one line; nothing for one that lacks results,
    /// whose score is of other tests than everybody's.
    QString placeOf(benchResults machine) const
    {
        machine.setMeasured(true);
        QVector<benchResults> all = machines;
        all.last() = machine;
        ranking::choices wanted;
        wanted.kind = ranking::allTests;
        wanted.mode = ranking::allDevices;
        const auto ordered = ranking::rankedMachines(all, ranked, wanted);
        const ranking::gaps gaps = ranking::gapsOf(ordered, ranked, wanted);
        if (ordered.isEmpty() || gaps.bars > 0 || gaps.results < gaps.tests)
            return {};
        const auto place = placingOf(ordered, wanted.kind);
        if (!place)
            return {};
        return QStringLiteral("B would be number %1 of %2 in the list (combined score)\n")
            .arg(place->place)
            .arg(place->machines);
    }

private:
    silence silent;
    suite tests = makeSuite(nullptr);
    QVector<ranking::rankedTest> ranked;
    QVector<benchResults> machines;
};

/// One side of a comparison.
struct side {
    QString title;
    std::vector<comparedTest> tests;
    benchResults machine;
};

side sideOf(const benchResults &machine, const QString &what)
{
    return {what + machine.describe(benchResults::fullDescription), comparedTestsOf(machine),
            machine};
}

outcome<side> sideOf(const QString &which, const machineList &list)
{
    if (which == QLatin1String("stored")) {
        const side stored = sideOf(list.own(), QStringLiteral("stored results of "));
        if (stored.tests.empty())
            return failure(QStringLiteral("no results are stored yet: a full run stores them"));
        return stored;
    }
    return findRun(which).map([](const runRecord &run) {
        return side{runTitle(run), comparedTestsOf(run), resultsOf(run)};
    });
}

/// The run before the last one, which a comparison without names begins with.
outcome<QString> runBefore()
{
    const QStringList names = runStore::ofUser().names();
    if (names.size() < 2)
        return failure(QStringLiteral("only runs that were kept can be compared, and there are not "
                                      "two yet"));
    return names.at(names.size() - 2);
}

outcome<side> firstSide(const compareRequest &wanted, const machineList &list)
{
    if (!wanted.with.isEmpty()) {
        return list.find(wanted.with).map([](const benchResults &machine) {
            return sideOf(machine, QString());
        });
    }
    if (!wanted.first.isEmpty())
        return sideOf(wanted.first, list);
    return runBefore().and_then([&](const QString &name) { return sideOf(name, list); });
}

outcome<side> secondSide(const compareRequest &wanted, const machineList &list)
{
    return sideOf(wanted.with.isEmpty() ? wanted.second : wanted.first, list);
}

/// The columns there are for a table: those of the terminal, or enough for everything.
int tableColumns()
{
    constexpr int ofFiles = 120;
    const int columns = terminalWidth(stdout);
    return columns > 0 ? columns : ofFiles;
}

} // namespace

exitCode compareCommand(const compareRequest &wanted)
{
    const machineList list;
    const outcome<side> first = firstSide(wanted, list);
    if (!first)
        return complain(consoleRunnerName(), first.error());
    const outcome<side> second = secondSide(wanted, list);
    if (!second)
        return complain(consoleRunnerName(), second.error());
    const runComparison comparison = compared(first->tests, second->tests);
    writeText(comparisonText(comparison, {first->title, second->title}, tableColumns()), stdout);
    if (comparison.tests.empty())
        return complain(consoleRunnerName(), QStringLiteral("the two have no test in common"));
    writeText(list.placeOf(second->machine), stdout);
    return exitSuccess;
}
