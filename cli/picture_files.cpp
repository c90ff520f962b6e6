// Pictures by content: "BM" goes to the BMP reader, a JPEG start marker to libjpeg, and anything
// else to the animation readers, of whose frames the first is kept.
#include "cli/picture_files.h"

#include <cstring>
#include <vector>

#include "cli/animation_files.h"
#include "cli/jpeg_file.h"
#include "host/animation_block.h"
#include "host/bmp_file.h"
#include "shell/packed_dib.h"

MovableHandle RgbToPackedDib(const uint8_t* rgb, int32_t width, int32_t height) {
  if (!rgb || width <= 0 || height <= 0) return nullptr;
  ScopedBlock block(MovableAlloc(kDibHeaderBytes + size_t{DibStride(width, 24)} * height));
  ScopedLock lock(block.handle);
  if (!lock) return nullptr;
  PutRgbAsDib24(lock.bytes, rgb, width, height);
  return block.Release();
}

namespace {

// The canvas that a GIF or PNG header claims, checked before anything is decoded.
int ClaimsTooManyPixels(const uint8_t* bytes, size_t size) {
  uint64_t width = 0, height = 0;
  if (size >= 10 && std::memcmp(bytes, "GIF8", 4) == 0) {
    width = bytes[6] | bytes[7] << 8;
    height = bytes[8] | bytes[9] << 8;
  } else if (size >= 24 && std::memcmp(bytes, "\x89PNG", 4) == 0) {
    auto big32 = [bytes](size_t at) {
      return uint64_t{bytes[at]} << 24 | uint64_t{bytes[at + 1]} << 16 | bytes[at + 2] << 8 |
             bytes[at + 3];
    };
    width = big32(16);
    height = big32(20);
  }
  return width * height > kPictureLargestPixels;
}

}  // namespace

MovableHandle ReadPictureBytes(const uint8_t* bytes, size_t size) {
  if (!bytes || size < 2 || ClaimsTooManyPixels(bytes, size)) return nullptr;
  if (bytes[0] == 'B' && bytes[1] == 'M') return BmpToPackedDib(bytes, size);
  if (bytes[0] == 0xFF && bytes[1] == 0xD8) {
    int32_t width = 0, height = 0;
    std::vector<uint8_t> rgb;
    if (!ReadJpegBytes(bytes, size, &width, &height, &rgb, kPictureLargestPixels)) return nullptr;
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
