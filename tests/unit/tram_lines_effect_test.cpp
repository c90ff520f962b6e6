#include "effects/tram_lines.h"

#include <gtest/gtest.h>

#include <vector>

#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_frames.h"

namespace {

MovableHandle CopyPicture(void* picture) {
  return DuplicateHandle(static_cast<MovableHandle>(picture));
}

BuiltFrames Build(MovableHandle picture, TramLinesSettings settings) {
  FrameList list{};
  BuildContext context{};
  context.frames = &list;
  const int ok = RunTramLinesFrames(&context, &settings, CopyPicture, picture);
  return TakeFrames(&list, ok);
}

}  // namespace

TEST(TramLines, ATurnTakesCeilLengthOverStepFramesOfNearlyEqualSteps) {
  const struct { int length, step, frames, shift1; } cases[] = {
      {301, 4, 76, 4}, {300, 4, 75, 4}, {10, 32, 1, 10}, {7, 3, 3, 2}, {0, 4, 1, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.length);
    const int n = TramLinesFrameCount(c.length, c.step);
    EXPECT_EQ(n, c.frames);
    EXPECT_EQ(TramLinesShift(c.length, 1, n), c.shift1);
    EXPECT_EQ(TramLinesShift(c.length, 0, n), 0);
    EXPECT_EQ(TramLinesShift(c.length, n, n), c.length) << "a whole turn";
    // Every step, the one that closes the loop included, is within a pixel of the others and
    // never more than the Tile step.
    for (int f = 0; f < n; ++f) {
      const int step = TramLinesShift(c.length, f + 1, n) - TramLinesShift(c.length, f, n);
      EXPECT_LE(step, c.step);
      EXPECT_GE(step, c.length / n);
      EXPECT_LE(step, (c.length + n - 1) / n);
    }
  }
}

TEST(TramLines, BarsRunOppositeWaysAndTheFrameAfterTheLastIsTheFirst) {
  const struct { int width, height, bars, step, vertical; } cases[] = {
      {23, 10, 3, 4, 0}, {12, 18, 4, 5, 1}, {9, 5, 64, 2, 0}};  // 64 bars held to 5 rows
  for (const auto& c : cases) {
    SCOPED_TRACE(c.width);
    ScopedBlock picture(RandomImage(c.width, c.height, 24, 11));
    const TramLinesSettings settings = {c.bars, c.step, c.vertical, 4};
    const BuiltFrames b = Build(picture.handle, settings);
    ASSERT_EQ(b.ok, 1);
    const bool columns = c.vertical != 0;
    const int span = columns ? c.width : c.height, length = columns ? c.height : c.width;
    const int n = (length + c.step - 1) / c.step, bars = std::min(c.bars, span);
    ASSERT_EQ(b.frames.size(), static_cast<size_t>(n));
    EXPECT_EQ(b.delays, std::vector<int32_t>(n, 4));
    const PictureValues home = ReadPicture(picture.handle);
    EXPECT_EQ(b.frames[0].values, home.values);
    EXPECT_EQ(TakePicture(MakeTramLinesFrame(picture.handle, &settings, n)).values, home.values);
    EXPECT_EQ(TakePicture(MakeTramLinesFrame(picture.handle, &settings, n + 1)).values,
              b.frames[1 % n].values);
    for (int f = 0; f < n; ++f)
      for (int k = 0; k < bars; ++k) {
        const int first = k * span / bars, count = (k + 1) * span / bars - first;
        const int even = FindBandShift(b.frames[f], home, columns, first, count);
        const int shift = (2 * f * length + n) / (2 * n);
        EXPECT_EQ(even, k % 2 ? (length - shift) % length : shift) << f << " bar " << k;
      }
  }
}

TEST(TramLines, DefaultPageLoopsAlongTheWidthAndTheSampleIsAQuarterTurnOn) {
  PageDialog page({969, 971, 973});
  EXPECT_EQ(TramLinesEffectKeyColour(page.dialog, 0), 0x404040);  // the Background material's
  const BuiltFrames defaults = page.Build(TramLinesEffectBuild, {});
  ASSERT_EQ(defaults.ok, 1);
  const PictureValues& first = defaults.frames[0];
  const size_t n = (first.width + 3) / 4;
  ASSERT_EQ(defaults.frames.size(), n);
  EXPECT_EQ(defaults.delays, std::vector<int32_t>(n, 5));
  for (const PictureValues& f : defaults.frames) EXPECT_EQ(f.height, first.height);
  EXPECT_EQ(page.Preview(TramLinesEffectPreview).values, defaults.frames[n / 4].values);
  const BuiltFrames again = page.Build(TramLinesEffectBuild, {});
  for (size_t i = 0; i < n; ++i) EXPECT_EQ(again.frames[i].values, defaults.frames[i].values);

  // Upright bars turn along the height; a longer step makes fewer frames.
  DialogSetCheck(DialogItem(page.dialog, 993), 1);
  const BuiltFrames upright = page.Build(TramLinesEffectBuild, {});
  EXPECT_EQ(upright.frames.size(), static_cast<size_t>((first.height + 3) / 4));
  DialogSetCheck(DialogItem(page.dialog, 993), 0);
  const BuiltFrames fast = page.Build(TramLinesEffectBuild, {{991, 32}, {989, 2}});
  EXPECT_EQ(fast.frames.size(), static_cast<size_t>((first.width + 31) / 32));
  EXPECT_EQ(fast.frames[0].values, first.values);
}

TEST(TramLines, FailedAllocationsFailTheBuildAndLeakNothing) {
  ScopedBlock picture(RandomImage(9, 6, 24, 5));
  EXPECT_TRUE(SweepAllocationFailures([&] { return Build(picture.handle, {2, 3, 0, 1}).ok; }));
}
