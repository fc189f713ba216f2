// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/rle.h"

#include "rounds.h"
#include "tiles.h"

#include <QtTest>

#include <random>

namespace
{

using words = QVector<quint32>;

constexpr int side = 6 * 512;

words encoded(const words &in, quint32 marker)
{
    words out(3 * in.size() + 1, 0xDEADBEEFU);
    const std::size_t length = rle::encode(out.data(), in.data(), std::size_t(in.size()), marker);
    out.resize(int(length));
    return out;
}

words decoded(const words &in, quint32 marker, int length)
{
    words out(length + 1, 0xDEADBEEFU);
    rle::decode(out.data(), in.data(), std::size_t(in.size()), marker);
    return out;
}

/// The encoding of words none of which is the marker 0, written down anew.
frame packedFrame(const frame &in)
{
    frame out;
    for (std::size_t from = 0; from < in.size();) {
        std::size_t to = from;
        while (to < in.size() && in[to] == in[from])
            ++to;
        const std::size_t run = to - from;
        if (run > 2)
            out.insert(out.end(), {0U, quint32(run) - 1U, in[from]});
        else
            out.insert(out.end(), run, in[from]);
        from = to;
    }
    out.resize(2 * in.size(), black);
    return out;
}

} // namespace

class tst_rle : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void reports();
    void encode_data();
    void encode();
    void decode_data();
    void decode();
    void roundTrip();
    void frames_data();
    void frames();
    void setupShowsPackedFirst();

private:
    frame plain;
    frame packed;
};

void tst_rle::initTestCase()
{
    plain = tiledWords(6);
    packed = packedFrame(plain);
}

void tst_rle::reports()
{
    rle test;
    QVERIFY(test.setup(10, 10));
    QCOMPARE(test.getName(), QStringLiteral("rle compress/uncompress"));
    QCOMPARE(test.getUnit(), QStringLiteral("MWords"));
    QCOMPARE(test.getWork(), 18.874368F);
    QVERIFY(!test.isMulticore());
    QVERIFY(frameOf(test) == blackFrame(10, 10));
    QVERIFY(!test.setup(10, 0));
    QVERIFY(!test.getBuffer());
}

void tst_rle::encode_data()
{
    QTest::addColumn<words>("in");
    QTest::addColumn<words>("out");
    QTest::addRow("nothing") << words{} << words{};
    QTest::addRow("run of three") << words{5, 5, 5, 7} << words{0, 2, 5, 7};
    QTest::addRow("run of two") << words{5, 5, 7} << words{5, 5, 7};
    QTest::addRow("run at the end") << words{7, 5, 5, 5} << words{7, 0, 2, 5};
    QTest::addRow("two at the end") << words{7, 5, 5} << words{7, 5, 5};
    QTest::addRow("one word") << words{9} << words{9};
    QTest::addRow("marker") << words{0} << words{0, 1, 0};
    QTest::addRow("markers") << words{0, 0, 0} << words{0, 1, 0, 0, 1, 0, 0, 1, 0};
    QTest::addRow("marker between") << words{3, 0, 3} << words{3, 0, 1, 0, 3};
}

void tst_rle::encode()
{
    QFETCH(words, in);
    QFETCH(words, out);
    QCOMPARE(encoded(in, 0), out);
}

void tst_rle::decode_data()
{
    QTest::addColumn<words>("in");
    QTest::addColumn<words>("out");
    QTest::addRow("nothing") << words{} << words{};
    QTest::addRow("run") << words{0, 2, 5, 7} << words{5, 5, 5, 7};
    QTest::addRow("marker comes back as two") << words{0, 1, 0} << words{0, 0};
    QTest::addRow("marker alone") << words{0} << words{0};
    QTest::addRow("marker last but one") << words{4, 0, 9} << words{4, 0, 9};
    QTest::addRow("marker last") << words{4, 9, 0} << words{4, 9, 0};
    QTest::addRow("markers among the last two") << words{0, 0} << words{0, 0};
    QTest::addRow("run of one") << words{0, 0, 8} << words{8};
    QTest::addRow("length that wraps") << words{0, 0xFFFFFFFFU, 8, 3} << words{3};
}

void tst_rle::decode()
{
    QFETCH(words, in);
    QFETCH(words, out);
    const int length = out.size();
    QCOMPARE(decoded(in, 0, length), out << 0xDEADBEEFU);
}

void tst_rle::roundTrip()
{
    std::mt19937 generator(4);
    for (int i = 0; i < 200; ++i) {
        words in;
        for (int run = 0; run < 40; ++run)
            in.insert(in.size(), int(generator() % 6), quint32(generator() % 3 + 1));
        const words out = encoded(in, 0);
        QVERIFY(out.size() <= in.size());
        words expected = in;
        QCOMPARE(decoded(out, 0, in.size()), expected << 0xDEADBEEFU);
    }
}

void tst_rle::frames_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    for (const frameSize &size : oddSizes)
        QTest::addRow("%dx%d", size.width, size.height) << size.width << size.height;
    QTest::addRow("wider and higher than the data") << side + 5 << side + 3;
}

/// The packed words as they are, then the picture.
void tst_rle::frames()
{
    QFETCH(int, width);
    QFETCH(int, height);
    rle test;
    QVERIFY(test.setup(width, height));
    runRounds(test, 1);
    QVERIFY(frameOf(test) == window(packed, side, width, height));
    runRounds(test, 1);
    QVERIFY(frameOf(test) == window(plain, side, width, height));
    runRounds(test, 1);
    QVERIFY(frameOf(test) == window(packed, side, width, height));
}

void tst_rle::setupShowsPackedFirst()
{
    rle test;
    QVERIFY(test.setup(64, 64));
    runRounds(test, 1);
    QVERIFY(test.setup(64, 64));
    runRounds(test, 1);
    QVERIFY(frameOf(test) == window(packed, side, 64, 64));
}

QTEST_APPLESS_MAIN(tst_rle)
#include "tst_rle.moc"
