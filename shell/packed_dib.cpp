// Making and copying Packed DIBs and raw movable blocks. Each maker returns its block unlocked and
// frees whatever it made when a step fails.
#include "shell/packed_dib.h"

#include <cstring>

namespace {

// Real bits and table entries of a depth class.
void DepthClass(int32_t depth, uint16_t* bits, uint32_t* entries) {
  if (depth == 1) {
    *bits = 1, *entries = 2;
  } else if (depth >= 2 && depth <= 4) {
    *bits = 4, *entries = 16;
  } else if (depth >= 5 && depth <= 8) {
    *bits = 8, *entries = 256;
  } else if (depth >= 9 && depth <= 24) {
    *bits = 24, *entries = 0;
  } else {
    *bits = 32, *entries = 0;  // 0, negative and above 24
  }
}

// Images whose bits would not fit a 32-bit biSizeImage are refused rather than wrapped.
constexpr uint64_t kMaxImageBytes = 0x7FFFFFFF;

}  // namespace

MovableHandle CreatePackedDib(int32_t width, int32_t height, const uint8_t* palette,
                              int32_t depth) {
  if (width < 0 || height < 0) return nullptr;
  uint16_t bits;
  uint32_t entries;
  DepthClass(depth, &bits, &entries);
  const uint64_t imageBytes = static_cast<uint64_t>(DibStride(width, bits)) * height;
  if (imageBytes > kMaxImageBytes) return nullptr;

  ScopedBlock block(MovableAlloc(imageBytes + kDibHeaderBytes + entries * 4));
  ScopedLock lock(block.handle);
  if (!lock) return nullptr;
  BitmapInfoHeader* header = reinterpret_cast<BitmapInfoHeader*>(lock.bytes);
  header->biSize = kDibHeaderBytes;
  header->biWidth = width;
  header->biHeight = height;
  header->biPlanes = 1;
  header->biBitCount = bits;
  header->biSizeImage = static_cast<uint32_t>(imageBytes);
  header->biClrUsed = entries;
  header->biClrImportant = entries;
  if (palette) {
    uint8_t* table = DibTable(lock.bytes);
    for (uint32_t i = 0; i < entries; ++i) {
      table[i * 4 + 2] = palette[i * 3];
      table[i * 4 + 1] = palette[i * 3 + 1];
      table[i * 4 + 0] = palette[i * 3 + 2];
    }
  }
  return block.Release();
}

MovableHandle CreatePackedDib32(int32_t width, int32_t height) {
  return CreatePackedDib(width, height, nullptr, 32);
}

MovableHandle CopyToMovableBlock(const void* bytes, size_t size) {
  ScopedBlock block(MovableAlloc(size));
  ScopedLock lock(block.handle);
  if (!lock) return nullptr;
  if (size) std::memcpy(lock.bytes, bytes, size);
  return block.Release();
}

MovableHandle CopyMovableBlock(MovableHandle handle) {
  const size_t size = MovableSize(handle);
  if (size < 1) return nullptr;
  ScopedLock source(handle);
  if (!source) return nullptr;
  return CopyToMovableBlock(source.bytes, size);
}

MovableHandle DuplicateHandle(MovableHandle image) {
  return CopyMovableBlock(image);
}
