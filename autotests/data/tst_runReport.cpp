// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runReport.h"

#include "runFixtures.h"

#include <QtTest>

#include <limits>

namespace
{

/// A machine with a name that both formats must take care of, and a test of few rounds.
runRecord smallRun()
{
    runRecord run;
    run.started = QDateTime(QDate(2026, 1, 31), QTime(23, 59, 58, 7), Qt::OffsetFromUTC, 3600);
    run.machine = {QStringLiteral("my \"fast\" pc"), QStringLiteral("linux"),
                   QStringLiteral("Some | Processor, X8"), 8, 3.4e9};
    run.build.version = QStringLiteral("26.0");
    testRun test = testOf(QStringLiteral("colors "), {}, 8);
    for (const int milliseconds : {250, 500, 750})
        test.rounds.push_back({0.5F, std::chrono::milliseconds(milliseconds)});
    test.average = 0.125F;
    run.tests = {test};
    return run;
}

/// The rows of a table of comma-separated values, as a reader by the book takes it apart.
QList<QStringList> parsed(const QByteArray &csv)
{
    QList<QStringList> rows = {{QString()}};
    bool isQuoted = false;
    const QString text = QString::fromUtf8(csv);
    for (int i = 0; i < text.size(); ++i) {
        const QChar letter = text.at(i);
        if (letter == QLatin1Char('"')) {
            const bool isDouble = isQuoted && text.mid(i + 1, 1) == QLatin1String("\"");
            if (isDouble)
                rows.last().last() += text.at(++i);
            else
                isQuoted = !isQuoted;
        } else if (!isQuoted && letter == QLatin1Char(',')) {
            rows.last().append(QString());
        } else if (!isQuoted && letter == QLatin1Char('\r')) {
            rows.append(QStringList(QString()));
            ++i;
        } else {
            rows.last().last() += letter;
        }
    }
    rows.removeLast();
    return rows;
}

QString field(const QList<QStringList> &rows, int row, const char *name)
{
    return rows.at(row).value(rows.at(0).indexOf(QString::fromLatin1(name)));
}

} // namespace

class tst_runReport : public QObject
{
    Q_OBJECT

private slots:
    void csvToTheLetter();
    void csvRows();
    void csvNames_data();
    void csvNames();
    void unknownIsEmpty();
    void markdownToTheLetter();
    void markdownOfRepeats();
    void markdownNames_data();
    void markdownNames();
    void markdownRemarks();
    void numbersFollowNoLocale();
};

void tst_runReport::csvToTheLetter()
{
    QCOMPARE(toCsv(smallRun()),
             QByteArray(
                 "started,machine,processor,threads,version,test,unit,multicore,repetition,end,"
                 "value,average,rounds,mean,median,minimum,maximum,standardDeviation,"
                 "medianAbsoluteDeviation,medianLower,medianUpper,verdict,remarks\r\n"
                 "2026-01-31T23:59:58+01:00,\"my \"\"fast\"\" pc\",\"Some | Processor, X8\",8,26.0,"
                 "colors ,MPixel,false,0,complete,64,0.125,3,0.5,0.5,0.25,0.75,"
                 "0.25,0.25,,,too-few-rounds,\r\n"));
}

void tst_runReport::csvRows()
{
    const runRecord run = fullRun();
    const QList<QStringList> rows = parsed(toCsv(run));
    QCOMPARE(rows.size(), 4);
    for (const QStringList &row : rows)
        QCOMPARE(row.size(), rows.at(0).size());
    QCOMPARE(field(rows, 1, "test"), QStringLiteral("mandel"));
    QCOMPARE(field(rows, 1, "repetition"), QStringLiteral("2"));
    QCOMPARE(field(rows, 1, "value").toDouble(), *run.tests[0].value());
    QCOMPARE(field(rows, 1, "rounds"), QStringLiteral("40"));
    QVERIFY(field(rows, 1, "medianLower").toDouble() < field(rows, 1, "median").toDouble());
    QVERIFY(field(rows, 1, "median").toDouble() < field(rows, 1, "medianUpper").toDouble());
    QCOMPARE(field(rows, 1, "verdict"), QStringLiteral("good"));
    QCOMPARE(field(rows, 2, "multicore"), QStringLiteral("true"));
    QCOMPARE(field(rows, 2, "end"), QStringLiteral("stopped"));
    QCOMPARE(field(rows, 2, "remarks"), QStringLiteral("clocks-disagree slower-than-one-core"));
    QCOMPARE(field(rows, 3, "end"), QStringLiteral("failed"));
    QCOMPARE(field(rows, 3, "value"), QString());
    QCOMPARE(parsed(toCsv(repeatedRun(3))).size(), 7);
}

void tst_runReport::csvNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("cell");
    QTest::newRow("plain") << QStringLiteral("mandel") << QByteArray(",mandel,");
    QTest::newRow("comma") << QStringLiteral("a,b") << QByteArray(",\"a,b\",");
    QTest::newRow("quote") << QStringLiteral("\"") << QByteArray(",\"\"\"\",");
    QTest::newRow("line end") << QStringLiteral("a\nb") << QByteArray(",\"a\nb\",");
    QTest::newRow("carriage return") << QStringLiteral("a\rb") << QByteArray(",\"a\rb\",");
    QTest::newRow("letters") << QStringLiteral("\u00e4") << QByteArray(",\xC3\xA4,");
}

void tst_runReport::csvNames()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, cell);
    runRecord run = smallRun();
    run.tests[0].name = name;
    const QByteArray csv = toCsv(run);
    QVERIFY2(csv.contains(cell), csv);
    QCOMPARE(field(parsed(csv), 1, "test"), name);
}

void tst_runReport::unknownIsEmpty()
{
    runRecord run;
    run.tests.resize(1);
    run.tests[0].average = std::numeric_limits<float>::quiet_NaN();
    QCOMPARE(toCsv(run).split('\n').at(1),
             QByteArray(",,,,,,,false,0,complete,,,0,,,,,,,,,too-few-rounds,\r"));
    QCOMPARE(toMarkdown({}),
             QStringLiteral("Fennick\n\n| Test | Value | Unit | Median round | Spread | Verdict |\n"
                            "|---|---:|---|---:|---:|---|\n"));
    QVERIFY(toMarkdown(run).endsWith(QStringLiteral("\n|  |  |  |  |  | no result |\n")));
}

void tst_runReport::markdownToTheLetter()
{
    QCOMPARE(
        toMarkdown(smallRun()),
        QStringLiteral("Fennick 26.0, my \"fast\" pc, Some \\| Processor, X8, 8 threads, "
                       "2026-01-31T23:59:58+01:00\n\n"
                       "| Test | Value | Unit | Median round | Spread | Verdict |\n"
                       "|---|---:|---|---:|---:|---|\n"
                       "| colors | 64.00 | MPixel/s | 500.000 ms | 50.00 % | too-few-rounds |\n"));
}

void tst_runReport::markdownOfRepeats()
{
    runRecord run = repeatedRun(3);
    const float averages[] = {0.1F, 0.4F, 0.2F};
    for (std::size_t i = 0; i < 3; ++i)
        run.tests[2 * i].average = averages[i];
    const QStringList lines = toMarkdown(run).split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 7); // the line above, four of the table, and the last one's end
    QVERIFY2(lines[4].startsWith(QStringLiteral("| mandel | 40.00 | MPixel/s | 160.")),
             qPrintable(lines[4]));
    // Of 80, 20 and 40: the sample's deviation is 30.55, the mean 46.67.
    QVERIFY2(lines[4].contains(QStringLiteral(" | 65.47 % | ")), qPrintable(lines[4]));
}

void tst_runReport::markdownNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("cell");
    QTest::newRow("bar") << QStringLiteral("a|b") << QStringLiteral("a\\|b");
    QTest::newRow("emphasis") << QStringLiteral("*a* _b_") << QStringLiteral("\\*a\\* \\_b\\_");
    QTest::newRow("link") << QStringLiteral("[a](b)") << QStringLiteral("\\[a\\](b)");
    QTest::newRow("HTML") << QStringLiteral("<b>&amp;") << QStringLiteral("\\<b\\>\\&amp;");
    QTest::newRow("code") << QStringLiteral("`a` \\") << QStringLiteral("\\`a\\` \\\\");
    QTest::newRow("lines") << QStringLiteral("a\nb\tc") << QStringLiteral("a b c");
}

void tst_runReport::markdownNames()
{
    QFETCH(QString, name);
    QFETCH(QString, cell);
    runRecord run = smallRun();
    run.tests[0].name = name;
    run.machine.name = name;
    const QString table = toMarkdown(run);
    QVERIFY2(table.startsWith(QStringLiteral("Fennick 26.0, %1, Some").arg(cell)),
             qPrintable(table));
    QVERIFY2(table.contains(QStringLiteral("\n| %1 | 64.00 |").arg(cell)), qPrintable(table));
    QCOMPARE(table.count(QLatin1Char('\n')), 5);
}

void tst_runReport::markdownRemarks()
{
    const QString table = toMarkdown(fullRun());
    QVERIFY2(table.contains(QStringLiteral(", stopped before its end, the load average was 1.25 at "
                                           "the start\n\n")),
             qPrintable(table));
    QVERIFY2(
        table.contains(QStringLiteral(" | unsteady, clocks-disagree, slower-than-one-core |\n")),
        qPrintable(table));
    QVERIFY2(table.endsWith(QStringLiteral("| colors |  |  |  |  | no result |\n")),
             qPrintable(table));
}

void tst_runReport::numbersFollowNoLocale()
{
    const QByteArray csv = toCsv(fullRun());
    const QString table = toMarkdown(fullRun());
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QByteArray germanCsv = toCsv(fullRun());
    const QString germanTable = toMarkdown(fullRun());
    QLocale::setDefault(before);
    QCOMPARE(germanCsv, csv);
    QCOMPARE(germanTable, table);
}

QTEST_APPLESS_MAIN(tst_runReport)
#include "tst_runReport.moc"
