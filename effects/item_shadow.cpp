#include "effects/item_shadow.h"

#include <cstring>

#include "shell/packed_dib.h"
#include "text/blur.h"

int32_t ItemShadowPad(int32_t offset, int32_t softness) {
  const int32_t v = softness;
  if (v == 0) return offset;
  if (v >= 1 && v <= 20) return offset + 1 + v / 10;
  if (v >= 21 && v <= 40) return offset + 1 + v / 5;
  if (v >= 41 && v <= 60) return offset + 1 + v;
  return offset + 1 + 5 * v;
}

MovableHandle ItemShadowImage(MovableHandle source, int32_t offset, int32_t softness,
                              int32_t opacity) {
  ScopedLock from(source);
  if (!from) return nullptr;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(from.bytes);
  const int32_t pad = ItemShadowPad(offset, softness);
  const int32_t bits = h->biBitCount;
  ScopedBlock shadow(CreatePackedDib(h->biWidth + pad, h->biHeight + pad, nullptr, bits));
  {
    ScopedLock to(shadow.handle);
    if (!to) return nullptr;
    BitmapInfoHeader* t = reinterpret_cast<BitmapInfoHeader*>(to.bytes);
    if (static_cast<int32_t>(t->biBitCount) != bits) return nullptr;  // a depth it cannot hold
    std::memcpy(DibTable(to.bytes), DibTable(from.bytes), DibTableBytes(t->biBitCount));
    const int32_t at = offset == 0 ? pad / 2 : offset;
    for (int32_t y = 0; y < h->biHeight; ++y)
      for (int32_t x = 0; x < h->biWidth; ++x) {
        uint32_t p = ReadDibPixel(from.bytes, x, y);
        if (opacity < 255) {
          if (bits <= 8) {
            p = p * static_cast<uint32_t>(opacity) / 255;
          } else {
            uint32_t scaled = 0;
            for (int shift = 0; shift < 32; shift += 8)
              scaled |= (((p >> shift) & 0xFF) * static_cast<uint32_t>(opacity) / 255) << shift;
            p = scaled;
          }
        }
        WriteDibPixel(to.bytes, x + at, y + at, p);
      }
  }
  if (softness > 0) {
    MovableHandle blurred = FastBoxBlur(shadow.handle, softness + 2);
    if (blurred) {
      MovableFree(shadow.Release());
      return blurred;
    }
  }
  return shadow.Release();
}

void SoftenItemImage(MovableHandle* image, int32_t offset, int32_t softness) {
  MovableHandle soft = ItemShadowImage(*image, offset, softness, 255);
  if (!soft) return;
  MovableFree(*image);
  *image = soft;
}
