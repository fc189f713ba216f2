// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/compressed.h"

#include "support/peakMemory.h"
#include "zlibStream.h"

#include <QtTest>

namespace
{

constexpr qint64 megabyte = 1024 * 1024;
constexpr int limit = 16 * megabyte;
constexpr qint64 far = 200 * megabyte;

QByteArray streamOf(const QByteArray &content)
{
    return qCompress(content).mid(4);
}

} // namespace

class tst_compressed : public QObject
{
    Q_OBJECT

private slots:
    void memory_data();
    void memory();
    void roundTrip_data();
    void roundTrip();
    void refused_data();
    void refused();
    void limits();
};

void tst_compressed::memory_data()
{
    QTest::addColumn<quint32>("length");
    QTest::newRow("honest") << static_cast<quint32>(far);
    QTest::newRow("lies low") << 100U;
    QTest::newRow("lies at the limit") << static_cast<quint32>(limit);
    QTest::newRow("says nothing") << 0U;
    QTest::newRow("4 GB") << 0xFFFFFFFFU;
    QTest::newRow("2 GB") << 0x7FFFFFFFU;
}

void tst_compressed::memory()
{
    QFETCH(quint32, length);
    static const QByteArray stream = longStream(far);
    const QByteArray packed = withLength(length, stream);
    QVERIFY(packed.size() < megabyte);
    const peakMemory memory;
    if (!memory.isAvailable())
        QSKIP("the peak is not known here");
    QVERIFY(!uncompressed(packed, limit));
    QVERIFY2(memory.growth() < 64 * megabyte, qPrintable(QString::number(memory.growth())));
}

void tst_compressed::roundTrip_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("one byte") << QByteArray("x");
    QTest::newRow("xml") << QByteArray("<Fennick><bench machineName=\"\xc3\xa4\"/></Fennick>");
    QTest::newRow("zeros") << QByteArray(300'000, '\0');
}

void tst_compressed::roundTrip()
{
    QFETCH(QByteArray, content);
    QCOMPARE(uncompressed(qCompress(content), limit).value_or(QByteArray()), content);
    // A length that is wrong, but harmless, is set right.
    QCOMPARE(uncompressed(withLength(0, streamOf(content)), limit).value_or(QByteArray()), content);
    QCOMPARE(uncompressed(withLength(1'000'000, streamOf(content)), limit).value_or(QByteArray()),
             content);
}

void tst_compressed::refused_data()
{
    QTest::addColumn<QByteArray>("packed");
    const QByteArray good = qCompress("a list of machines, a list of machines");
    QByteArray damaged = good;
    damaged[good.size() - 1] = char(~damaged.at(good.size() - 1));
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("length alone") << good.left(4);
    QTest::newRow("less than a length") << good.left(3);
    QTest::newRow("packed nothing") << qCompress("");
    QTest::newRow("text") << QByteArray("<html>not found</html>");
    QTest::newRow("stream alone") << good.mid(4);
    QTest::newRow("cut") << good.left(good.size() - 1);
    QTest::newRow("cut early") << good.left(12);
    QTest::newRow("wrong checksum") << damaged;
    QTest::newRow("1 GB, good stream") << withLength(0x40000000U, good.mid(4));
    QTest::newRow("4 GB, good stream") << withLength(0xFFFFFFFFU, good.mid(4));
}

void tst_compressed::refused()
{
    QFETCH(QByteArray, packed);
    QVERIFY(!uncompressed(packed, limit));
}

void tst_compressed::limits()
{
    const QByteArray exact(1000, 'x');
    QCOMPARE(uncompressed(qCompress(exact), 1000).value_or(QByteArray()), exact);
    QVERIFY(!uncompressed(qCompress(exact), 999));
    QVERIFY(!uncompressed(withLength(0, streamOf(exact)), 999));
}

QTEST_GUILESS_MAIN(tst_compressed)
#include "tst_compressed.moc"
