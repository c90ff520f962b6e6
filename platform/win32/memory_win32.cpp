// The Windows memory port: movable, zero-filled global memory (flags 66), so that blocks can cross
// to and from the host. The counters only serve the failure sweeps of the tests.
#include "platform/allocation_count.h"
#include "platform/memory.h"

#include <windows.h>

namespace {

HGLOBAL AsGlobal(MovableHandle handle) { return reinterpret_cast<HGLOBAL>(handle); }

}  // namespace

MovableHandle MovableAlloc(size_t size) {
  if (AllocationShouldFail()) return nullptr;
  HGLOBAL global = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size);
  if (global) CountBlockAllocated();
  return reinterpret_cast<MovableHandle>(global);
}

void* MovableLock(MovableHandle handle) { return handle ? GlobalLock(AsGlobal(handle)) : nullptr; }

int MovableUnlock(MovableHandle handle) { return handle ? GlobalUnlock(AsGlobal(handle)) : 0; }

MovableHandle MovableFree(MovableHandle handle) {
  if (!handle) return nullptr;
  HGLOBAL rest = GlobalFree(AsGlobal(handle));
  if (!rest) CountBlockFreed();
  return reinterpret_cast<MovableHandle>(rest);
}

MovableHandle MovableReAlloc(MovableHandle handle, size_t size) {
  if (!handle || AllocationShouldFail()) return nullptr;
  return reinterpret_cast<MovableHandle>(
      GlobalReAlloc(AsGlobal(handle), size, GMEM_MOVEABLE | GMEM_ZEROINIT));
}

size_t MovableSize(MovableHandle handle) { return handle ? GlobalSize(AsGlobal(handle)) : 0; }
