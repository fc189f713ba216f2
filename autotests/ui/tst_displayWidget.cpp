// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/displayWidget.h"

#include "paintRecord.h"
#include "support/fakeTest.h"

#include <QPainter>
#include <QtTest>

#include <algorithm>

namespace
{

constexpr quint32 red = 0xFFFF0000U;
constexpr quint32 green = 0xFF00FF00U;
constexpr quint32 blue = 0xFF0000FFU;
constexpr quint32 white = 0xFFFFFFFFU;
constexpr quint32 black = 0xFF000000U;

QImage pictureOf(displayWidget &widget)
{
    return widget.grab().toImage().convertToFormat(QImage::Format_ARGB32);
}

/// The status line as it must look, over a frame of one colour.
QImage expectedLine(const displayWidget &widget, quint32 frameColour, const QString &text)
{
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(frameColour);
    QPainter painter(&image);
    painter.setFont(widget.font());
    painter.setPen(QColor(255, 255, 0));
    painter.setBackgroundMode(Qt::OpaqueMode);
    painter.setBackground(Qt::black);
    painter.drawText(QRect(0, 0, widget.width(), painter.fontMetrics().height()), 0, text);
    return image;
}

} // namespace

class tst_displayWidget : public QObject
{
    Q_OBJECT

private slots:
    void blackWithoutTest();
    void stretchesBothAxes();
    void followsTheFrameWithoutCopy();
    void blackAfterTheTest();
    void statusLine_data();
    void statusLine();
    void testIndex();
    void drawsTheFrameItself();
    void clockLines();
    void clocksBelowTheStatusLine();
    void clocksAreOptional();
};

void tst_displayWidget::blackWithoutTest()
{
    displayWidget widget;
    widget.resize(50, 40);
    const QImage picture = pictureOf(widget);
    QImage expected(picture.size(), QImage::Format_ARGB32);
    expected.fill(black);
    QCOMPARE(picture, expected);
}

void tst_displayWidget::stretchesBothAxes()
{
    fakeTest test(QStringLiteral("t"), nullptr);
    QVERIFY(test.setup(2, 2));
    std::copy_n(std::begin({red, green, blue, white}), 4, test.getBuffer());
    displayWidget widget;
    widget.resize(400, 300);
    widget.setTest(&test);
    const QImage picture = pictureOf(widget);
    // The text covers the top left only.
    QCOMPARE(picture.pixel(0, 149), red);
    QCOMPARE(picture.pixel(199, 149), red);
    QCOMPARE(picture.pixel(399, 0), green);
    QCOMPARE(picture.pixel(200, 149), green);
    QCOMPARE(picture.pixel(0, 299), blue);
    QCOMPARE(picture.pixel(199, 150), blue);
    QCOMPARE(picture.pixel(399, 299), white);
    QCOMPARE(picture.pixel(200, 150), white);
}

void tst_displayWidget::followsTheFrameWithoutCopy()
{
    fakeTest test(QStringLiteral("t"), nullptr);
    QVERIFY(test.setup(1, 1));
    test.getBuffer()[0] = red;
    displayWidget widget;
    widget.resize(60, 60);
    widget.setTest(&test);
    QCOMPARE(pictureOf(widget).pixel(59, 59), red);
    test.getBuffer()[0] = blue;
    QCOMPARE(pictureOf(widget).pixel(59, 59), blue);
}

void tst_displayWidget::blackAfterTheTest()
{
    fakeTest test(QStringLiteral("t"), nullptr);
    QVERIFY(test.setup(1, 1));
    test.getBuffer()[0] = red;
    displayWidget widget;
    widget.resize(60, 60);
    widget.setTest(&test);
    pictureOf(widget);
    widget.setTest(nullptr);
    test.release();
    const QImage picture = pictureOf(widget);
    for (const QPoint &point : {QPoint(0, 0), QPoint(59, 59), QPoint(5, 5)})
        QCOMPARE(picture.pixel(point), black);
}

void tst_displayWidget::statusLine_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("multicore");
    QTest::addColumn<int>("index"); // -1: no progress
    QTest::addColumn<QString>("line");
    QTest::newRow("single test") << QStringLiteral("lines") << false << -1
                                 << QStringLiteral(" Test: lines (singlecore)");
    QTest::newRow("full run") << QStringLiteral("mandel") << false << 5
                              << QStringLiteral(" Test (6 of 18): mandel (singlecore)");
    QTest::newRow("first") << QStringLiteral("mandel") << false << 0
                           << QStringLiteral(" Test (1 of 18): mandel (singlecore)");
    QTest::newRow("multi-core") << QStringLiteral("mandel (multicore)") << true << 6
                                << QStringLiteral(" Test (7 of 18): mandel (multicore) ");
    QTest::newRow("placeholder in the name")
        << QStringLiteral("%3%1") << false << -1 << QStringLiteral(" Test: %3%1 (singlecore)");
}

void tst_displayWidget::statusLine()
{
    QFETCH(QString, name);
    QFETCH(bool, multicore);
    QFETCH(int, index);
    QFETCH(QString, line);
    fakeTest test(name, nullptr);
    test.multicore = multicore;
    QVERIFY(test.setup(1, 1));
    test.getBuffer()[0] = blue;
    displayWidget widget;
    widget.resize(500, 80);
    widget.setFont(QFont(widget.font().family(), 14));
    widget.setShowProgress(index >= 0);
    widget.setTestIndex(index);
    widget.setTestCount(18);
    widget.setTest(&test);
    QCOMPARE(pictureOf(widget), expectedLine(widget, blue, line));
}

void tst_displayWidget::testIndex()
{
    displayWidget widget;
    QCOMPARE(widget.testIndex(), 0);
    widget.setTestIndex(7);
    QCOMPARE(widget.testIndex(), 7);
}

void tst_displayWidget::clockLines()
{
    QCOMPARE(displayWidget::clockLine(1, 3400000.0F), QStringLiteral(" CPU 1 Clock 3400 MHz"));
    QCOMPARE(displayWidget::clockLine(12, 799876.5F), QStringLiteral(" CPU 12 Clock 799.877 MHz"));
    QCOMPARE(displayWidget::clockLine(2, 0.0F), QStringLiteral(" CPU 2 suspended"));
}

void tst_displayWidget::drawsTheFrameItself()
{
    fakeTest test(QStringLiteral("t"), nullptr);
    QVERIFY(test.setup(30, 20));
    displayWidget widget;
    widget.resize(400, 300);
    widget.setTest(&test);
    paintRecord record(widget.size());
    for (int i = 0; i < 3; ++i)
        widget.render(&record, {}, {}, QWidget::RenderFlags());
    QCOMPARE(record.images().size(), 3);
    for (const paintRecord::image &image : record.images()) {
        QCOMPARE(image.pixels, reinterpret_cast<const uchar *>(test.getBuffer()));
        QCOMPARE(image.target, QRectF(0, 0, 400, 300));
        QCOMPARE(image.source, QRectF(0, 0, 30, 20));
        QCOMPARE(image.flags, Qt::ImageConversionFlags(Qt::NoFormatConversion));
    }
}

void tst_displayWidget::clocksBelowTheStatusLine()
{
    fakeTest test(QStringLiteral("t"), nullptr);
    QVERIFY(test.setup(1, 1));
    displayWidget widget;
    widget.resize(400, 300);
    widget.setClockSource([] { return QVector<float>{3400000.0F, 0.0F, 799876.5F}; });
    widget.setTest(&test);
    const QFontMetrics metrics(widget.font());
    paintRecord record(widget.size());
    widget.render(&record, {}, {}, QWidget::RenderFlags());
    const QStringList lines = {
        QStringLiteral(" Test: t (singlecore)"), QStringLiteral(" CPU 1 Clock 3400 MHz"),
        QStringLiteral(" CPU 2 suspended"), QStringLiteral(" CPU 3 Clock 799.877 MHz")};
    QCOMPARE(record.texts().size(), lines.size());
    for (int i = 0; i < lines.size(); ++i) {
        const paintRecord::text &text = record.texts().at(i);
        QCOMPARE(text.content, lines.at(i));
        const int top = i == 0 ? 0 : metrics.height() * i + 2;
        QCOMPARE(text.baseline, QPointF(0, top + metrics.ascent()));
        QCOMPARE(text.colour, QColor(Qt::yellow));
        QCOMPARE(text.backgroundMode, Qt::OpaqueMode);
        QCOMPARE(text.background, QColor(Qt::black));
    }
}

void tst_displayWidget::clocksAreOptional()
{
    fakeTest test(QStringLiteral("t"), nullptr);
    QVERIFY(test.setup(1, 1));
    displayWidget widget;
    widget.resize(400, 300);
    widget.setClockSource([] { return QVector<float>{1e6F}; });
    widget.setTest(&test);
    const auto lines = [&widget] {
        paintRecord record(widget.size());
        widget.render(&record, {}, {}, QWidget::RenderFlags());
        return record.texts().size();
    };
    QCOMPARE(lines(), 2); // shown unless switched off
    widget.setShowClocks(false);
    QCOMPARE(lines(), 1);
    widget.setShowClocks(true);
    QCOMPARE(lines(), 2);
}

QTEST_MAIN(tst_displayWidget)
#include "tst_displayWidget.moc"
