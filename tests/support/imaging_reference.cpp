// The reference colour operations: each step as told, with ReadDibPixel and WriteDibPixel, a coarse
// table built for every call, and a full working picture.
#include "tests/support/imaging_reference.h"

#include <cstring>
#include <vector>

#include "imaging/palette.h"
#include "shell/packed_dib.h"

namespace {

const uint8_t* TableEntry(const void* header, uint32_t i) {
  return static_cast<const uint8_t*>(header) + 40 + i * 4;
}

// Red, green, blue of the pixel at (x, y) of a 4, 8 or 24-bit picture.
void PixelRgb(const void* header, int32_t x, int32_t y, int32_t* rgb) {
  const uint32_t value = ReadDibPixel(header, x, y);
  if (static_cast<const BitmapInfoHeader*>(header)->biBitCount == 24) {
    rgb[0] = value & 0xFF;
    rgb[1] = value >> 8 & 0xFF;
    rgb[2] = value >> 16 & 0xFF;
  } else {
    const uint8_t* e = TableEntry(header, value);
    rgb[0] = e[2];
    rgb[1] = e[1];
    rgb[2] = e[0];
  }
}

struct RefLookup {
  const uint8_t* palette;
  int32_t count;
  int32_t fastRemap;
  std::vector<uint8_t> coarse;
  RefLookup(const uint8_t* p, int32_t c, int32_t fast) : palette(p), count(c), fastRemap(fast) {
    coarse.resize(32768);
    for (int32_t i = 0; i < 32768; ++i)
      coarse[i] = static_cast<uint8_t>(RefNearestPaletteIndex((i % 32) * 8, ((i / 32) % 32) * 8,
                                                              (i / 1024) * 8, palette, count));
  }
  int32_t Find(int32_t r, int32_t g, int32_t b) const {
    if (!fastRemap) return RefNearestPaletteIndex(r, g, b, palette, count);
    for (int32_t i = 0; i < count && i < 256; ++i)
      if (palette[i * 3] == r && palette[i * 3 + 1] == g && palette[i * 3 + 2] == b) return i;
    return coarse[r / 8 + (g / 8) * 32 + (b / 8) * 1024];
  }
};

uint8_t Clamp(int32_t v) {
  return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
}

}  // namespace

int32_t RefNearestPaletteIndex(int32_t red, int32_t green, int32_t blue, const uint8_t* palette,
                               int32_t count) {
  for (int32_t i = 0; i < count && i < 256; ++i)
    if (palette[i * 3] == red && palette[i * 3 + 1] == green && palette[i * 3 + 2] == blue)
      return i;
  if (count < 1) return 0;
  int32_t best = 1000000, bestIndex = 0;
  for (int32_t i = 0; i < count && i < 256; ++i) {
    const int32_t dr = red - palette[i * 3];
    const int32_t dg = green - palette[i * 3 + 1];
    const int32_t db = blue - palette[i * 3 + 2];
    const int32_t d = 3 * dr * dr + 4 * dg * dg + 2 * db * db;
    if (d < best) {
      best = d;
      bestIndex = i;
    }
    if (d == 0) break;
  }
  return bestIndex;
}

MovableHandle RefDitherToPalette(MovableHandle image, const uint8_t* palette, int32_t bits,
                                 int32_t count, const RemapSettings& settings) {
  ScopedLock src(image);
  if (!src) return nullptr;
  const auto* h = reinterpret_cast<const BitmapInfoHeader*>(src.bytes);
  const int32_t w = h->biWidth, height = h->biHeight, depth = h->biBitCount;
  if (depth != 4 && depth != 8 && depth != 24) return nullptr;
  MovableHandle target = CreatePackedDib(w, height, palette, bits);
  ScopedLock out(target);
  if (bits >= 2) {
    RefLookup lookup(palette, count, settings.fastRemap);
    // Working picture in memory row order, red, green, blue.
    std::vector<uint8_t> work(static_cast<size_t>(w) * height * 3);
    for (int32_t r = 0; r < height; ++r)
      for (int32_t x = 0; x < w; ++x) {
        int32_t rgb[3];
        PixelRgb(src.bytes, x, height - 1 - r, rgb);
        for (int k = 0; k < 3; ++k)
          work[(static_cast<size_t>(r) * w + x) * 3 + k] = static_cast<uint8_t>(rgb[k]);
      }
    std::vector<int16_t> current(w * 3), next(w * 3);
    for (int32_t r = 0; r < height; ++r) {
      for (int32_t i = 0; i < w * 3; ++i)
        current[i] = static_cast<int16_t>(current[i] + work[static_cast<size_t>(r) * w * 3 + i]);
      const bool hasNext = r + 1 < height;
      for (int32_t x = 0; x < w; ++x) {
        const int32_t cr = Clamp(current[x * 3]), cg = Clamp(current[x * 3 + 1]),
                      cb = Clamp(current[x * 3 + 2]);
        const int32_t index = lookup.Find(cr, cg, cb);
        WriteDibPixel(out.bytes, x, height - 1 - r, static_cast<uint32_t>(index));
        const int32_t e[3] = {cr - palette[index * 3], cg - palette[index * 3 + 1],
                              cb - palette[index * 3 + 2]};
        for (int k = 0; k < 3; ++k) {
          if (x + 1 < w)
            current[(x + 1) * 3 + k] =
                static_cast<int16_t>(current[(x + 1) * 3 + k] + ((e[k] * 7) >> 4));
          if (x >= 2 && hasNext)
            next[(x - 1) * 3 + k] = static_cast<int16_t>(next[(x - 1) * 3 + k] + ((e[k] * 3) >> 4));
          if (x + 1 < w && hasNext)
            next[(x + 1) * 3 + k] = static_cast<int16_t>(next[(x + 1) * 3 + k] + (e[k] >> 4));
          if (hasNext) next[x * 3 + k] = static_cast<int16_t>(next[x * 3 + k] + ((e[k] * 5) >> 4));
        }
      }
      current = next;
      std::fill(next.begin(), next.end(), 0);
    }
    return target;
  }
  uint8_t tone[256];
  {
    const double c = settings.ditherContrast, b = settings.ditherBrightness;
    const double step = 256 / (256 - 2 * c);
    double value = b - c;
    for (int i = 0; i < 256; ++i) {
      if (value > 254.0)
        tone[i] = 254;
      else if (value < 1.0)
        tone[i] = 1;
      else
        tone[i] = static_cast<uint8_t>(value);
      value += step;
    }
  }
  const int32_t stride = static_cast<int32_t>(DibStride(w, 8));
  std::vector<uint8_t> work(static_cast<size_t>(stride) * height);
  int32_t low = 255, high = 0;
  for (int32_t r = 0; r < height; ++r)
    for (int32_t x = 0; x < w; ++x) {
      int32_t rgb[3];
      PixelRgb(src.bytes, x, height - 1 - r, rgb);
      const uint8_t key =
          static_cast<uint8_t>((rgb[0] * 77) / 255 + (rgb[1] * 150) / 255 + (rgb[2] * 28) / 255);
      work[static_cast<size_t>(r) * stride + x] = key;
      if (key < low) low = key;
      if (key > high) high = key;
    }
  const int32_t middle = (low + high) / 2;
  for (int32_t r = 0; r < height; ++r) {
    const bool hasNext = r + 1 < height;
    const size_t row = static_cast<size_t>(r) * stride, below = row + stride;
    for (int32_t x = 0; x < w; ++x) {
      const int32_t v = tone[work[row + x]];
      int32_t e;
      if (v > middle) {
        WriteDibPixel(out.bytes, x, height - 1 - r, 1);
        e = v - high;
      } else {
        WriteDibPixel(out.bytes, x, height - 1 - r, 0);
        e = v - low;
      }
      const int32_t s = e >> 4;
      if (x + 1 < w && hasNext) work[below + x + 1] = Clamp(work[below + x + 1] + s);
      if (x != 1 && hasNext) work[below + x - 1] = Clamp(work[below + x - 1] + 3 * s);
      if (hasNext) work[below + x] = Clamp(work[below + x] + 5 * s);
      if (x + 1 < w) work[row + x + 1] = Clamp(work[row + x + 1] + 7 * s);
    }
  }
  return target;
}

MovableHandle RefRemapToPalette(MovableHandle image, const uint8_t* palette, int32_t bits,
                                int32_t count, const RemapSettings& settings) {
  ScopedLock src(image);
  if (!src) return nullptr;
  const auto* h = reinterpret_cast<const BitmapInfoHeader*>(src.bytes);
  const int32_t w = h->biWidth, height = h->biHeight, depth = h->biBitCount;
  if (depth != 1 && depth != 4 && depth != 8 && depth != 24) return nullptr;
  uint8_t translate[256] = {};
  if (depth <= 8)
    for (uint32_t i = 0; i < (1u << depth); ++i) {
      const uint8_t* e = TableEntry(src.bytes, i);
      translate[i] =
          static_cast<uint8_t>(RefNearestPaletteIndex(e[2], e[1], e[0], palette, 1 << bits));
    }
  RefLookup lookup(palette, count, settings.fastRemap);
  int32_t white = -1, black = -1;
  if (!settings.fastRemap) {
    white = RefNearestPaletteIndex(255, 255, 255, palette, count);
    black = RefNearestPaletteIndex(0, 0, 0, palette, count);
  } else {
    for (int32_t i = 0; i < count && i < 256; ++i) {
      const uint8_t* p = palette + i * 3;
      if (white < 0 && p[0] == 255 && p[1] == 255 && p[2] == 255) white = i;
      if (black < 0 && p[0] == 0 && p[1] == 0 && p[2] == 0) black = i;
    }
    if (white < 0) white = lookup.coarse[32767];
    if (black < 0) black = lookup.coarse[0];
  }
  MovableHandle target = CreatePackedDib(w, height, palette, bits);
  ScopedLock out(target);
  const bool toBits = reinterpret_cast<const BitmapInfoHeader*>(out.bytes)->biBitCount == 1;
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < w; ++x) {
      const uint32_t p = ReadDibPixel(src.bytes, x, y);
      uint32_t value;
      if (depth == 1) {
        value = toBits ? p : p ? white : black;
      } else if (depth <= 8) {
        const uint8_t* e = TableEntry(src.bytes, p);
        value = toBits ? LuminanceKey(e[2], e[1], e[0]) >= 129 : translate[p];
      } else {
        const int32_t r = p & 0xFF, g = p >> 8 & 0xFF, b = p >> 16 & 0xFF;
        value = toBits ? LuminanceKey(r, g, b) >= 129 : lookup.Find(r, g, b);
      }
      WriteDibPixel(out.bytes, x, y, value);
    }
  return target;
}

MovableHandle MakeRandomImage(std::mt19937& rng, int32_t width, int32_t height, int32_t depth) {
  MovableHandle image = CreatePackedDib(width, height, nullptr, depth);
  ScopedLock lock(image);
  auto* h = reinterpret_cast<BitmapInfoHeader*>(lock.bytes);
  // Random table, random bits including the row padding.
  const size_t rest = MovableSize(image) - 40;
  for (size_t i = 0; i < rest; ++i) lock.bytes[40 + i] = static_cast<uint8_t>(rng());
  // Pictures with few colours make runs and repeated lookups, as rendered frames do.
  if (depth >= 24 && rng() % 2) {
    const uint32_t colours[3] = {static_cast<uint32_t>(rng()), static_cast<uint32_t>(rng()),
                                 static_cast<uint32_t>(rng())};
    for (int32_t y = 0; y < h->biHeight; ++y)
      for (int32_t x = 0; x < h->biWidth; ++x)
        if (rng() % 4) WriteDibPixel(lock.bytes, x, y, colours[rng() % 3]);
  }
  return image;
}

void MakeRandomPalette(std::mt19937& rng, uint8_t* palette, int32_t count) {
  std::memset(palette, 0, 768);
  for (int32_t i = 0; i < count; ++i) {
    if (i > 0 && rng() % 4 == 0) {
      std::memcpy(palette + i * 3, palette + (rng() % i) * 3, 3);
    } else {
      for (int k = 0; k < 3; ++k) palette[i * 3 + k] = static_cast<uint8_t>(rng());
    }
  }
}

MovableHandle MakeImage24(int32_t width, int32_t height, const uint32_t* pixels) {
  MovableHandle image = CreatePackedDib(width, height, nullptr, 24);
  ScopedLock lock(image);
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) WriteDibPixel(lock.bytes, x, y, pixels[y * width + x]);
  return image;
}

FrameListView::FrameListView(const MovableHandle* images, int32_t count) {
  for (int32_t i = 0; i < count; ++i) {
    FrameRecord record{};
    record.image = images[i];
    record.transparentIndex = -1;
    AppendFrame(&list, &record);
  }
}
