// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/workBuffer.h"

#include "support/allocationWatch.h"

#include <QtTest>

#include <algorithm>
#include <cerrno>
#include <vector>

#ifdef __linux__
#include <sys/mman.h>
#include <unistd.h>
#endif

class tst_workBuffer : public QObject
{
    Q_OBJECT

private slots:
    void startsEmpty();
    void refusesImpossibleSizes();
    void replacesItsBlock();
    void failingAllocation();
    void untouchedPages();
};

void tst_workBuffer::startsEmpty()
{
    workBuffer<quint32> buffer;
    QVERIFY(!buffer.data());
    buffer.free();
    QVERIFY(!buffer.data());
}

void tst_workBuffer::refusesImpossibleSizes()
{
    workBuffer<quint32> buffer;
    QVERIFY(!buffer.allocate(0));
    QVERIFY(!buffer.allocate(SIZE_MAX / 4 + 2)); // in bytes, 4 would be left of it
    QVERIFY(!buffer.data());
}

void tst_workBuffer::replacesItsBlock()
{
    const allocationWatch watch;
    {
        workBuffer<quint32> buffer;
        QVERIFY(buffer.allocate(10));
        QVERIFY(buffer.allocate(20));
        QCOMPARE(watch.getHeld(), 1);
        QVERIFY(buffer.allocate(30));
        QCOMPARE(watch.getHeld(), 1);
    }
    QCOMPARE(watch.getHeld(), 0);
    QCOMPARE(watch.getAsked(), 3);
}

void tst_workBuffer::failingAllocation()
{
    const allocationWatch watch(1);
    workBuffer<quint32> buffer;
    QVERIFY(buffer.allocate(10));
    QVERIFY(!buffer.allocate(10));
    QVERIFY(!buffer.data());
    QCOMPARE(watch.getHeld(), 0);
    QVERIFY(buffer.allocate(10));
}

/// Whatever the process has allocated and freed before, no page of a block is there before it is
/// written to, and none is when the block is gone.
void tst_workBuffer::untouchedPages()
{
#if defined(__linux__) && !defined(FENNICK_TEST_SANITIZED)
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    for (const std::size_t pages :
         {std::size_t{1}, std::size_t{64}, (std::size_t{48} << 20) / page}) {
        std::vector<unsigned char> resident(pages);
        for (int round = 0; round < 3; ++round) {
            workBuffer<char> buffer;
            QVERIFY(buffer.allocate(pages * page - 5));
            char *block = buffer.data();
            QCOMPARE(reinterpret_cast<std::uintptr_t>(block) % page, std::uintptr_t{0});
            QCOMPARE(mincore(block, pages * page, resident.data()), 0);
            QVERIFY(std::none_of(resident.begin(), resident.end(),
                                 [](unsigned char flags) { return flags & 1; }));
            std::fill_n(block, pages * page - 5, 'x');
            buffer.free();
            QCOMPARE(mincore(block, page, resident.data()), -1);
            QCOMPARE(errno, ENOMEM);
        }
    }
#else
    QSKIP("the blocks have no pages of their own here");
#endif
}

QTEST_APPLESS_MAIN(tst_workBuffer)
#include "tst_workBuffer.moc"
