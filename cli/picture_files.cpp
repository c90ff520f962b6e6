// Pictures by content: "BM" goes to the BMP reader, a JPEG start marker to libjpeg, and anything
// else to the animation readers, of whose frames the first is kept.
#include "cli/picture_files.h"

#include <cstring>
#include <vector>

#include "cli/animation_files.h"
#include "cli/jpeg_file.h"
#include "host/bmp_file.h"
#include "shell/packed_dib.h"

void PutRgbAsDib24(uint8_t* dib, const uint8_t* rgb, int32_t width, int32_t height) {
  const size_t stride = DibStride(width, 24);
  BitmapInfoHeader info{};
  info.biSize = kDibHeaderBytes;
  info.biWidth = width;
  info.biHeight = height;
  info.biPlanes = 1;
  info.biBitCount = 24;
  info.biSizeImage = static_cast<uint32_t>(stride * height);
  std::memcpy(dib, &info, sizeof info);
  for (int32_t y = 0; y < height; ++y) {
    uint8_t* row = dib + kDibHeaderBytes + static_cast<size_t>(height - 1 - y) * stride;
    for (int32_t x = 0; x < width; ++x, rgb += 3) {
      row[3 * x] = rgb[2];
      row[3 * x + 1] = rgb[1];
      row[3 * x + 2] = rgb[0];
    }
  }
}

MovableHandle RgbToPackedDib(const uint8_t* rgb, int32_t width, int32_t height) {
  if (!rgb || width <= 0 || height <= 0) return nullptr;
  ScopedBlock block(MovableAlloc(kDibHeaderBytes + size_t{DibStride(width, 24)} * height));
  ScopedLock lock(block.handle);
  if (!lock) return nullptr;
  PutRgbAsDib24(lock.bytes, rgb, width, height);
  return block.Release();
}

MovableHandle ReadPictureBytes(const uint8_t* bytes, size_t size) {
  if (!bytes || size < 2) return nullptr;
  if (bytes[0] == 'B' && bytes[1] == 'M') return BmpToPackedDib(bytes, size);
  if (bytes[0] == 0xFF && bytes[1] == 0xD8) {
    int32_t width = 0, height = 0;
    std::vector<uint8_t> rgb;
    if (!ReadJpegBytes(bytes, size, &width, &height, &rgb)) return nullptr;
    return RgbToPackedDib(rgb.data(), width, height);
  }
  ComposedAnimation animation;
  if (!ReadAnimationBytes(bytes, size, &animation)) return nullptr;
  return RgbToPackedDib(animation.frames[0].data(), animation.width, animation.height);
}

MovableHandle ReadPictureFile(const char* path) {
  const std::vector<uint8_t> bytes = ReadWholeFile(path);
  return ReadPictureBytes(bytes.data(), bytes.size());
}
