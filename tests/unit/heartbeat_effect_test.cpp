#include "effects/heartbeat.h"

#include <gtest/gtest.h>

#include "controls/value_controls.h"
#include "documents/settings.h"
#include "effects/column_warp.h"
#include "materials/material_button.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/effect_runs.h"

namespace {

constexpr uint32_t kBack = 0xE0F0FF;

// A text wide enough for a pulse to pass by some columns, no blur (which would carry a column's
// change sideways), Pause 40, and a plain background colour of its own.
struct HeartbeatPage {
  WindowHandle dialog = CreateEffectDialog("Heartbeat", 28, {561, 563}, 0x2040A0);
  HeartbeatPage() {
    SetDialogItemInt(dialog, 575, 0, 0);  // Softness
    SetDialogItemInt(dialog, 23, 40, 0);
    SetDialogItemInt(dialog, 565, kBack, 0);
  }
  ~HeartbeatPage() { DialogDestroy(dialog); }
  void Set(int32_t frames, int32_t wavelength, int32_t height) {
    SetDialogItemInt(dialog, 573, frames, 0);
    SetDialogItemInt(dialog, 583, wavelength, 0);
    SetDialogItemInt(dialog, 585, height, 0);
  }
};

// Columns of `f` equal to those of `rest` everywhere but within 4 pixels of the pulse, which
// starts at `from` (of 4 * width) and is `length` wide, and differ somewhere inside it.
void ExpectOnlyThePulseChanged(const PictureValues& f, const PictureValues& rest, int32_t from,
                               int32_t length) {
  ASSERT_EQ(f.width, rest.width);
  int changed = 0;
  for (int32_t x = 0; x < f.width; ++x) {
    const bool near = 4 * x >= from - 16 && 4 * x < from + length + 16;
    for (int32_t y = 0; y < f.height; ++y) {
      if (!near) {
        EXPECT_EQ(f.At(x, y), rest.At(x, y)) << x << "," << y;
      }
      changed += near && f.At(x, y) != rest.At(x, y);
    }
  }
  EXPECT_GT(changed, 0);
}

}  // namespace

// Frames counts two a pulse step; each step's frame differs from the last, at rest, only near the
// pulse, and the last holds for the pause.
TEST(HeartbeatEffect, PulseStepsChangeOnlyTheirColumnsOfTheRestFrameThatEndsTheLoop) {
  HeartbeatPage page;
  const PictureValues sample = RunPreview(PreviewHeartbeat, page.dialog);
  EXPECT_EQ(sample.At(0, 0), kBack);
  for (int32_t frames : {64, 3, 9}) {
    SCOPED_TRACE(frames);
    page.Set(frames, 20, 60);
    const EffectRun b = RunBuild(BuildHeartbeat, page.dialog);
    const int32_t steps = frames / 2;
    ASSERT_EQ(b.frames.size(), static_cast<size_t>(steps) + 1);
    std::vector<int32_t> delays(steps + 1, 7);
    delays.back() = 47;
    EXPECT_EQ(b.delays, delays);
    const PictureValues& rest = b.frames.back();
    EXPECT_EQ(rest.width, sample.width);
    EXPECT_EQ(rest.height, sample.height);
    const int32_t length = 4 * rest.width;
    for (int32_t i = 0; i < steps; ++i) {
      SCOPED_TRACE(i);
      ExpectOnlyThePulseChanged(b.frames[i], rest, length * i / steps, length / 5);
    }
    if (frames != 9) continue;
    // The sample has the pulse at step 128 of 255, and no other difference from a build's frame.
    ExpectOnlyThePulseChanged(sample, rest, static_cast<int32_t>(length * (128.0f / 255.0f)),
                              length / 5);
    // The rest frame owes nothing to the pulse's settings, and builds repeat byte for byte.
    page.Set(frames, 80, 99);
    EXPECT_EQ(RunBuild(BuildHeartbeat, page.dialog).frames.back().values, rest.values);
    page.Set(frames, 20, 60);
    const EffectRun again = RunBuild(BuildHeartbeat, page.dialog);
    for (size_t i = 0; i < b.frames.size(); ++i)
      EXPECT_EQ(again.frames[i].values, b.frames[i].values) << i;
  }
}

// Masks and materials stay in register: a layer covers more under the pulse than at rest, and
// where it covers fully it shows its material warped by the frame's pulse (the fill anchored at
// the canvas corner, the shadow at its own, 4 pixels down and right), seldom the material as
// filled.
TEST(HeartbeatEffect, EachLayerAndItsMaterialGoThroughTheWarp) {
  HeartbeatPage page;
  page.Set(4, 40, 90);  // the first of two steps: the pulse over the left 40 %
  SetDialogItemInt(page.dialog, 57, 48, 0);
  DialogSetCheck(DialogItem(page.dialog, 582), 0);  // no outline
  for (int32_t shadow : {0, 1}) {
    SCOPED_TRACE(shadow);
    DialogSetCheck(DialogItem(page.dialog, 581), shadow);
    SetDialogItemInt(page.dialog, 569, shadow ? 0 : 255, 0);  // only one layer shows
    ScopedLock record(ButtonMaterialHandle(DialogItem(page.dialog, shadow ? 563 : 561)));
    Material* m = reinterpret_cast<Material*>(record.bytes);
    m->kind = kMaterialGradient;
    m->gradient.rotation = 0;  // colours change down the picture
    const EffectRun b = RunBuild(BuildHeartbeat, page.dialog);
    const PictureValues &f = b.frames.at(0), &rest = b.frames.back();
    ScopedBlock filled(MaterialFill(m, f.width, f.height));
    ScopedBlock wave(MakePulseWave(f.width, 40, 2, 0));
    ScopedLock w(wave.handle);
    const PictureValues warped = TakePicture(
        WarpColumns(filled.handle, reinterpret_cast<const float*>(w.bytes), 4 * f.width, 90, nullptr));
    const PictureValues plain = ReadPicture(filled.handle);
    int asWarped = 0, asFilled = 0, drawn = 0, drawnAtRest = 0;
    for (int32_t y = 4 * shadow; y < f.height; ++y)
      for (int32_t x = 4 * shadow; x < f.width * 2 / 5; ++x) {
        asWarped += f.At(x, y) == warped.At(x - 4 * shadow, y - 4 * shadow);
        asFilled += f.At(x, y) == plain.At(x - 4 * shadow, y - 4 * shadow);
        drawn += f.At(x, y) != kBack;
        drawnAtRest += rest.At(x, y) != kBack;
      }
    EXPECT_GT(asWarped, 200);
    EXPECT_GT(asWarped, 4 * asFilled);
    EXPECT_GT(drawn, drawnAtRest * 5 / 4) << "the layer's mask is stretched too";
  }
}

TEST(HeartbeatEffect, KeyColourAndFailures) {
  HeartbeatPage page;
  EXPECT_EQ(HeartbeatBackground(page.dialog, 0), static_cast<int32_t>(kBack));
  DialogSetCheck(DialogItem(page.dialog, 62), 1);
  DialogSetCheck(DialogItem(page.dialog, 63), 1);
  EXPECT_EQ(HeartbeatBackground(page.dialog, 0), *SettingInteger("AlphaGreyBack"));
  page.Set(2, 20, 60);
  DialogSetText(DialogItem(page.dialog, 52), "H");
  SetDialogItemInt(page.dialog, 57, 10, 0);
  EXPECT_TRUE(SweepAllocationFailures([&] { return RunBuild(BuildHeartbeat, page.dialog).ok; }));
}
