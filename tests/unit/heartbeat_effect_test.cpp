#include "effects/heartbeat.h"

#include <gtest/gtest.h>

#include "controls/value_controls.h"
#include "documents/settings.h"
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
    for (int32_t i = 0; i < steps; ++i)
      ExpectOnlyThePulseChanged(b.frames[i], rest, length * i / steps, length / 5);
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
