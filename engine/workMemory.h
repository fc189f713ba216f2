// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

/// The memory behind the work buffers: blocks that are not initialised, and whose allocation fails
/// with a null pointer. On Linux each block has pages of its own, which come fresh from the system
/// and go back to it: what a first touch costs does not depend on what the process has done before,
/// and whoever uses a block that is gone is noticed.
namespace workMemory
{

/// Decides about every allocation and hears of every release. Tests install one to let allocations
/// fail; the programs have none.
class observer
{
public:
    /// False lets the allocation fail.
    virtual bool mayAllocate(std::size_t bytes) = 0;
    virtual void freed() = 0;

protected:
    ~observer() = default;
};

/// @p target is not owned; null removes the observer.
void setObserver(observer *target);

void *allocate(std::size_t bytes);
/// Gives back a block that was allocated with @p bytes; null does nothing.
void free(void *block, std::size_t bytes);

} // namespace workMemory
