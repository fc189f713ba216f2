// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/memoryPolicy.h"

#include <QtTest>

#include <sstream>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#include <unistd.h>

#include <fstream>
#endif

class tst_memoryPolicy : public QObject
{
    Q_OBJECT

private slots:
    void mappings_data();
    void mappings();
    void hugePagesAreSeen();
    void hugePagesAreSwitchedOff();
};

void tst_memoryPolicy::mappings_data()
{
    QTest::addColumn<quint64>("address");
    QTest::addColumn<bool>("isOrdinary");
    QTest::newRow("ordinary") << quint64(0x10000) << true;
    QTest::newRow("last byte of it") << quint64(0x1ffff) << true;
    QTest::newRow("of the huge-page pool") << quint64(0x20000) << false;
    QTest::newRow("last byte of that") << quint64(0x3ffff) << false;
    QTest::newRow("transparent huge pages") << quint64(0x7f0000000000) << false;
    QTest::newRow("in no mapping") << quint64(0x50000) << true;
}

void tst_memoryPolicy::mappings()
{
    QFETCH(quint64, address);
    QFETCH(bool, isOrdinary);
    const char *const text = "00010000-00020000 rw-p 00000000 00:00 0    [heap]\n"
                             "Size:                 64 kB\n"
                             "KernelPageSize:        4 kB\n"
                             "AnonHugePages:         0 kB\n"
                             "VmFlags: rd wr mr mw me ac sd\n"
                             "00020000-00040000 rw-p 00000000 00:10 4711 /anon_hugepage (deleted)\n"
                             "KernelPageSize:     2048 kB\n"
                             "AnonHugePages:         0 kB\n"
                             "7f0000000000-7f0000800000 rw-p 00000000 00:00 0\n"
                             "KernelPageSize:        4 kB\n"
                             "AnonHugePages:      2048 kB\n";
    std::istringstream smaps(text);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a place in the text, which nobody reads from
    const auto *const place = reinterpret_cast<const void *>(address);
    QCOMPARE(memoryPolicy::hasOrdinaryPages(place, smaps, 4096), isOrdinary);
}

#ifdef Q_OS_LINUX

namespace
{

/// A block of 2 MiB at an address where a huge page fits, touched after asking for one.
class willingBlock
{
public:
    willingBlock()
    {
        const std::size_t lead = size - reinterpret_cast<std::uintptr_t>(mapping) % size;
        block = mapping + lead;
        madvise(block, size, MADV_HUGEPAGE);
        *static_cast<volatile char *>(block) = 1;
    }
    willingBlock(const willingBlock &) = delete;
    willingBlock &operator=(const willingBlock &) = delete;
    ~willingBlock() { munmap(mapping, 2 * size); }

    bool isOrdinary() const
    {
        std::ifstream smaps("/proc/self/smaps");
        return memoryPolicy::hasOrdinaryPages(block, smaps, std::size_t(sysconf(_SC_PAGESIZE)));
    }

private:
    static constexpr std::size_t size = 2 << 20;

    static char *reserved()
    {
        constexpr int access = PROT_READ | PROT_WRITE;
        return static_cast<char *>(
            mmap(nullptr, 2 * size, access, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    }

    char *mapping = reserved();
    char *block = nullptr;
};

} // namespace

/// This must come before the policy, which cannot be taken back.
void tst_memoryPolicy::hugePagesAreSeen()
{
    const willingBlock block;
    if (block.isOrdinary())
        QSKIP("this system has no huge pages to give");
}

void tst_memoryPolicy::hugePagesAreSwitchedOff()
{
    memoryPolicy::apply();
    const willingBlock block;
    QVERIFY(block.isOrdinary());
    QVERIFY(memoryPolicy::hasOrdinaryPages());
}

#else

void tst_memoryPolicy::hugePagesAreSeen()
{
    QSKIP("only Linux tells the size of pages");
}

void tst_memoryPolicy::hugePagesAreSwitchedOff()
{
    QSKIP("only Linux tells the size of pages");
}

#endif

QTEST_APPLESS_MAIN(tst_memoryPolicy)
#include "tst_memoryPolicy.moc"
