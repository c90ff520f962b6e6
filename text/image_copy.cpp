// Rectangle copies, fills and rolls on Packed DIBs. Copies between pictures of one whole-byte
// depth move clipped rows with memcpy; any other pair goes pixel by pixel through the accessors,
// which give the same bytes.
#include "text/image_copy.h"

#include <algorithm>
#include <cstring>

#include "shell/packed_dib.h"

namespace {

// The header of a locked block that is large enough for the pixels it describes, or null.
BitmapInfoHeader* CheckedHeader(const ScopedLock& lock) {
  if (!lock || MovableSize(lock.handle) < kDibHeaderBytes) return nullptr;
  BitmapInfoHeader* header = reinterpret_cast<BitmapInfoHeader*>(lock.bytes);
  if (header->biWidth < 0 || header->biHeight < 0) return nullptr;
  const uint64_t need =
      static_cast<uint64_t>(DibBits(lock.bytes) - lock.bytes) +
      static_cast<uint64_t>(DibStride(header->biWidth, header->biBitCount)) * header->biHeight;
  return need <= MovableSize(lock.handle) ? header : nullptr;
}

}  // namespace

MovableHandle CreateImageLike(MovableHandle image) {
  ScopedLock source(image);
  const BitmapInfoHeader* header = CheckedHeader(source);
  if (!header) return nullptr;
  const size_t bitsOffset = DibBits(source.bytes) - source.bytes;
  ScopedBlock result(MovableAlloc(MovableSize(image)));
  ScopedLock target(result.handle);
  if (!target) return nullptr;
  std::memcpy(target.bytes, source.bytes, bitsOffset);
  return result.Release();
}

int CopyImageRect(MovableHandle target, int32_t targetX, int32_t targetY, MovableHandle source,
                  int32_t sourceX, int32_t sourceY, int32_t width, int32_t height) {
  if (height < 1 || width < 1) return 1;
  ScopedLock to(target);
  ScopedLock from(source);
  const BitmapInfoHeader* t = CheckedHeader(to);
  const BitmapInfoHeader* s = CheckedHeader(from);
  if (!t || !s) return 1;
  // Clip the block so that both ends stay inside; what remains is copied in full.
  int64_t x0 = 0, y0 = 0, x1 = width, y1 = height;
  x0 = std::max<int64_t>({x0, -static_cast<int64_t>(targetX), -static_cast<int64_t>(sourceX)});
  y0 = std::max<int64_t>({y0, -static_cast<int64_t>(targetY), -static_cast<int64_t>(sourceY)});
  x1 = std::min<int64_t>(
      {x1, static_cast<int64_t>(t->biWidth) - targetX, static_cast<int64_t>(s->biWidth) - sourceX});
  y1 = std::min<int64_t>({y1, static_cast<int64_t>(t->biHeight) - targetY,
                          static_cast<int64_t>(s->biHeight) - sourceY});
  if (x0 >= x1 || y0 >= y1) return 1;
  const int32_t bits = s->biBitCount;
  if (bits == t->biBitCount && bits % 8 == 0 && source != target) {
    const int32_t bytes = bits / 8;
    const size_t sStride = DibStride(s->biWidth, bits), tStride = DibStride(t->biWidth, bits);
    uint8_t* tBits = DibBits(to.bytes);
    const uint8_t* sBits = DibBits(from.bytes);
    for (int64_t y = y0; y < y1; ++y) {
      const size_t sRow = static_cast<size_t>(s->biHeight - 1 - (sourceY + y));
      const size_t tRow = static_cast<size_t>(t->biHeight - 1 - (targetY + y));
      std::memcpy(tBits + tRow * tStride + (targetX + x0) * bytes,
                  sBits + sRow * sStride + (sourceX + x0) * bytes, (x1 - x0) * bytes);
    }
    return 1;
  }
  for (int64_t y = y0; y < y1; ++y) {
    for (int64_t x = x0; x < x1; ++x) {
      const uint32_t value = ReadDibPixel(from.bytes, static_cast<int32_t>(sourceX + x),
                                          static_cast<int32_t>(sourceY + y));
      WriteDibPixel(to.bytes, static_cast<int32_t>(targetX + x), static_cast<int32_t>(targetY + y),
                    value);
    }
  }
  return 1;
}

MovableHandle CropImage(MovableHandle image, int32_t left, int32_t top, int32_t width,
                        int32_t height) {
  ScopedBlock crop;
  {
    ScopedLock source(image);
    const BitmapInfoHeader* header = CheckedHeader(source);
    if (!header) return nullptr;
    crop.handle = CreatePackedDib(width, height, nullptr, header->biBitCount);
    ScopedLock target(crop.handle);
    if (!target) return nullptr;
    std::memcpy(DibTable(target.bytes), DibTable(source.bytes), DibTableBytes(header->biBitCount));
  }
  CopyImageRect(crop.handle, 0, 0, image, left, top, width, height);
  return crop.Release();
}

void FillRows24(void* picture, uint32_t colour) {
  const BitmapInfoHeader* h = static_cast<const BitmapInfoHeader*>(picture);
  const int32_t width = h->biWidth, height = h->biHeight;
  if (width < 1 || height < 1) return;
  const size_t stride = DibStride(width, 24);
  uint8_t* bits = DibBits(picture);
  uint8_t* first = bits + (height - 1) * stride;  // the top row
  for (int32_t x = 0; x < width; ++x) WriteDibPixel(picture, x, 0, colour);
  for (int32_t y = 0; y < height - 1; ++y) std::memcpy(bits + y * stride, first, width * 3);
}

int FillImageRect(MovableHandle image, int32_t width, int32_t height, uint32_t colour) {
  ScopedLock lock(image);
  if (!CheckedHeader(lock)) return 1;
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) WriteDibPixel(lock.bytes, x, y, colour);
  }
  return 1;
}

namespace {

// The picture's width and height, 0 and 0 when it cannot be read.
void ImageSize(MovableHandle image, int32_t* width, int32_t* height) {
  ScopedLock lock(image);
  const BitmapInfoHeader* header = CheckedHeader(lock);
  *width = header ? header->biWidth : 0;
  *height = header ? header->biHeight : 0;
}

// Copies `image` into a new picture in two blocks: rows or columns [0, split) go to
// [distance, ...) and the rest wrap to the front.
MovableHandle Roll(MovableHandle image, int32_t distance, bool vertical, bool forward) {
  MovableHandle result = CreateImageLike(image);
  if (!result) return nullptr;
  int32_t width, height;
  ImageSize(image, &width, &height);
  const int32_t size = vertical ? height : width;
  // forward: what is at 0 moves to `distance`; backward: what is at `distance` moves to 0.
  const int32_t keep = size - distance;
  const int32_t firstFrom = forward ? 0 : distance, firstTo = forward ? distance : 0;
  const int32_t wrapFrom = forward ? keep : 0, wrapTo = forward ? 0 : keep;
  if (vertical) {
    CopyImageRect(result, 0, firstTo, image, 0, firstFrom, width, keep);
    CopyImageRect(result, 0, wrapTo, image, 0, wrapFrom, width, distance);
  } else {
    CopyImageRect(result, firstTo, 0, image, firstFrom, 0, keep, height);
    CopyImageRect(result, wrapTo, 0, image, wrapFrom, 0, distance, height);
  }
  return result;
}

}  // namespace

MovableHandle RollDown(MovableHandle image, int32_t distance) {
  return Roll(image, distance, true, true);
}
MovableHandle RollUp(MovableHandle image, int32_t distance) {
  return Roll(image, distance, true, false);
}
MovableHandle RollRight(MovableHandle image, int32_t distance) {
  return Roll(image, distance, false, true);
}
MovableHandle RollLeft(MovableHandle image, int32_t distance) {
  return Roll(image, distance, false, false);
}
