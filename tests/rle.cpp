// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/rle.h"

rle::rle() : codecTest(6) {}

void rle::run()
{
    if (hasFailed())
        return;
    const std::size_t packedLength = encode(packed.data(), source.data(), source.getCount(), 0);
    decode(unpacked.data(), packed.data(), packedLength, 0);
}

std::size_t rle::encode(quint32 *out, const quint32 *in, std::size_t length, quint32 marker)
{
    std::size_t i = 0;
    std::size_t o = 0;
    while (i < length) {
        const quint32 word = in[i];
        if (word == marker) {
            out[o++] = marker;
            out[o++] = 1;
            out[o++] = marker;
            ++i;
            continue;
        }
        std::size_t run = 1;
        while (i + run < length && in[i + run] == word)
            ++run;
        if (run < 3) {
            out[o++] = word;
            ++i;
            continue;
        }
        out[o++] = marker;
        out[o++] = static_cast<quint32>(run - 1);
        out[o++] = word;
        i += run;
    }
    return o;
}

void rle::decode(quint32 *out, const quint32 *in, std::size_t length, quint32 marker)
{
    std::size_t o = 0;
    for (std::size_t i = 0; i < length;) {
        if (in[i] != marker || i + 2 >= length) {
            out[o++] = in[i++];
            continue;
        }
        const quint32 run = in[i + 1] + 1;
        for (quint32 k = 0; k < run; ++k)
            out[o++] = in[i + 2];
        i += 3;
    }
}
