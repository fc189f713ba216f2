// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/noteBar.h"

#include <QMainWindow>
#include <QtTest>

class tst_noteBar : public QObject
{
    Q_OBJECT

private slots:
    void allOfTheMessage_data();
    void allOfTheMessage();
    void roomIsGivenBack();
    void followsTheWidth();
    void earlyMessageKeepsTheWindow();
    void standingTextStays();
    void canBeReadOnAnyGround_data();
    void canBeReadOnAnyGround();
};

namespace
{

const QString manyWords = QStringLiteral("word ").repeated(60);

struct barWindow {
    barWindow()
    {
        window.setCentralWidget(new QWidget);
        window.setStatusBar(bar);
        window.resize(400, 300);
        window.show();
    }
    void say(const QString &text) const
    {
        bar->showMessage(text);
        QCoreApplication::processEvents();
    }
    int inkedRows() const
    {
        const QImage image = bar->grab().toImage();
        int rows = 0;
        for (int y = 0; y < image.height(); ++y) {
            bool isInked = false;
            for (int x = 8; x < image.width() / 2; ++x)
                isInked = isInked || qGray(image.pixel(x, y)) < 100;
            rows += isInked ? 1 : 0;
        }
        return rows;
    }

    QMainWindow window;
    noteBar *bar = new noteBar;
};

} // namespace

void tst_noteBar::allOfTheMessage_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("lines"); // at least
    QTest::newRow("one line") << QStringLiteral("hello") << 1;
    QTest::newRow("many lines") << manyWords << 4;
}

void tst_noteBar::allOfTheMessage()
{
    QFETCH(QString, text);
    QFETCH(int, lines);
    const barWindow w;
    w.say(text);
    const int lineHeight = w.bar->fontMetrics().height();
    QVERIFY(w.bar->height() >= lines * lineHeight);
    QVERIFY(lines > 1 || w.bar->height() < 3 * lineHeight);
    // Every second pixel row of a line of text has ink, or more.
    QVERIFY2(w.inkedRows() >= lines * lineHeight / 3, qPrintable(QString::number(w.inkedRows())));
}

void tst_noteBar::roomIsGivenBack()
{
    const barWindow w;
    w.say(QString());
    const int before = w.bar->height();
    w.say(manyWords);
    QVERIFY(w.bar->height() > before);
    w.say(QString());
    QCOMPARE(w.bar->height(), before);
}

void tst_noteBar::followsTheWidth()
{
    barWindow w;
    w.say(manyWords);
    const int narrow = w.bar->height();
    w.window.resize(1500, 300);
    QTRY_VERIFY(w.bar->height() < narrow);
    w.window.resize(400, 300);
    QTRY_COMPARE(w.bar->height(), narrow);
}

void tst_noteBar::earlyMessageKeepsTheWindow()
{
    const barWindow late;
    late.say(manyWords);
    QMainWindow window;
    window.setCentralWidget(new QWidget);
    auto *bar = new noteBar(&window);
    window.setStatusBar(bar);
    window.resize(400, 300);
    bar->showMessage(manyWords);
    window.show();
    QCoreApplication::processEvents();
    QCOMPARE(window.size(), QSize(400, 300));
    QCOMPARE(bar->height(), late.bar->height());
}

void tst_noteBar::standingTextStays()
{
    const barWindow w;
    w.say(QStringLiteral("hello"));
    const int oneLine = w.bar->height();
    w.bar->setStanding(QStringLiteral("place 1 of 2"));
    QCoreApplication::processEvents();
    QVERIFY(w.bar->height() >= oneLine + w.bar->fontMetrics().height() / 2);
    QVERIFY(w.inkedRows() >= 2 * w.bar->fontMetrics().height() / 3);
    QCOMPARE(w.bar->accessibleDescription(), QStringLiteral("place 1 of 2\nhello"));
    w.say(QString());
    QCOMPARE(w.bar->getStanding(), QStringLiteral("place 1 of 2"));
    QVERIFY(w.inkedRows() > 0);
    QCOMPARE(w.bar->accessibleDescription(), QStringLiteral("place 1 of 2"));
}

void tst_noteBar::canBeReadOnAnyGround_data()
{
    QTest::addColumn<QString>("ground");
    QTest::addColumn<bool>("isInkDark");
    QTest::newRow("grey") << QStringLiteral("darkgray") << true;
    QTest::newRow("nearly black") << QStringLiteral("#202020") << false;
}

void tst_noteBar::canBeReadOnAnyGround()
{
    QFETCH(QString, ground);
    QFETCH(bool, isInkDark);
    barWindow w;
    w.window.setStyleSheet(
        QStringLiteral("QWidget { color: gray; background-color: %1; }").arg(ground));
    w.say(manyWords);
    const QImage image = w.bar->grab().toImage();
    bool isDark = false;
    bool isBright = false;
    for (int x = 8; x < image.width() / 2; ++x) {
        for (int y = 4; y < image.height() - 4; ++y) {
            isDark = isDark || qGray(image.pixel(x, y)) < 20;
            isBright = isBright || qGray(image.pixel(x, y)) > 235;
        }
    }
    QCOMPARE(isDark, isInkDark);
    QCOMPARE(isBright, !isInkDark);
}

QTEST_MAIN(tst_noteBar)
#include "tst_noteBar.moc"
