#include "tests/support/texture_reference.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "materials/inverse_fourier.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"

namespace {

const double pi = 3.141592653589793, arand = 32767.0;
double c(int x) {
  return x / arand;
}
int r() {
  return crt::rand() & 0x7FFF;
}

MovableHandle Ground(const TextureItem* item, uint32_t colour, int32_t* w, int32_t* h) {
  *w = item->rect[2] - item->rect[0];
  *h = item->rect[3] - item->rect[1];
  MovableHandle image = CreatePackedDib(*w, *h, nullptr, 24);
  void* p = MovableLock(image);
  for (int32_t y = 0; y < *h; ++y)
    for (int32_t x = 0; x < *w; ++x) WriteDibPixel(p, x, y, colour);
  MovableUnlock(image);
  return image;
}

uint32_t Channel(uint32_t colour, int shift) {
  return (colour >> shift) & 0xFF;
}

uint32_t Mix(uint32_t over, uint32_t old, uint32_t alpha) {
  uint32_t out = 0;
  for (int shift : {0, 8, 16})
    out |= (Channel(over, shift) * alpha / 255 + Channel(old, shift) * (255 - alpha) / 255)
           << shift;
  return out;
}

}  // namespace

MovableHandle RefFractal(const TextureItem* item, int32_t layers) {
  int32_t w, h;
  MovableHandle image = Ground(item, item->BackColour, &w, &h);
  void* pic = MovableLock(image);
  int32_t n = 2;
  while (n < item->MatrixSize) n *= 2;
  const int32_t X = (std::max(w, h) + 1) / 2 * 2, Y = h;
  for (int k = 0; k < layers; ++k) {
    crt::srand(item->SeedValue[k]);
    const double gaussAdd = std::sqrt(12.0), gaussFac = 2 * gaussAdd / (4 * arand);
    const double H = 3.0 - item->Dimension[k];
    std::vector<float> a(2 * n * n);
    auto put = [&](int i, int j, double phase, double rad, int sign) {
      a[2 * (i * n + j)] = static_cast<float>(rad * std::cos(phase));
      a[2 * (i * n + j) + 1] = static_cast<float>(sign * static_cast<float>(rad * std::sin(phase)));
    };
    auto rad = [&](int i, int j) {
      double sum = 0;
      for (int q = 0; q < 4; ++q) sum += r();
      return std::pow(i * i + j * j, -(H + 1) * 0.5) * (sum * gaussFac - gaussAdd);
    };
    for (int i = 0; i <= n / 2; ++i)
      for (int j = 0; j <= n / 2; ++j) {
        const double phase = 2 * pi * c(r());
        const double radius = i == 0 && j == 0 ? 0.0 : rad(i, j);
        put(i, j, phase, radius, 1);
        put(i == 0 ? 0 : n - i, j == 0 ? 0 : n - j, phase, radius, -1);
      }
    a[2 * (n / 2 * n) + 1] = a[2 * (n / 2) + 1] = a[2 * (n / 2 * n + n / 2) + 1] = 0;
    for (int i = 1; i < n / 2; ++i)
      for (int j = 1; j < n / 2; ++j) {
        const double phase = 2 * pi * c(r());
        const double radius = rad(i, j);
        put(i, n - j, phase, radius, 1);
        put(n - i, j, phase, radius, -1);
      }
    InverseFourier2D(a.data(), n);
    if (item->Power[k] != 1.0f)
      for (int q = 0; q < n * n; ++q)
        if (a[2 * q] > 0) a[2 * q] = static_cast<float>(std::pow(a[2 * q], item->Power[k]));
    float lo = a[0], hi = a[0];
    for (int q = 0; q < n * n; ++q) lo = std::min(lo, a[2 * q]), hi = std::max(hi, a[2 * q]);
    for (int q = 0; q < n * n; ++q)
      a[2 * q] = static_cast<float>((a[2 * q] - (static_cast<double>(hi) + lo) / 2) /
                                    ((static_cast<double>(hi) - lo) / 2));
    const int m = std::clamp(n, 32, 1024);
    std::vector<uint8_t> map(m * m);
    for (int row = 0; row < m; ++row)
      for (int col = 0; col < m; ++col)
        map[row * m + col] = static_cast<uint8_t>((a[2 * (row * n + col)] + 1.0) * 255.0 * 0.5);
    auto at = [&](int row, int col) { return row < m && col < m ? map[row * m + col] : 0; };
    for (int i = 0; i < Y; ++i) {
      const double bi = Y > 1 ? i / (Y - 1.0) * (m - 1) : 0.0;
      const int g = static_cast<int>(std::floor(bi));
      const double v = bi - g;
      for (int j = 0; j < X; ++j) {
        const double bj = j / (X - 1.0) * (m - 1);
        const int f = static_cast<int>(std::floor(bj));
        const double u = bj - f;
        const double R = (at(g, f) * (1 - u) + at(g, f + 1) * u) * (1 - v) +
                         (at(g + 1, f) * (1 - u) + at(g + 1, f + 1) * u) * v;
        const uint32_t alpha = R <= 127 ? 0 : static_cast<uint32_t>((R - 127) * 0.0078125 * 255);
        WriteDibPixel(pic, j, i, Mix(item->ForeColour[k], ReadDibPixel(pic, j, i), alpha));
      }
    }
  }
  MovableUnlock(image);
  return image;
}

MovableHandle RefCraters(const TextureItem* item) {
  int32_t w, h;
  MovableHandle image = Ground(item, item->BackColour, &w, &h);
  crt::srand(item->SeedValue[0]);
  std::vector<uint16_t> field(w * h, 0x7FFF);
  auto mean = [&](int cx, int cy, int half) {
    uint32_t sum = 0, count = 0;
    for (int y = cy - half; y <= cy + half; ++y)
      for (int x = cx - half; x <= cx + half; ++x)
        if (x >= 0 && y >= 0 && x < w && y < h) sum += field[y * w + x], ++count;
    return sum / count;
  };
  for (int k = 0; k < item->CreaterCount * 10; ++k) {
    const int cx = static_cast<int>(std::trunc((w - 1) * c(r())));
    const int cy = static_cast<int>(std::trunc((h - 1) * c(r())));
    const double g = std::sqrt(1 / ((1 - c(r()) * 0.9999) * pi));
    if (g < 3) {
      const uint32_t m = mean(cx, cy, 1);
      const int d = g >= 1 ? ((crt::rand() >> 8) & 3) - 1 : 0;
      field[cy * w + cx] = static_cast<uint16_t>(m + d);
      continue;
    }
    const uint32_t m = mean(cx, cy, static_cast<int>(std::trunc(std::max(2.0, g / 3))));
    const int G = static_cast<int>(std::trunc(std::max(2.0, g)));
    for (int y = cy - G; y <= cy + G; ++y)
      for (int x = cx - G; x <= cx + G; ++x) {
        if (x < 0 || y < 0 || x >= w || y >= h) continue;
        const double dx = static_cast<double>(cx - x) / G, dy = static_cast<double>(cy - y) / G;
        const double cd = dx * dx + dy * dy, e = cd * 2.25;
        const double t = std::sqrt(0.5) - std::sqrt(std::abs(1 - e));
        double cz = e > 1 ? std::max(t, 0.0) : std::max(t, -10.0);
        cz *= std::pow(G, item->CreaterDepth);
        if (x == cx && y == cy && std::trunc(cz) == 0) cz = cz < 0 ? -1 : 1;
        const double roll =
            ((1 / (1 - std::min(0.9, cd))) / 10.000000000000002 - 0.09999999999999998) / 0.9;
        const double av = (m + cz) * (1 - roll) + (field[y * w + x] + cz) * roll;
        const uint16_t wrapped = static_cast<uint16_t>(static_cast<int64_t>(std::trunc(av)));
        field[y * w + x] = std::min<uint16_t>(std::max<uint16_t>(wrapped, 1000), 64000);
      }
  }
  uint8_t table[105];
  for (int s = -52; s <= 52; ++s)
    table[s + 52] =
        static_cast<uint8_t>(s <= 0 ? 128 - 127 * std::pow(std::sin(s * (pi / 2) / -52), 0.5)
                                    : 128 + 127 * std::pow(std::sin(s * (pi / 2) / 52), 0.5));
  void* pic = MovableLock(image);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w - 1; ++x) {
      const int s = std::clamp(field[y * w + x + 1] - field[y * w + x], -52, 52);
      WriteDibPixel(pic, x, y, Mix(item->ForeColour[0], ReadDibPixel(pic, x, y), table[s + 52]));
    }
  MovableUnlock(image);
  return image;
}

namespace {

struct RefNoise {
  float sinT[34], cosT[34];
  int perm[34];
  explicit RefNoise(uint32_t seed) {
    crt::srand(seed);
    for (int i = 0; i < 16; ++i) {
      const float theta = static_cast<float>(crt::rand() * 6.2831854820251465 / 32767.0);
      sinT[i] = static_cast<float>(std::sin(static_cast<double>(theta)));
      cosT[i] = static_cast<float>(std::cos(static_cast<double>(theta)));
      perm[i] = i;
    }
    perm[16] = 0;
    for (int i = 16; i >= 2; i -= 2) std::swap(perm[i], perm[crt::rand() & 15]);
    for (int i = 0; i <= 17; ++i)
      sinT[16 + i] = sinT[i], cosT[16 + i] = cosT[i], perm[16 + i] = perm[i];
  }
  float operator()(float x, float y) const {
    x += 10000, y += 10000;
    const int ix = static_cast<int>(x), iy = static_cast<int>(y);
    const float fx = x - ix, fy = y - iy;
    const int a = ix & 15, b = iy & 15, b1 = (b + 1) & 15, p0 = perm[a], p1 = perm[(a + 1) & 15];
    const float sx = (3 - 2 * fx) * fx * fx, sy = (3 - 2 * fy) * fy * fy;
    int q = perm[p0 + b];
    const float d00 = fy * cosT[q] + fx * sinT[q];
    q = perm[p0 + b1];
    const float d01 = (fy - 1) * cosT[q] + fx * sinT[q];
    q = perm[p1 + b];
    const float d10 = fy * cosT[q] + (fx - 1) * cosT[q];
    q = perm[p1 + b1];
    const float d11 = (fy - 1) * cosT[q] + (fx - 1) * cosT[q];
    const float lo = d00 + (d10 - d00) * sx, hi = d01 + (d11 - d01) * sx;
    return (lo + (hi - lo) * sy) * 1.5f;
  }
};

}  // namespace

MovableHandle RefPerturbation(const TextureItem* item, uint32_t noiseSeed) {
  const int w = item->rect[2] - item->rect[0], h = item->rect[3] - item->rect[1];
  const float eps = 1.1920929e-07f;
  const float octaves = static_cast<float>(item->MatrixSize - 32) / 992 * 8 + eps;
  float knots[3][6];
  const float* sources[3] = {item->ColorRed, item->ColorGreen, item->ColorBlue};
  for (int ch = 0; ch < 3; ++ch) {
    for (int i = 0; i < 4; ++i) knots[ch][i + 1] = std::clamp(sources[ch][i], 0.0f, 1.0f);
    knots[ch][0] = 2 * knots[ch][1] - knots[ch][2];
    knots[ch][5] = 2 * knots[ch][4] - knots[ch][3];
  }
  const int count = std::clamp(item->BubbleCount, 0, 1024);
  int R = std::max(item->BubbleSize, 1);
  R = std::min(R, w / 2);
  R = std::min(R, h / 2);
  uint32_t palette[256];
  for (int i = 0; i < 256; ++i) {
    const float x = i / 255.0f;
    uint32_t colour = 0;
    for (int ch = 0; ch < 3; ++ch) {
      const int s = std::min(static_cast<int>(x * 3), 2);
      const float f = x * 3 - s, *P = knots[ch] + s;
      const float y = (((1.5f * P[1] - 0.5f * P[0] - 1.5f * P[2] + 0.5f * P[3]) * f +
                        (P[0] - 2.5f * P[1] + 2 * P[2] - 0.5f * P[3])) *
                           f +
                       (0.5f * P[2] - 0.5f * P[0])) *
                          f +
                      P[1];
      colour |= static_cast<uint32_t>(std::clamp(y * 255, 0.0f, 255.0f)) << (8 * ch);
    }
    palette[i] = colour;
  }
  std::vector<float> map(w * h);
  if (count > 0) {
    crt::srand(item->SeedValue[0]);
    for (int k = 0; k < count; ++k) {
      const int bx = crt::rand() % w + w, by = crt::rand() % h + h;
      for (int dy = -R; dy <= R - 1; ++dy)
        for (int dx = -R; dx <= R - 1; ++dx) {
          const int d = dx * dx + dy * dy;
          if (d > R * R) continue;
          float& v = map[((by + dy) % h) * w + (bx + dx) % w];
          if (item->BubbleShape == 0) v = v + 1;
          if (item->BubbleShape == 1) v = v + 1 / (2.0f * d / (R * R) + 1);
          if (item->BubbleShape == 2) v = v + 1 / (16.0f * d / (R * R) + 0.1f);
          if (item->BubbleShape == 3) v = v + (1 - v) * d / (R * R);
        }
    }
  }
  const RefNoise noise(noiseSeed);
  MovableHandle image = CreatePackedDib(w, h, nullptr, 24);
  void* pic = MovableLock(image);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      float u = static_cast<float>(x) / w * 16, v = static_cast<float>(y) / h * 16, sum = 0;
      if (item->PerturbationPower > eps) {
        const float F = octaves < 0 || octaves > 8 ? 8.0f : octaves;
        int i = 0;
        for (; i < F; ++i, u *= 2, v *= 2)
          sum += noise(u, v) * static_cast<float>(std::pow(std::pow(2.0, i), -0.5));
        if (F - std::trunc(F) > eps)
          sum += noise(u, v) * static_cast<float>(std::pow(std::pow(2.0, i), -0.5)) *
                 (F - std::trunc(F));
        sum *= item->PerturbationPower;
      }
      const float b =
          item->BubblePower != 0 && count > 0 ? item->BubblePower * 2 * map[y * w + x] - 1 : 0.0f;
      const float value = std::clamp((sum + b + 1) * 0.5f, 0.0f, 1.0f);
      WriteDibPixel(pic, x, y, palette[static_cast<int>(value * 255)]);
    }
  MovableUnlock(image);
  return image;
}

TextureItem RandomTextureItem(std::mt19937& rng, int32_t type, int32_t width, int32_t height) {
  auto real = [&rng](double lo, double hi) {
    return static_cast<float>(std::uniform_real_distribution<double>(lo, hi)(rng));
  };
  auto whole = [&rng](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
  TextureItem item;
  InitTextureItem(&item);
  item.TextureType = type;
  item.rect[2] = width;
  item.rect[3] = height;
  const int32_t meshes[] = {32, 50, 64, 100, 128, 256, 1024};
  item.MatrixSize = meshes[whole(0, 6)];
  for (int k = 0; k < kTextureLayers; ++k) {
    item.ForeColour[k] = static_cast<uint32_t>(rng()) & 0xFFFFFF;
    item.Power[k] = whole(0, 3) == 0 ? 1.0f : real(0.2, 2.0);
    item.SeedValue[k] = rng();
    item.Dimension[k] = real(1.0, 3.0);
  }
  item.BackColour = static_cast<uint32_t>(rng()) & 0xFFFFFF;
  item.CreaterCount = whole(0, 400);
  item.CreaterDepth = real(0.2, 5.0);  // deep enough for levels to wrap
  float* curves[3] = {item.ColorRed, item.ColorGreen, item.ColorBlue};
  for (float* curve : curves)
    for (int i = 0; i < 4; ++i) curve[i] = real(-0.3, 1.3);
  item.BubbleCount = whole(-5, 200);
  item.BubbleSize = whole(-1, 20);
  item.BubblePower = whole(0, 3) == 0 ? 0.0f : real(-1.0, 2.0);
  item.PerturbationPower = whole(0, 4) == 0 ? 0.0f : real(0.0, 3.0);
  item.BubbleShape = whole(0, 4);
  return item;
}
