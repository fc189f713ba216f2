// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/suite.h"

#include "support/allocationWatch.h"
#include "support/textLog.h"
#include "tests/rounds.h"

#include <QtTest>

#include <algorithm>

class tst_suite : public QObject
{
    Q_OBJECT

private slots:
    void order();
    void printTargets();
    void everyTest_data();
    void failingAllocations_data() { everyTest_data(); }
    void failingAllocations();
    void failingRounds_data() { everyTest_data(); }
    void failingRounds();
    void oddFrames_data() { everyTest_data(); }
    void oddFrames();
};

void tst_suite::order()
{
    const QStringList expected = {
        QStringLiteral("rotozoom 'dithered'"),
        QStringLiteral("rotozoom 'linear'"),
        QStringLiteral("rotozoom 'linear (multicore)'"),
        QStringLiteral("rotozoom 'last pixel'"),
        QStringLiteral("rotozoom 'last pixel (multicore)'"),
        QStringLiteral("mandel"),
        QStringLiteral("mandel (multicore)"),
        QStringLiteral("lines"),
        QStringLiteral("motion blur"),
        QStringLiteral("shellsort"),
        QStringLiteral("rle compress/uncompress"),
        QStringLiteral("zlib uncompress"),
        QStringLiteral("colors "),
        QStringLiteral("colors  (multicore)"),
        QStringLiteral("crc32 bitwise"),
        QStringLiteral("crc32 bitwise (multicore)"),
        QStringLiteral("vertex"),
        QStringLiteral("vertex (multicore)"),
        QStringLiteral("rotozoom 'no'"),
    };
    const suite tests = makeSuite(nullptr);
    QStringList names;
    for (const auto &test : tests) {
        names << test->getName();
        QCOMPARE(test->isMulticore(), names.last().contains(QStringLiteral("(multicore)")));
        QCOMPARE(test->isSingleOnly(), test == tests.back());
    }
    QCOMPARE(names, expected);
}

/// The rotozoomers alone are handed the print hook.
void tst_suite::printTargets()
{
    textLog log;
    for (const auto &test : makeSuite(&log)) {
        log.text.clear();
        test->print(QStringLiteral("text"));
        const bool isRotozoom = test->getName().startsWith(QStringLiteral("rotozoom"));
        QCOMPARE(log.text, isRotozoom ? QStringLiteral("text") : QString());
    }
}

void tst_suite::everyTest_data()
{
    QTest::addColumn<int>("index");
    const suite tests = makeSuite(nullptr);
    for (std::size_t i = 0; i < tests.size(); ++i)
        QTest::addRow("%s", qPrintable(tests[i]->getName())) << int(i);
}

void tst_suite::failingAllocations()
{
    QFETCH(int, index);
    const auto test = std::move(makeSuite(nullptr)[std::size_t(index)]);
    int needed = 0;
    {
        const allocationWatch watch;
        QVERIFY(test->setup(30, 20));
        needed = watch.getAsked();
        QVERIFY(needed >= 1);
        test->release();
        QCOMPARE(watch.getHeld(), 0);
        QVERIFY(!test->getBuffer());
    }
    for (int failing = 0; failing < needed; ++failing) {
        const allocationWatch watch(failing);
        QVERIFY(!test->setup(30, 20));
        QCOMPARE(watch.getHeld(), 0);
        QVERIFY(!test->getBuffer());
        test->release();
    }
    QVERIFY(test->setup(30, 20));
    runRounds(*test, 1);
}

/// A round without its memory does nothing and says so, until the next set-up.
void tst_suite::failingRounds()
{
    QFETCH(int, index);
    const auto test = std::move(makeSuite(nullptr)[std::size_t(index)]);
    QVERIFY(test->setup(512, 512));
    int needed = 0;
    {
        const allocationWatch watch;
        runRounds(*test, 1);
        needed = watch.getAsked();
        QCOMPARE(watch.getHeld(), 0);
    }
    for (int failing = 0; failing < needed; ++failing) {
        const allocationWatch watch(failing);
        runRounds(*test, 1);
        QVERIFY(test->hasFailed());
        QCOMPARE(watch.getHeld(), 0);
        QVERIFY(frameOf(*test) == blackFrame(512, 512));
        workMemory::setObserver(nullptr);
        QVERIFY(test->setup(512, 512));
        QVERIFY(!test->hasFailed());
    }
    runRounds(*test, 2);
    QVERIFY(!test->hasFailed());
    if (needed > 0)
        QVERIFY(frameOf(*test) != blackFrame(512, 512));
}

void tst_suite::oddFrames()
{
    QFETCH(int, index);
    const auto test = std::move(makeSuite(nullptr)[std::size_t(index)]);
    for (const frameSize &size : oddSizes) {
        QVERIFY(test->setup(size.width, size.height));
        runRounds(*test, 2);
        QCOMPARE(test->getWidth(), size.width);
        QCOMPARE(test->getHeight(), size.height);
    }
}

QTEST_APPLESS_MAIN(tst_suite)
#include "tst_suite.moc"
