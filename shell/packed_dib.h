// Packed DIBs: a 40-byte BITMAPINFOHEADER, a colour table for 8 bits or fewer, then bottom-up rows
// padded to 4 bytes, all in one movable block. Every picture of the program has this form.
// Coordinates for the pixel accessors run from the top-left corner; colours are 0x00BBGGRR with
// alpha above them in 32-bit pictures. Functions that make an image return it unlocked, or null.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/memory.h"

#pragma pack(push, 1)
struct BitmapInfoHeader {
  uint32_t biSize;
  int32_t biWidth;
  int32_t biHeight;
  uint16_t biPlanes;
  uint16_t biBitCount;
  uint32_t biCompression;
  uint32_t biSizeImage;
  int32_t biXPelsPerMeter;
  int32_t biYPelsPerMeter;
  uint32_t biClrUsed;
  uint32_t biClrImportant;
};
#pragma pack(pop)
static_assert(sizeof(BitmapInfoHeader) == 40, "BITMAPINFOHEADER is 40 bytes");

constexpr uint32_t kDibHeaderBytes = 40;
constexpr uint32_t kPaletteBytes = 768;  // 256 red, green, blue triples
constexpr uint32_t kPixelOutside = 0xFFFFFFFF;

// Row length in bytes of a picture `width` pixels wide at `bits` per pixel.
inline uint32_t DibStride(int32_t width, int32_t bits) {
  return static_cast<uint32_t>(((static_cast<int64_t>(width) * bits + 31) / 32) * 4);
}

// Bytes of the colour table: the full 4 << bits for 8 bits or fewer, whatever biClrUsed says.
inline uint32_t DibTableBytes(uint32_t bitCount) {
  return bitCount <= 8 ? 4u << bitCount : 0u;
}

// The first byte of the bits: after biSize and the full table.
inline uint8_t* DibBits(void* header) {
  BitmapInfoHeader* h = static_cast<BitmapInfoHeader*>(header);
  return static_cast<uint8_t*>(header) + h->biSize + DibTableBytes(h->biBitCount);
}
inline const uint8_t* DibBits(const void* header) {
  return DibBits(const_cast<void*>(header));
}

// The colour table entries (blue, green, red, 0) of a picture of 8 bits or fewer.
inline uint8_t* DibTable(void* header) {
  return static_cast<uint8_t*>(header) + kDibHeaderBytes;
}

// A zeroed image of the depth class of `depth` (0 and above 24: 32 bits; 1: 1 bit; 2 to 4: 4 bits;
// 5 to 8: 8 bits; 9 to 24: 24 bits), with the first entries of `palette` (768 bytes of triples, or
// null for a zero table) in its colour table. Null on failure or on a negative size.
MovableHandle CreatePackedDib(int32_t width, int32_t height, const uint8_t* palette, int32_t depth);
// A zeroed 32-bit image without a table.
MovableHandle CreatePackedDib32(int32_t width, int32_t height);
// A new block with the same size and content, or null; a block of size 0 gives null.
MovableHandle CopyMovableBlock(MovableHandle handle);
// A new block holding a copy of `size` bytes, or null.
MovableHandle CopyToMovableBlock(const void* bytes, size_t size);
// A byte copy of the handle's whole block, or null.
MovableHandle DuplicateHandle(MovableHandle image);

// Pixel accessors on a locked image. Outside the picture (signed test) a read gives 0xFFFFFFFF and
// a write does nothing; renderers loop over larger areas than their target and rely on it. The bits
// start at the fixed offset 40 plus the table. They sit in the inner loops of every renderer, so
// they are inline, with the common 24 and 32-bit depths tested first.
inline uint32_t ReadDibPixel(const void* header, int32_t x, int32_t y) {
  const BitmapInfoHeader* h = static_cast<const BitmapInfoHeader*>(header);
  const int32_t width = h->biWidth;
  const int32_t height = h->biHeight;
  if (x < 0 || y < 0 || x >= width || y >= height) return kPixelOutside;
  const uint32_t bitCount = h->biBitCount;
  const uint8_t* bits = static_cast<const uint8_t*>(header) + kDibHeaderBytes;
  const size_t row = static_cast<size_t>(height - y - 1);
  if (bitCount == 24) {
    const uint8_t* p = bits + row * DibStride(width, 24) + static_cast<size_t>(x) * 3;
    return p[0] << 16 | p[1] << 8 | p[2];
  }
  if (bitCount == 32) {
    const uint8_t* p = bits + row * DibStride(width, 32) + static_cast<size_t>(x) * 4;
    return static_cast<uint32_t>(p[3]) << 24 | p[0] << 16 | p[1] << 8 | p[2];
  }
  if (bitCount == 8) return (bits + 1024)[row * DibStride(width, 8) + x];
  if (bitCount == 4) {
    const uint8_t byte = (bits + 64)[row * DibStride(width, 4) + x / 2];
    return x & 1 ? byte & 0x0F : byte >> 4;
  }
  if (bitCount == 1) {
    const uint8_t byte = (bits + 8)[row * DibStride(width, 1) + x / 8];
    return (byte >> (7 - (x & 7))) & 1;
  }
  return kPixelOutside;
}

inline void WriteDibPixel(void* header, int32_t x, int32_t y, uint32_t value) {
  const BitmapInfoHeader* h = static_cast<const BitmapInfoHeader*>(header);
  const int32_t width = h->biWidth;
  const int32_t height = h->biHeight;
  if (x < 0 || y < 0 || x >= width || y >= height) return;
  const uint32_t bitCount = h->biBitCount;
  uint8_t* bits = static_cast<uint8_t*>(header) + kDibHeaderBytes;
  const size_t row = static_cast<size_t>(height - y - 1);
  if (bitCount == 24) {
    uint8_t* p = bits + row * DibStride(width, 24) + static_cast<size_t>(x) * 3;
    p[0] = static_cast<uint8_t>(value >> 16);
    p[1] = static_cast<uint8_t>(value >> 8);
    p[2] = static_cast<uint8_t>(value);
  } else if (bitCount == 32) {
    uint8_t* p = bits + row * DibStride(width, 32) + static_cast<size_t>(x) * 4;
    p[0] = static_cast<uint8_t>(value >> 16);
    p[1] = static_cast<uint8_t>(value >> 8);
    p[2] = static_cast<uint8_t>(value);
    p[3] = static_cast<uint8_t>(value >> 24);
  } else if (bitCount == 8) {
    (bits + 1024)[row * DibStride(width, 8) + x] = static_cast<uint8_t>(value);
  } else if (bitCount == 4) {
    uint8_t* p = (bits + 64) + row * DibStride(width, 4) + x / 2;
    *p = x & 1 ? (*p & 0xF0) | (value & 0x0F) : (*p & 0x0F) | ((value & 0x0F) << 4);
  } else if (bitCount == 1) {
    uint8_t* p = (bits + 8) + row * DibStride(width, 1) + x / 8;
    const uint8_t bit = static_cast<uint8_t>(0x80 >> (x & 7));
    *p = value & 1 ? *p | bit : *p & ~bit;
  }
}
