#include "tests/support/alloc_sweep.h"

#include "platform/memory.h"

testing::AssertionResult SweepAllocationFailures(const std::function<int()>& run,
                                                 long maxAllocations, long* survivors) {
  if (survivors) *survivors = 0;
  for (long n = 1; n <= maxAllocations; ++n) {
    const long before = MovableLiveCount();
    MovableFailAllocation(n);
    const int result = run();
    const long attempts = MovableAllocationCount();
    MovableFailAllocation(0);
    const long leaked = MovableLiveCount() - before;
    if (attempts < n) {
      if (!result) return testing::AssertionFailure() << "failed with no injected failure";
      if (leaked) return testing::AssertionFailure() << leaked << " blocks leaked on success";
      if (n == 1) return testing::AssertionFailure() << "the operation allocated nothing";
      return testing::AssertionSuccess() << n - 1 << " allocation points";
    }
    if (result && !survivors)
      return testing::AssertionFailure() << "succeeded although allocation " << n << " failed";
    if (result) ++*survivors;
    if (leaked)
      return testing::AssertionFailure()
             << leaked << " blocks leaked when allocation " << n << " failed";
  }
  return testing::AssertionFailure() << "more than " << maxAllocations << " allocations";
}

testing::AssertionResult SweepAllocationFailures(const std::function<int()>& run,
                                                 long maxAllocations, bool fallbacks) {
  if (!fallbacks) return SweepAllocationFailures(run, maxAllocations);
  long survivors = 0;
  long points = 0;
  const std::function<int()> counted = [&] {
    ++points;
    return run();
  };
  testing::AssertionResult result = SweepAllocationFailures(counted, maxAllocations, &survivors);
  // The last run is the one without an injected failure.
  if (result && survivors >= points - 1)
    return testing::AssertionFailure() << "no failure ever reported";
  return result;
}
