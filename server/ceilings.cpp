// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/ceilings.h"

// One core: some fifty times what a core of 2019 at 2.25 GHz does. All cores: a thousand times
// that.
const QMap<QString, float> &resultCeilings()
{
    static const QMap<QString, float> ceilings = {
        {QStringLiteral("rotozoom 'dithered'"), 5e4F},
        {QStringLiteral("rotozoom 'linear'"), 1e4F},
        {QStringLiteral("rotozoom 'linear (multicore)'"), 1e7F},
        {QStringLiteral("rotozoom 'last pixel'"), 2e4F},
        {QStringLiteral("rotozoom 'last pixel (multicore)'"), 2e7F},
        {QStringLiteral("mandel"), 1e3F},
        {QStringLiteral("mandel (multicore)"), 1e6F},
        {QStringLiteral("lines"), 2e4F},
        {QStringLiteral("motion blur"), 1e4F},
        {QStringLiteral("shellsort"), 2e2F},
        {QStringLiteral("rle compress/uncompress"), 5e4F},
        {QStringLiteral("zlib uncompress"), 1e4F},
        {QStringLiteral("colors "), 1e4F},
        {QStringLiteral("colors  (multicore)"), 1e7F},
        {QStringLiteral("crc32 bitwise"), 2e3F},
        {QStringLiteral("crc32 bitwise (multicore)"), 2e6F},
        {QStringLiteral("vertex"), 1e4F},
        {QStringLiteral("vertex (multicore)"), 1e7F},
    };
    return ceilings;
}
