#include "tests/support/frame_set_checks.h"

#include <gtest/gtest.h>

#include "controls/page_setup.h"
#include "controls/value_controls.h"
#include "materials/material_button.h"
#include "shell/crt_random.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"

int32_t PictureWidth(MovableHandle image) {
  ScopedLock lock(image);
  return lock ? reinterpret_cast<const BitmapInfoHeader*>(lock.bytes)->biWidth : -1;
}

std::vector<uint32_t> RolledPixels(const std::vector<uint32_t>& pixels, int32_t width, int32_t dx,
                                   int32_t dy) {
  const int32_t h = static_cast<int32_t>(pixels.size()) / width, w = width;
  std::vector<uint32_t> out(pixels.size());
  for (int32_t y = 0; y < h; ++y)
    for (int32_t x = 0; x < w; ++x)
      out[static_cast<size_t>(((y + dy) % h + h) % h * w + ((x + dx) % w + w) % w)] =
          pixels[static_cast<size_t>(y * w + x)];
  return out;
}

std::vector<int> RandomSequence(uint32_t seed, int count) {
  crt::srand(seed);
  std::vector<int> r;
  for (int i = 0; i < count; ++i) r.push_back(crt::rand());
  return r;
}

WindowHandle CreateFramePageDialog() {
  WindowHandle dialog = CreateValueDialog();
  if (!dialog) return nullptr;
  for (const PageTable& table : kPageTables)
    for (int32_t i = 0; i < table.count; ++i) {
      const PageControl& control = table.controls[i];
      if (control.kind == kControlMaterialButton)
        DialogCreateMaterial(DialogItem(dialog, control.id), control.colour);
    }
  SetDialogItemInt(dialog, 57, 16, 0);  // a small font keeps the canvas small
  return dialog;
}

namespace {

void SetValue(WindowHandle dialog, int32_t id, int32_t value) {
  if (id == 22)
    DialogSetCheck(DialogItem(dialog, id), value);
  else
    SetDialogItemInt(dialog, id, static_cast<uint32_t>(value), 0);
}

int32_t Value(WindowHandle dialog, int32_t id) {
  return id == 22 ? DialogGetCheck(DialogItem(dialog, id)) : ReadDlgValue(dialog, id);
}

}  // namespace

void CheckFramePage(WindowHandle dialog, const FramePageCase& c) {
  const int32_t delay = ReadDlgValue(dialog, 11);
  const BuiltFrames standard = BuildEffectFrames(c.build, dialog);
  ASSERT_EQ(standard.ok, 1);
  EXPECT_EQ(standard.flags & kBuildFlagBuild, kBuildFlagBuild);
  ASSERT_EQ(standard.frames.size(), static_cast<size_t>(c.frames)) << "the default Frames";
  EXPECT_EQ(standard.delays, std::vector<int32_t>(static_cast<size_t>(c.frames), delay));
  const std::vector<uint32_t> sample = PreviewEffectPixels(c.preview, dialog);
  EXPECT_EQ(sample, standard.frames[0]) << "the sample is frame 0 of the loop";
  for (const std::vector<uint32_t>& frame : standard.frames)
    EXPECT_EQ(frame.size(), sample.size()) << "one canvas for every frame";
  EXPECT_NE(standard.frames[0], standard.frames[static_cast<size_t>(c.frames / 2)]);
  EXPECT_EQ(BuildEffectFrames(c.build, dialog).frames, standard.frames)
      << "the same settings, the same bytes";

  struct Change {
    int32_t id, value;
    size_t frames;
    int32_t delay;
    bool sameFirst;
  } changes[] = {
      {c.effect->framesId, 2, 2, delay, true},  // Frames 2: another loop, the same items
      {11, 9, static_cast<size_t>(c.frames), 9, true},
      {22, 0, 1, delay, true},  // animate off: one frame, the first of the loop
      {c.seedId, Value(dialog, c.seedId) + 1, static_cast<size_t>(c.frames), delay, false},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change.id);
    const int32_t old = Value(dialog, change.id);
    SetValue(dialog, change.id, change.value);
    const BuiltFrames b = BuildEffectFrames(c.build, dialog);
    EXPECT_EQ(b.ok, 1);
    EXPECT_EQ(b.delays, std::vector<int32_t>(change.frames, change.delay));
    if (!b.frames.empty()) {
      EXPECT_EQ(b.frames[0] == standard.frames[0], change.sameFirst);
    }
    SetValue(dialog, change.id, old);
  }

  // A small set, every allocation failing in turn; an item whose halving or blur fails keeps its
  // unscaled or sharp picture, so those runs may succeed.
  const int32_t oldDensity = Value(dialog, c.densityId), oldSize = Value(dialog, c.sizeId);
  SetValue(dialog, c.densityId, 2);
  SetValue(dialog, c.sizeId, 0);  // clamped to the minimum
  const FrameSetEffect* effect = c.effect;
  EXPECT_TRUE(SweepAllocationFailures(
      [dialog, effect] {
        FrameParams params{};
        params.frameCount = 2;
        const int ok = BuildFrameSet(&params, effect, dialog, 24, 16);
        FreeFrameSet(&params);
        return ok;
      },
      100000, true));
  SetValue(dialog, c.densityId, oldDensity);
  SetValue(dialog, c.sizeId, oldSize);
}
