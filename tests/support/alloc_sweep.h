// Allocation-failure sweeps: run a whole operation once for every allocation it makes, with that
// allocation failing, and check that it reports failure and leaves no block behind.
#pragma once

#include <functional>

#include <gtest/gtest.h>

// `run` performs the operation and returns nonzero on success; on success it must itself free
// whatever the operation produced. For n = 1, 2, ... the n-th allocation fails: each such run must
// return 0 with the live-handle count unchanged. The sweep ends with the first run that made fewer
// than n allocations, which must succeed without a leak.
// With `survivors`, a run that succeeds in spite of its failed allocation (one the operation may
// do without) is counted there instead of failing the sweep; it must still leak nothing.
testing::AssertionResult SweepAllocationFailures(const std::function<int()>& run,
                                                 long maxAllocations = 100000,
                                                 long* survivors = nullptr);
// With `fallbacks`, an operation that works around some failures (keeping a plainer result) may
// also succeed when an allocation fails; it must still leak nothing, and fail for at least one n.
testing::AssertionResult SweepAllocationFailures(const std::function<int()>& run,
                                                 long maxAllocations, bool fallbacks);
