// SPDX-License-Identifier: GPL-3.0-or-later

// Which step of a round touches its memory for the first time. The page faults of the unpacked
// words belong to the timed run of rle and zlib, in every round alike, whatever the process has
// allocated and freed before. The test is run with a C library that keeps freed blocks, however
// large (MALLOC_MMAP_MAX_=0), where an ordinary buffer gets pages that are in use already.

#include "tests/rle.h"
#include "tests/shellsort.h"
#include "tests/zlib.h"

#include <QtTest>

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace
{

long faults()
{
    rusage used = {};
    getrusage(RUSAGE_THREAD, &used);
    return used.ru_minflt;
}

long pagesOf(std::size_t bytes)
{
    return static_cast<long>(bytes) / sysconf(_SC_PAGESIZE);
}

/// Leaves the C library with blocks whose pages are in use.
void useAndFree(std::size_t bytes)
{
    void *block = std::malloc(bytes);
    if (block)
        std::memset(block, 1, bytes);
    // Between the writing and the freeing, or a compiler leaves both out.
    static void *volatile seen = nullptr;
    seen = block;
    std::free(seen);
}

template <typename workload> std::unique_ptr<testBase> made()
{
    return std::make_unique<workload>();
}

using maker = std::unique_ptr<testBase> (*)();

} // namespace

Q_DECLARE_METATYPE(maker)

class tst_roundMemory : public QObject
{
    Q_OBJECT

private slots:
    void unpackedWordsAreTouchedInTheRun_data();
    void unpackedWordsAreTouchedInTheRun();
    void packedWordsAreTouchedBefore();
    void sortedWordsAreTouchedBefore();
    void zlibCopiesItsInput();
};

void tst_roundMemory::unpackedWordsAreTouchedInTheRun_data()
{
    QTest::addColumn<maker>("make");
    QTest::addColumn<quint32>("words");
    QTest::newRow("rle") << maker(made<rle>) << 6U * 6U * 512U * 512U;
    QTest::newRow("zlib") << maker(made<zlib>) << 4U * 4U * 512U * 512U;
}

void tst_roundMemory::unpackedWordsAreTouchedInTheRun()
{
    QFETCH(maker, make);
    QFETCH(quint32, words);
    const long pages = pagesOf(words * sizeof(quint32));
    const auto test = make();
    QVERIFY(test->setup(64, 64));
    for (int round = 0; round < 4; ++round) {
        useAndFree(words * sizeof(quint32) * 5);
        test->preRun();
        const long before = faults();
        test->run();
        const long inRun = faults() - before;
        test->postRun();
        QVERIFY2(inRun >= pages * 98 / 100,
                 qPrintable(QStringLiteral("round %1: %2 faults for %3 pages")
                                .arg(QString::number(round), QString::number(inRun),
                                     QString::number(pages))));
    }
}

/// Those of rle; zlib asks for more memory than its own buffers in a run.
void tst_roundMemory::packedWordsAreTouchedBefore()
{
    constexpr std::size_t words = std::size_t{6} * 6 * 512 * 512;
    rle test;
    QVERIFY(test.setup(64, 64));
    for (int round = 0; round < 3; ++round) {
        test.preRun();
        const long before = faults();
        test.run();
        QVERIFY(faults() - before <= pagesOf(words * sizeof(quint32)) * 102 / 100);
        test.postRun();
    }
}

void tst_roundMemory::sortedWordsAreTouchedBefore()
{
    shellsort test;
    QVERIFY(test.setup(64, 64));
    for (int round = 0; round < 2; ++round) {
        test.preRun();
        const long before = faults();
        test.run();
        QVERIFY(faults() - before < pagesOf(std::size_t{512} * 512 * sizeof(quint32)) / 2);
        test.postRun();
    }
}

/// Where all free memory has been given back, a run of zlib touches three blocks for the first
/// time: its copy of the input, half as long as the picture, what that unpacks to, and the copy of
/// it.
void tst_roundMemory::zlibCopiesItsInput()
{
#ifdef __GLIBC__
    constexpr std::size_t pictureBytes = std::size_t{4} * 4 * 512 * 512 * sizeof(quint32);
    zlib test;
    QVERIFY(test.setup(64, 64));
    for (int round = 0; round < 3; ++round) {
        test.preRun();
        malloc_trim(0);
        const long before = faults();
        test.run();
        const long inRun = faults() - before;
        test.postRun();
        QVERIFY2(inRun >= pagesOf(pictureBytes / 2 * 5) * 98 / 100,
                 qPrintable(QString::number(inRun)));
    }
#else
    QSKIP("this C library cannot be told to give back its memory");
#endif
}

QTEST_APPLESS_MAIN(tst_roundMemory)
#include "tst_roundMemory.moc"
