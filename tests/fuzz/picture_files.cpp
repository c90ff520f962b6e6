// The pictures gm5 hands the engine (BMP, JPEG, and the first frame of GIF, PNG and WebP): any
// bytes give a refusal or a whole Packed DIB that the pixel accessors can read to its last row.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "cli/picture_files.h"
#include "materials/tile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<uint8_t> bytes(data, data + size);
  MovableHandle picture = ReadPictureBytes(bytes.data(), bytes.size());
  if (!picture) return 0;
  {
    ScopedLock lock(picture);
    if (!lock || !IsReadablePackedDib(lock.bytes, MovableSize(picture))) abort();
  }
  MovableFree(picture);
  return 0;
}
