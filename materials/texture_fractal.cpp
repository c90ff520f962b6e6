// The layered spectral fractals: each layer is a random spectrum with a power-law falloff, brought
// back to a field by the inverse transform, mapped to bytes on a mesh of at most 1024 by 1024, and
// laid over the picture with bilinear sampling, coloured where the field is above its middle.
// All randomness is the runtime generator's, seeded per layer, in a fixed order of draws.
#include <algorithm>
#include <cmath>

#include "materials/inverse_fourier.h"
#include "materials/texture_canvas.h"
#include "materials/texture_generator.h"
#include "shell/crt_random.h"

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kRandRange = 32767.0;
constexpr int32_t kMinMesh = 32;
constexpr int32_t kMaxMapSide = 1024;

// A uniform draw in 0 to 1.
double UnitDraw() {
  return crt::rand() / kRandRange;
}

// An approximately Gaussian draw of unit variance: four uniform draws summed and centred.
struct GaussianDraw {
  double add, factor;
};
GaussianDraw StartGaussian(uint32_t seed) {
  crt::srand(seed);
  GaussianDraw g;
  g.add = std::sqrt(12.0);
  g.factor = 2 * g.add / (4 * kRandRange);
  return g;
}
double Gaussian(const GaussianDraw& g) {
  int32_t sum = 0;
  for (int k = 0; k < 4; ++k) sum += crt::rand();
  return sum * g.factor - g.add;
}

// One coefficient of the spectrum: a random phase, then (away from the origin) a Gaussian radius
// falling off with the frequency by the exponent -(h + 1) / 2.
void DrawCoefficient(const GaussianDraw& g, double h, int32_t i, int32_t j, float* re, float* im) {
  const double phase = 2 * kPi * UnitDraw();
  double radius = 0.0;
  if (i != 0 || j != 0)
    radius = std::pow(static_cast<double>(i * i + j * j), -(h + 1) * 0.5) * Gaussian(g);
  *re = static_cast<float>(radius * std::cos(phase));
  *im = static_cast<float>(radius * std::sin(phase));
}

// Fills the mesh with a spectrum whose transform is real: each coefficient's mirror holds its
// conjugate.
void DrawSpectrum(float* a, int32_t n, uint32_t seed, double h) {
  const GaussianDraw g = StartGaussian(seed);
  auto at = [a, n](int32_t i, int32_t j) { return a + 2 * (static_cast<int64_t>(i) * n + j); };
  float re, im;
  for (int32_t i = 0; i <= n / 2; ++i) {
    for (int32_t j = 0; j <= n / 2; ++j) {
      DrawCoefficient(g, h, i, j, &re, &im);
      const int32_t i0 = i == 0 ? 0 : n - i, j0 = j == 0 ? 0 : n - j;
      at(i, j)[0] = re, at(i, j)[1] = im;
      at(i0, j0)[0] = re, at(i0, j0)[1] = -im;
    }
  }
  at(n / 2, 0)[1] = 0.0f;
  at(0, n / 2)[1] = 0.0f;
  at(n / 2, n / 2)[1] = 0.0f;
  for (int32_t i = 1; i < n / 2; ++i) {
    for (int32_t j = 1; j < n / 2; ++j) {
      DrawCoefficient(g, h, i, j, &re, &im);
      at(i, n - j)[0] = re, at(i, n - j)[1] = im;
      at(n - i, j)[0] = re, at(n - i, j)[1] = -im;
    }
  }
}

// A field value of -1 to 1 as a byte of 0 to 255, truncated. Values outside that span (from a
// non-finite field of an absurd density) are held to it rather than converted undefined.
uint8_t TextureByte(float v) {
  const double b = (v + 1.0) * 255.0 * 0.5;
  if (!(b > 0.0)) return 0;
  return b >= 255.0 ? 255 : static_cast<uint8_t>(b);
}

// Where column (or row) k of `count` falls on the byte map of side m: 0 to m - 1 from the first to
// the last. A single row stands at 0.
double MapPosition(int32_t k, int32_t count, int32_t m) {
  return count > 1 ? k / (count - 1.0) * (m - 1) : 0.0;
}

// The bilinear mix of the four bytes around a point, u across and v down.
double BilinearByte(uint8_t topLeft, uint8_t topRight, uint8_t bottomLeft, uint8_t bottomRight,
                    double u, double v) {
  return (topLeft * (1 - u) + topRight * u) * (1 - v) +
         (bottomLeft * (1 - u) + bottomRight * u) * v;
}

// The layer's weight at a sampled value above 127: 0 to 255 over 127 to 255.
uint32_t LayerAlpha(double R) {
  return static_cast<uint32_t>((R - 127) * 0.0078125 * 255);
}

// Power law, then a linear stretch of the real parts to -1 to 1, then the top-left m by m of them
// as bytes 0 to 255.
void FieldToBytes(float* a, int32_t n, float power, uint8_t* map, int32_t m) {
  const int64_t count = static_cast<int64_t>(n) * n;
  if (power != 1.0f) {
    for (int64_t k = 0; k < count; ++k) {
      if (a[2 * k] > 0.0f) a[2 * k] = static_cast<float>(std::pow(a[2 * k], power));
    }
  }
  float lo = a[0], hi = a[0];
  for (int64_t k = 1; k < count; ++k) {
    lo = std::min(lo, a[2 * k]);
    hi = std::max(hi, a[2 * k]);
  }
  const double middle = (static_cast<double>(hi) + lo) / 2;
  // A flat field has no span; it then maps to the middle value throughout.
  const double span = hi > lo ? (static_cast<double>(hi) - lo) / 2 : 1.0;
  for (int32_t r = 0; r < m; ++r) {
    for (int32_t c = 0; c < m; ++c) {
      const float v =
          static_cast<float>((a[2 * (static_cast<int64_t>(r) * n + c)] - middle) / span);
      map[static_cast<size_t>(r) * m + c] = TextureByte(v);
    }
  }
}

// Lays the byte map over the picture: `X` columns (the larger side, even) by the picture's
// height, sampled bilinearly; columns beyond the picture are dropped.
int LayMap(void* picture, const uint8_t* map, int32_t m, int32_t X, uint32_t colour) {
  const BitmapInfoHeader* header = static_cast<const BitmapInfoHeader*>(picture);
  const int32_t width = header->biWidth, Y = header->biHeight;
  const int32_t columns = std::min(X, width);
  TextureScratch columnSteps(static_cast<size_t>(columns) * (sizeof(int32_t) + sizeof(double)) + 1);
  if (!columnSteps.data) return 0;
  double* u = static_cast<double*>(columnSteps.data);
  int32_t* f = reinterpret_cast<int32_t*>(u + columns);
  for (int32_t j = 0; j < columns; ++j) {
    const double b = MapPosition(j, X, m);
    f[j] = static_cast<int32_t>(std::floor(b));
    u[j] = b - f[j];
  }
  for (int32_t i = 0; i < Y; ++i) {
    const double b = MapPosition(i, Y, m);
    const int32_t g = static_cast<int32_t>(std::floor(b));
    const double v = b - g;
    const uint8_t* top = map + static_cast<size_t>(g) * m;
    // The last row samples its row below with weight 0: it is read from the row itself.
    const uint8_t* below = g + 1 < m ? top + m : top;
    uint8_t* p = TextureRow(picture, i);
    for (int32_t j = 0; j < columns; ++j, p += 3) {
      const int32_t c1 = f[j] + 1 < m ? f[j] + 1 : f[j];
      const double R = BilinearByte(top[f[j]], top[c1], below[f[j]], below[c1], u[j], v);
      if (R > 127.0) BlendTexturePixel(p, colour, LayerAlpha(R));
    }
  }
  return 1;
}

// One layer over the picture; 0 when memory fails.
int SpectralLayer(void* picture, int32_t n, int32_t X, uint32_t colour, float power, uint32_t seed,
                  float dimension) {
  TextureScratch mesh(static_cast<size_t>(n) * n * 2 * sizeof(float));
  if (!mesh.data) return 0;
  float* a = static_cast<float*>(mesh.data);
  DrawSpectrum(a, n, seed, 3.0 - dimension);
  InverseFourier2D(a, n);
  const int32_t m = std::clamp(n, kMinMesh, kMaxMapSide);
  TextureScratch map(static_cast<size_t>(m) * m);
  if (!map.data) return 0;
  FieldToBytes(a, n, power, static_cast<uint8_t*>(map.data), m);
  return LayMap(picture, static_cast<const uint8_t*>(map.data), m, X, colour);
}

MovableHandle GenerateFractal(const TextureItem* item, int32_t layers) {
  const int32_t n = FractalMesh(item->MatrixSize);
  if (!n) return nullptr;
  int32_t width, height;
  TextureSize(item, &width, &height);
  ScopedBlock image(NewTextureCanvas(width, height, item->BackColour));
  if (!image.handle) return nullptr;
  ScopedLock picture(image.handle);
  if (!picture) return nullptr;
  const int32_t X = std::max(width, height) + (std::max(width, height) & 1);
  for (int32_t k = 0; k < layers; ++k) {
    if (!SpectralLayer(picture.bytes, n, X, item->ForeColour[k], item->Power[k], item->SeedValue[k],
                       item->Dimension[k]))
      return nullptr;
  }
  return image.Release();
}

}  // namespace

int32_t FractalMesh(int32_t matrixSize) {
  if (matrixSize < 1 || matrixSize > kMaxFractalMesh) return 0;
  int32_t n = 2;
  while (n < matrixSize) n *= 2;
  return n < kMinMesh ? 0 : n;
}

MovableHandle GenerateFractal2(const TextureItem* item) {
  return GenerateFractal(item, 1);
}
MovableHandle GenerateFractal3(const TextureItem* item) {
  return GenerateFractal(item, 2);
}
MovableHandle GenerateFractal4(const TextureItem* item) {
  return GenerateFractal(item, 3);
}
MovableHandle GenerateFractal5(const TextureItem* item) {
  return GenerateFractal(item, 4);
}
