// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/chartContent.h"

#include "data/placing.h"
#include "data/rankedTests.h"
#include "engine/testBase.h"
#include "ui/compareNotes.h"
#include "ui/plainText.h"

#include <QCoreApplication>

#include <cmath>

namespace
{

QString translated(const char *text)
{
    return QCoreApplication::translate("compareWindow", text);
}

QString number(float value)
{
    return QString::number(static_cast<double>(value));
}

QString unitOf(const QVector<testBase *> &tests, const QString &testName)
{
    for (const testBase *test : tests) {
        if (test->getName() == testName)
            return test->getUnit();
    }
    return {};
}

QString tipOf(const chartBar &bar, const QString &unit)
{
    const QString result = bar.value == static_cast<double>(ranking::smallestBar)
                               ? translated("no result")
                               : QStringLiteral("%1 %2").arg(QString::number(bar.value), unit);
    return QStringLiteral("%1\n%2: %3")
        .arg(plainText::shortened(bar.machine.describe(benchResults::fullDescription)),
             plainText::shortened(bar.machine.getCpu()), result);
}

chartBar barOf(const benchResults &machine, const chartChoice &choice, const QString &unit)
{
    const float value = ranking::barValue(machine, choice.wanted.kind, choice.title);
    chartBar bar;
    bar.label = machine.describe(choice.labels);
    bar.value = static_cast<double>(value);
    bar.isResult = std::isfinite(value) && value != ranking::smallestBar;
    bar.machine = machine;
    bar.tip = tipOf(bar, unit);
    return bar;
}

/// Per clock are the scores only: the bars of one test, and its value here, are as measured.
QString titleOf(const chartChoice &choice, const chartBar &own, const QString &testUnit)
{
    QString title = choice.title;
    if (choice.wanted.kind == ranking::oneTest && own.machine.isMeasured())
        title += QStringLiteral(" [you: %1 %2]").arg(QString::number(own.value), testUnit);
    if (choice.wanted.isPerClock)
        title += translated(" (per Clock)");
    return title;
}

QString standingOf(const ranking::rankedList &ranked, const QVector<ranking::rankedTest> &tests,
                   const chartChoice &choice)
{
    const ranking::testKind kind = choice.wanted.kind;
    const benchResults &own = ranked.machines.last();
    const bool isOneTest = kind == ranking::oneTest;
    const QStringList missing =
        isOneTest ? QStringList() : ranking::missingResults(own, tests, kind);
    const auto place = placingOf(ranked.machines, kind, choice.title);
    // A score of other tests than everybody's has no place.
    const QString where = place && missing.isEmpty() ? compareNotes::onPlace(*place)
                                                     : compareNotes::onMissing(missing, isOneTest);
    return isOneTest ? where : where + QStringLiteral("; ") + compareNotes::onMeasure(ranked);
}

/// The machines without a bar, where there are others to tell them from.
QStringList barlessOf(const QVector<chartBar> &bars)
{
    QStringList names;
    for (const chartBar &bar : bars) {
        if (!bar.isResult)
            names.append(bar.machine.getName());
    }
    return names.size() < bars.size() ? names : QStringList();
}

/// A cell must not end early.
QString cell(QString text)
{
    for (QChar &letter : text) {
        if (letter.category() == QChar::Other_Control)
            letter = QLatin1Char(' ');
    }
    return text;
}

QString line(QStringList cells)
{
    for (QString &one : cells)
        one = cell(one);
    return cells.join(QLatin1Char('\t')) + QLatin1Char('\n');
}

QString resultUnit(const testBase &test)
{
    return test.getUnit() + QStringLiteral("/s");
}

} // namespace

QString chartContent::remarks() const
{
    QStringList all = QStringList(standing) + notes;
    all.removeAll({});
    return all.join(QLatin1Char('\n'));
}

chartContent contentOf(const QVector<benchResults> &machines, const QVector<testBase *> &tests,
                       const chartChoice &choice)
{
    const QVector<ranking::rankedTest> known = rankedTestsOf(tests);
    const ranking::rankedList ranked = ranking::rankedAll(machines, known, choice.wanted);
    const QVector<benchResults> shown = ranking::shownOf(ranked.machines, choice.wanted);
    chartContent content;
    if (shown.isEmpty())
        return content;
    const bool isOneTest = choice.wanted.kind == ranking::oneTest;
    const QString testUnit = isOneTest ? unitOf(tests, choice.title) : QString();
    content.unit = isOneTest ? testUnit + QStringLiteral("/s") : QStringLiteral("%");
    content.axisTitle = isOneTest ? content.unit : compareNotes::ofMeasure(ranked);
    content.bars.reserve(shown.size());
    for (const benchResults &machine : shown)
        content.bars.append(barOf(machine, choice, content.unit));
    content.bars.last().label.prepend(translated("[you] "));
    content.title = titleOf(choice, content.bars.last(), testUnit);
    QStringList standing = {standingOf(ranked, known, choice),
                            compareNotes::onBarless(barlessOf(content.bars))};
    standing.removeAll({});
    content.standing = standing.join(QStringLiteral("; "));
    content.notes =
        QStringList({compareNotes::onGaps(ranking::gapsOf(shown, known, choice.wanted),
                                          ranked.isOwnMeasure, choice.wanted.isPerClock),
                     compareNotes::onEstimates(shown)});
    content.notes.removeAll({});
    return content;
}

QString tableOf(const chartContent &content)
{
    const QString result = QStringLiteral("%1 (%2)").arg(content.title, content.axisTitle);
    QString table = line({translated("machine"), translated("processor"), translated("threads"),
                          translated("clock (GHz)"), translated("system"), result});
    for (const chartBar &bar : content.bars) {
        const benchResults &machine = bar.machine;
        const bool isOwn = &bar == &content.bars.last();
        const float clock = machine.getFrequency();
        table += line({(isOwn ? translated("[you] ") : QString()) + machine.getName(),
                       machine.getCpu(), QString::number(machine.getThreads()),
                       clock > 0 ? number(clock / 1e9F) : QString(), machine.getOs(),
                       bar.isResult ? QString::number(bar.value) : QString()});
    }
    return table;
}

QString resultsAsText(const benchResults &machine, const QVector<testBase *> &tests)
{
    QString text = cell(machine.describe(benchResults::fullDescription)) + QLatin1Char('\n');
    for (const testBase *test : tests) {
        const float value = machine.getTests().value(test->getName()).value;
        const QString result = value > 0 ? number(value) + QLatin1Char(' ') + resultUnit(*test)
                                         : translated("no result");
        text += QStringLiteral("%1: %2\n").arg(test->getName().trimmed(), result);
    }
    return text;
}

QString resultsAsTable(const benchResults &machine, const QVector<testBase *> &tests)
{
    QString table = line({translated("test"), translated("result"), translated("unit")});
    for (const testBase *test : tests) {
        const float value = machine.getTests().value(test->getName()).value;
        table += line(
            {test->getName().trimmed(), value > 0 ? number(value) : QString(), resultUnit(*test)});
    }
    return table;
}
