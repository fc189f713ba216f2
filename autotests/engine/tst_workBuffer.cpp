// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/workBuffer.h"

#include "support/allocationWatch.h"

#include <QtTest>

#include <algorithm>
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
    QVERIFY(!buffer.allocate(SIZE_MAX / 4 + 1));
    QVERIFY(!buffer.allocateUntouched(0));
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
        QVERIFY(buffer.allocateUntouched(30));
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

/// However the process got at the memory, none of its pages may be there before it is written to.
void tst_workBuffer::untouchedPages()
{
#ifdef __linux__
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    for (const std::size_t bytes : {64 * page, std::size_t{48} << 20}) {
        for (int round = 0; round < 3; ++round) {
            workBuffer<char> buffer;
            QVERIFY(buffer.allocateUntouched(bytes));
            const std::size_t lead =
                (page - reinterpret_cast<std::uintptr_t>(buffer.data()) % page) % page;
            std::vector<unsigned char> resident((bytes - lead) / page);
            QCOMPARE(mincore(buffer.data() + lead, resident.size() * page, resident.data()), 0);
            const auto touched = std::count_if(resident.begin(), resident.end(),
                                               [](unsigned char flags) { return flags & 1; });
            // An allocator may keep notes of its own at either end.
            QVERIFY2(touched <= 2, qPrintable(QString::number(touched)));
            std::fill_n(buffer.data(), bytes, 'x');
        }
    }
#else
    QSKIP("only Linux says which pages are there");
#endif
}

QTEST_APPLESS_MAIN(tst_workBuffer)
#include "tst_workBuffer.moc"
