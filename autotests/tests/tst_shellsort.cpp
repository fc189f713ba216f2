// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/shellsort.h"

#include "rounds.h"

#include <QImage>
#include <QtTest>

#include <algorithm>
#include <random>
#include <utility>

namespace
{

int brightness(quint32 word)
{
    return int(word >> 16 & 255U) + int(word >> 8 & 255U) + int(word & 255U);
}

/// Shell's sort by exchanges of neighbours in a chain, which leaves the same order as moving.
void exchangeSort(frame &words)
{
    for (std::size_t gap = words.size() / 2; gap > 0; gap /= 2) {
        for (std::size_t i = gap; i < words.size(); ++i) {
            for (std::size_t j = i; j >= gap; j -= gap) {
                if (brightness(words[j - gap]) <= brightness(words[j]))
                    break;
                std::swap(words[j - gap], words[j]);
            }
        }
    }
}

frame pictureWords()
{
    const QImage picture(QStringLiteral(":/data/pic4_512_512.png"));
    frame words;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            words.push_back(black | picture.pixel(x, y));
    }
    return words;
}

} // namespace

class tst_shellsort : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void reports();
    void sort_data();
    void sort();
    void equalSumsKeepTheirOrder();
    void frames_data();
    void frames();

private:
    frame sorted;
};

void tst_shellsort::initTestCase()
{
    sorted = pictureWords();
    QCOMPARE(sorted.size(), std::size_t(512 * 512));
    exchangeSort(sorted);
}

void tst_shellsort::reports()
{
    shellsort test;
    QVERIFY(test.setup(10, 10));
    QCOMPARE(test.getName(), QStringLiteral("shellsort"));
    QCOMPARE(test.getUnit(), QStringLiteral("MWords"));
    QCOMPARE(test.getWork(), 0.262144F);
    QVERIFY(!test.isMulticore());
    QVERIFY(frameOf(test) == blackFrame(10, 10));
    QVERIFY(!test.setup(0, 0));
    QVERIFY(!test.getBuffer());
}

void tst_shellsort::sort_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {0, 1, 2, 3, 7, 100, 1023, 5000})
        QTest::addRow("%d words", count) << count;
}

void tst_shellsort::sort()
{
    QFETCH(int, count);
    std::mt19937 generator(quint32(count) + 1U);
    frame words;
    for (int i = 0; i < count; ++i)
        words.push_back(quint32(generator()) & (i % 3 ? 0xFFFFFFFFU : 0xFF070707U));
    frame expected = words;
    shellsort::sort(words.data(), quint32(count));
    QVERIFY(std::is_sorted(words.begin(), words.end(),
                           [](quint32 a, quint32 b) { return brightness(a) < brightness(b); }));
    exchangeSort(expected);
    QVERIFY(words == expected);
}

void tst_shellsort::equalSumsKeepTheirOrder()
{
    frame words = {0xFF030000U, 0xFF000300U, 0xFF000003U};
    const frame before = words;
    shellsort::sort(words.data(), 3);
    QVERIFY(words == before);
}

void tst_shellsort::frames_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    for (const frameSize &size : oddSizes)
        QTest::addRow("%dx%d", size.width, size.height) << size.width << size.height;
    QTest::addRow("all of it") << 512 << 512;
    QTest::addRow("larger") << 600 << 500;
}

void tst_shellsort::frames()
{
    QFETCH(int, width);
    QFETCH(int, height);
    frame expected = blackFrame(width, height);
    std::copy_n(sorted.begin(), std::min(sorted.size(), expected.size()), expected.begin());

    shellsort test;
    QVERIFY(test.setup(width, height));
    for (int round = 0; round < 2; ++round) {
        std::fill_n(test.getBuffer(), expected.size(), 0U);
        runRounds(test, 1);
        QVERIFY(frameOf(test) == expected);
    }
}

QTEST_APPLESS_MAIN(tst_shellsort)
#include "tst_shellsort.moc"
