// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/ornament.h"
#include "tools/artwork/patchwork.h"

#include <QImage>
#include <QImageReader>
#include <QtTest>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <set>
#include <vector>

namespace
{

constexpr int side = 512;

const QString ornamentPath = QStringLiteral(":/data/pic4_512_512.png");
const QString patchworkPath = QStringLiteral(":/data/pic2_512_512.png");

int sumOf(QRgb pixel)
{
    return qRed(pixel) + qGreen(pixel) + qBlue(pixel);
}

std::vector<int> sumsOf(const QImage &picture)
{
    std::vector<int> sums;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            sums.push_back(sumOf(picture.pixel(x, y)));
    }
    return sums;
}

int difference(QRgb a, QRgb b)
{
    return std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b))
           + std::abs(qBlue(a) - qBlue(b));
}

/// The mean difference between column @p x and the one right of it, around the picture's end.
double stepAfterColumn(const QImage &picture, int x)
{
    int sum = 0;
    for (int y = 0; y < side; ++y)
        sum += difference(picture.pixel(x, y), picture.pixel((x + 1) % side, y));
    return double(sum) / side;
}

double stepAfterRow(const QImage &picture, int y)
{
    int sum = 0;
    for (int x = 0; x < side; ++x)
        sum += difference(picture.pixel(x, y), picture.pixel(x, (y + 1) % side));
    return double(sum) / side;
}

/// The number of pixels in horizontal runs of three or more equal pixels.
int pixelsInRuns(const QImage &picture)
{
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        int start = 0;
        for (int x = 1; x <= picture.width(); ++x) {
            if (x < picture.width() && picture.pixel(x, y) == picture.pixel(start, y))
                continue;
            count += x - start >= 3 ? x - start : 0;
            start = x;
        }
    }
    return count;
}

} // namespace

class tst_pictures : public QObject
{
    Q_OBJECT

private slots:
    void madeAgain_data();
    void madeAgain();
    void noSeam_data();
    void noSeam();
    void ornamentHasAPalette();
    void ornamentSums();
    void ornamentIsUnsorted();
    void patchworkHasPlainColours();
    void patchworkIsHalfFlat();
    void patchworkDetailHasNoRuns();
    void patchworkPacks();
};

void tst_pictures::madeAgain_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QImage>("made");
    QTest::newRow("ornament") << ornamentPath << artwork::ornamentPicture();
    QTest::newRow("patchwork") << patchworkPath << artwork::patchworkPicture();
}

void tst_pictures::madeAgain()
{
    QFETCH(QString, path);
    QFETCH(QImage, made);
    const QImage embedded(path);
    QCOMPARE(QImageReader(path).format(), QByteArray("png"));
    QCOMPARE(embedded.size(), QSize(side, side));
    QCOMPARE(embedded.colorTable(), made.colorTable());
    QCOMPARE(embedded.convertToFormat(QImage::Format_ARGB32),
             made.convertToFormat(QImage::Format_ARGB32));
}

void tst_pictures::noSeam_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("ornament") << ornamentPath;
    QTest::newRow("patchwork") << patchworkPath;
}

/// The step across the border is about as great as the steps inside the picture, not greater.
void tst_pictures::noSeam()
{
    QFETCH(QString, path);
    const QImage picture(path);
    double columnStep = 0;
    double rowStep = 0;
    for (int i = 0; i < side - 1; ++i) {
        columnStep += stepAfterColumn(picture, i) / (side - 1);
        rowStep += stepAfterRow(picture, i) / (side - 1);
    }
    QVERIFY(stepAfterColumn(picture, side - 1) <= 1.2 * columnStep);
    QVERIFY(stepAfterRow(picture, side - 1) <= 1.2 * rowStep);
}

void tst_pictures::ornamentHasAPalette()
{
    const QImage picture(ornamentPath);
    QCOMPARE(picture.format(), QImage::Format_Indexed8);
    QCOMPARE(picture.colorCount(), 256);
    const QVector<QRgb> table = picture.colorTable();
    QVERIFY(std::all_of(table.begin(), table.end(), [](QRgb c) { return qAlpha(c) == 255; }));
}

void tst_pictures::ornamentSums()
{
    const std::vector<int> sums = sumsOf(QImage(ornamentPath));
    const std::set<int> different(sums.begin(), sums.end());
    QVERIFY2(different.size() >= 200, qPrintable(QString::number(different.size())));
    QVERIFY2(*different.begin() <= 30, qPrintable(QString::number(*different.begin())));
    QVERIFY2(*different.rbegin() >= 735, qPrintable(QString::number(*different.rbegin())));
}

void tst_pictures::ornamentIsUnsorted()
{
    const std::vector<int> sums = sumsOf(QImage(ornamentPath));
    int rises = 0;
    int falls = 0;
    for (std::size_t i = 1; i < sums.size(); ++i) {
        rises += sums[i] > sums[i - 1] ? 1 : 0;
        falls += sums[i] < sums[i - 1] ? 1 : 0;
    }
    QVERIFY(rises > 10000);
    QVERIFY(falls > 10000);
}

void tst_pictures::patchworkHasPlainColours()
{
    const QImage picture(patchworkPath);
    QCOMPARE(picture.colorCount(), 0);
    QVERIFY(!picture.hasAlphaChannel());
    QVERIFY(picture.depth() == 24 || picture.depth() == 32);
    QVERIFY(!picture.isGrayscale());
}

void tst_pictures::patchworkIsHalfFlat()
{
    const double share = double(pixelsInRuns(QImage(patchworkPath))) / (side * side);
    QVERIFY2(share >= 0.45 && share <= 0.55, qPrintable(QString::number(share)));
}

/// Every second field of 128 x 128 pixels has detail everywhere within its seam of two pixels.
void tst_pictures::patchworkDetailHasNoRuns()
{
    const QImage picture(patchworkPath);
    for (int i = 0; i < 16; ++i) {
        const int row = i / 4;
        const int column = i % 4;
        if ((row + column) % 2 == 0)
            continue;
        const QImage field = picture.copy(128 * column + 2, 128 * row + 2, 124, 124);
        int equal = 0;
        for (int y = 0; y < 124; ++y) {
            for (int x = 1; x < 124; ++x)
                equal += field.pixel(x, y) == field.pixel(x - 1, y) ? 1 : 0;
        }
        QCOMPARE(pixelsInRuns(field), 0);
        QVERIFY2(equal <= 15, qPrintable(QStringLiteral("field %1: %2").arg(i).arg(equal)));
    }
}

void tst_pictures::patchworkPacks()
{
    const QImage picture = QImage(patchworkPath).convertToFormat(QImage::Format_ARGB32);
    QByteArray tiled;
    for (int y = 0; y < 4 * side; ++y) {
        for (int i = 0; i < 4; ++i)
            tiled.append(reinterpret_cast<const char *>(picture.constScanLine(y % side)), 4 * side);
    }
    QCOMPARE(tiled.size(), 16 * 1024 * 1024);
    const double share = double(qCompress(tiled, 1).size()) / tiled.size();
    QVERIFY2(share >= 0.05 && share <= 0.30, qPrintable(QString::number(share)));
}

QTEST_APPLESS_MAIN(tst_pictures)
#include "tst_pictures.moc"
