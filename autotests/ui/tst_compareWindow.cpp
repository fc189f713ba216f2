// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/compareFixture.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGraphicsLayout>
#include <QLegendMarker>
#include <QLineSeries>
#include <QPointer>
#include <QStatusBar>
#include <QToolTip>
#include <QValueAxis>

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

const QStringList mergedLabels = {QStringLiteral("PC-B"), QStringLiteral("PC-A"),
                                  QStringLiteral("Phone %1"), QStringLiteral("[you] LAB7")};

} // namespace

class tst_compareWindow : public QObject
{
    Q_OBJECT

private slots:
    void firstChart();
    void barsAndLine();
    void roomForTheBars();
    void legendFontHasASubstitute();
    void kinds_data();
    void kinds();
    void titleWithoutMeasurement();
    void osFilters();
    void merging();
    void labelStyles();
    void estimatesAreMarked();
    void newcomerIsToldWhatToDo();
    void perClock();
    void countFollowsTheMode();
    void countLimitsTheBars();
    void tooFewMachines();
    void missingAndInfiniteValues();
    void swipes();
    void swipeToATestKeepsTheText();
    void hovering();
    void hoverOutside();
    void legendIsScrolledByTheWheel();
    void axisLabelsCanBeRead();
    void debugLine();
    void chartsAreReleased();
};

void tst_compareWindow::firstChart()
{
    const compareFixture f;
    QCOMPARE(f.chart()->title(), QStringLiteral("combined (singlecore)"));
    // PC-A and pc-a are one: (10 + 30) / 2 against 20.
    QCOMPARE(f.labels(), mergedLabels);
    QCOMPARE(f.values(), QVector<double>({200, 100, 25, 100}));
    QVERIFY(f.window->findChild<QChartView *>()->renderHints() & QPainter::Antialiasing);
}

void tst_compareWindow::barsAndLine()
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

void tst_compareWindow::roomForTheBars()
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

void tst_compareWindow::legendFontHasASubstitute()
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

void tst_compareWindow::kinds_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QVector<double>>("values");
    // Merged: Phone (5, 400), PC-A (20, 200), PC-B (40, 50); mine (20, 200).
    QTest::newRow("single core") << 0 << QStringLiteral("combined (singlecore)")
                                 << QVector<double>({200, 100, 25, 100});
    QTest::newRow("multi core") << 1 << QStringLiteral("combined (multicore)")
                                << QVector<double>({200, 100, 25, 100});
    QTest::newRow("all") << 2 << QStringLiteral("combined")
                         << QVector<double>({112.5, 112.5, 100, 100});
    QTest::newRow("one test") << 3 << QStringLiteral("colors  [you: 20 MFakes]")
                              << QVector<double>({40, 5, 20, 20});
    QTest::newRow("other test") << 4 << QStringLiteral("mandel (multicore) [you: 200 MFakes]")
                                << QVector<double>({50, 400, 200, 200});
}

void tst_compareWindow::kinds()
{
    QFETCH(int, index);
    const compareFixture f;
    f.choose("comboBox", index);
    QTEST(f.chart()->title(), "title");
    QTEST(f.values(), "values");
    QCOMPARE(f.labels().last(), QStringLiteral("[you] LAB7"));
    QCOMPARE(f.find<QComboBox>("comboBox")->currentIndex(), index);
}

void tst_compareWindow::titleWithoutMeasurement()
{
    compareFixture f;
    f.data.machines().last().setMeasured(false);
    f.choose("comboBox", 3);
    QCOMPARE(f.chart()->title(), QStringLiteral("colors "));
    f.choose("comboBox", 0);
    // The first one after merging, PC-A with 20, is the measure now.
    QCOMPARE(f.values(), QVector<double>({200, 100, 25, 100}));
    f.click("checkBoxMerged");
    QCOMPARE(f.values(), QVector<double>({400, 300, 100, 50, 200}));
    QCOMPARE(f.labels().last(), QStringLiteral("[you] LAB7"));
}

void tst_compareWindow::osFilters()
{
    const compareFixture f;
    f.click("checkBoxAndroid");
    QCOMPARE(f.labels(), QStringList({QStringLiteral("PC-B"), QStringLiteral("PC-A"),
                                      QStringLiteral("[you] LAB7")}));
    f.click("checkBoxWindows");
    QCOMPARE(f.labels(), QStringList({QStringLiteral("PC-B"), QStringLiteral("[you] LAB7")}));
    f.click("checkBoxLinux");
    QCOMPARE(f.labels(), QStringList(QStringLiteral("[you] LAB7")));
    f.click("checkBoxAndroid");
    QCOMPARE(f.labels(), QStringList({QStringLiteral("Phone %1"), QStringLiteral("[you] LAB7")}));
}

void tst_compareWindow::merging()
{
    const compareFixture f;
    f.click("checkBoxMerged");
    QCOMPARE(f.labels(),
             QStringList({QStringLiteral("PC-B"), QStringLiteral("pc-a"), QStringLiteral("PC-A"),
                          QStringLiteral("Phone %1"), QStringLiteral("[you] LAB7")}));
    QCOMPARE(f.values(), QVector<double>({200, 150, 50, 25, 100}));
    f.click("checkBoxMerged");
    QCOMPARE(f.labels(), mergedLabels);
}

void tst_compareWindow::labelStyles()
{
    const compareFixture f;
    f.click("checkBoxNameType");
    QCOMPARE(f.labels().at(2), QStringLiteral("Phone %1 cpu X4  2 GHz"));
    QCOMPARE(f.labels().last(), QStringLiteral("[you] LAB7 cpu X4  2 GHz"));
    f.click("checkBoxNameType");
    QCOMPARE(f.labels().at(2), QStringLiteral("Phone %1 4C 2 GHz (android)"));
    QCOMPARE(f.labels().last(), QStringLiteral("[you] LAB7 4C 2 GHz (linux)"));
    f.click("checkBoxNameType");
    QCOMPARE(f.labels(), mergedLabels);
}

void tst_compareWindow::estimatesAreMarked()
{
    compareFixture f;
    const auto *bar = f.find<QStatusBar>("statusBar");
    QCOMPARE(bar->currentMessage(), QString());
    const benchResults own = f.data.machines().takeLast();
    f.data.add(QStringLiteral("Model (est.)"), 1, 2);
    f.data.machines().append(own);
    f.click("checkBoxNameType"); // the labels are without names now
    QVERIFY(f.labels().contains(QStringLiteral("Model (est.) cpu X4  2 GHz")));
    QCOMPARE(bar->currentMessage(),
             QStringLiteral("1 of 5 bars are modelled estimates (est.), not measured results"));
    f.click("checkBoxWindows");
    QCOMPARE(bar->currentMessage(), QString());
}

void tst_compareWindow::newcomerIsToldWhatToDo()
{
    compareFixture f;
    const auto *bar = f.find<QStatusBar>("statusBar");
    f.data.add(QStringLiteral("Model (est.)"), 10, 20);
    f.data.add(QStringLiteral("LAB9"), 20, 0);
    f.data.machines().last().setMeasured(true);
    const QString estimates =
        QStringLiteral("1 of 6 bars are modelled estimates (est.), not measured results");
    f.choose("comboBox", 2);
    QCOMPARE(bar->currentMessage(),
             QStringLiteral("Only 1 of 2 tests has a result on this machine, so it cannot be "
                            "compared: run the full benchmark, or choose that test. ")
                 + estimates);
    f.choose("comboBox", 0); // the one result is of a single core
    QCOMPARE(bar->currentMessage(), estimates);
    f.choose("comboBox", 1);
    QVERIFY(bar->currentMessage().startsWith(QStringLiteral("None of the 1 tests")));
    f.choose("comboBox", 4);
    QCOMPARE(bar->currentMessage(), estimates);
    f.choose("comboBox", 2);
    f.data.machines().last().setTest(manyCores, benchResults::test(5));
    f.click("checkBoxWindows");
    QCOMPARE(bar->currentMessage(), QString());
}

void tst_compareWindow::perClock()
{
    compareFixture f;
    benchResults twice(QStringLiteral("Twice"), QStringLiteral("linux"), QString(), 4e9F, 8);
    twice.setTest(oneCore, benchResults::test(20));
    twice.setTest(manyCores, benchResults::test(200));
    f.data.machines().insert(0, twice);
    f.click("checkBoxIPC");
    QCOMPARE(f.chart()->title(), QStringLiteral("combined (singlecore) (per Clock)"));
    QCOMPARE(f.values().at(f.labels().indexOf(QStringLiteral("Twice"))), 50.0);
    f.choose("comboBox", 1);
    QCOMPARE(f.values().at(f.labels().indexOf(QStringLiteral("Twice"))), 25.0);
    f.choose("comboBox", 4);
    QCOMPARE(f.chart()->title(),
             QStringLiteral("mandel (multicore) [you: 200 MFakes] (per Clock)"));
    QCOMPARE(f.values().at(f.labels().indexOf(QStringLiteral("Twice"))), 200.0);
    f.click("checkBoxIPC");
    QCOMPARE(f.chart()->title(), QStringLiteral("mandel (multicore) [you: 200 MFakes]"));
}

void tst_compareWindow::countFollowsTheMode()
{
    const compareFixture f;
    const auto *count = f.find<QComboBox>("comboBoxCount");
    f.choose("comboBoxSortBy", 4);
    QVERIFY(!count->isEnabled());
    for (const int mode : {3, 4, 2, 4, 1, 4, 0}) {
        f.choose("comboBoxSortBy", mode);
        QCOMPARE(count->isEnabled(), mode != 4);
    }
}

void tst_compareWindow::countLimitsTheBars()
{
    compareFixture f;
    const benchResults own = f.data.machines().takeLast();
    f.data.machines().clear();
    for (int i = 0; i < 99; ++i)
        f.data.add(QString::number(i), float(1000 - i), 1);
    f.data.machines().append(own);
    const auto shown = [&f](int mode, int countIndex) {
        f.choose("comboBoxSortBy", mode);
        f.choose("comboBoxCount", countIndex);
        const QStringList labels = f.labels();
        return QStringLiteral("%1 from %2 to %3")
            .arg(QString::number(labels.size()), labels.first(), labels.at(labels.size() - 2));
    };
    QCOMPARE(shown(0, 0), QStringLiteral("21 from 0 to 95"));
    QCOMPARE(shown(1, 0), QStringLiteral("21 from 0 to 19"));
    QCOMPARE(shown(1, 6), QStringLiteral("51 from 0 to 49"));
    QCOMPARE(shown(2, 1), QStringLiteral("25 from 38 to 61"));
    QCOMPARE(shown(3, 0), QStringLiteral("21 from 79 to 98"));
    QCOMPARE(shown(4, 0), QStringLiteral("100 from 0 to 98"));
}

void tst_compareWindow::tooFewMachines()
{
    compareFixture f;
    const QChart *before = f.chart();
    f.data.machines().resize(1);
    f.click("checkBoxMerged");
    QCOMPARE(f.chart(), before);
    f.data.machines().clear();
    f.choose("comboBox", 3);
    QCOMPARE(f.chart(), before);
    QCOMPARE(f.chart()->title(), QStringLiteral("combined (singlecore)"));
}

void tst_compareWindow::missingAndInfiniteValues()
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

void tst_compareWindow::swipes()
{
    const compareFixture f;
    f.choose("comboBox", 1);
    f.swipe(QSwipeGesture::Left);
    QCOMPARE(f.chart()->title(), QStringLiteral("combined (singlecore)"));
    f.swipe(QSwipeGesture::Right);
    QCOMPARE(f.chart()->title(), QStringLiteral("combined"));
    // A swipe leaves the chooser where it is, so the next one starts from there again.
    f.swipe(QSwipeGesture::Right);
    QCOMPARE(f.chart()->title(), QStringLiteral("combined"));
    QCOMPARE(f.find<QComboBox>("comboBox")->currentIndex(), 1);

    f.choose("comboBox", 0);
    const QChart *first = f.chart();
    f.swipe(QSwipeGesture::Left);
    QCOMPARE(f.chart(), first);
    f.choose("comboBox", 4);
    const QChart *last = f.chart();
    f.swipe(QSwipeGesture::Right);
    QCOMPARE(f.chart(), last);
}

void tst_compareWindow::swipeToATestKeepsTheText()
{
    const compareFixture f;
    f.choose("comboBox", 3);
    f.swipe(QSwipeGesture::Right);
    QCOMPARE(f.chart()->title(), QStringLiteral("colors  [you: 20 MFakes]"));
    // Beyond the last combined choice, the rest of its text is no test at all.
    f.choose("comboBox", 2);
    f.swipe(QSwipeGesture::Right);
    QCOMPARE(f.chart()->title(), QStringLiteral("ed [you: 0.0001 ]"));
    QCOMPARE(f.values(), QVector<double>(4, static_cast<double>(0.0001F)));
}

void tst_compareWindow::hovering()
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

void tst_compareWindow::hoverOutside()
{
    const compareFixture f;
    QBarSet *set = f.bars()->barSets().at(0);
    f.window->barHovered(true, 1, set);
    QCOMPARE(set->pen().width(), 1);
    f.window->barHovered(true, 0, nullptr);
}

void tst_compareWindow::legendIsScrolledByTheWheel()
{
    compareFixture f;
    const benchResults own = f.data.machines().takeLast();
    for (int i = 0; i < 60; ++i)
        f.data.add(QStringLiteral("machine %1").arg(i), 1, 1);
    f.data.machines().append(own);
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
    const QImage atTop = look();
    turn(f.chart()->plotArea().center(), -120);
    QCOMPARE(look(), atTop);

    const auto hasRed = [&] {
        const QImage image = look();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixel(x, y) == 0xFFFF0000U)
                    return true;
            }
        }
        return false;
    };
    QVERIFY(!hasRed());
    for (int i = 0; i < 60 && !hasRed(); ++i) {
        turn(legend->sceneBoundingRect().center(), -120);
        QTest::qWait(30);
    }
    QVERIFY(hasRed()); // down to [you]
}

void tst_compareWindow::axisLabelsCanBeRead()
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

void tst_compareWindow::debugLine()
{
    compareFixture f;
    QTest::ignoreMessage(QtDebugMsg, "Test \"LAB7\"   Used");
    f.click("checkBoxMerged");
    f.data.machines().last().setMeasured(false);
    QTest::ignoreMessage(QtDebugMsg, "Test \"LAB7\"   Unused");
    f.click("checkBoxMerged");
}

void tst_compareWindow::chartsAreReleased()
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

QTEST_MAIN(tst_compareWindow)
#include "tst_compareWindow.moc"
