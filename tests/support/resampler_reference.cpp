// The reference resampler: the same kernel table, every pixel through ReadDibPixel and
// WriteDibPixel, and the contribution list rebuilt for each target line.
#include <algorithm>
#include <cmath>
#include <vector>

#include "imaging/palette.h"
#include "imaging/resampler.h"
#include "shell/packed_dib.h"
#include "tests/support/imaging_reference.h"

namespace {

uint32_t Channel(double sum) {
  if (sum < 0) return 0;
  if (sum > 255) return 255;
  return static_cast<uint32_t>(static_cast<int>(sum + 0.5));
}

// One pass; `across` filters along x. The pictures are locked.
void Pass(const void* source, void* target, double factor, const FilterEntry& filter, double blur,
          bool across) {
  const auto* hs = static_cast<const BitmapInfoHeader*>(source);
  const auto* ht = static_cast<const BitmapInfoHeader*>(target);
  const int depth = hs->biBitCount;
  double scale = blur * std::max(1.0 / factor, 1.0);
  double support = scale * filter.support;
  if (support <= 0.5) {
    support = 0.500001;
    scale = 1.0;
  }
  const int lines = across ? ht->biWidth : ht->biHeight;
  const int others = across ? ht->biHeight : ht->biWidth;
  const int sourceSize = across ? hs->biWidth : hs->biHeight;
  for (int t = 0; t < lines; ++t) {
    const double centre = (t + 0.5) / factor;
    const int start = static_cast<int>(std::max(centre - support + 0.5, 0.0));
    const int stop = static_cast<int>(std::min(centre + support + 0.5, double(sourceSize)));
    std::vector<double> weight;
    double density = 0;
    for (int j = start; j < stop; ++j) {
      weight.push_back(filter.kernel((j - centre + 0.5) * (1 / scale), filter.support));
      density += weight.back();
    }
    if (density != 0.0 && density != 1.0)
      for (double& w : weight) w *= 1 / density;
    for (int o = 0; o < others; ++o) {
      double sum[4] = {};
      for (int j = start; j < stop; ++j) {
        const uint32_t p = across ? ReadDibPixel(source, j, o) : ReadDibPixel(source, o, j);
        const double w = weight[j - start];
        if (depth == 8) {
          sum[0] += w * p;
        } else {
          for (int k = 0; k < (depth == 32 ? 4 : 3); ++k) sum[k] += w * ((p >> (8 * k)) & 0xFF);
        }
      }
      uint32_t value = 0;
      for (int k = 0; k < 4; ++k) value |= Channel(sum[k]) << (8 * k);
      if (across)
        WriteDibPixel(target, t, o, value);
      else
        WriteDibPixel(target, o, t, value);
    }
  }
}

}  // namespace

MovableHandle RefResampleImage(MovableHandle image, int32_t width, int32_t height, double blur) {
  ScopedLock source(image);
  const auto* h = reinterpret_cast<const BitmapInfoHeader*>(source.bytes);
  const int sw = h->biWidth, sh = h->biHeight, depth = h->biBitCount;
  uint8_t palette[768];
  const bool table = ReadDibPalette(source.bytes, palette) > 0;
  if (width == sw && height == sh && blur == 1.0) return DuplicateHandle(image);
  const double fx = std::max(double(width) / sw, 0.0001),
               fy = std::max(double(height) / sh, 0.0001);
  const FilterEntry& filter = kFilters[fx * fy > 1.0 ? 12 : 13];
  MovableHandle target = CreatePackedDib(width, height, table ? palette : nullptr, depth);
  ScopedLock out(target);
  if (double(sh + height) * width <= double(sw + width) * height) {
    MovableHandle temp = CreatePackedDib(sw, height, table ? palette : nullptr, depth);
    {
      ScopedLock t(temp);
      Pass(source.bytes, t.bytes, fy, filter, blur, false);
      Pass(t.bytes, out.bytes, fx, filter, blur, true);
    }
    MovableFree(temp);
  } else {
    MovableHandle temp = CreatePackedDib(width, sh, table ? palette : nullptr, depth);
    {
      ScopedLock t(temp);
      Pass(source.bytes, t.bytes, fx, filter, blur, true);
      Pass(t.bytes, out.bytes, fy, filter, blur, false);
    }
    MovableFree(temp);
  }
  return target;
}
