// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/frameCheck.h"

#include "support/fakeTest.h"
#include "support/meddledTest.h"

#include <QtTest>

#include <omp.h>

namespace
{

constexpr int smallFrames = 640 * 480;

} // namespace

class tst_frameCheck : public QObject
{
    Q_OBJECT

private slots:
    void suite_data();
    void suite();
    void oneBit_data();
    void oneBit();
    void workLeftOut();
    void cannotTell();
    void threadsArePutBack();
};

void tst_frameCheck::suite_data()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const auto &test : makeSuite(nullptr))
        QTest::newRow(qPrintable(test->getName())) << index++;
}

/// Every test has small known frames, and this build draws them.
void tst_frameCheck::suite()
{
    QFETCH(int, index);
    const auto test = std::move(makeSuite(nullptr).at(static_cast<std::size_t>(index)));
    QCOMPARE(checkFrames(*test, smallFrames), digestVerdict::right);
    QVERIFY(!test->getBuffer());
}

void tst_frameCheck::oneBit_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("bit");
    for (const knownFrame &known : knownFrames()) {
        if (known.width == 321 && known.threads < 2) {
            for (const int bit : {0, 31})
                QTest::addRow("%s, bit %d", known.test, bit) << QByteArray(known.test) << bit;
        }
    }
}

/// A single bit, in the last round of the smallest frame alone.
void tst_frameCheck::oneBit()
{
    QFETCH(QByteArray, name);
    QFETCH(int, bit);
    const auto flip = [bit](testBase &test, int round) {
        if (test.getWidth() == 321 && round == 4)
            test.getBuffer()[321 * 241 / 3] ^= 1U << static_cast<unsigned>(bit);
    };
    meddledTest test(suiteTest(name.constData()), flip);
    QCOMPARE(checkFrames(test, smallFrames), digestVerdict::wrong);
}

/// A frame of which the lower half was never drawn.
void tst_frameCheck::workLeftOut()
{
    meddledTest test(suiteTest("mandel"), [](testBase &drawn, int) {
        const int half = drawn.getWidth() * drawn.getHeight() / 2;
        std::fill_n(drawn.getBuffer() + half, half, opaqueBlack);
    });
    QCOMPARE(checkFrames(test, smallFrames), digestVerdict::wrong);
}

void tst_frameCheck::cannotTell()
{
    fakeTest unknown(QStringLiteral("no such test"), nullptr);
    QCOMPARE(checkFrames(unknown, smallFrames), digestVerdict::cannotTell);
    const auto mandel = suiteTest("mandel");
    QCOMPARE(checkFrames(*mandel, 100), digestVerdict::cannotTell);

    fakeTest impossible(QStringLiteral("mandel"), nullptr);
    impossible.canSetup = false;
    QCOMPARE(checkFrames(impossible, smallFrames), digestVerdict::cannotTell);
    impossible.canSetup = true;
    impossible.canWork = false;
    QCOMPARE(checkFrames(impossible, smallFrames), digestVerdict::cannotTell);
    impossible.canWork = true;
    impossible.onRun = [] { throw std::bad_alloc(); };
    QCOMPARE(checkFrames(impossible, smallFrames), digestVerdict::cannotTell);
    impossible.onRun = [&] {
        std::fill_n(impossible.getBuffer(), impossible.getWidth() * impossible.getHeight(), 1U);
    };
    QCOMPARE(checkFrames(impossible, smallFrames), digestVerdict::wrong);
}

void tst_frameCheck::threadsArePutBack()
{
    const int before = omp_get_max_threads();
    omp_set_num_threads(3);
    int used = 0;
    fakeTest test(QStringLiteral("crc32 bitwise"), nullptr);
    test.onRun = [&] {
        used = omp_get_max_threads();
        std::fill_n(test.getBuffer(), test.getWidth() * test.getHeight(), 1U);
    };
    QCOMPARE(checkFrame(test, {"crc32 bitwise", 4, 4, 1, "", 2}), digestVerdict::wrong);
    QCOMPARE(used, 2);
    QCOMPARE(checkFrame(test, {"crc32 bitwise", 4, 4, 1, "", 0}), digestVerdict::wrong);
    QCOMPARE(used, 3);
    QCOMPARE(omp_get_max_threads(), 3);
    omp_set_num_threads(before);
}

QTEST_APPLESS_MAIN(tst_frameCheck)
#include "tst_frameCheck.moc"
