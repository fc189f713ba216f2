// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/flatFields.h"

#include "tools/artwork/fixedPoint.h"

#include <array>
#include <cstddef>

using namespace artwork;

namespace
{

constexpr colour night = hex(0x1D1B3A);
constexpr colour petrol = hex(0x14555F);
constexpr colour turquoise = hex(0x45B8AC);
constexpr colour cream = hex(0xF7E9CC);
constexpr colour sand = hex(0xEBC37F);
constexpr colour ochre = hex(0xE59A33);
constexpr colour rust = hex(0xC9512B);
constexpr colour wine = hex(0x7B1E3A);

constexpr point centre = at(fieldSide / 2, fieldSide / 2);

shape box(qint32 left, qint32 top, qint32 right, qint32 bottom)
{
    return rectangle(at(left, top), at(right, bottom));
}

/// The letter C: a ring that is open to the right.
shape openRing()
{
    constexpr qint32 from = fullTurn * 3 / 8;
    constexpr qint32 steps = 96;
    constexpr qint32 sweep = fullTurn * 3 / 4;
    contour line;
    for (qint32 i = 0; i <= steps; ++i)
        line.push_back(polar(from + i * sweep / steps, 38 * pixel));
    for (qint32 i = steps; i >= 0; --i)
        line.push_back(polar(from + i * sweep / steps, 21 * pixel));
    return moved({line}, at(68, 64));
}

/// The strokes of a letter, which may overlap.
std::vector<shape> strokesOf(char letter)
{
    switch (letter) {
    case 'F':
        return {box(38, 27, 56, 101), box(38, 27, 94, 44), box(38, 56, 84, 72)};
    case 'E':
        return {box(38, 27, 56, 101), box(38, 27, 92, 44), box(38, 56, 84, 72),
                box(38, 84, 92, 101)};
    case 'N':
        return {box(30, 27, 48, 101),
                box(80, 27, 98, 101),
                {{at(30, 27), at(50, 27), at(98, 101), at(78, 101)}}};
    case 'I':
        return {box(55, 27, 73, 101), box(40, 27, 88, 42), box(40, 86, 88, 101)};
    case 'C':
        return {openRing()};
    default:
        return {box(34, 27, 52, 101),
                {{at(76, 27), at(98, 27), at(64, 68), at(48, 68)}},
                {{at(58, 56), at(72, 50), at(100, 101), at(79, 101)}}};
    }
}

void paintLetter(easel &field, char letter, const colour &tint, const colour &shadow)
{
    constexpr qint32 depth = 6;
    const std::vector<shape> strokes = strokesOf(letter);
    for (qint32 i = depth; i > 0; --i) {
        for (const shape &stroke : strokes)
            field.fill(moved(stroke, at(i, i)), flat(shadow));
    }
    for (const shape &stroke : strokes)
        field.fill(stroke, flat(tint));
}

/// Quarter rings around a corner of the field.
void paintRainbow(easel &field, point corner)
{
    const colour tints[] = {ochre, rust, turquoise, petrol};
    qint32 radius = 112;
    for (const colour &tint : tints) {
        contour line = {corner};
        constexpr qint32 steps = 64;
        const qint32 from = corner.x == 0 ? fullTurn / 4 : fullTurn / 2;
        for (qint32 i = 0; i <= steps; ++i) {
            const point p = polar(from + i * fullTurn / 4 / steps, radius * pixel);
            line.push_back({corner.x + p.x, corner.y + p.y});
        }
        field.fill({line}, flat(tint));
        radius -= 26;
    }
}

void paintBars(easel &field, const colour &tint)
{
    for (qint32 y = 0; y < fieldSide; y += 16)
        field.fill(box(0, y, fieldSide, y + 8), flat(tint));
}

void paintSunburst(easel &field, const colour &tint)
{
    for (qint32 i = 0; i < 16; ++i) {
        const qint32 angle = i * fullTurn / 16;
        const shape ray = {
            {{}, polar(angle, 45 * pixel), polar(angle + fullTurn / 32, 45 * pixel)}};
        field.fill(moved(ray, centre), flat(tint));
    }
    field.fill(ring(centre, 52 * pixel, 58 * pixel), flat(tint));
}

void paintScales(easel &field)
{
    for (qint32 row = 0; row < 4; ++row) {
        for (qint32 column = 0; column < 4; ++column) {
            const point top = at(16 + 32 * column, 32 * row);
            const shape scale = {{{top.x - 16 * pixel, top.y},
                                  {top.x, top.y + 32 * pixel},
                                  {top.x + 16 * pixel, top.y}}};
            field.fill(scale, flat((row + column) % 2 == 0 ? turquoise : cream));
        }
    }
}

void paintFoxEmblem(easel &field)
{
    field.fill(circle(centre, 56 * pixel), flat(sand));
    const auto both = [&field](const contour &right, const colour &tint) {
        contour left = right;
        for (point &p : left)
            p.x = 2 * centre.x - p.x;
        field.fill({right}, flat(tint));
        field.fill({left}, flat(tint));
    };
    both({at(64, 52), at(104, 18), at(102, 66), at(80, 74)}, rust);
    both({at(80, 54), at(98, 32), at(97, 60), at(84, 64)}, wine);
    both({at(64, 48), at(84, 52), at(106, 82), at(64, 112)}, ochre);
    both({at(64, 84), at(80, 72), at(106, 82), at(64, 112)}, cream);
    field.fill({{at(64, 112), at(56, 102), at(60, 98), at(68, 98), at(72, 102)}}, flat(night));
    field.fill(circle(at(50, 74), 5 * pixel), flat(night));
    field.fill(circle(at(78, 74), 5 * pixel), flat(night));
}

} // namespace

void artwork::paintFlatField(easel &field, int number)
{
    struct design {
        char letter;
        colour ground;
        colour tint;
        colour shadow;
    };
    constexpr std::array<design, 8> designs = {{{'F', night, cream, wine},
                                                {'E', sand, night, cream},
                                                {'N', rust, cream, night},
                                                {'N', petrol, sand, night},
                                                {'I', wine, cream, night},
                                                {'C', ochre, night, cream},
                                                {'K', turquoise, cream, night},
                                                {' ', wine, cream, night}}};
    const design &plan = designs[static_cast<std::size_t>(number)];
    field.fill(box(0, 0, fieldSide, fieldSide), flat(plan.ground));
    switch (number) {
    case 0:
        paintRainbow(field, at(0, 0));
        break;
    case 1:
        paintBars(field, ochre);
        break;
    case 2:
        paintSunburst(field, ochre);
        break;
    case 3:
        paintScales(field);
        break;
    case 4:
        paintRainbow(field, at(fieldSide, 0));
        break;
    case 5:
        paintSunburst(field, sand);
        break;
    case 6:
        paintBars(field, petrol);
        break;
    default:
        paintFoxEmblem(field);
    }
    if (plan.letter != ' ')
        paintLetter(field, plan.letter, plan.tint, plan.shadow);
}
