// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runJson.h"
#include "data/runJsonTerms.h"
#include "data/shortFloat.h"
#include "data/verdict.h"

#include <QJsonDocument>

using namespace runJson;

namespace
{

template <std::size_t size> QString wordAt(const char *const (&words)[size], int index)
{
    return QString::fromLatin1(words[static_cast<std::size_t>(index)]);
}

/// Members of an object, of which only what may be written is.
class fieldWriter
{
public:
    void text(const char *name, const QString &value, int longest = longestText)
    {
        if (!value.isEmpty())
            put(name, value.left(longest));
    }
    void text(const char *name, const std::optional<QString> &value)
    {
        if (value)
            put(name, value->left(longestText));
    }
    void number(const char *name, std::optional<double> value, numberRange range = amounts)
    {
        if (value && range.contains(*value))
            put(name, *value);
    }
    void count(const char *name, std::optional<qint64> value, numberRange range = counts)
    {
        if (value && range.contains(static_cast<double>(*value)))
            put(name, *value);
    }
    void put(const char *name, const QJsonValue &value) { fields[QLatin1String(name)] = value; }

    QJsonObject fields;
};

/// With milliseconds and the offset from UTC, which a local time alone does not have.
QString timeText(const QDateTime &time)
{
    if (!time.isValid())
        return {};
    return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

QJsonObject settingsObject(const runSettings &settings)
{
    fieldWriter to;
    to.put("wanted", wordAt(wantedWords, settings.wanted));
    to.count("testTime", settings.testTime);
    to.count("repetitions", settings.repetitions);
    to.number("warmUpSeconds", settings.warmUpSeconds);
    to.count("threads", settings.threads);
    to.count("pinnedProcessor", settings.pinnedProcessor);
    return to.fields;
}

QJsonObject buildObject(const buildFacts &build)
{
    fieldWriter to;
    to.text("version", build.version);
    to.text("compiler", build.compiler);
    to.text("compilerVersion", build.compilerVersion);
    to.text("buildType", build.buildType);
    to.text("measuredFlags", build.measuredFlags);
    to.text("workloadDigest", build.workloadDigest);
    to.put("sanitized", build.isSanitized);
    return to.fields;
}

QJsonObject machineObject(const machineFacts &machine)
{
    fieldWriter to;
    to.text("name", machine.name);
    to.text("os", machine.os);
    to.text("processor", machine.processor);
    if (machine.threads > 0)
        to.count("threads", machine.threads);
    if (machine.clock > 0)
        to.number("clock", machine.clock);
    return to.fields;
}

QJsonObject momentObject(const machineMoment &moment)
{
    fieldWriter to;
    to.number("loadAverage", moment.loadAverage);
    to.number("temperature", moment.temperature, degrees);
    return to.fields;
}

QJsonObject environmentObject(const QMap<QString, QString> &environment)
{
    QJsonObject object;
    for (auto variable = environment.cbegin(); variable != environment.cend(); ++variable) {
        if (object.size() < mostVariables)
            object[variable.key().left(longestName)] = variable.value().left(longestText);
    }
    return object;
}

QJsonObject contextObject(const machineContext &context)
{
    fieldWriter to;
    to.text("governor", context.governor);
    to.text("frequencyDriver", context.frequencyDriver);
    if (context.boost)
        to.put("boost", *context.boost);
    if (context.power)
        to.put("power", wordAt(powerWords, *context.power));
    to.text("virtualMachine", context.virtualMachine);
    to.text("kernel", context.kernel);
    to.count("pageSize", context.pageSize, bytes);
    to.text("hugePages", context.hugePages);
    to.put("environment", environmentObject(context.environment));
    to.put("atStart", momentObject(context.atStart));
    to.put("atEnd", momentObject(context.atEnd));
    return to.fields;
}

QJsonObject statisticsObject(const statistics &rounds)
{
    fieldWriter to;
    to.count("count", rounds.count);
    to.number("mean", rounds.mean);
    to.number("median", rounds.median);
    to.number("minimum", rounds.minimum);
    to.number("maximum", rounds.maximum);
    if (rounds.count > 1)
        to.number("standardDeviation", rounds.standardDeviation);
    to.number("medianAbsoluteDeviation", rounds.medianAbsoluteDeviation);
    if (rounds.medianInterval) {
        fieldWriter bounds;
        bounds.number("lower", rounds.medianInterval->lower);
        bounds.number("upper", rounds.medianInterval->upper);
        to.put("medianInterval", bounds.fields);
    }
    return to.fields;
}

QJsonArray remarkArray(const std::vector<remark> &remarks)
{
    QJsonArray array;
    for (const remark &found : remarks) {
        fieldWriter to;
        to.put("word", wordOf(found.kind));
        to.put("sentence", found.sentence);
        array.append(to.fields);
    }
    return array;
}

QJsonObject verdictObject(const verdict &found)
{
    fieldWriter to;
    to.put("level", wordOf(found.level));
    if (found.rounds.count > 1)
        to.number("spread", found.rounds.spread());
    to.put("remarks", remarkArray(found.remarks));
    return to.fields;
}

/// Two arrays of numbers, because an object for each round takes five times the space. Takes what
/// it writes from @p roundsLeft.
void putRounds(fieldWriter &to, const std::vector<roundSpan> &rounds, int &roundsLeft)
{
    QJsonArray official;
    QJsonArray fine;
    for (const roundSpan &round : rounds) {
        const double coarse = shortFloat(round.official);
        const qint64 exact = round.fine.count();
        if (roundsLeft <= 0)
            break;
        if (!officialSeconds.contains(coarse) || !nanoseconds.contains(static_cast<double>(exact)))
            continue;
        official.append(coarse);
        fine.append(exact);
        --roundsLeft;
    }
    to.put("officialSpans", official);
    to.put("fineSpans", fine);
}

QJsonObject testObject(const testRun &test, const runRecord &run, int &roundsLeft)
{
    fieldWriter to;
    to.put("name", test.name.left(longestName));
    to.text("unit", test.unit, longestName);
    to.put("multicore", test.isMulticore);
    if (!test.resolution.isEmpty()) {
        to.put("resolution", QJsonObject{{QStringLiteral("width"), test.resolution.width()},
                                         {QStringLiteral("height"), test.resolution.height()}});
    }
    to.count("repetition", test.repetition);
    to.number("work", test.work);
    to.number("average", shortFloat(test.average), officialSeconds);
    to.put("end", wordAt(endWords, static_cast<int>(test.end)));
    putRounds(to, test.rounds, roundsLeft);
    to.number("otherProcesses", test.otherProcesses);
    to.number("wallSeconds", test.wallSeconds);
    if (test.frames)
        to.put("frames", wordAt(framesWords, static_cast<int>(*test.frames)));

    const verdict found = verdictOf(test, run);
    to.put("rounds", static_cast<qint64>(test.rounds.size()));
    to.number("value", test.value());
    if (found.rounds.count > 0)
        to.put("statistics", statisticsObject(found.rounds));
    to.put("verdict", verdictObject(found));
    return to.fields;
}

} // namespace

QByteArray toJson(const runRecord &run)
{
    fieldWriter to;
    to.put("kind", QString::fromLatin1(kind));
    to.put("schema", schema);
    to.text("started", timeText(run.started));
    to.text("ended", timeText(run.ended));
    to.put("stopped", run.isStopped);
    to.put("settings", settingsObject(run.settings));
    to.put("build", buildObject(run.build));
    to.put("machine", machineObject(run.machine));
    to.put("context", contextObject(run.context));
    QJsonArray tests;
    int roundsLeft = mostRounds;
    for (const testRun &test : run.tests) {
        if (tests.size() < mostTests)
            tests.append(testObject(test, run, roundsLeft));
    }
    to.put("tests", tests);
    to.put("remarks", remarkArray(remarksOf(run)));
    return QJsonDocument(to.fields).toJson(QJsonDocument::Compact) + '\n';
}
