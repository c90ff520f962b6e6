// BMP files given to the host: any bytes either make a Packed DIB of the size its header says, or
// nothing, and a DIB that is made writes back to a BMP that reads again to the same DIB.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "host/bmp_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<uint8_t> file(data, data + size);
  MovableHandle dib = BmpToPackedDib(file.data(), file.size());
  if (!dib) return 0;
  std::vector<uint8_t> bytes(MovableSize(dib));
  {
    ScopedLock lock(dib);
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = lock.bytes[i];
  }
  MovableFree(dib);
  if (PackedDibBytes(bytes.data(), bytes.size()) != bytes.size()) abort();
  std::vector<uint8_t> again = PackedDibToBmp(bytes.data(), bytes.size());
  MovableHandle back = BmpToPackedDib(again.data(), again.size());
  if (!back || MovableSize(back) != bytes.size()) abort();
  MovableFree(back);
  return 0;
}
