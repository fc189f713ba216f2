// SPDX-License-Identifier: GPL-3.0-or-later

// The tool tip of a bar, with a mouse that moves and rests.

#include "compareFixture.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>

#include <algorithm>

namespace
{

const QString phone = QStringLiteral("Phone %1");

/// The compare window with the mouse in its chart.
struct mouseFixture : compareFixture {
    mouseFixture()
    {
        window->resize(900, 700);
        settle();
        moveTo(emptyPlace());
    }
    void settle() const
    {
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        QCoreApplication::processEvents();
    }
    QChartView *view() const { return window->findChild<QChartView *>(); }
    /// The lower middle of the bar with this label.
    QPoint placeOf(const QString &label) const
    {
        // The bars share the whole width of the plot, which is one category, in equal parts.
        const QRectF plot = chart()->plotArea();
        const double width = plot.width() * bars()->barWidth() / bars()->count();
        const double left = plot.center().x() - plot.width() * bars()->barWidth() / 2;
        const int index = labels().indexOf(label);
        return view()->mapFromScene(QPointF(left + width * (index + 0.5), plot.bottom() - 8));
    }
    void moveTo(const QPoint &place) const
    {
        QTest::mouseMove(view()->viewport(), place);
        QCoreApplication::processEvents();
    }
    void moveTo(const QString &label) const { moveTo(placeOf(label)); }
    QPoint emptyPlace() const
    {
        return view()->mapFromScene(chart()->plotArea().topRight()) + QPoint(-3, 3);
    }
    /// What the toolkit sends when the mouse has rested for a moment.
    void rest(const QPoint &place) const
    {
        QHelpEvent event(QEvent::ToolTip, place, view()->viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(view()->viewport(), &event);
    }
};

/// Whether the tip is on its way out: the toolkit hides a tip a moment after it was told to, by a
/// timer much shorter than the one that ends a tip nobody touches.
bool isGoing()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [](QWidget *window) {
        if (!window->inherits("QTipLabel"))
            return false;
        using timer = QAbstractEventDispatcher::TimerInfo;
        const QList<timer> all = QAbstractEventDispatcher::instance()->registeredTimers(window);
        return std::any_of(all.begin(), all.end(),
                           [](const timer &one) { return one.interval <= 1000; });
    });
}

} // namespace

class tst_compareTip : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void appearsOnTheBar();
    void staysWhileTheMouseRests();
    void comesBackAfterAClick();
    void goesWithTheMouse();
    void nextBar();
    void noTipBesideTheBars();
    void units_data();
    void units();
    void rebuiltUnderTheMouse();
    void leavingLateKeepsTheNewTip();
};

void tst_compareTip::init()
{
    QToolTip::hideText();
    QTRY_VERIFY(!QToolTip::isVisible());
}

void tst_compareTip::appearsOnTheBar()
{
    const mouseFixture f;
    f.moveTo(phone);
    QVERIFY(QToolTip::isVisible());
    QCOMPARE(QToolTip::text(), QStringLiteral("Phone %1 4C 2 GHz (android)\nPhone %1 cpu: 25 %"));
    QCOMPARE(f.bars()->barSets().at(2)->pen().width(), 4);
}

void tst_compareTip::staysWhileTheMouseRests()
{
    const mouseFixture f;
    f.moveTo(phone);
    const QString text = QToolTip::text();
    for (int i = 0; i < 3; ++i) {
        f.rest(f.placeOf(phone));
        QVERIFY(QToolTip::isVisible());
        QVERIFY(!isGoing());
        QCOMPARE(QToolTip::text(), text);
    }
}

void tst_compareTip::comesBackAfterAClick()
{
    const mouseFixture f;
    f.moveTo(phone);
    const QString text = QToolTip::text();
    QTest::mouseClick(f.view()->viewport(), Qt::LeftButton, {}, f.placeOf(phone));
    QTRY_VERIFY(!QToolTip::isVisible());
    f.rest(f.placeOf(phone));
    QVERIFY(QToolTip::isVisible());
    QCOMPARE(QToolTip::text(), text);
}

void tst_compareTip::goesWithTheMouse()
{
    const mouseFixture f;
    f.moveTo(phone);
    QVERIFY(QToolTip::isVisible());
    QVERIFY(!isGoing());
    f.moveTo(f.emptyPlace());
    QVERIFY(isGoing());
    QTRY_VERIFY(!QToolTip::isVisible());
    QCOMPARE(f.bars()->barSets().at(2)->pen().width(), 1);
    f.rest(f.emptyPlace());
    QVERIFY(!QToolTip::isVisible());
}

void tst_compareTip::nextBar()
{
    const mouseFixture f;
    f.moveTo(phone);
    f.moveTo(QStringLiteral("PC-A"));
    QVERIFY(QToolTip::text().startsWith(QStringLiteral("PC-A ")));
    f.rest(f.placeOf(QStringLiteral("PC-A")));
    QVERIFY(QToolTip::isVisible());
    QVERIFY(!isGoing());
    QVERIFY(QToolTip::text().startsWith(QStringLiteral("PC-A ")));
}

void tst_compareTip::noTipBesideTheBars()
{
    const mouseFixture f;
    f.moveTo(f.emptyPlace());
    f.rest(f.emptyPlace());
    QVERIFY(!QToolTip::isVisible());
}

void tst_compareTip::units_data()
{
    QTest::addColumn<int>("choice");
    QTest::addColumn<QString>("value");
    QTest::newRow("single core") << 0 << QStringLiteral("Phone %1 cpu: 25 %");
    QTest::newRow("all") << 2 << QStringLiteral("Phone %1 cpu: 112.5 %");
    QTest::newRow("one test") << 3 << QStringLiteral("Phone %1 cpu: 5 MFakes/s");
    QTest::newRow("other test") << 4 << QStringLiteral("Phone %1 cpu: 400 MFakes/s");
}

void tst_compareTip::units()
{
    QFETCH(int, choice);
    const mouseFixture f;
    f.choose("comboBox", choice);
    f.settle();
    f.moveTo(phone);
    QTEST(QToolTip::text().section(QLatin1Char('\n'), 1), "value");
}

void tst_compareTip::rebuiltUnderTheMouse()
{
    const mouseFixture f;
    for (int i = 0; i < 5; ++i) {
        f.moveTo(phone);
        QVERIFY(QToolTip::isVisible());
        f.choose("comboBox", i % 2 == 0 ? 3 : 0);
        // The old bars are gone, and so is what was said of one.
        QTRY_VERIFY(!QToolTip::isVisible());
        f.settle();
        f.moveTo(f.emptyPlace());
        f.rest(f.emptyPlace());
        QVERIFY(!QToolTip::isVisible());
    }
    f.moveTo(phone);
    QVERIFY(QToolTip::text().endsWith(QStringLiteral("5 MFakes/s")));
}

void tst_compareTip::leavingLateKeepsTheNewTip()
{
    const mouseFixture f;
    QBarSet *first = f.bars()->barSets().at(0);
    QBarSet *second = f.bars()->barSets().at(1);
    f.window->barHovered(true, 0, first);
    f.window->barHovered(true, 0, second);
    f.window->barHovered(false, 0, first);
    f.rest(f.placeOf(phone));
    QVERIFY(QToolTip::isVisible());
    QVERIFY(!isGoing());
    QVERIFY(QToolTip::text().startsWith(QStringLiteral("PC-A ")));
}

QTEST_MAIN(tst_compareTip)
#include "tst_compareTip.moc"
