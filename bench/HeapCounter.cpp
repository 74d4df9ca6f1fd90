// Counts the heap bytes of the benchmark process: global new and delete keep a tally.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/HeapCounter.h"

#include <cstdlib>
#include <malloc.h>
#include <new>

namespace
{

std::size_t InUse = 0;
std::size_t Peak = 0;

void* Allocate(std::size_t size)
{
    void* block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr)
    {
        throw std::bad_alloc();
    }
    InUse += malloc_usable_size(block);
    Peak = InUse > Peak ? InUse : Peak;
    return block;
}

void Release(void* block)
{
    if (block != nullptr)
    {
        InUse -= malloc_usable_size(block);
        std::free(block);
    }
}

} // namespace

void* operator new(std::size_t size)
{
    return Allocate(size);
}

void* operator new[](std::size_t size)
{
    return Allocate(size);
}

void operator delete(void* block) noexcept
{
    Release(block);
}

void operator delete[](void* block) noexcept
{
    Release(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    Release(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    Release(block);
}

namespace kelvar::bench
{

std::size_t HeapInUse()
{
    return InUse;
}

void ResetHeapPeak()
{
    Peak = InUse;
}

std::size_t HeapPeak()
{
    return Peak;
}

} // namespace kelvar::bench
