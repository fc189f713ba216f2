// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runJson.h"

#include "damagedRuns.h"
#include "runFixtures.h"

#include <QtTest>

#include <clocale>
#include <limits>

Q_DECLARE_METATYPE(runRecord)

namespace
{

QJsonObject written(const runRecord &run)
{
    return QJsonDocument::fromJson(toJson(run)).object();
}

QJsonObject firstTest(const runRecord &run)
{
    return written(run).value(QLatin1String("tests")).toArray().at(0).toObject();
}

} // namespace

class tst_runJson : public QObject
{
    Q_OBJECT

private slots:
    void roundTrip_data();
    void roundTrip();
    void unknownIsAbsent();
    void derivedValues();
    void derivedValuesAreNotRead();
    void unknownMembersArePassedOver();
    void noNumberThatIsNone_data();
    void noNumberThatIsNone();
    void numbersFollowNoLocale();
    void shortNumbers();
    void localTimesGetTheirOffset();
    void whatIsTooLongIsCut();
    void tooManyRounds();
    void damaged_data();
    void damaged();
    void tooLongAFile();
};

void tst_runJson::roundTrip_data()
{
    QTest::addColumn<runRecord>("run");
    QTest::newRow("full") << fullRun();
    QTest::newRow("nothing known") << runRecord{};
    QTest::newRow("repeated") << repeatedRun(3);
    runRecord odd = repeatedRun(1);
    odd.tests[0].rounds[0].fine = std::chrono::nanoseconds(9007199254740991);
    odd.tests[0].rounds[1].official = 8388.6078F;
    odd.tests[0].average = std::numeric_limits<float>::denorm_min();
    odd.tests[0].name = QString();
    QTest::newRow("odd numbers") << odd;
}

void tst_runJson::roundTrip()
{
    QFETCH(runRecord, run);
    const QByteArray json = toJson(run);
    QVERIFY(json.endsWith("}\n"));
    const outcome<runRecord> read = readRunRecord(json);
    QVERIFY2(read, qPrintable(read ? QString() : read.error()));
    QCOMPARE(differences(*read, run), QStringList());
    QCOMPARE(toJson(*read), json);
}

void tst_runJson::unknownIsAbsent()
{
    const QJsonObject run = written({});
    QCOMPARE(run.keys(),
             QStringList(
                 {QStringLiteral("build"), QStringLiteral("context"), QStringLiteral("kind"),
                  QStringLiteral("machine"), QStringLiteral("remarks"), QStringLiteral("schema"),
                  QStringLiteral("settings"), QStringLiteral("stopped"), QStringLiteral("tests")}));
    QCOMPARE(run.value(QLatin1String("machine")).toObject(), QJsonObject());
    const QByteArray json = toJson({});
    QVERIFY(!json.contains("null"));
    QVERIFY(!json.contains("\"\""));
}

void tst_runJson::derivedValues()
{
    runRecord run;
    const std::vector<double> spans = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6};
    run.tests = {testOf(QStringLiteral("lines"), simulatedRounds(1).measured(spans), 7)};
    run.tests[0].average = 0.5F;
    run.context.atStart.loadAverage = 3;
    const QJsonObject test = firstTest(run);
    QCOMPARE(test.value(QLatin1String("value")).toDouble(), 14.0);
    QCOMPARE(test.value(QLatin1String("rounds")).toInt(), 6);
    const QJsonObject found = test.value(QLatin1String("statistics")).toObject();
    QCOMPARE(found.value(QLatin1String("count")).toInt(), 6);
    QCOMPARE(found.value(QLatin1String("mean")).toDouble(), 0.35);
    QCOMPARE(found.value(QLatin1String("median")).toDouble(), 0.35);
    QCOMPARE(found.value(QLatin1String("minimum")).toDouble(), 0.1);
    QCOMPARE(found.value(QLatin1String("maximum")).toDouble(), 0.6);
    QCOMPARE(found.value(QLatin1String("standardDeviation")).toDouble(), std::sqrt(0.035));
    QCOMPARE(found.value(QLatin1String("medianAbsoluteDeviation")).toDouble(), 0.15);
    const QJsonObject bounds = found.value(QLatin1String("medianInterval")).toObject();
    QCOMPARE(bounds.value(QLatin1String("lower")).toDouble(), 0.1);
    QCOMPARE(bounds.value(QLatin1String("upper")).toDouble(), 0.6);
    const QJsonObject verdict = test.value(QLatin1String("verdict")).toObject();
    QCOMPARE(verdict.value(QLatin1String("level")).toString(), QStringLiteral("unsteady"));
    QCOMPARE(verdict.value(QLatin1String("spread")).toDouble(), std::sqrt(0.035) / 0.35);
    const QJsonObject remark =
        written(run).value(QLatin1String("remarks")).toArray().at(0).toObject();
    QCOMPARE(remark.value(QLatin1String("word")).toString(), QStringLiteral("busy-at-start"));
    QVERIFY(!remark.value(QLatin1String("sentence")).toString().isEmpty());

    run.tests[0].rounds.resize(1);
    const QJsonObject one = firstTest(run).value(QLatin1String("statistics")).toObject();
    QVERIFY(!one.contains(QLatin1String("standardDeviation")));
    QVERIFY(!one.contains(QLatin1String("medianInterval")));
}

void tst_runJson::derivedValuesAreNotRead()
{
    const QByteArray json = changedRun("tests.0.value", 1e6);
    const outcome<runRecord> read = readRunRecord(json);
    QVERIFY(read);
    QCOMPARE(read->tests[0].value(), fullRun().tests[0].value());
    QCOMPARE(toJson(*read), toJson(fullRun()));
}

void tst_runJson::unknownMembersArePassedOver()
{
    const outcome<runRecord> read =
        readRunRecord(changedRun("tests.0.cacheMisses", QJsonArray({1, 2})));
    QVERIFY(read);
    QCOMPARE(differences(*read, fullRun()), QStringList());
}

void tst_runJson::noNumberThatIsNone_data()
{
    QTest::addColumn<double>("number");
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
    QTest::newRow("negative infinite") << -std::numeric_limits<double>::infinity();
    QTest::newRow("too large") << 1e300;
}

void tst_runJson::noNumberThatIsNone()
{
    QFETCH(double, number);
    runRecord run = fullRun();
    run.settings.warmUpSeconds = number;
    run.machine.clock = number;
    run.context.atStart = {number, number};
    testRun &test = run.tests[0];
    test.work = number;
    test.average = static_cast<float>(number);
    test.otherProcesses = number;
    test.wallSeconds = number;
    test.rounds[1].official = static_cast<float>(number);
    const QByteArray json = toJson(run);
    static const QRegularExpression none(QStringLiteral("[:,\\[]-?(nan|inf|null)"));
    QVERIFY(!none.match(QString::fromUtf8(json)).hasMatch());
    const outcome<runRecord> read = readRunRecord(json);
    QVERIFY2(read, qPrintable(read ? QString() : read.error()));
    QVERIFY(!read->context.atStart.loadAverage && !read->context.atStart.temperature);
    QVERIFY(!read->tests[0].value() && !read->tests[0].otherProcesses);
    QCOMPARE(read->tests[0].rounds.size(), test.rounds.size() - 1);
}

void tst_runJson::numbersFollowNoLocale()
{
    const QByteArray before = toJson(fullRun());
    const QLocale locale;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    // Only where the system has it.
    for (const char *german : {"de_DE.UTF-8", "de_DE"})
        std::setlocale(LC_ALL, german);
    const QByteArray after = toJson(fullRun());
    const outcome<runRecord> read = readRunRecord(before);
    std::setlocale(LC_ALL, "C");
    QLocale::setDefault(locale);
    QCOMPARE(after, before);
    QVERIFY(read);
    QCOMPARE(differences(*read, fullRun()), QStringList());
}

void tst_runJson::shortNumbers()
{
    runRecord run;
    run.tests = {testOf(QStringLiteral("lines"), {})};
    run.tests[0].rounds = {{0.01F, std::chrono::nanoseconds(10'000'123)}};
    const QByteArray json = toJson(run);
    QVERIFY2(json.contains("\"officialSpans\":[0.01]"), json);
    QVERIFY2(json.contains("\"fineSpans\":[10000123]"), json);
}

void tst_runJson::localTimesGetTheirOffset()
{
    runRecord run;
    run.started = QDateTime(QDate(2026, 7, 1), QTime(12, 0), QTimeZone("Asia/Kolkata"));
    run.ended = QDateTime(QDate(2026, 7, 1), QTime(7, 30), Qt::UTC);
    const QByteArray json = toJson(run);
    QVERIFY2(json.contains("\"2026-07-01T12:00:00.000+05:30\""), json);
    QVERIFY2(json.contains("\"2026-07-01T07:30:00.000Z\""), json);
    run.ended = QDateTime(QDate(2026, 7, 1), QTime(7, 30)); // wherever this is
    QVERIFY(readRunRecord(toJson(run)));
    QCOMPARE(differences(*readRunRecord(toJson(run)), run), QStringList());
}

void tst_runJson::whatIsTooLongIsCut()
{
    runRecord run = fullRun();
    run.machine.name = QString(5000, QLatin1Char('m'));
    run.tests[0].name = QString(500, QLatin1Char('t'));
    for (int i = 0; i < 200; ++i)
        run.context.environment[QStringLiteral("OMP_%1").arg(i)] = QString(5000, QLatin1Char('v'));
    run.tests.resize(20000);
    const outcome<runRecord> read = readRunRecord(toJson(run));
    QVERIFY2(read, qPrintable(read ? QString() : read.error()));
    QCOMPARE(read->machine.name, QString(4096, QLatin1Char('m')));
    QCOMPARE(read->tests[0].name, QString(100, QLatin1Char('t')));
    QCOMPARE(read->context.environment.size(), 100);
    QCOMPARE(read->tests.size(), std::size_t(10000));
}

void tst_runJson::tooManyRounds()
{
    runRecord run;
    run.tests = {testOf(QStringLiteral("a"), {}), testOf(QStringLiteral("b"), {})};
    run.tests[0].rounds.assign(600'000, {0.001F, std::chrono::nanoseconds(1'000'000)});
    run.tests[1].rounds = run.tests[0].rounds;
    run.tests[1].average = 0.002F;
    const QByteArray json = toJson(run);
    QVERIFY(json.size() < runJson::longestFile);
    const outcome<runRecord> read = readRunRecord(json);
    QVERIFY(read);
    QCOMPARE(read->tests[0].rounds.size(), std::size_t(600'000));
    QCOMPARE(read->tests[1].rounds.size(), std::size_t(400'000));
    QCOMPARE(read->tests[1].value(), run.tests[1].value());
    QVERIFY(json.contains("\"rounds\":600000"));
}

void tst_runJson::damaged_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("sentence");
    for (const damagedRun &run : damagedRuns())
        QTest::newRow(run.name) << run.content << QString::fromLatin1(run.sentence);
}

void tst_runJson::damaged()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, sentence);
    const outcome<runRecord> read = readRunRecord(content);
    QVERIFY(!read);
    QVERIFY2(read.error().contains(sentence), qPrintable(read.error()));
}

void tst_runJson::tooLongAFile()
{
    QByteArray json = toJson(fullRun());
    json.append(QByteArray(static_cast<int>(runJson::longestFile) - json.size(), ' '));
    QVERIFY(readRunRecord(json));
    json.append(' ');
    const outcome<runRecord> read = readRunRecord(json);
    QVERIFY(!read);
    QCOMPARE(read.error(), QStringLiteral("this is longer than a record of a run can be"));
}

QTEST_APPLESS_MAIN(tst_runJson)
#include "tst_runJson.moc"
