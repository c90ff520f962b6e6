#include "tests/support/parity_files.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "shell/packed_dib.h"

int WriteParityFile(const std::string& path, MovableHandle image) {
  ScopedLock lock(image);
  if (!lock) return 0;
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return 0;
  const size_t size = MovableSize(image);
  const bool written = std::fwrite(lock.bytes, 1, size, file) == size;
  return std::fclose(file) == 0 && written;
}

MovableHandle ReadParityFile(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (!file) return nullptr;
  std::vector<uint8_t> bytes;
  uint8_t chunk[4096];
  size_t got;
  while ((got = std::fread(chunk, 1, sizeof chunk, file)) > 0)
    bytes.insert(bytes.end(), chunk, chunk + got);
  std::fclose(file);
  return bytes.size() >= kDibHeaderBytes ? CopyToMovableBlock(bytes.data(), bytes.size()) : nullptr;
}

int ComparePictures(MovableHandle a, MovableHandle b, PictureDifference* out) {
  *out = {};
  ScopedLock la(a), lb(b);
  if (!la || !lb) return 0;
  const uint8_t* bytes[2] = {la.bytes, lb.bytes};
  for (int i = 0; i < 2; ++i) {
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(bytes[i]);
    out->width[i] = h->biWidth;
    out->height[i] = h->biHeight;
  }
  const int32_t width = std::min(out->width[0], out->width[1]);
  const int32_t height = std::min(out->height[0], out->height[1]);
  double channelSum = 0;
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) {
      const uint32_t p = ReadDibPixel(la.bytes, x, y), q = ReadDibPixel(lb.bytes, x, y);
      if (p == q) continue;
      ++out->differing;
      for (int s = 0; s < 24; s += 8)
        channelSum +=
            std::abs(static_cast<int>((p >> s) & 0xFF) - static_cast<int>((q >> s) & 0xFF));
    }
  if (width > 0 && height > 0) out->share = out->differing / (static_cast<double>(width) * height);
  if (out->differing) out->meanChannel = channelSum / (3.0 * out->differing);
  return 1;
}
