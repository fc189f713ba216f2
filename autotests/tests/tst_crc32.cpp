// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/crc32.h"

#include "rounds.h"

#include <QtTest>

#include <omp.h>

#include <array>

namespace
{

/// Sets the number of threads for as long as it lives.
class threadCount
{
public:
    explicit threadCount(int count) { omp_set_num_threads(count); }
    threadCount(const threadCount &) = delete;
    threadCount &operator=(const threadCount &) = delete;
    ~threadCount() { omp_set_num_threads(before); }

private:
    int before = omp_get_max_threads();
};

/// By table, from a register of 0, complemented.
quint32 tableChecksum(const uchar *bytes, std::size_t size)
{
    std::array<quint32, 256> table = {};
    for (quint32 i = 0; i < 256; ++i) {
        quint32 entry = i;
        for (int bit = 0; bit < 8; ++bit)
            entry = entry % 2 ? entry / 2 ^ 0xEDB88320U : entry / 2;
        table[i] = entry;
    }
    quint32 crc = 0;
    for (std::size_t i = 0; i < size; ++i)
        crc = table[(crc ^ bytes[i]) & 255U] ^ crc >> 8;
    return crc ^ 0xFFFFFFFFU;
}

/// One run, chunk after chunk: later chunks see the results of earlier ones.
void expectedRun(frame &words, int width, int chunks)
{
    const std::size_t size = words.size() * 4 / std::size_t(chunks);
    for (int p = 0; p < chunks; ++p) {
        const auto *bytes = reinterpret_cast<const uchar *>(words.data());
        const quint32 result = tableChecksum(bytes + std::size_t(p) * size, size);
        if (p < width)
            words[std::size_t(p)] = result;
    }
}

} // namespace

class tst_crc32 : public QObject
{
    Q_OBJECT

private slots:
    void names();
    void oneByte();
    void oneWordFourThreads();
    void singleCore_data();
    void singleCore();
    void multicore_data();
    void multicore();
};

void tst_crc32::names()
{
    QCOMPARE(crc32(0).getName(), QStringLiteral("crc32 bitwise"));
    QCOMPARE(crc32(1).getName(), QStringLiteral("crc32 bitwise (multicore)"));
    QVERIFY(!crc32(0).isMulticore());
    QVERIFY(crc32(1).isMulticore());
    crc32 test(0);
    QVERIFY(test.setup(1920, 1080));
    QCOMPARE(test.getUnit(), QStringLiteral("MWords"));
    QCOMPARE(test.getWork(), 2.0736F);
    QVERIFY(!test.setup(-1, 5));
    QVERIFY(!test.getBuffer());
}

void tst_crc32::oneByte()
{
    const threadCount threads(4);
    crc32 test(0);
    QVERIFY(test.setup(1, 1));
    test.getBuffer()[0] = 0;
    runRounds(test, 1);
    QCOMPARE(test.getBuffer()[0], 0xFFFFFFFFU);
}

/// Chunks of one byte; only the first result has a word in the frame.
void tst_crc32::oneWordFourThreads()
{
    const threadCount threads(4);
    const uchar first = 0x5A;
    crc32 test(0);
    QVERIFY(test.setup(1, 1));
    std::fill_n(reinterpret_cast<uchar *>(test.getBuffer()), 4, first);
    runRounds(test, 1);
    QCOMPARE(test.getBuffer()[0], tableChecksum(&first, 1));
}

void tst_crc32::singleCore_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("chunks");
    for (const int chunks : {1, 2, 3, 4, 7, 16}) {
        for (const frameSize &size : oddSizes) {
            QTest::addRow("%dx%d, %d chunks", size.width, size.height, chunks)
                << size.width << size.height << chunks;
        }
    }
}

void tst_crc32::singleCore()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, chunks);
    const threadCount threads(chunks);
    crc32 test(0);
    QVERIFY(test.setup(width, height));
    frame expected = blackFrame(width, height);
    QVERIFY(frameOf(test) == expected);
    for (int run = 0; run < 3; ++run) {
        runRounds(test, 1);
        expectedRun(expected, width, chunks);
        QVERIFY(frameOf(test) == expected);
    }
}

void tst_crc32::multicore_data()
{
    QTest::addColumn<int>("chunks");
    for (const int chunks : {1, 2, 3, 7})
        QTest::addRow("%d chunks", chunks) << chunks;
}

/// The first chunk may or may not see the results of the others; all else is certain.
void tst_crc32::multicore()
{
    QFETCH(int, chunks);
    const threadCount threads(chunks);
    crc32 test(1);
    QVERIFY(test.setup(321, 241));
    frame expected = blackFrame(321, 241);
    runRounds(test, 1);
    expectedRun(expected, 321, chunks);
    const frame actual = frameOf(test);
    QVERIFY(std::equal(actual.begin() + (chunks > 1 ? 1 : 0), actual.end(),
                       expected.begin() + (chunks > 1 ? 1 : 0)));
}

QTEST_APPLESS_MAIN(tst_crc32)
#include "tst_crc32.moc"
