// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/dataDirectory.h"
#include "support/fakeTest.h"
#include "ui/mainwindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>
#include <QTextEdit>
#include <QtTest>

namespace
{

const char *const expectedStyleSheet =
    "QMenuBar\n{\ncolor: #ffffff;\nbackground: darkgray;\nborder-width: 0px;\n}\n\n"
    "QWidget\n{\ncolor: #ffffff;\nbackground: darkgray;\nborder-width: 0px;\n}\n\n"
    "QTextEdit\n{\ncolor: black;\n}\n\nQComboBox\n{\nborder: 0px solid darkblue;\n"
    "border-left-width: 1px;\npadding: 10px;\n}\n\nQCheckBox::indicator\n{\n"
    "border: 1px solid #5A5A5A;\nbackground: none;\n}\n\n"
    "QCheckBox::indicator:unchecked \n{\nimage: url(:/icons/unchecked.png);\n}\n\n"
    "QCheckBox::indicator:checked \n{\nimage: url(:/icons/checked.png);\n}\n\n"
    "QCheckBox::indicator:indeterminate\n{\nimage: url(:/icons/checkedTri.png);\n}\n\n\n"
    "QGroupBox\n{\nborder-style: solid;\nborder-color: black;\nborder-left-width: 1px;\n"
    "}\n\nQTabWidget::pane\n{ \n\nborder-top: 2px grey;\n\n}\n\nQTabBar::tab \n{\n"
    "background: grey;\ncolor: white;\npadding: 20px;  \nborder-width: 0px;\n}\n\n"
    "QTabBar::tab:selected \n{ \nbackground: lightgrey; border-width: 0px;\n}\n\n"
    "QPushButton \n{\npadding: 10px;\nborder-style: solid;\nborder-color: lightgray;\n"
    "border-bottom-width: 2px;\ntext-decoration: none;\n}\n\nQPushButton:hover \n{ \n"
    "border-style: solid;\nborder-color: lightgray;\nborder-bottom-width: 1px;\n"
    "background-color: LightSlateGrey;\ntext-decoration: underline;\n}\n\n"
    "QPushButton:disabled{ border-width: 0px; border-color: darkgray; }\n"
    "QPushButton:pressed{ border-width: 0px; border-color: darkgray;}\n"
    "QPushButton:focus:pressed{ border-width: 0px; border-color: darkgray;}\n"
    "QPushButton:focus{border-width: 0px; border-color: darkgray;}\n"
    "QPushButton:checked{ border-width: 0px; border-color: darkgray;}\n";

suite noTests(printHook *)
{
    return {};
}

QStringList split(const char *names)
{
    return QString::fromLatin1(names).split(QLatin1Char(' '));
}

/// The names of the children of @p parent in the order in which they were made, without the
/// nameless ones and those that Qt names itself.
QStringList namedChildren(const QObject *parent)
{
    QStringList names;
    for (const QObject *child : parent->children()) {
        if (!child->objectName().isEmpty() && !child->objectName().startsWith(QLatin1String("qt_")))
            names.append(child->objectName());
    }
    return names;
}

QStringList itemsOf(const QComboBox *box)
{
    QStringList items;
    for (int i = 0; i < box->count(); ++i)
        items.append(box->itemText(i));
    return items;
}

} // namespace

class tst_mainwindowForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { window.reset(); }
    void window_();
    void styleSheet();
    void texts_data();
    void texts();
    void tabs();
    void choosers();
    void order_data();
    void order();
    void actions_data();
    void actions();
    void fonts();
    void icons();
    void debugBox();
    void startState();
    void readableFonts();

private:
    dataDirectory directory;
    std::unique_ptr<MainWindow> window;
};

void tst_mainwindowForm::initTestCase()
{
    window = std::make_unique<MainWindow>(nullptr, noTests);
}

void tst_mainwindowForm::window_()
{
    QCOMPARE(window->size(), QSize(688, 905));
    QCOMPARE(window->font().pointSize(), 1);
    QCOMPARE(window->font().weight(), 75);
    QVERIFY(window->findChild<QStatusBar *>(QStringLiteral("statusBar")));
    QCOMPARE(window->centralWidget()->objectName(), QStringLiteral("centralWidget"));
}

void tst_mainwindowForm::styleSheet()
{
    QCOMPARE(window->styleSheet(), QString::fromLatin1(expectedStyleSheet));
    QCOMPARE(window->findChild<QFrame *>(QStringLiteral("line"))->styleSheet(),
             QStringLiteral("color: lightgray;"));
    QCOMPARE(window->findChild<QWidget *>(QStringLiteral("pushButtonExit"))->styleSheet(),
             QStringLiteral("color:black;"));
}

void tst_mainwindowForm::texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("benchButton") << QStringLiteral("start benchmark");
    QTest::newRow("compareButton") << QStringLiteral("show results");
    QTest::newRow("label_2") << QStringLiteral("Virtual resolution     ");
    QTest::newRow("label") << QStringLiteral("Test");
    QTest::newRow("label_7") << QStringLiteral("Auto repeat");
    QTest::newRow("label_6") << QStringLiteral("Test time (s)");
    QTest::newRow("singleTestButton") << QStringLiteral("single test");
    QTest::newRow("pushButtonLoadBetaReference") << QStringLiteral("beta");
    QTest::newRow("pushButtonLoadStandardReference") << QStringLiteral("standard");
    QTest::newRow("label_4") << QStringLiteral("Reference data");
    QTest::newRow("checkBoxDisableResultUpload") << QStringLiteral("disable result upload");
    QTest::newRow("label_5") << QStringLiteral("chart font size");
    QTest::newRow("label_3") << QStringLiteral("Other");
    QTest::newRow("pushButtonExit") << QStringLiteral("exit");
    QTest::newRow("pushButtonAbout") << QStringLiteral("about");
    QTest::newRow("pushButtonDeleteUserData") << QStringLiteral("delete local user data");
    QTest::newRow("pushButtonResultsAsText") << QStringLiteral("show results (text)");
    QTest::newRow("checkBoxShowIPCResults")
        << QStringLiteral("show perf/clock in chart (imprecise)");
    QTest::newRow("checkBoxClocks") << QStringLiteral("show clocks");
    QTest::newRow("pushButtonStop") << QStringLiteral("stop");
}

void tst_mainwindowForm::texts()
{
    QFETCH(QString, text);
    const auto *widget = window->findChild<QWidget *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(widget);
    QCOMPARE(widget->property("text").toString(), text);
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        QVERIFY(!button->isChecked());
}

void tst_mainwindowForm::tabs()
{
    const auto *tabs = window->findChild<QTabWidget *>(QStringLiteral("tabWidget"));
    QVERIFY(tabs);
    QCOMPARE(tabs->count(), 3);
    QCOMPARE(tabs->currentIndex(), 0);
    const QStringList texts = {QStringLiteral("Benchmark"), QStringLiteral("Single Test"),
                               QStringLiteral("Controls/Options")};
    const QStringList names = split("tabBenchmark tabSingleTest tabExtra");
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(tabs->tabText(i), texts.at(i));
        QCOMPARE(tabs->widget(i)->objectName(), names.at(i));
    }
}

void tst_mainwindowForm::choosers()
{
    const auto box = [this](const char *name) {
        return window->findChild<QComboBox *>(QString::fromLatin1(name));
    };
    QCOMPARE(itemsOf(box("comboBoxSingleTestTime")), split("8 10 15 30 60"));
    QCOMPARE(itemsOf(box("comboBoxAutoRepeat")), split("off on"));
    QCOMPARE(itemsOf(box("comboBoxCompareWindowFontSize")), split("8 9 10 11 12 13 14 15 16"));
    QCOMPARE(box("comboBoxSingleTestTime")->currentText(), QStringLiteral("8"));
    QCOMPARE(box("comboBoxAutoRepeat")->currentText(), QStringLiteral("off"));
    QCOMPARE(box("comboBoxCompareWindowFontSize")->currentText(), QStringLiteral("9"));
    QCOMPARE(itemsOf(box("resolutionComboBox")),
             split("3820x2160 1920x1080 1600x900 1280x960 800x600 640x480 320x240"));
    QVERIFY(itemsOf(box("calcComboBox")).isEmpty());
    QCOMPARE(box("calcComboBox")->minimumHeight(), 0);
    QCOMPARE(box("resolutionComboBox")->minimumHeight(), 0);
}

void tst_mainwindowForm::order_data()
{
    QTest::addColumn<QString>("children");
    QTest::newRow("tabBenchmark") << QStringLiteral("verticalLayout_2 benchButton compareButton");
    QTest::newRow("tabSingleTest")
        << QStringLiteral("gridLayout_3 label_2 resolutionComboBox label calcComboBox "
                          "comboBoxSingleTestTime label_7 comboBoxAutoRepeat label_6 "
                          "singleTestButton line");
    QTest::newRow("tabExtra") << QStringLiteral("verticalLayout_4 groupBox groupBox_2");
    QTest::newRow("groupBox") << QStringLiteral(
        "gridLayout_6 pushButtonLoadBetaReference pushButtonLoadStandardReference label_4");
    QTest::newRow("groupBox_2") << QStringLiteral(
        "gridLayout_4 frame label_5 comboBoxCompareWindowFontSize frameSpacer label_3 "
        "pushButtonExit pushButtonAbout pushButtonDeleteUserData pushButtonResultsAsText frame_3");
    QTest::newRow("frame") << QStringLiteral("horizontalLayout checkBoxDisableResultUpload");
    QTest::newRow("frame_3") << QStringLiteral("horizontalLayout_3 frame_2 checkBoxClocks");
    QTest::newRow("frame_2") << QStringLiteral("horizontalLayout_2 checkBoxShowIPCResults");
    QTest::newRow("centralWidget")
        << QStringLiteral("verticalLayout tabWidget pushButtonStop debugBox");
    // Layouts inside a layout are its children.
    QTest::newRow("gridLayout_3") << QStringLiteral("gridLayout_2");
    QTest::newRow("gridLayout_2") << QStringLiteral("controlGridLayout");
    QTest::newRow("verticalLayout") << QStringLiteral("gridLayout");
}

void tst_mainwindowForm::order()
{
    QFETCH(QString, children);
    const auto *parent = window->findChild<QObject *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(parent);
    QCOMPARE(namedChildren(parent).join(QLatin1Char(' ')), children);
}

void tst_mainwindowForm::actions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("checkable");
    QTest::newRow("actionAbout") << QStringLiteral("About") << false;
    QTest::newRow("actionExit") << QStringLiteral("Exit") << false;
    QTest::newRow("actionHide_debug_box") << QStringLiteral("Hide debug box") << true;
    QTest::newRow("actionDetailed_compare") << QStringLiteral("detailed compare") << true;
    QTest::newRow("actionShow_clocks") << QStringLiteral("Show clocks") << true;
    QTest::newRow("actionShow_extra") << QStringLiteral("Enable extra tab") << true;
    QTest::newRow("actionDisable_result_upload") << QStringLiteral("Disable result upload") << true;
}

void tst_mainwindowForm::actions()
{
    QFETCH(QString, text);
    QFETCH(bool, checkable);
    const auto *action = window->findChild<QAction *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(action);
    QCOMPARE(action->text(), text);
    QCOMPARE(action->isCheckable(), checkable);
    QVERIFY(!action->isChecked());
}

void tst_mainwindowForm::fonts()
{
    const auto fontOf = [this](const char *name) {
        return window->findChild<QWidget *>(QString::fromLatin1(name))->font();
    };
    QCOMPARE(fontOf("pushButtonExit").pointSize(), 12);
    QCOMPARE(fontOf("pushButtonExit").weight(), 75);
    QCOMPARE(fontOf("pushButtonStop").pointSize(), 16);
    QCOMPARE(fontOf("pushButtonStop").weight(), 75);
    QCOMPARE(fontOf("debugBox").family(), QStringLiteral("Consolas"));
    QCOMPARE(fontOf("debugBox").pointSize(), 10);
    QCOMPARE(fontOf("debugBox").weight(), 50);
    QCOMPARE(window->findChild<QAction *>(QStringLiteral("actionHide_debug_box"))->font().family(),
             QStringLiteral("Arial"));
}

void tst_mainwindowForm::icons()
{
    for (const char *name : {"benchButton", "compareButton", "pushButtonExit"}) {
        const auto *button = window->findChild<QPushButton *>(QString::fromLatin1(name));
        QVERIFY(button);
        QVERIFY2(!button->icon().pixmap(button->iconSize()).isNull(), name);
        QVERIFY(!button->isDefault());
    }
    for (const char *name : {"fire", "chart", "exit", "unchecked", "checked", "checkedTri"})
        QVERIFY2(!QImage(QStringLiteral(":/icons/%1.png").arg(QLatin1String(name))).isNull(), name);
}

void tst_mainwindowForm::debugBox()
{
    const auto *box = window->findChild<QTextEdit *>(QStringLiteral("debugBox"));
    QVERIFY(box);
    QVERIFY(box->isReadOnly());
    QCOMPARE(box->placeholderText(), QStringLiteral("this is an text"));
}

void tst_mainwindowForm::startState()
{
    const auto *stop = window->findChild<QWidget *>(QStringLiteral("pushButtonStop"));
    const auto *clocks = window->findChild<QWidget *>(QStringLiteral("checkBoxClocks"));
    QVERIFY(stop->isHidden());
    QVERIFY(!clocks->isEnabled());
    QVERIFY(window->windowTitle().startsWith(QStringLiteral("Fennick CPU bench (")));
}

void tst_mainwindowForm::readableFonts()
{
    // The window's own font has one point; whatever shows text must have one of its own.
    for (const QWidget *widget : window->findChildren<QWidget *>()) {
        const bool showsText = widget->property("text").isValid() || widget->inherits("QComboBox")
                               || widget->inherits("QTabBar") || widget->inherits("QTextEdit")
                               || widget->inherits("displayWidget");
        if (showsText)
            QVERIFY2(widget->font().pointSize() >= 9, qPrintable(widget->objectName()));
    }
}

QTEST_MAIN(tst_mainwindowForm)
#include "tst_mainwindowForm.moc"
