// Header checks for direct row access, and a pixel-exact row copy.
#include "imaging/dib_view.h"

#include <cstring>

#include "shell/packed_dib.h"

int OpenDibView(void* header, size_t blockSize, DibView* view) {
  if (!header || blockSize < kDibHeaderBytes) return 0;
  const BitmapInfoHeader* h = static_cast<const BitmapInfoHeader*>(header);
  const int32_t bitCount = h->biBitCount;
  if (bitCount != 1 && bitCount != 4 && bitCount != 8 && bitCount != 24 && bitCount != 32) return 0;
  if (h->biWidth < 1 || h->biHeight < 1 || h->biWidth > 0x1000000) return 0;
  const uint32_t tableBytes = DibTableBytes(static_cast<uint32_t>(bitCount));
  const uint32_t stride = DibStride(h->biWidth, bitCount);
  const uint64_t needed = uint64_t{kDibHeaderBytes} + tableBytes +
                          uint64_t{stride} * static_cast<uint32_t>(h->biHeight);
  if (needed > blockSize) return 0;
  view->header = static_cast<uint8_t*>(header);
  view->table = view->header + kDibHeaderBytes;
  view->bits = view->table + tableBytes;
  view->width = h->biWidth;
  view->height = h->biHeight;
  view->bitCount = bitCount;
  view->stride = stride;
  return 1;
}

void CopyRowPixels(uint8_t* target, const uint8_t* source, int32_t width, int32_t bitCount) {
  const uint64_t rowBits = static_cast<uint64_t>(width) * static_cast<uint32_t>(bitCount);
  const size_t whole = static_cast<size_t>(rowBits / 8);
  std::memcpy(target, source, whole);
  const uint32_t rest = static_cast<uint32_t>(rowBits % 8);
  if (rest) {
    const uint8_t mask = static_cast<uint8_t>(0xFF00 >> rest);
    target[whole] = static_cast<uint8_t>((target[whole] & ~mask) | (source[whole] & mask));
  }
}
