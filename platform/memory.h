// Movable memory blocks: the one way images and lists travel between functions and to the host.
// A block is allocated zero-filled, locked only while its bytes are touched, and freed by whoever
// owns the handle. On Windows the handles are real HGLOBALs, so the host can free what we hand it.
// Both ports count live handles and can be told to fail an allocation, for the failure sweeps.
#pragma once

#include <cstddef>
#include <cstdint>

struct MovableBlock;
typedef MovableBlock* MovableHandle;

// A new zero-filled block of `size` bytes, unlocked, or null.
MovableHandle MovableAlloc(size_t size);
// The block's bytes, valid until the matching MovableUnlock; null for a null or bad handle.
void* MovableLock(MovableHandle handle);
// Ends one lock. Returns nonzero while the block stays locked by an outer lock.
int MovableUnlock(MovableHandle handle);
// Frees the block; a null handle is accepted. Returns null on success, as GlobalFree does.
MovableHandle MovableFree(MovableHandle handle);
// Resizes an unlocked block, zero-filling any growth. Returns the handle (possibly a new one) or
// null, in which case the old block is untouched and still owned by the caller.
MovableHandle MovableReAlloc(MovableHandle handle, size_t size);
// The block's size in bytes; 0 for a null handle.
size_t MovableSize(MovableHandle handle);

// Test hooks. MovableLiveCount is the number of blocks allocated through this port and not yet
// freed. MovableFailAllocation(n) makes the n-th allocation or reallocation from now fail
// (1 = the next one); 0 turns failures off. MovableAllocationCount counts attempts since the last
// call of MovableFailAllocation.
long MovableLiveCount();
void MovableFailAllocation(long nth);
long MovableAllocationCount();

// Locks a block for the life of a scope and unlocks it on every path out.

struct ScopedLock {
  MovableHandle handle;
  uint8_t* bytes;
  explicit ScopedLock(MovableHandle h)
      : handle(h), bytes(h ? static_cast<uint8_t*>(MovableLock(h)) : nullptr) {}
  ~ScopedLock() {
    if (bytes) MovableUnlock(handle);
  }
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;
  explicit operator bool() const { return bytes != nullptr; }
};

// Frees a block at the end of a scope unless released: for handles that are built up step by step
// and returned only when every step succeeded.
struct ScopedBlock {
  MovableHandle handle;
  explicit ScopedBlock(MovableHandle h = nullptr) : handle(h) {}
  ~ScopedBlock() { MovableFree(handle); }
  ScopedBlock(const ScopedBlock&) = delete;
  ScopedBlock& operator=(const ScopedBlock&) = delete;
  MovableHandle Release() {
    MovableHandle h = handle;
    handle = nullptr;
    return h;
  }
};
