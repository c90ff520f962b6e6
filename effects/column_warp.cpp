// The pulse is worked out in single precision and the stretch in integers, truncating throughout,
// so that a frame's bytes are the same wherever it is built.
#include "effects/column_warp.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "imaging/dib_view.h"
#include "imaging/resampler.h"
#include "shell/packed_dib.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

// Each byte of the two pixels weighed (n - 1 - k) to (k + 1) out of n, the two terms truncated
// apart.
uint32_t Between(uint32_t current, uint32_t next, int32_t n, int32_t k) {
  uint32_t out = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const int32_t c = (current >> shift) & 0xFF, x = (next >> shift) & 0xFF;
    out |= static_cast<uint32_t>(c * (n - 1 - k) / n + x * (k + 1) / n) << shift;
  }
  return out;
}

// Each byte halved, truncating, and the halves added: Between(current, next, 2, 0) with no carry
// between bytes, as each sum stays below 255.
inline uint32_t HalfWay(uint32_t current, uint32_t next) {
  return ((current >> 1) & 0x7F7F7F7Fu) + ((next >> 1) & 0x7F7F7F7Fu);
}

}  // namespace

MovableHandle MakePulseWave(int32_t canvasWidth, int32_t wavelength, int32_t steps, int32_t index) {
  const int32_t length = 4 * canvasWidth;
  if (length < 0) return nullptr;
  ScopedBlock block(MovableAlloc((static_cast<size_t>(length) + kPulseWaveSlack) * sizeof(float)));
  ScopedLock lock(block.handle);
  if (!lock) return nullptr;
  if (steps < 1) return block.Release();  // no steps to travel: no pulse
  float* wave = reinterpret_cast<float*>(lock.bytes);
  const float lengthF = static_cast<float>(length);
  const int32_t width =
      static_cast<int32_t>(std::trunc(lengthF * (static_cast<float>(wavelength) / 100.0f)));
  const float share = static_cast<float>(index) / static_cast<float>(steps);
  int32_t pos = static_cast<int32_t>(std::trunc(lengthF * share));
  const int32_t extra = static_cast<int32_t>(std::trunc(share));  // 1 only at the last step
  for (int32_t j = 0; j < width; ++j) {
    if (pos < 0 || pos >= length) continue;  // once at the end, the pulse is cut off there
    const float f = static_cast<float>(j) / static_cast<float>(width);
    wave[extra + pos] += static_cast<float>(std::sin(static_cast<double>(f) * kPi));
    ++pos;
  }
  return block.Release();
}

void StretchColumn(const uint32_t* column, int32_t height, int32_t percent, uint32_t* target) {
  int32_t acc = percent, t = 0;
  for (int32_t s = 0; s < height; ++s) {
    const uint32_t current = column[s], next = column[s + 1];
    const int32_t e = acc / 100, n = e - t;
    // Below 200 % a source pixel spans one or two rows; the last of a span is `next` itself.
    if (n == 1) {
      if (t < height) target[t] = next;
    } else if (n == 2) {
      if (t < height) target[t] = HalfWay(current, next);
      if (t + 1 < height) target[t + 1] = next;
    } else {
      for (int32_t k = 0; k < n && t < height; ++k, ++t) target[t] = Between(current, next, n, k);
    }
    acc += percent;
    target[e] = next;
    t = e;
  }
}

namespace {

// A column's pixels as words, one byte per channel in memory order: the stretch treats every
// byte on its own, so the order of the bytes in the word does not matter.
void ReadColumn(const DibView& view, int32_t bpp, int32_t x, uint32_t* column) {
  const uint8_t* p = view.bits + static_cast<size_t>(x) * bpp;
  for (int32_t row = view.height - 1; row >= 0; --row, ++column) {
    const uint8_t* q = p + static_cast<size_t>(row) * view.stride;
    uint32_t word = 0;
    for (int32_t k = 0; k < bpp; ++k) word |= static_cast<uint32_t>(q[k]) << (8 * k);
    *column = word;
  }
}

void WriteColumnPixel(const DibView& view, int32_t bpp, int32_t x, int32_t y, uint32_t word) {
  uint8_t* q = DibRow(view, view.height - 1 - y) + static_cast<size_t>(x) * bpp;
  for (int32_t k = 0; k < bpp; ++k) q[k] = static_cast<uint8_t>(word >> (8 * k));
}

}  // namespace

MovableHandle WarpColumns(MovableHandle image, const float* wave, int32_t length,
                          int32_t waveHeight) {
  ScopedBlock big(ResampleByPercent(image, 400.0, 400.0));
  // Starting from a copy leaves every column the pulse does not touch as it was.
  ScopedBlock stretched(big.handle ? CopyMovableBlock(big.handle) : nullptr);
  ScopedLock source(big.handle), target(stretched.handle);
  if (!source || !target) return nullptr;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(source.bytes);
  // An empty picture has no columns to stretch.
  if (h->biWidth < 1 || h->biHeight < 1) return ResampleByPercent(stretched.handle, 25.0, 25.0);
  DibView from, to;
  if (!OpenDibView(source.bytes, MovableSize(big.handle), &from) ||
      !OpenDibView(target.bytes, MovableSize(stretched.handle), &to) || from.bitCount < 8)
    return nullptr;
  const int32_t width = from.width, height = from.height, bpp = from.bitCount / 8;
  ScopedBlock buffers(MovableAlloc((3 * static_cast<size_t>(height) + 1) * sizeof(uint32_t)));
  ScopedLock room(buffers.handle);
  if (!room) return nullptr;
  uint32_t* column = reinterpret_cast<uint32_t*>(room.bytes);  // height + 1, the last 0
  uint32_t* out = column + height + 1;                         // 2 * height
  column[height] = 0;
  for (int32_t x = 0; x < width; ++x) {
    const float v = wave[std::min(x, length)];
    if (!(v > 0)) continue;
    int32_t percent = 100 - static_cast<int32_t>(std::trunc(v * (waveHeight / 100.0) * -100.0));
    percent = std::min(percent, 199);  // the wave stays at or below 1: this only guards `out`
    ReadColumn(from, bpp, x, column);
    std::memset(out, 0, 2 * static_cast<size_t>(height) * sizeof(uint32_t));
    StretchColumn(column, height, percent, out);
    const int32_t newHeight = height * percent / 100, top = (height - newHeight) / 2;
    for (int32_t y = std::max(0, -top); y < newHeight && y + top < height; ++y)
      WriteColumnPixel(to, bpp, x, y + top, out[y]);
  }
  return ResampleByPercent(stretched.handle, 25.0, 25.0);
}
