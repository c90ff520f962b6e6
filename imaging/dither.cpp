// Floyd-Steinberg dithering, remapping and key replacement over direct row access. Rows are taken
// in memory order, so the error runs from the bottom of the picture upward. The arithmetic is
// fixed to the bit: each share is shifted on its own (the colour path multiplies first, the
// bi-level path shifts first), the colour error rows wrap at 16 bits, and the two paths skip
// different down-left shares.
#include "imaging/dither.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "imaging/colour_matcher.h"
#include "imaging/dib_view.h"
#include "imaging/palette.h"
#include "shell/packed_dib.h"

namespace {

// A locked source picture with a checked view of its rows.
struct SourceImage {
  ScopedLock lock;
  DibView view;
  explicit SourceImage(MovableHandle image) : lock(image), view{} {}
  int Open() { return lock && OpenDibView(lock.bytes, MovableSize(lock.handle), &view); }
};

inline uint8_t ClampByte(int32_t v) {
  return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
}

// Red, green, blue of every entry of a picture's colour table.
void TableTriples(const DibView& v, uint8_t* triples) {
  const int32_t entries = 1 << v.bitCount;
  for (int32_t i = 0; i < entries; ++i) {
    triples[i * 3] = v.table[i * 4 + 2];
    triples[i * 3 + 1] = v.table[i * 4 + 1];
    triples[i * 3 + 2] = v.table[i * 4];
  }
}

// Writes index `value` at pixel `x` of a zeroed row of 1, 4 or 8 bits.
inline void PutIndex(uint8_t* row, int32_t x, int32_t bitCount, uint32_t value) {
  if (bitCount == 8) {
    row[x] = static_cast<uint8_t>(value);
  } else if (bitCount == 4) {
    row[x >> 1] |= static_cast<uint8_t>(x & 1 ? value & 0x0F : (value & 0x0F) << 4);
  } else if (value & 1) {
    row[x >> 3] |= static_cast<uint8_t>(0x80 >> (x & 7));
  }
}

// Red, green, blue of each pixel of a source row of 4, 8 or 24 bits, into `rgb`.
void ExpandRow(const DibView& v, const uint8_t* row, const uint8_t* triples, uint8_t* rgb) {
  const int32_t w = v.width;
  if (v.bitCount == 24) {
    for (int32_t x = 0; x < w; ++x) {
      rgb[x * 3] = row[x * 3 + 2];
      rgb[x * 3 + 1] = row[x * 3 + 1];
      rgb[x * 3 + 2] = row[x * 3];
    }
    return;
  }
  for (int32_t x = 0; x < w; ++x) {
    const uint32_t i = v.bitCount == 8 ? row[x] : x & 1 ? row[x >> 1] & 0x0F : row[x >> 1] >> 4;
    std::memcpy(rgb + x * 3, triples + i * 3, 3);
  }
}

// The index for a colour: the nearest entry, or with fastRemap the first exact entry and else
// the coarse cell's. Remembers the last colour, since neighbouring pixels often repeat it.
struct Lookup {
  ColourMatcher* matcher;
  int32_t fastRemap;
  uint32_t lastColour = 0xFFFFFFFF;
  int32_t lastIndex = 0;
  int32_t Find(int32_t r, int32_t g, int32_t b) {
    const uint32_t colour = static_cast<uint32_t>(r | g << 8 | b << 16);
    if (colour == lastColour) return lastIndex;
    const int32_t index =
        fastRemap ? MatchExactOrCoarse(matcher, r, g, b) : MatchNearest(matcher, r, g, b);
    if (index >= 0) {
      lastColour = colour;
      lastIndex = index;
    }
    return index;
  }
};

// The caller's matcher when it fits the palette, else `local` opened for this call; null on
// failure.
ColourMatcher* ChooseMatcher(ColourMatcher* shared, ColourMatcher* local, const uint8_t* palette,
                             int32_t count) {
  if (ColourMatcherFits(shared, palette, count)) return shared;
  return OpenColourMatcher(local, palette, count) ? local : nullptr;
}

// Red, green, blue and a fourth lane held at 0, in 16 bits each: one pixel's colour, error or
// shares as one register. No value of the colour path leaves 16 bits: an error is at most 255 in
// size, what a row sends on at most 144, and a sum before clamping at most 511.
typedef int16_t ColourLanes __attribute__((vector_size(8)));
typedef uint8_t ByteLanes4 __attribute__((vector_size(4)));
constexpr ColourLanes kThreeLanes = {-1, -1, -1, 0};

inline ColourLanes LoadLanes(const int16_t* p) {
  ColourLanes v;
  std::memcpy(&v, p, sizeof v);
  return v & kThreeLanes;
}

inline ColourLanes LoadByteLanes(const uint8_t* p) {
  ByteLanes4 b;
  std::memcpy(&b, p, sizeof b);
  return __builtin_convertvector(b, ColourLanes) & kThreeLanes;
}

// One row of the colour path. `in` holds what the previous row sent to this one; `out` receives
// what this row sends on (the same row may serve as both: slot x is read before slot x is
// written). Rows are read and written four lanes at a time, so each has one slot of room at its
// end; a store's fourth lane falls on the next pixel's first slot, which the next step writes.
template <int kTargetBits>
int DitherColourRow(const uint8_t* rgb, int16_t* errors, uint8_t* target, int32_t w,
                    const ColourLanes* entries, Lookup* lookup) {
  ColourLanes carry = {};     // this row's 7/16 share for pixel x
  ColourLanes previous = {};  // next row, pixel x - 1, without pixel x's share
  ColourLanes current = {};   // next row, pixel x, without pixel x's shares
  for (int32_t x = 0; x < w; ++x) {
    ColourLanes v = LoadLanes(errors + x * 3) + LoadByteLanes(rgb + x * 3) + carry;
    v = v < 0 ? 0 : v;
    v = v > 255 ? 255 : v;
    const int32_t index = lookup->Find(v[0], v[1], v[2]);
    if (index < 0) return 0;
    if (kTargetBits == 8)
      target[x] = static_cast<uint8_t>(index);
    else
      target[x >> 1] |= static_cast<uint8_t>(x & 1 ? index & 0x0F : (index & 0x0F) << 4);
    const ColourLanes e = v - entries[index];
    carry = (e * 7) >> 4;
    // Pixel 1 gives nothing down-left, though pixel 0 lies there.
    if (x >= 2) previous += (e * 3) >> 4;
    if (x >= 1) std::memcpy(errors + (x - 1) * 3, &previous, sizeof previous);
    previous = current + ((e * 5) >> 4);
    current = e >> 4;  // reaches pixel x + 1, which exists unless this is the last
  }
  std::memcpy(errors + (w - 1) * 3, &previous, sizeof previous);
  return 1;
}

int DitherColour(const DibView& src, const DibView& dst, const uint8_t* palette, int32_t count,
                 const RemapSettings& settings, ColourMatcher* shared) {
  const int32_t w = src.width;
  ColourMatcher local;
  ColourMatcher* matcher = ChooseMatcher(shared, &local, palette, count);
  if (!matcher) return 0;
  // One error row of width x 3 values, then one expanded source row, each with a slot of room.
  // The top row of the picture is the last one taken; what it sends on is never read.
  const size_t errorBytes = (static_cast<size_t>(w) * 3 + 1) * sizeof(int16_t);
  ScopedBlock rows(MovableAlloc(errorBytes + static_cast<size_t>(w) * 3 + 1));
  ScopedLock rowsLock(rows.handle);
  if (!rowsLock) return 0;
  int16_t* errors = reinterpret_cast<int16_t*>(rowsLock.bytes);
  uint8_t* rgb = rowsLock.bytes + errorBytes;
  uint8_t triples[kPaletteBytes];
  if (src.bitCount <= 8) TableTriples(src, triples);
  // Entry 0 also when the palette is empty: every index is then 0.
  ColourLanes entries[256] = {};
  for (int32_t i = 0; i < std::clamp(count, 1, 256); ++i)
    entries[i] = ColourLanes{palette[i * 3], palette[i * 3 + 1], palette[i * 3 + 2], 0};
  Lookup lookup{matcher, settings.fastRemap};
  for (int32_t y = 0; y < src.height; ++y) {
    ExpandRow(src, DibRow(src, y), triples, rgb);
    const int ok = dst.bitCount == 8
                       ? DitherColourRow<8>(rgb, errors, DibRow(dst, y), w, entries, &lookup)
                       : DitherColourRow<4>(rgb, errors, DibRow(dst, y), w, entries, &lookup);
    if (!ok) return 0;
  }
  return 1;
}

int DitherBiLevel(const DibView& src, const DibView& dst, const RemapSettings& settings) {
  const int32_t w = src.width;
  const int32_t h = src.height;
  uint8_t tone[256];
  BuildToneMap(tone, settings.ditherBrightness, settings.ditherContrast);
  // The working plane keeps a padded 8-bit row layout: the share that pixel 0 sends down-left
  // lands on the last byte of the current row's storage, as it must.
  const uint32_t stride = DibStride(w, 8);
  ScopedBlock plane(MovableAlloc(static_cast<size_t>(stride) * h));
  ScopedLock planeLock(plane.handle);
  if (!planeLock) return 0;
  uint8_t triples[kPaletteBytes];
  if (src.bitCount <= 8) TableTriples(src, triples);
  uint8_t* rgb = nullptr;
  ScopedBlock rowBlock(MovableAlloc(static_cast<size_t>(w) * 3));
  ScopedLock rowLock(rowBlock.handle);
  if (!rowLock) return 0;
  rgb = rowLock.bytes;
  int32_t low = 255, high = 0;
  for (int32_t y = 0; y < h; ++y) {
    ExpandRow(src, DibRow(src, y), triples, rgb);
    uint8_t* work = planeLock.bytes + static_cast<size_t>(y) * stride;
    for (int32_t x = 0; x < w; ++x) {
      const uint8_t key = LuminanceKey(rgb[x * 3], rgb[x * 3 + 1], rgb[x * 3 + 2]);
      work[x] = key;
      low = std::min<int32_t>(low, key);
      high = std::max<int32_t>(high, key);
    }
  }
  const int32_t middle = (low + high) / 2;
  for (int32_t y = 0; y < h; ++y) {
    uint8_t* work = planeLock.bytes + static_cast<size_t>(y) * stride;
    uint8_t* below = y + 1 < h ? work + stride : nullptr;
    uint8_t* target = DibRow(dst, y);
    for (int32_t x = 0; x < w; ++x) {
      const int32_t v = tone[work[x]];
      int32_t e;
      if (v > middle) {
        target[x >> 3] |= static_cast<uint8_t>(0x80 >> (x & 7));
        e = v - high;
      } else {
        e = v - low;
      }
      const int32_t s = e >> 4;
      if (below) {
        if (x + 1 < w) below[x + 1] = ClampByte(below[x + 1] + s);
        // For x = 0 this is the byte just before the next row: this row's last stored byte.
        if (x != 1) below[x - 1] = ClampByte(below[x - 1] + 3 * s);
        below[x] = ClampByte(below[x] + 5 * s);
      }
      if (x + 1 < w) work[x + 1] = ClampByte(work[x + 1] + 7 * s);
    }
  }
  return 1;
}

// A new zeroed target of the depth class of `bits` with the palette's first entries as its table.
MovableHandle MakeTarget(const DibView& src, const uint8_t* palette, int32_t bits) {
  return CreatePackedDib(src.width, src.height, palette, bits);
}

int ValidTarget(int32_t bits, const uint8_t* palette) {
  return palette && bits >= 1 && bits <= 8;
}

}  // namespace

void BuildToneMap(uint8_t* map, int32_t brightness, int32_t contrast) {
  const double c = contrast;
  const double step = 256.0 / (256.0 - 2.0 * c);
  double value = static_cast<double>(brightness) - c;
  for (int32_t i = 0; i < 256; ++i) {
    if (value > 254.0)
      map[i] = 254;
    else if (value >= 1.0)
      map[i] = static_cast<uint8_t>(value);
    else
      map[i] = 1;  // also for a value that is not a number, from a degenerate contrast
    value += step;
  }
}

MovableHandle DitherToPalette(MovableHandle image, const uint8_t* palette, int32_t bits,
                              int32_t count, const RemapSettings& settings, ColourMatcher* shared) {
  if (!ValidTarget(bits, palette)) return nullptr;
  SourceImage src(image);
  if (!src.Open()) return nullptr;
  const int32_t depth = src.view.bitCount;
  if (depth != 4 && depth != 8 && depth != 24) return nullptr;
  ScopedBlock target(MakeTarget(src.view, palette, bits));
  ScopedLock targetLock(target.handle);
  DibView dst;
  if (!targetLock || !OpenDibView(targetLock.bytes, MovableSize(target.handle), &dst))
    return nullptr;
  const int ok = bits == 1 ? DitherBiLevel(src.view, dst, settings)
                           : DitherColour(src.view, dst, palette, count, settings, shared);
  if (!ok) return nullptr;
  return target.Release();
}

MovableHandle RemapToPalette(MovableHandle image, const uint8_t* palette, int32_t bits,
                             int32_t count, const RemapSettings& settings, ColourMatcher* shared) {
  if (!ValidTarget(bits, palette)) return nullptr;
  SourceImage src(image);
  if (!src.Open()) return nullptr;
  const DibView& s = src.view;
  if (s.bitCount == 32) return nullptr;
  ScopedBlock target(MakeTarget(s, palette, bits));
  ScopedLock targetLock(target.handle);
  DibView dst;
  if (!targetLock || !OpenDibView(targetLock.bytes, MovableSize(target.handle), &dst))
    return nullptr;

  // Source table entries to indices, searched over a full 2^bits entries whatever `count` is.
  uint8_t triples[kPaletteBytes];
  uint8_t translate[256] = {};
  uint8_t tableBright[256] = {};
  if (s.bitCount <= 8) {
    TableTriples(s, triples);
    for (int32_t i = 0; i < (1 << s.bitCount); ++i) {
      const uint8_t* t = triples + i * 3;
      translate[i] =
          static_cast<uint8_t>(NearestPaletteIndex(t[0], t[1], t[2], palette, 1 << bits));
      tableBright[i] = LuminanceKey(t[0], t[1], t[2]) >= 129;
    }
  }
  ColourMatcher local;
  ColourMatcher* matcher = ChooseMatcher(shared, &local, palette, count);
  if (!matcher) return nullptr;
  int32_t white, black;
  if (!settings.fastRemap) {
    white = NearestPaletteIndex(255, 255, 255, palette, count);
    black = NearestPaletteIndex(0, 0, 0, palette, count);
  } else {
    white = black = -1;
    for (int32_t i = matcher->count - 1; i >= 0; --i) {
      const uint8_t* p = palette + i * 3;
      if (p[0] == 255 && p[1] == 255 && p[2] == 255) white = i;
      if (p[0] == 0 && p[1] == 0 && p[2] == 0) black = i;
    }
    if (white < 0) white = MatchCoarse(matcher, 255, 255, 255);
    if (black < 0) black = MatchCoarse(matcher, 0, 0, 0);
    if (white < 0 || black < 0) return nullptr;
  }

  const bool toBits = dst.bitCount == 1;
  Lookup lookup{matcher, settings.fastRemap};
  for (int32_t y = 0; y < s.height; ++y) {
    const uint8_t* row = DibRow(s, y);
    uint8_t* out = DibRow(dst, y);
    if (s.bitCount == 1 && toBits) {
      CopyRowPixels(out, row, s.width, 1);
      continue;
    }
    for (int32_t x = 0; x < s.width; ++x) {
      uint32_t value;
      if (s.bitCount == 24) {
        const uint8_t* p = row + x * 3;
        if (toBits) {
          value = LuminanceKey(p[2], p[1], p[0]) >= 129;
        } else {
          const int32_t index = lookup.Find(p[2], p[1], p[0]);
          if (index < 0) return nullptr;
          value = static_cast<uint32_t>(index);
        }
      } else if (s.bitCount == 1) {
        value = row[x >> 3] >> (7 - (x & 7)) & 1 ? white : black;
      } else {
        const uint32_t i = s.bitCount == 8 ? row[x] : x & 1 ? row[x >> 1] & 0x0F : row[x >> 1] >> 4;
        value = toBits ? tableBright[i] : translate[i];
      }
      PutIndex(out, x, dst.bitCount, value);
    }
  }
  return target.Release();
}

MovableHandle ReplaceKeyColour(MovableHandle indexed, MovableHandle unreduced, uint32_t keyColour,
                               int32_t index) {
  SourceImage in(indexed);
  SourceImage key(unreduced);
  if (!in.Open() || !key.Open()) return nullptr;
  const DibView& a = in.view;
  const DibView& k = key.view;
  if (a.width != k.width || a.height != k.height) return nullptr;
  ScopedBlock target(CreatePackedDib(a.width, a.height, nullptr, a.bitCount));
  ScopedLock targetLock(target.handle);
  DibView dst;
  if (!targetLock || !OpenDibView(targetLock.bytes, MovableSize(target.handle), &dst))
    return nullptr;
  std::memcpy(dst.table, a.table, DibTableBytes(static_cast<uint32_t>(a.bitCount)));
  const uint32_t wanted = keyColour & 0xFFFFFF;
  for (int32_t y = 0; y < a.height; ++y) {
    uint8_t* out = DibRow(dst, y);
    CopyRowPixels(out, DibRow(a, y), a.width, a.bitCount);
    const uint8_t* keyRow = DibRow(k, y);
    const int32_t top = a.height - 1 - y;
    for (int32_t x = 0; x < a.width; ++x) {
      uint32_t colour;
      if (k.bitCount == 24)
        colour =
            static_cast<uint32_t>(keyRow[x * 3] << 16 | keyRow[x * 3 + 1] << 8 | keyRow[x * 3 + 2]);
      else
        colour = ReadDibPixel(k.header, x, top);
      if ((colour & 0xFFFFFF) == wanted)
        WriteDibPixel(dst.header, x, top, static_cast<uint32_t>(index));
    }
  }
  return target.Release();
}
