// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runText.h"

#include "data/runValues.h"
#include "data/textTable.h"
#include "data/verdict.h"
#include "data/visibleText.h"

#include <algorithm>
#include <functional>

namespace
{

const QString nothing = QStringLiteral("-");

QString dateText(const QDateTime &time)
{
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

QString percent(double share)
{
    return QStringLiteral("%1 %").arg(share * 100, 0, 'f', 1);
}

QString framesText(const testRun &test)
{
    if (!test.frames)
        return {};
    switch (*test.frames) {
    case digestVerdict::right:
        return QStringLiteral(", verified");
    case digestVerdict::wrong:
        return QStringLiteral(", WRONG frames");
    case digestVerdict::cannotTell:
        break;
    }
    return QStringLiteral(", cannot be verified");
}

/// What is said of how a test ended, if it did not by itself.
QString endText(testEnd end)
{
    switch (end) {
    case testEnd::complete:
        return {};
    case testEnd::stopped:
        return QStringLiteral(", stopped");
    case testEnd::failed:
        break;
    }
    return QStringLiteral("no result");
}

QStringList rowOf(const testRun &test, const verdict &found)
{
    const std::optional<double> value = test.value();
    if (!value)
        return {visibleText(test.name),  nothing, QString(), nothing, nothing,
                endText(testEnd::failed)};
    return {visibleText(test.name),
            QString::number(*value, 'g', 6),
            visibleText(test.unit) + QStringLiteral("/s"),
            QString::number(test.rounds.size()),
            found.level == steadiness::tooFewRounds ? nothing : percent(found.rounds.spread()),
            textOf(found.level) + endText(test.end) + framesText(test)};
}

struct judgedTest {
    const testRun &test;
    verdict found;
};

/// The names of those tests that @p isSought is true for, behind @p heading; empty without any.
QString namesOf(const std::vector<judgedTest> &tests, const QString &heading,
                const std::function<bool(const judgedTest &)> &isSought)
{
    QStringList names;
    for (const judgedTest &one : tests) {
        if (isSought(one))
            names.append(visibleText(one.test.name).trimmed());
    }
    names.removeDuplicates();
    return names.isEmpty() ? QString()
                           : heading + QStringLiteral(": ") + names.join(QStringLiteral(", "));
}

bool isSlowerThanOneCore(const judgedTest &one)
{
    const std::vector<remark> &remarks = one.found.remarks;
    return std::any_of(remarks.begin(), remarks.end(), [](const remark &found) {
        return found.kind == remarkKind::slowerThanOneCore;
    });
}

/// The geometric mean of @p run's results in relation to those of @p base.
QString relation(const runRecord &run, const runRecord &base)
{
    std::vector<double> ratios;
    for (const QString &name : testNamesOf(run)) {
        const std::optional<double> own = valueOf(run, name);
        const std::optional<double> other = valueOf(base, name);
        if (own && other && *other > 0)
            ratios.push_back(*own / *other);
    }
    const std::optional<double> mean = geometricMeanOf(ratios);
    return mean ? percent(*mean) : nothing;
}

QString unitOf(const runRecord &run, const QString &name)
{
    const auto test = std::find_if(run.tests.begin(), run.tests.end(),
                                   [&name](const testRun &one) { return one.name == name; });
    return test == run.tests.end() ? QString() : test->unit;
}

QString kindOf(const runRecord &run)
{
    QString kind = run.settings.wanted == runSettings::fullRun ? QStringLiteral("full run")
                                                               : QStringLiteral("tests");
    if (run.settings.repetitions > 1)
        kind += QStringLiteral(" x %1").arg(run.settings.repetitions);
    return run.isStopped ? kind + QStringLiteral(", stopped") : kind;
}

QString settingsText(const runRecord &run)
{
    QString text = QStringLiteral("%1, %2 s per test")
                       .arg(kindOf(run), QString::number(run.settings.testTime / 1000.0));
    if (run.settings.threads)
        text += QStringLiteral(", %1 threads").arg(*run.settings.threads);
    if (run.settings.pinnedProcessor)
        text += QStringLiteral(", on processor %1").arg(*run.settings.pinnedProcessor);
    return text;
}

} // namespace

QString runTitle(const runRecord &run)
{
    return QStringLiteral("%1, %2 X%3, Fennick %4")
        .arg(dateText(run.started), visibleText(run.machine.processor).simplified(),
             QString::number(run.machine.threads), visibleText(run.build.version));
}

QString verdictLine(const runRecord &run)
{
    std::vector<judgedTest> tests;
    for (const testRun &test : run.tests)
        tests.push_back({test, verdictOf(test, run)});
    const auto isLevel = [](steadiness level) {
        return
            [level](const judgedTest &one) { return one.test.value() && one.found.level == level; };
    };
    const auto good = std::count_if(tests.begin(), tests.end(), isLevel(steadiness::good));
    QStringList parts = {
        QStringLiteral("verdict: %1 of %2 tests good").arg(good).arg(tests.size())};
    parts.append(namesOf(tests, endText(testEnd::failed),
                         [](const judgedTest &one) { return !one.test.value(); }));
    parts.append(namesOf(tests, QStringLiteral("slower than one core"), isSlowerThanOneCore));
    for (const steadiness level :
         {steadiness::unsteady, steadiness::noisy, steadiness::tooFewRounds})
        parts.append(namesOf(tests, textOf(level), isLevel(level)));
    for (const remark &one : remarksOf(run))
        parts.append(one.sentence);
    parts.removeAll(QString());
    return parts.join(QStringLiteral("; "));
}

QString repetitionsText(const runRecord &run)
{
    if (run.settings.repetitions < 2)
        return {};
    std::vector<QStringList> rows = {{QStringLiteral("test"), QStringLiteral("median"), QString(),
                                      QStringLiteral("times"), QStringLiteral("lowest"),
                                      QStringLiteral("highest"), QStringLiteral("spread")}};
    for (const QString &name : testNamesOf(run)) {
        const std::vector<double> values = valuesOf(run, name);
        const statistics all = statisticsOf(values);
        rows.push_back(
            {visibleText(name), values.empty() ? nothing : QString::number(all.median, 'g', 6),
             visibleText(unitOf(run, name)) + QStringLiteral("/s"), QString::number(all.count),
             QString::number(all.minimum, 'g', 6), QString::number(all.maximum, 'g', 6),
             all.count < 2 ? nothing : percent(all.spread())});
    }
    return textTable(rows, {2});
}

QString runText(const runRecord &run)
{
    QString text = runTitle(run) + QLatin1Char('\n') + settingsText(run) + QStringLiteral("\n\n");
    const QString repetitions = repetitionsText(run);
    if (!repetitions.isEmpty())
        text += repetitions + QLatin1Char('\n');
    std::vector<QStringList> rows = {{QStringLiteral("test"), QStringLiteral("result"), QString(),
                                      QStringLiteral("rounds"), QStringLiteral("spread"),
                                      QStringLiteral("verdict")}};
    QString remarks;
    for (const testRun &test : run.tests) {
        const verdict found = verdictOf(test, run);
        rows.push_back(rowOf(test, found));
        for (const remark &one : found.remarks)
            remarks += QStringLiteral("%1: %2\n").arg(visibleText(test.name), one.sentence);
    }
    for (const remark &one : remarksOf(run))
        remarks += one.sentence + QLatin1Char('\n');
    text += textTable(rows, {2, 5});
    return remarks.isEmpty() ? text : text + QLatin1Char('\n') + remarks;
}

QString historyText(const std::vector<runRecord> &runs)
{
    std::vector<QStringList> rows = {{QStringLiteral("run"), QStringLiteral("date"),
                                      QStringLiteral("what"), QStringLiteral("version"),
                                      QStringLiteral("tests"), QStringLiteral("to first"),
                                      QStringLiteral("to last")}};
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const runRecord &run = runs.at(i);
        rows.push_back({QString::number(i + 1), dateText(run.started), kindOf(run),
                        visibleText(run.build.version), QString::number(testNamesOf(run).size()),
                        relation(run, runs.front()),
                        i == 0 ? nothing : relation(run, runs.at(i - 1))});
    }
    return textTable(rows, {1, 2});
}
