// SPDX-License-Identifier: GPL-3.0-or-later
#include "compareFixture.h"

#include <QStatusBar>

class tst_compareWindow : public QObject
{
    Q_OBJECT

private slots:
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
    void swipes();
    void swipeToATestKeepsTheText();
    void debugLine();
};

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

void tst_compareWindow::debugLine()
{
    compareFixture f;
    QTest::ignoreMessage(QtDebugMsg, "Test \"LAB7\"   Used");
    f.click("checkBoxMerged");
    f.data.machines().last().setMeasured(false);
    QTest::ignoreMessage(QtDebugMsg, "Test \"LAB7\"   Unused");
    f.click("checkBoxMerged");
}

QTEST_MAIN(tst_compareWindow)
#include "tst_compareWindow.moc"
