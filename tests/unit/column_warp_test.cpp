#include "effects/column_warp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "imaging/resampler.h"
#include "shell/packed_dib.h"
#include "text/compositing.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/imaging_reference.h"
#include "tests/support/test_images.h"

namespace {

std::vector<float> Wave(int32_t canvasWidth, int32_t wavelength, int32_t steps, int32_t index) {
  ScopedBlock block(MakePulseWave(canvasWidth, wavelength, steps, index));
  ScopedLock lock(block.handle);
  const float* w = reinterpret_cast<const float*>(lock.bytes);
  return lock ? std::vector<float>(w, w + 4 * canvasWidth + kPulseWaveSlack) : std::vector<float>();
}

// A 40 by 40 mask with a full bar across rows 16 to 23, about the centre line.
MovableHandle BarMask(int32_t width) {
  MovableHandle mask = CreateMask(width, 40);
  ScopedLock lock(mask);
  for (int32_t y = 16; y < 24; ++y)
    for (int32_t x = 0; x < width; ++x) WriteDibPixel(lock.bytes, x, y, 255);
  return mask;
}

}  // namespace

TEST(ColumnWarp, StretchInterpolatesEachChannelAndWritesOnlyLandingRowsPastTheColumn) {
  struct Case {
    int32_t percent;
    std::vector<uint32_t> column, target;
  } cases[] = {
      {100, {10, 20, 30, 40}, {20, 30, 40, 0, 0, 0, 0, 0}},  // up one row, the zero pixel last
      {150, {0, 100, 200, 60}, {100, 150, 200, 60, 60, 0, 0, 0}},
      // 255 / 2 + 3 / 2 is 127 + 1: each term truncates by itself.
      {200, {0x0000FF, 0xFF0003}, {0x7F0080, 0xFF0003, 0xFF0003, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.percent);
    std::vector<uint32_t> column = c.column, target(c.target.size(), 0);
    column.push_back(0);
    StretchColumn(column.data(), static_cast<int32_t>(c.column.size()), c.percent, target.data());
    EXPECT_EQ(target, c.target);
  }
  // The steepest stretch (Wave height 99 at the crest) stays inside twice the column: the last
  // source pixel lands at 99 * 199 / 100, the zero pixel at 199.
  std::vector<uint32_t> column(101, 7), target(208, 0xABCDEF), tail(8, 0xABCDEF);
  column[100] = 0;
  std::fill_n(target.begin(), 200, 0u);
  StretchColumn(column.data(), 100, 199, target.data());
  tail.insert(tail.begin(), {7, 0, 0});
  EXPECT_EQ(std::vector<uint32_t>(target.begin() + 197, target.end()), tail);
}

TEST(ColumnWarp, PulseIsAHalfSineThatSlidesOffTheEnd) {
  auto positive = [](const std::vector<float>& w) {
    return std::count_if(w.begin(), w.end(), [](float v) { return v > 0; });
  };
  // Canvas 25 wide: 100 entries; wavelength 20 % is 20 entries.
  const std::vector<float> start = Wave(25, 20, 4, 0), middle = Wave(25, 20, 4, 2);
  for (int32_t j = 0; j < 20; ++j) {
    EXPECT_FLOAT_EQ(start[j], static_cast<float>(std::sin(j / 20.0 * 3.14159265358979323846))) << j;
    EXPECT_EQ(middle[50 + j], start[j]) << j;
  }
  EXPECT_EQ(positive(start), 19) << "sin 0 first";
  EXPECT_EQ(positive(Wave(25, 20, 4, 4)), 0) << "at the last step, gone";
  EXPECT_EQ(positive(Wave(25, 80, 4, 3)), 24) << "80 entries from 75, cut at 100";
  EXPECT_EQ(positive(Wave(25, 80, 4, 0)), 79) << "80 % of the width at once";
}

TEST(ColumnWarp, StretchedColumnsGrowAboutTheCentreAndOthersKeepTheRoundTrip) {
  // Columns 10 to 19 of 40 (enlarged: 40 to 79) at the crest with height 50: the bar grows by half.
  std::vector<float> wave(160 + kPulseWaveSlack, 0.0f), flat = wave;
  std::fill(wave.begin() + 40, wave.begin() + 80, 1.0f);
  ScopedBlock bar(BarMask(40));
  const PictureValues warped = TakePicture(WarpColumns(bar.handle, wave.data(), 160, 50, nullptr));
  const PictureValues still = TakePicture(WarpColumns(bar.handle, flat.data(), 160, 50, nullptr));
  ASSERT_EQ(warped.width, 40);
  ASSERT_EQ(warped.height, 40);
  for (int32_t x = 0; x < 40; ++x) {
    int32_t first = -1, last = -1;
    for (int32_t y = 0; y < 40; ++y)
      if (warped.At(x, y) > 127) {
        if (first < 0) first = y;
        last = y;
      }
    if (x >= 12 && x <= 17) {
      EXPECT_EQ(last - first + 1, 12) << x;
      EXPECT_LE(std::abs((first + last) - 39), 1) << x;
    }
    if (x < 7 || x > 22) {
      for (int32_t y = 0; y < 40; ++y) EXPECT_EQ(warped.At(x, y), still.At(x, y)) << x << "," << y;
    }
  }
  EXPECT_EQ(still.At(20, 20), 255u);
  EXPECT_EQ(still.At(20, 10), 0u);

  // A picture wider than the wave reads its last entry for every further column.
  ScopedBlock wider(BarMask(12));
  std::vector<float> tail(40 + kPulseWaveSlack, 0.0f);
  tail[40] = 1.0f;
  const PictureValues ends = TakePicture(WarpColumns(wider.handle, tail.data(), 40, 50, nullptr));
  EXPECT_GT(ends.At(11, 15), 127u);
  EXPECT_LT(ends.At(2, 15), 64u);

  EXPECT_TRUE(SweepAllocationFailures([&] {
    MovableHandle w = WarpColumns(bar.handle, wave.data(), 160, 50, nullptr);
    MovableFree(w);
    return w != nullptr;
  }));
}

// Warps through a cache give the bytes of plain warps: random pictures of every depth, each seen
// over and over (and more pictures than slots, so some come back after they were dropped), under
// pulses along the width, past its end, gone, and one over the columns past the wave.
TEST(ColumnWarp, CachedWarpsMatchPlainWarps) {
  std::mt19937 rng(5);
  constexpr int32_t kPictures = kWarpCacheSlots + 2;
  ScopedBlock pictures[kPictures];
  for (int32_t i = 0; i < kPictures; ++i)
    pictures[i].handle = MakeRandomImage(rng, 30 + i % 3, 9 + i, i % 3 ? 8 * (2 + i % 3) : 8);
  WarpCache cache = {};
  for (int32_t round = 0; round < 40; ++round) {
    const ScopedBlock& picture = pictures[rng() % kPictures];
    const int32_t steps = 6, index = static_cast<int32_t>(rng() % (steps + 1));
    std::vector<float> wave = Wave(30, 8 + static_cast<int32_t>(rng() % 73), steps, index);
    if (round % 7 == 3) wave[120] = 0.5f;  // the entry the columns past the wave read
    const int32_t height = 1 + static_cast<int32_t>(rng() % 99);
    ScopedBlock plain(WarpColumns(picture.handle, wave.data(), 120, height, nullptr));
    ScopedBlock cached(WarpColumns(picture.handle, wave.data(), 120, height, &cache));
    ASSERT_TRUE(plain.handle && cached.handle);
    EXPECT_TRUE(SameBlocks(plain.handle, cached.handle)) << "round " << round;
  }
  ReleaseWarpCache(&cache);
  ScopedBlock& picture = pictures[1];
  const std::vector<float> wave = Wave(30, 20, 4, 1);
  EXPECT_TRUE(SweepAllocationFailures([&] {
    WarpCache fresh = {};
    MovableHandle first = WarpColumns(picture.handle, wave.data(), 120, 60, &fresh);
    MovableHandle again = WarpColumns(picture.handle, wave.data(), 120, 60, &fresh);
    ReleaseWarpCache(&fresh);
    MovableFree(first);
    MovableFree(again);
    return first && again;
  }));
}
