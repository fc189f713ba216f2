// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testText.h"

#include "tests/suiteFacts.h"

#include <QtTest>

class tst_testText : public QObject
{
    Q_OBJECT

private slots:
    void eachTest_data();
    void eachTest();
    void unitsInWords();
    void unknownTest();
};

void tst_testText::eachTest_data()
{
    QTest::addColumn<int>("index");
    for (std::size_t i = 0; i < suiteFacts().size(); ++i)
        QTest::newRow(suiteFacts().at(i).name) << static_cast<int>(i);
}

/// What it does, what it shows, how to read it.
void tst_testText::eachTest()
{
    QFETCH(int, index);
    const testFacts &test = suiteFacts().at(static_cast<std::size_t>(index));
    const QString text = testText(QString::fromLatin1(test.name));
    QVERIFY(text.startsWith(QString::fromUtf8(test.workload.description)));
    QCOMPARE(text.count(QRegularExpression(QStringLiteral("\\.( |$)"))), 3);
    QVERIFY(text.contains(QStringLiteral(" %1/s, ").arg(QLatin1String(test.workload.unit))));
    QCOMPARE(text.endsWith(QStringLiteral("on all cores: higher is better.")), test.isMulticore());
    QVERIFY(text.endsWith(QStringLiteral("core: higher is better.")) || test.isMulticore());
}

void tst_testText::unitsInWords()
{
    QVERIFY(testText(QStringLiteral("mandel"))
                .contains(QStringLiteral("MPixel/s, millions of pixels per second on one core")));
    QVERIFY(testText(QStringLiteral("lines"))
                .contains(QStringLiteral("KLines/s, thousands of lines per second on one core")));
    QVERIFY(testText(QStringLiteral("vertex (multicore)"))
                .contains(QStringLiteral("MVertices/s, millions of vertices per second on all")));
}

void tst_testText::unknownTest()
{
    QCOMPARE(testText(QStringLiteral("mandel (unicore)")), QString());
    QCOMPARE(testText(QString()), QString());
}

QTEST_APPLESS_MAIN(tst_testText)
#include "tst_testText.moc"
