// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runJson.h"

#include "runFixtures.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

/// A file that is no run, or a faulty one, and what is said about it.
struct damagedRun {
    const char *name;
    QByteArray content;
    const char *sentence; ///< a part of it
    /// False for what the words of a schema cannot say.
    bool isSeenBySchema = true;
};

/// The file of a full run with one member changed. @p path leads to it, with dots; a number is an
/// index. Without a value the member is taken away.
inline QByteArray changedRun(const char *path, const QJsonValue &value)
{
    struct changer {
        static QJsonValue change(const QJsonValue &at, QStringList steps, const QJsonValue &value)
        {
            if (steps.isEmpty())
                return value;
            const QString step = steps.takeFirst();
            if (at.isArray()) {
                QJsonArray array = at.toArray();
                array[step.toInt()] = change(array.at(step.toInt()), steps, value);
                return array;
            }
            QJsonObject object = at.toObject();
            const QJsonValue changed = change(object.value(step), steps, value);
            if (changed.isUndefined())
                object.remove(step);
            else
                object[step] = changed;
            return object;
        }
    };
    const QJsonObject run = QJsonDocument::fromJson(toJson(fullRun())).object();
    const QStringList steps = QString::fromLatin1(path).split(QLatin1Char('.'));
    return QJsonDocument(changer::change(run, steps, value).toObject()).toJson();
}

inline std::vector<damagedRun> damagedRuns()
{
    const QJsonValue none(QJsonValue::Undefined);
    const QString text = QStringLiteral("many");
    QByteArray infinite = toJson(fullRun());
    infinite.replace("\"testTime\":8000", "\"testTime\":1e999");
    QByteArray notANumber = toJson(fullRun());
    notANumber.replace("\"testTime\":8000", "\"testTime\":NaN");
    const QByteArray whole = toJson(fullRun());
    return {
        {"empty", {}, "this is no JSON: "},
        {"no JSON", "<xml/>", "this is no JSON: "},
        {"cut off", whole.left(whole.size() / 2), "this is no JSON: "},
        {"something after it", whole + "{}", "this is no JSON: "},
        {"infinite", infinite, "this is no JSON: "},
        {"not a number", notANumber, "this is no JSON: "},
        {"a list", "[]", "this is no record of a run of Fennick"},
        {"a number", "[1]", "this is no record of a run of Fennick"},
        {"of another program", "{\"results\":[]}", "this is no record of a run of Fennick"},
        {"of another kind", changedRun("kind", QStringLiteral("fennick-list")),
         "this is no record of a run of Fennick"},
        {"without a schema", changedRun("schema", none), "'schema' is no number of a schema"},
        {"schema 0", changedRun("schema", 0), "'schema' is no number of a schema"},
        {"schema as text", changedRun("schema", QStringLiteral("1")), "'schema' is no number"},
        {"newer schema", changedRun("schema", 2),
         "a newer Fennick has written this: its schema is 2, and 1 the newest"},
        {"no tests", changedRun("tests", none), "'tests' is missing"},
        {"tests as object", changedRun("tests", QJsonObject()), "'tests' is no array"},
        {"a test as number", changedRun("tests.1", 7), "'tests[1]' is no object"},
        {"no settings", changedRun("settings", none), "'settings' is missing"},
        {"settings as list", changedRun("settings", QJsonArray()), "'settings' is no object"},
        {"no build", changedRun("build", none), "'build' is missing"},
        {"no machine", changedRun("machine", none), "'machine' is missing"},
        {"no context", changedRun("context", none), "'context' is missing"},
        {"stopped missing", changedRun("stopped", none), "'stopped' is missing"},
        {"stopped as number", changedRun("stopped", 1), "'stopped' is neither true nor false"},
        {"null", changedRun("machine.name", QJsonValue::Null), "'machine.name' is no text"},
        {"time in words", changedRun("started", QStringLiteral("today")), "'started' is no time"},
        {"time without an offset", changedRun("started", QStringLiteral("2026-01-31T23:59:58")),
         "'started' is no time"},
        {"month 13", changedRun("ended", QStringLiteral("2026-13-01T00:00:00Z")),
         "'ended' is no time"},
        {"30 February", changedRun("ended", QStringLiteral("2026-02-30T00:00:00Z")),
         "'ended' is no time", false},
        {"an unknown word", changedRun("settings.wanted", QStringLiteral("all")),
         "'settings.wanted' is none of full-run, some-tests"},
        {"part of a millisecond", changedRun("settings.testTime", 1.5),
         "'settings.testTime' is no whole number from 0 to 2147483647"},
        {"negative", changedRun("settings.repetitions", -1), "'settings.repetitions' is no whole"},
        {"too large", changedRun("machine.threads", 3e9), "'machine.threads' is no whole number"},
        {"a number as text", changedRun("machine.clock", text), "'machine.clock' is no number"},
        {"too large a number", changedRun("machine.clock", 1e16), "'machine.clock' is no number"},
        {"colder than cold", changedRun("context.atEnd.temperature", -301),
         "'context.atEnd.temperature' is no number from -300 to 10000"},
        {"boost as text", changedRun("context.boost", text), "'context.boost' is neither"},
        {"environment as text", changedRun("context.environment", text),
         "'context.environment' is no object"},
        {"variable as number", changedRun("context.environment.OMP_NUM_THREADS", 4),
         "'context.environment.OMP_NUM_THREADS' is no text"},
        {"no name", changedRun("tests.0.name", none), "'tests[0].name' is missing"},
        {"a long name", changedRun("tests.0.name", QString(101, QLatin1Char('x'))),
         "'tests[0].name' is no text of at most 100 characters"},
        {"a long text", changedRun("build.compiler", QString(4097, QLatin1Char('x'))),
         "'build.compiler' is no text of at most 4096 characters"},
        {"half a resolution", changedRun("tests.0.resolution.height", none),
         "'tests[0].resolution.height' is missing"},
        {"unknown end", changedRun("tests.0.end", text), "'tests[0].end' is none of complete,"},
        {"unknown frames", changedRun("tests.0.frames", text), "'tests[0].frames' is none of"},
        {"no spans", changedRun("tests.0.fineSpans", none), "'tests[0].fineSpans' is missing"},
        {"a span as text", changedRun("tests.0.fineSpans.5", text),
         "'tests[0].fineSpans[5]' is no time"},
        {"a negative span", changedRun("tests.0.fineSpans.5", -1),
         "'tests[0].fineSpans[5]' is no time"},
        {"part of a nanosecond", changedRun("tests.0.fineSpans.5", 0.5),
         "'tests[0].fineSpans[5]' is no time"},
        {"an official span as text", changedRun("tests.0.officialSpans.5", text),
         "'tests[0].officialSpans[5]' is no time"},
        {"spans of one clock", changedRun("tests.0.fineSpans", QJsonArray()),
         "'tests[0].fineSpans' is not as long as officialSpans", false},
    };
}
