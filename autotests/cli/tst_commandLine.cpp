// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commandLine.h"

#include <QtTest>

namespace
{

const QStringList testNames = {QStringLiteral("mandel"), QStringLiteral("mandel (multicore)"),
                               QStringLiteral("colors "), QStringLiteral("colors  (multicore)")};
const QStringList resolutionNames = {QStringLiteral("3820x2160"), QStringLiteral("800x600")};

commandLine parse(const QStringList &arguments)
{
    return parseCommandLine(QStringList(QStringLiteral("fennick-cli")) + arguments, testNames,
                            resolutionNames);
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
    QTest::newRow("no value") << words("--test") << QStringLiteral("--test");
    QTest::newRow("unknown option") << words("--fast") << QStringLiteral("fast");
    QTest::newRow("stray argument") << words("mandel") << QStringLiteral("'mandel'");
}

void tst_commandLine::errors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, part);
    const commandLine command = parse(arguments);
    QCOMPARE(command.wanted, commandLine::showError);
    QVERIFY(command.message.startsWith(QStringLiteral("fennick-cli: ")));
    QVERIFY(command.message.endsWith(QLatin1Char('\n')));
    QVERIFY2(command.message.contains(part), qPrintable(command.message));
}

void tst_commandLine::messages_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("part");
    QTest::newRow("version") << words("--version") << QStringLiteral("fennick-cli 26.0\n");
    for (const char *option : {"--list", "--test", "--resolution", "--time", "--version", "--help"})
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
    const commandLine command = parse(arguments);
    QCOMPARE(command.wanted, commandLine::showText);
    QVERIFY2(command.message.contains(part), qPrintable(command.message));
}

QTEST_GUILESS_MAIN(tst_commandLine)
#include "tst_commandLine.moc"
