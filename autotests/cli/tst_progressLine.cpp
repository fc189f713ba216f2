// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/progressLine.h"

#include "cli/consoleLog.h"
#include "support/fakeClock.h"
#include "support/fakeTest.h"

#include <QtTest>

#include <unistd.h>

using std::chrono::milliseconds;

namespace
{

/// What a terminal of some columns shows of what was written, with the cursor. A small one: it
/// knows carriage return, line feed, and erasing to the end of the line, and goes to the next line
/// as terminals do, when another letter comes behind the last column.
QStringList shownIn(int columns, const QByteArray &written)
{
    QStringList lines(QString{});
    int at = 0;
    for (int i = 0; i < written.size(); ++i) {
        const char letter = written.at(i);
        if (letter == '\r') {
            at = 0;
        } else if (letter == '\n') {
            lines.append(QString());
            at = 0;
        } else if (written.mid(i, 3) == "\x1b[K") {
            lines.last().truncate(at);
            i += 2;
        } else {
            if (at == columns) {
                lines.append(QString());
                at = 0;
            }
            lines.last() = lines.last().leftJustified(at);
            lines.last().replace(at, 1, QLatin1Char(letter));
            ++at;
        }
    }
    return lines;
}

/// A file that stands for a terminal.
class terminal
{
public:
    explicit terminal(int ofColumns) : columns(ofColumns) {}
    terminal(const terminal &) = delete;
    terminal &operator=(const terminal &) = delete;
    ~terminal() { std::fclose(file); }

    QByteArray written()
    {
        std::fflush(file);
        QByteArray bytes(static_cast<int>(std::ftell(file)), '\0');
        std::rewind(file);
        const std::size_t size =
            std::fread(bytes.data(), 1, static_cast<std::size_t>(bytes.size()), file);
        bytes.truncate(static_cast<int>(size));
        return bytes;
    }
    QStringList lines() { return shownIn(columns, written()); }

    std::FILE *file = std::tmpfile();
    int columns;
    liveLine line{file, [this] { return columns; }};
};

} // namespace

class tst_progressLine : public QObject
{
    Q_OBJECT

private slots:
    void times();
    void behindTheLog_data();
    void behindTheLog();
    void nothingWithoutATerminal();
    void progress();
    void seldom();
    void pipesAreNoTerminals();
};

void tst_progressLine::times()
{
    QCOMPARE(timeText(milliseconds(0)), QStringLiteral("0:00"));
    QCOMPARE(timeText(milliseconds(1)), QStringLiteral("0:01"));
    QCOMPARE(timeText(milliseconds(144'000)), QStringLiteral("2:24"));
    QCOMPARE(timeText(milliseconds(-5)), QStringLiteral("0:00"));
    QCOMPARE(timeText(milliseconds(3'600'000)), QStringLiteral("60:00"));
}

void tst_progressLine::behindTheLog_data()
{
    QTest::addColumn<int>("columns");
    for (const int columns : {200, 80, 43, 42, 41, 40, 21, 20, 2, 1})
        QTest::addRow("%d columns", columns) << columns;
}

/// However wide it is, the terminal shows the log as if there had been no progress.
void tst_progressLine::behindTheLog()
{
    QFETCH(int, columns);
    terminal plain(columns);
    consoleLog plainLog(plain.file, nullptr);
    terminal live(columns);
    consoleLog liveLog(live.file, &live.line);
    const QString start = QStringLiteral("Test ") + QStringLiteral("mandel").rightJustified(36);
    for (consoleLog *log : {&plainLog, &liveLog}) {
        log->print(QStringLiteral("CPU/HW: x\n"));
        log->print(start);
    }
    for (const char *text : {" 1/18 2:24 left", " 1/18 2:23 left 512 MPixel/s", " 1/18"})
        live.line.show(QString::fromLatin1(text));
    if (columns > 50)
        QVERIFY(live.lines().last().endsWith(QStringLiteral("mandel 1/18")));
    for (consoleLog *log : {&plainLog, &liveLog})
        log->print(QStringLiteral(" Result: 512/s MPixel (avg 16ms)\n"));
    QCOMPARE(live.lines(), plain.lines());
}

void tst_progressLine::nothingWithoutATerminal()
{
    terminal none(0);
    QVERIFY(!none.line.isVisible());
    none.line.logged(QStringLiteral("Test "));
    none.line.show(QStringLiteral("a"));
    none.line.clear();
    QCOMPARE(none.written(), QByteArray());
}

void tst_progressLine::progress()
{
    const fakeClock clock;
    terminal shown(60);
    progressLine progress(shown.line, 3, milliseconds(8000));
    fakeTest test(QStringLiteral("t"), nullptr);
    progress.testStarts(test, {});
    QCOMPARE(shown.lines().last(), QStringLiteral(" 1/3 0:24 left "));
    for (const int ms : {1000, 1500, 4000}) {
        fakeClock::pass(milliseconds(ms));
        progress.roundMeasured({0, milliseconds(ms)});
    }
    QCOMPARE(shown.lines().last(), QStringLiteral(" 1/3 0:18 left 2 MFakes/s"));
    progress.testEnded(test, testEnd::complete, 1);
    QCOMPARE(shown.lines().last(), QString());
    progress.testStarts(test, {});
    QCOMPARE(shown.lines().last(), QStringLiteral(" 2/3 0:16 left "));
    fakeClock::pass(milliseconds(20'000));
    progress.roundMeasured({0, milliseconds(0)});
    QCOMPARE(shown.lines().last(), QStringLiteral(" 2/3 0:08 left "));
}

/// Rounds of two milliseconds must not be held up by a terminal.
void tst_progressLine::seldom()
{
    const fakeClock clock;
    terminal shown(60);
    progressLine progress(shown.line, 1, milliseconds(8000));
    fakeTest test(QStringLiteral("t"), nullptr);
    progress.testStarts(test, {});
    for (int round = 0; round < 1000; ++round) {
        fakeClock::pass(milliseconds(2));
        progress.roundMeasured({0, milliseconds(2)});
    }
    QCOMPARE(shown.written().count('\r'), 1 + 20);
}

void tst_progressLine::pipesAreNoTerminals()
{
    int ends[2] = {-1, -1};
    QCOMPARE(::pipe(ends), 0);
    std::FILE *pipe = ::fdopen(ends[1], "w");
    QCOMPARE(terminalWidth(pipe), 0);
    std::fclose(pipe);
    ::close(ends[0]);
}

QTEST_APPLESS_MAIN(tst_progressLine)
#include "tst_progressLine.moc"
