// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/foxHead.h"

#include "tools/artwork/easel.h"

using namespace artwork;

namespace
{

constexpr colour outlineTint = hex(0x2A0F14);

shape hair(point root, point tip, qint32 width)
{
    const point middle = {(root.x * 2 + tip.x) / 3, (root.y * 2 + tip.y) / 3};
    const shape across = bar(root, middle, width);
    return curve({root, root, across[0][1], tip, tip, across[0][2]});
}

void paintEars(easel &head)
{
    const shape ear = curve({at(10, -20), at(10, -20), at(18, -66), at(54, -104), at(84, -118),
                             at(84, -118), at(94, -84), at(82, -34), at(54, 2), at(54, 2)});
    head.stroke(ear, 5 * pixel / 2, flat(outlineTint));
    head.stroke(mirrored(ear), 5 * pixel / 2, flat(outlineTint));
    head.fillBoth(ear, linear(at(40, 0), at(82, -116),
                              {{0, hex(0xD9732A)}, {130, hex(0xF0A047)}, {256, hex(0xFFD58A)}}));
    const shape inside = curve({at(26, -18), at(26, -18), at(32, -60), at(60, -92), at(79, -106),
                                at(79, -106), at(86, -80), at(76, -40), at(52, -6), at(52, -6)});
    head.fillBoth(inside, linear(at(40, -8), at(78, -104),
                                 {{0, hex(0x5A1F2B)}, {110, hex(0xB4524E)}, {256, hex(0xF2A68C)}}));
    for (qint32 i = 0; i < 7; ++i) {
        const point root = at(24 + 5 * i, -14 + 2 * i);
        const point tip = at(42 + 7 * i - i * i / 2, -74 + 5 * i + (i % 2) * 9);
        head.fillBoth(hair(root, tip, 7 * pixel),
                      linear(root, tip, {{0, hex(0xFFF6E2)}, {256, hex(0xF9D9B0)}}));
    }
}

shape faceOutline()
{
    return curve(symmetric({at(0, -30), at(30, -32), at(56, -8), at(64, 14), at(84, 34), at(84, 34),
                            at(62, 42), at(66, 50), at(66, 50), at(44, 52), at(26, 62), at(12, 74),
                            at(0, 76)}));
}

void paintFace(easel &head)
{
    const shape face = faceOutline();
    head.stroke(face, 5 * pixel / 2, flat(outlineTint));
    head.fill(face, linear(at(0, -34), at(0, 76),
                           {{0, hex(0xFFC771)}, {90, hex(0xF3973F)}, {256, hex(0xD9692A)}}));
    const shape cheek = curve({at(6, 34), at(6, 34), at(14, 6), at(36, -2), at(54, 10), at(84, 34),
                               at(84, 34), at(62, 42), at(66, 50), at(66, 50), at(44, 52),
                               at(26, 62), at(12, 74), at(0, 76), at(0, 76), at(0, 40), at(0, 40)});
    head.fillBoth(cheek, linear(at(20, 0), at(40, 76),
                                {{0, hex(0xFFFBF0)}, {140, hex(0xFDE6C4)}, {256, hex(0xE9B98A)}}));
    const shape bridge = curve({at(0, -26), at(0, -26), at(13, -8), at(11, 20), at(9, 44),
                                at(7, 56), at(7, 56), at(0, 58), at(0, 58)});
    head.fillBoth(bridge, linear(at(0, 0), at(14, 0), {{0, hex(0xF9B660)}, {256, hex(0xE88A38)}}));
    const shape brow =
        curve({at(16, -8), at(16, -8), at(26, -20), at(42, -12), at(42, -12), at(28, -12)});
    head.fillBoth(brow, flat(hex(0xFFE9C2)));
}

void paintEyes(easel &head)
{
    const shape lid = curve({at(12, 20), at(12, 20), at(16, 3), at(36, -2), at(50, 9), at(50, 9),
                             at(42, 24), at(24, 26)});
    head.fillBoth(lid, flat(hex(0x1B0A10)));
    const point pupil = at(31, 12);
    head.fillBoth(
        circle(pupil, 19 * pixel / 2),
        radial(at(31, 16), {{0, hex(0xF4B942)}, {80, hex(0xB5651D)}, {170, hex(0x3B1410)}}));
    head.fillBoth(circle(pupil, 6 * pixel), flat(hex(0x030204)));
    for (const qint32 side : {-1, 1}) {
        head.fill(circle(at(side * 31 + 4, 8), 3 * pixel), flat(hex(0xFFFFFF)));
        head.fill(circle(at(side * 31 - 4, 17), 3 * pixel / 2), flat(hex(0xFFE9B8)));
    }
}

void paintMuzzle(easel &head)
{
    const shape nose = curve(symmetric({at(0, 48), at(9, 48), at(14, 52), at(8, 60), at(0, 66)}));
    head.fill(nose, linear(at(0, 47), at(0, 64), {{0, hex(0x3E3038)}, {256, hex(0x050305)}}));
    head.fill(curve({at(-6, 51), at(0, 49), at(5, 51), at(0, 53)}), flat(hex(0xB9A7B0)));
    const shape mouth = curve({at(0, 63), at(0, 63), at(2, 71), at(14, 69), at(19, 63), at(19, 63),
                               at(14, 72), at(1, 73), at(0, 70), at(0, 70)});
    head.fillBoth(mouth, flat(hex(0x4A1A1C)));
    for (qint32 i = 0; i < 3; ++i) {
        const point root = at(24, 54 + 2 * i);
        head.fillBoth(curve({root, root, at(46, 54 + 5 * i), at(70, 62 + 8 * i), at(70, 62 + 8 * i),
                             at(46, 55 + 5 * i)}),
                      flat(hex(0x8A4A2E)));
    }
}

void paintJewel(easel &head)
{
    head.fill(star(8, 9 * pixel, 13 * pixel), flat(outlineTint));
    head.fill(star(8, 8 * pixel, 11 * pixel),
              radial({}, {{0, hex(0xFFF4C0)}, {180, hex(0xE2A32C)}}));
    head.fill(circle({}, 7 * pixel), flat(hex(0x0B2C3A)));
    head.fill(circle({}, 6 * pixel),
              radial({-20, -24}, {{0, hex(0xD6FFF4)}, {50, hex(0x4FD6C4)}, {120, hex(0x0E7C8A)}}));
    head.fill(star(8, 3 * pixel / 2, 4 * pixel), flat(hex(0xFFFFFF)));
    head.fill(circle({}, pixel), flat(hex(0xF58A2E)));
}

} // namespace

void artwork::paintFoxHead(canvas &picture, point centre)
{
    easel head(picture, centre);
    paintEars(head);
    paintFace(head);
    paintEyes(head);
    paintMuzzle(head);
    paintJewel(head);
}
