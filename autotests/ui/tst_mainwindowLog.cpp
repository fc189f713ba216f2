// SPDX-License-Identifier: GPL-3.0-or-later

// The log: what can be read of it, and where it stands.

#include "support/dataDirectory.h"
#include "ui/logColumns.h"
#include "windowFixture.h"

#include <QAction>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>
#include <QtTest>

namespace
{

/// A window whose log is longer than there is room for.
struct logFixture : windowFixture {
    logFixture()
        : windowFixture([](printHook *) {
              suite tests;
              tests.push_back(std::make_unique<fakeTest>(oneCore, nullptr));
              return tests;
          })
    {
        settle();
        for (int i = 0; i < 60; ++i)
            window->print(QStringLiteral("line %1\n").arg(i));
        settle();
    }
    static void settle()
    {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }
    QTextEdit *box() const { return find<QTextEdit>("debugBox"); }
    QScrollBar *bar() const { return box()->verticalScrollBar(); }
    void resizeBy(int width, int height) const
    {
        window->resize(window->size() + QSize(width, height));
        settle();
    }
    /// The lines on the screen that a line of the log takes.
    int linesOf(const QString &text) const
    {
        QTextBlock block = box()->document()->firstBlock();
        while (block.isValid() && block.text() != text)
            block = block.next();
        return block.isValid() ? block.layout()->lineCount() : 0;
    }
    bool isEndInSight() const
    {
        QTextCursor cursor(box()->document());
        cursor.movePosition(QTextCursor::End);
        return box()->viewport()->rect().contains(box()->cursorRect(cursor).center());
    }
};

} // namespace

class tst_mainwindowLog : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void resultsFitOnALine_data();
    void resultsFitOnALine();
    void columnsLineUp();
    void fontStaysTheForms();
    void wideWindowHasWideLetters();
    void endStaysInSight_data();
    void endStaysInSight();
    void endAfterARun();
    void scrolledUpStays_data();
    void scrolledUpStays();
    void nextMessageIsShown();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_mainwindowLog::resultsFitOnALine_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("longest") << logColumns::longestLine();
    QTest::newRow("usual") << QStringLiteral("Test %1 Result: 12.3456/s MPixel (avg 123.456ms)")
                                  .arg(QStringLiteral("rotozoom 'last pixel' (multicore)"), 36);
    QTest::newRow("vertices") << QStringLiteral("Test %1 Result: 123.456/s MVertices (avg "
                                                "123.456ms)")
                                     .arg(QStringLiteral("vertex (multicore)"), 36);
}

void tst_mainwindowLog::resultsFitOnALine()
{
    QFETCH(QString, line);
    const logFixture f;
    QCOMPARE(f.window->size(), QSize(688, 905));
    f.window->print(line + QLatin1Char('\n'));
    logFixture::settle();
    QVERIFY(f.bar()->isVisible()); // which takes room
    QCOMPARE(f.linesOf(line), 1);
}

void tst_mainwindowLog::columnsLineUp()
{
    const logFixture f;
    const QFontMetricsF metrics(f.box()->font());
    QCOMPARE(metrics.horizontalAdvance(QString(40, QLatin1Char('i'))),
             metrics.horizontalAdvance(QString(40, QLatin1Char('M'))));
}

void tst_mainwindowLog::fontStaysTheForms()
{
    const logFixture f;
    QCOMPARE(f.box()->font().family(), QStringLiteral("Consolas"));
    QCOMPARE(f.box()->font().pointSize(), 10);
    QCOMPARE(f.box()->font().weight(), 50);
}

void tst_mainwindowLog::wideWindowHasWideLetters()
{
    const logFixture f;
    f.resizeBy(600, 0);
    QCOMPARE(f.box()->font().stretch(), int(QFont::Unstretched));
    const double wide = QFontMetricsF(f.box()->font()).horizontalAdvance(QLatin1Char('x'));
    f.resizeBy(-600, 0);
    QVERIFY(QFontMetricsF(f.box()->font()).horizontalAdvance(QLatin1Char('x')) <= wide);
    f.window->print(logColumns::longestLine());
    logFixture::settle();
    QCOMPARE(f.linesOf(logColumns::longestLine()), 1);
}

void tst_mainwindowLog::endStaysInSight_data()
{
    QTest::addColumn<QSize>("first");
    QTest::addColumn<QSize>("then");
    QTest::newRow("lower") << QSize(0, -150) << QSize(0, -50);
    QTest::newRow("lower, higher") << QSize(0, -150) << QSize(0, 150);
    QTest::newRow("all of it, lower") << QSize(0, 2500) << QSize(0, -2500);
    QTest::newRow("wider, narrower") << QSize(400, 0) << QSize(-400, 0);
}

void tst_mainwindowLog::endStaysInSight()
{
    QFETCH(QSize, first);
    QFETCH(QSize, then);
    const logFixture f;
    QVERIFY(f.isEndInSight());
    for (const QSize &change : {first, then}) {
        f.resizeBy(change.width(), change.height());
        QVERIFY(f.isEndInSight());
        QCOMPARE(f.bar()->value(), f.bar()->maximum());
    }
}

void tst_mainwindowLog::endAfterARun()
{
    logFixture f;
    auto *test = f.window->findChild<QComboBox *>(QStringLiteral("calcComboBox"));
    QCOMPARE(test->currentText(), oneCore);
    f.addTestTime(QStringLiteral("soon")); // the run is over at once
    f.button("singleTestButton")->click();
    logFixture::settle();
    QVERIFY(f.isIdle());
    QVERIFY(f.newLog().contains(QStringLiteral("Result: ")));
    QVERIFY(f.isEndInSight());
    QCOMPARE(f.bar()->value(), f.bar()->maximum());
}

void tst_mainwindowLog::scrolledUpStays_data()
{
    QTest::addColumn<int>("place"); // in percent
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("then");
    QTest::newRow("start, lower") << 0 << -150 << 150;
    QTest::newRow("middle, lower") << 50 << -150 << 150;
    QTest::newRow("start, all of it") << 0 << 2500 << -2500;
    QTest::newRow("middle, all of it") << 50 << 2500 << -2500;
}

void tst_mainwindowLog::scrolledUpStays()
{
    QFETCH(int, place);
    QFETCH(int, first);
    QFETCH(int, then);
    const logFixture f;
    const int value = f.bar()->maximum() * place / 100;
    f.bar()->setValue(value);
    QVERIFY(!f.isEndInSight());
    f.resizeBy(0, first);
    QCOMPARE(f.bar()->value(), std::min(value, f.bar()->maximum()));
    f.resizeBy(0, then);
    QCOMPARE(f.bar()->value(), value);
}

void tst_mainwindowLog::nextMessageIsShown()
{
    const logFixture f;
    f.bar()->setValue(0);
    f.window->print(QStringLiteral("news\nand more\n"));
    logFixture::settle();
    QVERIFY(f.isEndInSight());
    QVERIFY(f.log().endsWith(QStringLiteral("line 59\nnews\nand more\n")));
}

QTEST_MAIN(tst_mainwindowLog)
#include "tst_mainwindowLog.moc"
