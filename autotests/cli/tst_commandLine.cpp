// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commandLine.h"

#include "data/httpDatabase.h"

#include <QtTest>

namespace
{

const QStringList testNames = {QStringLiteral("mandel"), QStringLiteral("mandel (multicore)"),
                               QStringLiteral("colors "), QStringLiteral("colors  (multicore)")};
const QStringList resolutionNames = {QStringLiteral("3820x2160"), QStringLiteral("800x600")};

parsed<commandLine> read(const QStringList &arguments)
{
    return parseCommandLine(QStringList(QStringLiteral("fennick-cli")) + arguments, testNames,
                            resolutionNames);
}

commandLine parse(const QStringList &arguments)
{
    return read(arguments).value();
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
    const commandLine command = parse({});
    QCOMPARE(command.wanted, commandLine::runFull);
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
    const commandLine command = parse(arguments.split(QLatin1Char('|')));
    QCOMPARE(command.wanted, commandLine::runTests);
    QCOMPARE(command.tests, names.split(QLatin1Char('|')));
}

void tst_commandLine::everything()
{
    const commandLine command = parse(words("--time|15|--resolution|800x600|--test|mandel"));
    QCOMPARE(command.wanted, commandLine::runTests);
    QCOMPARE(command.testTime, 15000);
    QCOMPARE(command.resolution, QStringLiteral("800x600"));
    const commandLine full = parse(words("--time|1"));
    QCOMPARE(full.wanted, commandLine::runFull);
    QCOMPARE(full.testTime, 1000);
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
    const commandLine command = parse(arguments.split(QLatin1Char('|'), Qt::SkipEmptyParts));
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
    QTest::newRow("stray argument") << words("mandel") << QStringLiteral("'mandel'");
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
    QTest::newRow("list") << words("--list")
                          << QStringLiteral("Tests:\n  mandel\n  mandel (multicore)\n  colors \n"
                                            "  colors  (multicore)\nResolutions:\n  3820x2160\n"
                                            "  800x600\n");
    QTest::newRow("list before a run") << words("--list|--test|mandel") << QStringLiteral("Tests:");
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
