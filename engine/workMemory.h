// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

/// The memory behind the work buffers: blocks that are not initialised, and whose allocation fails
/// with a null pointer.
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
/// The same in pages that nobody has touched, as far as the system lets us ask for them: the first
/// write to each of them faults.
void *allocateUntouched(std::size_t bytes);
/// Gives back a block of either kind; null does nothing.
void free(void *block);

} // namespace workMemory
