// SPDX-License-Identifier: GPL-3.0-or-later

// Whether results are to be trusted: what the window says before and after a run.

#include "data/runText.h"
#include "support/dataDirectory.h"
#include "support/fakeClock.h"
#include "support/messageBoxes.h"
#include "ui/textPage.h"
#include "ui/trustNotes.h"
#include "windowFixture.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QtTest>

using std::chrono::milliseconds;

Q_DECLARE_METATYPE(std::vector<testRun>)

namespace
{

/// A machine on its battery, with so many processes beside.
doctorSubject disturbed(double load)
{
    doctorSubject subject;
    subject.machine.processor = QStringLiteral("Some Processor");
    subject.machine.threads = 4;
    subject.context.power = machineContext::battery;
    subject.moment.loadAverage = load;
    subject.disturbances = disturbancesOf(subject.context, subject.moment, subject.build, 4, false);
    return subject;
}

testRun measured(const char *name, const QVector<int> &rounds, float average = 0.01F)
{
    testRun test;
    test.name = QString::fromLatin1(name);
    test.unit = QStringLiteral("MFakes");
    test.isMulticore = test.name.endsWith(QStringLiteral("(multicore)"));
    test.work = 1;
    test.average = average;
    test.wallSeconds = 8;
    for (const int ms : rounds)
        test.rounds.push_back({static_cast<float>(ms) * 0.001F, milliseconds(ms)});
    return test;
}

QString textOf(const windowFixture &f)
{
    return f.find<QLabel>("labelStatus")->text();
}

QString pageOf(const windowFixture &f)
{
    f.button("pushButtonDetails")->click();
    auto *page = f.window->findChild<textPage *>();
    const QString text = page->findChild<QPlainTextEdit *>()->toPlainText();
    delete page;
    return text;
}

const QString onBattery = QStringLiteral(
    "warning: the machine runs on its battery, which may keep its clock low; plug it in");

} // namespace

class tst_mainwindowTrust : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void nothingToSay();
    void warningAtTheStart();
    void warningBeforeTheQuestion();
    void verdictAfterARun();
    void verdictOfASingleTest();
    void pageIsReadOnly();
    void verdictLines_data();
    void verdictLines();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_mainwindowTrust::nothingToSay()
{
    const windowFixture f;
    QCoreApplication::processEvents();
    QCOMPARE(textOf(f), QString());
    QVERIFY(pageOf(f).contains(QStringLiteral("Nothing that Fennick can see.")));
}

void tst_mainwindowTrust::warningAtTheStart()
{
    windowFixture f;
    f.window->setExamination([] { return disturbed(3); });
    QTRY_VERIFY(!textOf(f).isEmpty());
    QCOMPARE(textOf(f), onBattery + QStringLiteral(" (and 1 more)"));
    const QString page = pageOf(f);
    QVERIFY(page.contains(QStringLiteral("Some Processor")));
    QVERIFY(page.contains(QStringLiteral("The machine is busy: a load average of 3.00 on 4")));
    QVERIFY(page.contains(QStringLiteral("Plug it in.")));
}

/// Whoever is asked whether to start a run has read what is wrong, as it is by then.
void tst_mainwindowTrust::warningBeforeTheQuestion()
{
    windowFixture f;
    QCoreApplication::processEvents();
    QCOMPARE(textOf(f), QString());
    f.window->setExamination([] { return disturbed(0); });
    QString shown;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        if (QApplication::activeModalWidget())
            shown = textOf(f);
    });
    look.start(1);
    boxAnswer answer(QMessageBox::No);
    f.button("benchButton")->click();
    QVERIFY(answer.wasAsked);
    QCOMPARE(textOf(f), onBattery);
}

void tst_mainwindowTrust::verdictAfterARun()
{
    const fakeClock clock;
    windowFixture f;
    f.window->setExamination([] { return disturbed(0); });
    int round = 0;
    f.fakes.at(0)->onRun = [] { fakeClock::pass(milliseconds(100)); };
    f.fakes.at(1)->onRun = [&] { fakeClock::pass(milliseconds(++round % 2 == 0 ? 100 : 150)); };
    const boxAnswer answer(QMessageBox::Yes);
    f.button("benchButton")->click();
    QVERIFY2(textOf(f).startsWith(QStringLiteral("verdict: 1 of 2 tests good; unsteady: many")),
             qPrintable(textOf(f)));
    QVERIFY(textOf(f).endsWith(onBattery));
    const QString page = pageOf(f);
    QVERIFY2(page.contains(QRegularExpression(QStringLiteral("\nmany +.* unsteady\n"))),
             qPrintable(page));
    QVERIFY(page.contains(QStringLiteral("full run, 8 s per test")));
    QVERIFY(page.contains(QStringLiteral("This build of Fennick")));
}

void tst_mainwindowTrust::verdictOfASingleTest()
{
    const fakeClock clock;
    windowFixture f;
    f.fakes.at(0)->onRun = [] { fakeClock::pass(milliseconds(100)); };
    f.button("singleTestButton")->click();
    QVERIFY2(textOf(f).startsWith(QStringLiteral("verdict: 1 of 1 tests good")),
             qPrintable(textOf(f)));
    QVERIFY(pageOf(f).contains(QStringLiteral("tests, 8 s per test")));
    // What is said is of the latest run, and of none while the next begins.
    const boxAnswer answer(QMessageBox::No);
    f.button("benchButton")->click();
    QCOMPARE(textOf(f), QString());
}

void tst_mainwindowTrust::pageIsReadOnly()
{
    const windowFixture f;
    f.button("pushButtonDetails")->click();
    auto *page = f.window->findChild<textPage *>();
    QVERIFY(page && page->isVisible());
    auto *text = page->findChild<QPlainTextEdit *>();
    QVERIFY(text->isReadOnly());
    QVERIFY(QFontInfo(text->font()).fixedPitch());
    QPointer<textPage> watched = page;
    QApplication::setActiveWindow(page);
    QTest::keyClick(page, Qt::Key_Escape);
    QTRY_VERIFY(!watched);
    QVERIFY(f.window->isVisible());
}

void tst_mainwindowTrust::verdictLines_data()
{
    const QVector<int> even(10, 100);
    const QVector<int> uneven = {100, 150, 100, 150, 100, 150, 100, 150, 100, 150};
    const QVector<int> hardlyEven = {100, 103, 100, 103, 100, 103, 100, 103, 100, 103};
    QTest::addColumn<std::vector<testRun>>("tests");
    QTest::addColumn<QString>("expected");
    const auto add = [](const char *row, const std::vector<testRun> &tests, const char *expected) {
        QTest::newRow(row) << tests << QString::fromLatin1(expected);
    };
    add("all good", {measured("a", even), measured("b ", even)}, "verdict: 2 of 2 tests good");
    add("each kind once",
        {measured("a", even), measured("b", hardlyEven), measured("c ", uneven),
         measured("d", {100})},
        "verdict: 1 of 4 tests good; unsteady: c; noisy: b; too few rounds to tell: d");
    testRun failed = measured("a", even);
    failed.end = testEnd::failed;
    add("failed", {failed, measured("b", even)}, "verdict: 1 of 2 tests good; no result: a");
    add("slower than one core",
        {measured("v", even, 0.01F), measured("v (multicore)", even, 0.02F)},
        "verdict: 2 of 2 tests good; slower than one core: v (multicore)");
    add("no test", {}, "verdict: 0 of 0 tests good");
}

void tst_mainwindowTrust::verdictLines()
{
    QFETCH(std::vector<testRun>, tests);
    runRecord run;
    run.machine.threads = 4;
    run.tests = tests;
    QTEST(verdictLine(run), "expected");
    run.context.atStart.loadAverage = 1.5;
    QVERIFY(verdictLine(run).endsWith(QStringLiteral("; the load average was 1.50 at the start")));
}

QTEST_MAIN(tst_mainwindowTrust)
#include "tst_mainwindowTrust.moc"
