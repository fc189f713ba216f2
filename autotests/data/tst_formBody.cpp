// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/formBody.h"

#include "formDecoder.h"

#include <QRegularExpression>
#include <QtTest>

class tst_formBody : public QObject
{
    Q_OBJECT

private slots:
    void bytes_data();
    void bytes();
    void everyByte();
};

void tst_formBody::bytes_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("encoded");
    QTest::newRow("nothing") << QByteArray() << QByteArray();
    QTest::newRow("word") << QByteArray("Az09-._~") << QByteArray("Az09-._~");
    QTest::newRow("blank") << QByteArray("a b") << QByteArray("a%20b");
    QTest::newRow("plus sign") << QByteArray("i7+") << QByteArray("i7%2B");
    QTest::newRow("looks encoded") << QByteArray("%41%2b%zz%") << QByteArray("%2541%252b%25zz%25");
    QTest::newRow("ampersand, equals") << QByteArray("a&b=c") << QByteArray("a%26b%3Dc");
    QTest::newRow("quotes") << QByteArray("\"'`") << QByteArray("%22%27%60");
    QTest::newRow("line break") << QByteArray("a\r\nb") << QByteArray("a%0D%0Ab");
    QTest::newRow("UTF-8") << QByteArray("\xc3\xa4\xf0\x9f\xa6\x8a")
                           << QByteArray("%C3%A4%F0%9F%A6%8A");
    QTest::newRow("reserved") << QByteArray(":/?#[]@!$'()*+,;=<>")
                              << QByteArray("%3A%2F%3F%23%5B%5D%40%21%24%27%28%29%2A%2B%2C%3B%3D"
                                            "%3C%3E");
}

void tst_formBody::bytes()
{
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, encoded);
    QCOMPARE(formBody({{"app", "Fennick"}, {"results", value}, {"x", "y"}}),
             "?app=Fennick&results=" + encoded + "&x=y");
}

void tst_formBody::everyByte()
{
    QByteArray value;
    for (int byte = 0; byte < 256; ++byte)
        value += static_cast<char>(byte);
    const QByteArray body = formBody({{"results", value}});
    const QRegularExpression allowed(
        QStringLiteral("^\\?results=([A-Za-z0-9._~-]|%[0-9A-F]{2})*$"));
    QVERIFY2(allowed.match(QString::fromLatin1(body)).hasMatch(), body.constData());
    QCOMPARE(formDecoded(body.mid(9)), value);
}

QTEST_GUILESS_MAIN(tst_formBody)
#include "tst_formBody.moc"
