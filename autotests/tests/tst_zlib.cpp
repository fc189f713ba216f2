// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/zlib.h"

#include "rounds.h"
#include "tiles.h"

#include <QtEndian>
#include <QtTest>

#include <algorithm>
#include <cstring>

namespace
{

constexpr int side = 4 * 512;

/// Lets a test put something else into the place of the packed picture.
class spoilt : public zlib
{
public:
    void spoil() { std::fill_n(packed.data(), 16, 0xFFFFFFFFU); }
};
/// Half as many bytes as the picture has.
constexpr int inputSize = 2 * side * side;

/// Packs as qCompress does, without compression (RFC 1950, RFC 1951: stored blocks), so that the
/// length of the result is known: that of @p plain, 5 for each of its blocks, and 10.
QByteArray storedStream(const QByteArray &plain)
{
    constexpr int longestBlock = 0xFFFF;
    QByteArray stream("\x78\x01");
    quint32 a = 1;
    quint32 b = 0;
    for (int start = 0; start < plain.size(); start += longestBlock) {
        const QByteArray block = plain.mid(start, longestBlock);
        char header[5] = {start + longestBlock >= plain.size() ? '\1' : '\0'};
        qToLittleEndian(quint16(block.size()), header + 1);
        qToLittleEndian(quint16(~block.size()), header + 3);
        stream += QByteArray(header, 5) + block;
        for (const char byte : block) {
            a = (a + quint8(byte)) % 65521;
            b = (b + a) % 65521;
        }
    }
    QByteArray check(4, '\0');
    qToBigEndian(b << 16 | a, check.data());
    QByteArray length(4, '\0');
    qToBigEndian(quint32(plain.size()), length.data());
    return length + stream + check;
}

/// A workload whose buffers can be filled from here.
class opened : public zlib
{
public:
    char *packedBytes() { return reinterpret_cast<char *>(packed.data()); }
    char *unpackedBytes() { return reinterpret_cast<char *>(unpacked.data()); }
};

} // namespace

class tst_zlib : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void reports();
    void inputIsLongEnough();
    void inputIsCutOff_data();
    void inputIsCutOff();
    void unpack_data();
    void unpack();
    void nothingUnpacked();
    void frames_data();
    void frames();

private:
    frame plain;
    QByteArray stream;
    frame packed;
};

void tst_zlib::initTestCase()
{
    plain = tiledWords(4);
    stream = qCompress(reinterpret_cast<const uchar *>(plain.data()), int(plain.size() * 4), 1);
    packed.assign(2 * plain.size(), black);
    std::memcpy(packed.data(), stream.constData(), std::size_t(stream.size()));
}

void tst_zlib::reports()
{
    zlib test;
    QVERIFY(test.setup(10, 10));
    QCOMPARE(test.getName(), QStringLiteral("zlib uncompress"));
    QCOMPARE(test.getUnit(), QStringLiteral("MWords"));
    QCOMPARE(test.getWork(), 4.194304F);
    QVERIFY(!test.isMulticore());
    QVERIFY(frameOf(test) == blackFrame(10, 10));
    QVERIFY(!test.setup(10, 0));
    QVERIFY(!test.getBuffer());
}

/// The decoder gets half as many bytes as the picture has; nothing may be cut off.
void tst_zlib::unpack_data()
{
    QTest::addColumn<QByteArray>("packedBytes");
    QTest::addColumn<QByteArray>("copied");
    const QByteArray text("abcabcabc");
    const QByteArray packedText = qCompress(text, 1);
    QTest::newRow("whole") << packedText << text;
    QTest::newRow("followed by filler") << packedText + QByteArray(100, '\xff') << text;
    QTest::newRow("cut off") << packedText.left(packedText.size() / 2) << QByteArray();
    QTest::newRow("empty") << QByteArray() << QByteArray();
    QTest::newRow("no stream") << QByteArray("\0\0\0\x09none", 8) << QByteArray();
    QTest::newRow("packed nothing") << qCompress(QByteArray(), 1) << QByteArray();
}

void tst_zlib::unpack()
{
    QFETCH(QByteArray, packedBytes);
    QFETCH(QByteArray, copied);
    QByteArray out(32, '.');
    QCOMPARE(zlib::unpack(out.data(), packedBytes), copied.size());
    QCOMPARE(out, copied + QByteArray(32 - copied.size(), '.'));
}

/// A round that unpacks nothing has done no work.
void tst_zlib::nothingUnpacked()
{
    spoilt test;
    QVERIFY(test.setup(10, 10));
    test.preRun();
    test.run();
    QVERIFY(!test.hasFailed());
    test.spoil();
    test.run();
    QVERIFY(test.hasFailed());
    test.postRun();
    QVERIFY(frameOf(test) == blackFrame(10, 10));
}

void tst_zlib::inputIsLongEnough()
{
    QVERIFY(stream.size() < 2 * side * side);
    const QByteArray input(reinterpret_cast<const char *>(packed.data()), 2 * side * side);
    const QByteArray output = qUncompress(input);
    QCOMPARE(output.size(), 4 * side * side);
    QCOMPARE(std::memcmp(output.constData(), plain.data(), std::size_t(output.size())), 0);
}

void tst_zlib::inputIsCutOff_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("isWhole");
    QTest::addRow("half of it") << inputSize / 2 << true;
    QTest::addRow("one byte less") << inputSize - 1 << true;
    QTest::addRow("all of it") << inputSize << true;
    QTest::addRow("one byte more") << inputSize + 1 << false;
    QTest::addRow("half more") << inputSize / 2 * 3 << false;
}

/// A stream that is longer than the fixed length of the input is cut there, and gives nothing.
void tst_zlib::inputIsCutOff()
{
    QFETCH(int, size);
    QFETCH(bool, isWhole);
    const int blocks = (size - 10 + 0xFFFF + 4) / (0xFFFF + 5);
    const QByteArray content(size - 10 - 5 * blocks, 'n');
    const QByteArray bytes = storedStream(content);
    QCOMPARE(bytes.size(), size);
    QCOMPARE(qUncompress(bytes), content);

    opened test;
    QVERIFY(test.setup(64, 64));
    test.preRun();
    std::memcpy(test.packedBytes(), bytes.constData(), std::size_t(size));
    std::memset(test.unpackedBytes(), '.', std::size_t(size));
    test.run();
    const QByteArray copied(test.unpackedBytes(), size);
    QCOMPARE(copied.count('n'), isWhole ? content.size() : 0);
    QCOMPARE(copied.at(0), isWhole ? 'n' : '.');
    QCOMPARE(copied.at(content.size()), '.');
    test.postRun();
}

void tst_zlib::frames_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    for (const frameSize &size : oddSizes)
        QTest::addRow("%dx%d", size.width, size.height) << size.width << size.height;
    QTest::addRow("wider and higher than the data") << side + 5 << side + 3;
}

/// The packed words as they are, alpha included, then the picture.
void tst_zlib::frames()
{
    QFETCH(int, width);
    QFETCH(int, height);
    zlib test;
    QVERIFY(test.setup(width, height));
    runRounds(test, 1);
    QVERIFY(frameOf(test) == window(packed, side, width, height));
    runRounds(test, 1);
    QVERIFY(frameOf(test) == window(plain, side, width, height));
    runRounds(test, 1);
    QVERIFY(frameOf(test) == window(packed, side, width, height));
}

QTEST_APPLESS_MAIN(tst_zlib)
#include "tst_zlib.moc"
