// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/texturedFields.h"

#include "tools/artwork/fixedPoint.h"
#include "tools/artwork/flatFields.h"
#include "tools/artwork/noise.h"

#include <algorithm>
#include <cstdlib>

using namespace artwork;

namespace
{

constexpr qint32 edge = fieldSide * pixel;
constexpr point centre = {edge / 2, edge / 2};
const shape whole = rectangle({0, 0}, {edge, edge});

/// A wave from -256 to 256 that repeats every @p period units.
qint32 ripple(qint64 position, qint32 period)
{
    return sine(static_cast<qint32>(floorQuotient(position * fullTurn, period))) / 64;
}

/// A dune with its crest at @p height and wind ripples across it.
void paintDune(easel &field, qint32 height, qint32 phase, const colour &lit, const colour &dark)
{
    contour crest = {{edge, edge}, {0, edge}};
    for (qint32 x = 0; x <= edge; x += pixel)
        crest.push_back({x, height + ripple(x + phase, edge * 5 / 4) * pixel * 9 / 256
                                + ripple(x * 2 + phase, edge) * pixel * 3 / 256});
    field.fill({crest}, [=](point p, colour) {
        const qint32 bend = cloudNoise(p, 30 * pixel, 11) / 8 + p.x / 3;
        const qint32 depth = (p.y - height) * 256 / (50 * pixel);
        const qint32 wind = ripple(p.y + bend, 5 * pixel) / 5;
        return mix(lit, dark, depth + wind + ripple(p.x + phase, edge) / 6);
    });
}

void paintDunes(easel &field)
{
    field.fill(whole, linear({0, 0}, {0, edge * 2 / 3},
                             {{0, hex(0x3B2A63)}, {110, hex(0xC24B5A)}, {256, hex(0xFFC873)}}));
    field.fill(circle(at(78, 46), 46 * pixel), glow(at(78, 46), 46 * pixel, hex(0xFFF1B0), 200));
    field.fill(circle(at(78, 46), 17 * pixel),
               linear(at(0, 29), at(0, 63), {{0, hex(0xFFF8D8)}, {256, hex(0xFFB24A)}}));
    paintDune(field, 66 * pixel, 300, hex(0xE58A4E), hex(0x8A3348));
    paintDune(field, 82 * pixel, 1500, hex(0xF6B45A), hex(0x94402E));
    paintDune(field, 102 * pixel, 900, hex(0xFFD98C), hex(0x8A4A20));
}

void paintNightSky(easel &field)
{
    field.fill(whole, [](point p, colour) {
        const qint32 river = std::abs(p.x - p.y + cloudNoise(p, 40 * pixel, 5) * 2 - 1024);
        const qint32 cloud = cloudNoise(p, 26 * pixel, 17);
        const colour sky = mix(hex(0x070A24), hex(0x16305C), p.y * 256 / edge);
        const colour mist = mix(hex(0x6A3F9C), hex(0xF4B6C8), (cloud - 380) / 2);
        return mix(sky, mist, (1100 - river) * cloud / 3400);
    });
    for (qint32 i = 0; i < 90; ++i) {
        const auto place = [i](quint32 seed) {
            return static_cast<qint32>(placeHash(i, 0, seed)) % edge;
        };
        const qint32 size = i % 9 == 0 ? 5 * pixel : pixel * (1 + i % 2);
        field.fill(moved(star(4, size / 3, size), {place(1), place(2)}), flat(hex(0xFFFBEA)));
    }
    contour hills = {{edge, edge}, {0, edge}};
    for (qint32 x = 0; x <= edge; x += pixel)
        hills.push_back({x, 106 * pixel + ripple(x + 400, edge) * pixel * 8 / 256});
    field.fill({hills}, [](point p, colour) {
        return mix(hex(0x2A2350), hex(0x0B0A1E), (p.y - 100 * pixel) * 256 / (28 * pixel));
    });
}

void paintCarpet(easel &field)
{
    field.fill(whole, [](point p, colour) {
        const qint32 x = std::abs(p.x - centre.x) / pixel;
        const qint32 y = std::abs(p.y - centre.y) / pixel;
        const colour tints[] = {hex(0xF2E2BE), hex(0xB5332E), hex(0x1F3F66), hex(0xD98E2B),
                                hex(0x3C1220), hex(0x2F7F79), hex(0xD98E2B), hex(0xB5332E)};
        const qint32 steps = x / 4 * 4 + y / 3 * 3;
        const qint32 border = std::max(x, y);
        const colour knot = border > 56   ? tints[border / 2 % 2 == 0 ? 4 : 0]
                            : border > 50 ? tints[(x + y) / 4 % 2 == 0 ? 1 : 3]
                                          : tints[steps / 9 % 8];
        const qint32 thread = (p.y / pixel % 2 == 0 ? 30 : 0) + (p.x / pixel % 3 == 0 ? 34 : 0);
        return mix(knot, hex(0x1A0A12), thread + cloudNoise(p, 12 * pixel, 23) / 12);
    });
}

void paintFur(easel &field)
{
    field.fill(whole, [](point p, colour) {
        const qint32 sway = ripple(p.y, 3 * edge) * 2 + cloudNoise(p, 60 * pixel, 31) / 3;
        const point strand = {(p.x + sway) * 6, p.y};
        const qint32 streak = cloudNoise(strand, 34 * pixel, 37);
        const gradient coat = {{0, hex(0x8A3A16)},
                               {300, hex(0xD8752A)},
                               {620, hex(0xF7B25C)},
                               {860, hex(0xFFE7C0)},
                               {1024, hex(0xFFFDF4)}};
        const qint32 light = streak * 3 / 4 + p.y * 600 / edge - 140;
        return colourAt(coat, light);
    });
}

void paintAgate(easel &field)
{
    field.fill(whole, [](point p, colour) {
        const qint64 away = distance(p, at(80, 54));
        const qint64 bent = away + cloudNoise(p, 44 * pixel, 41) * 3 / 2;
        const gradient bands = {
            {0, hex(0xF6F0FF)},    {500, hex(0xBFE4E4)},  {800, hex(0x3FA7A4)},
            {1000, hex(0x0E5A66)}, {1200, hex(0xF7DFA8)}, {1450, hex(0xE0913A)},
            {1750, hex(0x9A2F2C)}, {2000, hex(0x4A1233)}, {2400, hex(0x170A20)}};
        return mix(colourAt(bands, bent), hex(0xFFFFFF), ripple(bent, 90) / 5);
    });
}

void paintCanyon(easel &field)
{
    field.fill(whole, [](point p, colour) {
        const qint32 warp = cloudNoise({p.x / 2, p.y * 2}, 50 * pixel, 53) - 512;
        const qint32 layer = p.y + warp / 2 + ripple(p.x, edge * 3 / 2) * 2 / 3;
        const gradient rock = {{-100, hex(0xF8DDA6)}, {300, hex(0xE8A05A)},  {420, hex(0xB5502C)},
                               {700, hex(0xF0B878)},  {820, hex(0x8E2F2A)},  {1150, hex(0xD9743C)},
                               {1300, hex(0xFBD9A0)}, {1600, hex(0xA83C2E)}, {2100, hex(0x3C1426)}};
        const qint32 grooves = ripple(layer, 130) / 6 + (cloudNoise(p, 10 * pixel, 59) - 512) / 8;
        return mix(colourAt(rock, layer), hex(0x2A0E1A), grooves);
    });
}

void paintWater(easel &field)
{
    field.fill(whole, [](point p, colour) {
        const qint32 swell = smoothNoise({p.x, p.y * 2}, 40 * pixel, 61) / 2;
        const qint32 a = ripple(p.y * 3 + swell * 3 + p.x / 2, 30 * pixel);
        const qint32 b = ripple(p.x + p.y * 2 + smoothNoise(p, 24 * pixel, 67), 22 * pixel);
        const colour depth = mix(hex(0x2FB7B0), hex(0x0A2F55), p.y * 256 / edge);
        const colour lit = mix(depth, hex(0x062038), -(a + b) / 3);
        return mix(lit, hex(0xE9FFF2), std::max(0, a + b - 130) * 2 / 3);
    });
}

void paintHammeredSun(easel &field)
{
    field.fill(whole, [](point p, colour) {
        return mix(hex(0x54143A), hex(0x1B0A2C), cloudNoise(p, 30 * pixel, 71) / 3);
    });
    const auto gold = [](qint32 shade) {
        return [shade](point p, colour) {
            const qint32 dents = smoothNoise({p.x + p.y, p.y - p.x}, 5 * pixel, 73);
            const gradient metal = {{0, hex(0x6A2C0C)},
                                    {90, hex(0xC97A1E)},
                                    {170, hex(0xF8CF6A)},
                                    {256, hex(0xFFFBE0)}};
            return colourAt(metal, dents / 6 + shade + (edge - p.x - p.y) / 24);
        };
    };
    for (qint32 i = 0; i < 16; ++i) {
        const bool isLong = i % 2 == 0;
        const shape ray =
            petal(20 * pixel, (isLong ? 58 : 44) * pixel, (isLong ? 8 : 6) * pixel, 30);
        field.fill(moved(turned(ray, i * fullTurn / 16), centre), gold(isLong ? 70 : 20));
    }
    field.fill(circle(centre, 31 * pixel), flat(hex(0x3A0E1E)));
    field.fill(circle(centre, 29 * pixel), gold(60));
    field.fill(ring(centre, 19 * pixel, 23 * pixel), gold(-40));
    field.fill(moved(star(8, 8 * pixel, 16 * pixel), centre), gold(-60));
    field.fill(circle(centre, 6 * pixel), gold(120));
}

} // namespace

void artwork::paintTexturedField(easel &field, int number)
{
    using painter = void (*)(easel &);
    constexpr painter painters[] = {paintDunes, paintNightSky, paintCarpet, paintFur,
                                    paintAgate, paintCanyon,   paintWater,  paintHammeredSun};
    painters[number](field);
}
