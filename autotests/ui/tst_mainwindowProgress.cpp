// SPDX-License-Identifier: GPL-3.0-or-later

// What the status bar tells of a run and of what is waited for.

#include "support/dataDirectory.h"
#include "support/fakeClock.h"
#include "support/messageBoxes.h"
#include "windowFixture.h"

#include <QLabel>
#include <QProgressBar>
#include <QSplashScreen>
#include <QtTest>

using std::chrono::milliseconds;

namespace
{

/// Takes everything, and lets something happen while the window waits for it.
class slowDatabase : public onlineDatabase
{
public:
    explicit slowDatabase(std::function<void(int)> ownWait) : wait(std::move(ownWait)) {}
    bool request(int requested, QByteArray &data) override
    {
        wait(requested);
        data = "1";
        return requested != reference && requested != betaReference;
    }

private:
    std::function<void(int)> wait;
};

QLabel *lineOf(const QWidget *window)
{
    return window->findChild<QLabel *>(QStringLiteral("labelStatus"));
}

QString textOf(const windowFixture &f)
{
    return lineOf(f.window.get())->text();
}

QSplashScreen *splash()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *found = qobject_cast<QSplashScreen *>(widget); found && found->isVisible())
            return found;
    }
    return nullptr;
}

suite oneTest(printHook *)
{
    suite tests;
    tests.push_back(std::make_unique<fakeTest>(oneCore, nullptr));
    static_cast<fakeTest *>(tests.back().get())->canSetup = false;
    return tests;
}

} // namespace

class tst_mainwindowProgress : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void fullRun();
    void singleTest();
    void seldom();
    void nothingAfterARun();
    void longTextsAreCut();
    void waitIsNamed_data();
    void waitIsNamed();
    void splashWhileTheServerIsSilent();
    void noSplashWhenItAnswers();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_mainwindowProgress::fullRun()
{
    const fakeClock clock;
    windowFixture f;
    auto *bar = f.find<QProgressBar>("progressBarRun");
    QVERIFY(!bar->isVisible());
    QStringList texts;
    QVector<int> values;
    bool isShown = true;
    for (fakeTest *test : qAsConst(f.fakes)) {
        test->onRun = [&] {
            fakeClock::pass(milliseconds(2000));
            texts.append(textOf(f));
            values.append(bar->value() * 1000 / bar->maximum());
            isShown = isShown && bar->isVisible();
        };
    }
    const boxAnswer answer(QMessageBox::Yes);
    f.button("benchButton")->click();
    // What stood there while a round was worked on was written before it.
    QCOMPARE(texts, QStringList({QStringLiteral("one, 1 of 2, 0:16 left, Esc stops"),
                                 QStringLiteral("one, 1 of 2, 0:14 left, Esc stops"),
                                 QStringLiteral("one, 1 of 2, 0:12 left, Esc stops"),
                                 QStringLiteral("one, 1 of 2, 0:10 left, Esc stops"),
                                 QStringLiteral("many, 2 of 2, 0:08 left, Esc stops"),
                                 QStringLiteral("many, 2 of 2, 0:06 left, Esc stops"),
                                 QStringLiteral("many, 2 of 2, 0:04 left, Esc stops"),
                                 QStringLiteral("many, 2 of 2, 0:02 left, Esc stops")}));
    QCOMPARE(values, QVector<int>({0, 125, 250, 375, 500, 625, 750, 875}));
    QVERIFY(isShown);
    QVERIFY(!bar->isVisible());
}

void tst_mainwindowProgress::singleTest()
{
    const fakeClock clock;
    windowFixture f;
    QStringList texts;
    int round = 0;
    f.fakes.at(0)->onRun = [&] {
        texts.append(textOf(f));
        fakeClock::pass(milliseconds(++round % 2 == 0 ? 1500 : 2500));
    };
    f.button("singleTestButton")->click();
    QCOMPARE(
        texts,
        QStringList({QStringLiteral("one, 0:08 left"),
                     QStringLiteral("one, 0:06 left, rounds: 1, 1.2 MFakes/s"),
                     QStringLiteral("one, 0:04 left, rounds: 2, 1.2 MFakes/s, spread 35.4 %"),
                     QStringLiteral("one, 0:02 left, rounds: 3, 1.2 MFakes/s, spread 26.6 %")}));
}

/// Some times a second, and never more often: rounds may take two milliseconds.
void tst_mainwindowProgress::seldom()
{
    const fakeClock clock;
    windowFixture f;
    f.addTestTime(QStringLiteral("1"));
    QStringList texts;
    int rounds = 0;
    f.fakes.at(0)->onRun = [&] {
        fakeClock::pass(milliseconds(2));
        ++rounds;
        if (texts.isEmpty() || texts.last() != textOf(f))
            texts.append(textOf(f));
    };
    f.button("singleTestButton")->click();
    QCOMPARE(rounds, 500);
    QCOMPARE(texts.size(), 4);
}

void tst_mainwindowProgress::nothingAfterARun()
{
    const fakeClock clock;
    windowFixture f;
    f.fakes.at(0)->onRun = [&] {
        fakeClock::pass(milliseconds(5));
        f.window->singleTestStop();
    };
    f.button("singleTestButton")->click();
    QVERIFY(!textOf(f).contains(QStringLiteral("left")));
    QVERIFY(!f.find<QProgressBar>("progressBarRun")->isVisible());
}

/// A long text makes the window neither wider nor higher, and can be read all the same.
void tst_mainwindowProgress::longTextsAreCut()
{
    const windowFixture f;
    const QString sentence(500, QLatin1Char('n'));
    const QSize smallest = f.window->minimumSizeHint();
    f.window->setExamination([&sentence] {
        doctorSubject subject;
        subject.disturbances = {{disturbance::debugBuild, disturbance::warning, sentence, {}}};
        return subject;
    });
    QTRY_VERIFY(textOf(f).contains(sentence));
    QCoreApplication::processEvents();
    QVERIFY(lineOf(f.window.get())->toolTip().contains(sentence));
    QCOMPARE(f.window->minimumSizeHint(), smallest);
}

void tst_mainwindowProgress::waitIsNamed_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("request");
    QTest::addColumn<QString>("text");
    QTest::newRow("version") << QStringLiteral("pushButtonLoadStandardReference")
                             << int(onlineDatabase::referenceVersion)
                             << QStringLiteral("looking for the online database…");
    QTest::newRow("beta") << QStringLiteral("pushButtonLoadBetaReference")
                          << int(onlineDatabase::betaReference)
                          << QStringLiteral("downloading the beta list of machines…");
    QTest::newRow("upload") << QStringLiteral("benchButton") << int(onlineDatabase::storeResults)
                            << QStringLiteral("uploading…");
}

void tst_mainwindowProgress::waitIsNamed()
{
    QFETCH(QString, button);
    QFETCH(int, request);
    QFETCH(QString, text);
    MainWindow *window = nullptr;
    QString shown;
    windowFixture f(oneTest, std::make_unique<slowDatabase>([&](int requested) {
                        if (window && requested == request)
                            shown = lineOf(window)->text();
                    }));
    window = f.window.get();
    const boxAnswer answer(QMessageBox::Yes);
    f.window->findChild<QPushButton *>(button)->click();
    QCOMPARE(shown, text);
    QVERIFY(textOf(f) != text);
}

/// Somebody who has started the program sees what it does before there is a window.
void tst_mainwindowProgress::splashWhileTheServerIsSilent()
{
    QString said;
    const windowFixture f(oneTest, std::make_unique<slowDatabase>([&said](int) {
                              if (!said.isEmpty())
                                  return;
                              // The server answers once it has been seen that it is waited for.
                              QVERIFY(QTest::qWaitFor([] { return splash() != nullptr; }, 60'000));
                              said = splash()->message();
                          }));
    QCOMPARE(said, QStringLiteral("looking for the online database…"));
    QVERIFY(!splash());
    QVERIFY(f.window->isVisible());
}

void tst_mainwindowProgress::noSplashWhenItAnswers()
{
    bool wasShown = false;
    const windowFixture f(oneTest, std::make_unique<slowDatabase>([&wasShown](int) {
                              QCoreApplication::processEvents();
                              wasShown = wasShown || splash();
                          }));
    QVERIFY(!wasShown);
    QVERIFY(!splash());
}

QTEST_MAIN(tst_mainwindowProgress)
#include "tst_mainwindowProgress.moc"
