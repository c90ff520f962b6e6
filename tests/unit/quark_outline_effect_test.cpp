#include "effects/quark_outline.h"

#include <gtest/gtest.h>

#include "controls/value_controls.h"
#include "shell/crt_random.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_builds.h"

// Rows of the Rotation list: -6 is row 11, 6 row 22, 12 row 26.

TEST(QuarkOutlinePage, OneTurnInTheRingWithTheFillLeftAlone) {
  WindowHandle dialog = SmallEffectDialog({659, 661, 663}, {0x40C040, 0x7F7F7F, 0xFFFFFF});
  WindowHandle other = SmallEffectDialog({659, 661, 663}, {0xC040C0, 0x7F7F7F, 0xFFFFFF});
  ASSERT_NE(dialog, nullptr);
  ASSERT_NE(other, nullptr);
  EXPECT_EQ(QuarkOutlineEffectKeyColour(dialog, 0), 0xFFFFFF);
  const int32_t delay = ReadDlgValue(dialog, 11);
  crt::srand(5);
  const BuiltFrames standard = BuildEffectFrames(QuarkOutlineEffectBuild, dialog);
  ASSERT_EQ(standard.ok, 1);
  ASSERT_EQ(standard.frames.size(), 60u);
  EXPECT_EQ(standard.delays, std::vector<int32_t>(60, delay));
  EXPECT_GT(standard.width, 0);
  EXPECT_EQ(PreviewEffectPixels(QuarkOutlineEffectPreview, dialog), standard.frames[0]);
  crt::srand(6);
  EXPECT_EQ(BuildEffectFrames(QuarkOutlineEffectBuild, dialog).frames, standard.frames);

  // The frame after the last is frame 0 again.
  {
    FrameParams params{};
    params.frameCount = 61;
    params.frameIndex = 60;
    BuildContext context{};
    context.dialog = dialog;
    context.params = &params;
    ScopedBlock after(RenderQuarkOutlineFrame(&context));
    FreeFrameSet(&params);
    EXPECT_EQ(PicturePixels(after.handle), standard.frames[0]);
  }

  // Pixels wholly inside the letters show the Fill material in every frame; the fountain turns
  // in the ring around them.
  const Pixels otherFill = PreviewEffectPixels(QuarkOutlineEffectPreview, other);
  ASSERT_EQ(otherFill.size(), standard.frames[0].size());
  size_t inside = 0, turning = 0;
  for (size_t i = 0; i < otherFill.size(); ++i) {
    if ((standard.frames[0][i] & 0xFFFFFF) != 0x40C040 || (otherFill[i] & 0xFFFFFF) != 0xC040C0)
      continue;
    ++inside;
    for (const Pixels& frame : standard.frames) ASSERT_EQ(frame[i], standard.frames[0][i]) << i;
  }
  for (size_t i = 0; i < otherFill.size(); ++i)
    turning += standard.frames[0][i] != standard.frames[15][i];
  EXPECT_GT(inside, 20u);
  EXPECT_GT(turning, 20u);

  // A step of 12 degrees visits every other frame of the 6 degree loop; -6 runs it backwards.
  SelectComboRow(dialog, 676, 26);
  const BuiltFrames twelve = BuildEffectFrames(QuarkOutlineEffectBuild, dialog);
  ASSERT_EQ(twelve.frames.size(), 30u);
  for (size_t k : {1u, 14u, 29u}) EXPECT_EQ(twelve.frames[k], standard.frames[2 * k]) << k;
  SelectComboRow(dialog, 676, 11);
  const BuiltFrames backwards = BuildEffectFrames(QuarkOutlineEffectBuild, dialog);
  ASSERT_EQ(backwards.frames.size(), 60u);
  for (size_t k : {1u, 30u, 59u}) EXPECT_EQ(backwards.frames[k], standard.frames[60 - k]) << k;
  SelectComboRow(dialog, 676, 22);

  // The offsets move the cone's centre; the initial rotation is frame 0's angle.
  SetDialogItemInt(dialog, 678, 10, 0);
  EXPECT_NE(PreviewEffectPixels(QuarkOutlineEffectPreview, dialog), standard.frames[0]);
  SetDialogItemInt(dialog, 678, 50, 0);
  SetDialogItemInt(dialog, 682, 12, 0);
  EXPECT_EQ(PreviewEffectPixels(QuarkOutlineEffectPreview, dialog), standard.frames[2]);

  EXPECT_TRUE(SweepAllocationFailures([dialog] {
    BuildContext context{};
    context.dialog = dialog;
    context.sample = 1;
    QuarkOutlineEffectPreview(&context);
    const int ok = context.image != nullptr;
    MovableFree(context.image);
    return ok;
  }));
  DialogDestroy(other);
  DialogDestroy(dialog);
}
