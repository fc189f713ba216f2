// SPDX-License-Identifier: GPL-3.0-or-later

// What the window shows, and when it gives a frame up.

#include "guardedTest.h"
#include "support/dataDirectory.h"
#include "support/fakeClock.h"
#include "support/messageBoxes.h"
#include "windowFixture.h"

#include <QCheckBox>
#include <QtTest>

namespace
{

constexpr quint32 frameColour = 0xFF4080C0U;
constexpr quint32 black = 0xFF000000U;

/// Takes results, and lets something happen while the window waits for that.
class slowDatabase : public onlineDatabase
{
public:
    bool request(int requested, QByteArray &) override
    {
        if (requested == storeResults && whileUploading)
            whileUploading();
        return requested == storeResults;
    }
    std::function<void()> whileUploading;
};

/// A window over one test whose released frame cannot be read.
class guardedWindow
{
public:
    guardedWindow()
    {
        auto ownDatabase = std::make_unique<slowDatabase>();
        database = ownDatabase.get();
        fixture = std::make_unique<windowFixture>(
            [this](printHook *) {
                suite tests;
                tests.push_back(std::make_unique<guardedTest>(oneCore, nullptr));
                test = static_cast<guardedTest *>(tests.back().get());
                return tests;
            },
            std::move(ownDatabase));
    }

    void fillFrame() const
    {
        std::fill_n(test->getBuffer(), test->getWidth() * test->getHeight(), frameColour);
    }
    /// Resizes the window, as a user may at any time, and looks at the display.
    QImage resizedPicture() const
    {
        fixture->window->resize(fixture->window->size() - QSize(20, 40));
        QCoreApplication::processEvents();
        return fixture->display()->grab().toImage().convertToFormat(QImage::Format_ARGB32);
    }

    guardedTest *test = nullptr;
    slowDatabase *database = nullptr;
    std::unique_ptr<windowFixture> fixture;
};

bool isBlack(const QImage &image)
{
    QImage expected(image.size(), QImage::Format_ARGB32);
    expected.fill(black);
    return image == expected;
}

} // namespace

class tst_mainwindowFrames : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void guardCloses();
    void frameIsGivenUpAtTheEndOfATest();
    void resizedWhileUploading();
    void resizedBeforeTheNextTry();
    void secondRunCountsAnew();
    void clocksOption_data();
    void clocksOption();
    void smallestDisplay();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_mainwindowFrames::guardCloses()
{
    // Without this the tests below could not fail.
    guardedTest test(oneCore, nullptr);
    QVERIFY(test.setup(320, 240));
    test.getBuffer()[0] = 1;
    QVERIFY(!test.isGuarded());
    test.release();
    QVERIFY(test.isGuarded());
    QVERIFY(test.setup(320, 240));
    QVERIFY(!test.isGuarded());
    test.getBuffer()[320 * 120] = 1;
}

void tst_mainwindowFrames::frameIsGivenUpAtTheEndOfATest()
{
    const guardedWindow w;
    MainWindow &window = *w.fixture->window;
    w.fixture->display()->show();
    QVERIFY(w.test->setup(320, 240));
    w.fillFrame();
    window.updateStart(w.test);
    QCOMPARE(w.resizedPicture().pixel(5, 100), frameColour);
    window.updateEnd(w.test);
    w.test->release();
    QVERIFY(isBlack(w.resizedPicture()));
    QCOMPARE(w.fixture->display()->testIndex(), 1);
}

void tst_mainwindowFrames::resizedWhileUploading()
{
    const fakeClock clock;
    const guardedWindow w;
    QImage picture;
    bool isShown = false;
    w.test->onRun = [] { fakeClock::pass(std::chrono::milliseconds(50)); };
    w.database->whileUploading = [&] {
        isShown = w.fixture->display()->isVisible() && w.test->isGuarded();
        picture = w.resizedPicture();
    };
    const boxAnswer answer(QMessageBox::Yes);
    w.fixture->button("benchButton")->click();
    QVERIFY(w.fixture->newLog().endsWith(
        QStringLiteral("Benchmark finished\nStore userdata\nUpload results\n")));
    QVERIFY(isShown);
    QVERIFY(isBlack(picture));
    QVERIFY(w.fixture->isIdle());
}

void tst_mainwindowFrames::resizedBeforeTheNextTry()
{
    const fakeClock clock;
    const guardedWindow w;
    w.fixture->find<QComboBox>("comboBoxAutoRepeat")->setCurrentText(QStringLiteral("on"));
    w.fixture->addTestTime(QStringLiteral("1"));
    QImage picture;
    w.test->onRun = [&] {
        fakeClock::pass(std::chrono::milliseconds(50));
        w.test->canSetup = false;
    };
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        if (!w.test->isGuarded())
            return;
        picture = w.resizedPicture();
        w.fixture->button("pushButtonStop")->click();
    });
    look.start(10);
    w.fixture->button("singleTestButton")->click();
    QVERIFY(isBlack(picture));
    QVERIFY(w.fixture->isIdle());
}

void tst_mainwindowFrames::secondRunCountsAnew()
{
    const fakeClock clock;
    windowFixture f;
    QVector<int> places;
    f.fakes.at(0)->onRun = [&] {
        fakeClock::pass(std::chrono::milliseconds(5));
        places.append(f.display()->testIndex());
        f.window->singleTestStop();
    };
    for (int i = 0; i < 2; ++i) {
        const boxAnswer answer(QMessageBox::Yes);
        f.button("benchButton")->click();
        QVERIFY(answer.wasAsked);
        QCOMPARE(f.display()->testIndex(), 1);
    }
    QCOMPARE(places, QVector<int>({0, 0}));
}

void tst_mainwindowFrames::clocksOption_data()
{
    QTest::addColumn<bool>("isFullRun");
    QTest::addColumn<bool>("isChecked");
    QTest::newRow("single, off") << false << false;
    QTest::newRow("single, on") << false << true;
    QTest::newRow("full, off") << true << false;
    QTest::newRow("full, on") << true << true;
}

void tst_mainwindowFrames::clocksOption()
{
    QFETCH(bool, isFullRun);
    QFETCH(bool, isChecked);
    windowFixture f;
    f.find<QCheckBox>("checkBoxClocks")->setChecked(isChecked);
    int asked = 0;
    f.display()->setClockSource([&asked] {
        ++asked;
        return QVector<float>{3e6F};
    });
    f.fakes.at(0)->onRun = [&] {
        f.display()->grab();
        f.window->singleTestStop();
    };
    const boxAnswer answer(QMessageBox::Yes);
    f.button(isFullRun ? "benchButton" : "singleTestButton")->click();
    QCOMPARE(asked > 0, isChecked);
}

void tst_mainwindowFrames::smallestDisplay()
{
    const windowFixture f;
    QCOMPARE(f.display()->minimumSize(), QSize(10, 10));
}

QTEST_MAIN(tst_mainwindowFrames)
#include "tst_mainwindowFrames.moc"
