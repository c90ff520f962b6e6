// The Perturbation texture: octaves of a gradient noise on a 16-cell lattice, plus stamped
// bubbles, mapped through a 256-colour palette made from three Catmull-Rom curves.
//
// Process-wide state lives here: the noise's permutation and gradient tables (`noiseTables`) are
// made on the first noise evaluation in the life of the process, from the SeedValue[0] of the
// Perturbation being generated then, and are never made again; later seeds change only the
// bubbles. With the runtime generator's one stream, this makes the generator not re-entrant.
#include <algorithm>
#include <cmath>

#include "materials/texture_canvas.h"
#include "materials/texture_generator.h"
#include "shell/crt_random.h"

namespace {

constexpr float kEpsilon = 1.1920929e-07f;
constexpr int32_t kMaxBubbles = 1024;
constexpr int32_t kMaxOctaves = 8;
constexpr int32_t kLattice = 16;
constexpr int32_t kTableEntries = 34;  // the lattice twice over, and two more

struct NoiseTables {
  int built;
  uint32_t seed;
  float sinT[kTableEntries], cosT[kTableEntries];
  int32_t perm[kTableEntries];
};
NoiseTables noiseTables;

void BuildNoiseTables(uint32_t seed) {
  NoiseTables& t = noiseTables;
  crt::srand(seed);
  for (int32_t i = 0; i < kLattice; ++i) {
    const float theta = static_cast<float>(crt::rand() * 6.2831854820251465 / 32767.0);
    t.sinT[i] = static_cast<float>(std::sin(static_cast<double>(theta)));
    t.cosT[i] = static_cast<float>(std::cos(static_cast<double>(theta)));
    t.perm[i] = i;
  }
  t.perm[kLattice] = 0;
  // Every second entry from the seventeenth down is swapped with a random one of the first
  // sixteen; a value swapped into entry 16 is overwritten by the copy below.
  for (int32_t i = kLattice; i >= 2; i -= 2) std::swap(t.perm[i], t.perm[crt::rand() & 15]);
  // Entries 16 and 17 are copied before they are copied on, so 32 and 33 repeat 0 and 1.
  for (int32_t i = 0; i < kTableEntries - kLattice; ++i) {
    t.sinT[kLattice + i] = t.sinT[i];
    t.cosT[kLattice + i] = t.cosT[i];
    t.perm[kLattice + i] = t.perm[i];
  }
  t.seed = seed;
  t.built = 1;
}

// The lattice cell and the place within it, along one axis: what the noise needs of x or y.
struct NoiseAxis {
  int32_t cell;  // 0 to 15
  float f, s;    // fraction, and its smoothstep
};
NoiseAxis Axis(float x) {
  x += 10000.0f;
  const int32_t i = static_cast<int32_t>(x);
  NoiseAxis a;
  a.f = x - static_cast<float>(i);
  a.s = (3 - 2 * a.f) * a.f * a.f;
  a.cell = i & (kLattice - 1);
  return a;
}

// The noise at a point given by its two axes. The right-hand corners weigh both offsets by the
// cosine, which gives the noise its banded look.
float NoiseAt(const NoiseAxis& ax, const NoiseAxis& ay) {
  const NoiseTables& t = noiseTables;
  const int32_t p0 = t.perm[ax.cell], p1 = t.perm[(ax.cell + 1) & 15];
  const int32_t b = ay.cell, b1 = (b + 1) & 15;
  const float fx = ax.f, fy = ay.f;
  int32_t q = t.perm[p0 + b];
  const float d00 = fy * t.cosT[q] + fx * t.sinT[q];
  q = t.perm[p0 + b1];
  const float d01 = (fy - 1) * t.cosT[q] + fx * t.sinT[q];
  q = t.perm[p1 + b];
  const float d10 = fy * t.cosT[q] + (fx - 1) * t.cosT[q];
  q = t.perm[p1 + b1];
  const float d11 = (fy - 1) * t.cosT[q] + (fx - 1) * t.cosT[q];
  const float lo = d00 + (d10 - d00) * ax.s;
  const float hi = d01 + (d11 - d01) * ax.s;
  return (lo + (hi - lo) * ay.s) * 1.5f;
}

// One channel's curve at x in 0 to 1, through its six knots.
float CurveAt(const float knots[6], float x) {
  int32_t s = static_cast<int32_t>(x * 3);
  if (s > 2) s = 2;
  const float f = x * 3 - s;
  const float P0 = knots[s], P1 = knots[s + 1], P2 = knots[s + 2], P3 = knots[s + 3];
  return (((1.5f * P1 - 0.5f * P0 - 1.5f * P2 + 0.5f * P3) * f +
           (P0 - 2.5f * P1 + 2 * P2 - 0.5f * P3)) *
              f +
          (0.5f * P2 - 0.5f * P0)) *
             f +
         P1;
}

// The four knots held to 0 to 1 and extended by one on each side along the end slopes.
void CurveKnots(const float k[4], float out[6]) {
  for (int32_t i = 0; i < 4; ++i) out[i + 1] = std::clamp(k[i], 0.0f, 1.0f);
  out[0] = 2 * out[1] - out[2];
  out[5] = 2 * out[4] - out[3];
}

// 256 colours 0x00BBGGRR from the three curves.
void CurvePalette(const TextureItem* item, uint32_t palette[256]) {
  // The knots are copied out one by one: the record may sit unaligned inside a packed Material.
  float knots[3][4];
  for (int32_t i = 0; i < 4; ++i) {
    knots[0][i] = item->ColorRed[i];
    knots[1][i] = item->ColorGreen[i];
    knots[2][i] = item->ColorBlue[i];
  }
  float red[6], green[6], blue[6];
  CurveKnots(knots[0], red);
  CurveKnots(knots[1], green);
  CurveKnots(knots[2], blue);
  auto level = [](const float knots[6], float x) {
    return static_cast<uint32_t>(std::clamp(CurveAt(knots, x) * 255, 0.0f, 255.0f));
  };
  for (int32_t i = 0; i < 256; ++i) {
    const float x = i / 255.0f;
    palette[i] = level(blue, x) << 16 | level(green, x) << 8 | level(red, x);
  }
}

// Stamps `count` bubbles of radius R at random places, wrapping at the edges.
void StampBubbles(float* map, int32_t w, int32_t h, int32_t count, int32_t R, int32_t shape,
                  uint32_t seed) {
  crt::srand(seed);
  const int32_t RR = R * R;
  for (int32_t k = 0; k < count; ++k) {
    const int32_t bx = crt::rand() % w + w;
    const int32_t by = crt::rand() % h + h;
    for (int32_t dy = -R; dy < R; ++dy) {
      float* row = map + static_cast<size_t>((by + dy) % h) * w;
      for (int32_t dx = -R; dx < R; ++dx) {
        const int32_t d = dx * dx + dy * dy;
        if (d > RR) continue;
        float& v = row[(bx + dx) % w];
        switch (shape) {
          case kBubbleEllipse:
            v = v + 1;
            break;
          case kBubbleFuzzy:
            v = v + 1 / (2.0f * d / RR + 1);
            break;
          case kBubbleLuminous:
            v = v + 1 / (16.0f * d / RR + 0.1f);
            break;
          case kBubbleSphere:
            v = v + (1 - v) * d / RR;
            break;
          default:
            break;  // an unknown shape adds nothing
        }
      }
    }
  }
}

// The octaves to sum: from MatrixSize 32 to 1024, 0 to 8, held to 8 when negative or above.
float OctaveCount(int32_t matrixSize) {
  const float octaves = static_cast<float>(matrixSize - 32) / 992 * 8 + kEpsilon;
  return octaves < 0 || octaves > kMaxOctaves ? static_cast<float>(kMaxOctaves) : octaves;
}

// The noise of every pixel of a w by h picture, `octaves` deep, into `sum` (row by row). The
// axes of each octave depend only on the column or only on the row, and doubling a float is
// exact, so they are worked out once per column and per row.
int SumOctaves(float* sum, int32_t w, int32_t h, float octaves, float power) {
  const int32_t whole = static_cast<int32_t>(std::ceil(octaves));
  const float fraction = octaves - std::trunc(octaves);
  const int32_t terms = whole + (fraction > kEpsilon ? 1 : 0);
  // Amplitude of octave i, 2^(-i / 2). A fraction above a count of more than 7 reaches index 8.
  float amplitude[kMaxOctaves + 1];
  for (int32_t i = 0; i <= kMaxOctaves; ++i)
    amplitude[i] = static_cast<float>(std::pow(std::ldexp(1.0, i), -0.5));
  TextureScratch axes(static_cast<size_t>(w + h) * terms * sizeof(NoiseAxis) + 1);
  if (!axes.data) return 0;
  NoiseAxis* columns = static_cast<NoiseAxis*>(axes.data);
  NoiseAxis* rows = columns + static_cast<size_t>(w) * terms;
  for (int32_t x = 0; x < w; ++x) {
    float u = static_cast<float>(x) / w * 16;
    for (int32_t i = 0; i < terms; ++i, u *= 2) columns[static_cast<size_t>(i) * w + x] = Axis(u);
  }
  for (int32_t y = 0; y < h; ++y) {
    float v = static_cast<float>(y) / h * 16;
    for (int32_t i = 0; i < terms; ++i, v *= 2) rows[static_cast<size_t>(i) * h + y] = Axis(v);
  }
  for (int32_t y = 0; y < h; ++y) {
    float* out = sum + static_cast<size_t>(y) * w;
    for (int32_t x = 0; x < w; ++x) {
      float s = 0;
      for (int32_t i = 0; i < whole; ++i)
        s +=
            NoiseAt(columns[static_cast<size_t>(i) * w + x], rows[static_cast<size_t>(i) * h + y]) *
            amplitude[i];
      if (terms > whole)
        s += NoiseAt(columns[static_cast<size_t>(whole) * w + x],
                     rows[static_cast<size_t>(whole) * h + y]) *
             amplitude[whole] * fraction;
      out[x] = s * power;
    }
  }
  return 1;
}

}  // namespace

MovableHandle GeneratePerturbation(const TextureItem* item) {
  int32_t w, h;
  TextureSize(item, &w, &h);
  ScopedBlock image(CreatePackedDib(w, h, nullptr, 24));
  if (!image.handle) return nullptr;
  if (w < 1 || h < 1) return image.Release();

  uint32_t palette[256];
  CurvePalette(item, palette);
  // Copies, not references: the record may sit unaligned inside a packed Material.
  const int32_t bubbleCount = item->BubbleCount, bubbleSize = item->BubbleSize;
  const int32_t count = std::clamp(bubbleCount, 0, kMaxBubbles);
  const int32_t R = std::min({std::max(bubbleSize, 1), w / 2, h / 2});

  TextureScratch bubbles(count > 0 ? static_cast<size_t>(w) * h * sizeof(float) : 1);
  if (!bubbles.data) return nullptr;
  float* map = static_cast<float*>(bubbles.data);
  if (count > 0) StampBubbles(map, w, h, count, R, item->BubbleShape, item->SeedValue[0]);

  TextureScratch noise(static_cast<size_t>(w) * h * sizeof(float));
  if (!noise.data) return nullptr;
  float* sum = static_cast<float*>(noise.data);
  if (item->PerturbationPower > kEpsilon) {
    if (!noiseTables.built) BuildNoiseTables(item->SeedValue[0]);
    if (!SumOctaves(sum, w, h, OctaveCount(item->MatrixSize), item->PerturbationPower))
      return nullptr;
  }

  ScopedLock picture(image.handle);
  if (!picture) return nullptr;
  const int bubbly = item->BubblePower != 0 && count > 0;
  for (int32_t y = 0; y < h; ++y) {
    uint8_t* p = TextureRow(picture.bytes, y);
    for (int32_t x = 0; x < w; ++x, p += 3) {
      const size_t k = static_cast<size_t>(y) * w + x;
      const float b = bubbly ? item->BubblePower * 2 * map[k] - 1 : 0.0f;
      const float value = std::clamp((sum[k] + b + 1) * 0.5f, 0.0f, 1.0f);
      const uint32_t colour = palette[static_cast<int32_t>(value * 255)];
      p[0] = static_cast<uint8_t>(colour >> 16);
      p[1] = static_cast<uint8_t>(colour >> 8);
      p[2] = static_cast<uint8_t>(colour);
    }
  }
  return image.Release();
}

int PerturbationNoiseSeed(uint32_t* seed) {
  if (!noiseTables.built) return 0;
  *seed = noiseTables.seed;
  return 1;
}
