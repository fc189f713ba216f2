// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/fakeClock.h"
#include "support/dataDirectory.h"
#include "support/messageBoxes.h"
#include "ui/compareWindow.h"
#include "ui/resultwindow.h"
#include "ui/windowFixture.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

namespace
{

/// A round takes this long by the fake clock.
void briefly()
{
    fakeClock::pass(std::chrono::milliseconds(5));
}

} // namespace

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
    void fullRunRefused();
    void fullRunFinished();
    void uploadIsDisabled();
    void closedBoxIsNo();
    void framesAreShownInAFullRun();
    void closeDuringAFullRun();
    void closeDuringARunEndsTheProgram();
    void singleRunIsStopped();
    void singleRunUsesTheChoices();
    void displayDuringASingleRun();
    void autoRepeat();
    void testTimeThatIsNoNumber();
    void framesFlow();
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
    void viewsDuringARun();
    void resultsAsText();
    void deletedUserData();
    void startTwice();

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

void tst_mainwindow::fullRunRefused()
{
    windowFixture f;
    const boxAnswer answer(QMessageBox::No);
    f.button("benchButton")->click();
    QVERIFY(answer.wasAsked);
    QCOMPARE(answer.title, QString());
    QCOMPARE(answer.text, QStringLiteral("The benchmark will takes ~16 seconds, are you ready?"));
    QCOMPARE(answer.buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(answer.defaultButton, QMessageBox::Yes);
    QVERIFY(f.newLog().isEmpty());
    QVERIFY(f.events.isEmpty());
    QVERIFY(f.isIdle());
}

void tst_mainwindow::closedBoxIsNo()
{
    windowFixture f;
    const boxAnswer answer(QMessageBox::NoButton);
    f.button("benchButton")->click();
    QVERIFY(answer.wasAsked);
    QVERIFY(f.events.isEmpty());
}

void tst_mainwindow::fullRunFinished()
{
    windowFixture f;
    for (fakeTest *test : qAsConst(f.fakes))
        test->canSetup = false; // each takes its full 8 s otherwise
    const QSignalSpy compare(f.button("compareButton"), &QPushButton::clicked);
    const boxAnswer answer(QMessageBox::Yes);
    f.button("benchButton")->click();
    QCOMPARE(f.events, QStringList({QStringLiteral("one.setup"), QStringLiteral("many.setup")}));
    QVERIFY(f.newLog().contains(QStringLiteral(
        "Start Benchmark (8s per Test (3) use virtual resolution 3820x2160):\n"
        "Error: cant setup test oneError: cant setup test manyBenchmark finished\n")));
    // Stored, offered for upload, shown.
    QVERIFY(f.newLog().contains(QStringLiteral("Benchmark finished\nStore userdata\n")));
    QVERIFY(f.newLog().contains(QStringLiteral("upload")));
    QVERIFY(directory->read(QStringLiteral("user_data.xml")).contains("<test name=\"one\""));
    QVERIFY(f.onlyView<compareWindow>()->isVisible());
    QCOMPARE(compare.count(), 1);
    QVERIFY(f.isIdle());
}

void tst_mainwindow::uploadIsDisabled()
{
    windowFixture f;
    for (fakeTest *test : qAsConst(f.fakes))
        test->canSetup = false;
    f.find<QCheckBox>("checkBoxDisableResultUpload")->setChecked(true);
    const boxAnswer answer(QMessageBox::Yes);
    f.button("benchButton")->click();
    QVERIFY(f.newLog().endsWith(QStringLiteral("Benchmark finished\nStore userdata\n")));
}

void tst_mainwindow::framesAreShownInAFullRun()
{
    const fakeClock clock;
    windowFixture f;
    f.fakes.at(0)->canSetup = false;
    bool wasRunning = false;
    int runs = 0;
    f.fakes.at(1)->onRun = [&] {
        briefly();
        wasRunning = !f.find<QTabWidget>("tabWidget")->isVisible() && f.display()->isVisible()
                     && !f.button("pushButtonStop")->isVisible();
        if (++runs == 3)
            f.window->singleTestStop();
    };
    const QSignalSpy compare(f.button("compareButton"), &QPushButton::clicked);
    const boxAnswer answer(QMessageBox::Yes);
    f.button("benchButton")->click();
    QVERIFY(wasRunning);
    QCOMPARE(runs, 3);
    // Only the test that ran has moved the place on.
    QCOMPARE(f.display()->testIndex(), 1);
    // The results are shown after a stopped run as well, but neither stored nor uploaded.
    QCOMPARE(compare.count(), 1);
    QVERIFY(f.newLog().contains(QStringLiteral("\nstopped by user ...\n Result: ")));
    QVERIFY(!f.newLog().contains(QStringLiteral("Benchmark finished")));
    QVERIFY(!f.newLog().contains(QStringLiteral("Store")));
    QVERIFY(directory->read(QStringLiteral("user_data.xml")).isNull());
    QVERIFY(!f.newLog().contains(QStringLiteral("upload")));
    QVERIFY(f.isIdle());
}

void tst_mainwindow::closeDuringAFullRun()
{
    const fakeClock clock;
    windowFixture f;
    f.fakes.at(0)->onRun = [&] {
        briefly();
        QTimer::singleShot(0, f.window.get(), &QWidget::close);
    };
    const boxAnswer answer(QMessageBox::Yes);
    f.button("benchButton")->click();
    QVERIFY(!f.window->isVisible());
    QVERIFY(f.newLog().contains(QStringLiteral("\nstopped by user ...\n Result: ")));
    QCOMPARE(f.newLog().count(QStringLiteral("stopped by user ...\n")), 2);
    QVERIFY(!f.events.contains(QStringLiteral("many.setup")));
}

void tst_mainwindow::closeDuringARunEndsTheProgram()
{
    const fakeClock clock;
    windowFixture f;
    f.fakes.at(0)->onRun = [&] {
        briefly();
        QTimer::singleShot(0, f.window.get(), &QWidget::close);
    };
    bool isInTime = true;
    QTimer::singleShot(60'000, f.window.get(), [&] {
        isInTime = false;
        QApplication::exit(1);
    });
    QTimer::singleShot(0, f.button("singleTestButton"), &QPushButton::click);
    QCOMPARE(QApplication::exec(), 0);
    QVERIFY(isInTime);
    QVERIFY(f.events.contains(QStringLiteral("one.run")));
    QVERIFY(f.newLog().contains(QStringLiteral("stopped by user")));
}

void tst_mainwindow::singleRunIsStopped()
{
    const fakeClock clock;
    windowFixture f;
    int runs = 0;
    bool stopWasVisible = false;
    f.fakes.at(0)->onRun = [&] {
        briefly();
        stopWasVisible = f.button("pushButtonStop")->isVisible();
        if (++runs == 4)
            QTimer::singleShot(0, f.button("pushButtonStop"), &QPushButton::click);
    };
    f.button("singleTestButton")->click();
    QVERIFY(stopWasVisible);
    QCOMPARE(runs, 4);
    QVERIFY(f.newLog().startsWith(QStringLiteral(
        "Start single test (8s testtime use virtual resolution 3820x2160):\nTest ")));
    QCOMPARE(f.newLog().count(QStringLiteral("stopped by user ...\n")), 1);
    QVERIFY(f.isIdle());
    // The stop does not outlive the run.
    QVERIFY(!f.window->isStopRequested());
}

void tst_mainwindow::singleRunUsesTheChoices()
{
    windowFixture f;
    f.find<QComboBox>("calcComboBox")->setCurrentText(singleOnly);
    f.find<QComboBox>("resolutionComboBox")->setCurrentText(QStringLiteral("640x480"));
    f.find<QComboBox>("comboBoxSingleTestTime")->setCurrentText(QStringLiteral("10"));
    f.fakes.at(2)->onRun = [&] { f.window->singleTestStop(); };
    f.button("singleTestButton")->click();
    QVERIFY(f.newLog().startsWith(
        QStringLiteral("Start single test (10s testtime use virtual resolution 640x480):\nTest ")
        + singleOnly.rightJustified(36)));
    QCOMPARE(f.fakes.at(2)->getWidth(), 640);
}

void tst_mainwindow::displayDuringASingleRun()
{
    windowFixture f;
    f.find<QComboBox>("resolutionComboBox")->setCurrentText(QStringLiteral("320x240"));
    QImage shown;
    int displayHeight = 0;
    f.fakes.at(0)->onRun = [&] {
        displayHeight = f.display()->height();
        std::fill_n(f.fakes.at(0)->getBuffer(), 320 * 240, 0xFF4080C0U);
        shown = f.display()->grab().toImage();
        f.window->singleTestStop();
    };
    f.button("singleTestButton")->click();
    QCOMPARE(shown.pixel(shown.width() - 1, shown.height() - 1), 0xFF4080C0U);
    QCOMPARE(shown.pixel(shown.width() - 1, shown.height() / 2), 0xFF4080C0U);
    // The log stays in sight, but the frames get the larger part.
    QVERIFY(displayHeight > f.window->height() * 2 / 5);
    f.display()->show();
    QCOMPARE(f.display()->grab().toImage().pixel(5, 5), 0xFF000000U);
}

void tst_mainwindow::autoRepeat()
{
    const fakeClock clock;
    windowFixture f;
    f.find<QComboBox>("comboBoxAutoRepeat")->setCurrentText(QStringLiteral("on"));
    f.addTestTime(QStringLiteral("1"));
    int setups = 0;
    f.fakes.at(0)->onRun = [&] {
        briefly();
        setups = f.events.count(QStringLiteral("one.setup"));
        if (setups == 3)
            f.button("pushButtonStop")->click();
    };
    f.button("singleTestButton")->click();
    QCOMPARE(setups, 3);
    QCOMPARE(f.newLog().count(QStringLiteral("Start single test (1s testtime")), 3);
    QCOMPARE(f.newLog().count(QStringLiteral("stopped by user")), 1);
    QVERIFY(f.isIdle());
}

void tst_mainwindow::testTimeThatIsNoNumber()
{
    windowFixture f;
    f.addTestTime(QStringLiteral("soon"));
    f.button("singleTestButton")->click();
    QVERIFY(f.newLog().startsWith(QStringLiteral("Start single test (0s testtime")));
    QVERIFY(!f.events.contains(QStringLiteral("one.run")));
    QVERIFY(f.isIdle());
}

void tst_mainwindow::framesFlow()
{
    // Each progress repaints the display once, with the frame as it is by then.
    class paintCounter : public QObject
    {
    public:
        bool eventFilter(QObject *watched, QEvent *event) override
        {
            paints += event->type() == QEvent::Paint ? 1 : 0;
            return QObject::eventFilter(watched, event);
        }
        int paints = 0;
    };
    windowFixture f;
    paintCounter counter;
    f.display()->installEventFilter(&counter);
    int runs = 0;
    f.fakes.at(0)->onRun = [&] {
        QTest::qSleep(20); // the platform paints a window no more often than every few ms
        if (++runs == 10)
            f.window->singleTestStop();
    };
    f.button("singleTestButton")->click();
    QVERIFY2(counter.paints >= 9, qPrintable(QString::number(counter.paints)));
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

void tst_mainwindow::viewsDuringARun()
{
    const fakeClock clock;
    windowFixture f;
    int runs = 0;
    QStringList titles;
    f.fakes.at(0)->onRun = [&] {
        briefly();
        f.window->compareResults();
        f.window->showResults();
        auto *view = f.onlyView<compareWindow>();
        view->selectionChanged(runs);
        titles.append(view->findChild<QChartView *>()->chart()->title());
        if (++runs == 3)
            f.window->singleTestStop();
    };
    f.button("singleTestButton")->click();
    QCOMPARE(titles.join(QLatin1Char('|')),
             QStringLiteral("combined (singlecore)|combined (multicore)|combined"));
    QVERIFY(f.onlyView<compareWindow>()->isVisible());
    QVERIFY(f.onlyView<resultwindow>()->isVisible());
    QVERIFY(f.isIdle());
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

void tst_mainwindow::startTwice()
{
    const fakeClock clock;
    windowFixture f;
    for (int i = 0; i < 2; ++i) {
        int runs = 0;
        f.fakes.at(0)->onRun = [&] {
            briefly();
            if (++runs == 2)
                f.button("pushButtonStop")->click();
        };
        f.button("singleTestButton")->click();
        QCOMPARE(runs, 2);
        QVERIFY(f.isIdle());
    }
}

QTEST_MAIN(tst_mainwindow)
#include "tst_mainwindow.moc"
