// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/options.h"

#include <QCommandLineParser>
#include <QtTest>

class tst_options : public QObject
{
    Q_OBJECT

private slots:
    void helpAndVersion();
    void programGoesOn();
    void wrongOption();
    void wholeNumbers_data();
    void wholeNumbers();
};

namespace
{

const QString program = QStringLiteral("program");

std::optional<closingText> read(const QString &argument)
{
    QCommandLineParser parser;
    parser.addOption({QStringLiteral("own"), QStringLiteral("An option of its own.")});
    return readOptions(parser, {program, argument}, program);
}

} // namespace

void tst_options::helpAndVersion()
{
    const auto help = read(QStringLiteral("--help"));
    QVERIFY(help.has_value());
    QCOMPARE(help->code, exitSuccess);
    QVERIFY(help->text.contains(QStringLiteral("An option of its own.")));
    const auto version = read(QStringLiteral("--version"));
    QVERIFY(version.has_value());
    QCOMPARE(version->code, exitSuccess);
    QCOMPARE(version->text, QStringLiteral("program 26.0\n"));
}

void tst_options::programGoesOn()
{
    QVERIFY(!read(QStringLiteral("--own")).has_value());
    QVERIFY(!read(QStringLiteral("argument")).has_value());
}

void tst_options::wrongOption()
{
    const auto closing = read(QStringLiteral("--other"));
    QVERIFY(closing.has_value());
    QCOMPARE(closing->code, exitUsage);
    QCOMPARE(closing->text, QStringLiteral("program: Unknown option 'other'.\n"));
}

void tst_options::wholeNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("number"); // -1 for none
    const auto row = [](const char *text, int number) {
        QTest::addRow("'%s'", text) << QString::fromLatin1(text) << number;
    };
    row("2", 2);
    row("10", 10);
    row("1", -1);
    row("11", -1);
    row("2.0", -1);
    row("", -1);
    row("two", -1);
    row("-3", -1);
    row("99999999999", -1);
}

void tst_options::wholeNumbers()
{
    QFETCH(QString, text);
    QTEST(wholeNumber(text, 2, 10).value_or(-1), "number");
}

QTEST_GUILESS_MAIN(tst_options)
#include "tst_options.moc"
