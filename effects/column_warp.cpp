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
    if (e < 2 * height) target[e] = next;  // the buffer's end: only a stretch of 200 % reaches it
    t = e;
  }
}

namespace {

// A column's pixels as words, one byte per channel in memory order: the stretch treats every
// byte on its own, so the order of the bytes in the word does not matter.
template <int kBpp>
void ReadColumn(const DibView& view, int32_t x, uint32_t* column) {
  const uint8_t* q = DibRow(view, view.height - 1) + static_cast<size_t>(x) * kBpp;
  for (int32_t y = 0; y < view.height; ++y, q -= view.stride) {
    uint32_t word = 0;
    for (int k = 0; k < kBpp; ++k) word |= static_cast<uint32_t>(q[k]) << (8 * k);
    column[y] = word;
  }
}

// Rows [first, last) of column x from `words`, word y going to row y.
template <int kBpp>
void WriteColumn(const DibView& view, int32_t x, int32_t first, int32_t last,
                 const uint32_t* words) {
  uint8_t* q = DibRow(view, view.height - 1 - first) + static_cast<size_t>(x) * kBpp;
  for (int32_t y = first; y < last; ++y, q -= view.stride)
    for (int k = 0; k < kBpp; ++k) q[k] = static_cast<uint8_t>(words[y] >> (8 * k));
}

// The columns from 0 on with a positive wave, stretched in place in a picture of kBpp bytes a
// pixel; `column` has room for height + 1 words and `out` for 2 * height.
template <int kBpp>
void StretchEach(const DibView& view, const float* wave, int32_t length, int32_t waveHeight,
                 uint32_t* column, uint32_t* out, int32_t* from, int32_t* to) {
  const int32_t height = view.height;
  column[height] = 0;
  for (int32_t x = 0; x < view.width; ++x) {
    const float v = wave[std::min(x, length)];
    if (!(v > 0)) continue;
    if (*from == *to) *from = x;
    *to = x + 1;
    int32_t percent = 100 - static_cast<int32_t>(std::trunc(v * (waveHeight / 100.0) * -100.0));
    percent = std::min(percent, 199);  // the wave stays at or below 1: this only guards `out`
    ReadColumn<kBpp>(view, x, column);
    std::memset(out, 0, 2 * static_cast<size_t>(height) * sizeof(uint32_t));
    StretchColumn(column, height, percent, out);
    const int32_t newHeight = height * percent / 100, top = (height - newHeight) / 2;
    // Row y of the stretch lands on row y + top.
    const int32_t first = std::max(0, -top), last = std::min(newHeight, height - top);
    if (first < last) WriteColumn<kBpp>(view, x, first + top, last + top, out - top);
  }
}

// The columns of `picture` (locked) from `first` on with a positive wave, stretched in place;
// [*from, *to) receives the range they lie in, empty when there are none. 0 when memory fails.
int StretchColumns(uint8_t* picture, size_t size, const float* wave, int32_t length,
                   int32_t waveHeight, int32_t* from, int32_t* to) {
  *from = *to = 0;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(picture);
  if (h->biWidth < 1 || h->biHeight < 1) return 1;  // no columns to stretch
  DibView view;
  if (!OpenDibView(picture, size, &view) || view.bitCount < 8) return 0;
  const int32_t height = view.height;
  ScopedBlock buffers(MovableAlloc((3 * static_cast<size_t>(height) + 1) * sizeof(uint32_t)));
  ScopedLock room(buffers.handle);
  if (!room) return 0;
  uint32_t* column = reinterpret_cast<uint32_t*>(room.bytes);  // height + 1, the last 0
  uint32_t* out = column + height + 1;                         // 2 * height
  if (view.bitCount == 8)
    StretchEach<1>(view, wave, length, waveHeight, column, out, from, to);
  else if (view.bitCount == 24)
    StretchEach<3>(view, wave, length, waveHeight, column, out, from, to);
  else
    StretchEach<4>(view, wave, length, waveHeight, column, out, from, to);
  return 1;
}

// The slot holding `image`'s bytes, filled now when none does; null when memory fails.
WarpCacheSlot* FindSlot(WarpCache* cache, MovableHandle image) {
  const size_t size = MovableSize(image);
  ScopedLock picture(image);
  if (!picture) return nullptr;
  for (WarpCacheSlot& slot : cache->slots) {
    if (!slot.picture || MovableSize(slot.picture) != size) continue;
    ScopedLock held(slot.picture);
    if (held && std::memcmp(held.bytes, picture.bytes, size) == 0) return &slot;
  }
  WarpCacheSlot& slot = cache->slots[cache->next];
  cache->next = (cache->next + 1) % kWarpCacheSlots;
  MovableFree(slot.picture);
  MovableFree(slot.enlarged);
  MovableFree(slot.restored);
  slot = {};
  ScopedBlock copy(CopyMovableBlock(image));
  ScopedBlock big(copy.handle ? ResampleByPercent(image, 400.0, 400.0) : nullptr);
  ScopedBlock back(big.handle ? ResampleByPercent(big.handle, 25.0, 25.0) : nullptr);
  if (!back.handle) return nullptr;
  slot = {copy.Release(), big.Release(), back.Release()};
  return &slot;
}

// The warp from a slot: the slot's enlargement is stretched in place, the shrunk-back picture
// redone where the stretched columns reach, and the enlargement's columns then put back.
MovableHandle WarpFromSlot(const WarpCacheSlot& slot, const float* wave, int32_t length,
                           int32_t waveHeight) {
  ScopedBlock result(CopyMovableBlock(slot.restored));
  ScopedLock big(slot.enlarged);
  if (!result.handle || !big) return nullptr;
  DibView view;
  if (!OpenDibView(big.bytes, MovableSize(slot.enlarged), &view)) return nullptr;
  // Room to keep every row's bytes over the columns the wave can reach.
  int32_t first = view.width, last = 0;
  for (int32_t x = 0; x < view.width; ++x)
    if (wave[std::min(x, length)] > 0) first = std::min(first, x), last = x + 1;
  if (first >= last) return result.Release();
  const size_t offset = static_cast<size_t>(first) * (view.bitCount / 8);
  const size_t bytes = static_cast<size_t>(last - first) * (view.bitCount / 8);
  ScopedBlock saved(MovableAlloc(bytes * static_cast<size_t>(view.height)));
  ScopedLock keep(saved.handle);
  if (!keep) return nullptr;
  for (int32_t row = 0; row < view.height; ++row)
    std::memcpy(keep.bytes + row * bytes, DibRow(view, row) + offset, bytes);
  int32_t from, to;
  int ok = StretchColumns(big.bytes, MovableSize(slot.enlarged), wave, length, waveHeight, &from,
                          &to) &&
           ResampleFromColumns(slot.enlarged, result.handle, from, to);
  for (int32_t row = 0; row < view.height; ++row)
    std::memcpy(DibRow(view, row) + offset, keep.bytes + row * bytes, bytes);
  return ok ? result.Release() : nullptr;
}

}  // namespace

void ReleaseWarpCache(WarpCache* cache) {
  for (WarpCacheSlot& slot : cache->slots) {
    MovableFree(slot.picture);
    MovableFree(slot.enlarged);
    MovableFree(slot.restored);
    slot = {};
  }
  cache->next = 0;
}

MovableHandle WarpColumns(MovableHandle image, const float* wave, int32_t length,
                          int32_t waveHeight, WarpCache* cache) {
  if (cache) {
    if (const WarpCacheSlot* slot = FindSlot(cache, image))
      return WarpFromSlot(*slot, wave, length, waveHeight);
    return nullptr;
  }
  ScopedBlock big(ResampleByPercent(image, 400.0, 400.0));
  // Starting from a copy leaves every column the pulse does not touch as it was.
  ScopedBlock stretched(big.handle ? CopyMovableBlock(big.handle) : nullptr);
  ScopedLock target(stretched.handle);
  if (!target) return nullptr;
  int32_t from, to;
  if (!StretchColumns(target.bytes, MovableSize(stretched.handle), wave, length, waveHeight,
                      &from, &to))
    return nullptr;
  return ResampleByPercent(stretched.handle, 25.0, 25.0);
}
