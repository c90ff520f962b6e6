// The check of an AnimationBlock from the host and the animation picker's frame service: any
// bytes, never a read outside them. A block that passes must also pass when followed by more
// bytes, and every frame number the service is asked for gives a 24-bit picture or nothing.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "controls/animation_picker.h"
#include "shell/host_interface.h"
#include "shell/packed_dib.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // A copy of exactly `size` bytes, so that the sanitizer sees any read past the end.
  std::vector<uint8_t> bytes(data, data + size);
  if (CheckAnimationBlock(bytes.data(), bytes.size())) {
    bytes.push_back(0);
    if (!CheckAnimationBlock(bytes.data(), bytes.size())) abort();
    bytes.pop_back();
  }
  MovableHandle block = CopyToMovableBlock(bytes.data(), bytes.size());
  if (!block) return 0;
  const int32_t count = AnimationFrameCount(block);
  for (int32_t frame : {0, count - 1, count, 1000}) {
    int32_t delay = 0;
    MovableHandle picture = AnimationFrame(block, frame, &delay);
    if (!picture) continue;
    BitmapInfoHeader header;
    if (const void* p = MovableLock(picture)) {
      std::memcpy(&header, p, sizeof header);
      MovableUnlock(picture);
      if (header.biBitCount != 24) abort();
    }
    MovableFree(picture);
  }
  MovableFree(block);
  return 0;
}
