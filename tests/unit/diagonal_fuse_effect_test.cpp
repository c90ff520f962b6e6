#include "effects/diagonal_fuse.h"

#include <gtest/gtest.h>

#include <vector>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/sized_runs.h"

namespace {

// The pixels of a picture made for the test, which is then freed.
std::vector<uint32_t> Taken(MovableHandle image) {
  ScopedBlock owner(image);
  return SizedPixels(image);
}

// The mean mask level of row y, columns 0 to w - 1.
double RowMean(const std::vector<uint32_t>& mask, int32_t w, int32_t y) {
  double sum = 0;
  for (int32_t x = 0; x < w; ++x) sum += mask[2 + static_cast<size_t>(y * mask[0] + x)] & 0xFF;
  return sum / w;
}

}  // namespace

TEST(DiagonalFuse, LeavesCoverHalfOfEachGrownRowAndFuseAtFullProgress) {
  EXPECT_EQ(FuseProgress(0, 32), 0.2f);
  EXPECT_EQ(FuseProgress(16, 32), 0.5f) << "the sample's progress is a build frame's";
  EXPECT_EQ(FuseProgress(31, 32), static_cast<float>(31.0f / 32.0f * 0.6 + 0.2));
  // A canvas of ten leaf periods. Margin 0: the lines are the canvas's edges and at 20 % the
  // leaves reach 20 rows in from each.
  FuseLeaves leaves = {240, 100, 0, 12, 1, 0x00CCFF, 0x333333, 0.2f};
  for (int32_t scroll : {1, 0}) {
    SCOPED_TRACE(scroll);
    leaves.scroll = scroll;
    leaves.margin = 0;
    leaves.progress = 0.2f;
    const std::vector<uint32_t> grown = Taken(DrawFuseMask(&leaves));
    ASSERT_EQ(grown[0], 240u);
    ASSERT_EQ(grown[1], 100u);
    for (int32_t y : {2, 10, 17, 83, 90, 97}) EXPECT_NEAR(RowMean(grown, 240, y), 127.5, 4) << y;
    for (int32_t y : {30, 50, 70}) EXPECT_EQ(RowMean(grown, 240, y), 0) << y;
    // Margin 10: only the left-leaning leaves carry a spike up to the top edge.
    leaves.margin = 10;
    const std::vector<uint32_t> spiked = Taken(DrawFuseMask(&leaves));
    if (scroll) {
      EXPECT_EQ(RowMean(spiked, 240, 4), 0);
    } else {
      EXPECT_GT(RowMean(spiked, 240, 4), 5);
    }

    // Fused: every row between the lines is Fill. With a margin, the left-leaning leaves' spikes
    // narrow them near the upper line, so they fuse fully only without one.
    leaves.progress = 1.0f;
    for (int32_t margin : {0, 10}) {
      if (margin && !scroll) continue;
      leaves.margin = margin;
      ScopedBlock fused(MakeFuseFill(&leaves));
      const std::vector<uint32_t> fill = SizedPixels(fused.handle);
      int32_t other = 0;
      for (int32_t y = margin + 4; y < 100 - margin - 4; ++y)
        for (int32_t x = 0; x < 240; ++x)
          other += fill[2 + static_cast<size_t>(y * 240 + x)] != 0x00CCFFu;
      EXPECT_EQ(other, 0) << margin;
      if (margin) {
        EXPECT_EQ(fill[2 + 95 * 240 + 7], 0x333333u) << "below the lower line, Back fill";
      }
    }
  }
  // No progress, no leaves: Back fill alone.
  leaves.progress = 0.0f;
  leaves.scroll = 1;
  leaves.margin = 0;
  const std::vector<uint32_t> bare = Taken(MakeFuseFill(&leaves));
  EXPECT_EQ(std::vector<uint32_t>(bare.begin() + 2, bare.end()),
            std::vector<uint32_t>(240 * 100, 0x333333u));
}

TEST(DiagonalFusePage, BuildsHalfTheFramesThenTheFusedOneAndTheSampleIsTheMiddleFrame) {
  WindowHandle dialog = CreateValueDialog();
  ASSERT_NE(dialog, nullptr);
  ASSERT_EQ(DialogCreateMaterial(DialogItem(dialog, 624), 0x7F7F7F), 1);
  ASSERT_EQ(DialogCreateMaterial(DialogItem(dialog, 626), 0xFFFFFF), 1);
  SetDialogItemInt(dialog, 57, 16, 0);
  SetDialogItemInt(dialog, 11, 6, 0);
  SetDialogItemInt(dialog, 23, 40, 0);
  EXPECT_EQ(DiagonalFuseEffectKeyColour(dialog, 0), 0xFFFFFF);

  const SizedRun standard = RunSized(dialog, DiagonalFuseEffectBuild);
  ASSERT_EQ(standard.ok, 1);
  std::vector<int32_t> delays(32, 6);
  delays.push_back(46);
  EXPECT_EQ(standard.delays, delays) << "Frames 64: 32 growing frames and the fused one";
  EXPECT_EQ(RunSized(dialog, DiagonalFuseEffectBuild).frames, standard.frames);
  BuildContext preview{};
  preview.dialog = dialog;
  preview.sample = 1;
  ASSERT_EQ(DiagonalFuseEffectPreview(&preview), 1);
  EXPECT_EQ(SizedPixels(preview.image), standard.frames[16]) << "the sample: progress 0.5";
  MovableFree(preview.image);

  // Another Back fill changes the growing frames but not the fused one: its letters are Fill.
  SetDialogItemInt(dialog, 648, 0x0000FF, 0);
  const SizedRun otherBack = RunSized(dialog, DiagonalFuseEffectBuild);
  EXPECT_NE(otherBack.frames[0], standard.frames[0]);
  EXPECT_EQ(otherBack.frames.back(), standard.frames.back());
  SetDialogItemInt(dialog, 648, 0x333333, 0);

  struct Case {
    int32_t frames;
    size_t count;
  } cases[] = {{2, 2}, {3, 2}, {11, 6}};
  for (const Case& c : cases) {
    SetDialogItemInt(dialog, 634, static_cast<uint32_t>(c.frames), 0);
    const SizedRun b = RunSized(dialog, DiagonalFuseEffectBuild);
    ASSERT_EQ(b.ok, 1);
    ASSERT_EQ(b.frames.size(), c.count) << c.frames;
    EXPECT_EQ(b.frames.back(), standard.frames.back());
    EXPECT_EQ(b.frames[0], standard.frames[0]) << "every build starts at 20 %";
  }

  SetDialogItemInt(dialog, 634, 2, 0);
  SetDialogItemInt(dialog, 57, 8, 0);
  EXPECT_TRUE(SweepAllocationFailures(
      [dialog] { return RunSized(dialog, DiagonalFuseEffectBuild).ok; }, 100000, true));
  DialogDestroy(dialog);
}
