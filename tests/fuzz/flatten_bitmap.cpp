// Bitmap files held as data, flattened onto a colour: any bytes must give a picture or null, and
// never a read outside them.
#include <cstddef>
#include <cstdint>

#include "text/compositing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  MovableFree(FlattenBitmapFile(data, size, 0x00808080));
  return 0;
}
