// SPDX-License-Identifier: GPL-3.0-or-later

// Which work of a round of the packing workloads stands in which of its steps.

#include "rounds.h"
#include "tests/rle.h"
#include "tests/zlib.h"
#include "tiles.h"

#include <QtTest>

#include <cstring>

namespace
{

/// A workload that unpacks, and whose buffers can be looked into between the steps.
template <typename codec> class opened : public codec
{
public:
    quint32 *packedWords() { return this->packed.data(); }
    quint32 *unpackedWords() { return this->unpacked.data(); }
    frame packedFrame() { return copyOf(packedWords()); }
    frame unpackedFrame() { return copyOf(unpackedWords()); }
    std::size_t count() const { return this->source.getCount(); }

private:
    frame copyOf(const quint32 *words) { return frame(words, words + count()); }
};

} // namespace

class tst_codecSteps : public QObject
{
    Q_OBJECT

private slots:
    void rleCodesInTheRun();
    void unpackedWordsAreShownOpaque();
    void zlibCompressesBefore();
    void zlibUnpacksInTheRun();
    void zlibReadsItsInputInTheRun();
};

void tst_codecSteps::rleCodesInTheRun()
{
    opened<rle> test;
    QVERIFY(test.setup(64, 64));
    const frame plain = tiledWords(6);
    test.preRun();
    QVERIFY(isAll(test.packedFrame(), black));
    QVERIFY(test.unpackedFrame() != plain);
    paint(test, mark);
    test.run();
    QVERIFY(isAll(frameOf(test), mark));
    const frame coded = test.packedFrame();
    QVERIFY(!isAll(coded, black));
    QVERIFY(test.unpackedFrame() == plain);
    // Showing them is all that is left to do.
    test.unpackedWords()[0] = mark;
    test.packedWords()[0] = mark;
    test.postRun();
    QCOMPARE(test.getBuffer()[0], mark);
    QVERIFY(!test.packedWords() && !test.unpackedWords());
}

/// Packed words are shown as they are, unpacked ones with their alpha set.
void tst_codecSteps::unpackedWordsAreShownOpaque()
{
    opened<rle> test;
    QVERIFY(test.setup(64, 64));
    for (const quint32 alpha : {0U, black, 0U}) {
        test.preRun();
        std::fill_n(test.packedWords(), test.count(), 0x00123456U);
        std::fill_n(test.unpackedWords(), test.count(), 0x00123456U);
        test.postRun();
        QVERIFY(isAll(frameOf(test), alpha | 0x00123456U));
    }
}

void tst_codecSteps::zlibCompressesBefore()
{
    opened<zlib> test;
    QVERIFY(test.setup(64, 64));
    const frame plain = tiledWords(4);
    const QByteArray expected =
        qCompress(reinterpret_cast<const uchar *>(plain.data()), int(plain.size() * 4), 1);
    test.preRun();
    frame packed = test.packedFrame();
    QCOMPARE(std::memcmp(packed.data(), expected.constData(), std::size_t(expected.size())), 0);
    const auto words = (std::size_t(expected.size()) + 3) / 4;
    QVERIFY(isAll(frame(packed.begin() + std::ptrdiff_t(words), packed.end()), black));
    paint(test, mark);
    test.run();
    QVERIFY(isAll(frameOf(test), mark));
    QVERIFY(test.packedFrame() == packed);
}

void tst_codecSteps::zlibUnpacksInTheRun()
{
    opened<zlib> test;
    QVERIFY(test.setup(64, 64));
    const frame plain = tiledWords(4);
    test.preRun();
    QVERIFY(test.unpackedFrame() != plain);
    test.run();
    QVERIFY(test.unpackedFrame() == plain);
    test.postRun();
    // The second round shows what is unpacked by then.
    test.preRun();
    std::fill_n(test.unpackedWords(), test.count(), mark);
    test.postRun();
    QVERIFY(isAll(frameOf(test), mark));
}

/// What is in the packed buffer when the run starts is what it unpacks.
void tst_codecSteps::zlibReadsItsInputInTheRun()
{
    opened<zlib> test;
    QVERIFY(test.setup(64, 64));
    test.preRun();
    const QByteArray text(40'000, 'f');
    const QByteArray other = qCompress(text, 1);
    std::memcpy(test.packedWords(), other.constData(), std::size_t(other.size()));
    std::fill_n(test.unpackedWords(), text.size(), mark);
    test.run();
    const auto *bytes = reinterpret_cast<const char *>(test.unpackedWords());
    QCOMPARE(QByteArray(bytes, text.size()), text);
    QCOMPARE(test.unpackedWords()[text.size() / 4], mark);
    // And again, though it is the same round.
    const QByteArray second = qCompress(QByteArray(40'000, 'g'), 1);
    std::memcpy(test.packedWords(), second.constData(), std::size_t(second.size()));
    test.run();
    QCOMPARE(QByteArray(bytes, text.size()), QByteArray(40'000, 'g'));
}

QTEST_APPLESS_MAIN(tst_codecSteps)
#include "tst_codecSteps.moc"
