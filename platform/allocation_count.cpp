// The counters behind MovableLiveCount, MovableFailAllocation and MovableAllocationCount. One
// thread runs the plug-in, so plain integers serve.
#include "platform/allocation_count.h"

#include "platform/memory.h"

namespace {
long liveBlocks = 0;
long allocationAttempts = 0;
long failAtAttempt = 0;
}  // namespace

bool AllocationShouldFail() {
  ++allocationAttempts;
  return failAtAttempt > 0 && allocationAttempts == failAtAttempt;
}

void CountBlockAllocated() { ++liveBlocks; }
void CountBlockFreed() { --liveBlocks; }

long MovableLiveCount() { return liveBlocks; }

void MovableFailAllocation(long nth) {
  failAtAttempt = nth;
  allocationAttempts = 0;
}

long MovableAllocationCount() { return allocationAttempts; }
