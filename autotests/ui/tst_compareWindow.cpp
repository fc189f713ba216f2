// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/compareWindow.h"

#include "data/benchDataAccess.h"

#include "support/fakeTest.h"
#include "support/textLog.h"

#include <QAction>
#include <QBarSeries>
#include <QBarSet>
#include <QCheckBox>
#include <QComboBox>
#include <QGestureEvent>
#include <QGraphicsLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLegendMarker>
#include <QLineSeries>
#include <QMetaMethod>
#include <QPointer>
#include <QPushButton>
#include <QStatusBar>
#include <QToolTip>
#include <QtTest>
#include <QValueAxis>
#include <QVBoxLayout>

#include <cmath>
#include <limits>
#include <memory>

namespace
{

const QString oneCore = QStringLiteral("colors "); // names may end in a blank
const QString manyCores = QStringLiteral("mandel (multicore)");

/// A list of machines to fill at will.
class machineList : public benchDataAccess
{
public:
    machineList(printHook *log, const QVector<testBase *> &tests) : benchDataAccess(log, tests) {}

    void add(const QString &name, float single, float multi,
             const QString &os = QStringLiteral("windows"))
    {
        benchResults machine(name, os, name + QStringLiteral(" cpu"), 2e9F, 4);
        machine.setTest(oneCore, benchResults::test(single));
        machine.setTest(manyCores, benchResults::test(multi));
        results.append(machine);
    }
    QVector<benchResults> &machines() { return results; }
};

/// A compare window over fakes; the last machine, LAB7, is the user's.
struct fixture {
    explicit fixture(bool showIpc = true)
    {
        multi.multicore = true;
        hidden.setSingleOnly(true);
        data.add(QStringLiteral("PC-A"), 10, 100);
        data.add(QStringLiteral("PC-B"), 40, 50, QStringLiteral("linux"));
        data.add(QStringLiteral("Phone %1"), 5, 400, QStringLiteral("android"));
        data.add(QStringLiteral("pc-a"), 30, 300);
        data.add(QStringLiteral("LAB7"), 20, 200, QStringLiteral("linux"));
        data.machines().last().setMeasured(true);
        window = std::make_unique<compareWindow>(nullptr, &data, showIpc, 9);
        window->show();
    }

    template <typename T> T *find(const char *name) const
    {
        return window->findChild<T *>(QString::fromLatin1(name));
    }
    QChart *chart() const { return window->findChild<QChartView *>()->chart(); }
    QBarSeries *bars() const { return qobject_cast<QBarSeries *>(chart()->series().at(0)); }
    QStringList labels() const
    {
        QStringList list;
        for (const QBarSet *set : bars()->barSets())
            list.append(set->label());
        return list;
    }
    QVector<double> values() const
    {
        QVector<double> list;
        for (const QBarSet *set : bars()->barSets())
            list.append(set->at(0));
        return list;
    }
    void click(const char *checkBox) const { find<QCheckBox>(checkBox)->click(); }
    /// Chooses an item as a user does.
    void choose(const char *comboBox, int index) const
    {
        auto *box = find<QComboBox>(comboBox);
        box->setCurrentIndex(index);
        emit box->activated(index);
    }
    void swipe(QSwipeGesture::SwipeDirection direction) const
    {
        QSwipeGesture gesture;
        gesture.setSwipeAngle(direction == QSwipeGesture::Left ? 180 : 0);
        QCOMPARE(gesture.horizontalDirection(), direction);
        QGestureEvent event({&gesture});
        QApplication::sendEvent(window.get(), &event);
    }

    textLog log;
    fakeTest single{oneCore, nullptr};
    fakeTest multi{manyCores, nullptr};
    fakeTest hidden{QStringLiteral("hidden"), nullptr};
    machineList data{&log, {&single, &multi, &hidden}};
    std::unique_ptr<compareWindow> window;
};

const QStringList mergedLabels = {QStringLiteral("PC-B"), QStringLiteral("PC-A"),
                                  QStringLiteral("Phone %1"), QStringLiteral("[you] LAB7")};

} // namespace

class tst_compareWindow : public QObject
{
    Q_OBJECT

private slots:
    void form();
    void styleSheet();
    void actions();
    void choosers();
    void slotOrder();
    void withoutData();
    void firstChart();
    void barsAndLine();
    void kinds_data();
    void kinds();
    void titleWithoutMeasurement();
    void osFilters();
    void merging();
    void labelStyles();
    void estimatesAreMarked();
    void perClock();
    void perClockIsOffered();
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
    void closeButton();
    void debugLine();
    void chartsAreReleased();
};

void tst_compareWindow::form()
{
    const compareWindow window(nullptr, nullptr, false, 9);
    QCOMPARE(window.size(), QSize(557, 494));
    QCOMPARE(window.windowTitle(), QStringLiteral("compare window"));
    const auto *outer = window.findChild<QVBoxLayout *>(QStringLiteral("verticalLayout"));
    QCOMPARE(outer->contentsMargins(), QMargins(1, 1, 1, 1));
    QVERIFY(window.findChild<QVBoxLayout *>(QStringLiteral("verticalLayout_2")));
    const auto *show = window.findChild<QHBoxLayout *>(QStringLiteral("Show"));
    QCOMPARE(show->contentsMargins(), QMargins(0, 30, 0, 0));
    QStringList order;
    for (int i = 0; i < show->count(); ++i) {
        const QWidget *widget = show->itemAt(i)->widget();
        order.append(widget ? widget->objectName() : QStringLiteral("-"));
    }
    QCOMPARE(order.join(QLatin1Char(' ')),
             QStringLiteral("checkBoxAndroid checkBoxWindows checkBoxLinux - checkBoxMerged "
                            "checkBoxIPC checkBoxNameType"));
    QCOMPARE(show->itemAt(3)->spacerItem()->sizePolicy().horizontalPolicy(),
             QSizePolicy::Expanding);
    const auto *choose = window.findChild<QHBoxLayout *>(QStringLiteral("horizontalLayout_2"));
    QCOMPARE(choose->contentsMargins(), QMargins(0, 30, 0, 0));
    QCOMPARE(choose->spacing(), 0);
    QCOMPARE(window.findChild<QGridLayout *>(QStringLiteral("gridLayout"))->spacing(), 0);
    for (const char *name : {"groupBox", "groupBox_2"}) {
        const auto *group = window.findChild<QGroupBox *>(QString::fromLatin1(name));
        QVERIFY(group->font().bold());
        QVERIFY(group->font().italic());
        QVERIFY(group->title().isEmpty());
    }
    const QStringList texts = {QStringLiteral("Android"), QStringLiteral("Windows"),
                               QStringLiteral("Linux"),   QStringLiteral("merged"),
                               QStringLiteral("x/clk"),   QStringLiteral("short/CPU/all")};
    QStringList found;
    for (const QCheckBox *box : window.findChildren<QCheckBox *>()) {
        found.append(box->text());
        QCOMPARE(box->font().weight(), int(QFont::Normal));
        const bool isChecked = texts.indexOf(box->text()) < 4;
        QCOMPARE(box->checkState(), isChecked ? Qt::Checked : Qt::Unchecked);
    }
    QCOMPARE(found, texts);
    for (const char *name : {"comboBoxSortBy", "comboBoxCount", "comboBox"})
        QCOMPARE(window.findChild<QComboBox *>(QString::fromLatin1(name))->minimumHeight(), 0);
    const auto *sortBy = window.findChild<QComboBox *>(QStringLiteral("comboBoxSortBy"));
    QCOMPARE(sortBy->sizePolicy().horizontalPolicy(), QSizePolicy::MinimumExpanding);
    QCOMPARE(sortBy->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    const auto *close = window.findChild<QPushButton *>(QStringLiteral("closeButton"));
    QCOMPARE(close->text(), QStringLiteral("close"));
    QVERIFY(close->font().bold());
    QVERIFY(window.findChild<QStatusBar *>(QStringLiteral("statusBar")));
}

void tst_compareWindow::styleSheet()
{
    const fixture f;
    auto *box = f.find<QCheckBox>("checkBoxNameType");
    QCOMPARE(box->styleSheet(),
             QStringLiteral(
                 "QCheckBox::indicator:unchecked \n{\nimage: url(:/icons/state1.png);\n}\n\n"
                 "QCheckBox::indicator:indeterminate\n{\nimage: url(:/icons/state2.png);\n}\n\n"
                 "QCheckBox::indicator:checked \n{\nimage: url(:/icons/state3.png);\n}\n\n"));
    QVERIFY(box->isTristate());
    QVector<QImage> looks;
    QVector<Qt::CheckState> states;
    for (int i = 0; i < 3; ++i) {
        states.append(box->checkState());
        looks.append(box->grab().toImage());
        box->click();
    }
    QCOMPARE(states, QVector<Qt::CheckState>({Qt::Unchecked, Qt::PartiallyChecked, Qt::Checked}));
    QCOMPARE(box->checkState(), Qt::Unchecked);
    QVERIFY(looks.at(0) != looks.at(1));
    QVERIFY(looks.at(1) != looks.at(2));
    QVERIFY(looks.at(0) != looks.at(2));
}

void tst_compareWindow::actions()
{
    const fixture f;
    const auto *names = f.find<QAction>("actionShort_names");
    QCOMPARE(names->text(), QStringLiteral("Short names"));
    QVERIFY(names->isCheckable() && names->isChecked());
    const auto *cpu = f.find<QAction>("actionCPU_name");
    QCOMPARE(cpu->text(), QStringLiteral("CPU name"));
    QVERIFY(cpu->isCheckable() && !cpu->isChecked());
}

void tst_compareWindow::choosers()
{
    const fixture f;
    const auto items = [&f](const char *name) {
        const auto *box = f.find<QComboBox>(name);
        QStringList list;
        for (int i = 0; i < box->count(); ++i)
            list.append(box->itemText(i) + QLatin1Char('|') + box->itemData(i).toString());
        return list.join(QLatin1Char(','));
    };
    QCOMPARE(items("comboBoxSortBy"),
             QStringLiteral(
                 "Mixed devices|0,Top devices|1,Medium devices|2,Last devices|3,All devices|4"));
    QCOMPARE(items("comboBoxCount"), QStringLiteral("20|,25|,30|,35|,40|,45|,50|"));
    QCOMPARE(items("comboBox"),
             QStringLiteral("combined (single core)|0,combined (multi core)|1,combined|2,"
                            "test: colors |3,test: mandel (multicore)|3"));
    QVERIFY(f.find<QComboBox>("comboBoxCount")->isEnabled());
}

void tst_compareWindow::slotOrder()
{
    const QMetaObject &meta = compareWindow::staticMetaObject;
    QStringList slotNames;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        slotNames.append(QString::fromLatin1(meta.method(i).methodSignature()));
    QCOMPARE(slotNames.join(QLatin1Char(' ')),
             QStringLiteral("selectionChanged(int) ipcChanged(bool) osFilterChanged(bool) "
                            "nameTypeStateChanged(int) selectionCountChanged(int) "
                            "sortByChanged(int) barHovered(bool,int,QBarSet*) mergeChanged(bool)"));
    const int hovered = meta.indexOfMethod("barHovered(bool,int,QBarSet*)");
    QCOMPARE(meta.method(hovered).parameterNames().mid(0, 2),
             QList<QByteArray>({"status", "indx"}));
    const int selection = meta.indexOfMethod("selectionChanged(int)");
    QCOMPARE(meta.method(selection).parameterNames(), QList<QByteArray>({"i"}));
}

void tst_compareWindow::withoutData()
{
    compareWindow window(nullptr, nullptr, true, 9);
    window.show();
    QVERIFY(!window.findChild<QChartView *>());
    QCOMPARE(window.findChild<QComboBox *>(QStringLiteral("comboBox"))->count(), 0);
    QCOMPARE(window.findChild<QComboBox *>(QStringLiteral("comboBoxSortBy"))->count(), 5);
    QCOMPARE(window.findChild<QComboBox *>(QStringLiteral("comboBoxCount"))->count(), 7);
    QVERIFY(window.findChild<QCheckBox *>(QStringLiteral("checkBoxIPC"))->isHidden());
    window.findChild<QCheckBox *>(QStringLiteral("checkBoxMerged"))->click();
    QSwipeGesture gesture;
    QGestureEvent event({&gesture});
    QApplication::sendEvent(&window, &event);
    window.findChild<QPushButton *>(QStringLiteral("closeButton"))->click();
    QVERIFY(window.isVisible());
}

void tst_compareWindow::firstChart()
{
    const fixture f;
    QCOMPARE(f.chart()->title(), QStringLiteral("combined (singlecore)"));
    // PC-A and pc-a are one: (10 + 30) / 2 against 20.
    QCOMPARE(f.labels(), mergedLabels);
    QCOMPARE(f.values(), QVector<double>({200, 100, 25, 100}));
    QVERIFY(f.window->findChild<QChartView *>()->renderHints() & QPainter::Antialiasing);
}

void tst_compareWindow::barsAndLine()
{
    const fixture f;
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
    const fixture f;
    f.choose("comboBox", index);
    QTEST(f.chart()->title(), "title");
    QTEST(f.values(), "values");
    QCOMPARE(f.labels().last(), QStringLiteral("[you] LAB7"));
    QCOMPARE(f.find<QComboBox>("comboBox")->currentIndex(), index);
}

void tst_compareWindow::titleWithoutMeasurement()
{
    fixture f;
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
    const fixture f;
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
    const fixture f;
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
    const fixture f;
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
    fixture f;
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

void tst_compareWindow::perClock()
{
    fixture f;
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

void tst_compareWindow::perClockIsOffered()
{
    QVERIFY(fixture(true).find<QCheckBox>("checkBoxIPC")->isVisible());
    QVERIFY(!fixture(false).find<QCheckBox>("checkBoxIPC")->isVisible());
}

void tst_compareWindow::countFollowsTheMode()
{
    const fixture f;
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
    fixture f;
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
    fixture f;
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
    fixture f;
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
    const fixture f;
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
    const fixture f;
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
    const fixture f;
    QBarSet *set = f.bars()->barSets().at(2);
    emit f.bars()->hovered(true, 0, set);
    QCOMPARE(set->pen(), QPen(QBrush(Qt::black), 4));
    QCOMPARE(QToolTip::text(), QStringLiteral("Phone %1 4C 2 GHz (android)\nPhone %1 cpu: 25"));
    emit f.bars()->hovered(false, 0, set);
    QCOMPARE(set->pen(), QPen(QBrush(Qt::black), 1));
    QTRY_VERIFY(!QToolTip::isVisible());
}

void tst_compareWindow::hoverOutside()
{
    const fixture f;
    QBarSet *set = f.bars()->barSets().at(0);
    f.window->barHovered(true, 1, set);
    QCOMPARE(set->pen().width(), 1);
    f.window->barHovered(true, 0, nullptr);
}

void tst_compareWindow::legendIsScrolledByTheWheel()
{
    fixture f;
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
    const fixture f;
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

void tst_compareWindow::closeButton()
{
    const fixture f;
    QVERIFY(f.window->isVisible());
    f.find<QPushButton>("closeButton")->click();
    QVERIFY(!f.window->isVisible());
}

void tst_compareWindow::debugLine()
{
    fixture f;
    QTest::ignoreMessage(QtDebugMsg, "Test \"LAB7\"   Used");
    f.click("checkBoxMerged");
    f.data.machines().last().setMeasured(false);
    QTest::ignoreMessage(QtDebugMsg, "Test \"LAB7\"   Unused");
    f.click("checkBoxMerged");
}

void tst_compareWindow::chartsAreReleased()
{
    const fixture f;
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
