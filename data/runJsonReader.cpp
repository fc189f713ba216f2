// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runJson.h"
#include "data/runJsonTerms.h"

#include <QJsonDocument>
#include <QRegularExpression>

#include <cmath>

using namespace runJson;

namespace
{

QDateTime readTime(jsonFields &from, const char *name)
{
    const std::optional<QString> text = from.text(name, longestName);
    if (!text)
        return {};
    static const QRegularExpression form(
        QStringLiteral(R"(\A\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d{3})?(Z|[+-]\d\d:\d\d)\z)"));
    const QDateTime time = QDateTime::fromString(*text, Qt::ISODateWithMs);
    if (!form.match(*text).hasMatch() || !time.isValid()) {
        from.refuse(QString::fromLatin1(name),
                    QStringLiteral("is no time such as 2026-01-31T23:59:59.000+01:00"));
    }
    return time;
}

std::optional<int> readCount(jsonFields &from, const char *name)
{
    const std::optional<qint64> count = from.integer(name, counts);
    return count ? std::make_optional(static_cast<int>(*count)) : std::nullopt;
}

runSettings readSettings(jsonFields from)
{
    runSettings settings;
    settings.wanted = static_cast<runSettings::kind>(
        from.word("wanted", wantedWords, jsonFields::required).value_or(0));
    settings.testTime = readCount(from, "testTime").value_or(0);
    settings.repetitions = readCount(from, "repetitions").value_or(1);
    settings.warmUpSeconds = from.number("warmUpSeconds", amounts).value_or(0);
    settings.threads = readCount(from, "threads");
    settings.pinnedProcessor = readCount(from, "pinnedProcessor");
    return settings;
}

buildFacts readBuild(jsonFields from)
{
    buildFacts build;
    build.version = from.text("version", longestText).value_or(QString());
    build.compiler = from.text("compiler", longestText).value_or(QString());
    build.compilerVersion = from.text("compilerVersion", longestText).value_or(QString());
    build.buildType = from.text("buildType", longestText).value_or(QString());
    build.measuredFlags = from.text("measuredFlags", longestText).value_or(QString());
    build.workloadDigest = from.text("workloadDigest", longestText).value_or(QString());
    build.isSanitized = from.flag("sanitized").value_or(false);
    return build;
}

machineFacts readMachine(jsonFields from)
{
    machineFacts machine;
    machine.name = from.text("name", longestText).value_or(QString());
    machine.os = from.text("os", longestText).value_or(QString());
    machine.processor = from.text("processor", longestText).value_or(QString());
    machine.threads = readCount(from, "threads").value_or(0);
    machine.clock = from.number("clock", amounts).value_or(0);
    return machine;
}

machineMoment readMoment(jsonFields from)
{
    return {from.number("loadAverage", amounts), from.number("temperature", degrees)};
}

QMap<QString, QString> readEnvironment(jsonFields from)
{
    QMap<QString, QString> environment;
    const QStringList names = from.names();
    for (const QString &name : names) {
        if (names.size() > mostVariables || name.size() > longestName) {
            from.refuse(name, QStringLiteral("is one variable too many, or its name too long"));
            return {};
        }
        environment[name] = from.text(name.toUtf8().constData(), longestText).value_or(QString());
    }
    return environment;
}

machineContext readContext(jsonFields from)
{
    machineContext context;
    context.governor = from.text("governor", longestText);
    context.frequencyDriver = from.text("frequencyDriver", longestText);
    context.boost = from.flag("boost");
    if (const auto power = from.word("power", powerWords))
        context.power = static_cast<machineContext::powerSource>(*power);
    context.virtualMachine = from.text("virtualMachine", longestText);
    context.kernel = from.text("kernel", longestText);
    context.pageSize = from.integer("pageSize", bytes);
    context.hugePages = from.text("hugePages", longestText);
    context.environment = readEnvironment(from.object("environment"));
    context.atStart = readMoment(from.object("atStart"));
    context.atEnd = readMoment(from.object("atEnd"));
    return context;
}

std::optional<double> numberIn(const QJsonValue &value, numberRange range)
{
    return value.isDouble() && range.contains(value.toDouble())
               ? std::make_optional(value.toDouble())
               : std::nullopt;
}

std::vector<roundSpan> readRounds(jsonFields &from)
{
    const QJsonArray official = from.array("officialSpans", mostRounds, jsonFields::required);
    const QJsonArray fine = from.array("fineSpans", mostRounds, jsonFields::required);
    std::vector<roundSpan> rounds;
    if (official.size() != fine.size())
        from.refuse(QStringLiteral("fineSpans"), QStringLiteral("is not as long as officialSpans"));
    for (int i = 0; from.isFine() && i < fine.size(); ++i) {
        const std::optional<double> coarse = numberIn(official.at(i), officialSeconds);
        const std::optional<double> exact = numberIn(fine.at(i), nanoseconds);
        if (!coarse)
            from.refuse(QStringLiteral("officialSpans[%1]").arg(i), QStringLiteral("is no time"));
        else if (!exact || std::floor(*exact) != *exact)
            from.refuse(QStringLiteral("fineSpans[%1]").arg(i), QStringLiteral("is no time"));
        else
            rounds.push_back({static_cast<float>(*coarse),
                              std::chrono::nanoseconds(static_cast<qint64>(*exact))});
    }
    return rounds;
}

testRun readTest(jsonFields from)
{
    testRun test;
    test.name = from.text("name", longestName, jsonFields::required).value_or(QString());
    test.unit = from.text("unit", longestName).value_or(QString());
    test.isMulticore = from.flag("multicore", jsonFields::required).value_or(false);
    if (from.has("resolution")) {
        jsonFields size = from.object("resolution");
        const auto width = size.integer("width", counts, jsonFields::required);
        const auto height = size.integer("height", counts, jsonFields::required);
        test.resolution =
            QSize(static_cast<int>(width.value_or(0)), static_cast<int>(height.value_or(0)));
    }
    test.repetition = readCount(from, "repetition").value_or(0);
    test.work = from.number("work", amounts).value_or(0);
    test.average = static_cast<float>(from.number("average", officialSeconds).value_or(0));
    test.end = static_cast<testEnd>(from.word("end", endWords, jsonFields::required).value_or(0));
    test.rounds = readRounds(from);
    test.otherProcesses = from.number("otherProcesses", amounts);
    test.wallSeconds = from.number("wallSeconds", amounts).value_or(0);
    if (const auto frames = from.word("frames", framesWords))
        test.frames = static_cast<digestVerdict>(*frames);
    return test;
}

runRecord readAll(jsonFields from, QString &problem)
{
    runRecord run;
    run.started = readTime(from, "started");
    run.ended = readTime(from, "ended");
    run.isStopped = from.flag("stopped", jsonFields::required).value_or(false);
    run.settings = readSettings(from.object("settings", jsonFields::required));
    run.build = readBuild(from.object("build", jsonFields::required));
    run.machine = readMachine(from.object("machine", jsonFields::required));
    run.context = readContext(from.object("context", jsonFields::required));
    const QJsonArray tests = from.array("tests", mostTests, jsonFields::required);
    for (int i = 0; from.isFine() && i < tests.size(); ++i) {
        const QString place = QStringLiteral("tests[%1]").arg(i);
        if (tests.at(i).isObject())
            run.tests.push_back(readTest({tests.at(i).toObject(), place, problem}));
        else
            from.refuse(place, QStringLiteral("is no object"));
    }
    return run;
}

/// The object of a file that says it is a run of a schema that is known here.
outcome<QJsonObject> openRun(const QByteArray &json)
{
    if (json.size() > longestFile)
        return failure(QStringLiteral("this is longer than a record of a run can be"));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        return failure(QStringLiteral("this is no JSON: %1 at byte %2")
                           .arg(error.errorString(), QString::number(error.offset)));
    }
    QJsonObject object = document.object();
    if (object.value(QLatin1String("kind")) != QLatin1String(kind))
        return failure(QStringLiteral("this is no record of a run of Fennick"));
    const QJsonValue number = object.value(QLatin1String("schema"));
    if (number.toDouble() > schema && numberIn(number, counts)) {
        return failure(QStringLiteral("a newer Fennick has written this: its schema is %1, and %2 "
                                      "the newest that is known here")
                           .arg(QString::number(number.toDouble()), QString::number(schema)));
    }
    if (number != schema)
        return failure(QStringLiteral("'schema' is no number of a schema"));
    return object;
}

} // namespace

outcome<runRecord> readRunRecord(const QByteArray &json)
{
    const outcome<QJsonObject> object = openRun(json);
    if (!object)
        return failure(object.error());
    QString problem;
    runRecord run = readAll({*object, {}, problem}, problem);
    if (!problem.isEmpty())
        return failure(problem);
    return run;
}
