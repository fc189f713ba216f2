// SPDX-License-Identifier: GPL-3.0-or-later

// Single tests again and again, and the stop between them.

#include "support/dataDirectory.h"
#include "windowFixture.h"

#include <QElapsedTimer>
#include <QtTest>

namespace
{

/// A test that cannot be set up for some time, in a window that repeats it.
class repeatedTest : public fakeTest
{
public:
    using fakeTest::fakeTest;

    bool setup(int newWidth, int newHeight) override
    {
        if (onTry)
            onTry(++tries);
        return fakeTest::setup(newWidth, newHeight);
    }

    int tries = 0;
    std::function<void(int)> onTry;
};

class repeatingWindow
{
public:
    explicit repeatingWindow(const QString &testTime)
        : fixture([this](printHook *) {
              suite tests;
              tests.push_back(std::make_unique<repeatedTest>(oneCore, nullptr));
              test = static_cast<repeatedTest *>(tests.back().get());
              return tests;
          })
    {
        fixture.find<QComboBox>("comboBoxAutoRepeat")->setCurrentText(QStringLiteral("on"));
        fixture.addTestTime(testTime);
        test->canSetup = false;
        test->onTry = [this](int number) { endAt(number, tooMany); };
    }

    /// Stops at try @p last, without the button.
    void endAt(int number, int last) const
    {
        if (number == last)
            fixture.window->singleTestStop();
    }
    int failures() const
    {
        return fixture.newLog().count(QStringLiteral("Error: cant setup test one"));
    }

    static constexpr int tooMany = 1000;
    repeatedTest *test = nullptr;
    windowFixture fixture;
};

} // namespace

class tst_mainwindowRepeat : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void stopButton_data();
    void stopButton();
    void triesAgainAfterTheTestTime();
    void onceWithoutRepeat();
    void closedWhileWaiting();
    void oldStopIsForgotten();
    void stopsBeforeTheNextTest();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_mainwindowRepeat::stopButton_data()
{
    QTest::addColumn<QString>("testTime");
    QTest::addColumn<bool>("canSetup");
    QTest::newRow("no set-up") << QStringLiteral("60") << false;
    QTest::newRow("no time") << QStringLiteral("soon") << true;
    QTest::newRow("neither") << QStringLiteral("soon") << false;
}

void tst_mainwindowRepeat::stopButton()
{
    QFETCH(QString, testTime);
    QFETCH(bool, canSetup);
    const repeatingWindow w(testTime);
    w.test->canSetup = canSetup;
    bool isInSight = false;
    QTimer::singleShot(20, w.fixture.button("pushButtonStop"), [&] {
        isInSight = w.fixture.button("pushButtonStop")->isVisible();
        QTest::mouseClick(w.fixture.button("pushButtonStop"), Qt::LeftButton);
    });
    QElapsedTimer timer;
    timer.start();
    w.fixture.button("singleTestButton")->click();
    QVERIFY(isInSight);
    QVERIFY2(timer.elapsed() < 30'000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY2(w.test->tries < 100, qPrintable(QString::number(w.test->tries)));
    QCOMPARE(w.failures(), canSetup ? 0 : w.test->tries);
    QVERIFY(w.fixture.isIdle());
    QVERIFY(!w.fixture.window->isStopRequested());
}

void tst_mainwindowRepeat::triesAgainAfterTheTestTime()
{
    const repeatingWindow w(QStringLiteral("1"));
    QElapsedTimer timer;
    qint64 atThirdTry = 0;
    w.test->onTry = [&](int number) {
        if (number == 3) {
            atThirdTry = timer.elapsed();
            w.test->canSetup = true; // memory may come back
        }
        w.endAt(number, repeatingWindow::tooMany);
    };
    w.test->onRun = [&] { w.fixture.button("pushButtonStop")->click(); };
    timer.start();
    w.fixture.button("singleTestButton")->click();
    QCOMPARE(w.test->tries, 3);
    // Timers may be early by a twentieth.
    QVERIFY2(atThirdTry >= 1900, qPrintable(QString::number(atThirdTry)));
    QCOMPARE(w.failures(), 2);
    QVERIFY(w.fixture.newLog().contains(QStringLiteral("Result: ")));
    QVERIFY(w.fixture.isIdle());
}

void tst_mainwindowRepeat::onceWithoutRepeat()
{
    const repeatingWindow w(QStringLiteral("60"));
    w.fixture.find<QComboBox>("comboBoxAutoRepeat")->setCurrentText(QStringLiteral("off"));
    QElapsedTimer timer;
    timer.start();
    w.fixture.button("singleTestButton")->click();
    QVERIFY(timer.elapsed() < 30'000);
    QCOMPARE(w.test->tries, 1);
    QVERIFY(w.fixture.isIdle());
}

void tst_mainwindowRepeat::closedWhileWaiting()
{
    const repeatingWindow w(QStringLiteral("60"));
    QElapsedTimer timer;
    timer.start();
    QTimer::singleShot(0, w.fixture.button("singleTestButton"), &QPushButton::click);
    QTimer::singleShot(200, w.fixture.window.get(), &QWidget::close);
    QCOMPARE(QApplication::exec(), 0);
    QVERIFY2(timer.elapsed() < 30'000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(w.test->tries, 1);
}

void tst_mainwindowRepeat::oldStopIsForgotten()
{
    const windowFixture f;
    f.window->singleTestStop(); // as closing the window does
    int runs = 0;
    f.fakes.at(0)->onRun = [&] {
        if (++runs == 3)
            f.button("pushButtonStop")->click();
    };
    f.button("singleTestButton")->click();
    QCOMPARE(runs, 3);
    QVERIFY(!f.window->isStopRequested());
}

void tst_mainwindowRepeat::stopsBeforeTheNextTest()
{
    // A stop during the wait is not followed by another try.
    const repeatingWindow w(QStringLiteral("1"));
    QTimer::singleShot(100, w.fixture.window.get(), &MainWindow::singleTestStop);
    w.fixture.button("singleTestButton")->click();
    QCOMPARE(w.test->tries, 1);
}

QTEST_MAIN(tst_mainwindowRepeat)
#include "tst_mainwindowRepeat.moc"
