// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/instanceLock.h"
#include "data/runStore.h"
#include "support/dataDirectory.h"
#include "support/fakeClock.h"
#include "support/messageBoxes.h"
#include "ui/compareWindow.h"
#include "ui/resultwindow.h"
#include "windowFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
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

class tst_mainwindowRuns : public QObject
{
    Q_OBJECT

public:
    /// The platform paints a window no more often than every few milliseconds; here as often as it
    /// is asked to, so that what is counted does not depend on the machine.
    static void initMain() { qputenv("QT_QPA_UPDATE_IDLE_TIME", "0"); }

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void fullRunRefused();
    void fullRunFinished();
    void fullRunIsKept();
    void otherInstance();
    void uploadIsDisabled();
    void closedBoxIsNo();
    void framesAreShownInAFullRun();
    void closeDuringAFullRun();
    void closeDuringARunEndsTheProgram_data();
    void closeDuringARunEndsTheProgram();
    void singleRunIsStopped();
    void singleRunUsesTheChoices();
    void displayDuringASingleRun();
    void autoRepeat();
    void testTimeThatIsNoNumber();
    void framesFlow();
    void viewsDuringARun();
    void startTwice();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_mainwindowRuns::fullRunRefused()
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

void tst_mainwindowRuns::closedBoxIsNo()
{
    windowFixture f;
    const boxAnswer answer(QMessageBox::NoButton);
    f.button("benchButton")->click();
    QVERIFY(answer.wasAsked);
    QVERIFY(f.events.isEmpty());
}

void tst_mainwindowRuns::fullRunFinished()
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

/// With each test in it, also where one failed; what keeps it from being kept is said.
void tst_mainwindowRuns::fullRunIsKept()
{
    windowFixture f;
    for (fakeTest *test : qAsConst(f.fakes))
        test->canSetup = false;
    const boxAnswer answer(QMessageBox::Yes);
    f.button("benchButton")->click();
    const QDir runs(directory->path(QStringLiteral("runs")));
    QCOMPARE(runs.entryList(QDir::Files).size(), 1);
    const outcome<runRecord> kept = readRunFile(runs.filePath(runs.entryList(QDir::Files).first()));
    QVERIFY(kept.has_value());
    QVERIFY(!kept->isStopped);
    QCOMPARE(kept->settings.wanted, runSettings::fullRun);
    QCOMPARE(kept->settings.testTime, 8000);
    QCOMPARE(kept->tests.size(), std::size_t(2));
    QCOMPARE(kept->tests.at(1).name, manyCores);
    QCOMPARE(kept->tests.at(1).end, testEnd::failed);
    const auto *notes = f.find<QLabel>("labelStatus");
    QVERIFY(notes->text().startsWith(
        QStringLiteral("verdict: 0 of 2 tests good; no result: one, many")));

    QVERIFY(QDir(directory->path(QStringLiteral("runs"))).removeRecursively());
    QVERIFY(directory->write(QStringLiteral("runs"), "not a folder"));
    const boxAnswer secondAnswer(QMessageBox::Yes);
    f.button("benchButton")->click();
    QVERIFY(notes->text().startsWith(QStringLiteral("The run is not kept: ")));
    QVERIFY(QFontInfo(notes->font()).pixelSize() > 5);
    QVERIFY(f.newLog().contains(QStringLiteral("Store userdata\n")));
}

/// Two that measure at once are in each other's way, so each says that it measures.
void tst_mainwindowRuns::otherInstance()
{
    const fakeClock clock;
    windowFixture f;
    bool isSaid = false;
    f.fakes.at(0)->onRun = [&] {
        briefly();
        isSaid = instanceLock().isOtherRunning() || !instanceLock().hold();
        f.window->singleTestStop();
    };
    for (const char *button : {"singleTestButton", "benchButton"}) {
        isSaid = false;
        const boxAnswer answer(QMessageBox::Yes);
        f.button(button)->click();
        QVERIFY2(isSaid, button);
        instanceLock other;
        QVERIFY2(other.hold(), button);
    }
}

void tst_mainwindowRuns::uploadIsDisabled()
{
    windowFixture f;
    for (fakeTest *test : qAsConst(f.fakes))
        test->canSetup = false;
    f.find<QCheckBox>("checkBoxDisableResultUpload")->setChecked(true);
    const boxAnswer answer(QMessageBox::Yes);
    f.button("benchButton")->click();
    QVERIFY(f.newLog().endsWith(QStringLiteral("Benchmark finished\nStore userdata\n")));
}

void tst_mainwindowRuns::framesAreShownInAFullRun()
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

void tst_mainwindowRuns::closeDuringAFullRun()
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

void tst_mainwindowRuns::closeDuringARunEndsTheProgram_data()
{
    QTest::addColumn<QString>("button");
    QTest::newRow("single test") << QStringLiteral("singleTestButton");
    // Its end opens the comparison, which must not outlive the program's window.
    QTest::newRow("full run") << QStringLiteral("benchButton");
}

void tst_mainwindowRuns::closeDuringARunEndsTheProgram()
{
    QFETCH(QString, button);
    const boxAnswer answer(QMessageBox::Yes);
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
    QTimer::singleShot(0, f.window->findChild<QPushButton *>(button), &QPushButton::click);
    QCOMPARE(QApplication::exec(), 0);
    QVERIFY(isInTime);
    for (const QWidget *window : QApplication::topLevelWidgets())
        QVERIFY2(!window->isVisible(), qPrintable(window->windowTitle()));
    QVERIFY(f.events.contains(QStringLiteral("one.run")));
    QVERIFY(f.newLog().contains(QStringLiteral("stopped by user")));
}

void tst_mainwindowRuns::singleRunIsStopped()
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

void tst_mainwindowRuns::singleRunUsesTheChoices()
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

void tst_mainwindowRuns::displayDuringASingleRun()
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

void tst_mainwindowRuns::autoRepeat()
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

void tst_mainwindowRuns::testTimeThatIsNoNumber()
{
    windowFixture f;
    f.addTestTime(QStringLiteral("soon"));
    f.button("singleTestButton")->click();
    QVERIFY(f.newLog().startsWith(QStringLiteral("Start single test (0s testtime")));
    QVERIFY(!f.events.contains(QStringLiteral("one.run")));
    QVERIFY(f.isIdle());
}

void tst_mainwindowRuns::framesFlow()
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
    const fakeClock clock;
    windowFixture f;
    paintCounter counter;
    f.display()->installEventFilter(&counter);
    int runs = 0;
    f.fakes.at(0)->onRun = [&] {
        briefly();
        if (++runs == 10)
            f.window->singleTestStop();
    };
    f.button("singleTestButton")->click();
    QVERIFY2(counter.paints >= 9, qPrintable(QString::number(counter.paints)));
}

void tst_mainwindowRuns::viewsDuringARun()
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

void tst_mainwindowRuns::startTwice()
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

QTEST_MAIN(tst_mainwindowRuns)
#include "tst_mainwindowRuns.moc"
