// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/formItems.h"

#include "data/formBody.h"

#include <QtTest>

class tst_formItems : public QObject
{
    Q_OBJECT

private slots:
    void items_data();
    void items();
    void roundTrip();
};

using itemMap = QMap<QByteArray, QByteArray>;

Q_DECLARE_METATYPE(itemMap)

void tst_formItems::items_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("isRead");
    QTest::addColumn<itemMap>("items");
    QTest::newRow("empty") << QByteArray() << true << itemMap();
    QTest::newRow("a question mark") << QByteArray("?") << true << itemMap();
    QTest::newRow("two items") << QByteArray("a=1&b=2") << true << itemMap{{"a", "1"}, {"b", "2"}};
    QTest::newRow("question mark in front") << QByteArray("?a=1") << true << itemMap{{"a", "1"}};
    QTest::newRow("only one of them") << QByteArray("??a=1") << true << itemMap{{"?a", "1"}};
    QTest::newRow("encoded") << QByteArray("a=%2B+%41%0a%25%c3%9C") << true
                             << itemMap{{"a", "+ A\n%\xC3\x9C"}};
    QTest::newRow("encoded name") << QByteArray("%61=x") << true << itemMap{{"a", "x"}};
    QTest::newRow("no value") << QByteArray("a&b=") << true << itemMap{{"a", ""}, {"b", ""}};
    QTest::newRow("equals sign in a value") << QByteArray("a=b=c") << true << itemMap{{"a", "b=c"}};
    QTest::newRow("NUL") << QByteArray("a=%00") << true << itemMap{{"a", QByteArray(1, '\0')}};
    QTest::newRow("twice") << QByteArray("a=1&a=2") << false << itemMap();
    QTest::newRow("no name") << QByteArray("=1") << false << itemMap();
    QTest::newRow("empty item") << QByteArray("a=1&&b=2") << false << itemMap();
    QTest::newRow("no hex digits") << QByteArray("a=%zz") << false << itemMap();
    QTest::newRow("one hex digit") << QByteArray("a=%4") << false << itemMap();
    QTest::newRow("percent sign at the end") << QByteArray("a=%") << false << itemMap();
}

void tst_formItems::items()
{
    QFETCH(QByteArray, body);
    const auto read = formItems(body);
    QTEST(read.has_value(), "isRead");
    QTEST(read.value_or(itemMap()), "items");
}

void tst_formItems::roundTrip()
{
    QString all;
    for (ushort c = 1; c < 0x300; ++c)
        all.append(QChar(c));
    const auto read = formItems(formBody({{"app", "Fennick"}, {"results", all.toUtf8()}}));
    QVERIFY(read.has_value());
    QCOMPARE(*read, (itemMap{{"app", "Fennick"}, {"results", all.toUtf8()}}));
}

QTEST_APPLESS_MAIN(tst_formItems)
#include "tst_formItems.moc"
