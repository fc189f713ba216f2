// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/plainText.h"

#include <QTextDocument>
#include <QtTest>

namespace
{

/// What a widget shows that reads @p text as HTML. Blanks that may not break a line are blanks.
QString shownAsHtml(const QString &text)
{
    QTextDocument document;
    document.setHtml(text);
    return document.toPlainText();
}

} // namespace

class tst_plainText : public QObject
{
    Q_OBJECT

private slots:
    void letterForLetter_data();
    void letterForLetter();
    void ordinaryNamesStay();
    void shortening_data();
    void shortening();
    void toolTip_data();
    void toolTip();
};

void tst_plainText::letterForLetter_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("ordinary") << QStringLiteral("LAB7");
    QTest::newRow("tag") << QStringLiteral("R&D <PC>");
    QTest::newRow("image") << QStringLiteral("<img src=\"/dev/zero\">");
    QTest::newRow("entity") << QStringLiteral("a &amp; b &lt; &#60;");
    QTest::newRow("quotes") << QStringLiteral("\"a\" 'b'");
    QTest::newRow("blanks") << QStringLiteral("  a  b   c ");
    QTest::newRow("one blank") << QStringLiteral(" ");
    QTest::newRow("lines") << QStringLiteral("a\nb <b>\n\nc");
    QTest::newRow("comment") << QStringLiteral("a <!-- b --> c");
}

void tst_plainText::letterForLetter()
{
    QFETCH(QString, name);
    QCOMPARE(shownAsHtml(plainText::asHtml(name)), name);
}

void tst_plainText::ordinaryNamesStay()
{
    const QString name = QStringLiteral("[you] LAB7 4C 3.4 GHz (linux) %1 'x'");
    QCOMPARE(plainText::asHtml(name), name);
}

void tst_plainText::shortening_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("longest");
    QTest::addColumn<QString>("result");
    const QString dots(QChar(0x2026));
    const QString camera = QStringLiteral("\U0001F4F7"); // two units
    QTest::newRow("empty") << QString() << 5 << QString();
    QTest::newRow("fits") << QStringLiteral("12345") << 5 << QStringLiteral("12345");
    QTest::newRow("one too many") << QStringLiteral("123456") << 5 << QStringLiteral("1234") + dots;
    QTest::newRow("half a letter") << QStringLiteral("123") + camera + QStringLiteral("67") << 5
                                   << QStringLiteral("123") + dots;
    QTest::newRow("whole letter") << QStringLiteral("12") + camera + QStringLiteral("67") << 5
                                  << QStringLiteral("12") + camera + dots;
    QTest::newRow("as names are") << QString(60'000, QLatin1Char('x')) << plainText::longestName
                                  << QString(99, QLatin1Char('x')) + dots;
}

void tst_plainText::shortening()
{
    QFETCH(QString, name);
    QFETCH(int, longest);
    QTEST(plainText::shortened(name, longest), "result");
}

void tst_plainText::toolTip_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << QStringLiteral("a\nb: 3 %");
    QTest::newRow("R&D") << QStringLiteral("R&D <PC>\ncpu: 3 %");
    QTest::newRow("bold") << QStringLiteral("<b>x</b>\n<i>cpu</i>: 3 %");
    QTest::newRow("image") << QStringLiteral("<img src=\"/dev/zero\"> 4C\n  cpu: 3 %");
    QTest::newRow("escaped") << QStringLiteral("a &lt; b\ncpu: 3 %");
    QTest::newRow("xml") << QStringLiteral("<?xml?>\ncpu");
}

void tst_plainText::toolTip()
{
    QFETCH(QString, text);
    const QString tip = plainText::asToolTip(text);
    // As a label decides it.
    QCOMPARE(Qt::mightBeRichText(tip) ? shownAsHtml(tip) : tip, text);
}

QTEST_MAIN(tst_plainText)
#include "tst_plainText.moc"
