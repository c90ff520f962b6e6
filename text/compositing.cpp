// The layer loops and the flat/32-bit conversions. The layers walk rows straight for the usual
// depths and sizes; everything else goes through ReadDibPixel and WriteDibPixel, whose all-ones
// reads and dropped writes outside a picture the loops rely on.
#include "text/compositing.h"

#include <cstring>

#include "platform/resource_data.h"
#include "shell/packed_dib.h"
#include "text/blur.h"
#include "text/text_mask.h"

namespace {

// The locked header of a picture whose bits fit its block, or null.
const BitmapInfoHeader* ImageHeader(const ScopedLock& lock) {
  if (!lock || MovableSize(lock.handle) < kDibHeaderBytes) return nullptr;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  if (h->biWidth < 0 || h->biHeight < 0) return nullptr;
  const uint64_t need = static_cast<uint64_t>(DibBits(lock.bytes) - lock.bytes) +
                        static_cast<uint64_t>(DibStride(h->biWidth, h->biBitCount)) * h->biHeight;
  return need <= MovableSize(lock.handle) ? h : nullptr;
}

int32_t ImageWidth(const void* image) {
  return static_cast<const BitmapInfoHeader*>(image)->biWidth;
}
int32_t ImageHeight(const void* image) {
  return static_cast<const BitmapInfoHeader*>(image)->biHeight;
}

// The colour of a table entry of a picture of 8 bits or fewer, as 0x00BBGGRR.
uint32_t TableColour(const void* image, uint32_t index) {
  const uint8_t* entry = DibTable(const_cast<void*>(image)) + (index & 0xFF) * 4;
  return entry[2] | entry[1] << 8 | static_cast<uint32_t>(entry[0]) << 16;
}

}  // namespace

void AddCoverage(void* plane, int32_t x, int32_t y, uint32_t coverage) {
  const uint32_t sum = (ReadDibPixel(plane, x, y) & 0xFF) + (coverage & 0xFF);
  WriteDibPixel(plane, x, y, sum > 255 ? 255 : sum);
}

namespace {

// The row pointers of the usual layer pictures: a 24-bit canvas, 8-bit masks and planes and a
// 24-bit material picture, all of the canvas's size. The loops below walk their rows straight;
// pictures of other depths or sizes go through the accessors, whose outside reads and dropped
// writes the layers' definitions rely on.
bool SameSize(const void* a, const void* b) {
  return ImageWidth(a) == ImageWidth(b) && ImageHeight(a) == ImageHeight(b);
}
int32_t Depth(const void* image) {
  return static_cast<const BitmapInfoHeader*>(image)->biBitCount;
}
// Row y counted from the top.
uint8_t* RowAt(const void* image, int32_t y) {
  const int32_t height = ImageHeight(image);
  return DibBits(const_cast<void*>(image)) +
         static_cast<size_t>(height - 1 - y) * DibStride(ImageWidth(image), Depth(image));
}
bool UsualPlane(const void* canvas, const void* plane) {
  return !plane || (Depth(plane) == 8 && SameSize(canvas, plane));
}

// BlendPixel on one channel byte; coverage 0 keeps `under` and 255 gives `over`.
inline uint8_t BlendByte(uint32_t under, uint32_t over, uint32_t c) {
  return static_cast<uint8_t>(under * (255 - c) / 255 + over * c / 255);
}

// Blends `count` pixels of `over` (three bytes each, or one flat colour's bytes when `step` is 0)
// onto a 24-bit row by the coverage bytes, and adds the coverage to a plane row when one is given.
void BlendRow(uint8_t* row, const uint8_t* over, int32_t step, const uint8_t* coverage,
              uint8_t* plane, int32_t count) {
  for (int32_t x = 0; x < count; ++x, over += step) {
    const uint32_t c = coverage[x];
    if (!c) continue;
    uint8_t* p = row + static_cast<size_t>(x) * 3;
    if (c == 255) {
      p[0] = over[0], p[1] = over[1], p[2] = over[2];
    } else {
      p[0] = BlendByte(p[0], over[0], c);
      p[1] = BlendByte(p[1], over[1], c);
      p[2] = BlendByte(p[2], over[2], c);
    }
    if (plane) {
      const uint32_t sum = plane[x] + c;
      plane[x] = static_cast<uint8_t>(sum > 255 ? 255 : sum);
    }
  }
}

void AddCoverageRow(uint8_t* plane, const uint8_t* coverage, int32_t count) {
  for (int32_t x = 0; x < count; ++x) {
    const uint32_t sum = plane[x] + coverage[x];
    plane[x] = static_cast<uint8_t>(sum > 255 ? 255 : sum);
  }
}

}  // namespace

void CompositeShadowLayer(void* canvas, void* alphaPlane, const void* mask,
                          const void* shadowPicture, int32_t shadowX, int32_t shadowY) {
  const int32_t width = ImageWidth(mask), height = ImageHeight(mask);
  const int32_t canvasWidth = ImageWidth(canvas), canvasHeight = ImageHeight(canvas);
  // Only the part of the window on the canvas can change anything: writes elsewhere are dropped.
  const int32_t xEnd = shadowX + width < canvasWidth ? shadowX + width : canvasWidth;
  const int32_t yEnd = shadowY + height < canvasHeight ? shadowY + height : canvasHeight;
  if (Depth(canvas) == 24 && Depth(mask) == 8 && Depth(shadowPicture) == 24 &&
      SameSize(canvas, mask) && SameSize(canvas, shadowPicture) && UsualPlane(canvas, alphaPlane)) {
    const int32_t x0 = shadowX > 0 ? shadowX : 0, y0 = shadowY > 0 ? shadowY : 0;
    for (int32_t y = y0; y < yEnd && x0 < xEnd; ++y) {
      const uint8_t* m = RowAt(mask, y) + x0;
      if (alphaPlane) {
        AddCoverageRow(RowAt(alphaPlane, y) + x0, m, xEnd - x0);
      } else {
        const uint8_t* over = RowAt(shadowPicture, y - shadowY) + (x0 - shadowX) * 3;
        BlendRow(RowAt(canvas, y) + x0 * 3, over, 3, m, nullptr, xEnd - x0);
      }
    }
    return;
  }
  for (int32_t y = shadowY; y < yEnd; ++y) {
    for (int32_t x = shadowX; x < xEnd; ++x) {
      const uint32_t m = ReadDibPixel(mask, x, y) & 0xFF;
      if (alphaPlane) {
        AddCoverage(alphaPlane, x, y, m);
      } else {
        const uint32_t over = ReadDibPixel(shadowPicture, x - shadowX, y - shadowY);
        WriteDibPixel(canvas, x, y, BlendPixel(ReadDibPixel(canvas, x, y), over, m));
      }
    }
  }
}

void CompositeFillLayer(void* canvas, void* alphaPlane, const void* mask, const void* fillPicture) {
  int32_t width = ImageWidth(mask), height = ImageHeight(mask);
  if (ImageWidth(canvas) < width) width = ImageWidth(canvas);
  if (ImageWidth(fillPicture) < width) width = ImageWidth(fillPicture);
  if (ImageHeight(canvas) < height) height = ImageHeight(canvas);
  if (ImageHeight(fillPicture) < height) height = ImageHeight(fillPicture);
  if (Depth(canvas) == 24 && Depth(mask) == 8 && Depth(fillPicture) == 24 &&
      UsualPlane(canvas, alphaPlane)) {
    for (int32_t y = 0; y < height; ++y) {
      BlendRow(RowAt(canvas, y), RowAt(fillPicture, y), 3, RowAt(mask, y),
               alphaPlane ? RowAt(alphaPlane, y) : nullptr, width);
    }
    return;
  }
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const uint32_t m = ReadDibPixel(mask, x, y) & 0xFF;
      const uint32_t over = ReadDibPixel(fillPicture, x, y);
      WriteDibPixel(canvas, x, y, BlendPixel(ReadDibPixel(canvas, x, y), over, m));
      if (alphaPlane) AddCoverage(alphaPlane, x, y, m);
    }
  }
}

void CompositeOutlineLayer(void* canvas, void* alphaPlane, const void* ring, uint32_t colour) {
  int32_t width = ImageWidth(canvas), height = ImageHeight(canvas);
  if (ImageWidth(ring) - 1 < width) width = ImageWidth(ring) - 1;
  if (ImageHeight(ring) < height) height = ImageHeight(ring);
  if (Depth(canvas) == 24 && Depth(ring) == 8 && UsualPlane(canvas, alphaPlane)) {
    // The flat colour in the canvas's byte order, blue first.
    const uint8_t bytes[3] = {static_cast<uint8_t>(colour >> 16), static_cast<uint8_t>(colour >> 8),
                              static_cast<uint8_t>(colour)};
    for (int32_t y = 0; y < height; ++y) {
      BlendRow(RowAt(canvas, y), bytes, 0, RowAt(ring, y) + 1,
               alphaPlane ? RowAt(alphaPlane, y) : nullptr, width);
    }
    return;
  }
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const uint32_t m = ReadDibPixel(ring, x + 1, y) & 0xFF;
      WriteDibPixel(canvas, x, y, BlendPixel(ReadDibPixel(canvas, x, y), colour, m));
      if (alphaPlane) AddCoverage(alphaPlane, x, y, m);
    }
  }
}

void CompositeOutlinePicture(void* canvas, void* alphaPlane, const void* ring, const void* picture) {
  int32_t width = ImageWidth(canvas), height = ImageHeight(canvas);
  if (ImageWidth(ring) - 1 < width) width = ImageWidth(ring) - 1;
  if (ImageWidth(picture) < width) width = ImageWidth(picture);
  if (ImageHeight(ring) < height) height = ImageHeight(ring);
  if (ImageHeight(picture) < height) height = ImageHeight(picture);
  if (Depth(canvas) == 24 && Depth(ring) == 8 && Depth(picture) == 24 &&
      UsualPlane(canvas, alphaPlane)) {
    for (int32_t y = 0; y < height; ++y) {
      BlendRow(RowAt(canvas, y), RowAt(picture, y), 3, RowAt(ring, y) + 1,
               alphaPlane ? RowAt(alphaPlane, y) : nullptr, width);
    }
    return;
  }
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const uint32_t m = ReadDibPixel(ring, x + 1, y) & 0xFF;
      const uint32_t over = ReadDibPixel(picture, x, y);
      WriteDibPixel(canvas, x, y, BlendPixel(ReadDibPixel(canvas, x, y), over, m));
      if (alphaPlane) AddCoverage(alphaPlane, x, y, m);
    }
  }
}

int SoftenShadowMask(MovableHandle* mask, int32_t softness) {
  if (softness <= 0) return 1;
  constexpr int32_t kReach = 200;  // what every caller passes; the kernel length is fixed anyway
  MovableHandle blurred = GaussianBlur(*mask, kReach, softness + 2);
  if (!blurred) return 0;
  MovableFree(*mask);
  *mask = blurred;
  return 1;
}

MovableHandle FinishTextFrame(MovableHandle canvas, MovableHandle alphaPlane) {
  if (!alphaPlane) return canvas;
  MovableHandle combined = CombineAlpha(canvas, alphaPlane);
  MovableFree(canvas);
  MovableFree(alphaPlane);
  return combined;
}

namespace {

// A new picture of the source's size at `depth` (8 gets the grey table), filled pixel by pixel
// with convert(source pixel value, source header).
template <typename Convert>
MovableHandle ConvertImage(MovableHandle image, int32_t depth, Convert convert) {
  ScopedLock source(image);
  const BitmapInfoHeader* h = ImageHeader(source);
  if (!h) return nullptr;
  const int32_t width = h->biWidth, height = h->biHeight;
  ScopedBlock result(CreatePackedDib(width, height, depth == 8 ? GreyRamp() : nullptr, depth));
  ScopedLock target(result.handle);
  if (!target) return nullptr;
  // A picture no pixel wide may still claim a great height: nothing to visit then.
  for (int32_t y = 0; width > 0 && y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      WriteDibPixel(target.bytes, x, y, convert(ReadDibPixel(source.bytes, x, y), source.bytes));
    }
  }
  return result.Release();
}

int32_t BitCount(MovableHandle image) {
  ScopedLock lock(image);
  const BitmapInfoHeader* h = ImageHeader(lock);
  return h ? h->biBitCount : 0;
}

}  // namespace

MovableHandle FlattenOnColour(MovableHandle image, uint32_t colour) {
  if (BitCount(image) != 32) return nullptr;
  return ConvertImage(image, 24, [colour](uint32_t pixel, const void*) {
    return BlendPixel(colour, pixel, pixel >> 24);
  });
}

MovableHandle ExpandToArgb(MovableHandle image) {
  const int32_t bits = BitCount(image);
  if (!bits) return nullptr;
  return ConvertImage(image, 32, [bits](uint32_t pixel, const void* header) {
    return (bits <= 8 ? TableColour(header, pixel) : pixel) | 0xFF000000;
  });
}

MovableHandle AlphaToMask(MovableHandle image) {
  const int32_t bits = BitCount(image);
  if (!bits) return nullptr;
  return ConvertImage(
      image, 8, [bits](uint32_t pixel, const void*) { return bits == 32 ? pixel >> 24 : 255u; });
}

MovableHandle FlattenBitmapFile(const uint8_t* data, size_t size, uint32_t colour) {
  constexpr size_t kFileHeaderBytes = 14;
  if (!data || size < kFileHeaderBytes + kDibHeaderBytes) return nullptr;
  // The Packed DIB after the file header is copied into a block of its own with a full colour
  // table, which the accessors expect whatever biClrUsed says.
  BitmapInfoHeader header;
  std::memcpy(&header, data + kFileHeaderBytes, sizeof header);
  if (header.biSize != kDibHeaderBytes || header.biWidth < 0 || header.biHeight < 0 ||
      header.biCompression != 0) {
    return nullptr;
  }
  const uint32_t bits = header.biBitCount;
  if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) return nullptr;
  const uint32_t fullTable = DibTableBytes(bits);
  const uint32_t used = bits <= 8 && header.biClrUsed && header.biClrUsed * 4 < fullTable
                            ? header.biClrUsed * 4
                            : fullTable;
  const uint64_t pixelBytes =
      static_cast<uint64_t>(DibStride(header.biWidth, bits)) * header.biHeight;
  if (kDibHeaderBytes + used + pixelBytes > size - kFileHeaderBytes) return nullptr;
  ScopedBlock picture(MovableAlloc(static_cast<size_t>(kDibHeaderBytes + fullTable + pixelBytes)));
  {
    ScopedLock lock(picture.handle);
    if (!lock) return nullptr;
    const uint8_t* dib = data + kFileHeaderBytes;
    std::memcpy(lock.bytes, dib, kDibHeaderBytes + used);
    std::memcpy(lock.bytes + kDibHeaderBytes + fullTable, dib + kDibHeaderBytes + used, pixelBytes);
  }
  return ConvertImage(picture.handle, 24, [bits, colour](uint32_t pixel, const void* h) {
    if (bits == 32) return BlendPixel(colour, pixel, pixel >> 24);
    return bits <= 8 ? TableColour(h, pixel) : pixel;
  });
}

MovableHandle LoadFlattenedResource(int32_t id, uint32_t colour) {
  size_t size = 0;
  const uint8_t* data = FindDataResource(id, &size);
  if (!data) return nullptr;
  return FlattenBitmapFile(data, size, colour == 0xFFFFFFFF ? ButtonFaceColour() : colour);
}
