// Counts the heap bytes a benchmark holds, to report the peak of one piece of work.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace kelvar::bench
{

/// Bytes held on the heap now.
std::size_t HeapInUse();

/// Starts a new peak at the bytes held now.
void ResetHeapPeak();

/// The most bytes held since the last ResetHeapPeak.
std::size_t HeapPeak();

} // namespace kelvar::bench
