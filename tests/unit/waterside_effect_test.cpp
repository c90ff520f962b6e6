#include "effects/waterside.h"

#include <gtest/gtest.h>

#include <vector>

#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_frames.h"

namespace {

constexpr uint32_t kWater = 0xFFFFFF;

// A picture of `fill` with pixel i % width, i / width set to colour c for each (i, c) of `marks`.
MovableHandle Picture(int32_t width, int32_t height, int32_t depth,
                      std::vector<std::pair<int, uint32_t>> marks, uint32_t fill = kWater) {
  MovableHandle image = CreatePackedDib(width, height, nullptr, depth);
  ScopedLock lock(image);
  for (int32_t i = 0; i < width * height; ++i)
    WriteDibPixel(lock.bytes, i % width, i / width, fill);
  for (const auto& m : marks) WriteDibPixel(lock.bytes, m.first % width, m.first / width, m.second);
  return image;
}

MovableHandle CopyPicture(void* picture, const WatersideFrameParams*) {
  return DuplicateHandle(static_cast<MovableHandle>(picture));
}

BuiltFrames Build(MovableHandle picture, WatersideLoopSettings loop) {
  FrameList list{};
  BuildContext context{};
  context.frames = &list;
  crt::srand(crt::kStartSeed);  // as a fresh use of the plug-in
  const int ok = RunWatersideFrames(&context, &loop, CopyPicture, picture);
  return TakeFrames(&list, ok);
}

// The first `width` pixels (all by default) of rows [0, rows).
std::vector<uint32_t> TopRows(const PictureValues& p, int32_t rows, int32_t width = 0) {
  std::vector<uint32_t> top;
  for (int32_t y = 0; y < rows; ++y)
    for (int32_t x = 0; x < (width ? width : p.width); ++x) top.push_back(p.At(x, y));
  return top;
}

}  // namespace

TEST(Waterside, CropTakesOnlyBottomRowsOfBackgroundAndNeverRowZero) {
  const struct {
    int depth;
    std::vector<std::pair<int, uint32_t>> marks;  // on 4 columns
    uint32_t fill;
    int rows;
  } cases[] = {
      {24, {}, kWater, 1},                       // all background: one row stays
      {24, {{4 * 5 + 3, 0x000001}}, kWater, 6},  // a mark in row 5 keeps rows 0 to 5
      {24, {{4 * 9, 0x000000}}, kWater, 10},     // the last row differs: nothing goes
      {32, {{4 * 2, 0x7F000000 | kWater}}, 0xFF000000 | kWater, 1},  // alpha is not compared
  };
  for (const auto& c : cases) {
    ScopedBlock picture(Picture(4, 10, c.depth, c.marks, c.fill));
    const PictureValues out = TakePicture(CropBackgroundRows(picture.handle, 0xAB000000 | kWater));
    EXPECT_EQ(out.bits, c.depth);
    ASSERT_EQ(out.height, c.rows);
    EXPECT_EQ(out.values, TopRows(ReadPicture(picture.handle), c.rows));
  }
}

TEST(Waterside, RippleRowsTakeTheirSourcesFromTheSineOfThePhase) {
  // Row t shows row sources[t], from the ripple's formula in doubles on 28 rows. The last row's
  // source lies below the picture in phase 1 of 2, and fails the guard in phase 0 of 1: both
  // rows keep their own pixels. Phase 1 of 2 is half a wave on.
  const struct {
    int phase, phases;
    std::vector<int> sources;
  } cases[] = {
      {0, 1, {0,  1,  2,  4,  5,  6,  8,  9,  10, 11, 13, 14, 15, 15,
              16, 16, 16, 17, 17, 17, 18, 21, 24, 23, 24, 23, 27, 27}},
      {1, 2, {0,  1,  2,  2,  3,  4,  4,  5,  6,  7,  7,  8,  9,  11,
              12, 14, 16, 17, 19, 21, 22, 21, 20, 23, 24, 27, 25, 27}},
  };
  std::vector<std::pair<int, uint32_t>> rows;
  for (int y = 0; y < 28; ++y) rows.push_back({y * 3 + 1, static_cast<uint32_t>(y)});
  ScopedBlock picture(Picture(3, 28, 24, rows));
  for (const auto& c : cases) {
    const PictureValues out = TakePicture(ShiftRippleRows(picture.handle, c.phase, c.phases));
    for (int t = 0; t < 28; ++t) {
      EXPECT_EQ(out.At(1, t), static_cast<uint32_t>(c.sources[t])) << "row " << t;
      EXPECT_EQ(out.At(0, t), kWater) << "whole rows move";
    }
  }
  // The phase is a fraction of a turn: phase i of n and 2i of 2n are the same picture.
  ScopedBlock noise(RandomImage(5, 60, 24, 3));
  for (int i : {1, 7, 19}) {
    ScopedBlock a(ShiftRippleRows(noise.handle, i, 40)),
        b(ShiftRippleRows(noise.handle, 2 * i, 80));
    EXPECT_TRUE(SameBlocks(a.handle, b.handle)) << i;
  }
}

TEST(Waterside, JoinHangsTheRippleMirroredBelowAndShortDelaysDrawNothing) {
  ScopedBlock top(RandomImage(2, 3, 24, 4)), bottom(RandomImage(4, 2, 24, 5));
  const PictureValues p = ReadPicture(top.handle), r = ReadPicture(bottom.handle);
  const PictureValues j = TakePicture(JoinMirrored(top.handle, bottom.handle));
  ASSERT_EQ(j.width, 4);
  ASSERT_EQ(j.height, 5);
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 4; ++x)
      EXPECT_EQ(j.At(x, y), y < 3 ? (x < 2 ? p.At(x, y) : 0u) : r.At(x, 4 - y)) << x << "," << y;

  // Delay 2 spreads over (2 * 50) / 100 = 1 value and still draws; Delay 1 has none to spread.
  crt::srand(crt::kStartSeed);
  EXPECT_EQ(WatersideDelay(2), 1);
  EXPECT_EQ(WatersideDelay(1), 1);
  EXPECT_EQ(crt::rand(), 18467) << "the second number of a fresh runtime";
}

TEST(Waterside, FramesKeepTheCroppedPictureOnTopOfEveryPhase) {
  // Text in rows 2 to 9 of 30; the rest is water, cropped.
  std::vector<std::pair<int, uint32_t>> marks;
  for (int i = 0; i < 40; ++i) marks.push_back({2 * 20 + (i * 7) % 160, 0x203040u + i});
  ScopedBlock picture(Picture(20, 30, 24, marks));
  const PictureValues in = ReadPicture(picture.handle);

  // Delay 5: 3 + rand() % 2 from a fresh runtime's 41, 18467, 6334, 26500, 19169, 15724.
  const BuiltFrames run = Build(picture.handle, {1, 5, 6, kWater});
  ASSERT_EQ(run.ok, 1);
  EXPECT_EQ(run.delays, (std::vector<int32_t>{4, 4, 3, 3, 4, 3}));
  for (const PictureValues& f : run.frames) {
    ASSERT_EQ(f.width, 20);
    ASSERT_EQ(f.height, 20) << "ten rows and their mirror image";
    EXPECT_EQ(TopRows(f, 10), TopRows(in, 10));
  }
  EXPECT_NE(run.frames[1].values, run.frames[4].values) << "the water moves";
  const BuiltFrames again = Build(picture.handle, {1, 5, 6, kWater});
  for (size_t i = 0; i < 6; ++i) EXPECT_EQ(again.frames[i].values, run.frames[i].values);
  // A still build is phase 0 of 1, the first phase of any animation, with the plain delay.
  const BuiltFrames still = Build(picture.handle, {0, 5, 6, kWater});
  EXPECT_EQ(still.delays, (std::vector<int32_t>{5}));
  EXPECT_EQ(still.frames.at(0).values, run.frames[0].values);

  // A failed crop, ripple or join leaves its frame plain (a failed halving leaves the ripple at
  // full size); only the render, a copy or an append fails the build. Nothing leaks.
  ScopedBlock small(Picture(6, 8, 24, {{13, 0}}));
  const PictureValues tiny = ReadPicture(small.handle);
  EXPECT_TRUE(SweepAllocationFailures(
      [&] {
        const BuiltFrames b = Build(small.handle, {1, 4, 2, kWater});
        for (const PictureValues& f : b.frames) EXPECT_EQ(TopRows(f, 3, 6), TopRows(tiny, 3));
        return b.ok;
      },
      100000, true));
}

TEST(Waterside, BuildsFromThePage) {
  PageDialog page({467, 469});
  EXPECT_EQ(WatersideEffectKeyColour(page.dialog, 0), 0xFFFFFF);
  EXPECT_EQ(WatersideEffectKeyColour(page.dialog, 1), -1);

  const BuiltFrames defaults = page.Build(WatersideEffectBuild, {});
  ASSERT_EQ(defaults.ok, 1);
  ASSERT_EQ(defaults.frames.size(), 40u);
  EXPECT_EQ(std::vector<int32_t>(defaults.delays.begin(), defaults.delays.begin() + 5),
            (std::vector<int32_t>{4, 4, 3, 3, 4}));
  const PictureValues& first = defaults.frames[0];
  for (const PictureValues& f : defaults.frames) {
    ASSERT_EQ(f.width, first.width);
    ASSERT_EQ(f.height, first.height);
    EXPECT_EQ(TopRows(f, f.height / 2), TopRows(first, f.height / 2)) << "the text holds still";
  }
  EXPECT_EQ(page.Preview(WatersideEffectPreview).values, first.values) << "the sample is phase 0";

  // Delay 20: 15 + rand() % 10.
  EXPECT_EQ(page.Build(WatersideEffectBuild, {{479, 2}, {11, 20}}).delays,
            (std::vector<int32_t>{16, 22}));
  // Padding widens the picture on both sides, but only its top grows: the bottom is water. (A
  // soft shadow would reach further into a wider margin, so the shadow is sharp here.)
  const BuiltFrames sharp = page.Build(WatersideEffectBuild, {{481, 0}, {59, 5}});
  const BuiltFrames padded = page.Build(WatersideEffectBuild, {{59, 15}});
  EXPECT_EQ(padded.frames.at(0).width, sharp.frames.at(0).width + 20);
  EXPECT_EQ(padded.frames[0].height, sharp.frames[0].height + 20);
}
