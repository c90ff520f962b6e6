// The POSIX memory port: a handle is a small record that owns a malloc'd buffer, with a lock count,
// so that the same ownership rules hold as with movable global memory on Windows. A magic word in
// each record lets a stale or foreign handle be refused instead of followed.
#include "platform/allocation_count.h"
#include "platform/memory.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr uint32_t kBlockMagic = 0x474D3542;  // "GM5B"

}  // namespace

struct MovableBlock {
  uint32_t magic;
  int32_t locks;
  size_t size;
  uint8_t* bytes;
};

static MovableBlock* Checked(MovableHandle handle) {
  return handle && handle->magic == kBlockMagic ? handle : nullptr;
}

MovableHandle MovableAlloc(size_t size) {
  if (AllocationShouldFail()) return nullptr;
  MovableBlock* block = static_cast<MovableBlock*>(std::malloc(sizeof(MovableBlock)));
  if (!block) return nullptr;
  // A zero-byte block still gets a buffer, so that a lock of it succeeds as on Windows.
  block->bytes = static_cast<uint8_t*>(std::calloc(size ? size : 1, 1));
  if (!block->bytes) {
    std::free(block);
    return nullptr;
  }
  block->magic = kBlockMagic;
  block->locks = 0;
  block->size = size;
  CountBlockAllocated();
  return block;
}

void* MovableLock(MovableHandle handle) {
  MovableBlock* block = Checked(handle);
  if (!block) return nullptr;
  ++block->locks;
  return block->bytes;
}

int MovableUnlock(MovableHandle handle) {
  MovableBlock* block = Checked(handle);
  if (!block || block->locks == 0) return 0;
  --block->locks;
  return block->locks != 0;
}

MovableHandle MovableFree(MovableHandle handle) {
  if (!handle) return nullptr;
  MovableBlock* block = Checked(handle);
  if (!block) return handle;
  block->magic = 0;
  std::free(block->bytes);
  std::free(block);
  CountBlockFreed();
  return nullptr;
}

MovableHandle MovableReAlloc(MovableHandle handle, size_t size) {
  MovableBlock* block = Checked(handle);
  if (!block || block->locks != 0) return nullptr;
  if (AllocationShouldFail()) return nullptr;
  uint8_t* grown = static_cast<uint8_t*>(std::realloc(block->bytes, size ? size : 1));
  if (!grown) return nullptr;
  if (size > block->size) std::memset(grown + block->size, 0, size - block->size);
  block->bytes = grown;
  block->size = size;
  return block;
}

size_t MovableSize(MovableHandle handle) {
  MovableBlock* block = Checked(handle);
  return block ? block->size : 0;
}
