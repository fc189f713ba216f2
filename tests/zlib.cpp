// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/zlib.h"

#include <QByteArray>

#include <algorithm>

#ifndef QT_NO_DEBUG
#error "measured work is compiled without assertions: there is one for each byte that is copied"
#endif

zlib::zlib() : codecTest(4) {}

void zlib::preRun()
{
    codecTest::preRun();
    if (hasFailed())
        return;
    const QByteArray plain(reinterpret_cast<const char *>(source.data()),
                           static_cast<int>(source.getCount() * sizeof(quint32)));
    const QByteArray compressed = qCompress(plain, 1);
    if (compressed.isEmpty())
        fail();
    std::copy(compressed.begin(), compressed.end(), reinterpret_cast<char *>(packed.data()));
}

void zlib::run()
{
    if (hasFailed())
        return;
    // Always half as long as the source, with the filler that follows the stream: reading past its
    // end belongs to the work.
    const QByteArray input(reinterpret_cast<const char *>(packed.data()),
                           static_cast<int>(2 * source.getCount()));
    if (unpack(reinterpret_cast<char *>(unpacked.data()), input) == 0)
        fail();
}

int zlib::unpack(char *out, const QByteArray &packedBytes)
{
    const QByteArray plain = qUncompress(packedBytes);
    // This stays a copy byte by byte, because the bytes could lie on the array's own pointer.
    for (int i = 0; i < plain.size(); ++i)
        out[i] = plain.at(i);
    return plain.size();
}
