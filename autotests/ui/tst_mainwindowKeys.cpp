// SPDX-License-Identifier: GPL-3.0-or-later

// The main window without a mouse.

#include "support/dataDirectory.h"
#include "support/fakeClock.h"
#include "support/messageBoxes.h"
#include "ui/compareWindow.h"
#include "ui/focusRing.h"
#include "ui/textPage.h"
#include "windowFixture.h"

#include <QPlainTextEdit>
#include <QTabBar>
#include <QtTest>

using std::chrono::milliseconds;

namespace
{

/// A window that has the keyboard.
struct activeWindow : windowFixture {
    activeWindow()
    {
        QApplication::setActiveWindow(window.get());
        QCoreApplication::processEvents();
    }
    /// The keyboard may have been at a message box.
    void press(Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier) const
    {
        QApplication::setActiveWindow(window.get());
        QTest::keyClick(window.get(), key, with);
    }
    QStringList visitedByTab() const
    {
        QStringList names;
        QWidget *first = QApplication::focusWidget();
        do {
            const QWidget *now = QApplication::focusWidget();
            names.append(now->objectName());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        } while (QApplication::focusWidget() != first && names.size() < 50);
        return names;
    }
    void choosePage(int index) const { find<QTabWidget>("tabWidget")->setCurrentIndex(index); }
    QTabBar *tabs() const { return find<QTabWidget>("tabWidget")->tabBar(); }
};

} // namespace

class tst_mainwindowKeys : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void startsOnTheStart();
    void tabOrder_data();
    void tabOrder();
    void ringFollowsTheFocus();
    void ringIsSeen();
    void enterPresses_data();
    void enterPresses();
    void escapeStopsASingleTest();
    void escapeStopsAFullRun();
    void escapeLeavesNoStop();
    void escapeDoesNothingElse();
    void stopButtonHasTheKeyboard();
    void quitAsks();
    void quitWhileRunning();
    void help();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_mainwindowKeys::initTestCase()
{
    if (QGuiApplication::platformName() != QLatin1String("offscreen"))
        QSKIP("needs a window manager that gives every window the keyboard at once");
}

void tst_mainwindowKeys::startsOnTheStart()
{
    const activeWindow f;
    QCOMPARE(QApplication::focusWidget(), f.button("benchButton"));
}

void tst_mainwindowKeys::tabOrder_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<QString>("expected");
    QTest::newRow("benchmark") << 0
                               << QStringLiteral("qt_tabwidget_tabbar benchButton compareButton "
                                                 "debugBox pushButtonDetails");
    QTest::newRow("single test")
        << 1
        << QStringLiteral("qt_tabwidget_tabbar resolutionComboBox calcComboBox "
                          "comboBoxSingleTestTime comboBoxAutoRepeat singleTestButton debugBox "
                          "pushButtonDetails");
    // The clocks cannot be chosen.
    QTest::newRow("options")
        << 2
        << QStringLiteral("qt_tabwidget_tabbar pushButtonLoadStandardReference "
                          "pushButtonLoadBetaReference checkBoxDisableResultUpload "
                          "checkBoxShowIPCResults comboBoxCompareWindowFontSize "
                          "pushButtonResultsAsText pushButtonDeleteUserData pushButtonAbout "
                          "pushButtonExit debugBox pushButtonDetails");
}

void tst_mainwindowKeys::tabOrder()
{
    QFETCH(int, page);
    const activeWindow f;
    f.choosePage(page);
    f.tabs()->setFocus();
    QTEST(f.visitedByTab().join(QLatin1Char(' ')), "expected");
}

void tst_mainwindowKeys::ringFollowsTheFocus()
{
    const activeWindow f;
    const auto *ring = f.window->findChild<focusRing *>();
    QVERIFY(ring);
    for (int page = 0; page < 3; ++page) {
        f.choosePage(page);
        f.tabs()->setFocus();
        for (int i = 0; i < 14; ++i) {
            QWidget *control = QApplication::focusWidget();
            QCOMPARE(ring->marked(), control);
            QVERIFY(ring->isVisible());
            if (control != f.tabs()) {
                QCOMPARE(ring->geometry(),
                         QRect(control->mapTo(f.window.get(), QPoint()), control->size()));
            } else {
                QCOMPARE(ring->width(), f.tabs()->tabRect(page).width());
            }
            QTest::keyClick(control, Qt::Key_Tab);
        }
    }
    f.window->resize(900, 950);
    QCoreApplication::processEvents();
    QCOMPARE(ring->size().width() > 0, true);
    const QWidget *control = QApplication::focusWidget();
    if (control != f.tabs())
        QCOMPARE(ring->size(), control->size());
}

/// Not only there: the corner of the control's picture is black.
void tst_mainwindowKeys::ringIsSeen()
{
    const activeWindow f;
    const auto cornerOf = [&f](const char *name) {
        const QPoint corner = f.button(name)->mapTo(f.window.get(), QPoint(0, 0));
        return f.window->grab().toImage().pixelColor(corner);
    };
    QCOMPARE(cornerOf("benchButton"), QColor(Qt::black));
    QVERIFY(cornerOf("compareButton") != QColor(Qt::black));
    f.button("compareButton")->setFocus();
    QCOMPARE(cornerOf("compareButton"), QColor(Qt::black));
    QVERIFY(cornerOf("benchButton") != QColor(Qt::black));
}

void tst_mainwindowKeys::enterPresses_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("return") << int(Qt::Key_Return);
    QTest::newRow("enter") << int(Qt::Key_Enter);
    QTest::newRow("space") << int(Qt::Key_Space);
}

void tst_mainwindowKeys::enterPresses()
{
    QFETCH(int, key);
    const activeWindow f;
    QTest::keyClick(f.button("compareButton"), Qt::Key(key));
    QVERIFY(f.onlyView<compareWindow>());
    const boxAnswer answer(QMessageBox::Ok);
    f.choosePage(2);
    QTest::keyClick(f.button("pushButtonAbout"), Qt::Key(key));
    QVERIFY(answer.wasAsked);
}

void tst_mainwindowKeys::escapeStopsASingleTest()
{
    const fakeClock clock;
    activeWindow f;
    int runs = 0;
    f.fakes.at(0)->onRun = [&] {
        fakeClock::pass(milliseconds(5));
        if (++runs == 2)
            f.press(Qt::Key_Escape);
    };
    f.button("singleTestButton")->click();
    QCOMPARE(runs, 2);
    QVERIFY(f.newLog().contains(QStringLiteral("\nstopped by user ...\n Result: ")));
    QVERIFY(f.isIdle());
}

void tst_mainwindowKeys::escapeStopsAFullRun()
{
    const fakeClock clock;
    activeWindow f;
    int runs = 0;
    f.fakes.at(0)->onRun = [&] {
        fakeClock::pass(milliseconds(5));
        if (++runs == 2)
            f.press(Qt::Key_Escape);
    };
    const boxAnswer answer(QMessageBox::Yes);
    f.button("benchButton")->click();
    QCOMPARE(runs, 2);
    QCOMPARE(f.newLog().count(QStringLiteral("stopped by user ...\n")), 2);
    QVERIFY(!f.newLog().contains(QStringLiteral("Store userdata")));
    QVERIFY(f.onlyView<compareWindow>()->isVisible());
}

/// The next run, of either kind, comes to its own end.
void tst_mainwindowKeys::escapeLeavesNoStop()
{
    const fakeClock clock;
    activeWindow f;
    int runs = 0;
    f.fakes.at(0)->onRun = [&] {
        fakeClock::pass(milliseconds(2000));
        if (++runs == 1)
            f.press(Qt::Key_Escape);
    };
    f.fakes.at(1)->canSetup = false;
    const boxAnswer answer(QMessageBox::Yes);
    f.button("benchButton")->click();
    QCOMPARE(runs, 1);
    QVERIFY(!f.window->isStopRequested());
    const boxAnswer second(QMessageBox::Yes);
    f.button("benchButton")->click();
    QCOMPARE(runs, 5);
    QVERIFY(f.newLog().contains(QStringLiteral("Benchmark finished\n")));
}

/// Neither does it stop what has not begun, nor does it take back another stop.
void tst_mainwindowKeys::escapeDoesNothingElse()
{
    const fakeClock clock;
    activeWindow f;
    f.press(Qt::Key_Escape);
    QVERIFY(!f.window->isStopRequested());
    QVERIFY(f.window->isVisible());
    f.fakes.at(0)->onRun = [&] {
        fakeClock::pass(milliseconds(5));
        f.press(Qt::Key_Escape);
        f.window->close();
    };
    const boxAnswer answer(QMessageBox::Yes);
    f.button("benchButton")->click();
    QVERIFY(f.window->isStopRequested());
}

void tst_mainwindowKeys::stopButtonHasTheKeyboard()
{
    const fakeClock clock;
    activeWindow f;
    f.choosePage(1);
    f.button("singleTestButton")->setFocus();
    QWidget *during = nullptr;
    int runs = 0;
    f.fakes.at(0)->onRun = [&] {
        fakeClock::pass(milliseconds(5));
        during = QApplication::focusWidget();
        if (++runs == 2)
            QTest::keyClick(during, Qt::Key_Return);
    };
    f.button("singleTestButton")->click();
    QCOMPARE(during, f.button("pushButtonStop"));
    QCOMPARE(runs, 2);
    QCOMPARE(QApplication::focusWidget(), f.button("singleTestButton"));
}

void tst_mainwindowKeys::quitAsks()
{
    const activeWindow f;
    const boxAnswer no(QMessageBox::No);
    f.press(Qt::Key_Q, Qt::ControlModifier);
    QCOMPARE(no.text, QStringLiteral("Do you relay want to quit?"));
    QVERIFY(f.window->isVisible());
    const boxAnswer yes(QMessageBox::Yes);
    f.press(Qt::Key_Q, Qt::ControlModifier);
    QVERIFY(!f.window->isVisible());
}

/// A question would take the time of the test that it interrupts.
void tst_mainwindowKeys::quitWhileRunning()
{
    const fakeClock clock;
    activeWindow f;
    int runs = 0;
    f.fakes.at(0)->onRun = [&] {
        fakeClock::pass(milliseconds(5));
        ++runs;
        f.press(Qt::Key_Q, Qt::ControlModifier);
    };
    f.button("singleTestButton")->click();
    QCOMPARE(runs, 1);
    QVERIFY(!f.window->isVisible());
}

void tst_mainwindowKeys::help()
{
    const activeWindow f;
    f.press(Qt::Key_F1);
    const auto *page = f.onlyView<textPage>();
    QVERIFY(page && page->isVisible());
    const QString text = page->findChild<QPlainTextEdit *>()->toPlainText();
    for (const char *word : {"Esc ", "Ctrl+Q ", "F1 ", "Ctrl+L ", "vertex (multicore)"})
        QVERIFY2(text.contains(QLatin1String(word)), word);
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines)
        QVERIFY2(line.size() <= 80, qPrintable(line));
}

QTEST_MAIN(tst_mainwindowKeys)
#include "tst_mainwindowKeys.moc"
