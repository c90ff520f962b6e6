#include "platform/memory.h"

#include <cstring>

#include <gtest/gtest.h>

#include "tests/support/alloc_sweep.h"

TEST(Memory, BlocksAreZeroFilledAndGrowZeroFilled) {
  const long before = MovableLiveCount();
  ScopedBlock block(MovableAlloc(100));
  ASSERT_NE(block.handle, nullptr);
  EXPECT_GE(MovableSize(block.handle), 100u);
  EXPECT_EQ(MovableLiveCount(), before + 1);
  {
    ScopedLock lock(block.handle);
    ASSERT_TRUE(lock);
    for (int i = 0; i < 100; ++i) ASSERT_EQ(lock.bytes[i], 0) << i;
    std::memset(lock.bytes, 0xAB, 100);
  }
  block.handle = MovableReAlloc(block.handle, 5000);
  ASSERT_NE(block.handle, nullptr);
  ScopedLock lock(block.handle);
  EXPECT_EQ(lock.bytes[99], 0xAB);
  for (int i = 100; i < 5000; ++i) ASSERT_EQ(lock.bytes[i], 0) << i;
  EXPECT_EQ(MovableFree(nullptr), nullptr);
  EXPECT_EQ(MovableSize(nullptr), 0u);
  EXPECT_EQ(MovableLock(nullptr), nullptr);
}

TEST(Memory, InjectedFailureHitsOnlyTheNthAllocation) {
  const long before = MovableLiveCount();
  MovableFailAllocation(2);
  MovableHandle first = MovableAlloc(4), second = MovableAlloc(4), third = MovableAlloc(4);
  MovableFailAllocation(0);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(second, nullptr);
  EXPECT_NE(third, nullptr);

  // A failed reallocation leaves the old block whole and owned by the caller.
  static_cast<uint8_t*>(MovableLock(first))[0] = 7;
  MovableUnlock(first);
  MovableFailAllocation(1);
  EXPECT_EQ(MovableReAlloc(first, 4096), nullptr);
  MovableFailAllocation(0);
  EXPECT_EQ(static_cast<uint8_t*>(MovableLock(first))[0], 7);
  MovableUnlock(first);
  EXPECT_EQ(MovableFree(first), nullptr);
  MovableFree(third);
  EXPECT_EQ(MovableLiveCount(), before);
}

TEST(Memory, ScopedGuardsPairLockAndFree) {
  const long before = MovableLiveCount();
  MovableHandle kept;
  {
    ScopedBlock freed(MovableAlloc(16)), block(MovableAlloc(16));
    { ScopedLock lock(block.handle); }
    kept = block.Release();
  }
  EXPECT_EQ(MovableLiveCount(), before + 1);
  // Unlocked on leaving the scope: one lock now is the only one.
  MovableLock(kept);
  EXPECT_EQ(MovableUnlock(kept), 0);
  MovableFree(kept);
}

TEST(AllocationSweep, CatchesALeakOnTheFailurePath) {
  // An operation that forgets its first block when the second allocation fails.
  MovableHandle forgotten = nullptr;
  auto leaky = [&forgotten] {
    MovableHandle a = forgotten = MovableAlloc(4);
    MovableHandle b = a ? MovableAlloc(4) : nullptr;
    if (!b) return 0;
    MovableFree(a);
    MovableFree(b);
    return 1;
  };
  const long before = MovableLiveCount();
  EXPECT_FALSE(SweepAllocationFailures(leaky));
  EXPECT_EQ(MovableLiveCount(), before + 1);
  MovableFree(forgotten);
}
