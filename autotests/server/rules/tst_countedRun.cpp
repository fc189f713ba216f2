// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/countedRun.h"

#include "support/wholeRuns.h"

#include <QtTest>

class tst_countedRun : public QObject
{
    Q_OBJECT

private slots:
    void onlyWholeRuns();
    void packing_data();
    void packing();
    void damagedBytes();
};

void tst_countedRun::onlyWholeRuns()
{
    benchResults machine = wholeRun(QStringLiteral("A CPU"), 1.5F);
    const auto run = countedRunOf(machine, 7, "0a");
    QVERIFY(run.has_value());
    QCOMPARE(run->received, qint64(7));
    QCOMPARE(run->source, QByteArray("0a"));
    QCOMPARE(run->results.size(), wholeRunTests().size());
    for (int i = 0; i < run->results.size(); ++i)
        QCOMPARE(run->results.at(i), machine.getTests().value(wholeRunTests().at(i)).value);
    machine.setTest(QStringLiteral("mandel"), benchResults::test(0));
    QVERIFY(!countedRunOf(machine, 7, "0a"));
}

void tst_countedRun::packing_data()
{
    QTest::addColumn<QString>("processor");
    QTest::addColumn<QByteArray>("source");
    QTest::newRow("plain") << QStringLiteral("A CPU") << QByteArray(64, 'f');
    QTest::newRow("no source") << QStringLiteral("A CPU") << QByteArray();
    QTest::newRow("no name") << QString() << QByteArray("0");
    QTest::newRow("other letters")
        << QString::fromUtf8("\xC3\x9C\xE4\xB8\xAD\xF0\x9F\x90\xA7") << QByteArray("0");
    QTest::newRow("long") << QString(128, QChar(0x4E2D)) << QByteArray("0");
}

void tst_countedRun::packing()
{
    QFETCH(QString, processor);
    QFETCH(QByteArray, source);
    const auto run =
        countedRunOf(wholeRun(processor, 1.25F, QStringLiteral("android"), 4096), -5, source);
    QVERIFY(run.has_value());
    const countedRun again = unpackedRun(packedRun(*run));
    QCOMPARE(again.received, run->received);
    QCOMPARE(again.source, source);
    QCOMPARE(again.processor, processor);
    QCOMPARE(again.os, QStringLiteral("android"));
    QCOMPARE(again.threads, 4096);
    QCOMPARE(again.clock, run->clock);
    QCOMPARE(again.results, run->results);
}

void tst_countedRun::damagedBytes()
{
    const QByteArray packed = packedRun(*countedRunOf(wholeRun(QStringLiteral("A CPU")), 1, "0a"));
    for (int size = 0; size < packed.size(); ++size)
        QCOMPARE(unpackedRun(packed.left(size)).results.size(), wholeRunTests().size());
    QCOMPARE(unpackedRun(QByteArray(500, '\xFF')).processor, QString());
}

QTEST_APPLESS_MAIN(tst_countedRun)
#include "tst_countedRun.moc"
