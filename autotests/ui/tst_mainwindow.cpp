// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/dataDirectory.h"
#include "support/messageBoxes.h"
#include "ui/compareWindow.h"
#include "ui/resultwindow.h"
#include "windowFixture.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QtTest>

Q_DECLARE_METATYPE(QMessageBox::StandardButton)

class tst_mainwindow : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void startLog();
    void choosers();
    void printAppends();
    void hideTheLog();
    void about();
    void exit_data();
    void exit();
    void standardReference();
    void betaReference_data();
    void betaReference();
    void slotOrder();
    void compareWindowIsReplaced();
    void compareWindowTakesTheOptions();
    void resultsAsText();
    void deletedUserData();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_mainwindow::startLog()
{
    const windowFixture f;
    const QRegularExpression expected(QStringLiteral(
        "^Found \\d+ threads \\[A+\\]\nCPU/HW: .+\n(CPU Frequency seems to be [0-9.]+ GHz\n)?"
        "No online database found\nUse internal benchmark DB\nFound \\d+ devices \\(\\d+ "
        "unique\\)\n"
        "Found no local user benchmark data\n$"));
    QVERIFY2(expected.match(f.log()).hasMatch(), qPrintable(f.log()));
    QVERIFY(f.isIdle());
}

void tst_mainwindow::choosers()
{
    const windowFixture f;
    const auto *tests = f.find<QComboBox>("calcComboBox");
    QCOMPARE(tests->count(), 3);
    QCOMPARE(tests->itemText(0), oneCore);
    QCOMPARE(tests->itemText(2), singleOnly);
    QCOMPARE(f.find<QComboBox>("resolutionComboBox")->itemText(6), QStringLiteral("320x240"));
}

void tst_mainwindow::printAppends()
{
    windowFixture f;
    auto *box = f.find<QTextEdit>("debugBox");
    box->moveCursor(QTextCursor::Start);
    f.window->print(QStringLiteral("a <b>%1</b>"));
    f.window->print(QStringLiteral(" c\n\nd"));
    QCOMPARE(f.newLog(), QStringLiteral("a <b>%1</b> c\n\nd"));
}

void tst_mainwindow::hideTheLog()
{
    windowFixture f;
    auto *box = f.find<QTextEdit>("debugBox");
    auto *action = f.find<QAction>("actionHide_debug_box");
    QVERIFY(box->isVisible());
    action->trigger();
    QVERIFY(!box->isVisible());
    f.window->print(QStringLiteral("kept\n"));
    action->trigger();
    QVERIFY(box->isVisible());
    QCOMPARE(f.newLog(), QStringLiteral("kept\n"));
    f.window->hideDebugBox(true);
    QVERIFY(!box->isVisible());
}

void tst_mainwindow::about()
{
    windowFixture f;
    const boxAnswer answer(QMessageBox::Ok);
    f.button("pushButtonAbout")->click();
    QVERIFY(answer.wasAsked);
    QCOMPARE(answer.title, QStringLiteral("about"));
    QCOMPARE(answer.text,
             QStringLiteral("Written by Harrowdale, no warranty ...\nVersion 26 Revision 1.082"));
}

void tst_mainwindow::exit_data()
{
    QTest::addColumn<QMessageBox::StandardButton>("button");
    QTest::addColumn<bool>("isOpen");
    QTest::newRow("yes") << QMessageBox::Yes << false;
    QTest::newRow("no") << QMessageBox::No << true;
    QTest::newRow("closed") << QMessageBox::NoButton << true;
}

void tst_mainwindow::exit()
{
    QFETCH(QMessageBox::StandardButton, button);
    windowFixture f;
    const boxAnswer answer(button);
    f.button("pushButtonExit")->click();
    QVERIFY(answer.wasAsked);
    QCOMPARE(answer.title, QStringLiteral("quit?"));
    QCOMPARE(answer.text, QStringLiteral("Do you relay want to quit?"));
    QCOMPARE(answer.buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(answer.defaultButton, QMessageBox::Yes);
    QTEST(f.window->isVisible(), "isOpen");
}

void tst_mainwindow::standardReference()
{
    windowFixture f;
    f.button("pushButtonLoadStandardReference")->click();
    QVERIFY(f.newLog().startsWith(
        QStringLiteral("No online database found\nUse internal benchmark DB\nFound ")));
    QVERIFY(f.newLog().endsWith(QStringLiteral("Found no local user benchmark data\n")));
}

void tst_mainwindow::betaReference_data()
{
    QTest::addColumn<QMessageBox::StandardButton>("button");
    QTest::addColumn<bool>("isLoaded");
    QTest::newRow("yes") << QMessageBox::Yes << true;
    QTest::newRow("no") << QMessageBox::No << false;
}

void tst_mainwindow::betaReference()
{
    QFETCH(QMessageBox::StandardButton, button);
    QFETCH(bool, isLoaded);
    windowFixture f;
    const boxAnswer answer(button);
    f.button("pushButtonLoadBetaReference")->click();
    QVERIFY(answer.wasAsked);
    QCOMPARE(answer.title, QString());
    QCOMPARE(answer.text,
             QStringLiteral("Do you relay want to load BETA reference benchmark data?"));
    QCOMPARE(answer.defaultButton, QMessageBox::Yes);
    QCOMPARE(f.newLog().startsWith(QStringLiteral("Use internal benchmark DB\nFound ")), isLoaded);
    QCOMPARE(f.newLog().endsWith(QStringLiteral("Found no local user benchmark data\n")), isLoaded);
}

void tst_mainwindow::slotOrder()
{
    const QMetaObject &meta = MainWindow::staticMetaObject;
    QStringList slotNames;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        slotNames.append(QString::fromLatin1(meta.method(i).methodSignature()));
    QCOMPARE(slotNames.join(QLatin1Char(' ')),
             QStringLiteral("benchStart() benchSingleStart() about() compareResults() "
                            "showResults() hideDebugBox(bool) singleTestStop() "
                            "loadStandardReferenceData() loadBetaReferenceData() "
                            "deleteUserData() doClose()"));
}

void tst_mainwindow::compareWindowIsReplaced()
{
    const windowFixture f;
    QVERIFY(!f.window->findChild<compareWindow *>());
    f.button("compareButton")->click();
    const QPointer<compareWindow> first = f.onlyView<compareWindow>();
    QVERIFY(first && first->isVisible());
    f.button("compareButton")->click();
    QVERIFY(first.isNull());
    const QPointer<compareWindow> second = f.onlyView<compareWindow>();
    QVERIFY(second && second->isVisible());
    second->close();
    QVERIFY(f.window->isVisible());
    f.button("compareButton")->click();
    QVERIFY(f.onlyView<compareWindow>()->isVisible());
}

void tst_mainwindow::compareWindowTakesTheOptions()
{
    const windowFixture f;
    const auto view = [&f] {
        f.button("compareButton")->click();
        return f.onlyView<compareWindow>();
    };
    const auto fontSize = [](const compareWindow *window) {
        return window->findChild<QChartView *>()->chart()->legend()->font().pointSize();
    };
    const QString perClock = QStringLiteral("checkBoxIPC");
    QCOMPARE(fontSize(view()), 9);
    QVERIFY(!view()->findChild<QCheckBox *>(perClock)->isVisible());
    f.find<QComboBox>("comboBoxCompareWindowFontSize")->setCurrentText(QStringLiteral("11"));
    f.find<QCheckBox>("checkBoxShowIPCResults")->setChecked(true);
    QCOMPARE(fontSize(view()), 11);
    QVERIFY(view()->findChild<QCheckBox *>(perClock)->isVisible());
    const auto *tests = view()->findChild<QComboBox *>(QStringLiteral("comboBox"));
    QCOMPARE(tests->count(), 5);
    QCOMPARE(tests->itemText(4), QStringLiteral("test: ") + manyCores);
}

void tst_mainwindow::resultsAsText()
{
    const windowFixture f;
    f.button("pushButtonResultsAsText")->click();
    const QPointer<resultwindow> first = f.onlyView<resultwindow>();
    QVERIFY(first && first->isVisible());
    const QString text = first->findChild<QPlainTextEdit *>()->toPlainText();
    QVERIFY(text.endsWith(QStringLiteral("\none 0 \nmany 0 \nsingle only 0 [hidden]")));
    f.button("pushButtonResultsAsText")->click();
    QVERIFY(first.isNull());
    f.onlyView<resultwindow>()->close();
    QVERIFY(f.window->isVisible());
}

void tst_mainwindow::deletedUserData()
{
    windowFixture f;
    directory->write(QStringLiteral("user_data.xml"),
                     "<F><bench machineName=\"STORED\" os=\"linux\"/></F>");
    f.button("pushButtonLoadStandardReference")->click();
    QVERIFY(f.newLog().endsWith(QStringLiteral("Found local user benchmark data\n")));
    f.button("pushButtonResultsAsText")->click();
    QVERIFY(f.onlyView<resultwindow>()->findChild<QPlainTextEdit *>()->toPlainText().startsWith(
        QStringLiteral("STORED ")));
    const int before = f.newLog().size();
    f.button("pushButtonDeleteUserData")->click();
    QVERIFY(f.newLog().mid(before).startsWith(QStringLiteral(
        "Remove user benchmark data\nNo online database found\nUse internal benchmark DB\n")));
    QVERIFY(f.newLog().endsWith(QStringLiteral("Found no local user benchmark data\n")));
    QVERIFY(directory->read(QStringLiteral("user_data.xml")).isNull());
}

QTEST_MAIN(tst_mainwindow)
#include "tst_mainwindow.moc"
