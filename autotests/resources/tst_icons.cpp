// SPDX-License-Identifier: GPL-3.0-or-later
#include <QImage>
#include <QSet>
#include <QtTest>

namespace
{

QImage icon(const char *name)
{
    return QImage(QStringLiteral(":/icons/%1.png").arg(QLatin1String(name)))
        .convertToFormat(QImage::Format_ARGB32);
}

QSet<QRgb> colours(const QImage &picture)
{
    QSet<QRgb> found;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            found.insert(picture.pixel(x, y));
    }
    return found;
}

} // namespace

class tst_icons : public QObject
{
    Q_OBJECT

private slots:
    void embedded_data();
    void embedded();
    void sharp_data();
    void sharp();
    void distinct();
};

void tst_icons::embedded_data()
{
    QTest::addColumn<int>("side");
    QTest::newRow("fennick") << 128;
    for (const char *name : {"fire", "chart", "exit"})
        QTest::newRow(name) << 64;
    for (const char *name : {"unchecked", "checked", "checkedTri", "state1", "state2", "state3"})
        QTest::newRow(name) << 16;
}

void tst_icons::embedded()
{
    QFETCH(int, side);
    const QImage picture = icon(QTest::currentDataTag());
    QCOMPARE(picture.size(), QSize(side, side));
    QCOMPARE(qAlpha(picture.pixel(0, 0)), 0);
    QVERIFY(colours(picture).size() > 1);
}

/// Pictures of straight edges, which fall on the edges of pixels at the size they are shown in.
void tst_icons::sharp_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("unchecked") << 1;
    for (const char *name : {"checkedTri", "state1", "state2", "state3"})
        QTest::newRow(name) << 2;
}

void tst_icons::sharp()
{
    QFETCH(int, count);
    QSet<QRgb> found = colours(icon(QTest::currentDataTag()));
    QVERIFY(found.remove(0));
    QCOMPARE(found.size(), count);
    for (const QRgb colour : qAsConst(found))
        QCOMPARE(qAlpha(colour), 255);
}

/// The states of one box can be told apart by more than a few pixels.
void tst_icons::distinct()
{
    const QImage states[] = {icon("unchecked"), icon("checked"), icon("checkedTri"),
                             icon("state1"),    icon("state2"),  icon("state3")};
    for (const QImage &left : states) {
        for (const QImage &right : states) {
            int differing = 0;
            for (int y = 0; y < left.height(); ++y) {
                for (int x = 0; x < left.width(); ++x)
                    differing += left.pixel(x, y) != right.pixel(x, y);
            }
            QVERIFY(&left == &right ? differing == 0 : differing >= 16);
        }
    }
}

QTEST_APPLESS_MAIN(tst_icons)
#include "tst_icons.moc"
