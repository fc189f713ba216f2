// SPDX-License-Identifier: GPL-3.0-or-later

// What the compare window is made of; what its controls do is tested beside it.

#include "compareFixture.h"

#include <QAction>
#include <QGroupBox>
#include <QMetaMethod>
#include <QPushButton>
#include <QStatusBar>
#include <QVBoxLayout>

class tst_compareWindowForm : public QObject
{
    Q_OBJECT

private slots:
    void form();
    void styleSheet();
    void actions();
    void choosers();
    void slotOrder();
    void withoutData();
    void perClockIsOffered();
    void closeButton();
};

void tst_compareWindowForm::form()
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

void tst_compareWindowForm::styleSheet()
{
    const compareFixture f;
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

void tst_compareWindowForm::actions()
{
    const compareFixture f;
    const auto *names = f.find<QAction>("actionShort_names");
    QCOMPARE(names->text(), QStringLiteral("Short names"));
    QVERIFY(names->isCheckable() && names->isChecked());
    const auto *cpu = f.find<QAction>("actionCPU_name");
    QCOMPARE(cpu->text(), QStringLiteral("CPU name"));
    QVERIFY(cpu->isCheckable() && !cpu->isChecked());
}

void tst_compareWindowForm::choosers()
{
    const compareFixture f;
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

void tst_compareWindowForm::slotOrder()
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

void tst_compareWindowForm::withoutData()
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

void tst_compareWindowForm::perClockIsOffered()
{
    QVERIFY(compareFixture(true).find<QCheckBox>("checkBoxIPC")->isVisible());
    QVERIFY(!compareFixture(false).find<QCheckBox>("checkBoxIPC")->isVisible());
}

void tst_compareWindowForm::closeButton()
{
    const compareFixture f;
    QVERIFY(f.window->isVisible());
    f.find<QPushButton>("closeButton")->click();
    QVERIFY(!f.window->isVisible());
}

QTEST_MAIN(tst_compareWindowForm)
#include "tst_compareWindowForm.moc"
