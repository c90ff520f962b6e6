// What every texture generator does with its picture: a 24-bit Packed DIB of the size in the
// record's `rect`, filled with a ground colour, then coloured row by row. Rows are addressed from
// the top; colours are 0x00BBGGRR, stored blue, green, red.
#pragma once

#include <cstdint>

#include "materials/texture_item.h"
#include "platform/memory.h"
#include "shell/packed_dib.h"

// The width and height asked for by `rect` (right - left, bottom - top), never below 0.
void TextureSize(const TextureItem* item, int32_t* width, int32_t* height);

// A new 24-bit picture of width by height with every pixel `colour`, or null.
MovableHandle NewTextureCanvas(int32_t width, int32_t height, uint32_t colour);

// Working memory of a generator: `bytes` zeroed bytes in a movable block, locked and freed with
// the scope. `data` is null when the allocation or the lock failed.
struct TextureScratch {
  ScopedBlock block;
  ScopedLock lock;
  void* data;
  explicit TextureScratch(size_t bytes)
      : block(MovableAlloc(bytes)), lock(block.handle), data(lock.bytes) {}
};

// The first byte of row y (from the top) of a locked 24-bit picture.
inline uint8_t* TextureRow(void* picture, int32_t y) {
  const BitmapInfoHeader* h = static_cast<const BitmapInfoHeader*>(picture);
  return DibBits(picture) + static_cast<size_t>(h->biHeight - 1 - y) * DibStride(h->biWidth, 24);
}

// Lays `colour` over the pixel at `p` with weight `alpha` (0 to 255): each channel becomes
// colour * alpha / 255 + old * (255 - alpha) / 255, each division truncating by itself.
inline void BlendTexturePixel(uint8_t* p, uint32_t colour, uint32_t alpha) {
  const uint32_t keep = 255 - alpha;
  p[0] = static_cast<uint8_t>(((colour >> 16) & 0xFF) * alpha / 255 + p[0] * keep / 255);
  p[1] = static_cast<uint8_t>(((colour >> 8) & 0xFF) * alpha / 255 + p[1] * keep / 255);
  p[2] = static_cast<uint8_t>((colour & 0xFF) * alpha / 255 + p[2] * keep / 255);
}
