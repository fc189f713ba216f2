// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/testChoice.h"

#include <QtTest>

class tst_testChoice : public QObject
{
    Q_OBJECT

private slots:
    void found_data();
    void found();
    void notFound_data();
    void notFound();
};

void tst_testChoice::found_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QString>("names");
    const auto row = [](const char *wanted, const char *names) {
        QTest::newRow(wanted) << QString::fromLatin1(wanted) << QString::fromLatin1(names);
    };
    row("mandel", "mandel");
    row("mandel (multicore)", "mandel (multicore)");
    row("mandel (", "mandel (multicore)");
    row("colors", "colors ");
    row("  colors   (multicore) ", "colors  (multicore)");
    row("rle", "rle compress/uncompress");
    row("shell", "shellsort");
    row("dithered", "rotozoom 'dithered'");
    row("'no'", "rotozoom 'no'");
    row("vertex*", "vertex|vertex (multicore)");
    row("*pixel'", "rotozoom 'last pixel'");
    row("crc32 bitwis?", "crc32 bitwise");
    row("[lm]*", "mandel|mandel (multicore)|lines|motion blur");
    row("rle*", "rle compress/uncompress");
    row("multi",
        "rotozoom 'linear (multicore)'|rotozoom 'last pixel (multicore)'|mandel (multicore)|"
        "colors  (multicore)|crc32 bitwise (multicore)|vertex (multicore)");
    row("single", "rotozoom 'dithered'|rotozoom 'linear'|rotozoom 'last pixel'|mandel|lines|"
                  "motion blur|shellsort|rle compress/uncompress|zlib uncompress|colors |"
                  "crc32 bitwise|vertex");
}

void tst_testChoice::found()
{
    QFETCH(QString, wanted);
    QFETCH(QString, names);
    const outcome<QStringList> chosen = chosenTests(wanted, listedTests());
    QVERIFY2(chosen.has_value(), chosen ? "" : qPrintable(chosen.error()));
    QCOMPARE(chosen->join(QLatin1Char('|')), names);
}

void tst_testChoice::notFound_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("none")
        << QStringLiteral("sudoku")
        << QStringLiteral("there is no test 'sudoku'. The tests are:\n  rotozoom 'dithered'\n");
    QTest::newRow("empty") << QString() << QStringLiteral("there is no test ''. The tests");
    QTest::newRow("blank") << QStringLiteral(" ")
                           << QStringLiteral("there is no test ' '. The tests");
    QTest::newRow("letter of another case")
        << QStringLiteral("Mandel") << QStringLiteral("there is no");
    QTest::newRow("pattern of none")
        << QStringLiteral("x*") << QStringLiteral("there is no test 'x*'");
    QTest::newRow("unfinished pattern")
        << QStringLiteral("[") << QStringLiteral("there is no test '['");
    QTest::newRow("two beginnings")
        << QStringLiteral("crc")
        << QStringLiteral(
               "'crc' may be any of these tests:\n  crc32 bitwise\n  crc32 bitwise (multicore)");
    QTest::newRow("two middles") << QStringLiteral("pixel")
                                 << QStringLiteral("'pixel' may be any of");
    QTest::newRow("placeholder") << QStringLiteral("%2")
                                 << QStringLiteral("there is no test '%2'. The");
}

void tst_testChoice::notFound()
{
    QFETCH(QString, wanted);
    QFETCH(QString, sentence);
    const outcome<QStringList> chosen = chosenTests(wanted, listedTests());
    QVERIFY(!chosen);
    QVERIFY2(chosen.error().startsWith(sentence), qPrintable(chosen.error()));
}

QTEST_APPLESS_MAIN(tst_testChoice)
#include "tst_testChoice.moc"
