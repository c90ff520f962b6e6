// The wrapping stamp. The target rows are addressed directly: a stamp is blended once per flake,
// star or piece in every frame of a set, which makes this the inner loop of the frame-set effects.
#include "effects/wrapping_stamp.h"

#include <cstdlib>

#include "shell/packed_dib.h"

int32_t WrapCoordinate(int32_t value, int32_t size) {
  if (value >= size) return value % size;
  if (value < 0) {
    const int32_t remainder = static_cast<int32_t>(std::abs(static_cast<int64_t>(value)) % size);
    return remainder ? size - remainder : 0;
  }
  return value;
}

int StampWrapped(void* target, const void* stamp, int32_t x, int32_t y, uint32_t colour,
                 int32_t opacity) {
  const BitmapInfoHeader* t = static_cast<const BitmapInfoHeader*>(target);
  const BitmapInfoHeader* s = static_cast<const BitmapInfoHeader*>(stamp);
  const int32_t tBits = t->biBitCount, sBits = s->biBitCount;
  if ((tBits != 24 && tBits != 32) || (sBits != 24 && sBits != 32)) return 0;
  const int32_t width = t->biWidth, height = t->biHeight;
  const int32_t stampWidth = s->biWidth, stampHeight = s->biHeight;
  if (width <= 0 || height <= 0 || stampWidth < 0 || stampHeight < 0) return 0;
  const uint32_t tStride = DibStride(width, tBits), sStride = DibStride(stampWidth, sBits);
  const int32_t tStep = tBits / 8, sStep = sBits / 8;
  uint8_t* tPixels = DibBits(target);
  const uint8_t* sPixels = DibBits(stamp);
  const uint32_t over[3] = {(colour >> 16) & 0xFF, (colour >> 8) & 0xFF, colour & 0xFF};  // B G R

  for (int32_t row = 0; row < stampHeight; ++row) {
    // Both pictures are bottom-up: picture row r is stored at height - 1 - r.
    const uint8_t* in = sPixels + static_cast<size_t>(stampHeight - 1 - row) * sStride;
    const int32_t ty = WrapCoordinate(y + row, height);
    uint8_t* out = tPixels + static_cast<size_t>(height - 1 - ty) * tStride;
    // Coverage 0 leaves a pixel as it is (old * 255 / 255), so most of a soft item's margin
    // costs one read; the target column wraps by a step rather than a division.
    int32_t tx = WrapCoordinate(x, width);
    for (int32_t column = 0; column < stampWidth; ++column, tx = tx + 1 == width ? 0 : tx + 1) {
      uint32_t a = in[static_cast<size_t>(column) * sStep];
      if (opacity != 255) a = (a * static_cast<uint32_t>(opacity)) / 255;
      if (a == 0) continue;
      uint8_t* p = out + static_cast<size_t>(tx) * tStep;
      for (int c = 0; c < 3; ++c)
        p[c] = static_cast<uint8_t>((over[c] * a) / 255 + (p[c] * (255 - a)) / 255);
    }
  }
  return 1;
}
