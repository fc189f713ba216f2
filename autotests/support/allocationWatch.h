// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/workMemory.h"

/// While it lives, counts the blocks that work buffers hold and lets one allocation fail.
class allocationWatch final : public workMemory::observer
{
public:
    static constexpr int never = -1;

    /// Allocation @p index, counted from 0, fails.
    explicit allocationWatch(int index = never) : failing(index) { workMemory::setObserver(this); }
    allocationWatch(const allocationWatch &) = delete;
    allocationWatch &operator=(const allocationWatch &) = delete;
    ~allocationWatch() { workMemory::setObserver(nullptr); }

    bool mayAllocate(std::size_t) override
    {
        if (asked++ == failing)
            return false;
        ++held;
        return true;
    }
    void freed() override { --held; }

    int getAsked() const { return asked; }
    /// Blocks allocated and not yet freed.
    int getHeld() const { return held; }

private:
    int failing;
    int asked = 0;
    int held = 0;
};
