// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/memoryPolicy.h"

#include <cstdint>
#include <cstdlib>
#include <istream>
#include <sstream>
#include <string>

#ifdef __linux__
#include <sys/prctl.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#endif
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace
{

/// Whether @p line is the first one of a mapping, "from-to ..." in hexadecimal; fills in both.
bool isMapping(const std::string &line, std::uintptr_t &from, std::uintptr_t &to)
{
    std::istringstream text(line);
    char dash = 0;
    return text >> std::hex >> from >> dash >> to && dash == '-';
}

/// The bytes in a line "name: number kB", or 0 if it is about something else.
std::size_t bytesOf(const std::string &line, const char *name)
{
    std::istringstream text(line);
    std::string first;
    std::size_t kilobytes = 0;
    return text >> first >> kilobytes && first == name ? kilobytes * 1024 : 0;
}

} // namespace

void memoryPolicy::apply()
{
#ifdef __GLIBC__
    // By itself the library raises the threshold to the size of the largest block that was freed,
    // and then hands out pages again that have been touched before.
    constexpr int initialThreshold = 128 * 1024;
    mallopt(M_MMAP_THRESHOLD, initialThreshold);
#endif
#ifdef __linux__
    prctl(PR_SET_THP_DISABLE, 1, 0, 0, 0);
#endif
}

bool memoryPolicy::hasOrdinaryPages()
{
#ifdef __linux__
    constexpr std::size_t size = 8 << 20;
    const auto pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::unique_ptr<char, decltype(&std::free)> block(static_cast<char *>(std::malloc(size)),
                                                            &std::free);
    if (!block)
        return true;
    // A page has no size before it is there.
    volatile char *bytes = block.get();
    for (std::size_t i = 0; i < size; i += pageSize)
        bytes[i] = 1;
    std::ifstream smaps("/proc/self/smaps");
    return hasOrdinaryPages(block.get(), smaps, pageSize);
#else
    return true;
#endif
}

bool memoryPolicy::hasOrdinaryPages(const void *block, std::istream &smaps, std::size_t pageSize)
{
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    bool isInside = false;
    for (std::string line; std::getline(smaps, line);) {
        std::uintptr_t from = 0;
        std::uintptr_t to = 0;
        if (isMapping(line, from, to))
            isInside = from <= address && address < to;
        else if (isInside
                 && (bytesOf(line, "KernelPageSize:") > pageSize
                     || bytesOf(line, "AnonHugePages:") > 0))
            return false;
    }
    return true;
}
