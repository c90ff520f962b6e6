// The Windows memory port: movable, zero-filled global memory (flags 66), so that blocks can cross
// to and from the host. The counters only serve the failure sweeps of the tests.
#include "platform/memory.h"

#include <windows.h>

namespace {

long liveBlocks = 0;
long allocationAttempts = 0;
long failAtAttempt = 0;

bool InjectedFailure() {
  ++allocationAttempts;
  return failAtAttempt > 0 && allocationAttempts == failAtAttempt;
}

HGLOBAL AsGlobal(MovableHandle handle) {
  return reinterpret_cast<HGLOBAL>(handle);
}

}  // namespace

MovableHandle MovableAlloc(size_t size) {
  if (InjectedFailure()) return nullptr;
  HGLOBAL global = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size);
  if (global) ++liveBlocks;
  return reinterpret_cast<MovableHandle>(global);
}

void* MovableLock(MovableHandle handle) {
  return handle ? GlobalLock(AsGlobal(handle)) : nullptr;
}

int MovableUnlock(MovableHandle handle) {
  return handle ? GlobalUnlock(AsGlobal(handle)) : 0;
}

MovableHandle MovableFree(MovableHandle handle) {
  if (!handle) return nullptr;
  HGLOBAL rest = GlobalFree(AsGlobal(handle));
  if (!rest) --liveBlocks;
  return reinterpret_cast<MovableHandle>(rest);
}

MovableHandle MovableReAlloc(MovableHandle handle, size_t size) {
  if (!handle || InjectedFailure()) return nullptr;
  return reinterpret_cast<MovableHandle>(
      GlobalReAlloc(AsGlobal(handle), size, GMEM_MOVEABLE | GMEM_ZEROINIT));
}

size_t MovableSize(MovableHandle handle) {
  return handle ? GlobalSize(AsGlobal(handle)) : 0;
}

long MovableLiveCount() {
  return liveBlocks;
}

void MovableFailAllocation(long nth) {
  failAtAttempt = nth;
  allocationAttempts = 0;
}

long MovableAllocationCount() {
  return allocationAttempts;
}
