// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/matrix.h"

#include <QtTest>

#include <array>
#include <cmath>

namespace
{

std::array<float, 4> componentsOf(const vector4 &row)
{
    return {row.x, row.y, row.z, row.w};
}

bool isClose(const matrix4 &actual, const double (&expected)[4][4])
{
    for (std::size_t row = 0; row < 4; ++row) {
        const auto components = componentsOf(actual[row]);
        for (std::size_t column = 0; column < 4; ++column) {
            if (std::fabs(double(components[column]) - expected[row][column]) > 1e-6)
                return false;
        }
    }
    return true;
}

} // namespace

class tst_matrix : public QObject
{
    Q_OBJECT

private slots:
    void dotProduct();
    void products();
    void rotations();
    void projectionOfAnySides();
};

void tst_matrix::dotProduct()
{
    QCOMPARE(::dotProduct({1, 2, 3, 4}, {5, 70, 900, 11000}), 46845.0F);
}

void tst_matrix::products()
{
    const matrix4 a = {{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 17}}};
    const matrix4 b = {{{2, 0, 1, 3}, {1, 4, 0, 5}, {0, 1, 6, 1}, {7, 1, 2, 0}}};
    const double expected[4][4] = {
        {32, 15, 27, 16}, {72, 39, 63, 52}, {112, 63, 99, 88}, {159, 88, 137, 124}};
    QVERIFY(isClose(product(a, b), expected));
}

/// Each turns the axes that it does not leave alone by a right angle and by thirty degrees.
void tst_matrix::rotations()
{
    const double pi = std::acos(-1.0);
    for (const double angle : {pi / 2, pi / 6, -pi / 6}) {
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const double aboutX[4][4] = {{1, 0, 0, 0}, {0, c, -s, 0}, {0, s, c, 0}, {0, 0, 0, 1}};
        const double aboutY[4][4] = {{c, 0, s, 0}, {0, 1, 0, 0}, {-s, 0, c, 0}, {0, 0, 0, 1}};
        const double aboutZ[4][4] = {{c, -s, 0, 0}, {s, c, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
        QVERIFY(isClose(rotationX(float(angle)), aboutX));
        QVERIFY(isClose(rotationY(float(angle)), aboutY));
        QVERIFY(isClose(rotationZ(float(angle)), aboutZ));
    }
}

/// The suite's own view is symmetric, where two of the entries are 0.
void tst_matrix::projectionOfAnySides()
{
    // Left, right, bottom, top, near, far.
    const matrix4 actual = projection({-1, 3, -2, 6, 0.5F, 8.5F});
    const double expected[4][4] = {
        {0.25, 0, 0, 0}, {0, 0.125, 0, 0}, {0.5, 0.5, -1.125, -1}, {0, 0, -1.0625, 0}};
    QVERIFY(isClose(actual, expected));
    const matrix4 other = projection({-1, 2, -4, 1, 1, 3});
    const double otherExpected[4][4] = {
        {2.0 / 3, 0, 0, 0}, {0, 0.4, 0, 0}, {1.0 / 3, -0.6, -2, -1}, {0, 0, -3, 0}};
    QVERIFY(isClose(other, otherExpected));
}

QTEST_APPLESS_MAIN(tst_matrix)
#include "tst_matrix.moc"
