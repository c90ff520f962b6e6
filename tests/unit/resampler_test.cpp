// The kernel table and the resampler: size rules, copies, clamping, the product against the
// plain reference on every depth, and allocation failures.
#include "imaging/resampler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/imaging_reference.h"

namespace {

double K(int row, double x) {
  return kFilters[row].kernel(x, kFilters[row].support);
}

TEST(FilterTable, KernelsAtTheirKnownPoints) {
  const struct {
    int row;
    double x, value;
  } points[] = {{kFilterBox, -0.5, 1.0},
                {kFilterBox, 0.5, 0.0},
                {kFilterPoint, 0.25, 1.0},
                {kFilterTriangle, 0.25, 0.75},
                {kFilterHermite, 0.5, 0.5},
                {kFilterHamming, 1.0, 0.08},
                {kFilterGaussian, 0.0, std::sqrt(2.0 / std::numbers::pi)},
                {kFilterQuadratic, 1.0, 0.125},
                {kFilterCubic, 1.0, 1.0 / 6.0},
                {kFilterCatmullRom, 1.0, 0.0},
                {kFilterMitchell, 0.0, 8.0 / 9.0},
                {kFilterMitchell, -1.0, 1.0 / 18.0},
                {kFilterMitchell, 2.0, 0.0},
                {kFilterLanczos, 0.0, 1.0},
                {kFilterLanczos, 2.0, 0.0},
                {kFilterLanczos, 3.5, 0.0},
                {kFilterBlackmanBessel, 0.0, std::numbers::pi / 4.0},
                {kFilterBlackmanSinc, 0.0, 1.0}};
  for (const auto& p : points) EXPECT_NEAR(K(p.row, p.x), p.value, 1e-15) << p.row << " " << p.x;
  EXPECT_LT(K(kFilterLanczos, 1.5), 0.0);  // the negative lobe that overshoots
}

int32_t Width(MovableHandle h) {
  ScopedLock lock(h);
  return reinterpret_cast<const BitmapInfoHeader*>(lock.bytes)->biWidth;
}

// Same size at blur 1.0 is a plain copy; percent sizes round half up; 4-bit pictures are refused;
// a one-pixel-wide picture enlarged sideways repeats its column.
TEST(ResampleImage, CopiesRoundingRefusalsAndOneColumn) {
  std::mt19937 rng(3);
  Owned image(MakeRandomImage(rng, 101, 7, 24));
  Owned copy(ResampleImage(image.h, 101, 7, 0, 1.0));
  EXPECT_TRUE(SameBlocks(image.h, copy.h));
  Owned half(ResampleByPercent(image.h, 50.0, 100.0));
  EXPECT_EQ(Width(half.h), 51);
  Owned bits(CreatePackedDib(4, 4, nullptr, 4));
  EXPECT_EQ(ResampleImage(bits.h, 8, 8, 0, 1.0), nullptr);
  const uint32_t column[] = {0x102030, 0xC0B0A0, 0x00FF7F};
  Owned narrow(MakeImage24(1, 3, column));
  Owned wide(ResampleImage(narrow.h, 5, 3, 0, 1.0));
  ScopedLock lock(wide.h);
  for (int32_t y = 0; y < 3; ++y)
    for (int32_t x = 1; x < 5; ++x)
      EXPECT_EQ(ReadDibPixel(lock.bytes, x, y), ReadDibPixel(lock.bytes, 0, y)) << x << "," << y;
}

TEST(ResampleImage, OvershootClampsWithoutWrapping) {
  // A hard edge in an 8-bit grey picture: the negative lobes push past 0 and 255. Wrapped, they
  // would show as bright pixels on the dark side or dark ones on the bright side.
  for (int32_t size : {5, 13}) {
    Owned edge(CreatePackedDib(8, 1, nullptr, 8));
    {
      ScopedLock lock(edge.h);
      for (int32_t x = 4; x < 8; ++x) WriteDibPixel(lock.bytes, x, 0, 255);
    }
    Owned out(ResampleImage(edge.h, size, 1, 0, 1.0));
    ScopedLock lock(out.h);
    std::vector<uint32_t> row;
    for (int32_t x = 0; x < size; ++x) row.push_back(ReadDibPixel(lock.bytes, x, 0));
    for (int32_t x = 0; 2 * x + 1 < size; ++x) EXPECT_LT(row[x], 64u) << size << " " << x;
    for (int32_t x = size / 2 + 1; x < size; ++x) EXPECT_GT(row[x], 191u) << size << " " << x;
    EXPECT_TRUE(std::count(row.begin(), row.end(), 0u) && std::count(row.begin(), row.end(), 255u))
        << size;
  }
}

// A random picture with wide blocks of one value painted over it, as text masks and plain fills
// have: windows wholly inside a block, across or down, and windows straddling its edges.
MovableHandle MakeBlockyImage(std::mt19937& rng, int32_t width, int32_t height, int32_t depth) {
  MovableHandle image = MakeRandomImage(rng, width, height, depth);
  ScopedLock lock(image);
  for (int block = 0; block < 6; ++block) {
    const int32_t x0 = rng() % width, y0 = rng() % height;
    const int32_t x1 = std::min(width, x0 + 1 + static_cast<int32_t>(rng() % width));
    const int32_t y1 = std::min(height, y0 + 1 + static_cast<int32_t>(rng() % height));
    const uint32_t value = block % 2 ? 0 : rng();
    for (int32_t y = y0; y < y1; ++y)
      for (int32_t x = x0; x < x1; ++x) WriteDibPixel(lock.bytes, x, y, value);
  }
  return image;
}

TEST(ResampleImage, MatchesTheReference) {
  std::mt19937 rng(11);
  struct Case {
    int32_t sw, sh, tw, th;
    double blur;
  } cases[] = {{1, 1, 3, 2, 1.0},  {41, 3, 20, 7, 1.0},  {5, 9, 5, 4, 1.0},
               {2, 2, 1, 1, 1.0},  {3, 5, 41, 2, 1.0},   {17, 17, 17, 17, 1.3},
               {7, 3, 9, 9, 0.7},  {101, 2, 51, 2, 1.0}, {20000, 1, 1, 1, 1.0},
               {1, 5, 2, 300, 1.0}, {37, 11, 148, 44, 1.0}, {148, 44, 37, 11, 1.0}};
  for (int32_t depth : {8, 24, 32})
    for (const Case& c : cases) {
      for (auto make : {MakeRandomImage, MakeBlockyImage}) {
        Owned image(make(rng, c.sw, c.sh, depth));
        Owned a(ResampleImage(image.h, c.tw, c.th, 0, c.blur));
        Owned b(RefResampleImage(image.h, c.tw, c.th, c.blur));
        EXPECT_TRUE(SameBlocks(a.h, b.h))
            << depth << " bits " << c.sw << "x" << c.sh << " to " << c.tw << "x" << c.th;
      }
    }
}

// Columns redone in place match the whole resampling there and leave the rest of the target as
// it was, whichever pass runs first.
TEST(ResampleColumns, MatchTheWholePictureInsideTheRangeOnly) {
  std::mt19937 rng(21);
  struct Case {
    int32_t sw, sh, tw, th;
  } cases[] = {{23, 9, 92, 36}, {92, 36, 23, 9}, {40, 3, 7, 30}, {5, 40, 31, 4}, {12, 7, 12, 7}};
  for (int32_t depth : {8, 24, 32})
    for (const Case& c : cases) {
      Owned image(MakeBlockyImage(rng, c.sw, c.sh, depth));
      Owned whole(ResampleImage(image.h, c.tw, c.th, 0, 1.0));
      Owned target(MakeRandomImage(rng, c.tw, c.th, depth));
      Owned before(CopyMovableBlock(target.h));
      const int32_t first = static_cast<int32_t>(rng() % c.tw);
      const int32_t last = first + 1 + static_cast<int32_t>(rng() % (c.tw - first));
      ASSERT_TRUE(ResampleColumns(image.h, target.h, first, last));
      ScopedLock a(target.h), b(whole.h), old(before.h);
      for (int32_t y = 0; y < c.th; ++y)
        for (int32_t x = 0; x < c.tw; ++x)
          ASSERT_EQ(ReadDibPixel(a.bytes, x, y),
                    ReadDibPixel(x >= first && x < last ? b.bytes : old.bytes, x, y))
              << depth << " bits " << c.sw << "x" << c.sh << " to " << c.tw << "x" << c.th
              << " columns " << first << "-" << last << " at " << x << "," << y;
    }
}

// A target made from a picture, brought up to date after some source columns change, is the
// resampling of the changed picture: every column those source columns reach was redone.
TEST(ResampleColumns, FromChangedSourceColumnsCatchUpWithTheChange) {
  std::mt19937 rng(34);
  for (int32_t depth : {8, 24, 32})
    for (const double percent : {400.0, 25.0, 170.0, 60.0}) {
      Owned image(MakeBlockyImage(rng, 44, 12, depth));
      Owned target(ResampleByPercent(image.h, percent, percent));
      const int32_t first = static_cast<int32_t>(rng() % 44);
      const int32_t last = first + 1 + static_cast<int32_t>(rng() % std::min(8, 44 - first));
      {
        ScopedLock lock(image.h);
        for (int32_t y = 0; y < 12; ++y)
          for (int32_t x = first; x < last; ++x) WriteDibPixel(lock.bytes, x, y, rng());
      }
      Owned whole(ResampleByPercent(image.h, percent, percent));
      ASSERT_TRUE(ResampleFromColumns(image.h, target.h, first, last));
      EXPECT_TRUE(SameBlocks(target.h, whole.h))
          << depth << " bits at " << percent << " %, columns " << first << "-" << last;
    }
}

TEST(ResampleImage, AllocationFailuresLeakNothing) {
  std::mt19937 rng(8);
  Owned image(MakeRandomImage(rng, 30, 20, 24));
  for (int32_t w : {30, 45, 12}) {
    EXPECT_TRUE(SweepAllocationFailures([&] {
      MovableHandle out = ResampleImage(image.h, w, 20, 0, 1.0);
      MovableFree(out);
      return out != nullptr;
    }));
  }
}

}  // namespace
