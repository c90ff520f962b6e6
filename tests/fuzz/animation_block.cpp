// The check of an AnimationBlock from the host: any bytes, never a read outside them. A block that
// passes must also pass when followed by more bytes.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "shell/host_interface.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // A copy of exactly `size` bytes, so that the sanitizer sees any read past the end.
  std::vector<uint8_t> bytes(data, data + size);
  if (CheckAnimationBlock(bytes.data(), bytes.size())) {
    bytes.push_back(0);
    if (!CheckAnimationBlock(bytes.data(), bytes.size())) abort();
  }
  return 0;
}
