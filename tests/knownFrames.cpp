// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/knownFrames.h"

#include <QCryptographicHash>
#include <QtEndian>

#include <algorithm>
#include <array>

const std::vector<knownFrame> &knownFrames()
{
    // The multi-core chunks of crc32 overlap with words that other threads write, and the copies of
    // vertex share one scale: with several threads, their frames are left to chance.
    static const std::vector<knownFrame> frames = {
        {"rotozoom 'dithered'", 321, 241, 4, "7280e033bac03c482d02215969c125d9b4b00a0e"},
        {"rotozoom 'dithered'", 640, 480, 6, "072e7194d42acc863d5a8e9f8150233ce1f1efba"},
        {"rotozoom 'dithered'", 3820, 2160, 2, "0a1a0e4417077c46af621821ac940fc47d3770ce"},
        {"rotozoom 'linear'", 321, 241, 4, "2778bf279a54b59eb36b22d73f5fa0a69788053d"},
        {"rotozoom 'linear'", 640, 480, 6, "feb916093a56e96aeb32e44c937b889cdad3ed24"},
        {"rotozoom 'linear'", 3820, 2160, 2, "a43ba43092971db60b4dceb313cda626c1f842f3"},
        {"rotozoom 'linear (multicore)'", 321, 241, 4, "2778bf279a54b59eb36b22d73f5fa0a69788053d"},
        {"rotozoom 'linear (multicore)'", 640, 480, 6, "feb916093a56e96aeb32e44c937b889cdad3ed24"},
        {"rotozoom 'linear (multicore)'", 3820, 2160, 2,
         "a43ba43092971db60b4dceb313cda626c1f842f3"},
        {"rotozoom 'last pixel'", 321, 241, 4, "de2e2aebb601eb75da59b3fb248e63547ba7adaf"},
        {"rotozoom 'last pixel'", 640, 480, 6, "28ab02b55db465e7532b8931652f39aef45f7507"},
        {"rotozoom 'last pixel'", 3820, 2160, 2, "4cdbec9345d569c9df9600031552d04b7277d67f"},
        {"rotozoom 'last pixel (multicore)'", 321, 241, 4,
         "de2e2aebb601eb75da59b3fb248e63547ba7adaf"},
        {"rotozoom 'last pixel (multicore)'", 640, 480, 6,
         "28ab02b55db465e7532b8931652f39aef45f7507"},
        {"rotozoom 'last pixel (multicore)'", 3820, 2160, 2,
         "4cdbec9345d569c9df9600031552d04b7277d67f"},
        {"mandel", 321, 241, 4, "fd9a3ed4af2438561ff73fe5cef36fd36ed9393e"},
        {"mandel", 640, 480, 6, "3b419ddf9bdd483b6a6a822730ea1b988192e33b"},
        {"mandel", 3820, 2160, 2, "01d8ddeebcce3ade8440c1658d4146b94ed23da3"},
        {"mandel (multicore)", 321, 241, 4, "fd9a3ed4af2438561ff73fe5cef36fd36ed9393e"},
        {"mandel (multicore)", 640, 480, 6, "3b419ddf9bdd483b6a6a822730ea1b988192e33b"},
        {"mandel (multicore)", 3820, 2160, 2, "01d8ddeebcce3ade8440c1658d4146b94ed23da3"},
        {"lines", 321, 241, 4, "7659f80109abb32fe36321c125c2789a3d607ab2"},
        {"lines", 640, 480, 6, "c183ce1d4543889e57bfc7d9cd2ed2614beb8e6e"},
        {"lines", 3820, 2160, 2, "c98a472fd7ede224b1a1a6a40b617a20803d0568"},
        {"motion blur", 321, 241, 4, "f4dce202dfb5e09afa3f9d693c717698ef6742dd"},
        {"motion blur", 640, 480, 6, "e8175886699311594a2ac59fa8b21ec79ca6cc5e"},
        {"motion blur", 3820, 2160, 2, "55b4b330f5900a371ecef9ada49622ec672cbc07"},
        {"shellsort", 321, 241, 4, "f929e706acdf7e56ba641df06633dcbae66f94e8"},
        {"shellsort", 640, 480, 6, "0a2731b956e5d3e7c4985820c769c0f10c7b458b"},
        {"shellsort", 3820, 2160, 2, "b6e820f1f7f0a90be42a6838bccbdc2ff37cfb5c"},
        {"rle compress/uncompress", 321, 241, 4, "f0cc1bd916ea5c5dd747b4affba6857cdb238446"},
        {"rle compress/uncompress", 640, 480, 6, "c1171b034afe9ba20399948cb5b4631c94f19378"},
        {"rle compress/uncompress", 3820, 2160, 2, "0637e6e320605ff0579be194b08dba1b371bfbfc"},
        {"zlib uncompress", 321, 241, 4, "f0cc1bd916ea5c5dd747b4affba6857cdb238446"},
        {"zlib uncompress", 640, 480, 6, "c1171b034afe9ba20399948cb5b4631c94f19378"},
        {"zlib uncompress", 3820, 2160, 2, "e8238aefaa87a4908d6c82a05c921f428c4962a1"},
        {"colors ", 321, 241, 4, "b65643801e2994550e97eddbf44bcfd579bc2254"},
        {"colors ", 640, 480, 6, "df7b70ab8506e3116fc22ee77f534eafe4aca8b9"},
        {"colors ", 3820, 2160, 2, "0aede570fe44d7af6dd3a4659b50296fa8fcfa3e"},
        {"colors  (multicore)", 321, 241, 4, "b65643801e2994550e97eddbf44bcfd579bc2254"},
        {"colors  (multicore)", 640, 480, 6, "df7b70ab8506e3116fc22ee77f534eafe4aca8b9"},
        {"colors  (multicore)", 3820, 2160, 2, "0aede570fe44d7af6dd3a4659b50296fa8fcfa3e"},
        {"crc32 bitwise", 321, 241, 4, "410c7121d0e87d2a6800f320bc8508043fddc539", 1},
        {"crc32 bitwise", 321, 241, 4, "ceb9aeff5e1e8dc5675c064e0a5f216b97e3fab4", 2},
        {"crc32 bitwise", 640, 480, 6, "a5993ef8ffcc68f20f63f37e11ec83adaeb4ff2f", 1},
        {"crc32 bitwise", 640, 480, 6, "ff0ccd91a053cc2ca133003be282fe8b515af9b4", 2},
        {"crc32 bitwise", 3820, 2160, 2, "42c86bbafedcb4957ac884cac7b5d6ee48cc429d", 1},
        {"crc32 bitwise", 3820, 2160, 2, "52a2701ffa730956f29e8ce0da69b9d122a9cc1d", 2},
        {"crc32 bitwise (multicore)", 321, 241, 4, "410c7121d0e87d2a6800f320bc8508043fddc539", 1},
        {"crc32 bitwise (multicore)", 640, 480, 6, "a5993ef8ffcc68f20f63f37e11ec83adaeb4ff2f", 1},
        {"crc32 bitwise (multicore)", 3820, 2160, 2, "42c86bbafedcb4957ac884cac7b5d6ee48cc429d", 1},
        {"vertex", 321, 241, 4, "1ea5580ab372fc673ed3966d75a17dc328ecb0f5"},
        {"vertex", 640, 480, 6, "52ebf40d4e23102eaf781865a885839587c7433e"},
        {"vertex", 3820, 2160, 2, "0c06ea089d8f3afe7e9829b2febd0e80bc41ba0d"},
        {"vertex (multicore)", 321, 241, 4, "1ea5580ab372fc673ed3966d75a17dc328ecb0f5", 1},
        {"vertex (multicore)", 640, 480, 6, "52ebf40d4e23102eaf781865a885839587c7433e", 1},
        {"vertex (multicore)", 3820, 2160, 2, "0c06ea089d8f3afe7e9829b2febd0e80bc41ba0d", 1},
        {"rotozoom 'no'", 321, 241, 4, "d80305b80071926e57e60758791e1643aeb08c03"},
        {"rotozoom 'no'", 640, 480, 6, "9ee3ba4b4b9de07abeaf700e69fb78b294657585"},
        {"rotozoom 'no'", 3820, 2160, 2, "62c9088a605393acc4dd9bc37e415b56dbb92930"},
    };
    return frames;
}

QByteArray digestOf(const quint32 *pixels, std::size_t count)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    std::array<quint32, 4096> block = {};
    for (std::size_t done = 0; done < count;) {
        const std::size_t size = std::min(block.size(), count - done);
        std::transform(pixels + done, pixels + done + size, block.begin(),
                       [](quint32 pixel) { return qToLittleEndian(pixel); });
        hash.addData(reinterpret_cast<const char *>(block.data()),
                     static_cast<int>(size * sizeof(quint32)));
        done += size;
    }
    return hash.result().toHex();
}

QByteArray digestOf(const testBase &test)
{
    return digestOf(test.getBuffer(), static_cast<std::size_t>(test.getWidth())
                                          * static_cast<std::size_t>(test.getHeight()));
}
