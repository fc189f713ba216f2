// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runReport.h"

#include "data/roundRemarks.h"
#include "data/runJsonTerms.h"
#include "data/runValues.h"
#include "data/shortFloat.h"
#include "data/verdict.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace
{

/// Short and exact; empty for what is no finite number.
QString text(double number)
{
    return std::isfinite(number) ? QString::number(number, 'g', QLocale::FloatingPointShortest)
                                 : QString();
}

QString text(const std::optional<double> &number)
{
    return number ? text(*number) : QString();
}

QString quoted(const QString &field)
{
    static const QString special = QStringLiteral(",\"\r\n");
    if (std::none_of(field.begin(), field.end(),
                     [](QChar letter) { return special.contains(letter); }))
        return field;
    return QLatin1Char('"') + QString(field).replace(QLatin1Char('"'), QLatin1String("\"\""))
           + QLatin1Char('"');
}

QByteArray rowOf(const QStringList &fields)
{
    QStringList row;
    for (const QString &field : fields)
        row.append(quoted(field));
    return row.join(QLatin1Char(',')).toUtf8() + "\r\n";
}

QString timeText(const QDateTime &time)
{
    return time.isValid() ? time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODate)
                          : QString();
}

QStringList wordsOf(const std::vector<remark> &remarks)
{
    QStringList words;
    for (const remark &found : remarks)
        words.append(wordOf(found.kind));
    return words;
}

QStringList statisticsFields(const statistics &rounds)
{
    const bool isKnown = rounds.count > 0;
    const auto known = [isKnown](double number) { return isKnown ? text(number) : QString(); };
    const std::optional<interval> &bounds = rounds.medianInterval;
    return {QString::number(rounds.count),
            known(rounds.mean),
            known(rounds.median),
            known(rounds.minimum),
            known(rounds.maximum),
            rounds.count > 1 ? text(rounds.standardDeviation) : QString(),
            known(rounds.medianAbsoluteDeviation),
            bounds ? text(bounds->lower) : QString(),
            bounds ? text(bounds->upper) : QString()};
}

QString endWord(testEnd end)
{
    return QString::fromLatin1(runJson::endWords[static_cast<std::size_t>(end)]);
}

/// Nothing of it is markup inside a line, and it stays in its cell.
QString escaped(const QString &name)
{
    static const QString markup = QStringLiteral("\\`*_[]<>|~&");
    QString result;
    for (const QChar letter : name) {
        if (markup.contains(letter))
            result += QLatin1Char('\\');
        result += letter.category() == QChar::Other_Control ? QLatin1Char(' ') : letter;
    }
    return result;
}

/// What all repetitions of one test say together.
struct testSummary {
    QString unit;
    std::optional<double> value;
    std::optional<double> medianRound; ///< seconds
    std::optional<double> spread;
    QString judgement;
};

testSummary summaryOf(const runRecord &run, const QString &name)
{
    testSummary summary;
    summary.value = valueOf(run, name);
    std::vector<double> spans;
    steadiness worst = steadiness::good;
    QStringList words;
    for (const testRun &test : run.tests) {
        if (test.name != name)
            continue;
        const verdict found = verdictOf(test, run);
        const std::vector<double> counted = countedSpans(test.rounds);
        spans.insert(spans.end(), counted.begin(), counted.end());
        worst = std::max(worst, found.level);
        words += wordsOf(found.remarks);
        summary.unit = test.unit;
    }
    const std::vector<double> values = valuesOf(run, name);
    const statistics series = statisticsOf(values.size() > 1 ? values : spans);
    if (!spans.empty())
        summary.medianRound = medianOf(spans);
    if (series.count > 1)
        summary.spread = series.spread();
    words.removeDuplicates();
    words.prepend(summary.value ? wordOf(worst) : QStringLiteral("no result"));
    summary.judgement = words.join(QStringLiteral(", "));
    return summary;
}

QString fixed(const std::optional<double> &number, double factor, int digits, const char *unit)
{
    if (!number || !std::isfinite(*number))
        return {};
    return QString::number(*number * factor, 'f', digits) + QString::fromLatin1(unit);
}

/// It begins with a word of ours, so that no name makes a heading or a list of it.
QString lineAbout(const runRecord &run)
{
    QStringList facts(QStringLiteral("Fennick %1").arg(escaped(run.build.version)).trimmed());
    const auto add = [&facts](const QString &fact) {
        if (!fact.isEmpty())
            facts.append(escaped(fact));
    };
    add(run.machine.name);
    add(run.machine.processor);
    if (run.machine.threads > 0)
        add(QStringLiteral("%1 threads").arg(run.machine.threads));
    add(timeText(run.started));
    if (run.isStopped)
        add(QStringLiteral("stopped before its end"));
    for (const remark &found : remarksOf(run))
        add(found.sentence);
    return facts.join(QStringLiteral(", "));
}

} // namespace

QByteArray toCsv(const runRecord &run)
{
    QByteArray csv("started,machine,processor,threads,version,test,unit,multicore,repetition,end,"
                   "value,average,rounds,mean,median,minimum,maximum,standardDeviation,"
                   "medianAbsoluteDeviation,medianLower,medianUpper,verdict,remarks\r\n");
    for (const testRun &test : run.tests) {
        const verdict found = verdictOf(test, run);
        const QStringList fields =
            QStringList({timeText(run.started), run.machine.name, run.machine.processor,
                         run.machine.threads > 0 ? QString::number(run.machine.threads) : QString(),
                         run.build.version, test.name, test.unit,
                         test.isMulticore ? QStringLiteral("true") : QStringLiteral("false"),
                         QString::number(test.repetition), endWord(test.end), text(test.value()),
                         test.value() ? text(shortFloat(test.average)) : QString()})
            + statisticsFields(found.rounds)
            + QStringList({wordOf(found.level), wordsOf(found.remarks).join(QLatin1Char(' '))});
        csv += rowOf(fields);
    }
    return csv;
}

QString toMarkdown(const runRecord &run)
{
    QString table = lineAbout(run);
    table += QStringLiteral("\n\n| Test | Value | Unit | Median round | Spread | Verdict |\n"
                            "|---|---:|---|---:|---:|---|\n");
    for (const QString &name : testNamesOf(run)) {
        const testSummary summary = summaryOf(run, name);
        const QString unit =
            summary.unit.isEmpty() ? QString() : summary.unit + QStringLiteral("/s");
        table += QStringLiteral("| %1 |\n")
                     .arg(QStringList({escaped(name.trimmed()), fixed(summary.value, 1, 2, ""),
                                       escaped(unit), fixed(summary.medianRound, 1000, 3, " ms"),
                                       fixed(summary.spread, 100, 2, " %"), summary.judgement})
                              .join(QStringLiteral(" | ")));
    }
    return table;
}
