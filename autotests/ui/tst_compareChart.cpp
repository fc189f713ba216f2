// SPDX-License-Identifier: GPL-3.0-or-later
#include "compareFixture.h"

#include "ui/legendScrollView.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGraphicsLayout>
#include <QLegendMarker>
#include <QLineSeries>
#include <QPointer>
#include <QToolTip>
#include <QValueAxis>

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

void addMachines(compareFixture &f, int count)
{
    const benchResults own = f.data.machines().takeLast();
    for (int i = 0; i < count; ++i)
        f.data.add(QStringLiteral("machine %1").arg(i), 1, 1);
    f.data.machines().append(own);
}

bool hasRed(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == 0xFFFF0000U)
                return true;
        }
    }
    return false;
}

} // namespace

class tst_compareChart : public QObject
{
    Q_OBJECT

private slots:
    void firstChart();
    void barsAndLine();
    void roomForTheBars();
    void legendFontHasASubstitute();
    void missingAndInfiniteValues();
    void hovering();
    void hoverOutside();
    void legendIsScrolledByTheWheel();
    void youAreInViewAtOnce();
    void hintsAtWhatIsOutOfSight();
    void narrowBarsStayApart();
    void manyBars();
    void fontSizeScalesAllTexts();
    void axisTitle();
    void axisLabelsCanBeRead();
    void chartsAreReleased();
};

void tst_compareChart::firstChart()
{
    const compareFixture f;
    QCOMPARE(f.chart()->title(), QStringLiteral("combined (singlecore)"));
    // PC-A and pc-a are one: (10 + 30) / 2 against 20.
    QCOMPARE(f.labels(), mergedLabels);
    QCOMPARE(f.values(), QVector<double>({200, 100, 25, 100}));
    QVERIFY(f.window->findChild<QChartView *>()->renderHints() & QPainter::Antialiasing);
}

void tst_compareChart::barsAndLine()
{
    const compareFixture f;
    QCOMPARE(f.bars()->barWidth(), 0.9);
    QCOMPARE(f.chart()->series().size(), 2);
    for (QBarSet *set : f.bars()->barSets()) {
        QCOMPARE(set->count(), 1);
        QCOMPARE(set->borderColor(), QColor(Qt::black));
        QCOMPARE(set->pen().style(), Qt::SolidLine);
        QCOMPARE(set->pen().width(), 1);
        QCOMPARE(set->color() == QColor(Qt::red), set == f.bars()->barSets().last());
    }
    auto *line = qobject_cast<QLineSeries *>(f.chart()->series().at(1));
    QCOMPARE(line->pen().style(), Qt::DashLine);
    QCOMPARE(line->pen().color(), QColor(Qt::black));
    QCOMPARE(line->points(), QList<QPointF>({QPointF(0, 100), QPointF(1, 100)}));

    QCOMPARE(f.chart()->axes().size(), 1);
    auto *axis = qobject_cast<QValueAxis *>(f.chart()->axes().at(0));
    QVERIFY(axis);
    QCOMPARE(axis->tickCount(), 11);
    QCOMPARE(axis->orientation(), Qt::Vertical);
    QCOMPARE(axis->min(), 0.0);
    QCOMPARE(axis->max(), 200.0);
    QCOMPARE(f.bars()->attachedAxes(), QList<QAbstractAxis *>({axis}));
    QCOMPARE(line->attachedAxes(), QList<QAbstractAxis *>({axis}));

    const QLegend *legend = f.chart()->legend();
    QVERIFY(legend->isVisible());
    QCOMPARE(legend->alignment(), Qt::AlignRight);
    QCOMPARE(legend->font().family(), QStringLiteral("Calibri"));
    QCOMPARE(legend->font().pointSize(), 9);
    QCOMPARE(legend->markers().size(), 5);
    QVERIFY(!legend->markers().last()->isVisible());
    QVERIFY(legend->markers().at(3)->isVisible());
    QCOMPARE(f.chart()->backgroundRoundness(), 0.0);
}

void tst_compareChart::roomForTheBars()
{
    const compareFixture f;
    QCOMPARE(f.chart()->margins(), QMargins(4, 4, 4, 4));
    qreal left = 1;
    qreal top = 1;
    qreal right = 1;
    qreal bottom = 1;
    f.chart()->layout()->getContentsMargins(&left, &top, &right, &bottom);
    QCOMPARE(QRectF(left, top, right, bottom), QRectF(0, 0, 0, 0));
    QVERIFY(f.window->findChild<QChartView *>()->minimumHeight() >= 200);
}

void tst_compareChart::legendFontHasASubstitute()
{
    const compareFixture f;
    const QFont font = f.chart()->legend()->font();
    const QStringList substitutes = QFont::substitutes(font.family()); // in small letters
    QCOMPARE(substitutes.mid(0, 2),
             QStringList({QStringLiteral("carlito"), QStringLiteral("dejavu sans")}));
    // One of them, or the font itself, is drawn where any is installed.
    const QStringList known = substitutes + QStringList(QStringLiteral("Calibri"));
    const QStringList installed = QFontDatabase().families();
    const bool isAnyInstalled = std::any_of(known.begin(), known.end(), [&](const QString &family) {
        return installed.contains(family, Qt::CaseInsensitive);
    });
    const QString drawn = QFontInfo(font).family();
    QVERIFY2(known.contains(drawn, Qt::CaseInsensitive) || !isAnyInstalled, qPrintable(drawn));
}

void tst_compareChart::missingAndInfiniteValues()
{
    compareFixture f;
    const auto small = static_cast<double>(0.0001F);
    f.data.machines()[1].getTests().remove(oneCore);
    f.data.machines()[2].setTest(oneCore, benchResults::test(-3));
    f.data.machines().last().setTest(oneCore, benchResults::test(std::nanf("")));
    f.choose("comboBox", 3);
    QCOMPARE(f.chart()->title(), QStringLiteral("colors  [you: 0.0001 MFakes]"));
    QCOMPARE(f.values().last(), small);
    QCOMPARE(f.values().at(f.labels().indexOf(QStringLiteral("PC-B"))), small);
    QCOMPARE(f.values().at(f.labels().indexOf(QStringLiteral("Phone %1"))), small);
    f.choose("comboBox", 0); // every score is not a number
    QCOMPARE(f.values(), QVector<double>({small, small, small, small}));

    f.data.machines().last().setTest(oneCore,
                                     benchResults::test(std::numeric_limits<float>::infinity()));
    f.choose("comboBox", 3);
    QCOMPARE(f.chart()->title(), QStringLiteral("colors  [you: inf MFakes]"));
    QCOMPARE(f.labels().last(), QStringLiteral("[you] LAB7"));
    QCOMPARE(f.bars()->barSets().last()->count(), 0); // Qt draws no bar without an end
    QVERIFY(!f.window->grab().isNull());
}

void tst_compareChart::hovering()
{
    const compareFixture f;
    QBarSet *set = f.bars()->barSets().at(2);
    emit f.bars()->hovered(true, 0, set);
    QCOMPARE(set->pen(), QPen(QBrush(Qt::black), 4));
    QCOMPARE(QToolTip::text(), QStringLiteral("Phone %1 4C 2 GHz (android)\nPhone %1 cpu: 25 %"));
    emit f.bars()->hovered(false, 0, set);
    QCOMPARE(set->pen(), QPen(QBrush(Qt::black), 1));
    QTRY_VERIFY(!QToolTip::isVisible());
}

void tst_compareChart::hoverOutside()
{
    const compareFixture f;
    QBarSet *set = f.bars()->barSets().at(0);
    f.window->barHovered(true, 1, set);
    QCOMPARE(set->pen().width(), 1);
    f.window->barHovered(true, 0, nullptr);
}

void tst_compareChart::legendIsScrolledByTheWheel()
{
    compareFixture f;
    addMachines(f, 60);
    f.choose("comboBoxSortBy", 4);
    QVERIFY(QTest::qWaitForWindowExposed(f.window.get()));
    QCoreApplication::processEvents();
    auto *view = f.window->findChild<QChartView *>();
    const QLegend *legend = f.chart()->legend();
    const auto look = [&] {
        return view->grab(view->mapFromScene(legend->sceneBoundingRect()).boundingRect()).toImage();
    };
    const auto turn = [&](const QPointF &scenePosition, int delta) {
        const QPoint position = view->mapFromScene(scenePosition);
        QWheelEvent event(position, view->viewport()->mapToGlobal(position), {}, {0, delta},
                          Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view->viewport(), &event);
    };
    const QImage atEnd = look();
    turn(f.chart()->plotArea().center(), 120);
    QCOMPARE(look(), atEnd);

    QVERIFY(hasRed(atEnd)); // [you]
    for (int i = 0; i < 60 && hasRed(look()); ++i) {
        turn(legend->sceneBoundingRect().center(), 120);
        QCoreApplication::processEvents();
    }
    QVERIFY(!hasRed(look()));
    f.window->resize(f.window->width(), f.window->height() + 20);
    QCoreApplication::processEvents();
    QVERIFY(!hasRed(look())); // stays where it was scrolled to
    for (int i = 0; i < 60 && !hasRed(look()); ++i) {
        turn(legend->sceneBoundingRect().center(), -120);
        QCoreApplication::processEvents();
    }
    QVERIFY(hasRed(look()));
}

void tst_compareChart::youAreInViewAtOnce()
{
    compareFixture f(false); // without the box that makes it wider
    addMachines(f, 60);
    QVERIFY(QTest::qWaitForWindowExposed(f.window.get()));
    for (const int mode : {4, 0, 3, 4}) {
        f.choose("comboBoxSortBy", mode);
        QCoreApplication::processEvents();
        const auto *view = f.window->findChild<legendScrollView *>();
        const QImage window = f.window->grab().toImage();
        QCOMPARE(window.size(), QSize(557, 494));
        const QRectF legend = f.chart()->legend()->sceneBoundingRect();
        const QRect place(view->mapTo(f.window.get(), view->mapFromScene(legend.topLeft())),
                          legend.size().toSize());
        QVERIFY(hasRed(window.copy(place)));
        QCOMPARE(view->outOfSight().below, 0);
    }
}

void tst_compareChart::hintsAtWhatIsOutOfSight()
{
    compareFixture f;
    auto *view = f.window->findChild<legendScrollView *>();
    QVERIFY(QTest::qWaitForWindowExposed(f.window.get()));
    QCoreApplication::processEvents();
    QCOMPARE(view->outOfSight().above, 0); // four names fit
    addMachines(f, 60);
    f.choose("comboBoxSortBy", 4);
    QCoreApplication::processEvents();
    view->grab();
    const int above = view->outOfSight().above;
    QVERIFY(above > 40);
    // The hint covers the first row of the legend: wherever it is scrolled to, there is its blank.
    const QRectF legend = f.chart()->legend()->sceneBoundingRect();
    const QImage strip =
        view->grab(QRect(view->mapFromScene(legend.topLeft()), QSize(int(legend.width()), 3)))
            .toImage();
    for (int x = 0; x < strip.width(); ++x)
        QCOMPARE(QColor(strip.pixel(x, 1)), f.chart()->backgroundBrush().color());
    f.window->resize(900, 2500);
    QCoreApplication::processEvents();
    view->grab();
    QCOMPARE(view->outOfSight().above, 0);
}

void tst_compareChart::narrowBarsStayApart()
{
    compareFixture f;
    addMachines(f, 160);
    f.choose("comboBoxSortBy", 4);
    QVERIFY(QTest::qWaitForWindowExposed(f.window.get()));
    f.window->grab();
    const QList<QBarSet *> sets = f.bars()->barSets();
    QVERIFY(sets.first()->pen().widthF() < 0.5);
    QVERIFY(sets.first()->pen().widthF() > 0);
    QCOMPARE(sets.last()->pen().color(), QColor(Qt::red));
    const QImage plot = f.window->findChild<QChartView *>()->grab().toImage();
    QVERIFY(hasRed(plot.copy(f.chart()->plotArea().toRect())));
    // Hovered and left, a bar is as thin as before.
    emit f.bars()->hovered(true, 0, sets.first());
    QCOMPARE(sets.first()->pen().width(), 4);
    emit f.bars()->hovered(false, 0, sets.first());
    QVERIFY(sets.first()->pen().widthF() < 0.5);
    f.window->resize(3000, 700);
    f.window->grab();
    QCOMPARE(sets.first()->pen(), QPen(Qt::black, 1));
    QCOMPARE(sets.last()->pen(), QPen(Qt::black, 1));
}

void tst_compareChart::manyBars()
{
    compareFixture f;
    addMachines(f, 300);
    f.data.machines()[3].setTest(oneCore,
                                 benchResults::test(std::numeric_limits<float>::infinity()));
    f.choose("comboBoxSortBy", 4);
    QVERIFY(QTest::qWaitForWindowExposed(f.window.get()));
    f.window->resize(900, 600);
    f.window->grab();
    const QBarSet *set = f.bars()->barSets().first();
    QCOMPARE(f.bars()->count(), 1);
    QCOMPARE(set->count(), 304); // merged: PC-A and pc-a are one
    QCOMPARE(set->at(303), 100.0);
    QStringList names;
    for (const QLegendMarker *marker : f.chart()->legend()->markers()) {
        if (marker->isVisible())
            names.append(marker->label());
    }
    QCOMPARE(names, QStringList({QStringLiteral("303 devices"), QStringLiteral("[you] LAB7")}));
    auto *view = f.window->findChild<legendScrollView *>();
    const QRect plot = f.chart()->plotArea().toRect();
    QVERIFY(hasRed(view->grab().toImage().copy(plot)));
    // The mouse names what the legend does not.
    QCOMPARE(set->at(0), 0.0); // PC-A's is endless, and moves nobody
    emit f.bars()->hovered(true, 2, f.bars()->barSets().first());
    QVERIFY2(QToolTip::text().startsWith(QStringLiteral("Phone %1 ")),
             qPrintable(QToolTip::text()));
    const auto *pointer = qobject_cast<QLineSeries *>(f.chart()->series().at(2));
    QCOMPARE(pointer->points(), QList<QPointF>({QPointF(2, 0), QPointF(2, set->at(2))}));
    emit f.bars()->hovered(false, 2, f.bars()->barSets().first());
    QCOMPARE(pointer->count(), 0);
    QTRY_VERIFY(!QToolTip::isVisible());
    const QPoint middle = view->viewport()->mapFromGlobal(view->placeOf(151));
    QVERIFY(std::abs(middle.x() - f.chart()->plotArea().center().x()) < 3);
    f.choose("comboBoxSortBy", 0);
    QCOMPARE(f.bars()->count(), 21);
}

void tst_compareChart::fontSizeScalesAllTexts()
{
    compareFixture f;
    const auto sizes = [&] {
        return QVector<int>({f.chart()->titleFont().pointSize(),
                             f.chart()->legend()->font().pointSize(),
                             f.chart()->axes().at(0)->titleFont().pointSize()});
    };
    QCOMPARE(sizes(), QVector<int>({10, 9, 9}));
    f.window = std::make_unique<compareWindow>(nullptr, &f.data, true, 16);
    QCOMPARE(sizes(), QVector<int>({17, 16, 16}));
}

void tst_compareChart::axisTitle()
{
    compareFixture f;
    QCOMPARE(f.chart()->axes().at(0)->titleText(), QStringLiteral("% of this machine"));
    f.choose("comboBox", 3);
    QCOMPARE(f.chart()->axes().at(0)->titleText(), QStringLiteral("MFakes/s"));
    f.data.machines()[0] =
        benchResults(QStringLiteral("<b>x</b>"), QStringLiteral("linux"), QString(), 1e9F, 1);
    f.data.machines().last().setMeasured(false);
    f.choose("comboBox", 0);
    QCOMPARE(f.chart()->axes().at(0)->titleText(), QStringLiteral("% of &lt;b&gt;x&lt;/b&gt;"));
}

void tst_compareChart::axisLabelsCanBeRead()
{
    const compareFixture f;
    QVERIFY(QTest::qWaitForWindowExposed(f.window.get()));
    QCoreApplication::processEvents();
    auto *axis = qobject_cast<QValueAxis *>(f.chart()->axes().at(0));
    const double room = f.chart()->plotArea().height() / axis->tickCount();
    QVERIFY(QFontMetricsF(axis->labelsFont()).height() < room);
    f.window->resize(1200, 1000);
    QCoreApplication::processEvents();
    QCOMPARE(QFontInfo(axis->labelsFont()).pixelSize(),
             QFontInfo(f.chart()->legend()->font()).pixelSize());
}

void tst_compareChart::chartsAreReleased()
{
    const compareFixture f;
    const auto *view = f.window->findChild<QChartView *>();
    const int items = view->scene()->items().size();
    for (int i = 0; i < 10; ++i) {
        const QPointer<QChart> chart = f.chart();
        const QPointer<QBarSeries> series = f.bars();
        f.window->selectionChanged(0);
        QVERIFY(chart.isNull());
        QVERIFY(series.isNull());
    }
    QCOMPARE(view->scene()->items().size(), items);
}

QTEST_MAIN(tst_compareChart)
#include "tst_compareChart.moc"
