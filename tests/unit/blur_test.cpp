#include "text/blur.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/test_images.h"

namespace {

// The blurs written plainly from their description, pixel by pixel through the accessors.
void ReferenceConvolve(const std::vector<double>& k, const std::vector<uint32_t>& in,
                       std::vector<uint32_t>& out, int channels) {
  const int taps = static_cast<int>(k.size()), half = taps / 2,
            length = static_cast<int>(in.size());
  if (taps > length) return;
  for (int i = 0; i < length; ++i) {
    uint32_t value = 0;
    for (int ch = 0; ch < channels; ++ch) {
      double sum = 0, weights = 0;
      int lo = 0, hi = taps;
      if (i < half) lo = half - i;
      if (i >= length - half) hi = half - i + length;
      for (int t = lo; t < hi; ++t) {
        sum += k[t] * ((in[i - half + t] >> (8 * ch)) & 0xFF);
        weights += k[t];
      }
      const bool edge = i < half || i >= length - half;
      value |= static_cast<uint32_t>(edge ? (sum + 0.5) / weights : sum + 0.5) << (8 * ch);
    }
    out[i] = value;
  }
}

MovableHandle ReferenceGaussian(MovableHandle image, int sigmaTenths) {
  MovableHandle kernelHandle;
  MakeGaussianKernel(41, sigmaTenths / 10.0, &kernelHandle);
  std::vector<double> k(41);
  {
    ScopedLock lock(kernelHandle);
    std::memcpy(k.data(), lock.bytes, sizeof(double) * 41);
  }
  MovableFree(kernelHandle);
  MovableHandle result = CopyMovableBlock(image);
  ScopedLock src(image), dst(result);
  const auto* h = reinterpret_cast<const BitmapInfoHeader*>(src.bytes);
  const int w = h->biWidth, ht = h->biHeight, channels = h->biBitCount / 8;
  for (int y = 0; y < ht; ++y) {
    std::vector<uint32_t> in(w), out(w);
    for (int x = 0; x < w; ++x) in[x] = ReadDibPixel(src.bytes, x, y);
    for (int x = 0; x < w; ++x) out[x] = ReadDibPixel(dst.bytes, x, y);
    ReferenceConvolve(k, in, out, channels);
    for (int x = 0; x < w; ++x) WriteDibPixel(dst.bytes, x, y, out[x]);
  }
  for (int y = 0; y < ht; ++y)
    for (int x = 0; x < w; ++x) WriteDibPixel(src.bytes, x, y, ReadDibPixel(dst.bytes, x, y));
  std::vector<uint32_t> out(ht, 0);
  for (int x = 0; x < w; ++x) {
    std::vector<uint32_t> in(ht);
    for (int y = 0; y < ht; ++y) in[y] = ReadDibPixel(src.bytes, x, y);
    ReferenceConvolve(k, in, out, channels);
    for (int y = 0; y < ht; ++y) WriteDibPixel(dst.bytes, x, y, out[y]);
  }
  return result;
}

MovableHandle ReferenceBox(MovableHandle image, int strength) {
  const int r = strength / 6;
  MovableHandle result = CopyMovableBlock(image);
  ScopedLock lock(result);
  const auto* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
  const int w = h->biWidth, ht = h->biHeight, n = 2 * r + 1;
  uint8_t* p = DibBits(lock.bytes);
  std::vector<uint8_t> plane(static_cast<size_t>(w) * ht * 3);
  auto clamp = [](int v, int hi) { return v < 0 ? 0 : v > hi ? hi : v; };
  for (int y = 0; y < ht; ++y)
    for (int x = 0; x < w; ++x)
      for (int ch = 0; ch < 3; ++ch) {
        int sum = 0;
        for (int i = x - r; i <= x + r; ++i) sum += p[(y * w + clamp(i, w - 1)) * 3 + ch];
        plane[(y * w + x) * 3 + ch] = static_cast<uint8_t>(sum / n);
      }
  for (int y = 0; y < ht; ++y)
    for (int x = 0; x < w; ++x)
      for (int ch = 0; ch < 3; ++ch) {
        int sum = 0;
        for (int i = y - r; i <= y + r; ++i) sum += plane[(clamp(i, ht - 1) * w + x) * 3 + ch];
        p[(y * w + x) * 3 + ch] = static_cast<uint8_t>(sum / n);
      }
  return result;
}

}  // namespace

TEST(GaussianKernel, SubSampledNormalisedAndCentred) {
  MovableHandle handle;
  ASSERT_EQ(MakeGaussianKernel(41, 1.2, &handle), 41);
  {
    ScopedLock lock(handle);
    const double* k = reinterpret_cast<const double*>(lock.bytes);
    double sum = 0;
    for (int i = 0; i < 41; ++i) sum += k[i];
    EXPECT_NEAR(sum, 1.0, 1e-12);
    EXPECT_NEAR(k[0], k[40], 1e-15);
    for (int i = 0; i < 20; ++i) EXPECT_LT(k[i], k[i + 1]);
    // Tap 20 holds the samples at -1/3, 0, +1/3 of a pixel, tap 21 those at 2/3, 1, 4/3.
    auto g = [](int third) { return std::exp(-(third * third) / (1.2 * 18.0 * 1.2)); };
    EXPECT_NEAR(k[21] / k[20], (g(2) + g(3) + g(4)) / (g(-1) + g(0) + g(1)), 1e-12);
  }
  MovableFree(handle);
  EXPECT_EQ(MakeGaussianKernel(0, 1.0, &handle), 3);
  MovableFree(handle);
}

TEST(ConvolveLine, EdgesRenormaliseWithTheHalfBeforeTheDivision) {
  const double k[3] = {0.25, 0.5, 0.25};
  const uint8_t line[4] = {0, 255, 0, 10};
  uint8_t out[4] = {1, 1, 1, 1};
  ConvolveLine8(k, 3, line, out, 4);
  // (63.75 + 0.5) / 0.75, 127.5 + 0.5, 66.25 + 0.5, (5 + 0.5) / 0.75, each truncated.
  EXPECT_EQ(std::vector<uint8_t>(out, out + 4), std::vector<uint8_t>({85, 128, 66, 7}));
  const uint8_t wide[12] = {0, 0, 9, 255, 0, 9, 0, 0, 9, 10, 0, 9};
  uint8_t out24[12] = {};
  ConvolveLine24(k, 3, wide, out24, 4);
  EXPECT_EQ(std::vector<uint8_t>(out24, out24 + 12),
            std::vector<uint8_t>({85, 0, 9, 128, 0, 9, 66, 0, 9, 7, 0, 9}));
  // A line shorter than the kernel is left as it was.
  uint8_t untouched[2] = {7, 7};
  ConvolveLine8(k, 3, line, untouched, 2);
  EXPECT_EQ(untouched[0] << 8 | untouched[1], 0x0707);
}

TEST(GaussianBlur, MatchesThePlainVersionOnRandomPictures) {
  // Sparse pictures keep only a window of their random bytes, like a text mask on its canvas:
  // the blur skips what no nonzero byte reaches, at the edges as in the middle.
  struct Case {
    int w, h, depth, sigma, sparse;
  } cases[] = {{41, 41, 8, 12, 0},  {64, 50, 8, 3, 0},   {45, 43, 24, 42, 0},
               {40, 60, 8, 12, 0},  {70, 40, 24, 12, 0}, {13, 7, 8, 12, 0},
               {97, 83, 24, 22, 0}, {150, 90, 8, 22, 1}, {120, 70, 24, 102, 1}};
  uint32_t seed = 1;
  auto sparsen = [](MovableHandle image) {
    ScopedLock lock(image);
    const auto* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
    for (int y = 0; y < h->biHeight; ++y)
      for (int x = 0; x < h->biWidth; ++x)
        if (x < 5 || x > h->biWidth / 3 || y < 50 || (x > 20 && y > 60))
          WriteDibPixel(lock.bytes, x, y, 0);
  };
  for (const Case& c : cases) {
    MovableHandle a = RandomImage(c.w, c.h, c.depth, seed);
    MovableHandle b = RandomImage(c.w, c.h, c.depth, seed++);
    if (c.sparse) {
      sparsen(a);
      sparsen(b);
    }
    MovableHandle fast = GaussianBlur(a, 200, c.sigma);
    MovableHandle plain = ReferenceGaussian(b, c.sigma);
    EXPECT_TRUE(SameBlocks(fast, plain)) << c.w << "x" << c.h << " at " << c.depth;
    EXPECT_TRUE(SameBlocks(a, b)) << "row pass left in the input, " << c.w << "x" << c.h;
    for (MovableHandle h : {a, b, fast, plain}) MovableFree(h);
  }
  ScopedBlock image(RandomImage(48, 44, 24, 9));
  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle blurred = GaussianBlur(image.handle, 200, 12);
    MovableFree(blurred);
    return blurred != nullptr;
  }));
}

TEST(GaussianBlur, ShortLinesKeepRowsOrVanish) {
  // Under 41 pixels high: everything 0. Under 41 wide: no blur across, only down. 32 bits: refused.
  ScopedBlock low(RandomImage(60, 40, 8, 5)), gone(GaussianBlur(low.handle, 200, 12));
  const PictureValues zero = ReadPicture(gone.handle);
  EXPECT_EQ(std::count(zero.values.begin(), zero.values.end(), 0u), 60 * 40);
  ScopedBlock narrow(CreatePackedDib(40, 50, nullptr, 8));
  {
    ScopedLock n(narrow.handle);
    for (int y = 0; y < 50; ++y) WriteDibPixel(n.bytes, 17, y, 200);
  }
  const PictureValues down = TakePicture(GaussianBlur(narrow.handle, 200, 12));
  ASSERT_EQ(down.width, 40);
  EXPECT_EQ(down.At(16, 25), 0u);
  EXPECT_EQ(down.At(17, 25), 200u);
  EXPECT_EQ(down.At(17, 0), 200u);
  ScopedBlock deep(RandomImage(50, 50, 32, 1));
  EXPECT_EQ(GaussianBlur(deep.handle, 200, 12), nullptr);
}

TEST(FastBoxBlur, RadiusFromStrengthAndThePlainVersion) {
  // Strengths under 6 (radius 0) and pictures under 24 bits are refused.
  ScopedBlock image(RandomImage(8, 8, 24, 3)), grey(RandomImage(8, 8, 8, 3));
  EXPECT_EQ(FastBoxBlur(image.handle, 5), nullptr);
  EXPECT_EQ(FastBoxBlur(grey.handle, 12), nullptr);
  // One bright pixel spreads to its 3 by 3 neighbourhood: 255 / 3 = 85, 85 / 3 = 28 = 0x1C.
  ScopedBlock dot(CreatePackedDib(4, 4, nullptr, 24));
  {
    ScopedLock lock(dot.handle);
    WriteDibPixel(lock.bytes, 1, 1, 0x00FFFFFF);
  }
  const PictureValues spread = TakePicture(FastBoxBlur(dot.handle, 6));
  ASSERT_EQ(spread.width, 4);
  EXPECT_EQ(spread.At(0, 0), 0x001C1C1Cu);
  EXPECT_EQ(spread.At(2, 2), 0x001C1C1Cu);
  EXPECT_EQ(spread.At(3, 3), 0u);
  // The blur reads one unpadded run of three-byte pixels: padded rows (width 5) and 32-bit
  // pictures drift, and the plain version drifts the same way.
  struct Case {
    int w, h, depth, strength;
  } cases[] = {{16, 12, 24, 6}, {5, 9, 24, 13}, {7, 7, 32, 18}, {30, 3, 24, 40}, {3, 30, 24, 40}};
  uint32_t seed = 40;
  for (const Case& c : cases) {
    ScopedBlock source(RandomImage(c.w, c.h, c.depth, seed++));
    ScopedBlock fast(FastBoxBlur(source.handle, c.strength));
    ScopedBlock plain(ReferenceBox(source.handle, c.strength));
    EXPECT_TRUE(SameBlocks(fast.handle, plain.handle)) << c.w << "x" << c.h << " at " << c.depth;
  }
}
