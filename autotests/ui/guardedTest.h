// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/fakeTest.h"

#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

/// A fake whose frame nobody can touch any more once it is released: whoever paints from it after
/// that ends the program. Freed memory is mostly still there, and no sanitizer watches the toolkit
/// as it reads.
class guardedTest : public fakeTest
{
public:
    using fakeTest::fakeTest;
    ~guardedTest() override { guard(PROT_READ | PROT_WRITE); }

    bool setup(int newWidth, int newHeight) override
    {
        if (canSetup)
            guard(PROT_READ | PROT_WRITE);
        isPreparing = canSetup;
        const bool isReady = fakeTest::setup(newWidth, newHeight);
        isPreparing = false;
        return isReady;
    }
    void release() override
    {
        if (isPreparing) {
            fakeTest::release();
            return;
        }
        // The block is kept, so that its pages stay closed and go to nobody else.
        isSetup = false;
        guard(PROT_NONE);
    }
    /// Whether the frame is out of reach.
    bool isGuarded() const { return isClosed; }

private:
    /// Sets what may be done with the whole pages inside the frame.
    void guard(int access)
    {
        if (!buffer.data())
            return;
        const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
        const auto start = reinterpret_cast<std::uintptr_t>(buffer.data());
        const auto bytes = static_cast<std::uintptr_t>(width) * static_cast<std::uintptr_t>(height)
                           * sizeof(quint32);
        const std::uintptr_t lead = (page - start % page) % page;
        const std::uintptr_t tail = (start + bytes) % page;
        isClosed =
            bytes > lead + tail
            && mprotect(reinterpret_cast<char *>(buffer.data()) + lead, bytes - lead - tail, access)
                   == 0
            && access == PROT_NONE;
    }

    bool isPreparing = false;
    bool isClosed = false;
};
