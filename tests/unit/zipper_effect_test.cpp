#include "effects/zipper.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_frames.h"

namespace {

MovableHandle CopyPicture(void* picture) {
  return DuplicateHandle(static_cast<MovableHandle>(picture));
}

BuiltFrames Build(MovableHandle picture, ZipperSettings settings) {
  FrameList list{};
  BuildContext context{};
  context.frames = &list;
  const int ok = RunZipperFrames(&context, &settings, CopyPicture, picture);
  return TakeFrames(&list, ok);
}

}  // namespace

TEST(Zipper, ShiftStartsThreeEighthsRoundAndClosesWithTheSquareOfTheFramesLeft) {
  // 3 length r^2 / (8 (frames - 1)^2), r = frames - 1 - frame, truncated.
  const struct { int length, frame, frames, shift; } cases[] = {
      {100, 0, 64, 37},  {101, 0, 64, 37},       {100, 63, 64, 0},  {100, 31, 64, 9},
      {301, 1, 3, 28},   {301, 0, 2, 112},       {301, 1, 2, 0},    {40000, 1, 32760, 14999},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ZipperShift(c.length, c.frame, c.frames), c.shift) << c.length << " " << c.frame;
  EXPECT_FALSE(ZipperColumns(30, 30));
  EXPECT_TRUE(ZipperColumns(30, 31));
}

TEST(Zipper, TeethAreOppositeCyclicShiftsAndTheLastFrameIsThePictureAtRest) {
  // Wide pictures have rows for teeth, tall ones columns; the last tooth takes what is left.
  const struct { int width, height, leaf, frames, delay, pause; } cases[] = {
      {40, 17, 4, 6, 3, 50}, {13, 30, 5, 2, 7, 1}, {25, 9, 1, 4, 2, 9}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.width);
    ScopedBlock picture(RandomImage(c.width, c.height, 24, 7));
    const BuiltFrames b = Build(picture.handle, {c.frames, c.leaf, c.delay, c.pause});
    ASSERT_EQ(b.ok, 1);
    ASSERT_EQ(b.frames.size(), static_cast<size_t>(c.frames));
    std::vector<int32_t> delays(c.frames - 1, c.delay);
    delays.push_back(c.delay + c.pause);
    EXPECT_EQ(b.delays, delays);
    const PictureValues home = ReadPicture(picture.handle);
    EXPECT_EQ(b.frames.back().values, home.values);
    const bool columns = c.height > c.width;
    const int span = columns ? c.width : c.height, length = columns ? c.height : c.width;
    for (int f = 0; f < c.frames; ++f) {
      const double r = c.frames - 1 - f, last = c.frames - 1;
      const int expected = static_cast<int>(std::floor(3 * length * r * r / (8 * last * last)));
      for (int first = 0, k = 0; first < span; first += c.leaf, ++k) {
        const int s = FindBandShift(b.frames[f], home, columns, first,
                                    std::min(c.leaf, span - first));
        const int wanted = k % 2 ? (length - expected) % length : expected;
        EXPECT_EQ(s, wanted) << "frame " << f << " tooth " << k;
      }
    }
  }
}

TEST(Zipper, DefaultPageBuildsSixtyFourFramesAndTheSampleIsTheMiddleOne) {
  PageDialog page({696, 698});
  EXPECT_EQ(ZipperEffectKeyColour(page.dialog, 0), 0xFFFFFF);
  EXPECT_EQ(ZipperEffectKeyColour(page.dialog, 1), -1);
  // Delay 5 and Pause 100 as the settings start.
  const BuiltFrames defaults = page.Build(ZipperEffectBuild, {});
  ASSERT_EQ(defaults.ok, 1);
  std::vector<int32_t> delays(63, 5);
  delays.push_back(105);
  EXPECT_EQ(defaults.delays, delays);
  const PictureValues& home = defaults.frames.back();
  for (const PictureValues& f : defaults.frames) {
    EXPECT_EQ(f.width, home.width);
    EXPECT_EQ(f.height, home.height);
  }
  EXPECT_NE(defaults.frames[0].values, home.values);
  EXPECT_EQ(page.Preview(ZipperEffectPreview).values, defaults.frames[31].values);
  const BuiltFrames again = page.Build(ZipperEffectBuild, {});
  for (size_t i = 0; i < defaults.frames.size(); ++i)
    EXPECT_EQ(again.frames[i].values, defaults.frames[i].values) << i;

  // Two frames: three eighths of a turn, then rest; a finer leaf changes the teeth, not the count.
  const BuiltFrames two = page.Build(ZipperEffectBuild, {{708, 2}, {11, 9}, {23, 20}});
  EXPECT_EQ(two.delays, (std::vector<int32_t>{9, 29}));
  EXPECT_EQ(two.frames.back().values, home.values);
  const BuiltFrames fine = page.Build(ZipperEffectBuild, {{708, 64}, {11, 5}, {23, 100}, {718, 1}});
  ASSERT_EQ(fine.frames.size(), 64u);
  EXPECT_NE(fine.frames[10].values, defaults.frames[10].values);
  EXPECT_EQ(fine.frames.back().values, home.values);
}

TEST(Zipper, FailedAllocationsFailTheBuildAndLeakNothing) {
  ScopedBlock picture(RandomImage(9, 6, 24, 5));
  EXPECT_TRUE(SweepAllocationFailures([&] { return Build(picture.handle, {3, 2, 1, 1}).ok; }));
}
