// The Craters texture: a height field of 16-bit values, every cell starting at 0x7FFF, into which
// craters are pressed one after another, each reading the field as the earlier ones left it. The
// picture shades each pixel by the slope to its right-hand neighbour. Small craters nudge one
// cell; large ones carve a bowl with a raised rim that blends into the local mean level.
#include <algorithm>
#include <cmath>

#include "materials/texture_canvas.h"
#include "materials/texture_generator.h"
#include "shell/crt_random.h"

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kRandRange = 32767.0;
constexpr uint16_t kFlatLevel = 0x7FFF;
constexpr int32_t kSlopeLimit = 52;

double UnitDraw() {
  return crt::rand() / kRandRange;
}

// A double truncated toward zero and wrapped to 16 bits. Values beyond 64-bit range (only from
// absurd depths) wrap from 0, as the processor's own conversion would leave them.
uint16_t WrapTo16(double v) {
  if (!(v > -9.2e18 && v < 9.2e18)) return 0;
  return static_cast<uint16_t>(static_cast<int64_t>(v));
}

struct Field {
  uint16_t* cells;
  int32_t w, h;
  uint16_t* at(int32_t x, int32_t y) const { return cells + static_cast<size_t>(y) * w + x; }
};

// The unsigned mean of the cells within `half` of (cx, cy), the box clipped to the field.
uint32_t BoxMean(const Field& f, int32_t cx, int32_t cy, int32_t half) {
  const int32_t x0 = std::max(cx - half, 0), x1 = std::min(cx + half, f.w - 1);
  const int32_t y0 = std::max(cy - half, 0), y1 = std::min(cy + half, f.h - 1);
  uint64_t sum = 0;
  for (int32_t y = y0; y <= y1; ++y)
    for (int32_t x = x0; x <= x1; ++x) sum += *f.at(x, y);
  return static_cast<uint32_t>(sum / (static_cast<uint64_t>(x1 - x0 + 1) * (y1 - y0 + 1)));
}

// A bowl of radius G around (cx, cy): deep at the centre, a rim near two thirds of the radius,
// and towards the edge a roll from the local mean back to the level that was there.
void CarveCrater(const Field& f, int32_t cx, int32_t cy, double g, float depth) {
  const uint32_t mean = BoxMean(f, cx, cy, static_cast<int32_t>(std::max(2.0, g / 3)));
  const int32_t G = static_cast<int32_t>(std::max(2.0, g));
  const double scale = std::pow(static_cast<double>(G), static_cast<double>(depth));
  const int32_t x0 = std::max(cx - G, 0), x1 = std::min(cx + G, f.w - 1);
  const int32_t y0 = std::max(cy - G, 0), y1 = std::min(cy + G, f.h - 1);
  for (int32_t y = y0; y <= y1; ++y) {
    const double dy = static_cast<double>(cy - y) / G;
    for (int32_t x = x0; x <= x1; ++x) {
      const double dx = static_cast<double>(cx - x) / G;
      const double cd = dx * dx + dy * dy, e = cd * 2.25;
      const double t = std::sqrt(0.5) - std::sqrt(std::abs(1 - e));
      double cz = e > 1 ? std::max(t, 0.0) : std::max(t, -10.0);
      cz *= scale;
      // The centre always moves by at least one step.
      if (x == cx && y == cy && std::trunc(cz) == 0) cz = cz < 0 ? -1 : 1;
      const double roll =
          ((1 / (1 - std::min(0.9, cd))) / 10.000000000000002 - 0.09999999999999998) / 0.9;
      uint16_t* cell = f.at(x, y);
      // Wrapped to 16 bits before it is held to the range: an overflow wraps first.
      const uint16_t av = WrapTo16((mean + cz) * (1 - roll) + (*cell + cz) * roll);
      *cell = std::clamp<uint16_t>(av, 1000, 64000);
    }
  }
}

void PressCraters(const Field& f, int64_t count, float depth) {
  for (int64_t k = 0; k < count; ++k) {
    const int32_t cx = static_cast<int32_t>((f.w - 1) * UnitDraw());
    const int32_t cy = static_cast<int32_t>((f.h - 1) * UnitDraw());
    const double g = std::sqrt(1 / ((1 - UnitDraw() * 0.9999) * kPi));
    if (g >= 3) {
      CarveCrater(f, cx, cy, g, depth);
      continue;
    }
    const uint32_t mean = BoxMean(f, cx, cy, 1);
    const int32_t d = g >= 1 ? ((crt::rand() >> 8) & 3) - 1 : 0;
    *f.at(cx, cy) = static_cast<uint16_t>(mean + d);
  }
}

// Light level by slope, from -52 to 52: 1 to 255 through 128, steep near level ground.
void SlopeTable(uint8_t table[2 * kSlopeLimit + 1]) {
  for (int32_t s = -kSlopeLimit; s <= kSlopeLimit; ++s) {
    const double v = s <= 0 ? 128 - 127 * std::pow(std::sin(s * (kPi / 2) / -kSlopeLimit), 0.5)
                            : 128 + 127 * std::pow(std::sin(s * (kPi / 2) / kSlopeLimit), 0.5);
    table[s + kSlopeLimit] = static_cast<uint8_t>(v);
  }
}

}  // namespace

MovableHandle GenerateCraters(const TextureItem* item) {
  int32_t w, h;
  TextureSize(item, &w, &h);
  ScopedBlock image(NewTextureCanvas(w, h, item->BackColour));
  if (!image.handle) return nullptr;
  crt::srand(item->SeedValue[0]);
  TextureScratch cells(static_cast<size_t>(w) * h * sizeof(uint16_t) + 1);
  if (!cells.data) return nullptr;
  const Field f = {static_cast<uint16_t*>(cells.data), w, h};
  std::fill(f.cells, f.cells + static_cast<size_t>(w) * h, kFlatLevel);
  if (w > 0 && h > 0)
    PressCraters(f, static_cast<int64_t>(item->CreaterCount) * 10, item->CreaterDepth);

  uint8_t table[2 * kSlopeLimit + 1];
  SlopeTable(table);
  ScopedLock picture(image.handle);
  if (!picture) return nullptr;
  const uint32_t fore = item->ForeColour[0];
  for (int32_t y = 0; y < h; ++y) {
    const uint16_t* row = f.at(0, y);
    uint8_t* p = TextureRow(picture.bytes, y);
    for (int32_t x = 0; x < w - 1; ++x, p += 3) {
      const int32_t s = std::clamp(row[x + 1] - row[x], -kSlopeLimit, kSlopeLimit);
      BlendTexturePixel(p, fore, table[s + kSlopeLimit]);
    }
  }
  return image.Release();
}
