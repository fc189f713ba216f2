// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/logColumns.h"

#include "tests/suite.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QtTest>

class tst_logColumns : public QObject
{
    Q_OBJECT

private slots:
    void longEnough();
    void widths_data();
    void widths();
};

void tst_logColumns::longEnough()
{
    // Room for seven letters of each figure, as in 12345.6 and 1234.56, after every name and unit.
    const int figures = 2 * 7;
    for (const auto &test : makeSuite(nullptr)) {
        const QString line = QStringLiteral("Test %1 Result: /s %2 (avg ms)")
                                 .arg(test->getName(), 36)
                                 .arg(test->getUnit());
        QVERIFY2(line.size() + figures <= logColumns::longestLine().size(), qPrintable(line));
    }
}

void tst_logColumns::widths_data()
{
    QTest::addColumn<double>("share"); // of the width at full width
    QTest::addColumn<bool>("fits");
    QTest::addColumn<int>("least");
    QTest::addColumn<int>("most");
    QTest::newRow("more room") << 2.0 << true << 100 << 100;
    QTest::newRow("just enough") << 1.0 << true << 100 << 100;
    QTest::newRow("less") << 0.85 << true << 75 << 99;
    QTest::newRow("too little") << 0.2 << false << 75 << 75;
    QTest::newRow("none") << 0.0 << false << 75 << 75;
}

void tst_logColumns::widths()
{
    QFETCH(double, share);
    QFETCH(bool, fits);
    QFETCH(int, least);
    QFETCH(int, most);
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(10);
    font.setWeight(QFont::Normal);
    QFont full = font;
    full.setStretch(QFont::Unstretched);
    const QString line = logColumns::longestLine();
    const double room = share * QFontMetricsF(full).horizontalAdvance(line);
    const QFont fitted = logColumns::fitted(font, line, room);
    QVERIFY2(fitted.stretch() >= least && fitted.stretch() <= most,
             qPrintable(QString::number(fitted.stretch())));
    QCOMPARE(QFontMetricsF(fitted).horizontalAdvance(line) <= room, fits);
    QCOMPARE(fitted.family(), font.family());
    QCOMPARE(fitted.pointSize(), 10);
    QCOMPARE(fitted.weight(), int(QFont::Normal));
    // No narrower than it must be, and the same again from a narrow one.
    if (fits && fitted.stretch() < QFont::Unstretched) {
        QFont wider = fitted;
        wider.setStretch(fitted.stretch() + 1);
        QVERIFY(QFontMetricsF(wider).horizontalAdvance(line) > room);
    }
    QCOMPARE(logColumns::fitted(fitted, line, room).stretch(), fitted.stretch());
}

QTEST_MAIN(tst_logColumns)
#include "tst_logColumns.moc"
