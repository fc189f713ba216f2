// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/testBase.h"

#include "support/fakeTest.h"
#include "support/textLog.h"

#include <QtTest>

#include <limits>

class tst_testBase : public QObject
{
    Q_OBJECT

private slots:
    void freshTest();
    void setupHoldsAFrame();
    void refusedSizes_data();
    void refusedSizes();
    void secondSetupReleasesFirst();
    void setupReleasesVirtually();
    void printGoesToTheTarget();
    void resultText_data();
    void resultText();
    void singleOnly();
};

void tst_testBase::freshTest()
{
    const fakeTest test(QStringLiteral("t"), nullptr);
    QVERIFY(!test.getBuffer());
    QVERIFY(!test.isSingleOnly());
}

void tst_testBase::setupHoldsAFrame()
{
    fakeTest test(QStringLiteral("t"), nullptr);
    QVERIFY(test.setup(5, 3));
    QCOMPARE(test.getWidth(), 5);
    QCOMPARE(test.getHeight(), 3);
    QVERIFY(test.getBuffer());
    // Written from end to end, which the sanitizers watch.
    std::fill_n(test.getBuffer(), 15, 0xFF123456U);
    QCOMPARE(test.getBuffer()[14], 0xFF123456U);
    test.release();
    QVERIFY(!test.getBuffer());
}

void tst_testBase::refusedSizes_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("no width") << 0 << 480;
    QTest::newRow("no height") << 640 << 0;
    QTest::newRow("negative width") << -1 << 480;
    QTest::newRow("negative height") << 640 << -480;
    QTest::newRow("both negative") << -2 << -3;
    QTest::newRow("product wraps to 0") << 65536 << 65536;
    QTest::newRow("product wraps to a negative number") << 46341 << 46341;
    QTest::newRow("extremes") << std::numeric_limits<int>::min() << std::numeric_limits<int>::min();
}

void tst_testBase::refusedSizes()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QStringList log;
    fakeTest test(QStringLiteral("t"), &log);
    QVERIFY(test.setup(4, 4));
    log.clear();
    QVERIFY(!test.setup(width, height));
    QVERIFY(!test.getBuffer());
    QCOMPARE(log, QStringList({QStringLiteral("t.setup"), QStringLiteral("t.release")}));
}

void tst_testBase::secondSetupReleasesFirst()
{
    // The sanitizers report the first frame if it leaks.
    fakeTest test(QStringLiteral("t"), nullptr);
    QVERIFY(test.setup(100, 100));
    QVERIFY(test.setup(7, 2));
    QCOMPARE(test.getWidth(), 7);
    QCOMPARE(test.getHeight(), 2);
    test.getBuffer()[13] = 1;
}

void tst_testBase::setupReleasesVirtually()
{
    QStringList log;
    fakeTest test(QStringLiteral("t"), &log);
    QVERIFY(test.setup(4, 4));
    QCOMPARE(log, QStringList({QStringLiteral("t.setup"), QStringLiteral("t.release")}));
}

void tst_testBase::printGoesToTheTarget()
{
    class printer : public fakeTest
    {
    public:
        explicit printer(printHook *target) : fakeTest(QStringLiteral("p"), nullptr)
        {
            printTarget = target;
        }
    };
    textLog log;
    printer(&log).print(QStringLiteral("hello %1\n"));
    printer(nullptr).print(QStringLiteral("dropped"));
    QCOMPARE(log.text, QStringLiteral("hello %1\n"));
}

void tst_testBase::resultText_data()
{
    QTest::addColumn<float>("work");
    QTest::addColumn<float>("average");
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << 3.0F << 0.5F << QStringLiteral("6/s MFakes");
    QTest::newRow("six digits") << 1.0F << 3.0F << QStringLiteral("0.333333/s MFakes");
    QTest::newRow("large") << 8.2512F << 1e-7F << QStringLiteral("8.2512e+07/s MFakes");
    QTest::newRow("too fast for the clock") << 3.0F << 0.0F << QStringLiteral("inf/s MFakes");
}

void tst_testBase::resultText()
{
    QFETCH(float, work);
    QFETCH(float, average);
    fakeTest test(QStringLiteral("t"), nullptr);
    test.work = work;
    QTEST(test.getResultText(average), "text");
}

void tst_testBase::singleOnly()
{
    fakeTest test(QStringLiteral("t"), nullptr);
    test.setSingleOnly(true);
    QVERIFY(test.isSingleOnly());
    test.setSingleOnly(false);
    QVERIFY(!test.isSingleOnly());
}

QTEST_APPLESS_MAIN(tst_testBase)
#include "tst_testBase.moc"
