// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commandLine.h"

#include "data/httpDatabase.h"

#include <QtTest>

namespace
{

const std::vector<listedTest> tests = {{QStringLiteral("mandel"), false},
                                       {QStringLiteral("mandel (multicore)"), true},
                                       {QStringLiteral("colors "), false},
                                       {QStringLiteral("colors  (multicore)"), true}};
const QStringList resolutionNames = {QStringLiteral("3820x2160"), QStringLiteral("800x600")};

parsed<request> read(const QStringList &arguments)
{
    return parseCommandLine(QStringList(QStringLiteral("fennick-cli")) + arguments, tests,
                            resolutionNames);
}

runRequest parse(const QStringList &arguments)
{
    return std::get<runRequest>(read(arguments).value());
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char('|'), Qt::SkipEmptyParts);
}

} // namespace

class tst_commandLine : public QObject
{
    Q_OBJECT

private slots:
    void withoutArguments();
    void tests_data();
    void tests();
    void everything();
    void surroundings();
    void files();
    void commands();
    void upload_data();
    void upload();
    void server();
    void errors_data();
    void errors();
    void messages_data();
    void messages();
};

void tst_commandLine::withoutArguments()
{
    const runRequest command = parse({});
    QCOMPARE(command.wanted, runRequest::fullRun);
    QCOMPARE(command.testTime, 8000);
    QVERIFY(command.tests.isEmpty());
    QVERIFY(command.resolution.isEmpty());
}

void tst_commandLine::tests_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("names");
    QTest::newRow("one") << QStringLiteral("--test|mandel") << QStringLiteral("mandel");
    QTest::newRow("equals sign") << QStringLiteral("--test=mandel (multicore)")
                                 << QStringLiteral("mandel (multicore)");
    QTest::newRow("two, in their order, one twice")
        << QStringLiteral("--test|colors |--test|mandel|--test|mandel")
        << QStringLiteral("colors |mandel|mandel");
    QTest::newRow("blanks left out") << QStringLiteral("--test|colors (multicore)|--test|colors")
                                     << QStringLiteral("colors  (multicore)|colors ");
}

void tst_commandLine::tests()
{
    QFETCH(QString, arguments);
    QFETCH(QString, names);
    const runRequest command = parse(arguments.split(QLatin1Char('|')));
    QCOMPARE(command.wanted, runRequest::namedTests);
    QCOMPARE(command.tests, names.split(QLatin1Char('|')));
}

void tst_commandLine::everything()
{
    const runRequest command = parse(words("--time|15|--resolution|800x600|--test|mandel"));
    QCOMPARE(command.wanted, runRequest::namedTests);
    QCOMPARE(command.testTime, 15000);
    QCOMPARE(command.resolution, QStringLiteral("800x600"));
    const runRequest full = parse(words("--time|1"));
    QCOMPARE(full.wanted, runRequest::fullRun);
    QCOMPARE(full.testTime, 1000);
}

void tst_commandLine::surroundings()
{
    const runRequest plain = parse({});
    QVERIFY(!plain.repetitions && !plain.threads && !plain.isPinned && !plain.isVerified);
    QVERIFY(!plain.isQuiet && plain.warmUpSeconds == 0 && plain.idleSeconds == 0);
    QVERIFY(plain.isOrdinary() && !plain.output.isOnStandardOutput());
    const runRequest run =
        parse(words("-n|3|--threads|2|--pin|--verify|--warmup|4|--wait-idle|5|-q|"
                    "--json|a|--csv|b|--markdown|-"));
    QCOMPARE(run.repetitions, std::optional<int>(3));
    QCOMPARE(run.threads, std::optional<int>(2));
    QVERIFY(run.isPinned && run.isVerified && run.isQuiet && !run.isOrdinary());
    QCOMPARE(run.warmUpSeconds, 4);
    QCOMPARE(run.idleSeconds, 5);
    QCOMPARE(run.output.json, QStringLiteral("a"));
    QCOMPARE(run.output.csv, QStringLiteral("b"));
    QVERIFY(run.output.isOnStandardOutput());
    QVERIFY(!parse(words("--pin")).isOrdinary());
    QVERIFY(!parse(words("--threads|1")).isOrdinary());
    const runRequest letters = parse(words("-t|mandel|-r|800x600"));
    QCOMPARE(letters.tests, QStringList(QStringLiteral("mandel")));
    QCOMPARE(letters.resolution, QStringLiteral("800x600"));
}

/// A file that is left out is standard output.
void tst_commandLine::files()
{
    QCOMPARE(parse(words("--json|--quiet")).output.json, QStringLiteral("-"));
    QVERIFY(parse(words("--json|--quiet")).isQuiet);
    QCOMPARE(parse(words("--markdown")).output.markdown, QStringLiteral("-"));
    QCOMPARE(parse(words("--markdown|-")).output.markdown, QStringLiteral("-"));
    QCOMPARE(parse(words("--csv=c")).output.csv, QStringLiteral("c"));
    QCOMPARE(std::get<listRequest>(*read(words("--list"))).json, QString());
    QCOMPARE(std::get<listRequest>(*read(words("--list|--json"))).json, QStringLiteral("-"));
    QCOMPARE(std::get<listRequest>(*read(words("--json|f|--list"))).json, QStringLiteral("f"));
}

void tst_commandLine::commands()
{
    QVERIFY(std::holds_alternative<verifyRequest>(*read(words("verify"))));
    QVERIFY(std::holds_alternative<historyRequest>(*read(words("history"))));
    QVERIFY(std::holds_alternative<doctorRequest>(*read(words("doctor"))));
    QVERIFY(std::holds_alternative<manualRequest>(*read(words("manual"))));
    const auto show = std::get<showRequest>(*read(words("show|3|--markdown")));
    QCOMPARE(show.run, QStringLiteral("3"));
    QCOMPARE(show.output.markdown, QStringLiteral("-"));
    const auto two = std::get<compareRequest>(*read(words("compare|1|b.json")));
    QCOMPARE(two.first, QStringLiteral("1"));
    QCOMPARE(two.second, QStringLiteral("b.json"));
    const auto with = std::get<compareRequest>(*read(words("compare|--with|Core i7")));
    QCOMPARE(with.first, QString());
    QCOMPARE(with.with, QStringLiteral("Core i7"));
    QCOMPARE(std::get<completionRequest>(*read(words("completion|zsh"))).shell,
             QStringLiteral("zsh"));
    QCOMPARE(std::get<completeRequest>(*read(words("complete|--|--test|man"))).words,
             words("--test|man"));
}

void tst_commandLine::upload_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<bool>("isUpload");
    const auto row = [](const char *arguments, bool isUpload) {
        QTest::newRow(arguments) << QString::fromLatin1(arguments) << isUpload;
    };
    row("", false);
    row("--upload", true);
    row("--no-upload", false);
    row("--upload|--no-upload", false);
    row("--no-upload|--upload", true);
    row("--upload|--no-upload|--upload", true);
    row("--upload|--time|8", true);
    row("--upload|--server|a", true);
    // What is not to be uploaded may be anything.
    row("--upload|--no-upload|--time|9", false);
    row("--upload|--no-upload|--test|mandel", false);
}

void tst_commandLine::upload()
{
    QFETCH(QString, arguments);
    const runRequest command = parse(arguments.split(QLatin1Char('|'), Qt::SkipEmptyParts));
    QTEST(command.isUpload, "isUpload");
}

void tst_commandLine::server()
{
    QCOMPARE(parse({}).server, httpDatabase::defaultHost());
    QCOMPARE(parse(words("--server|a.example:80")).server, QStringLiteral("a.example:80"));
    QCOMPARE(parse(words("--server|a|--server|[::1]:80|--test|mandel")).server,
             QStringLiteral("[::1]:80"));
}

void tst_commandLine::errors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("part");
    const QString tests = QStringLiteral("The tests are:\n  mandel\n  mandel (multicore)\n");
    QTest::newRow("unknown test") << words("--test|Mandel") << tests;
    QTest::newRow("unknown test with a placeholder")
        << words("--test|%2") << QStringLiteral("no test '%2'. The tests are:\n  mandel\n");
    QTest::newRow("one of two unknown") << words("--test|mandel|--test|x") << tests;
    QTest::newRow("empty test") << QStringList({QStringLiteral("--test"), QString()}) << tests;
    QTest::newRow("unknown resolution")
        << words("--test|mandel|--resolution|1x1") << QStringLiteral("  3820x2160\n  800x600\n");
    QTest::newRow("resolution of a full run")
        << words("--resolution|800x600") << QStringLiteral("always uses 3820x2160");
    for (const char *time : {"0", "-1", "1.5", "soon", "", "2147484", "99999999999"}) {
        QTest::addRow("time '%s'", time)
            << QStringList({QStringLiteral("--time"), QString::fromLatin1(time)})
            << QStringLiteral("not '%1'").arg(QString::fromLatin1(time));
    }
    QTest::newRow("upload of one test")
        << words("--upload|--test|mandel") << QStringLiteral("--upload cannot go with --test");
    for (const char *time : {"7", "9"}) {
        QTest::addRow("upload of %s s", time)
            << (words("--upload|--time") << QString::fromLatin1(time))
            << QStringLiteral("only results of 8 seconds per test");
    }
    for (const char *host : {"", "a/b", "http://a", "a:0", "a b", "%1"}) {
        QTest::addRow("server '%s'", host)
            << QStringList({QStringLiteral("--server"), QString::fromLatin1(host)})
            << QStringLiteral("not '%1'").arg(QString::fromLatin1(host));
    }
    QTest::newRow("no value") << words("--test") << QStringLiteral("--test");
    QTest::newRow("unknown option") << words("--fast") << QStringLiteral("fast");
    QTest::newRow("stray argument") << words("--time|1|mandel") << QStringLiteral("'mandel'");
    QTest::newRow("no such command")
        << words("mandel") << QStringLiteral("'mandel'; the commands are verify, history, show");
    QTest::newRow("command behind an option")
        << words("--time|1|verify") << QStringLiteral("'verify'");
    QTest::newRow("option of another command")
        << words("verify|--time|1") << QStringLiteral("time");
    QTest::newRow("too many runs") << words("compare|1|2|3") << QStringLiteral("'3'");
    QTest::newRow("a machine and two runs")
        << words("compare|1|2|--with|x") << QStringLiteral("--with takes");
    QTest::newRow("no shell") << words("completion") << QStringLiteral("bash, zsh, fish, not ''");
    QTest::newRow("another shell") << words("completion|csh") << QStringLiteral("not 'csh'");
    for (const char *option : {"repeat", "warmup", "wait-idle", "threads"}) {
        for (const char *number : {"0", "-1", "x", "1e1", "99999999999"})
            QTest::addRow("--%s %s", option, number)
                << QStringList(
                       QStringLiteral("--%1=%2").arg(QLatin1String(option), QLatin1String(number)))
                << QStringLiteral("--%1 takes a whole number").arg(QLatin1String(option));
    }
    QTest::newRow("upload with threads")
        << words("--upload|--threads|1") << QStringLiteral("--threads or --pin");
    QTest::newRow("upload pinned")
        << words("--upload|--pin") << QStringLiteral("--threads or --pin");
    QTest::newRow("two tables on standard output")
        << words("--json|-|--csv|-") << QStringLiteral("only one of --json, --csv and --markdown");
    QTest::newRow("no name of a file") << words("--json=") << QStringLiteral("--json takes");
}

void tst_commandLine::errors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, part);
    const auto command = read(arguments);
    QVERIFY(!command);
    QCOMPARE(command.error().code, exitUsage);
    const QString text = command.error().text;
    QVERIFY(text.startsWith(QStringLiteral("fennick-cli: ")));
    QVERIFY(text.endsWith(QLatin1Char('\n')));
    QVERIFY2(text.contains(part), qPrintable(text));
}

void tst_commandLine::messages_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("part");
    QTest::newRow("version") << words("--version") << QStringLiteral("fennick-cli 26.0\n");
    for (const char *option : {"--list", "--test", "--resolution", "--time", "--upload",
                               "--no-upload", "--server", "--version", "--help"})
        QTest::addRow("help has %s", option) << words("--help") << QString::fromLatin1(option);
}

void tst_commandLine::messages()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, part);
    const auto command = read(arguments);
    QVERIFY(!command);
    QCOMPARE(command.error().code, exitSuccess);
    QVERIFY2(command.error().text.contains(part), qPrintable(command.error().text));
}

QTEST_GUILESS_MAIN(tst_commandLine)
#include "tst_commandLine.moc"
