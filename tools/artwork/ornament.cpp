// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/ornament.h"

#include "tools/artwork/canvas.h"
#include "tools/artwork/fixedPoint.h"
#include "tools/artwork/foxHead.h"
#include "tools/artwork/palette.h"

#include <array>
#include <cstddef>
#include <utility>

using namespace artwork;

namespace
{

constexpr qint32 side = 512;
constexpr point middle = at(side / 2, side / 2);
constexpr colour ink = hex(0x020106);

shape placed(const shape &part, qint32 angle, point centre)
{
    return moved(turned(part, angle), centre);
}

/// A night sky, brightest in the middle of the tile and darkest between the ornaments.
void paintNight(canvas &picture)
{
    const gradient sky = {
        {-512, hex(0x030209)}, {-200, hex(0x0B0722)}, {256, hex(0x241046)}, {512, hex(0x4A1A5E)}};
    picture.fillAll([sky](point p, colour) {
        constexpr qint32 period = side * pixel / fullTurn;
        const qint32 waves = cosine((p.x - middle.x) / period) + cosine((p.y - middle.y) / period);
        return colourAt(sky, waves / 64);
    });
}

/// A wreath of petals with a light and a shaded half, with @p tints from base to tip.
void paintWreath(canvas &picture, point centre, qint32 count, qint32 firstAngle, const shape &leaf,
                 const gradient &tints)
{
    const auto half = [&leaf](bool right) {
        contour line;
        for (const point &p : leaf.front()) {
            if (right ? p.x >= 0 : p.x <= 0)
                line.push_back(p);
        }
        return shape{line};
    };
    gradient shaded = tints;
    for (auto &[position, tint] : shaded)
        tint = mix(tint, ink, 90);
    for (qint32 i = 0; i < count; ++i) {
        const qint32 angle = firstAngle + i * fullTurn / count;
        picture.stroke(placed(leaf, angle, centre), 3 * pixel, flat(ink));
        picture.fill(placed(half(false), angle, centre), radial(centre, tints));
        picture.fill(placed(half(true), angle, centre), radial(centre, shaded));
    }
}

void paintOuterPetals(canvas &picture)
{
    const qint32 half = fullTurn / 32;
    paintWreath(picture, middle, 16, half, petal(120 * pixel, 252 * pixel, 26 * pixel, 55),
                {{150 * pixel, hex(0x0A2A4A)},
                 {205 * pixel, hex(0x12788A)},
                 {235 * pixel, hex(0x52D3C0)},
                 {252 * pixel, hex(0xE4FFF0)}});
    paintWreath(picture, middle, 16, 0, petal(120 * pixel, 222 * pixel, 27 * pixel, 52),
                {{132 * pixel, hex(0x3C0A22)},
                 {170 * pixel, hex(0xB3202E)},
                 {200 * pixel, hex(0xF2762E)},
                 {222 * pixel, hex(0xFFE28A)}});
    paintWreath(
        picture, middle, 16, 0, petal(128 * pixel, 190 * pixel, 11 * pixel, 50),
        {{140 * pixel, hex(0xFFB347)}, {170 * pixel, hex(0xFFE6A0)}, {190 * pixel, hex(0xFFFFF2)}});
    paintWreath(
        picture, middle, 16, half, petal(120 * pixel, 176 * pixel, 16 * pixel, 45),
        {{132 * pixel, hex(0x1C0A3A)}, {155 * pixel, hex(0x5B2A86)}, {176 * pixel, hex(0xC98BD8)}});
}

void paintBeads(canvas &picture, point centre, qint32 count, qint32 radius, qint32 size)
{
    for (qint32 i = 0; i < count; ++i) {
        const point offset = polar(i * fullTurn / count, radius);
        const point at = {centre.x + offset.x, centre.y + offset.y};
        const point light = {at.x - size / 3, at.y - size / 3};
        picture.fill(circle(at, size + pixel), flat(ink));
        picture.fill(circle(at, size), radial(light, {{0, hex(0xFFFDF0)},
                                                      {size / 2, hex(0xF4C152)},
                                                      {size * 4 / 3, hex(0x7A3412)}}));
    }
}

/// The disk behind the fox: rays in a sky at dusk, framed by a ring of gold and beads.
void paintDisk(canvas &picture)
{
    picture.fill(circle(middle, 139 * pixel), flat(ink));
    picture.fill(circle(middle, 137 * pixel), radial(middle, {{123 * pixel, hex(0x6E2C10)},
                                                              {130 * pixel, hex(0x8E3A16)},
                                                              {137 * pixel, hex(0x4A1A10)}}));
    paintBeads(picture, middle, 64, 131 * pixel, 7 * pixel / 2);
    picture.fill(circle(middle, 125 * pixel), flat(hex(0xF6C65A)));
    picture.fill(circle(middle, 122 * pixel), flat(ink));
    picture.fill(circle(middle, 120 * pixel), radial(middle, {{0, hex(0x9FF0E0)},
                                                              {60 * pixel, hex(0x2FA7B0)},
                                                              {95 * pixel, hex(0x155A80)},
                                                              {120 * pixel, hex(0x0C2048)}}));
    for (qint32 i = 0; i < 24; ++i) {
        const shape ray = {
            {{0, 0}, polar(-fullTurn / 96, 120 * pixel), polar(fullTurn / 96, 120 * pixel)}};
        picture.fill(placed(ray, i * fullTurn / 24, middle), [](point p, colour below) {
            const qint64 faded = distance(p, middle) * 100 / (120 * pixel);
            return mix(below, hex(0xFFF2B8), 110 - faded);
        });
    }
}

/// Moon and petals where four tiles meet.
void paintCorner(canvas &picture)
{
    const point corner = {};
    paintWreath(
        picture, corner, 16, fullTurn / 32, petal(40 * pixel, 108 * pixel, 13 * pixel, 60),
        {{50 * pixel, hex(0x16083A)}, {80 * pixel, hex(0x4B3FA8)}, {108 * pixel, hex(0xB9C6FF)}});
    paintWreath(
        picture, corner, 16, 0, petal(40 * pixel, 92 * pixel, 14 * pixel, 55),
        {{46 * pixel, hex(0x4A0A3C)}, {70 * pixel, hex(0xC23A78)}, {92 * pixel, hex(0xFFD0C8)}});
    picture.fill(circle(corner, 54 * pixel), flat(ink));
    picture.fill(circle(corner, 52 * pixel), flat(hex(0xF6C65A)));
    picture.fill(circle(corner, 49 * pixel), flat(ink));
    picture.fill(circle(corner, 47 * pixel),
                 radial(corner, {{0, hex(0x2C3C8C)}, {47 * pixel, hex(0x0A0C30)}}));
    picture.fill(circle(corner, 45 * pixel), glow(at(-6, 0), 45 * pixel, hex(0xFFF0C0), 150));
    picture.fill(
        circle(at(-4, 0), 30 * pixel),
        radial(at(-20, -12),
               {{0, hex(0xFFFFFF)}, {20 * pixel, hex(0xFFF3CE)}, {52 * pixel, hex(0xE7B04C)}}));
    picture.fill(circle(at(9, -3), 25 * pixel),
                 radial(corner, {{0, hex(0x223078)}, {47 * pixel, hex(0x0C0F38)}}));
    for (const auto &[place, size] :
         {std::pair(at(11, -6), 11 * pixel), std::pair(at(25, 7), 6 * pixel),
          std::pair(at(7, 15), 5 * pixel)})
        picture.fill(moved(star(4, size / 4, size), place), flat(hex(0xFFF6D8)));
}

/// A jewel where two tiles touch.
void paintEdge(canvas &picture, point centre)
{
    picture.fill(moved(star(8, 13 * pixel, 23 * pixel), centre), flat(ink));
    picture.fill(moved(star(8, 12 * pixel, 20 * pixel), centre),
                 radial(centre, {{6 * pixel, hex(0xFFF6C8)}, {20 * pixel, hex(0xE28A1C)}}));
    picture.fill(circle(centre, 10 * pixel), flat(ink));
    picture.fill(circle(centre, 8 * pixel),
                 radial({centre.x - 40, centre.y - 40},
                        {{0, hex(0xFFE0E0)}, {70, hex(0xE8344A)}, {180, hex(0x5A0A22)}}));
}

void paintStars(canvas &picture)
{
    constexpr std::array<point, 5> places = {
        {{150, 30}, {98, 66}, {176, 58}, {128, 20}, {150, 78}}};
    for (std::size_t i = 0; i < places.size(); ++i) {
        for (const point place : {places[i], point{places[i].y, places[i].x}}) {
            for (const qint32 x : {place.x, -place.x}) {
                for (const qint32 y : {place.y, -place.y}) {
                    const qint32 size = i < 3 ? 5 * pixel : 3 * pixel;
                    const point centre = at(x, y);
                    picture.fill(circle(centre, 2 * size),
                                 glow(centre, 2 * size, hex(0xBFD0FF), 120));
                    picture.fill(moved(star(4, size / 4, size), centre), flat(hex(0xFFFFFF)));
                }
            }
        }
    }
}

} // namespace

QImage artwork::ornamentPicture()
{
    canvas picture(side);
    paintNight(picture);
    paintStars(picture);
    paintOuterPetals(picture);
    paintDisk(picture);
    paintFoxHead(picture, middle);
    paintCorner(picture);
    paintEdge(picture, at(side / 2, 0));
    paintEdge(picture, at(0, side / 2));
    return reducedToPalette(picture.toImage());
}
