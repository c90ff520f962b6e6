// Without GDI+ the host reads a BMP file as one frame of a still picture.
#include "host/animation_reader.h"

#include <vector>

#include "host/bmp_file.h"
#include "shell/packed_dib.h"

int ReadHostAnimationFile(const char* path, ComposedAnimation* out) {
  *out = ComposedAnimation();
  if (!path) return 0;
  const std::vector<uint8_t> bytes = ReadWholeFile(path);
  ScopedBlock dib(BmpToPackedDib(bytes.data(), bytes.size()));
  ScopedLock picture(dib.handle);
  if (!picture) return 0;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(picture.bytes);
  const int32_t width = h->biWidth, height = h->biHeight < 0 ? -h->biHeight : h->biHeight;
  if (width <= 0 || height <= 0 || width > kAnimationLargestSide || height > kAnimationLargestSide)
    return 0;
  std::vector<uint8_t> rgb(static_cast<size_t>(width) * height * 3);
  uint8_t* p = rgb.data();
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x, p += 3) {
      uint32_t pixel = ReadDibPixel(picture.bytes, x, y);  // 0x00BBGGRR, or an index
      if (h->biBitCount <= 8) {
        const uint8_t* entry = picture.bytes + kDibHeaderBytes + 4 * (pixel & 0xFF);
        pixel = entry[2] | entry[1] << 8 | entry[0] << 16;  // blue, green, red, 0
      }
      p[0] = static_cast<uint8_t>(pixel);
      p[1] = static_cast<uint8_t>(pixel >> 8);
      p[2] = static_cast<uint8_t>(pixel >> 16);
    }
  out->width = width;
  out->height = height;
  out->frames.push_back(std::move(rgb));
  out->delays.push_back(kStillPictureDelay);
  return 1;
}
